#include <gtest/gtest.h>

#include <QByteArray>
#include <chrono>
#include <filesystem>
#include <thread>

#include "builder/databaseops.h"
#include "buildertestsupport.h"
#include "core/fileservices.h"
#include "core/log.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using buildertest::BuilderFixture;
using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

const std::string kFakeEmulator = BuilderFixture("cli/fake-mame.sh");

// Sets an environment variable for the fake emulator for one test.
class EnvVar {
 public:
  EnvVar(const char* name, const std::string& value) : m_name(name) {
    qputenv(name, QByteArray::fromStdString(value));
  }
  ~EnvVar() { qunsetenv(m_name); }

 private:
  const char* m_name;
};

void AddGames(GameStore& store, std::initializer_list<const char*> names) {
  long long offset = 0;
  for (const char* name : names) store.AppendGame(name, NewXmlRecord(name, offset += 10));
  store.SetEndRecord(NewXmlRecord(EndRecordName, offset + 10));
}

std::string Tail(const std::string& record) {
  const size_t end = record.find_last_not_of('*');
  return record.substr(end + 1);
}

TEST(DatabaseOps, ScanRomsStarArithmetic) {
  TestHome home;
  GameStore& store = home.ctx.store;
  AddGames(store, {"a", "b", "c", "dddd"});
  const std::string roms = home.Folder() + "roms/";
  fs::create_directories(roms + "b.dir");
  fs::create_directories(roms + "c");
  WriteBytes(roms + "a.zip", "zip");
  WriteBytes(roms + "dddd.ZIP", "zip");
  WriteBytes(roms + "readme.txt", "text");
  home.ctx.settings.InfWrite("RomPath", home.Folder() + "roms");
  Work work;
  int matches = 0;
  EXPECT_FALSE(ScanRoms(home.ctx, work, true, &matches));
  // A zip is met twice (as a zip, then among all entries); a folder only when its name is four
  // characters longer than the rom's.
  EXPECT_EQ(Tail(store.GameRecords[1]), "**");
  EXPECT_EQ(Tail(store.GameRecords[2]), "*");
  EXPECT_EQ(Tail(store.GameRecords[3]), "");
  EXPECT_EQ(Tail(store.GameRecords[4]), "**");
  EXPECT_EQ(matches, 5);
  EXPECT_EQ(Tail(store.GameRecords[5]), "");  // the EndRecord is no game

  // The next scan takes one star away and adds its own.
  ScanRoms(home.ctx, work, false, &matches);
  EXPECT_EQ(Tail(store.GameRecords[1]), "***");
  EXPECT_EQ(Tail(store.GameRecords[2]), "*");

  // An empty folder: one star less everywhere, none added.
  fs::remove_all(roms);
  fs::create_directories(roms);
  ScanRoms(home.ctx, work, true, &matches);
  EXPECT_EQ(matches, 0);
  EXPECT_EQ(Tail(store.GameRecords[1]), "**");
  EXPECT_EQ(Tail(store.GameRecords[2]), "");
  EXPECT_TRUE(home.ui.messages.empty());
}

TEST(DatabaseOps, ScanRomsWithoutDatabaseOrRomFolderTellsTheUser) {
  TestHome home;
  Work work;
  int matches = 0;
  ScanRoms(home.ctx, work, true, &matches);
  EXPECT_EQ(matches, -1);
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "There is no rom in the database.");
  AddGames(home.ctx.store, {"a"});
  ScanRoms(home.ctx, work, true, &matches);
  EXPECT_EQ(matches, -1);
  ASSERT_EQ(home.ui.messages.size(), 2u);
  EXPECT_EQ(home.ui.messages[1].text, "Udefinied path to the roms.");
}

