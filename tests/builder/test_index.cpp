#include <gtest/gtest.h>

#include "buildertestsupport.h"
#include "core/fileservices.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

const char* const kTitles =
    "[Manufacturer]\r\n[Year]\r\n[Orientation]\r\n[Buttons]\r\n[Controls]\r\n[Status]\r\n"
    "[Genre]\r\n[Category]\r\n[VerAdded]\r\n[Bios]\r\n[Driver]\r\n[nPlayers]\r\n[Savestate]\r\n";

std::string XmlEnd(long long length) { return NewXmlRecord(EndRecordName, length); }

TEST(IndexFile, PathsUseOneSpelling) {
  EXPECT_EQ(IndexFilePath("/home/x/"), "/home/x/DataFiles/index");
  EXPECT_EQ(DefaultListXmlPath("/home/x"), "/home/x/DataFiles/listxml");
  EXPECT_EQ(DefaultListInfoPath("/home/x/"), "/home/x/DataFiles/listinfo");
}

TEST(IndexFile, SaveWritesVersionRecordsEndRecordAndAllSectionsInOrder) {
  TestHome home;
  GameStore& store = home.ctx.store;
  store.DatabaseVersion = "MAME v0.999 (test)";
  store.AppendGame("alpha", NewXmlRecord("alpha", 120));
  store.AppendGame("beta", NewXmlRecord("beta", 480));
  store.SetEndRecord(XmlEnd(900));
  store.YearTable.push_back("1980");
  store.YearTable.push_back("1979");
  store.SavestateTable.push_back("supported");
  const std::string path = IndexFilePath(home.Folder());
  MakeFolder(home.DataFiles());
  Work work;
  ASSERT_TRUE(SaveIndex(store, home.ctx.log, &work, path));

  const std::string expected = "MAME v0.999 (test)\r\n" + NewXmlRecord("alpha", 120) + "\r\n" +
                               NewXmlRecord("beta", 480) + "\r\n" + XmlEnd(900) + "\r\n" +
                               "[Manufacturer]\r\n[Year]\r\n1980\r\n1979\r\n[Orientation]\r\n"
                               "[Buttons]\r\n[Controls]\r\n[Status]\r\n[Genre]\r\n[Category]\r\n"
                               "[VerAdded]\r\n[Bios]\r\n[Driver]\r\n[nPlayers]\r\n[Savestate]\r\n"
                               "supported\r\n";
  EXPECT_EQ(ReadBytes(path), expected);
  // Progress goes to the EndRecord; the maximum is the game count times 1.1, rounded.
  EXPECT_EQ(work.ProgressMax.load(), 2);
  EXPECT_EQ(work.ProgressValue.load(), 3);
  // Nothing but the index is left in the folder: the temporary file was renamed.
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(home.DataFiles())) {
    (void)entry;
    ++files;
  }
  EXPECT_EQ(files, 1);
}

TEST(IndexFile, SaveCleansLeadingBlanksAndBlankBeforeDescription) {
  TestHome home;
  GameStore& store = home.ctx.store;
  store.AppendGame(" spaced", "  spaced;A1;0;B#Z;C#MA  ");
  store.AppendGame("gap", "gap;A2;0 ;Bthe title;C1");
  store.AppendGame("keep", "keep;A3;0;Bx ;C1 ");
  store.SetEndRecord(XmlEnd(10));
  const std::string text = IndexFileText(store, nullptr);
  EXPECT_EQ(text, "\r\nspaced;A1;0;B#Z;C#MA\r\ngap;A2;0;Bthe title;C1\r\nkeep;A3;0;Bx ;C1 \r\n" +
                      XmlEnd(10) + "\r\n" + kTitles);
  // The clean-ups stay in memory too.
  EXPECT_EQ(store.GameRecords[1], "spaced;A1;0;B#Z;C#MA");
  EXPECT_EQ(store.GameRecords[2], "gap;A2;0;Bthe title;C1");
  EXPECT_EQ(store.GameRecords[3], "keep;A3;0;Bx ;C1 ");
}

TEST(IndexFile, SaveReplacesTheOldFileWhole) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, std::string(100000, 'x'));
  GameStore& store = home.ctx.store;
  store.DatabaseVersion = "v";
  store.AppendGame("a", NewXmlRecord("a", 0));
  store.SetEndRecord(XmlEnd(5));
  ASSERT_TRUE(SaveIndex(store, home.ctx.log, nullptr, path));
  EXPECT_EQ(ReadBytes(path),
            "v\r\n" + NewXmlRecord("a", 0) + "\r\n" + XmlEnd(5) + "\r\n" + kTitles);
}

