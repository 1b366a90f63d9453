#pragma once

#include <QMainWindow>
#include <QMap>
#include <QMdiSubWindow>
#include <QPointer>
#include <functional>
#include <map>

#include "shell/mainpanel.h"
#include "shell/options.h"

class QMdiArea;
class QMdiSubWindow;
class QMenu;

namespace tessarin {

class AppContext;
class MainPanel;
class Work;
struct ShellSession;

class MainFrame;
// Makes a subsystem's dialog, not yet shown; the frame shows it, keeps it single and brings
// the panel back when it closes.
using DialogFactory = std::function<QWidget*(MainFrame& frame)>;

// The frame window: the menu, the area that holds the main panel, and the registry through
// which each subsystem's dialog joins the panel and the menu.
class MainFrame final : public QMainWindow {
  Q_OBJECT
 public:
  MainFrame(AppContext& ctx, ShellSession& session, SiteTablesAccess sites);
  ~MainFrame() override;

  AppContext& Context() { return m_ctx; }
  const SiteTablesAccess& Sites() const { return m_sites; }

  // Panel entries 0 to 6 and menu entries by their object name ("MnuRecherche"...). An entry
  // without a factory is shown disabled.
  void RegisterPanelDialog(int entry, DialogFactory factory);
  void RegisterMenuDialog(const QString& menuName, DialogFactory factory);
  bool PanelEntryAvailable(int entry) const;

  // Reads the database when it exists; set by start-up.
  std::function<void()> LoadIndex;
  // The data update check of the load step (its flag: automatic); empty until it exists.
  std::function<void(bool automatic)> DataUpdateCheck;

  // The load step: position and state, menu captions, title, the panel, the update check.
  void Load();

  // The panel: made and shown (placed as stored), or saved and removed.
  void ShowPanel();
  void UnloadPanel();
  MainPanel* Panel() const { return m_panel; }
  QMdiSubWindow* PanelWindow() const { return m_panelWindow; }

  // What a panel entry does.
  void RunEntry(int entry);
  // Shows a dialog made by a factory for panel entry `entry` (-1 for a menu entry). A dialog
  // opened from the panel unloads the panel, which comes back when the dialog closes.
  void OpenDialog(int entry, const QString& key, QWidget* dialog);
  // Lets the search dialog go (when the language or database changes, and at the close).
  void CloseSearchDialog();

  // Runs a job under the working dialog (see RunWithWorkingDialog).
  bool RunJob(const std::string& label, const std::function<void(Work&)>& job,
              bool showCancel = true);

  void OpenSite(const QString& hostAndPath);

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildMenu();
  void RefreshMenuAvailability();
  void PlacePanel();
  // Centres the panel again when the frame's area has changed size (the window system often
  // gives the frame its final size only after the panel was placed), as long as the panel still
  // stands where it was centred: a panel the user moved, or one at a stored place, stays.
  void KeepPanelCentred();
  void RunNotes();
  void OpenOptions();

  AppContext& m_ctx;
  ShellSession& m_session;
  SiteTablesAccess m_sites;
  QMdiArea* m_area;
  QPointer<MainPanel> m_panel;
  QPointer<QMdiSubWindow> m_panelWindow;
  std::map<int, DialogFactory> m_panelFactories;
  QMap<QString, DialogFactory> m_menuFactories;
  QMap<QString, QPointer<QWidget>> m_openDialogs;
  bool m_closed = false;
  bool m_panelCentred = false;
  QPoint m_panelCentredAt;
};

// Each subsystem's dialogs join the frame here.
void RegisterSubsystemDialogs(MainFrame& frame);

}  // namespace tessarin
