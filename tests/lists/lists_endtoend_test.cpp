// Text lists and DAT exports of a small database built from a game list of our own, through the
// routines the dialog and the command line run.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "builder/databaseops.h"
#include "core/settings.h"
#include "core/work.h"
#include "lists/datexport.h"
#include "lists/textlists.h"
#include "liststestsupport.h"
#include "store/gamerecord.h"

namespace tessarin {
namespace {

using liststest::ListsFixture;
using liststest::ReadFile;
using liststest::TestHome;
using liststest::WriteFile;

// A home with the database of games.xml (six games and a device), genres from genre.ini.
class BuiltHome : public ::testing::Test {
 protected:
  void SetUp() override {
    home.ctx.settings.InfWrite("DataFile1", home.Path("no-emulator"));
    home.ctx.settings.InfWrite("DataFile14", ListsFixture("genre.ini"));
    Work work;
    ASSERT_TRUE(CreateDatabase(home.ctx, work, ListsFixture("games.xml")));
    ASSERT_EQ(home.ctx.store.GameCount(), 6);
  }

  ListSelection Select(std::initializer_list<const char*> names) {
    ListSelection selected{};
    for (const char* name : names) {
      const int index = FindListField(name);
      EXPECT_GE(index, 0) << name;
      if (index >= 0) selected[static_cast<size_t>(index)] = true;
    }
    return selected;
  }

  std::string BuildList(const ListSelection& selected, TextListFormat format,
                        const std::string& ini = {}, ListRunResult expected = ListRunResult::Done) {
    TextListRequest request;
    request.format = std::move(format);
    request.selected = selected;
    request.iniFile = ini;
    request.outputPath = home.Path("out.txt");
    Work work;
    EXPECT_EQ(BuildTextList(home.ctx, work, request), expected);
    return ReadFile(request.outputPath);
  }

