#include "store/faststrings.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <thread>
#include <vector>

namespace tessarin {
namespace {

constexpr long kAll = kAllMatches;

// Runs `body` on a thread of its own, whose FastReplace scratch buffer starts empty.
template <typename Body>
void OnFreshThread(Body body) {
  std::thread thread(body);
  thread.join();
}

// A plain, obviously correct replace to compare FastReplace with on random input.
std::string SlowReplace(const std::string& source, const std::string& find,
                        const std::string& replacement, long start, long count, bool anyCase) {
  if (find.empty()) return source;
  auto lower = [](std::string s) {
    for (char& c : s) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return s;
  };
  const std::string searched = anyCase ? lower(source) : source;
  const std::string what = anyCase ? lower(find) : find;
  std::string result;
  size_t read = 0;
  size_t at = start < 2 ? 0 : static_cast<size_t>(start - 1);
  long done = 0;
  while (done < count && at <= searched.size()) {
    const size_t match = searched.find(what, at);
    if (match == std::string::npos) break;
    result += source.substr(read, match - read);
    result += replacement;
    read = match + find.size();
    at = read;
    ++done;
  }
  result += source.substr(std::min(read, source.size()));
  return result;
}

// --- FastReplace -----------------------------------------------------------------------------

TEST(FastReplace, EmptyFindGivesSourceUnchanged) {
  EXPECT_EQ(FastReplace("abc", "", "x"), "abc");
  EXPECT_EQ(FastReplace("", "", "x"), "");
}

TEST(FastReplace, NoMatchGivesSourceWithoutTouchingTheBuffer) {
  OnFreshThread([] {
    EXPECT_EQ(FastReplace("zorblast;B#Z;C#MA", "#HI", "90210,90987"), "zorblast;B#Z;C#MA");
    EXPECT_EQ(FastReplace("zorblast;B#Z;C#MA", "#HI", ""), "zorblast;B#Z;C#MA");
    EXPECT_EQ(FastReplace("", "#HI", "1"), "");
    EXPECT_EQ(FastReplaceBufferLength(), 0u);
  });
}

TEST(FastReplace, EqualLengthsOverwriteInPlaceWithoutTheBuffer) {
  OnFreshThread([] {
    EXPECT_EQ(FastReplace("a#Xb#Xc#X", "#X", "12"), "a12b12c12");
    EXPECT_EQ(FastReplace("#X", "#X", "ab"), "ab");
    EXPECT_EQ(FastReplaceBufferLength(), 0u);
  });
}

TEST(FastReplace, EmptyReplacementDeletes) {
  EXPECT_EQ(FastReplace("a--b--c", "--", ""), "abc");
  EXPECT_EQ(FastReplace("--a--b", "--", ""), "ab");
  EXPECT_EQ(FastReplace("----", "--", ""), "");
  EXPECT_EQ(FastReplace("--", "--", ""), "");
}

TEST(FastReplace, ShorterReplacement) {
  EXPECT_EQ(FastReplace(";B#Z;C#MA;D#Y", "#MA", "3"), ";B#Z;C3;D#Y");
  EXPECT_EQ(FastReplace("#MA#MA#MA", "#MA", "1"), "111");
  EXPECT_EQ(FastReplace("x#MAy#MAz", "#MA", "12"), "x12y12z");
}

TEST(FastReplace, LongerReplacement) {
  EXPECT_EQ(FastReplace(";B#Z;C3", "#Z", "Zorb Blaster (set 2)"), ";BZorb Blaster (set 2);C3");
  EXPECT_EQ(FastReplace("aaaa", "a", "bcd"), "bcdbcdbcdbcd");
  EXPECT_EQ(FastReplace("a", "a", std::string(1000, 'q')), std::string(1000, 'q'));
}

TEST(FastReplace, GrowingResultFarBeyondTheSource) {
  // Every byte of a long source becomes 50 bytes: the buffer has to grow many times over.
  const std::string source(3000, '#');
  const std::string replacement(50, 'r');
  const std::string result = FastReplace(source, "#", replacement);
  EXPECT_EQ(result.size(), 3000u * 50u);
  EXPECT_EQ(result.find_first_not_of('r'), std::string::npos);
}

TEST(FastReplace, CountLimitsTheReplacementsAndKeepsTheTail) {
  EXPECT_EQ(FastReplace("a-a-a-a", "a", "b", 1, 1), "b-a-a-a");
  EXPECT_EQ(FastReplace("a-a-a-a", "a", "", 1, 1), "-a-a-a");
  EXPECT_EQ(FastReplace("a-a-a-a", "a", "long", 1, 2), "long-long-a-a");
  EXPECT_EQ(FastReplace("a-a-a-a", "a", "b", 1, 3), "b-b-b-a");
  EXPECT_EQ(FastReplace("a-a-a-a", "a", "b", 1, 0), "a-a-a-a");
}

TEST(FastReplace, StartKeepsTheTextBeforeIt) {
  EXPECT_EQ(FastReplace("aXaXaX", "a", "bb", 3), "aXbbXbbX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "", 2), "aXXX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", 2), "aXbXbX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", 5), "aXaXbX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", 6), "aXaXaX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", 100), "aXaXaX");
  // Below 2 means the first character.
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", 0), "bXbXbX");
  EXPECT_EQ(FastReplace("aXaXaX", "a", "b", -7), "bXbXbX");
}

TEST(FastReplace, CompareModeSearchesWithoutCaseAndCopiesFromTheSource) {
  EXPECT_EQ(FastReplace("Hello HELLO hello", "hello", "bye", 1, kAll, 1), "bye bye bye");
  EXPECT_EQ(FastReplace("Hello HELLO hello", "HeLLo", "", 1, kAll, 1), "  ");
  EXPECT_EQ(FastReplace("FOO bar", "o", "0", 1, kAll, 1), "F00 bar");
  // The copied text keeps its case; only the search ignores it.
  EXPECT_EQ(FastReplace("ABCabc", "B", "-", 1, kAll, 1), "A-Ca-c");
  EXPECT_EQ(FastReplace("ABCabc", "b", "xyz", 1, kAll, 1), "AxyzCaxyzc");
  EXPECT_EQ(FastReplace("#Romname# and #ROMNAME#", "#romname#", "pacman", 1, kAll, 2),
            "pacman and pacman");
  // Mode 0 is exact.
  EXPECT_EQ(FastReplace("ABCabc", "b", "-", 1, kAll, 0), "ABCa-c");
}

TEST(FastReplace, ReplacementHoldingTheSearchedTextNeverLoops) {
  EXPECT_EQ(FastReplace("aaa", "a", "aa"), "aaaaaa");
  EXPECT_EQ(FastReplace("#Y;#Y", "#Y", "x#Yx"), "x#Yx;x#Yx");
  EXPECT_EQ(FastReplace("ab", "ab", "ab"), "ab");
  EXPECT_EQ(FastReplace("Aa", "a", "AA", 1, kAll, 1), "AAAA");
}

TEST(FastReplace, LastMatchEndingTheSource) {
  EXPECT_EQ(FastReplace("abcXY", "XY", ""), "abc");
  EXPECT_EQ(FastReplace("abcXY", "XY", "Q"), "abcQ");
  EXPECT_EQ(FastReplace("abcXY", "XY", "PQ"), "abcPQ");
  EXPECT_EQ(FastReplace("abcXY", "XY", "LONG"), "abcLONG");
  EXPECT_EQ(FastReplace("XYXY", "XY", "LONG"), "LONGLONG");
}

TEST(FastReplace, LongCallThenShortCallLeavesNoOldText) {
  OnFreshThread([] {
    const std::string longSource = std::string(500, 'L') + "#X" + std::string(500, 'M');
    const std::string longResult = FastReplace(longSource, "#X", "-inserted-");
    EXPECT_EQ(longResult, std::string(500, 'L') + "-inserted-" + std::string(500, 'M'));
    EXPECT_EQ(FastReplace("s#Xt", "#X", "Y"), "sYt");
    EXPECT_EQ(FastReplace("s#Xt", "#X", ""), "st");
    EXPECT_EQ(FastReplace("s#Xt", "#X", "123"), "s123t");
    EXPECT_EQ(FastReplace("#X", "#X", "123"), "123");
  });
}

TEST(FastReplace, ScratchBufferIsReusedAndOnlyGrows) {
  OnFreshThread([] {
    // Deletion: the buffer is made as long as the source.
    FastReplace(std::string(200, 'a') + "#", "#", "");
    const size_t afterDeletion = FastReplaceBufferLength();
    EXPECT_GE(afterDeletion, 201u);

    // A short call doesn't shrink it, nor does it reallocate it.
    FastReplace("a#b", "#", "");
    EXPECT_EQ(FastReplaceBufferLength(), afterDeletion);
    FastReplace("a#b", "#", "longer");
    EXPECT_EQ(FastReplaceBufferLength(), afterDeletion);

    // Growth: at least the source plus the replacement, and more as the result grows.
    const std::string many(1000, '#');
    const std::string grown = FastReplace(many, "#", "abc");
    EXPECT_EQ(grown.size(), 3000u);
    const size_t afterGrowth = FastReplaceBufferLength();
    EXPECT_GE(afterGrowth, 3000u);

    FastReplace("x#y", "#", "");
    FastReplace("x#y", "#", "zz");
    EXPECT_EQ(FastReplaceBufferLength(), afterGrowth);
  });
}

TEST(FastReplace, BuffersArePerThread) {
  FastReplace(std::string(5000, '#'), "#", "ab");
  const size_t here = FastReplaceBufferLength();
  EXPECT_GE(here, 10000u);
  OnFreshThread([] { EXPECT_EQ(FastReplaceBufferLength(), 0u); });
  EXPECT_EQ(FastReplaceBufferLength(), here);
}

TEST(FastReplace, BinaryBytesAreCopiedAsTheyAre) {
  const std::string source("a\0#b\xE0#\xFF", 7);
  EXPECT_EQ(FastReplace(source, "#", "\x01\x02"), std::string("a\0\x01\x02"
                                                              "b\xE0\x01\x02\xFF",
                                                              9));
  EXPECT_EQ(FastReplace(source, std::string_view("\0", 1), "Z"), "aZ#b\xE0#\xFF");
}

TEST(FastReplace, MatchesAPlainReplaceOnRandomInput) {
  std::mt19937 random(12345);
  auto text = [&](size_t maxLength) {
    std::uniform_int_distribution<size_t> lengthOf(0, maxLength);
    std::uniform_int_distribution<int> letter(0, 3);
    std::string s(lengthOf(random), ' ');
    for (char& c : s) c = "aAb#"[letter(random)];
    return s;
  };
  std::uniform_int_distribution<long> startOf(-1, 40);
  std::uniform_int_distribution<long> countOf(0, 6);
  for (int round = 0; round < 20000; ++round) {
    const std::string source = text(60);
    const std::string find = text(3);
    const std::string replacement = text(round % 7 == 0 ? 200 : 5);
    const long start = startOf(random);
    const long count = round % 3 == 0 ? kAll : countOf(random);
    const int mode = round % 2;
    ASSERT_EQ(FastReplace(source, find, replacement, start, count, mode),
              SlowReplace(source, find, replacement, start, count, mode != 0))
        << "source '" << source << "' find '" << find << "' replacement '" << replacement
        << "' start " << start << " count " << count << " mode " << mode;
  }
}

// --- FastSplit -------------------------------------------------------------------------------

TEST(FastSplit, SplitsAndKeepsEmptyPieces) {
  std::vector<std::string> parts;
  FastSplit("a,b,c", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{"a", "b", "c"}));
  FastSplit("a,,c", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{"a", "", "c"}));
  FastSplit(",a", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{"", "a"}));
}

