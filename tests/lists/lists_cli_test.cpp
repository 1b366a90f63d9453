// tessarin-cli list and dat, run as a user would, against a database the command line builds from
// our own game list: the same bytes as the routines behind the dialog, and clear refusals.

#include <gtest/gtest.h>

#include <QStringList>
#include <filesystem>

#include "core/work.h"
#include "lists/datexport.h"
#include "lists/textlists.h"
#include "liststestsupport.h"
#include "store/indexfile.h"
#include "support/clirun.h"

namespace tessarin {
namespace {

using liststest::ListsFixture;
using liststest::ReadFile;
using liststest::TestHome;

using testsupport::CliResult;
using testsupport::RunCli;

class ListsCli : public ::testing::Test {
 protected:
  void SetUp() override {
    // No emulator: the list comes from --dump, and no real emulator is ever run.
    ASSERT_EQ(Run({"set", "DataFile1", home.Path("no-emulator")}).exitCode, 0);
    ASSERT_EQ(Run({"set", "DataFile14", ListsFixture("genre.ini")}).exitCode, 0);
    const CliResult built = Run({"--yes", "build", "--dump", ListsFixture("games.xml")});
    ASSERT_EQ(built.exitCode, 0) << built.out << built.err;
    // The same database in this process, for the routines the dialog runs.
    ASSERT_TRUE(LoadIndex(home.ctx.store, home.ctx.log, IndexFilePath(home.Folder())));
    home.ctx.settings.InfLoad();
  }
  CliResult Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--home", home.Folder()});
    return RunCli(args);
  }
  std::string DialogList(const ListSelection& selected, TextListFormat format,
                         const std::string& ini = {}) {
    TextListRequest request;
    request.format = std::move(format);
    request.selected = selected;
    request.iniFile = ini;
    request.outputPath = home.Path("dialog.txt");
    Work work;
    EXPECT_EQ(BuildTextList(home.ctx, work, request), ListRunResult::Done);
    return ReadFile(request.outputPath);
  }

