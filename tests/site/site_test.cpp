// The HTML site: built from a fixture database of ten games, checked file by file.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "app/context.h"
#include "builder/pipeline.h"
#include "core/userinterface.h"
#include "core/version.h"
#include "core/work.h"
#include "lists/htmlsite.h"
#include "lists/skins.h"
#include "sheet/gamepage.h"
#include "store/indexfile.h"
#include "support/testfiles.h"
#include "zipworker/zipclass.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::WriteFile;

std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/site/" + name;
}

class RecordingUi final : public UserInterface {
 public:
  struct Shown {
    std::string text, title;
    Icon icon;
  };
  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    messages.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return false; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string& path) override { opened.push_back(path); }
  std::vector<Shown> messages;
  std::vector<std::string> opened;
};

// The fixture's 100-character head shared by the two long descriptions.
std::string LongHead() {
  std::string head = std::string(
                         "A very long description that goes on and on so that it is well over one "
                         "hundred characters in all")
                         .substr(0, 100);
  head.resize(100, '#');
  return head;
}

// Ten games from tests/data/site: genres, categories (one game without), a clone, a rom name of
// 15 characters, two descriptions over 100 characters that differ only behind it, and two games
// of the same description at positions 9 and 10.
class SiteHome {
 public:
  SiteHome() : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    std::filesystem::create_directories(Path("DataFiles"));
    std::filesystem::create_directories(Path("HTML"));
    std::filesystem::create_directories(Path("Temp"));
    ctx.TempFolder = Path("Temp/");
    WriteFile(DefaultListXmlPath(ctx.AppFolder()), ReadFile(Fixture("listxml.xml")));
    WriteFile(Path("catver.ini"), ReadFile(Fixture("catver.ini")));
    WriteFile(Path("catlist.ini"), ReadFile(Fixture("catlist.ini")));
    WriteFile(Path("genre.ini"), ReadFile(Fixture("genre.ini")));
    ctx.settings.InfWrite("DataFile12", Path("catlist.ini"));
    ctx.settings.InfWrite("DataFile13", Path("catver.ini"));
    ctx.settings.InfWrite("DataFile14", Path("genre.ini"));
    Work work;
    EXPECT_TRUE(BuildDatabase(ctx, work));
    EXPECT_EQ(ctx.store.GameCount(), 10);
    ctx.store.DatabaseVersion = "MAME v0.251 (fixture)";
  }

  std::string Path(const std::string& relative) const { return ctx.AppFolder() + relative; }

  // A folder skin whose templates are small enough to check whole.
  void MakeSmallSkin() {
    const std::string skin = Path("HTML/small.skin/");
    std::filesystem::create_directories(skin);
    WriteFile(skin + "list.htm", "T:#TITLE|L:#LIST|H:#HOME|#VERMAME|#VERMDATA");
    WriteFile(skin + "genre.htm", "G:#TITLE|#LIST|#HOME");
    WriteFile(skin + "genre.css", "genre style");
    WriteFile(skin + "rom.htm", "#ROMNAME|#TITLE|#GENRE|#PREVIOUS|#HOME|#NEXT");
    WriteFile(skin + "index.htm",
              "#LISTCATEGORY #LISTGENRE #LISTMANUFACTURER #LISTVERADDED #LISTYEAR #HELP "
              "#VERMAME #VERMDATA #LISTROMS");
    WriteFile(skin + "listroms.htm", "<p>#HOME|#VERMAME|#COMPLETELIST|end");
  }

  HtmlSiteResult Build(HtmlSiteRequest request, bool useIni = false,
                       std::vector<std::string>* names = nullptr) {
    Work work;
    std::vector<std::string> own{std::string()};
    return BuildHtmlSite(ctx, work, request, useIni, names ? *names : own, &stats);
  }

  QTemporaryDir dir;
  QTemporaryDir out;
  RecordingUi ui;
  AppContext ctx;
  HtmlSiteStats stats;
};

std::string Site(const SiteHome& home) { return home.out.path().toStdString() + "/tessarin/"; }

// Every file below the site, by its path relative to the tessarin folder.
std::set<std::string> Files(const std::string& site) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(site)) {
    if (entry.is_regular_file()) {
      files.insert(std::filesystem::relative(entry.path(), site).generic_string());
    }
  }
  return files;
}

std::string Rom(const std::string& name, const std::string& description) {
  return "<a href=\"../roms/" + name + ".htm\">" + description + "</a>";
}
std::string G(const std::string& folder, const std::string& name, const std::string& file) {
  return "<a href=\"../" + folder + "/" + file + ".htm\">" + name + "</a>";
}
std::string G(const std::string& folder, const std::string& name) { return G(folder, name, name); }

const std::string kMenu = "<a href=\"../index.htm\">Menu</a>";

