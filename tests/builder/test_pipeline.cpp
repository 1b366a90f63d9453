#include <gtest/gtest.h>

#include "builder/listxml.h"
#include "builder/pipeline.h"
#include "buildertestsupport.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using buildertest::BuilderFixture;
using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

// The fields that only data files fill, as a build without them leaves them.
const char* const kDataFields[] = {";I#G;",  ";J#CA;", ";K#V;",  ";L#X;",  ";M#BI;", ";O#N;",
                                   ";P#HS;", ";Q#HI;", ";R#CH;", ";T#CM;", ";U#MI;"};

void PutDump(TestHome& home, const std::string& fixture, const std::string& target) {
  WriteBytes(target, ReadBytes(BuilderFixture(fixture)));
  (void)home;
}

TEST(Pipeline, BuildWithoutDataFilesKeepsTheListFieldsOnly) {
  TestHome home;
  home.ctx.log.WriteLogLine("a line of an earlier run");
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  home.ctx.store.DatabaseVersion = "MAME v0.251 (unknown)";
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 5);
  EXPECT_TRUE(store.SourceIsXml);

  // The same records as the import alone gives: nothing else touched them.
  TestHome reference;
  Work referenceWork;
  ImportListXml(reference.ctx.store, reference.ctx.log, referenceWork,
                BuilderFixture("dumps/machine_lf.xml"));
  EXPECT_EQ(store.GameRecords, reference.ctx.store.GameRecords);
  for (int i = 1; i <= store.GameCount(); ++i) {
    for (const char* field : kDataFields) {
      EXPECT_NE(store.GameRecords[static_cast<size_t>(i)].find(field), std::string::npos)
          << field << " in " << store.GameRecords[static_cast<size_t>(i)];
    }
  }

  const std::string index = ReadBytes(IndexFilePath(home.Folder()));
  EXPECT_EQ(index.substr(0, 23), "MAME v0.251 (unknown)\r\n");
  EXPECT_NE(index.find("\r\n" + store.GameRecords[3] + "\r\n"), std::string::npos);

  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_EQ(log.find("earlier run"), std::string::npos);
  const size_t first = log.find(" New indexing...");
  ASSERT_NE(first, std::string::npos);
  EXPECT_LT(first, log.find(" Source is XML"));
  EXPECT_EQ(log.find("Source is not XML"), std::string::npos);
  EXPECT_EQ(log.find(" Analysing "), std::string::npos);
}

TEST(Pipeline, EntitiesAreResolvedOnWholeRecordsButNotTheEndRecord) {
  TestHome home;
  const std::string text =
      "<mame>\n\t<machine name=\"amp\" sourcefile=\"a&amp;b.cpp\" cloneof=\"x&amp;y\">\n"
      "\t\t<description>Tom &amp; Jerry &lt;proto&gt; &#38; more</description>\n"
      "\t\t<year>19&#38;80</year>\n\t</machine>\n</mame>\n";
  WriteBytes(DefaultListXmlPath(home.Folder()), text);
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& store = home.ctx.store;
  ASSERT_EQ(store.GameCount(), 1);
  EXPECT_NE(store.GameRecords[1].find(";BTom & Jerry <proto> &; more;"), std::string::npos)
      << store.GameRecords[1];
  EXPECT_NE(store.GameRecords[1].find(";Sx&y;"), std::string::npos);
  // Tables keep the texts as the list gave them.
  EXPECT_EQ(store.YearTable, (CodeTable{"", "19&#38;80"}));
  EXPECT_EQ(store.DriverTable, (CodeTable{"", "a&amp;b.cpp"}));
  EXPECT_EQ(store.GameRecords[2], NewXmlRecord(EndRecordName, static_cast<long long>(text.size())));
}

TEST(Pipeline, ResolveEntitiesOrder) {
  std::string record = "a;B&amp;lt; &#38;amp; &amp;amp;";
  ResolveEntities(record);
  // One pass per pattern, in order: "&amp;lt;" becomes "&lt;" and then "<"; the numeric entity
  // leaves its semicolon behind; a replaced text is not searched again.
  EXPECT_EQ(record, "a;B< &;amp; &amp;");
}

