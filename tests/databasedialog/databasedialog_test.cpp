// The database window, offscreen and driven by its object names: its pages and captions, the
// opening, every button's job against the fake emulator and a local web server, and its place
// on the frame's panel.

#include "builder/databasedialog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <memory>

#include "archive/ziptestutil.h"
#include "builder/buildertestsupport.h"
#include "builder/databaseops.h"
#include "core/fileservices.h"
#include "core/work.h"
#include "store/indexfile.h"
#include "support/routeserver.h"
#include "widgets/workingdialog.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using buildertest::BuilderFixture;
using HttpFileServer = testsupport::RouteServer;
using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

class QtApp final : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    m_temp = std::make_unique<QTemporaryDir>();
    qputenv("TMPDIR", m_temp->path().toUtf8());
    static int argc = 1;
    static char name[] = "test_databasedialog_ui";
    static char* argv[] = {name, nullptr};
    m_app = std::make_unique<QApplication>(argc, argv);
  }
  void TearDown() override {
    m_app.reset();
    m_temp.reset();
  }

 private:
  std::unique_ptr<QTemporaryDir> m_temp;
  std::unique_ptr<QApplication> m_app;
};
[[maybe_unused]] ::testing::Environment* const kApp =
    ::testing::AddGlobalTestEnvironment(new QtApp);

const std::string kFakeEmulator = BuilderFixture("cli/fake-mame.sh");
const std::string kFakeVersion = "MAME v0.999 (fake for tests)";

// Sets an environment variable for the fake emulator for one test.
class EnvVar {
 public:
  EnvVar(const char* name, const std::string& value) : m_name(name) {
    qputenv(name, QByteArray::fromStdString(value));
  }
  ~EnvVar() { qunsetenv(m_name); }

 private:
  const char* m_name;
};

template <class T>
T* Child(QWidget* parent, const QString& name) {
  T* child = parent->findChild<T*>(name);
  EXPECT_NE(child, nullptr) << name.toStdString();
  return child;
}
template <class T>
T* Child(QWidget* parent, const char* name) {
  return Child<T>(parent, QString::fromLatin1(name));
}

class DatabaseDialogTest : public ::testing::Test {
 protected:
  DatabaseDialogTest() {
    // The rom folder and the data files stay inside the test's folder.
    home.ctx.settings.InfWrite("RomPath", home.Folder() + "roms/");
    fs::create_directories(home.Folder() + "roms");
    for (int n = 2; n <= 17; ++n) {
      home.ctx.settings.InfWrite("DataFile" + std::to_string(n),
                                 home.Folder() + "nofile" + std::to_string(n));
    }
  }

  DatabaseDialog& Open() {
    DownloadListAccess access;
    access.Load = [this] { return lines; };
    access.Save = [this](const std::vector<DownloadLine>& saved) {
      lines = saved;
      ++saves;
    };
    dialog = std::make_unique<DatabaseDialog>(nullptr, home.ctx, access);
    dialog->show();
    QApplication::processEvents();
    return *dialog;
  }
  QAbstractButton* Button(const char* name) { return Child<QAbstractButton>(dialog.get(), name); }
  void UseFakeEmulator() { home.ctx.settings.InfWrite("Datafile1", kFakeEmulator); }
  std::string Index() { return ReadBytes(IndexFilePath(home.Folder())); }
  bool Shown(const std::string& text) const {
    for (const auto& m : home.ui.messages) {
      if (m.text == text) return true;
    }
    return false;
  }
  // A first database, made without the window.
  void BuildFirst() {
    UseFakeEmulator();
    Work work;
    ASSERT_TRUE(CreateDatabase(home.ctx, work));
    home.ui.messages.clear();
    home.ui.questions.clear();
  }

  TestHome home;
  std::vector<DownloadLine> lines = std::vector<DownloadLine>(11);
  int saves = 0;
  std::unique_ptr<DatabaseDialog> dialog;
};

