// The search engine: every criterion on a small readable database, the form rules of Find, the
// lists, and the fast engine against the plain scoring search (and the plain per-version union)
// on the fixture and on random databases with random criteria.

#include "search/searchengine.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <random>

#include "app/context.h"
#include "core/work.h"
#include "plainsearch.h"
#include "searchtestsupport.h"
#include "store/indexfile.h"
#include "support/realdata.h"

namespace tessarin {
namespace {

using searchtest::FixtureStore;

class Engine : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(FixtureStore(m_ctx)); }
  const GameStore& Store() const { return m_ctx.ctx().store; }
  SearchResult Find(const SearchCriteria& c) const { return SearchGames(Store(), c); }
  int Game(const char* name) const { return Store().FindGame(name); }
  std::vector<int> Games(std::initializer_list<const char*> names) const {
    std::vector<int> out;
    for (const char* n : names) out.push_back(Game(n));
    return out;
  }
  searchtest::ContextHolder m_ctx;
};

TEST_F(Engine, EmptyFormListsEveryGameInOrder) {
  const SearchResult all = Find({});
  ASSERT_EQ(static_cast<int>(all.size()), Store().GameCount());
  for (int i = 0; i < Store().GameCount(); ++i) EXPECT_EQ(all[static_cast<size_t>(i)], i + 1);
}

TEST_F(Engine, KeywordIgnoresCaseAndIsOneSubstring) {
  SearchCriteria c;
  c.Keyword = "PAC";
  const SearchResult upper = Find(c);
  c.Keyword = "pac";
  EXPECT_EQ(Find(c), upper);
  // pacman by name, verfake by its description ("PACMAN clone"); puckman has no "pac".
  EXPECT_EQ(upper, Games({"pacman", "verfake"}));
  c.Keyword = "two words";
  EXPECT_EQ(Find(c), Games({"kwgame"}));
  c.Keyword = "words two";
  EXPECT_TRUE(Find(c).empty());
  c.Keyword = "*";  // no wildcards: the star of the presence mark isn't in name or title
  EXPECT_TRUE(Find(c).empty());
}

TEST_F(Engine, KeywordLooksOnlyAtNameAndTitle) {
  SearchCriteria c;
  c.Keyword = "#cl";  // stands in many records, but behind the title
  EXPECT_TRUE(Find(c).empty());
  c.Keyword = "edition";  // behind the ";C" that the title of zorbmain holds
  EXPECT_TRUE(Find(c).empty());
  c.Keyword = "zorb main";
  EXPECT_EQ(Find(c), Games({"zorbmain"}));
}

TEST_F(Engine, TableCriterionTakesTheFirstEqualEntryOnly) {
  SearchCriteria c;
  c.Manufacturer = "Capcom";  // entries 1 and 3
  EXPECT_EQ(Find(c), Games({"sf2", "kwgame", "mireset"}));
  c.Manufacturer = "capcom";  // exact comparison
  EXPECT_TRUE(Find(c).empty());
  c.Manufacturer = "Nobody";
  EXPECT_TRUE(Find(c).empty());
  // A title holding ";C2;" misleads the manufacturer test, as the record format allows.
  c.Manufacturer = "Namco";
  EXPECT_EQ(Find(c), Games({"pacman", "puckman", "zorbmain"}));
}

TEST_F(Engine, EachTableCriterionUsesItsField) {
  SearchCriteria c;
  c.Year = "1984";
  EXPECT_EQ(Find(c), Games({"zorblast", "zorbmain", "verfake"}));
  c = {};
  c.Genre = "Maze";
  EXPECT_EQ(Find(c), Games({"pacman", "puckman"}));
  c = {};
  c.Category = "Shooter / Flying";
  EXPECT_EQ(Find(c), Games({"sf2", "sf2j", "verfake", "kwgame", "mireset"}));
  c = {};
  c.Status = "imperfect";
  EXPECT_EQ(Find(c), Games({"sf2j"}));
  c = {};
  c.Players = "2P sim";
  EXPECT_EQ(Find(c), Games({"sf2", "sf2j"}));
  c = {};
  c.Buttons = "6";
  EXPECT_EQ(Find(c), Games({"sf2", "sf2j"}));
  c = {};
  c.Control = "trackball";
  EXPECT_EQ(Find(c), Games({"zorblast", "zorbmain"}));
  c = {};
  c.Orientation = "90";
  EXPECT_EQ(Find(c), Games({"pacman", "puckman", "zorblast", "zorbmain"}));
  c = {};
  c.Driver = "cps1.cpp";
  EXPECT_EQ(Find(c), Games({"sf2", "sf2j", "kwgame"}));
  // Criteria add up: a game must meet all of them.
  c.Buttons = "6";
  c.Status = "good";
  EXPECT_EQ(Find(c), Games({"sf2"}));
}

