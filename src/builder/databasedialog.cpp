#include "builder/databasedialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "builder/databasedialoglogic.h"
#include "builder/databaseops.h"
#include "core/settings.h"
#include "core/work.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QString Name(const char* base, int index) {
  return QString::fromLatin1(base) + QLatin1Char('_') + QString::number(index);
}

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  // Enter in a path box must not start a job that replaces the database.
  button->setAutoDefault(false);
  return button;
}

// A small button beside a box (browse, open the site), as wide as its text.
QToolButton* MakeToolButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QToolButton(parent);
  button->setObjectName(name);
  button->setText(text);
  button->setToolButtonStyle(Qt::ToolButtonTextOnly);
  return button;
}

QLabel* MakeLabel(QWidget* parent, const QString& name, const QString& text, bool wrap = false) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setWordWrap(wrap);
  label->setTextFormat(Qt::PlainText);
  return label;
}

QHBoxLayout* ButtonRow(std::initializer_list<QPushButton*> left, QPushButton* right) {
  auto* row = new QHBoxLayout;
  for (QPushButton* button : left) row->addWidget(button);
  row->addStretch();
  if (right) row->addWidget(right);
  return row;
}

}  // namespace

DatabaseDialog::DatabaseDialog(QWidget* parent, AppContext& ctx, DownloadListAccess downloads)
    : FormDialog(parent),
      m_ctx(ctx),
      m_downloadAccess(std::move(downloads)),
      m_paths(std::make_unique<DatabasePaths>()) {
  setObjectName(QStringLiteral("Form3"));
  setWindowTitle(ToQt(ctx.messages.Lng(20)));
  const int em = fontMetrics().averageCharWidth();

  // The opening: the paths, the download list and the state of the update buttons.
  m_paths->Load(ctx);
  if (m_downloadAccess.Load) m_downloadLines = m_downloadAccess.Load();
  m_downloadLines.resize(kDownloadLines);

  m_stack = new QStackedWidget(this);
  m_pages[0] = MakeMenuPage();
  m_pages[1] = MakeUpdatePage();
  m_pages[2] = MakeDownloadPage();
  m_pages[3] = MakePathPage(0, 5, true);
  m_pages[4] = MakePathPage(6, 11, false);
  m_pages[5] = MakeSelectionPage();
  for (int i = 0; i < kPageCount; ++i) {
    m_pages[static_cast<size_t>(i)]->setObjectName(Name("Frame1", i));
    m_stack->addWidget(m_pages[static_cast<size_t>(i)]);
  }
  m_busyLabel = MakeLabel(this, QStringLiteral("Label3"), QString(), true);
  // At the top, where the working dialog in the middle of the frame leaves it readable.
  m_busyLabel->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
  m_busyLabel->setMargin(em * 4);
  m_stack->addWidget(m_busyLabel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_stack);
  setMinimumWidth(em * 100);

  FillPathBoxes();
  RefreshUpdateButtons();
  SelectAllOnFocus(this);
  ShowPage(0);

  adjustSize();
  const int top = ctx.settings.InfReadNumber("Form3Top");
  const int left = ctx.settings.InfReadNumber("Form3Left");
  if (top < 0 || left < 0 || !ApplyStoredPosition(this, left, top)) CenterForm(this, parent);
}

DatabaseDialog::~DatabaseDialog() { Unload(); }

