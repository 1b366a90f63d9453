#include "layouts/layouts.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/context.h"
#include "core/settings.h"
#include "core/work.h"
#include "support/routeserver.h"
#include "support/scriptedui.h"
#include "support/testfiles.h"
#include "support/zipmaker.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::MakeZip;
using testsupport::ReadFile;
using testsupport::RouteServer;
using testsupport::ScriptedUi;
using testsupport::SpoilCrc;
using testsupport::TempFolder;
using testsupport::WriteFile;

class LayoutsTest : public ::testing::Test {
 protected:
  LayoutsTest() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.messages.LoadMessages();
    ctx.settings.InfWrite("URL_LayoutsTXT", server.Url("/atomic/layouts.txt"));
    ctx.settings.InfWrite("URL_LayoutsZIP", server.Url("/zips/"));
    ctx.settings.InfWrite("URL_LayoutsJPG", server.Url("/jpg/"));
    fs::create_directories(layoutFolder);
    WriteFile(ctx.AppFolder() + "AtomicLayouts.inf", "\r\n" + layoutFolder + "\r\n");
    paths = OpenLayoutPaths(ctx);
    paths.PackAddress = server.Url("/pack/big.zip");
  }

  // A layout zip with one folder of the layout's name.
  std::string LayoutZip(const std::string& name) {
    const std::string zip = folder.Path() + name + "-src.zip";
    // Long enough to be deflated: a stored entry has no CRC test.
    std::string xml;
    for (int i = 0; i < 40; ++i) xml += "<layout name=\"" + name + "\"/>\n";
    MakeZip(zip, {{name + "/layout.xml", xml}});
    return ReadFile(zip);
  }
  std::string Log() const { return ReadFile(ctx.log.LogPath()); }
  std::vector<std::string> Reported() const { return report; }
  LayoutReport Reporter() {
    return [this](const std::string& line) { report.push_back(line); };
  }

  TempFolder folder;
  RouteServer server;
  ScriptedUi ui;
  AppContext ctx{folder.Path()};
  std::string layoutFolder = folder.Path() + "MyLayouts/";
  LayoutPaths paths;
  Work work;
  std::vector<std::string> report;
};

TEST_F(LayoutsTest, OpeningMakesTheFoldersAndReadsTheInfAndSettings) {
  EXPECT_EQ(paths.DownloadFolder, ctx.AppFolder() + "Layouts/");
  EXPECT_EQ(paths.PreviewFolder, ctx.AppFolder() + "Layouts/Previews/");
  EXPECT_EQ(paths.ListFolder, paths.DownloadFolder);
  EXPECT_TRUE(fs::is_directory(paths.PreviewFolder));
  EXPECT_EQ(paths.LayoutFolder, layoutFolder);
  EXPECT_EQ(paths.UrlLayoutsZip, server.Url("/zips/"));
}

TEST_F(LayoutsTest, TheInfsDownloadFolderMovesThePreviewsButNotTheList) {
  const std::string downloads = folder.Path() + "elsewhere";
  fs::create_directories(downloads);
  WriteFile(ctx.AppFolder() + "AtomicLayouts.inf", downloads + "\r\n\r\n");
  const LayoutPaths opened = OpenLayoutPaths(ctx, {folder.Path() + "nothere", layoutFolder});
  EXPECT_EQ(opened.DownloadFolder, downloads + "/");
  EXPECT_EQ(opened.PreviewFolder, downloads + "/Previews/");
  EXPECT_EQ(opened.ListFolder, ctx.AppFolder() + "Layouts/");
  EXPECT_EQ(opened.LayoutFolder, layoutFolder);  // the first candidate that exists
}

TEST_F(LayoutsTest, ClosingWritesTheInfAndTheAddresses) {
  paths.LayoutFolder = "/x/y/";
  SaveLayoutPaths(ctx, paths);
  EXPECT_EQ(ReadFile(ctx.AppFolder() + "AtomicLayouts.inf"),
            paths.DownloadFolder + "\r\n/x/y/\r\n" +
                "; The first line is the path where to download the layouts' zip files.\r\n"
                "; The second line is the path for your layouts.\r\n");
  EXPECT_EQ(ctx.settings.InfRead("URL_LayoutsTXT"), server.Url("/atomic/layouts.txt"));
}

