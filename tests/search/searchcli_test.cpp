// tessarin-cli search, end to end: the real program on a copy of the fixture database.

#include <gtest/gtest.h>

#include <QStringList>
#include <filesystem>

#include "searchtestsupport.h"
#include "support/clirun.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

using testsupport::CliResult;
using testsupport::RunCli;

class SearchCli : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(m_home.Path() + "DataFiles");
    testsupport::WriteFile(m_home / "DataFiles/index",
                           testsupport::ReadFile(searchtest::SearchFixture("index")));
  }
  CliResult Search(std::vector<std::string> args) const {
    args.insert(args.begin(), {"--home", m_home.Path(), "search"});
    return RunCli(args);
  }
  testsupport::TempFolder m_home;
};

TEST_F(SearchCli, HelpNamesEveryCriterion) {
  const CliResult help = RunCli({"search", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  for (const char* option :
       {"--keyword", "--manufacturer", "--year", "--genre", "--category", "--status", "--players",
        "--buttons", "--control", "--available", "--clones", "--mature", "--orientation",
        "--driver", "--savestate", "--version", "--compare", "--names"}) {
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
  }
}

TEST_F(SearchCli, PrintsListLinesInResultOrder) {
  const CliResult r = Search({"--keyword", "STREET"});
  EXPECT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(r.out,
            "sf2      Street Fighter II: The World Warrior\n"
            "sf2j     Street Fighter II (Japan 911210)\n");
  EXPECT_EQ(r.err, "");
}

TEST_F(SearchCli, NamesAlone) {
  const CliResult r = Search({"--keyword", "street", "--names"});
  EXPECT_EQ(r.out, "sf2\nsf2j\n");
}

TEST_F(SearchCli, NoResultIsMessage334OnStandardErrorAndSuccess) {
  const CliResult r = Search({"--orientation", "sideways"});
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_NE(r.err.find("NO ROM FOUND !"), std::string::npos) << r.err;
}

TEST_F(SearchCli, TypedTextInATableBoxIsIgnored) {
  const CliResult all = Search({"--names"});
  EXPECT_EQ(all.out,
            "pacman\npuckman\nsf2\nsf2j\nzorblast\nzorbmain\nnodesc\nverfake\nkwgame\nmireset\n");
  EXPECT_EQ(Search({"--names", "--manufacturer", "Capco"}).out, all.out);
  EXPECT_EQ(Search({"--names", "--manufacturer", "All"}).out, all.out);
  EXPECT_EQ(Search({"--names", "--manufacturer", "Capcom"}).out, "sf2\nkwgame\nmireset\n");
}

TEST_F(SearchCli, FixedListsByWord) {
  EXPECT_EQ(Search({"--names", "--available", "yes", "--clones", "only"}).out, "puckman\nsf2j\n");
  EXPECT_EQ(Search({"--names", "--available", "no", "--mature", "only"}).out, "zorblast\n");
  EXPECT_EQ(Search({"--names", "--clones", "without", "--mature", "without", "--available", "all",
                    "--year", "1991"})
                .out,
            "sf2\n");
  EXPECT_EQ(Search({"--available", "maybe"}).exitCode, 2);
}

TEST_F(SearchCli, VersionComparisons) {
  EXPECT_EQ(Search({"--names", "--version", "0.135", "--compare", "<"}).out,
            "puckman\nzorblast\nsf2\nverfake\n");
  EXPECT_EQ(Search({"--names", "--version", "0.135", "--compare", ">"}).out, "zorbmain\n");
  EXPECT_EQ(Search({"--names", "--version", "0.135"}).out, "pacman\nverfake\nmireset\n");
  EXPECT_EQ(Search({"--names", "--version", "All", "--compare", "<"}).out.size(),
            Search({"--names"}).out.size());
  EXPECT_EQ(Search({"--names", "--savestate", "unsupported", "--buttons", "6"}).out, "sf2\nsf2j\n");
  EXPECT_EQ(Search({"--compare", "!"}).exitCode, 2);
}

TEST_F(SearchCli, NoDatabaseFails) {
  testsupport::TempFolder empty;
  const CliResult r = RunCli({"--home", empty.Path(), "search", "--keyword", "pac"});
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_NE(r.err.find("The database doesn't exist."), std::string::npos) << r.err;
}

}  // namespace
}  // namespace tessarin
