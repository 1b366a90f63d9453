#include "online/dataupdate.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "core/settings.h"
#include "core/work.h"
#include "store/indexfile.h"
#include "support/routeserver.h"
#include "support/scriptedui.h"
#include "support/testfiles.h"
#include "support/zipmaker.h"

namespace tessarin {
namespace {

using testsupport::MakeZip;
using testsupport::ReadFile;
using testsupport::RouteServer;
using testsupport::ScriptedUi;
using testsupport::SpoilCrc;
using testsupport::TempFolder;
using testsupport::WriteFile;

// An index file of one game, with the given version line.
std::string IndexText(const std::string& version, const std::string& game) {
  GameStore store;
  store.DatabaseVersion = version;
  store.AppendGame(game, game + ";A0;0;B" + game + " (test)");
  store.SetEndRecord(";A0");
  return IndexFileText(store, nullptr);
}

class DataUpdateTest : public ::testing::Test {
 protected:
  DataUpdateTest() {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.messages.LoadMessages();
    ctx.settings.InfWrite(kUpdateServerKey, server.Root());
    hooks.showNewVersion = [this](const std::string& v) { newVersions.push_back(v); };
    hooks.databaseReloaded = [this](const std::string& label) { panelLabel = label; };
    // The database the user has now.
    std::filesystem::create_directories(folder.Path() + "DataFiles");
    WriteFile(IndexFilePath(folder.Path()), IndexText("MAME v0.250 (old)", "oldgame"));
    LoadIndex(ctx.store, ctx.log, IndexFilePath(folder.Path()));
  }

  DataUpdateOutcome Run(bool silentAsk) {
    work.Reset();
    return CheckDataUpdate(ctx, work, silentAsk, false, hooks);
  }
  bool Asked(const std::string& path) const {
    for (const std::string& p : server.Requests()) {
      if (p == path) return true;
    }
    return false;
  }
  std::string Log() const { return ReadFile(ctx.log.LogPath()); }
  // A data package holding a new index.
  std::string Package(const std::string& version) {
    const std::string zip = folder.Path() + "package.zip";
    MakeZip(zip, {{"index", IndexText(version, "newgame")}, {"extra.ini", "[x]\r\nnewgame\r\n"}});
    return ReadFile(zip);
  }

