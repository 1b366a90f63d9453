#include "sheet/gamepage.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "core/version.h"
#include "gamepagetestsupport.h"
#include "sheet/gamedetails.h"
#include "store/faststrings.h"

namespace tessarin {
namespace {

using gamepagetest::FixtureHome;

// Every tag of the game page, each between brackets on a line of its own, so that each value can
// be read back by its tag. " #DIPSWITCH" keeps its blank.
const std::vector<std::string> kTags = {
    "#TITLE",        "#MANUFACTURER",   "#YEAR",         "#GENRE",       "#CATEGORY",
    "#MATURE",       "#NPLAYERS",       "#SAVESTATE",    "#HIGHSCORE",   "#CHEAT",
    "#COMMAND",      "#DRIVER",         "#SAMPLE",       "#ROMNAME",     "#GOTIT",
    "#STATUS",       "#DRIVERSTATUS",   "#GFXSTATUS",    "#COLORSTATUS", "#SOUNDSTATUS",
    "#FLIPSCREEN",   "#CLONES",         "#SCREEN",       "#ORIENTATION", "#CONTROLS",
    "#BUTTONS",      "#PLAYERSBUTTONS", "#COINS",        "#SERVICE",     "#TILT",
    "#VERADDED",     "#SOUNDCHANNELS",  "#NCOLORS",      "#RESOLUTION",  "#ASPECT",
    "#REFRESH",      "#MYNOTES",        "#FLYER",        "#SCRTITLE",    "#HISTORY",
    "#MARQUEE",      "#MAMEINFO",       "#CABINET",      "#SNAP",        "#CPO",
    " #DIPSWITCH",   "#ROMFILES",       "#BIOSSET",      "#CHIPS",       "#DISKS",
    "#VERMAME",      "#VERMDATA",       "#LISTCATEGORY", "#LISTGENRE",   "#LISTMANUFACTURER",
    "#LISTVERADDED", "#LISTYEAR",       "#HELP"};

std::string TagTemplate() {
  std::string text;
  for (const std::string& tag : kTags) {
    // The label is the tag without its "#", so that no pass touches it.
    text += "<" + tag.substr(tag.find('#') + 1) + ">[" + tag + "]\n";
  }
  text += "<NAV>[#PREVIOUS - #HOME - #NEXT]\n<NAV2>[#PREVIOUS - #NEXT]\n<NAV3>[#HOME]\n";
  return text;
}

// The value of each tag in a page made from TagTemplate, by its tag ("#TITLE", "#NAV").
std::map<std::string, std::string> Values(const std::string& page) {
  std::map<std::string, std::string> values;
  size_t at = 0;
  while (at < page.size()) {
    const size_t end = page.find('\n', at);
    const std::string line = page.substr(at, end == std::string::npos ? end : end - at);
    at = end == std::string::npos ? page.size() : end + 1;
    const size_t close = line.find(">[");
    if (line.empty() || line[0] != '<' || close == std::string::npos || line.back() != ']') {
      ADD_FAILURE() << "unexpected line: " << line;
      continue;
    }
    values["#" + line.substr(1, close - 1)] = line.substr(close + 2, line.size() - close - 3);
  }
  return values;
}

std::string NoImage() { return std::string(NoImageBlock()); }

TEST(FillGamePage, EveryTagOfAGame) {
  FixtureHome home;
  const std::string page = FillGamePage(home.ctx, "mygame", TagTemplate(), 0, {});
  std::map<std::string, std::string> v = Values(page);
  const std::string help = "<a href=\"file://" + home.Path("HTML/help.htm") + "\">Help</a>";

  EXPECT_EQ(v["#TITLE"], "My Game");
  EXPECT_EQ(v["#MANUFACTURER"], "Acme");
  EXPECT_EQ(v["#YEAR"], "1981");
  EXPECT_EQ(v["#GENRE"], "Shooter");
  EXPECT_EQ(v["#CATEGORY"], "Shooter / Flying");
  EXPECT_EQ(v["#MATURE"], "False");
  EXPECT_EQ(v["#NPLAYERS"], "");
  EXPECT_EQ(v["#SAVESTATE"], "supported");
  EXPECT_EQ(v["#HIGHSCORE"], "False");
  EXPECT_EQ(v["#CHEAT"], "False");
  EXPECT_EQ(v["#COMMAND"], "False");
  EXPECT_EQ(v["#SAMPLE"], "shot");
  EXPECT_EQ(v["#ROMNAME"], "mygame");
  EXPECT_EQ(v["#GOTIT"], "False");
  EXPECT_EQ(v["#STATUS"], "good");
  EXPECT_EQ(v["#DRIVERSTATUS"], "good");
  EXPECT_EQ(v["#GFXSTATUS"], "good");
  EXPECT_EQ(v["#COLORSTATUS"], "good");
  EXPECT_EQ(v["#SOUNDSTATUS"], "imperfect");
  EXPECT_EQ(v["#FLIPSCREEN"], "preliminary");
  EXPECT_EQ(v["#CLONES"], "Clones list : mygamej<br><b>This is the original Rom.</b>");
  EXPECT_EQ(v["#SCREEN"], "raster");
  EXPECT_EQ(v["#PLAYERSBUTTONS"], "2");
  EXPECT_EQ(v["#COINS"], "3");
  EXPECT_EQ(v["#SERVICE"], "yes");
  EXPECT_EQ(v["#TILT"], "yes");
  EXPECT_EQ(v["#VERADDED"], "0.037b5");
  EXPECT_EQ(v["#SOUNDCHANNELS"], "2");
  // No palette size of its own from the list: the driver's.
  EXPECT_EQ(v["#NCOLORS"], "256");
  EXPECT_EQ(v["#RESOLUTION"], "320x240");
  EXPECT_EQ(v["#ASPECT"], "4:3");
  EXPECT_EQ(v["#REFRESH"], "59.1Hz");
  EXPECT_EQ(v["#MYNOTES"], "A fine game.<br>Second line.");
  EXPECT_EQ(v["#HISTORY"],
            "<b>HISTORY.DAT</b><br><br>My Game (c) 1981 Acme.<br><br><b>- TRIVIA -</b><br><br>"
            "A game of shots.<br><br><b>- TRIVIA -</b> again, <b>- STAFF -</b><br>");
  EXPECT_EQ(v["#MAMEINFO"], "<b>MAMEINFO.DAT</b><br>MAME vFirst release.<br>Line two.<br>");
  for (const char* image : {"#FLYER", "#SCRTITLE", "#MARQUEE", "#CABINET", "#SNAP", "#CPO"}) {
    EXPECT_EQ(v[image], NoImage()) << image;
  }
  const std::string frame =
      "<table border=\"1\" cellpadding=\"0\" cellspacing=\"0\" style=\"border-collapse: "
      "collapse\" bordercolor=\"#FFFFFF\" width=\"100%\" id=\"";
  // The blank in front of the tag went with it.
  EXPECT_EQ(v["#DIPSWITCH"],
            frame +
                "AutoNumber1\"><tr>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Name</font></b></td>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Value</font></b></td>"
                "<td width=\"34%\" align=\"center\"><b><font size=\"2\">Default</font></b></td>"
                "</tr><tr><td width=\"33%\"><font size=\"2\">Lives</td>"
                "<td width=\"33%\"><font size=\"2\">3</td>"
                "<td width=\"34%\"><font size=\"2\">yes</td></tr>"
                "<tr><td width=\"33%\"><font size=\"2\">Cabinet</td>"
                "<td width=\"33%\"><font size=\"2\">Upright</td>"
                "<td width=\"34%\"><font size=\"2\">yes</td></tr></table>");
  EXPECT_EQ(v["#BIOSSET"],
            frame +
                "AutoNumber4\"><tr>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Name</font></b></td>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Description</font></b></td>"
                "<td width=\"34%\" align=\"center\"><b><font size=\"2\">Default</font></b></td>"
                "</tr><tr><td width=\"33%\"><font size=\"2\">euro</font></td>"
                "<td width=\"33%\"><font size=\"2\">Europe</font></td>"
                "<td width=\"34%\"><font size=\"2\">yes</font></td></tr>"
                "<tr><td width=\"33%\"><font size=\"2\">us</font></td>"
                "<td width=\"33%\"><font size=\"2\">USA</font></td>"
                "<td width=\"34%\"><font size=\"2\"></font></td></tr></table>");
  EXPECT_EQ(v["#CHIPS"],
            frame +
                "AutoNumber1\"><tr>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Type</font></b></td>"
                "<td width=\"33%\" align=\"center\"><b><font size=\"2\">Name</font></b></td>"
                "<td width=\"34%\" align=\"center\"><b><font size=\"2\">Clock</font></b></td>"
                "</tr><tr><td width=\"33%\"><font size=\"2\">cpu</td>"
                "<td width=\"33%\"><font size=\"2\">Zilog Z80</td>"
                "<td width=\"34%\"><font size=\"2\">3072000</td></tr>"
                "<tr><td width=\"33%\"><font size=\"2\">audio</td>"
                "<td width=\"33%\"><font size=\"2\">AY-3-8910A</td>"
                "<td width=\"34%\"><font size=\"2\">1789750</td></tr></table>");
  const std::string disks = v["#DISKS"];
  EXPECT_EQ(disks.substr(0, frame.size() + 13), frame + "AutoNumber2\">");
  EXPECT_NE(disks.find("<td width=\"14%\"><font size=\"2\">mgdisk</font></td>"
                       "<td width=\"14%\"><font size=\"2\"></font></td>"
                       "<td width=\"14%\"><font size=\"2\">3333333333333333333333333333333333333333"
                       "</font></td><td width=\"14%\"><font size=\"2\"></font></td>"
                       "<td width=\"14%\"><font size=\"2\">ide</font></td>"
                       "<td width=\"15%\"><font size=\"2\">0</font></td>"
                       "<td width=\"15%\"><font size=\"2\"></font></td></tr></table>"),
            std::string::npos)
      << disks;
  const std::string roms = v["#ROMFILES"];
  EXPECT_EQ(roms.substr(0, frame.size() + 13), frame + "AutoNumber3\">");
  EXPECT_NE(roms.find("<td width=\"10%\" align=\"center\"><b><font size=\"1\">Dispose</font></b>"
                      "</td></tr><tr><td width=\"10%\"><font size=\"1\">mg1.bin</font></td>"
                      "<td width=\"10%\"><font size=\"1\">4096</font></td>"
                      "<td width=\"10%\"><font size=\"1\">0123abcd</font></td>"),
            std::string::npos)
      << roms;
  EXPECT_NE(roms.find("<font size=\"1\">mg2.bin</font>"), std::string::npos);
  EXPECT_EQ(v["#VERMAME"], "MAME v0.251 (fixture)");
  EXPECT_EQ(v["#VERMDATA"], "Tessarin v" + AppVersion());
  EXPECT_EQ(v["#LISTCATEGORY"], "<a href=\"../categories/category.htm\">list by categories</a>");
  EXPECT_EQ(v["#LISTGENRE"], "<a href=\"../genres/genre.htm\">list by genres</a>");
  EXPECT_EQ(v["#LISTMANUFACTURER"],
            "<a href=\"../manufacturers/manufacturer.htm\">list by manufacturers</a>");
  EXPECT_EQ(v["#LISTVERADDED"], "<a href=\"../veradded/veradded.htm\">list by Mame versions</a>");
  EXPECT_EQ(v["#LISTYEAR"], "<a href=\"../years/year.htm\">list by years</a>");
  EXPECT_EQ(v["#HELP"], help);
  // Not in site mode: the navigation goes, in every form.
  EXPECT_EQ(v["#NAV"], "");
  EXPECT_EQ(v["#NAV2"], "");
  EXPECT_EQ(v["#NAV3"], "");
  // The fields the record gives through its code tables, as the details give them.
  std::string name = "mygame";
  GameDetailsLoader loader(home.ctx);
  const GameDetails d = loader.LoadGameDetails(name, 0, false);
  EXPECT_EQ(v["#DRIVER"], d.Driver);
  EXPECT_EQ(v["#ORIENTATION"], d.Orientation);
  EXPECT_EQ(v["#CONTROLS"], d.Control);
  EXPECT_EQ(v["#BUTTONS"], d.Buttons);
  EXPECT_FALSE(d.Driver.empty());
  EXPECT_EQ(v.size(), kTags.size() + 3);
}

TEST(FillGamePage, ACloneNamesItsParentAndTakesItsMameinfo) {
  FixtureHome home;
  const std::string page = FillGamePage(home.ctx, "mygamej", TagTemplate(), 0, {});
  std::map<std::string, std::string> v = Values(page);
  EXPECT_EQ(v["#CLONES"], "<br>This is a clone of : mygame");
  EXPECT_EQ(v["#MAMEINFO"], "<b>MAMEINFO.DAT</b><br>MAME vFirst release.<br>Line two.<br>");
  // 60.000000 loses its zeros and its point.
  EXPECT_EQ(v["#REFRESH"], "60Hz");
  EXPECT_EQ(v["#NCOLORS"], "32");
  EXPECT_EQ(v["#HISTORY"], "<b>HISTORY.DAT</b><br>");
  EXPECT_EQ(v["#MYNOTES"], "");
  EXPECT_EQ(v["#BIOSSET"], "N/A");
  EXPECT_EQ(v["#DISKS"], "N/A");
  EXPECT_EQ(v["#DIPSWITCH"], "N/A");
}

TEST(FillGamePage, AGameWithoutCloneOrParentShowsMessage202Only) {
  FixtureHome home;
  std::map<std::string, std::string> v =
      Values(FillGamePage(home.ctx, "lonely", TagTemplate(), 0, {}));
  EXPECT_EQ(v["#CLONES"], "<br><b>This is the original Rom.</b>");
  // A refresh of 60 without a point loses its zero too.
  EXPECT_EQ(v["#REFRESH"], "6Hz");
  // The heading stands even with no text for the game or its parent.
  EXPECT_EQ(v["#MAMEINFO"], "<b>MAMEINFO.DAT</b><br>");
  for (const char* list : {"#ROMFILES", "#CHIPS", "#DIPSWITCH", "#BIOSSET", "#DISKS"}) {
    EXPECT_EQ(v[list], "N/A") << list;
  }
}

TEST(FillGamePage, AValueHoldingALaterTagHasItReplaced) {
  FixtureHome home;
  // The description holds #ROMNAME and #SNAP, both replaced after #TITLE.
  const std::string page = FillGamePage(home.ctx, "lonely", "<title>#TITLE</title>", 0, {});
  EXPECT_EQ(page, "<title>Lonely lonely and " + NoImage() + "</title>");
  // The game's own name has no tag in it: the same template for another game is plain.
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "<title>#TITLE</title>", 0, {}),
            "<title>My Game</title>");
}

