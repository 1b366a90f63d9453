#include "lists/listdialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/userinterface.h"
#include "lists/datexport.h"
#include "lists/textlists.h"
#include "widgets/picturesui.h"
#include "widgets/windowhelpersui.h"
#include "widgets/workingdialog.h"

namespace tessarin {

namespace {

QPushButton* MakeButton(QWidget* parent, const QString& name, const QString& text) {
  auto* button = new QPushButton(text, parent);
  button->setObjectName(name);
  button->setAutoDefault(false);
  return button;
}

QString Caption(const AppContext& ctx, int number) { return ToQt(ctx.messages.Lng(number)); }

QString WithoutAccessKey(QString text) {
  text.remove(QLatin1Char('&'));
  return text;
}

}  // namespace

ListDialog::ListDialog(QWidget* parent, AppContext& ctx, ListDialogHooks hooks)
    : FormDialog(parent), m_ctx(ctx), m_hooks(std::move(hooks)) {
  setObjectName(QStringLiteral("Form7"));
  setWindowTitle(Caption(ctx, 112));
  setWindowIcon(AppIcon());

  m_pages = new QStackedWidget(this);
  for (int i = 0; i < 3; ++i) {
    auto* frame = new QFrame(m_pages);
    frame->setObjectName(QStringLiteral("Frame1_%1").arg(i));
    m_frames[static_cast<size_t>(i)] = frame;
    m_pages->addWidget(frame);
  }
  BuildStartPage();
  BuildTextPage();
  BuildHtmlPage();

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_pages);

  LoadSettings();
}

ListDialog::~ListDialog() { Unload(); }

// ---- pages ----

void ListDialog::BuildStartPage() {
  QFrame* page = m_frames[0];
  auto* text = MakeButton(page, QStringLiteral("Command8_0"), Caption(m_ctx, 113));
  auto* html = MakeButton(page, QStringLiteral("Command8_1"), Caption(m_ctx, 114));
  auto* close =
      MakeButton(page, QStringLiteral("Command8_2"), WithoutAccessKey(Caption(m_ctx, 78)));
  const int width = fontMetrics().averageCharWidth() * 32;
  for (QPushButton* b : {text, html, close}) b->setMinimumWidth(width);
  auto* layout = new QVBoxLayout(page);
  layout->addStretch();
  for (QPushButton* b : {text, html, close}) layout->addWidget(b, 0, Qt::AlignHCenter);
  layout->addStretch();
  connect(text, &QPushButton::clicked, this, [this] { ShowPage(1); });
  connect(html, &QPushButton::clicked, this, [this] { ShowPage(2); });
  connect(close, &QPushButton::clicked, this, &QDialog::close);
}

QLabel* ListDialog::MakeMark(QWidget* parent, const QString& name, bool radio) {
  auto* mark = new QLabel(parent);
  mark->setObjectName(name);
  mark->setProperty("IsRadio", radio);
  mark->setCursor(Qt::PointingHandCursor);
  mark->installEventFilter(this);
  return mark;
}

QLabel* ListDialog::MakeMarkText(QWidget* parent, const QString& name, const QString& text) {
  auto* label = new QLabel(text, parent);
  label->setObjectName(name);
  label->setCursor(Qt::PointingHandCursor);
  // The label takes the keyboard focus, so that Space works the mark without a mouse.
  label->setFocusPolicy(Qt::StrongFocus);
  label->installEventFilter(this);
  return label;
}