TEST(DatabaseOps, VersionFromTheHelpLine) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  const double number = TrouveVersionMAME(home.ctx);
  EXPECT_EQ(home.ctx.store.DatabaseVersion, "MAME v0.999 (fake for tests)");
  // Read from the 9th character on, as the old "M.A.M.E. v0.37" lines were.
  EXPECT_DOUBLE_EQ(number, 999);
  EXPECT_TRUE(FileExists(home.Folder() + "vermame.txt"));
}

TEST(DatabaseOps, LeadingNumberValue) {
  EXPECT_DOUBLE_EQ(LeadingNumberValue(" 0.37b5 (Dec 2000)"), 0.37);
  EXPECT_DOUBLE_EQ(LeadingNumberValue("251 (unknown)"), 251);
  EXPECT_DOUBLE_EQ(LeadingNumberValue("x1"), 0);
  EXPECT_DOUBLE_EQ(LeadingNumberValue(""), 0);
}

TEST(DatabaseOps, RunListXmlWorksFromAPathWithBlanks) {
  TestHome home;
  const std::string folder = home.Folder() + "my emu folder/";
  fs::create_directories(folder);
  const std::string emulator = folder + "fake mame.sh";
  fs::copy_file(kFakeEmulator, emulator);
  home.ctx.settings.InfWrite("DataFile1", emulator);
  EnvVar list("TESSARIN_FAKE_LIST", BuilderFixture("dumps/old_game_crlf.xml"));
  const std::string target = home.Folder() + "out dir/list xml";
  fs::create_directories(home.Folder() + "out dir");
  EXPECT_TRUE(RunListXml(home.ctx, target));
  EXPECT_EQ(ReadBytes(target), ReadBytes(BuilderFixture("dumps/old_game_crlf.xml")));
  // Without a path the list goes to listxml.txt in the application folder.
  EXPECT_TRUE(RunListXml(home.ctx, {}));
  EXPECT_TRUE(FileExists(home.Folder() + "listxml.txt"));
  // The fake prints nothing for -listinfo.
  Work work;
  EXPECT_FALSE(RunListInfo(home.ctx, work, {}));
  EXPECT_EQ(work.ProgressValue.load(), 5);
  EXPECT_EQ(work.ProgressMax.load(), 10);
}

TEST(DatabaseOps, RunListXmlOfASilentEmulatorIsFalse) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  EnvVar silent("TESSARIN_FAKE_SILENT", "1");
  const std::string target = home.Folder() + "listxml.txt";
  WriteBytes(target, "an older list");
  EXPECT_FALSE(RunListXml(home.ctx, target));
}

TEST(DatabaseOps, CreateDatabaseRunsTheEmulatorBuildsScansAndSaves) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  fs::create_directories(home.Folder() + "roms");
  WriteBytes(home.Folder() + "roms/pacman.zip", "zip");
  home.ctx.settings.InfWrite("RomPath", home.Folder() + "roms/");
  Work work;
  EXPECT_FALSE(home.ctx.SearchMayClose);
  ASSERT_TRUE(CreateDatabase(home.ctx, work));
  // A search dialog kept open must build its lists again.
  EXPECT_TRUE(home.ctx.SearchMayClose);
  EXPECT_TRUE(home.ui.questions.empty());  // nothing to replace yet
  ASSERT_FALSE(home.ui.messages.empty());
  EXPECT_EQ(home.ui.messages.back().text, "Done.");
  EXPECT_EQ(ReadBytes(DefaultListXmlPath(home.Folder())),
            ReadBytes(BuilderFixture("dumps/machine_lf.xml")));

  GameStore loaded;
  ASSERT_TRUE(LoadIndex(loaded, home.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_EQ(loaded.DatabaseVersion, "MAME v0.999 (fake for tests)");
  EXPECT_EQ(loaded.GameCount(), 5);
  // The second save holds the rom scan.
  EXPECT_EQ(Tail(loaded.GameRecords[static_cast<size_t>(loaded.FindGame("pacman"))]), "**");
  EXPECT_EQ(Tail(loaded.GameRecords[static_cast<size_t>(loaded.FindGame("dkong"))]), "");

  // A second creation asks first; "no" leaves everything as it was.
  const std::string before = ReadBytes(IndexFilePath(home.Folder()));
  home.ui.answers.push_back(false);
  EXPECT_FALSE(CreateDatabase(home.ctx, work));
  ASSERT_EQ(home.ui.questions.size(), 1u);
  EXPECT_EQ(home.ui.questions[0], home.ctx.messages.Lng(53));
  EXPECT_EQ(ReadBytes(IndexFilePath(home.Folder())), before);
}

TEST(DatabaseOps, CreateDatabaseWithASilentEmulatorKeepsTheOldDatabase) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  WriteBytes(IndexFilePath(home.Folder()), "old\r\n");
  EnvVar silent("TESSARIN_FAKE_SILENT", "1");
  Work work;
  EXPECT_FALSE(CreateDatabase(home.ctx, work));
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "MAME commands -listxml and -listinfo gave nothing.");
  EXPECT_EQ(ReadBytes(IndexFilePath(home.Folder())), "old\r\n");
}

