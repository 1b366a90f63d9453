#include "store/gamerecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/log.h"

namespace tessarin {
namespace {

// The record of the game "zorblast" at its opening line, after its block, and after the
// analysers and a rom scan.
constexpr std::string_view kZorblastAtGameLine =
    "zorblast;A184123;0;B#Z;C#MA;D#Y;E#O;F#BU;G#CO;H#ST;I#G;J#CA;K#V;L#X;M#BI;N12;O#N;P#HS;Q#HI;"
    "R#CH;Szorbmain;T#CM;U#MI;V#SS";
constexpr std::string_view kZorblastAfterBlock =
    "zorblast;A184123;0;BZorb Blaster (set 2);C3;D7;E2;F2;G1;H1;I#G;J#CA;K#V;L#X;M#BI;N12;O#N;"
    "P#HS;Q#HI;R#CH;Szorbmain;T#CM;U#MI;V2";
constexpr std::string_view kZorblastFinal =
    "zorblast;A184123;0;BZorb Blaster (set 2);C3;D7;E2;F2;G1;H1;I5;J31;K18;L#X;M#BI;N12;O2;"
    "P#HS;Q90210,90987;R1;Szorbmain;T#CM;U77001,411;V2*";

// Puts `count` other entries in front, so that the next new entry gets index count + 1.
void Prefill(CodeTable& table, int count) {
  for (int i = 1; i <= count; ++i) table.push_back("earlier entry " + std::to_string(i));
}

std::string Index(int n) { return std::to_string(n); }

// --- Tables ----------------------------------------------------------------------------------

TEST(Tables, TitlesAndTagsInIndexFileOrder) {
  const std::vector<std::string_view> titles{
      "Manufacturer", "Year",     "Orientation", "Buttons", "Controls", "Status",   "Genre",
      "Category",     "VerAdded", "Bios",        "Driver",  "nPlayers", "Savestate"};
  const std::string tags = "CDEFGHIJKMNOV";
  ASSERT_EQ(static_cast<int>(titles.size()), kTableCount);
  for (int i = 0; i < kTableCount; ++i) {
    EXPECT_EQ(TableTitle(static_cast<TableId>(i)), titles[static_cast<size_t>(i)]);
    EXPECT_EQ(TableTag(static_cast<TableId>(i)), tags[static_cast<size_t>(i)]);
  }
}

TEST(Tables, TableGivesTheNamedMember) {
  GameStore store;
  EXPECT_EQ(&store.Table(TableId::Manufacturer), &store.ManufacturerTable);
  EXPECT_EQ(&store.Table(TableId::Year), &store.YearTable);
  EXPECT_EQ(&store.Table(TableId::Orientation), &store.OrientationTable);
  EXPECT_EQ(&store.Table(TableId::Buttons), &store.ButtonsTable);
  EXPECT_EQ(&store.Table(TableId::Controls), &store.ControlsTable);
  EXPECT_EQ(&store.Table(TableId::Status), &store.StatusTable);
  EXPECT_EQ(&store.Table(TableId::Genre), &store.GenreTable);
  EXPECT_EQ(&store.Table(TableId::Category), &store.CategoryTable);
  EXPECT_EQ(&store.Table(TableId::VerAdded), &store.VerAddedTable);
  EXPECT_EQ(&store.Table(TableId::Bios), &store.BiosTable);
  EXPECT_EQ(&store.Table(TableId::Driver), &store.DriverTable);
  EXPECT_EQ(&store.Table(TableId::NPlayers), &store.NPlayersTable);
  EXPECT_EQ(&store.Table(TableId::Savestate), &store.SavestateTable);
  const GameStore& constStore = store;
  EXPECT_EQ(&constStore.Table(TableId::Savestate), &store.SavestateTable);
}

// --- The store -------------------------------------------------------------------------------

TEST(GameStore, NewStoreIsEmptyWithUnusedElementsZero) {
  GameStore store;
  EXPECT_EQ(store.GameCount(), 0);
  EXPECT_EQ(store.GameRecords, std::vector<std::string>{""});
  EXPECT_EQ(store.GameNames(), std::vector<std::string>{""});
  EXPECT_FALSE(store.HasEndRecord());
  for (int i = 0; i < kTableCount; ++i) {
    EXPECT_EQ(store.Table(static_cast<TableId>(i)), CodeTable{""}) << i;
  }
}

TEST(GameStore, AppendGameNumbersFromOne) {
  GameStore store;
  EXPECT_EQ(store.AppendGame("pacman", NewXmlRecord("pacman", 10)), 1);
  EXPECT_EQ(store.AppendGame("galaga", NewXmlRecord("galaga", 500)), 2);
  EXPECT_EQ(store.GameCount(), 2);
  EXPECT_EQ(store.GameNames(), (std::vector<std::string>{"", "pacman", "galaga"}));
  ASSERT_EQ(store.GameRecords.size(), 3u);
  EXPECT_TRUE(store.GameRecords[2].starts_with("galaga;A500;0;"));
}

TEST(GameStore, EndRecordStaysBehindTheLastGame) {
  GameStore store;
  store.AppendGame("a", NewXmlRecord("a", 0));
  store.SetEndRecord(NewXmlRecord(EndRecordName, 1000));
  EXPECT_TRUE(store.HasEndRecord());
  EXPECT_EQ(store.GameCount(), 1);
  EXPECT_EQ(store.AppendGame("b", NewXmlRecord("b", 600)), 2);
  ASSERT_EQ(store.GameRecords.size(), 4u);
  EXPECT_TRUE(store.GameRecords[2].starts_with("b;A600;"));
  EXPECT_EQ(store.GameRecords[3], "\x1f;A1000;0" + std::string(RecordTemplate));
  store.SetEndRecord(NewXmlRecord(EndRecordName, 2000));
  ASSERT_EQ(store.GameRecords.size(), 4u);
  EXPECT_TRUE(store.GameRecords[3].starts_with("\x1f;A2000;0;B#Z"));
  EXPECT_EQ(store.GameNames().size(), 3u);  // no name for the EndRecord
}

TEST(GameStore, FindGameGivesTheFirstExactMatch) {
  GameStore store;
  store.AppendGame("pacman", "pacman;A0");
  store.AppendGame("galaga", "galaga;A1");
  store.AppendGame("pacman", "pacman;A2");  // a duplicate: the first one is the one found
  store.AppendGame("Pacman", "Pacman;A3");
  EXPECT_EQ(store.FindGame("pacman"), 1);
  EXPECT_EQ(store.FindGame("galaga"), 2);
  EXPECT_EQ(store.FindGame("Pacman"), 4);
  EXPECT_EQ(store.FindGame("PACMAN"), 0);
  EXPECT_EQ(store.FindGame("pac"), 0);
  EXPECT_EQ(store.FindGame("pacman "), 0);
  EXPECT_EQ(store.FindGame(""), 0);
}

TEST(GameStore, FindGameOfTheEndRecordNameFindsNothing) {
  GameStore store;
  store.AppendGame("a", NewXmlRecord("a", 0));
  store.SetEndRecord(NewXmlRecord(EndRecordName, 99));
  EXPECT_EQ(store.FindGame(EndRecordName), 0);
  EXPECT_EQ(store.FindGame(std::string(1, '\x1f')), 0);
}

TEST(GameStore, FindGameAgreesWithAWalkOverManyNames) {
  GameStore store;
  store.Reserve(3000);
  for (int i = 0; i < 3000; ++i) {
    const std::string name = "g" + std::to_string(i % 2500);  // 500 names appear twice
    store.AppendGame(name, NewXmlRecord(name, i));
  }
  for (int i = 0; i < 2600; ++i) {
    const std::string name = "g" + std::to_string(i);
    const auto& names = store.GameNames();
    const auto walk = std::find(names.begin() + 1, names.end(), name);
    const int expected = walk == names.end() ? 0 : static_cast<int>(walk - names.begin());
    ASSERT_EQ(store.FindGame(name), expected) << name;
  }
}

TEST(GameStore, ClearEmptiesEverything) {
  GameStore store;
  store.AppendGame("a", NewXmlRecord("a", 0));
  store.SetEndRecord(NewXmlRecord(EndRecordName, 50));
  FindOrAppend("Acme", store.ManufacturerTable);
  FindOrAppend("1984", store.YearTable);
  store.Clear();
  EXPECT_EQ(store.GameCount(), 0);
  EXPECT_EQ(store.GameRecords, std::vector<std::string>{""});
  EXPECT_EQ(store.FindGame("a"), 0);
  EXPECT_EQ(store.ManufacturerTable, CodeTable{""});
  EXPECT_EQ(store.YearTable, CodeTable{""});
  EXPECT_EQ(store.AppendGame("b", "b;A0"), 1);
  EXPECT_EQ(store.FindGame("b"), 1);
}

TEST(GameStore, ReserveChangesNoContent) {
  GameStore store;
  store.AppendGame("a", "a;A0");
  store.Reserve(45000);
  EXPECT_EQ(store.GameCount(), 1);
  EXPECT_EQ(store.FindGame("a"), 1);
  EXPECT_GE(store.GameRecords.capacity(), 45000u);
}

// --- Records ---------------------------------------------------------------------------------

TEST(Records, NewXmlRecord) {
  EXPECT_EQ(NewXmlRecord("zorblast", 184123),
            "zorblast;A184123;0;B#Z;C#MA;D#Y;E#O;F#BU;G#CO;H#ST;I#G;J#CA;K#V;L#X;M#BI;N#D;O#N;"
            "P#HS;Q#HI;R#CH;S#CL;T#CM;U#MI;V#SS");
  EXPECT_EQ(NewXmlRecord("x", 0), "x;A0;0" + std::string(RecordTemplate));
  EXPECT_EQ(NewXmlRecord("big", 270000000000LL),
            "big;A270000000000;0" + std::string(RecordTemplate));
}

TEST(Records, NewLegacyRecord) {
  const std::string record = NewLegacyRecord("zorblast", 4711);
  EXPECT_EQ(record,
            "zorblast;0;\xE0"
            "4711" +
                std::string(RecordTemplate));
  EXPECT_EQ(static_cast<unsigned char>(record[11]), 224u);
  EXPECT_EQ(record.find(";A"), std::string::npos);
}

TEST(Records, EndRecordOfBothKinds) {
  EXPECT_EQ(NewXmlRecord(EndRecordName, 270123456),
            "\x1f;A270123456;0" + std::string(RecordTemplate));
  EXPECT_EQ(NewLegacyRecord(EndRecordName, 12),
            "\x1f;0;\xE0"
            "12" +
                std::string(RecordTemplate));
}

TEST(Records, NameIsTheTextBeforeTheFirstSemicolon) {
  GameStore store;
  for (const char* name : {"pacman", "1942", "sf2ce"}) {
    store.AppendGame(name, NewXmlRecord(name, 7));
  }
  for (int i = 1; i <= store.GameCount(); ++i) {
    const std::string& record = store.GameRecords[static_cast<size_t>(i)];
    EXPECT_EQ(record.substr(0, record.find(';')), store.GameNames()[static_cast<size_t>(i)]);
  }
}

TEST(FieldSet, ReplacesThePlaceholder) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#MA", "3");
  EXPECT_NE(record.find(";C3;D#Y;"), std::string::npos);
}

TEST(FieldSet, FirstSetWinsAndTheSecondIsDropped) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#O", "2");
  const std::string afterFirst = record;
  FieldSet(record, "#O", "5");
  EXPECT_EQ(record, afterFirst);
  EXPECT_NE(record.find(";E2;"), std::string::npos);
}

