// tessarin-cli images copy|move|prune, run as a user would.

#include <gtest/gtest.h>

#include <QStringList>
#include <filesystem>
#include <string>
#include <vector>

#include "core/log.h"
#include "store/indexfile.h"
#include "support/clirun.h"
#include "support/testfiles.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using testsupport::TempFolder;
using testsupport::WriteFile;

using testsupport::CliResult;
using testsupport::RunCli;

class ImageCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(DataFilesFolder(home.Path()));
    GameStore store;
    store.AppendGame("pacman", "pacman;A0;0;B#Z");
    store.AppendGame("galaga", "galaga;A5;0;B#Z");
    store.SetEndRecord(std::string(EndRecordName) + ";A10;0");
    Log log(home.Path());
    ASSERT_TRUE(SaveIndex(store, log, nullptr, IndexFilePath(home.Path())));
    for (const char* name : {"pacman.png", "Pacman.png", "galaga.jpg", "dkong.png", "dkong.gif"}) {
      WriteFile(images / name, name);
    }
  }
  std::vector<std::string> With(std::initializer_list<std::string> args) const {
    std::vector<std::string> all = {"--home", home.Path()};
    all.insert(all.end(), args);
    return all;
  }
  bool Has(const TempFolder& folder, const char* name) const { return fs::exists(folder / name); }

  TempFolder home, images, destination;
};

TEST_F(ImageCommands, HelpSaysWhatEachDoes) {
  const CliResult help = RunCli({"images", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.out.find("copy"), std::string::npos);
  EXPECT_NE(help.out.find("move"), std::string::npos);
  EXPECT_NE(help.out.find("prune"), std::string::npos);
  const CliResult prune = RunCli({"images", "prune", "--help"});
  EXPECT_EQ(prune.exitCode, 0);
  EXPECT_NE(prune.out.find("--dry-run"), std::string::npos);
  EXPECT_EQ(RunCli({"images"}).exitCode, 2);
  EXPECT_EQ(RunCli({"images", "prune", "--kind", "posters"}).exitCode, 2);
}

TEST_F(ImageCommands, PruneDryRunListsThenPruneDeletes) {
  const CliResult dry = RunCli(With({"images", "prune", "--folder", images.Path(), "--dry-run"}));
  ASSERT_EQ(dry.exitCode, 0) << dry.err;
  EXPECT_EQ(dry.out, "Pacman.png\ndkong.png\n");
  EXPECT_TRUE(Has(images, "dkong.png"));
  const CliResult real = RunCli(With({"images", "prune", "--folder", images.Path()}));
  ASSERT_EQ(real.exitCode, 0) << real.err;
  EXPECT_EQ(real.out, "Pacman.png\ndkong.png\n");
  EXPECT_FALSE(Has(images, "dkong.png"));
  EXPECT_FALSE(Has(images, "Pacman.png"));
  EXPECT_TRUE(Has(images, "pacman.png"));
  EXPECT_TRUE(Has(images, "dkong.gif"));
}

TEST_F(ImageCommands, PruneAgainstARomFolderUsesItsLowerCasedNames) {
  TempFolder roms;
  WriteFile(roms / "DKong.zip", "z");
  const CliResult dry = RunCli(With(
      {"images", "prune", "--folder", images.Path(), "--rom-folder", roms.Path(), "--dry-run"}));
  ASSERT_EQ(dry.exitCode, 0) << dry.err;
  EXPECT_EQ(dry.out, "Pacman.png\npacman.png\n");
}

TEST_F(ImageCommands, CopyAndMoveTakeTheNamedRomsImages) {
  const CliResult copy =
      RunCli(With({"images", "copy", "--source", images.Path(), "--dest", destination.Path()}));
  ASSERT_EQ(copy.exitCode, 0) << copy.err;
  EXPECT_TRUE(Has(destination, "pacman.png"));
  EXPECT_TRUE(Has(destination, "galaga.jpg"));
  EXPECT_FALSE(Has(destination, "dkong.png"));
  EXPECT_TRUE(Has(images, "pacman.png"));
  fs::remove_all(destination.Path());
  fs::create_directories(destination.Path());
  const CliResult move = RunCli(With({"images", "move", "--kind", "snap", "--source", images.Path(),
                                      "--dest", destination.Path()}));
  ASSERT_EQ(move.exitCode, 0) << move.err;
  EXPECT_TRUE(Has(destination, "pacman.png"));
  EXPECT_FALSE(Has(images, "pacman.png"));
  EXPECT_FALSE(Has(images, "galaga.jpg"));
  EXPECT_TRUE(Has(images, "dkong.png"));
}

TEST_F(ImageCommands, MissingFoldersAndDatabaseAreNamed) {
  const CliResult noDest = RunCli(With({"images", "copy", "--source", images.Path()}));
  EXPECT_EQ(noDest.exitCode, 2);
  EXPECT_NE(noDest.err.find("destination"), std::string::npos);
  const CliResult missing =
      RunCli(With({"images", "prune", "--folder", images.Path() + "nothere"}));
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_NE(missing.err.find("nothere"), std::string::npos);
  TempFolder emptyHome;
  const CliResult noDatabase =
      RunCli({"--home", emptyHome.Path(), "images", "prune", "--folder", images.Path()});
  EXPECT_EQ(noDatabase.exitCode, 1);
  EXPECT_NE(noDatabase.err.find("index"), std::string::npos);
  EXPECT_TRUE(Has(images, "dkong.png"));
}

}  // namespace
}  // namespace tessarin
