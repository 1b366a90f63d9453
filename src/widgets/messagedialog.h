#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace tessarin {

// The end-of-operation message box: the text, an icon and one button.
class MessageDialog final : public QDialog {
  Q_OBJECT
 public:
  MessageDialog(QWidget* parent, const QString& text, const QString& title, int icon);

 private:
  QLabel* m_text;
  QLabel* m_icon;
  QPushButton* m_ok;
};

}  // namespace tessarin