TEST(IndexFile, SaveIntoAMissingFolderFailsAndSaysSo) {
  TestHome home;
  GameStore& store = home.ctx.store;
  store.AppendGame("a", NewXmlRecord("a", 0));
  store.SetEndRecord(XmlEnd(5));
  EXPECT_FALSE(SaveIndex(store, home.ctx.log, nullptr, home.Folder() + "no/such/folder/index"));
  EXPECT_EQ(home.ctx.log.BugCount(), 1);
}

TEST(IndexFile, LoadOfOneGameDatabase) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path,
             "MAME v1\r\n" + NewXmlRecord("solo", 0) + "\r\n" + XmlEnd(77) + "\r\n" + kTitles);
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.DatabaseVersion, "MAME v1");
  EXPECT_EQ(store.GameCount(), 1);
  ASSERT_EQ(store.GameRecords.size(), 3u);
  EXPECT_EQ(store.GameRecords[1], NewXmlRecord("solo", 0));
  EXPECT_EQ(store.GameRecords[2], XmlEnd(77));
  EXPECT_EQ(store.GameNames()[1], "solo");
  EXPECT_EQ(store.FindGame("solo"), 1);
  EXPECT_EQ(store.FindGame(EndRecordName), 0);
  EXPECT_TRUE(store.SourceIsXml);
  EXPECT_EQ(store.LongestNameLength, 4);
  for (int t = 0; t < kTableCount; ++t) EXPECT_EQ(store.Table(static_cast<TableId>(t)).size(), 1u);
}

TEST(IndexFile, LoadOfVersionLineAloneFails) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "MAME v1\r\n");
  GameStore& store = home.ctx.store;
  store.AppendGame("old", "old;A1");
  EXPECT_FALSE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.GameCount(), 0);
  EXPECT_EQ(home.ctx.log.BugCount(), 1);
}

TEST(IndexFile, LoadOfMissingFileFailsQuietly) {
  TestHome home;
  GameStore& store = home.ctx.store;
  store.AppendGame("old", "old;A1");
  EXPECT_FALSE(LoadIndex(store, home.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_EQ(store.GameCount(), 0);
  EXPECT_EQ(home.ctx.log.BugCount(), 0);
}

TEST(IndexFile, EmptyLineAmongRecordsIsARecordWithoutName) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "v\r\n" + NewXmlRecord("a", 0) + "\r\n\r\n" + NewXmlRecord("b", 9) + "\r\n" +
                       XmlEnd(20) + "\r\n" + kTitles);
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.GameCount(), 3);
  EXPECT_EQ(store.GameRecords[2], "");
  EXPECT_EQ(store.GameNames()[2], "");
  EXPECT_EQ(store.FindGame("b"), 3);
}

TEST(IndexFile, LineWithoutSemicolonGetsNoName) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "v\r\nnosemicolonhere\r\n" + NewXmlRecord("ab", 0) + "\r\n" + XmlEnd(20) +
                       "\r\n" + kTitles);
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.GameCount(), 2);
  EXPECT_EQ(store.GameNames()[1], "");
  EXPECT_EQ(store.GameRecords[1], "nosemicolonhere");
  // The name column is as wide as the longest name, not the longest line.
  EXPECT_EQ(store.LongestNameLength, 2);
  // Only the first record tells how the database was built.
  EXPECT_FALSE(store.SourceIsXml);
}

TEST(IndexFile, EntryEqualToATitleSwitchesTheSection) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "v\r\n" + NewXmlRecord("a", 0) + "\r\n" + XmlEnd(20) +
                       "\r\n[Manufacturer]\r\nAcme\r\n[Year]\r\n1980\r\n[Orientation]\r\n"
                       "[Buttons]\r\n[Controls]\r\n[Status]\r\n[Genre]\r\n[Category]\r\n"
                       "[VerAdded]\r\n[Bios]\r\n[Driver]\r\n[nPlayers]\r\n[Savestate]\r\n");
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  // "[Year]" was meant as a manufacturer's name: it selects the year section all the same.
  EXPECT_EQ(store.ManufacturerTable, (CodeTable{"", "Acme"}));
  EXPECT_EQ(store.YearTable, (CodeTable{"", "1980"}));
}

TEST(IndexFile, EmptyLineInsideASectionIsKeptAsAnEntry) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "v\r\n" + NewXmlRecord("a", 0) + "\r\n" + XmlEnd(20) +
                       "\r\n[Manufacturer]\r\nAcme\r\n\r\nZeta\r\n[Year]\r\n[Orientation]\r\n"
                       "[Buttons]\r\n[Controls]\r\n[Status]\r\n[Genre]\r\n[Category]\r\n"
                       "[VerAdded]\r\n[Bios]\r\n[Driver]\r\n[nPlayers]\r\n[Savestate]\r\n");
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.ManufacturerTable, (CodeTable{"", "Acme", "", "Zeta"}));
}