TEST(FieldSet, ReplacesInTheWholeRecordNotJustTheField) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#Z", "Year #Y Special");
  FieldSet(record, "#Y", "7");
  EXPECT_TRUE(record.starts_with("g;A1;0;BYear 7 Special;C#MA;D7;E#O"));
}

TEST(FieldSet, EmptyValueRemovesThePlaceholder) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#Z", "");
  EXPECT_TRUE(record.starts_with("g;A1;0;B;C#MA;"));
}

TEST(Fields, PositionAndValue) {
  const std::string record(kZorblastFinal);
  EXPECT_EQ(FieldPosition(record, 'A'), 8u);
  EXPECT_EQ(FieldPosition(record, 'B'), 18u);
  EXPECT_EQ(FieldPosition(record, 'W'), std::string::npos);
  EXPECT_EQ(FieldPosition(record, 'b'), std::string::npos);  // case-sensitive
  EXPECT_EQ(FieldValue(record, 'A'), "184123");
  EXPECT_EQ(FieldValue(record, 'B'), "Zorb Blaster (set 2)");
  EXPECT_EQ(FieldValue(record, 'Q'), "90210,90987");
  EXPECT_EQ(FieldValue(record, 'S'), "zorbmain");
  EXPECT_EQ(FieldValue(record, 'T'), "#CM");
  // The last field runs to the end of the record, presence mark included.
  EXPECT_EQ(FieldValue(record, 'V'), "2*");
  EXPECT_EQ(FieldValue(record, 'W'), "");
}