TEST_F(DatabaseDialogTest, PagesControlsAndCaptions) {
  lines[0] = {"History", "http://dl.invalid/history.zip", "http://history.invalid/", false};
  DatabaseDialog& d = Open();
  EXPECT_EQ(d.objectName(), QStringLiteral("Form3"));
  EXPECT_EQ(d.windowTitle(), QStringLiteral("Database"));
  for (int i = 0; i < 6; ++i) {
    EXPECT_NE(d.findChild<QWidget*>(QStringLiteral("Frame1_%1").arg(i)), nullptr) << i;
  }
  EXPECT_EQ(d.CurrentPage(), 0);
  EXPECT_TRUE(Child<QWidget>(&d, "Frame1_0")->isVisible());
  EXPECT_FALSE(Child<QWidget>(&d, "Frame1_1")->isVisible());
  const char* menu[5] = {"Update database", "Download data", "Define paths to the data",
                         "Make an Access database", "Exit"};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(Child<QPushButton>(&d, QStringLiteral("Label6_%1").arg(i))->text(),
              QString::fromLatin1(menu[i]));
    EXPECT_FALSE(Child<QLabel>(&d, QStringLiteral("Image2_%1").arg(i))->pixmap().isNull());
  }
  EXPECT_EQ(Button("Command11_0")->text(), QStringLiteral("Complete creation of the database"));
  EXPECT_EQ(Child<QLabel>(&d, "Command11Txt_0")->text(),
            QStringLiteral("The database is erased and re-created."));
  EXPECT_EQ(Button("Command11_3")->text(), QStringLiteral("Selected updates"));
  EXPECT_EQ(Button("Command11_4")->text(), QStringLiteral("Exit"));
  EXPECT_EQ(Button("Command6")->text(), QStringLiteral("&Download"));
  EXPECT_EQ(Button("Command7")->text(), QStringLiteral("&Close"));
  EXPECT_EQ(Button("Command2")->text(), QStringLiteral("&Next"));
  EXPECT_EQ(Button("Command3")->text(), QStringLiteral("&Previous"));
  EXPECT_EQ(Button("Command9")->text(), QStringLiteral("Update"));
  EXPECT_EQ(Button("Command10")->text(), QStringLiteral("&Previous"));
  EXPECT_EQ(Child<QLabel>(&d, "Label1_0")->text(),
            QStringLiteral("Path to the MAME, MAME32 or any MAME build executable :"));
  EXPECT_EQ(Child<QLabel>(&d, "Label1_2")->text(), QStringLiteral("Path to Mameinfo.dat"));
  for (int i = 0; i < 12; ++i) {
    EXPECT_NE(d.findChild<QLineEdit*>(QStringLiteral("Text1_%1").arg(i)), nullptr) << i;
    EXPECT_NE(d.findChild<QAbstractButton*>(QStringLiteral("Command1_%1").arg(i)), nullptr) << i;
  }
  for (int i = 0; i < 11; ++i) {
    EXPECT_NE(d.findChild<QCheckBox*>(QStringLiteral("Chk1_%1").arg(i)), nullptr) << i;
    EXPECT_NE(d.findChild<QLabel*>(QStringLiteral("Chk1Txt_%1").arg(i)), nullptr) << i;
    EXPECT_NE(d.findChild<QLineEdit*>(QStringLiteral("Text2_%1").arg(i)), nullptr) << i;
    EXPECT_NE(d.findChild<QAbstractButton*>(QStringLiteral("Command8_%1").arg(i)), nullptr) << i;
  }
  // The site list fills the download page.
  EXPECT_EQ(Child<QLabel>(&d, "Chk1Txt_0")->text(), QStringLiteral("History"));
  EXPECT_EQ(Child<QLineEdit>(&d, "Text2_0")->text(),
            QStringLiteral("http://dl.invalid/history.zip"));
  // The combo's choices and the selection list, in their fixed order.
  auto* combo = Child<QComboBox>(&d, "Combo1");
  ASSERT_EQ(combo->count(), 7);
  EXPECT_EQ(combo->itemText(0), QStringLiteral("Alltime.ini"));
  EXPECT_EQ(combo->itemText(6), QStringLiteral("Version.ini"));
  auto* list = Child<QListWidget>(&d, "List1");
  ASSERT_EQ(list->count(), 13);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Catlist.ini"));
  EXPECT_EQ(list->item(11)->text(), QStringLiteral("Wizsort.ini"));
  EXPECT_EQ(list->item(12)->text(), QStringLiteral("Your available roms"));
  EXPECT_EQ(list->item(0)->checkState(), Qt::Unchecked);
}

