#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

#include "app/context.h"
#include "builder/datanalysers.h"
#include "store/faststrings.h"
#include "store/gamerecord.h"
#include "test_datanalysers_fixture.h"

namespace tessarin {
namespace {

using testing::AnalyserTest;

// Offsets of the lines that begin with `prefix`, found independently of the reader: a line
// begins at 0 or behind a CR or an LF.
std::vector<long long> LineStarts(const std::string& text, const std::string& prefix) {
  std::vector<long long> starts;
  for (size_t pos = 0; pos < text.size(); ++pos) {
    const bool lineStart = pos == 0 || text[pos - 1] == '\n' || text[pos - 1] == '\r';
    if (lineStart && text.compare(pos, prefix.size(), prefix) == 0) {
      starts.push_back(static_cast<long long>(pos));
    }
  }
  return starts;
}

std::string Range(long long a, long long b) { return std::to_string(a) + "," + std::to_string(b); }

// ---- the line reader ----

struct ReadResult {
  std::vector<std::string> lines;
  std::vector<int> ends;
  std::vector<long long> offsets;
};

ReadResult ReadAll(const std::string& path) {
  ReadResult result;
  DataLineReader reader;
  EXPECT_TRUE(reader.Open(path));
  std::string_view line;
  while (reader.ReadLine(line)) {
    result.lines.emplace_back(line);
    result.ends.push_back(reader.LineEndLength());
    result.offsets.push_back(reader.LineOffset());
    EXPECT_EQ(reader.NextOffset(),
              reader.LineOffset() + static_cast<long long>(line.size()) + reader.LineEndLength());
  }
  EXPECT_TRUE(reader.AtEnd());
  return result;
}

TEST_F(AnalyserTest, ReaderCountsEveryKindOfLineEnd) {
  WriteFile(app + "mixed.txt", "a\r\nb\nc\rd\r\r\ne");
  const ReadResult r = ReadAll(app + "mixed.txt");
  EXPECT_EQ(r.lines, (std::vector<std::string>{"a", "b", "c", "d", "", "e"}));
  EXPECT_EQ(r.ends, (std::vector<int>{2, 1, 1, 1, 2, 0}));
  EXPECT_EQ(r.offsets, (std::vector<long long>{0, 3, 5, 7, 9, 11}));
}

TEST_F(AnalyserTest, ReaderGivesNothingForAnEmptyFileAndKeepsAFinalLoneCr) {
  WriteFile(app + "empty.txt", "");
  EXPECT_TRUE(ReadAll(app + "empty.txt").lines.empty());
  WriteFile(app + "cr.txt", "x\r");
  const ReadResult r = ReadAll(app + "cr.txt");
  EXPECT_EQ(r.lines, (std::vector<std::string>{"x"}));
  EXPECT_EQ(r.ends, (std::vector<int>{1}));
  DataLineReader reader;
  EXPECT_FALSE(reader.Open(app + "missing.txt"));
}

TEST_F(AnalyserTest, ReaderJoinsACrLfSplitByTheBufferAndTakesHugeLines) {
  // The CR falls on the last byte of the first read, its LF on the first of the next.
  std::string text(size_t{1} << 20, 'x');
  text[text.size() - 1] = '\r';
  text += "\nshort\n";
  text += std::string(3'000'000, 'y');
  text += "\r\nend";
  WriteFile(app + "big.txt", text);
  const ReadResult r = ReadAll(app + "big.txt");
  ASSERT_EQ(r.lines.size(), 4u);
  EXPECT_EQ(r.lines[0].size(), (size_t{1} << 20) - 1);
  EXPECT_EQ(r.ends, (std::vector<int>{2, 1, 2, 0}));
  EXPECT_EQ(r.lines[1], "short");
  EXPECT_EQ(r.offsets[1], 1 << 20 | 1);
  EXPECT_EQ(r.lines[2].size(), 3'000'000u);
  EXPECT_EQ(r.lines[3], "end");
  EXPECT_EQ(r.offsets[3], static_cast<long long>(text.size()) - 3);
}

// ---- finding the file and the log line ----

TEST_F(AnalyserTest, MissingFileGivesFalseAndNoLogLine) {
  EXPECT_FALSE(AnalyseHistory(*ctx, false, work));
  EXPECT_FALSE(AnalyseMameinfo(*ctx, false, work));
  EXPECT_FALSE(AnalyseCommand(*ctx, false, work));
  EXPECT_FALSE(AnalyseHiscore(*ctx, false, work));
  EXPECT_FALSE(AnalyseCheat(*ctx, false, work));
  EXPECT_EQ(LogText(), "");
  EXPECT_EQ(Field("alpha", 'Q'), "#HI");
}

TEST_F(AnalyserTest, StoredPathComesFirstThenTheDefaultFoundWithoutRegardToCase) {
  const std::string stored = Install("dat/hiscore.dat", "elsewhere/my scores.dat");
  ctx->settings.InfWrite("DataFile6", stored);
  EXPECT_EQ(FindDataFile(*ctx, "DataFile6", "datafiles/hiscore.dat"), stored);

  const std::string fallback = Install("dat/history.dat", "DataFiles/History.DAT");
  ctx->settings.InfWrite("DataFile2", app + "nowhere/history.dat");
  EXPECT_EQ(FindDataFile(*ctx, "DataFile2", "\\datafiles\\history.dat"), fallback);
  EXPECT_EQ(FindDataFile(*ctx, "DataFile5", "datafiles/command.dat"), "");

  // A stored name that differs from the file's in case only still finds it.
  const std::string command = Install("dat/command.dat", "elsewhere/command.dat");
  ctx->settings.InfWrite("DataFile5", app + "elsewhere/COMMAND.DAT");
  EXPECT_EQ(FindDataFile(*ctx, "DataFile5", "datafiles/command.dat"), command);
  EXPECT_EQ(ExistingDataFile("-1"), "");
}

TEST_F(AnalyserTest, LogLineHasTimePathAndTheAnalysersText) {
  const std::string path = Install("dat/history.dat", "datafiles/history.dat");
  ASSERT_TRUE(AnalyseHistory(*ctx, false, work));
  const std::regex expected(" [0-2][0-9]:[0-5][0-9]:[0-5][0-9] Analysing " + path +
                            "\r\n  for History data.\r\n");
  EXPECT_TRUE(std::regex_match(LogText(), expected)) << LogText();
}

TEST_F(AnalyserTest, EachDatAnalyserWritesItsOwnText) {
  Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  Install("dat/command.dat", "datafiles/command.dat");
  Install("dat/hiscore.dat", "datafiles/hiscore.dat");
  Install("dat/cheat.dat", "datafiles/cheat.dat");
  AnalyseMameinfo(*ctx, false, work);
  AnalyseCommand(*ctx, false, work);
  AnalyseHiscore(*ctx, false, work);
  AnalyseCheat(*ctx, false, work);
  const std::string log = LogText();
  for (const char* text : {"datafiles/mameinfo.dat\r\n  for MameInfo data.\r\n",
                           "datafiles/command.dat\r\n  for Command data.\r\n",
                           "datafiles/hiscore.dat\r\n  for Hiscore data.\r\n",
                           "datafiles/cheat.dat\r\n  for Cheat data.\r\n"}) {
    EXPECT_NE(log.find(text), std::string::npos) << text;
  }
}

// ---- History.dat ----

class HistoryTest : public AnalyserTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(HistoryTest, EntriesRunToTheNextInfoLineMinusThreeAndTheLastToTheFileLength) {
  const std::string path = Install("dat/history.dat", "datafiles/history.dat", GetParam());
  const std::string text = ReadFile(path);
  const auto info = LineStarts(text, "$info");
  ASSERT_EQ(info.size(), 4u);
  const long long length = static_cast<long long>(text.size());