TEST(Fields, DescriptionHoldingATagMisleadsTheSearchForIt) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#Z", "Quiz;C and more");
  FieldSet(record, "#MA", "4");
  // The first ";C" is in the description now.
  EXPECT_EQ(FieldValue(record, 'C'), " and more");
  EXPECT_EQ(FieldToIndex(std::string_view(record).substr(FieldPosition(record, 'C') + 2)), 0);
}

TEST(FieldToIndex, PlaceholderGivesZero) {
  EXPECT_EQ(FieldToIndex("#MA;D7"), 0);
  EXPECT_EQ(FieldToIndex("#SS"), 0);  // a placeholder needs no ';' behind
  const CodeTable table{"", "Acme"};
  EXPECT_EQ(table[static_cast<size_t>(FieldToIndex("#MA;D7"))], "");
}

TEST(FieldToIndex, NumberBeforeTheNextSemicolon) {
  EXPECT_EQ(FieldToIndex("3;D7;E2"), 3);
  EXPECT_EQ(FieldToIndex("12;O#N"), 12);
  EXPECT_EQ(FieldToIndex("2147483647;"), 2147483647);
}

TEST(FieldToIndex, FailsWhenNoSemicolonFollows) {
  EXPECT_THROW(FieldToIndex("2*"), Failure);
  EXPECT_THROW(FieldToIndex("2"), Failure);
  EXPECT_THROW(FieldToIndex(""), Failure);
  EXPECT_THROW(FieldToIndex("99999999999;"), Failure);
}