TEST(FillGamePage, ByIndexAsBySite) {
  FixtureHome home;
  GamePageOptions site;
  site.keepNavigation = true;
  site.prefixName = true;
  site.siteLinks = true;
  site.siteRoot = home.Path("site/");
  GroupKeys keys;
  const int index = home.ctx.store.FindGame("mygamej");
  const std::string page = FillGamePage(
      home.ctx, "ignored",
      "#MANUFACTURER|#YEAR|#VERADDED|#GENRE|#CATEGORY|#CLONES|#PREVIOUS - #HOME - #NEXT", index,
      site, &keys);
  EXPECT_EQ(page,
            "mygamej     "
            "<a href=\"../manufacturers/Acme.htm\">Acme</a>|"
            "<a href=\"../years/1981.htm\">1981</a>|"
            "<a href=\"../veradded/0.100.htm\">0.100</a>|"
            "<a href=\"../genres/Shooter.htm\">Shooter</a>|"
            "<a href=\"../categories/Shooter ! Flying.htm\">Shooter / Flying</a>|"
            "<br>This is a clone of : <a href=\"mygame.htm\">mygame</a>|"
            "#PREVIOUS - #HOME - #NEXT");
  const std::string sep = std::string(kGroupKeySeparator);
  const std::string tail = "My Game (Japan)" + sep + std::to_string(index);
  EXPECT_EQ(keys.Genre.substr(0, 7 + sep.size() + tail.size()), "Shooter" + sep + tail);
  EXPECT_EQ(
      keys.Category.substr(0, std::string("Shooter / Flying").size() + sep.size() + tail.size()),
      "Shooter / Flying" + sep + tail);
  EXPECT_EQ(keys.Manufacturer.substr(0, 4 + sep.size() + tail.size()), "Acme" + sep + tail);
  EXPECT_EQ(keys.Year.substr(0, 4 + sep.size() + tail.size()), "1981" + sep + tail);
  EXPECT_EQ(keys.Version.substr(0, 5 + sep.size() + tail.size()), "0.100" + sep + tail);
  // Pieces in order: the indexes behind the position.
  std::vector<std::string> pieces;
  FastSplit(keys.Version, pieces, sep);
  ASSERT_EQ(pieces.size(), 7u);
  std::vector<std::string> year;
  FastSplit(keys.Year, year, sep);
  ASSERT_EQ(year.size(), 6u);
  EXPECT_EQ(home.ctx.store.YearTable[static_cast<size_t>(std::stoi(pieces[6]))], "1981");
  EXPECT_EQ(home.ctx.store.ManufacturerTable[static_cast<size_t>(std::stoi(year[5]))], "Acme");
  EXPECT_EQ(home.ctx.store.CategoryTable[static_cast<size_t>(std::stoi(year[4]))],
            "Shooter / Flying");

  // A parent's clone list links to the clones' pages.
  const std::string parent = FillGamePage(home.ctx, "mygame", "#CLONES", 0, site);
  EXPECT_EQ(parent,
            "mygame      Clones list : <a href=\"mygamej.htm\">mygamej</a><br><b>This is "
            "the original Rom.</b>");
}

