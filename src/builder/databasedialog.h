#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "builder/downloadfiles.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace tessarin {

class AppContext;
class DatabasePaths;
class HeldMessagesUi;
class Work;

// The database window (Form3): a menu page and five pages behind it, to create and update the
// database, download data files and set the paths of every data file. All that it does is in
// databaseops.h, databasedialoglogic.h and downloadfiles.h; this window gathers the choices,
// runs the long jobs under the working dialog and shows what they gave.
class DatabaseDialog final : public FormDialog {
  Q_OBJECT
 public:
  static constexpr int kPageCount = 6;
  static constexpr int kDownloadLines = 11;

  DatabaseDialog(QWidget* parent, AppContext& ctx, DownloadListAccess downloads);
  ~DatabaseDialog() override;

  // Hides every page and shows Frame1(page).
  void ShowPage(int page);
  int CurrentPage() const;

  // The buttons' actions, callable without a click.
  void CompleteCreation();       // Command11(0)
  void UpdateFromFiles();        // Command11(1)
  void ScanRoms();               // Command11(2)
  void UpdateSelected();         // Command9
  void DownloadFiles();          // Command6
  void SavePathsAndLeave();      // the closing buttons of the path pages
  void SaveDownloadsAndLeave();  // Command7

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* MakeMenuPage();
  QWidget* MakeUpdatePage();
  QWidget* MakeDownloadPage();
  QWidget* MakePathPage(int firstBox, int lastBox, bool first);
  QWidget* MakeSelectionPage();
  QWidget* MakePathRow(int box);
  void RunMenuEntry(int entry);
  void RefreshUpdateButtons();
  void FillPathBoxes();
  void TakePathBoxes();
  void BrowsePath(int box);
  std::vector<DownloadLine> CurrentDownloadLines() const;
  // Shows Label3 with `message` in place of the page (0: leaves the page as it is), runs `job`
  // under the working dialog with `held` between it and the user, then shows the page again and
  // the messages the job gave. Gives true when the job wasn't cancelled.
  bool RunJob(int labelMessage, const std::string& workingLabel, HeldMessagesUi& held,
              const std::function<void(Work&)>& job);
  void SaveState() override;

  AppContext& m_ctx;
  DownloadListAccess m_downloadAccess;
  std::unique_ptr<DatabasePaths> m_paths;
  std::vector<DownloadLine> m_downloadLines;
  QStackedWidget* m_stack = nullptr;
  std::array<QWidget*, kPageCount> m_pages{};
  QLabel* m_busyLabel = nullptr;  // Label3
  std::array<QPushButton*, 5> m_updateButtons{};
  std::array<QLineEdit*, 12> m_pathBoxes{};
  QComboBox* m_combo = nullptr;
  std::vector<QCheckBox*> m_downloadChecks;
  std::vector<QLabel*> m_downloadNames;
  std::vector<QLineEdit*> m_downloadAddresses;
  QListWidget* m_selection = nullptr;
  QLabel* m_report = nullptr;  // Label5
  std::array<QWidget*, 5> m_menuPictures{};
  std::array<QPushButton*, 5> m_menuLabels{};
  int m_page = 0;
};

}  // namespace tessarin