TEST(IndexFile, LegacyRecordMakesSourceNotXml) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path, "v\r\n" + NewLegacyRecord("pacman", 12) + "\r\n" +
                       NewLegacyRecord(EndRecordName, 99) + "\r\n" + kTitles);
  GameStore& store = home.ctx.store;
  store.SourceIsXml = true;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_FALSE(store.SourceIsXml);
  EXPECT_EQ(store.GameRecords[1], NewLegacyRecord("pacman", 12));
}

TEST(IndexFile, LongestNameLengthIsNeverLowered) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  WriteBytes(path,
             "v\r\n" + NewXmlRecord("abcdefghij", 0) + "\r\n" + XmlEnd(20) + "\r\n" + kTitles);
  GameStore& store = home.ctx.store;
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.LongestNameLength, 10);
  WriteBytes(path, "v\r\n" + NewXmlRecord("ab", 0) + "\r\n" + XmlEnd(20) + "\r\n" + kTitles);
  ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
  EXPECT_EQ(store.GameCount(), 1);
  EXPECT_EQ(store.LongestNameLength, 10);
}

TEST(IndexFile, LoadReadsEveryKindOfLineEnd) {
  TestHome home;
  const std::string path = IndexFilePath(home.Folder());
  const std::string a = NewXmlRecord("a", 0), b = NewXmlRecord("b", 5);
  for (const std::string eol : {"\n", "\r", "\r\n"}) {
    std::string text = "ver" + eol + a + eol + b + eol + XmlEnd(9) + eol;
    for (int t = 0; t < kTableCount; ++t) {
      text += SectionTitleLine(static_cast<TableId>(t)) + eol;
      if (t == 1) text += "1980" + eol + "1981" + eol;
    }
    WriteBytes(path, text);
    GameStore store;
    ASSERT_TRUE(LoadIndex(store, home.ctx.log, path));
    EXPECT_EQ(store.DatabaseVersion, "ver");
    EXPECT_EQ(store.GameCount(), 2);
    EXPECT_EQ(store.GameRecords[2], b);
    EXPECT_EQ(store.GameRecords[3], XmlEnd(9));
    EXPECT_EQ(store.YearTable, (CodeTable{"", "1980", "1981"}));
  }
}

TEST(IndexFile, SaveThenLoadGivesTheSameStore) {
  TestHome home;
  GameStore& store = home.ctx.store;
  store.DatabaseVersion = "MAME v0.251 (unknown)";
  for (int i = 1; i <= 500; ++i) {
    const std::string name = "game" + std::to_string(i);
    std::string record = NewXmlRecord(name, i * 1000LL);
    FieldSet(record, "#Z", "Title number " + std::to_string(i) + " & co");
    FieldSet(record, "#Y", std::to_string(i % 7 + 1));
    if (i % 3 == 0) record += "**";
    store.AppendGame(name, record);
  }
  store.SetEndRecord(XmlEnd(500001));
  for (int t = 0; t < kTableCount; ++t) {
    for (int e = 0; e < t; ++e) {
      store.Table(static_cast<TableId>(t)).push_back("entry " + std::to_string(e));
    }
  }
  store.ManufacturerTable.push_back("");  // an empty entry keeps its place
  const std::string path = IndexFilePath(home.Folder());
  MakeFolder(home.DataFiles());
  ASSERT_TRUE(SaveIndex(store, home.ctx.log, nullptr, path));

  GameStore loaded;
  ASSERT_TRUE(LoadIndex(loaded, home.ctx.log, path));
  EXPECT_EQ(loaded.DatabaseVersion, store.DatabaseVersion);
  EXPECT_EQ(loaded.GameCount(), store.GameCount());
  EXPECT_EQ(loaded.GameRecords, store.GameRecords);
  EXPECT_EQ(loaded.GameNames(), store.GameNames());
  for (int t = 0; t < kTableCount; ++t) {
    EXPECT_EQ(loaded.Table(static_cast<TableId>(t)), store.Table(static_cast<TableId>(t)));
  }
  EXPECT_TRUE(loaded.SourceIsXml);
  EXPECT_EQ(loaded.LongestNameLength, 7);
  EXPECT_EQ(loaded.FindGame("game321"), 321);
}

}  // namespace
}  // namespace tessarin