TEST(FieldToIndex, ReadsEveryCodedFieldOfARecord) {
  const std::string_view record = kZorblastFinal;
  auto indexOf = [&](char tag) {
    return FieldToIndex(record.substr(FieldPosition(record, tag) + 2));
  };
  EXPECT_EQ(indexOf('C'), 3);
  EXPECT_EQ(indexOf('D'), 7);
  EXPECT_EQ(indexOf('I'), 5);
  EXPECT_EQ(indexOf('J'), 31);
  EXPECT_EQ(indexOf('K'), 18);
  EXPECT_EQ(indexOf('M'), 0);
  EXPECT_EQ(indexOf('N'), 12);
  EXPECT_EQ(indexOf('O'), 2);
  EXPECT_THROW(indexOf('V'), Failure);
}

TEST(GameDescription, CutAtTheFirstSemicolon) {
  GameStore store;
  std::string record = NewXmlRecord("a", 0);
  FieldSet(record, "#Z", "Title; the subtitle");
  store.AppendGame("a", record);
  std::string bare = NewXmlRecord("b", 0);
  FieldSet(bare, "#Z", "");
  store.AppendGame("b", bare);
  store.AppendGame("c", NewXmlRecord("c", 0));  // the last game of a list may keep "#Z"
  store.AppendGame("d", std::string(kZorblastFinal));
  EXPECT_EQ(GameDescription(store, 1), "Title");
  EXPECT_EQ(GameDescription(store, 2), "");
  EXPECT_EQ(GameDescription(store, 3), "#Z");
  EXPECT_EQ(GameDescription(store, 4), "Zorb Blaster (set 2)");
  EXPECT_EQ(GameDescription(store, 0), "");
  EXPECT_EQ(GameDescription(store, 5), "");
}

