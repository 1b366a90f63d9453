#include "search/searchdialog.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/work.h"
#include "lists/skins.h"
#include "online/urllist.h"
#include "search/foundpage.h"
#include "search/resultactions.h"
#include "store/indexfile.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

// --- The model ---

int ResultListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

QVariant ResultListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) return {};
  if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
    return ToQt(m_lines[static_cast<size_t>(index.row())]);
  }
  return {};
}

void ResultListModel::SetLines(std::vector<std::string> lines) {
  beginResetModel();
  m_lines = std::move(lines);
  endResetModel();
}

void JumpComboBox::showPopup() {
  if (BeforePopup) BeforePopup();
  QComboBox::showPopup();
}

SearchDialogHooks& SearchDialogHookTable() {
  static SearchDialogHooks hooks;
  return hooks;
}

namespace {

QPushButton* MakeButton(QWidget* parent, int number, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(QStringLiteral("Command%1").arg(number));
  // Enter in a box runs Find (the default button), never an action on rom files.
  button->setAutoDefault(false);
  return button;
}

QLabel* MakeLabel(QWidget* parent, const QString& name, const QString& text) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  return label;
}

std::string WithoutAmpersand(std::string text) {
  std::erase(text, '&');
  return text;
}

}  // namespace

// --- Load ---

