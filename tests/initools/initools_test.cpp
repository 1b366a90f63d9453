#include "lists/initools.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/settings.h"
#include "core/work.h"
#include "search/searchtestsupport.h"
#include "store/indexfile.h"
#include "support/realdata.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

constexpr std::string_view kHeader =
    "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n\r\n"
    "[ROOT_FOLDER]\r\n";

class FolderScan : public ::testing::Test {
 protected:
  FolderScan() {
    fs::create_directories(folder.Path() + "roms/sub1");
    fs::create_directories(folder.Path() + "roms/sub2.dir");
    for (const char* f : {"mygame.zip", "other.ZIP", "notes.txt", "two.dots.zip"}) {
      WriteFile(folder.Path() + "roms/" + f, "x");
    }
    options.folder = folder.Path() + "roms";
    options.extension = "zip";
  }
  std::string Run() {
    work.Reset();
    EXPECT_EQ(ScanFolderToIni(options, out, work), ToolResult::Done);
    return ReadFile(out);
  }
  TempFolder folder;
  FolderScanOptions options;
  std::string out = folder.Path() + "List.ini";
  Work work;
};

TEST_F(FolderScan, FilesOfTheExtensionUnderTheHeader) {
  EXPECT_EQ(Run(), std::string(kHeader) + "mygame.zip\r\nother.ZIP\r\ntwo.dots.zip\r\n");
}

TEST_F(FolderScan, RemoveExtensionCutsItsLengthAndOneMore) {
  options.removeExtension = true;
  EXPECT_EQ(Run(), std::string(kHeader) + "mygame\r\nother\r\ntwo.dots\r\n");
  // An empty extension lists every file but cuts one character.
  options.extension = "";
  EXPECT_EQ(Run(), std::string(kHeader) + "mygame.zi\r\nnotes.tx\r\nother.ZI\r\ntwo.dots.zi\r\n");
}

TEST_F(FolderScan, SubfoldersLoseALastCharacterWhenCut) {
  options.subfolders = true;
  EXPECT_EQ(Run(), std::string(kHeader) + "sub1\r\nsub2.dir\r\n");
  options.removeExtension = true;
  EXPECT_EQ(Run(), std::string(kHeader) + "sub\r\nsub2.di\r\n");
}

TEST_F(FolderScan, TextsBeforeAndAfterAndTheBackup) {
  options.addAfter = true;
  options.after = "_A";
  options.addBefore = true;
  options.before = "B_";
  WriteFile(out, "older");
  WriteFile(out + ".bak", "oldest");
  EXPECT_EQ(Run(),
            std::string(kHeader) + "B_mygame.zip_A\r\nB_other.ZIP_A\r\nB_two.dots.zip_A\r\n");
  EXPECT_EQ(ReadFile(out + ".bak"), "older");
}

TEST_F(FolderScan, AnEmptyFolderGivesTheHeaderAlone) {
  fs::create_directories(folder.Path() + "empty");
  options.folder = folder.Path() + "empty/";
  EXPECT_EQ(Run(), kHeader);
}

TEST_F(FolderScan, AMissingFolderWritesNothing) {
  options.folder = folder.Path() + "nothere";
  EXPECT_EQ(ScanFolderToIni(options, out, work), ToolResult::NoSource);
  EXPECT_FALSE(fs::exists(out));
}

TEST_F(FolderScan, ACancelKeepsTheHeaderAndWhatWasWritten) {
  work.CancelRequested = true;
  EXPECT_EQ(ScanFolderToIni(options, out, work), ToolResult::Cancelled);
  EXPECT_EQ(ReadFile(out), kHeader);
}

TEST(FolderScanSettings, AfterAndBeforeAreStoredCrossed) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  FolderScanOptions o;
  o.folder = "/x";
  o.addAfter = true;
  o.after = "AFTER";
  o.addBefore = false;
  o.before = "BEFORE";
  SaveFolderScanOptions(ctx, o);
  EXPECT_EQ(ctx.settings.InfRead("Frm20ABefore"), "1");
  EXPECT_EQ(ctx.settings.InfRead("Frm20TBefore"), "AFTER");
  EXPECT_EQ(ctx.settings.InfRead("Frm20AAfter"), "0");
  EXPECT_EQ(ctx.settings.InfRead("Frm20TAfter"), "BEFORE");
  const FolderScanOptions back = LoadFolderScanOptions(ctx);
  EXPECT_TRUE(back.addAfter);
  EXPECT_EQ(back.after, "AFTER");
  EXPECT_EQ(back.before, "BEFORE");
  // A first opening: the program folder and "zip", files mode.
  TempFolder fresh;
  AppContext newCtx(fresh.Path());
  const FolderScanOptions first = LoadFolderScanOptions(newCtx);
  EXPECT_EQ(first.extension, "zip");
  EXPECT_FALSE(first.subfolders);
  EXPECT_EQ(AddSlash(first.folder), newCtx.AppFolder());
}