TEST(FastSplit, DelimiterOnlyGivesTwoEmptyElements) {
  std::vector<std::string> parts;
  FastSplit(",", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{"", ""}));
  FastSplit("<>", parts, "<>");
  EXPECT_EQ(parts, (std::vector<std::string>{"", ""}));
}

TEST(FastSplit, TextEndingInTheDelimiterGivesAnEmptyLastElement) {
  std::vector<std::string> parts;
  FastSplit("a;b;", parts, ";");
  EXPECT_EQ(parts, (std::vector<std::string>{"a", "b", ""}));
}

TEST(FastSplit, EmptySourceOrDelimiterGivesTheSource) {
  std::vector<std::string> parts{"old", "old", "old"};
  FastSplit("", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{""}));
  FastSplit("a,b", parts, "");
  EXPECT_EQ(parts, (std::vector<std::string>{"a,b"}));
}

TEST(FastSplit, NoDelimiterGivesOnePiece) {
  std::vector<std::string> parts;
  FastSplit("abc", parts, ",");
  EXPECT_EQ(parts, (std::vector<std::string>{"abc"}));
  FastSplit("ab", parts, "abc");
  EXPECT_EQ(parts, (std::vector<std::string>{"ab"}));
}

TEST(FastSplit, LongDelimitersAndOverlaps) {
  std::vector<std::string> parts;
  FastSplit(R"(<game name="x" sourcefile="y.c">)", parts, "=\"");
  EXPECT_EQ(parts, (std::vector<std::string>{"<game name", "x\" sourcefile", "y.c\">"}));
  // The scan goes on behind each delimiter, so "aa" in "aaa" is found once.
  FastSplit("aaa", parts, "aa");
  EXPECT_EQ(parts, (std::vector<std::string>{"", "a"}));
  FastSplit("aaaa", parts, "aa");
  EXPECT_EQ(parts, (std::vector<std::string>{"", "", ""}));
  FastSplit("is case sensitive", parts, "CASE");
  EXPECT_EQ(parts, (std::vector<std::string>{"is case sensitive"}));
}

