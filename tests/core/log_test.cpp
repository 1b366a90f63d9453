#include "core/log.h"

#include <gtest/gtest.h>

#include <QDate>
#include <QLocale>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "core/guard.h"
#include "core_test_support.h"

namespace tessarin {
namespace {

using testing::CrLfLines;
using testing::FolderEntries;
using testing::ReadFile;
using testing::TempFolder;
using testing::WriteFile;

class LogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    log.SetFatalHandler([this](const std::string& path) {
      ++fatalCalls;
      fatalPath = path;
    });
  }

  // One failing routine, as every guarded routine fails.
  bool Fail(int trackPoint, int number = 9, const std::string& text = "Subscript out of range") {
    return RunGuarded(log, trackPoint, [&] { throw Failure(number, text); });
  }

  std::vector<std::string> LogLines() const { return CrLfLines(ReadFile(folder / kLogName)); }

  static constexpr const char* kLogName = "Tessarin.log.txt";
  TempFolder folder;
  Log log{folder.Path()};
  int fatalCalls = 0;
  std::string fatalPath;
};

// Checks the five lines of one error group starting at `first`.
void ExpectGroup(const std::vector<std::string>& lines, std::size_t first, int trackPoint,
                 const std::string& cause) {
  ASSERT_GE(lines.size(), first + 5);
  EXPECT_TRUE(lines[first].starts_with("<START DEBUGGING> ")) << lines[first];
  EXPECT_EQ(lines[first + 1], "TRACKING BUG NUMBER = " + std::to_string(trackPoint));
  EXPECT_EQ(lines[first + 2], cause);
  EXPECT_EQ(lines[first + 3], "<END>");
  EXPECT_EQ(lines[first + 4], " ");
}

TEST_F(LogTest, RunGuardedGivesTrueAndLogsNothingWhenTheBodyEnds) {
  int result = 0;
  EXPECT_TRUE(RunGuarded(log, 1234, [&] { result = 7; }));
  EXPECT_EQ(result, 7);
  EXPECT_EQ(log.TrackPoint(), 1234);
  EXPECT_EQ(log.BugCount(), 0);
  EXPECT_FALSE(std::filesystem::exists(folder / kLogName));
}

TEST_F(LogTest, RunGuardedGivesFalseKeepsThePartialResultAndLogsTheGroup) {
  std::string result;
  const bool ended = RunGuarded(log, 4711, [&] {
    result = "half";
    throw Failure(53, "File not found");
  });
  EXPECT_FALSE(ended);
  EXPECT_EQ(result, "half");
  EXPECT_EQ(log.BugCount(), 1);
  const auto lines = LogLines();
  ASSERT_EQ(lines.size(), 5u);
  ExpectGroup(lines, 0, 4711, "53 File not found");
  EXPECT_EQ(fatalCalls, 0);
}

TEST_F(LogTest, StartLineHoldsTheDateAndTimeInShortForms) {
  const QLocale locale = QLocale::system();
  const std::string before =
      locale.toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
  Fail(1);
  const std::string after =
      locale.toString(QDate::currentDate(), QLocale::ShortFormat).toStdString();
  const auto lines = LogLines();
  ASSERT_FALSE(lines.empty());
  const std::string stamp = lines[0].substr(std::string("<START DEBUGGING> ").size());
  EXPECT_TRUE(stamp.starts_with(before + " ") || stamp.starts_with(after + " ")) << stamp;
  // Something (the time) follows the blank behind the date.
  EXPECT_GT(stamp.size(), before.size() + 1) << stamp;
}

TEST_F(LogTest, TheTrackingLineNamesTheLastRoutineEntered) {
  log.SetTrackPoint(10);
  RunGuarded(log, 20, [&] {
    log.SetTrackPoint(30);  // a routine called from the body
    throw std::runtime_error("inner");
  });
  const auto lines = LogLines();
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[1], "TRACKING BUG NUMBER = 30");
}

TEST_F(LogTest, CauseLinesNameTheKindOfFailure) {
  RunGuarded(log, 1, [] { throw std::bad_alloc(); });
  RunGuarded(log, 2, [] { (void)std::vector<int>().at(3); });
  RunGuarded(log, 3, [] { throw Failure(75, "Path/File access error"); });
  const auto lines = LogLines();
  ASSERT_EQ(lines.size(), 15u);
  EXPECT_EQ(lines[2], "7 Out of memory");
  EXPECT_TRUE(lines[7].starts_with("9 ")) << lines[7];
  EXPECT_EQ(lines[12], "75 Path/File access error");
}

TEST_F(LogTest, FiveFailuresLeaveFiveGroupsAndARunningProgram) {
  for (int i = 1; i <= 5; ++i) EXPECT_FALSE(Fail(100 + i));
  EXPECT_EQ(log.BugCount(), 5);
  EXPECT_EQ(fatalCalls, 0);
  const auto lines = LogLines();
  ASSERT_EQ(lines.size(), 25u);
  for (int i = 0; i < 5; ++i) ExpectGroup(lines, i * 5, 101 + i, "9 Subscript out of range");
  // And the program goes on: the log still takes lines.
  log.LogError("still here");
  EXPECT_EQ(LogLines().back(), "still here");
}