QWidget* DatabaseDialog::MakeMenuPage() {
  const Messages& m = m_ctx.messages;
  auto* page = new QWidget;
  const int line = fontMetrics().height();
  const int iconSize = qRound(line * 2.2);
  static constexpr int kCaptions[5] = {90, 91, 92, 328, 76};
  auto* grid = new QGridLayout(page);
  grid->setHorizontalSpacing(fontMetrics().averageCharWidth() * 2);
  grid->setVerticalSpacing(line / 2);
  grid->setRowStretch(0, 1);
  for (int i = 0; i < 5; ++i) {
    const PanelIconSet set = i == 4   ? PanelIconSet::White
                             : i == 3 ? PanelIconSet::Yellow
                                      : PanelIconSet::Red;
    auto* picture = new QLabel(page);
    picture->setObjectName(Name("Image2", i));
    picture->setPixmap(PanelIconPicture(set, false, iconSize, devicePixelRatioF()));
    picture->setFixedSize(iconSize, iconSize);
    picture->setCursor(Qt::PointingHandCursor);
    picture->installEventFilter(this);
    auto* label = MakeButton(page, Name("Label6", i), ToQt(m.Lng(kCaptions[i])));
    label->setFlat(true);
    label->setCursor(Qt::PointingHandCursor);
    label->setStyleSheet(QStringLiteral("text-align: left; padding: 4px 8px;"));
    QFont bold = label->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.1);
    label->setFont(bold);
    m_menuPictures[static_cast<size_t>(i)] = picture;
    m_menuLabels[static_cast<size_t>(i)] = label;
    grid->addWidget(picture, i + 1, 1);
    grid->addWidget(label, i + 1, 2);
    connect(label, &QPushButton::clicked, this, [this, i] { RunMenuEntry(i); });
  }
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(3, 1);
  grid->setRowStretch(6, 1);
  return page;
}

QWidget* DatabaseDialog::MakeUpdatePage() {
  const Messages& m = m_ctx.messages;
  auto* page = new QWidget;
  auto* grid = new QGridLayout(page);
  const int line = fontMetrics().height();
  grid->setVerticalSpacing(line / 2);
  grid->setHorizontalSpacing(fontMetrics().averageCharWidth() * 2);
  static constexpr int kCaptions[5][2] = {{68, 69}, {70, 71}, {72, 73}, {74, 75}, {76, 0}};
  for (int i = 0; i < 5; ++i) {
    auto* button = MakeButton(page, Name("Command11", i), ToQt(m.Lng(kCaptions[i][0])));
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_updateButtons[static_cast<size_t>(i)] = button;
    grid->addWidget(button, i, 0);
    if (kCaptions[i][1] != 0) {
      auto* explanation =
          MakeLabel(page, Name("Command11Txt", i), ToQt(m.Lng(kCaptions[i][1])), true);
      explanation->setBuddy(button);
      grid->addWidget(explanation, i, 1);
    }
  }
  grid->setColumnStretch(1, 1);
  grid->setRowStretch(5, 1);
  connect(m_updateButtons[0], &QPushButton::clicked, this, &DatabaseDialog::CompleteCreation);
  connect(m_updateButtons[1], &QPushButton::clicked, this, &DatabaseDialog::UpdateFromFiles);
  connect(m_updateButtons[2], &QPushButton::clicked, this, &DatabaseDialog::ScanRoms);
  connect(m_updateButtons[3], &QPushButton::clicked, this, [this] { ShowPage(5); });
  connect(m_updateButtons[4], &QPushButton::clicked, this, [this] { ShowPage(0); });
  return page;
}

QWidget* DatabaseDialog::MakeDownloadPage() {
  const Messages& m = m_ctx.messages;
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(MakeLabel(page, QStringLiteral("Label7"), ToQt(m.Lng(77)), true));
  auto* grid = new QGridLayout;
  grid->setColumnStretch(2, 1);
  for (int i = 0; i < kDownloadLines; ++i) {
    const DownloadLine& line = m_downloadLines[static_cast<size_t>(i)];
    auto* check = new QCheckBox(page);
    check->setObjectName(Name("Chk1", i));
    check->setChecked(line.checked);
    // The box keeps its state in its Tag too, as every check box of the program does.
    connect(check, &QCheckBox::toggled, this,
            [check](bool on) { SetTag(check, on ? QStringLiteral("1") : QString()); });
    auto* name = MakeLabel(page, Name("Chk1Txt", i), ToQt(line.name));
    name->setCursor(Qt::PointingHandCursor);
    name->installEventFilter(this);
    auto* address = new QLineEdit(ToQt(line.address), page);
    address->setObjectName(Name("Text2", i));
    address->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    auto* site = MakeToolButton(page, Name("Command8", i), QStringLiteral("www"));
    site->setToolTip(ToQt(line.site));
    site->setEnabled(!line.site.empty());
    connect(site, &QToolButton::clicked, this, [this, i] {
      const std::string& target = m_downloadLines[static_cast<size_t>(i)].site;
      if (!target.empty()) m_ctx.Ui().OpenDocument(target);
    });
    grid->addWidget(check, i, 0);
    grid->addWidget(name, i, 1);
    grid->addWidget(address, i, 2);
    grid->addWidget(site, i, 3);
    m_downloadChecks.push_back(check);
    m_downloadNames.push_back(name);
    m_downloadAddresses.push_back(address);
  }
  layout->addLayout(grid);
  layout->addStretch();
  auto* download = MakeButton(page, QStringLiteral("Command6"), ToQt(m.Lng(79)));
  auto* close = MakeButton(page, QStringLiteral("Command7"), ToQt(m.Lng(78)));
  layout->addLayout(ButtonRow({download}, close));
  connect(download, &QPushButton::clicked, this, &DatabaseDialog::DownloadFiles);
  connect(close, &QPushButton::clicked, this, &DatabaseDialog::SaveDownloadsAndLeave);
  return page;
}