TEST(IsPresent, LastCharacterIsAStar) {
  std::string record(kZorblastFinal);
  EXPECT_TRUE(IsPresent(record));
  record += "**";
  EXPECT_TRUE(IsPresent(record));
  record.pop_back();  // a scan that removes one star leaves the game present
  EXPECT_TRUE(IsPresent(record));
  EXPECT_FALSE(IsPresent(kZorblastAfterBlock));
  EXPECT_FALSE(IsPresent(""));
}

TEST(MakeSortKeys, DescriptionPaddedToOneHundredThenIndex) {
  GameStore store;
  const std::string longTitle(150, 'x');
  std::string a = NewXmlRecord("a", 0);
  FieldSet(a, "#Z", "Bravo");
  std::string b = NewXmlRecord("b", 0);
  FieldSet(b, "#Z", longTitle);
  std::string c = NewXmlRecord("c", 0);
  FieldSet(c, "#Z", "Alpha");
  store.AppendGame("a", a);
  store.AppendGame("b", b);
  store.AppendGame("c", c);

  std::vector<std::string> list{"untouched", "a", "b", "c", "nosuchgame"};
  MakeSortKeys(store, list);
  ASSERT_EQ(list.size(), 5u);
  EXPECT_EQ(list[0], "untouched");
  EXPECT_EQ(list[1], "Bravo" + std::string(95, ' ') + "1");
  EXPECT_EQ(list[2], std::string(100, 'x') + "2");
  EXPECT_EQ(list[3], "Alpha" + std::string(95, ' ') + "3");
  EXPECT_EQ(list[4], std::string(100, ' ') + "0");

  std::sort(list.begin() + 1, list.end());
  std::vector<int> order;
  for (size_t i = 1; i < list.size(); ++i) order.push_back(std::stoi(list[i].substr(100)));
  EXPECT_EQ(order, (std::vector<int>{0, 3, 1, 2}));
}

// --- The worked example ----------------------------------------------------------------------

