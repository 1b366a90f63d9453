// The DAT export's pieces: the default mask, the head values, the mask's parts, and the filling
// of game, rom and disk lines.

#include "lists/datexport.h"

#include <gtest/gtest.h>

#include "liststestsupport.h"
#include "store/gamerecord.h"

namespace tessarin {
namespace {

using liststest::ListsFixture;
using liststest::ReadFile;
using liststest::TestHome;

TEST(DefaultDatMask, IsTheDocumentedTextByteForByte) {
  EXPECT_EQ(DefaultDatMask("M.A.M.E. v0.123 (Feb  5 2008)"),
            ReadFile(ListsFixture("dat_mask_0123.dat")));
}

TEST(DefaultDatMask, CreateWritesItIntoTheApplicationFolder) {
  TestHome home;
  home.ctx.store.DatabaseVersion = "M.A.M.E. v0.123 (Feb  5 2008)";
  ASSERT_TRUE(CreateDefaultDatMask(home.ctx));
  EXPECT_EQ(ReadFile(home.Path("dat_mask.dat")), ReadFile(ListsFixture("dat_mask_0123.dat")));
}

TEST(DatMaskVersions, FromAnOldVersionLine) {
  const DatMaskVersions v = DatMaskVersionsOf("M.A.M.E. v0.123 (Feb  5 2008)");
  EXPECT_EQ(v.a, "M.A.M.E. v0.123");
  EXPECT_EQ(v.b, "200825");
  EXPECT_EQ(v.c, "0.123 (Feb  5 2008)");
}

TEST(DatMaskVersions, FromTodaysVersionLine) {
  // No date in the brackets: the zero date; C starts at the 11th character whatever it is.
  const DatMaskVersions v = DatMaskVersionsOf("MAME v0.251 (unknown)");
  EXPECT_EQ(v.a, "MAME v0.251");
  EXPECT_EQ(v.b, "18991230");
  EXPECT_EQ(v.c, "1 (unknown)");
}

TEST(DatMaskVersions, WithoutBrackets) {
  const DatMaskVersions v = DatMaskVersionsOf("MAME v0.100 ");
  EXPECT_EQ(v.a, "MAME v0.100 ");
  EXPECT_EQ(v.b, "20080205");
  EXPECT_EQ(v.c, "0 ");
  const DatMaskVersions empty = DatMaskVersionsOf("");
  EXPECT_EQ(empty.a, "");
  EXPECT_EQ(empty.b, "20080205");
  EXPECT_EQ(empty.c, "");
  // Only an opening bracket: still the fixed date.
  EXPECT_EQ(DatMaskVersionsOf("MAME v0.100 (Dec 24 2005").b, "20080205");
}

TEST(DatMaskVersions, DateForms) {
  EXPECT_EQ(DatMaskVersionsOf("X (5 Feb 2008)").b, "200825");
  EXPECT_EQ(DatMaskVersionsOf("X (February 5, 2008)").b, "200825");
  EXPECT_EQ(DatMaskVersionsOf("X (2008-12-05)").b, "2008125");
  EXPECT_EQ(DatMaskVersionsOf("X ( 12/24/2005 )").b, "20051224");
  EXPECT_EQ(DatMaskVersionsOf("X (Feb 30 2008)").b, "18991230");
  EXPECT_EQ(DatMaskVersionsOf("X (Debian 0.251+dfsg.1-1)").b, "18991230");
  // The text between the first "(" and the next ")".
  EXPECT_EQ(DatMaskVersionsOf("X (Mar 1 2001) (Jan 2 2002)").b, "200131");
}

TEST(ParseDatMask, CommentsHeadAndBlock) {
  const DatMask mask = ParseDatMask(
      "; comment\r\n #start_head here\r\nclrmamepro (\r\n\tname x\r\n)\r\n   #End_Head\r\n"
      "game (\r\n\trom ( #rom_name )\r\n; comment\r\n\tdisk( #disk_name )\r\n)\r\n");
  EXPECT_TRUE(mask.hasStart);
  EXPECT_EQ(mask.head, (std::vector<std::string>{"clrmamepro (", "\tname x", ")"}));
  EXPECT_EQ(mask.gameLines, (std::vector<std::string>{"game (", "\trom ( #rom_name )", "; comment",
                                                      "\tdisk( #disk_name )", ")"}));
  EXPECT_EQ(mask.romLine, 1);
  EXPECT_EQ(mask.diskLine, 3);
}

TEST(ParseDatMask, TheLastRomLineCountsAndTheSearchIsCaseSensitive) {
  const DatMask mask =
      ParseDatMask("#START_HEAD\n#END_HEAD\nrom(a)\nROM (b)\nx rom (c)\nDISK (d)\n");
  EXPECT_EQ(mask.romLine, 2);
  EXPECT_EQ(mask.diskLine, -1);
}

TEST(ParseDatMask, WithoutStartOrEnd) {
  EXPECT_FALSE(ParseDatMask("game (\r\n)\r\n").hasStart);
  const DatMask noEnd = ParseDatMask("#START_HEAD\r\na\r\nrom ( #rom_name )\r\n");
  EXPECT_TRUE(noEnd.hasStart);
  EXPECT_EQ(noEnd.head.size(), 2u);
  EXPECT_TRUE(noEnd.gameLines.empty());
  EXPECT_EQ(noEnd.romLine, -1);
}

DatGameValues Game() {
  DatGameValues g;
  g.name = "mygame";
  g.description = "My Game (World)";
  g.year = "1980";
  g.manufacturer = "Acme";
  g.sourcefile = "mygame.c";
  return g;
}

TEST(FillDatGameLine, FlagsFilledOrLinesDropped) {
  std::string line;
  const DatGameValues g = Game();
  ASSERT_TRUE(FillDatGameLine("\t#name", g, line));
  EXPECT_EQ(line, "\tname mygame");
  ASSERT_TRUE(FillDatGameLine("\t#description", g, line));
  EXPECT_EQ(line, "\tdescription \"My Game (World)\"");
  ASSERT_TRUE(FillDatGameLine("\t#manufacturer", g, line));
  EXPECT_EQ(line, "\tmanufacturer \"Acme\"");
  ASSERT_TRUE(FillDatGameLine("\t#sourcefile", g, line));
  EXPECT_EQ(line, "\tsourcefile mygame.c");
  EXPECT_FALSE(FillDatGameLine("\t#cloneof", g, line));
  EXPECT_FALSE(FillDatGameLine("\t#romof", g, line));
  EXPECT_FALSE(FillDatGameLine("\t#sampleof", g, line));
  EXPECT_FALSE(FillDatGameLine("\t#sample", g, line));
  // A line without flags is always written, and so is a comment.
  ASSERT_TRUE(FillDatGameLine("game (", g, line));
  EXPECT_EQ(line, "game (");
  ASSERT_TRUE(FillDatGameLine("; comment", g, line));
  // Partly filled: written with what it has.
  ASSERT_TRUE(FillDatGameLine("\t#year #cloneof", g, line));
  EXPECT_EQ(line, "\tyear 1980 #cloneof");
  // An empty description keeps its quotes.
  DatGameValues empty = g;
  empty.description = "";
  ASSERT_TRUE(FillDatGameLine("\t#description", empty, line));
  EXPECT_EQ(line, "\tdescription \"\"");
}

TEST(FillDatGameLine, CloneAndSamples) {
  std::string line;
  DatGameValues g = Game();
  g.cloneof = "parent";
  g.romof = "parent";
  g.sample = "mysamples";
  ASSERT_TRUE(FillDatGameLine("\t#cloneof", g, line));
  EXPECT_EQ(line, "\tcloneof parent");
  ASSERT_TRUE(FillDatGameLine("\t#romof", g, line));
  EXPECT_EQ(line, "\tromof parent");
  ASSERT_TRUE(FillDatGameLine("\t#sample", g, line));
  EXPECT_EQ(line, "\tmysamples");
  // An empty sample-of flag is met by the sample flag: the letters "of" stay behind.
  ASSERT_TRUE(FillDatGameLine("\t#sampleof", g, line));
  EXPECT_EQ(line, "\tmysamplesof");
  g.sampleof = "other";
  ASSERT_TRUE(FillDatGameLine("\t#sampleof", g, line));
  EXPECT_EQ(line, "\tother");
}

TEST(FillDatGameLine, BiosGenreInAnyCaseMakesAResource) {
  std::string line;
  DatGameValues g = Game();
  g.genre = "bios";
  ASSERT_TRUE(FillDatGameLine("game (", g, line));
  EXPECT_EQ(line, "resource (");
  ASSERT_TRUE(FillDatGameLine("game(", g, line));
  EXPECT_EQ(line, "resource(");
  g.genre = "Bios";
  ASSERT_TRUE(FillDatGameLine("game (", g, line));
  EXPECT_EQ(line, "resource (");
  g.genre = "Bios games";
  ASSERT_TRUE(FillDatGameLine("game (", g, line));
  EXPECT_EQ(line, "game (");
}

constexpr const char* kRomMask =
    "\trom ( #rom_name #rom_merge #rom_size #rom_crc #rom_sha1 #rom_flags )";
constexpr const char* kDiskMask = "\tdisk ( #disk_name #disk_merge #disk_sha1 #disk_flags )";

TEST(FillDatRomLine, WorkedExamples) {
  EXPECT_EQ(FillDatRomLine(kRomMask,
                           "game.6e;4096;0123abcd;0123456789abcdef0123456789abcdef01234567;"
                           "maincpu;0;;;;"),
            "\trom ( name game.6e size 4096 crc 0123abcd sha1 "
            "0123456789abcdef0123456789abcdef01234567 )");
  EXPECT_EQ(FillDatRomLine(kRomMask, "a.bin;4096;0123abcd;0123;maincpu;0;;b.bin;baddump;"),
            "\trom ( name a.bin merge b.bin size 4096 crc 0123abcd sha1 0123 flags baddump )");
}

TEST(FillDatRomLine, EmptyValuesGoWithTheirBlankButNotAtTheEnd) {
  EXPECT_EQ(FillDatRomLine(kRomMask, "n.bin;1024;;;r;0;;;nodump;"),
            "\trom ( name n.bin size 1024 flags nodump )");
  EXPECT_EQ(FillDatRomLine("rom ( #rom_name #rom_crc", "n.bin;1024;;;r;0;;;;"),
            "rom ( name n.bin #rom_crc");
  // A short item: the pieces that aren't there are empty.
  EXPECT_EQ(FillDatRomLine(kRomMask, "x"), "\trom ( name x )");
}

TEST(FillDatDiskLine, PiecesOfTheDiskItem) {
  EXPECT_EQ(FillDatDiskLine(kDiskMask, "hdd;;0123sha;parenthdd;disks;0;baddump"),
            "\tdisk ( name hdd merge parenthdd sha1 0123sha flags baddump )");
  EXPECT_EQ(FillDatDiskLine(kDiskMask, "hdd;;0123sha;;disks;0;"),
            "\tdisk ( name hdd sha1 0123sha )");
}

TEST(AppendDatGame, WorkedExampleWithTheDefaultMask) {
  const DatMask mask = ParseDatMask(DefaultDatMask("MAME v0.251 (unknown)"));
  ASSERT_TRUE(mask.hasStart);
  DatGameValues g = Game();
  const std::vector<std::string> roms = {
      "", "game.6e;4096;0123abcd;0123456789abcdef0123456789abcdef01234567;maincpu;0;;;;"};
  const std::vector<std::string> disks = {""};
  g.roms = &roms;
  g.disks = &disks;
  std::string out;
  AppendDatGame(out, mask, g);
  EXPECT_EQ(out,
            "game (\r\n"
            "\tname mygame\r\n"
            "\tdescription \"My Game (World)\"\r\n"
            "\tyear 1980\r\n"
            "\tmanufacturer \"Acme\"\r\n"
            "\tsourcefile mygame.c\r\n"
            "\trom ( name game.6e size 4096 crc 0123abcd sha1 "
            "0123456789abcdef0123456789abcdef01234567 )\r\n"
            ")\r\n");
}

TEST(AppendDatGame, EveryRomAndDiskAndACommentPerGame) {
  const DatMask mask = ParseDatMask(
      "#START_HEAD\r\n#END_HEAD\r\ngame (\r\n; comment\r\n\trom ( #rom_name )\r\n"
      "\tdisk ( #disk_name )\r\n)\r\n");
  DatGameValues g = Game();
  const std::vector<std::string> roms = {"", "a;1;;;;;;;;", "b;1;;;;;;;;"};
  const std::vector<std::string> disks = {"", "d1;;;;;;", "d2;;;;;;"};
  g.roms = &roms;
  g.disks = &disks;
  std::string out;
  AppendDatGame(out, mask, g);
  EXPECT_EQ(out,
            "game (\r\n; comment\r\n\trom ( name a )\r\n\trom ( name b )\r\n\tdisk ( name d1 )\r\n"
            "\tdisk ( name d2 )\r\n)\r\n");
}

}  // namespace
}  // namespace tessarin