QWidget* DatabaseDialog::MakePathRow(int box) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* text = new QLineEdit(row);
  text->setObjectName(Name("Text1", box));
  auto* browse = MakeToolButton(row, Name("Command1", box), QStringLiteral("..."));
  layout->addWidget(text, 1);
  layout->addWidget(browse);
  m_pathBoxes[static_cast<size_t>(box)] = text;
  connect(text, &QLineEdit::editingFinished, this,
          [this, box, text] { m_paths->LeaveBox(box, FromQt(text->text())); });
  connect(browse, &QToolButton::clicked, this, [this, box] { BrowsePath(box); });
  return row;
}

QWidget* DatabaseDialog::MakePathPage(int firstBox, int lastBox, bool first) {
  const Messages& m = m_ctx.messages;
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  const int line = fontMetrics().height();
  if (first) {
    layout->addWidget(MakeLabel(page, QStringLiteral("Label2"), ToQt(m.Lng(81)), true));
    layout->addSpacing(line / 2);
  }
  for (int box = firstBox; box <= lastBox; ++box) {
    if (box == kComboPathBox) {
      layout->addSpacing(line / 2);
      layout->addWidget(MakeLabel(page, QStringLiteral("Label8"), ToQt(m.Lng(85)), true));
      auto* comboRow = new QHBoxLayout;
      auto* comboLabel = MakeLabel(page, QStringLiteral("Label9"), ToQt(m.Lng(86)));
      m_combo = new QComboBox(page);
      m_combo->setObjectName(QStringLiteral("Combo1"));
      for (std::string_view file : kComboFiles) m_combo->addItem(ToQt(file));
      comboLabel->setBuddy(m_combo);
      comboRow->addWidget(comboLabel);
      comboRow->addWidget(m_combo);
      comboRow->addStretch();
      layout->addLayout(comboRow);
      connect(m_combo, &QComboBox::currentIndexChanged, this, [this](int choice) {
        m_paths->ChooseCombo(choice);
        m_pathBoxes[kComboPathBox]->setText(ToQt(m_paths->BoxText(kComboPathBox)));
      });
    }
    if (box == kRomPathBox) layout->addSpacing(line / 2);
    auto* label = MakeLabel(page, Name("Label1", box), ToQt(PathBoxLabel(box, m)), true);
    layout->addWidget(label);
    QWidget* row = MakePathRow(box);
    label->setBuddy(m_pathBoxes[static_cast<size_t>(box)]);
    layout->addWidget(row);
  }
  layout->addStretch();
  auto* close = MakeButton(page, first ? QStringLiteral("Command4") : QStringLiteral("Command5"),
                           ToQt(m.Lng(78)));
  connect(close, &QPushButton::clicked, this, &DatabaseDialog::SavePathsAndLeave);
  if (first) {
    auto* next = MakeButton(page, QStringLiteral("Command2"), ToQt(m.Lng(82)));
    connect(next, &QPushButton::clicked, this, [this] { ShowPage(4); });
    layout->addLayout(ButtonRow({next}, close));
  } else {
    auto* previous = MakeButton(page, QStringLiteral("Command3"), ToQt(m.Lng(80)));
    connect(previous, &QPushButton::clicked, this, [this] { ShowPage(3); });
    layout->addLayout(ButtonRow({previous}, close));
  }
  return page;
}