SearchDialog::SearchDialog(QWidget* parent, AppContext& ctx, UrlTables* sites)
    : QDialog(parent), m_ctx(ctx), m_sites(sites) {
  setObjectName(QStringLiteral("Form6"));
  setWindowTitle(ToQt(WithoutAmpersand(ctx.messages.Lng(372))));
  const Messages& m = ctx.messages;
  const auto lng = [&](int n) { return ToQt(m.Lng(n)); };

  m_keyword = new QLineEdit(this);
  m_keyword->setObjectName(QStringLiteral("Text1"));
  for (int n = 1; n <= 20; ++n) {
    if (n == 14 || n == 15) {
      auto* jump = new JumpComboBox(this);
      jump->BeforePopup = [this] { FillJumpBoxes(); };
      m_combo[n] = jump;
    } else {
      m_combo[n] = new QComboBox(this);
    }
    m_combo[n]->setObjectName(QStringLiteral("Combo%1").arg(n));
    // The fixed lists and the operator are chosen, the others may be typed in.
    const bool fixed = n == 9 || n == 10 || n == 11 || n == 14 || n == 15 || n == 19 || n == 20;
    m_combo[n]->setEditable(!fixed);
    m_combo[n]->setInsertPolicy(QComboBox::NoInsert);
    m_combo[n]->setMaxVisibleItems(20);
  }
  m_combo[14]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  m_combo[15]->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  m_combo[14]->setMinimumContentsLength(40);
  m_combo[15]->setMinimumContentsLength(40);

  // The criteria: Label1(0) to Label1(13) beside Text1 and the boxes, in the dialog's order.
  auto* criteria = new QGridLayout;
  const int boxOf[14] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13};
  for (int i = 0; i < 14; ++i) {
    QLabel* label =
        MakeLabel(this, QStringLiteral("Label1_%1").arg(i), lng(240 + i) + QStringLiteral(" :"));
    QWidget* box = i == 0 ? static_cast<QWidget*>(m_keyword) : m_combo[boxOf[i]];
    label->setBuddy(box);
    const int row = i % 7;
    const int column = (i / 7) * 2;
    criteria->addWidget(label, row, column);
    criteria->addWidget(box, row, column + 1);
  }
  QLabel* savestateLabel = MakeLabel(this, QStringLiteral("Label8"), QStringLiteral("SaveState :"));
  savestateLabel->setBuddy(m_combo[16]);
  criteria->addWidget(savestateLabel, 7, 0);
  criteria->addWidget(m_combo[16], 7, 1);
  QLabel* versionLabel = MakeLabel(this, QStringLiteral("Label9"), QStringLiteral("Mame ver :"));
  versionLabel->setBuddy(m_combo[17]);
  auto* version = new QHBoxLayout;
  version->addWidget(m_combo[20]);
  version->addWidget(m_combo[17], 1);
  criteria->addWidget(versionLabel, 7, 2);
  criteria->addLayout(version, 7, 3);
  criteria->setColumnStretch(1, 1);
  criteria->setColumnStretch(3, 1);

  // The result list.
  m_model = new ResultListModel(this);
  m_list = new QListView(this);
  m_list->setObjectName(QStringLiteral("List1"));
  m_list->setModel(m_model);
  m_list->setUniformItemSizes(true);
  m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  // The rom column is padded with blanks: a fixed-width font keeps the titles in a column.
  m_list->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  m_list->setMinimumSize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 14);
  m_count = MakeLabel(this, QStringLiteral("Label3"), {});

  // The buttons.
  const struct {
    int number;
    QString text;
  } buttons[] = {
      {1, QStringLiteral("&") + lng(239)},
      {2, lng(254)},
      {3, lng(255)},
      {4, lng(256)},
      {5, lng(257)},
      {6, lng(258)},
      {7, lng(78)},
      {8, QStringLiteral("&Go")},
      {9, QStringLiteral("G&o")},
      {10, lng(322)},
      {11, QStringLiteral("&Search online")},
      {12, lng(400)},
      {13, lng(441)},
      {14, lng(442)},
      {15, QStringLiteral("Tiny")},
      {16, QStringLiteral("Clear")},
  };
  for (const auto& b : buttons) m_command[b.number] = MakeButton(this, b.number, b.text);
  m_command[1]->setDefault(true);
  m_command[1]->setAutoDefault(true);
  const struct {
    int number;
    int tip;
  } images[] = {{1, 320}, {2, 321}, {3, 371}};
  const QStyle::StandardPixmap icons[] = {QStyle::SP_FileIcon, QStyle::SP_DialogSaveButton,
                                          QStyle::SP_FileDialogDetailedView};
  for (const auto& image : images) {
    auto* tool = new QToolButton(this);
    tool->setObjectName(QStringLiteral("Image%1").arg(image.number));
    tool->setToolTip(lng(image.tip));
    tool->setAccessibleName(lng(image.tip));
    tool->setIcon(style()->standardIcon(icons[image.number - 1]));
    m_image[image.number] = tool;
  }

  // The check boxes and radios keep their state in their Tag, as all of the program's do; their
  // labels toggle them too.
  m_html = new QCheckBox(this);
  m_html->setObjectName(QStringLiteral("Chk1"));
  m_htmlLabel = MakeLabel(this, QStringLiteral("Label4"), QStringLiteral("HTML"));
  m_online = new QCheckBox(this);
  m_online->setObjectName(QStringLiteral("Chk2"));
  m_onlineLabel = MakeLabel(this, QStringLiteral("Label2"), QStringLiteral("Images online"));
  QLabel* sortLabel = MakeLabel(this, QStringLiteral("Label5"), lng(373));
  for (int i = 0; i < 2; ++i) {
    m_radio[i] = new QRadioButton(this);
    m_radio[i]->setObjectName(QStringLiteral("Radio_%1").arg(i));
    m_radio[i]->setAutoExclusive(false);  // the sort routine sets both itself
  }
  m_radioLabel[0] = MakeLabel(this, QStringLiteral("Label6"), QStringLiteral("roms"));
  m_radioLabel[1] = MakeLabel(this, QStringLiteral("Label7"), lng(374));
  for (QLabel* label : {m_htmlLabel, m_onlineLabel, m_radioLabel[0], m_radioLabel[1]}) {
    label->setCursor(Qt::PointingHandCursor);
    label->installEventFilter(this);
  }
  m_romLabel = MakeLabel(this, QStringLiteral("Label1_14"), QStringLiteral("Rom :"));
  m_titleLabel = MakeLabel(this, QStringLiteral("Label1_15"), lng(359));

  // Layout: criteria on top, the list and its actions below.
  auto* findRow = new QHBoxLayout;
  findRow->addWidget(m_command[1]);
  findRow->addStretch();
  findRow->addWidget(m_html);
  findRow->addWidget(m_htmlLabel);
  findRow->addWidget(m_combo[18], 1);
  findRow->addWidget(m_online);
  findRow->addWidget(m_onlineLabel);
  auto* countRow = new QHBoxLayout;
  countRow->addWidget(m_count, 1);
  countRow->addWidget(sortLabel);
  for (int i = 0; i < 2; ++i) {
    countRow->addWidget(m_radio[i]);
    countRow->addWidget(m_radioLabel[i]);
  }
  countRow->addWidget(m_image[1]);
  countRow->addWidget(m_image[2]);
  countRow->addWidget(m_image[3]);
  auto* actions = new QVBoxLayout;
  for (int n : {2, 3, 4, 5, 6, 13, 14, 12}) actions->addWidget(m_command[n]);
  auto* online = new QHBoxLayout;
  online->addWidget(m_command[11]);
  online->addWidget(m_combo[19], 1);
  actions->addLayout(online);
  actions->addWidget(m_command[15]);
  actions->addWidget(m_command[16]);
  actions->addStretch();
  actions->addWidget(m_command[7]);
  auto* listRow = new QHBoxLayout;
  listRow->addWidget(m_list, 1);
  listRow->addLayout(actions);
  auto* jumpRow = new QHBoxLayout;
  jumpRow->addWidget(m_romLabel);
  jumpRow->addWidget(m_combo[14], 1);
  jumpRow->addWidget(m_command[8]);
  jumpRow->addWidget(m_titleLabel);
  jumpRow->addWidget(m_combo[15], 1);
  jumpRow->addWidget(m_command[9]);
  jumpRow->addWidget(m_command[10]);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(criteria);
  layout->addLayout(findRow);
  layout->addLayout(countRow);
  layout->addLayout(listRow, 1);
  layout->addLayout(jumpRow);
  m_titleLabel->hide();
  m_combo[15]->hide();
  m_command[9]->hide();

  // Wiring.
  connect(m_command[1], &QPushButton::clicked, this, &SearchDialog::RunSearch);
  connect(m_command[2], &QPushButton::clicked, this, &SearchDialog::Show);
  connect(m_list, &QListView::doubleClicked, this, &SearchDialog::Show);
  connect(m_command[3], &QPushButton::clicked, this, &SearchDialog::DeleteRoms);
  connect(m_command[4], &QPushButton::clicked, this, &SearchDialog::MoveRoms);
  connect(m_command[5], &QPushButton::clicked, this, &SearchDialog::CopyRoms);
  connect(m_command[6], &QPushButton::clicked, this, &SearchDialog::MakeIni);
  connect(m_command[7], &QPushButton::clicked, this, &QWidget::close);
  connect(m_command[8], &QPushButton::clicked, this, &SearchDialog::JumpByRom);
  connect(m_command[9], &QPushButton::clicked, this, &SearchDialog::JumpByTitle);
  connect(m_command[10], &QPushButton::clicked, this, &SearchDialog::SwapJumpBoxes);
  connect(m_command[11], &QPushButton::clicked, this, &SearchDialog::SearchOnline);
  connect(m_command[12], &QPushButton::clicked, this, &SearchDialog::DownloadImages);
  connect(m_command[13], &QPushButton::clicked, this, &SearchDialog::AddList);
  connect(m_command[14], &QPushButton::clicked, this, &SearchDialog::WithdrawList);
  connect(m_command[15], &QPushButton::clicked, this, &SearchDialog::RunTiny);
  connect(m_command[16], &QPushButton::clicked, this, &SearchDialog::ClearList);
  connect(m_image[1], &QToolButton::clicked, this, &SearchDialog::CopyToClipboard);
  connect(m_image[2], &QToolButton::clicked, this, &SearchDialog::SaveTextFile);
  connect(m_image[3], &QToolButton::clicked, this, [this] {
    if (SearchDialogHookTable().OpenAtomicFeOptions) {
      SearchDialogHookTable().OpenAtomicFeOptions(this, m_ctx);
    }
  });
  connect(m_html, &QCheckBox::toggled, this, [this](bool on) {
    SetTag(m_html, on ? QStringLiteral("1") : QString());
    FollowHtmlCheck();
  });
  connect(m_online, &QCheckBox::toggled, this,
          [this](bool on) { SetTag(m_online, on ? QStringLiteral("1") : QString()); });
  for (int i = 0; i < 2; ++i) {
    connect(m_radio[i], &QRadioButton::clicked, this, [this, i] {
      // The click has flipped the button already; the sort decides its state.
      m_radio[i]->setChecked(!m_radio[i]->isChecked());
      SortList(i);
    });
  }
  // Choosing a game in one jump box shows the same game in the other.
  connect(m_combo[14], &QComboBox::activated, this,
          [this](int i) { m_combo[15]->setCurrentIndex(i); });
  connect(m_combo[15], &QComboBox::activated, this,
          [this](int i) { m_combo[14]->setCurrentIndex(i); });

  ChooseFolder = [this](const std::string& title) {
    return BrowseFolderDialog(this, {}, title, true);
  };
  AskText = [this](const std::string& prompt, const std::string& title,
                   const std::string& defaultText) {
    bool ok = false;
    const QString text = QInputDialog::getText(this, ToQt(title), ToQt(prompt), QLineEdit::Normal,
                                               ToQt(defaultText), &ok);
    return ok ? FromQt(text) : std::string();
  };

  // Load: the radios on "roms", the stored choices, the lists, the search sites, the place.
  m_radio[0]->setChecked(true);
  SetTag(m_radio[0], QStringLiteral("1"));
  SetCheck(m_html, ctx.settings.InfRead("Form6HTML") == "1");
  SetCheck(m_online, ctx.settings.InfRead("Form6ImagesOnline") == "1");
  for (const std::string& skin : ListSkins(ctx.AppFolder())) m_combo[18]->addItem(ToQt(skin));
  const std::string skin = ctx.settings.InfRead("Frm7Skin");
  m_combo[18]->setCurrentText(skin.empty() || skin == "-1" ? QString() : ToQt(skin));
  FollowHtmlCheck();
  LoadLists();
  if (m_sites) {
    m_engines = m_sites->SearchEngines;
  } else {
    m_engines.assign(1, std::string());
  }
  const std::string mawsBase = ApplyMawsBase(kDefaultMawsBase, ctx.AppFolder());
  for (const std::string& name : PrepareSearchEngines(m_engines, mawsBase)) {
    m_combo[19]->addItem(ToQt(name));
  }
  if (m_sites) m_sites->SearchEngines = m_engines;
  m_combo[19]->setCurrentIndex(std::max(0, ctx.settings.InfReadNumber("Frm6nSearch")));
  if (m_combo[19]->currentIndex() < 0 && m_combo[19]->count() > 0) m_combo[19]->setCurrentIndex(0);
  m_command[15]->setEnabled(!TinyViewerPath(ctx.AppFolder()).empty());
  m_image[3]->setEnabled(static_cast<bool>(SearchDialogHookTable().OpenAtomicFeOptions));
  SetResultButtons(false);
  m_command[12]->setEnabled(true);

  adjustSize();
  const int top = ctx.settings.InfReadNumber("Form6Top");
  const int left = ctx.settings.InfReadNumber("Form6Left");
  if (top < 0 || left < 0 || !ApplyStoredPosition(this, left, top)) CenterForm(this, parent);
  m_keyword->setFocus();
}

