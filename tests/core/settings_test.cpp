#include "core/settings.h"

#include <gtest/gtest.h>

#include "core/log.h"
#include "core_test_support.h"

namespace tessarin {
namespace {

using testing::CrLfLines;
using testing::FolderEntries;
using testing::ReadFile;
using testing::TempFolder;
using testing::WriteFile;

class SettingsTest : public ::testing::Test {
 protected:
  TempFolder folder;
  Log log{folder.Path()};
  std::string infPath = folder / "Tessarin.inf";
  Settings settings{infPath, log};

  // Puts `content` on disk and loads it.
  void Load(std::string_view content) {
    WriteFile(infPath, content);
    settings.InfLoad();
  }
};

TEST_F(SettingsTest, MissingFileLeavesNoLinesAndReadsMinusOne) {
  settings.InfLoad();
  EXPECT_EQ(settings.SettingsLineCount(), 0);
  EXPECT_EQ(settings.InfRead("Language"), "-1");
  EXPECT_EQ(settings.InfRead(""), "-1");
  EXPECT_FALSE(std::filesystem::exists(infPath));
}

TEST_F(SettingsTest, EmptyFileReadsMinusOne) {
  Load("");
  EXPECT_EQ(settings.SettingsLineCount(), 0);
  EXPECT_EQ(settings.InfRead("Language"), "-1");
}

TEST_F(SettingsTest, LoadKeepsEveryLineFromOne) {
  Load("Language=1\r\nhand-written note\r\n\r\nRomPath=/roms/\r\n");
  ASSERT_EQ(settings.SettingsLineCount(), 4);
  const auto& lines = settings.SettingsLines();
  EXPECT_EQ(lines[1], "Language=1");
  EXPECT_EQ(lines[2], "hand-written note");
  EXPECT_EQ(lines[3], "");
  EXPECT_EQ(lines[4], "RomPath=/roms/");
}

TEST_F(SettingsTest, LoadAcceptsEveryLineEnd) {
  Load("A=1\nB=2\rC=3\r\nD=4");
  EXPECT_EQ(settings.SettingsLineCount(), 4);
  EXPECT_EQ(settings.InfRead("A"), "1");
  EXPECT_EQ(settings.InfRead("B"), "2");
  EXPECT_EQ(settings.InfRead("C"), "3");
  EXPECT_EQ(settings.InfRead("D"), "4");
}

TEST_F(SettingsTest, EmptyValueIsNotMinusOne) {
  Load("Frm7Path=\r\n");
  EXPECT_EQ(settings.InfRead("Frm7Path"), "");
}

TEST_F(SettingsTest, ValueIsEverythingBehindTheFirstEqualsUntrimmed) {
  Load("a=b=c\r\nFrm7Separateur= ; \r\n");
  EXPECT_EQ(settings.InfRead("a"), "b=c");
  EXPECT_EQ(settings.InfRead("Frm7Separateur"), " ; ");
}

TEST_F(SettingsTest, ReadIgnoresCase) {
  Load("Frm7Skin=Default_EN\r\n");
  EXPECT_EQ(settings.InfRead("frm7skin"), "Default_EN");
  EXPECT_EQ(settings.InfRead("FRM7SKIN"), "Default_EN");
}

TEST_F(SettingsTest, WriteAfterCaseBlindReadKeepsTheSpellingOfTheWrite) {
  Load("Language=1\r\nFrm7Skin=Default_EN\r\nRomPath=/roms/\r\n");
  EXPECT_EQ(settings.InfRead("frm7skin"), "Default_EN");
  settings.InfWrite("frm7skin", "Mine");
  EXPECT_EQ(ReadFile(infPath), "Language=1\r\nfrm7skin=Mine\r\nRomPath=/roms/\r\n");
  EXPECT_EQ(settings.InfRead("Frm7Skin"), "Mine");
}

TEST_F(SettingsTest, KeyIsMatchedAsAPrefix) {
  Load("DataFile12=/dats/catlist.ini\r\nDataFile1=/usr/games/mame\r\n");
  EXPECT_EQ(settings.InfRead("DataFile1"), "/dats/catlist.ini");
  EXPECT_EQ(settings.InfRead("DataFile12"), "/dats/catlist.ini");
  // Both spellings are one key.
  EXPECT_EQ(settings.InfRead("Datafile1"), "/dats/catlist.ini");
}

TEST_F(SettingsTest, ReadPassesOverAPrefixLineWithoutEquals) {
  Load("DataFile1x\r\nDataFile1=/usr/games/mame\r\n");
  EXPECT_EQ(settings.InfRead("DataFile1"), "/usr/games/mame");
}

TEST_F(SettingsTest, LinesWithoutEqualsNeverMatchARead) {
  Load("Language\r\n");
  EXPECT_EQ(settings.InfRead("Language"), "-1");
}

TEST_F(SettingsTest, ReadNeedsTheWholeKeyAtTheLineStart) {
  Load("Lang=1\r\n xLanguage=2\r\n");
  EXPECT_EQ(settings.InfRead("Language"), "-1");
}

TEST_F(SettingsTest, FirstWriteCreatesTheFile) {
  settings.InfLoad();
  settings.InfWrite("Language", 1);
  EXPECT_EQ(ReadFile(infPath), "Language=1\r\n");
  EXPECT_EQ(settings.SettingsLineCount(), 1);
  EXPECT_EQ(settings.SettingsLines()[1], "Language=1");
  EXPECT_EQ(settings.InfRead("Language"), "1");
}

TEST_F(SettingsTest, LinesKeepTheOrderOfFirstWriting) {
  settings.InfWrite("MDIState", 2);
  settings.InfWrite("Form1Top", 120);
  settings.InfWrite("Form1Left", -40);
  settings.InfWrite("MDIState", 0);
  EXPECT_EQ(ReadFile(infPath), "MDIState=0\r\nForm1Top=120\r\nForm1Left=-40\r\n");
  EXPECT_EQ(settings.SettingsLineCount(), 3);
}

TEST_F(SettingsTest, NumbersAreWrittenInPlainDecimal) {
  settings.InfWrite("Big", 1234567890123LL);
  settings.InfWrite("Zero", 0);
  EXPECT_EQ(ReadFile(infPath), "Big=1234567890123\r\nZero=0\r\n");
}

TEST_F(SettingsTest, WriteReplacesTheFirstPrefixLineEvenWithoutEquals) {
  Load("DataFile12=/dats/catlist.ini\r\nDataFile1=/old\r\n");
  settings.InfWrite("DataFile1", "/usr/games/mame");
  EXPECT_EQ(ReadFile(infPath), "DataFile1=/usr/games/mame\r\nDataFile1=/old\r\n");

  Load("RomPathNote\r\nRomPath=/old/\r\n");
  settings.InfWrite("RomPath", "/roms/");
  EXPECT_EQ(ReadFile(infPath), "RomPath=/roms/\r\nRomPath=/old/\r\n");
}

TEST_F(SettingsTest, HandWrittenLinesSurviveWrites) {
  Load("# my own note\r\nLanguage=1\r\n\r\nsome words = not a key of ours\r\n");
  settings.InfWrite("Language", 0);
  settings.InfWrite("RomPath", "/roms/");
  EXPECT_EQ(ReadFile(infPath),
            "# my own note\r\nLanguage=0\r\n\r\nsome words = not a key of ours\r\n"
            "RomPath=/roms/\r\n");
  EXPECT_EQ(settings.SettingsLineCount(), 5);
}

TEST_F(SettingsTest, WriteStartsFromTheFileOnDisk) {
  Load("Language=1\r\n");
  // Someone edits the file behind the program's back; the write must not undo that.
  WriteFile(infPath, "Language=1\r\nRomPath=/edited/\r\n");
  settings.InfWrite("Frm7Skin", "x");
  EXPECT_EQ(ReadFile(infPath), "Language=1\r\nRomPath=/edited/\r\nFrm7Skin=x\r\n");
  // The memory copy is rebuilt from what was written.
  EXPECT_EQ(settings.InfRead("RomPath"), "/edited/");
  EXPECT_EQ(settings.SettingsLineCount(), 3);
}

TEST_F(SettingsTest, WriteAfterTheFileWasDeletedStartsAfresh) {
  Load("Language=1\r\nRomPath=/roms/\r\n");
  std::filesystem::remove(infPath);
  settings.InfWrite("Frm7Skin", "x");
  EXPECT_EQ(ReadFile(infPath), "Frm7Skin=x\r\n");
  EXPECT_EQ(settings.InfRead("RomPath"), "-1");
}

TEST_F(SettingsTest, WrittenFileUsesCrLfOnly) {
  Load("A=1\nB=2\rC=3");
  settings.InfWrite("D", "4");
  const std::string content = ReadFile(infPath);
  EXPECT_EQ(content, "A=1\r\nB=2\r\nC=3\r\nD=4\r\n");
  EXPECT_EQ(CrLfLines(content).size(), 4u);
}

TEST_F(SettingsTest, RewriteLeavesNoTemporaryFileBehind) {
  settings.InfWrite("A", "1");
  settings.InfWrite("B", "2");
  settings.InfWrite("A", "3");
  EXPECT_EQ(FolderEntries(folder.Path()), std::vector<std::string>{"Tessarin.inf"});
}

TEST_F(SettingsTest, RewriteReplacesTheFileAsAWhole) {
  Load("A=1\r\n");
  // A hard link sees the old content when the file is replaced by a new one (renamed over it)
  // and the new content when it is rewritten in place.
  const std::string linkPath = folder / "old-copy";
  std::filesystem::create_hard_link(infPath, linkPath);
  settings.InfWrite("A", "2");
  EXPECT_EQ(ReadFile(infPath), "A=2\r\n");
  EXPECT_EQ(ReadFile(linkPath), "A=1\r\n");
}

TEST_F(SettingsTest, BinaryBytesInValuesSurvive) {
  const std::string value = "C:\\Jeux\\\xe9t\xe9 \t; x";
  settings.InfWrite("Frm7Path", value);
  Settings again(infPath, log);
  again.InfLoad();
  EXPECT_EQ(again.InfRead("Frm7Path"), value);
}

TEST_F(SettingsTest, ANewSettingsObjectReadsWhatWasWritten) {
  settings.InfWrite("Language", 0);
  settings.InfWrite("LngFile", "German.lng");
  Settings again(infPath, log);
  again.InfLoad();
  EXPECT_EQ(again.InfRead("Language"), "0");
  EXPECT_EQ(again.InfRead("LngFile"), "German.lng");
  EXPECT_EQ(log.BugCount(), 0);
}

TEST_F(SettingsTest, NumberReadsParseTheLeadingNumber) {
  Load("Top=120\r\nLeft=-35\r\nSize=9.6\r\nText=abc\r\nMixed=12px\r\nEmpty=\r\nMinus=-1\r\n");
  EXPECT_EQ(settings.InfReadNumber("Top"), 120);
  EXPECT_EQ(settings.InfReadNumber("Left"), -35);
  EXPECT_EQ(settings.InfReadNumber("Size"), 10);
  EXPECT_EQ(settings.InfReadNumber("Text"), 0);
  EXPECT_EQ(settings.InfReadNumber("Mixed"), 12);
  EXPECT_EQ(settings.InfReadNumber("Empty"), 0);
  EXPECT_EQ(settings.InfReadNumber("Minus"), -1);
  EXPECT_EQ(settings.InfReadNumber("Missing"), -1);
}

TEST(ParseLeadingNumberTest, RoundsHalvesToEven) {
  EXPECT_EQ(ParseLeadingNumber("2.5"), 2);
  EXPECT_EQ(ParseLeadingNumber("3.5"), 4);
  EXPECT_EQ(ParseLeadingNumber("-2.5"), -2);
  EXPECT_EQ(ParseLeadingNumber("2.51"), 3);
  EXPECT_EQ(ParseLeadingNumber("  7 "), 7);
  EXPECT_EQ(ParseLeadingNumber("+8"), 8);
  EXPECT_EQ(ParseLeadingNumber(""), 0);
  EXPECT_EQ(ParseLeadingNumber("-"), 0);
  EXPECT_EQ(ParseLeadingNumber("x1"), 0);
}

TEST_F(SettingsTest, ReadOrEmptyTurnsMinusOneIntoEmpty) {
  Load("RomPath=/roms/\r\nOdd=-1\r\n");
  EXPECT_EQ(settings.InfReadOrEmpty("RomPath"), "/roms/");
  EXPECT_EQ(settings.InfReadOrEmpty("SnapPath"), "");
  EXPECT_EQ(settings.InfReadOrEmpty("Odd"), "");
}

}  // namespace
}  // namespace tessarin
