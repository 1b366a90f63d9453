#include "archive/ziptools.h"

#include <gtest/gtest.h>

#include "archive/zipreader.h"
#include "archive/zipworkerinstall.h"
#include "core/fileservices.h"
#include "core/log.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "ziptestutil.h"

namespace tessarin {
namespace {

using testing::ListTree;
using testing::Quote;
using testing::RawZip;
using testing::ReadAll;
using testing::Shell;
using testing::TempFolder;
using testing::WriteAll;
namespace fs = std::filesystem;

struct Shown {
  std::string text;
  Icon icon;
};

class RecordingUi final : public UserInterface {
 public:
  std::vector<Shown> shown;
  void ShowMessage(bool, const std::string& text, const std::string&, Icon icon) override {
    shown.push_back({text, icon});
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return false; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string&) override {}
};

class ZipToolsTest : public ::testing::Test {
 protected:
  ZipToolsTest()
      : tmp("ziptools"),
        app(tmp.Text() + "app/"),
        log(app),
        settings(app + "Tessarin.inf", log),
        messages(app, settings, log),
        services{messages, log, ui, app, {}, {}, {}} {
    fs::create_directories(tmp.Path() / "app");
    messages.LanguageNumber = Messages::kEnglish;
    messages.LoadMessages();
    // Deletions are recorded and done for good, so that no test fills the desktop's trash.
    services.shellDelete = [this](const std::string& path, bool permanent) {
      deleted.emplace_back(path, permanent);
      std::error_code ec;
      fs::remove_all(path, ec);
    };
  }

  void MakeRoms() {
    WriteAll(tmp.Path() / "roms/pacman/pacman.6e", std::string(3000, 'p'));
    WriteAll(tmp.Path() / "roms/pacman/pacman.6f", "short");
    WriteAll(tmp.Path() / "roms/galaga/gg1.bin", std::string(2000, 'g'));
    WriteAll(tmp.Path() / "roms/galaga/sub/extra.bin", "extra");
    WriteAll(tmp.Path() / "roms/loose.txt", "not a folder");
  }

  TempFolder tmp;
  std::string app;
  Log log;
  Settings settings;
  Messages messages;
  RecordingUi ui;
  ZipToolsServices services;
  Work work;
  std::vector<std::pair<std::string, bool>> deleted;
};

TEST_F(ZipToolsTest, EmptyTextsDoNothing) {
  ZipToolsState state{"  ", tmp.Text(), false};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::NothingDone);
  state = {tmp.Text(), "", false};
  std::string error;
  EXPECT_EQ(UnzipAllZips(services, work, state, error), ZipToolsResult::NothingDone);
  EXPECT_TRUE(ui.shown.empty());
}

TEST_F(ZipToolsTest, EmptySourceGivesMessage282) {
  fs::create_directories(tmp.Path() / "emptysource");
  ZipToolsState state{tmp.Text() + "emptysource", tmp.Text() + "zips", false};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::NoFolder);
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text, "No folder has been found.");
  EXPECT_EQ(ui.shown[0].icon, Icon::Stop);
  // The worker was put into the application folder on the way.
  EXPECT_FALSE(FindZipWorker(app).empty());
  // The texts came back with their final separator.
  EXPECT_EQ(state.source, tmp.Text() + "emptysource/");
}

TEST_F(ZipToolsTest, NoWorkerNoZip) {
  services.workerSources = {tmp.Text() + "nowhere/MyZip"};
  MakeRoms();
  ZipToolsState state{tmp.Text() + "roms", tmp.Text() + "zips", false};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::NothingDone);
  EXPECT_TRUE(ui.shown.empty());
}

TEST_F(ZipToolsTest, ZipAllMakesOneSoundZipPerFolder) {
  MakeRoms();
  fs::create_directories(tmp.Path() / "zips");
  ZipToolsState state{tmp.Text() + "roms", tmp.Text() + "zips", false};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::Done);
  EXPECT_EQ(ListTree(tmp.Path() / "zips"), (std::vector<std::string>{"galaga.zip", "pacman.zip"}));
  for (const char* zip : {"galaga.zip", "pacman.zip"}) {
    EXPECT_EQ(Shell("unzip -tqq " + Quote(tmp.Text() + "zips/" + zip) + " > /dev/null"), 0);
  }
  ZipExtractionClass reader;
  ASSERT_TRUE(reader.ZipOpen(tmp.Text() + "zips/galaga.zip"));
  std::string content;
  ASSERT_TRUE(reader.ExtractToMemory(reader.FindEntry("sub/extra.bin"), content));
  EXPECT_EQ(content, "extra");
  EXPECT_EQ(work.ProgressMax.load(), 2);
  EXPECT_EQ(work.ProgressValue.load(), 2);
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text, "");  // the end-of-operation message
  EXPECT_TRUE(deleted.empty());
  EXPECT_TRUE(fs::exists(tmp.Path() / "roms/pacman"));
}

TEST_F(ZipToolsTest, ZipAllThenDeleteSendsFoldersToTheTrash) {
  MakeRoms();
  fs::create_directories(tmp.Path() / "zips");
  std::vector<std::string> jobs;
  services.runWorker = [&](const std::string& program, const std::string& argument) {
    jobs.push_back(argument);
    return RunAndWait(program, {argument});
  };
  ZipToolsState state{tmp.Text() + "roms/", tmp.Text() + "zips/", true};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::Done);
  EXPECT_EQ(jobs, (std::vector<std::string>{
                      tmp.Text() + "zips/galaga.zip," + tmp.Text() + "roms/galaga/*.*\"",
                      tmp.Text() + "zips/pacman.zip," + tmp.Text() + "roms/pacman/*.*\""}));
  EXPECT_EQ(deleted,
            (std::vector<std::pair<std::string, bool>>{{tmp.Text() + "roms/galaga", false},
                                                       {tmp.Text() + "roms/pacman", false}}));
  EXPECT_EQ(work.Status(), "Deleting...");
  EXPECT_EQ(ui.shown.size(), 1u);
  EXPECT_TRUE(fs::exists(tmp.Path() / "zips/pacman.zip"));
}