TEST(DatabaseOps, EmulatorWithoutVersionLineGivesAnEmptyFirstLine) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  home.ctx.store.DatabaseVersion = "from an earlier run";
  EnvVar noVersion("TESSARIN_FAKE_NOVERSION", "1");
  Work work;
  ASSERT_TRUE(CreateDatabase(home.ctx, work));
  EXPECT_EQ(home.ctx.store.DatabaseVersion, "");
  const std::string index = ReadBytes(IndexFilePath(home.Folder()));
  EXPECT_EQ(index.substr(0, 10), "\r\npuckman;");
}

TEST(DatabaseOps, CreateDatabaseWithoutEmulatorAsksForOne) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", home.Folder() + "nothing here");
  Work work;
  EXPECT_FALSE(CreateDatabase(home.ctx, work));
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, home.ctx.messages.Lng(56));
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Warning);
}

TEST(DatabaseOps, CreateDatabaseFromAGivenLegacyDump) {
  TestHome home;
  WriteBytes(DefaultListXmlPath(home.Folder()), "an old xml list that must not be read");
  Work work;
  ASSERT_TRUE(CreateDatabase(home.ctx, work, BuilderFixture("dumps/legacy_crlf.listinfo")));
  EXPECT_FALSE(home.ctx.store.SourceIsXml);
  EXPECT_EQ(home.ctx.store.GameCount(), 4);
  EXPECT_FALSE(FileExists(DefaultListXmlPath(home.Folder())));
  EXPECT_EQ(ReadBytes(DefaultListInfoPath(home.Folder())),
            ReadBytes(BuilderFixture("dumps/legacy_crlf.listinfo")));
  // The given file is still there, whole.
  EXPECT_TRUE(FileExists(BuilderFixture("dumps/legacy_crlf.listinfo")));
}

TEST(DatabaseOps, UpdateSelectedWithNothingCheckedWritesNothing) {
  TestHome home;
  AddGames(home.ctx.store, {"a"});
  Work work;
  const UpdateReport report = UpdateSelected(home.ctx, work, {});
  EXPECT_TRUE(report.fullRun);
  EXPECT_FALSE(report.saved);
  EXPECT_FALSE(FileExists(IndexFilePath(home.Folder())));
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Update done.");
}