TEST(SiteTest, WorkedExampleEntryAndListLine) {
  SiteHome home;
  home.MakeSmallSkin();
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  const std::string site = Site(home);
  const std::string example =
      "<a href=\"../roms/mygame.htm\">My Game</a> (<a href=\"../categories/Maze ! "
      "Collect.htm\">Maze / Collect</a>), <a href=\"../manufacturers/Acme.htm\">Acme</a>, <a "
      "href=\"../years/1980.htm\">1980</a><br>";
  EXPECT_NE(ReadFile(site + "genres/Maze.htm").find(example), std::string::npos);
  EXPECT_NE(ReadFile(site + "roms/listroms.htm").find("<a href=\"mygame.htm\">My Game</a><br>"),
            std::string::npos);
}

TEST(SiteTest, FixtureSiteFileByFile) {
  SiteHome home;
  home.MakeSmallSkin();
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  const std::string site = Site(home);
  const std::string ver = "MAME v0.251 (fixture)|Tessarin v" + AppVersion();

  // The end: the menu opened, "Done" said.
  ASSERT_EQ(home.ui.opened.size(), 1u);
  EXPECT_EQ(home.ui.opened[0], site + "index.htm");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(41));
  EXPECT_EQ(home.stats.games, 10);

  // Every file, and nothing else. The long rom name is cut to 12 characters; list*.* carries
  // listroms.htm into each folder that used list.htm; rom*.* carries rom.htm into roms.
  const std::set<std::string> expected = {
      "index.htm",
      "roms/rom.htm",
      "roms/listroms.htm",
      "roms/digits.htm",
      "roms/longdesc.htm",
      "roms/longdesc2.htm",
      "roms/bravo.htm",
      "roms/verylongromn.htm",
      "roms/mygame.htm",
      "roms/mygamej.htm",
      "roms/same10.htm",
      "roms/same9.htm",
      "roms/zeta.htm",
      "genres/genre.htm",
      "genres/genre.css",
      "genres/Maze.htm",
      "genres/Shooter.htm",
      "genres/Shooter ! Gallery.htm",
      "categories/list.htm",
      "categories/listroms.htm",
      "categories/category.htm",
      "categories/0.htm",
      "categories/Maze ! Collect.htm",
      "categories/Shooter.htm",
      "manufacturers/list.htm",
      "manufacturers/listroms.htm",
      "manufacturers/manufacturer.htm",
      "manufacturers/Acme.htm",
      "manufacturers/Bravo Inc.htm",
      "manufacturers/Capcom.htm",
      "manufacturers/Zed Co.htm",
      "years/list.htm",
      "years/listroms.htm",
      "years/year.htm",
      "years/1980.htm",
      "years/1982.htm",
      "years/1983.htm",
      "years/1984.htm",
      "years/1985.htm",
      "years/1990.htm",
      "veradded/list.htm",
      "veradded/listroms.htm",
      "veradded/veradded.htm",
  };
  std::set<std::string> files = Files(site);
  std::set<std::string> veradded;
  for (auto it = files.begin(); it != files.end();) {
    if (it->rfind("veradded/", 0) == 0 && !expected.count(*it)) {
      veradded.insert(*it);
      it = files.erase(it);
    } else {
      ++it;
    }
  }
  EXPECT_EQ(files, expected);
  // The versions: the games without one under "0".
  EXPECT_TRUE(veradded.count("veradded/0.htm")) << ::testing::PrintToString(veradded);
  EXPECT_EQ(veradded.size(), 4u) << ::testing::PrintToString(veradded);
  const std::string v0 = ReadFile(site + "veradded/0.htm");
  EXPECT_EQ(v0.rfind("T:0|L:<b>0</b><br>" + Rom("digits", "1942 Again"), 0), 0u) << v0;
  EXPECT_NE(ReadFile(site + "veradded/veradded.htm").find("<a href=\"0.htm\">0</a><br>"),
            std::string::npos);

  // Game pages: previous and next over the whole list in description order, the menu link.
  EXPECT_EQ(ReadFile(site + "roms/digits.htm"), "digits|1942 Again|" + G("genres", "Shooter") +
                                                    "||" + kMenu +
                                                    "|<a href=\"longdesc.htm\">Suivant</a>");
  EXPECT_EQ(ReadFile(site + "roms/mygame.htm"), "mygame|My Game|" + G("genres", "Maze") +
                                                    "|<a href=\"verylongromname.htm\">Pr\xC3\xA9"
                                                    "c\xC3\xA9"
                                                    "dent</a>|" +
                                                    kMenu + "|<a href=\"mygamej.htm\">Suivant</a>");
  EXPECT_EQ(ReadFile(site + "roms/verylongromn.htm"),
            "verylongromname|Long Name Game|" + G("genres", "Shooter") +
                "|<a href=\"bravo.htm\">Pr\xC3\xA9"
                "c\xC3\xA9"
                "dent</a>|" +
                kMenu + "|<a href=\"mygame.htm\">Suivant</a>");
  // Same description: the position as text decides, so 10 comes before 9.
  EXPECT_EQ(ReadFile(site + "roms/same10.htm"), "same10|Same Name|" + G("genres", "Shooter") +
                                                    "|<a href=\"mygamej.htm\">Pr\xC3\xA9"
                                                    "c\xC3\xA9"
                                                    "dent</a>|" +
                                                    kMenu + "|<a href=\"same9.htm\">Suivant</a>");
  EXPECT_EQ(ReadFile(site + "roms/zeta.htm"),
            "zeta|zeta lower|" + G("genres", "Shooter / Gallery", "Shooter ! Gallery") +
                "|<a href=\"same9.htm\">Pr\xC3\xA9"
                "c\xC3\xA9"
                "dent</a>|" +
                kMenu + "|");
  // rom*.* is copied with its tags unfilled.
  EXPECT_EQ(ReadFile(site + "roms/rom.htm"), "#ROMNAME|#TITLE|#GENRE|#PREVIOUS|#HOME|#NEXT");

  // Genres, from genre.htm: the first group has no bold heading, the others have one; a slash
  // gives "!" in the file name and stays in the text. Binary order puts "Shooter / Gallery"
  // before "Shooter" (a blank sorts before the key mark).
  const std::string back = "<a href=\"genre.htm\">Back</a>";
  const std::string maze = G("categories", "Maze / Collect", "Maze ! Collect");
  const std::string shooter = G("categories", "Shooter");
  const std::string acme = G("manufacturers", "Acme");
  // Within a group the whole key decides, in binary: "My Game (Japan)" (a blank behind "My
  // Game") comes before "My Game" (the key mark behind it), and the long descriptions go by
  // their whole text, not by the first 100 characters as the game pages do.
  EXPECT_EQ(ReadFile(site + "genres/Maze.htm"),
            "G:Maze|" + Rom("mygamej", "My Game (Japan)") + " (" + maze + "), " + acme + ", " +
                G("years", "1980") + "<br>" + Rom("mygame", "My Game") + " (" + maze + "), " +
                acme + ", " + G("years", "1980") + "<br>|" + back);
  // A game without a category links to the category of no name, as the table gives it.
  EXPECT_EQ(ReadFile(site + "genres/Shooter ! Gallery.htm"),
            "G:Shooter / Gallery|<b>Shooter / Gallery</b><br>" + Rom("zeta", "zeta lower") +
                " (<a href=\"../categories/.htm\"></a>), " + G("manufacturers", "Zed Co") + ", " +
                G("years", "1985") + "<br>|" + back);
  const std::string longHead = LongHead();
  EXPECT_EQ(ReadFile(site + "genres/Shooter.htm"),
            "G:Shooter|<b>Shooter</b><br>" + Rom("digits", "1942 Again") + " (" + shooter + "), " +
                G("manufacturers", "Capcom") + ", " + G("years", "1984") + "<br>" +
                Rom("longdesc2", longHead + " AAA tail") + " (" + shooter + "), " + acme + ", " +
                G("years", "1983") + "<br>" + Rom("longdesc", longHead + " ZZZ tail") + " (" +
                shooter + "), " + acme + ", " + G("years", "1983") + "<br>" +
                Rom("bravo", "Bravo") + " (" + shooter + "), " + acme + ", " + G("years", "1982") +
                "<br>" + Rom("verylongromname", "Long Name Game") + " (" + shooter + "), " + acme +
                ", " + G("years", "1990") + "<br>" + Rom("same10", "Same Name") + " (" + shooter +
                "), " + G("manufacturers", "Bravo Inc") + ", " + G("years", "1982") + "<br>" +
                Rom("same9", "Same Name") + " (" + shooter + "), " +
                G("manufacturers", "Bravo Inc") + ", " + G("years", "1982") + "<br>|" + back);
  EXPECT_EQ(ReadFile(site + "genres/genre.htm"),
            "G:Genres|<a href=\"Maze.htm\">Maze</a><br><a href=\"Shooter ! Gallery.htm\">Shooter "
            "/ Gallery</a><br><a href=\"Shooter.htm\">Shooter</a><br>|" +
                kMenu);
  EXPECT_EQ(ReadFile(site + "genres/genre.css"), "genre style");

  // Categories, from list.htm: "0" for the game without one, first and without heading.
  const std::string shooterGenre = G("genres", "Shooter");
  EXPECT_EQ(ReadFile(site + "categories/0.htm"),
            "T:0|L:" + Rom("zeta", "zeta lower") + " (" +
                G("genres", "Shooter / Gallery", "Shooter ! Gallery") + "), " +
                G("manufacturers", "Zed Co") + ", " + G("years", "1985") +
                "<br>|H:<a href=\"category.htm\">Back</a>|" + ver);
  EXPECT_EQ(ReadFile(site + "categories/Maze ! Collect.htm"),
            "T:Maze / Collect|L:<b>Maze / Collect</b><br>" + Rom("mygamej", "My Game (Japan)") +
                " (" + G("genres", "Maze") + "), " + acme + ", " + G("years", "1980") + "<br>" +
                Rom("mygame", "My Game") + " (" + G("genres", "Maze") + "), " + acme + ", " +
                G("years", "1980") + "<br>|H:<a href=\"category.htm\">Back</a>|" + ver);
  EXPECT_EQ(ReadFile(site + "categories/category.htm"),
            "T:Categories|L:<a href=\"0.htm\">0</a><br><a href=\"Maze ! Collect.htm\">Maze / "
            "Collect</a><br><a href=\"Shooter.htm\">Shooter</a><br>|H:" +
                kMenu + "|" + ver);

  // Manufacturers: (genre, category), year.
  EXPECT_EQ(ReadFile(site + "manufacturers/Capcom.htm"),
            "T:Capcom|L:<b>Capcom</b><br>" + Rom("digits", "1942 Again") + " (" + shooterGenre +
                ", " + shooter + "), " + G("years", "1984") +
                "<br>|H:<a href=\"manufacturer.htm\">Back</a>|" + ver);
  // Years: (genre, category), manufacturer; the first year without heading.
  EXPECT_EQ(ReadFile(site + "years/1984.htm"),
            "T:1984|L:<b>1984</b><br>" + Rom("digits", "1942 Again") + " (" + shooterGenre + ", " +
                shooter + "), " + G("manufacturers", "Capcom") +
                "<br>|H:<a href=\"year.htm\">Back</a>|" + ver);
  EXPECT_EQ(ReadFile(site + "years/1980.htm").rfind("T:1980|L:<a href=\"../roms/mygamej.htm\">", 0),
            0u);
  EXPECT_EQ(ReadFile(site + "years/year.htm"),
            "T:Years|L:<a href=\"1980.htm\">1980</a><br><a href=\"1982.htm\">1982</a><br><a "
            "href=\"1983.htm\">1983</a><br><a href=\"1984.htm\">1984</a><br><a "
            "href=\"1985.htm\">1985</a><br><a href=\"1990.htm\">1990</a><br>|H:" +
                kMenu + "|" + ver);

  // The menu.
  const std::string help = MakeFileUrl(home.ctx.AppFolder() + "HTML/help.htm");
  EXPECT_EQ(ReadFile(site + "index.htm"),
            "<a href=\"categories/category.htm\">" + home.ctx.messages.Lng(360) +
                "</a> <a href=\"genres/genre.htm\">" + home.ctx.messages.Lng(361) +
                "</a> <a href=\"manufacturers/manufacturer.htm\">" + home.ctx.messages.Lng(362) +
                "</a> <a href=\"veradded/veradded.htm\">" + home.ctx.messages.Lng(363) +
                "</a> <a href=\"years/year.htm\">" + home.ctx.messages.Lng(364) +
                "</a> <a href=\"" + help + "\">Help</a> MAME v0.251 (fixture) Tessarin v" +
                AppVersion() + " <a href=\"roms/listroms.htm\">" + home.ctx.messages.Lng(365) +
                "</a>");

  // The complete list: no anchor for the first game's letter, none for signs and digits, one
  // per letter A to Z after that; descriptions cut at 100 characters.
  const auto line = [](const std::string& rom, const std::string& text) {
    return "<a href=\"" + rom + ".htm\">" + text + "</a><br>\r\n";
  };
  EXPECT_EQ(ReadFile(site + "roms/listroms.htm"),
            "<p>" + kMenu + "|MAME v0.251 (fixture)|<a name=\"0\">" + line("digits", "1942 Again") +
                "</p><p><a name=\"A\">" + line("longdesc", longHead) + line("longdesc2", longHead) +
                "</p><p><a name=\"B\">" + line("bravo", "Bravo") + "</p><p><a name=\"L\">" +
                line("verylongromname", "Long Name Game") + "</p><p><a name=\"M\">" +
                line("mygame", "My Game") + line("mygamej", "My Game (Japan)") +
                "</p><p><a name=\"S\">" + line("same10", "Same Name") + line("same9", "Same Name") +
                "</p><p><a name=\"Z\">" + line("zeta", "zeta lower") + "|end");
}