TEST(XmlEntities, DecodedInTheirOrder) {
  EXPECT_EQ(DecodeXmlEntities("a &lt;b&gt; &amp; &quot;c&quot;"), "a <b> & \"c\"");
  EXPECT_EQ(DecodeXmlEntities("&#60x&#62"), "<x>");
  // "&amp;lt;" becomes "&lt;": the ampersand is decoded after the angle brackets.
  EXPECT_EQ(DecodeXmlEntities("&amp;lt;"), "&lt;");
  EXPECT_EQ(DecodeXmlEntities("&apos;"), "&apos;");
}

class XmlList : public ::testing::Test {
 protected:
  XmlList() {
    WriteFile(source,
              "<?xml version=\"1.0\"?>\r\n"
              "<mame>\r\n"
              "\t<game name=\"pacman\" sourcefile=\"pacman.c\">\r\n"
              "\t\t<description>Pac-Man &amp; friends</description>\r\n"
              "\t</game>\r\n"
              "\t<game name=\"puckman\" cloneof=\"pacman\">\r\n"
              "\t\t<description>Puck &lt;Man&gt;</description>\r\n"
              "\t</game>\r\n"
              "\t<machine name=\"galaga\"><description>Galaga</description>\r\n"
              "</mame>\r\n");
    options.source = source;
  }
  std::string Run() {
    EXPECT_EQ(XmlToList(options, out, work), ToolResult::Done);
    return ReadFile(out);
  }
  TempFolder folder;
  std::string source = folder.Path() + "list.xml";
  std::string out = folder.Path() + "out.ini";
  XmlListOptions options;
  Work work;
};

TEST_F(XmlList, RomNamesAlone) { EXPECT_EQ(Run(), "pacman\r\npuckman\r\ngalaga\r\n"); }

TEST_F(XmlList, NoCloneKeepsTheClonesAsItAlwaysHas) {
  options.noClone = true;
  options.addZip = true;
  EXPECT_EQ(Run(), "puckman.zip\r\n");
}

TEST_F(XmlList, NamesAndDescriptions) {
  options.gameNames = true;
  EXPECT_EQ(Run(), "pacman;Pac-Man & friends\r\npuckman;Puck <Man>\r\ngalaga;Galaga\r\n");
}

TEST_F(XmlList, ADroppedGamesDescriptionTakesTheLastKeptName) {
  options.gameNames = true;
  options.noClone = true;
  EXPECT_EQ(Run(), ";Pac-Man & friends\r\npuckman;Puck <Man>\r\npuckman;Galaga\r\n");
}

TEST_F(XmlList, DescriptionsAloneAndNeitherBoxMeansNames) {
  options.romNames = false;
  options.gameNames = true;
  EXPECT_EQ(Run(), "Pac-Man & friends\r\nPuck <Man>\r\nGalaga\r\n");
  options.gameNames = false;
  EXPECT_EQ(Run(), "pacman\r\npuckman\r\ngalaga\r\n");
  EXPECT_TRUE(options.romNames);
  EXPECT_TRUE(fs::exists(out + ".bak"));
}

TEST_F(XmlList, AMissingSourceWritesNothing) {
  options.source = folder.Path() + "none.xml";
  EXPECT_EQ(XmlToList(options, out, work), ToolResult::NoSource);
  EXPECT_FALSE(fs::exists(out));
}

// The worked example: two years, aaa and bbb in 1980, nobody in 1981.
GameStore YearStore() {
  GameStore store;
  store.YearTable.push_back("1980");
  store.YearTable.push_back("1981");
  store.AppendGame("bbb", "bbb;A0;0;BBee;D1;S#CL");
  store.AppendGame("aaa", "aaa;A0;0;BAnt;D1;S#CL");
  store.LongestNameLength = 3;
  return store;
}

TEST(IniSet, TheYearExample) {
  const GameStore store = YearStore();
  EXPECT_EQ(IniSetFileText(store, 1, 1, nullptr), "[1980]\r\naaa\r\nbbb\r\n[1981]\r\n");
  EXPECT_EQ(IniSetFileText(store, 1, 0, nullptr), "[1980]\r\nbbb\r\naaa\r\n[1981]\r\n");
  // By name: Ant before Bee.
  EXPECT_EQ(IniSetFileText(store, 1, 2, nullptr), "[1980]\r\naaa\r\nbbb\r\n[1981]\r\n");
}

// A cancel is looked at behind each value's section line: the file ends with a bare one.
TEST(IniSet, ACancelEndsWithTheSectionLineOfTheValue) {
  const GameStore store = YearStore();
  Work work;
  work.CancelRequested = true;
  EXPECT_EQ(IniSetFileText(store, 1, 1, &work), "[1980]\r\n");
  EXPECT_EQ(work.ProgressValue.load(), 1);
}

