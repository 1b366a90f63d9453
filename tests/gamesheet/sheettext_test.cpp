// The game sheet's text layout: box by box, over hand-made details and over the fixture
// database.

#include "sheet/sheettext.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gamesheettestsupport.h"
#include "sheet/gamedetails.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

using gamesheettest::SheetHome;

struct Lists {
  DetailList roms{""}, disks{""}, biosSets{""}, chips{""}, dips{""};
  SheetDetailLists View() const { return {roms, disks, biosSets, chips, dips}; }
};

// The English table, from a context of its own kept for the whole run.
const Messages& English() {
  static testsupport::TempFolder folder;
  static AppContext ctx(folder.Path());
  static const bool loaded = [] {
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    return true;
  }();
  (void)loaded;
  return ctx.messages;
}

GameDetails Sample() {
  GameDetails d;
  d.RomName = "mygame";
  d.Description = "My &amp; Game";
  d.HiscoreSupport = true;
  d.Command = "moves$end";
  d.DriverSavestate = "supported";
  d.Sample = "boom";
  d.Driver = "mydrv";
  d.DriverStatus = "good";
  d.DriverEmulation = "good";
  d.DriverColor = "imperfect";
  d.DriverSound = "good";
  d.DriverGraphic = "";
  d.DriverCocktail = "preliminary";
  d.Screen = "raster";
  d.Orientation = "Vertical";
  d.Manufacturer = "Acme";
  d.Year = "1984";
  d.VersionAdded = ".37b5";
  d.Genre = "Shooter";
  d.Category = "Shooter / Flying";
  d.Working = true;
  d.SoundChannels = "2";
  d.Colors = "0";
  d.DriverPalettesize = "512";
  d.Resolution = "320x240";
  d.Aspect = "4:3";
  d.Refresh = "60";
  d.Control = "joy";
  d.Buttons = "3";
  d.InputPlayers = "2";
  d.CoinSlots = "2";
  d.ServiceButton = "yes";
  d.TiltButton = "";
  return d;
}

TEST(SheetText, FirstAndSecondBoxesRowByRow) {
  const Messages& messages = English();
  const Lists lists;
  const SheetText t = LayOutSheetText(Sample(), lists.View(), messages, "", "");
  EXPECT_EQ(t.Label1, "My &amp; Game");
  EXPECT_EQ(t.Text1,
            "Name of Rom : mygame\r\n\r\n"
            "Hiscore.dat support : True\r\n"
            "Cheat.dat support : False\r\n"
            "Command.dat support : True\r\n"
            "Savestate support: supported\r\n\r\n"
            "Sample : boom\r\n"
            "Driver : mydrv\r\n"
            "Driver status : good\r\n"
            "Emulation status : good\r\n"
            "Colors emulation : imperfect\r\n"
            "Sounds emulation : good\r\n"
            "Graphic emulation : \r\n"
            "Cocktail driver : preliminary\r\n\r\n"
            "Screen : raster\r\n"
            "Orientation : Vertical\r\n"
            "This is the original Rom.");
  EXPECT_EQ(t.Text2,
            "Manufacturer : Acme\r\n"
            "Year : 1984\r\n"
            "Version added : .37b5\r\n\r\n"
            "Genre : Shooter\r\n"
            "Category : Shooter / Flying\r\n\r\n"
            "Working : True\r\n"
            "Correct colors : False\r\n"
            "Correct sounds : False\r\n\r\n"
            "Sound channels : 2\r\n"
            "Number of colors : 512\r\n"
            "Resolution : 320x240\r\n"
            "Aspect : 4:3\r\n"
            "Refresh : 60Hz\r\n\r\n"
            "Control : joy\r\n"
            "Buttons : 3\r\n"
            "Player buttons : 2\r\n"
            "Coin slots : 2\r\n"
            "Service : yes\r\n"
            "Tilt : ");
}