TEST(SiteTest, IniNamesIgnoreTheFiltersAndOneGroupHasNoHeading) {
  SiteHome home;
  home.MakeSmallSkin();
  Work work;
  std::vector<std::string> names;
  ASSERT_TRUE(LoadHtmlGameNames(home.ctx, work, Fixture("selection.ini"), names));
  // Section lines, a name with a blank in front and an unknown name are skipped; a name twice
  // stands twice.
  EXPECT_EQ(names, (std::vector<std::string>{"", "mygame", "mygamej"}));
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  request.skipClones = true;     // no effect with INI names
  request.onlyAvailable = true;  // nor this one
  ASSERT_EQ(home.Build(request, true, &names), HtmlSiteResult::Done);
  const std::string site = Site(home);
  EXPECT_TRUE(std::filesystem::exists(site + "roms/mygamej.htm"));
  // All in one group: one page without a bold heading, one link in the index.
  const std::string page = ReadFile(site + "genres/Maze.htm");
  EXPECT_EQ(page.find("<b>"), std::string::npos);
  EXPECT_EQ(ReadFile(site + "genres/genre.htm"),
            "G:Genres|<a href=\"Maze.htm\">Maze</a><br>|" + kMenu);
  EXPECT_FALSE(std::filesystem::exists(site + "genres/Shooter.htm"));
  // The names became sort keys.
  ASSERT_EQ(names.size(), 3u);
  EXPECT_EQ(names[1].substr(0, 7), "My Game");
  EXPECT_EQ(names[1].substr(100), "1");
}