TEST(FastSplit, ShrinksALongerPartsArray) {
  std::vector<std::string> parts(10, "left over");
  FastSplit("x|y", parts, "|");
  EXPECT_EQ(parts, (std::vector<std::string>{"x", "y"}));
}

TEST(FastSplit, MatchesAPlainSplitOnRandomInput) {
  std::mt19937 random(777);
  std::vector<std::string> parts;
  for (int round = 0; round < 5000; ++round) {
    std::string source(random() % 30, ' ');
    for (char& c : source) c = "ab,"[random() % 3];
    const std::string delimiter = round % 2 ? "," : ",a";
    FastSplit(source, parts, delimiter);
    if (source.empty()) {
      ASSERT_EQ(parts, (std::vector<std::string>{""}));
      continue;
    }
    std::vector<std::string> expected;
    size_t from = 0;
    for (size_t at = source.find(delimiter); at != std::string::npos;
         at = source.find(delimiter, from)) {
      expected.push_back(source.substr(from, at - from));
      from = at + delimiter.size();
    }
    expected.push_back(source.substr(from));
    ASSERT_EQ(parts, expected) << source;
  }
}

// --- ExtractBetween --------------------------------------------------------------------------

TEST(ExtractBetween, TakesTheContentOfAOneLineElement) {
  std::string line = "\t\t<description>Zorb Blaster (set 2)</description>";
  EXPECT_EQ(ExtractBetween(line, ">", "<"), "Zorb Blaster (set 2)");
  EXPECT_EQ(line, "\t\t<description>Zorb Blaster (set 2)</description>");
}

