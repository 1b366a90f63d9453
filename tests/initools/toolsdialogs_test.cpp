// The folder scan, XML to list, INI set and copy tasks windows offscreen, driven by their
// controls' names on temporary folders. Screenshots go to $TESSARIN_SHOTS when it is set.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "app/context.h"
#include "core/settings.h"
#include "lists/copytasksdialog.h"
#include "lists/folderscandialog.h"
#include "lists/inisetdialog.h"
#include "lists/xmllistdialog.h"
#include "online/urllist.h"
#include "shell/desktopshellui.h"
#include "shell/mainframe.h"
#include "shell/startup.h"
#include "store/gamerecord.h"
#include "support/qtapp.h"
#include "support/scriptedui.h"
#include "support/testfiles.h"
#include "widgets/workingdialog.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::ReadFile;
using testsupport::ScriptedUi;
using testsupport::TempFolder;
using testsupport::WriteFile;

constexpr std::string_view kHeader =
    "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n\r\n"
    "[ROOT_FOLDER]\r\n";

template <class T>
T* Child(QWidget* parent, const char* name) {
  T* child = parent->findChild<T*>(QString::fromLatin1(name));
  EXPECT_NE(child, nullptr) << name;
  return child;
}

void Shot(QWidget* window, const QString& name) {
  const QString folder = qEnvironmentVariable("TESSARIN_SHOTS");
  if (folder.isEmpty()) return;
  window->grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png"));
}

void Click(QWidget* target) {
  const QPointF at(2, 2);
  QMouseEvent press(QEvent::MouseButtonPress, at, target->mapToGlobal(at), Qt::LeftButton,
                    Qt::LeftButton, Qt::NoModifier);
  QMouseEvent release(QEvent::MouseButtonRelease, at, target->mapToGlobal(at), Qt::LeftButton,
                      Qt::NoButton, Qt::NoModifier);
  QApplication::sendEvent(target, &press);
  QApplication::sendEvent(target, &release);
}

QString Q(const std::string& text) { return QString::fromStdString(text); }

class ToolsDialogsTest : public ::testing::TestWithParam<int> {
 protected:
  ToolsDialogsTest() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.messages.LanguageNumber = GetParam();
    ctx.messages.LoadMessages();
  }
  QString ShotName(const char* form) const {
    return QString::fromLatin1(form) + QLatin1String(GetParam() == 0 ? "-fr" : "-en");
  }
  const std::string& Lng(int n) const { return ctx.messages.Lng(n); }
  std::string LastMessage() const { return ui.messages.empty() ? "" : ui.messages.back().text; }

  TempFolder folder;
  ScriptedUi ui;
  AppContext ctx{folder.Path()};
};

// --- Folder scan -------------------------------------------------------------------------

TEST_P(ToolsDialogsTest, FolderScanListsTheFilesOfTheExtension) {
  const std::string scan = folder.Path() + "roms/";
  fs::create_directories(scan + "sub");
  WriteFile(scan + "mygame.zip", "z");
  WriteFile(scan + "other.ZIP", "z");
  WriteFile(scan + "notes.txt", "t");
  FolderScanDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form20"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Scan dir to make list"));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label1")->text(), Q(Lng(456)));
  EXPECT_EQ(Child<QRadioButton>(&dialog, "Option1")->text(), Q(Lng(458)));
  EXPECT_EQ(Child<QCheckBox>(&dialog, "Check2")->text(), Q(Lng(461)));
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command2")->text(), QStringLiteral("&Scan"));
  // A fresh dialog: the program folder, files of "zip".
  auto* text1 = Child<QLineEdit>(&dialog, "Text1");
  EXPECT_EQ(text1->text().toStdString() + "/", ctx.AppFolder());
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option2")->isChecked());
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text2")->text(), QStringLiteral("zip"));

  dialog.BrowseFolder(scan);  // the trailing separator goes
  EXPECT_EQ(text1->text().toStdString(), folder.Path() + "roms");
  dialog.BrowseFolder(folder.Path() + "nothere");  // a folder that isn't there changes nothing
  EXPECT_EQ(text1->text().toStdString(), folder.Path() + "roms");
  Child<QCheckBox>(&dialog, "Check1")->setChecked(true);
  Child<QCheckBox>(&dialog, "Check3")->setChecked(true);
  Child<QLineEdit>(&dialog, "Text4")->setText(QStringLiteral("x_"));
  const std::string out = folder.Path() + "List.ini";
  WriteFile(out, "old");
  dialog.Scan(out);
  EXPECT_EQ(ReadFile(out), std::string(kHeader) + "x_mygame\r\nx_other\r\n");
  EXPECT_EQ(ReadFile(out + ".bak"), "old");
  EXPECT_EQ(LastMessage(), Lng(41));
  EXPECT_EQ(ui.messages.back().icon, Icon::Information);
  Shot(&dialog, ShotName("form20"));
  dialog.close();
  // The BEFORE text is kept under the AFTER keys, as it always was.
  EXPECT_EQ(ctx.settings.InfRead("Frm20ScanDir"), folder.Path() + "roms");
  EXPECT_EQ(ctx.settings.InfRead("Frm20Folder"), "0");
  EXPECT_EQ(ctx.settings.InfRead("Frm20RmvExt"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm20AAfter"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm20TAfter"), "x_");
  EXPECT_EQ(ctx.settings.InfRead("Frm20ABefore"), "0");
}

