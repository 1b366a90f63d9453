// The search dialog, offscreen: its controls by name, Find and the result list, the hide rule,
// the settings kept at unload, and each action driven through the dialog with scripted answers.

#include "search/searchdialog.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QToolButton>
#include <deque>
#include <filesystem>

#include "core/fileservices.h"
#include "online/urllist.h"
#include "search/foundpage.h"
#include "search/resultactions.h"
#include "searchtestsupport.h"
#include "shell/desktopshellui.h"
#include "shell/mainframe.h"
#include "shell/startup.h"
#include "support/qtapp.h"
#include "support/scopedtrash.h"
#include "widgets/desktopui.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;
namespace fs = std::filesystem;

// Answers from a script and remembers what it was told.
class ScriptedUi final : public UserInterface {
 public:
  std::deque<bool> yesNo;
  std::deque<std::string> files;
  std::vector<std::string> messages, titles, questions, opened;

  void ShowMessage(bool, const std::string& text, const std::string& title, Icon) override {
    messages.push_back(text);
    titles.push_back(title);
  }
  bool AskYesNo(const std::string& text, const std::string&, Icon) override {
    questions.push_back(text);
    if (yesNo.empty()) return false;
    const bool answer = yesNo.front();
    yesNo.pop_front();
    return answer;
  }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    if (files.empty()) return {};
    std::string file = files.front();
    files.pop_front();
    return file;
  }
  void OpenDocument(const std::string& target) override { opened.push_back(target); }
};

void Shot(QWidget* widget, const QString& name) {
  const QString folder = QStringLiteral("/work/shots/search");
  if (!QDir().mkpath(folder)) return;
  widget->grab().save(folder + QStringLiteral("/") + name + QStringLiteral(".png"));
}

class Dialog : public ::testing::Test {
 protected:
  void SetUp() override {
    AppContext& ctx = m_holder.ctx();
    ctx.SetUi(&m_ui);
    ctx.TempFolder = m_temp.Path();
    fs::create_directories(m_holder.Folder() + "DataFiles");
    WriteFile(m_holder.Folder() + "DataFiles/index", ReadFile(searchtest::SearchFixture("index")));
    m_sites.SetDefaults();
    SearchDialogHookTable() = {};
    SearchGamePageHooks() = {};
  }
  void TearDown() override {
    m_holder.ctx().SearchMayClose = true;
    m_dialog.reset();
    SearchDialogHookTable() = {};
    SearchGamePageHooks() = {};
  }
  // The HTML page of a game is its rom name in a heading.
  void UseHeadingPages() {
    SearchGamePageHooks().FillGamePage = [](AppContext&, const std::string&, const std::string& rom,
                                            bool) { return "<h1>" + rom + "</h1>"; };
    SearchGamePageHooks().DefaultTemplate = [] { return std::string("#ROMNAME"); };
    fs::create_directories(Ctx().AppFolder() + "HTML");
  }
  SearchDialog& Open() {
    m_dialog = std::make_unique<SearchDialog>(nullptr, m_holder.ctx(), &m_sites);
    m_dialog->ShowPanel = [this] { ++m_panelShown; };
    m_dialog->show();
    return *m_dialog;
  }
  template <class T>
  T* Child(const char* name) {
    T* child = m_dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(child, nullptr) << name;
    return child;
  }
  QComboBox* Combo(int n) {
    return m_dialog->findChild<QComboBox*>(QStringLiteral("Combo%1").arg(n));
  }
  void Click(const char* name) { Child<QAbstractButton>(name)->click(); }
  void Find(const QString& keyword) {
    Child<QLineEdit>("Text1")->setText(keyword);
    Click("Command1");
  }
  void Select(std::initializer_list<int> rows) {
    auto* list = Child<QListView>("List1");
    list->clearSelection();
    for (const int row : rows) {
      list->selectionModel()->select(list->model()->index(row, 0), QItemSelectionModel::Select);
    }
    if (rows.size() > 0) {
      list->selectionModel()->setCurrentIndex(list->model()->index(*rows.begin(), 0),
                                              QItemSelectionModel::NoUpdate);
    }
  }
  int Rows() { return Child<QListView>("List1")->model()->rowCount(); }
  std::string Line(int row) { return m_dialog->Lines()[static_cast<size_t>(row)]; }
  AppContext& Ctx() { return m_holder.ctx(); }

