#include "widgets/workingdialog.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/guard.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/windowrules.h"

namespace tessarin {

WorkingDialog::WorkingDialog(QWidget* parent, AppContext& ctx, Work& work, const QString& label,
                             bool showCancel)
    : QDialog(parent), m_ctx(ctx), m_work(work), m_baseLabel(label) {
  setObjectName(QStringLiteral("FrmWorking"));
  setWindowTitle(ToQt(ctx.messages.Lng(26)));
  if (parent) setWindowIcon(parent->window()->windowIcon());
  setWindowModality(Qt::ApplicationModal);
  const int em = fontMetrics().averageCharWidth();
  const int line = fontMetrics().height();

  m_picture = new QLabel(this);
  m_picture->setObjectName(QStringLiteral("Image1"));
  m_picture->setPixmap(StickPicture(line * 3, devicePixelRatioF()));
  m_picture->setAlignment(Qt::AlignTop);

  m_label = new QLabel(label, this);
  m_label->setObjectName(QStringLiteral("Label1"));
  m_label->setWordWrap(true);
  m_label->setMinimumWidth(em * 46);
  m_label->setMinimumHeight(line * 2);
  m_label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);

  m_progress = new QLabel(this);
  m_progress->setObjectName(QStringLiteral("Image2"));
  m_progress->setFixedHeight(qMax(14, line));
  m_progress->setMinimumWidth(em * 46);
  m_progress->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

  m_cancel = new QPushButton(ToQt(ctx.messages.Lng(27)), this);
  m_cancel->setObjectName(QStringLiteral("Command1"));
  m_cancel->setVisible(showCancel);
  m_cancel->setAutoDefault(false);
  connect(m_cancel, &QPushButton::clicked, this, &WorkingDialog::AskCancel);

  auto* text = new QVBoxLayout;
  text->addWidget(m_label);
  text->addSpacing(line / 2);
  text->addWidget(m_progress);
  auto* top = new QHBoxLayout;
  top->addWidget(m_picture);
  top->addSpacing(em * 2);
  top->addLayout(text, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_cancel);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);

  m_timer = new QTimer(this);
  m_timer->setObjectName(QStringLiteral("Timer1"));
  m_timer->setInterval(kTickMilliseconds);
  connect(m_timer, &QTimer::timeout, this, &WorkingDialog::Tick);
  // The item name follows the job more closely than the picture does.
  m_statusTimer = new QTimer(this);
  m_statusTimer->setInterval(200);
  connect(m_statusTimer, &QTimer::timeout, this, &WorkingDialog::RefreshStatus);

  // Read now, before the job's thread starts: the settings are not shared across threads.
  m_storedTop = ctx.settings.InfReadNumber("FrmWorkTop");
  m_storedLeft = ctx.settings.InfReadNumber("FrmWorkLeft");
  setCursor(Qt::BusyCursor);
  m_cancel->setCursor(Qt::ArrowCursor);
  adjustSize();
  SetProgressPicture(m_progress, 0);
}

WorkingDialog::~WorkingDialog() {
  m_ctx.settings.InfWrite("FrmWorkTop", pos().y());
  m_ctx.settings.InfWrite("FrmWorkLeft", pos().x());
}

void WorkingDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  if (!m_placed) {
    m_placed = true;
    PlaceOnLoad();
    SetProgressPicture(m_progress, 0);
    m_timer->start();
    m_statusTimer->start();
  }
}

void WorkingDialog::PlaceOnLoad() {
  const int top = m_storedTop;
  const int left = m_storedLeft;
  QPoint place = pos();
  if (WorkingPositionApplies(left)) place.setX(left);
  if (WorkingPositionApplies(top)) place.setY(top);
  const bool stored = WorkingPositionApplies(left) || WorkingPositionApplies(top);
  if (m_ctx.FirstRun || !stored || !ApplyStoredPosition(this, place.x(), place.y())) {
    CenterForm(this, parentWidget() ? parentWidget()->window() : nullptr);
  }
  // Keep the right edge on the screen.
  if (QScreen* screen = this->screen()) {
    const QRect area = screen->availableGeometry();
    if (frameGeometry().right() > area.right()) {
      move(area.right() - frameGeometry().width() + 1, y());
    }
  }
}

void WorkingDialog::Tick() {
  const QString title = ToQt(AdvanceWorkingTick(m_tick, m_ctx.messages.Lng(26)));
  setWindowTitle(title);
  SetProgressPicture(m_progress,
                     WorkingPercent(m_work.ProgressValue.load(), m_work.ProgressMax.load()));
}

int WorkingDialog::ProgressFrame() const { return m_progress->property("ProgressFrame").toInt(); }

void WorkingDialog::RefreshStatus() {
  const std::string status = m_work.Status();
  const QString text = status.empty() ? m_baseLabel : ToQt(status);
  if (m_label->text() != text) m_label->setText(text);
}

void WorkingDialog::AskCancel() {
  if (m_finished) return;
  if (m_ctx.Ui().AskYesNo(m_ctx.messages.Lng(311), m_ctx.messages.Lng(312), Icon::Question)) {
    m_work.CancelRequested = true;
  }
}

void WorkingDialog::Finish() {
  m_finished = true;
  m_timer->stop();
  m_statusTimer->stop();
  done(QDialog::Accepted);
}

void WorkingDialog::reject() {
  // Escape asks like the button does; the dialog goes only when the job has ended.
  if (m_finished) {
    QDialog::reject();
    return;
  }
  if (m_cancel->isVisible()) AskCancel();
}

void WorkingDialog::closeEvent(QCloseEvent* event) {
  if (m_finished) {
    event->accept();
    return;
  }
  event->ignore();
  if (m_cancel->isVisible()) AskCancel();
}

bool RunWithWorkingDialog(QWidget* parent, AppContext& ctx, const std::string& label,
                          std::function<void(Work&)> job, bool showCancel) {
  Work work;
  work.Reset();
  UserInterface& ui = ctx.Ui();
  ui.HoldJobMessages();
  WorkingDialog dialog(parent, ctx, work, ToQt(label), showCancel);
  // The job's own boundary, with a number of its own: the log then doesn't blame whichever
  // routine happened to set the tracking number last.
  QThread* thread =
      QThread::create([&] { RunGuarded(ctx.log, kWorkingJobTrackPoint, [&] { job(work); }); });
  QObject::connect(thread, &QThread::finished, &dialog, &WorkingDialog::Finish,
                   Qt::QueuedConnection);
  thread->start();
  dialog.exec();
  thread->wait();
  delete thread;
  ui.ReleaseJobMessages();
  return !work.CancelRequested.load();
}

}  // namespace tessarin
