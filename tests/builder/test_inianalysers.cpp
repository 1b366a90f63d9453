#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/context.h"
#include "builder/inianalysers.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"
#include "test_datanalysers_fixture.h"

namespace tessarin {
namespace {

using testing::AnalyserTest;

long long LineBytes(const std::string& text) {
  return static_cast<long long>(text.size()) -
         static_cast<long long>(std::count(text.begin(), text.end(), '\n')) -
         static_cast<long long>(std::count(text.begin(), text.end(), '\r'));
}

size_t Count(const std::string& text, const std::string& what) {
  size_t n = 0;
  for (size_t pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + 1)) {
    ++n;
  }
  return n;
}

// ---- Catlist.ini ----

TEST_F(AnalyserTest, CatlistTitlesAreCategoriesOfTheNamesBelow) {
  const std::string path = Install("ini/catlist.ini", "DataFiles/Catlist.ini");
  EXPECT_TRUE(AnalyseCatlist(*ctx, false, work));
  // A name before the first title goes with the empty value, which then has an entry.
  EXPECT_EQ(ctx->store.CategoryTable, (CodeTable{"", "", "Shooter / Flying", "Fighter", "Puzzl"}));
  EXPECT_EQ(Field("orphan", 'J'), "1");
  EXPECT_EQ(Field("alpha", 'J'), "2");
  EXPECT_EQ(Field("beta", 'J'), "2");
  EXPECT_EQ(Field("gamma", 'J'), "3");
  // "[Puzzle" loses its last character without a check.
  EXPECT_EQ(Field("delta", 'J'), "4");
  EXPECT_EQ(Field("zeta", 'J'), "#CA");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for categories.\r\n"), std::string::npos);
  EXPECT_EQ(work.ProgressMax.load(), static_cast<long long>(ReadFile(path).size()));
  EXPECT_EQ(work.ProgressValue.load(), LineBytes(ReadFile(path)));
}

TEST_F(AnalyserTest, CatlistIsTrueWithoutAFileAndSaysNothing) {
  EXPECT_TRUE(AnalyseCatlist(*ctx, false, work));
  EXPECT_EQ(LogText(), "");
  EXPECT_EQ(ctx->store.CategoryTable.size(), 1u);
}

TEST_F(AnalyserTest, CatlistCancelGivesFalse) {
  Install("ini/catlist.ini", "DataFiles/Catlist.ini");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseCatlist(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'J'), "#CA");
}

TEST_F(AnalyserTest, CatlistResetLetsItSetTheCategoryAgain) {
  Install("ini/catlist.ini", "DataFiles/Catlist.ini");
  FieldSet(Record("alpha"), "#CA", "9");
  FieldSet(Record("zeta"), "#CA", "9");
  EXPECT_TRUE(AnalyseCatlist(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'J'), "2");
  EXPECT_EQ(Field("zeta", 'J'), "#CA");
}

// ---- Catver.ini ----

TEST_F(AnalyserTest, CatverReadsCategoriesThenVersions) {
  const std::string path = Install("ini/catver.ini", "DataFiles/CatVer.ini");
  EXPECT_TRUE(AnalyseCatver(*ctx, false, false, work));
  // "beta = Fighter": the name keeps its blank and names no game. The second alpha line still
  // enters its value, though alpha keeps its first category.
  EXPECT_EQ(ctx->store.CategoryTable,
            (CodeTable{"", "Shooter / Flying Vertical", "Maze", "Puzzle"}));
  EXPECT_EQ(Field("alpha", 'J'), "1");
  EXPECT_EQ(Field("beta", 'J'), "#CA");
  EXPECT_EQ(Field("gamma", 'J'), "2");
  EXPECT_EQ(ctx->store.VerAddedTable, (CodeTable{"", "0.037b5", "0.100", "0.129", "?"}));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(Field("beta", 'K'), "2");
  EXPECT_EQ(Field("gamma", 'K'), "3");
  EXPECT_EQ(Field("delta", 'K'), "4");
  const std::string log = LogText();
  EXPECT_NE(
      log.find("Analysing " + path + "\r\n  for categories.\r\n  for Mame version added.\r\n"),
      std::string::npos)
      << log;
  EXPECT_EQ(work.ProgressValue.load(), LineBytes(ReadFile(path)));
}