TEST_F(Engine, FlagCriteria) {
  SearchCriteria c;
  c.Available = 1;
  EXPECT_EQ(Find(c), Games({"pacman", "puckman", "sf2j", "zorbmain", "verfake"}));
  c.Available = 2;
  EXPECT_EQ(Find(c), Games({"sf2", "zorblast", "nodesc", "kwgame", "mireset"}));
  c = {};
  c.Clones = 1;
  EXPECT_EQ(Find(c), Games({"puckman", "sf2j", "zorblast"}));
  c.Clones = 2;
  EXPECT_EQ(Find(c).size(), 7u);
  c = {};
  c.Mature = 1;
  EXPECT_EQ(Find(c), Games({"zorblast"}));
  c.Mature = 2;
  EXPECT_EQ(Find(c).size(), 9u);
  c = {};
  c.Savestate = 1;
  EXPECT_EQ(Find(c), Games({"pacman", "puckman", "nodesc", "kwgame"}));
  c.Savestate = 2;
  EXPECT_EQ(Find(c), Games({"sf2", "sf2j", "verfake"}));
  c.Savestate = 3;  // the third entry: only "1" and "2" are ever looked at
  EXPECT_TRUE(Find(c).empty());
}

TEST_F(Engine, RecordWithoutSavestateFieldIsReadFromItsStart) {
  // mireset lost field V (and its mark) to a Mameinfo reset: its second character, 'i', is read.
  SearchCriteria c;
  c.Savestate = 1;
  for (const int game : Find(c)) EXPECT_NE(game, Game("mireset"));
}

TEST_F(Engine, VersionAddedIsAPositionInTheTable) {
  SearchCriteria c;
  c.VersionAdded = 2;  // 0.135; verfake's title holds ";K2;" too
  EXPECT_EQ(Find(c), Games({"pacman", "verfake", "mireset"}));
  c.VersionAdded = -1;
  EXPECT_EQ(Find(c).size(), 10u);
}

TEST_F(Engine, VersionPositionAndNumber) {
  const CodeTable& table = Store().VerAddedTable;
  EXPECT_EQ(VersionPosition("", table, "All"), 0);
  EXPECT_EQ(VersionPosition("All", table, "All"), 0);
  EXPECT_EQ(VersionPosition("0.135", table, "All"), 2);
  EXPECT_EQ(VersionPosition("0.999", table, "All"), -1);
  EXPECT_EQ(VersionPosition("0.135 ", table, "All"), -1);
  EXPECT_EQ(VersionNumber("0.135u1"), 135);
  EXPECT_EQ(VersionNumber("37b16"), 37);
  EXPECT_EQ(VersionNumber("0.037b16"), 37);
  EXPECT_EQ(VersionNumber("?"), 0);
  EXPECT_EQ(VersionNumber("All"), 0);
  EXPECT_EQ(VersionNumber(""), 0);
  EXPECT_EQ(VersionNumber(" 1 35"), 135);
  EXPECT_EQ(VersionNumber("0.135.5"), 135.5);
  EXPECT_EQ(VersionNumber("1e2x"), 100);
  EXPECT_EQ(VersionNumber("12ex"), 12);
}

TEST_F(Engine, AddUniqueKeepsOrderAndSkipsRepeats) {
  std::vector<std::string> list;
  EXPECT_TRUE(AddUnique("5", list));
  EXPECT_TRUE(AddUnique("2", list));
  EXPECT_FALSE(AddUnique("5", list));
  EXPECT_EQ(list, (std::vector<std::string>{"5", "2"}));
}

