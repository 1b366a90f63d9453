#pragma once

#include <QLabel>
#include <QWidget>
#include <array>
#include <functional>

#include "shell/panelcursor.h"
#include "widgets/picturesui.h"

class QLabel;

namespace tessarin {

class AppContext;

// The nine-entry main panel: an icon, a title and a subtitle per entry, all three clickable,
// and the keyboard rules of PanelCursor. Entries whose dialog isn't available are disabled.
class MainPanel final : public QWidget {
  Q_OBJECT
 public:
  static constexpr int kEntries = PanelCursor::kEntries;

  // `available` says whether an entry can run now.
  MainPanel(QWidget* parent, AppContext& ctx, const std::function<bool(int)>& available);

  int CurrentEntry() const { return m_cursor.Current(); }
  // True while the down picture of the entry is shown.
  bool ShowsDownPicture(int entry) const;
  // Refreshes Label1 from the database version in memory.
  void RefreshDatabaseLabel();

 Q_SIGNALS:
  void EntryActivated(int entry);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  struct Entry {
    QWidget* row = nullptr;
    QLabel* icon = nullptr;
    QLabel* title = nullptr;
    QLabel* subtitle = nullptr;
    PanelIconSet set = PanelIconSet::Red;
    bool down = false;
  };
  void SetDown(int entry, bool down);
  void PaintEntry(int entry);
  int EntryOf(QObject* object) const;

  AppContext& m_ctx;
  PanelCursor m_cursor;
  std::array<Entry, kEntries> m_entries;
  QLabel* m_databaseLabel;
  int m_iconSize = 32;
  int m_pressed = -1;
};

}  // namespace tessarin