TEST_F(AnalyserTest, CatverSkippingCategoriesTakesOnlyTheVersions) {
  Install("ini/catver.ini", "DataFiles/CatVer.ini");
  EXPECT_TRUE(AnalyseCatver(*ctx, true, false, work));
  EXPECT_EQ(Field("alpha", 'J'), "#CA");
  EXPECT_EQ(ctx->store.CategoryTable.size(), 1u);
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(LogText().find("for categories."), std::string::npos);
  EXPECT_NE(LogText().find("  for Mame version added."), std::string::npos);
}

TEST_F(AnalyserTest, CatverResetClearsSkipCategoriesAndBothFields) {
  Install("ini/catver.ini", "DataFiles/CatVer.ini");
  FieldSet(Record("alpha"), "#CA", "7");
  FieldSet(Record("alpha"), "#V", "7");
  EXPECT_TRUE(AnalyseCatver(*ctx, true, true, work));
  EXPECT_EQ(Field("alpha", 'J'), "1");
  EXPECT_EQ(Field("alpha", 'K'), "1");
}

TEST_F(AnalyserTest, CatverCategoryTitleInAnotherCaseGivesNothingButIsReadToTheEnd) {
  Install("ini/catver_titlecase.ini", "DataFiles/CatVer.ini");
  EXPECT_TRUE(AnalyseCatver(*ctx, false, false, work));
  EXPECT_EQ(Field("alpha", 'J'), "#CA");
  // The search for the title ran past [VerAdded], so no version either.
  EXPECT_EQ(Field("alpha", 'K'), "#V");
  // Skipping the categories finds [VerAdded] in that same file.
  EXPECT_TRUE(AnalyseCatver(*ctx, true, false, work));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(ctx->store.VerAddedTable, (CodeTable{"", "0.100"}));
}

TEST_F(AnalyserTest, CatverWithoutVerAddedTitleReadsToTheEndAndIsTrue) {
  WriteFile(app + "DataFiles/CatVer.ini", "[category]\r\nalpha=Maze\r\nbeta=0.1\r\n");
  EXPECT_TRUE(AnalyseCatver(*ctx, true, false, work));
  EXPECT_EQ(Field("alpha", 'J'), "#CA");
  EXPECT_EQ(Field("beta", 'K'), "#V");
}

TEST_F(AnalyserTest, CatverMissingOrCancelledGivesFalse) {
  EXPECT_FALSE(AnalyseCatver(*ctx, false, false, work));
  EXPECT_EQ(LogText(), "");
  Install("ini/catver.ini", "DataFiles/CatVer.ini");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseCatver(*ctx, false, false, work));
  EXPECT_EQ(Field("alpha", 'J'), "#CA");
}

// ---- the genre file ----

TEST_F(AnalyserTest, GenreTitleLosesItsLastCharacterUnchecked) {
  const std::string path = Install("ini/genre.ini", "DataFiles/Genre.inf");
  EXPECT_TRUE(AnalyseGenre(*ctx, false, work));
  // "[Unused]" has no known game below it and stays out of the table.
  EXPECT_EQ(ctx->store.GenreTable, (CodeTable{"", "Shoote", "Fighter"}));
  EXPECT_EQ(Field("alpha", 'I'), "1");
  EXPECT_EQ(Field("beta", 'I'), "2");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for genres.\r\n"), std::string::npos);
}

TEST_F(AnalyserTest, GenreKeyComesBeforeTheDefaultAndResetClearsTheField) {
  const std::string path = Install("ini/genre.ini", "mine/genre.ini");
  ctx->settings.InfWrite("DataFile14", path);
  FieldSet(Record("beta"), "#G", "5");
  EXPECT_TRUE(AnalyseGenre(*ctx, true, work));
  EXPECT_EQ(Field("beta", 'I'), "2");
  EXPECT_FALSE(AnalyseMature(*ctx, false, work));
}

TEST_F(AnalyserTest, GenreTableOrderFollowsTheGameList) {
  // Without alpha, "Shoote" has no game and never enters the table.
  ctx->store.Clear();
  AddGame("beta");
  Install("ini/genre.ini", "DataFiles/genre.inf");
  EXPECT_TRUE(AnalyseGenre(*ctx, false, work));
  EXPECT_EQ(ctx->store.GenreTable, (CodeTable{"", "Fighter"}));
}

TEST_F(AnalyserTest, GenreCancelGivesFalse) {
  Install("ini/genre.ini", "DataFiles/genre.inf");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseGenre(*ctx, false, work));
  EXPECT_EQ(ctx->store.GenreTable.size(), 1u);
}

// ---- the mature file ----

