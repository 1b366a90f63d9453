#include "shell/aboutdialog.h"

#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSysInfo>
#include <QUrl>
#include <QVBoxLayout>
#include <QtGlobal>

#include "app/context.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"

namespace tessarin {

AboutDialog::AboutDialog(QWidget* parent, AppContext& ctx) : QDialog(parent) {
  setObjectName(QStringLiteral("frmAbout"));
  setWindowTitle(ToQt(ctx.messages.Lng(19)) + QStringLiteral("Tessarin"));
  setWindowIcon(AppIcon());
  const int line = fontMetrics().height();
  auto* picture = new QLabel(this);
  picture->setObjectName(QStringLiteral("picIcon"));
  picture->setPixmap(StickPicture(line * 5, devicePixelRatioF()));
  picture->setAlignment(Qt::AlignTop);

  auto* title = new QLabel(QStringLiteral("Tessarin"), this);
  title->setObjectName(QStringLiteral("lblTitle"));
  QFont big = title->font();
  big.setPointSizeF(big.pointSizeF() * 1.8);
  big.setBold(true);
  title->setFont(big);
  auto* version = new QLabel(QStringLiteral("Version ") + ToQt(AppVersion()), this);
  version->setObjectName(QStringLiteral("lblVersion"));
  auto* database = new QLabel(this);
  database->setObjectName(QStringLiteral("lblDatabase"));
  database->setText(
      ToQt(ctx.messages.Lng(20)) + QStringLiteral(" : ") +
      (ctx.store.DatabaseVersion.empty() ? QStringLiteral("-") : ToQt(ctx.store.DatabaseVersion)));
  database->setWordWrap(true);
  auto* description = new QLabel(
      QStringLiteral("A companion for the MAME arcade emulator: game database, search, lists and "
                     "web pages."),
      this);
  description->setObjectName(QStringLiteral("lblDescription"));
  description->setWordWrap(true);
  const QString help = QUrl::fromLocalFile(ToQt(ctx.AppFolder() + "HTML/help.htm")).toString();
  auto* freeware = new QLabel(QStringLiteral("This is a freeware. Visit <a href=\"%1\">%2</a>")
                                  .arg(help, QStringLiteral("Tessarin's help page")),
                              this);
  freeware->setObjectName(QStringLiteral("lblFreeware"));
  freeware->setOpenExternalLinks(true);
  auto* disclaimer = new QLabel(
      QStringLiteral("Tessarin is provided as it is, without warranty of any kind. MAME is a "
                     "trademark of its owners; Tessarin is not part of the MAME project."),
      this);
  disclaimer->setObjectName(QStringLiteral("lblDisclaimer"));
  disclaimer->setWordWrap(true);
  QFont small = disclaimer->font();
  small.setPointSizeF(small.pointSizeF() * 0.9);
  disclaimer->setFont(small);
  for (QLabel* l : {description, disclaimer, database}) {
    l->setMinimumWidth(fontMetrics().averageCharWidth() * 52);
  }

  auto* ok = new QPushButton(QStringLiteral("OK"), this);
  ok->setObjectName(QStringLiteral("cmdOK"));
  ok->setDefault(true);
  auto* system = new QPushButton(ToQt(ctx.messages.Lng(21)), this);
  system->setObjectName(QStringLiteral("cmdSysInfo"));
  system->setAutoDefault(false);
  connect(ok, &QPushButton::clicked, this, &QDialog::accept);
  AppContext* context = &ctx;
  connect(system, &QPushButton::clicked, this, [this, context] {
    ShowMessage(parentWidget(), *context, false, FromQt(SystemFacts(*context)),
                FromQt(windowTitle()), 64);
  });

  auto* text = new QVBoxLayout;
  text->addWidget(title);
  text->addWidget(version);
  text->addWidget(database);
  text->addSpacing(line / 2);
  text->addWidget(description);
  text->addWidget(freeware);
  text->addSpacing(line / 2);
  text->addWidget(disclaimer);
  auto* top = new QHBoxLayout;
  top->addWidget(picture, 0, Qt::AlignTop);
  top->addSpacing(fontMetrics().averageCharWidth() * 2);
  top->addLayout(text, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(system);
  buttons->addWidget(ok);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top);
  layout->addSpacing(line / 2);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString AboutDialog::SystemFacts(const AppContext& ctx) {
  QStringList facts;
  const QString product = QSysInfo::prettyProductName();
  if (!product.isEmpty()) facts << product;
  const QString kernel = QSysInfo::kernelType() + QLatin1Char(' ') + QSysInfo::kernelVersion();
  if (!QSysInfo::kernelType().isEmpty()) facts << kernel;
  if (!QSysInfo::currentCpuArchitecture().isEmpty()) {
    facts << QStringLiteral("CPU: ") + QSysInfo::currentCpuArchitecture();
  }
  if (facts.isEmpty()) {
    return ctx.messages.LanguageNumber == Messages::kFrench
               ? QStringLiteral(
                     "Les informations syst\u00e8me ne sont pas disponibles "
                     "actuellement")
               : QStringLiteral("System information not available for the moment");
  }
  facts << QStringLiteral("Qt ") + QString::fromLatin1(qVersion());
  facts << QStringLiteral("Tessarin ") + ToQt(AppVersion());
  return facts.join(QLatin1Char('|'));
}

}  // namespace tessarin