TEST_P(ToolsDialogsTest, FolderScanOfSubfoldersAndOfAnEmptyFolder) {
  ctx.settings.InfWrite("Frm20ScanDir", folder.Path() + "empty");
  ctx.settings.InfWrite("Frm20Folder", "1");
  ctx.settings.InfWrite("Frm20ABefore", "1");
  ctx.settings.InfWrite("Frm20TBefore", ".zip");
  fs::create_directories(folder.Path() + "empty");
  FolderScanDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option1")->isChecked());
  EXPECT_TRUE(Child<QCheckBox>(&dialog, "Check2")->isChecked());
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text3")->text(), QStringLiteral(".zip"));
  const std::string out = folder.Path() + "empty.ini";
  dialog.Scan(out);
  EXPECT_EQ(ReadFile(out), kHeader);
  EXPECT_EQ(LastMessage(), Lng(41));
  fs::create_directories(folder.Path() + "empty/pacman");
  WriteFile(folder.Path() + "empty/file.zip", "z");
  dialog.Scan(out);
  EXPECT_EQ(ReadFile(out), std::string(kHeader) + "pacman.zip\r\n");
}

TEST_P(ToolsDialogsTest, FolderScanOfAMissingFolderSaysSoAndWritesNothing) {
  FolderScanDialog dialog(nullptr, ctx);
  dialog.show();
  auto* text1 = Child<QLineEdit>(&dialog, "Text1");
  text1->setText(QString::fromStdString(folder.Path() + "nothere\\"));
  Child<QPushButton>(&dialog, "Command2")->setFocus();
  const std::string out = folder.Path() + "List.ini";
  dialog.Scan(out);
  EXPECT_EQ(LastMessage(), Lng(464));
  EXPECT_EQ(dialog.focusWidget(), text1);
  EXPECT_FALSE(fs::exists(out));
}

// --- XML to list -------------------------------------------------------------------------

TEST_P(ToolsDialogsTest, XmlToListKeepsTheClonesWithNoClone) {
  const std::string source = std::string(TESSARIN_TEST_DATA) + "/initools/games.xml";
  XmlListDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form21"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("XML to List"));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label2")->text(), QStringLiteral("Source file :"));
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command2")->text(), QStringLiteral("Make List"));
  dialog.BrowseSource(source);
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1")->text().toStdString(), source);
  auto* check1 = Child<QCheckBox>(&dialog, "Check1");
  auto* check2 = Child<QCheckBox>(&dialog, "Check2");
  check1->setChecked(false);
  check2->setChecked(false);
  Child<QCheckBox>(&dialog, "Check3")->setChecked(true);
  const std::string out = folder.Path() + "names.ini";
  dialog.MakeList(out);
  // Neither box: the names are made.
  EXPECT_TRUE(check1->isChecked());
  EXPECT_EQ(ReadFile(out), "pacman.zip\r\npuckman.zip\r\ngalaga.zip\r\n");
  EXPECT_EQ(LastMessage(), "Done");
  Child<QCheckBox>(&dialog, "Check3")->setChecked(false);
  Child<QCheckBox>(&dialog, "Check4")->setChecked(true);
  check2->setChecked(true);
  dialog.MakeList(out);
  // Only the clone's name is kept; a description takes the last kept name, none before it.
  EXPECT_EQ(ReadFile(out), ";Pac-Man & friends\r\npuckman;Puck Man\r\npuckman;Galaga\r\n");
  EXPECT_EQ(ReadFile(out + ".bak"), "pacman.zip\r\npuckman.zip\r\ngalaga.zip\r\n");
  Shot(&dialog, ShotName("form21"));
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("XML2List_File"), source);
  EXPECT_EQ(ctx.settings.InfRead("XML2List_RomName"), "1");
  EXPECT_EQ(ctx.settings.InfRead("XML2List_GameName"), "1");
  EXPECT_EQ(ctx.settings.InfRead("XML2List_AddZip"), "0");
  EXPECT_EQ(ctx.settings.InfRead("XML2List_NoClone"), "1");
}

