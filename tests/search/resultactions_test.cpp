// The result list's actions without a window: the selection rule, delete, move and copy on a
// temporary rom folder, the INI and text files, the clipboard text, adding and withdrawing lists,
// the download limit and downloads from local files, the search sites, sorting, the jump boxes,
// the small viewer's settings and the HTML page.

#include "search/resultactions.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>
#include <filesystem>
#include <memory>

#include "core/fileservices.h"
#include "core/work.h"
#include "search/foundpage.h"
#include "search/searchengine.h"
#include "searchtestsupport.h"
#include "support/scopedtrash.h"

namespace tessarin {
namespace {

using searchtest::ContextHolder;
using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;
namespace fs = std::filesystem;

constexpr const char* kNoRom = "NO ROM FOUND !";

class Actions : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(searchtest::FixtureStore(m_holder));
    m_lines = ResultLines(Store(), SearchGames(Store(), {}));
  }
  AppContext& Ctx() { return m_holder.ctx(); }
  const GameStore& Store() { return m_holder.ctx().store; }
  int Longest() { return Store().LongestNameLength; }
  ContextHolder m_holder;
  std::vector<std::string> m_lines;
};

TEST_F(Actions, NameAndTitleOfALine) {
  EXPECT_EQ(RomNameOfLine(m_lines[0], Longest()), "pacman");
  EXPECT_EQ(TitleOfLine(m_lines[0], Longest()), "Pac-Man (Midway)");
  EXPECT_EQ(RomNameOfLine(kNoRom, Longest()), "NO ROM F");
  EXPECT_EQ(TitleOfLine("short", Longest()), "");
}

