#include "sheet/gamedetails.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "sheettestsupport.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using sheettest::DataFiles;
using sheettest::LineStartOf;
using sheettest::ReadBytes;
using sheettest::SheetFixture;
using sheettest::SheetHome;
using sheettest::WriteBytes;

const DataFiles kCrlfFiles{"history_crlf.dat", "mameinfo_crlf.dat", "command_crlf.dat", true};

DetailList List(std::initializer_list<const char*> items) {
  DetailList list{std::string()};
  for (const char* item : items) list.emplace_back(item);
  return list;
}

// Every field of a structure as "Name=value" lines, so that a whole structure compares at once
// and a difference names its field.
std::string Dump(const GameDetails& d) {
  std::string out;
  for (const DetailField& field : GameDetailsFields()) {
    out.append(field.name).push_back('=');
    switch (field.kind) {
      case DetailFieldKind::Text:
        out.append(d.*field.text);
        break;
      case DetailFieldKind::Flag:
        out.append(d.*field.flag ? "true" : "false");
        break;
      case DetailFieldKind::Index:
        out.append(std::to_string(d.*field.index));
        break;
    }
    out.push_back('\n');
  }
  return out;
}

GameDetails Load(GameDetailsLoader& loader, const std::string& game, bool presenceOnly = false) {
  std::string name = game;
  return loader.LoadGameDetails(name, 0, presenceOnly);
}

TEST(GameDetailsFields, FiftyThreeInTheStructuresOrder) {
  const auto& fields = GameDetailsFields();
  ASSERT_EQ(fields.size(), 53u);
  EXPECT_EQ(fields.front().name, "RomName");
  EXPECT_EQ(fields[8].name, "Working");
  EXPECT_EQ(fields[46].name, "Command");
  EXPECT_EQ(fields.back().name, "GameIndex");
  int texts = 0, flags = 0, indexes = 0;
  for (const DetailField& f : fields) {
    texts += f.kind == DetailFieldKind::Text && f.text != nullptr;
    flags += f.kind == DetailFieldKind::Flag && f.flag != nullptr;
    indexes += f.kind == DetailFieldKind::Index && f.index != nullptr;
  }
  EXPECT_EQ(texts, 40);
  EXPECT_EQ(flags, 7);
  EXPECT_EQ(indexes, 6);
}

// ---- the XML pass on the old CR LF dump ----

TEST(LoadGameDetails, OldGameDumpFullMode) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  const std::string dump = ReadBytes(home.dumpPath);
  // The record points at the game's own line, as the builder made it.
  ASSERT_NE(home.Record("zorbmain")
                .find(";A" + std::to_string(LineStartOf(dump, "<game name=\"zorbmain\"")) + ";"),
            std::string::npos);

  GameDetailsLoader loader(home.ctx);
  std::string name = "zorbmain";
  home.ctx.store.SourceIsXml = false;
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  EXPECT_TRUE(home.ctx.store.SourceIsXml);

  GameDetails expected;
  expected.RomName = "zorbmain";
  // The build resolves "&amp;" in records but not "&quot;", whose ';' then ends field B; the
  // tables keep their entities (they are decoded for display only).
  expected.Description = "Zorb Blaster & &quot";
  expected.Year = "1984";
  expected.Manufacturer = "Acme &amp; Sons";
  expected.VersionAdded = "0.037b5";  // the build takes it from the Mameinfo entry
  expected.Working = true;
  expected.SoundChannels = "1";
  expected.History = "\r\nZorb Blaster (c) 1984 Acme.\r\n\r\n- TRIVIA -\r\nA fine game.\r\n";
  expected.Screen = "raster";
  expected.Orientation = "90";
  expected.Aspect = "4:3";
  expected.Resolution = "320x240";
  expected.PersonalNotes = "My favourite.\r\nSecond line.";
  expected.Mameinfo = "MAME v0.37b5 [Someone]\r\nZ80 @ 3 MHz\r\n";
  expected.Driver = "zorb.c";
  expected.Control = "joy8way";
  expected.Refresh = "60.606060";
  expected.InputPlayers = "2";
  expected.CoinSlots = "2";
  // The ";F" of "&quot;Friends" in the description is found before the real field F.
  expected.Buttons = "";
  expected.ServiceButton = "yes";
  expected.TiltButton = "yes";
  expected.DriverStatus = "good";
  expected.DriverEmulation = "good";
  expected.DriverColor = "good";
  expected.DriverSound = "imperfect";
  expected.DriverGraphic = "good";
  expected.DriverCocktail = "preliminary";
  expected.DriverProtection = "good";
  expected.DriverSavestate = "supported";
  expected.DriverPalettesize = "16";
  expected.Command = "\n$info=zorbmain\r\n$cmd\r\n[Moves]\r\nFire: A\r\n$end";
  expected.ManufacturerIndex = 1;
  expected.YearIndex = 1;
  expected.VerAddedIndex = 1;
  expected.GameIndex = 1;
  EXPECT_EQ(Dump(d), Dump(expected));

  EXPECT_EQ(loader.RomList, List({"zb1.bin;4096;0a1b2c3d;1111111111111111111111111111111111111111;"
                                  "cpu1;0;;;;",
                                  "zb2.bin;4096;4e5f6a7b;2222222222222222222222222222222222222222;"
                                  "cpu1;1000;;;baddump;",
                                  "zbp.prom;32;;;proms;0;;;nodump;yes"}));
  EXPECT_EQ(loader.DiskList, List({}));
  EXPECT_EQ(loader.BiosSetList, List({}));
  EXPECT_EQ(loader.ChipList, List({"cpu;Z80;3072000", "audio;Namco;"}));
  // Three values, one item: the first value and the first default met.
  EXPECT_EQ(loader.DipSwitchList, List({"Lives;1;yes", "Cabinet;Upright;yes"}));
}

