#include <gtest/gtest.h>

#include <random>

#include "archive/zipreader.h"
#include "archive/zipworkerinstall.h"
#include "ziptestutil.h"
#include "zipworker/myzipjob.h"
#include "zipworker/zipclass.h"

namespace tessarin {
namespace {

using testing::ListTree;
using testing::Quote;
using testing::ReadAll;
using testing::Shell;
using testing::TempFolder;
using testing::WriteAll;
namespace fs = std::filesystem;

// Checks a zip with Debian's unzip and with Python's zipfile; both must accept it.
void ExpectSoundZip(const std::string& path) {
  EXPECT_EQ(Shell("unzip -tqq " + Quote(path) + " > /dev/null"), 0) << path;
  EXPECT_EQ(Shell("python3 -c " +
                  Quote("import sys,zipfile; z=zipfile.ZipFile(sys.argv[1]); "
                        "sys.exit(1 if z.testzip() is not None else 0)") +
                  " " + Quote(path)),
            0)
      << path;
}

std::string RandomBytes(std::size_t size) {
  std::mt19937 gen(42);
  std::string out(size, '\0');
  for (char& c : out) c = static_cast<char>(gen() & 0xff);
  return out;
}

// A rom folder: text that deflates, random bytes that don't, an empty file, a subfolder.
void MakeTree(const fs::path& root) {
  std::string text;
  for (int i = 0; i < 500; ++i) text += "rom data line " + std::to_string(i) + "\n";
  WriteAll(root / "program.txt", text);
  WriteAll(root / "noise.bin", RandomBytes(5000));
  WriteAll(root / "empty.dat", "");
  WriteAll(root / "sub/deeper/chip.rom", text.substr(0, 700));
  WriteAll(root / "sub/Upper.TXT", "upper");
}

TEST(ZipWorkerJob, ParseJob) {
  std::string zip, fileSpec;
  ASSERT_TRUE(myzip::ParseJob("\"C:\\a.zip,C:\\b\\*.*\"", zip, fileSpec));
  EXPECT_EQ(zip, "C:\\a.zip");
  EXPECT_EQ(fileSpec, "C:\\b\\*.*");
  ASSERT_TRUE(myzip::ParseJob("  | \"/x/out.zip > /x/in/*.* ", zip, fileSpec));
  EXPECT_EQ(zip, "/x/out.zip");
  EXPECT_EQ(fileSpec, "/x/in/*.*");
  // The main program's own line: the closing quote is unbalanced on purpose.
  ASSERT_TRUE(myzip::ParseJob("/d/game.zip,/s/game/*.*\"", zip, fileSpec));
  EXPECT_EQ(zip, "/d/game.zip");
  EXPECT_EQ(fileSpec, "/s/game/*.*");
  // The first comma wins, so a folder with a comma breaks the job, unless '>' is used.
  ASSERT_TRUE(myzip::ParseJob("/d/a,b.zip,/s/a,b/*.*", zip, fileSpec));
  EXPECT_EQ(zip, "/d/a");
  ASSERT_TRUE(myzip::ParseJob("/d/a,b.zip>/s/a,b/*.*", zip, fileSpec));
  EXPECT_EQ(zip, "/d/a,b.zip");
  EXPECT_EQ(fileSpec, "/s/a,b/*.*");
  EXPECT_FALSE(myzip::ParseJob("/d/a.zip /s/*.*", zip, fileSpec));
}

TEST(ZipWorkerJob, Patterns) {
  EXPECT_TRUE(myzip::MatchesPattern("noextension", "*.*"));
  EXPECT_TRUE(myzip::MatchesPattern("Pic.PNG", "*.png"));
  EXPECT_FALSE(myzip::MatchesPattern("pic.png.txt", "*.png"));
  EXPECT_TRUE(myzip::MatchesPattern("a1.rom", "a?.rom"));
  EXPECT_FALSE(myzip::MatchesPattern("a12.rom", "a?.rom"));
  EXPECT_TRUE(myzip::MatchesPattern("exact.txt", "EXACT.txt"));
}

TEST(ZipClassTest, FileAddWalksSubfoldersInOrder) {
  TempFolder tmp("zc-add");
  MakeTree(tmp.Path() / "game");
  myzip::ZipClass zip;
  EXPECT_EQ(zip.FileAdd(tmp.Text() + "game/*.*", 0, true), 5);
  std::vector<std::string> names;
  for (const auto& f : zip.Files) names.push_back(f.FileName);
  EXPECT_EQ(names, (std::vector<std::string>{"empty.dat", "noise.bin", "program.txt",
                                             "sub/Upper.TXT", "sub/deeper/chip.rom"}));
  myzip::ZipClass txt;
  EXPECT_EQ(txt.FileAdd(tmp.Text() + "game/*.txt", 0, true), 2);
  myzip::ZipClass flat;
  EXPECT_EQ(flat.FileAdd(tmp.Text() + "game/*.*", 0, false), 3);
  EXPECT_TRUE(flat.FileDel(1));
  EXPECT_EQ(flat.FileCount(), 2);
  EXPECT_FALSE(flat.FileDel(5));
  myzip::ZipClass missing;
  EXPECT_EQ(missing.FileAdd(tmp.Text() + "nothere/*.*", 0, true), 0);
}

TEST(ZipClassTest, WrittenZipIsStandard) {
  TempFolder tmp("zc-write");
  MakeTree(tmp.Path() / "game");
  myzip::ZipClass zip;
  zip.FileAdd(tmp.Text() + "game/*.*", 0, true);
  zip.Comment = "made by the worker";
  ASSERT_TRUE(zip.WriteZip(tmp / "game.zip"));
  ExpectSoundZip(tmp / "game.zip");
  EXPECT_EQ(zip.SizeUncompressed(),
            ReadAll(tmp.Path() / "game/program.txt").size() + 5000 + 700 + 5);
  EXPECT_LT(zip.SizeCompressed(), zip.SizeUncompressed());

  // Debian's unzip gives back the very same tree.
  ASSERT_EQ(Shell("cd " + Quote(tmp.Text()) + " && unzip -qq game.zip -d unzipped"), 0);
  EXPECT_EQ(ListTree(tmp.Path() / "unzipped"), ListTree(tmp.Path() / "game"));
  for (const std::string& name : ListTree(tmp.Path() / "game")) {
    EXPECT_EQ(ReadAll(tmp.Path() / "unzipped" / name), ReadAll(tmp.Path() / "game" / name));
  }

  // Our reader too; noise is stored, text deflated.
  ZipExtractionClass reader;
  ASSERT_TRUE(reader.ZipOpen(tmp / "game.zip"));
  EXPECT_EQ(reader.ZipComment(), "made by the worker");
  EXPECT_EQ(reader.FileCount(), 4);  // the empty file has nothing to write
  EXPECT_EQ(reader.Entry(reader.FindEntry("noise.bin")).method, 0);
  EXPECT_EQ(reader.Entry(reader.FindEntry("program.txt")).method, 8);
  std::string content;
  ASSERT_TRUE(reader.ExtractToMemory(reader.FindEntry("sub\\deeper\\chip.rom"), content));
  EXPECT_EQ(content, ReadAll(tmp.Path() / "game/sub/deeper/chip.rom"));
  const ZipDateTime when = reader.FileDateAndTime(1);
  EXPECT_GE(when.year, 2020);
}

TEST(ZipClassTest, ReplacesAnOldZipAndLeavesNoneOnFailure) {
  TempFolder tmp("zc-replace");
  WriteAll(tmp.Path() / "old.zip", std::string(100000, 'o'));
  WriteAll(tmp.Path() / "in/a.txt", "aaaa");
  myzip::ZipClass zip;
  zip.FileAdd(tmp.Text() + "in/*.*", 0, true);
  ASSERT_TRUE(zip.WriteZip(tmp / "old.zip"));
  EXPECT_LT(fs::file_size(tmp.Path() / "old.zip"), 1000u);
  ExpectSoundZip(tmp / "old.zip");
  // A source that vanished: no zip is left behind.
  fs::remove(tmp.Path() / "in/a.txt");
  EXPECT_FALSE(zip.WriteZip(tmp / "gone.zip"));
  EXPECT_FALSE(fs::exists(tmp.Path() / "gone.zip"));
}

TEST(ZipClassTest, AZipInsideItsOwnFolderIsLeftOut) {
  TempFolder tmp("zc-self");
  WriteAll(tmp.Path() / "game/a.rom", "aaaa");
  WriteAll(tmp.Path() / "game/game.zip", "an older zip");
  myzip::ZipClass zip;
  EXPECT_EQ(zip.FileAdd(tmp.Text() + "game/*.*", 0, true), 2);
  ASSERT_TRUE(zip.WriteZip(tmp / "game/game.zip"));
  EXPECT_EQ(zip.FileCount(), 1);
  ExpectSoundZip(tmp / "game/game.zip");
  ZipExtractionClass reader;
  ASSERT_TRUE(reader.ZipOpen(tmp / "game/game.zip"));
  EXPECT_EQ(reader.FileCount(), 1);
  EXPECT_EQ(reader.filename(1), "a.rom");
}

TEST(ZipClassTest, MoreThan65535FilesMakeAZip64Archive) {
  TempFolder tmp("zc-many");
  const fs::path folder = tmp.Path() / "many";
  fs::create_directories(folder);
  const int count = 65600;
  for (int i = 0; i < count; ++i) {
    std::ofstream(folder / ("f" + std::to_string(i))) << i;
  }
  myzip::ZipClass zip;
  ASSERT_EQ(zip.FileAdd(tmp.Text() + "many/*.*", 0, false), count);
  ASSERT_TRUE(zip.WriteZip(tmp / "many.zip"));
  ExpectSoundZip(tmp / "many.zip");
  ZipExtractionClass reader;
  ASSERT_TRUE(reader.ZipOpen(tmp / "many.zip"));
  EXPECT_EQ(reader.FileCount(), count);
  std::string content;
  ASSERT_TRUE(reader.ExtractToMemory(reader.FindEntry("f65599"), content));
  EXPECT_EQ(content, "65599");
}

// --- The worker program --------------------------------------------------------------------

class WorkerProgram : public ::testing::Test {
 protected:
  WorkerProgram() : tmp("worker") {
    fs::create_directories(tmp.Path() / "app");
    EXPECT_TRUE(ExtractZipWorker(tmp.Text() + "app/"));
    worker = FindZipWorker(tmp.Text() + "app/");
    MakeTree(tmp.Path() / "roms/game");
  }
  int Run(const std::string& arguments) { return Shell(Quote(worker) + " " + arguments); }
  std::string Feedback() { return ReadAll(tmp.Path() / "app" / myzip::kFeedbackFile); }

