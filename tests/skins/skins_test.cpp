#include "lists/skins.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "archive/unzip.h"
#include "core/fileservices.h"
#include "gamepagetestsupport.h"
#include "shell/startup.h"
#include "zipworker/zipclass.h"

namespace tessarin {
namespace {

using gamepagetest::FixtureHome;
using testsupport::ReadFile;
using testsupport::WriteFile;

namespace fs = std::filesystem;

std::vector<std::string> FilesIn(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Zips the files of `folder` flat into `zipPath`.
void ZipFolder(const std::string& folder, const std::string& zipPath) {
  myzip::ZipClass zip;
  ASSERT_GT(zip.FileAdd(folder + "/*.*", 1, false), 0);
  ASSERT_TRUE(zip.WriteZip(zipPath));
}

// The tags of the game page, in the order of the built-in page.
const char* const kGamePageTags[] = {"#TITLE",       "#MANUFACTURER",  "#YEAR",
                                     "#GENRE",       "#CATEGORY",      "#MATURE",
                                     "#NPLAYERS",    "#SAVESTATE",     "#HIGHSCORE",
                                     "#CHEAT",       "#COMMAND",       "#DRIVER",
                                     "#SAMPLE",      "#ROMNAME",       "#GOTIT",
                                     "#STATUS",      "#DRIVERSTATUS",  "#GFXSTATUS",
                                     "#COLORSTATUS", "#SOUNDSTATUS",   "#FLIPSCREEN",
                                     "#CLONES",      "#SCREEN",        "#ORIENTATION",
                                     "#CONTROLS",    "#BUTTONS",       "#PLAYERSBUTTONS",
                                     "#COINS",       "#SERVICE",       "#TILT",
                                     "#VERADDED",    "#SOUNDCHANNELS", "#NCOLORS",
                                     "#RESOLUTION",  "#ASPECT",        "#REFRESH",
                                     "#MYNOTES",     "#FLYER",         "#SCRTITLE",
                                     "#HISTORY",     "#MARQUEE",       "#MAMEINFO",
                                     "#CABINET",     "#SNAP",          "#CPO",
                                     " #DIPSWITCH",  "#ROMFILES",      "#BIOSSET",
                                     "#CHIPS",       "#DISKS",         "#PREVIOUS - #HOME - #NEXT"};

TEST(BuiltInTexts, TheListIsOneLineAndTheSameInBothLanguages) {
  const std::string list(BuiltInList());
  EXPECT_EQ(list.find_first_of("\r\n"), std::string::npos);
  for (const char* part :
       {"<title>#TITLE</title>", "text=\"#FFFFFF\"", "bgcolor=\"#0F3F60\"", "link=\"#00FFFF\"",
        "vlink=\"#00FF00\"", "width=\"720\"", "#VERMAME - #VERMDATA", "bgcolor=\"#006699\"",
        "color=\"#FFFF00\"", "#LIST", "#HOME", "face=\"Verdana, sans-serif\""}) {
    EXPECT_NE(list.find(part), std::string::npos) << part;
  }
  // The title comes before the list, the list before the link home.
  EXPECT_LT(list.find("#VERMAME"), list.find("size=\"4\" color=\"#FFFF00\">#TITLE"));
  EXPECT_LT(list.find("#TITLE</font>"), list.find("#LIST"));
  EXPECT_LT(list.find("#LIST"), list.find("#HOME"));
}

TEST(BuiltInTexts, TheIndexListsItsLinksInOrder) {
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    const std::string index(BuiltInIndex(language));
    size_t last = 0;
    for (const char* tag : {"#LISTMANUFACTURER", "#LISTYEAR", "#LISTVERADDED", "#LISTGENRE",
                            "#LISTCATEGORY", "#LISTROMS", "#HELP"}) {
      const size_t at = index.find(tag);
      ASSERT_NE(at, std::string::npos) << tag;
      EXPECT_GT(at, last) << tag;
      last = at;
    }
    EXPECT_NE(index.find("<p align=\"right\">#HELP</p>"), std::string::npos);
  }
  EXPECT_NE(BuiltInIndex(Messages::kEnglish).find(">MAIN MENU<"), std::string::npos);
  EXPECT_NE(BuiltInIndex(Messages::kEnglish).find("<title>Main menu</title>"), std::string::npos);
  EXPECT_NE(BuiltInIndex(Messages::kFrench).find(">MENU PRINCIPAL<"), std::string::npos);
  EXPECT_NE(BuiltInIndex(Messages::kFrench).find("<title>Menu principal</title>"),
            std::string::npos);
  // A language file speaks English here.
  EXPECT_EQ(BuiltInIndex(Messages::kLanguageFile), BuiltInIndex(Messages::kEnglish));
}

TEST(BuiltInTexts, TheCompleteListHasItsAnchorsAndItsTag) {
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    const std::string list(BuiltInCompleteList(language));
    std::string anchors = "<a href=\"#0\">0</a> ";
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      anchors += std::string("<a href=\"#") + letter + "\">" + letter + "</a> ";
    }
    EXPECT_NE(list.find(anchors), std::string::npos);
    EXPECT_LT(list.find(anchors), list.find("#COMPLETELIST"));
    EXPECT_LT(list.find("#COMPLETELIST"), list.find("#HOME"));
  }
  EXPECT_NE(BuiltInCompleteList(1).find("COMPLETE LIST"), std::string::npos);
  EXPECT_NE(BuiltInCompleteList(0).find("LISTE COMPLETE"), std::string::npos);
  EXPECT_NE(BuiltInCompleteList(0).find("<title>Liste compl\xC3\xA8te</title>"), std::string::npos);
}