TEST(ExtractBetween, FirstOpenMarkAndLastCloseMark) {
  std::string text = "a>b>c<d<e";
  EXPECT_EQ(ExtractBetween(text, ">", "<"), "b>c<d");
  std::string quoted = R"(name="x" "y")";
  EXPECT_EQ(ExtractBetween(quoted, "\"", "\""), R"(x" "y)");
}

TEST(ExtractBetween, EmptyElementGivesEmptyText) {
  std::string line = "<year></year>";
  EXPECT_EQ(ExtractBetween(line, ">", "<"), "");
}

TEST(ExtractBetween, NoCloseMarkBehindTheOpenMarkEmptiesTheText) {
  std::string line = "<description>no end";
  EXPECT_EQ(ExtractBetween(line, ">", "<"), "");
  EXPECT_EQ(line, "");
}

TEST(ExtractBetween, MissingOpenMarkEmptiesTheText) {
  std::string line = "plain text</a";
  EXPECT_EQ(ExtractBetween(line, "[", "<"), "");
  EXPECT_EQ(line, "");
  std::string single = "only \" one";
  EXPECT_EQ(ExtractBetween(single, "\"", "\""), "");
  EXPECT_EQ(single, "");
}

TEST(ExtractBetween, MultiCharacterMarks) {
  std::string text = "xx<b>bold</b>yy";
  EXPECT_EQ(ExtractBetween(text, "<b>", "</b>"), "bold");
  std::string touching = "<b></b>";
  EXPECT_EQ(ExtractBetween(touching, "<b>", "</b>"), "");
  EXPECT_EQ(touching, "<b></b>");
}

// --- Tables ----------------------------------------------------------------------------------

TEST(FindInTable, ExactFindsTheFirstEqualEntry) {
  const CodeTable table{"", "Sega", "Capcom", "Sega", "sega"};
  EXPECT_EQ(FindInTable("Sega", table, true), 1);
  EXPECT_EQ(FindInTable("sega", table, true), 4);
  EXPECT_EQ(FindInTable("Capcom", table, true), 2);
  EXPECT_EQ(FindInTable("Konami", table, true), 0);
  EXPECT_EQ(FindInTable("Sega Enterprises", table, true), 0);
}