  TempFolder tmp;
  std::string worker;
};

TEST_F(WorkerProgram, JobOnTheCommandLine) {
  ASSERT_FALSE(worker.empty());
  const std::string job = ZipWorkerJob(tmp.Text() + "out/", tmp.Text() + "roms/", "game");
  EXPECT_EQ(job, tmp.Text() + "out/game.zip," + tmp.Text() + "roms/game/*.*\"");
  fs::create_directories(tmp.Path() / "out");
  WriteAll(tmp.Path() / "app" / myzip::kFeedbackFile, "stale");
  EXPECT_EQ(Run(Quote(job)), 0);
  ExpectSoundZip(tmp / "out/game.zip");
  // A job from the command line gets no answer, and an old answer is gone.
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kFeedbackFile));
}

TEST_F(WorkerProgram, JobFromTheTodoFile) {
  WriteAll(tmp.Path() / "app" / myzip::kTodoFile,
           "  |\"" + tmp.Text() + "todo.zip>" + tmp.Text() + "roms/game/*.*\"\r\nignored\r\n");
  EXPECT_EQ(Run(""), 0);
  EXPECT_EQ(Feedback(), "OK - 5 files.\r\n");
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kTodoFile));
  ExpectSoundZip(tmp / "todo.zip");
}

TEST_F(WorkerProgram, BadJobFromTheTodoFile) {
  WriteAll(tmp.Path() / "app" / myzip::kTodoFile, tmp.Text() + "x.zip " + tmp.Text() + "roms\r\n");
  EXPECT_EQ(Run(""), 1);
  EXPECT_EQ(Feedback(), "CANCEL - Zip error.\r\n");
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kTodoFile));
  EXPECT_FALSE(fs::exists(tmp.Path() / "x.zip"));
  // A job that finds no file makes no zip either.
  WriteAll(tmp.Path() / "app" / myzip::kTodoFile,
           tmp.Text() + "y.zip," + tmp.Text() + "roms/game/*.none\r\n");
  EXPECT_EQ(Run(""), 1);
  EXPECT_EQ(Feedback(), "CANCEL - Zip error.\r\n");
  EXPECT_FALSE(fs::exists(tmp.Path() / "y.zip"));
}