TEST(BuiltInTexts, TheGamePageHoldsEveryTagInOrder) {
  for (int language : {Messages::kEnglish, Messages::kFrench}) {
    const std::string page(BuiltInGamePage(language));
    size_t last = 0;
    for (const char* tag : kGamePageTags) {
      const size_t at = page.find(tag);
      ASSERT_NE(at, std::string::npos) << tag;
      if (std::string(tag) != "#TITLE") {
        EXPECT_GT(at, last) << tag;
      }
      last = at;
    }
    EXPECT_NE(page.find("#VERMAME - #VERMDATA"), std::string::npos);
    EXPECT_NE(page.find("width=\"260\""), std::string::npos);
    EXPECT_NE(page.find("width=\"460\""), std::string::npos);
  }
  const std::string english(BuiltInGamePage(Messages::kEnglish));
  for (const char* label :
       {"Manufacturer :", "Number of players :", "Highscore.dat support :",
        "Flip screen (cocktail) :", "Players buttons :", "Coins entries :", "Added in MAME :",
        "Refresh rate :", "My notes :", "Title screen :", "CPO:", "Dipswitches :", "BIOS SET :"}) {
    EXPECT_NE(english.find(label), std::string::npos) << label;
  }
  const std::string french(BuiltInGamePage(Messages::kFrench));
  for (const char* label : {"\xC3\x89"
                            "diteur :",
                            "Ann\xC3\xA9"
                            "e :",
                            "Cat\xC3\xA9gorie :", "Notes personnelles :", "Borne :"}) {
    EXPECT_NE(french.find(label), std::string::npos) << label;
  }
  EXPECT_EQ(french.find("Manufacturer :"), std::string::npos);
}

// Unpacks a default skin into a fresh folder and gives its folder.
std::string Unpack(FixtureHome& home, std::string_view name, const std::string& into) {
  const std::string zip = home.Path(std::string(name));
  WriteFile(zip, DefaultSkinArchive(name));
  fs::create_directories(into);
  UnzipEnvironment environment;
  environment.appFolder = home.ctx.AppFolder();
  environment.log = &home.ctx.log;
  EXPECT_TRUE(UnzipAll(environment, zip, into, true));
  return AddSlash(into);
}

TEST(DefaultSkins, TheEnglishSkinIsTheEnglishTexts) {
  FixtureHome home(false);
  const std::string folder = Unpack(home, kDefaultSkinEN, home.Path("en"));
  EXPECT_EQ(FilesIn(folder), (std::vector<std::string>{"index.htm", "list.htm", "listroms.htm",
                                                       "rom.htm", "search.htm"}));
  EXPECT_EQ(ReadFile(folder + "index.htm"), BuiltInIndex(Messages::kEnglish));
  EXPECT_EQ(ReadFile(folder + "list.htm"), BuiltInList());
  EXPECT_EQ(ReadFile(folder + "listroms.htm"), BuiltInCompleteList(Messages::kEnglish));
  EXPECT_EQ(ReadFile(folder + "rom.htm"), BuiltInGamePage(Messages::kEnglish));
  EXPECT_EQ(ReadFile(folder + "search.htm"), BuiltInGamePage(Messages::kEnglish));
}