TEST_P(ToolsDialogsTest, XmlToListWithoutItsSourceStops) {
  ctx.settings.InfWrite("XML2List_File", folder.Path() + "none.xml");
  ctx.settings.InfWrite("XML2List_NoClone", "1");
  XmlListDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_TRUE(Child<QCheckBox>(&dialog, "Check4")->isChecked());
  const std::string out = folder.Path() + "names.ini";
  dialog.MakeList(out);
  ASSERT_FALSE(ui.messages.empty());
  EXPECT_EQ(LastMessage(), "Source file not found !");
  EXPECT_EQ(ui.messages.back().icon, Icon::Warning);
  EXPECT_FALSE(fs::exists(out));
}

// --- INI set -----------------------------------------------------------------------------

// Two years, aaa and bbb in 1980, nobody in 1981.
GameStore YearStore() {
  GameStore store;
  store.YearTable.push_back("1980");
  store.YearTable.push_back("1981");
  store.AppendGame("bbb", "bbb;A0;0;BBee;D1;S#CL");
  store.AppendGame("aaa", "aaa;A0;0;BAnt;D1;S#CL");
  store.LongestNameLength = 3;
  return store;
}

TEST_P(ToolsDialogsTest, IniSetWritesTheCheckedFilesInTheUniqueFolder) {
  ctx.store = YearStore();
  const std::string out = folder.Path() + "set";
  fs::create_directories(out);
  IniSetDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form15"));
  EXPECT_EQ(dialog.windowTitle(), Q(Lng(371)));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label1_1")->text(), QStringLiteral("year.ini"));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label1_14")->text(), QStringLiteral("mamever.ini"));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label2_0")->text(), Q(Lng(381)));
  EXPECT_EQ(Child<QLabel>(&dialog, "Label3_2")->text(), Q(Lng(380)));
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command2")->text(), Q(Lng(383)));
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command3")->text(), QStringLiteral("&Layouts"));

  // Nothing checked, then a destination that isn't there.
  dialog.Generate();
  EXPECT_EQ(LastMessage(), Lng(375));
  EXPECT_EQ(ui.messages.back().icon, Icon::Warning);
  auto* check1 = Child<QCheckBox>(&dialog, "Chck_1");
  Click(Child<QLabel>(&dialog, "Label1_1"));  // the label toggles its check
  EXPECT_TRUE(check1->isChecked());
  Click(Child<QLabel>(&dialog, "Label1_1"));
  EXPECT_FALSE(check1->isChecked());
  check1->setChecked(true);
  Child<QLineEdit>(&dialog, "Text1_15")->setText(Q(folder.Path() + "nothere"));
  dialog.Generate();
  EXPECT_EQ(LastMessage(), Lng(376));

  // Radio(0): the rows' paths are off and the unique folder on.
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Radio_0")->isChecked());
  EXPECT_FALSE(Child<QLineEdit>(&dialog, "Text1_1")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>(&dialog, "Command1_1")->isEnabled());
  EXPECT_TRUE(Child<QLineEdit>(&dialog, "Text1_15")->isEnabled());
  dialog.BrowsePath(15, out);
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1_15")->text().toStdString(), out);
  Click(Child<QLabel>(&dialog, "Label3_1"));  // Sort by ROM
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Radio2_1")->isChecked());
  WriteFile(out + "/year.ini", "old");
  dialog.Generate();
  EXPECT_EQ(ReadFile(out + "/year.ini"), "[1980]\r\naaa\r\nbbb\r\n[1981]\r\n");
  EXPECT_EQ(ReadFile(out + "/year.bak"), "old");
  EXPECT_EQ(LastMessage(), Lng(41));
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1_1")->text().toStdString(), out + "/year.ini");
  Shot(&dialog, ShotName("form15"));
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("Frm15Radio"), "0");
  EXPECT_EQ(ctx.settings.InfRead("Frm15Chk1"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm15Chk0"), "0");
  EXPECT_EQ(ctx.settings.InfRead("Frm15Path15"), out + "/");
}

TEST_P(ToolsDialogsTest, IniSetWithAPathPerFile) {
  ctx.store = YearStore();
  ctx.settings.InfWrite("Frm15Radio", "1");
  ctx.settings.InfWrite("Frm15Chk1", "1");
  ctx.settings.InfWrite("Frm15Chk3", "1");
  ctx.settings.InfWrite("Frm15Path1", folder.Path() + "years.txt");
  IniSetDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Radio_1")->isChecked());
  EXPECT_TRUE(Child<QCheckBox>(&dialog, "Chck_3")->isChecked());
  EXPECT_TRUE(Child<QLineEdit>(&dialog, "Text1_1")->isEnabled());
  EXPECT_FALSE(Child<QLineEdit>(&dialog, "Text1_15")->isEnabled());
  EXPECT_FALSE(Child<QPushButton>(&dialog, "Command1_15")->isEnabled());
  dialog.BrowsePath(2, folder.Path() + "g.ini");
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1_2")->text().toStdString(), folder.Path() + "g.ini");
  WriteFile(folder.Path() + "years.txt", "old");
  dialog.Generate();
  // The file's own three-letter extension makes room for "bak"; row 3 goes to the program folder.
  EXPECT_EQ(ReadFile(folder.Path() + "years.txt"), "[1980]\r\nbbb\r\naaa\r\n[1981]\r\n");
  EXPECT_EQ(ReadFile(folder.Path() + "years.bak"), "old");
  EXPECT_TRUE(fs::exists(folder.Path() + "category.ini"));
  EXPECT_FALSE(fs::exists(folder.Path() + "g.ini"));  // row 2 isn't checked
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text1_3")->text().toStdString(),
            folder.Path() + "category.ini");
  EXPECT_EQ(LastMessage(), Lng(41));
  Click(Child<QLabel>(&dialog, "Label2_0"));
  EXPECT_FALSE(Child<QLineEdit>(&dialog, "Text1_1")->isEnabled());
  EXPECT_TRUE(Child<QLineEdit>(&dialog, "Text1_15")->isEnabled());
  dialog.close();
  EXPECT_EQ(ctx.settings.InfRead("Frm15Radio"), "0");
  EXPECT_EQ(ctx.settings.InfRead("Frm15Path2"), folder.Path() + "g.ini");
}