TEST(DatabaseOps, UpdateSelectedFollowsTheListAndSaves) {
  TestHome home;
  AddGames(home.ctx.store, {"pacman", "dkong"});
  home.ctx.store.GameRecords[1] = FastReplace(home.ctx.store.GameRecords[1], "#HS", "1");
  WriteBytes(home.DataFiles() + "cheat.dat", ":dkong:0:1:2:x\r\n");
  WriteBytes(home.DataFiles() + "hiscore.dat", "dkong:0:1:1:0\r\n");
  WriteBytes(home.DataFiles() + "command.dat", "$info=pacman\r\ntext\r\n");
  home.ctx.settings.InfWrite("RomPath", home.Folder());
  std::array<bool, kUpdateEntryCount> checked{};
  checked[static_cast<size_t>(UpdateEntry::Roms)] = true;
  checked[static_cast<size_t>(UpdateEntry::Hiscore)] = true;
  checked[static_cast<size_t>(UpdateEntry::Command)] = true;
  checked[static_cast<size_t>(UpdateEntry::Cheat)] = true;
  Work work;
  const UpdateReport report = UpdateSelected(home.ctx, work, checked);
  // Command.dat and the rom scan never report Ok.
  EXPECT_EQ(report.lines, (std::vector<std::string>{"Cheat.dat = Ok", "Hiscore.dat = Ok"}));
  EXPECT_TRUE(report.saved);
  const GameStore& store = home.ctx.store;
  // The hiscore field was reset before the file was read.
  EXPECT_NE(store.GameRecords[1].find(";P#HS;"), std::string::npos);
  EXPECT_NE(store.GameRecords[2].find(";P1;"), std::string::npos);
  EXPECT_NE(store.GameRecords[2].find(";R1;"), std::string::npos);
  EXPECT_NE(store.GameRecords[1].find(";T0,"), std::string::npos);
  GameStore loaded;
  ASSERT_TRUE(LoadIndex(loaded, home.ctx.log, IndexFilePath(home.Folder())));
  EXPECT_EQ(loaded.GameRecords, store.GameRecords);
}

TEST(DatabaseOps, UpdateSelectedWithoutDatabaseTellsTheUser) {
  TestHome home;
  std::array<bool, kUpdateEntryCount> checked{};
  checked[0] = true;
  Work work;
  const UpdateReport report = UpdateSelected(home.ctx, work, checked);
  EXPECT_FALSE(report.loaded);
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Database can't be loaded.");
}

TEST(DatabaseOps, UpdateFromFilesAsksAndNeedsADatabase) {
  TestHome home;
  Work work;
  home.ui.answers.push_back(false);
  EXPECT_FALSE(UpdateFromFiles(home.ctx, work));
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_FALSE(UpdateFromFiles(home.ctx, work));
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text.rfind("The database doesn't exist.|", 0), 0u);
}

TEST(DatabaseOps, UpdateFromFilesResetsAndRefills) {
  TestHome home;
  AddGames(home.ctx.store, {"pacman", "dkong"});
  home.ctx.store.GameRecords[1] = FastReplace(home.ctx.store.GameRecords[1], "#CH", "1");
  WriteBytes(home.DataFiles() + "cheat.dat", ":dkong:0:1:2:x\r\n");
  Work work;
  ASSERT_TRUE(UpdateFromFiles(home.ctx, work));
  EXPECT_NE(home.ctx.store.GameRecords[1].find(";R#CH;"), std::string::npos);
  EXPECT_NE(home.ctx.store.GameRecords[2].find(";R1;"), std::string::npos);
  EXPECT_EQ(home.ui.messages.back().text, "Done.");
}

// The cancel flag belongs to whoever starts a job: a cancel given before the job reaches its
// first line is kept, and the job stops without touching the database.
TEST(DatabaseOps, ACancelGivenBeforeTheStartIsKept) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
  Work work;
  work.CancelRequested = true;
  EXPECT_FALSE(CreateDatabase(home.ctx, work));
  EXPECT_TRUE(work.CancelRequested);
  EXPECT_FALSE(FileExists(IndexFilePath(home.Folder())));
  EXPECT_FALSE(FileExists(DefaultListXmlPath(home.Folder())));
  EXPECT_EQ(home.ctx.store.GameCount(), 0);

  AddGames(home.ctx.store, {"pacman", "dkong"});
  WriteBytes(home.DataFiles() + "cheat.dat", ":dkong:0:1:2:x\r\n");
  EXPECT_FALSE(UpdateFromFiles(home.ctx, work));
  EXPECT_TRUE(work.CancelRequested);
  EXPECT_NE(home.ctx.store.GameRecords[2].find(";R#CH;"), std::string::npos);

  std::array<bool, kUpdateEntryCount> checked{};
  checked[static_cast<size_t>(UpdateEntry::Cheat)] = true;
  const UpdateReport report = UpdateSelected(home.ctx, work, checked);
  EXPECT_FALSE(report.fullRun);
  EXPECT_FALSE(report.saved);
  EXPECT_TRUE(work.CancelRequested);
  EXPECT_NE(home.ctx.store.GameRecords[2].find(";R#CH;"), std::string::npos);
  EXPECT_FALSE(FileExists(IndexFilePath(home.Folder())));
}

