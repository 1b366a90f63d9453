#include "core/fileservices.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QtGlobal>
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "core_test_support.h"
#include "support/scopedtrash.h"

namespace tessarin {
namespace {

using testing::FolderEntries;
using testing::ReadFile;
using testing::TempFolder;
using testing::WriteFile;
using testsupport::ScopedTrash;

namespace fs = std::filesystem;

class FileServicesTest : public ::testing::Test {
 protected:
  TempFolder folder;
};

TEST_F(FileServicesTest, FileExists) {
  WriteFile(folder / "a.txt", "x");
  WriteFile(folder / "empty.txt", "");
  fs::create_directory(folder / "sub");
  EXPECT_TRUE(FileExists(folder / "a.txt"));
  EXPECT_TRUE(FileExists(folder / "empty.txt"));
  EXPECT_FALSE(FileExists(folder / "sub"));
  EXPECT_FALSE(FileExists(folder / "sub/"));
  EXPECT_FALSE(FileExists(folder / "missing.txt"));
  EXPECT_FALSE(FileExists(folder / "missing/a.txt"));
  EXPECT_FALSE(FileExists(""));
}

TEST_F(FileServicesTest, FolderExists) {
  WriteFile(folder / "a.txt", "x");
  fs::create_directory(folder / "sub folder");
  EXPECT_TRUE(FolderExists(folder / "sub folder"));
  EXPECT_TRUE(FolderExists(folder / "sub folder/"));
  EXPECT_TRUE(FolderExists(folder.Path()));
  EXPECT_FALSE(FolderExists(folder / "a.txt"));
  EXPECT_FALSE(FolderExists(folder / "missing"));
  EXPECT_FALSE(FolderExists(""));
}

TEST(AddSlashTest, AddsOneSeparatorOnlyWhenMissing) {
  EXPECT_EQ(AddSlash("C:/x/"), "C:/x/");
  EXPECT_EQ(AddSlash("C:\\x\\"), "C:\\x\\");
  EXPECT_EQ(AddSlash("/home/user/roms/"), "/home/user/roms/");
  const std::string separator(1, static_cast<char>(fs::path::preferred_separator));
  EXPECT_EQ(AddSlash("/home/user/roms"), "/home/user/roms" + separator);
  EXPECT_EQ(AddSlash("roms"), "roms" + separator);
}

TEST_F(FileServicesTest, MakeFolderMakesOneLevel) {
  EXPECT_TRUE(MakeFolder(folder / "new"));
  EXPECT_TRUE(FolderExists(folder / "new"));
  EXPECT_TRUE(MakeFolder(folder / "with slash/"));
  EXPECT_TRUE(FolderExists(folder / "with slash"));
  EXPECT_TRUE(MakeFolder(folder / "with backslash\\"));
  EXPECT_TRUE(FolderExists(folder / "with backslash"));
}

TEST_F(FileServicesTest, MakeFolderFailsWhenItExists) {
  ASSERT_TRUE(MakeFolder(folder / "new"));
  EXPECT_FALSE(MakeFolder(folder / "new"));
  EXPECT_FALSE(MakeFolder(folder / "new/"));
  WriteFile(folder / "file", "x");
  EXPECT_FALSE(MakeFolder(folder / "file"));
}

TEST_F(FileServicesTest, MakeFolderIsNotRecursive) {
  EXPECT_FALSE(MakeFolder(folder / "a/b/"));
  EXPECT_FALSE(fs::exists(folder / "a"));
  EXPECT_TRUE(FolderEntries(folder.Path()).empty());
}

TEST_F(FileServicesTest, KillFileDeletesOneFile) {
  WriteFile(folder / "a b.txt", "x");
  EXPECT_TRUE(KillFile(folder / "a b.txt"));
  EXPECT_FALSE(fs::exists(folder / "a b.txt"));
  EXPECT_FALSE(KillFile(folder / "a b.txt"));
  EXPECT_FALSE(KillFile(folder / "missing/x.txt"));
}

TEST_F(FileServicesTest, KillFileLeavesFolders) {
  fs::create_directory(folder / "sub");
  EXPECT_FALSE(KillFile(folder / "sub"));
  EXPECT_TRUE(FolderExists(folder / "sub"));
}

TEST_F(FileServicesTest, KillFileTakesWildcards) {
  fs::create_directory(folder / "my tmp");
  const std::string sub = folder / "my tmp/";
  for (const char* name : {"a.tmp", "b.tmp", "c.txt", "f1.dat", "f2.dat", "f10.dat"}) {
    WriteFile(sub + name, "x");
  }
  fs::create_directory(sub + "d.tmp");  // a folder is no file to delete
  EXPECT_TRUE(KillFile(sub + "*.tmp"));
  EXPECT_EQ(FolderEntries(sub),
            (std::vector<std::string>{"c.txt", "d.tmp", "f1.dat", "f10.dat", "f2.dat"}));
  EXPECT_TRUE(KillFile(sub + "f?.dat"));
  EXPECT_EQ(FolderEntries(sub), (std::vector<std::string>{"c.txt", "d.tmp", "f10.dat"}));
  EXPECT_FALSE(KillFile(sub + "*.zip"));
  EXPECT_EQ(FolderEntries(sub).size(), 3u);
}

TEST_F(FileServicesTest, KillQuietSaysNothing) {
  WriteFile(folder / "a.txt", "x");
  KillQuiet(folder / "a.txt");
  EXPECT_FALSE(fs::exists(folder / "a.txt"));
  KillQuiet(folder / "a.txt");
  KillQuiet(folder / "missing/*.txt");
  SUCCEED();
}

TEST_F(FileServicesTest, RenameFile) {
  WriteFile(folder / "old.txt", "content");
  fs::create_directory(folder / "sub");
  EXPECT_TRUE(RenameFile(folder / "old.txt", folder / "new name.txt"));
  EXPECT_FALSE(fs::exists(folder / "old.txt"));
  EXPECT_EQ(ReadFile(folder / "new name.txt"), "content");
  EXPECT_TRUE(RenameFile(folder / "new name.txt", folder / "sub/moved.txt"));
  EXPECT_EQ(ReadFile(folder / "sub/moved.txt"), "content");
  EXPECT_TRUE(RenameFile(folder / "sub", folder / "renamed folder"));
  EXPECT_TRUE(FileExists(folder / "renamed folder/moved.txt"));
}

TEST_F(FileServicesTest, RenameFileFailsSilently) {
  EXPECT_FALSE(RenameFile(folder / "missing.txt", folder / "x.txt"));
  WriteFile(folder / "a.txt", "x");
  EXPECT_FALSE(RenameFile(folder / "a.txt", folder / "no folder/a.txt"));
  EXPECT_TRUE(FileExists(folder / "a.txt"));
}

TEST_F(FileServicesTest, ShellDeletePermanentlyRemovesFilesAndTrees) {
  WriteFile(folder / "a.txt", "x");
  fs::create_directories(folder / "tree/sub/deeper");
  WriteFile(folder / "tree/sub/deeper/b.txt", "y");
  WriteFile(folder / "tree/c.txt", "z");
  ShellDelete(folder / "a.txt", true);
  ShellDelete(folder / "tree", true);
  EXPECT_TRUE(FolderEntries(folder.Path()).empty());
  ShellDelete(folder / "missing", true);  // failures are ignored
}

TEST_F(FileServicesTest, ShellDeleteToTheTrash) {
  ScopedTrash trash(folder / "home/");
  WriteFile(folder / "a.txt", "x");
  fs::create_directories(folder / "tree/sub");
  WriteFile(folder / "tree/sub/b.txt", "y");
  ShellDelete(folder / "a.txt", false);
  ShellDelete(folder / "tree", false);
  EXPECT_FALSE(fs::exists(folder / "a.txt"));
  EXPECT_FALSE(fs::exists(folder / "tree"));
  // Where there is a trash, that is where they went.
  EXPECT_EQ(ReadFile(trash.Files() + "a.txt"), "x");
  EXPECT_EQ(ReadFile(trash.Files() + "tree/sub/b.txt"), "y");
}

// On an account whose data folder doesn't exist yet, the trash is made there, and nothing lands
// in the current directory.
TEST_F(FileServicesTest, ShellDeleteMakesTheTrashOfANewAccount) {
  ScopedTrash trash(folder / "home/", false);
  fs::create_directories(folder / "cwd");
  const QString oldCurrent = QDir::currentPath();
  ASSERT_TRUE(QDir::setCurrent(QString::fromStdString(folder / "cwd")));
  WriteFile(folder / "a.txt", "x");
  ShellDelete(folder / "a.txt", false);
  QDir::setCurrent(oldCurrent);
  EXPECT_FALSE(fs::exists(folder / "a.txt"));
  EXPECT_EQ(ReadFile(trash.Files() + "a.txt"), "x");
  EXPECT_TRUE(fs::is_empty(folder / "cwd"));
}

TEST_F(FileServicesTest, ShellCopyCopiesAFileIntoAFolder) {
  WriteFile(folder / "a.txt", "content");
  fs::create_directory(folder / "dest");
  EXPECT_TRUE(ShellCopy(folder / "a.txt", folder / "dest/", 0, true, false));
  EXPECT_EQ(ReadFile(folder / "dest/a.txt"), "content");
  EXPECT_EQ(ReadFile(folder / "a.txt"), "content");
  // Operation 2 is the copy too.
  WriteFile(folder / "b.txt", "bee");
  EXPECT_TRUE(ShellCopy(folder / "b.txt", folder / "dest", 2, true, false));
  EXPECT_EQ(ReadFile(folder / "dest/b.txt"), "bee");
  EXPECT_TRUE(FileExists(folder / "b.txt"));
}

TEST_F(FileServicesTest, ShellCopyReplacesAnEarlierCopy) {
  WriteFile(folder / "a.txt", "new");
  fs::create_directory(folder / "dest");
  WriteFile(folder / "dest/a.txt", "old");
  EXPECT_TRUE(ShellCopy(folder / "a.txt", folder / "dest/", 0, true, false));
  EXPECT_EQ(ReadFile(folder / "dest/a.txt"), "new");
}

TEST_F(FileServicesTest, ShellCopyCopiesAFolderTree) {
  fs::create_directories(folder / "my roms/sub");
  WriteFile(folder / "my roms/sub/x.bin", "x");
  WriteFile(folder / "my roms/y.bin", "y");
  fs::create_directory(folder / "dest");
  // A final separator of the source is cut: the folder itself is copied, not only its content.
  EXPECT_TRUE(ShellCopy(folder / "my roms/", folder / "dest/", 0, true, true));
  EXPECT_EQ(ReadFile(folder / "dest/my roms/sub/x.bin"), "x");
  EXPECT_EQ(ReadFile(folder / "dest/my roms/y.bin"), "y");
  EXPECT_TRUE(FileExists(folder / "my roms/y.bin"));
}

TEST_F(FileServicesTest, ShellCopyMoves) {
  WriteFile(folder / "a.txt", "content");
  fs::create_directories(folder / "tree/sub");
  WriteFile(folder / "tree/sub/b.txt", "bee");
  fs::create_directory(folder / "dest");
  EXPECT_TRUE(ShellCopy(folder / "a.txt", folder / "dest/", 1, true, false));
  EXPECT_TRUE(ShellCopy(folder / "tree", folder / "dest/", 1, true, true));
  EXPECT_FALSE(fs::exists(folder / "a.txt"));
  EXPECT_FALSE(fs::exists(folder / "tree"));
  EXPECT_EQ(ReadFile(folder / "dest/a.txt"), "content");
  EXPECT_EQ(ReadFile(folder / "dest/tree/sub/b.txt"), "bee");
}

TEST_F(FileServicesTest, ShellCopyChecksTheKindOfTheSourceWhenItMustExist) {
  WriteFile(folder / "a.txt", "content");
  fs::create_directory(folder / "tree");
  fs::create_directory(folder / "dest");
  EXPECT_FALSE(ShellCopy(folder / "a.txt", folder / "dest/", 0, true, true));
  EXPECT_FALSE(ShellCopy(folder / "tree", folder / "dest/", 0, true, false));
  EXPECT_FALSE(ShellCopy(folder / "missing.txt", folder / "dest/", 0, true, false));
  EXPECT_FALSE(ShellCopy(folder / "missing", folder / "dest/", 1, true, true));
  EXPECT_TRUE(FolderEntries(folder / "dest").empty());
  EXPECT_TRUE(FileExists(folder / "a.txt"));
}

TEST_F(FileServicesTest, ShellCopyOfAMissingSourceThatNeedNotExistIsTrue) {
  fs::create_directory(folder / "dest");
  EXPECT_TRUE(ShellCopy(folder / "missing.txt", folder / "dest/", 0, false, false));
  EXPECT_TRUE(ShellCopy(folder / "missing", folder / "dest/", 1, false, true));
  EXPECT_TRUE(FolderEntries(folder / "dest").empty());
  // And a kind that doesn't match goes ahead when it need not be checked.
  WriteFile(folder / "a.txt", "content");
  EXPECT_TRUE(ShellCopy(folder / "a.txt", folder / "dest/", 0, false, true));
  EXPECT_EQ(ReadFile(folder / "dest/a.txt"), "content");
}

TEST(TempFolderPathTest, IsAFolderWithAFinalSeparator) {
  const std::string path = GetTempFolderPath();
  ASSERT_FALSE(path.empty());
  EXPECT_TRUE(path.ends_with('/') || path.ends_with('\\')) << path;
  EXPECT_TRUE(FolderExists(path));
  EXPECT_EQ(path.find('\0'), std::string::npos);
}

TEST_F(FileServicesTest, FindFileNoCase) {
  WriteFile(folder / "Tessarin.LOG.txt", "x");
  EXPECT_EQ(FindFileNoCase(folder.Path(), "tessarin.log.txt"), folder / "Tessarin.LOG.txt");
  EXPECT_EQ(FindFileNoCase(folder.Path(), "Tessarin.LOG.txt"), folder / "Tessarin.LOG.txt");
  EXPECT_EQ(FindFileNoCase(folder.Path(), "German.lng"), folder / "German.lng");
  EXPECT_EQ(FindFileNoCase(folder / "missing/", "a.txt"), folder / "missing/a.txt");
}

TEST_F(FileServicesTest, FindFileNoCasePrefersTheExactSpelling) {
  WriteFile(folder / "NOTES.TXT", "upper");
  WriteFile(folder / "notes.txt", "lower");
  EXPECT_EQ(FindFileNoCase(folder.Path(), "notes.txt"), folder / "notes.txt");
  EXPECT_EQ(FindFileNoCase(folder.Path(), "NOTES.TXT"), folder / "NOTES.TXT");
}

TEST_F(FileServicesTest, WriteFileAtomicallyAndReadWholeFile) {
  const std::string bytes("line\r\nbinary \0 \xff end", 20);
  const std::string path = folder / "data file.bin";
  ASSERT_TRUE(WriteFileAtomically(path, bytes));
  std::string read;
  ASSERT_TRUE(ReadWholeFile(path, read));
  EXPECT_EQ(read, bytes);
  ASSERT_TRUE(WriteFileAtomically(path, "short"));
  ASSERT_TRUE(ReadWholeFile(path, read));
  EXPECT_EQ(read, "short");
  ASSERT_TRUE(WriteFileAtomically(path, ""));
  ASSERT_TRUE(ReadWholeFile(path, read));
  EXPECT_EQ(read, "");
  EXPECT_EQ(FolderEntries(folder.Path()), std::vector<std::string>{"data file.bin"});
}

TEST_F(FileServicesTest, WriteFileAtomicallyReplacesTheFileAsAWhole) {
  const std::string path = folder / "index";
  WriteFile(path, "old");
  fs::create_hard_link(path, folder / "link");
  ASSERT_TRUE(WriteFileAtomically(path, "new"));
  EXPECT_EQ(ReadFile(path), "new");
  EXPECT_EQ(ReadFile(folder / "link"), "old");  // the old file was replaced, not rewritten
}

TEST_F(FileServicesTest, WriteAndReadFailures) {
  EXPECT_FALSE(WriteFileAtomically(folder / "missing/x.txt", "x"));
  std::string read = "untouched";
  EXPECT_FALSE(ReadWholeFile(folder / "missing.txt", read));
  EXPECT_TRUE(FolderEntries(folder.Path()).empty());
}

#ifndef _WIN32
// A shell script with the executable bit.
void WriteScript(const std::string& path, const std::string& body) {
  WriteFile(path, "#!/bin/sh\n" + body + "\n");
  fs::permissions(path, fs::perms::owner_all | fs::perms::group_read | fs::perms::group_exec,
                  fs::perm_options::replace);
}

TEST_F(FileServicesTest, RunAndWaitGivesTheExitCode) {
  fs::create_directory(folder / "a folder with blanks");
  const std::string script = folder / "a folder with blanks/exit three.sh";
  WriteScript(script, "exit 3");
  EXPECT_EQ(RunAndWait(script, {}), 3);
  EXPECT_EQ(RunAndWait("/bin/sh", {script}), 3);
}

TEST_F(FileServicesTest, RunAndWaitOfAProgramThatEndsAtOnce) {
  WriteScript(folder / "quick.sh", "exit 0");
  EXPECT_EQ(RunAndWait(folder / "quick.sh", {}), 0);
}

TEST_F(FileServicesTest, RunAndWaitWaitsForTheEnd) {
  WriteScript(folder / "slow.sh", "sleep 0.4\necho done > \"$1\"\nexit 5");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(RunAndWait(folder / "slow.sh", {folder / "flag"}), 5);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(350));
  EXPECT_EQ(ReadFile(folder / "flag"), "done\n");
}

TEST_F(FileServicesTest, RunAndWaitEndsTheProgramOnACancel) {
  // One program ends when asked; the other ignores the request and is killed after the grace.
  WriteScript(folder / "polite.sh", "exec sleep 30");
  WriteScript(folder / "stubborn.sh", "trap '' TERM\nexec sleep 30");
  for (const char* name : {"polite.sh", "stubborn.sh"}) {
    std::atomic<bool> cancel{false};
    RunOptions options;
    options.cancel = &cancel;
    options.cancelGraceMilliseconds = 300;
    std::thread canceller([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
      cancel = true;
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(RunAndWait(folder / name, {}, options), kRunCancelled) << name;
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << name;
  }
  // Without a cancel the flag changes nothing.
  std::atomic<bool> never{false};
  RunOptions options;
  options.cancel = &never;
  WriteScript(folder / "five.sh", "sleep 0.2\nexit 5");
  EXPECT_EQ(RunAndWait(folder / "five.sh", {}, options), 5);
}

TEST_F(FileServicesTest, RunAndWaitOfAMissingProgramIsNegative) {
  const int result = RunAndWait(folder / "no such program", {});
  EXPECT_LT(result, 0);
  EXPECT_EQ(result, kRunStartFailure + 53);
  WriteFile(folder / "not executable", "exit 0\n");
  EXPECT_LT(RunAndWait(folder / "not executable", {}), 0);
}

TEST_F(FileServicesTest, RunAndWaitSendsStandardOutputToAFile) {
  fs::create_directory(folder / "out folder");
  const std::string out = folder / "out folder/list xml.txt";
  WriteFile(out, "an older and much longer content that must go");
  WriteScript(folder / "print.sh", "for a in \"$@\"; do echo \"[$a]\"; done");
  RunOptions options;
  options.standardOutputFile = out;
  EXPECT_EQ(RunAndWait(folder / "print.sh", {"-listxml", "two words", ""}, options), 0);
  EXPECT_EQ(ReadFile(out), "[-listxml]\n[two words]\n[]\n");
}

TEST_F(FileServicesTest, RunAndWaitInAWorkingFolder) {
  fs::create_directory(folder / "work here");
  WriteScript(folder / "where.sh", "pwd -P");
  RunOptions options;
  options.standardOutputFile = folder / "where.txt";
  options.workingFolder = folder / "work here";
  EXPECT_EQ(RunAndWait(folder / "where.sh", {}, options), 0);
  EXPECT_EQ(ReadFile(folder / "where.txt"), fs::canonical(folder / "work here").string() + "\n");
}

TEST_F(FileServicesTest, RunAndWaitTakesAnyStyle) {
  WriteScript(folder / "exit4.sh", "exit 4");
  RunOptions options;
  options.style = 7;
  EXPECT_EQ(RunAndWait(folder / "exit4.sh", {}, options), 4);
  options.style = -1;
  EXPECT_EQ(RunAndWait(folder / "exit4.sh", {}, options), 4);
}
#endif

TEST(NormaliseWindowStyleTest, OutOfRangeMeansSix) {
  EXPECT_EQ(NormaliseWindowStyle(7), 6);
  EXPECT_EQ(NormaliseWindowStyle(-1), 6);
  EXPECT_EQ(NormaliseWindowStyle(1000), 6);
  for (int style = 0; style <= 6; ++style) EXPECT_EQ(NormaliseWindowStyle(style), style);
}

TEST(SortStringsTest, SortsByByteValueUpperCaseFirst) {
  std::vector<std::string> table = {"unused", "b",  "B",  "a", "A",         "_",  "1",
                                    "ab",     "Ab", "aB", "",  "\xe9t\xe9", "zz", "a"};
  SortStrings(table, 1, static_cast<int>(table.size()) - 1);
  const std::vector<std::string> expected = {"unused", "",  "1",  "A",  "Ab", "B",  "_",
                                             "a",      "a", "aB", "ab", "b",  "zz", "\xe9t\xe9"};
  EXPECT_EQ(table, expected);
}

TEST(SortStringsTest, SortsOnlyTheRangeGiven) {
  std::vector<std::string> table = {"z", "d", "c", "b", "a", "y"};
  SortStrings(table, 2, 4);
  EXPECT_EQ(table, (std::vector<std::string>{"z", "d", "a", "b", "c", "y"}));
}

TEST(SortStringsTest, EmptyAndSingleRangesAreLeftAlone) {
  std::vector<std::string> table = {"b", "a"};
  SortStrings(table, 1, 1);
  SortStrings(table, 1, 0);
  EXPECT_EQ(table, (std::vector<std::string>{"b", "a"}));
  std::vector<std::string> empty;
  SortStrings(empty, 0, -1);
  EXPECT_TRUE(empty.empty());
}

std::vector<std::string> RomNames(int count) {
  std::vector<std::string> names;
  names.reserve(count);
  for (int i = 0; i < count; ++i) {
    char name[16];
    std::snprintf(name, sizeof name, "rom%07d", i);
    names.emplace_back(name);
  }
  return names;
}

TEST(SortStringsTest, BigTablesSortedAlreadyOrBackwardsOrFullOfRepeats) {
  const int count = 200000;
  const std::vector<std::string> sorted = RomNames(count);
  const auto start = std::chrono::steady_clock::now();

  std::vector<std::string> table = sorted;
  SortStrings(table, 0, count - 1);
  EXPECT_EQ(table, sorted);

  std::vector<std::string> backwards(sorted.rbegin(), sorted.rend());
  SortStrings(backwards, 0, count - 1);
  EXPECT_EQ(backwards, sorted);

  std::vector<std::string> repeats;
  for (int i = 0; i < count; ++i) repeats.push_back(i % 3 == 0 ? "same" : "Same");
  SortStrings(repeats, 0, count - 1);
  EXPECT_TRUE(std::is_sorted(repeats.begin(), repeats.end()));
  EXPECT_EQ(std::count(repeats.begin(), repeats.end(), "same"), (count + 2) / 3);

  std::vector<std::string> shuffled = sorted;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(42));
  SortStrings(shuffled, 0, count - 1);
  EXPECT_EQ(shuffled, sorted);

  // Each of these is n log n work; a quadratic sort would take hours.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(FindNthOccurrenceTest, CountsEachHitBehindTheFormerOne) {
  EXPECT_EQ(FindNthOccurrence("abcabcabc", "bc", 1), 2);
  EXPECT_EQ(FindNthOccurrence("abcabcabc", "bc", 2), 5);
  EXPECT_EQ(FindNthOccurrence("abcabcabc", "bc", 3), 8);
  EXPECT_EQ(FindNthOccurrence("abcabcabc", "bc", 4), 0);
  EXPECT_EQ(FindNthOccurrence("a;b;c;d", ";", 3), 6);
  EXPECT_EQ(FindNthOccurrence("abc", "x", 1), 0);
  EXPECT_EQ(FindNthOccurrence("", "x", 1), 0);
  EXPECT_EQ(FindNthOccurrence("abc", "abc", 1), 1);
  EXPECT_EQ(FindNthOccurrence("ABC", "b", 1), 0);  // case matters
}

}  // namespace
}  // namespace tessarin