  EXPECT_TRUE(AnalyseHistory(*ctx, false, work));
  // "alpha,beta," ends in a comma: the empty last piece is skipped, both share one range.
  EXPECT_EQ(Field("alpha", 'Q'), Range(info[0], info[1] - 3));
  EXPECT_EQ(Field("beta", 'Q'), Range(info[0], info[1] - 3));
  // gamma's entry ends at the $info line without '=', which leaves the names pending.
  EXPECT_EQ(Field("gamma", 'Q'), Range(info[1], info[2] - 3));
  // The last entry gets the file length; pieces are not trimmed, so " epsilon " is no game.
  EXPECT_EQ(Field("delta", 'Q'), Range(info[3], length));
  EXPECT_EQ(Field("zeta", 'Q'), Range(info[3], length));
  EXPECT_EQ(Field("epsilon", 'Q'), "#HI");
  EXPECT_EQ(Field("orphan", 'Q'), "#HI");
  // The bar stands still during this analyser.
  EXPECT_EQ(work.ProgressMax.load(), 0);
  EXPECT_EQ(work.ProgressValue.load(), 0);
}

INSTANTIATE_TEST_SUITE_P(LineEnds, HistoryTest, ::testing::Values("\n", "\r\n", "\r"));

TEST_F(AnalyserTest, HistoryOffsetsOfTheLfAndCrLfFixtureAreTheseNumbers) {
  // The first line holds 46 characters; the alpha entry is 6 lines of 56 characters.
  Install("dat/history.dat", "datafiles/history.dat");
  ASSERT_TRUE(AnalyseHistory(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'Q'), "47,106");
  Install("dat/history.dat", "datafiles/history.dat", "\r\n");
  ASSERT_TRUE(AnalyseHistory(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'Q'), "48,113");
}

TEST_F(AnalyserTest, HistoryResetPutsTheFieldBackBeforeReading) {
  Install("dat/history.dat", "datafiles/history.dat");
  FieldSet(Record("alpha"), "#HI", "1,2");
  ASSERT_TRUE(AnalyseHistory(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'Q'), "1,2");
  ASSERT_TRUE(AnalyseHistory(*ctx, true, work));
  EXPECT_EQ(Field("alpha", 'Q'), "47,106");
}

TEST_F(AnalyserTest, EmptyDatFilesGiveFalse) {
  WriteFile(app + "datafiles/history.dat", "");
  WriteFile(app + "datafiles/mameinfo.dat", "");
  WriteFile(app + "datafiles/command.dat", "");
  EXPECT_FALSE(AnalyseHistory(*ctx, false, work));
  EXPECT_FALSE(AnalyseMameinfo(*ctx, false, work));
  EXPECT_FALSE(AnalyseCommand(*ctx, false, work));
}

TEST_F(AnalyserTest, HistoryWithoutInfoLinesIsReadToTheEnd) {
  WriteFile(app + "datafiles/history.dat", "just text\n$bio\n$end\n");
  EXPECT_TRUE(AnalyseHistory(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'Q'), "#HI");
}

// ---- Mameinfo.dat ----

class MameinfoTest : public AnalyserTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MameinfoTest, EntriesRunFromInfoToBehindTheirEndLine) {
  const std::string lineEnd = GetParam();
  const std::string path = Install("dat/mameinfo.dat", "datafiles/mameinfo.dat", lineEnd);
  const std::string text = ReadFile(path);
  const auto info = LineStarts(text, "$info");
  const auto end = LineStarts(text, "$end");
  ASSERT_EQ(info.size(), 7u);
  ASSERT_EQ(end.size(), 7u);
  const auto behindEnd = [&](int i) { return end[i] + 4 + static_cast<long long>(lineEnd.size()); };

