// tessarin-cli translate make-dictionary and translate run, run as a user would.

#include <gtest/gtest.h>

#include <QStringList>
#include <filesystem>
#include <string>
#include <vector>

#include "core/version.h"
#include "store/faststrings.h"
#include "support/clirun.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;
namespace fs = std::filesystem;

using testsupport::CliResult;
using testsupport::RunCli;

std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/translate/" + name;
}

class TranslateCli : public ::testing::Test {
 protected:
  std::vector<std::string> With(std::initializer_list<std::string> args) const {
    std::vector<std::string> all = {"--home", home.Path()};
    all.insert(all.end(), args);
    return all;
  }
  void Set(const std::string& key, const std::string& value) {
    ASSERT_EQ(RunCli(With({"set", key, value})).exitCode, 0);
  }
  std::string Dictionary() const { return home / "TRANSLATE.DIC.txt"; }

  TempFolder home;
  TempFolder data;
};

TEST_F(TranslateCli, EveryCommandHasHelp) {
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"translate", "--help"},
                                             {"translate", "make-dictionary", "--help"},
                                             {"translate", "run", "--help"}}) {
    const CliResult help = RunCli(command);
    EXPECT_EQ(help.exitCode, 0) << command[1];
    EXPECT_NE(help.out.find("Usage"), std::string::npos) << help.out;
  }
  EXPECT_NE(RunCli({"--help"}).out.find("translate"), std::string::npos);
  EXPECT_EQ(RunCli(With({"translate"})).exitCode, 2);
  EXPECT_EQ(RunCli(With({"translate", "run", "--files", "history,readme"})).exitCode, 2);
}

TEST_F(TranslateCli, MakeDictionaryWritesItAndAsksBeforeReplacingIt) {
  Set("DataFile12", Fixture("catlist.ini"));
  Set("DataFile14", Fixture("genre.ini"));
  Set("DataFile13", Fixture("catver.ini"));
  Set("DataFile7", Fixture("wizsort.ini"));
  Set("DataFile8", Fixture("nplayers.ini"));
  const CliResult made = RunCli(With({"translate", "make-dictionary"}));
  ASSERT_EQ(made.exitCode, 0) << made.err;
  EXPECT_NE(made.out.find("TRANSLATE.DIC.txt"), std::string::npos);
  const std::string expected =
      FastReplace(ReadFile(Fixture("TRANSLATE.DIC.expected.txt")), "#VERSION#", AppVersion());
  EXPECT_EQ(ReadFile(Dictionary()), expected);

  WriteFile(Dictionary(), "[HISTORY]\r\nmine = moi\r\n");
  const CliResult kept = RunCli(With({"translate", "make-dictionary"}));
  EXPECT_EQ(kept.exitCode, 1);
  EXPECT_EQ(ReadFile(Dictionary()), "[HISTORY]\r\nmine = moi\r\n");
  EXPECT_NE(kept.err.find(Dictionary()), std::string::npos) << kept.err;
  EXPECT_EQ(RunCli(With({"--yes", "translate", "make-dictionary"})).exitCode, 0);
  EXPECT_EQ(ReadFile(Dictionary()), expected);
}

TEST_F(TranslateCli, RunTranslatesTheNamedFilesOfTheSettings) {
  const std::string history = data / "History.dat";
  const std::string mameinfo = data / "Mameinfo.dat";
  fs::copy_file(Fixture("history.dat"), history);
  fs::copy_file(Fixture("mameinfo.dat"), mameinfo);
  Set("DataFile2", history);
  Set("DataFile3", mameinfo);

  // No dictionary yet.
  CliResult run = RunCli(With({"translate", "run", "--files", "history"}));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("make-dictionary"), std::string::npos) << run.err;

  WriteFile(Dictionary(),
            "[HISTORY]\r\nSound Board : = Carte Son :\r\nBoard = Carte\r\n[MAMEINFO]\r\n"
            "Board =\r\n");
  run = RunCli(With({"translate", "run", "--files", "history"}));
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(run.out.find(history), std::string::npos) << run.out;
  EXPECT_NE(ReadFile(history).find("Main Carte : Z80, Carte Son : YM2151.\r\n"), std::string::npos);
  EXPECT_EQ(ReadFile(data / "History.ORIGINAL.dat"), ReadFile(Fixture("history.dat")));

  // A section without a translation leaves its file alone and says so.
  run = RunCli(With({"translate", "run", "--files", "mameinfo"}));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("[MAMEINFO]"), std::string::npos) << run.err;
  EXPECT_EQ(ReadFile(mameinfo), ReadFile(Fixture("mameinfo.dat")));
  EXPECT_FALSE(fs::exists(data / "Mameinfo.ORIGINAL.dat"));

  // A file the settings don't name.
  run = RunCli(With({"translate", "run", "--files", "catver"}));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("DataFile13"), std::string::npos) << run.err;
}

TEST_F(TranslateCli, WithoutFilesTheWindowsTicksCount) {
  const std::string history = data / "History.dat";
  fs::copy_file(Fixture("history.dat"), history);
  Set("DataFile2", history);
  WriteFile(Dictionary(), "[HISTORY]\r\nBoard = Carte\r\n");
  CliResult run = RunCli(With({"translate", "run"}));
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.err.find("--files"), std::string::npos) << run.err;
  EXPECT_EQ(ReadFile(history), ReadFile(Fixture("history.dat")));

  Set("Frm8DataFile6", "1");
  run = RunCli(With({"translate", "run"}));
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(ReadFile(history).find("Main Carte :"), std::string::npos);
}

}  // namespace
}  // namespace tessarin