  TestHome home;
};

TEST_F(BuiltHome, FirstWorkedExample) {
  const std::string list =
      BuildList(Select({"RomName", "GameName", "Year", "Cheat"}), TextListFormat{";", "\"", false});
  EXPECT_EQ(list.substr(0, list.find("\r\n") + 2),
            "\"RomName\";\"GameName\";\"Year\";\"Cheat\";\r\n");
  EXPECT_NE(list.find("\r\n\"mygame\";\"My Game (World)\";\"1980\";\"False\"\r\n"),
            std::string::npos)
      << list;
}

TEST_F(BuiltHome, SecondWorkedExampleInTableOrder) {
  // The chips give one column per piece; the columns come in the table's order.
  const std::string list = BuildList(Select({"RomName", "GameName", "Year", "Cheat", "Chip"}),
                                     TextListFormat{",", "", false});
  EXPECT_EQ(list.substr(0, list.find("\r\n") + 2), "RomName,GameName,Year,Chip,Cheat,\r\n");
  EXPECT_NE(list.find("\r\nmygame,My Game (World),1980,cpu,cpu0,1000000,audio,speaker,,False\r\n"),
            std::string::npos)
      << list;
  // With the chips last, the empty last piece leaves one of its two separators.
  const std::string chipsLast =
      BuildList(Select({"RomName", "Chip"}), TextListFormat{",", "", false});
  EXPECT_NE(chipsLast.find("\r\nmygame,cpu,cpu0,1000000,audio,speaker,\r\n"), std::string::npos)
      << chipsLast;
}

TEST_F(BuiltHome, EveryGameInDatabaseOrderWithFlagsAndLists) {
  const std::string list = BuildList(
      Select({"RomName", "Genre", "Rom", "GotIt", "Runnable", "History", "Disk", "BiosSet"}),
      TextListFormat{"\t", "", false});
  // Columns in the table's order: GotIt (31), History (35), Runnable (43).
  const std::string expected =
      "RomName\tGenre\tRom\tGotIt\tHistory\tRunnable\tDisk\tBiosSet\t\r\n"
      "mygame\tMaze\tgame.6e\t4096\t0123abcd\t0123456789abcdef0123456789abcdef01234567\tmaincpu\t0"
      "\t\t\t\t\tFalse\tFalse\tTrue\r\n"
      "myclone\tMaze\ta.bin\t4096\t0123abcd\t0123000000000000000000000000000000000000\tmaincpu\t0"
      "\t\tb.bin\tbaddump\t\tn.bin\t1024\t\t\tgfx\t0\t\t\tnodump\t\tFalse\tFalse\tTrue\r\n"
      // The second bios set has no default: its empty last piece leaves one separator.
      "mybios\tBIOS\tbios1.bin\t65536\t11111111\t1111111111111111111111111111111111111111\tbios\t0"
      "\tv1\t\t\t\tFalse\tFalse\tTrue\tv1\tVersion 1\tyes\tv2\tVersion 2\t\r\n"
      "diskgame\t\tFalse\tFalse\tTrue\thdd\t\t2222222222222222222222222222222222222222\t\tdisks\t0"
      "\t\r\n"
      // No attribute in the block: not runnable.
      "longname\t\tFalse\tFalse\tFalse\r\n"
      "longname9\t\tFalse\tFalse\tFalse\r\n";
  EXPECT_EQ(list, expected);
}

TEST_F(BuiltHome, IniFileInItsOrderWithNamesCutToEight) {
  const std::string list = BuildList(Select({"RomName", "Year"}), TextListFormat{";", "", false},
                                     "  " + ListsFixture("names.ini") + " ");
  // Sections skipped; "mygame=1" and "notthere" not found; "longname9" cut to "longname";
  // file order; a name twice is written twice.
  EXPECT_EQ(list,
            "RomName;Year;\r\n"
            "diskgame;1995\r\n"
            "longname;1982\r\n"
            "mygame;1980\r\n"
            "diskgame;1995\r\n");
}

TEST_F(BuiltHome, IniProgressCountsLineLengthsWithoutLineEnds) {
  TextListRequest request;
  request.format = TextListFormat{";", "", false};
  request.selected[0] = true;
  request.iniFile = ListsFixture("names.ini");
  request.outputPath = home.Path("p.txt");
  Work work;
  ASSERT_EQ(BuildTextList(home.ctx, work, request), ListRunResult::Done);
  const std::string ini = ReadFile(ListsFixture("names.ini"));
  long long lineEnds = 0;
  for (const char c : ini) lineEnds += (c == '\r' || c == '\n') ? 1 : 0;
  EXPECT_EQ(work.ProgressMax.load(), static_cast<long long>(ini.size()));
  EXPECT_EQ(work.ProgressValue.load(), static_cast<long long>(ini.size()) - lineEnds);
}

TEST_F(BuiltHome, ANameHoldingTheSeparatorIsWrittenAsItStands) {
  const std::string list =
      BuildList(Select({"RomName", "GameName"}), TextListFormat{",", "", false});
  EXPECT_NE(list.find("\r\nmyclone,My Game, The Clone\r\n"), std::string::npos) << list;
}

TEST_F(BuiltHome, MissingIniFileGivesEveryGame) {
  const std::string list =
      BuildList(Select({"RomName"}), TextListFormat{" ", "", false}, home.Path("missing.ini"));
  EXPECT_EQ(list,
            "RomName \r\nmygame\r\nmyclone\r\nmybios\r\ndiskgame\r\nlongname\r\nlongname9\r\n");
}

TEST_F(BuiltHome, IniFileWithoutAMatchGivesTheHeaderAlone) {
  WriteFile(home.Path("none.ini"), "[ROOT_FOLDER]\r\nnothing\r\n");
  EXPECT_EQ(BuildList(Select({"RomName"}), TextListFormat{";", "", false}, home.Path("none.ini")),
            "RomName;\r\n");
}

TEST_F(BuiltHome, ACancelKeepsWhatWasWritten) {
  TextListRequest request;
  request.format = TextListFormat{";", "", false};
  request.selected = Select({"RomName"});
  request.outputPath = home.Path("cancelled.txt");
  Work work;
  work.CancelRequested = true;
  EXPECT_EQ(BuildTextList(home.ctx, work, request), ListRunResult::Cancelled);
  EXPECT_EQ(ReadFile(request.outputPath), "RomName;\r\n");
  EXPECT_EQ(work.ProgressMax.load(), 6);
}

TEST_F(BuiltHome, CsvHasAMarkAHeaderWithoutSeparatorAndQuotedCells) {
  const std::string list =
      BuildList(Select({"RomName", "GameName", "Chip"}), TextListFormat{",", "", true});
  EXPECT_EQ(list.substr(0, 3), "\xEF\xBB\xBF");
  EXPECT_NE(list.find("\xEF\xBB\xBFRomName,GameName,Chip\r\n"), std::string::npos);
  EXPECT_NE(list.find("\r\nmygame,My Game (World),cpu,cpu0,1000000,audio,speaker,\r\n"),
            std::string::npos)
      << list;
  EXPECT_NE(list.find("\r\nmyclone,\"My Game, The Clone\"\r\n"), std::string::npos) << list;
}

TEST(TextListEmptyDatabase, GivesTheHeaderAlone) {
  TestHome home;
  TextListRequest request;
  request.format = TextListFormat{";", "\"", false};
  request.selected[0] = true;
  request.outputPath = home.Path("empty.txt");
  Work work;
  EXPECT_EQ(BuildTextList(home.ctx, work, request), ListRunResult::Done);
  EXPECT_EQ(ReadFile(request.outputPath), "\"RomName\";\r\n");
}

TEST(TextListFailures, AFileThatCantBeCreatedIsLogged) {
  TestHome home;
  TextListRequest request;
  request.selected[0] = true;
  request.outputPath = home.Path("no/such/folder/list.txt");
  Work work;
  EXPECT_EQ(BuildTextList(home.ctx, work, request), ListRunResult::Failed);
  EXPECT_EQ(home.ctx.log.BugCount(), 1);
}

// ---- the DAT export ----

constexpr const char* kMyGameBlock =
    "game (\r\n"
    "\tname mygame\r\n"
    "\tdescription \"My Game (World)\"\r\n"
    "\tyear 1980\r\n"
    "\tmanufacturer \"Acme\"\r\n"
    "\tsourcefile mygame.c\r\n"
    "\trom ( name game.6e size 4096 crc 0123abcd sha1 0123456789abcdef0123456789abcdef01234567 )"
    "\r\n"
    ")\r\n";

TEST_F(BuiltHome, DatWithTheDefaultMask) {
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, "", home.Path("out.dat")), DatExportResult::Done);
  const std::string mask = ReadFile(home.Path("dat_mask.dat"));
  EXPECT_EQ(mask, DefaultDatMask(home.ctx.store.DatabaseVersion));
  const std::string dat = ReadFile(home.Path("out.dat"));
  const DatMask parsed = ParseDatMask(mask);
  std::string head;
  for (const std::string& line : parsed.head) head += line + "\r\n";
  // The head, then the empty line its write adds, then the games in database order.
  ASSERT_EQ(dat.substr(0, head.size() + 2), head + "\r\n");
  const std::string games = dat.substr(head.size() + 2);
  EXPECT_EQ(games.substr(0, std::string(kMyGameBlock).size()), kMyGameBlock);
  EXPECT_NE(games.find("game (\r\n\tname myclone\r\n\tdescription \"My Game, The Clone\"\r\n"
                       "\tyear 1981\r\n\tmanufacturer \"Acme\"\r\n\tsourcefile mygame.c\r\n"
                       "\tcloneof mygame\r\n"
                       "\trom ( name a.bin merge b.bin size 4096 crc 0123abcd sha1 "
                       "0123000000000000000000000000000000000000 flags baddump )\r\n"
                       "\trom ( name n.bin size 1024 flags nodump )\r\n)\r\n"),
            std::string::npos)
      << games;
  // The bios genre makes a resource; the disk and the sample have their lines, and the empty
  // sample-of flag is met by the sample flag.
  EXPECT_NE(games.find("resource (\r\n\tname mybios\r\n"), std::string::npos) << games;
  EXPECT_NE(games.find("\tdisk ( name hdd sha1 2222222222222222222222222222222222222222 )\r\n"
                       "\tboomof\r\n\tboom\r\n)\r\n"),
            std::string::npos)
      << games;
  EXPECT_EQ(games.find("#"), std::string::npos) << games;
  size_t blocks = 0;
  for (size_t at = games.find(")\r\n"); at != std::string::npos; at = games.find(")\r\n", at + 1)) {
    if (at == 0 || games[at - 1] == '\n') ++blocks;
  }
  EXPECT_EQ(blocks, 6u);
}