TEST_F(DatabaseDialogTest, MenuAndPageButtonsMoveBetweenPages) {
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  EXPECT_EQ(d.CurrentPage(), 1);
  EXPECT_TRUE(Child<QWidget>(&d, "Frame1_1")->isVisible());
  Button("Command11_3")->setEnabled(true);
  Button("Command11_3")->click();
  EXPECT_EQ(d.CurrentPage(), 5);
  Button("Command10")->click();
  EXPECT_EQ(d.CurrentPage(), 1);
  Button("Command11_4")->click();
  EXPECT_EQ(d.CurrentPage(), 0);
  QTest::mouseClick(Child<QLabel>(&d, "Image2_1"), Qt::LeftButton);
  EXPECT_EQ(d.CurrentPage(), 2);
  Button("Command7")->click();
  EXPECT_EQ(d.CurrentPage(), 0);
  EXPECT_EQ(saves, 1);
  Button("Label6_2")->click();
  EXPECT_EQ(d.CurrentPage(), 3);
  Button("Command2")->click();
  EXPECT_EQ(d.CurrentPage(), 4);
  Button("Command3")->click();
  EXPECT_EQ(d.CurrentPage(), 3);
  Button("Command4")->click();
  EXPECT_EQ(d.CurrentPage(), 0);
  // The removed entry only says so.
  Button("Label6_3")->click();
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "This option has been removed.");
  EXPECT_EQ(d.CurrentPage(), 0);
  // Exit closes the window and keeps its place.
  Button("Label6_4")->click();
  EXPECT_FALSE(d.isVisible());
  EXPECT_NE(home.ctx.settings.InfRead("Form3Top"), "-1");
  EXPECT_NE(home.ctx.settings.InfRead("Form3Left"), "-1");
}

TEST_F(DatabaseDialogTest, OpeningFillsThePathsAndTheUpdateButtonsFollowTheIndex) {
  home.ctx.settings.InfWrite("Datafile1", "/opt/mame/mame");
  home.ctx.settings.InfWrite("DataFile2", "/data/History.dat");
  home.ctx.settings.InfWrite("DataFile11", "/data/Alltime.ini");
  DatabaseDialog& d = Open();
  EXPECT_EQ(Child<QLineEdit>(&d, "Text1_0")->text(), QStringLiteral("/opt/mame/mame"));
  EXPECT_EQ(Child<QLineEdit>(&d, "Text1_1")->text(), QStringLiteral("/data/History.dat"));
  EXPECT_EQ(Child<QLineEdit>(&d, "Text1_10")->text(), QStringLiteral("/data/Alltime.ini"));
  EXPECT_EQ(Child<QLineEdit>(&d, "Text1_11")->text(),
            QString::fromStdString(home.Folder() + "roms/"));
  EXPECT_TRUE(Button("Command11_0")->isEnabled());
  for (const char* name : {"Command11_1", "Command11_2", "Command11_3"}) {
    EXPECT_FALSE(Button(name)->isEnabled()) << name;
  }
  dialog.reset();
  WriteBytes(IndexFilePath(home.Folder()), "MAME v1\r\n");
  Open();
  for (const char* name : {"Command11_1", "Command11_2", "Command11_3"}) {
    EXPECT_TRUE(Button(name)->isEnabled()) << name;
  }
}