TEST(LoadGameDetails, OldGameDumpCloneDisksSamplesAndLastDisplay) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorblast");
  EXPECT_EQ(d.CloneOf, "zorbmain");
  // The game element is never parsed: no romof, no sampleof, and runnable="no" clears nothing.
  EXPECT_EQ(d.RomOf, "");
  EXPECT_EQ(d.SampleOf, "");
  EXPECT_TRUE(d.Working);
  EXPECT_EQ(d.Sample, "shot");
  // Each display overwrites the former: the last one stands.
  EXPECT_EQ(d.Screen, "raster");
  EXPECT_EQ(d.Resolution, "512x384");
  EXPECT_EQ(d.Aspect, "4:3");
  EXPECT_EQ(d.SoundChannels, "2");
  EXPECT_EQ(d.DriverPalettesize, "0");
  // The shared History entry, and no Mameinfo or Command entry of its own.
  EXPECT_EQ(d.History, "\r\nZorb Blaster (c) 1984 Acme.\r\n\r\n- TRIVIA -\r\nA fine game.\r\n");
  EXPECT_EQ(d.Mameinfo, "");
  EXPECT_EQ(d.Command, "");
  EXPECT_EQ(loader.ReadMameinfoEntry(d.CloneOf), "MAME v0.37b5 [Someone]\r\nZ80 @ 3 MHz\r\n");
  EXPECT_EQ(d.PersonalNotes, "Clone note.\r\nmention [zorbios] here\r\nBios note line.");
  EXPECT_EQ(loader.RomList, List({"zb1b.bin;4096;0a1b2c3d;;cpu1;0;;zb1.bin;;"}));
  EXPECT_EQ(loader.DiskList,
            List({"zorbdisk;0123456789abcdef0123456789abcdef;"
                  "3333333333333333333333333333333333333333;;disks;0;",
                  "zorbdisk2;;4444444444444444444444444444444444444444;zorbdisk;disks;1;nodump"}));
  EXPECT_EQ(loader.ChipList, List({"cpu;6502;1500000"}));
  EXPECT_EQ(loader.DipSwitchList, List({}));
}

TEST(LoadGameDetails, BiosSetsAndEntitiesOfTheBlock) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbios");
  EXPECT_EQ(d.Description, "Zorb <BIOS>");
  EXPECT_EQ(d.Year, "198?");
  // "&quot;" turns into a quote before the tags are read, so the value stops at it.
  EXPECT_EQ(loader.BiosSetList, List({"euro;Europe ;yes", "us;USA & Canada;"}));
  EXPECT_EQ(loader.RomList,
            List({"bios-e.bin;65536;5a5a5a5a;5555555555555555555555555555555555555555;bios;0;"
                  "euro;;;",
                  "bios-u.bin;65536;6b6b6b6b;6666666666666666666666666666666666666666;bios;0;"
                  "us;;;"}));
  EXPECT_EQ(d.History, "\r\nThe BIOS of the Zorb boards.");
  EXPECT_EQ(d.Mameinfo, "MAME v0.100 BIOS only");
  EXPECT_EQ(d.Command, "\n$info=zorbios\r\n$cmd\r\nBIOS has no moves\r\n$end");
  // A note block may start on a line of another game's block.
  EXPECT_EQ(d.PersonalNotes, "Bios note line.");
}