TEST_F(Engine, FillSearchListsSortsCopiesAndKeepsSavestateOrder) {
  const SearchLists lists = FillSearchLists(Store(), m_ctx.ctx().messages);
  EXPECT_EQ(lists.Items[1], (std::vector<std::string>{"All", "Acme", "Capcom", "Capcom", "Namco"}));
  EXPECT_EQ(lists.Items[17], (std::vector<std::string>{"All", "0.036", "0.037b16", "0.100", "0.135",
                                                       "0.135u1", "0.140", "?"}));
  EXPECT_EQ(lists.Items[16],
            (std::vector<std::string>{"All", "supported", "unsupported", "partial"}));
  EXPECT_EQ(lists.Items[9],
            (std::vector<std::string>{"All", "Available Roms", "Unavailable Roms"}));
  EXPECT_EQ(lists.Items[10], (std::vector<std::string>{"All", "Only clones", "Without clone"}));
  EXPECT_EQ(lists.Items[11],
            (std::vector<std::string>{"All", "Only mature games", "Without mature game"}));
  EXPECT_EQ(lists.Items[20], (std::vector<std::string>{"=", "<", ">"}));
  // The tables keep their order.
  EXPECT_EQ(Store().ManufacturerTable[1], "Capcom");
  EXPECT_EQ(Store().ManufacturerTable[2], "Namco");
  EXPECT_TRUE(lists.Items[14].empty());
}

TEST_F(Engine, FillSearchListsOnAnEmptyStoreLeavesThemEmpty) {
  GameStore empty;
  const SearchLists lists = FillSearchLists(empty, m_ctx.ctx().messages);
  for (const auto& items : lists.Items) EXPECT_TRUE(items.empty());
}

class Form : public Engine {
 protected:
  void SetUp() override {
    Engine::SetUp();
    m_lists = FillSearchLists(Store(), m_ctx.ctx().messages);
  }
  // Puts a text in a box as the user would: its list position follows the text.
  void Put(int combo, const std::string& text) {
    m_form.Text[static_cast<size_t>(combo)] = text;
    m_form.Position[static_cast<size_t>(combo)] =
        ListPosition(m_lists.Items[static_cast<size_t>(combo)], text);
  }
  SearchRun Run() { return RunSearch(Store(), m_lists, m_form, "All"); }
  SearchLists m_lists;
  SearchForm m_form;
};

TEST_F(Form, AllGivesNoTestAndTypedTextIsDiscardedExceptOrientationAndDriver) {
  Put(8, "All");
  EXPECT_EQ(Run().Results.size(), 10u);
  Put(1, "Capco");  // typed in the manufacturer box: ignored, finds all
  EXPECT_EQ(Run().Results.size(), 10u);
  Put(1, "");
  Put(12, "Capco");  // typed in the orientation box: kept, finds nothing
  EXPECT_TRUE(Run().Results.empty());
  Put(12, "");
  Put(13, "nothing.cpp");
  EXPECT_TRUE(Run().Results.empty());
  Put(13, "All");
  EXPECT_EQ(Run().Results.size(), 10u);
}

TEST_F(Form, TextsAreTrimmedAndFixedListsUsePositions) {
  m_form.Keyword = "  pac  ";
  EXPECT_EQ(Run().Results, Games({"pacman", "verfake"}));
  m_form.Keyword.clear();
  Put(9, "Available Roms");
  EXPECT_EQ(Run().Results.size(), 5u);
  Put(9, "typed");  // -1: no test
  EXPECT_EQ(Run().Results.size(), 10u);
  Put(10, "Only clones");
  Put(11, "Without mature game");
  EXPECT_EQ(Run().Results, Games({"puckman", "sf2j"}));
}

TEST_F(Form, SavestateBoxUsesTheExactTableText) {
  Put(16, "unsupported");
  EXPECT_EQ(Run().Results, Games({"sf2", "sf2j", "verfake"}));
  Put(16, "All");
  EXPECT_EQ(Run().Results.size(), 10u);
  Put(16, "partial");
  EXPECT_TRUE(Run().Results.empty());
}