TEST_F(ZipToolsTest, CancelDuringZipsKeepsThemAndDeletesNothing) {
  MakeRoms();
  fs::create_directories(tmp.Path() / "zips");
  services.runWorker = [&](const std::string& program, const std::string& argument) {
    const int code = RunAndWait(program, {argument});
    work.CancelRequested = true;  // the user cancels while the first zip is made
    return code;
  };
  ZipToolsState state{tmp.Text() + "roms", tmp.Text() + "zips", true};
  EXPECT_EQ(ZipAllFolders(services, work, state), ZipToolsResult::Cancelled);
  EXPECT_EQ(ListTree(tmp.Path() / "zips"), (std::vector<std::string>{"galaga.zip"}));
  EXPECT_TRUE(deleted.empty());
  EXPECT_TRUE(ui.shown.empty());
}

TEST_F(ZipToolsTest, UnzipAllMakesAFolderPerZip) {
  RawZip one;
  one.Add("a.rom", std::string(500, 'a'), true);
  one.Add("dir/b.rom", "b", false);
  one.Write(tmp.Path() / "zips/first.zip");
  RawZip two;
  two.Add("c.rom", "c", false);
  two.Write(tmp.Path() / "zips/SECOND.ZIP");
  WriteAll(tmp.Path() / "zips/readme.txt", "not a zip");
  // A destination folder that exists already is used as it is.
  fs::create_directories(tmp.Path() / "out/first");
  ZipToolsState state{tmp.Text() + "zips", tmp.Text() + "out", false};
  std::string error;
  EXPECT_EQ(UnzipAllZips(services, work, state, error), ZipToolsResult::Done);
  EXPECT_EQ(ListTree(tmp.Path() / "out"),
            (std::vector<std::string>{"SECOND/c.rom", "first/a.rom", "first/dir/b.rom"}));
  EXPECT_EQ(error, "");
  // Without deleting, the run ends without a message; the zips stay.
  EXPECT_TRUE(ui.shown.empty());
  EXPECT_TRUE(deleted.empty());
  EXPECT_EQ(work.ProgressMax.load(), 2);
}

TEST_F(ZipToolsTest, UnzipAllThenDeleteRemovesTheZipsForGood) {
  RawZip one;
  one.Add("a.rom", "a", false);
  one.Write(tmp.Path() / "zips/first.zip");
  RawZip bad;
  bad.Add("bad.rom", std::string(100, 'x'), true).crc ^= 1;
  bad.Write(tmp.Path() / "zips/second.zip");
  fs::create_directories(tmp.Path() / "out");
  ZipToolsState state{tmp.Text() + "zips", tmp.Text() + "out", true};
  std::string error;
  EXPECT_EQ(UnzipAllZips(services, work, state, error), ZipToolsResult::Done);
  EXPECT_EQ(error, "Erreur 5 - Erreur de checksum dans bad.rom");
  EXPECT_EQ(deleted,
            (std::vector<std::pair<std::string, bool>>{{tmp.Text() + "zips/first.zip", true},
                                                       {tmp.Text() + "zips/second.zip", true}}));
  EXPECT_EQ(work.Status(), "second.zip Delete ");
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].text, "");
}

TEST_F(ZipToolsTest, MissingDestinationRootSkipsEveryZip) {
  RawZip one;
  one.Add("a.rom", "a", false);
  one.Write(tmp.Path() / "zips/first.zip");
  // Each zip's folder is made one level deep only: below a missing folder it can't be.
  ZipToolsState state{tmp.Text() + "zips", tmp.Text() + "missing/out", false};
  std::string error;
  EXPECT_EQ(UnzipAllZips(services, work, state, error), ZipToolsResult::Done);
  EXPECT_FALSE(fs::exists(tmp.Path() / "missing"));
  EXPECT_EQ(error, "");
}

TEST_F(ZipToolsTest, CancelledUnzipDeletesNothing) {
  RawZip one;
  one.Add("a.rom", "a", false);
  one.Write(tmp.Path() / "zips/first.zip");
  work.CancelRequested = true;
  ZipToolsState state{tmp.Text() + "zips", tmp.Text() + "out", true};
  std::string error;
  EXPECT_EQ(UnzipAllZips(services, work, state, error), ZipToolsResult::Cancelled);
  EXPECT_TRUE(deleted.empty());
  EXPECT_TRUE(ui.shown.empty());
}

TEST_F(ZipToolsTest, StateRoundTripsThroughTheSettings) {
  ZipToolsState state = LoadZipToolsState(settings);
  EXPECT_EQ(state.source, "");
  EXPECT_EQ(state.destination, "");
  EXPECT_FALSE(state.deleteWhenDone);
  SaveZipToolsState(settings, {"/roms/", "/zips/", true});
  state = LoadZipToolsState(settings);
  EXPECT_EQ(state.source, "/roms/");
  EXPECT_EQ(state.destination, "/zips/");
  EXPECT_TRUE(state.deleteWhenDone);
  SaveZipToolsState(settings, {"/roms/", "/zips/", false});
  EXPECT_EQ(settings.InfRead("Frm9Effacer"), "-1");
  EXPECT_FALSE(LoadZipToolsState(settings).deleteWhenDone);
}

}  // namespace
}  // namespace tessarin