  searchtest::ContextHolder m_holder;
  TempFolder m_temp;
  ScriptedUi m_ui;
  UrlTables m_sites;
  std::unique_ptr<SearchDialog> m_dialog;
  int m_panelShown = 0;
};

TEST_F(Dialog, EveryControlByNameWithItsCaption) {
  Open();
  EXPECT_EQ(m_dialog->objectName(), QStringLiteral("Form6"));
  for (int n = 1; n <= 16; ++n) {
    EXPECT_NE(m_dialog->findChild<QPushButton*>(QStringLiteral("Command%1").arg(n)), nullptr) << n;
  }
  for (int n = 1; n <= 20; ++n) EXPECT_NE(Combo(n), nullptr) << n;
  for (int n = 0; n <= 15; ++n) {
    EXPECT_NE(m_dialog->findChild<QLabel*>(QStringLiteral("Label1_%1").arg(n)), nullptr) << n;
  }
  for (const char* name : {"Label2", "Label3", "Label4", "Label5", "Label6", "Label7"}) {
    Child<QLabel>(name);
  }
  for (const char* name : {"Image1", "Image2", "Image3"}) Child<QToolButton>(name);
  Child<QCheckBox>("Chk1");
  Child<QCheckBox>("Chk2");
  Child<QRadioButton>("Radio_0");
  Child<QRadioButton>("Radio_1");
  Child<QLineEdit>("Text1");
  Child<QListView>("List1");
  EXPECT_EQ(Child<QPushButton>("Command1")->text(), QStringLiteral("&Find"));
  EXPECT_EQ(Child<QPushButton>("Command2")->text(), QStringLiteral("&Show"));
  EXPECT_EQ(Child<QPushButton>("Command6")->text(), QStringLiteral("Make an &INI"));
  EXPECT_EQ(Child<QPushButton>("Command7")->text(), QStringLiteral("&Close"));
  EXPECT_EQ(Child<QPushButton>("Command10")->text(), QStringLiteral("Title/Rom"));
  EXPECT_EQ(Child<QPushButton>("Command12")->text(), QStringLiteral("Download missing images"));
  EXPECT_EQ(Child<QLabel>("Label1_0")->text(), QStringLiteral("Keyword :"));
  EXPECT_EQ(Child<QLabel>("Label1_13")->text(), QStringLiteral("Driver :"));
  EXPECT_EQ(Child<QLabel>("Label1_15")->text(), QStringLiteral("Title :"));
  EXPECT_EQ(Child<QLabel>("Label5")->text(), QStringLiteral("Sort by :"));
  EXPECT_EQ(Child<QToolButton>("Image1")->toolTip(), QStringLiteral("Copy list to clipboard"));
  EXPECT_EQ(Child<QToolButton>("Image2")->toolTip(), QStringLiteral("Save list to text file"));
  EXPECT_EQ(Child<QToolButton>("Image3")->toolTip(), QStringLiteral("AtomicFE options"));
  Shot(m_dialog.get(), QStringLiteral("form6_empty"));
}

TEST_F(Dialog, LoadFillsTheListsAndLeavesEveryBoxEmpty) {
  Open();
  EXPECT_EQ(Ctx().store.GameCount(), 10);  // the index was read by the load
  EXPECT_EQ(Combo(1)->count(), 5);
  EXPECT_EQ(Combo(1)->itemText(0), QStringLiteral("All"));
  EXPECT_EQ(Combo(20)->count(), 3);
  EXPECT_EQ(Combo(19)->count(), 2);  // the two built-in search sites
  for (int n : {1, 2, 3, 8, 9, 10, 11, 12, 16, 17, 20}) {
    EXPECT_TRUE(Combo(n)->currentText().isEmpty()) << n;
  }
  EXPECT_TRUE(Child<QRadioButton>("Radio_0")->isChecked());
  EXPECT_FALSE(Child<QPushButton>("Command2")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>("Command15")->isEnabled());  // no viewer program
}