TEST(LoadGameDetails, ZeroByZeroDisplayAndACommonFactorAbove111) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbzero");
  // 0 by 0 is left alone; 339 by 226 share only 113 and stay as they are.
  EXPECT_EQ(d.Resolution, "339x226");
  EXPECT_EQ(d.Aspect, "339:226");
  EXPECT_EQ(d.Screen, "lcd");
  EXPECT_EQ(d.Year, "");
  EXPECT_EQ(d.YearIndex, 0);
}

// ---- today's LF dump ----

TEST(LoadGameDetails, TodaysMachineDumpWithLfLineEnds) {
  SheetHome home("machine_lf.xml", true,
                 {"history_lf.dat", "mameinfo_lf.dat", "command_crlf.dat", true});
  ASSERT_TRUE(home.built);
  ASSERT_EQ(home.ctx.store.GameCount(), 2);  // the devices make no record
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "puckman");
  EXPECT_EQ(d.Description, "PuckMan (Japan set 1)");
  EXPECT_EQ(d.Resolution, "288x224");
  EXPECT_EQ(d.Aspect, "9:7");
  EXPECT_EQ(d.Screen, "raster");
  EXPECT_EQ(d.Refresh, "60.606061");
  EXPECT_EQ(d.InputPlayers, "2");
  EXPECT_EQ(d.CoinSlots, "2");
  EXPECT_EQ(d.ServiceButton, "yes");
  EXPECT_EQ(d.TiltButton, "");
  EXPECT_EQ(d.Buttons, "1");  // from the first control line that has buttons
  EXPECT_EQ(d.Control, "joy");
  EXPECT_EQ(d.Driver, "pacman/pacman.cpp");
  EXPECT_EQ(d.DriverStatus, "good");
  EXPECT_EQ(d.DriverEmulation, "good");
  EXPECT_EQ(d.DriverSavestate, "supported");
  EXPECT_EQ(d.DriverColor, "");
  EXPECT_TRUE(d.Working);
  EXPECT_EQ(
      loader.RomList,
      List({"pm1_prg1.6e;2048;f36e88ab;813cecf44bf5464b1aed64b36f5047e4c79ba176;maincpu;0;;;;",
            "pm1-1.7f;32;2fc650bd;8d0268dee78e47c712202b0ec4f1f51109b1f2a5;proms;0;;;;"}));
  // The device that follows in the dump is no part of the game.
  EXPECT_EQ(loader.ChipList, List({"cpu;Zilog Z80;3072000", "audio;Speaker;"}));
  // The switch places between the values don't end the run of values.
  EXPECT_EQ(loader.DipSwitchList, List({"Coinage;2 Coins/1 Credit;yes", "Lives;1;yes"}));
  // LF data files: the line end in front of "$end" is one byte, and so is the one behind $mame;
  // the six characters skipped from "$bio" on are "$bio" and two LF here.
  EXPECT_EQ(d.History, "Pac-Man (c) 1980 Namco.");
  EXPECT_EQ(d.Mameinfo, "MAME v0.1 [Nicola Salmoria]");
  EXPECT_EQ(d.Command, "\n$info=puckman\r\n$cmd\r\nEat dots.\r\n$end");
  EXPECT_EQ(d.PersonalNotes, "Puck notes.");

  const GameDetails last = Load(loader, "pacman");
  EXPECT_EQ(last.CloneOf, "puckman");
  EXPECT_EQ(last.Aspect, "9:7");
  EXPECT_EQ(loader.RomList.size(), 3u);
  EXPECT_EQ(loader.ChipList, List({"cpu;Zilog Z80;3072000"}));
  EXPECT_EQ(loader.DipSwitchList, List({"Lives;1;yes"}));
  EXPECT_EQ(loader.BuildClonesList("puckman", false), "pacman");
}