TEST(DefaultSkins, TheFrenchSkinHasItsBanners) {
  FixtureHome home(false);
  const std::string folder = Unpack(home, kDefaultSkinFR, home.Path("fr"));
  EXPECT_EQ(FilesIn(folder),
            (std::vector<std::string>{"index.gif", "index.htm", "list.htm", "listroms.htm",
                                      "rom.gif", "rom.htm", "search.gif", "search.htm"}));
  const std::string versionLine =
      "<tr><td align=\"right\"><font face=\"Verdana, sans-serif\" size=\"1\">#VERMAME - "
      "#VERMDATA</font>"
      "</td></tr>";
  const auto banner = [](const char* picture) {
    return "<tr><td><table border=\"0\" cellpadding=\"0\" cellspacing=\"0\" width=\"100%\"><tr>"
           "<td width=\"204\"><img border=\"0\" src=\"" +
           std::string(picture) +
           "\" width=\"204\" height=\"110\"></td><td align=\"right\" valign=\"bottom\"><font "
           "face=\"Verdana, sans-serif\" size=\"1\">#VERMAME - "
           "#VERMDATA</font></td></tr></table></td></tr>";
  };
  const struct {
    const char* file;
    std::string_view builtIn;
    const char* picture;
  } pages[] = {{"index.htm", BuiltInIndex(Messages::kFrench), "index.gif"},
               {"rom.htm", BuiltInGamePage(Messages::kFrench), "rom.gif"},
               {"search.htm", BuiltInGamePage(Messages::kFrench), "search.gif"}};
  for (const auto& page : pages) {
    const std::string text(page.builtIn);
    ASSERT_NE(text.find(versionLine), std::string::npos);
    std::string expected = text;
    expected.replace(expected.find(versionLine), versionLine.size(), banner(page.picture));
    EXPECT_EQ(ReadFile(folder + page.file), expected) << page.file;
  }
  EXPECT_EQ(ReadFile(folder + "list.htm"), BuiltInList());
  EXPECT_EQ(ReadFile(folder + "listroms.htm"), BuiltInCompleteList(Messages::kFrench));
  // Pictures of 204 by 110.
  for (const char* picture : {"index.gif", "rom.gif", "search.gif"}) {
    const std::string gif = ReadFile(folder + picture);
    ASSERT_GT(gif.size(), 10u);
    EXPECT_EQ(gif.substr(0, 4), "GIF8") << picture;
    EXPECT_EQ(static_cast<unsigned char>(gif[6]) | static_cast<unsigned char>(gif[7]) << 8, 204);
    EXPECT_EQ(static_cast<unsigned char>(gif[8]) | static_cast<unsigned char>(gif[9]) << 8, 110);
  }
  EXPECT_EQ(DefaultSkinArchive("Other.skin.zip"), "");
}

TEST(DefaultSkins, AStartWritesBothAndKeepsAnEditedOne) {
  FixtureHome home(false);
  fs::remove_all(home.Path("HTML"));
  MakeAppFolders(home.ctx);
  StartUpSteps steps;
  steps.SkinResource = DefaultSkinArchive;
  ExtractSkinFR(home.ctx, steps);
  ExtractSkinEN(home.ctx, steps);
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_FR.skin.zip")), DefaultSkinArchive(kDefaultSkinFR));
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_EN.skin.zip")), DefaultSkinArchive(kDefaultSkinEN));
  EXPECT_FALSE(ReadFile(home.Path("HTML/help.htm")).empty());
  WriteFile(home.Path("HTML/Default_EN.skin.zip"), "mine");
  fs::remove(home.Path("HTML/Default_FR.skin.zip"));
  ExtractSkinFR(home.ctx, steps);
  ExtractSkinEN(home.ctx, steps);
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_EN.skin.zip")), "mine");
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_FR.skin.zip")), DefaultSkinArchive(kDefaultSkinFR));
}