  EXPECT_TRUE(AnalyseMameinfo(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'U'), Range(info[0], behindEnd(0) - info[0]));
  EXPECT_EQ(Field("beta", 'U'), Range(info[1], behindEnd(1) - info[1]));
  EXPECT_EQ(Field("gamma", 'U'), Range(info[3], behindEnd(3) - info[3]));
  // The name starts at the 7th character whatever the 6th is.
  EXPECT_EQ(Field("delta", 'U'), Range(info[4], behindEnd(4) - info[4]));
  // "$info=a,b" names no game; "epsilon " keeps its blank and names none either.
  EXPECT_EQ(Field("a", 'U'), "#MI");
  EXPECT_EQ(Field("b", 'U'), "#MI");
  EXPECT_EQ(Field("epsilon", 'U'), "#MI");
  EXPECT_EQ(work.ProgressMax.load(), 0);
}

INSTANTIATE_TEST_SUITE_P(LineEnds, MameinfoTest, ::testing::Values("\n", "\r\n"));

TEST_F(AnalyserTest, MameinfoLfFixtureNumbers) {
  Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  ASSERT_TRUE(AnalyseMameinfo(*ctx, false, work));
  // "# Mameinfo fixture" is 18 characters; the entry is 5 lines, 47 bytes with LF.
  EXPECT_EQ(Field("alpha", 'U'), "19,47");
}

TEST_F(AnalyserTest, MameinfoResetCutsTheRecordBehindTheField) {
  Install("dat/mameinfo.dat", "datafiles/mameinfo.dat");
  Record("alpha") += "*";
  ASSERT_TRUE(AnalyseMameinfo(*ctx, true, work));
  // The blunt reset drops field V and the presence mark of every record.
  EXPECT_EQ(Record("alpha").find(";V"), std::string::npos);
  EXPECT_TRUE(Record("alpha").ends_with(";U19,47")) << Record("alpha");
  EXPECT_EQ(Field("alpha", 'U'), "19,47");
  EXPECT_EQ(Field("zeta", 'U'), "#MI");
}

TEST_F(AnalyserTest, MameinfoEntryWithoutEndIsAFailureThatKeepsWhatWasSet) {
  WriteFile(app + "datafiles/mameinfo.dat", "$info=alpha\n$end\n$info=beta\n$mame\n0.1\n");
  EXPECT_FALSE(AnalyseMameinfo(*ctx, false, work));
  EXPECT_EQ(ctx->log.BugCount(), 1);
  EXPECT_EQ(Field("alpha", 'U'), "0,17");
  EXPECT_EQ(Field("beta", 'U'), "#MI");
}

TEST_F(AnalyserTest, MameinfoInfoLineEndingTheFileStartsNoEntry) {
  WriteFile(app + "datafiles/mameinfo.dat", "junk\n$info=alpha\n$end\n$info=beta");
  EXPECT_TRUE(AnalyseMameinfo(*ctx, false, work));
  EXPECT_EQ(ctx->log.BugCount(), 0);
  EXPECT_EQ(Field("alpha", 'U'), "5,17");
  EXPECT_EQ(Field("beta", 'U'), "#MI");
}

// ---- Command.dat ----

class CommandTest : public AnalyserTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(CommandTest, EntriesRunToTheNextInfoLineAndTheResultIsAlwaysFalse) {
  const std::string path = Install("dat/command.dat", "datafiles/command.dat", GetParam());
  const std::string text = ReadFile(path);
  const auto info = LineStarts(text, "$info");
  ASSERT_EQ(info.size(), 5u);
  const long long total = static_cast<long long>(text.size());