TEST(SheetText, CloneRowsAndColours) {
  const Messages& messages = English();
  const Lists lists;
  GameDetails d = Sample();
  d.CloneOf = "parent";
  d.Colors = "256";
  const SheetText t = LayOutSheetText(d, lists.View(), messages, "clone1, clone2", "");
  EXPECT_NE(t.Text1.find("\r\nOrientation : Vertical\r\nClones list : clone1, clone2\r\nThis is "
                         "a clone of : parent"),
            std::string::npos);
  EXPECT_EQ(t.Text1.find("original"), std::string::npos);
  EXPECT_NE(t.Text2.find("Number of colors : 256\r\n"), std::string::npos);
  EXPECT_EQ(t.CurrentClone, "parent");
}

TEST(SheetText, ThirdBoxLosesTheNotesAndBringsThemBack) {
  const Messages& messages = English();
  const Lists lists;
  GameDetails d;
  d.History = "The story.";
  d.Mameinfo = "MAME v0.1";
  d.PersonalNotes = "  my note  ";
  SheetText t = LayOutSheetText(d, lists.View(), messages, "", "parent's info");
  EXPECT_EQ(t.Text3,
            "- HISTORY -\r\nThe story.\r\n- MAMEINFO -\r\nMAME v0.1\r\n\r\n- NOTES -\r\n  my "
            "note  ");
  d.Mameinfo.clear();
  d.PersonalNotes.clear();
  t = LayOutSheetText(d, lists.View(), messages, "", "parent's info");
  EXPECT_EQ(t.Text3, "- HISTORY -\r\nThe story.\r\n- MAMEINFO -\r\nparent's info");
  t = LayOutSheetText(GameDetails{}, lists.View(), messages, "", "");
  EXPECT_EQ(t.Text3, "- HISTORY -\r\n\r\n- MAMEINFO -");
}

TEST(SheetText, ListBoxes) {
  const Messages& messages = English();
  Lists lists;
  lists.biosSets.push_back("default;Standard board;yes");
  lists.biosSets.push_back("alt;Other board;");
  lists.biosSets.push_back("lonely");
  lists.chips.push_back("cpu;Zilog Z80;3072000");
  lists.chips.push_back("audio;Namco;");
  lists.chips.push_back("odd;one");
  lists.dips.push_back("Lives;3;yes");
  lists.dips.push_back("Bonus;#V;#D");
  lists.disks.push_back("pacdisk;;0123;;ide;0;");
  lists.disks.push_back(";skipped;;;;;");
  lists.roms.push_back("pacman.6e;4096;c1e6ab10;e87e;maincpu;0;;;;");
  lists.roms.push_back("pm1.6e;2048;f36e;813c;maincpu;0;;pacman.6e;baddump;");
  const SheetText t = LayOutSheetText(GameDetails{}, lists.View(), messages, "", "");
  EXPECT_EQ(t.Text4, "BIOS SET\r\ndefault: Standard board - yes\r\nalt: Other board - \r\nlonely");
  EXPECT_EQ(t.Text5, "CHIPS\r\nZilog Z80 (cpu) - 3072000\r\nNamco (audio) - \r\nodd;one");
  EXPECT_EQ(t.Text6, "DIPSWITCHS\r\nLives - 3 - yes\r\nBonus - ");
  EXPECT_EQ(t.Text7, "DISKS\r\n\r\nName: pacdisk\r\nSha1: 0123\r\nRegion: ide\r\nIndex: 0");
  EXPECT_EQ(t.Text8,
            "ROMS\r\n\r\nName: pacman.6e\r\nSize: 4096\r\nCRC: c1e6ab10\r\nSha1: e87e\r\nRegion: "
            "maincpu\r\nOffset: 0\r\n\r\nName: pm1.6e\r\nSize: 2048\r\nCRC: f36e\r\nSha1: "
            "813c\r\nRegion: maincpu\r\nOffset: 0\r\nMerge: pacman.6e\r\nStatus: baddump");
}