TEST(Skins, ArchiveNamesAndTheList) {
  EXPECT_TRUE(IsSkinArchiveName("a.skin.zip"));
  EXPECT_TRUE(IsSkinArchiveName("A.SKIN.ZIP"));
  EXPECT_TRUE(IsSkinArchiveName(".zip"));
  EXPECT_FALSE(IsSkinArchiveName("zip"));
  EXPECT_FALSE(IsSkinArchiveName("a.skin"));
  EXPECT_FALSE(IsSkinArchiveName("a.zip.skin"));
  FixtureHome home(false);
  fs::create_directories(home.Path("HTML/b.skin"));
  WriteFile(home.Path("HTML/a.skin"), "a plain file");
  WriteFile(home.Path("HTML/c.skin.zip"), "zip");
  WriteFile(home.Path("HTML/other.htm"), "x");
  EXPECT_EQ(ListSkins(home.ctx.AppFolder()),
            (std::vector<std::string>{"a.skin", "b.skin", "c.skin.zip"}));
}

TEST(ResolveSkinFolder, NoSkinAFolderAndAnArchive) {
  FixtureHome home(false);
  std::string folder;
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "", folder));
  EXPECT_EQ(folder, home.Path("HTML/"));
  // A folder isn't looked for.
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "nowhere.skin", folder));
  EXPECT_EQ(folder, home.Path("HTML/nowhere.skin/"));
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "ends.skin/", folder));
  EXPECT_EQ(folder, home.Path("HTML/ends.skin/"));
  WriteFile(home.Path("HTML/Default_EN.skin.zip"), DefaultSkinArchive(kDefaultSkinEN));
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "Default_EN.skin.zip", folder));
  EXPECT_EQ(folder, home.ctx.TempFolder);
  EXPECT_EQ(ReadFile(folder + "rom.htm"), BuiltInGamePage(Messages::kEnglish));
  EXPECT_TRUE(home.ui.messages.empty());
}

TEST(ResolveSkinFolder, AnArchiveThatCantBeUnpackedIsTold) {
  FixtureHome home(false);
  WriteFile(home.Path("HTML/broken.skin.zip"), "not a zip at all");
  std::string folder = "x";
  EXPECT_FALSE(ResolveSkinFolder(home.ctx, "broken.skin.zip", folder));
  EXPECT_EQ(folder, "");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Can't unzip then skin.");
  EXPECT_EQ(home.ui.messages[0].title, "Error");
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Stop);
  // A missing archive likewise.
  EXPECT_FALSE(ResolveSkinFolder(home.ctx, "missing.skin.zip", folder));
  EXPECT_EQ(home.ui.messages.size(), 2u);
}

TEST(ResolveSkinFolder, TwoArchivesInARowShareTheTemporaryFolder) {
  FixtureHome home(false);
  fs::create_directories(home.Path("one"));
  WriteFile(home.Path("one/rom.htm"), "first rom");
  WriteFile(home.Path("one/index.htm"), "first index");
  ZipFolder(home.Path("one"), home.Path("HTML/one.skin.zip"));
  fs::create_directories(home.Path("two"));
  WriteFile(home.Path("two/rom.htm"), "second rom");
  ZipFolder(home.Path("two"), home.Path("HTML/two.skin.zip"));
  std::string folder;
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "one.skin.zip", folder));
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "two.skin.zip", folder));
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::Rom, 1, {}).text, "second rom");
  // The second lacks an index: the first one's is found.
  const SkinTemplate index = LoadSiteTemplate(folder, SkinPage::Index, 1, {});
  EXPECT_EQ(index.text, "first index");
  EXPECT_EQ(index.fileName, "index.htm");
}

