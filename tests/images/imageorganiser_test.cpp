#include "images/imageorganiser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "archive/ziptestutil.h"
#include "core/work.h"
#include "shell/shell_test_support.h"
#include "store/indexfile.h"
#include "support/realdata.h"
#include "support/scopedtrash.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using shelltest::Exists;
using shelltest::TestContext;
using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

std::vector<std::string> Set(std::initializer_list<std::string> names) {
  std::vector<std::string> set{std::string()};
  set.insert(set.end(), names);
  return set;
}

std::vector<std::string> Listing(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void Touch(const std::string& path, const std::string& content = "picture") {
  WriteFile(path, content);
}

TEST(ImageOrganiserState, LoadTakesKindFoldersAndOverrides) {
  TestContext t;
  Settings& settings = t.ctx.settings;
  settings.InfWrite("TitlesPath", "/img/titles/");
  settings.InfWrite("SnapPath", "-1");
  settings.InfWrite("FlyersPath", "/img/flyers/");
  settings.InfWrite("Frm10SourcePath6", "/other/flyers/");
  settings.InfWrite("Frm10SourcePath1", "-1");
  settings.InfWrite("Frm10DestPath2", "/dest/snap/");
  settings.InfWrite("Frm10Chck1", "1");
  ImageOrganiserState state;
  LoadImageOrganiserState(settings, state);
  EXPECT_EQ(state.SourceFolders[1], "/img/titles/");
  EXPECT_EQ(state.SourceFolders[2], "");
  EXPECT_EQ(state.SourceFolders[6], "/other/flyers/");
  EXPECT_EQ(state.DestFolders[1], "");
  EXPECT_EQ(state.DestFolders[2], "/dest/snap/");
  EXPECT_TRUE(state.Chk1);
  EXPECT_FALSE(state.Chk2);  // no Frm10Chck2: "-1" counts as empty
}

TEST(ImageOrganiserState, SecondBoxIsSavedFromTheFirst) {
  TestContext t;
  ImageOrganiserState state;
  state.Chk1 = false;
  state.Chk2 = true;
  state.SourceFolders[3] = "/m/";
  state.DestFolders[4] = "/c/";
  SaveImageOrganiserState(t.ctx.settings, state);
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10SourcePath3"), "/m/");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10DestPath4"), "/c/");
  EXPECT_EQ(t.ctx.settings.InfRead("Frm10Chck2"), "");
  ImageOrganiserState again;
  LoadImageOrganiserState(t.ctx.settings, again);
  EXPECT_FALSE(again.Chk2);  // Chk2's own state doesn't come back

  state.Chk1 = true;
  state.Chk2 = false;
  SaveImageOrganiserState(t.ctx.settings, state);
  LoadImageOrganiserState(t.ctx.settings, again);
  EXPECT_TRUE(again.Chk1);
  EXPECT_TRUE(again.Chk2);
}

TEST(ImageOrganiserNames, DatabaseGivesEveryRomWhetherOnDiskOrNot) {
  TestContext t;
  t.ctx.store.AppendGame("pacman", "pacman;A1;0;B#Z*");
  t.ctx.store.AppendGame("mspacman", "mspacman;A2;0;B#Z");
  std::vector<std::string> set;
  RomSetFromDatabase(t.ctx, set);
  EXPECT_EQ(set, Set({"pacman", "mspacman"}));
  EXPECT_TRUE(t.ui.shown.empty());
}

TEST(ImageOrganiserNames, EmptyDatabaseLoadsTheIndexThenTellsInFrench) {
  TestContext t;
  std::vector<std::string> set{"", "stale"};
  RomSetFromDatabase(t.ctx, set);
  EXPECT_EQ(set.size(), 1u);
  ASSERT_EQ(t.ui.shown.size(), 1u);
  EXPECT_EQ(t.ui.shown[0].text,
            t.ctx.messages.Lng(57) + "\r\nAucune rom dans la base de données..");
  EXPECT_EQ(t.ui.shown[0].icon, Icon::Warning);

  // With an index file on disk the store is filled from it.
  GameStore store;
  store.AppendGame("galaga", "galaga;A0;0;B#Z");
  store.SetEndRecord(std::string(EndRecordName) + ";A10;0");
  fs::create_directories(DataFilesFolder(t.ctx.AppFolder()));
  ASSERT_TRUE(SaveIndex(store, t.ctx.log, nullptr, IndexFilePath(t.ctx.AppFolder())));
  RomSetFromDatabase(t.ctx, set);
  EXPECT_EQ(set, Set({"galaga"}));
}

