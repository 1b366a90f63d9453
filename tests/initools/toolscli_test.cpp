// scan-folder, xml-to-list, ini-set and copy-task from the terminal.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/clirun.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::ReadFile;
using testsupport::RunCli;
using testsupport::TempFolder;
using testsupport::WriteFile;

class ToolsCli : public ::testing::Test {
 protected:
  std::vector<std::string> With(std::initializer_list<std::string> args) {
    std::vector<std::string> all = {"--home", home.Path()};
    all.insert(all.end(), args);
    return all;
  }
  TempFolder home;
  TempFolder work;
};

TEST_F(ToolsCli, ScanFolderWritesTheList) {
  fs::create_directories(work.Path() + "roms");
  WriteFile(work.Path() + "roms/pacman.zip", "x");
  WriteFile(work.Path() + "roms/readme.txt", "x");
  const auto result =
      RunCli(With({"scan-folder", "--folder", work.Path() + "roms", "--remove-extension",
                   "--add-before", "mame/", "--out", work.Path() + "list.ini"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(ReadFile(work.Path() + "list.ini"),
            "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n"
            "\r\n[ROOT_FOLDER]\r\nmame/pacman\r\n");
  const auto missing =
      RunCli(With({"scan-folder", "--folder", work.Path() + "none", "--out", "x.ini"}));
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("This folder does not exist."), std::string::npos);
}

TEST_F(ToolsCli, XmlToListWritesNamesAndDescriptions) {
  WriteFile(work.Path() + "l.xml",
            "<machine name=\"pacman\">\n<description>Pac &amp; Man</description>\n");
  const auto result = RunCli(With({"xml-to-list", "--source", work.Path() + "l.xml", "--rom-names",
                                   "--game-names", "--out", work.Path() + "out.txt"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(ReadFile(work.Path() + "out.txt"), "pacman;Pac & Man\r\n");
  EXPECT_EQ(
      RunCli(With({"xml-to-list", "--source", work.Path() + "none.xml", "--out", "o"})).exitCode,
      1);
}

TEST_F(ToolsCli, IniSetFromTheDatabase) {
  fs::create_directories(home.Path() + "DataFiles");
  WriteFile(home.Path() + "DataFiles/index",
            "MAME v1\r\nbbb;A0;0;BBee;D1;S#CL\r\naaa;A0;0;BAnt;D1;Sbbb\r\n;A0\r\n[Manufacturer]"
            "\r\n[Year]\r\n1980\r\n1981\r\n[Orientation]\r\n[Buttons]\r\n[Controls]\r\n"
            "[Status]\r\n[Genre]\r\n[Category]\r\n[VerAdded]\r\n[Bios]\r\n[Driver]\r\n"
            "[nPlayers]\r\n[Savestate]\r\n");
  fs::create_directories(work.Path() + "out");
  const auto result = RunCli(With({"ini-set", "--files", "year,clones", "--destination",
                                   work.Path() + "out", "--sort", "rom"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(ReadFile(work.Path() + "out/year.ini"), "[1980]\r\naaa\r\nbbb\r\n[1981]\r\n");
  EXPECT_EQ(ReadFile(work.Path() + "out/clones.ini"), "[Clones]\r\naaa\r\n");
  const auto bad =
      RunCli(With({"ini-set", "--files", "year", "--destination", work.Path() + "none"}));
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_NE(bad.err.find("Destination folder is unvalid."), std::string::npos);
}

TEST_F(ToolsCli, CopyTaskAsksThenCopiesAndLogs) {
  fs::create_directories(work.Path() + "src");
  fs::create_directories(work.Path() + "dst");
  WriteFile(work.Path() + "src/pacman.zip", "p");
  WriteFile(work.Path() + "a.txt", "pacman\r\n");
  WriteFile(work.Path() + "b.txt", "PacMan\r\n");
  const std::vector<std::string> args =
      With({"copy-task", "--list-file", work.Path() + "a.txt", "--compare-file",
            work.Path() + "b.txt", "--source", work.Path() + "src", "--source-ext", "zip",
            "--destination", work.Path() + "dst"});
  const auto declined = RunCli(args);
  EXPECT_EQ(declined.exitCode, 1);
  EXPECT_FALSE(fs::exists(work.Path() + "dst/pacman.zip"));
  std::vector<std::string> yes = args;
  yes.push_back("--yes");
  const auto result = RunCli(yes);
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_EQ(ReadFile(work.Path() + "dst/pacman.zip"), "p");
  EXPECT_NE(ReadFile(home.Path() + "Tessarin.CopyTasks.LOG.txt").find("END OF OPERATION"),
            std::string::npos);
}

}  // namespace
}  // namespace tessarin