void ListDialog::BuildTextPage() {
  QFrame* page = m_frames[1];
  auto* label2 = new QLabel(Caption(m_ctx, 115), page);
  label2->setObjectName(QStringLiteral("Label2"));
  m_list1 = new QListWidget(page);
  m_list1->setObjectName(QStringLiteral("List1"));
  m_list1->setSelectionMode(QAbstractItemView::MultiSelection);
  m_list1->setUniformItemSizes(true);
  label2->setBuddy(m_list1);
  for (const ListFieldInfo& field : ListFields()) {
    m_list1->addItem(QString::fromLatin1(field.name.data(), qsizetype(field.name.size())));
  }
  m_list1->setMinimumHeight(fontMetrics().height() * 16);

  auto* label1 = new QLabel(Caption(m_ctx, 116), page);
  label1->setObjectName(QStringLiteral("Label1"));
  auto* separators = new QGridLayout;
  separators->setColumnStretch(2, 1);
  for (int i = 0; i < 5; ++i) {
    const size_t k = static_cast<size_t>(i);
    m_radio[k] = MakeMark(page, QStringLiteral("Radio_%1").arg(i), true);
    m_radioText[k] =
        MakeMarkText(page, QStringLiteral("RadioTxt_%1").arg(i), Caption(m_ctx, 117 + i));
    separators->addWidget(m_radio[k], i, 0);
    separators->addWidget(m_radioText[k], i, 1);
  }
  m_text1 = new QLineEdit(page);
  m_text1->setObjectName(QStringLiteral("Text1"));
  m_text1->setMaxLength(1);
  m_text1->setMaximumWidth(fontMetrics().averageCharWidth() * 6);
  separators->addWidget(m_text1, 4, 2, Qt::AlignLeft);

  m_check[1] = MakeMark(page, QStringLiteral("Chk1"), false);
  m_checkText[1] = MakeMarkText(page, QStringLiteral("ChkTxt1"), Caption(m_ctx, 122));
  auto* quotes = new QHBoxLayout;
  quotes->addWidget(m_check[1]);
  quotes->addWidget(m_checkText[1]);
  quotes->addStretch();

  auto* label6 = new QLabel(Caption(m_ctx, 323), page);
  label6->setObjectName(QStringLiteral("Label6"));
  label6->setWordWrap(true);
  m_text4 = new QLineEdit(page);
  m_text4->setObjectName(QStringLiteral("Text4"));
  label6->setBuddy(m_text4);
  auto* browseIni = MakeButton(page, QStringLiteral("Command7"), QStringLiteral("..."));
  auto* ini = new QHBoxLayout;
  ini->addWidget(m_text4, 1);
  ini->addWidget(browseIni);

  auto* build = MakeButton(page, QStringLiteral("Command1"), Caption(m_ctx, 123));
  auto* previous = MakeButton(page, QStringLiteral("Command2"), Caption(m_ctx, 80));
  auto* dat = MakeButton(page, QStringLiteral("Command9"), QStringLiteral(".&DAT"));
  m_scanDir = MakeButton(page, QStringLiteral("Command10"), QStringLiteral("&Scan Dir"));
  m_scanDir->setEnabled(static_cast<bool>(m_hooks.openFolderScan));
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(build);
  buttons->addWidget(dat);
  buttons->addWidget(m_scanDir);
  buttons->addStretch();
  buttons->addWidget(previous);

  auto* right = new QVBoxLayout;
  right->addWidget(label1);
  right->addLayout(separators);
  right->addSpacing(fontMetrics().height() / 2);
  right->addLayout(quotes);
  right->addStretch();
  auto* columns = new QHBoxLayout;
  auto* left = new QVBoxLayout;
  left->addWidget(label2);
  left->addWidget(m_list1, 1);
  columns->addLayout(left, 1);
  columns->addSpacing(fontMetrics().averageCharWidth() * 2);
  columns->addLayout(right);

  auto* layout = new QVBoxLayout(page);
  layout->addLayout(columns, 1);
  layout->addWidget(label6);
  layout->addLayout(ini);
  layout->addLayout(buttons);

  connect(browseIni, &QPushButton::clicked, this, &ListDialog::ChooseIniFile);
  connect(build, &QPushButton::clicked, this, &ListDialog::BuildText);
  connect(dat, &QPushButton::clicked, this, &ListDialog::ExportDat);
  connect(previous, &QPushButton::clicked, this, [this] { ShowPage(0); });
  connect(m_scanDir, &QPushButton::clicked, this, [this] {
    if (m_hooks.openFolderScan) m_hooks.openFolderScan(*this);
  });

  setTabOrder(m_list1, m_radioText[0]);
  for (size_t i = 0; i + 1 < m_radioText.size(); ++i)
    setTabOrder(m_radioText[i], m_radioText[i + 1]);
  setTabOrder(m_radioText[4], m_text1);
  setTabOrder(m_text1, m_checkText[1]);
  setTabOrder(m_checkText[1], m_text4);
  setTabOrder(m_text4, browseIni);
  setTabOrder(browseIni, build);
  setTabOrder(build, dat);
  setTabOrder(dat, m_scanDir);
  setTabOrder(m_scanDir, previous);
}

