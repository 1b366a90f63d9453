#include "online/urllist.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "core/log.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void WriteAll(const fs::path& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
}

class UrlListTest : public ::testing::Test {
 protected:
  UrlListTest() {
    std::random_device rd;
    folder = fs::path(TESSARIN_BINARY_DIR) / "test-tmp" /
             ("urllist-" + std::to_string(rd()) + std::to_string(rd()));
    fs::create_directories(folder);
    app = folder.string() + "/";
    log = std::make_unique<Log>(app);
  }
  ~UrlListTest() override {
    std::error_code ec;
    fs::remove_all(folder, ec);
  }
  std::string UrlFile() { return ReadAll(folder / kUrlListFile); }

  fs::path folder;
  std::string app;
  std::unique_ptr<Log> log;
  UrlTables tables;
};

TEST_F(UrlListTest, MissingFileIsWrittenWithTheDefaults) {
  LoadUrlList(tables, app, *log);
  const std::string expected = ReadAll(fs::path(TESSARIN_TEST_DATA) / "online" / "default.url.inf");
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(UrlFile(), expected);
  EXPECT_EQ(tables.SiteList[1], "http://catver.example.invalid/?catlist");
  EXPECT_EQ(tables.SiteList[2], tables.SiteList[1]);
  EXPECT_EQ(tables.SiteList[5], tables.SiteList[4]);
  EXPECT_EQ(tables.SiteList[10], "http://controls.example.invalid/controls.php");
  EXPECT_EQ(tables.SearchEngineCount(), 2);
  EXPECT_EQ(tables.SearchEngines[1], "MAWS:http://maws.example.invalid/maws/romset/#ROMNAME#");
  // Written, so the image patterns have their defaults now.
  EXPECT_EQ(tables.OnlineImages[2],
            "http://maws.example.invalid/maws/img/shots/mwsnap/#ROMNAME#.png");
  EXPECT_EQ(tables.OnlineImages[6], "http://maws.example.invalid/maws/img/flyers/#ROMNAME#.png");
  // Reading the file again passes its MAWS addresses through maws.inf, made on the way.
  EXPECT_FALSE(fs::exists(folder / kMawsFile));
  UrlTables again;
  LoadUrlList(again, app, *log);
  EXPECT_EQ(again.SearchEngines, tables.SearchEngines);
  EXPECT_EQ(again.OnlineImages, tables.OnlineImages);
  EXPECT_EQ(UrlFile(), expected);
  EXPECT_EQ(ReadAll(folder / kMawsFile),
            "http://maws.example.invalid\r\n; This is the url to access to MAWS database. Change "
            "it if you need.\r\n");
}

TEST_F(UrlListTest, DefaultsBeforeAnyWrite) {
  tables.SetDefaults();
  for (int i = 1; i <= 6; ++i) EXPECT_EQ(tables.OnlineImages[static_cast<std::size_t>(i)], "");
  for (const std::string& file : tables.FileList) EXPECT_EQ(file, "");
  EXPECT_EQ(tables.SearchEngines[2],
            "datObase:http://datobase.example.invalid/datObase/rom.php?zip=#ROMNAME#&s4=VIEW");
}

TEST_F(UrlListTest, KeysAreTrimmedAndCaseFree) {
  WriteAll(folder / kUrlListFile,
           "; comment = not a key\r\n"
           "# another comment\r\n"
           "\r\n"
           "SITE_CHEAT   =  x\r\n"
           "site_history=h.example.invalid/y\r\n"
           "  MameInfo  =  http://files.example.invalid/mameinfo.zip  \r\n"
           "SITE_COMMAND =\r\n"
           "nonsense line\r\n"
           "SEARCH_ENGINE=Mine:http://mine.example.invalid/?q=#ROMNAME#\r\n"
           "online_snap = http://img.example.invalid/#ROMNAME#.png\r\n");
  LoadUrlList(tables, app, *log);
  EXPECT_EQ(tables.SiteList[7], "x");
  EXPECT_EQ(tables.SiteList[0], "h.example.invalid/y");
  EXPECT_EQ(tables.FileList[6], "http://files.example.invalid/mameinfo.zip");
  // An empty value leaves the default.
  EXPECT_EQ(tables.SiteList[8], DefaultSite(8));
  // The first valid engine throws the defaults away.
  ASSERT_EQ(tables.SearchEngineCount(), 1);
  EXPECT_EQ(tables.SearchEngines[1], "Mine:http://mine.example.invalid/?q=#ROMNAME#");
  EXPECT_EQ(tables.OnlineImages[2], "http://img.example.invalid/#ROMNAME#.png");
  EXPECT_EQ(tables.OnlineImages[1], "");
  // A file with a valid engine isn't rewritten.
  EXPECT_NE(UrlFile().find("nonsense line"), std::string::npos);
}