TEST_F(WorkerProgram, NothingToDo) {
  EXPECT_EQ(Run(""), 1);
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kFeedbackFile));
  WriteAll(tmp.Path() / "app" / myzip::kTodoFile, "   \r\n");
  EXPECT_EQ(Run(""), 1);
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kFeedbackFile));
  EXPECT_FALSE(fs::exists(tmp.Path() / "app" / myzip::kTodoFile));
}

TEST(ZipWorkerInstall, CopiesOnlyWhenMissing) {
  TempFolder tmp("worker-install");
  fs::create_directories(tmp.Path() / "app");
  WriteAll(tmp.Path() / "source/MyZip", "#!/bin/sh\n");
  // No source at all: nothing to copy.
  EXPECT_FALSE(ExtractZipWorker(tmp.Text() + "app/", {tmp.Text() + "nothere/MyZip"}));
  EXPECT_EQ(FindZipWorker(tmp.Text() + "app/"), "");
  EXPECT_TRUE(ExtractZipWorker(tmp.Text() + "app/",
                               {tmp.Text() + "nothere/MyZip", tmp.Text() + "source/MyZip"}));
  const std::string installed = FindZipWorker(tmp.Text() + "app/");
  ASSERT_FALSE(installed.empty());
  EXPECT_NE(fs::status(installed).permissions() & fs::perms::owner_exec, fs::perms::none);
  // A worker of any case is there already: it is left alone.
  fs::remove(installed);
  WriteAll(tmp.Path() / "app/myzip", "user's own");
  EXPECT_TRUE(ExtractZipWorker(tmp.Text() + "app/", {tmp.Text() + "source/MyZip"}));
  EXPECT_EQ(ReadAll(tmp.Path() / "app/myzip"), "user's own");
  EXPECT_EQ(FindZipWorker(tmp.Text() + "app/"), (tmp.Path() / "app/myzip").string());
}

}  // namespace
}  // namespace tessarin