TEST_F(Dialog, KeywordAndFindShowTheResultsAtOnce) {
  Open();
  Find(QStringLiteral("STREET"));
  ASSERT_EQ(Rows(), 2);
  EXPECT_EQ(Line(0), "sf2      Street Fighter II: The World Warrior");
  EXPECT_EQ(Child<QLabel>("Label3")->text(),
            QStringLiteral("2 roms were found with these criterias :"));
  for (const char* name :
       {"Command2", "Command3", "Command4", "Command5", "Command6", "Command11"}) {
    EXPECT_TRUE(Child<QPushButton>(name)->isEnabled()) << name;
  }
  Shot(m_dialog.get(), QStringLiteral("form6_street"));
}

TEST_F(Dialog, NothingFoundIsOneLineAndAddAListReplacesIt) {
  Open();
  Combo(12)->setEditText(QStringLiteral("sideways"));
  Click("Command1");
  ASSERT_EQ(Rows(), 1);
  EXPECT_EQ(Line(0), "NO ROM FOUND !");
  EXPECT_TRUE(Child<QLabel>("Label3")->text().isEmpty());
  EXPECT_FALSE(Child<QPushButton>("Command6")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>("Command2")->isEnabled());
  const std::string file = m_temp / "list.ini";
  WriteFile(file, "[FOLDER_SETTINGS]\r\npacman\r\nsf2\r\n");
  m_ui.files = {file, file};
  m_dialog->AddList();
  ASSERT_EQ(Rows(), 2);
  EXPECT_EQ(Line(0), "pacman    Pac-Man (Midway)");
  EXPECT_TRUE(Child<QPushButton>("Command6")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>("Command2")->isEnabled());  // the other buttons stay as they were
  EXPECT_EQ(Child<QLabel>("Label3")->text(),
            QStringLiteral("2 roms were found with these criterias :"));
  m_dialog->AddList();  // the same file twice adds each rom once
  EXPECT_EQ(Rows(), 2);
  WriteFile(file, "sf2\r\n");
  m_ui.files = {file};
  m_dialog->WithdrawList();
  EXPECT_EQ(Rows(), 1);
  EXPECT_EQ(Child<QLabel>("Label3")->text(),
            QStringLiteral("1 roms were found with these criterias :"));
}

TEST_F(Dialog, VersionOperatorGoesBackToEqualsForAVersionNumberedZero) {
  Open();
  Combo(17)->setEditText(QStringLiteral("?"));
  Combo(20)->setCurrentIndex(2);
  Click("Command1");
  EXPECT_EQ(Combo(20)->currentText(), QStringLiteral("="));
  ASSERT_EQ(Rows(), 1);
  EXPECT_EQ(Line(0).substr(0, 6), "nodesc");
  Combo(17)->setEditText(QStringLiteral("0.135"));
  Combo(20)->setCurrentIndex(1);
  Click("Command1");
  EXPECT_EQ(Rows(), 4);
  EXPECT_EQ(Line(0).substr(0, 7), "puckman");
}

TEST_F(Dialog, CloseHidesWhileTheSearchMayNotCloseAndKeepsTheResults) {
  Open();
  Find(QStringLiteral("pac"));
  ASSERT_EQ(Rows(), 2);
  m_dialog->close();
  EXPECT_TRUE(m_dialog->isHidden());
  EXPECT_EQ(m_panelShown, 1);
  m_dialog->show();
  EXPECT_EQ(Rows(), 2);  // reopened, the same results
  Child<QCheckBox>("Chk1")->setChecked(true);
  Combo(19)->setCurrentIndex(1);
  Ctx().SearchMayClose = true;
  m_dialog->close();
  EXPECT_FALSE(Ctx().SearchMayClose);
  EXPECT_TRUE(m_dialog->isHidden());
  EXPECT_EQ(Ctx().settings.InfRead("Form6HTML"), "1");
  EXPECT_EQ(Ctx().settings.InfRead("Frm6nSearch"), "1");
  EXPECT_NE(Ctx().settings.InfRead("Form6Top"), "-1");
  EXPECT_EQ(Ctx().settings.InfRead("Form6ImagesOnline"), "");
  // A second close of an unloaded dialog doesn't hide it again and bring the panel back.
  m_dialog->close();
  EXPECT_EQ(m_panelShown, 1);
}