TEST(SiteTest, OneGameHasNeitherPreviousNorNext) {
  SiteHome home;
  home.MakeSmallSkin();
  Work work;
  std::vector<std::string> names;
  ASSERT_TRUE(LoadHtmlGameNames(home.ctx, work, Fixture("one.ini"), names));
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  ASSERT_EQ(home.Build(request, true, &names), HtmlSiteResult::Done);
  EXPECT_EQ(ReadFile(Site(home) + "roms/bravo.htm"),
            "bravo|Bravo|" + G("genres", "Shooter") + "||" + kMenu + "|");
}

TEST(SiteTest, SkipClonesAndOnlyAvailable) {
  SiteHome home;
  home.MakeSmallSkin();
  // mygame, mygamej and bravo are in the rom folder.
  for (int i : {1, 2, 8}) home.ctx.store.GameRecords[static_cast<size_t>(i)] += "*";
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  request.skipClones = true;
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  const std::string roms = Site(home) + "roms/";
  EXPECT_EQ(home.stats.games, 9);
  EXPECT_FALSE(std::filesystem::exists(roms + "mygamej.htm"));
  EXPECT_TRUE(std::filesystem::exists(roms + "zeta.htm"));

  SiteHome second;
  second.MakeSmallSkin();
  for (int i : {1, 2, 8}) second.ctx.store.GameRecords[static_cast<size_t>(i)] += "*";
  request.destination = second.out.path().toStdString();
  request.skipClones = true;
  request.onlyAvailable = true;
  ASSERT_EQ(second.Build(request), HtmlSiteResult::Done);
  EXPECT_EQ(second.stats.games, 2);
  std::set<std::string> pages;
  for (const std::string& f : Files(Site(second))) {
    if (f.rfind("roms/", 0) == 0) pages.insert(f);
  }
  EXPECT_EQ(pages, (std::set<std::string>{"roms/bravo.htm", "roms/listroms.htm", "roms/mygame.htm",
                                          "roms/rom.htm"}));
}