  TempFolder folder;
  RouteServer server;
  ScriptedUi ui;
  AppContext ctx{folder.Path()};
  Work work;
  DataUpdateHooks hooks;
  std::vector<std::string> newVersions;
  std::string panelLabel;
};

TEST_F(DataUpdateTest, ANoToTheFirstQuestionFetchesNothing) {
  ui.answers = {false};
  EXPECT_EQ(Run(false), DataUpdateOutcome::Declined);
  EXPECT_TRUE(server.Requests().empty());
  ASSERT_EQ(ui.questions.size(), 1u);
  EXPECT_EQ(ui.questions[0], ctx.messages.Lng(386));
}

TEST_F(DataUpdateTest, ANewerProgramVersionShowsTheNotice) {
  server.Set("/version.txt", "9.9.9\r\n");
  Run(true);
  ASSERT_EQ(newVersions.size(), 1u);
  EXPECT_EQ(newVersions[0], "9.9.9");
}

TEST_F(DataUpdateTest, TheSameProgramVersionWithOnlyCrLineEndsShowsNoNotice) {
  server.Set("/version.txt", AppVersion() + "\rsomething else\r");
  Run(true);
  EXPECT_TRUE(newVersions.empty());
}

TEST_F(DataUpdateTest, AnOlderOrMissingVersionFileGoesOnSilently) {
  server.Set("/version.txt", "0.0.1\n");
  Run(true);
  EXPECT_EQ(newVersions, std::vector<std::string>{"0.0.1"});  // differs: the notice tells it
  newVersions.clear();
  server.Remove("/version.txt");
  Run(true);
  EXPECT_TRUE(newVersions.empty());
  EXPECT_TRUE(ui.messages.empty());
}

TEST_F(DataUpdateTest, NoUpdateFileIsToldUnlessSilentAndLogged) {
  EXPECT_EQ(Run(false), DataUpdateOutcome::NoUpdateFile);
  EXPECT_TRUE(ui.Showed(ctx.messages.Lng(391)));
  EXPECT_NE(Log().find("Can't check data update, can't download : " + server.Url("/update.txt")),
            std::string::npos);
  ui.messages.clear();
  EXPECT_EQ(Run(true), DataUpdateOutcome::NoUpdateFile);
  EXPECT_TRUE(ui.messages.empty());
}

TEST_F(DataUpdateTest, SameDataVersionInAnAutomaticCheckAsksAndShowsNothing) {
  server.Set("/update.txt", "MAME v0.250 (old)\r\n" + server.Url("/data.zip") + "\r\n\r\n\r\n");
  EXPECT_EQ(Run(true), DataUpdateOutcome::UpToDate);
  EXPECT_TRUE(ui.questions.empty());
  EXPECT_TRUE(ui.messages.empty());
  EXPECT_FALSE(Asked("/data.zip"));
}

TEST_F(DataUpdateTest, SameDataVersionAskedByTheUserOffersADownloadAnyway) {
  server.Set("/update.txt", "MAME v0.250 (old)\r\n" + server.Url("/data.zip") + "\r\n");
  server.Set("/data.zip", Package("MAME v0.250 (old)"));
  ui.answers = {true, false};  // allow the check, then no to "download anyway"
  EXPECT_EQ(Run(false), DataUpdateOutcome::UpToDate);
  ASSERT_EQ(ui.questions.size(), 2u);
  EXPECT_EQ(ui.questions[1], ctx.messages.Lng(392));
  EXPECT_FALSE(Asked("/data.zip"));
}

TEST_F(DataUpdateTest, AnUpdateFileOfOneLineOnlyCompares) {
  server.Set("/update.txt", "MAME v0.251\r\n");
  EXPECT_EQ(Run(false), DataUpdateOutcome::NothingOffered);
  EXPECT_EQ(ui.questions.size(), 1u);  // only the first one
  EXPECT_EQ(server.Requests().size(), 2u);
}

TEST_F(DataUpdateTest, ANewerPackageIsFetchedUnpackedAndLoaded) {
  server.Set("/update.txt", "MAME v0.251\n" + server.Url("/files/data.zip") +
                                "\nBefore|the download\nAfter the update\n");
  server.Set("/files/data.zip", Package("MAME v0.251"));
  ui.defaultAnswer = true;
  EXPECT_EQ(Run(false), DataUpdateOutcome::Updated);
  // The question names both versions, a line each.
  ASSERT_EQ(ui.questions.size(), 2u);
  EXPECT_EQ(ui.questions[1], ctx.messages.Lng(387) + "|MAME v0.250 (old)|" + ctx.messages.Lng(388) +
                                 "|MAME v0.251|" + ctx.messages.Lng(389));
  EXPECT_EQ(ctx.store.DatabaseVersion, "MAME v0.251");
  EXPECT_EQ(ctx.store.FindGame("newgame"), 1);
  EXPECT_EQ(ReadFile(folder.Path() + "DataFiles/extra.ini"), "[x]\r\nnewgame\r\n");
  EXPECT_EQ(panelLabel, ctx.messages.Lng(325) + " : MAME v0.251");
  ASSERT_EQ(ui.messages.size(), 3u);
  EXPECT_EQ(ui.messages[0].text, "Before|the download");
  EXPECT_EQ(ui.messages[1].text, ctx.messages.Lng(390));
  EXPECT_EQ(ui.messages[2].text, "After the update");
  EXPECT_TRUE(std::filesystem::exists(folder.Path() + "Downloads/data.zip"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path() + "Downloads/update.txt"));
  EXPECT_EQ(work.ProgressValue.load(), 80);
}

TEST_F(DataUpdateTest, AnAutomaticCheckStillAsksBeforeDownloading) {
  server.Set("/update.txt", "MAME v0.251\n" + server.Url("/data.zip") + "\n");
  server.Set("/data.zip", Package("MAME v0.251"));
  ui.defaultAnswer = false;
  EXPECT_EQ(Run(true), DataUpdateOutcome::Declined);
  EXPECT_EQ(ui.questions.size(), 1u);
  EXPECT_FALSE(Asked("/data.zip"));
  EXPECT_EQ(ctx.store.DatabaseVersion, "MAME v0.250 (old)");
}

TEST_F(DataUpdateTest, ABrokenPackageReplacesNothingButReloadsTheIndex) {
  server.Set("/update.txt", "MAME v0.251\n" + server.Url("/data.zip") + "\n");
  server.Set("/data.zip", SpoilCrc(Package("MAME v0.251"), "index"));
  const std::string before = ReadFile(IndexFilePath(folder.Path()));
  EXPECT_EQ(Run(false), DataUpdateOutcome::UnzipFailed);
  EXPECT_EQ(ReadFile(IndexFilePath(folder.Path())), before);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() + "DataFiles/extra.ini"));
  // The log names the package by its file name.
  EXPECT_NE(Log().find("Error while unzipping data.zip : "), std::string::npos) << Log();
  EXPECT_TRUE(ui.Showed("WARNING! Error while unzipping. See Log file."));
  EXPECT_EQ(ctx.store.DatabaseVersion, "MAME v0.250 (old)");  // reloaded all the same
  EXPECT_EQ(panelLabel, ctx.messages.Lng(325) + " : MAME v0.250 (old)");
}