TEST(FillGamePage, ASearchPageHasPlainGroupsAndASiteLinkedOnes) {
  FixtureHome home;
  EXPECT_EQ(FillGamePage(home.ctx, "lonely", "#MANUFACTURER", 0, {}), "Solo / Co");
  GamePageOptions site;
  site.siteLinks = true;
  site.siteRoot = home.Path("site/");
  EXPECT_EQ(FillGamePage(home.ctx, "lonely", "#MANUFACTURER", 0, site),
            "<a href=\"../manufacturers/Solo ! Co.htm\">Solo / Co</a>");
}

TEST(FillGamePage, AnUnknownRomIsDummy) {
  FixtureHome home;
  GroupKeys keys;
  GamePageOptions options;
  options.prefixName = true;
  EXPECT_EQ(FillGamePage(home.ctx, "nosuchgame", "#TITLE/#ROMNAME", 0, options, &keys),
            "Dummy       Dummy/Dummy");
  const std::string sep = std::string(kGroupKeySeparator);
  EXPECT_EQ(keys.Category, "0" + sep + "Dummy" + sep + "0" + sep + "0" + sep + "0" + sep + "0");
}

TEST(FillGamePage, TagsOutOfTheFormatStayAsTheyStand) {
  FixtureHome home;
  // No blank in front of the dip switch tag, a tag in lower case, a tag nobody knows.
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "x#DIPSWITCH|#title|#UNKNOWN|#LIST", 0, {}),
            "x#DIPSWITCH|#title|#UNKNOWN|#LIST");
}