SearchDialog::~SearchDialog() { Unload(); }

SearchDialog* SearchDialog::Create(QWidget* parent, AppContext& ctx, UrlTables* sites,
                                   std::function<void()> showPanel,
                                   std::function<void()> hidePanel) {
  auto* dialog = new SearchDialog(parent, ctx, sites);
  dialog->ShowPanel = std::move(showPanel);
  dialog->HidePanel = std::move(hidePanel);
  return dialog;
}

void SearchDialog::LoadLists() {
  // The lists are built once; the index is read first when the store is empty.
  AppContext& ctx = m_ctx;
  SearchLists lists;
  RunWithWorkingDialog(
      this, ctx, ctx.messages.Lng(338),
      [&](Work& work) {
        work.SetStatus(ctx.messages.Lng(337));
        if (ctx.store.GameCount() < 1) {
          LoadIndex(ctx.store, ctx.log, IndexFilePath(ctx.AppFolder()));
        }
        lists = FillSearchLists(ctx.store, ctx.messages);
      },
      false);
  m_lists = std::move(lists);
  for (int n = 1; n <= 20; ++n) {
    if (n == 14 || n == 15 || n == 18 || n == 19) continue;
    QStringList items;
    items.reserve(static_cast<qsizetype>(m_lists.Items[static_cast<size_t>(n)].size()));
    for (const std::string& item : m_lists.Items[static_cast<size_t>(n)]) items << ToQt(item);
    m_combo[n]->clear();
    m_combo[n]->addItems(items);
    // Every box starts empty, so that none starts on "All".
    m_combo[n]->setCurrentIndex(-1);
    if (m_combo[n]->isEditable()) m_combo[n]->setEditText(QString());
  }
}

