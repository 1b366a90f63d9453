#pragma once

#include <functional>
#include <string>

#include "images/imageorganiser.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;

namespace tessarin {

class AppContext;

// The image organiser (Form10): page 0 explains the tool and starts one of its two jobs, page 1
// chooses the kind and the folders and runs the job under the working dialog. All it does is in
// imageorganiser.h; this window holds the instance state and keeps the settings.
class ImageOrganiserDialog final : public FormDialog {
  Q_OBJECT
 public:
  ImageOrganiserDialog(QWidget* parent, AppContext& ctx);
  ~ImageOrganiserDialog() override;

  // The buttons' actions, callable without a click.
  void StartJob(int index);       // Command5(0) copy or move, Command5(1) delete
  void RunJob();                  // Command3
  void BackToStart();             // Command4
  void ChooseKind(int position);  // Combo1, 1 to 6; 0 for none

  const ImageOrganiserState& State() const { return m_state; }
  int CurrentPage() const;
  // The folder chooser; tests put their own answer here. Gets the start folder and the title.
  std::function<std::string(const std::string& start, const std::string& title)> browseFolder;

 protected:
  void done(int result) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SaveState() override;
  void ShowPage(int page);
  bool ReadRomFolder();
  void BrowseInto(QLineEdit* box, int message, bool source);
  int Kind() const;
  void TakeFolderTexts();

  AppContext& m_ctx;
  ImageOrganiserState m_state;
  QWidget* m_pages[2];
  QCheckBox* m_chk1;
  QLabel* m_chk1Text;
  QCheckBox* m_chk2;
  QLabel* m_chk2Text;
  QCheckBox* m_chk3;
  QLabel* m_chk3Text;
  QLabel* m_label5;
  QLabel* m_label4;
  QComboBox* m_combo;
  QLineEdit* m_source;
  QLineEdit* m_destination;
  QPushButton* m_browseSource;
  QPushButton* m_browseDestination;
  QPushButton* m_run;
};

}  // namespace tessarin