TEST_F(LayoutsTest, TheListIsFetchedAndLoadedSorted) {
  server.Set("/atomic/layouts.txt", "zzz;Z;a;01/01/05\r\naaa;A;b;02/02/05\r\n\r\n");
  ASSERT_TRUE(DownloadLayoutList(paths, &work));
  std::vector<std::string> lines;
  ASSERT_TRUE(LoadLayoutList(ctx.log, paths, false, lines));
  EXPECT_EQ(lines, (std::vector<std::string>{"", "aaa;A;b;02/02/05", "zzz;Z;a;01/01/05"}));
  ASSERT_TRUE(LoadLayoutList(ctx.log, paths, true, lines));
  EXPECT_EQ(lines, (std::vector<std::string>{"aaa;A;b;02/02/05", "zzz;Z;a;01/01/05"}));
  EXPECT_NE(Log().find("List of layouts loaded - 2 layouts."), std::string::npos);
}

TEST_F(LayoutsTest, NoNetKeepsTheOldListAndCountsEveryZipAsAnError) {
  WriteFile(paths.ListFolder + "layouts.txt", "pacman;Pac-Man;me;01/01/05;;;;;;mame\n");
  EXPECT_FALSE(DownloadLayoutList(paths, &work));
  std::vector<std::string> lines;
  ASSERT_TRUE(LoadLayoutList(ctx.log, paths, false, lines));
  ASSERT_EQ(lines.size(), 1u);
  const LayoutRunCounts counts =
      ProcessAllLayouts(ctx, work, paths, lines, true, false, Reporter());
  EXPECT_EQ(counts.downloadErrors, 1);
  EXPECT_EQ(Reported()[0], ctx.messages.Lng(413) + "pacman.zip");
  EXPECT_NE(Log().find("Can't download " + server.Url("/zips/pacman.zip")), std::string::npos);
}

TEST_F(LayoutsTest, AMissingListIsLogged) {
  std::vector<std::string> lines{"old"};
  EXPECT_FALSE(LoadLayoutList(ctx.log, paths, true, lines));
  EXPECT_TRUE(lines.empty());
  EXPECT_NE(Log().find("ChargeLayoutTXT - Couldn't find " + paths.ListFolder + "layouts.txt"),
            std::string::npos);
}

TEST_F(LayoutsTest, BulkInstallSortsEachLineAsTold) {
  server.Set("/zips/pacman.zip", LayoutZip("pacman"));
  server.Set("/own/galaga.zip", LayoutZip("galaga"));
  server.Set("/zips/broken.zip", SpoilCrc(LayoutZip("broken"), "broken/layout.xml"));
  fs::create_directories(layoutFolder + "dkong");
  fs::create_directories(layoutFolder + "packed");  // unpacked from the pack earlier
  const std::vector<std::string> lines = {
      "",
      ";no name",
      "broken;Broken;a;01/01/05",
      "dkong;Donkey Kong;a;01/01/05",
      "galaga;Galaga;a;01/01/05;;" + server.Url("/own/"),
      "missing;Missing;a;01/01/05",
      "neogeo;Neo;a;01/01/05;;;;;;neogeo",  // another system: counted as existing
      "packed;In the pack;a;01/01/05;;" + paths.PackAddress,
      "pacman;Pac-Man;a;01/01/05;;;;;",          // nine fields pass the system test
      "pacman_v;Pac-Man [Vertical];a;01/01/05",  // the other orientation: existing
  };
  const LayoutRunCounts counts =
      ProcessAllLayouts(ctx, work, paths, lines, true, false, Reporter());
  EXPECT_EQ(counts.lines, 10);
  EXPECT_EQ(counts.downloaded, 3);  // broken, galaga, pacman
  EXPECT_EQ(counts.unzipped, 2);
  EXPECT_EQ(counts.unzipErrors, 1);
  EXPECT_EQ(counts.downloadErrors, 1);  // missing
  EXPECT_EQ(counts.existing, 3);        // dkong, neogeo, pacman_v
  EXPECT_EQ(counts.inPack, 1);          // never counted as existing
  EXPECT_TRUE(fs::exists(layoutFolder + "pacman/layout.xml"));
  EXPECT_TRUE(fs::exists(layoutFolder + "galaga/layout.xml"));
  EXPECT_FALSE(fs::exists(layoutFolder + "broken"));              // a bad zip unpacks nothing
  EXPECT_FALSE(fs::exists(paths.DownloadFolder + "pacman.zip"));  // deleted once unzipped
  const std::vector<std::string> r = Reported();
  const auto has = [&](const std::string& line) {
    return std::find(r.begin(), r.end(), line) != r.end();
  };
  EXPECT_TRUE(has("pacman.zip " + ctx.messages.Lng(424)));
  EXPECT_TRUE(has("pacman.zip " + ctx.messages.Lng(426)));
  EXPECT_TRUE(has(ctx.messages.Lng(425) + "broken.zip"));
  EXPECT_TRUE(has("- dkong" + ctx.messages.Lng(435)));
  EXPECT_TRUE(has("- packed" + ctx.messages.Lng(431)));
  EXPECT_TRUE(has("10" + ctx.messages.Lng(436)));
  EXPECT_TRUE(has("3" + ctx.messages.Lng(437)));
  EXPECT_TRUE(has("2" + ctx.messages.Lng(440)));
  EXPECT_TRUE(has("1" + ctx.messages.Lng(465)));
  const std::string log = Log();
  EXPECT_NE(
      log.find("ERROR WHILE DEZIPPING " + paths.DownloadFolder + "broken.zip to " + layoutFolder),
      std::string::npos);
  EXPECT_NE(log.find("packed is part of the pack. Please doawnload : " + paths.PackAddress),
            std::string::npos);
  EXPECT_NE(log.find("AtomicLayoutPath=" + layoutFolder), std::string::npos);
}