TEST(SiteTemplates, AnArchiveWithOnlyRomHtm) {
  FixtureHome home(false);
  fs::create_directories(home.Path("only"));
  WriteFile(home.Path("only/rom.htm"), "my game page #TITLE");
  ZipFolder(home.Path("only"), home.Path("HTML/only.skin.zip"));
  std::string folder;
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "only.skin.zip", folder));
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::Rom, 1, {}).text, "my game page #TITLE");
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::Index, 1, {}).text, BuiltInIndex(1));
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::ListRoms, 0, {}).text, BuiltInCompleteList(0));
  for (SkinPage page : {SkinPage::Genre, SkinPage::Category, SkinPage::Manufacturer, SkinPage::Year,
                        SkinPage::VerAdded}) {
    const SkinTemplate list = LoadSiteTemplate(folder, page, 1, {});
    EXPECT_EQ(list.text, BuiltInList());
    EXPECT_EQ(list.fileName, "");
  }
}

TEST(SiteTemplates, ListHtmStandsInForTheGroupsWithoutTheirOwn) {
  FixtureHome home(false);
  const std::string skin = home.Path("HTML/mine.skin/");
  fs::create_directories(skin);
  WriteFile(skin + "list.htm", "LIST #LIST");
  WriteFile(skin + "list_back.png", "picture of the list");
  WriteFile(skin + "listroms.htm", "complete #COMPLETELIST");
  WriteFile(skin + "genre.htm", "GENRE #LIST");
  WriteFile(skin + "genre.css", "genre style");
  std::string folder;
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "mine.skin", folder));
  const std::string out = home.Path("out/");
  for (const char* kind : {"genres", "categories", "manufacturers", "years", "veradded"}) {
    fs::create_directories(out + kind);
  }
  const SkinTemplate genre = LoadSiteTemplate(folder, SkinPage::Genre, 1, out + "genres");
  EXPECT_EQ(genre.text, "GENRE #LIST");
  EXPECT_EQ(genre.fileName, "genre.htm");
  EXPECT_EQ(FilesIn(out + "genres"), (std::vector<std::string>{"genre.css", "genre.htm"}));
  const struct {
    SkinPage page;
    const char* folder;
  } others[] = {{SkinPage::Category, "categories"},
                {SkinPage::Manufacturer, "manufacturers"},
                {SkinPage::Year, "years"},
                {SkinPage::VerAdded, "veradded"}};
  for (const auto& other : others) {
    const SkinTemplate list = LoadSiteTemplate(folder, other.page, 1, out + other.folder);
    EXPECT_EQ(list.text, "LIST #LIST");
    EXPECT_EQ(list.fileName, "list.htm");
    // list*.* brings listroms.htm along, and list.htm stays in the folder.
    EXPECT_EQ(FilesIn(out + other.folder),
              (std::vector<std::string>{"list.htm", "list_back.png", "listroms.htm"}))
        << other.folder;
  }
}

TEST(SiteTemplates, RomCompanionsAreCopiedEvenForTheBuiltInPage) {
  FixtureHome home(false);
  const std::string skin = home.Path("HTML/pics.skin/");
  fs::create_directories(skin);
  WriteFile(skin + "rom_back.jpg", "background");
  WriteFile(skin + "index.htm", "menu");
  WriteFile(skin + "index.gif", "menu picture");
  const std::string out = home.Path("out/");
  fs::create_directories(out + "roms");
  const SkinTemplate rom = LoadSiteTemplate(skin, SkinPage::Rom, 0, out + "roms");
  EXPECT_EQ(rom.text, BuiltInGamePage(Messages::kFrench));
  EXPECT_EQ(FilesIn(out + "roms"), (std::vector<std::string>{"rom_back.jpg"}));
  // With its own rom.htm, that goes along too, tags unfilled.
  WriteFile(skin + "rom.htm", "#TITLE");
  LoadSiteTemplate(skin, SkinPage::Rom, 0, out + "roms");
  EXPECT_EQ(ReadFile(out + "roms/rom.htm"), "#TITLE");
  // The built-in texts bring no companions.
  const SkinTemplate list = LoadSiteTemplate(skin, SkinPage::ListRoms, 0, out + "roms");
  EXPECT_EQ(list.fileName, "");
  EXPECT_EQ(FilesIn(out + "roms"), (std::vector<std::string>{"rom.htm", "rom_back.jpg"}));
  LoadSiteTemplate(skin, SkinPage::Index, 0, out);
  EXPECT_EQ(ReadFile(out + "index.gif"), "menu picture");
}