TEST(LoadGameDetails, LfHistoryAndMameinfoDropOneByteBeforeTheEnd) {
  SheetHome home("old_game_crlf.xml", true, {"history_lf.dat", "mameinfo_lf.dat", "", false});
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_EQ(d.History, "Zorb Blaster (c) 1984 Acme.\n\n- TRIVIA -\nA fine game.\n");
  EXPECT_EQ(d.Mameinfo, "MAME v0.37b5 [Someone]\nZ80 @ 3 MHz\n");
  EXPECT_EQ(d.Command, "");
  EXPECT_EQ(d.PersonalNotes, "");
}

// ---- the listinfo pass ----

TEST(LoadGameDetails, ListInfoDump) {
  SheetHome home("zorb.listinfo", false, kCrlfFiles);
  ASSERT_TRUE(home.built);
  ASSERT_FALSE(home.ctx.store.SourceIsXml);
  GameDetailsLoader loader(home.ctx);
  home.ctx.store.SourceIsXml = true;
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_FALSE(home.ctx.store.SourceIsXml);
  EXPECT_EQ(d.RomName, "zorbmain");
  EXPECT_EQ(d.Description, "Zorb Blaster \\Deluxe\\");
  EXPECT_EQ(d.Year, "1984");
  EXPECT_EQ(d.Manufacturer, "\"Acme\"");
  EXPECT_EQ(d.Screen, "raster");
  EXPECT_EQ(d.Orientation, "vertical");
  EXPECT_EQ(d.Resolution, "224x288");
  EXPECT_EQ(d.Aspect, "3:4");
  EXPECT_EQ(d.Refresh, "60.606060");
  EXPECT_EQ(d.SoundChannels, "1");
  EXPECT_EQ(d.Control, "joy8way");
  EXPECT_EQ(d.Buttons, "2");
  EXPECT_EQ(d.CoinSlots, "2");
  EXPECT_EQ(d.ServiceButton, "yes");
  EXPECT_EQ(d.TiltButton, "yes");
  EXPECT_EQ(d.InputPlayers, "");
  EXPECT_EQ(d.DriverStatus, "good");
  EXPECT_EQ(d.DriverColor, "good");
  EXPECT_EQ(d.DriverSound, "imperfect");
  EXPECT_EQ(d.Colors, "16");
  EXPECT_EQ(d.DriverEmulation, "");
  EXPECT_FALSE(d.Working);  // only the XML pass sets it
  EXPECT_EQ(d.History, "\r\nZorb Blaster (c) 1984 Acme.\r\n\r\n- TRIVIA -\r\nA fine game.\r\n");
  EXPECT_EQ(loader.RomList, List({"zb1.bin;4096;0a1b2c3d;;cpu1;0;;;;",
                                  "zb2.bin;4096;4e5f6a7b;;cpu1;1000;;;;baddump"}));
  EXPECT_EQ(loader.ChipList, List({"cpu;Z80;3072000", "audio;Namco;"}));
  // Each value of a switch is an item of its own, and the default is never stored.
  EXPECT_EQ(loader.DipSwitchList, List({"Lives;\"1\";", "Lives;\"2\";", "Lives;\"3\";",
                                        "Cabinet;\"Upright\";", "Cabinet;\"Cocktail\";"}));

  const GameDetails clone = Load(loader, "zorblast");
  EXPECT_EQ(clone.CloneOf, "zorbmain");
  EXPECT_EQ(clone.RomOf, "zorbmain");
  EXPECT_EQ(clone.SampleOf, "zorbmain");
  EXPECT_EQ(clone.Orientation, "horizontal");
  EXPECT_EQ(clone.Resolution, "400x300");
  EXPECT_EQ(clone.Aspect, "4:3");
  EXPECT_EQ(loader.RomList, List({"zb1b.bin;4096;0a1b2c3d;;cpu1;0;;;;"}));
}

// ---- lookup, the dump's absence, presence-only ----

TEST(LoadGameDetails, UnknownNameGivesEmptyStructureAndKeepsTheLists) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  Load(loader, "zorbmain");
  const DetailList roms = loader.RomList;
  const DetailList dips = loader.DipSwitchList;
  ASSERT_EQ(roms.size(), 4u);
  std::string name = "nosuchgame";
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  EXPECT_EQ(Dump(d), Dump(GameDetails{}));
  EXPECT_EQ(name, "nosuchgame");
  EXPECT_EQ(loader.RomList, roms);
  EXPECT_EQ(loader.DipSwitchList, dips);
  // Names are compared exactly.
  name = "ZORBMAIN";
  EXPECT_EQ(loader.LoadGameDetails(name, 0, false).GameIndex, 0);
}