TEST(WorkedExample, ZorblastRecordByteForByte) {
  GameStore store;
  Prefill(store.ManufacturerTable, 2);
  Prefill(store.YearTable, 6);
  Prefill(store.OrientationTable, 1);
  Prefill(store.ButtonsTable, 1);
  Prefill(store.DriverTable, 11);
  Prefill(store.SavestateTable, 1);
  Prefill(store.GenreTable, 4);
  Prefill(store.CategoryTable, 30);
  Prefill(store.NPlayersTable, 1);
  for (int v = 1; v <= 17; ++v) VersionIndex(std::to_string(v), store.VerAddedTable);

  // The opening line: name, offset, source file and parent.
  std::string record = NewXmlRecord("zorblast", 184123);
  FieldSet(record, "#CL", "zorbmain");
  FieldSet(record, "#D", Index(FindOrAppend("zorb.c", store.DriverTable)));
  EXPECT_EQ(record, kZorblastAtGameLine);

  // The lines of the block.
  FieldSet(record, "#Z", "Zorb Blaster (set 2)");
  FieldSet(record, "#Y", Index(FindOrAppend("1984", store.YearTable)));
  FieldSet(record, "#MA", Index(FindOrAppend("Acme", store.ManufacturerTable)));
  FieldSet(record, "#BU", Index(FindOrAppend("2", store.ButtonsTable)));
  FieldSet(record, "#CO", Index(FindOrAppend("joy8way", store.ControlsTable)));
  FieldSet(record, "#O", Index(FindOrAppend("90", store.OrientationTable)));
  FieldSet(record, "#ST", Index(FindOrAppend("good", store.StatusTable)));
  FieldSet(record, "#SS", Index(FindOrAppend("unsupported", store.SavestateTable)));
  EXPECT_EQ(record, kZorblastAfterBlock);

  // The analysers, then the rom scan.
  FieldSet(record, "#G", Index(FindOrAppend("Shooter", store.GenreTable)));
  FieldSet(record, "#CA", Index(FindOrAppend("Shooter / Flying", store.CategoryTable)));
  FieldSet(record, "#V", Index(VersionIndex("0.84", store.VerAddedTable)));
  FieldSet(record, "#N", Index(FindOrAppend("3P alt", store.NPlayersTable)));
  FieldSet(record, "#HI", "90210,90987");
  FieldSet(record, "#MI", "77001,411");
  FieldSet(record, "#CH", "1");
  record += '*';
  EXPECT_EQ(record, kZorblastFinal);

  // And the store reads it back.
  EXPECT_EQ(store.AppendGame("zorblast", record), 1);
  store.SetEndRecord(NewXmlRecord(EndRecordName, 300000));
  EXPECT_EQ(store.FindGame("zorblast"), 1);
  EXPECT_EQ(GameDescription(store, 1), "Zorb Blaster (set 2)");
  EXPECT_TRUE(IsPresent(store.GameRecords[1]));
  EXPECT_EQ(store.VerAddedTable[18], "0.084");
  const std::string_view stored = store.GameRecords[1];
  EXPECT_EQ(store.ManufacturerTable[static_cast<size_t>(
                FieldToIndex(stored.substr(FieldPosition(stored, 'C') + 2)))],
            "Acme");
  EXPECT_EQ(store.SavestateTable[static_cast<size_t>(FieldValue(stored, 'V')[0] - '0')],
            "unsupported");
}

// --- Resets ----------------------------------------------------------------------------------

// A store of the final zorblast record and its EndRecord, reset by `reset`.
template <typename Reset>
std::string AfterReset(Reset reset, std::string_view record = kZorblastFinal) {
  GameStore store;
  store.AppendGame("zorblast", std::string(record));
  store.SetEndRecord("\x1f;A300000;0;B#Z;Q1,2;R1;U3,4;V1");
  reset(store);
  EXPECT_EQ(store.GameRecords[2], "\x1f;A300000;0;B#Z;Q1,2;R1;U3,4;V1") << "EndRecord touched";
  return store.GameRecords[1];
}

std::string Final(std::string_view from, std::string_view to) {
  std::string record(kZorblastFinal);
  const size_t at = record.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  record.replace(at, from.size(), to);
  return record;
}

TEST(Resets, EachRoutinePutsBackItsPlaceholder) {
  EXPECT_EQ(AfterReset(ResetHistoryField), Final(";Q90210,90987;", ";Q#HI;"));
  EXPECT_EQ(AfterReset(ResetCheatField), Final(";R1;", ";R#CH;"));
  EXPECT_EQ(AfterReset(ResetNPlayersField), Final(";O2;", ";O#N;"));
  EXPECT_EQ(AfterReset(ResetVerAddedField), Final(";K18;", ";K#V;"));
  EXPECT_EQ(AfterReset(ResetGenreField), Final(";I5;", ";I#G;"));
  EXPECT_EQ(AfterReset(ResetCategoryField), Final(";J31;", ";J#CA;"));
  EXPECT_EQ(AfterReset(ResetCatverFields), Final(";I5;J31;K18;", ";I5;J#CA;K#V;"));
  // Fields that hold their placeholder stay as they are.
  EXPECT_EQ(AfterReset(ResetCommandField), kZorblastFinal);
  EXPECT_EQ(AfterReset(ResetHiscoreField), kZorblastFinal);
  EXPECT_EQ(AfterReset(ResetMatureField), kZorblastFinal);
}