TEST(ImageOrganiserNames, RomFolderLowerCasesZipsAndKeepsEveryEntry) {
  TempFolder roms;
  Touch(roms / "Pacman.zip");
  Touch(roms / "galaga.ZIP");
  fs::create_directory(roms / "DKong");
  Work work;
  std::vector<std::string> set;
  ASSERT_TRUE(ReadRomFolderNames(roms.Path(), work, set));
  EXPECT_EQ(set, Set({"pacman", "galaga", "DKong", "Pacman.zip", "galaga.ZIP"}));
}

TEST(ImageOrganiserNames, RomFolderStopsOnCancel) {
  TempFolder roms;
  Touch(roms / "a.zip");
  Work work;
  work.CancelRequested = true;
  std::vector<std::string> set;
  EXPECT_FALSE(ReadRomFolderNames(roms.Path(), work, set));
}

TEST(ImageOrganiserPrune, DatabaseNamesKeepTheirImagesOnlyPngGoes) {
  TempFolder images;
  for (const char* name : {"pacman.png", "Pacman.png", "unknown.png", "other.PNG", "unknown.jpg",
                           "unknown.gif", "titles.zip", "mspacman.png"}) {
    Touch(images / name);
  }
  std::vector<std::string> removed;
  PruneImagesJob job;
  job.folder = images.Path();
  job.deleteFile = [&](const std::string& path) {
    removed.push_back(fs::path(path).filename().string());
    fs::remove(path);
  };
  Work work;
  std::vector<std::string> deleted;
  // mspacman is in the database even though no rom file is there.
  ASSERT_TRUE(PruneImages(job, Set({"pacman", "mspacman"}), work, deleted));
  const std::vector<std::string> expected = {"Pacman.png", "other.PNG", "unknown.png"};
  EXPECT_EQ(deleted, expected);
  EXPECT_EQ(removed, expected);
  EXPECT_EQ(Listing(images.Path()),
            (std::vector<std::string>{"mspacman.png", "pacman.png", "titles.zip", "unknown.gif",
                                      "unknown.jpg"}));
  EXPECT_EQ(work.Status(), "Delete unknown.png");
}

TEST(ImageOrganiserPrune, FolderOfZipsDeletesCapitalisedImages) {
  TempFolder roms, images;
  Touch(roms / "Pacman.zip");
  Touch(images / "Pacman.png");
  Touch(images / "pacman.png");
  Work work;
  std::vector<std::string> set;
  ASSERT_TRUE(ReadRomFolderNames(roms.Path(), work, set));
  PruneImagesJob job;
  job.folder = images.Path();
  std::vector<std::string> deleted;
  ASSERT_TRUE(PruneImages(job, set, work, deleted));  // the desktop's trash, or a real delete
  EXPECT_EQ(deleted, std::vector<std::string>{"Pacman.png"});
  EXPECT_FALSE(Exists(images / "Pacman.png"));
  EXPECT_TRUE(Exists(images / "pacman.png"));
}

TEST(ImageOrganiserPrune, DryRunListsAndKeeps) {
  TempFolder images;
  Touch(images / "a.png");
  Touch(images / "b.png");
  PruneImagesJob job;
  job.folder = images.Path();
  job.dryRun = true;
  job.deleteFile = [](const std::string& path) { FAIL() << "deleted " << path; };
  Work work;
  std::vector<std::string> deleted;
  ASSERT_TRUE(PruneImages(job, Set({"a"}), work, deleted));
  EXPECT_EQ(deleted, std::vector<std::string>{"b.png"});
  EXPECT_TRUE(Exists(images / "b.png"));
}