TEST_F(BuiltHome, DatOfAnIniFileLooksNamesUpWhole) {
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, ListsFixture("names.ini"), home.Path("ini.dat")),
            DatExportResult::Done);
  const std::string dat = ReadFile(home.Path("ini.dat"));
  std::vector<std::string> names;
  for (size_t at = dat.find("\tname "); at != std::string::npos; at = dat.find("\tname ", at + 1)) {
    names.push_back(dat.substr(at + 6, dat.find("\r\n", at) - at - 6));
  }
  // The head's "name MAME" first, then the games in file order, longname9 whole.
  EXPECT_EQ(names, (std::vector<std::string>{"MAME", "\"mame\"", "diskgame", "longname9", "mygame",
                                             "diskgame"}));
}

TEST_F(BuiltHome, DatOfAMissingIniFileHasEveryGame) {
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, home.Path("missing.ini"), home.Path("all.dat")),
            DatExportResult::Done);
  const std::string dat = ReadFile(home.Path("all.dat"));
  size_t names = 0;
  for (size_t at = dat.find("\tname "); at != std::string::npos; at = dat.find("\tname ", at + 1)) {
    ++names;
  }
  EXPECT_EQ(names, 2u + 6u);
  EXPECT_EQ(work.ProgressMax.load(), 6);
  EXPECT_EQ(work.ProgressValue.load(), 6);
}