TEST(FindInTable, NotExactFindsTheFirstEntryInsideTheText) {
  const CodeTable table{"", "Sega", "Capcom"};
  // Table order decides, not the order in the text.
  EXPECT_EQ(FindInTable("Capcom / Sega", table, false), 1);
  EXPECT_EQ(FindInTable("Capcom USA", table, false), 2);
  EXPECT_EQ(FindInTable("Cap", table, false), 0);
}

TEST(FindInTable, ElementZeroIsNeverFound) {
  EXPECT_EQ(FindInTable("", CodeTable{""}, true), 0);
  EXPECT_EQ(FindInTable("x", CodeTable{}, true), 0);
  EXPECT_EQ(FindInTable("x", CodeTable{"x"}, true), 0);
  EXPECT_EQ(FindInTable("x", CodeTable{"x"}, false), 0);
}

TEST(FindOrAppend, AppendsInOrderOfFirstAppearance) {
  CodeTable table{""};
  EXPECT_EQ(FindOrAppend("Acme", table), 1);
  EXPECT_EQ(FindOrAppend("Zorb Inc.", table), 2);
  EXPECT_EQ(FindOrAppend("Acme", table), 1);
  EXPECT_EQ(table, (CodeTable{"", "Acme", "Zorb Inc."}));
}

TEST(FindOrAppend, NewTextTwiceGivesOneIndexAndOneNewEntry) {
  CodeTable table{"", "a", "b"};
  const int first = FindOrAppend("new", table, true);
  const int second = FindOrAppend("new", table, true);
  EXPECT_EQ(first, 3);
  EXPECT_EQ(second, 3);
  EXPECT_EQ(table.size(), 4u);
}

TEST(FindOrAppend, AlwaysComparesExactly) {
  CodeTable table{"", "Sega"};
  // A loose comparison would find "Sega" inside; the exact one appends.
  EXPECT_EQ(FindOrAppend("Sega Enterprises", table, false), 2);
  EXPECT_EQ(FindOrAppend("Sega", table, false), 1);
  EXPECT_EQ(table, (CodeTable{"", "Sega", "Sega Enterprises"}));
}

TEST(FindOrAppend, EmptyTableGetsItsUnusedElement) {
  CodeTable table;
  EXPECT_EQ(FindOrAppend("first", table), 1);
  EXPECT_EQ(table, (CodeTable{"", "first"}));
}

TEST(FindOrAppend, EmptyTextIsAnEntryLikeAnyOther) {
  CodeTable table{""};
  EXPECT_EQ(FindOrAppend("", table), 1);
  EXPECT_EQ(FindOrAppend("", table), 1);
  EXPECT_EQ(table.size(), 2u);
}

// --- Versions --------------------------------------------------------------------------------

TEST(NormaliseVersion, DocumentedExamples) {
  EXPECT_EQ(NormaliseVersion("37"), "0.037");
  EXPECT_EQ(NormaliseVersion("100"), "0.100");
  EXPECT_EQ(NormaliseVersion("129"), "0.129");
  EXPECT_EQ(NormaliseVersion("37b5"), "0.037b5");
  EXPECT_EQ(NormaliseVersion("106u1"), "0.106u1");
}

TEST(NormaliseVersion, LeadingZeroPointAndPointAreDropped) {
  EXPECT_EQ(NormaliseVersion(".37b5"), "0.037b5");
  EXPECT_EQ(NormaliseVersion("0.37b5"), "0.037b5");
  EXPECT_EQ(NormaliseVersion("0.129"), "0.129");
  EXPECT_EQ(NormaliseVersion(".129"), "0.129");
  EXPECT_EQ(NormaliseVersion("0.36u2"), "0.036u2");
  // Only one of each is dropped.
  EXPECT_EQ(NormaliseVersion("0..37"), "0.037");
  EXPECT_EQ(NormaliseVersion("0.0.37"), "00000.37");
}

TEST(NormaliseVersion, NumberTextIsTheShortestDecimalOfTheValue) {
  EXPECT_EQ(NormaliseVersion("1"), "0.001");
  EXPECT_EQ(NormaliseVersion("5"), "0.005");
  EXPECT_EQ(NormaliseVersion("10"), "0.010");   // "0.01" + "00000"
  EXPECT_EQ(NormaliseVersion("250"), "0.250");  // "0.25" + "00000"
  EXPECT_EQ(NormaliseVersion("999"), "0.999");
  EXPECT_EQ(NormaliseVersion("1000"), "10000");  // "1" + "00000"
  EXPECT_EQ(NormaliseVersion("2601"), "2.601");
  EXPECT_EQ(NormaliseVersion("2600"), "2.600");  // "2.6" + "00000"
  EXPECT_EQ(NormaliseVersion("12345"), "12.34");
  EXPECT_EQ(NormaliseVersion("1234567"), "1234.");
  EXPECT_EQ(NormaliseVersion("020"), "0.020");
  EXPECT_EQ(NormaliseVersion("1000000000000000000"), "1E+15");
}