TEST(SiteTest, EmptySelectionSaysSoAndKeepsTheFolders) {
  SiteHome home;
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.onlyAvailable = true;  // nothing is in the rom folder
  ASSERT_EQ(home.Build(request), HtmlSiteResult::NoGames);
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(339));
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Warning);
  EXPECT_TRUE(std::filesystem::is_directory(Site(home) + "images/titles"));
  EXPECT_TRUE(home.ui.opened.empty());
}

TEST(SiteTest, FolderThatCantBeMadeIsToldAndStopsTheBuild) {
  SiteHome home;
  // A file where the site's folder would go.
  const std::string dest = home.out.path().toStdString() + "/";
  WriteFile(dest + "tessarin", "in the way");
  HtmlSiteRequest request;
  request.destination = dest;
  ASSERT_EQ(home.Build(request), HtmlSiteResult::FolderError);
  // The folder itself and each of the 14 below it are told about.
  ASSERT_EQ(home.ui.messages.size(), 14u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(174) + "\r\n" + dest + "tessarin");
  EXPECT_EQ(home.ui.messages[0].title, home.ctx.messages.Lng(29));
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Stop);
  EXPECT_TRUE(home.ui.opened.empty());
}

TEST(SiteTest, CancelKeepsWhatWasWrittenAndSaysNothing) {
  SiteHome home;
  home.MakeSmallSkin();
  WriteFile(home.Path("HTML/small.skin/rom.css"), "rom style");
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  Work work;
  work.CancelRequested = true;
  std::vector<std::string> names{std::string()};
  EXPECT_EQ(BuildHtmlSite(home.ctx, work, request, false, names), HtmlSiteResult::Cancelled);
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_TRUE(home.ui.opened.empty());
  EXPECT_TRUE(std::filesystem::is_directory(Site(home) + "roms"));
  EXPECT_FALSE(std::filesystem::exists(Site(home) + "index.htm"));
  // The steps before the game pages still ran: the names became sort keys and the game
  // template's companions were copied; no game page was written.
  ASSERT_EQ(names.size(), 11u);
  EXPECT_GT(names[1].size(), 100u);
  EXPECT_EQ(ReadFile(Site(home) + "roms/rom.css"), "rom style");
  EXPECT_FALSE(std::filesystem::exists(Site(home) + "roms/bravo.htm"));
}

