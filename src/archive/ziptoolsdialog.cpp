#include "archive/ziptoolsdialog.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "archive/ziptools.h"
#include "archive/zipworkerinstall.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  // Enter in a folder box must not start a job that moves whole rom folders.
  button->setAutoDefault(false);
  return button;
}

}  // namespace

ZipToolsDialog::ZipToolsDialog(QWidget* parent, AppContext& ctx) : FormDialog(parent), m_ctx(ctx) {
  setObjectName(QStringLiteral("Form9"));
  QString title = ToQt(ctx.messages.Lng(279)) + QStringLiteral(" / ") + ToQt(ctx.messages.Lng(280));
  title.remove(QLatin1Char('&'));
  setWindowTitle(title);

  auto* explanation = new QLabel(MessageText(ctx.messages.Lng(275)), this);
  explanation->setObjectName(QStringLiteral("Label1"));
  explanation->setWordWrap(true);
  explanation->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
  auto* sourceLabel = new QLabel(ToQt(ctx.messages.Lng(276)), this);
  sourceLabel->setObjectName(QStringLiteral("Label2"));
  auto* destinationLabel = new QLabel(ToQt(ctx.messages.Lng(277)), this);
  destinationLabel->setObjectName(QStringLiteral("Label3"));
  m_source = new QLineEdit(this);
  m_source->setObjectName(QStringLiteral("Text1"));
  m_destination = new QLineEdit(this);
  m_destination->setObjectName(QStringLiteral("Text2"));
  sourceLabel->setBuddy(m_source);
  destinationLabel->setBuddy(m_destination);
  auto* browseSource = MakeButton(this, QStringLiteral("Command4"), QStringLiteral("..."));
  auto* browseDestination = MakeButton(this, QStringLiteral("Command5"), QStringLiteral("..."));

  m_delete = new QCheckBox(this);
  m_delete->setObjectName(QStringLiteral("Chk1"));
  m_deleteText = new QLabel(ToQt(ctx.messages.Lng(278)), this);
  m_deleteText->setObjectName(QStringLiteral("Chk1Txt"));
  m_deleteText->setCursor(Qt::PointingHandCursor);
  m_deleteText->installEventFilter(this);
  // The box keeps its state in its Tag too, as every check box of the program does.
  connect(m_delete, &QCheckBox::toggled, this,
          [this](bool on) { SetTag(m_delete, on ? QStringLiteral("1") : QString()); });

  m_zipAll = MakeButton(this, QStringLiteral("Command1"), ToQt(ctx.messages.Lng(279)));
  m_unzipAll = MakeButton(this, QStringLiteral("Command2"), ToQt(ctx.messages.Lng(280)));
  auto* close = MakeButton(this, QStringLiteral("Command3"), ToQt(ctx.messages.Lng(78)));

  // Each caption stands above its box, so that the boxes take the whole width of the window
  // and a long path stays readable; the browse buttons are only as wide as their text.
  const int em = fontMetrics().averageCharWidth();
  for (QPushButton* browse : {browseSource, browseDestination}) {
    browse->setMaximumWidth(fontMetrics().horizontalAdvance(browse->text()) + em * 4);
  }
  m_source->setMinimumWidth(em * 50);
  m_destination->setMinimumWidth(em * 50);
  auto* grid = new QGridLayout;
  grid->addWidget(sourceLabel, 0, 0, 1, 2);
  grid->addWidget(m_source, 1, 0);
  grid->addWidget(browseSource, 1, 1);
  grid->addWidget(destinationLabel, 2, 0, 1, 2);
  grid->addWidget(m_destination, 3, 0);
  grid->addWidget(browseDestination, 3, 1);
  grid->setColumnStretch(0, 1);
  auto* check = new QHBoxLayout;
  check->addWidget(m_delete);
  check->addWidget(m_deleteText);
  check->addStretch();
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_zipAll);
  buttons->addWidget(m_unzipAll);
  buttons->addStretch();
  buttons->addWidget(close);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(explanation);
  layout->addLayout(grid);
  layout->addLayout(check);
  layout->addLayout(buttons);

  setTabOrder(m_source, browseSource);
  setTabOrder(browseSource, m_destination);
  setTabOrder(m_destination, browseDestination);
  setTabOrder(browseDestination, m_delete);
  setTabOrder(m_delete, m_zipAll);
  setTabOrder(m_zipAll, m_unzipAll);
  setTabOrder(m_unzipAll, close);

  connect(m_zipAll, &QPushButton::clicked, this, &ZipToolsDialog::ZipAll);
  connect(m_unzipAll, &QPushButton::clicked, this, &ZipToolsDialog::UnzipAll);
  connect(close, &QPushButton::clicked, this, &QDialog::close);
  connect(browseSource, &QPushButton::clicked, this, [this] { Browse(m_source); });
  connect(browseDestination, &QPushButton::clicked, this, [this] { Browse(m_destination); });

  // Load: the stored folders and box, the worker put in place, the stored position.
  const ZipToolsState state = LoadZipToolsState(ctx.settings);
  m_delete->setChecked(state.deleteWhenDone);
  SetTag(m_delete, state.deleteWhenDone ? QStringLiteral("1") : QString());
  m_source->setText(ToQt(state.source));
  m_destination->setText(ToQt(state.destination));
  ExtractZipWorker(ctx.AppFolder());
  m_zipAll->setEnabled(!FindZipWorker(ctx.AppFolder()).empty());
  adjustSize();
  const int top = ctx.settings.InfReadNumber("Frm9Top");
  const int left = ctx.settings.InfReadNumber("Frm9Left");
  if (top < 0 || left < 0 || !ApplyStoredPosition(this, left, top)) CenterForm(this, parent);
}