TEST_F(LayoutsTest, TheVerticalRunLooksAtTheMarkAndTheNameAsItStands) {
  server.Set("/zips/pacman_v.zip", LayoutZip("pacman_v"));
  const std::vector<std::string> lines = {"pacman;Pac-Man;a;01/01/05",
                                          "pacman_v;Pac-Man [VERTICAL];a;01/01/05"};
  const LayoutRunCounts counts =
      ProcessAllLayouts(ctx, work, paths, lines, false, true, Reporter());
  EXPECT_EQ(counts.downloaded, 1);
  EXPECT_EQ(counts.existing, 1);
  // Without installing, the zip is kept in the download folder.
  EXPECT_TRUE(fs::exists(paths.DownloadFolder + "pacman_v.zip"));
  // A second run finds it there.
  const LayoutRunCounts again = ProcessAllLayouts(ctx, work, paths, lines, false, true, Reporter());
  EXPECT_EQ(again.downloaded, 0);
  EXPECT_EQ(again.existing, 2);
}

TEST_F(LayoutsTest, WithoutALayoutFolderEverythingIsMissing) {
  fs::create_directories(folder.Path() + "pacman");
  paths.LayoutFolder.clear();
  const LayoutRunCounts counts =
      ProcessAllLayouts(ctx, work, paths, {"pacman;Pac-Man;a;01/01/05"}, true, false, Reporter());
  EXPECT_EQ(counts.existing, 0);
  EXPECT_EQ(counts.downloadErrors, 1);
}

TEST_F(LayoutsTest, ACancelStopsTheRunAndIsReported) {
  work.CancelRequested = true;
  const LayoutRunCounts counts =
      ProcessAllLayouts(ctx, work, paths, {"a;A", "b;B"}, true, false, Reporter());
  EXPECT_TRUE(counts.cancelled);
  EXPECT_EQ(counts.downloaded + counts.existing + counts.downloadErrors, 0);
  EXPECT_NE(Log().find("Operation aborted by user."), std::string::npos);
  EXPECT_NE(std::find(report.begin(), report.end(), ctx.messages.Lng(377)), report.end());
}