QWidget* DatabaseDialog::MakeSelectionPage() {
  const Messages& m = m_ctx.messages;
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->addWidget(MakeLabel(page, QStringLiteral("Label4"), ToQt(m.Lng(89)), true));
  auto* middle = new QHBoxLayout;
  m_selection = new QListWidget(page);
  m_selection->setObjectName(QStringLiteral("List1"));
  for (const std::string& entry : SelectionEntries(m)) {
    auto* item = new QListWidgetItem(ToQt(entry), m_selection);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
    item->setCheckState(Qt::Unchecked);
  }
  m_selection->setMinimumHeight(fontMetrics().height() * 15);
  m_report = MakeLabel(page, QStringLiteral("Label5"), QString());
  m_report->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  m_report->setMinimumWidth(fontMetrics().averageCharWidth() * 24);
  middle->addWidget(m_selection, 1);
  middle->addWidget(m_report, 1);
  layout->addLayout(middle, 1);
  auto* update = MakeButton(page, QStringLiteral("Command9"), ToQt(m.Lng(42)));
  auto* previous = MakeButton(page, QStringLiteral("Command10"), ToQt(m.Lng(80)));
  layout->addLayout(ButtonRow({update}, previous));
  connect(update, &QPushButton::clicked, this, &DatabaseDialog::UpdateSelected);
  connect(previous, &QPushButton::clicked, this, [this] { ShowPage(1); });
  return page;
}

void DatabaseDialog::ShowPage(int page) {
  if (page < 0 || page >= kPageCount) return;
  m_page = page;
  m_stack->setCurrentIndex(page);
}

int DatabaseDialog::CurrentPage() const { return m_page; }

void DatabaseDialog::RunMenuEntry(int entry) {
  switch (entry) {
    case 0:
      ShowPage(1);
      break;
    case 1:
      ShowPage(2);
      break;
    case 2:
      ShowPage(3);
      break;
    case 3:
      // The export to another database program is gone; its entry only says so.
      m_ctx.Ui().ShowMessage(false, "This option has been removed.", {}, Icon::Information);
      break;
    default:
      close();
      break;
  }
}

bool DatabaseDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease &&
      static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
    for (size_t i = 0; i < m_menuPictures.size(); ++i) {
      if (watched == m_menuPictures[i]) {
        RunMenuEntry(static_cast<int>(i));
        return true;
      }
    }
    for (size_t i = 0; i < m_downloadNames.size(); ++i) {
      if (watched == m_downloadNames[i]) {
        m_downloadChecks[i]->toggle();
        return true;
      }
    }
  }
  return QDialog::eventFilter(watched, event);
}

void DatabaseDialog::RefreshUpdateButtons() {
  const bool enabled = UpdateButtonsEnabled(m_ctx.AppFolder());
  for (int i = 1; i <= 3; ++i) m_updateButtons[static_cast<size_t>(i)]->setEnabled(enabled);
}

void DatabaseDialog::FillPathBoxes() {
  for (int box = 0; box < kPathBoxCount; ++box) {
    m_pathBoxes[static_cast<size_t>(box)]->setText(ToQt(m_paths->BoxText(box)));
  }
}

void DatabaseDialog::TakePathBoxes() {
  for (int box = 0; box < kPathBoxCount; ++box) {
    m_paths->LeaveBox(box, FromQt(m_pathBoxes[static_cast<size_t>(box)]->text()));
  }
}

void DatabaseDialog::BrowsePath(int box) {
  QLineEdit* text = m_pathBoxes[static_cast<size_t>(box)];
  if (box == kRomPathBox) {
    const std::string chosen = BrowseFolderDialog(this, FromQt(text->text()), {}, true);
    if (chosen.empty()) return;
    m_paths->ChooseRomFolder(m_ctx, chosen);
    text->setText(ToQt(m_paths->RomPath()));
    return;
  }
  const std::string chosen =
      FileDialog(this, FromQt(text->text()), false, PathBoxFilter(box, m_ctx.messages));
  if (chosen.empty()) return;
  text->setText(ToQt(chosen));
  m_paths->LeaveBox(box, chosen);
}

