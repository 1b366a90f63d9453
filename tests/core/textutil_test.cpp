#include "core/textutil.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/fileservices.h"
#include "core_test_support.h"

namespace tessarin {
namespace {

using testing::TempFolder;
using testing::WriteFile;

TEST(TextUtil, TrimBlanksTakesSpacesOnly) {
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks("\ta\r\n"), "\ta\r\n");
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(TrimWhite(" \t a b \r\n"), "a b");
  EXPECT_EQ(TrimWhite("\r\n"), "");
}

TEST(TextUtil, AsciiCaseKeepsOtherBytes) {
  const std::string accented = "\xC3\x89t\xC3\xA9 ABC";  // "Été ABC" in UTF-8
  EXPECT_EQ(LowerCopy(accented), "\xC3\x89t\xC3\xA9 abc");
  EXPECT_EQ(UpperCopy("pac-Man 2"), "PAC-MAN 2");
  EXPECT_TRUE(EqualsNoCase("Tessarin.LOG.txt", "tessarin.log.TXT"));
  EXPECT_FALSE(EqualsNoCase("abc", "abcd"));
  EXPECT_TRUE(StartsWithNoCase("DataFile12=x", "datafile1"));
  EXPECT_TRUE(EndsWithNoCase("PACMAN.ZIP", ".zip"));
  EXPECT_FALSE(EndsWithNoCase("zip", ".zip"));
  EXPECT_TRUE(WildcardMatch("*.PNG", "snap.png"));
  EXPECT_TRUE(WildcardMatch("pac?an*", "PACMAN.zip"));
  EXPECT_FALSE(WildcardMatch("*.png", "snap.png.txt"));
}

TEST(TextUtil, FirstCharacterTakesAWholeUtf8Sequence) {
  EXPECT_EQ(FirstCharacter(""), "");
  EXPECT_EQ(FirstCharacter("ab"), "a");
  EXPECT_EQ(FirstCharacter("\xC3\xA9t\xC3\xA9"), "\xC3\xA9");
  EXPECT_EQ(FirstCharacter("\xE2\x82\xAC!"), "\xE2\x82\xAC");
  EXPECT_EQ(FirstCharacter("\xF0\x9F\x98\x80"), "\xF0\x9F\x98\x80");
  // Not UTF-8: one byte, as an older single-byte setting holds it.
  EXPECT_EQ(FirstCharacter("\xE9t\xE9"), "\xE9");
  EXPECT_EQ(FirstCharacter("\xC3"), "\xC3");
  EXPECT_EQ(FirstCharacter("\xE2\x82"), "\xE2");
}

TEST(TextUtil, SplitKeepsEmptyPiecesAndEveryLineEnd) {
  EXPECT_EQ(Split("a;;b;", ';'), (std::vector<std::string_view>{"a", "", "b", ""}));
  EXPECT_EQ(Split("", ';'), (std::vector<std::string_view>{""}));
  EXPECT_EQ(SplitLines("a\r\nb\nc\rd\r\n"), (std::vector<std::string_view>{"a", "b", "c", "d"}));
  EXPECT_EQ(SplitLines("a\r\r\nb"), (std::vector<std::string_view>{"a", "", "b"}));
  EXPECT_TRUE(SplitLines("").empty());
}

TEST(TextUtil, FinalSeparatorsGoButARootKeepsItsOwn) {
  EXPECT_EQ(CutFinalSeparator("/data/roms//"), "/data/roms");
  EXPECT_EQ(CutFinalSeparator("C:\\mame\\"), "C:\\mame");
  EXPECT_EQ(CutFinalSeparator("/"), "/");
  EXPECT_EQ(CutFinalSeparator("C:\\"), "C:\\");
}

#ifndef _WIN32
// The one rule for '\': a path from a settings file or a job text may hold it between folders;
// every path helper of the program reads it as '/'.
TEST(TextUtil, BackslashesOfAPathTextAreSeparators) {
  EXPECT_EQ(PathFromText("roms\\neogeo\\kof98.zip"),
            std::filesystem::path("roms/neogeo/kof98.zip"));
  EXPECT_EQ(FsPath("roms\\neogeo"), PathFromText("roms/neogeo"));
  TempFolder folder;
  std::filesystem::create_directories(folder / "sub");
  WriteFile(folder / "sub/file.txt", "x");
  EXPECT_TRUE(FileExists(folder.Path() + "\\sub\\file.txt"));
  EXPECT_TRUE(FolderExists(folder.Path() + "\\sub\\"));
  EXPECT_EQ(TextFromPath(PathFromText("\xC3\xA9t\xC3\xA9/a")), "\xC3\xA9t\xC3\xA9/a");
}
#endif

}  // namespace
}  // namespace tessarin