TEST_F(LayoutsTest, DownloadSelectedCountsThePackAndOffersIt) {
  server.Set("/zips/pacman.zip", LayoutZip("pacman"));
  server.Set("/pack/big.zip", LayoutZip("packed"));
  ui.answers = {true};
  const std::vector<std::string> chosen = {"pacman;Pac-Man", "packed;P;a;;;" + paths.PackAddress,
                                           "nothere;N"};
  const LayoutRunCounts counts =
      DownloadSelected(ctx, work, paths, chosen, 10, true, true, Reporter());
  EXPECT_EQ(counts.downloaded, 1);
  EXPECT_EQ(counts.unzipped, 1);
  EXPECT_EQ(counts.inPack, 1);
  EXPECT_EQ(counts.downloadErrors, 1);
  ASSERT_EQ(ui.questions.size(), 1u);
  EXPECT_EQ(ui.questions[0], "1" + ctx.messages.Lng(405));
  EXPECT_TRUE(fs::exists(layoutFolder + "pacman/layout.xml"));
  EXPECT_TRUE(fs::exists(layoutFolder + "packed/layout.xml"));
  EXPECT_FALSE(fs::exists(paths.DownloadFolder + "pacman.zip"));  // Chk2 deletes it
  EXPECT_NE(std::find(report.begin(), report.end(), "packed" + ctx.messages.Lng(404)),
            report.end());
  EXPECT_NE(std::find(report.begin(), report.end(), ctx.messages.Lng(407)), report.end());
  EXPECT_NE(std::find(report.begin(), report.end(), "Pack unzipped."), report.end());
  EXPECT_NE(Log().find("3 layouts selected to download."), std::string::npos);
}

TEST_F(LayoutsTest, ACutPackDownloadReplacesNothing) {
  WriteFile(paths.DownloadFolder + "hyperSkinMameSet001_640x480(15khz).zip", "old pack");
  server.SetCut("/pack/big.zip", LayoutZip("packed"));
  ui.answers = {true};
  DownloadSelected(ctx, work, paths, {"packed;P;a;;;" + paths.PackAddress}, 1, true, false,
                   Reporter());
  EXPECT_EQ(ReadFile(paths.DownloadFolder + "hyperSkinMameSet001_640x480(15khz).zip"), "old pack");
  EXPECT_FALSE(fs::exists(layoutFolder + "packed"));
  EXPECT_NE(std::find(report.begin(), report.end(), "Can't download pack."), report.end());
}

TEST_F(LayoutsTest, NothingChosenDoesNothing) {
  const LayoutRunCounts counts = DownloadSelected(ctx, work, paths, {}, 5, true, false, Reporter());
  EXPECT_EQ(counts.selected, 0);
  EXPECT_TRUE(server.Requests().empty());
  EXPECT_TRUE(report.empty());
}

TEST(LayoutSort, KeysAndOrders) {
  const std::vector<std::string> base = {
      "b;Beta;Zed;31/12/99;;;;;", "a;Alpha;Amy;01/02/05;;;;Mod;15/06/06", "c;Gamma;Bob;02/02/05",
      "d;Delta;Amy;1/2/2005",  // another date form: a wrong key, no error
  };
  std::vector<std::string> lines = base;
  SortLayouts(lines, 0);
  EXPECT_EQ(lines[0].substr(0, 1), "a");
  SortLayouts(lines, 1);
  EXPECT_EQ(lines[0], base[1]);
  EXPECT_EQ(lines[1], base[0]);
  SortLayouts(lines, 4);
  EXPECT_EQ(lines[0].substr(0, 1), "a");  // Amy, then the rest of the line decides
  EXPECT_EQ(lines[1].substr(0, 1), "d");
  lines = base;
  SortLayouts(lines, 2);  // newest first: 99 sorts above 05 by its key's bytes
  EXPECT_EQ(lines[0].substr(0, 1), "b");
  lines = base;
  SortLayouts(lines, 3);
  EXPECT_EQ(lines[0].substr(0, 1), "b");
  EXPECT_EQ(lines[1].substr(0, 1), "a");  // its modification, 06, beats c's 05
  EXPECT_EQ(lines.size(), base.size());
}