TEST(FillGamePage, TheTemplateIsBytes) {
  FixtureHome home;
  const std::string raw = std::string("\xE9t\xE9 \0#ROMNAME\r\n\xFF", 16);
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", raw, 0, {}),
            std::string("\xE9t\xE9 \0mygame\r\n\xFF", 14));
}

TEST(ApplyPagePasses, EachPassRunsOverWhatTheFormerOnesLeft) {
  int asked = 0;
  std::vector<PagePass> passes;
  passes.push_back({"#A", [&] {
                      ++asked;
                      return std::string("#B#A");
                    }});
  passes.push_back({"#B", [&] {
                      ++asked;
                      return std::string("b");
                    }});
  passes.push_back({"#C", [&] {
                      ++asked;
                      return std::string("never");
                    }});
  // The replacement isn't searched again for its own tag; a later pass finds its tag in it; a
  // pass whose tag isn't there is never asked for its value.
  EXPECT_EQ(ApplyPagePasses("1#A2#A3", passes), "1b#A2b#A3");
  EXPECT_EQ(asked, 2);
}

// The page made from pieces gives what pass after pass of FastReplace over the whole text gives,
// whatever the values hold: tags, halves of tags that meet the text around them, blanks before
// a tag, tags that share a beginning, passes that aren't tags.
TEST(ApplyPagePasses, SameAsOnePlainPassAfterTheOther) {
  std::mt19937 random(20261122);
  const std::vector<std::string> bits = {"#A", "#AB", "#B", "#",       " ",    "A",
                                         "B",  " - ", "x",  "#A - #B", "\r\n", "##"};
  const std::vector<std::string> finds = {"#A",  "#AB", "#B",       " #A", "#A - #B",
                                          "#A#", "AB",  " #B - #A", "##",  "xx #A"};
  const auto text = [&](int most) {
    std::string out;
    const int count = static_cast<int>(random() % static_cast<unsigned>(most + 1));
    for (int i = 0; i < count; ++i) out += bits[random() % bits.size()];
    return out;
  };
  for (int round = 0; round < 20000; ++round) {
    const std::string pageTemplate = text(14);
    std::vector<std::string> values;
    std::vector<PagePass> passes;
    const int passCount = 1 + static_cast<int>(random() % 6);
    values.reserve(static_cast<size_t>(passCount));
    for (int p = 0; p < passCount; ++p) values.push_back(text(4));
    for (int p = 0; p < passCount; ++p) {
      const std::string& value = values[static_cast<size_t>(p)];
      passes.push_back({finds[random() % finds.size()], [&value] { return value; }});
    }
    ASSERT_EQ(ApplyPagePasses(pageTemplate, passes), ApplyPagePassesPlain(pageTemplate, passes))
        << "template [" << pageTemplate << "] round " << round;
  }
}