TEST_F(AnalyserTest, MatureMarksTheNamesBelowTheFirstTitle) {
  const std::string path = Install("ini/mature.ini", "DataFiles/mature.inf");
  EXPECT_TRUE(AnalyseMature(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'L'), "#X");
  EXPECT_EQ(Field("beta", 'L'), "*Mature*");
  EXPECT_EQ(Field("gamma", 'L'), "*Mature*");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for mature games.\r\n"), std::string::npos);
  // The bar stays where the lines took it.
  EXPECT_EQ(work.ProgressValue.load(), LineBytes(ReadFile(path)));
}

TEST_F(AnalyserTest, MatureResetAndCancel) {
  Install("ini/mature.ini", "DataFiles/mature.inf");
  FieldSet(Record("alpha"), "#X", "*Mature*");
  EXPECT_TRUE(AnalyseMature(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'L'), "#X");
  ResetMatureField(ctx->store);
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseMature(*ctx, false, work));
  EXPECT_EQ(Field("beta", 'L'), "#X");
}

// ---- the player files ----

TEST_F(AnalyserTest, NPlayersTakesAssignmentsOfEverySectionAfterThePreamble) {
  const std::string path = Install("ini/nplayers.ini", "datafiles/nplayers.ini");
  ctx->settings.InfWrite("DataFile8", path);
  EXPECT_FALSE(AnalyseMultiplayer(*ctx, false, work));
  EXPECT_TRUE(AnalyseNPlayers(*ctx, false, work));
  // alpha's second line still enters "3P"; the empty value of gamma is an entry too.
  EXPECT_EQ(ctx->store.NPlayersTable, (CodeTable{"", "2P alt", "1P", "", "4P sim", "3P"}));
  EXPECT_EQ(Field("alpha", 'O'), "1");
  EXPECT_EQ(Field("beta", 'O'), "2");
  EXPECT_EQ(Field("gamma", 'O'), "3");
  EXPECT_EQ(Field("delta", 'O'), "#N");
  EXPECT_EQ(Field("epsilon", 'O'), "4");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for number of players.\r\n"),
            std::string::npos);
}

TEST_F(AnalyserTest, MultiplayerIsASectionList) {
  const std::string path = Install("ini/multiplayer.ini", "datafiles/multiplayer.ini");
  ctx->settings.InfWrite("DataFile8", "C:\\Data\\MultiPlayer.INI");
  EXPECT_FALSE(AnalyseNPlayers(*ctx, false, work));
  // The stored path doesn't exist here: the default is taken.
  EXPECT_TRUE(AnalyseMultiplayer(*ctx, false, work));
  EXPECT_EQ(ctx->store.NPlayersTable, (CodeTable{"", "2P alt", "1P"}));
  EXPECT_EQ(Field("alpha", 'O'), "1");
  EXPECT_EQ(Field("beta", 'O'), "2");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for number of players.\r\n"),
            std::string::npos);
}

TEST_F(AnalyserTest, EmptyPlayerKeyReadsNeitherFile) {
  Install("ini/nplayers.ini", "datafiles/nplayers.ini");
  Install("ini/multiplayer.ini", "datafiles/multiplayer.ini");
  EXPECT_FALSE(AnalyseMultiplayer(*ctx, false, work));
  EXPECT_FALSE(AnalyseNPlayers(*ctx, false, work));
  ctx->settings.InfWrite("DataFile8", "");
  EXPECT_FALSE(AnalyseMultiplayer(*ctx, false, work));
  EXPECT_FALSE(AnalyseNPlayers(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'O'), "#N");
  EXPECT_EQ(LogText(), "");
}

TEST_F(AnalyserTest, MissingPlayerFiles) {
  ctx->settings.InfWrite("DataFile8", app + "gone/nplayers.ini");
  EXPECT_TRUE(AnalyseNPlayers(*ctx, false, work));
  ctx->settings.InfWrite("DataFile8", app + "gone/multiplayer.ini");
  EXPECT_FALSE(AnalyseMultiplayer(*ctx, false, work));
  EXPECT_EQ(LogText(), "");
}

TEST_F(AnalyserTest, NPlayersResetAndCancel) {
  const std::string path = Install("ini/nplayers.ini", "datafiles/nplayers.ini");
  ctx->settings.InfWrite("DataFile8", path);
  FieldSet(Record("zeta"), "#N", "3");
  EXPECT_TRUE(AnalyseNPlayers(*ctx, true, work));
  EXPECT_EQ(Field("zeta", 'O'), "#N");
  ResetNPlayersField(ctx->store);
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseNPlayers(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'O'), "#N");
}