// A cancel while the emulator prints its list ends the emulator at once (asked to end, then
// killed when it won't): the job doesn't wait for a list of hundreds of megabytes.
TEST(DatabaseOps, ACancelEndsTheEmulatorAtOnce) {
  for (const char* hang : {"1", "stubborn"}) {
    TestHome home;
    home.ctx.settings.InfWrite("DataFile1", kFakeEmulator);
    WriteBytes(IndexFilePath(home.Folder()), "old\r\n");
    EnvVar hanging("TESSARIN_FAKE_HANG", hang);
    home.ui.defaultAnswer = true;
    Work work;
    std::thread canceller([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(400));
      work.CancelRequested = true;
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(CreateDatabase(home.ctx, work)) << hang;
    const auto seconds =
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::steady_clock::now() - start)
            .count();
    canceller.join();
    EXPECT_LT(seconds, 10) << hang;
    EXPECT_EQ(ReadBytes(IndexFilePath(home.Folder())), "old\r\n");
    // A cancel is no failure to report.
    EXPECT_TRUE(home.ui.messages.empty());
  }
}

TEST(DatabaseOps, PathsAreWrittenUnderTheKeysDataFileN) {
  TestHome home;
  DataFilePaths paths;
  for (int n = 1; n <= kDataFileCount; ++n)
    paths[static_cast<size_t>(n)] = "/p" + std::to_string(n);
  SavePaths(home.ctx, paths, {});
  const std::string settings = ReadBytes(home.ctx.settings.FilePath());
  for (int n = 1; n <= kDataFileCount; ++n) {
    const std::string line = "DataFile" + std::to_string(n) + "=/p" + std::to_string(n) + "\r\n";
    EXPECT_NE(settings.find(line), std::string::npos) << line << settings;
  }
  EXPECT_EQ(settings.find("Datafile"), std::string::npos) << settings;
}

TEST(DatabaseOps, DefaultPathsFallBackToTheDataFolderAndSetTheRomFolder) {
  TestHome home;
  WriteBytes(home.DataFiles() + "HISTORY.DAT", "x");
  const DataFilePaths paths = FindDefaultPaths(home.ctx);
  // A file of the data folder is found whatever the case of its name.
  EXPECT_EQ(paths[2], home.DataFiles() + "HISTORY.DAT");
  // Missing everywhere: the last candidate, in the data folder.
  EXPECT_EQ(paths[3], home.DataFiles() + "Mameinfo.dat");
  EXPECT_EQ(paths[8], home.DataFiles() + "Multiplayer.ini");
  EXPECT_NE(home.ctx.settings.InfRead("RomPath"), "-1");
  // Settings win over what lies on the disk.
  home.ctx.settings.InfWrite("DataFile3", "/elsewhere/mameinfo.dat");
  EXPECT_EQ(LoadDataFilePaths(home.ctx)[3], "/elsewhere/mameinfo.dat");
  DataFilePaths changed = paths;
  changed[5] = "/x/command.dat";
  SavePaths(home.ctx, changed, home.Folder() + "myroms");
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile5"), "/x/command.dat");
  EXPECT_EQ(home.ctx.settings.InfRead("RomPath"), home.Folder() + "myroms/");
}

}  // namespace
}  // namespace tessarin