TEST_F(Form, VersionBelowIsTheUnionInVersionOrderWithoutTheChosenVersion) {
  Put(17, "0.135");
  Put(20, "<");
  const SearchRun run = Run();
  EXPECT_TRUE(run.UsedUnion);
  // 0.036 (puckman), 0.037b16 (zorblast), 0.100 (sf2, verfake); nothing of 0.135 itself.
  EXPECT_EQ(run.Results, Games({"puckman", "zorblast", "sf2", "verfake"}));
  Put(20, ">");
  // 0.135u1 counts 135 too, so only 0.140 is above.
  EXPECT_EQ(Run().Results, Games({"zorbmain"}));
  Put(20, "=");
  EXPECT_EQ(Run().Results, Games({"pacman", "verfake", "mireset"}));
}

TEST_F(Form, VersionAllWithBelowIsAPlainSearch) {
  Put(17, "All");
  Put(20, "<");
  const SearchRun run = Run();
  EXPECT_FALSE(run.UsedUnion);
  EXPECT_EQ(run.Results.size(), 10u);
}

TEST_F(Form, UnknownVersionIsIgnoredWithEqualsAndComparedWithBelow) {
  Put(17, "0.120");
  Put(20, "=");
  EXPECT_EQ(Run().Results.size(), 10u);
  Put(20, "<");
  EXPECT_EQ(Run().Results, Games({"puckman", "zorblast", "sf2", "verfake"}));
}

TEST_F(Form, VersionNumberedZeroResetsTheOperator) {
  Put(17, "?");
  Put(20, ">");
  const SearchRun run = Run();
  EXPECT_TRUE(run.OperatorReset);
  EXPECT_EQ(run.Results, Games({"nodesc"}));
}

TEST_F(Engine, ResultLinesArePaddedToTheLongestName) {
  ASSERT_EQ(Store().LongestNameLength, 8);
  EXPECT_EQ(ResultLine(Store(), Game("pacman")), "pacman   Pac-Man (Midway)");
  EXPECT_EQ(ResultLine(Store(), Game("nodesc")), "nodesc   ");
  EXPECT_EQ(ResultLine(Store(), Game("zorbmain")), "zorbmain ZORB Main");
}

TEST_F(Engine, ProgressEndsAt140) {
  Work work;
  SearchCriteria c;
  c.Keyword = "a";
  SearchGames(Store(), c, &work);
  EXPECT_EQ(work.ProgressMax.load(), 140);
  EXPECT_EQ(work.ProgressValue.load(), 140);
}

// --- The fast engine against the plain one ---

SearchCriteria RandomCriteria(std::mt19937& rng, const GameStore& store) {
  std::uniform_int_distribution<int> coin(0, 3);
  const auto pick = [&](const CodeTable& table) -> std::string {
    if (coin(rng) != 0) return {};
    std::uniform_int_distribution<size_t> any(0, table.size());
    const size_t i = any(rng);
    if (i == 0 || i >= table.size()) return coin(rng) ? "no such entry" : std::string();
    return table[i];
  };
  SearchCriteria c;
  if (coin(rng) == 0) {
    static const char* keywords[] = {"a", "PAC", "er ii", "zz", "2", ";", "game 1", "é"};
    c.Keyword = keywords[std::uniform_int_distribution<int>(0, 7)(rng)];
  }
  c.Manufacturer = pick(store.ManufacturerTable);
  c.Year = pick(store.YearTable);
  c.Genre = pick(store.GenreTable);
  c.Category = pick(store.CategoryTable);
  c.Status = pick(store.StatusTable);
  c.Players = pick(store.NPlayersTable);
  c.Buttons = pick(store.ButtonsTable);
  c.Control = pick(store.ControlsTable);
  c.Orientation = pick(store.OrientationTable);
  c.Driver = pick(store.DriverTable);
  std::uniform_int_distribution<int> flag(0, 3);
  if (coin(rng) == 0) c.Available = flag(rng);
  if (coin(rng) == 0) c.Clones = flag(rng);
  if (coin(rng) == 0) c.Mature = flag(rng);
  if (coin(rng) == 0) c.Savestate = flag(rng);
  if (coin(rng) == 0) {
    c.VersionAdded =
        std::uniform_int_distribution<int>(-1, static_cast<int>(store.VerAddedTable.size()))(rng);
  }
  return c;
}