TEST(SheetText, DisplayModeDecodesEachValueOnItsOwn) {
  const Messages& messages = English();
  const Lists lists;
  GameDetails d = Sample();
  d.History = "caf\xe9";             // Windows-1252
  d.Mameinfo = "\xc3\xa9t\xc3\xa9";  // UTF-8
  d.Manufacturer = "Acme &lt;Japan&gt;";
  const SheetText t = LayOutSheetText(d, lists.View(), messages, "", "", SheetTextMode::Display);
  EXPECT_EQ(t.Label1, "My & Game");
  EXPECT_NE(t.Text3.find("caf\xc3\xa9\r\n"), std::string::npos);
  EXPECT_NE(t.Text3.find("\xc3\xa9t\xc3\xa9"), std::string::npos);
  EXPECT_NE(t.Text2.find("Manufacturer : Acme <Japan>"), std::string::npos);
  EXPECT_EQ(t.CurrentTitle, "My &amp; Game");  // the tag of downloads keeps the bytes
}

TEST(SheetText, FixtureGameWithItsFiles) {
  SheetHome home;
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const SheetText t = ShowGameText(home.ctx, loader, "pacman");
  EXPECT_EQ(t.CurrentRom, "pacman");
  EXPECT_EQ(t.CurrentParent, "");  // XML mode leaves RomOf empty
  EXPECT_NE(t.Text1.find("Clones list : puckman\r\nThis is the original Rom."), std::string::npos)
      << t.Text1;
  EXPECT_NE(t.Text1.find("Command.dat support : True"), std::string::npos);
  EXPECT_NE(t.Text3.find("- HISTORY -\r\n\r\nPac-Man (c) 1980 Namco"), std::string::npos)
      << t.Text3;
  EXPECT_NE(t.Text3.find("- MAMEINFO -\r\nMAME v0.1 [Nicola Salmoria]"), std::string::npos)
      << t.Text3;
  EXPECT_NE(t.Text3.find("\r\n\r\n- NOTES -\r\nBeat level 3 on a Sunday."), std::string::npos)
      << t.Text3;
  EXPECT_NE(t.Text5.find("Zilog Z80 (cpu) - 3072000"), std::string::npos) << t.Text5;
  EXPECT_NE(t.Text8.find("Name: pacman.6f\r\nSize: 4096"), std::string::npos) << t.Text8;
}

TEST(SheetText, CloneWithoutMameinfoShowsItsParents) {
  SheetHome home;
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  const SheetText t = ShowGameText(home.ctx, loader, "puckman");
  EXPECT_EQ(t.CurrentClone, "pacman");
  EXPECT_NE(t.Text1.find("This is a clone of : pacman"), std::string::npos) << t.Text1;
  EXPECT_NE(t.Text3.find("- MAMEINFO -\r\nMAME v0.1 [Nicola Salmoria]"), std::string::npos)
      << t.Text3;
}

TEST(SheetText, DumpMissingShowsNoHistoryAndNoNotes) {
  SheetHome home;
  ASSERT_TRUE(home.built);
  std::filesystem::remove(DefaultListXmlPath(home.Folder()));
  GameDetailsLoader loader(home.ctx);
  const SheetText t = ShowGameText(home.ctx, loader, "pacman");
  EXPECT_EQ(t.Text3, "- HISTORY -\r\n\r\n- MAMEINFO -");
  EXPECT_NE(t.Text2.find("Manufacturer : Namco (Midway license)"), std::string::npos);
}

TEST(SheetText, UnknownGameAndEmptyDatabase) {
  SheetHome home;
  ASSERT_TRUE(home.built);
  GameDetailsLoader loader(home.ctx);
  SheetText t = ShowGameText(home.ctx, loader, "nosuchgame");
  EXPECT_NE(t.Text1.find("Name of Rom : \r\n"), std::string::npos);
  EXPECT_NE(t.Text1.find("This is the original Rom."), std::string::npos);
  // Empty values: no clones row, though every parent field begins with the empty name.
  EXPECT_EQ(t.Text1.find("Clones list"), std::string::npos) << t.Text1;
  EXPECT_EQ(t.Label1, "");

  home.ctx.store.Clear();
  t = ShowGameText(home.ctx, loader, "pacman");
  EXPECT_EQ(t.Text1, "");
  EXPECT_EQ(t.Text3, "");
  EXPECT_EQ(t.CurrentRom, "pacman");
}

}  // namespace
}  // namespace tessarin