TEST(SiteTemplates, APlainFileNamedAsASkinGivesTheBuiltInTexts) {
  FixtureHome home(false);
  WriteFile(home.Path("HTML/file.skin"), "I am no folder");
  std::string folder;
  ASSERT_TRUE(ResolveSkinFolder(home.ctx, "file.skin", folder));
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::Rom, 1, {}).text, BuiltInGamePage(1));
  EXPECT_EQ(LoadSiteTemplate(folder, SkinPage::Year, 1, {}).text, BuiltInList());
}

TEST(Templates, BytesPassThrough) {
  FixtureHome home(false);
  const std::string bytes = std::string("<p>\xE9\xE8\0\xFF\r\n#TITLE\r", 13);
  WriteFile(home.Path("t.htm"), bytes);
  std::string text;
  ASSERT_TRUE(LoadTemplate(home.Path("t.htm"), text));
  EXPECT_EQ(text, bytes);
  ASSERT_TRUE(WritePage(home.Path("copy.htm"), text));
  EXPECT_EQ(ReadFile(home.Path("copy.htm")), bytes);
  EXPECT_FALSE(LoadTemplate(home.Path("missing.htm"), text));
  EXPECT_EQ(text, "");
}

TEST(FoundPage, WithoutASkinTheBuiltInPageIsWrittenIntoHtml) {
  FixtureHome home;
  WriteFile(home.Path("HTML/search_style.css"), "style");
  WriteFile(home.ctx.TempFolder + "search_style.css", "already there");
  const std::string page = MakeFoundPage(home.ctx, "", "mygame", {});
  EXPECT_EQ(page, home.ctx.TempFolder + "Found.htm");
  EXPECT_EQ(ReadFile(home.Path("HTML/search.htm")), BuiltInGamePage(Messages::kEnglish));
  const std::string found = ReadFile(page);
  EXPECT_NE(found.find("<title>My Game</title>"), std::string::npos);
  EXPECT_EQ(found.find("#PREVIOUS"), std::string::npos);
  EXPECT_EQ(found.find("#HOME"), std::string::npos);
  // Companions come along unless a file of the name is there already.
  EXPECT_EQ(ReadFile(home.ctx.TempFolder + "search_style.css"), "already there");
  EXPECT_EQ(ReadFile(home.ctx.TempFolder + "search.htm"), BuiltInGamePage(Messages::kEnglish));
}

TEST(FoundPage, AFolderSkinGetsTheBuiltInPageWhenItLacksOne) {
  FixtureHome home;
  home.ctx.messages.LanguageNumber = Messages::kFrench;
  const std::string skin = home.Path("HTML/mine.skin/");
  fs::create_directories(skin);
  WriteFile(skin + "search_logo.png", "logo");
  const std::string page = MakeFoundPage(home.ctx, "mine.skin", "lonely", {});
  ASSERT_FALSE(page.empty());
  EXPECT_EQ(ReadFile(skin + "search.htm"), BuiltInGamePage(Messages::kFrench));
  EXPECT_EQ(ReadFile(home.ctx.TempFolder + "search_logo.png"), "logo");
  // Its own search page is used when it has one.
  WriteFile(skin + "search.htm", "<b>#ROMNAME</b> #PREVIOUS - #NEXT.");
  MakeFoundPage(home.ctx, "mine.skin", "lonely", {});
  EXPECT_EQ(ReadFile(page), "<b>lonely</b> .");
}

TEST(FoundPage, AnArchiveSkinAndOneThatFails) {
  FixtureHome home;
  WriteFile(home.Path("HTML/Default_FR.skin.zip"), DefaultSkinArchive(kDefaultSkinFR));
  const std::string page = MakeFoundPage(home.ctx, "Default_FR.skin.zip", "mygamej", {});
  ASSERT_EQ(page, home.ctx.TempFolder + "Found.htm");
  const std::string found = ReadFile(page);
  EXPECT_NE(found.find("src=\"search.gif\""), std::string::npos);
  EXPECT_TRUE(fs::exists(home.ctx.TempFolder + "search.gif"));
  EXPECT_NE(found.find("<title>My Game (Japan)</title>"), std::string::npos);
  // Written elsewhere, the page takes its pictures along.
  fs::create_directories(home.Path("pages"));
  EXPECT_EQ(MakeFoundPage(home.ctx, "Default_FR.skin.zip", "mygame", {}, home.Path("pages/p.htm")),
            home.Path("pages/p.htm"));
  EXPECT_TRUE(fs::exists(home.Path("pages/search.gif")));
  WriteFile(home.Path("HTML/bad.skin.zip"), "bad");
  EXPECT_EQ(MakeFoundPage(home.ctx, "bad.skin.zip", "mygame", {}), "");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Can't unzip then skin.");
}

