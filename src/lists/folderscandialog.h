#pragma once

#include <string>

#include "lists/initools.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QLineEdit;
class QRadioButton;

namespace tessarin {

class AppContext;

// The folder scan window (Form20): what a folder holds, files of one extension or subfolders,
// written as an .ini list.
class FolderScanDialog final : public FormDialog {
  Q_OBJECT
 public:
  FolderScanDialog(QWidget* parent, AppContext& ctx);
  ~FolderScanDialog() override;

  // Command2; `destination` stands for the save chooser's answer when not empty.
  void Scan(const std::string& destination = {});
  // Command1; `folder` stands for the folder chooser's answer when not empty.
  void BrowseFolder(const std::string& folder = {});
  FolderScanOptions Options() const;

 private:
  void SaveState() override;

  AppContext& m_ctx;
  QLineEdit* m_folder;
  QLineEdit* m_extension;
  QRadioButton* m_subfolders;
  QRadioButton* m_files;
  QCheckBox* m_removeExtension;
  QCheckBox* m_addAfter;
  QLineEdit* m_after;
  QCheckBox* m_addBefore;
  QLineEdit* m_before;
};

// Opens the folder scan window over `parent` (the list window's Scan Dir button).
void OpenFolderScanDialog(QWidget* parent, AppContext& ctx);

}  // namespace tessarin