TEST(Pipeline, LegacyListWhenTheXmlOneGivesNoGame) {
  TestHome home;
  PutDump(home, "dumps/legacy_crlf.listinfo", DefaultListInfoPath(home.Folder()));
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  EXPECT_FALSE(home.ctx.store.SourceIsXml);
  EXPECT_EQ(home.ctx.store.GameCount(), 4);
  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_NE(log.find(" Source is not XML (old version of MAME)"), std::string::npos);
  EXPECT_NE(log.find(" Analysing " + DefaultListInfoPath(home.Folder())), std::string::npos);
  GameStore loaded;
  ASSERT_TRUE(LoadIndex(loaded, home.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_FALSE(loaded.SourceIsXml);
  EXPECT_EQ(loaded.GameRecords, home.ctx.store.GameRecords);
}

TEST(Pipeline, NoGameLeavesTheOldIndex) {
  TestHome home;
  const std::string index = IndexFilePath(home.Folder());
  WriteBytes(index, "old index\r\n");
  WriteBytes(DefaultListXmlPath(home.Folder()),
             "<mame>\n\t<machine name=\"z80\" isdevice=\"yes\">\n\t</machine>\n</mame>\n");
  Work work;
  EXPECT_FALSE(BuildDatabase(home.ctx, work));
  EXPECT_EQ(ReadBytes(index), "old index\r\n");
  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_NE(log.find("No rom found... END : "), std::string::npos);
}

TEST(Pipeline, CancelDuringTheImportSkipsTheLegacyListAndKeepsTheOldIndex) {
  TestHome home;
  const std::string index = IndexFilePath(home.Folder());
  WriteBytes(index, "old index\r\n");
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  PutDump(home, "dumps/legacy_crlf.listinfo", DefaultListInfoPath(home.Folder()));
  Work work;
  work.CancelRequested = true;
  EXPECT_FALSE(BuildDatabase(home.ctx, work));
  EXPECT_EQ(ReadBytes(index), "old index\r\n");
  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_NE(log.find("CANCELED BY USER : "), std::string::npos);
  EXPECT_EQ(log.find(" Analysing "), std::string::npos);
  EXPECT_EQ(log.find("Source is not XML"), std::string::npos);
}

TEST(Pipeline, DatFilesOfTheDataFolderAreAnalysed) {
  TestHome home;
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  WriteBytes(home.DataFiles() + "hiscore.dat", "pacman:0:4c00:10:00\r\nunknown:0:1:1:0\r\n");
  WriteBytes(home.DataFiles() + "cheat.dat", ":dkong:0:1:2:Infinite lives\r\n");
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& store = home.ctx.store;
  EXPECT_NE(store.GameRecords[static_cast<size_t>(store.FindGame("pacman"))].find(";P1;"),
            std::string::npos);
  EXPECT_NE(store.GameRecords[static_cast<size_t>(store.FindGame("dkong"))].find(";R1;"),
            std::string::npos);
  EXPECT_NE(store.GameRecords[static_cast<size_t>(store.FindGame("sf2"))].find(";P#HS;"),
            std::string::npos);
  const std::string log = ReadBytes(home.ctx.log.LogPath());
  EXPECT_NE(log.find("  for Hiscore data."), std::string::npos);
  EXPECT_NE(log.find("  for Cheat data."), std::string::npos);
}

TEST(Pipeline, WizsortTakesThePlaceOfTheOtherClassifyingLists) {
  TestHome home;
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  WriteBytes(home.DataFiles() + "wizsort.ini", "[Genre]\r\npacman=Maze\r\n");
  WriteBytes(home.DataFiles() + "genre.inf", "[Shooter]\r\ndkong\r\npacman\r\n");
  WriteBytes(home.DataFiles() + "catlist.ini", "[Platform]\r\ndkong\r\n");
  WriteBytes(home.DataFiles() + "catver.ini",
             "[Category]\r\ndkong=Platform\r\n[VerAdded]\r\ndkong=.37b5\r\n");
  WriteBytes(home.DataFiles() + "mature.inf", "[Mature]\r\ndkong\r\n");
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& store = home.ctx.store;
  EXPECT_EQ(store.GenreTable, (CodeTable{"", "Maze"}));
  const std::string& dkong = store.GameRecords[static_cast<size_t>(store.FindGame("dkong"))];
  for (const char* untouched : {";I#G;", ";J#CA;", ";K#V;", ";L#X;"}) {
    EXPECT_NE(dkong.find(untouched), std::string::npos) << untouched << " in " << dkong;
  }
  // Without Wizsort.ini the genre file counts.
  TestHome other;
  PutDump(other, "dumps/machine_lf.xml", DefaultListXmlPath(other.Folder()));
  WriteBytes(other.DataFiles() + "genre.inf", "[Shooter]\r\ndkong\r\n");
  Work otherWork;
  ASSERT_TRUE(BuildDatabase(other.ctx, otherWork));
  EXPECT_EQ(other.ctx.store.GenreTable, (CodeTable{"", "Shooter"}));
}

TEST(Pipeline, MameinfoWithoutVersionLinesLeavesTheVersionsToWizsort) {
  TestHome home;
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  // A Mameinfo.dat whose entries never start a line with a digit: its routine fails at the end
  // of the file, so Wizsort.ini gives the versions.
  WriteBytes(home.DataFiles() + "mameinfo.dat",
             "$info=dkong\r\n$mame\r\nFirst seen long ago.\r\n$end\r\n");
  WriteBytes(home.DataFiles() + "wizsort.ini", "[VerAdded]\r\ndkong=.37b5\r\n");
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& store = home.ctx.store;
  const std::string& dkong = store.GameRecords[static_cast<size_t>(store.FindGame("dkong"))];
  EXPECT_NE(dkong.find(";K1;"), std::string::npos) << dkong;
  EXPECT_EQ(store.VerAddedTable, (CodeTable{"", "0.037b5"}));
  EXPECT_EQ(home.ctx.log.BugCount(), 1);
}

// The list as a "head -c" leaves it: cut in the middle of a game, with no closing </mame>.
std::string CutList() {
  const std::string whole = ReadBytes(BuilderFixture("dumps/machine_lf.xml"));
  size_t at = 0;
  for (int i = 0; i < 3; ++i) at = whole.find("<machine", at + 1);
  return whole.substr(0, at + 40);
}

TEST(Pipeline, ACutListIsToldAndDoesntReplaceALargerDatabaseWithoutAYes) {
  TestHome home;
  PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  ASSERT_EQ(home.ctx.store.GameCount(), 5);
  EXPECT_TRUE(home.ui.messages.empty());  // a whole list says nothing
  const std::string index = ReadBytes(IndexFilePath(home.Folder()));

  WriteBytes(DefaultListXmlPath(home.Folder()), CutList());
  home.ui.answers.push_back(false);
  EXPECT_FALSE(BuildDatabase(home.ctx, work));
  // The import keeps what it read (the third game's line is there, cut), and says the list was
  // cut, in the log and to the user.
  EXPECT_EQ(home.ctx.store.GameCount(), 3);
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_NE(home.ui.messages[0].text.find("cut short"), std::string::npos)
      << home.ui.messages[0].text;
  EXPECT_NE(ReadBytes(home.ctx.log.LogPath()).find("cut short"), std::string::npos);
  ASSERT_EQ(home.ui.questions.size(), 1u);
  EXPECT_NE(home.ui.questions[0].find("5 games"), std::string::npos) << home.ui.questions[0];
  EXPECT_EQ(ReadBytes(IndexFilePath(home.Folder())), index);

  // A yes replaces it.
  home.ui.answers.push_back(true);
  EXPECT_TRUE(BuildDatabase(home.ctx, work));
  GameStore loaded;
  ASSERT_TRUE(LoadIndex(loaded, home.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_EQ(loaded.GameCount(), 3);
}

TEST(Pipeline, CatverGivesOnlyVersionsInABuild) {
  for (const bool withCatlist : {false, true}) {
    TestHome home;
    PutDump(home, "dumps/machine_lf.xml", DefaultListXmlPath(home.Folder()));
    WriteBytes(home.DataFiles() + "catver.ini",
               "[category]\r\ndkong=Platform\r\nsf2=Fighter\r\n[VerAdded]\r\ndkong=.37b5\r\n");
    if (withCatlist) WriteBytes(home.DataFiles() + "catlist.ini", "[Fighter]\r\nsf2\r\n");
    Work work;
    ASSERT_TRUE(BuildDatabase(home.ctx, work));
    const GameStore& store = home.ctx.store;
    const std::string& dkong = store.GameRecords[static_cast<size_t>(store.FindGame("dkong"))];
    EXPECT_NE(dkong.find(";J#CA;"), std::string::npos) << dkong;
    EXPECT_NE(dkong.find(";K1;"), std::string::npos) << dkong;
    EXPECT_EQ(store.VerAddedTable, (CodeTable{"", "0.037b5"}));
    EXPECT_EQ(store.CategoryTable, withCatlist ? (CodeTable{"", "Fighter"}) : (CodeTable{""}));
  }
}

TEST(Pipeline, BuildSaveLoadGivesTheWholeStoreBack) {
  TestHome home;
  PutDump(home, "dumps/old_game_crlf.xml", DefaultListXmlPath(home.Folder()));
  WriteBytes(home.DataFiles() + "hiscore.dat", "zorblast:0:1:1:0\r\n");
  home.ctx.store.DatabaseVersion = "MAME v0.106 (May 16 2006)";
  Work work;
  ASSERT_TRUE(BuildDatabase(home.ctx, work));
  const GameStore& built = home.ctx.store;

  TestHome second;
  GameStore& loaded = second.ctx.store;
  ASSERT_TRUE(LoadIndex(loaded, second.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_EQ(loaded.DatabaseVersion, built.DatabaseVersion);
  EXPECT_EQ(loaded.GameCount(), built.GameCount());
  EXPECT_EQ(loaded.GameRecords, built.GameRecords);
  EXPECT_EQ(loaded.GameNames(), built.GameNames());
  for (int t = 0; t < kTableCount; ++t) {
    EXPECT_EQ(loaded.Table(static_cast<TableId>(t)), built.Table(static_cast<TableId>(t)))
        << TableTitle(static_cast<TableId>(t));
  }
  EXPECT_EQ(loaded.SourceIsXml, built.SourceIsXml);
  EXPECT_EQ(loaded.LongestNameLength, 8);
  EXPECT_NE(loaded.GameRecords[3].find(";BTomCat & Jerry <prototype>;"), std::string::npos);
  EXPECT_EQ(loaded.ManufacturerTable[2], "Atari &amp; Co");
}

}  // namespace
}  // namespace tessarin
