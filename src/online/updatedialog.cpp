#include "online/updatedialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/settings.h"
#include "online/dataupdate.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

void RunDataUpdateCheck(QWidget* parent, AppContext& ctx, bool silentAsk,
                        const std::function<void()>& reloaded) {
  // The first question comes before the working dialog, so that a "no" shows nothing more.
  if (!silentAsk && !ctx.Ui().AskYesNo(ctx.messages.Lng(386), {}, Icon::Question)) return;
  QObject* home = parent ? static_cast<QObject*>(parent) : qApp;
  DataUpdateHooks hooks;
  hooks.internetAllowed = true;
  hooks.showNewVersion = [&ctx, parent, home](const std::string&) {
    QMetaObject::invokeMethod(
        home,
        [&ctx, parent] {
          NewVersionDialog notice(parent, ctx);
          notice.exec();
        },
        Qt::BlockingQueuedConnection);
  };
  hooks.databaseReloaded = [home, reloaded](const std::string&) {
    if (reloaded) QMetaObject::invokeMethod(home, reloaded, Qt::QueuedConnection);
  };
  RunWithWorkingDialog(
      parent, ctx, "Cheking data update...",
      [&](Work& work) { CheckDataUpdate(ctx, work, silentAsk, false, hooks); },
      /*showCancel=*/false);
}

UpdateDialog::UpdateDialog(QWidget* parent, AppContext& ctx, std::function<void()> reloaded)
    : FormDialog(parent), m_ctx(ctx), m_reloaded(std::move(reloaded)) {
  setObjectName(QStringLiteral("Form16"));
  setWindowTitle(QStringLiteral("Data update"));
  m_check = new QCheckBox(this);
  m_check->setObjectName(QStringLiteral("Chk"));
  m_label1 = new QLabel(MessageText(ctx.messages.Lng(384)), this);
  m_label1->setObjectName(QStringLiteral("Label1"));
  m_label1->setWordWrap(true);
  m_label1->setCursor(Qt::PointingHandCursor);
  m_label1->installEventFilter(this);
  auto* label2 = new QLabel(MessageText(ctx.messages.Lng(385)), this);
  label2->setObjectName(QStringLiteral("Label2"));
  label2->setWordWrap(true);
  label2->setMinimumWidth(fontMetrics().averageCharWidth() * 55);
  auto* check = new QPushButton(QStringLiteral("&Check now"), this);
  check->setObjectName(QStringLiteral("Command1"));
  auto* close = new QPushButton(ToQt(ctx.messages.Lng(78)), this);
  close->setObjectName(QStringLiteral("Command2"));
  close->setAutoDefault(false);

  auto* row = new QHBoxLayout;
  row->addWidget(m_check, 0, Qt::AlignTop);
  row->addWidget(m_label1, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(check);
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(row);
  layout->addWidget(label2);
  layout->addLayout(buttons);

  m_check->setChecked(ctx.settings.InfRead("ChckDataUpdate") == "1");
  connect(check, &QPushButton::clicked, this, &UpdateDialog::CheckNow);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  adjustSize();
  CenterForm(this, parent);
}

UpdateDialog::~UpdateDialog() { Unload(); }

void UpdateDialog::CheckNow() { RunDataUpdateCheck(this, m_ctx, false, m_reloaded); }

void UpdateDialog::SaveState() {
  m_ctx.settings.InfWrite("ChckDataUpdate", m_check->isChecked() ? "1" : "");
}

bool UpdateDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_label1 && event->type() == QEvent::MouseButtonRelease) {
    m_check->toggle();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

NewVersionDialog::NewVersionDialog(QWidget* parent, AppContext& ctx) : QDialog(parent) {
  setObjectName(QStringLiteral("Form18"));
  setWindowTitle(QStringLiteral("New version available"));
  setModal(true);
  auto* label1 = new QLabel(
      QStringLiteral("Your version of Tessarin is ") + ToQt(AppVersion()) +
          QStringLiteral(". It seems that a new version is available. Please visit the link "
                         "below to download new version :"),
      this);
  label1->setObjectName(QStringLiteral("Label1"));
  label1->setWordWrap(true);
  label1->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
  const QString address = ToQt(HomePageAddress(ctx.settings));
  auto* label2 =
      new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(address.toHtmlEscaped()), this);
  label2->setObjectName(QStringLiteral("Label2"));
  label2->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  connect(label2, &QLabel::linkActivated, this,
          [&ctx](const QString& link) { ctx.Ui().OpenDocument(FromQt(link)); });
  auto* ok = new QPushButton(QStringLiteral("&Ok"), this);
  ok->setObjectName(QStringLiteral("Command1"));
  ok->setDefault(true);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(label1);
  layout->addWidget(label2);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(ok);
  layout->addLayout(buttons);
}

}  // namespace tessarin