TEST(LoadGameDetails, ByIndexSetsTheName) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  std::string name;
  const GameDetails d = loader.LoadGameDetails(name, 3, false);
  EXPECT_EQ(name, "zorbios");
  EXPECT_EQ(d.RomName, "zorbios");
  EXPECT_EQ(d.GameIndex, 3);
  // An index outside the games finds nothing.
  name.clear();
  EXPECT_EQ(loader.LoadGameDetails(name, 99, false).RomName, "");
  EXPECT_EQ(name, "");
}

TEST(LoadGameDetails, WithoutTheDumpOnlyTheRecordsFields) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  Load(loader, "zorbmain");
  ASSERT_EQ(loader.RomList.size(), 4u);
  std::filesystem::remove(home.dumpPath);
  // A star at the end of the record would make GotIt true, were the data files reached.
  home.ctx.store.GameRecords[1] += "*";
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_EQ(d.RomName, "zorbmain");
  EXPECT_EQ(d.Description, "Zorb Blaster & &quot");
  EXPECT_EQ(d.Manufacturer, "Acme &amp; Sons");
  EXPECT_EQ(d.Driver, "zorb.c");
  EXPECT_EQ(d.DriverStatus, "good");
  EXPECT_EQ(d.History, "");
  EXPECT_EQ(d.Mameinfo, "");
  EXPECT_EQ(d.Command, "");
  EXPECT_EQ(d.PersonalNotes, "");
  EXPECT_FALSE(d.GotIt);
  EXPECT_FALSE(d.Working);
  EXPECT_EQ(d.Resolution, "");
  // The lists were reset before the dump was looked for.
  EXPECT_EQ(loader.RomList, List({}));
  EXPECT_EQ(loader.ChipList, List({}));
}

TEST(LoadGameDetails, TheDumpInTheApplicationFolderStandsInForTheMissingOne) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  std::filesystem::rename(home.dumpPath, home.Folder() + "listxml.txt");
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_EQ(d.Resolution, "320x240");
  EXPECT_EQ(loader.RomList.size(), 4u);
}

TEST(LoadGameDetails, PresenceOnlyMarksTheTextsWithoutOpeningTheFiles) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails full = Load(loader, "zorbmain");
  const DetailList roms = loader.RomList;
  // Gone files can't be opened: presence-only doesn't look at them.
  std::filesystem::remove_all(home.Folder() + "dat");
  const GameDetails d = Load(loader, "zorbmain", true);
  EXPECT_EQ(d.History, "True");
  EXPECT_EQ(d.Mameinfo, "True");
  EXPECT_EQ(d.Command, "True");
  EXPECT_EQ(d.PersonalNotes, full.PersonalNotes);
  EXPECT_EQ(d.Resolution, full.Resolution);
  EXPECT_EQ(loader.RomList, roms);
  const GameDetails clone = Load(loader, "zorblast", true);
  EXPECT_EQ(clone.History, "True");
  EXPECT_EQ(clone.Mameinfo, "");
  EXPECT_EQ(clone.Command, "");
  // And in full mode the missing files leave the texts empty.
  const GameDetails gone = Load(loader, "zorbmain");
  EXPECT_EQ(gone.History, "");
  EXPECT_EQ(gone.Mameinfo, "");
  EXPECT_EQ(gone.Command, "");
}

TEST(LoadGameDetails, DataFilesFallBackToTheDataFolder) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  // The settings name files that are gone; the default names in DataFiles are read instead.
  for (const char* name : {"history.dat", "mameinfo.dat", "command.dat"}) {
    std::filesystem::rename(home.Folder() + "dat/" + name,
                            home.Folder() + "DataFiles/" + std::string(name));
  }
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_EQ(d.History, "\r\nZorb Blaster (c) 1984 Acme.\r\n\r\n- TRIVIA -\r\nA fine game.\r\n");
  EXPECT_EQ(d.Mameinfo, "MAME v0.37b5 [Someone]\r\nZ80 @ 3 MHz\r\n");
  EXPECT_EQ(d.Command.substr(d.Command.size() - 4), "$end");
  // ReadMameinfoEntry takes the setting as it stands while it isn't empty or -1.
  EXPECT_EQ(loader.ReadMameinfoEntry("zorbmain"), "");
  home.ctx.settings.InfWrite("DataFile3", "-1");
  EXPECT_EQ(loader.ReadMameinfoEntry("zorbmain"), d.Mameinfo);
}