ZipToolsDialog::~ZipToolsDialog() { Unload(); }

void ZipToolsDialog::SaveState() {
  m_ctx.settings.InfWrite("Frm9Top", pos().y());
  m_ctx.settings.InfWrite("Frm9Left", pos().x());
  SaveZipToolsState(m_ctx.settings, {FromQt(m_source->text()), FromQt(m_destination->text()),
                                     m_delete->isChecked()});
}

bool ZipToolsDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_deleteText && event->type() == QEvent::MouseButtonRelease) {
    m_delete->toggle();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void ZipToolsDialog::Browse(QLineEdit* box) {
  const std::string chosen = BrowseFolderDialog(this, FromQt(box->text()), {}, true);
  if (!chosen.empty()) box->setText(ToQt(chosen));
}

void ZipToolsDialog::ZipAll() {
  ZipToolsState state{FromQt(m_source->text()), FromQt(m_destination->text()),
                      m_delete->isChecked()};
  if (m_source->text().trimmed().isEmpty() || m_destination->text().trimmed().isEmpty()) return;
  ZipToolsServices services{m_ctx.messages, m_ctx.log, m_ctx.Ui(), m_ctx.AppFolder(), {}, {}, {}};
  setEnabled(false);
  RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(281),
                       [&](Work& work) { ZipAllFolders(services, work, state); });
  setEnabled(true);
  m_source->setText(ToQt(state.source));
  m_destination->setText(ToQt(state.destination));
  m_zipAll->setEnabled(!FindZipWorker(m_ctx.AppFolder()).empty());
}

void ZipToolsDialog::UnzipAll() {
  ZipToolsState state{FromQt(m_source->text()), FromQt(m_destination->text()),
                      m_delete->isChecked()};
  if (m_source->text().trimmed().isEmpty() || m_destination->text().trimmed().isEmpty()) return;
  ZipToolsServices services{m_ctx.messages, m_ctx.log, m_ctx.Ui(), m_ctx.AppFolder(), {}, {}, {}};
  setEnabled(false);
  RunWithWorkingDialog(this, m_ctx, "Unzipping",
                       [&](Work& work) { UnzipAllZips(services, work, state, m_unzipError); });
  setEnabled(true);
  m_source->setText(ToQt(state.source));
  m_destination->setText(ToQt(state.destination));
}

}  // namespace tessarin