TEST_F(UrlListTest, EngineWithoutTwoColonsIsSkipped) {
  WriteAll(folder / kUrlListFile,
           "SEARCH_ENGINE=abc\r\nSEARCH_ENGINE=name:nocolon\r\nSITE_CHEAT=kept\r\n");
  LoadUrlList(tables, app, *log);
  ASSERT_EQ(tables.SearchEngineCount(), 2);
  EXPECT_EQ(tables.SearchEngines,
            (std::vector<std::string>{"", DefaultSearchEngines()[0], DefaultSearchEngines()[1]}));
  // No valid engine: the file is of an older kind and is written again, defaults added.
  const std::string written = UrlFile();
  EXPECT_NE(written.find("SITE_Cheat           = kept\r\n"), std::string::npos) << written;
  EXPECT_NE(written.find("SEARCH_ENGINE=" + DefaultSearchEngines()[0] + "\r\n"), std::string::npos);
  EXPECT_EQ(written.find("abc"), std::string::npos);
}

TEST_F(UrlListTest, SeveralEnginesKeepTheirOrderAndRoundTrip) {
  WriteAll(folder / kUrlListFile,
           "SEARCH_ENGINE=One:http://one.example.invalid/#ROMNAME#\r\n"
           "SEARCH_ENGINE=Two:http://two.example.invalid/#GAMENAME#\r\n"
           "CHEAT=http://files.example.invalid/cheat.zip\r\n");
  LoadUrlList(tables, app, *log);
  ASSERT_EQ(tables.SearchEngineCount(), 2);
  EXPECT_EQ(tables.SearchEngines[2], "Two:http://two.example.invalid/#GAMENAME#");
  ASSERT_TRUE(WriteUrlList(tables, app, *log));
  UrlTables again;
  LoadUrlList(again, app, *log);
  EXPECT_EQ(again.SiteList, tables.SiteList);
  EXPECT_EQ(again.FileList, tables.FileList);
  EXPECT_EQ(again.SearchEngines, tables.SearchEngines);
  EXPECT_EQ(again.OnlineImages, tables.OnlineImages);
  EXPECT_EQ(again.FileList[7], "http://files.example.invalid/cheat.zip");
}

TEST_F(UrlListTest, LongNamesAreCutToSixteen) {
  LoadUrlList(tables, app, *log);
  // Every name is at most 10 characters, padded to 16: "SITE_" + 16 + "= ".
  EXPECT_NE(UrlFile().find("\r\nSITE_Nplayers32      = http://"), std::string::npos);
  EXPECT_NE(UrlFile().find("\r\nNplayers32      = \r\n"), std::string::npos);
}

TEST_F(UrlListTest, MawsBaseMovesEveryMawsAddress) {
  WriteAll(folder / kMawsFile, "  http://newmaws.example.invalid  \r\n; comment\r\n");
  EXPECT_EQ(ApplyMawsBase("x http://maws.example.invalid/a and http://maws.example.invalid/b", app),
            "x http://newmaws.example.invalid/a and http://newmaws.example.invalid/b");
  EXPECT_EQ(ApplyMawsBase("no base here", app), "no base here");

  // The file's MAWS addresses follow the base of maws.inf when read.
  LoadUrlList(tables, app, *log);  // writes the file with the default base
  UrlTables moved;
  LoadUrlList(moved, app, *log);
  EXPECT_EQ(moved.SearchEngines[1], "MAWS:http://newmaws.example.invalid/maws/romset/#ROMNAME#");
  EXPECT_EQ(moved.OnlineImages[1],
            "http://newmaws.example.invalid/maws/img/shots/titles/#ROMNAME#.png");
  // The other engine isn't a MAWS address and stays.
  EXPECT_EQ(moved.SearchEngines[2], DefaultSearchEngines()[1]);

  // An empty first line keeps the default base.
  WriteAll(folder / kMawsFile, "\r\n; comment\r\n");
  EXPECT_EQ(ApplyMawsBase("http://maws.example.invalid/z", app), "http://maws.example.invalid/z");
}

}  // namespace
}  // namespace tessarin