#ifdef TESSARIN_CLI_PATH
struct CliResult {
  int exitCode = -1;
  std::string out, err;
};

// Runs tessarin-cli on the fixture home, with a temporary folder of the test's own.
CliResult RunPage(FixtureHome& home, const std::vector<std::string>& args) {
  QProcess process;
  QStringList list{QStringLiteral("--home"), QString::fromStdString(home.ctx.AppFolder()),
                   QStringLiteral("page")};
  for (const std::string& a : args) list << QString::fromStdString(a);
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  fs::create_directories(home.Path("systemp"));
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

TEST(PageCommand, WritesTheFoundPageAndPrintsItsPath) {
  FixtureHome home;
  fs::remove_all(home.Path("HTML"));
  const CliResult run = RunPage(home, {"mygame"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  const std::string page = home.Path("systemp/tessarin-cli/Found.htm");
  EXPECT_EQ(run.out, page + "\n");
  const std::string text = ReadFile(page);
  EXPECT_NE(text.find("<title>My Game</title>"), std::string::npos);
  EXPECT_NE(text.find("Clones list : mygamej"), std::string::npos);
  // As a start does: the help page and the default skins; and the search page of no skin.
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_EN.skin.zip")), DefaultSkinArchive(kDefaultSkinEN));
  EXPECT_EQ(ReadFile(home.Path("HTML/Default_FR.skin.zip")), DefaultSkinArchive(kDefaultSkinFR));
  EXPECT_TRUE(fs::exists(home.Path("HTML/help.htm")));
  EXPECT_EQ(ReadFile(home.Path("HTML/search.htm")), BuiltInGamePage(Messages::kEnglish));
}

TEST(PageCommand, ASkinAnOutputFileAndOnlineImages) {
  FixtureHome home;
  WriteFile(home.Path("Tessarin.url.inf"),
            "ONLINE_SNAP=http://img.example.invalid/snap/#ROMNAME#.png\r\n");
  fs::create_directories(home.Path("out"));
  const CliResult run = RunPage(home, {"mygamej", "--skin", "Default_FR.skin.zip", "--out",
                                       home.Path("out/page.htm"), "--online-images"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out, home.Path("out/page.htm") + "\n");
  const std::string text = ReadFile(home.Path("out/page.htm"));
  EXPECT_NE(text.find("src=\"search.gif\""), std::string::npos);
  EXPECT_TRUE(fs::exists(home.Path("out/search.gif")));
  EXPECT_NE(text.find("<img border=\"0\" src=\"http://img.example.invalid/snap/mygamej.png\">"),
            std::string::npos);
  EXPECT_NE(text.find("This is a clone of : mygame"), std::string::npos);
}

TEST(PageCommand, AnUnknownGameOrABrokenSkinFails) {
  FixtureHome home;
  const CliResult dummy = RunPage(home, {"nosuchgame"});
  EXPECT_EQ(dummy.exitCode, 1);
  EXPECT_NE(dummy.err.find("nosuchgame"), std::string::npos);
  EXPECT_NE(ReadFile(home.Path("systemp/tessarin-cli/Found.htm")).find("<title>Dummy</title>"),
            std::string::npos);
  WriteFile(home.Path("HTML/bad.skin.zip"), "no zip");
  const CliResult bad = RunPage(home, {"mygame", "--skin", "bad.skin.zip"});
  EXPECT_EQ(bad.exitCode, 1);
  EXPECT_NE(bad.err.find("Can't unzip then skin."), std::string::npos) << bad.err;
  const CliResult usage = RunPage(home, {});
  EXPECT_EQ(usage.exitCode, 2);
}
#endif

}  // namespace
}  // namespace tessarin