TEST_F(Dialog, EscapeClosesByTheSameRule) {
  Open();
  QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
  EXPECT_TRUE(m_dialog->isHidden());
  EXPECT_EQ(m_panelShown, 1);
  EXPECT_EQ(Ctx().settings.InfRead("Form6Top"), "-1");  // hidden, not unloaded
  m_dialog->show();
  Ctx().SearchMayClose = true;
  QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
  EXPECT_TRUE(m_dialog->isHidden());
  EXPECT_EQ(m_panelShown, 1);
  EXPECT_NE(Ctx().settings.InfRead("Form6Top"), "-1");
}

TEST_F(Dialog, HtmlCheckRulesTheSkinAndOnlineBoxes) {
  fs::create_directories(Ctx().AppFolder() + "HTML/Blue.skin");
  WriteFile(Ctx().AppFolder() + "HTML/Default_EN.skin.zip", "zip");
  Ctx().settings.InfWrite("Frm7Skin", "Default_EN.skin.zip");
  Open();
  EXPECT_EQ(Combo(18)->count(), 2);
  EXPECT_EQ(Combo(18)->currentText(), QStringLiteral("Default_EN.skin.zip"));
  auto* html = Child<QCheckBox>("Chk1");
  EXPECT_FALSE(html->isChecked());
  EXPECT_FALSE(Combo(18)->isEnabled());
  EXPECT_FALSE(Child<QCheckBox>("Chk2")->isEnabled());
  QTest::mouseClick(Child<QLabel>("Label4"), Qt::LeftButton);
  EXPECT_TRUE(html->isChecked());
  EXPECT_EQ(html->property("Tag").toString(), QStringLiteral("1"));
  EXPECT_TRUE(Combo(18)->isEnabled());
  EXPECT_TRUE(Child<QLabel>("Label2")->isEnabled());
  QTest::mouseClick(Child<QLabel>("Label2"), Qt::LeftButton);
  EXPECT_TRUE(Child<QCheckBox>("Chk2")->isChecked());
}

TEST_F(Dialog, SortByTitleAndBackByRom) {
  Open();
  Click("Command1");
  ASSERT_EQ(Rows(), 10);
  QTest::mouseClick(Child<QLabel>("Label7"), Qt::LeftButton);
  EXPECT_TRUE(Child<QRadioButton>("Radio_1")->isChecked());
  EXPECT_FALSE(Child<QRadioButton>("Radio_0")->isChecked());
  // By title and by character code: capitals first, the empty title behind them all.
  EXPECT_EQ(Line(0).substr(0, 7), "kwgame ");
  EXPECT_EQ(Line(2).substr(0, 7), "pacman ");
  EXPECT_EQ(Line(4).substr(0, 5), "sf2j ");
  EXPECT_EQ(Line(9).substr(0, 7), "nodesc ");
  Click("Radio_0");
  EXPECT_TRUE(Child<QRadioButton>("Radio_0")->isChecked());
  EXPECT_EQ(Line(0).substr(0, 7), "kwgame ");
  EXPECT_EQ(Line(2).substr(0, 7), "nodesc ");
  Click("Command1");  // a new search resets the radios without sorting
  EXPECT_EQ(Line(0).substr(0, 6), "pacman");
}

TEST_F(Dialog, DeleteAsksAndDeletesEveryListedRomWithNothingSelected) {
  TempFolder roms, trashHome;
  testsupport::ScopedTrash trash(trashHome.Path());
  Ctx().settings.InfWrite("RomPath", roms.Path());
  for (const char* name : {"pacman", "puckman", "sf2"})
    WriteFile(roms / (std::string(name) + ".zip"), name);
  Open();
  Find(QStringLiteral("p"));  // pacman, puckman, zorbmain? no: names and titles holding "p"
  m_ui.yesNo = {false};
  m_dialog->DeleteRoms();
  ASSERT_EQ(m_ui.questions.size(), 1u);
  EXPECT_EQ(m_ui.questions[0], Ctx().messages.Lng(313));
  EXPECT_TRUE(fs::exists(roms / "pacman.zip"));
  Select({1});
  m_ui.yesNo = {true};
  m_dialog->DeleteRoms();
  EXPECT_EQ(m_ui.questions[1], Ctx().messages.Lng(314));
  Select({});
  m_ui.yesNo = {true};
  m_dialog->DeleteRoms();
  EXPECT_FALSE(fs::exists(roms / "pacman.zip"));
  EXPECT_FALSE(fs::exists(roms / "puckman.zip"));
  EXPECT_TRUE(fs::exists(roms / "sf2.zip"));  // not in the list
  EXPECT_GE(Rows(), 2);                       // the lines stay
}