// A cancel between two game pages: the pages written stay, nothing after them is written, the
// site isn't opened and nothing is said.
TEST(SiteTest, ACancelDuringTheGamePagesKeepsThePagesWritten) {
  SiteHome home;
  home.MakeSmallSkin();
  // A heavy game template, so that the ten pages take long enough to cancel between them.
  WriteFile(home.Path("HTML/small.skin/rom.htm"), "#ROMNAME|" + std::string(6 << 20, '.'));
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  Work work;
  std::vector<std::string> names{std::string()};
  std::atomic<bool> stop{false};
  // The caller's side: it cancels once the second game page is under way.
  std::thread canceller([&] {
    while (!stop) {
      if (work.Status().rfind(home.ctx.messages.Lng(145), 0) == 0 && work.ProgressValue >= 2) {
        work.CancelRequested = true;
        return;
      }
      std::this_thread::yield();
    }
  });
  const HtmlSiteResult result = BuildHtmlSite(home.ctx, work, request, false, names);
  stop = true;
  canceller.join();
  ASSERT_EQ(result, HtmlSiteResult::Cancelled);
  const std::string site = Site(home);
  size_t pages = 0;
  for (const auto& entry : std::filesystem::directory_iterator(site + "roms")) {
    if (entry.path().extension() == ".htm") ++pages;
  }
  EXPECT_GE(pages, 1u);
  EXPECT_LT(pages, 10u);
  std::printf("pages written before the cancel: %zu of 10\n", pages);
  // Every page written is whole.
  for (const auto& entry : std::filesystem::directory_iterator(site + "roms")) {
    const auto size = std::filesystem::file_size(entry.path());
    EXPECT_GT(size, 6u << 20) << entry.path();
    EXPECT_LT(size, (6u << 20) + 32) << entry.path();
  }
  // The group pages, the menu and the complete list come after the game pages.
  EXPECT_FALSE(std::filesystem::exists(site + "genres/genre.htm"));
  EXPECT_FALSE(std::filesystem::exists(site + "categories/category.htm"));
  EXPECT_FALSE(std::filesystem::exists(site + "index.htm"));
  EXPECT_FALSE(std::filesystem::exists(site + "roms/listroms.htm"));
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_TRUE(home.ui.opened.empty());
}

TEST(SiteTest, ListRomsWithoutTheTagWritesNoCompleteList) {
  SiteHome home;
  home.MakeSmallSkin();
  WriteFile(home.Path("HTML/small.skin/listroms.htm"), "no tag here");
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.skin = "small.skin";
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  // Only the companion copy of the template is there, not a list.
  EXPECT_EQ(ReadFile(Site(home) + "roms/listroms.htm"), "no tag here");
  EXPECT_TRUE(std::filesystem::exists(Site(home) + "index.htm"));
}

TEST(SiteTest, ImageSetsWithoutSettingAreSkippedAndLoosePicturesCopied) {
  SiteHome home;
  const std::string snaps = home.Path("snaps/");
  std::filesystem::create_directories(snaps);
  WriteFile(snaps + "mygame.png", "png of mygame");
  WriteFile(snaps + "other.png", "png of a game outside the selection");
  WriteFile(snaps + "notes.txt", "not a picture");
  home.ctx.settings.InfWrite("snapPath", snaps);
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  request.copyImages = true;
  request.imageSets.fill(true);
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  const std::string images = Site(home) + "images/";
  EXPECT_EQ(ReadFile(images + "snap/mygame.png"), "png of mygame");
  EXPECT_EQ(ReadFile(images + "snap/other.png"), "png of a game outside the selection");
  EXPECT_FALSE(std::filesystem::exists(images + "snap/notes.txt"));
  EXPECT_FALSE(std::filesystem::exists(images + "snap/temp"));
  EXPECT_TRUE(std::filesystem::is_empty(images + "titles"));
  // No word about the sets without a setting: only the end.
  ASSERT_EQ(home.ui.messages.size(), 1u);
  // The game page refers to the copied picture.
  EXPECT_NE(ReadFile(Site(home) + "roms/mygame.htm")
                .find("<img border=\"0\" src=\"../images/snap/mygame.png\">"),
            std::string::npos);
}

TEST(SiteTest, ImageSetPackGivesTheSelectionsPicturesFirst) {
  SiteHome home;
  const std::string source = home.Path("titles/");
  std::filesystem::create_directories(source + "pack");
  WriteFile(source + "pack/mygame.png", "mygame from the pack");
  WriteFile(source + "pack/bravo.png", "bravo from the pack");
  myzip::ZipClass zip;
  ASSERT_EQ(zip.FileAdd(source + "pack/*.*", 0, false), 2);
  ASSERT_TRUE(zip.WriteZip(source + "titles1.zip"));
  std::filesystem::remove_all(source + "pack");
  WriteFile(source + "mygame.png", "mygame loose");
  WriteFile(source + "zeta.png", "zeta loose");
  WriteFile(source + "other.png", "other loose");
  home.ctx.settings.InfWrite("titlesPath", source);
  const std::string dest = home.out.path().toStdString() + "/";
  const std::string images = dest + "tessarin/images/titles/";
  std::filesystem::create_directories(images);
  Work work;
  CopyImageSet(home.ctx, work, dest, "titles", {"", "mygame", "zeta"});
  // Out of the pack only the selection's pictures; a pack's picture wins over a loose one; every
  // loose picture comes, in the selection or not; the temporary folder is gone.
  EXPECT_EQ(ReadFile(images + "mygame.png"), "mygame from the pack");
  EXPECT_FALSE(std::filesystem::exists(images + "bravo.png"));
  EXPECT_EQ(ReadFile(images + "zeta.png"), "zeta loose");
  EXPECT_EQ(ReadFile(images + "other.png"), "other loose");
  EXPECT_FALSE(std::filesystem::exists(images + "temp"));

  // An address as the set's folder: nothing is copied.
  home.ctx.settings.InfWrite("snapPath", "HTTP://snaps.example.invalid/");
  std::filesystem::create_directories(dest + "tessarin/images/snap");
  CopyImageSet(home.ctx, work, dest, "snap", {"", "mygame"});
  EXPECT_TRUE(std::filesystem::is_empty(dest + "tessarin/images/snap"));
}