void CompareOnStore(const GameStore& store, const std::vector<std::string>& versionItems,
                    int rounds, unsigned seed) {
  std::mt19937 rng(seed);
  int nonEmpty = 0;
  int unionNonEmpty = 0;
  for (int round = 0; round < rounds; ++round) {
    const SearchCriteria c = RandomCriteria(rng, store);
    const SearchResult fast = SearchGames(store, c);
    ASSERT_EQ(fast, plain::SearchGames(store, c)) << "seed " << seed << " round " << round;
    if (!fast.empty()) ++nonEmpty;
    if (versionItems.size() > 1) {
      const std::string& chosen =
          versionItems[std::uniform_int_distribution<size_t>(0, versionItems.size() - 1)(rng)];
      const double reference = VersionNumber(chosen);
      const bool below = (round % 2) == 0;
      const SearchResult fastUnion =
          SearchVersionUnion(store, c, versionItems, below, reference, "All");
      ASSERT_EQ(fastUnion, plain::VersionUnion(store, c, versionItems, below, reference, "All"))
          << "seed " << seed << " round " << round << " reference " << chosen;
      if (!fastUnion.empty()) ++unionNonEmpty;
    }
  }
  // The comparison means something only if many rounds found games.
  EXPECT_GT(nonEmpty, rounds / 10);
  if (versionItems.size() > 1) {
    EXPECT_GT(unionNonEmpty, rounds / 20);
  }
}

TEST_F(Engine, FastEqualsPlainOnTheFixture) {
  const SearchLists lists = FillSearchLists(Store(), m_ctx.ctx().messages);
  CompareOnStore(Store(), lists.Items[17], 3000, 7);
}

TEST(EngineRandom, FastEqualsPlainOnRandomDatabases) {
  searchtest::ContextHolder holder;
  for (unsigned seed = 1; seed <= 12; ++seed) {
    GameStore store;
    searchtest::RandomStore(store, seed, 300);
    const SearchLists lists = FillSearchLists(store, holder.ctx().messages);
    CompareOnStore(store, lists.Items[17], 300, seed);
  }
}

// On a real database when one is named (TESSARIN_REAL_HOME, an application folder with
// DataFiles/index): the same comparison with criteria drawn from its own tables.
TEST(EngineReal, FastEqualsPlainOnARealDatabase) {
  const std::string home = testsupport::RealHome();
  if (home.empty()) GTEST_SKIP() << "TESSARIN_REAL_HOME names no real database";
  searchtest::ContextHolder holder;
  GameStore& store = holder.ctx().store;
  ASSERT_TRUE(LoadIndex(store, holder.ctx().log, IndexFilePath(home)));
  const SearchLists lists = FillSearchLists(store, holder.ctx().messages);
  std::mt19937 rng(2026);
  for (int round = 0; round < 60; ++round) {
    const SearchCriteria c = RandomCriteria(rng, store);
    ASSERT_EQ(SearchGames(store, c), plain::SearchGames(store, c)) << "round " << round;
  }
  // The union against one full search per version: a few rounds, each is slow on purpose.
  for (const char* version : {"0.135", "0.262", "0.100"}) {
    SearchCriteria c;
    if (std::string(version) == "0.100") c.Clones = 2;
    const double reference = VersionNumber(version);
    for (const bool below : {true, false}) {
      const SearchResult fast =
          SearchVersionUnion(store, c, lists.Items[17], below, reference, "All");
      ASSERT_EQ(fast, plain::VersionUnion(store, c, lists.Items[17], below, reference, "All"))
          << version << (below ? " <" : " >");
      EXPECT_FALSE(fast.empty() && below && reference > 100);
    }
  }
}

}  // namespace
}  // namespace tessarin
