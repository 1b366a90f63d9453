// check-update and layouts from the terminal, against a local server.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/clirun.h"
#include "support/routeserver.h"
#include "support/testfiles.h"
#include "support/zipmaker.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::MakeZip;
using testsupport::ReadFile;
using testsupport::RouteServer;
using testsupport::RunCli;
using testsupport::TempFolder;

class LayoutsCli : public ::testing::Test {
 protected:
  LayoutsCli() {
    for (const auto& [key, path] :
         {std::pair{"URL_LayoutsTXT", "/layouts.txt"}, std::pair{"URL_LayoutsZIP", "/zips/"},
          std::pair{"UpdateServer", ""}}) {
      EXPECT_EQ(RunCli({"--home", home.Path(), "set", key, server.Url(path)}).exitCode, 0);
    }
    server.Set("/layouts.txt",
               "pacman;Pac-Man;Ann;01/02/05\ngalaga_v;Galaga [VERTICAL];Bob;03/04/06\n"
               "packed;Packed;Cid;05/06/07;;http://atomicfe.example.invalid/Downloads/Layouts3/"
               "hyperSkinMameSet001_640x480(15khz).zip\n");
    for (const char* name : {"pacman", "galaga_v"}) {
      std::string xml;
      for (int i = 0; i < 40; ++i) xml += "<layout/>\n";
      MakeZip(home.Path() + name + "-src.zip", {{std::string(name) + "/layout.xml", xml}});
      server.Set(std::string("/zips/") + name + ".zip", ReadFile(home.Path() + name + "-src.zip"));
    }
  }
  std::vector<std::string> With(std::initializer_list<std::string> args) {
    std::vector<std::string> all = {"--home", home.Path()};
    all.insert(all.end(), args);
    return all;
  }

  TempFolder home;
  RouteServer server;
  std::string layouts = home.Path() + "MyLayouts";
};

TEST_F(LayoutsCli, ListTellsWhatTheUserHas) {
  fs::create_directories(layouts + "/pacman");
  const auto result = RunCli(With({"layouts", "--layout-folder", layouts, "list"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("pacman\tPac-Man\tAnn\t01/02/05\tinstalled"), std::string::npos);
  EXPECT_NE(result.out.find("galaga_v\tGalaga [VERTICAL]\tBob\t03/04/06\tmissing"),
            std::string::npos);
  EXPECT_NE(result.out.find("\tin the pack"), std::string::npos);
  EXPECT_NE(result.out.find("3 layouts listed."), std::string::npos);
}

TEST_F(LayoutsCli, GetInstallsOneAndKeepsTheFolders) {
  const auto result = RunCli(With({"layouts", "--layout-folder", layouts, "get", "galaga_v"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(fs::exists(layouts + "/galaga_v/layout.xml"));
  EXPECT_NE(ReadFile(home.Path() + "AtomicLayouts.inf").find(layouts + "/"), std::string::npos);
  // A name not in the list.
  const auto missing = RunCli(With({"layouts", "get", "nothere"}));
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("No layout named nothere"), std::string::npos);
}

TEST_F(LayoutsCli, GetMissingInstallsTheChosenOrientation) {
  const auto result =
      RunCli(With({"layouts", "--layout-folder", layouts, "get-missing", "--vertical"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_TRUE(fs::exists(layouts + "/galaga_v/layout.xml"));
  EXPECT_FALSE(fs::exists(layouts + "/pacman"));
  EXPECT_NE(result.out.find("3 roms to analyse."), std::string::npos);
}

TEST_F(LayoutsCli, NoListAtAllFails) {
  server.Remove("/layouts.txt");
  const auto result = RunCli(With({"layouts", "list"}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.err.find("Can't download list of layouts"), std::string::npos);
}

TEST_F(LayoutsCli, CheckUpdateInstallsOnlyWithYes) {
  MakeZip(home.Path() + "data.zip",
          {{"index", "MAME v9\r\npacman;A0;0;BPac-Man\r\n;A0\r\n[Manufacturer]\r\n"}});
  server.Set("/update.txt", "MAME v9\n" + server.Url("/data.zip") + "\n");
  server.Set("/data.zip", ReadFile(home.Path() + "data.zip"));
  const auto declined = RunCli(With({"check-update"}));
  EXPECT_EQ(declined.exitCode, 0);
  EXPECT_FALSE(fs::exists(home.Path() + "DataFiles/index"));
  const auto result = RunCli(With({"check-update", "--yes"}));
  ASSERT_EQ(result.exitCode, 0) << result.err;
  EXPECT_NE(result.out.find("Data updated."), std::string::npos);
  EXPECT_EQ(ReadFile(home.Path() + "DataFiles/index").substr(0, 9), "MAME v9\r\n");
  const auto info = RunCli(With({"info"}));
  EXPECT_NE(info.out.find("Database version: MAME v9"), std::string::npos);
}

TEST_F(LayoutsCli, CheckUpdateWithoutServerFails) {
  server.Remove("/update.txt");
  const auto result = RunCli(With({"check-update", "--yes"}));
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_NE(result.out.find("No update file was found."), std::string::npos);
}

}  // namespace
}  // namespace tessarin
