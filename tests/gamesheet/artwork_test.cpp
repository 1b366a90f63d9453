// The sheet's pictures: where each is found, the text when there is none, and the download of
// the six kinds against a local HTTP server.

#include "sheet/artwork.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/context.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/work.h"
#include "gamesheettestsupport.h"
#include "online/download.h"
#include "online/httpserver.h"
#include "online/urllist.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using gamesheettest::WriteZip;
using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

class ArtworkLookup : public ::testing::Test {
 protected:
  ArtworkLookup() : log(app.Path()), settings(app / "Tessarin.inf", log) {
    fs::create_directories(titles);
    fs::create_directories(temp);
    settings.InfWrite("TitlesPath", titles);
  }
  ArtworkFile Find(const std::string& rom, const std::string& parent,
                   const std::string& kind = "Titles") {
    steps.clear();
    return FindArtwork(settings, app.Path(), temp + "/", rom, parent, kind,
                       [this](int percent) { steps.push_back(percent); });
  }

  TempFolder app;
  Log log;
  Settings settings;
  std::string titles = app / "titles";
  std::string temp = app / "temp";
  std::vector<int> steps;
};

TEST_F(ArtworkLookup, LoosePictureBeatsTheZipWhichIsNotOpened) {
  WriteFile(titles + "/pacman.png", "loose");
  WriteFile(titles + "/Titles.zip", "this is no zip at all");
  const ArtworkFile found = Find("pacman", "");
  EXPECT_EQ(found.path, titles + "/pacman.png");
  EXPECT_FALSE(found.fromZip);
  EXPECT_TRUE(steps.empty());
}

TEST_F(ArtworkLookup, ParentsLoosePictureBeatsTheGamesOwnInTheZip) {
  WriteFile(titles + "/pacman.png", "parent");
  WriteZip(titles + "/Titles.zip", {"puckman.png"}, "zipped ");
  const ArtworkFile found = Find("puckman", "pacman");
  EXPECT_EQ(found.path, titles + "/pacman.png");
  EXPECT_FALSE(fs::exists(temp + "/puckman.png"));
}

TEST_F(ArtworkLookup, ZipEntryIsFoundWithoutRegardToCaseAndExtracted) {
  WriteZip(titles + "/Titles.zip", {"other.png", "PacMan.PNG", "sub/pacman.png"}, "zipped ");
  const ArtworkFile found = Find("pacman", "");
  // Written under the entry's own spelling, which is what the sheet then opens.
  EXPECT_EQ(found.path, temp + "/PacMan.PNG");
  EXPECT_TRUE(found.fromZip);
  EXPECT_EQ(ReadFile(found.path), "zipped PacMan.PNG");
  EXPECT_EQ(steps, (std::vector<int>{20, 30}));
}

TEST_F(ArtworkLookup, ParentsEntryServesWhenTheGameHasNone) {
  WriteZip(titles + "/Titles.zip", {"pacman.png"}, "zipped ");
  const ArtworkFile found = Find("puckman", "pacman");
  EXPECT_EQ(found.path, temp + "/pacman.png");
}

TEST_F(ArtworkLookup, EmptyParentLooksForDotPng) {
  WriteFile(titles + "/.png", "a picture with no name");
  EXPECT_EQ(Find("puckman", "").path, titles + "/.png");
  fs::remove(titles + "/.png");
  WriteZip(titles + "/Titles.zip", {".png"}, "zipped ");
  EXPECT_EQ(Find("puckman", "").path, temp + "/.png");
}

TEST_F(ArtworkLookup, AStaleCopyOfAnotherKindIsNotShown) {
  WriteZip(titles + "/Titles.zip", {"pacman.png"}, "title ");
  ASSERT_FALSE(Find("pacman", "").path.empty());
  settings.InfWrite("SnapPath", titles);  // the same folder, but no Snap.zip
  WriteZip(titles + "/Snap.zip", {"galaxian.png"}, "snap ");
  EXPECT_EQ(Find("pacman", "", "Snap").path, "");
}

