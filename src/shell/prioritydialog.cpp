#include "shell/prioritydialog.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "shell/priority.h"
#include "shell/startup.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

PriorityDialog::PriorityDialog(QWidget* parent, AppContext& ctx, ShellSession& session)
    : QDialog(parent), m_ctx(ctx), m_session(session) {
  setObjectName(QStringLiteral("Form14"));
  QString title = ToQt(ctx.messages.Lng(354));
  title.remove(QLatin1Char('&'));
  setWindowTitle(title);
  setWindowIcon(AppIcon());
  auto* label = new QLabel(MessageText(ctx.messages.Lng(358)), this);
  label->setObjectName(QStringLiteral("Label1"));
  label->setWordWrap(true);
  label->setMinimumWidth(fontMetrics().averageCharWidth() * 40);

  auto* grid = new QGridLayout;
  grid->setColumnStretch(1, 1);
  for (int i = 0; i < 3; ++i) {
    const size_t k = static_cast<size_t>(i);
    m_radio[k] = new QLabel(this);
    m_radio[k]->setObjectName(QStringLiteral("Radio_%1").arg(i));
    m_text[k] = new QLabel(ToQt(ctx.messages.Lng(355 + i)), this);
    m_text[k]->setObjectName(QStringLiteral("RadioTxt_%1").arg(i));
    // The text takes the keyboard focus, so the rows can be chosen without a mouse.
    m_text[k]->setFocusPolicy(Qt::StrongFocus);
    for (QLabel* w : {m_radio[k], m_text[k]}) {
      w->setCursor(Qt::PointingHandCursor);
      w->installEventFilter(this);
    }
    grid->addWidget(m_radio[k], i, 0);
    grid->addWidget(m_text[k], i, 1);
  }
  auto* close = new QPushButton(QStringLiteral("OK"), this);
  close->setObjectName(QStringLiteral("CommandClose"));
  close->setDefault(true);
  connect(close, &QPushButton::clicked, this, &QDialog::accept);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(close);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(grid);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  ShowChoice();
}

void PriorityDialog::Choose(int index) {
  m_session.PriorityChoice = index;
  ApplyPriority(m_ctx.log, index);
  ShowChoice();
}

void PriorityDialog::ShowChoice() {
  for (int i = 0; i < 3; ++i) {
    QLabel* radio = m_radio[static_cast<size_t>(i)];
    SetTag(radio, i == m_session.PriorityChoice ? QStringLiteral("1") : QString());
    SetCheckPicture(radio, true);
  }
}

bool PriorityDialog::eventFilter(QObject* watched, QEvent* event) {
  for (int i = 0; i < 3; ++i) {
    const size_t k = static_cast<size_t>(i);
    if (watched != m_radio[k] && watched != m_text[k]) continue;
    if (event->type() == QEvent::MouseButtonRelease) {
      Choose(i);
      return true;
    }
    if (event->type() == QEvent::KeyPress) {
      const int key = static_cast<QKeyEvent*>(event)->key();
      if (key == Qt::Key_Space) {
        Choose(i);
        return true;
      }
      if (key == Qt::Key_Up || key == Qt::Key_Down) {
        const int next = (i + (key == Qt::Key_Down ? 1 : 2)) % 3;
        m_text[static_cast<size_t>(next)]->setFocus();
        return true;
      }
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace tessarin