TEST(GamePageHelpers, MakeFileUrl) {
  EXPECT_EQ(MakeFileUrl("C:\\Tessarin\\HTML\\help.htm"), "file:///C:/Tessarin/HTML/help.htm");
  EXPECT_EQ(MakeFileUrl("\\\\server\\share\\a.png"), "file://///server/share/a.png");
  EXPECT_EQ(MakeFileUrl("/home/me/HTML/help.htm"), "file:///home/me/HTML/help.htm");
  EXPECT_EQ(MakeFileUrl("relative\\x.png"), "file://relative/x.png");
  EXPECT_EQ(MakeFileUrl("HTTP://host\\snap\\x.png"), "HTTP://host/snap/x.png");
}

TEST(GamePageHelpers, MakeFileSafeName) {
  EXPECT_EQ(MakeFileSafeName("a\\b/c:d*e?f\"g<h>i|j"), "a!b!c_d#e&f'g(h)i!j");
  EXPECT_EQ(MakeFileSafeName("Maze / Collect"), "Maze ! Collect");
}

TEST(GamePageHelpers, TrimRefresh) {
  EXPECT_EQ(TrimRefresh("60.000000"), "60");
  EXPECT_EQ(TrimRefresh("59.100000"), "59.1");
  EXPECT_EQ(TrimRefresh("60"), "6");
  EXPECT_EQ(TrimRefresh("100"), "1");
  EXPECT_EQ(TrimRefresh("60.606061"), "60.606061");
  EXPECT_EQ(TrimRefresh(""), "");
}