TEST_F(ArtworkLookup, NothingAndAnUnsetFolder) {
  EXPECT_EQ(Find("pacman", "").path, "");
  settings.InfWrite("SnapPath", "-1");
  WriteFile(app / "pacman.png", "in the program folder");
  const ArtworkFile found = Find("pacman", "", "Snap");
  EXPECT_EQ(found.folder, app.Path());
  EXPECT_EQ(found.path, app / "pacman.png");
}

TEST_F(ArtworkLookup, BrokenZipGivesNoPicture) {
  WriteFile(titles + "/Titles.zip", "PK\x05\x06 garbage");
  EXPECT_EQ(Find("pacman", "").path, "");
}

TEST(ArtworkText, WhereToPutThePictures) {
  TempFolder app;
  AppContext ctx(app.Path());
  ctx.messages.LanguageNumber = Messages::kEnglish;
  ctx.messages.LoadMessages();
  const Messages& messages = ctx.messages;
  Settings& settings = ctx.settings;
  settings.InfWrite("TitlesPath", "/pictures/titles/");
  EXPECT_EQ(ArtworkMissingText(messages, settings, "Titles"),
            "Put your .png images into the folder /pictures/titles/. If you want, these files "
            "can be compressed into the file Titles.zip you put into this folder.");
  EXPECT_EQ(ArtworkMissingText(messages, settings, "Snap"),
            "Put your .png images into the folder Snap (set in the options). If you want, these "
            "files can be compressed into the file Snap.zip you put into this folder.");
}

class ArtworkDownload : public ::testing::Test {
 protected:
  ArtworkDownload() : log(app.Path()), settings(app / "Tessarin.inf", log) {
    // The MAWS host of the fallback addresses is this test's server.
    WriteFile(app / "maws.inf", server.Url("") + "\r\n");
    for (int i = 1; i <= 6; ++i) {
      const std::string kind(kDownloadKinds[static_cast<size_t>(i)]);
      folders[static_cast<size_t>(i)] = app / kind;
      fs::create_directories(folders[static_cast<size_t>(i)]);
      settings.InfWrite(kind + "Path", folders[static_cast<size_t>(i)]);
      urls.OnlineImages[static_cast<size_t>(i)] = server.Url("/own/" + kind + "/#ROMNAME#.png");
    }
    job.rom = "pacman";
    job.title = "Pac-Man";
    job.settings = &settings;
    job.urls = &urls;
    job.log = &log;
    job.appFolder = app.Path();
    job.show = [this](int kind) { shown.push_back(kind); };
  }
  std::string Picture(int i) const { return folders[static_cast<size_t>(i)] + "/pacman.png"; }

  testing::TestHttpServer server;
  TempFolder app;
  Log log;
  Settings settings;
  UrlTables urls;
  std::array<std::string, 7> folders;
  ArtworkDownloadJob job;
  std::vector<int> shown;
  Work work;
};

