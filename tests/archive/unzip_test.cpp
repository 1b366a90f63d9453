#include "archive/unzip.h"

#include <gtest/gtest.h>

#include "core/log.h"
#include "core/work.h"
#include "ziptestutil.h"

namespace tessarin {
namespace {

using testing::ListTree;
using testing::RawZip;
using testing::ReadAll;
using testing::TempFolder;
namespace fs = std::filesystem;

class UnzipFrontTest : public ::testing::Test {
 protected:
  UnzipFrontTest() : tmp("unzip"), log(tmp.Text() + "app/") {
    fs::create_directories(tmp.Path() / "app");
    RawZip raw;
    raw.Add("Docs/Readme.TXT", std::string(1000, 'r'), true);
    raw.Add("snap/pacman.png", "PNGDATA", false);
    raw.Add("snap/galaga.PNG", "PNG2", true);
    raw.Add("notes.txt", "notes", false);
    raw.comment = "pack comment";
    raw.Write(tmp / "pack.zip");
    env.appFolder = tmp.Text() + "app/";
    env.unzipError = &unzipError;
    env.log = &log;
    env.work = &work;
  }

  TempFolder tmp;
  Log log;
  Work work;
  std::string unzipError;
  UnzipEnvironment env;
};

TEST_F(UnzipFrontTest, UnzipAllKeepsFoldersAndCutsTheFinalSeparator) {
  EXPECT_TRUE(UnzipAll(env, tmp / "pack.zip", tmp.Text() + "out/", true));
  EXPECT_EQ(unzipError, "");
  EXPECT_EQ(ListTree(tmp.Path() / "out"),
            (std::vector<std::string>{"Docs/Readme.TXT", "notes.txt", "snap/galaga.PNG",
                                      "snap/pacman.png"}));
  // Hidden: the work's progress and status are the caller's, untouched.
  EXPECT_EQ(work.ProgressMax.load(), 0);
  EXPECT_EQ(work.Status(), "");
}

TEST_F(UnzipFrontTest, ShownRunReportsProgressToTheWork) {
  EXPECT_TRUE(UnzipAll(env, tmp / "pack.zip", tmp / "out", false));
  EXPECT_EQ(work.ProgressMax.load(), 100);
  EXPECT_EQ(work.ProgressValue.load(), 100);
  EXPECT_EQ(work.Status(), "Extraction terminée");
}

TEST_F(UnzipFrontTest, EmptyDestinationIsTheApplicationFolder) {
  EXPECT_TRUE(UnzipAll(env, tmp / "pack.zip", "", true));
  EXPECT_EQ(ReadAll(tmp.Path() / "app/notes.txt"), "notes");
}

TEST_F(UnzipFrontTest, CancelStopsTheRun) {
  work.CancelRequested = true;
  EXPECT_FALSE(UnzipAll(env, tmp / "pack.zip", tmp / "out", true));
  EXPECT_EQ(ListTree(tmp.Path() / "out").size(), 1u);
}

TEST_F(UnzipFrontTest, MissingZipLeavesTheLastErrorForTheCaller) {
  unzipError = "something older";
  EXPECT_FALSE(UnzipAll(env, tmp / "nothere.zip", tmp / "out", true));
  // The open's error 10 is replaced by the extraction's own: no zip is open.
  EXPECT_EQ(unzipError, "Erreur 3 - Il n'y a pas de fichier Zip ouvert");
}

TEST_F(UnzipFrontTest, ErrorsReplaceTheTextAndAreNotCleared) {
  RawZip raw;
  raw.Add("bad.txt", std::string(100, 'b'), true).crc ^= 1;
  raw.Add("good.txt", "g", false);
  raw.Write(tmp / "bad.zip");
  EXPECT_TRUE(UnzipAll(env, tmp / "bad.zip", tmp / "out", true));
  EXPECT_EQ(unzipError, "Erreur 5 - Erreur de checksum dans bad.txt");
  EXPECT_TRUE(UnzipAll(env, tmp / "pack.zip", tmp / "out2", true));
  EXPECT_EQ(unzipError, "Erreur 5 - Erreur de checksum dans bad.txt");
}

TEST_F(UnzipFrontTest, UnzipOneTakesTheNameWithoutRegardToCase) {
  EXPECT_TRUE(UnzipOne(env, tmp / "pack.zip", "SNAP/PACMAN.png", tmp / "one", true));
  EXPECT_EQ(ListTree(tmp.Path() / "one"), (std::vector<std::string>{"pacman.png"}));
  EXPECT_EQ(ReadAll(tmp.Path() / "one/pacman.png"), "PNGDATA");
  EXPECT_TRUE(UnzipOne(env, tmp / "pack.zip", "docs\\readme.txt", tmp / "one", true));
  EXPECT_EQ(ReadAll(tmp.Path() / "one/Readme.TXT"), std::string(1000, 'r'));
  EXPECT_FALSE(UnzipOne(env, tmp / "pack.zip", "missing.png", tmp / "one", true));
  EXPECT_EQ(unzipError, "");
}

TEST_F(UnzipFrontTest, ExtensionListCommentAndContents) {
  UnzipSession session(env, true);
  session.ZipPath = tmp / "pack.zip";
  session.DestFolder = tmp / "ext";
  session.Wanted = ".png";
  EXPECT_EQ(zLib_ExtraireExtension(session), 2);
  EXPECT_EQ(ListTree(tmp.Path() / "ext"), (std::vector<std::string>{"galaga.PNG", "pacman.png"}));
  session.Wanted = ".gif";
  EXPECT_EQ(zLib_ExtraireExtension(session), -1);

  zLib_ListerZIP(session);
  EXPECT_EQ(session.ZipListCount, 4);
  EXPECT_EQ(session.ZipList, (std::vector<std::string>{"", "Docs\\Readme.TXT", "snap\\pacman.png",
                                                       "snap\\galaga.PNG", "notes.txt"}));
  EXPECT_EQ(zLib_LireCommentaire(session), "pack comment");

  const std::string contents = zLib_LireContenu(session);
  EXPECT_NE(contents.find("snap\\pacman.png|01/01/2025 12:00:00|7 octets (compressé)|7 octets "
                          "(décompressé)| Taux = 0%\r\n"),
            std::string::npos)
      << contents;
  EXPECT_NE(contents.find("Docs\\Readme.TXT|01/01/2025 12:00:00|"), std::string::npos);
  EXPECT_NE(contents.find("|1000 octets (décompressé)| Taux = 9"), std::string::npos) << contents;
  std::size_t lines = 0;
  for (std::size_t at = contents.find("\r\n"); at != std::string::npos;
       at = contents.find("\r\n", at + 2)) {
    ++lines;
  }
  EXPECT_EQ(lines, 4u);
}

TEST_F(UnzipFrontTest, RefusedNameIsLogged) {
  RawZip raw;
  raw.Add("../../escape.txt", "x", false);
  raw.Add("fine.txt", "y", false);
  raw.Write(tmp / "evil.zip");
  EXPECT_TRUE(UnzipAll(env, tmp / "evil.zip", tmp / "dest", true));
  EXPECT_EQ(unzipError, "Erreur 7 - Le nom ..\\..\\escape.txt sort du répertoire de destination");
  EXPECT_EQ(ListTree(tmp.Path() / "dest"), (std::vector<std::string>{"fine.txt"}));
  EXPECT_FALSE(fs::exists(tmp.Path() / "escape.txt"));
  EXPECT_FALSE(fs::exists(tmp.Path().parent_path() / "escape.txt"));
  const std::string logText = ReadAll(log.LogPath());
  EXPECT_NE(logText.find("Zip entry refused, its name leads out of the destination folder: "
                         "..\\..\\escape.txt"),
            std::string::npos)
      << logText;
}

// A failure inside an unzip run is tracked under the operation's number, in the caller's log.
TEST_F(UnzipFrontTest, AFailureGoesToTheCallersLog) {
  EXPECT_FALSE(RunUnzipGuarded(env, 7101, []() -> bool { throw Failure(53, "File not found"); }));
  EXPECT_EQ(log.BugCount(), 1);
  const std::string text = ReadAll(log.LogPath());
  EXPECT_NE(text.find("TRACKING BUG NUMBER = 7101\r\n53 File not found\r\n"), std::string::npos)
      << text;
}

// Without a log of the caller's, the failure still reaches the application folder's log.
TEST_F(UnzipFrontTest, AFailureWithoutALogGoesToTheApplicationFoldersLog) {
  env.log = nullptr;
  EXPECT_FALSE(RunUnzipGuarded(env, 7102, []() -> bool { throw Failure(7, "Out of memory"); }));
  const std::string text = ReadAll(log.LogPath());
  EXPECT_NE(text.find("TRACKING BUG NUMBER = 7102\r\n7 Out of memory\r\n"), std::string::npos)
      << text;
  // A run that ends gives the operation's result and writes nothing.
  EXPECT_TRUE(RunUnzipGuarded(env, 7102, [] { return true; }));
  EXPECT_EQ(ReadAll(log.LogPath()), text);
}

}  // namespace
}  // namespace tessarin