TEST_P(ToolsDialogsTest, IniSetOpensTheLayoutsWindow) {
  IniSetDialog dialog(nullptr, ctx);
  dialog.show();
  Child<QPushButton>(&dialog, "Command3")->click();
  QWidget* layouts = dialog.findChild<QWidget*>(QStringLiteral("Form19"));
  ASSERT_NE(layouts, nullptr);
  EXPECT_TRUE(layouts->isVisible());
  layouts->close();
}

// --- Copy tasks --------------------------------------------------------------------------

class CopyTasksTest : public ToolsDialogsTest {
 protected:
  CopyTasksTest() {
    fs::create_directories(source);
    fs::create_directories(destination);
    fs::create_directories(compare);
    WriteFile(listFile, "AAA\r\n  bbb  \r\n\r\nccc.zip\r\nddd\r\n");
    WriteFile(compare + "aaa.v1.zip", "");
    WriteFile(compare + "bbb.zip", "");
    WriteFile(compare + "ddd.zip", "");
    WriteFile(source + "aaa.rom", "a");
    WriteFile(source + "bbb.rom", "b");
    WriteFile(source + "ccc.rom", "c");
    ctx.settings.InfWrite("CopyTsk_ListOfRom", "0");
    ctx.settings.InfWrite("CopyTsk_ListFile", listFile);
    ctx.settings.InfWrite("CopyTsk_CompList", "1");
    ctx.settings.InfWrite("CopyTsk_CompFolder", compare);
    ctx.settings.InfWrite("CopyTsk_Source", source);
    ctx.settings.InfWrite("CopyTsk_Ext3", "rom");
    ctx.settings.InfWrite("CopyTsk_Dest", destination);
  }
  std::string source = folder.Path() + "source/";
  std::string destination = folder.Path() + "dest/";
  std::string compare = folder.Path() + "compare/";
  std::string listFile = folder.Path() + "list.txt";
};