TEST_F(ArtworkDownload, SixKindsInOrderWithTheFallbackAndThenAlreadyExists) {
  for (int i = 1; i <= 6; ++i) {
    server.AddFile("/own/" + std::string(kDownloadKinds[static_cast<size_t>(i)]) + "/pacman.png",
                   "own " + std::to_string(i));
  }
  // Marquees are missing at the configured place and come from the MAWS address.
  server.AddFile("/own/Marquees/pacman.png", "");
  urls.OnlineImages[3] = server.Url("/nowhere/#ROMNAME#.png");
  server.AddFile("/maws/img/marquees/pacman.png", "from maws");
  urls.OnlineImages[5] = "";  // Cpanel: no address
  urls.OnlineImages[6] = server.Url("/own/Flyers/#GAMENAME#.png");
  server.AddFile("/own/Flyers/Pac-Man.png", "flyer by name");

  const ArtworkDownloadResult result = DownloadArtwork(job, work);
  EXPECT_FALSE(result.cancelled);
  EXPECT_EQ(result.outcome[1], "downloaded");
  EXPECT_EQ(result.outcome[3], "downloaded");
  EXPECT_EQ(result.outcome[5], "no address");
  EXPECT_EQ(ReadFile(Picture(1)), "own 1");
  EXPECT_EQ(ReadFile(Picture(2)), "own 2");
  EXPECT_EQ(ReadFile(Picture(3)), "from maws");
  EXPECT_EQ(ReadFile(Picture(4)), "own 4");
  EXPECT_FALSE(fs::exists(Picture(5)));
  EXPECT_EQ(ReadFile(Picture(6)), "flyer by name");
  EXPECT_EQ(shown, (std::vector<int>{1, 2}));
  const std::vector<std::string> asked = server.Asked();
  const std::vector<std::string> expected = {
      "/own/Titles/pacman.png",        "/own/Snap/pacman.png",     "/nowhere/pacman.png",
      "/maws/img/marquees/pacman.png", "/own/Cabinets/pacman.png", "/own/Flyers/Pac-Man.png"};
  EXPECT_EQ(asked, expected);
  EXPECT_EQ(work.ProgressMax.load(), 6);
  const std::string logText = ReadFile(log.LogPath());
  EXPECT_NE(logText.find("Can't download pacman.png non valid destination path for Cpanel\\"),
            std::string::npos)
      << logText;

  // The second press finds them all.
  shown.clear();
  const ArtworkDownloadResult again = DownloadArtwork(job, work);
  for (int i : {1, 2, 3, 4, 6}) EXPECT_EQ(again.outcome[static_cast<size_t>(i)], "exists") << i;
  EXPECT_EQ(shown, (std::vector<int>{1, 2}));
  EXPECT_EQ(server.Asked().size(), asked.size());
  EXPECT_NE(ReadFile(log.LogPath()).find("Titles\\pacman.png already exists : " + Picture(1)),
            std::string::npos);
  EXPECT_EQ(work.Status(), "Flyers\\pacman.png already exists.");
}

TEST_F(ArtworkDownload, FailuresAndMissingFoldersAreLoggedNotAsked) {
  settings.InfWrite("SnapPath", "-1");
  const ArtworkDownloadResult result = DownloadArtwork(job, work);
  EXPECT_EQ(result.outcome[1], "failed");
  EXPECT_EQ(result.outcome[2], "no destination");
  EXPECT_TRUE(shown.empty());
  const std::string logText = ReadFile(log.LogPath());
  EXPECT_NE(logText.find("Can't download pacman.png - No destination path."), std::string::npos);
  EXPECT_NE(logText.find("Can't download Titles\\pacman.png"), std::string::npos);
  // The configured address, then the MAWS one.
  const std::vector<std::string> asked = server.Asked();
  ASSERT_GE(asked.size(), 2u);
  EXPECT_EQ(asked[0], "/own/Titles/pacman.png");
  EXPECT_EQ(asked[1], "/maws/img/shots/titles/pacman.png");
  EXPECT_FALSE(fs::exists(Picture(1)));
}

TEST_F(ArtworkDownload, CancelEndsTheLoop) {
  server.AddFile("/own/Titles/pacman.png", "t");
  job.show = [this](int kind) {
    shown.push_back(kind);
    work.CancelRequested = true;
  };
  const ArtworkDownloadResult result = DownloadArtwork(job, work);
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(result.outcome[1], "downloaded");
  EXPECT_EQ(result.outcome[2], "");
  EXPECT_NE(ReadFile(log.LogPath()).find("Download procedure aborted by user."), std::string::npos);
  EXPECT_EQ(server.Asked().size(), 1u);
}

// A cancel given while a picture is on its way cuts the transfer: that kind is no failure, the
// fallback address isn't tried and the log tells only of the cancel.
TEST_F(ArtworkDownload, ACancelDuringATransferIsNoFailure) {
  std::vector<std::string> fetched;
  job.download = [&](const std::string& url, const std::string&) {
    fetched.push_back(url);
    work.CancelRequested = true;
    return kDownloadErrorBase + 42;  // the transfer aborted by the cancel
  };
  const ArtworkDownloadResult result = DownloadArtwork(job, work);
  EXPECT_TRUE(result.cancelled);
  EXPECT_EQ(result.outcome[1], "cancelled");
  EXPECT_EQ(fetched.size(), 1u);
  const std::string logText = ReadFile(log.LogPath());
  EXPECT_EQ(logText.find("Can't download"), std::string::npos) << logText;
  EXPECT_NE(logText.find("Download procedure aborted by user."), std::string::npos);
}

}  // namespace
}  // namespace tessarin