TEST(LoadGameDetails, CommaLessCommandFieldGivesNoCommand) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  std::string& record = home.ctx.store.GameRecords[1];
  ResetField(record, 'T', "7");
  ASSERT_NE(record.find(";T7;"), std::string::npos);
  GameDetailsLoader loader(home.ctx);
  EXPECT_EQ(Load(loader, "zorbmain").Command, "");
  EXPECT_EQ(Load(loader, "zorbmain", true).Command, "");
}

TEST(LoadGameDetails, PresenceMarkGivesGotItAndKeepsTheMameinfoLength) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const GameDetails before = Load(loader, "zorbmain");
  EXPECT_FALSE(before.GotIt);
  std::string& record = home.ctx.store.GameRecords[1];
  record += "**";
  GameDetails d = Load(loader, "zorbmain");
  EXPECT_TRUE(d.GotIt);
  EXPECT_EQ(d.Mameinfo, before.Mameinfo);
  // Field U last in the record (the Mameinfo update drops what follows it): the star sits
  // right behind the length.
  const size_t u = record.find(";U");
  const std::string range(FieldValue(record, 'U'));
  record.resize(u);
  record += ";U" + range + "*";
  d = Load(loader, "zorbmain");
  EXPECT_TRUE(d.GotIt);
  EXPECT_EQ(d.Mameinfo, before.Mameinfo);
}

TEST(LoadGameDetails, RecordFlags) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  std::string& record = home.ctx.store.GameRecords[1];
  ResetField(record, 'L', "*Mature*");
  ResetField(record, 'R', "1");
  ResetField(record, 'P', "1");
  home.ctx.store.GenreTable.push_back("Maze");
  ResetField(record, 'I', "1");
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorbmain");
  EXPECT_TRUE(d.Mature);
  EXPECT_TRUE(d.CheatSupport);
  EXPECT_TRUE(d.HiscoreSupport);
  EXPECT_EQ(d.Genre, "Maze");
  EXPECT_EQ(d.GenreIndex, 1);
  EXPECT_FALSE(d.CorrectColors);
  EXPECT_FALSE(d.CorrectSounds);
  const GameDetails other = Load(loader, "zorblast");
  EXPECT_FALSE(other.Mature);
  EXPECT_FALSE(other.CheatSupport);
  EXPECT_FALSE(other.HiscoreSupport);
}

TEST(LoadGameDetails, EmptyBlockLeavesWorkingFalse) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  // Give game 2 the offset of game 3: its block has no length.
  std::string& record = home.ctx.store.GameRecords[2];
  const std::string next(FieldValue(home.ctx.store.GameRecords[3], 'A'));
  ResetField(record, 'A', next);
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = Load(loader, "zorblast");
  EXPECT_FALSE(d.Working);
  EXPECT_EQ(d.Resolution, "");
  EXPECT_EQ(loader.RomList, List({}));
}

// Gives the files and folders named stamps of an hour ago plus `step` seconds, as if they had
// been written long before the loader looks (then the loader keeps what it found), each step
// later than the one before (as real changes are).
void Age(const std::vector<std::string>& paths, int step) {
  const auto when = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1) +
                    std::chrono::seconds(step);
  for (const std::string& path : paths) {
    std::error_code ec;
    if (std::filesystem::exists(path, ec)) std::filesystem::last_write_time(path, when, ec);
  }
}