  // False even after a complete analysis.
  EXPECT_FALSE(AnalyseCommand(*ctx, false, work));
  // Several $cmd blocks belong to one entry; an $info without '=' ends it but keeps the game.
  EXPECT_EQ(Field("alpha", 'T'), Range(info[0], info[1] - info[0]));
  EXPECT_EQ(Field("a", 'T'), "#CM");
  EXPECT_EQ(Field("b", 'T'), "#CM");
  // The name is not trimmed: "gamma " is no game.
  EXPECT_EQ(Field("gamma", 'T'), "#CM");
  EXPECT_EQ(Field("beta", 'T'), Range(info[4], total - info[4]));
  EXPECT_EQ(ctx->log.BugCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(LineEnds, CommandTest, ::testing::Values("\n", "\r\n"));

TEST_F(AnalyserTest, CommandWithoutInfoLineSetsNothing) {
  WriteFile(app + "datafiles/command.dat", "$cmd\nalpha\n$end\n");
  EXPECT_FALSE(AnalyseCommand(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'T'), "#CM");
}

TEST_F(AnalyserTest, CommandResetLetsASecondAnalysisSetTheField) {
  Install("dat/command.dat", "datafiles/command.dat");
  FieldSet(Record("beta"), "#CM", "7,7");
  AnalyseCommand(*ctx, false, work);
  EXPECT_EQ(Field("beta", 'T'), "7,7");
  AnalyseCommand(*ctx, true, work);
  EXPECT_NE(Field("beta", 'T'), "7,7");
  EXPECT_NE(Field("beta", 'T'), "#CM");
}

// ---- Hiscore.dat ----

TEST_F(AnalyserTest, HiscoreReadsOldAndTodaysFormAndSkipsLinesStartingWithZero) {
  const std::string path = Install("dat/hiscore.dat", "datafiles/hiscore.dat", "\r\n");
  EXPECT_TRUE(AnalyseHiscore(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'P'), "1");
  EXPECT_EQ(Field("beta", 'P'), "1");
  // A line starting with the digit 0 is skipped even when it names a game.
  EXPECT_EQ(Field("007game", 'P'), "#HS");
  // "gamma,gammasoft:" is a software list entry, not the game gamma.
  EXPECT_EQ(Field("gamma", 'P'), "#HS");
  EXPECT_EQ(work.ProgressMax.load(), static_cast<long long>(ReadFile(path).size()));
  EXPECT_EQ(work.ProgressValue.load(), work.ProgressMax.load());
}

TEST_F(AnalyserTest, HiscoreCancelGivesFalseAndAFullBar) {
  Install("dat/hiscore.dat", "datafiles/hiscore.dat");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseHiscore(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'P'), "#HS");
  EXPECT_EQ(work.ProgressValue.load(), work.ProgressMax.load());
  EXPECT_GT(work.ProgressMax.load(), 0);
}

TEST_F(AnalyserTest, HiscoreResetClearsTheFlag) {
  Install("dat/hiscore.dat", "datafiles/hiscore.dat");
  FieldSet(Record("gamma"), "#HS", "1");
  EXPECT_TRUE(AnalyseHiscore(*ctx, true, work));
  EXPECT_EQ(Field("gamma", 'P'), "#HS");
  EXPECT_EQ(Field("alpha", 'P'), "1");
}

// ---- Cheat.dat ----

TEST_F(AnalyserTest, CheatDropsTheFirstCharacterAndNeedsASecondColon) {
  const std::string path = Install("dat/cheat.dat", "datafiles/cheat.dat");
  EXPECT_TRUE(AnalyseCheat(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'R'), "1");
  EXPECT_EQ(Field("beta", 'R'), "1");
  // ":delta" has no second ':' and is skipped.
  EXPECT_EQ(Field("delta", 'R'), "#CH");
  EXPECT_EQ(Field("gamma", 'R'), "#CH");
  EXPECT_EQ(work.ProgressMax.load(), static_cast<long long>(ReadFile(path).size()));
  EXPECT_EQ(work.ProgressValue.load(), work.ProgressMax.load());
}

TEST_F(AnalyserTest, CheatCancelGivesFalse) {
  Install("dat/cheat.dat", "datafiles/cheat.dat");
  work.CancelRequested = true;
  EXPECT_FALSE(AnalyseCheat(*ctx, false, work));
  EXPECT_EQ(Field("alpha", 'R'), "#CH");
}

TEST_F(AnalyserTest, CheatResetClearsTheFlag) {
  Install("dat/cheat.dat", "datafiles/cheat.dat");
  FieldSet(Record("gamma"), "#CH", "1");
  EXPECT_TRUE(AnalyseCheat(*ctx, true, work));
  EXPECT_EQ(Field("gamma", 'R'), "#CH");
  EXPECT_EQ(Field("beta", 'R'), "1");
}

}  // namespace

// Without Mameinfo.dat the blunt reset doesn't run: the save state field and the presence marks
// stay, and so does every other dat field.
TEST_F(AnalyserTest, ResetWithoutTheDatFileLeavesTheRecordsAlone) {
  FieldSet(Record("alpha"), "#SS", "1");
  Record("alpha") += "*";
  FieldSet(Record("alpha"), "#HI", "0,10");
  FieldSet(Record("alpha"), "#HS", "1");
  const std::string before = Record("alpha");
  EXPECT_FALSE(AnalyseMameinfo(*ctx, true, work));
  EXPECT_FALSE(AnalyseHistory(*ctx, true, work));
  EXPECT_FALSE(AnalyseHiscore(*ctx, true, work));
  EXPECT_FALSE(AnalyseCheat(*ctx, true, work));
  EXPECT_FALSE(AnalyseCommand(*ctx, true, work));
  EXPECT_EQ(Record("alpha"), before);
  EXPECT_TRUE(IsPresent(Record("alpha")));
}

}  // namespace tessarin