// --- Close ---

void SearchDialog::Unload() {
  if (m_unloaded) return;
  m_unloaded = true;
  Settings& s = m_ctx.settings;
  s.InfWrite("Frm7Skin", FromQt(m_combo[18]->currentText()));
  s.InfWrite("Form6Top", pos().y());
  s.InfWrite("Form6Left", pos().x());
  s.InfWrite("Form6HTML", FromQt(Tag(m_html)));
  s.InfWrite("Form6ImagesOnline", FromQt(Tag(m_online)));
  s.InfWrite("Frm6nSearch", m_combo[19]->currentIndex());
  m_ctx.SearchMayClose = false;
}

void SearchDialog::closeEvent(QCloseEvent* event) {
  // Once unloaded it stays unloaded: a second close (the frame closing every dialog) must not
  // hide it again and bring the panel back.
  if (!m_unloaded && !m_ctx.SearchMayClose) {
    // Kept for the next opening: its lists and results stay.
    event->ignore();
    hide();
    if (ShowPanel) ShowPanel();
    return;
  }
  Unload();
  // Not QDialog::closeEvent: it would go through reject(), which comes back here.
  event->accept();
}

void SearchDialog::reject() {
  // Escape closes as the close box does, hiding or unloading by the same rule.
  close();
}

void SearchDialog::showEvent(QShowEvent* event) {
  if (HidePanel) HidePanel();
  QDialog::showEvent(event);
}