TEST_F(DatabaseDialogTest, ComboChoiceShowsItsPathAndALeftBoxIsSaved) {
  home.ctx.settings.InfWrite("DataFile13", "/x/catver.ini");
  DatabaseDialog& d = Open();
  Button("Label6_2")->click();
  Button("Command2")->click();
  auto* combo = Child<QComboBox>(&d, "Combo1");
  auto* box = Child<QLineEdit>(&d, "Text1_10");
  combo->setCurrentIndex(2);
  EXPECT_EQ(box->text(), QStringLiteral("/x/catver.ini"));
  box->setText(QStringLiteral("/y/cat.ini"));
  Q_EMIT box->editingFinished();
  combo->setCurrentIndex(0);
  EXPECT_EQ(box->text(), QString::fromStdString(home.Folder() + "nofile11"));
  combo->setCurrentIndex(2);
  EXPECT_EQ(box->text(), QStringLiteral("/y/cat.ini"));
  // Nothing is written before a closing button.
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile13"), "/x/catver.ini");
  Child<QLineEdit>(&d, "Text1_6")->setText(QStringLiteral("/w/wizsort.ini"));
  Button("Command5")->click();
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile13"), "/y/cat.ini");
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile7"), "/w/wizsort.ini");
  EXPECT_EQ(d.CurrentPage(), 0);
}

TEST_F(DatabaseDialogTest, CreationFromNothingBuildsScansAndEnablesTheUpdates) {
  UseFakeEmulator();
  WriteBytes(home.Folder() + "roms/pacman.zip", "zip");
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_0")->click();
  // No database yet: no question.
  EXPECT_TRUE(home.ui.questions.empty());
  ASSERT_TRUE(FileExists(IndexFilePath(home.Folder())));
  const std::string index = Index();
  EXPECT_EQ(index.substr(0, index.find('\r')), kFakeVersion);
  EXPECT_EQ(home.ctx.store.DatabaseVersion, kFakeVersion);
  // The rom scan ran before the second save: pacman's zip counts twice.
  const int pacman = home.ctx.store.FindGame("pacman");
  ASSERT_GT(pacman, 0);
  EXPECT_EQ(home.ctx.store.GameRecords[static_cast<size_t>(pacman)].substr(
                home.ctx.store.GameRecords[static_cast<size_t>(pacman)].size() - 2),
            "**");
  EXPECT_TRUE(Shown("Done."));
  for (const char* name : {"Command11_1", "Command11_2", "Command11_3"}) {
    EXPECT_TRUE(Button(name)->isEnabled()) << name;
  }
  EXPECT_EQ(d.CurrentPage(), 1);
  EXPECT_TRUE(Child<QWidget>(&d, "Frame1_1")->isVisible());
}

TEST_F(DatabaseDialogTest, MissingEmulatorIsRefusedAndThePathsPageShown) {
  home.ctx.settings.InfWrite("Datafile1", home.Folder() + "no/such/mame");
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_0")->click();
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(56));
  EXPECT_EQ(home.ui.messages[0].title, "Can't continue.");
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Warning);
  EXPECT_EQ(d.CurrentPage(), 3);
  EXPECT_TRUE(Child<QWidget>(&d, "Frame1_3")->isVisible());
  EXPECT_FALSE(FileExists(IndexFilePath(home.Folder())));
  EXPECT_FALSE(Button("Command11_1")->isEnabled());
}

TEST_F(DatabaseDialogTest, DeclinedCreationLeavesTheDatabase) {
  BuildFirst();
  const std::string before = Index();
  home.ctx.settings.InfWrite("Datafile1", home.Folder() + "gone");
  home.ui.answers = {false};
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_0")->click();
  ASSERT_EQ(home.ui.questions.size(), 1u);
  EXPECT_EQ(home.ui.questions[0], home.ctx.messages.Lng(53));
  // Declined before the emulator is looked for: no message, the page stays.
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_EQ(d.CurrentPage(), 1);
  EXPECT_EQ(Index(), before);
}

TEST_F(DatabaseDialogTest, SilentEmulatorGivesMessage332AndTheOldDatabaseStays) {
  BuildFirst();
  const std::string before = Index();
  EnvVar silent("TESSARIN_FAKE_SILENT", "1");
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_0")->click();
  EXPECT_TRUE(Shown("MAME commands -listxml and -listinfo gave nothing."));
  EXPECT_FALSE(Shown("Done."));
  EXPECT_EQ(Index(), before);
  EXPECT_EQ(d.CurrentPage(), 1);
}