TEST(ImageOrganiserPrune, MissingFolderDoesNothingAndCancelStops) {
  Work work;
  std::vector<std::string> deleted;
  PruneImagesJob missing;
  missing.folder = "/no/such/folder/here";
  EXPECT_FALSE(PruneImages(missing, Set({}), work, deleted));
  PruneImagesJob empty;
  EXPECT_FALSE(PruneImages(empty, Set({}), work, deleted));

  TempFolder images;
  Touch(images / "x.png");
  PruneImagesJob job;
  job.folder = images.Path();
  work.CancelRequested = true;
  EXPECT_TRUE(PruneImages(job, Set({}), work, deleted));
  EXPECT_TRUE(deleted.empty());
  EXPECT_TRUE(Exists(images / "x.png"));
}

TEST(ImageOrganiserCopy, CopiesThreeExtensionsOfNamedRoms) {
  TempFolder source, destination;
  for (const char* name :
       {"pacman.png", "pacman.jpg", "pacman.gif", "pacman.bmp", "galaga.png", "dkong.png"}) {
    Touch(source / name, name);
  }
  CopyImagesJob job;
  job.kind = "titles";
  job.source = source.Path();
  job.destination = destination.Path();
  Work work;
  ASSERT_TRUE(CopyRomImages(job, Set({"pacman", "galaga", "nothere"}), work));
  EXPECT_EQ(Listing(destination.Path()),
            (std::vector<std::string>{"galaga.png", "pacman.gif", "pacman.jpg", "pacman.png"}));
  EXPECT_EQ(ReadFile(destination / "pacman.jpg"), "pacman.jpg");
  EXPECT_TRUE(Exists(source / "pacman.png"));  // a copy leaves the source
  EXPECT_EQ(work.Status(), "nothere");
}

TEST(ImageOrganiserCopy, MoveEmptiesTheSourceButKeepsItsZips) {
  TempFolder source, destination;
  Touch(source / "pacman.png");
  Touch(source / "pacman.zip");
  Touch(source / "titles.zip");
  CopyImagesJob job;
  job.kind = "titles";
  job.source = source.Path();
  job.destination = destination.Path();
  job.move = true;
  Work work;
  ASSERT_TRUE(CopyRomImages(job, Set({"pacman", "pacman"}), work));
  EXPECT_FALSE(Exists(source / "pacman.png"));
  EXPECT_TRUE(Exists(destination / "pacman.png"));
  EXPECT_TRUE(Exists(source / "pacman.zip"));
  EXPECT_TRUE(Exists(source / "titles.zip"));
}

TEST(ImageOrganiserCopy, ImagesOfTheKindsZipsAreMovedOutOfTheTemporaryFolder) {
  TempFolder source, destination, temp;
  testing::RawZip zip;
  zip.Add("pacman.png", "zipped pacman", true);
  zip.Add("galaga.jpg", "zipped galaga", false);
  zip.Add("dkong.png", "zipped dkong", true);
  zip.Write(source / "Titles.zip");
  testing::RawZip snaps;
  snaps.Add("pacman.gif", "a snap", false);
  snaps.Write(source / "snap.zip");
  CopyImagesJob job;
  job.kind = "titles";
  job.source = source.Path();
  job.destination = destination.Path();
  job.move = false;  // the images of the zips are moved all the same
  job.fromZips = true;
  job.tempFolder = temp.Path();
  Work work;
  ASSERT_TRUE(CopyRomImages(job, Set({"pacman", "galaga"}), work));
  EXPECT_EQ(Listing(destination.Path()), (std::vector<std::string>{"galaga.jpg", "pacman.png"}));
  EXPECT_EQ(ReadFile(destination / "pacman.png"), "zipped pacman");
  EXPECT_FALSE(Exists(temp / "pacman.png"));
  EXPECT_TRUE(Exists(temp / "dkong.png"));  // not a named rom: it stays until the run's end
  EXPECT_TRUE(Exists(source / "Titles.zip"));
  EXPECT_EQ(work.Status(), "Search galaga.png");
}