void NotesFollowTheFile(bool aged) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  const std::string app = home.Folder();
  const std::vector<std::string> places = {app, app + "DataFiles", app + "notes.txt",
                                           app + "DataFiles/Notes.TXT"};
  int step = 0;
  auto settle = [&] {
    if (aged) Age(places, ++step);
  };
  settle();
  GameDetailsLoader loader(home.ctx);
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "");
  // A file that appears later, under another case, in the data folder.
  WriteBytes(app + "DataFiles/Notes.TXT", "[zorbmain]\r\nfirst\r\n");
  settle();
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "first");
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "first");
  // Then one in the application folder, which comes first.
  WriteBytes(app + "notes.txt", "[zorbmain]\r\nsecond\r\n");
  settle();
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "second");
  // Edited in place, to a text of the same length.
  WriteBytes(app + "notes.txt", "[zorbmain]\r\nSECOND\r\n");
  settle();
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "SECOND");
  std::filesystem::remove(app + "notes.txt");
  settle();
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "first");
  std::filesystem::remove(app + "DataFiles/Notes.TXT");
  settle();
  EXPECT_EQ(Load(loader, "zorbmain").PersonalNotes, "");
}

TEST(LoadGameDetails, NotesFollowTheFileOnDisk) { NotesFollowTheFile(false); }
TEST(LoadGameDetails, NotesFollowTheFileOnDiskWhenItsStampsAreOld) { NotesFollowTheFile(true); }

// ---- small routines ----

TEST(ReduceRatio, Examples) {
  std::int32_t w = 320, h = 240;
  ReduceRatio(w, h);
  EXPECT_EQ(w, 4);
  EXPECT_EQ(h, 3);
  w = 288, h = 224;
  ReduceRatio(w, h);
  EXPECT_EQ(w, 9);
  EXPECT_EQ(h, 7);
  w = 113 * 5, h = 113 * 3;
  ReduceRatio(w, h);
  EXPECT_EQ(w, 565);
  EXPECT_EQ(h, 339);
  w = 0, h = 0;
  ReduceRatio(w, h);  // must come back
  EXPECT_EQ(w, 0);
  EXPECT_EQ(h, 0);
  w = 0, h = 6;
  ReduceRatio(w, h);
  EXPECT_EQ(w, 0);
  EXPECT_EQ(h, 1);
  w = 111 * 2, h = 111 * 3;
  ReduceRatio(w, h);
  EXPECT_EQ(w, 2);
  EXPECT_EQ(h, 3);
}

TEST(ParseTagAttributes, KeysValuesAndTheMark) {
  TagAttributes a;
  ParseTagAttributes("rom name=\"a b.bin\" size=\"4096\" crc=\"00ff\"/", false, a);
  ASSERT_EQ(a.AttrCount, 3);
  EXPECT_EQ(a.AttrKeys[1], "*rom_name");
  EXPECT_EQ(a.AttrValues[1], "a b.bin");
  EXPECT_EQ(a.AttrKeys[2], "rom_size");
  EXPECT_EQ(a.AttrValues[2], "4096");
  EXPECT_EQ(a.AttrKeys[3], "rom_crc");
  EXPECT_EQ(a.AttrValues[3], "00ff");
  ParseTagAttributes("input control_type=\"joy\" ways=\"4\"/", true, a);
  ASSERT_EQ(a.AttrCount, 5);
  EXPECT_EQ(a.AttrKeys[4], "input_control_type");
  EXPECT_EQ(a.AttrKeys[5], "input_ways");
  // A value without quotes runs to the end; an empty one is kept empty.
  ParseTagAttributes("x k = v w", false, a);
  ParseTagAttributes("y e=\"\" f=\"1\"", false, a);
  ASSERT_EQ(a.AttrCount, 8);
  EXPECT_EQ(a.AttrKeys[6], "*x_k");
  EXPECT_EQ(a.AttrValues[6], "v w");
  EXPECT_EQ(a.AttrValues[7], "");
  EXPECT_EQ(a.AttrKeys[8], "y_f");
  EXPECT_EQ(a.AttrValues[8], "1");
  // No blank or no '=': nothing.
  ParseTagAttributes("sample", false, a);
  ParseTagAttributes("sample name", false, a);
  EXPECT_EQ(a.AttrCount, 8);
  // Clear keeps the room.
  a.Clear();
  EXPECT_EQ(a.AttrCount, 0);
  EXPECT_GE(a.AttrKeys.size(), 9u);
}

TEST(FieldToIndex, PlaceholderNumberAndMissingSemicolon) {
  EXPECT_EQ(FieldToIndex("#CA;K#V"), 0);
  EXPECT_EQ(FieldToIndex("31;K18"), 31);
  EXPECT_THROW(FieldToIndex("2*"), Failure);
}

}  // namespace
}  // namespace tessarin