TEST(IniSet, OnePassGivesWhatOneSearchPerValueGives) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    GameStore store;
    searchtest::RandomStore(store, seed, 300);
    for (int row = 0; row < kIniSetFiles; ++row) {
      for (int sort = 0; sort <= 2; ++sort) {
        ASSERT_EQ(IniSetFileText(store, row, sort, nullptr), IniSetFileTextPlain(store, row, sort))
            << "seed " << seed << " row " << row << " sort " << sort;
      }
    }
  }
}

TEST(IniSet, TheRealDatabaseWhenOneIsNamed) {
  const std::string home = testsupport::RealHome();
  if (home.empty()) GTEST_SKIP() << "TESSARIN_REAL_HOME names no real database";
  TempFolder folder;
  AppContext ctx(folder.Path());
  ASSERT_TRUE(LoadIndex(ctx.store, ctx.log, IndexFilePath(home)));
  for (int row = 0; row < kIniSetFiles; ++row) {
    EXPECT_EQ(IniSetFileText(ctx.store, row, 0, nullptr), IniSetFileTextPlain(ctx.store, row, 0))
        << row;
  }
}

class IniSetRun : public ::testing::Test {
 protected:
  IniSetRun() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.messages.LoadMessages();
    ctx.store = YearStore();
  }
  TempFolder folder;
  AppContext ctx{folder.Path()};
  Work work;
  IniSetOptions options;
};

TEST_F(IniSetRun, NothingSelectedOrNoFolderStops) {
  EXPECT_EQ(GenerateIniSet(ctx, work, options), IniSetResult::NothingSelected);
  options.selected[1] = true;
  options.paths[15] = folder.Path() + "nothere";
  EXPECT_EQ(GenerateIniSet(ctx, work, options), IniSetResult::BadDestination);
}

TEST_F(IniSetRun, UniqueFolderAndBackups) {
  fs::create_directories(folder.Path() + "out");
  options.selected[1] = true;
  options.selected[9] = true;
  options.paths[15] = folder.Path() + "out";
  WriteFile(folder.Path() + "out/year.ini", "old year");
  EXPECT_EQ(GenerateIniSet(ctx, work, options), IniSetResult::Done);
  EXPECT_EQ(ReadFile(folder.Path() + "out/year.ini"), "[1980]\r\nbbb\r\naaa\r\n[1981]\r\n");
  EXPECT_EQ(ReadFile(folder.Path() + "out/year.bak"), "old year");
  EXPECT_EQ(ReadFile(folder.Path() + "out/clones.ini"), "[Clones]\r\n");
  EXPECT_EQ(options.paths[1], folder.Path() + "out/year.ini");
}

TEST_F(IniSetRun, DifferentFoldersAndTheBackupRule) {
  options.uniqueFolder = false;
  options.selected[1] = true;
  options.selected[3] = true;
  options.selected[2] = true;
  options.selected[4] = true;
  options.paths[1] = folder.Path() + "years.txt";
  options.paths[2] = folder.Path() + "genres.html";
  options.paths[4] = folder.Path();  // a folder: the file's own name goes behind it
  WriteFile(folder.Path() + "years.txt", "old");
  WriteFile(folder.Path() + "genres.html", "old html");
  EXPECT_EQ(GenerateIniSet(ctx, work, options), IniSetResult::Done);
  EXPECT_EQ(ReadFile(folder.Path() + "years.bak"), "old");
  EXPECT_FALSE(fs::exists(folder.Path() + "genres.bak"));
  EXPECT_FALSE(fs::exists(folder.Path() + "genres.html.bak"));
  // An empty path: the program folder.
  EXPECT_TRUE(fs::exists(ctx.AppFolder() + "category.ini"));
  EXPECT_EQ(options.paths[3], ctx.AppFolder() + "category.ini");
  EXPECT_TRUE(fs::exists(folder.Path() + "status.ini"));
}

TEST_F(IniSetRun, SettingsRoundTrip) {
  options.uniqueFolder = false;
  options.selected[5] = true;
  options.paths[5] = "/a/players.ini";
  options.paths[15] = "/dest";
  SaveIniSetOptions(ctx, options);
  const IniSetOptions back = LoadIniSetOptions(ctx);
  EXPECT_FALSE(back.uniqueFolder);
  EXPECT_TRUE(back.selected[5]);
  EXPECT_FALSE(back.selected[4]);
  EXPECT_EQ(back.paths[5], "/a/players.ini");
  EXPECT_EQ(back.paths[15], "/dest");
  EXPECT_EQ(ctx.settings.InfRead("Frm15Radio"), "1");
}

}  // namespace
}  // namespace tessarin
