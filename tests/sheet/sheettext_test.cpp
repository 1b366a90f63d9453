#include "sheet/sheettext.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/messages.h"
#include "sheettestsupport.h"

namespace tessarin {
namespace {

using sheettest::DataFiles;
using sheettest::SheetHome;

const DataFiles kCrlfFiles{"history_crlf.dat", "mameinfo_crlf.dat", "command_crlf.dat", true};

TEST(LayOutSheetText, WithoutTheDumpTheHistoryPageHasNoTexts) {
  SheetHome home("old_game_crlf.xml", true, kCrlfFiles);
  ASSERT_TRUE(home.built);
  std::filesystem::remove(home.dumpPath);
  GameDetailsLoader loader(home.ctx);
  std::string name = "zorbmain";
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  const SheetText text = LayOutSheetText(d, loader, home.ctx.messages);
  // No notes either, though the notes file has a block for the game.
  EXPECT_EQ(text.Text3, "- HISTORY -\r\n\r\n- MAMEINFO -");
  EXPECT_EQ(text.Text8, "ROMS");
  EXPECT_EQ(text.Text4, "BIOS SET");
  EXPECT_NE(text.Text1.find("Command.dat support : False\r\n"), std::string::npos);
}

TEST(LayOutSheetText, UnknownGameGivesEmptyValuesAndTheOriginalRom) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  std::string name = "nosuchgame";
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  const SheetText text = LayOutSheetText(d, loader, home.ctx.messages);
  EXPECT_EQ(text.Label1, "");
  EXPECT_EQ(text.Text1.substr(0, 18), "Name of Rom : \r\n\r\n");
  EXPECT_EQ(text.Text1.substr(text.Text1.size() - 27), "\r\nThis is the original Rom.");
  // Empty values only: no clone row, though the empty name begins every parent field.
  EXPECT_EQ(text.Text1.find("Clones list"), std::string::npos) << text.Text1;
  EXPECT_NE(text.Text2.find("Working : False\r\n"), std::string::npos);
  EXPECT_NE(text.Text2.find("Refresh : Hz\r\n"), std::string::npos);
}

TEST(LayOutSheetText, ListBoxes) {
  SheetHome home("old_game_crlf.xml", true, {});
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  std::string name = "zorbios";
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  // Marks left in an item are dropped from the lines; a chip item without its third field
  // stands as it is.
  loader.ChipList.push_back("cpu;#N");
  loader.BiosSetList.push_back("plain");
  const SheetText text = LayOutSheetText(d, loader, home.ctx.messages);
  EXPECT_EQ(text.Text4, "BIOS SET\r\neuro: Europe  - yes\r\nus: USA & Canada - \r\nplain");
  EXPECT_EQ(text.Text5, "CHIPS\r\ncpu;");
  EXPECT_EQ(text.Text8,
            "ROMS\r\n\r\nName: bios-e.bin\r\nSize: 65536\r\nCRC: 5a5a5a5a\r\n"
            "Sha1: 5555555555555555555555555555555555555555\r\nRegion: bios\r\nOffset: 0\r\n"
            "Bios: euro\r\n\r\nName: bios-u.bin\r\nSize: 65536\r\nCRC: 6b6b6b6b\r\n"
            "Sha1: 6666666666666666666666666666666666666666\r\nRegion: bios\r\nOffset: 0\r\n"
            "Bios: us");
  EXPECT_EQ(text.Text6, "DIPSWITCHS");
  EXPECT_EQ(text.Text7, "DISKS");
}

}  // namespace
}  // namespace tessarin
