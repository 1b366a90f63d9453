#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "layouts/layouts.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace tessarin {

class AppContext;
class Work;

// The simple layout dialog (Form19): every missing layout of one orientation, downloaded and
// installed (or only downloaded) in one go, with a running report.
class LayoutsDialog final : public FormDialog {
  Q_OBJECT
 public:
  LayoutsDialog(QWidget* parent, AppContext& ctx);
  ~LayoutsDialog() override;

  // Command1 and Command2; `folder` stands for the folder chooser's answer when not empty.
  void InstallAllMissing(bool install, const std::string& folder = {});
  void OpenExpert();  // Command3
  const LayoutPaths& Paths() const { return m_paths; }
  QString Report() const;

 private:
  void AddReport(const std::string& line);
  void SaveState() override;

  AppContext& m_ctx;
  LayoutPaths m_paths;
  QRadioButton* m_horizontal;
  QRadioButton* m_vertical;
  QPushButton* m_install;
  QPushButton* m_download;
  QPushButton* m_cancel;
  QPlainTextEdit* m_report;
  // The running job's progress and cancel state, while there is one.
  std::atomic<Work*> m_running{nullptr};
};

// The expert layout dialog (Form17): the whole list, sorted and filtered, with the details and
// preview of a layout, and the download of chosen ones.
class LayoutsExpertDialog final : public FormDialog {
  Q_OBJECT
 public:
  LayoutsExpertDialog(QWidget* parent, AppContext& ctx);
  ~LayoutsExpertDialog() override;

  // Fetches and loads the list and fills List1 (the opening does it once shown).
  void LoadList();
  void Sort(int choice);                        // Combo1
  void Filter(int choice);                      // Combo2
  void ShowDetails(int row);                    // a click in List1
  void ToggleMissing();                         // Command6
  void DownloadChosen(bool unzip);              // Command2, Command3
  void SaveList(const std::string& file = {});  // Command4; `file` stands for the chooser
  const std::vector<std::string>& Lines() const { return m_lines; }
  const LayoutPaths& Paths() const { return m_paths; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void FillList();
  void ShowPreview(const std::string& line);
  void ReadFolders();
  void SaveState() override;

  AppContext& m_ctx;
  LayoutPaths m_paths;
  std::vector<std::string> m_lines;
  // The line behind each row of List1 (emptied lines have no row).
  std::vector<size_t> m_rows;
  QLineEdit* m_layoutFolder;
  QLineEdit* m_downloadFolder;
  QComboBox* m_sort;
  QComboBox* m_filter;
  QListWidget* m_list;
  QPlainTextEdit* m_details;
  QCheckBox* m_preview;
  QCheckBox* m_deleteZip;
  QLabel* m_picture;
  QProgressBar* m_gauge;
  QPushButton* m_missing;
  bool m_showingMissing = false;
  bool m_loaded = false;
};

}  // namespace tessarin