TEST(SiteTest, SearchIndexIsAnExtraThatLeavesThePagesAsTheyAre) {
  SiteHome plain;
  HtmlSiteRequest request;
  request.destination = plain.out.path().toStdString();
  ASSERT_EQ(plain.Build(request), HtmlSiteResult::Done);
  SiteHome withIndex;
  request.destination = withIndex.out.path().toStdString();
  request.searchIndex = true;
  ASSERT_EQ(withIndex.Build(request), HtmlSiteResult::Done);
  const std::string a = Site(plain);
  const std::string b = Site(withIndex);
  std::set<std::string> extra = Files(b);
  for (const std::string& file : Files(a)) {
    // The help page's address names each home's own folder; every other byte is the same.
    const std::string left = ReadFile(a + file);
    const std::string right = ReadFile(b + file);
    if (file == "index.htm") {
      EXPECT_EQ(left.size() - plain.ctx.AppFolder().size(),
                right.size() - withIndex.ctx.AppFolder().size());
    } else {
      EXPECT_EQ(left, right) << file;
    }
    extra.erase(file);
  }
  EXPECT_EQ(extra, (std::set<std::string>{"search-index.js", "search.htm"}));
  const std::string script = ReadFile(b + "search-index.js");
  EXPECT_EQ(
      script.rfind("var TESSARIN_GAMES=[\n[\"digits\",\"digits.htm\",\"1942 Again\",\"Capcom\","
                   "\"1984\",\"Shooter\"],\n",
                   0),
      0u)
      << script.substr(0, 200);
  // The page of a long rom name is its 12-character file; a game without a genre value shows
  // none.
  EXPECT_NE(script.find("[\"verylongromname\",\"verylongromn.htm\",\"Long Name Game\",\"Acme\","
                        "\"1990\",\"Shooter\"]"),
            std::string::npos);
  EXPECT_EQ(std::count(script.begin(), script.end(), '\n'), 10 + 2);
  EXPECT_NE(ReadFile(b + "search.htm").find("<script src=\"search-index.js\""), std::string::npos);
}

TEST(SiteTest, SearchIndexScriptEscapesWhatJavaScriptNeeds) {
  SiteIndexEntry entry{"a\"b", "x\\y.htm", "</script>\x01", "caf\xC3\xA9", "", "G"};
  EXPECT_EQ(SearchIndexScript({entry}),
            "var TESSARIN_GAMES=[\n[\"a\\\"b\",\"x\\\\y.htm\",\"\\u003c/script>\\u0001\","
            "\"caf\xC3\xA9\",\"\",\"G\"]\n];\n");
  EXPECT_EQ(SearchIndexScript({}), "var TESSARIN_GAMES=[\n];\n");
}

// Every href and src of a site built with the built-in templates that points inside it resolves
// to a file, but for the page links of rom names over 12 characters and the group links of an
// empty group name, both required.
TEST(SiteTest, BuiltInTemplatesLinksResolve) {
  SiteHome home;
  HtmlSiteRequest request;
  request.destination = home.out.path().toStdString();
  ASSERT_EQ(home.Build(request), HtmlSiteResult::Done);
  const std::string site = Site(home);
  const std::regex link("(?:href|src)=\"([^\"#]*)(#[^\"]*)?\"");
  int checked = 0;
  int longNames = 0;
  int emptyGroups = 0;
  std::vector<std::string> broken;
  for (const std::string& file : Files(site)) {
    if (file.size() < 4 || file.substr(file.size() - 4) != ".htm") continue;
    const std::string text = ReadFile(site + file);
    const std::filesystem::path folder = std::filesystem::path(site + file).parent_path();
    for (std::sregex_iterator it(text.begin(), text.end(), link), end; it != end; ++it) {
      const std::string target = (*it)[1].str();
      if (target.empty() || target.rfind("file:", 0) == 0 || target.rfind("http", 0) == 0) {
        continue;
      }
      ++checked;
      if (std::filesystem::exists(folder / target)) continue;
      const std::string name = std::filesystem::path(target).filename().string();
      if (name == ".htm") {
        ++emptyGroups;
      } else if (name.size() > 12 + 4) {
        ++longNames;
      } else {
        broken.push_back(file + " -> " + target);
      }
    }
  }
  EXPECT_GT(checked, 100);
  EXPECT_TRUE(broken.empty()) << broken.front();
  // verylongromname: its previous and next neighbours and the complete list.
  EXPECT_EQ(longNames, 3 + 5);
  EXPECT_GT(emptyGroups, 0);
}

