#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace tessarin {

class AppContext;

// The language chooser of a first start: English, French, the language files found, or
// "Other..." to write a template for a new translation.
class LanguageDialog final : public QDialog {
  Q_OBJECT
 public:
  LanguageDialog(QWidget* parent, AppContext& ctx);

 protected:
  void accept() override;

 private:
  AppContext& m_ctx;
  QLabel* m_label;
  QComboBox* m_combo;
  QPushButton* m_ok;
};

}  // namespace tessarin