TEST(NormaliseVersion, ZeroHasNoDecimalPoint) {
  EXPECT_EQ(NormaliseVersion("0"), "00000");
  EXPECT_EQ(NormaliseVersion("000"), "00000");
  EXPECT_EQ(NormaliseVersion("0.0"), "00000");
  EXPECT_EQ(NormaliseVersion(""), "00000");
  EXPECT_EQ(NormaliseVersion("0."), "00000");
}

TEST(NormaliseVersion, TextStartingWithNoDigitKeepsTheWholeText) {
  EXPECT_EQ(NormaliseVersion("abc"), "00000abc");
  EXPECT_EQ(NormaliseVersion("v0.37"), "00000v0.37");
  EXPECT_EQ(NormaliseVersion(" 37"), "00000 37");
  EXPECT_EQ(NormaliseVersion("0.b5"), "00000b5");
}

TEST(NormaliseVersion, QuestionMarkStays) {
  EXPECT_EQ(NormaliseVersion("?"), "?");
  EXPECT_EQ(NormaliseVersion("??"), "00000??");
}

TEST(NormaliseVersion, SuffixStartsAtTheFirstNonDigit) {
  EXPECT_EQ(NormaliseVersion("37.1"), "0.037.1");
  EXPECT_EQ(NormaliseVersion("0.139u3 (Aug 2010)"), "0.139u3 (Aug 2010)");
}

TEST(VersionIndex, SpellingsOfOneVersionShareOneEntry) {
  CodeTable table{""};
  EXPECT_EQ(VersionIndex(".37b5", table), 1);
  EXPECT_EQ(VersionIndex("0.37b5", table), 1);
  EXPECT_EQ(VersionIndex("37b5", table), 1);
  EXPECT_EQ(VersionIndex("129", table), 2);
  EXPECT_EQ(VersionIndex("0.129", table), 2);
  EXPECT_EQ(VersionIndex(".129", table), 2);
  EXPECT_EQ(table, (CodeTable{"", "0.037b5", "0.129"}));
}

TEST(VersionIndex, QuestionMarkIsStoredAsItIs) {
  CodeTable table{""};
  EXPECT_EQ(VersionIndex("?", table), 1);
  EXPECT_EQ(table, (CodeTable{"", "?"}));
}

TEST(VersionIndex, NewEntriesAreAppendedNotSortedIn) {
  CodeTable table{""};
  VersionIndex("129", table);
  VersionIndex("37", table);
  VersionIndex("100", table);
  EXPECT_EQ(table, (CodeTable{"", "0.129", "0.037", "0.100"}));
}

TEST(VersionIndex, MatchesExactlyWhateverTheCallerAsks) {
  CodeTable table{"", "0.037"};
  EXPECT_EQ(VersionIndex("37b5", table, false), 2);
  EXPECT_EQ(VersionIndex("37", table, false), 1);
}

TEST(FindVersion, ExactFirstMatch) {
  const CodeTable table{"", "0.037", "0.129", "0.037"};
  EXPECT_EQ(FindVersion("0.037", table), 1);
  EXPECT_EQ(FindVersion("0.129", table), 2);
  EXPECT_EQ(FindVersion("0.12", table), 0);
  EXPECT_EQ(FindVersion("0.13", table), 0);  // four characters: no box, just 0
}

}  // namespace
TEST(FastSplitViews, KeepsEmptyPiecesAndCopiesNothing) {
  std::vector<std::string_view> pieces;
  const std::string_view line = "a=\"\"b\"";
  FastSplitViews(line, pieces, '"');
  EXPECT_EQ(pieces, (std::vector<std::string_view>{"a=", "", "b", ""}));
  EXPECT_EQ(pieces[2].data(), line.data() + 4);  // a view into the line, not a copy
  FastSplitViews("none", pieces, '"');
  EXPECT_EQ(pieces, (std::vector<std::string_view>{"none"}));
  FastSplitViews("", pieces, ' ');
  EXPECT_EQ(pieces, (std::vector<std::string_view>{""}));
}

}  // namespace tessarin