#ifdef TESSARIN_CLI_PATH
struct CliResult {
  int exitCode = -1;
  std::string out, err;
};

// Runs tessarin-cli site on the fixture home, with a temporary folder of the test's own.
CliResult RunSite(SiteHome& home, const std::vector<std::string>& args) {
  QProcess process;
  QStringList list{QStringLiteral("--home"), QString::fromStdString(home.ctx.AppFolder()),
                   QStringLiteral("site")};
  for (const std::string& a : args) list << QString::fromStdString(a);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  std::filesystem::create_directories(home.Path("systemp"));
  environment.insert(QStringLiteral("TMPDIR"), QString::fromStdString(home.Path("systemp")));
  process.setProcessEnvironment(environment);
  process.setStandardInputFile(QProcess::nullDevice());
  process.start(QStringLiteral(TESSARIN_CLI_PATH), list);
  CliResult result;
  if (!process.waitForStarted(30000) || !process.waitForFinished(120000)) return result;
  result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
  result.out = process.readAllStandardOutput().toStdString();
  result.err = process.readAllStandardError().toStdString();
  return result;
}

TEST(SiteCommand, BuildsTheSiteAndReportsIt) {
  SiteHome home;
  const std::string out = home.out.path().toStdString();
  const CliResult run =
      RunSite(home, {"--out", out, "--skip-clones", "--skin", "Default_EN.skin.zip"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string site = out + "/tessarin/";
  // The site "opened" (its path printed), then message 41.
  EXPECT_EQ(run.out, site + "index.htm\n" + home.ctx.messages.Lng(41) + "\n");
  EXPECT_NE(run.err.find("9 games, "), std::string::npos) << run.err;
  EXPECT_TRUE(std::filesystem::exists(site + "roms/mygame.htm"));
  EXPECT_FALSE(std::filesystem::exists(site + "roms/mygamej.htm"));
  // The default skin's list.htm stands in for the group pages, and comes along.
  EXPECT_TRUE(std::filesystem::exists(site + "genres/list.htm"));
  EXPECT_NE(ReadFile(site + "roms/listroms.htm").find("<a href=\"mygame.htm\">My Game</a><br>"),
            std::string::npos);
}

TEST(SiteCommand, IniFileAndWrongArguments) {
  SiteHome home;
  const std::string out = home.out.path().toStdString();
  const CliResult run = RunSite(home, {"--out", out, "--ini", Fixture("one.ini")});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_NE(run.err.find("1 games, "), std::string::npos) << run.err;
  EXPECT_TRUE(std::filesystem::exists(out + "/tessarin/roms/bravo.htm"));
  EXPECT_FALSE(std::filesystem::exists(out + "/tessarin/roms/mygame.htm"));

  const CliResult wrongSet = RunSite(home, {"--out", out, "--copy-images", "snap,boxes"});
  EXPECT_EQ(wrongSet.exitCode, 2);
  EXPECT_NE(wrongSet.err.find("\"boxes\""), std::string::npos) << wrongSet.err;
  const CliResult both = RunSite(home, {"--out", out, "--copy-images", "snap", "--online-images"});
  EXPECT_EQ(both.exitCode, 2);
  const CliResult noIni = RunSite(home, {"--out", out, "--ini", home.Path("missing.ini")});
  EXPECT_EQ(noIni.exitCode, 1);
  EXPECT_NE(noIni.err.find(home.Path("missing.ini")), std::string::npos) << noIni.err;
  // An empty INI file stops before anything is made.
  WriteFile(home.Path("empty.ini"), "");
  const std::string untouched = home.Path("nothing");
  const CliResult emptyIni = RunSite(home, {"--out", untouched, "--ini", home.Path("empty.ini")});
  EXPECT_EQ(emptyIni.exitCode, 1);
  EXPECT_NE(emptyIni.err.find("empty"), std::string::npos) << emptyIni.err;
  EXPECT_FALSE(std::filesystem::exists(untouched));
  const CliResult noOut = RunSite(home, {});
  EXPECT_EQ(noOut.exitCode, 2);
  // An empty destination is refused rather than taken as the root of the file system.
  const bool rootSiteBefore = std::filesystem::exists("/tessarin");
  const CliResult emptyOut = RunSite(home, {"--out", ""});
  EXPECT_EQ(emptyOut.exitCode, 2);
  EXPECT_EQ(std::filesystem::exists("/tessarin"), rootSiteBefore);
}
#endif

}  // namespace
}  // namespace tessarin