// ---- the version file and Mameinfo.dat's versions ----

TEST_F(AnalyserTest, VersionFileIsASectionListOfVersions) {
  const std::string path = Install("ini/version.ini", "datafiles/version.inf");
  EXPECT_TRUE(AnalyseVerAddedFile(*ctx, false, work));
  EXPECT_EQ(ctx->store.VerAddedTable, (CodeTable{"", "0.037b5", "0.129", "0.001"}));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(Field("beta", 'K'), "2");
  EXPECT_EQ(Field("gamma", 'K'), "3");
  EXPECT_NE(LogText().find("Analysing " + path + "\r\n  for Mame version added.\r\n"),
            std::string::npos);
}

TEST_F(AnalyserTest, VersionFileFromTheKeyAndMissing) {
  EXPECT_FALSE(AnalyseVerAddedFile(*ctx, false, work));
  EXPECT_EQ(LogText(), "");
  const std::string path = Install("ini/version.ini", "mine/version.ini");
  ctx->settings.InfWrite("DataFile17", path);
  FieldSet(Record("alpha"), "#V", "8");
  EXPECT_TRUE(AnalyseVerAddedFile(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'K'), "1");
}

TEST_F(AnalyserTest, VerAddedMameinfoTakesTheFirstVersionLineOfEachMameSection) {
  const std::string mameinfo = Install("dat/mameinfo.dat", "elsewhere/mameinfo.dat");
  const std::string folder = app + "DataFiles/";
  Install("ini/version_extra.ini", "DataFiles/version1.ini");
  EXPECT_TRUE(AnalyseVerAddedMameinfo(*ctx, mameinfo, false, work));
  // alpha's second entry still enters its version; "BIOS:" stands for "?". gamma's ".129" does
  // not begin with a digit, so the search runs on into delta's entry and takes "0.106u1",
  // passing over delta's $info line: delta gets nothing.
  EXPECT_EQ(ctx->store.VerAddedTable,
            (CodeTable{"", "0.037b5", "?", "0.106u1", "0.050", "0.200", "0.150"}));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  // beta was at "?" and takes the version file's value; the others keep theirs.
  EXPECT_EQ(Field("beta", 'K'), "6");
  EXPECT_EQ(Field("gamma", 'K'), "3");
  EXPECT_EQ(Field("delta", 'K'), "#V");
  // Trimmed here, unlike in the byte range analyser.
  EXPECT_EQ(Field("epsilon", 'K'), "4");
  EXPECT_EQ(Field("a", 'K'), "#V");
  const std::string log = LogText();
  EXPECT_NE(log.find("Analysing " + mameinfo + "\r\n  for Mame version added.\r\n"),
            std::string::npos)
      << log;
  EXPECT_NE(log.find("Analysing for VerAdded : " + folder + "version1.ini\r\n"), std::string::npos)
      << log;
  EXPECT_EQ(work.ProgressValue.load(), work.ProgressMax.load());
}

TEST_F(AnalyserTest, VersionFilesOnlyTouchGamesAtTheUnknownVersion) {
  const std::string mameinfo = Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  ctx->settings.InfWrite("DataFile17", app + "versions/anything.ini");
  WriteFile(app + "versions/Version-B.INI", "unknownrom\nbeta\n[0.170]\nalpha\n");
  WriteFile(app + "versions/version-a.ini", "[0.160]\nbeta\n");
  WriteFile(app + "versions/other.ini", "[0.180]\nbeta\n");
  EXPECT_TRUE(AnalyseVerAddedMameinfo(*ctx, "", false, work));
  // Version-B.INI comes first and names beta under no title yet: the empty version, whose
  // normal form is "00000". beta has left "?" then, so version-a.ini changes nothing.
  const CodeTable& table = ctx->store.VerAddedTable;
  ASSERT_EQ(table.size(), 7u);
  EXPECT_EQ(table[6], "00000");
  EXPECT_EQ(Field("beta", 'K'), "6");
  EXPECT_EQ(Field("alpha", 'K'), "1");
  const std::string log = LogText();
  EXPECT_EQ(Count(log, "Analysing for VerAdded : "), 2u) << log;
  EXPECT_EQ(log.find("other.ini"), std::string::npos);
}