TEST_P(CopyTasksTest, CopiesTheFilesOfTheSharedNames) {
  CopyTasksDialog dialog(nullptr, ctx);
  dialog.show();
  EXPECT_EQ(dialog.objectName(), QStringLiteral("Form22"));
  EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Copy tasks"));
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option1_0")->isChecked());
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option3_1")->isChecked());
  EXPECT_TRUE(Child<QRadioButton>(&dialog, "Option2_0")->isChecked());
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text7")->text(), QStringLiteral("zip"));
  EXPECT_EQ(Child<QRadioButton>(&dialog, "Option2_2")->text(), QStringLiteral("Delete"));
  EXPECT_EQ(Child<QPushButton>(&dialog, "Command9")->text(), QStringLiteral("&Go"));
  ui.answers = {true};
  dialog.Go();
  ASSERT_EQ(ui.questions.size(), 1u);
  CopyTaskField bad = CopyTaskField::None;
  EXPECT_EQ(ui.questions[0], CopyTaskConfirmation(dialog.Options(), bad));
  EXPECT_NE(ui.questions[0].find("will be copied into destination path."), std::string::npos);
  // aaa (its file "aaa.v1.zip" is cut at the first point) and bbb match; ddd has no file.
  EXPECT_EQ(ReadFile(destination + "aaa.rom"), "a");
  EXPECT_EQ(ReadFile(destination + "bbb.rom"), "b");
  EXPECT_FALSE(fs::exists(destination + "ccc.rom"));
  EXPECT_TRUE(fs::exists(source + "aaa.rom"));
  ASSERT_EQ(ui.opened.size(), 1u);
  EXPECT_EQ(ui.opened[0], CopyTaskLogPath(ctx.AppFolder()));
  const std::string log = ReadFile(ui.opened[0]);
  EXPECT_NE(log.find("4 roms found"), std::string::npos);
  EXPECT_NE(log.find("compared with 3 roms."), std::string::npos);
  EXPECT_EQ(log.find(source + "ddd"), std::string::npos);  // ddd has no file: nothing logged
  EXPECT_EQ(LastMessage(), "Done");
  Shot(&dialog, ShotName("form22"));
  Child<QRadioButton>(&dialog, "Option2_1")->setChecked(true);
  Child<QLineEdit>(&dialog, "Text10")->setText(QStringLiteral("bin"));
  Child<QPushButton>(&dialog, "Command10")->click();
  EXPECT_EQ(ctx.settings.InfRead("CopyTsk_Action"), "1");
  EXPECT_EQ(ctx.settings.InfRead("CopyTsk_Ext3"), "bin");
  EXPECT_EQ(ctx.settings.InfRead("CopyTsk_ListFile"), listFile);
  EXPECT_EQ(ctx.settings.InfRead("CopyTsk_CompList"), "1");
  EXPECT_EQ(ctx.settings.InfRead("CopyTsk_Ext2"), "zip");
}

TEST_P(CopyTasksTest, MoveKeepsTheSourceOfAFailedCopyAndDeleteNeedsNoDestination) {
  ctx.settings.InfWrite("CopyTsk_Action", "1");
  CopyTasksDialog dialog(nullptr, ctx);
  dialog.show();
  CopyTaskServices services;
  std::vector<std::string> deleted;
  services.copyFile = [](const std::string& from, const std::string&) {
    return from.find("aaa") == std::string::npos;  // aaa's copy fails
  };
  services.deleteFile = [&](const std::string& path) {
    deleted.push_back(path);
    fs::remove(path);
  };
  dialog.Go(services);
  EXPECT_EQ(deleted, std::vector<std::string>{source + "bbb.rom"});
  EXPECT_TRUE(fs::exists(source + "aaa.rom"));

  deleted.clear();
  Child<QRadioButton>(&dialog, "Option2_2")->setChecked(true);
  Child<QLineEdit>(&dialog, "Text11")->clear();
  dialog.Go(services);
  EXPECT_EQ(deleted, std::vector<std::string>{source + "aaa.rom"});
  EXPECT_NE(ui.questions.back().find("will be deleted from SOURCE path."), std::string::npos);
}

