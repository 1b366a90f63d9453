#include "lists/copytasks.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/context.h"
#include "core/settings.h"
#include "core/work.h"
#include "support/scriptedui.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::ReadFile;
using testsupport::ScriptedUi;
using testsupport::TempFolder;
using testsupport::WriteFile;

TEST(NameLists, AFileOfNames) {
  TempFolder folder;
  WriteFile(folder.Path() + "list.ini", "  PacMan \r\n\r\nabc.ZIP\r\ndkong\ndkong\r\n");
  NameListOrigin origin;
  origin.file = folder.Path() + "list.ini";
  // ".zip" loses only its last character, as lists have always read.
  EXPECT_EQ(ReadNameList(origin, nullptr),
            (std::vector<std::string>{"pacman", "abc.zi", "dkong", "dkong"}));
}

TEST(NameLists, FilesCutAtTheirFirstPointAndSubfolders) {
  TempFolder folder;
  fs::create_directories(folder.Path() + "d/Sub");
  for (const char* f : {"Pac.Man.zip", "galaga.zip", "readme.txt"}) {
    WriteFile(folder.Path() + "d/" + f, "x");
  }
  NameListOrigin files;
  files.kind = NameListKind::Files;
  files.folder = folder.Path() + "d";
  files.extension = "zip";
  EXPECT_EQ(ReadNameList(files, nullptr), (std::vector<std::string>{"pac", "galaga"}));
  NameListOrigin subfolders;
  subfolders.kind = NameListKind::Subfolders;
  subfolders.subfolders = folder.Path() + "d";
  EXPECT_EQ(ReadNameList(subfolders, nullptr), (std::vector<std::string>{"sub"}));
}

class CopyTaskTest : public ::testing::Test {
 protected:
  CopyTaskTest() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.messages.LoadMessages();
    fs::create_directories(source);
    fs::create_directories(dest);
    for (const char* f : {"pacman.zip", "dkong.zip", "galaga.zip"}) WriteFile(source + f, f);
    WriteFile(folder.Path() + "list.txt", "pacman\r\ndkong\r\nmissing\r\ngalaga\r\n");
    WriteFile(folder.Path() + "compare.txt", "galaga\r\nmissing\r\npacman\r\n");
    options.list.file = folder.Path() + "list.txt";
    options.compare.file = folder.Path() + "compare.txt";
    options.source = source;
    options.sourceExtension = "zip";
    options.destination = dest;
  }
  CopyTaskResult Run(const CopyTaskServices& services = {}) {
    CopyTaskField bad = CopyTaskField::None;
    const std::string text = CopyTaskConfirmation(options, bad);
    EXPECT_EQ(bad, CopyTaskField::None);
    return RunCopyTask(ctx, work, options, text, services);
  }
  std::string Log() { return ReadFile(CopyTaskLogPath(ctx.AppFolder())); }

  TempFolder folder;
  ScriptedUi ui;
  AppContext ctx{folder.Path()};
  Work work;
  std::string source = folder.Path() + "src/";
  std::string dest = folder.Path() + "dst/";
  CopyTaskOptions options;
};

TEST_F(CopyTaskTest, TheConfirmationNamesTheListsAndTheAction) {
  CopyTaskField bad = CopyTaskField::None;
  options.action = CopyAction::Delete;
  EXPECT_EQ(CopyTaskConfirmation(options, bad),
            "If the roms listed in the file \r\nlist.txt\r\nmatch with the roms listed in the "
            "file\r\ncompare.txt\r\nthen the files from source path\r\nwill be deleted from "
            "SOURCE path.");
  options.list.file = folder.Path() + "none.txt";
  CopyTaskConfirmation(options, bad);
  EXPECT_EQ(bad, CopyTaskField::List);
  options.list.file = folder.Path() + "list.txt";
  options.action = CopyAction::Copy;
  options.destination = folder.Path() + "nothere";
  CopyTaskConfirmation(options, bad);
  EXPECT_EQ(bad, CopyTaskField::Destination);
  // Deleting needs no destination.
  options.action = CopyAction::Delete;
  options.destination.clear();
  CopyTaskConfirmation(options, bad);
  EXPECT_EQ(bad, CopyTaskField::None);
}