  TestHome home;
};

TEST_F(ListsCli, ListWritesWhatTheDialogWrites) {
  const CliResult r = Run({"list", "--fields", "Year,RomName,Chip", "--separator", "semicolon",
                           "--quotes", "--out", home.Path("cli.txt")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  ListSelection selected{};
  selected[0] = selected[2] = selected[14] = true;
  const std::string expected = DialogList(selected, TextListFormat{";", "\"", false});
  EXPECT_EQ(ReadFile(home.Path("cli.txt")), expected);
  EXPECT_EQ(expected.substr(0, expected.find("\r\n")), "\"RomName\";\"Year\";\"Chip\";");
  EXPECT_NE(r.out.find(home.Path("cli.txt")), std::string::npos) << r.out;
}

TEST_F(ListsCli, ListOfAllFieldsWithAnIniFileAndEachSeparator) {
  ListSelection all{};
  all.fill(true);
  const struct {
    const char* option;
    const char* separator;
  } cases[] = {{"tab", "\t"}, {"comma", ","}, {"space", " "}, {"|", "|"}};
  for (const auto& c : cases) {
    const CliResult r = Run({"list", "--fields", "all", "--separator", c.option, "--ini",
                             ListsFixture("names.ini"), "--out", home.Path("cli.txt")});
    ASSERT_EQ(r.exitCode, 0) << c.option << r.err;
    EXPECT_EQ(ReadFile(home.Path("cli.txt")),
              DialogList(all, TextListFormat{c.separator, "", false}, ListsFixture("names.ini")))
        << c.option;
  }
  // Without --separator: a tab.
  ASSERT_EQ(Run({"list", "--fields", "RomName,Display Type", "--out", home.Path("t.txt")}).exitCode,
            0);
  EXPECT_EQ(ReadFile(home.Path("t.txt")).substr(0, 22), "RomName\tDisplay Type\t\r");
}

TEST_F(ListsCli, CsvFormat) {
  const CliResult r = Run(
      {"list", "--fields", "RomName,GameName", "--format", "csv", "--out", home.Path("cli.csv")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  ListSelection selected{};
  selected[0] = selected[1] = true;
  EXPECT_EQ(ReadFile(home.Path("cli.csv")), DialogList(selected, TextListFormat{",", "", true}));
  EXPECT_EQ(ReadFile(home.Path("cli.csv")).substr(0, 21), "\xEF\xBB\xBFRomName,GameName\r\n");
}

TEST_F(ListsCli, ListRefusesWhatItCantDo) {
  CliResult r = Run({"list", "--fields", "RomName,Nope", "--out", home.Path("x.txt")});
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_NE(r.err.find("Nope"), std::string::npos) << r.err;
  r = Run({"list", "--fields", "RomName", "--separator", "pipe", "--out", home.Path("x.txt")});
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_NE(r.err.find("pipe"), std::string::npos) << r.err;
  r = Run({"list", "--fields", "RomName"});
  EXPECT_EQ(r.exitCode, 2);
  r = Run({"list", "--fields", "RomName", "--format", "xls", "--out", home.Path("x.txt")});
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(home.Path("x.txt")));
  r = Run({"list", "--help"});
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_NE(r.out.find("--fields"), std::string::npos);
}

TEST_F(ListsCli, DatWritesWhatTheDialogWritesAndTheMask) {
  const CliResult r = Run({"dat", "--out", home.Path("cli.dat")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(std::filesystem::exists(home.Path("dat_mask.dat")));
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, "", home.Path("dialog.dat")), DatExportResult::Done);
  EXPECT_EQ(ReadFile(home.Path("cli.dat")), ReadFile(home.Path("dialog.dat")));
  EXPECT_NE(ReadFile(home.Path("cli.dat")).find("\tname mygame\r\n"), std::string::npos);

  const CliResult ini =
      Run({"dat", "--ini", ListsFixture("names.ini"), "--out", home.Path("cli-ini.dat")});
  ASSERT_EQ(ini.exitCode, 0) << ini.err;
  ASSERT_EQ(ExportDatList(home.ctx, work, ListsFixture("names.ini"), home.Path("dialog-ini.dat")),
            DatExportResult::Done);
  EXPECT_EQ(ReadFile(home.Path("cli-ini.dat")), ReadFile(home.Path("dialog-ini.dat")));
}

// A named INI file that isn't there selects every game, as in the window, and is told.
TEST_F(ListsCli, AMissingIniFileGivesEveryGameAndIsTold) {
  const std::string missing = home.Path("missing.ini");
  CliResult r = Run({"list", "--fields", "RomName", "--ini", missing, "--out", home.Path("a.txt")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_NE(r.err.find(missing), std::string::npos) << r.err;
  r = Run({"list", "--fields", "RomName", "--out", home.Path("b.txt")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(ReadFile(home.Path("a.txt")), ReadFile(home.Path("b.txt")));
  EXPECT_NE(ReadFile(home.Path("a.txt")).find("mygame\r\n"), std::string::npos);

  r = Run({"dat", "--ini", missing, "--out", home.Path("a.dat")});
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_NE(r.err.find(missing), std::string::npos) << r.err;
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, missing, home.Path("dialog.dat")), DatExportResult::Done);
  EXPECT_EQ(ReadFile(home.Path("a.dat")), ReadFile(home.Path("dialog.dat")));
  EXPECT_NE(ReadFile(home.Path("a.dat")).find("\tname mygame\r\n"), std::string::npos);
}

TEST_F(ListsCli, DatWithAMaskWithoutStartFails) {
  liststest::WriteFile(home.Path("dat_mask.dat"), "game (\r\n)\r\n");
  const CliResult r = Run({"dat", "--out", home.Path("cli.dat")});
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_NE(r.err.find("#START_HEAD"), std::string::npos) << r.err;
  EXPECT_FALSE(std::filesystem::exists(home.Path("cli.dat")));
  EXPECT_EQ(Run({"dat"}).exitCode, 2);
}

}  // namespace
}  // namespace tessarin