bool SearchDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonRelease) {
    if (watched == m_htmlLabel) {
      m_html->toggle();
      return true;
    }
    if (watched == m_onlineLabel && m_online->isEnabled()) {
      m_online->toggle();
      return true;
    }
    for (int i = 0; i < 2; ++i) {
      if (watched == m_radioLabel[i]) {
        SortList(i);
        return true;
      }
    }
  }
  return QDialog::eventFilter(watched, event);
}

void SearchDialog::SetCheck(QCheckBox* box, bool on) {
  box->setChecked(on);
  SetTag(box, on ? QStringLiteral("1") : QString());
}

void SearchDialog::FollowHtmlCheck() {
  const bool on = m_html->isChecked();
  m_combo[18]->setEnabled(on);
  m_online->setEnabled(on);
  m_onlineLabel->setEnabled(on);
}

void SearchDialog::SetResultButtons(bool enabled) {
  for (int n : {2, 3, 4, 5, 6, 11}) m_command[n]->setEnabled(enabled);
}

// --- Find ---

SearchForm SearchDialog::ReadForm() const {
  SearchForm form;
  form.Keyword = FromQt(m_keyword->text());
  for (int n = 1; n <= 20; ++n) {
    if (n == 14 || n == 15 || n == 18 || n == 19) continue;
    const QComboBox* box = m_combo[n];
    form.Text[static_cast<size_t>(n)] = FromQt(box->currentText());
    // A typed text that is no entry of the list has no position.
    form.Position[static_cast<size_t>(n)] =
        box->isEditable()
            ? ListPosition(m_lists.Items[static_cast<size_t>(n)], form.Text[static_cast<size_t>(n)])
            : box->currentIndex();
  }
  return form;
}

void SearchDialog::RunSearch() {
  const SearchForm form = ReadForm();
  SetLines({m_ctx.messages.Lng(333)});
  m_list->repaint();
  SearchRun run;
  const std::string& all = m_ctx.messages.Lng(260);
  RunWithWorkingDialog(
      this, m_ctx, m_ctx.messages.Lng(333),
      [&](Work& work) { run = tessarin::RunSearch(m_ctx.store, m_lists, form, all, &work); },
      false);
  if (run.OperatorReset) m_combo[20]->setCurrentIndex(0);
  // A new result is shown by rom name, as it comes.
  m_radio[0]->setChecked(true);
  m_radio[1]->setChecked(false);
  SetTag(m_radio[0], QStringLiteral("1"));
  SetTag(m_radio[1], QString());
  if (!run.Results.empty()) {
    SetLines(ResultLines(m_ctx.store, run.Results));
    m_count->setText(ToQt(CountCaption(run.Results.size(), m_ctx.messages)));
    SetResultButtons(true);
  } else {
    SetLines({m_ctx.messages.Lng(334)});
    SetResultButtons(false);
    m_count->clear();
  }
}