TEST_F(Actions, SelectionRulePicksSelectedOrAll) {
  EXPECT_EQ(PickedRows(3, {}), (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(PickedRows(3, {2, 0, 2}), (std::vector<int>{0, 2}));
  EXPECT_EQ(PickedRows(0, {}), std::vector<int>{});
  EXPECT_EQ(PickedRomNames(m_lines, {1, 3}, Longest(), kNoRom),
            (std::vector<std::string>{"puckman", "sf2j"}));
  EXPECT_TRUE(PickedRomNames({kNoRom}, {}, Longest(), kNoRom).empty());
}

class RomFolder : public Actions {
 protected:
  void SetUp() override {
    Actions::SetUp();
    // The desktop's trash must not be the user's own during a test.
    m_trash = std::make_unique<testsupport::ScopedTrash>(m_trashHome.Path());
    Ctx().settings.InfWrite("RomPath", m_roms.Path());
    for (const char* name : {"pacman", "puckman", "sf2", "zorblast"}) {
      WriteFile(m_roms / (std::string(name) + ".zip"), name);
    }
  }
  bool Has(const std::string& folder, const char* name) {
    return fs::exists(fs::path(folder) / name);
  }
  TempFolder m_roms, m_dest, m_trashHome;
  std::unique_ptr<testsupport::ScopedTrash> m_trash;
};

TEST_F(RomFolder, DeleteWithNothingSelectedDeletesEveryListedRom) {
  Work work;
  DeleteListed(Ctx(), work, PickedRomNames(m_lines, {}, Longest(), kNoRom));
  for (const char* name : {"pacman.zip", "puckman.zip", "sf2.zip", "zorblast.zip"}) {
    EXPECT_FALSE(Has(m_roms.Path(), name)) << name;
  }
  EXPECT_EQ(work.ProgressValue.load(), 10);
  EXPECT_EQ(work.ProgressMax.load(), 10);
}

TEST_F(RomFolder, DeleteOnlySelectedAndStopsOnCancel) {
  Work work;
  DeleteListed(Ctx(), work, PickedRomNames(m_lines, {0}, Longest(), kNoRom));
  EXPECT_FALSE(Has(m_roms.Path(), "pacman.zip"));
  EXPECT_TRUE(Has(m_roms.Path(), "puckman.zip"));
  work.CancelRequested = true;
  DeleteListed(Ctx(), work, {"puckman"});
  EXPECT_TRUE(Has(m_roms.Path(), "puckman.zip"));
}

TEST_F(RomFolder, CopyPassesOverMissingRoms) {
  Work work;
  const int copied =
      CopyListed(Ctx(), work, PickedRomNames(m_lines, {}, Longest(), kNoRom), m_dest.Path());
  EXPECT_EQ(copied, 4);
  EXPECT_EQ(ReadFile(m_dest / "sf2.zip"), "sf2");
  EXPECT_FALSE(Has(m_dest.Path(), "sf2j.zip"));
  EXPECT_TRUE(Has(m_roms.Path(), "sf2.zip"));  // a copy leaves the rom folder alone
}

TEST_F(RomFolder, RomFolderFallsBackToTheProgramFolder) {
  Ctx().settings.InfWrite("RomPath", "-1");
  EXPECT_EQ(RomFolderOf(Ctx()), AddSlash(Ctx().AppFolder()));
}

TEST(ActionTexts, MakeIniWithAndWithoutTheExtension) {
  const std::vector<std::string> entries = {"pacman   Pac-Man (Midway)", "sf2      Street"};
  EXPECT_EQ(MakeIniText("folder", entries, true),
            "[FOLDER_SETTINGS]\r\nRootFolderIcon cust1\r\nSubFolderIcon cust2\r\n\r\n\r\n"
            "[folder]\r\npacman.zip    \r\nsf2.zip    \r\n");
  EXPECT_EQ(MakeIniText("My games", entries, false),
            "[FOLDER_SETTINGS]\r\nRootFolderIcon cust1\r\nSubFolderIcon cust2\r\n\r\n\r\n"
            "[My games]\r\npacman\r\nsf2\r\n");
}

TEST(ActionTexts, ClipboardHoldsCaptionAndEveryLine) {
  EXPECT_EQ(ClipboardText("2 roms", {"a  A", "b  B"}), "2 roms\r\na  A\r\nb  B\r\n");
}

TEST(ActionTexts, TextFileCutsTheNameColumnToFourteen) {
  // A name column of 12: a rom of 12 characters keeps only ".z" of its extension.
  const std::string longName = "abcdefghijkl Long title";
  const std::string shortName = "pac          Short";
  EXPECT_EQ(TextFileText("cap", {longName, shortName}, true, 12),
            "cap\r\nabcdefghijkl.z Long title\r\npac.zip        Short\r\n");
  EXPECT_EQ(TextFileText("cap", {longName}, false, 12), "cap\r\n" + longName + "\r\n");
}

TEST(ActionTexts, TextFileRebuildsTheNothingFoundLineToo) {
  ASSERT_EQ(std::string(kNoRom), "NO ROM FOUND !");
  // Its first 12 characters are taken for a name.
  EXPECT_EQ(TextFileText("cap", {kNoRom}, true, 12), "cap\r\nNO ROM FOUND.z !\r\n");
  // With a name column of 14 or more it comes out as it was.
  EXPECT_EQ(TextFileText("cap", {kNoRom}, true, 15), "cap\r\nNO ROM FOUND !\r\n");
  EXPECT_EQ(TextFileText("cap", {kNoRom}, false, 12), "cap\r\nNO ROM FOUND !\r\n");
}

TEST_F(Actions, CountCaption) {
  EXPECT_EQ(CountCaption(12, Ctx().messages), "12 roms were found with these criterias :");
}

TEST_F(Actions, AddAListReplacesTheNoRomLineAndAddsEachRomOnce) {
  std::vector<std::string> lines = {kNoRom};
  const std::string file =
      "[ROOT_FOLDER]\r\npacman\r\n\r\n  sf2  \nnosuchgame\rsf2\r\nlongername_over\r\npacman.zip"
      "    \r\nzorbmain\r\n";
  EXPECT_EQ(AddListFromFile(Store(), lines, file, kNoRom), 3);
  EXPECT_EQ(lines, (std::vector<std::string>{"pacman    Pac-Man (Midway)",
                                             "sf2       Street Fighter II: The World Warrior",
                                             "zorbmain  ZORB Main"}));
  // The same file again adds nothing.
  EXPECT_EQ(AddListFromFile(Store(), lines, file, kNoRom), 0);
  EXPECT_EQ(lines.size(), 3u);
  // A search's lines (one blank less) are recognised too.
  std::vector<std::string> searched = ResultLines(Store(), {Store().FindGame("sf2")});
  EXPECT_EQ(AddListFromFile(Store(), searched, "sf2\r\npuckman\r\n", kNoRom), 1);
  EXPECT_EQ(searched.size(), 2u);
}

TEST_F(Actions, AMakeIniFileWithoutTheExtensionReadsBack) {
  const std::string ini = MakeIniText("folder", {m_lines[0], m_lines[2]}, false);
  std::vector<std::string> lines;
  EXPECT_EQ(AddListFromFile(Store(), lines, ini, kNoRom), 2);
  const std::string zipped = MakeIniText("folder", {m_lines[0], m_lines[2]}, true);
  std::vector<std::string> none;
  EXPECT_EQ(AddListFromFile(Store(), none, zipped, kNoRom), 0);
}

TEST_F(Actions, WithdrawAListRemovesItsRoms) {
  EXPECT_EQ(WithdrawListFromFile(Store(), m_lines, "sf2\r\nsf2j\r\nnosuch\r\n[x]\r\n"), 2);
  EXPECT_EQ(m_lines.size(), 8u);
  for (const std::string& line : m_lines) EXPECT_NE(line.substr(0, 4), "sf2 ");
  EXPECT_EQ(WithdrawListFromFile(Store(), m_lines, "sf2\r\n"), 0);
}

TEST(ActionTexts, DownloadLimitIsTenLines) {
  EXPECT_EQ(CheckDownloadSelection(0), DownloadGate::NothingSelected);
  EXPECT_EQ(CheckDownloadSelection(1), DownloadGate::Go);
  EXPECT_EQ(CheckDownloadSelection(10), DownloadGate::Go);
  EXPECT_EQ(CheckDownloadSelection(11), DownloadGate::TooMany);
}

TEST_F(Actions, DownloadTakesTheSixKindsForUpToTenLines) {
  TempFolder images;
  const char* keys[] = {"TitlesPath",   "SnapPath",   "MarqueesPath",
                        "CabinetsPath", "CpanelPath", "FlyersPath"};
  for (const char* key : keys) {
    fs::create_directories(images.Path() + key);
    Ctx().settings.InfWrite(key, images.Path() + key + "/");
  }
  Ctx().settings.InfWrite("FlyersPath", "-1");   // a kind without a folder is passed over
  WriteFile(images / "SnapPath/l0.png", "old");  // an image already there is kept
  std::vector<std::string> patterns(7);
  for (int i = 1; i <= 6; ++i)
    patterns[size_t(i)] = "http://img/" + std::to_string(i) + "/#ROMNAME#?t=#GAMENAME#";
  std::vector<std::string> asked;
  const ImageDownloader fake = [&](const std::string& url, const std::string& file, Work*) {
    asked.push_back(url);
    WriteFile(file, url);
    return 0;
  };
  std::vector<ImageLine> lines;
  for (int i = 0; i < 10; ++i)
    lines.push_back({i, "l" + std::to_string(i), "T" + std::to_string(i)});
  Work work;
  const int fetched = DownloadMissingImages(Ctx(), work, patterns, lines, 20, fake);
  EXPECT_EQ(fetched, 10 * 5 - 1);
  EXPECT_EQ(static_cast<int>(asked.size()), fetched);
  EXPECT_EQ(asked.front(), "http://img/1/l0?t=T0");
  EXPECT_EQ(ReadFile(images / "SnapPath/l0.png"), "old");
  EXPECT_EQ(ReadFile(images / "CpanelPath/l9.png"), "http://img/5/l9?t=T9");
  EXPECT_EQ(work.ProgressMax.load(), 19);
  EXPECT_EQ(work.ProgressValue.load(), 9);
  EXPECT_NE(ReadFile(Ctx().log.LogPath()).find("Can't download l3.png - No destination path."),
            std::string::npos);
}

TEST_F(Actions, DownloadFromLocalFilesThroughTheRealTransfer) {
  TempFolder site, images;
  WriteFile(site / "pacman.png", "PNG");
  Ctx().settings.InfWrite("TitlesPath", images.Path());
  std::vector<std::string> patterns(7);
  patterns[1] = "file://" + site.Path() + "#ROMNAME#.png";
  Work work;
  work.CancelRequested = false;
  const int fetched = DownloadMissingImages(
      Ctx(), work, patterns, {{0, "pacman", "Pac-Man"}, {1, "nosuch", "No"}}, 2, DownloadImageFile);
  EXPECT_EQ(fetched, 1);
  EXPECT_EQ(ReadFile(images / "pacman.png"), "PNG");
  EXPECT_FALSE(fs::exists(images.Path() + "nosuch.png"));
}

TEST(ActionTexts, SearchSitesGetTwoRowsWhenThereIsNone) {
  std::vector<std::string> engines{std::string()};
  const auto names = PrepareSearchEngines(engines, "http://maws.example.invalid");
  EXPECT_EQ(names, (std::vector<std::string>{"http", "datObase"}));
  EXPECT_EQ(SearchOnlineAddress(engines, 0, "pacman", "Pac"),
            "//maws.example.invalid/maws/romset/pacman");
  EXPECT_EQ(SearchOnlineAddress(engines, 1, "pacman", "Pac"),
            "http://maws.example.invalid/datObase/rom.php?zip=pacman&s4=VIEW");
  std::vector<std::string> own{std::string(), "Site: http://s/?r=#ROMNAME#&g=#GAMENAME# "};
  EXPECT_EQ(PrepareSearchEngines(own, "x"), (std::vector<std::string>{"Site"}));
  EXPECT_EQ(SearchOnlineAddress(own, 5, "sf2", "Street Fighter"),
            "http://s/?r=sf2&g=Street Fighter");
}

TEST(ActionTexts, SortByRomAndByTitle) {
  std::vector<std::string> lines = {"b     Zeta", "a     beta", "c     Alpha", "B     Alpha"};
  SortResultLines(lines, true, 5);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"B     Alpha", "c     Alpha", "b     Zeta", "a     beta"}));
  SortResultLines(lines, false, 5);
  EXPECT_EQ(lines,
            (std::vector<std::string>{"B     Alpha", "a     beta", "b     Zeta", "c     Alpha"}));
  std::vector<std::string> one = {"x"};
  SortResultLines(one, true, 5);
  EXPECT_EQ(one, std::vector<std::string>{"x"});
}