TEST_F(Dialog, MoveWithTheChooserCancelledDeletesNothingAndCopyCopies) {
  TempFolder roms, dest, trashHome;
  testsupport::ScopedTrash trash(trashHome.Path());
  Ctx().settings.InfWrite("RomPath", roms.Path());
  for (const char* name : {"sf2", "sf2j"}) WriteFile(roms / (std::string(name) + ".zip"), name);
  Open();
  Find(QStringLiteral("street"));
  m_dialog->ChooseFolder = [](const std::string&) { return std::string(); };
  m_dialog->MoveRoms();
  EXPECT_TRUE(fs::exists(roms / "sf2.zip"));
  EXPECT_TRUE(fs::exists(roms / "sf2j.zip"));
  m_dialog->ChooseFolder = [&](const std::string& title) {
    EXPECT_EQ(title, "Folder where the roms will be copied");
    return dest.Path();
  };
  Select({1});
  m_dialog->CopyRoms();
  EXPECT_TRUE(fs::exists(dest / "sf2j.zip"));
  EXPECT_FALSE(fs::exists(dest / "sf2.zip"));
  Select({});
  m_dialog->MoveRoms();
  EXPECT_TRUE(fs::exists(dest / "sf2.zip"));
  EXPECT_FALSE(fs::exists(roms / "sf2.zip"));
  EXPECT_FALSE(fs::exists(roms / "sf2j.zip"));
}

TEST_F(Dialog, MakeIniTextFileAndClipboard) {
  Open();
  Find(QStringLiteral("street"));
  m_dialog->AskText = [](const std::string& prompt, const std::string& title,
                         const std::string& text) {
    EXPECT_EQ(prompt, "folder name :");
    EXPECT_EQ(title, "Make an INI");
    EXPECT_EQ(text, "folder");
    return std::string("Fighters");
  };
  const std::string ini = m_temp / "fighters.ini";
  m_ui.files = {ini};
  m_ui.yesNo = {true};
  m_dialog->MakeIni();
  EXPECT_EQ(ReadFile(ini),
            "[FOLDER_SETTINGS]\r\nRootFolderIcon cust1\r\nSubFolderIcon cust2\r\n\r\n\r\n"
            "[Fighters]\r\nsf2.zip    \r\nsf2j.zip    \r\n");
  EXPECT_EQ(m_ui.messages.back(), "");  // "Done."
  // An existing file is overwritten only on a yes.
  m_ui.files = {ini};
  m_ui.yesNo = {false};
  m_dialog->MakeIni();
  EXPECT_NE(ReadFile(ini).find(".zip"), std::string::npos);
  m_dialog->AskText = [](const std::string&, const std::string&, const std::string&) {
    return std::string();
  };
  m_dialog->MakeIni();
  EXPECT_EQ(m_ui.messages.back(), "First, you must enter a \"folder\" name");

  const std::string text = m_temp / "list.txt";
  m_ui.files = {text};
  m_ui.yesNo = {true};
  m_dialog->SaveTextFile();
  EXPECT_EQ(ReadFile(text),
            "2 roms were found with these criterias :\r\n"
            "sf2.zip        Street Fighter II: The World Warrior\r\n"
            "sf2j.zip       Street Fighter II (Japan 911210)\r\n");

  Select({0});  // the clipboard takes every line whatever is selected
  m_dialog->CopyToClipboard();
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            QStringLiteral("2 roms were found with these criterias :\r\n"
                           "sf2      Street Fighter II: The World Warrior\r\n"
                           "sf2j     Street Fighter II (Japan 911210)\r\n"));
}