void SearchDialog::SetLines(std::vector<std::string> lines) { m_model->SetLines(std::move(lines)); }

void SearchDialog::UpdateCount() {
  m_count->setText(ToQt(CountCaption(Lines().size(), m_ctx.messages)));
}

std::vector<int> SearchDialog::SelectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : m_list->selectionModel()->selectedRows()) {
    rows.push_back(index.row());
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::vector<std::string> SearchDialog::PickedLines() const {
  std::vector<std::string> picked;
  const std::string& noRom = m_ctx.messages.Lng(334);
  for (const int row : PickedRows(static_cast<int>(Lines().size()), SelectedRows())) {
    const std::string& line = Lines()[static_cast<size_t>(row)];
    if (line != noRom) picked.push_back(line);
  }
  return picked;
}

bool SearchDialog::FocusedGame(std::string& rom, std::string& title) const {
  const QModelIndex current = m_list->currentIndex();
  if (!current.isValid()) return false;
  const std::string& line = Lines()[static_cast<size_t>(current.row())];
  if (line == m_ctx.messages.Lng(334) || line.empty()) return false;
  rom = RomNameOfLine(line, m_ctx.store.LongestNameLength);
  title = TitleOfLine(line, m_ctx.store.LongestNameLength);
  return true;
}

// --- Show ---

void SearchDialog::Show() {
  const QModelIndex current = m_list->currentIndex();
  if (current.isValid() && Lines()[static_cast<size_t>(current.row())] == m_ctx.messages.Lng(334)) {
    return;
  }
  std::string rom, title;
  FocusedGame(rom, title);  // with no line focused the rom is empty
  ShowGameFromList(rom);
}

void SearchDialog::ShowGameFromList(const std::string& romName) {
  if (!m_html->isChecked()) {
    if (SearchDialogHookTable().OpenGameSheet) {
      SearchDialogHookTable().OpenGameSheet(this, m_ctx, romName);
    } else {
      m_ctx.log.WriteLogLine("The game sheet isn't part of this build: " + romName);
    }
    return;
  }
  // A jump box whose text gives no rom name shows the page of the focused line's game.
  std::string rom = romName;
  if (rom.empty()) {
    std::string title;
    FocusedGame(rom, title);
  }
  std::string page;
  const FoundPageResult result =
      ShowFoundPage(m_ctx, SearchGamePageHooks(), FromQt(m_combo[18]->currentText()), rom,
                    m_online->isChecked(), page);
  switch (result) {
    case FoundPageResult::Written:
      m_ctx.Ui().OpenDocument(page);
      break;
    case FoundPageResult::CantUnzipSkin:
      m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(143), m_ctx.messages.Lng(29), Icon::Stop);
      break;
    case FoundPageResult::NoPageRoutine:
      m_ctx.log.WriteLogLine("The HTML game page isn't part of this build: " + romName);
      break;
  }
}

// --- Rom files ---

void SearchDialog::DeleteRoms() {
  const bool selected = !SelectedRows().empty();
  if (!m_ctx.Ui().AskYesNo(m_ctx.messages.Lng(selected ? 314 : 313), {}, Icon::Question)) return;
  const std::vector<std::string> names = PickedRomNames(
      Lines(), SelectedRows(), m_ctx.store.LongestNameLength, m_ctx.messages.Lng(334));
  RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(315),
                       [&](Work& work) { DeleteListed(m_ctx, work, names); });
}

bool SearchDialog::CopyListedRoms(const std::vector<std::string>& names) {
  const std::string destination = ChooseFolder ? ChooseFolder(m_ctx.messages.Lng(336)) : "";
  if (destination.empty()) return false;  // the cancelled chooser is what guards a move
  const bool done = RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(316), [&](Work& work) {
    CopyListed(m_ctx, work, names, destination);
  });
  m_list->show();
  return done;
}

void SearchDialog::CopyRoms() {
  CopyListedRoms(PickedRomNames(Lines(), SelectedRows(), m_ctx.store.LongestNameLength,
                                m_ctx.messages.Lng(334)));
}

