#pragma once

#include <string>

#include "widgets/formdialog.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tessarin {

class AppContext;

// The zip tools (Form9): zip every subfolder of a rom folder through the zip worker, or unzip
// every zip of a folder into subfolders, and delete the sources when done. All that it does is
// in ziptools.h; this window gathers the two folders and the box, runs the job under the
// working dialog and keeps its settings.
class ZipToolsDialog final : public FormDialog {
  Q_OBJECT
 public:
  ZipToolsDialog(QWidget* parent, AppContext& ctx);
  ~ZipToolsDialog() override;

  // The buttons' actions, callable without a click.
  void ZipAll();    // Command1
  void UnzipAll();  // Command2
  // The last unzip error of this dialog's runs; it is kept, not shown.
  const std::string& UnzipError() const { return m_unzipError; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SaveState() override;
  void Browse(QLineEdit* box);

  AppContext& m_ctx;
  QLineEdit* m_source;
  QLineEdit* m_destination;
  QCheckBox* m_delete;
  QLabel* m_deleteText;
  QPushButton* m_zipAll;
  QPushButton* m_unzipAll;
  std::string m_unzipError;
};

}  // namespace tessarin
