// The rules behind the windows: progress, titles, placement, message boxes, choosers, the
// panel's keys and the priority.
#include <gtest/gtest.h>

#include "app/context.h"
#include "shell/panelcursor.h"
#include "shell/priority.h"
#include "shell_test_support.h"
#include "widgets/windowrules.h"

namespace tessarin {
namespace {

using shelltest::ReadFile;
using shelltest::TestContext;

TEST(WorkingRules, UnknownMaximumShowsZero) {
  EXPECT_EQ(WorkingPercent(5, 0), 0);
  EXPECT_EQ(WorkingPercent(5, -3), 0);
}

TEST(WorkingRules, NothingDoneOfTenShowsOnePercentAndFrameZero) {
  EXPECT_EQ(WorkingPercent(0, 10), 1);
  EXPECT_EQ(ProgressFrameIndex(WorkingPercent(0, 10)), 0);
}

TEST(WorkingRules, ValueAboveMaximumShowsHundred) {
  EXPECT_EQ(WorkingPercent(15, 10), 100);
  EXPECT_EQ(ProgressFrameIndex(WorkingPercent(15, 10)), 20);
}

TEST(WorkingRules, PercentIsCutNotRounded) {
  EXPECT_EQ(WorkingPercent(2, 3), 66);
  EXPECT_EQ(WorkingPercent(1, 1000), 1);
  EXPECT_EQ(WorkingPercent(999, 1000), 99);
}

TEST(WorkingRules, ProgressFrames) {
  EXPECT_EQ(ProgressFrameIndex(100), 20);
  EXPECT_EQ(ProgressFrameIndex(104), 20);
  EXPECT_EQ(ProgressFrameIndex(-7), 0);
  EXPECT_EQ(ProgressFrameIndex(4), 0);
  EXPECT_EQ(ProgressFrameIndex(5), 1);
  EXPECT_EQ(ProgressFrameIndex(99), 19);
}

TEST(WorkingRules, TitleBarTurnsAndCounterWrapsAtFour) {
  int tick = 0;
  EXPECT_EQ(AdvanceWorkingTick(tick, "Working..."), "Working... -");
  EXPECT_EQ(tick, 1);
  EXPECT_EQ(AdvanceWorkingTick(tick, "Working..."), "Working... \\");
  EXPECT_EQ(AdvanceWorkingTick(tick, "Working..."), "Working... |");
  EXPECT_EQ(AdvanceWorkingTick(tick, "Working..."), "Working... /");
  EXPECT_EQ(tick, 0);
  EXPECT_EQ(AdvanceWorkingTick(tick, "Working..."), "Working... -");
}

TEST(Placement, CenterSitsALittleAboveTheMiddle) {
  int left = 0;
  int top = 0;
  CenterPosition({0, 0, 1000, 800}, 200, 100, left, top);
  EXPECT_EQ(left, 400);
  EXPECT_EQ(top, 310);  // 0.9 * 800 / 2 - 50
}

TEST(Placement, OddSizesUseIntegerDivision) {
  int left = 0;
  int top = 0;
  CenterPosition({0, 0, 1001, 777}, 201, 101, left, top);
  EXPECT_EQ(left, 500 - 100);
  EXPECT_EQ(top, 349 - 50);
}

TEST(Placement, StoredPositionRules) {
  EXPECT_TRUE(FramePositionApplies(0));
  EXPECT_FALSE(FramePositionApplies(-1));
  EXPECT_FALSE(PanelPositionApplies(0));
  EXPECT_TRUE(PanelPositionApplies(1));
  EXPECT_TRUE(WorkingPositionApplies(0));
  EXPECT_FALSE(WorkingPositionApplies(-1));
}

TEST(Placement, WindowOffEveryScreenIsRejected) {
  const std::vector<Rect> screens{{0, 0, 1920, 1080}, {1920, 0, 1280, 1024}};
  EXPECT_TRUE(PositionOnSomeScreen({100, 100, 400, 300}, screens));
  EXPECT_TRUE(PositionOnSomeScreen({2000, 10, 400, 300}, screens));
  EXPECT_FALSE(PositionOnSomeScreen({5000, 100, 400, 300}, screens));
  EXPECT_FALSE(PositionOnSomeScreen({100, -500, 400, 300}, screens));
  EXPECT_FALSE(PositionOnSomeScreen({100, 1200, 400, 300}, screens));
  // Only a sliver of the title band on the screen is not enough to grab it.
  EXPECT_FALSE(PositionOnSomeScreen({-395, 100, 400, 300}, screens));
}

TEST(Placement, MinimisedFrameRestoreState) {
  EXPECT_EQ(RestoreStateFor(-1), 2);
  EXPECT_EQ(RestoreStateFor(1), 2);
  EXPECT_EQ(RestoreStateFor(0), 0);
  EXPECT_EQ(RestoreStateFor(2), 2);
}

TEST(MessageBoxRules, EmptyTextTitleAndIcon) {
  const MessageBoxArgs args = NormaliseMessageBox("", "", 0, "Done");
  EXPECT_EQ(args.Text, "Done.");
  EXPECT_EQ(args.Title, "Tessarin");
  EXPECT_EQ(args.Icon, 64);
}

TEST(MessageBoxRules, BarsBecomeLineBreaks) {
  const MessageBoxArgs args = NormaliseMessageBox("one|two|three", "T", 48, "Done");
  EXPECT_EQ(args.Text, "one\ntwo\nthree");
  EXPECT_EQ(args.Title, "T");
  EXPECT_EQ(args.Icon, 48);
}

TEST(MessageBoxRules, BeepKinds) {
  EXPECT_EQ(BeepKindFor(16), 16);
  EXPECT_EQ(BeepKindFor(48), 48);
  EXPECT_EQ(BeepKindFor(32), 64);
  EXPECT_EQ(BeepKindFor(0), 64);
}

TEST(CheckTags, ToggleFlipsEmptyAndOne) {
  EXPECT_EQ(ToggledTag(""), "1");
  EXPECT_EQ(ToggledTag("1"), "");
  EXPECT_EQ(ToggledTag("x"), "");
  EXPECT_FALSE(TagIsOn(""));
  EXPECT_TRUE(TagIsOn("1"));
}

TEST(FolderChooser, StartFolder) {
  EXPECT_EQ(BrowseStartFolder("C:\\mame\\roms\\pacman.zip"), "C:\\mame\\roms");
  EXPECT_EQ(BrowseStartFolder("C:\\mame.exe"), "C:\\");
  EXPECT_EQ(BrowseStartFolder("/home/u/roms/"), "/home/u/roms");
  EXPECT_EQ(BrowseStartFolder("/mame"), "/");
  EXPECT_FALSE(BrowseStartFolder("").empty());
}

TEST(FolderChooser, Results) {
  EXPECT_EQ(BrowseResult("", true, "/start/", true), "");
  EXPECT_EQ(BrowseResult("", true, "/start/", false), "/start/");
  EXPECT_EQ(BrowseResult("/home/u/roms", false, "", true), "/home/u/roms/");
  EXPECT_EQ(BrowseResult("C:\\roms", false, "", true), "C:\\roms\\");
  EXPECT_EQ(BrowseResult("C:\\roms\\", false, "", true), "C:\\roms\\");
  EXPECT_EQ(BrowseResult("\\", false, "", true), "");
}

TEST(FileChooser, PipeFilters) {
  EXPECT_EQ(QtFilterFromPipes(""), "Fichier TXT (*.txt)");
  EXPECT_EQ(QtFilterFromPipes("Executable|*.exe;mame*|All files|*"),
            "Executable (*.exe mame*);;All files (*)");
}

TEST(PanelKeys, FirstKeyOnlyMakesEntryZeroCurrent) {
  for (PanelCursor::Key key : {PanelCursor::Key::Enter, PanelCursor::Key::Up,
                               PanelCursor::Key::Down, PanelCursor::Key::Other}) {
    PanelCursor cursor;
    EXPECT_EQ(cursor.Current(), -1);
    const PanelCursor::Outcome first = cursor.OnKey(key);
    EXPECT_EQ(first.Previous, -1);
    EXPECT_EQ(first.Current, 0);
    EXPECT_EQ(first.Run, -1);
  }
}

TEST(PanelKeys, ArrowsWrapAndEnterRuns) {
  PanelCursor cursor;
  cursor.OnKey(PanelCursor::Key::Other);
  PanelCursor::Outcome up = cursor.OnKey(PanelCursor::Key::Up);
  EXPECT_EQ(up.Previous, 0);
  EXPECT_EQ(up.Current, 8);
  PanelCursor::Outcome down = cursor.OnKey(PanelCursor::Key::Down);
  EXPECT_EQ(down.Previous, 8);
  EXPECT_EQ(down.Current, 0);
  cursor.OnKey(PanelCursor::Key::Down);
  cursor.OnKey(PanelCursor::Key::Down);
  PanelCursor::Outcome enter = cursor.OnKey(PanelCursor::Key::Enter);
  EXPECT_EQ(enter.Run, 2);
  EXPECT_EQ(enter.Current, 2);
  // Another key after the first one does nothing.
  PanelCursor::Outcome other = cursor.OnKey(PanelCursor::Key::Other);
  EXPECT_EQ(other.Current, 2);
  EXPECT_EQ(other.Run, -1);
}

TEST(Priority, LevelsByChoice) {
  EXPECT_EQ(PriorityLevelsFor(0).ThreadPriority, -15);
  EXPECT_EQ(PriorityLevelsFor(0).ProcessClass, 64);
  EXPECT_EQ(PriorityLevelsFor(1).ThreadPriority, 0);
  EXPECT_EQ(PriorityLevelsFor(1).ProcessClass, 32);
  EXPECT_EQ(PriorityLevelsFor(2).ThreadPriority, 2);
  EXPECT_EQ(PriorityLevelsFor(2).ProcessClass, 128);
}

TEST(Priority, NumbersCarryABlankOrASign) {
  EXPECT_EQ(SignedNumberText(32), " 32");
  EXPECT_EQ(SignedNumberText(0), " 0");
  EXPECT_EQ(SignedNumberText(-15), "-15");
}

TEST(Priority, NormalChoiceLogsItsLinesInOrder) {
  TestContext t;
  // The test may itself run at a lowered priority: expect what the system says.
  const std::string thread = SignedNumberText(platform::GetThreadPriority());
  const std::string klass = SignedNumberText(platform::GetPriorityClass());
  ApplyPriority(t.ctx.log, 1);
  const std::string log = ReadFile(t.ctx.log.LogPath());
  const size_t a = log.find("Current Thread Priority:" + thread);
  const size_t b = log.find("Current Priority Class:" + klass);
  const size_t c = log.find("PRIORITY= 1");
  const size_t d = log.find("New Thread Priority:");
  const size_t e = log.find("New Priority Class:");
  ASSERT_NE(a, std::string::npos) << log;
  ASSERT_NE(e, std::string::npos) << log;
  EXPECT_LT(a, b);
  EXPECT_LT(b, c);
  EXPECT_LT(c, d);
  EXPECT_LT(d, e);
}

}  // namespace
}  // namespace tessarin