void SearchDialog::MoveRoms() {
  const std::vector<std::string> names = PickedRomNames(
      Lines(), SelectedRows(), m_ctx.store.LongestNameLength, m_ctx.messages.Lng(334));
  if (!CopyListedRoms(names)) return;
  RunWithWorkingDialog(this, m_ctx, m_ctx.messages.Lng(315),
                       [&](Work& work) { DeleteListed(m_ctx, work, names); });
}

// --- Files of names and the clipboard ---

void SearchDialog::MakeIni() {
  const Messages& m = m_ctx.messages;
  const std::string folder =
      AskText ? AskText(m.Lng(259), WithoutAmpersand(m.Lng(258)), "folder") : std::string();
  if (folder.empty()) {
    m_ctx.Ui().ShowMessage(false, m.Lng(317), {}, Icon::Warning);
    return;
  }
  const std::string path = m_ctx.Ui().ChooseFile(
      m.Lng(318), folder + ".ini", m.Lng(35) + " (*.ini)|*.ini|" + m.Lng(33) + " |*.*|", true);
  if (path.empty()) return;
  if (FileExists(path) && !m_ctx.Ui().AskYesNo(m.Lng(319), {}, Icon::Question)) return;
  const bool addZip = m_ctx.Ui().AskYesNo(m.Lng(473), {}, Icon::Question);
  if (!WriteFileAtomically(path, MakeIniText(folder, PickedLines(), addZip))) {
    m_ctx.Ui().ShowMessage(false, "Can't write " + path, m.Lng(29), Icon::Stop);
    return;
  }
  m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
}

void SearchDialog::CopyToClipboard() {
  m_image[1]->setEnabled(false);
  QClipboard* clipboard = QGuiApplication::clipboard();
  clipboard->clear();
  clipboard->setText(ToQt(ClipboardText(FromQt(m_count->text()), Lines())));
  m_image[1]->setEnabled(true);
}

void SearchDialog::SaveTextFile() {
  const Messages& m = m_ctx.messages;
  const std::string path = m_ctx.Ui().ChooseFile(
      m.Lng(321), {}, m.Lng(139) + " (*.txt)|*.txt|" + m.Lng(33) + " |*.*|", true);
  if (path.empty()) return;
  const bool addZip = m_ctx.Ui().AskYesNo(m.Lng(473), {}, Icon::Question);
  const std::string text =
      TextFileText(FromQt(m_count->text()), Lines(), addZip, m_ctx.store.LongestNameLength);
  if (!WriteFileAtomically(path, text)) {
    m_ctx.Ui().ShowMessage(false, "Can't write " + path, m.Lng(29), Icon::Stop);
    return;
  }
  m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
}

void SearchDialog::ChangeList(bool add) {
  const Messages& m = m_ctx.messages;
  const std::string path = m_ctx.Ui().ChooseFile(
      m.Lng(add ? 441 : 442), {}, m.Lng(35) + " (*.ini)|*.ini|" + m.Lng(33) + " |*.*|", false);
  if (path.empty()) return;
  std::string fileText;
  if (!ReadWholeFile(path, fileText)) {
    m_ctx.Ui().ShowMessage(false, "Can't read " + path, m.Lng(29), Icon::Stop);
    return;
  }
  std::vector<std::string> lines = Lines();
  m_list->hide();
  RunWithWorkingDialog(this, m_ctx, "Working...", [&](Work& work) {
    if (add) {
      AddListFromFile(m_ctx.store, lines, fileText, m.Lng(334), &work);
    } else {
      WithdrawListFromFile(m_ctx.store, lines, fileText, &work);
    }
  });
  SetLines(std::move(lines));
  m_list->show();
  m_command[6]->setEnabled(!Lines().empty());
  UpdateCount();
}

void SearchDialog::AddList() { ChangeList(true); }
void SearchDialog::WithdrawList() { ChangeList(false); }

// --- On-line ---