TEST_F(AnalyserTest, VersionFilesAreNotReadWhenNoVersionIsUnknown) {
  WriteFile(app + "datafiles/mameinfo.dat", "$info=alpha\n$mame\n0.36\n$end\n");
  Install("ini/version_extra.ini", "DataFiles/version1.ini");
  EXPECT_TRUE(AnalyseVerAddedMameinfo(*ctx, "", false, work));
  EXPECT_EQ(ctx->store.VerAddedTable, (CodeTable{"", "0.036"}));
  EXPECT_EQ(LogText().find("Analysing for VerAdded"), std::string::npos);
}

TEST_F(AnalyserTest, VerAddedMameinfoSkipsLinesUntilOneStartsWithADigit) {
  WriteFile(app + "datafiles/mameinfo.dat",
            "$info=alpha\n$mame\n5 [x]\n$end\n$info=beta\n$mame\n[note]\n9\n$end\n");
  EXPECT_TRUE(AnalyseVerAddedMameinfo(*ctx, "", true, work));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(ctx->store.VerAddedTable[1], "0.005");
  EXPECT_EQ(ctx->store.VerAddedTable[2], "0.009");
}

TEST_F(AnalyserTest, VerAddedMameinfoFailsWhenTheFileEndsBeforeAVersionLine) {
  // beta's entry never starts a line with a digit: the search for its version reads past the
  // end of the file, which is a failure of the routine, logged as an error group.
  Install("dat/mameinfo_noversion.dat", "datafiles/mameinfo.dat");
  EXPECT_FALSE(AnalyseVerAddedMameinfo(*ctx, "", false, work));
  // What was read before the end stays.
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(Field("beta", 'K'), "#V");
  const std::string log = LogText();
  EXPECT_NE(log.find("\r\n62 Input past end of file\r\n<END>\r\n"), std::string::npos) << log;
  EXPECT_EQ(ctx->log.BugCount(), 1);
}

TEST_F(AnalyserTest, VerAddedFileHandsOverToMameinfo) {
  Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  Install("ini/version.ini", "datafiles/version.inf");
  EXPECT_TRUE(AnalyseVerAddedFile(*ctx, false, work));
  EXPECT_EQ(ctx->store.VerAddedTable[2], "?");
  EXPECT_EQ(Field("beta", 'K'), "2");
  EXPECT_EQ(LogText().find("version.inf"), std::string::npos);
}

TEST_F(AnalyserTest, VerAddedMameinfoMissingOrCancelled) {
  EXPECT_FALSE(AnalyseVerAddedMameinfo(*ctx, "", false, work));
  EXPECT_FALSE(AnalyseVerAddedMameinfo(*ctx, app + "none.dat", false, work));
  EXPECT_EQ(LogText(), "");
  Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseVerAddedMameinfo(*ctx, "", false, work));
  EXPECT_EQ(Field("alpha", 'K'), "#V");
}

// ---- Wizsort.ini ----

TEST_F(AnalyserTest, WizsortFillsEachSectionsField) {
  const std::string path = Install("ini/wizsort.ini", "datafiles/wizsort.ini");
  FieldSet(Record("beta"), "#MA", "3");  // the game list came first
  EXPECT_TRUE(AnalyseWizsort(*ctx, false, false, work));
  EXPECT_EQ(ctx->store.GenreTable, (CodeTable{"", "Shooter", "Fighter"}));
  EXPECT_EQ(Field("alpha", 'I'), "1");
  EXPECT_EQ(Field("beta", 'I'), "2");
  EXPECT_EQ(Field("alpha", 'J'), "1");
  EXPECT_EQ(ctx->store.CategoryTable, (CodeTable{"", "Flying"}));
  // An XML database has its drivers from the game list.
  EXPECT_EQ(Field("alpha", 'N'), "#D");
  EXPECT_EQ(ctx->store.DriverTable.size(), 1u);
  EXPECT_EQ(Field("alpha", 'C'), "1");
  EXPECT_EQ(Field("beta", 'C'), "3");
  EXPECT_EQ(ctx->store.ManufacturerTable, (CodeTable{"", "Acme", "Zorb Inc"}));
  // ".37b5" gets its leading 0 and is the same version Catver.ini would give.
  EXPECT_EQ(ctx->store.VerAddedTable, (CodeTable{"", "0.037b5", "0.100"}));
  EXPECT_EQ(Field("alpha", 'K'), "1");
  EXPECT_EQ(Field("beta", 'K'), "2");
  EXPECT_EQ(Field("alpha", 'D'), "1");
  EXPECT_EQ(ctx->store.YearTable, (CodeTable{"", "1984"}));
  EXPECT_EQ(Field("beta", 'L'), "yes");
  EXPECT_EQ(Field("alpha", 'L'), "#X");
  EXPECT_EQ(Field("alpha", 'M'), "1");
  // An unknown title keeps the section: gamma's line goes to the bios.
  EXPECT_EQ(Field("gamma", 'M'), "2");
  EXPECT_EQ(ctx->store.BiosTable, (CodeTable{"", "neogeo", "Extra"}));
  // [Set] and [Resolution] are ignored.
  EXPECT_EQ(Record("delta"), NewXmlRecord("delta", 1003));
  EXPECT_NE(LogText().find("Analysing " + path +
                           "\r\n  for Genres, Categories, Drivers, Manufacturers, VerAdded, "
                           "Years, Mature, Bios.\r\n"),
            std::string::npos)
      << LogText();
  Install("ini/catver.ini", "DataFiles/CatVer.ini");
  EXPECT_TRUE(AnalyseCatver(*ctx, true, false, work));
  EXPECT_EQ(ctx->store.VerAddedTable.size(), 5u);
  EXPECT_EQ(ctx->store.VerAddedTable[1], "0.037b5");
}