void ListDialog::BuildHtmlPage() {
  QFrame* page = m_frames[2];
  auto* label3 = new QLabel(QStringLiteral("Skin :"), page);
  label3->setObjectName(QStringLiteral("Label3"));
  m_combo1 = new QComboBox(page);
  m_combo1->setObjectName(QStringLiteral("Combo1"));
  m_combo1->setEditable(true);
  m_combo1->setInsertPolicy(QComboBox::NoInsert);
  label3->setBuddy(m_combo1);
  auto* label4 = new QLabel(Caption(m_ctx, 124), page);
  label4->setObjectName(QStringLiteral("Label4"));
  m_text2 = new QLineEdit(page);
  m_text2->setObjectName(QStringLiteral("Text2"));
  m_text2->installEventFilter(this);
  label4->setBuddy(m_text2);
  auto* browse = MakeButton(page, QStringLiteral("Command3"), QStringLiteral("..."));

  auto* grid = new QGridLayout;
  grid->addWidget(label3, 0, 0);
  grid->addWidget(m_combo1, 0, 1, 1, 2);
  grid->addWidget(label4, 1, 0);
  grid->addWidget(m_text2, 1, 1);
  grid->addWidget(browse, 1, 2);
  grid->setColumnStretch(1, 1);

  auto* checks = new QGridLayout;
  checks->setColumnStretch(3, 1);
  const auto addCheck = [&](int number, const QString& textName, const QString& text, int row,
                            int column) {
    m_check[static_cast<size_t>(number)] =
        MakeMark(page, QStringLiteral("Chk%1").arg(number), false);
    m_checkText[static_cast<size_t>(number)] = MakeMarkText(page, textName, text);
    checks->addWidget(m_check[static_cast<size_t>(number)], row, column);
    checks->addWidget(m_checkText[static_cast<size_t>(number)], row, column + 1);
  };
  addCheck(2, QStringLiteral("Chk2Txt"), Caption(m_ctx, 126), 0, 0);
  addCheck(3, QStringLiteral("Chk3Txt"), Caption(m_ctx, 127), 1, 0);
  addCheck(4, QStringLiteral("Chk4Txt"), Caption(m_ctx, 129), 2, 0);
  for (int n = 5; n <= 10; ++n) {
    addCheck(n, QStringLiteral("ChkTxt%1").arg(n), Caption(m_ctx, 125 + n), 3 + (n - 5), 0);
    // The six sets stand indented under their switch.
    checks->itemAtPosition(3 + (n - 5), 0)->setAlignment(Qt::AlignRight);
  }
  addCheck(11, QStringLiteral("Label5"), QStringLiteral("Images online"), 9, 0);
  checks->setColumnMinimumWidth(0, fontMetrics().averageCharWidth() * 5);
  // Beyond the site's own pages: a page that searches its games in the browser. Off whenever
  // the dialog opens, as the other checks of this page.
  m_searchIndex = new QCheckBox(QString::fromUtf8(m_ctx.messages.OwnText(
                                    "Search page (search.htm)", "Page de recherche (search.htm)")),
                                page);
  m_searchIndex->setObjectName(QStringLiteral("ChkSearchIndex"));
  checks->addWidget(m_searchIndex, 10, 0, 1, 3);

  m_buildAll = MakeButton(page, QStringLiteral("Command4"), Caption(m_ctx, 137));
  m_buildIni = MakeButton(page, QStringLiteral("Command6"), Caption(m_ctx, 136));
  auto* back = MakeButton(page, QStringLiteral("Command5"), Caption(m_ctx, 78));
  m_buildAll->setEnabled(static_cast<bool>(m_hooks.buildHtml));
  m_buildIni->setEnabled(static_cast<bool>(m_hooks.buildHtml));
  auto* buttons = new QVBoxLayout;
  buttons->addWidget(m_buildAll);
  buttons->addWidget(m_buildIni);
  auto* backRow = new QHBoxLayout;
  backRow->addStretch();
  backRow->addWidget(back);
  buttons->addLayout(backRow);

  auto* layout = new QVBoxLayout(page);
  layout->addLayout(grid);
  layout->addSpacing(fontMetrics().height() / 2);
  layout->addLayout(checks);
  layout->addStretch();
  layout->addLayout(buttons);

  connect(browse, &QPushButton::clicked, this, &ListDialog::ChooseDestination);
  connect(back, &QPushButton::clicked, this, [this] { ShowPage(0); });
  connect(m_buildAll, &QPushButton::clicked, this, [this] {
    // The build runs with the dialog out of the way; the site builder brings it back.
    if (m_hooks.buildHtml) m_hooks.buildHtml(*this, false);
  });
  connect(m_buildIni, &QPushButton::clicked, this, [this] {
    if (m_hooks.buildHtml) m_hooks.buildHtml(*this, true);
  });

  setTabOrder(m_combo1, m_text2);
  setTabOrder(m_text2, browse);
  QWidget* previous = browse;
  for (int n = 2; n <= 11; ++n) {
    setTabOrder(previous, m_checkText[static_cast<size_t>(n)]);
    previous = m_checkText[static_cast<size_t>(n)];
  }
  setTabOrder(previous, m_buildAll);
  setTabOrder(m_buildAll, m_buildIni);
  setTabOrder(m_buildIni, back);
}