TEST_F(DatabaseDialogTest, EmulatorWithoutVersionStillBuildsWithAnEmptyFirstLine) {
  UseFakeEmulator();
  EnvVar noVersion("TESSARIN_FAKE_NOVERSION", "1");
  Open();
  Button("Label6_0")->click();
  Button("Command11_0")->click();
  ASSERT_TRUE(FileExists(IndexFilePath(home.Folder())));
  EXPECT_EQ(home.ctx.store.DatabaseVersion, "");
  EXPECT_EQ(Index().substr(0, 2), "\r\n");
  EXPECT_GT(home.ctx.store.GameCount(), 0);
  EXPECT_TRUE(Shown("Done."));
}

TEST_F(DatabaseDialogTest, CancelDuringCreationKeepsTheOldIndex) {
  BuildFirst();
  const std::string before = Index();
  // An emulator that takes its time over the list, so that the cancel comes while it runs.
  const std::string slow = home.Folder() + "slow-mame.sh";
  WriteBytes(slow, "#!/bin/sh\n[ \"$1\" = \"-listxml\" ] && sleep 2\nexec '" + kFakeEmulator +
                       "' \"$@\"\n");
  fs::permissions(slow, fs::perms::owner_all);
  home.ctx.settings.InfWrite("Datafile1", slow);
  home.ui.answers = {true, true};  // replace the database; then yes, cancel
  Open();
  Button("Label6_0")->click();
  bool cancelAsked = false;
  QTimer::singleShot(600, [&] {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (auto* working = qobject_cast<WorkingDialog*>(w); working && working->isVisible()) {
        working->AskCancel();
        cancelAsked = true;
      }
    }
  });
  Button("Command11_0")->click();
  EXPECT_TRUE(cancelAsked);
  ASSERT_EQ(home.ui.questions.size(), 2u);
  EXPECT_EQ(home.ui.questions[1], home.ctx.messages.Lng(311));
  EXPECT_EQ(Index(), before);
  EXPECT_FALSE(Shown("Done."));
}

TEST_F(DatabaseDialogTest, UpdateFromFilesRunsTheAnalysersAndWritesTheIndex) {
  BuildFirst();
  const std::string catver = home.Folder() + "catver.ini";
  WriteBytes(catver, "[category]\r\npacman=Maze / Collect\r\n\r\n[VerAdded]\r\npacman=.36\r\n");
  home.ctx.settings.InfWrite("DataFile13", catver);
  EXPECT_EQ(Index().find("Maze / Collect"), std::string::npos);
  home.ui.answers = {true};
  Open();
  Button("Label6_0")->click();
  Button("Command11_1")->click();
  ASSERT_EQ(home.ui.questions.size(), 1u);
  EXPECT_EQ(home.ui.questions[0], home.ctx.messages.Lng(48));
  EXPECT_TRUE(Shown("Done."));
  EXPECT_NE(Index().find("Maze / Collect"), std::string::npos);
}

TEST_F(DatabaseDialogTest, RomScanMarksTheRomsAndAnEmptyFolderTakesOneStar) {
  BuildFirst();
  WriteBytes(home.Folder() + "roms/dkong.zip", "zip");
  Open();
  Button("Label6_0")->click();
  Button("Command11_2")->click();
  const GameStore& store = home.ctx.store;
  auto stars = [&store](const char* name) {
    const std::string& record = store.GameRecords[static_cast<size_t>(store.FindGame(name))];
    return record.size() - 1 - record.find_last_not_of('*');
  };
  EXPECT_EQ(stars("dkong"), 2u);
  EXPECT_EQ(stars("pacman"), 0u);
  // The index was written with the marks.
  LoadIndex(home.ctx.store, home.ctx.log, IndexFilePath(home.Folder()));
  EXPECT_EQ(stars("dkong"), 2u);
  // Again with the folder emptied: one star goes, none comes.
  fs::remove(home.Folder() + "roms/dkong.zip");
  Button("Command11_2")->click();
  EXPECT_EQ(stars("dkong"), 1u);
  EXPECT_EQ(stars("pacman"), 0u);
}