TEST_F(Actions, JumpBoxes) {
  const auto [romFirst, titleFirst] = JumpEntries(Store());
  ASSERT_EQ(romFirst.size(), 10u);
  EXPECT_EQ(romFirst[0], "pacman - Pac-Man (Midway)");
  EXPECT_EQ(titleFirst[0], "Pac-Man (Midway) - pacman");
  EXPECT_EQ(romFirst[6], "nodesc - ");
  EXPECT_EQ(RomFromRomFirstEntry(romFirst[0]), "pacman");
  EXPECT_EQ(RomFromTitleFirstEntry(titleFirst[0]), "pacman");
  EXPECT_EQ(RomFromRomFirstEntry(""), "");
  EXPECT_EQ(SwapJumpEntry(titleFirst[2]), romFirst[2]);
}

TEST_F(Actions, TinyViewerOnlyWhenItsProgramExists) {
  int started = 0;
  const auto start = [&](const std::string&, const std::string&) { return ++started > 0; };
  EXPECT_FALSE(RunTinyViewer(Ctx(), "pacman", 1200, 900, start, {}));
  EXPECT_EQ(started, 0);
  WriteFile(Ctx().AppFolder() + "zubrix", "");
  WriteFile(Ctx().AppFolder() + "Zubrix.inf", "old settings");
  Ctx().settings.InfWrite("SnapPath", "/snaps/");
  std::string during;
  const auto look = [&](const std::string& program, const std::string& rom) {
    EXPECT_EQ(rom, "pacman");
    EXPECT_NE(program.find("zubrix"), std::string::npos);
    during = ReadFile(Ctx().AppFolder() + "Zubrix.inf");
    return true;
  };
  EXPECT_TRUE(RunTinyViewer(Ctx(), "pacman", 1200, 901, look, {}));
  EXPECT_NE(during.find("SnapPath=/snaps/\r\n"), std::string::npos) << during;
  EXPECT_NE(during.find("TitlesPath=-1\r\n"), std::string::npos);
  EXPECT_NE(during.find("Width=800\r\nHeight=600\r\nColor=White\r\nBackColor=Black\r\nCenter"),
            std::string::npos);
  EXPECT_EQ(ReadFile(Ctx().AppFolder() + "Zubrix.inf"), "old settings");
}