TEST_F(Dialog, ShowOpensTheSheetOrTheHtmlPage) {
  std::vector<std::string> sheets;
  SearchDialogHookTable().OpenGameSheet = [&](QWidget*, AppContext&, const std::string& rom) {
    sheets.push_back(rom);
  };
  UseHeadingPages();
  Open();
  Find(QStringLiteral("street"));
  Select({1});
  Click("Command2");
  EXPECT_EQ(sheets, std::vector<std::string>{"sf2j"});
  Child<QCheckBox>("Chk1")->setChecked(true);
  Click("Command2");
  ASSERT_EQ(m_ui.opened.size(), 1u);
  EXPECT_EQ(m_ui.opened[0], m_temp / "Found.htm");
  EXPECT_EQ(ReadFile(m_ui.opened[0]), "<h1>sf2j</h1>");
  // The line of message 334 opens nothing.
  Combo(12)->setEditText(QStringLiteral("sideways"));
  Click("Command1");
  Select({0});
  Child<QCheckBox>("Chk1")->setChecked(false);
  m_dialog->Show();
  EXPECT_EQ(sheets.size(), 1u);
}

// An empty rom name (a jump box entry whose name would end two characters before its "-")
// shows the page of the focused line's game.
TEST_F(Dialog, AnEmptyRomNameShowsTheFocusedLinesPage) {
  UseHeadingPages();
  Open();
  Find(QStringLiteral("street"));
  Select({1});
  Child<QCheckBox>("Chk1")->setChecked(true);
  m_dialog->ShowGameFromList(RomFromRomFirstEntry("a-b"));
  ASSERT_EQ(m_ui.opened.size(), 1u);
  EXPECT_EQ(ReadFile(m_ui.opened[0]), "<h1>sf2j</h1>");
}

TEST_F(Dialog, JumpBoxesFillOnceAndOpenTheGame) {
  std::vector<std::string> sheets;
  SearchDialogHookTable().OpenGameSheet = [&](QWidget*, AppContext&, const std::string& rom) {
    sheets.push_back(rom);
  };
  Open();
  EXPECT_EQ(Combo(14)->count(), 0);
  m_dialog->FillJumpBoxes();
  m_dialog->FillJumpBoxes();
  EXPECT_EQ(Combo(14)->count(), 10);
  EXPECT_EQ(Combo(15)->count(), 10);
  Combo(14)->setCurrentIndex(2);
  Click("Command8");
  EXPECT_EQ(sheets.back(), "sf2");
  EXPECT_FALSE(Combo(15)->isVisible());
  Click("Command10");
  EXPECT_TRUE(Combo(15)->isVisible());
  EXPECT_FALSE(Combo(14)->isVisible());
  EXPECT_TRUE(Child<QLabel>("Label1_15")->isVisible());
  Combo(15)->setCurrentIndex(0);
  Click("Command9");
  EXPECT_EQ(sheets.back(), "pacman");
}

