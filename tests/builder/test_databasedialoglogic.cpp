// The database window's rules without a window: its path pages, its lists, the download run
// against a local server, and the go-between that holds a job's messages.

#include <gtest/gtest.h>

#include <filesystem>

#include "archive/ziptestutil.h"
#include "builder/databasedialoglogic.h"
#include "builder/downloadfiles.h"
#include "buildertestsupport.h"
#include "core/fileservices.h"
#include "core/work.h"
#include "store/indexfile.h"
#include "support/routeserver.h"

namespace tessarin {
namespace {

namespace fs = std::filesystem;
using HttpFileServer = testsupport::RouteServer;
using buildertest::ReadBytes;
using buildertest::TestHome;
using buildertest::WriteBytes;

std::string ZipOf(const std::string& name, const std::string& content) {
  tessarin::testing::RawZip zip;
  zip.Add(name, content, true);
  return zip.Bytes();
}

std::vector<DownloadLine> ElevenLines() {
  std::vector<DownloadLine> lines(11);
  for (size_t i = 0; i < lines.size(); ++i) lines[i].name = "File" + std::to_string(i);
  return lines;
}

TEST(DatabaseDialogLogic, OpeningTakesDefaultsThenStoredPathsAndTheRomFolder) {
  TestHome home;
  // Stored paths win over what lies on the disk; unstored ones keep the defaults.
  home.ctx.settings.InfWrite("DataFile2", "/data/History.dat");
  home.ctx.settings.InfWrite("Datafile13", "/data/catver.ini");
  home.ctx.settings.InfWrite("RomPath", "/roms/");
  const std::string catlist = home.DataFiles() + "Catlist.ini";
  WriteBytes(catlist, "[x]\r\n");
  DatabasePaths paths;
  paths.Load(home.ctx);
  EXPECT_EQ(paths.BoxText(1), "/data/History.dat");
  EXPECT_EQ(paths.Elements()[13], "/data/catver.ini");
  EXPECT_EQ(paths.BoxText(kRomPathBox), "/roms/");
  // Element 12 comes from the application's DataFiles, the last candidate, found there.
  EXPECT_TRUE(FileExists(paths.Elements()[12]));
  EXPECT_EQ(fs::path(paths.Elements()[12]).filename().string(), "Catlist.ini");
}

TEST(DatabaseDialogLogic, UnsetRomPathGetsTheDefaultWrittenAndShown) {
  TestHome home;
  DatabasePaths paths;
  paths.Load(home.ctx);
  // The defaults write the rom folder when it is empty, and the box shows it.
  EXPECT_NE(home.ctx.settings.InfRead("RomPath"), "-1");
  EXPECT_EQ(paths.BoxText(kRomPathBox), home.ctx.settings.InfRead("RomPath"));
}

TEST(DatabaseDialogLogic, ComboShowsItsElementAndLeavingTheBoxWritesIt) {
  TestHome home;
  home.ctx.settings.InfWrite("DataFile11", "/a/Alltime.ini");
  home.ctx.settings.InfWrite("DataFile13", "/a/Catver.ini");
  DatabasePaths paths;
  paths.Load(home.ctx);
  EXPECT_EQ(paths.BoxText(kComboPathBox), "/a/Alltime.ini");
  paths.ChooseCombo(2);
  EXPECT_EQ(paths.BoxText(kComboPathBox), "/a/Catver.ini");
  paths.LeaveBox(kComboPathBox, "/b/catver.ini");
  EXPECT_EQ(paths.Elements()[13], "/b/catver.ini");
  EXPECT_EQ(paths.Elements()[11], "/a/Alltime.ini");
  paths.ChooseCombo(6);
  EXPECT_EQ(paths.BoxText(kComboPathBox), paths.Elements()[17]);
  // Outside the list nothing changes.
  paths.ChooseCombo(7);
  EXPECT_EQ(paths.ComboChoice(), 6);
  // Box 0 to 9 are elements 1 to 10.
  paths.LeaveBox(0, "/usr/games/mame");
  paths.LeaveBox(9, "/c/Controls.ini");
  EXPECT_EQ(paths.Elements()[1], "/usr/games/mame");
  EXPECT_EQ(paths.Elements()[10], "/c/Controls.ini");
  paths.Save(home.ctx);
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile1"), "/usr/games/mame");
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile13"), "/b/catver.ini");
  EXPECT_EQ(home.ctx.settings.InfRead("DataFile10"), "/c/Controls.ini");
}

TEST(DatabaseDialogLogic, RomFolderChoiceIsWrittenAtOnceWithASeparator) {
  TestHome home;
  DatabasePaths paths;
  paths.Load(home.ctx);
  paths.ChooseRomFolder(home.ctx, "/mame/roms");
  EXPECT_EQ(home.ctx.settings.InfRead("RomPath"), "/mame/roms/");
  EXPECT_EQ(paths.BoxText(kRomPathBox), "/mame/roms/");
  // A cancelled chooser changes nothing.
  paths.ChooseRomFolder(home.ctx, "");
  EXPECT_EQ(home.ctx.settings.InfRead("RomPath"), "/mame/roms/");
}

TEST(DatabaseDialogLogic, LabelsFiltersAndLists) {
  TestHome home;
  const Messages& m = home.ctx.messages;
  EXPECT_EQ(PathBoxLabel(0, m), m.Lng(83));
  EXPECT_EQ(PathBoxLabel(1, m), "Path to History.dat");
  EXPECT_EQ(PathBoxLabel(8, m), "Aspect.ini (n'est plus utilis\xC3\xA9 par Tessarin)");
  EXPECT_EQ(PathBoxLabel(9, m), "Controls.ini (n'est plus utilis\xC3\xA9 par Tessarin)");
  EXPECT_EQ(PathBoxLabel(kRomPathBox, m), m.Lng(88));
  EXPECT_EQ(PathBoxFilter(0, m), "Executable|*.exe|All files|*.*");
  EXPECT_EQ(PathBoxFilter(3, m), "*.dat|*.dat|All files|*.*");
  EXPECT_EQ(PathBoxFilter(10, m), "*.ini|*.ini|All files|*.*");
  const std::vector<std::string> entries = SelectionEntries(m);
  const std::vector<std::string> expected = {
      "Catlist.ini", "Catver.ini",   "Cheat.dat",          "Command.dat",     "Hiscore.dat",
      "History.dat", "Mameinfo.dat", "Mature.ini",         "Multiplayer.ini", "Nplayers.ini",
      "Version.ini", "Wizsort.ini",  "Your available roms"};
  EXPECT_EQ(entries, expected);
  UpdateReport report;
  EXPECT_EQ(SelectedUpdateLabel(report), "");
  report.lines = {"Catlist.ini = Ok", "Cheat.dat = Ok"};
  EXPECT_EQ(SelectedUpdateLabel(report), "Catlist.ini = Ok\nCheat.dat = Ok");
}

TEST(DatabaseDialogLogic, UpdateButtonsFollowTheIndexFile) {
  TestHome home;
  EXPECT_FALSE(UpdateButtonsEnabled(home.Folder()));
  WriteBytes(IndexFilePath(home.Folder()), "MAME v1\r\n");
  EXPECT_TRUE(UpdateButtonsEnabled(home.Folder()));
}

TEST(DatabaseDialogLogic, HeldMessagesWaitForReleaseAndQuestionsGoThrough) {
  TestHome home;
  HeldMessagesUi held(home.ui);
  home.ui.answers = {false};
  held.ShowMessage(false, "first", "t", Icon::Information);
  held.ShowMessage(true, "second", "", Icon::Warning);
  EXPECT_FALSE(held.AskYesNo("question?", "", Icon::Question));
  ASSERT_EQ(home.ui.questions.size(), 1u);
  EXPECT_TRUE(home.ui.messages.empty());
  EXPECT_TRUE(held.Gave("second"));
  EXPECT_FALSE(held.Gave("third"));
  held.Release();
  ASSERT_EQ(home.ui.messages.size(), 2u);
  EXPECT_EQ(home.ui.messages[0].text, "first");
  EXPECT_EQ(home.ui.messages[1].icon, Icon::Warning);
  // Released once only, but still remembered.
  held.Release();
  EXPECT_EQ(home.ui.messages.size(), 2u);
  EXPECT_TRUE(held.Gave("first"));
  {
    ScopedUi scoped(home.ctx, held);
    EXPECT_EQ(&home.ctx.Ui(), &held);
  }
  EXPECT_EQ(&home.ctx.Ui(), &home.ui);
}

TEST(DownloadFiles, FileNameIsBehindTheLastSeparator) {
  EXPECT_EQ(DownloadFileName("http://x.invalid/a/b/history.zip"), "history.zip");
  EXPECT_EQ(DownloadFileName("c:\\dl\\cheat.zip"), "cheat.zip");
  EXPECT_EQ(DownloadFileName("plain.zip"), "plain.zip");
  EXPECT_EQ(DownloadFileName("http://x.invalid/"), "");
}

TEST(DownloadFiles, ZippedFileIsUnpackedIntoDataFilesAndFailuresAreReported) {
  TestHome home;
  HttpFileServer server;
  server.Set("/dat/history.zip", ZipOf("history.dat", "$info=pacman\r\n$bio\r\nPac\r\n$end\r\n"));
  server.Set("/dat/plain.dat", "not a zip");
  std::vector<DownloadLine> lines = ElevenLines();
  lines[0].address = "  " + server.Url("/dat/history.zip") + " ";
  lines[0].checked = true;
  lines[1].address = server.Url("/dat/missing.zip");
  lines[1].checked = true;
  lines[2].address = server.Url("/dat/plain.dat");
  lines[2].checked = true;
  // Unchecked, or checked without an address: nothing is fetched.
  lines[3].address = server.Url("/dat/history.zip");
  lines[4].checked = true;
  Work work;
  const DownloadReport report = DownloadFiles(home.ctx, work, lines);
  EXPECT_FALSE(report.cancelled);
  EXPECT_EQ(server.Requests().size(), 3u);
  EXPECT_EQ(ReadBytes(home.DataFiles() + "history.dat"), "$info=pacman\r\n$bio\r\nPac\r\n$end\r\n");
  EXPECT_TRUE(FileExists(home.Folder() + "Downloads/history.zip"));
  const std::vector<std::string> expected = {
      "Downloading history.zip = Ok", "Downloading missing.zip = ERROR",
      "Downloading plain.dat = Ok", "Error while unzipping plain.dat"};
  EXPECT_EQ(report.lines, expected);
  // The report is shown with the information symbol under "Done".
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text,
            "Downloading history.zip = Ok|Downloading missing.zip = ERROR|Downloading plain.dat "
            "= Ok|Error while unzipping plain.dat");
  EXPECT_EQ(home.ui.messages[0].title, "Done");
  EXPECT_EQ(home.ui.messages[0].icon, Icon::Information);
  // The bar ends on the last line.
  EXPECT_EQ(work.ProgressMax.load(), 11);
}

TEST(DownloadFiles, FrenchFailureLineIsUpperCase) {
  TestHome home;
  home.ctx.messages.LanguageNumber = Messages::kFrench;
  home.ctx.messages.LoadMessages();
  HttpFileServer server;
  std::vector<DownloadLine> lines = ElevenLines();
  lines[5].address = server.Url("/nothing.zip");
  lines[5].checked = true;
  Work work;
  const DownloadReport report = DownloadFiles(home.ctx, work, lines);
  ASSERT_EQ(report.lines.size(), 1u);
  EXPECT_EQ(report.lines[0],
            "T\xC3\xA9l\xC3\xA9"
            "chargement de nothing.zip = ERREUR");
}

TEST(DownloadFiles, NothingCheckedReportsDoneAndMakesTheFolders) {
  TestHome home;
  Work work;
  const DownloadReport report = DownloadFiles(home.ctx, work, ElevenLines());
  EXPECT_TRUE(report.lines.empty());
  EXPECT_EQ(DownloadReportText(home.ctx, report), "Done.");
  ASSERT_EQ(home.ui.messages.size(), 1u);
  EXPECT_EQ(home.ui.messages[0].text, "Done.");
  EXPECT_TRUE(FolderExists(home.Folder() + "Downloads"));
  EXPECT_TRUE(FolderExists(home.Folder() + "DataFiles"));
}

TEST(DownloadFiles, CancelStopsBeforeTheNextLineAndShowsNoReport) {
  TestHome home;
  HttpFileServer server;
  server.Set("/a.zip", ZipOf("a.dat", "a"));
  std::vector<DownloadLine> lines = ElevenLines();
  lines[0].address = server.Url("/a.zip");
  lines[0].checked = true;
  Work work;
  work.CancelRequested = true;
  const DownloadReport report = DownloadFiles(home.ctx, work, lines);
  EXPECT_TRUE(report.cancelled);
  EXPECT_EQ(server.Requests().size(), 0u);
  EXPECT_TRUE(home.ui.messages.empty());
}

TEST(DownloadFiles, SelfExtractingMameinfoIsNamedInTheLogAndNotRun) {
  TestHome home;
  HttpFileServer server;
  server.Set("/mameinfo/mameinfo.zip", ZipOf("mameinfo.exe", "MZ not really a program"));
  std::vector<DownloadLine> lines = ElevenLines();
  lines[kSelfExtractingLine].address = server.Url("/mameinfo/mameinfo.zip");
  lines[kSelfExtractingLine].checked = true;
  Work work;
  const DownloadReport report = DownloadFiles(home.ctx, work, lines);
  const std::string program = home.DataFiles() + "mameinfo.exe";
  EXPECT_TRUE(FileExists(program));
  EXPECT_EQ(report.selfExtracting, program);
  EXPECT_NE(ReadBytes(home.ctx.log.LogPath()).find(program), std::string::npos);
  // The report itself is as for any file.
  ASSERT_EQ(report.lines.size(), 1u);
  EXPECT_EQ(report.lines[0], "Downloading mameinfo.zip = Ok");
}

}  // namespace
}  // namespace tessarin