TEST_F(DatabaseDialogTest, SelectedUpdatesWithNothingCheckedWriteNothing) {
  BuildFirst();
  const fs::file_time_type written = fs::last_write_time(IndexFilePath(home.Folder()));
  const std::string before = Index();
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_3")->click();
  ASSERT_EQ(d.CurrentPage(), 5);
  QTest::qWait(20);
  Button("Command9")->click();
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Update done.");
  EXPECT_EQ(home.ui.messages[0].title, "Done");
  EXPECT_EQ(Index(), before);
  EXPECT_EQ(fs::last_write_time(IndexFilePath(home.Folder())), written);
  EXPECT_EQ(Child<QLabel>(&d, "Label5")->text(), QString());
}

TEST_F(DatabaseDialogTest, SelectedUpdatesReportEachFileThatWasRead) {
  BuildFirst();
  const std::string catlist = home.Folder() + "catlist.ini";
  WriteBytes(catlist, "[Maze / Collect]\r\npacman\r\n");
  home.ctx.settings.InfWrite("DataFile12", catlist);
  DatabaseDialog& d = Open();
  Button("Label6_0")->click();
  Button("Command11_3")->click();
  auto* list = Child<QListWidget>(&d, "List1");
  list->item(0)->setCheckState(Qt::Checked);   // Catlist.ini
  list->item(3)->setCheckState(Qt::Checked);   // Command.dat: never reported
  list->item(5)->setCheckState(Qt::Checked);   // History.dat: not there
  list->item(12)->setCheckState(Qt::Checked);  // the roms: never reported
  Button("Command9")->click();
  EXPECT_EQ(Child<QLabel>(&d, "Label5")->text(), QStringLiteral("Catlist.ini = Ok"));
  EXPECT_TRUE(Shown("Update done."));
  EXPECT_NE(Index().find("Maze / Collect"), std::string::npos);
}

TEST_F(DatabaseDialogTest, DownloadUnpacksIntoDataFilesAndReportsAFailure) {
  HttpFileServer server;
  tessarin::testing::RawZip zip;
  zip.Add("catver.ini", "[Category]\r\npacman=Maze\r\n", true);
  server.Set("/files/catver.zip", zip.Bytes());
  lines[1] = {"Catver", server.Url("/files/catver.zip"), "http://catver.invalid/", false};
  lines[7] = {"Cheat", "", "", false};
  DatabaseDialog& d = Open();
  Button("Label6_1")->click();
  ASSERT_EQ(d.CurrentPage(), 2);
  Child<QCheckBox>(&d, "Chk1_1")->setChecked(true);
  // The name beside a box toggles it too.
  QTest::mouseClick(Child<QLabel>(&d, "Chk1Txt_7"), Qt::LeftButton);
  EXPECT_TRUE(Child<QCheckBox>(&d, "Chk1_7")->isChecked());
  Child<QLineEdit>(&d, "Text2_7")->setText(QString::fromStdString(server.Url("/files/cheat.zip")));
  Button("Command6")->click();
  EXPECT_EQ(ReadBytes(home.DataFiles() + "catver.ini"), "[Category]\r\npacman=Maze\r\n");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Downloading catver.zip = Ok|Downloading cheat.zip = ERROR");
  EXPECT_EQ(home.ui.messages[0].title, "Done");
  EXPECT_TRUE(d.isEnabled());
  // Close keeps the edited address in the site list.
  Button("Command7")->click();
  EXPECT_EQ(saves, 1);
  EXPECT_EQ(lines[7].address, server.Url("/files/cheat.zip"));
}

TEST_F(DatabaseDialogTest, SiteButtonOpensTheLinesSite) {
  lines[0] = {"History", "", "http://history.invalid/", false};
  Open();
  Button("Command8_0")->click();
  ASSERT_EQ(home.ui.opened.size(), 1u);
  EXPECT_EQ(home.ui.opened[0], "http://history.invalid/");
  // A line without a site has nothing to open.
  EXPECT_FALSE(Button("Command8_1")->isEnabled());
}

}  // namespace
}  // namespace tessarin