TEST_F(BuiltHome, AnExistingMaskIsUsedAsItIs) {
  WriteFile(home.Path("dat_mask.dat"),
            "my comment\r\n#START_HEAD\r\nHEAD\r\n#END_HEAD\r\n<#name>\r\n; note\r\n"
            "#year only\r\n\t#cloneof\r\n  rom(#rom_name #rom_crc)\r\n");
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, "", home.Path("mine.dat")), DatExportResult::Done);
  const std::string dat = ReadFile(home.Path("mine.dat"));
  EXPECT_EQ(dat.substr(0, 86),
            "HEAD\r\n\r\n<name mygame>\r\n; note\r\nyear 1980 only\r\n  rom(name game.6e crc "
            "0123abcd)\r\n<name");
  EXPECT_NE(dat.find("<name myclone>\r\n; note\r\nyear 1981 only\r\n\tcloneof mygame\r\n"
                     "  rom(name a.bin crc 0123abcd)\r\n  rom(name n.bin #rom_crc)\r\n"),
            std::string::npos)
      << dat;
  EXPECT_EQ(ReadFile(home.Path("dat_mask.dat")).substr(0, 10), "my comment");
}

TEST_F(BuiltHome, AMaskWithoutStartMakesNoFile) {
  WriteFile(home.Path("dat_mask.dat"), "game (\r\n\t#name\r\n)\r\n");
  Work work;
  EXPECT_EQ(ExportDatList(home.ctx, work, "", home.Path("none.dat")), DatExportResult::NoMask);
  EXPECT_FALSE(std::filesystem::exists(home.Path("none.dat")));
}

TEST_F(BuiltHome, AMaskWithoutEndWritesTheHeadAlone) {
  WriteFile(home.Path("dat_mask.dat"), "#START_HEAD\r\nline one\r\ngame (\r\n\t#name\r\n)\r\n");
  Work work;
  ASSERT_EQ(ExportDatList(home.ctx, work, "", home.Path("head.dat")), DatExportResult::Done);
  EXPECT_EQ(ReadFile(home.Path("head.dat")), "line one\r\ngame (\r\n\t#name\r\n)\r\n\r\n");
}

TEST_F(BuiltHome, ACancelledDatKeepsWhatWasWritten) {
  Work work;
  work.CancelRequested = true;
  EXPECT_EQ(ExportDatList(home.ctx, work, "", home.Path("c.dat")), DatExportResult::Cancelled);
  // The cancel came before the file was made.
  EXPECT_FALSE(std::filesystem::exists(home.Path("c.dat")));
}

}  // namespace
}  // namespace tessarin