void SearchDialog::DownloadImages() {
  const std::vector<int> rows = SelectedRows();
  switch (CheckDownloadSelection(static_cast<int>(rows.size()))) {
    case DownloadGate::NothingSelected:
      m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(398), {}, Icon::Information);
      return;
    case DownloadGate::TooMany:
      m_ctx.Ui().ShowMessage(false, m_ctx.messages.Lng(399), "Limitation", Icon::Warning);
      return;
    case DownloadGate::Go:
      break;
  }
  std::vector<ImageLine> lines;
  for (const int row : rows) {
    const std::string& line = Lines()[static_cast<size_t>(row)];
    if (line == m_ctx.messages.Lng(334)) continue;
    lines.push_back({row, RomNameOfLine(line, m_ctx.store.LongestNameLength),
                     TitleOfLine(line, m_ctx.store.LongestNameLength)});
  }
  std::vector<std::string> patterns(7);
  if (m_sites) patterns.assign(m_sites->OnlineImages.begin(), m_sites->OnlineImages.end());
  const int lineCount = static_cast<int>(Lines().size());
  RunWithWorkingDialog(this, m_ctx, "Downloading", [&](Work& work) {
    DownloadMissingImages(m_ctx, work, patterns, lines, lineCount, DownloadImageFile);
  });
}

void SearchDialog::SearchOnline() {
  if (SelectedRows().empty()) return;
  std::string rom, title;
  if (!FocusedGame(rom, title)) {
    const std::string& line = Lines()[static_cast<size_t>(SelectedRows().front())];
    rom = RomNameOfLine(line, m_ctx.store.LongestNameLength);
    title = TitleOfLine(line, m_ctx.store.LongestNameLength);
  }
  const std::string address =
      SearchOnlineAddress(m_engines, m_combo[19]->currentIndex(), rom, title);
  if (!address.empty()) m_ctx.Ui().OpenDocument(address);
}

void SearchDialog::RunTiny() {
  std::string rom, title;
  if (!FocusedGame(rom, title)) return;
  QScreen* screen = this->screen() ? this->screen() : QGuiApplication::primaryScreen();
  const QRect area = screen ? screen->geometry() : QRect(0, 0, 1024, 768);
  RunTinyViewer(
      m_ctx, rom, area.width(), area.height(),
      [](const std::string& program, const std::string& romName) {
        return QProcess::startDetached(ToQt(program), {ToQt(romName)});
      },
      [] { QCoreApplication::processEvents(); });
}

// --- The list itself ---

void SearchDialog::ClearList() { SetLines({}); }

void SearchDialog::SortList(int radio) {
  if (Lines().size() < 2 || m_radio[radio]->isChecked()) return;
  m_radio[radio]->setChecked(true);
  m_radio[1 - radio]->setChecked(false);
  SetTag(m_radio[radio], QStringLiteral("1"));
  SetTag(m_radio[1 - radio], QString());
  QApplication::setOverrideCursor(Qt::WaitCursor);
  std::vector<std::string> lines = Lines();
  SortResultLines(lines, radio == 1, m_ctx.store.LongestNameLength);
  SetLines(std::move(lines));
  QApplication::restoreOverrideCursor();
}

void SearchDialog::FillJumpBoxes() {
  if (m_jumpFilled) return;
  m_jumpFilled = true;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  const auto [romFirst, titleFirst] = JumpEntries(m_ctx.store);
  QStringList left, right;
  left.reserve(static_cast<qsizetype>(romFirst.size()));
  right.reserve(static_cast<qsizetype>(titleFirst.size()));
  for (const std::string& entry : romFirst) left << ToQt(entry);
  for (const std::string& entry : titleFirst) right << ToQt(entry);
  m_combo[14]->addItems(left);
  m_combo[15]->addItems(right);
  QApplication::restoreOverrideCursor();
}

void SearchDialog::SwapJumpBoxes() {
  const bool romInView = !m_combo[14]->isHidden();
  m_combo[14]->setVisible(!romInView);
  m_command[8]->setVisible(!romInView);
  m_romLabel->setVisible(!romInView);
  m_combo[15]->setVisible(romInView);
  m_command[9]->setVisible(romInView);
  m_titleLabel->setVisible(romInView);
}

void SearchDialog::JumpByRom() {
  const std::string text = FromQt(m_combo[14]->currentText());
  if (text.empty()) return;
  ShowGameFromList(RomFromRomFirstEntry(text));
}

void SearchDialog::JumpByTitle() {
  const std::string text = FromQt(m_combo[15]->currentText());
  if (text.empty()) return;
  ShowGameFromList(RomFromTitleFirstEntry(text));
}

}  // namespace tessarin