TEST_P(CopyTasksTest, AFieldThatIsNotThereTakesTheFocusAndNoIsNothing) {
  CopyTasksDialog dialog(nullptr, ctx);
  dialog.show();
  auto* listBox = Child<QLineEdit>(&dialog, "Text1");
  listBox->setText(Q(folder.Path() + "missing.txt"));
  dialog.Go();
  EXPECT_TRUE(ui.questions.empty());
  EXPECT_EQ(dialog.focusWidget(), listBox);
  listBox->setText(Q(listFile));
  Child<QLineEdit>(&dialog, "Text11")->setText(Q(folder.Path() + "nodest"));
  dialog.Go();
  EXPECT_TRUE(ui.questions.empty());
  EXPECT_EQ(dialog.focusWidget(), Child<QLineEdit>(&dialog, "Text11"));
  Child<QLineEdit>(&dialog, "Text11")->setText(Q(destination));
  ui.answers = {false};
  dialog.Go();
  EXPECT_EQ(ui.questions.size(), 1u);
  EXPECT_FALSE(fs::exists(destination + "aaa.rom"));
  EXPECT_TRUE(ui.opened.empty());
  // The choosers' answers go to their boxes.
  dialog.BrowsePath(Child<QLineEdit>(&dialog, "Text8"), folder.Path());
  EXPECT_EQ(Child<QLineEdit>(&dialog, "Text8")->text().toStdString(), folder.Path());
}

TEST_P(CopyTasksTest, ACancelStillOpensTheLog) {
  CopyTasksDialog dialog(nullptr, ctx);
  dialog.show();
  std::atomic<bool> cancelled{false};
  std::atomic<int> copies{0};
  CopyTaskServices services;
  // The first copy waits until the working dialog's cancel has been pressed.
  services.copyFile = [&](const std::string&, const std::string&) {
    ++copies;
    for (int i = 0; i < 500 && !cancelled; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
  };
  QTimer presser;
  presser.setInterval(20);
  QObject::connect(&presser, &QTimer::timeout, [&] {
    auto* working = dialog.findChild<WorkingDialog*>();
    if (!working || !working->isVisible() || cancelled) return;
    working->AskCancel();
    cancelled = true;
  });
  presser.start();
  ui.defaultAnswer = true;  // "Start processing ?" and the cancel's question
  dialog.Go(services);
  presser.stop();
  EXPECT_TRUE(cancelled);
  EXPECT_EQ(copies, 1);
  ASSERT_EQ(ui.questions.size(), 2u);
  EXPECT_EQ(ui.questions[1], Lng(311));
  ASSERT_EQ(ui.opened.size(), 1u);
  const std::string log = ReadFile(ui.opened[0]);
  EXPECT_NE(log.find("CANCELED BY USER."), std::string::npos);
  EXPECT_NE(log.find(" END OF OPERATION"), std::string::npos);
  EXPECT_EQ(LastMessage(), "Done");
}

TEST_P(ToolsDialogsTest, TheFrameMenuOpensXmlToListAndCopyTasks) {
  ShellSession session;
  UrlTables tables;
  MainFrame frame(ctx, session, SiteAccess(ctx, tables));
  RegisterSubsystemDialogs(frame);
  for (const auto& [menu, form] :
       {std::pair{"MnuXML2List", "Form21"}, {"MnuCopyTasks", "Form22"}}) {
    auto* action = frame.findChild<QAction*>(QString::fromLatin1(menu));
    ASSERT_NE(action, nullptr) << menu;
    EXPECT_TRUE(action->isEnabled()) << menu;
    action->trigger();
    QWidget* opened = frame.findChild<QDialog*>(QString::fromLatin1(form));
    ASSERT_NE(opened, nullptr) << form;
    EXPECT_TRUE(opened->isVisible()) << form;
    opened->close();
  }
  frame.close();
}

INSTANTIATE_TEST_SUITE_P(Languages, ToolsDialogsTest, ::testing::Values(1, 0));
INSTANTIATE_TEST_SUITE_P(Languages, CopyTasksTest, ::testing::Values(1, 0));

}  // namespace
}  // namespace tessarin