TEST_F(DataUpdateTest, ACutDownloadLeavesTheUsersFilesAsTheyWere) {
  server.Set("/update.txt", "MAME v0.251\n" + server.Url("/data.zip") + "\n");
  server.SetCut("/data.zip", Package("MAME v0.251"));
  const std::string before = ReadFile(IndexFilePath(folder.Path()));
  EXPECT_EQ(Run(false), DataUpdateOutcome::DownloadFailed);
  EXPECT_EQ(ReadFile(IndexFilePath(folder.Path())), before);
  EXPECT_FALSE(std::filesystem::exists(folder.Path() + "Downloads/data.zip"));
  EXPECT_TRUE(ui.Showed(ctx.messages.Lng(391)));
  EXPECT_NE(Log().find("Impossible to download " + server.Url("/data.zip")), std::string::npos);
}

TEST_F(DataUpdateTest, AnAddressWithoutSlashIsLogged) {
  server.Set("/update.txt", "MAME v0.251\ndata.zip\n");
  EXPECT_EQ(Run(false), DataUpdateOutcome::BadAddress);
  EXPECT_NE(Log().find("Impossible to find '/' in the URL: data.zip"), std::string::npos);
}

TEST(DataUpdateSettings, TheServerIsASettingWithAPlaceholderDefault) {
  TempFolder folder;
  AppContext ctx(folder.Path());
  EXPECT_EQ(UpdateServerAddress(ctx.settings), kDefaultUpdateServer);
  ctx.settings.InfWrite(kUpdateServerKey, "http://127.0.0.1:8/");
  EXPECT_EQ(UpdateServerAddress(ctx.settings), "http://127.0.0.1:8");
  EXPECT_NE(std::string(kDefaultUpdateServer).find("example.invalid"), std::string::npos);
}

TEST(DataUpdateSettings, FirstLineStopsAtAnyLineEnd) {
  EXPECT_EQ(FirstLineOf("1.2.3\r4.5"), "1.2.3");
  EXPECT_EQ(FirstLineOf("1.2.3\n"), "1.2.3");
  EXPECT_EQ(FirstLineOf("1.2.3\r\n"), "1.2.3");
  EXPECT_EQ(FirstLineOf("1.2.3"), "1.2.3");
}

}  // namespace
}  // namespace tessarin