TEST_F(Dialog, DownloadNeedsOneToTenSelectedLines) {
  TempFolder site, images;
  WriteFile(site / "pacman.png", "PNG");
  Ctx().settings.InfWrite("TitlesPath", images.Path());
  m_sites.OnlineImages[1] = "file://" + site.Path() + "#ROMNAME#.png";
  Open();
  Click("Command1");
  ASSERT_EQ(Rows(), 10);
  Select({});
  Click("Command12");
  EXPECT_EQ(m_ui.messages.back(), "Select one rome at least in the list");
  Select({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  Click("Command12");
  EXPECT_TRUE(fs::exists(images / "pacman.png"));
}

TEST_F(Dialog, DownloadWithElevenLinesShowsTheLimitAndFetchesNothing) {
  searchtest::RandomStore(Ctx().store, 5, 20);
  TempFolder site, images;
  for (const std::string& name : Ctx().store.GameNames()) {
    if (!name.empty()) WriteFile(site / (name + ".png"), "PNG");
  }
  Ctx().settings.InfWrite("TitlesPath", images.Path());
  m_sites.OnlineImages[1] = "file://" + site.Path() + "#ROMNAME#.png";
  Open();
  Click("Command1");
  ASSERT_EQ(Rows(), 20);
  Select({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
  Click("Command12");
  EXPECT_EQ(m_ui.messages.back(), Ctx().messages.Lng(399));
  EXPECT_EQ(m_ui.titles.back(), "Limitation");
  EXPECT_TRUE(fs::is_empty(images.Path()));
  Select({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  Click("Command12");
  EXPECT_FALSE(fs::is_empty(images.Path()));
}

TEST_F(Dialog, SearchOnlineOpensTheChosenSite) {
  m_sites.SearchEngines = {std::string(), "One:http://one/#ROMNAME#",
                           "Two:http://two/?g=#GAMENAME#"};
  Open();
  EXPECT_EQ(Combo(19)->count(), 2);
  Find(QStringLiteral("street"));
  Click("Command11");
  EXPECT_TRUE(m_ui.opened.empty());  // no line selected
  Select({1});
  Combo(19)->setCurrentIndex(1);
  Click("Command11");
  ASSERT_EQ(m_ui.opened.size(), 1u);
  EXPECT_EQ(m_ui.opened[0], "http://two/?g=Street Fighter II (Japan 911210)");
}

TEST_F(Dialog, FortyThousandLinesShowAtOnce) {
  searchtest::RandomStore(Ctx().store, 99, 40000);
  Open();
  QElapsedTimer timer;
  timer.start();
  Click("Command1");
  QApplication::processEvents();
  const qint64 elapsed = timer.elapsed();
  EXPECT_EQ(Rows(), 40000);
  // Generous for a busy test machine; on a quiet one it is a few tens of milliseconds.
  EXPECT_LT(elapsed, 3000);
  Child<QListView>("List1")->scrollToBottom();
  QApplication::processEvents();
  Shot(m_dialog.get(), QStringLiteral("form6_40000"));
}

}  // namespace
}  // namespace tessarin

namespace tessarin {
namespace {

bool WaitUntil(const std::function<bool()>& done) {
  for (int i = 0; i < 200 && !done(); ++i) QTest::qWait(10);
  return done();
}

// The dialog in the real frame: opened from the panel, hidden by its close while the search may
// not close (panel back, results kept), shown again from the menu, let go when the frame closes.
TEST(DialogInFrame, PanelMenuHideAndFrameClose) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  QtUserInterface ui(ctx);
  ctx.SetUi(&ui);
  ShellSession session;
  UrlTables sites;
  WriteFile(folder / "Tessarin.inf", "Language=1\r\nMDIState=0\r\n");
  fs::create_directories(folder.Path() + "DataFiles");
  WriteFile(folder / "DataFiles/index", ReadFile(searchtest::SearchFixture("index")));
  std::unique_ptr<MainFrame> frame = StartDesktop(ctx, session, ui, sites);
  ASSERT_NE(frame, nullptr);
  QTest::qWait(50);
  ASSERT_TRUE(frame->PanelEntryAvailable(0));
  frame->RunEntry(0);
  QPointer<SearchDialog> dialog;
  ASSERT_TRUE(WaitUntil([&] {
    dialog = frame->findChild<SearchDialog*>(QStringLiteral("Form6"));
    return dialog && dialog->isVisible();
  }));
  EXPECT_TRUE(WaitUntil([&] { return frame->Panel() == nullptr; }));
  dialog->findChild<QLineEdit*>(QStringLiteral("Text1"))->setText(QStringLiteral("street"));
  dialog->RunSearch();
  EXPECT_EQ(dialog->Lines().size(), 2u);
  dialog->close();
  EXPECT_TRUE(dialog->isHidden());
  EXPECT_TRUE(WaitUntil([&] { return frame->Panel() != nullptr; }));
  frame->findChild<QAction*>(QStringLiteral("MnuRecherche"))->trigger();
  EXPECT_TRUE(WaitUntil([&] { return dialog->isVisible(); }));
  EXPECT_EQ(dialog->Lines().size(), 2u);
  EXPECT_EQ(frame->findChildren<SearchDialog*>().size(), 1);
  EXPECT_TRUE(WaitUntil([&] { return frame->Panel() == nullptr; }));
  frame->close();
  EXPECT_TRUE(WaitUntil([&] { return dialog.isNull(); }));
  EXPECT_FALSE(ctx.SearchMayClose);
  frame.reset();
  ctx.SetUi(nullptr);
}

}  // namespace
}  // namespace tessarin