TEST(GamePageHelpers, HistoryMarksAreExact) {
  EXPECT_EQ(HistoryHtml("- TRIVIA -\r\n- trivia -\n- ANECDOTES -\r- SCORING -"),
            "<b>HISTORY.DAT</b><br><b>- TRIVIA -</b><br>- trivia -<br>- ANECDOTES -<br>"
            "<b>- SCORING -</b>");
  EXPECT_EQ(HistoryHtml(""), "<b>HISTORY.DAT</b><br>");
}

TEST(GamePageHelpers, TablesSkipItemsAsTold) {
  // A bios set with an empty first field makes no row; the table stands with its header.
  const std::string bios = BiosSetTable({"", ";nameless;", "b;Bee;"});
  EXPECT_EQ(bios.find("nameless"), std::string::npos);
  EXPECT_NE(bios.find("<font size=\"2\">b</font></td>"), std::string::npos);
  EXPECT_EQ(BiosSetTable({""}), "N/A");
  // A chip without two ";" goes into the first cell as it stands, marks deleted.
  const std::string chips = ChipTable({"", "lonely#N#C", "cpu;Z80;#C", "a;b;c;d"});
  EXPECT_NE(chips.find("<tr><td width=\"33%\"><font size=\"2\">lonely</td>"
                       "<td width=\"33%\"><font size=\"2\"></td>"
                       "<td width=\"34%\"><font size=\"2\"></td></tr>"),
            std::string::npos)
      << chips;
  EXPECT_NE(chips.find("<font size=\"2\">cpu</td><td width=\"33%\"><font size=\"2\">Z80</td>"
                       "<td width=\"34%\"><font size=\"2\"></td>"),
            std::string::npos);
  // Between the first and the last ";".
  EXPECT_NE(chips.find("<font size=\"2\">a</td><td width=\"33%\"><font size=\"2\">b;c</td>"
                       "<td width=\"34%\"><font size=\"2\">d</td>"),
            std::string::npos);
  const std::string dips = DipSwitchTable({"", "Lives;#V;#D"});
  EXPECT_NE(dips.find("<font size=\"2\">Lives</td><td width=\"33%\"><font size=\"2\"></td>"),
            std::string::npos);
  const std::string disks = DiskTable({"", ";x;y;;;;", "d;;;;;;"});
  EXPECT_EQ(disks.find(">x<"), std::string::npos);
  EXPECT_NE(disks.find("<font size=\"2\">d</font>"), std::string::npos);
  const std::string roms = RomTable({"", ";1;2;3;4;5;6;7;8;9"});
  EXPECT_EQ(roms.find("<tr><td width=\"10%\"><font"), std::string::npos);
  EXPECT_NE(roms.find("Dispose"), std::string::npos);
}

}  // namespace
}  // namespace tessarin