TEST(Resets, SetFieldsComeBack) {
  std::string record(kZorblastFinal);
  FieldSet(record, "#CM", "5000,120");
  FieldSet(record, "#HS", "1");
  FieldSet(record, "#X", "*Mature*");
  std::string expected = record;
  expected.replace(expected.find(";T5000,120;"), 11, ";T#CM;");
  EXPECT_EQ(AfterReset(ResetCommandField, record), expected);
  expected = record;
  expected.replace(expected.find(";P1;"), 4, ";P#HS;");
  EXPECT_EQ(AfterReset(ResetHiscoreField, record), expected);
  expected = record;
  expected.replace(expected.find(";L*Mature*;"), 11, ";L#X;");
  EXPECT_EQ(AfterReset(ResetMatureField, record), expected);
}

TEST(Resets, WizsortFields) {
  std::string record(kZorblastFinal);
  FieldSet(record, "#X", "Adult");
  FieldSet(record, "#BI", "4");
  EXPECT_EQ(AfterReset(ResetWizsortFields, record),
            "zorblast;A184123;0;BZorb Blaster (set 2);C#MA;D#Y;E2;F2;G1;H1;I#G;J#CA;K#V;L#X;M#BI;"
            "N#D;O2;P#HS;Q90210,90987;R1;Szorbmain;T#CM;U77001,411;V2*");
}

TEST(Resets, MameinfoDropsEverythingBehindTheField) {
  EXPECT_EQ(AfterReset(ResetMameinfoField),
            "zorblast;A184123;0;BZorb Blaster (set 2);C3;D7;E2;F2;G1;H1;I5;J31;K18;L#X;M#BI;N12;"
            "O2;P#HS;Q90210,90987;R1;Szorbmain;T#CM;U#MI");
  // Twice gives the same.
  const std::string once = AfterReset(ResetMameinfoField);
  EXPECT_EQ(AfterReset(ResetMameinfoField, once), once);
  EXPECT_FALSE(IsPresent(once));
  EXPECT_EQ(FieldPosition(once, 'V'), std::string::npos);
}

TEST(Resets, EveryGameIsReset) {
  GameStore store;
  for (int i = 0; i < 5; ++i) {
    std::string record = NewXmlRecord("g" + std::to_string(i), i);
    FieldSet(record, "#HI", std::to_string(i) + ",99");
    store.AppendGame("g" + std::to_string(i), record);
  }
  ResetHistoryField(store);
  for (int i = 1; i <= 5; ++i) {
    EXPECT_EQ(store.GameRecords[static_cast<size_t>(i)],
              NewXmlRecord("g" + std::to_string(i - 1), i - 1));
  }
}

TEST(ResetField, WithoutSemicolonBehindTheOldValueSurvives) {
  std::string record = "g;A1;0;Q5";
  ResetField(record, 'Q', "#HI");
  EXPECT_EQ(record, "g;A1;0;Q#HI5");
  std::string tail(kZorblastFinal);
  ResetField(tail, 'V', "#SS");
  EXPECT_TRUE(tail.ends_with(";V#SS2*"));
}

TEST(ResetField, FirstOccurrenceOfTheTagIsTheOneReset) {
  std::string record = NewXmlRecord("g", 1);
  FieldSet(record, "#Z", "Quiz;Qx edition");
  FieldSet(record, "#HI", "10,20");
  ResetField(record, 'Q', "#HI");
  EXPECT_TRUE(record.starts_with("g;A1;0;BQuiz;Q#HI;C#MA;"));
  EXPECT_NE(record.find(";Q10,20;"), std::string::npos);
}

TEST(ResetField, RecordWithoutTheTagIsLeftAlone) {
  std::string record = "g;A1;0;B#Z";
  ResetField(record, 'Q', "#HI");
  EXPECT_EQ(record, "g;A1;0;B#Z");
}

TEST(ResetField, LegacyRecordsToo) {
  std::string record = NewLegacyRecord("g", 77);
  FieldSet(record, "#N", "3");
  ResetField(record, 'O', "#N");
  EXPECT_EQ(record, NewLegacyRecord("g", 77));
}

}  // namespace
}  // namespace tessarin