TEST_F(CopyTaskTest, CopyTakesTheNamesOfBothListsAndLogsThem) {
  EXPECT_EQ(Run(), CopyTaskResult::Done);
  EXPECT_TRUE(fs::exists(dest + "pacman.zip"));
  EXPECT_TRUE(fs::exists(dest + "galaga.zip"));
  EXPECT_FALSE(fs::exists(dest + "dkong.zip"));
  EXPECT_TRUE(fs::exists(source + "pacman.zip"));
  const std::string log = Log();
  EXPECT_EQ(log.rfind("START - ", 0), 0u);
  EXPECT_NE(log.find(std::string(79, '-')), std::string::npos);
  EXPECT_NE(log.find("4 roms found"), std::string::npos);
  EXPECT_NE(log.find("compared with 3 roms."), std::string::npos);
  EXPECT_NE(log.find("START comparison"), std::string::npos);
  EXPECT_NE(log.find(dest + "pacman.zip"), std::string::npos);
  // "missing" is in both lists but has no file: nothing is logged for it.
  EXPECT_EQ(log.find("missing.zip"), std::string::npos);
  EXPECT_NE(log.find(" END OF OPERATION"), std::string::npos);
  ASSERT_EQ(ui.opened.size(), 1u);
  EXPECT_EQ(ui.opened[0], CopyTaskLogPath(ctx.AppFolder()));
  EXPECT_TRUE(ui.Showed("Done"));
}

TEST_F(CopyTaskTest, MoveDeletesOnlyWhatWasCopied) {
  options.action = CopyAction::Move;
  CopyTaskServices services;
  services.copyFile = [](const std::string& from, const std::string& to) {
    if (from.find("galaga") != std::string::npos) return false;  // a failed copy
    fs::copy_file(from, to);
    return true;
  };
  services.deleteFile = [](const std::string& path) { fs::remove(path); };
  EXPECT_EQ(Run(services), CopyTaskResult::Done);
  EXPECT_FALSE(fs::exists(source + "pacman.zip"));
  EXPECT_TRUE(fs::exists(dest + "pacman.zip"));
  EXPECT_TRUE(fs::exists(source + "galaga.zip"));  // its copy failed: the source stays
  EXPECT_NE(Log().find("   DELETE " + source + "pacman.zip"), std::string::npos);
}

TEST_F(CopyTaskTest, DeleteWithoutADestination) {
  options.action = CopyAction::Delete;
  options.destination.clear();
  CopyTaskServices services;
  std::vector<std::string> deleted;
  services.deleteFile = [&](const std::string& path) { deleted.push_back(path); };
  EXPECT_EQ(Run(services), CopyTaskResult::Done);
  EXPECT_EQ(deleted, (std::vector<std::string>{source + "pacman.zip", source + "galaga.zip"}));
}

TEST_F(CopyTaskTest, EachCompareEntryServesOnce) {
  WriteFile(folder.Path() + "list.txt", "pacman\r\npacman\r\n");
  WriteFile(folder.Path() + "compare.txt", "pacman\r\n");
  CopyTaskServices services;
  int copies = 0;
  services.copyFile = [&](const std::string&, const std::string&) { return ++copies > 0; };
  Run(services);
  EXPECT_EQ(copies, 1);
  // A name twice in the compare list is taken twice by the first equal name.
  WriteFile(folder.Path() + "compare.txt", "pacman\r\npacman\r\n");
  copies = 0;
  Run(services);
  EXPECT_EQ(copies, 2);
}

TEST_F(CopyTaskTest, EmptyListsAreTold) {
  WriteFile(folder.Path() + "compare.txt", "\r\n");
  EXPECT_EQ(Run(), CopyTaskResult::NoCompareRoms);
  EXPECT_TRUE(ui.Showed("Found no rom to compare with."));
  WriteFile(folder.Path() + "list.txt", "");
  EXPECT_EQ(Run(), CopyTaskResult::NoRoms);
  EXPECT_TRUE(ui.Showed("Found no rom."));
}

TEST_F(CopyTaskTest, ACancelStillOpensTheLog) {
  work.CancelRequested = true;
  EXPECT_EQ(Run(), CopyTaskResult::Cancelled);
  EXPECT_NE(Log().find("CANCELED BY USER."), std::string::npos);
  EXPECT_EQ(ui.opened.size(), 1u);
  EXPECT_FALSE(fs::exists(dest + "pacman.zip"));
}

TEST_F(CopyTaskTest, SettingsRoundTrip) {
  options.list.kind = NameListKind::Subfolders;
  options.list.subfolders = "/a";
  options.action = CopyAction::Move;
  SaveCopyTaskOptions(ctx, options);
  const CopyTaskOptions back = LoadCopyTaskOptions(ctx);
  EXPECT_EQ(back.list.kind, NameListKind::Subfolders);
  EXPECT_EQ(back.list.subfolders, "/a");
  EXPECT_EQ(back.action, CopyAction::Move);
  EXPECT_EQ(back.source, source);
  // Defaults of a fresh folder.
  TempFolder fresh;
  AppContext newCtx(fresh.Path());
  const CopyTaskOptions first = LoadCopyTaskOptions(newCtx);
  EXPECT_EQ(first.list.extension, "zip");
  EXPECT_EQ(first.compare.extension, "zip");
  EXPECT_EQ(first.sourceExtension, "");
}

}  // namespace
}  // namespace tessarin
