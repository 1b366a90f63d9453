#include "lists/listtoolsui.h"

#include <QAbstractButton>
#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>

#include "core/messages.h"

namespace tessarin {

namespace {

// Watches one label and passes a left click on to its button.
class ClickFilter final : public QObject {
 public:
  ClickFilter(QLabel* label, QAbstractButton* target) : QObject(label), m_target(target) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && m_target->isEnabled()) {
      m_target->click();
      m_target->setFocus();
      return true;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  QAbstractButton* m_target;
};

}  // namespace

QPushButton* BrowseButton(QWidget* parent, const char* name) {
  auto* button = NamedControl<QPushButton>(parent, name, QStringLiteral("..."));
  button->setAutoDefault(false);
  button->setFixedWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("...")) +
                        button->fontMetrics().averageCharWidth() * 4);
  return button;
}

void ClickThrough(QLabel* label, QAbstractButton* target) {
  label->installEventFilter(new ClickFilter(label, target));
  label->setBuddy(target);
}

}  // namespace tessarin