TEST_F(LogTest, TheSixthFailureWritesItsGroupThenTheLastLineAndStops) {
  for (int i = 1; i <= 6; ++i) Fail(200 + i, 5, "Invalid procedure call or argument");
  EXPECT_EQ(log.BugCount(), 6);
  EXPECT_EQ(fatalCalls, 1);
  EXPECT_EQ(fatalPath, log.LogPath());
  EXPECT_EQ(fatalPath, folder / kLogName);
  const auto lines = LogLines();
  ASSERT_EQ(lines.size(), 31u);
  ExpectGroup(lines, 25, 206, "5 Invalid procedure call or argument");
  EXPECT_EQ(lines[30], "5 BUG ERRORS => Sorry, Tessarin Stopped.");
  EXPECT_TRUE(ReadFile(folder / kLogName).ends_with("Stopped.\r\n"));
}

TEST_F(LogTest, WithoutAFatalHandlerTheSixthFailureEndsTheProcess) {
  EXPECT_EXIT(
      {
        Log quiet(folder.Path());
        for (int i = 1; i <= 6; ++i) RunGuarded(quiet, i, [] { throw Failure(9, "x"); });
        std::exit(0);  // not reached when the run is ended
      },
      [](int status) { return !::testing::ExitedWithCode(0)(status); }, "Tessarin\\.log\\.txt");
}

TEST_F(LogTest, FreeTextLinesAreNotFailures) {
  log.LogError("Building the database");
  EXPECT_EQ(log.BugCount(), 0);
  EXPECT_EQ(ReadFile(folder / kLogName), "Building the database\r\n");
  for (int i = 1; i <= 5; ++i) {
    Fail(i);
    log.LogError("line " + std::to_string(i));
  }
  EXPECT_EQ(log.BugCount(), 5);
  EXPECT_EQ(fatalCalls, 0);
  EXPECT_EQ(LogLines().size(), 1u + 5 * 6);
}

TEST_F(LogTest, WriteLogLineAppendsAndOverwrites) {
  EXPECT_TRUE(log.WriteLogLine("first"));
  EXPECT_TRUE(log.WriteLogLine("second", false));
  EXPECT_EQ(ReadFile(log.LogPath()), "first\r\nsecond\r\n");
  EXPECT_TRUE(log.WriteLogLine("fresh", true));
  EXPECT_EQ(ReadFile(log.LogPath()), "fresh\r\n");
  EXPECT_TRUE(log.WriteLogLine(""));
  EXPECT_EQ(ReadFile(log.LogPath()), "fresh\r\n\r\n");
}

TEST_F(LogTest, BothSpellingsOfTheLogAreOneFile) {
  // The error tracker writes first: the builder's lines join its file.
  log.LogError("from the tracker");
  log.WriteLogLine("from the builder");
  EXPECT_EQ(FolderEntries(folder.Path()), std::vector<std::string>{kLogName});
  EXPECT_EQ(ReadFile(folder / kLogName), "from the tracker\r\nfrom the builder\r\n");
}

TEST_F(LogTest, TheTrackerFindsALogStartedByWriteLogLine) {
  log.WriteLogLine("from the builder");
  Fail(77);
  // One spelling whoever writes first: the name the README and the messages give.
  const auto entries = FolderEntries(folder.Path());
  ASSERT_EQ(entries, std::vector<std::string>{kLogName});
  EXPECT_EQ(log.LogPath(), folder / entries[0]);
  const auto lines = CrLfLines(ReadFile(log.LogPath()));
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "from the builder");
  ExpectGroup(lines, 1, 77, "9 Subscript out of range");
}

TEST_F(LogTest, WriteLogLineToAPathOfItsOwn) {
  const std::string report = folder / "layouts report.txt";
  EXPECT_TRUE(log.WriteLogLine("one", false, report));
  EXPECT_TRUE(log.WriteLogLine("two", false, report));
  EXPECT_EQ(ReadFile(report), "one\r\ntwo\r\n");
  EXPECT_FALSE(std::filesystem::exists(folder / kLogName));
  EXPECT_TRUE(log.WriteLogLine("only", true, report));
  EXPECT_EQ(ReadFile(report), "only\r\n");
}

TEST_F(LogTest, WriteLogLineIntoAMissingFolderGivesFalse) {
  EXPECT_FALSE(log.WriteLogLine("x", false, folder / "missing/report.txt"));
  EXPECT_EQ(log.BugCount(), 0);
}

TEST_F(LogTest, ANewStartDeletesTheLogOfTheEarlierRun) {
  Fail(1);
  log.LogError("end of the first run");
  ASSERT_TRUE(std::filesystem::exists(folder / kLogName));

  Log nextRun(folder.Path());
  nextRun.DeleteLog();
  EXPECT_FALSE(std::filesystem::exists(folder / kLogName));
  EXPECT_EQ(nextRun.BugCount(), 0);
  nextRun.LogError("second run");
  EXPECT_EQ(ReadFile(folder / kLogName), "second run\r\n");
}

TEST_F(LogTest, DeleteLogFindsTheOtherSpelling) {
  WriteFile(folder / "Tessarin.LOG.txt", "old\r\n");
  log.DeleteLog();
  EXPECT_TRUE(FolderEntries(folder.Path()).empty());
}

TEST_F(LogTest, DescribeWithoutAFailureIsNeutral) {
  const FailureInfo info = DescribeCurrentException();
  EXPECT_EQ(info.number, 0);
  EXPECT_FALSE(info.description.empty());
}

}  // namespace
}  // namespace tessarin