TEST(LayoutSort, FilterByNameAndMissingByFolder) {
  std::vector<std::string> lines = {"pacman;P", "pacman_v;P [VERTICAL]", "dkong_v;D"};
  std::vector<std::string> vertical = lines;
  FilterLayouts(vertical, 1);
  EXPECT_EQ(vertical, (std::vector<std::string>{"", "pacman_v;P [VERTICAL]", "dkong_v;D"}));
  std::vector<std::string> horizontal = lines;
  FilterLayouts(horizontal, 2);
  EXPECT_EQ(horizontal, (std::vector<std::string>{"pacman;P", "", ""}));

  TempFolder folder;
  fs::create_directories(folder.Path() + "pacman");
  LayoutPaths paths;
  paths.LayoutFolder = folder.Path();
  KeepOnlyMissing(lines, paths);  // pacman_v is looked up without its _v here
  EXPECT_EQ(lines, (std::vector<std::string>{"", "", "dkong_v;D"}));
}

TEST(LayoutFields, AddressesAndMarks) {
  EXPECT_EQ(LayoutAddress("", "http://h/z/", "pacman", ".zip"), "http://h/z/pacman.zip");
  EXPECT_EQ(LayoutAddress("http://o/", "http://h/z/", "pacman", ".zip"), "http://o/pacman.zip");
  EXPECT_EQ(LayoutAddress("C:\\l\\", "x", "pacman", ".zip"), "C:\\l\\pacman.zip");
  EXPECT_EQ(LayoutAddress("http://o/a.zip", "x", "pacman", ".zip"), "http://o/a.zip");
  EXPECT_TRUE(IsVerticalLine(LayoutFields("a;Title [vertical] x")));
  EXPECT_FALSE(IsVerticalLine(LayoutFields("a_v;Title")));
  EXPECT_FALSE(IsOtherSystem(LayoutFields("a;b;c;d;e;f;g;h;i")));
  EXPECT_FALSE(IsOtherSystem(LayoutFields("a;b;c;d;e;f;g;h;i;mame")));
  EXPECT_TRUE(IsOtherSystem(LayoutFields("a;b;c;d;e;f;g;h;i;snes")));
  EXPECT_EQ(NameWithoutVertical("pacman_v"), "pacman");
  EXPECT_EQ(NameWithoutVertical("pacman_V"), "pacman_V");
}

TEST_F(LayoutsTest, DetailsTellWhatTheUserHas) {
  fs::create_directories(layoutFolder + "pacman_v");
  WriteFile(paths.DownloadFolder + "pacman_v.zip", "z");
  const std::string text = LayoutDetailsText(
      ctx, paths, "pacman_v;Pac-Man [VERTICAL];Ann;01/02/05;A note;;;Bob;03/04/06");
  EXPECT_EQ(text,
            "Rom: pacman\r\nTitle: Pac-Man [VERTICAL]\r\n\r\nAuthor: Ann\r\nDate: 01/02/05\r\n"
            "Note: A note\r\nModified by: Bob\r\nDate: 03/04/06\r\n\r\n" +
                ctx.messages.Lng(427) + "\r\npacman_v.zip " + ctx.messages.Lng(428) + "\r\n");
  EXPECT_EQ(PreviewFile(paths, "pacman;P"), paths.PreviewFolder + "pacman.jpg");
  EXPECT_EQ(PreviewAddress(paths, "pacman;P"), server.Url("/jpg/pacman.jpg"));
}

TEST(LayoutSave, IniAndZipListsOneLinePerGameWithABackup) {
  TempFolder folder;
  const std::vector<std::string> lines = {"pacman;P", "pacman_V;P", "dkong;D", ""};
  const std::string ini = folder.Path() + "List.INI";
  WriteFile(ini, "older");
  ASSERT_TRUE(SaveLayoutList(ini, lines));
  EXPECT_EQ(ReadFile(ini),
            "[FOLDER_SETTINGS]\r\nRootFolderIcon = cust1.ico\r\nSubFolderIcon = cust2.ico\r\n\r\n"
            "[ROOT_FOLDER]\r\npacman\r\ndkong\r\n");
  EXPECT_EQ(ReadFile(ini + ".bak"), "older");
  const std::string txt = folder.Path() + "list.txt";
  ASSERT_TRUE(SaveLayoutList(txt, lines));
  EXPECT_EQ(ReadFile(txt), "pacman.zip\r\ndkong.zip\r\n");
}

}  // namespace
}  // namespace tessarin