void ListDialog::ShowPage(int page) {
  for (int i = 0; i < 3; ++i) m_frames[static_cast<size_t>(i)]->setEnabled(i == page);
  m_pages->setCurrentIndex(page);
  // The six image sets follow their switch, whatever the page's own state.
  for (int n = 5; n <= 10; ++n) {
    m_check[static_cast<size_t>(n)]->setEnabled(CheckOn(4));
    m_checkText[static_cast<size_t>(n)]->setEnabled(CheckOn(4));
  }
  RedrawMarks();
  if (page == 0) {
    m_frames[0]->findChild<QPushButton*>(QStringLiteral("Command8_0"))->setFocus();
  } else if (page == 1) {
    m_list1->setFocus();
  } else {
    m_combo1->setFocus();
  }
}

int ListDialog::CurrentPage() const { return m_pages->currentIndex(); }

// ---- settings ----

void ListDialog::LoadSettings() {
  const Settings& settings = m_ctx.settings;
  m_text1->clear();
  m_text1->setText(ToQt(OtherTextFromSetting(settings.InfRead("Frm7CarSep"))));
  const std::string check1 = settings.InfRead("Frm7Check1");
  if (check1 != "-1" && !check1.empty()) SetCheck(1, check1 == "1");
  const SeparatorRadio radio =
      RadioFromSeparatorSetting(settings.InfRead("Frm7Separateur"), FromQt(m_text1->text()));
  for (int i = 0; i < 5; ++i) {
    SetTag(m_radio[static_cast<size_t>(i)],
           static_cast<int>(radio) == i ? QStringLiteral("1") : QString());
  }
  std::vector<bool> selected(static_cast<size_t>(m_list1->count()), false);
  ApplySelectionSetting(settings.InfRead("Frm7List1"), selected);
  for (int i = 0; i < m_list1->count(); ++i) {
    m_list1->item(i)->setSelected(selected[static_cast<size_t>(i)]);
  }
  for (const std::string& skin : ListSkinNames(m_ctx.AppFolder())) m_combo1->addItem(ToQt(skin));
  const std::string skin = settings.InfRead("Frm7Skin");
  if (skin != "-1" && !skin.empty()) m_combo1->setCurrentText(ToQt(skin));
  const std::string path = settings.InfRead("Frm7Path");
  if (path != "-1" && !path.empty()) m_text2->setText(ToQt(path));
  ShowPage(0);

  adjustSize();
  const int top = settings.InfReadNumber("Form7Top");
  const int left = settings.InfReadNumber("Form7Left");
  if (top <= -1 || left <= -1 || !ApplyStoredPosition(this, left, top)) {
    CenterForm(this, parentWidget());
  }
}

void ListDialog::SaveState() {
  Settings& settings = m_ctx.settings;
  settings.InfWrite("Form7Top", pos().y());
  settings.InfWrite("Form7Left", pos().x());
  settings.InfWrite("Frm7CarSep", FromQt(m_text1->text()));
  settings.InfWrite("Frm7Check1", CheckOn(1) ? "1" : "");
  settings.InfWrite("Frm7Skin", FromQt(m_combo1->currentText()));
  settings.InfWrite("Frm7Path", FromQt(m_text2->text()));
  std::vector<bool> selected;
  for (int i = 0; i < m_list1->count(); ++i) selected.push_back(m_list1->item(i)->isSelected());
  settings.InfWrite("Frm7List1", SelectionSettingText(selected));
}

// ---- marks ----

void ListDialog::RedrawMarks() {
  for (QLabel* radio : m_radio) SetCheckPicture(radio, true);
  for (size_t n = 1; n < m_check.size(); ++n) SetCheckPicture(m_check[n], false);
}

bool ListDialog::CheckOn(int number) const {
  return Tag(m_check[static_cast<size_t>(number)]) == QStringLiteral("1");
}

void ListDialog::SetCheck(int number, bool on) {
  QLabel* mark = m_check[static_cast<size_t>(number)];
  SetTag(mark, on ? QStringLiteral("1") : QString());
  SetCheckPicture(mark, false);
}

int ListDialog::SelectedRadio() const {
  for (int i = 0; i < 5; ++i) {
    if (Tag(m_radio[static_cast<size_t>(i)]) == QStringLiteral("1")) return i;
  }
  return -1;
}

void ListDialog::ClickRadio(int index) {
  for (int i = 0; i < 5; ++i) {
    SetTag(m_radio[static_cast<size_t>(i)], i == index ? QStringLiteral("1") : QString());
    SetCheckPicture(m_radio[static_cast<size_t>(i)], true);
  }
}