TEST_F(AnalyserTest, WizsortDriversForALegacyDatabaseAndSkippedVersions) {
  Install("ini/wizsort.ini", "datafiles/wizsort.ini");
  ctx->store.SourceIsXml = false;
  EXPECT_TRUE(AnalyseWizsort(*ctx, false, true, work));
  EXPECT_EQ(ctx->store.DriverTable, (CodeTable{"", "zorb.c"}));
  EXPECT_EQ(Field("alpha", 'N'), "1");
  EXPECT_EQ(Field("alpha", 'K'), "#V");
  EXPECT_EQ(ctx->store.VerAddedTable.size(), 1u);
}

TEST_F(AnalyserTest, WizsortResetMissingAndCancel) {
  EXPECT_FALSE(AnalyseWizsort(*ctx, false, false, work));
  EXPECT_EQ(LogText(), "");
  Install("ini/wizsort.ini", "datafiles/wizsort.ini");
  FieldSet(Record("zeta"), "#G", "4");
  FieldSet(Record("zeta"), "#Y", "4");
  EXPECT_TRUE(AnalyseWizsort(*ctx, true, false, work));
  EXPECT_EQ(Field("zeta", 'I'), "#G");
  EXPECT_EQ(Field("zeta", 'D'), "#Y");
  ResetWizsortFields(ctx->store);
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseWizsort(*ctx, false, false, work));
  EXPECT_EQ(Field("alpha", 'I'), "#G");
}

TEST_F(AnalyserTest, OnlyCatlistSendsEmptyLinesToFindGame) {
  // No import makes a game without a name; one here shows which reader looks empty lines up.
  AddGame("");
  WriteFile(app + "DataFiles/Catlist.ini", "[Maze]\n\nalpha\n");
  WriteFile(app + "DataFiles/genre.inf", "[Maze]\n\nalpha\n");
  EXPECT_TRUE(AnalyseCatlist(*ctx, false, work));
  EXPECT_TRUE(AnalyseGenre(*ctx, false, work));
  EXPECT_EQ(Field("", 'J'), "1");
  EXPECT_EQ(Field("", 'I'), "#G");
  EXPECT_EQ(Field("alpha", 'I'), "1");
}

}  // namespace

// A selective update without the file must not wipe what the game list gave: the reset belongs
// to a file that is there to fill the fields again.
TEST_F(AnalyserTest, ResetWithoutTheFileLeavesTheFieldsAlone) {
  FieldSet(Record("alpha"), "#MA", "1");
  FieldSet(Record("alpha"), "#Y", "2");
  FieldSet(Record("alpha"), "#G", "3");
  FieldSet(Record("alpha"), "#X", "*Mature*");
  EXPECT_FALSE(AnalyseWizsort(*ctx, true, false, work));
  EXPECT_FALSE(AnalyseGenre(*ctx, true, work));
  EXPECT_FALSE(AnalyseMature(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'C'), "1");
  EXPECT_EQ(Field("alpha", 'D'), "2");
  EXPECT_EQ(Field("alpha", 'I'), "3");
  EXPECT_EQ(Field("alpha", 'L'), "*Mature*");
}

}  // namespace tessarin