void DatabaseDialog::SavePathsAndLeave() {
  TakePathBoxes();
  m_paths->Save(m_ctx);
  ShowPage(0);
}

std::vector<DownloadLine> DatabaseDialog::CurrentDownloadLines() const {
  std::vector<DownloadLine> lines = m_downloadLines;
  for (size_t i = 0; i < lines.size() && i < m_downloadAddresses.size(); ++i) {
    lines[i].address = FromQt(m_downloadAddresses[i]->text());
    lines[i].checked = m_downloadChecks[i]->isChecked();
  }
  return lines;
}

void DatabaseDialog::SaveDownloadsAndLeave() {
  m_downloadLines = CurrentDownloadLines();
  if (m_downloadAccess.Save) m_downloadAccess.Save(m_downloadLines);
  ShowPage(0);
}

bool DatabaseDialog::RunJob(int labelMessage, const std::string& workingLabel, HeldMessagesUi& held,
                            const std::function<void(Work&)>& job) {
  const int page = m_page;
  if (labelMessage > 0) {
    m_busyLabel->setText(ToQt(m_ctx.messages.Lng(labelMessage)));
    m_stack->setCurrentWidget(m_busyLabel);
  }
  // The page is out of reach while the job runs; Label3, when shown, stays readable.
  m_pages[static_cast<size_t>(page)]->setEnabled(false);
  bool finished = false;
  {
    ScopedUi scoped(m_ctx, held);
    finished = RunWithWorkingDialog(this, m_ctx, workingLabel, [&](Work& work) {
      // A job only reads the flag: it starts clear.
      work.CancelRequested = false;
      job(work);
    });
  }
  m_pages[static_cast<size_t>(page)]->setEnabled(true);
  ShowPage(page);
  held.Release();
  return finished;
}

void DatabaseDialog::CompleteCreation() {
  HeldMessagesUi held(m_ctx.Ui());
  bool built = false;
  RunJob(58, m_ctx.messages.Lng(54), held,
         [&](Work& work) { built = tessarin::CreateDatabase(m_ctx, work); });
  // Without an emulator the user is taken to where its path is set.
  if (held.Gave(m_ctx.messages.Lng(56))) ShowPage(3);
  if (built) {
    for (int i = 1; i <= 3; ++i) m_updateButtons[static_cast<size_t>(i)]->setEnabled(true);
  }
}

void DatabaseDialog::UpdateFromFiles() {
  HeldMessagesUi held(m_ctx.Ui());
  RunJob(50, m_ctx.messages.Lng(49), held,
         [&](Work& work) { UpdateFromFilesAndSave(m_ctx, work); });
}

void DatabaseDialog::ScanRoms() {
  HeldMessagesUi held(m_ctx.Ui());
  RunJob(46, m_ctx.messages.Lng(47), held, [&](Work& work) { ScanRomsAndSave(m_ctx, work); });
}

void DatabaseDialog::UpdateSelected() {
  std::array<bool, kUpdateEntryCount> checked{};
  for (int i = 0; i < kUpdateEntryCount && i < m_selection->count(); ++i) {
    checked[static_cast<size_t>(i)] = m_selection->item(i)->checkState() == Qt::Checked;
  }
  m_report->clear();
  HeldMessagesUi held(m_ctx.Ui());
  UpdateReport report;
  RunJob(0, m_ctx.messages.Lng(42), held,
         [&](Work& work) { report = tessarin::UpdateSelected(m_ctx, work, checked); });
  m_report->setText(ToQt(SelectedUpdateLabel(report)));
}

void DatabaseDialog::DownloadFiles() {
  m_downloadLines = CurrentDownloadLines();
  const std::vector<DownloadLine> lines = m_downloadLines;
  HeldMessagesUi held(m_ctx.Ui());
  RunJob(0, m_ctx.messages.Lng(37), held,
         [&](Work& work) { tessarin::DownloadFiles(m_ctx, work, lines); });
}

void DatabaseDialog::SaveState() {
  m_ctx.settings.InfWrite("Form3Top", pos().y());
  m_ctx.settings.InfWrite("Form3Left", pos().x());
}

}  // namespace tessarin
