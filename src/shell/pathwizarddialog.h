#pragma once

#include <QDialog>
#include <memory>

class QLabel;
class QLineEdit;
class QPushButton;

namespace tessarin {

class AppContext;
class PathWizard;
struct WizardEnvironment;

// The path wizard of a first start: the emulator, then the rom and picture folders.
class PathWizardDialog final : public QDialog {
  Q_OBJECT
 public:
  PathWizardDialog(QWidget* parent, AppContext& ctx);
  PathWizardDialog(QWidget* parent, AppContext& ctx, const WizardEnvironment& env);
  ~PathWizardDialog() override;

 private:
  void Build();
  void Show();
  void OnContinue();
  void OnPrevious();
  void OnBrowse();

  AppContext& m_ctx;
  std::unique_ptr<PathWizard> m_wizard;
  QLabel* m_question;
  QLineEdit* m_text;
  QLabel* m_image1;
  QLabel* m_image2;
  QPushButton* m_continue;
  QPushButton* m_close;
  QPushButton* m_browse;
  QPushButton* m_previous;
};

}  // namespace tessarin