void ListDialog::ToggleCheckBox(int number) {
  if (number < 1 || number > 11) return;
  if (number == 4) {
    SetCheck(4, !CheckOn(4));
    const bool on = CheckOn(4);
    for (int n = 5; n <= 10; ++n) {
      m_check[static_cast<size_t>(n)]->setEnabled(on);
      m_checkText[static_cast<size_t>(n)]->setEnabled(on);
      SetCheckPicture(m_check[static_cast<size_t>(n)], false);
    }
    // Copied images and on-line images exclude each other.
    if (on) SetCheck(11, false);
    return;
  }
  SetCheck(number, !CheckOn(number));
  if (number == 11 && CheckOn(11) && CheckOn(4)) ToggleCheckBox(4);
}

bool ListDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_text2 && event->type() == QEvent::FocusIn) {
    // After the focus event a click places the cursor; select once it has.
    QTimer::singleShot(0, m_text2, [this] { SelectAllText(m_text2); });
    return false;
  }
  const bool click = event->type() == QEvent::MouseButtonRelease;
  const bool space =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space;
  if (!click && !space) return QDialog::eventFilter(watched, event);
  auto* widget = qobject_cast<QWidget*>(watched);
  if (!widget || !widget->isEnabled()) return QDialog::eventFilter(watched, event);
  for (int i = 0; i < 5; ++i) {
    if (watched == m_radio[static_cast<size_t>(i)] ||
        watched == m_radioText[static_cast<size_t>(i)]) {
      ClickRadio(i);
      return true;
    }
  }
  for (int n = 1; n <= 11; ++n) {
    if (watched == m_check[static_cast<size_t>(n)] ||
        watched == m_checkText[static_cast<size_t>(n)]) {
      ToggleCheckBox(n);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

HtmlPageState ListDialog::HtmlState() const {
  HtmlPageState state;
  state.skin = FromQt(m_combo1->currentText());
  state.destination = FromQt(m_text2->text());
  state.skipClones = CheckOn(2);
  state.onlyAvailable = CheckOn(3);
  state.copyImages = CheckOn(4);
  for (int n = 5; n <= 10; ++n) state.imageSets[static_cast<size_t>(n - 5)] = CheckOn(n);
  state.imagesOnline = CheckOn(11);
  state.searchIndex = m_searchIndex->isChecked();
  return state;
}

// ---- actions ----

void ListDialog::ChooseIniFile() {
  const std::string chosen = m_ctx.Ui().ChooseFile(m_ctx.messages.Lng(324), "Folder.ini",
                                                   IniFileFilter(m_ctx.messages), false);
  if (!chosen.empty() && FileExists(chosen)) m_text4->setText(ToQt(chosen));
}

void ListDialog::ChooseDestination() {
  const std::string chosen =
      BrowseFolderDialog(this, FromQt(m_text2->text()), m_ctx.messages.Lng(141), true);
  if (!chosen.empty()) m_text2->setText(ToQt(chosen));
}

void ListDialog::BuildText() {
  TextListControls controls;
  controls.radio = static_cast<SeparatorRadio>(SelectedRadio());
  controls.otherText = FromQt(m_text1->text());
  controls.quotes = CheckOn(1);
  for (int i = 0; i < m_list1->count() && i < kListFieldCount; ++i) {
    controls.selected[static_cast<size_t>(i)] = m_list1->item(i)->isSelected();
  }
  controls.iniFile = FromQt(m_text4->text());
  const std::optional<TextListRequest> request = PrepareTextList(m_ctx, controls);
  if (!request) return;
  hide();
  ListRunResult result = ListRunResult::Failed;
  RunWithWorkingDialog(parentWidget(), m_ctx, m_ctx.messages.Lng(140),
                       [&](Work& work) { result = BuildTextList(m_ctx, work, *request); });
  // A cancelled list ends quietly, and a failed one has told the log.
  if (result == ListRunResult::Done) m_ctx.Ui().ShowMessage(false, {}, {}, Icon::Information);
  show();
}

void ListDialog::ExportDat() {
  const std::string output = m_ctx.Ui().ChooseFile(m_ctx.messages.Lng(34), "List.dat",
                                                   DatFileFilter(m_ctx.messages), true);
  if (output.empty()) return;
  DatMask mask;
  if (!PrepareDatMask(m_ctx, mask)) return;
  const std::string iniFile = FromQt(m_text4->text());
  hide();
  RunWithWorkingDialog(parentWidget(), m_ctx, m_ctx.messages.Lng(140),
                       [&](Work& work) { ExportDatList(m_ctx, work, mask, iniFile, output); });
  show();
}

}  // namespace tessarin