TEST_F(Actions, FoundPageFromTheHtmlFolderAndFromASkinFolder) {
  GamePageHooks hooks;
  std::string page;
  EXPECT_EQ(ShowFoundPage(Ctx(), hooks, "", "pacman", false, page), FoundPageResult::NoPageRoutine);
  TempFolder temp;
  Ctx().TempFolder = temp.Path();
  hooks.DefaultTemplate = [] { return std::string("<p>#ROMNAME</p>"); };
  hooks.FillGamePage = [](AppContext&, const std::string& t, const std::string& rom, bool online) {
    return FastReplace(t, "#ROMNAME", rom + (online ? " online" : ""));
  };
  fs::create_directories(Ctx().AppFolder() + "HTML");
  ASSERT_EQ(ShowFoundPage(Ctx(), hooks, "", "pacman", true, page), FoundPageResult::Written);
  EXPECT_EQ(page, temp.Path() + "Found.htm");
  EXPECT_EQ(ReadFile(page), "<p>pacman online</p>");
  EXPECT_EQ(ReadFile(Ctx().AppFolder() + "HTML/search.htm"), "<p>#ROMNAME</p>");
  // A skin folder: its template and its pictures.
  const std::string skin = Ctx().AppFolder() + "HTML/Blue.skin/";
  fs::create_directories(skin);
  WriteFile(skin + "search.htm", "[#ROMNAME]");
  WriteFile(skin + "search_bg.png", "bg");
  WriteFile(skin + "other.png", "no");
  ASSERT_EQ(ShowFoundPage(Ctx(), hooks, "Blue.skin", "sf2", false, page), FoundPageResult::Written);
  EXPECT_EQ(ReadFile(page), "[sf2]");
  EXPECT_EQ(ReadFile(temp / "search_bg.png"), "bg");
  EXPECT_FALSE(fs::exists(temp.Path() + "other.png"));
  // A skin archive that can't be unpacked.
  WriteFile(Ctx().AppFolder() + "HTML/Broken.skin.ZIP", "not a zip");
  EXPECT_EQ(ShowFoundPage(Ctx(), hooks, "Broken.skin.ZIP", "sf2", false, page),
            FoundPageResult::CantUnzipSkin);
}

}  // namespace
}  // namespace tessarin