TEST(ImageOrganiserCopy, NoZipOfTheKindEndsAfterTheCopy) {
  TempFolder source, destination, temp;
  Touch(source / "pacman.png");
  testing::RawZip snaps;
  snaps.Add("pacman.gif", "a snap", false);
  snaps.Write(source / "snap.zip");
  CopyImagesJob job;
  job.kind = "titles";
  job.source = source.Path();
  job.destination = destination.Path();
  job.fromZips = true;
  job.tempFolder = temp.Path();
  Work work;
  ASSERT_TRUE(CopyRomImages(job, Set({"pacman"}), work));
  EXPECT_EQ(Listing(destination.Path()), std::vector<std::string>{"pacman.png"});
  EXPECT_TRUE(Listing(temp.Path()).empty());
  EXPECT_EQ(work.Status(), "pacman");
}

TEST(ImageOrganiserCopy, EmptyOrMissingFolderDoesNothing) {
  TempFolder source;
  Touch(source / "pacman.png");
  Work work;
  CopyImagesJob noDestination;
  noDestination.source = source.Path();
  EXPECT_FALSE(CopyRomImages(noDestination, Set({"pacman"}), work));
  CopyImagesJob missing;
  missing.source = source.Path();
  missing.destination = source / "nothere";
  EXPECT_FALSE(CopyRomImages(missing, Set({"pacman"}), work));
  EXPECT_FALSE(Exists(source / "nothere"));
  EXPECT_EQ(work.Status(), "");
}

TEST(ImageOrganiserCopy, CancelEndsBetweenRoms) {
  TempFolder source, destination;
  Touch(source / "a.png");
  CopyImagesJob job;
  job.source = source.Path();
  job.destination = destination.Path();
  Work work;
  work.CancelRequested = true;
  ASSERT_TRUE(CopyRomImages(job, Set({"a"}), work));
  EXPECT_TRUE(Listing(destination.Path()).empty());
}

}  // namespace
}  // namespace tessarin

namespace tessarin {
namespace {

// The real list: a folder of 40,000 PNG names, every game of the database and some strangers,
// pruned against the database. Prints the figure.
TEST(ImageOrganiserTiming, PruneFortyThousandNamesAgainstTheRealDatabase) {
  const std::string real = testsupport::RealHome();
  if (real.empty()) GTEST_SKIP() << "TESSARIN_REAL_HOME names no real database";
  shelltest::TestContext t;
  std::filesystem::create_directories(t.Path("DataFiles"));
  std::filesystem::create_symlink(real + "DataFiles/index", t.Path("DataFiles/index"));
  testsupport::TempFolder images, trashHome;
  testsupport::ScopedTrash trash(trashHome.Path());
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  ASSERT_TRUE(LoadIndex(t.ctx.store, t.ctx.log, IndexFilePath(t.ctx.AppFolder())));
  const double loadMs =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  const int games = t.ctx.store.GameCount();
  ASSERT_GT(games, 30000);
  int strangers = 0;
  for (int i = 1; i <= games && i <= 40000; ++i) {
    std::ofstream(images / (t.ctx.store.GameNames()[static_cast<size_t>(i)] + ".png"));
  }
  for (int i = games + 1; i <= 40000; ++i, ++strangers) {
    std::ofstream(images / ("stranger" + std::to_string(i) + ".png"));
  }

  start = std::chrono::steady_clock::now();
  std::vector<std::string> set;
  RomSetFromDatabase(t.ctx, set);
  PruneImagesJob job;
  job.folder = images.Path();
  Work work;
  std::vector<std::string> deleted;
  ASSERT_TRUE(PruneImages(job, set, work, deleted));
  const double pruneMs =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  EXPECT_EQ(static_cast<int>(deleted.size()), strangers);
  EXPECT_EQ(work.ProgressMax.load(), 40000);
  std::printf(
      "[ timing ] prune of 40,000 PNG names (%d strangers deleted) against %d games: "
      "%.0f ms (index load before it: %.0f ms)\n",
      strangers, games, pruneMs, loadMs);
  EXPECT_LT(pruneMs, 2000.0);
}

}  // namespace
}  // namespace tessarin
