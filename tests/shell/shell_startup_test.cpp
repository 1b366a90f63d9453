// Start-up and close, the notes file, the language choice, the options and the path wizard.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "core/fileservices.h"
#include "core/work.h"
#include "shell/languagechoice.h"
#include "shell/notes.h"
#include "shell/options.h"
#include "shell/pathwizard.h"
#include "shell/startup.h"
#include "shell_test_support.h"

namespace tessarin {
namespace {

using shelltest::Exists;
using shelltest::ReadFile;
using shelltest::TempFolder;
using shelltest::TestContext;
using shelltest::WriteFile;

// Records which start steps ran, in order.
struct StepRecorder {
  std::vector<std::string> calls;
  int languageWhenChoosing = -1;
  StartUpSteps Steps(AppContext& ctx, int chosenLanguage) {
    StartUpSteps steps;
    steps.ChooseLanguage = [this, &ctx, chosenLanguage] {
      calls.push_back("language");
      ctx.messages.LanguageNumber = chosenLanguage;
    };
    steps.RunPathWizard = [this, &ctx] { calls.push_back("wizard:" + ctx.messages.Lng(26)); };
    steps.LoadIndex = [this] { calls.push_back("index"); };
    steps.LoadUrlList = [this] { calls.push_back("urls"); };
    return steps;
  }
};

TEST(StartUp, FirstStartRunsChooserThenWizardInTheChosenLanguage) {
  TestContext t;
  ShellSession session;
  session.PriorityChoice = 2;
  StepRecorder recorder;
  ASSERT_EQ(StartUp(t.ctx, session, recorder.Steps(t.ctx, Messages::kFrench)), StartResult::Ready);
  EXPECT_TRUE(t.ctx.FirstRun);
  EXPECT_EQ(session.PriorityChoice, 1);
  ASSERT_EQ(recorder.calls.size(), 4u);
  EXPECT_EQ(recorder.calls[0], "language");
  // The wizard already speaks French.
  EXPECT_EQ(recorder.calls[1], "wizard:" + std::string(Messages::FrenchTable()[26]));
  EXPECT_EQ(recorder.calls[2], "index");
  EXPECT_EQ(recorder.calls[3], "urls");
  EXPECT_EQ(t.ctx.settings.InfRead("MDIState"), "2");
  // The language key waits for the close.
  EXPECT_EQ(t.ctx.settings.InfRead("Language"), "-1");
  EXPECT_TRUE(FolderExists(t.Path("Downloads")));
  EXPECT_TRUE(FolderExists(t.Path("DataFiles")));
  EXPECT_TRUE(FolderExists(t.Path("HTML")));
  EXPECT_TRUE(FileExists(t.Path("HTML/help.htm")));
  EXPECT_TRUE(FolderExists(t.ctx.TempFolder));
}

TEST(StartUp, AFirstStartCutShortRunsItsDialogsAgain) {
  TestContext t;
  ShellSession session;
  // The program is killed while the chooser is open (here: the step never comes back).
  StartUpSteps killed;
  killed.ChooseLanguage = [] { throw std::runtime_error("killed at the chooser"); };
  EXPECT_THROW(StartUp(t.ctx, session, killed), std::runtime_error);
  ASSERT_TRUE(FileExists(t.ctx.settings.FilePath()));

  TestContext again;
  std::filesystem::copy_file(t.ctx.settings.FilePath(), again.ctx.settings.FilePath());
  StepRecorder recorder;
  ASSERT_EQ(StartUp(again.ctx, session, recorder.Steps(again.ctx, Messages::kEnglish)),
            StartResult::Ready);
  EXPECT_TRUE(again.ctx.FirstRun);
  EXPECT_EQ(recorder.calls,
            (std::vector<std::string>{"language", "wizard:Working...", "index", "urls"}));

  // Once they have ended, the next start is a normal one.
  TestContext third;
  std::filesystem::copy_file(again.ctx.settings.FilePath(), third.ctx.settings.FilePath());
  StepRecorder normal;
  StartUp(third.ctx, session, normal.Steps(third.ctx, Messages::kEnglish));
  EXPECT_FALSE(third.ctx.FirstRun);
  EXPECT_EQ(normal.calls, (std::vector<std::string>{"index", "urls"}));
}

TEST(StartUp, StaleTemporaryFilesOfAKilledRunAreRemoved) {
  TestContext t;
  WriteFile(t.Path("Tessarin.inf"), "Language=1\r\n");
  std::filesystem::create_directories(t.Path("DataFiles"));
  const std::string stale = t.Path("DataFiles/index.ab12cd0.tessarin-tmp");
  const std::string fresh = t.Path("Tessarin.inf.ef34gh1.tessarin-tmp");
  const std::string mine = t.Path("DataFiles/index.bak");
  WriteFile(stale, "half an index");
  WriteFile(fresh, "being written");
  WriteFile(mine, "the user's");
  std::filesystem::last_write_time(
      stale, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
  ShellSession session;
  StartUp(t.ctx, session, {});
  EXPECT_FALSE(FileExists(stale));
  EXPECT_TRUE(FileExists(fresh));  // another run may still be writing it
  EXPECT_TRUE(FileExists(mine));
}

TEST(StartUp, NormalStartReadsTheLanguageAndSkipsTheDialogs) {
  TestContext t;
  WriteFile(t.Path("Tessarin.inf"), "Language=0\r\nMDIState=0\r\n");
  ShellSession session;
  StepRecorder recorder;
  ASSERT_EQ(StartUp(t.ctx, session, recorder.Steps(t.ctx, Messages::kEnglish)), StartResult::Ready);
  EXPECT_FALSE(t.ctx.FirstRun);
  EXPECT_EQ(recorder.calls, (std::vector<std::string>{"index", "urls"}));
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kFrench);
  EXPECT_EQ(t.ctx.messages.Lng(26), Messages::FrenchTable()[26]);
  EXPECT_EQ(t.ctx.settings.InfRead("MDIState"), "0");
}

TEST(StartUp, MissingOrMinusOneLanguageIsEnglish) {
  for (const char* content : {"MDIState=0\r\n", "Language=-1\r\n"}) {
    TestContext t;
    WriteFile(t.Path("Tessarin.inf"), content);
    t.ctx.messages.LanguageNumber = Messages::kFrench;
    ShellSession session;
    ASSERT_EQ(StartUp(t.ctx, session, {}), StartResult::Ready);
    EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kEnglish) << content;
    EXPECT_EQ(t.ctx.messages.Lng(26), "Working...");
  }
}

TEST(StartUp, OldLogIsDeleted) {
  TestContext t;
  WriteFile(t.Path("Tessarin.inf"), "Language=1\r\n");
  WriteFile(t.ctx.log.LogPath(), "old run\r\n");
  ShellSession session;
  StartUp(t.ctx, session, {});
  EXPECT_EQ(ReadFile(t.ctx.log.LogPath()).find("old run"), std::string::npos);
}

TEST(StartUp, HelpPageIsWrittenOnceAndKeptWhenEdited) {
  TestContext t;
  MakeAppFolders(t.ctx);
  const std::string help = ReadFile(t.Path("HTML/help.htm"));
  EXPECT_NE(help.find("TESSARIN - HELP"), std::string::npos);
  EXPECT_NE(help.find("name=\"Anglais\""), std::string::npos);
  EXPECT_EQ(help, std::string(DefaultHelpPage()));
  WriteFile(t.Path("HTML/help.htm"), "mine");
  MakeAppFolders(t.ctx);
  EXPECT_EQ(ReadFile(t.Path("HTML/help.htm")), "mine");
}

TEST(StartUp, TempFolderIsFreshUnderTheSystemFolder) {
  TestContext t;
  TempFolder system;
  std::filesystem::create_directory(system / "tessarin");
  WriteFile(system / "tessarin/leftover.txt", "");
  ASSERT_TRUE(Exists(system / "tessarin/leftover.txt"));
  ASSERT_TRUE(MakeTempFolder(t.ctx, system.Path()));
  EXPECT_EQ(t.ctx.TempFolder, system.Path() + "tessarin/");
  EXPECT_FALSE(Exists(system / "tessarin/leftover.txt"));
}

TEST(StartUp, TempFolderFallsBackToTheApplicationFolder) {
  TestContext t;
  TempFolder system;
  // A file where the folder should go: the system candidate can't be made.
  const std::string blocked = system / "notafolder";
  WriteFile(blocked, "x");
  ASSERT_TRUE(MakeTempFolder(t.ctx, blocked + "/"));
  EXPECT_EQ(t.ctx.TempFolder, t.Path("Temp/"));
  EXPECT_TRUE(FolderExists(t.ctx.TempFolder));
}

TEST(StartUp, TempFolderFailureTextNamesThePathAndMessage310) {
  TestContext t;
  const std::string text = TempFolderFailureText(t.ctx);
  EXPECT_EQ(text, t.Path("Temp") + "\n" + t.ctx.messages.Lng(310));
}

TEST(StartUp, SkinsAreWrittenWhenMissingAndEditedOnesKept) {
  TestContext t;
  MakeAppFolders(t.ctx);
  StartUpSteps steps;
  steps.SkinResource = [](std::string_view name) -> std::string_view {
    return name == "Default_EN.skin.zip" ? "EN-BYTES" : "FR-BYTES";
  };
  WriteFile(t.Path("HTML/default_fr.SKIN.zip"), "edited");
  ExtractSkinFR(t.ctx, steps);
  ExtractSkinEN(t.ctx, steps);
  EXPECT_EQ(ReadFile(t.Path("HTML/default_fr.SKIN.zip")), "edited");
  EXPECT_FALSE(Exists(t.Path("HTML/Default_FR.skin.zip")));
  EXPECT_EQ(ReadFile(t.Path("HTML/Default_EN.skin.zip")), "EN-BYTES");
  std::filesystem::remove(t.Path("HTML/Default_EN.skin.zip"));
  ExtractSkinEN(t.ctx, steps);
  EXPECT_EQ(ReadFile(t.Path("HTML/Default_EN.skin.zip")), "EN-BYTES");
}

TEST(StartUp, NoSkinBytesWriteNothing) {
  TestContext t;
  MakeAppFolders(t.ctx);
  ExtractSkinFR(t.ctx, {});
  EXPECT_FALSE(Exists(t.Path("HTML/Default_FR.skin.zip")));
}

TEST(CloseRun, WritesTheFrameKeysAndDeletesTheTempFolder) {
  TestContext t;
  ShellSession session;
  ASSERT_EQ(StartUp(t.ctx, session, {}), StartResult::Ready);
  const std::string temp = t.ctx.TempFolder;
  WriteFile(temp + "page.htm", "x");
  t.ctx.messages.LanguageNumber = Messages::kFrench;
  CloseRun(t.ctx, {0, 0, 2});
  EXPECT_FALSE(Exists(temp));
  Settings reread(t.ctx.settings.FilePath(), t.ctx.log);
  reread.InfLoad();
  EXPECT_EQ(reread.InfRead("Language"), "0");
  EXPECT_EQ(reread.InfRead("MDILeft"), "0");
  EXPECT_EQ(reread.InfRead("MDITop"), "0");
  EXPECT_EQ(reread.InfRead("MDIState"), "2");
}

TEST(CloseRun, PriorityIsNeverStored) {
  TestContext t;
  ShellSession session;
  StartUp(t.ctx, session, {});
  session.PriorityChoice = 0;
  CloseRun(t.ctx, {10, 20, 0});
  EXPECT_EQ(ReadFile(t.ctx.settings.FilePath()).find("riority"), std::string::npos);
  ShellSession next;
  next.PriorityChoice = 0;
  StartUp(t.ctx, next, {});
  EXPECT_EQ(next.PriorityChoice, 1);
}

TEST(InstanceLock, SecondLockOnTheSameFolderFails) {
  TempFolder folder;
  InstanceLock first(folder.Path());
  ASSERT_TRUE(first.TryLock());
  InstanceLock second(folder.Path());
  EXPECT_FALSE(second.TryLock());
}

TEST(InstanceLock, ReleasedLockCanBeTakenAgain) {
  TempFolder folder;
  {
    InstanceLock first(folder.Path());
    ASSERT_TRUE(first.TryLock());
  }
  InstanceLock again(folder.Path());
  EXPECT_TRUE(again.TryLock());
}

// --- Notes ---

void AddGame(AppContext& ctx, const std::string& name, const std::string& description) {
  std::string record = NewXmlRecord(name, 0);
  FieldSet(record, "#Z", description);
  ctx.store.AppendGame(name, record);
}

TEST(Notes, FileListsEveryGameSortedWithRoomForANote) {
  TestContext t;
  AddGame(t.ctx, "pacman", "Pac-Man");
  AddGame(t.ctx, "Zaxxon", "Zaxxon");
  AddGame(t.ctx, "galaga", "Galaga");
  Work work;
  ASSERT_TRUE(WriteNotesFile(t.ctx, work));
  const std::string notes = ReadFile(t.Path("NOTES.TXT"));
  const std::string expected =
      "; Here you can put whatever you want to write about roms.\r\n"
      "; Just write under the line of the rom you want to comment.\r\n"
      ";\r\n"
      "; Vous pouvez \xC3\xA9"
      "crire ici ce que vous voulez sur les roms.\r\n"
      "; \xC3\x89"
      "crivez vos commentaires sous le nom de la rom.\r\n"
      ";\r\n"
      "[Example]\r\n"
      "This game is terrific !\r\n"
      "[Zaxxon] Zaxxon\r\n\r\n"
      "[galaga] Galaga\r\n\r\n"
      "[pacman] Pac-Man\r\n\r\n";
  EXPECT_EQ(notes, expected);
}

TEST(Notes, ExistingFileIsOpened) {
  TestContext t;
  WriteFile(t.Path("NOTES.TXT"), "mine");
  bool ran = false;
  const NotesOutcome outcome = RunNotesEntry(
      t.ctx, [] {},
      [&](const std::string&, const std::function<void(Work&)>&) {
        ran = true;
        return true;
      });
  EXPECT_EQ(outcome, NotesOutcome::Opened);
  EXPECT_FALSE(ran);
  ASSERT_EQ(t.ui.opened.size(), 1u);
  EXPECT_EQ(t.ui.opened[0], t.Path("NOTES.TXT"));
  EXPECT_EQ(ReadFile(t.Path("NOTES.TXT")), "mine");
}

TEST(Notes, EmptyDatabaseTriesTheIndexThenSaysSo) {
  TestContext t;
  int loads = 0;
  const NotesOutcome outcome = RunNotesEntry(
      t.ctx, [&] { ++loads; },
      [&](const std::string&, const std::function<void(Work&)>&) { return true; });
  EXPECT_EQ(outcome, NotesOutcome::NoDatabase);
  EXPECT_EQ(loads, 1);
  ASSERT_EQ(t.ui.shown.size(), 1u);
  // Message 57 ends in a point already and gets another one: that is the message as shown.
  EXPECT_EQ(t.ui.shown[0].text, "Database is empty.|Can't continue..");
  EXPECT_EQ(t.ui.shown[0].icon, Icon::Information);
  EXPECT_FALSE(Exists(t.Path("NOTES.TXT")));
}

TEST(Notes, CreatedUnderTheWorkingLabelAndOpened) {
  TestContext t;
  AddGame(t.ctx, "pacman", "Pac-Man");
  std::string label;
  const NotesOutcome outcome = RunNotesEntry(
      t.ctx, [] {},
      [&](const std::string& text, const std::function<void(Work&)>& job) {
        label = text;
        Work work;
        job(work);
        return true;
      });
  EXPECT_EQ(outcome, NotesOutcome::Created);
  EXPECT_EQ(label, "Create Notes.txt file");
  ASSERT_EQ(t.ui.opened.size(), 1u);
  EXPECT_NE(ReadFile(t.Path("NOTES.TXT")).find("[pacman] Pac-Man"), std::string::npos);
}

TEST(Notes, CancelOpensNothingAndLeavesNoFile) {
  TestContext t;
  AddGame(t.ctx, "pacman", "Pac-Man");
  const NotesOutcome outcome = RunNotesEntry(
      t.ctx, [] {},
      [&](const std::string&, const std::function<void(Work&)>& job) {
        Work work;
        work.CancelRequested = true;
        job(work);
        return false;
      });
  EXPECT_EQ(outcome, NotesOutcome::Cancelled);
  EXPECT_TRUE(t.ui.opened.empty());
  EXPECT_FALSE(Exists(t.Path("NOTES.TXT")));
}

// --- Language choice ---

TEST(LanguageChoice, ListOrderAndLanguageFiles) {
  TestContext t;
  WriteFile(t.Path("Deutsch.lng"), "=x\r\n");
  WriteFile(t.Path("notes.txt"), "");
  const std::vector<std::string> items = LanguageItems(t.ctx.AppFolder());
  ASSERT_EQ(items.size(), 4u);
  EXPECT_EQ(items[0], "English");
  EXPECT_EQ(items[1], kFrenchItem);
  EXPECT_EQ(items[2], "Deutsch");
  EXPECT_EQ(items[3], "Other...");
  EXPECT_EQ(DefaultLanguageItem(true), kFrenchItem);
  EXPECT_EQ(DefaultLanguageItem(false), "English");
}

TEST(LanguageChoice, ChooserChoices) {
  TestContext t;
  ApplyChooserChoice(t.ctx, kFrenchItem);
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kFrench);
  ApplyChooserChoice(t.ctx, "English");
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kEnglish);
  ApplyChooserChoice(t.ctx, "Deutsch");
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kLanguageFile);
  EXPECT_EQ(t.ctx.messages.LngFileName, "Deutsch.lng");
  EXPECT_EQ(t.ctx.settings.InfRead("LngFile"), "Deutsch.lng");
  EXPECT_EQ(t.ctx.settings.InfRead("Language"), "-1");
}

TEST(LanguageChoice, OtherWritesTheTemplateAndGoesOnInEnglish) {
  TestContext t;
  t.ctx.messages.LanguageNumber = Messages::kFrench;
  t.ctx.messages.LoadMessages();
  ApplyChooserChoice(t.ctx, "Other...");
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kEnglish);
  EXPECT_EQ(t.ctx.messages.Lng(26), "Working...");
  EXPECT_TRUE(FileExists(FindFileNoCase(t.ctx.AppFolder(), "language.lng")));
  EXPECT_EQ(t.ctx.settings.InfRead("Language"), "-1");
}

// --- Options ---

// Site tables as the site list keeps them (rows from 1), with counted reads and writes.
struct Sites {
  UrlTables tables;
  int reloads = 0;
  int writes = 0;
  Sites() {
    tables.SearchEngines = {"", "MAWS:http://maws.example/#ROMNAME#",
                            "datObase:http://dat.example/rom.php?zip=#ROMNAME#"};
  }
  SiteTablesAccess Access() {
    SiteTablesAccess a;
    a.Tables = &tables;
    a.Reload = [this] { ++reloads; };
    a.Write = [this] { ++writes; };
    return a;
  }
};

TEST(Options, LoadShowsMinusOneAsEmptyAndRereadsTheSiteList) {
  TestContext t;
  t.ctx.settings.InfWrite("DataFile1", "/usr/games/mame");
  t.ctx.settings.InfWrite("DataFile3", "/data/mameinfo.dat");
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  model.Load();
  EXPECT_EQ(sites.reloads, 1);
  EXPECT_EQ(model.EmulatorPath, "/usr/games/mame");
  EXPECT_EQ(model.RomPath, "");
  EXPECT_EQ(model.DataFiles[0], "");
  EXPECT_EQ(model.DataFiles[1], "/data/mameinfo.dat");
  EXPECT_EQ(model.LanguageText, "English");
  EXPECT_EQ(model.LanguageList.back(), "Other...");
  EXPECT_EQ(model.SearchEngineNames(), (std::vector<std::string>{"MAWS", "datObase"}));
  EXPECT_EQ(model.SearchEngineAddress(0), "http://maws.example/#ROMNAME#");
}

TEST(Options, SaveWritesEveryPathAndTheLanguage) {
  TestContext t;
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  model.Load();
  model.EmulatorPath = "/opt/mame/mame";
  model.RomPath = "/roms/";
  model.DataFiles[15] = "/data/version.ini";
  model.ImagePaths[5] = "/pics/flyers/";
  model.LanguageText = kFrenchItem;
  EXPECT_TRUE(model.Save());
  EXPECT_TRUE(t.ctx.SearchMayClose);
  const Settings& s = t.ctx.settings;
  EXPECT_EQ(s.InfRead("DataFile1"), "/opt/mame/mame");
  EXPECT_EQ(s.InfRead("RomPath"), "/roms/");
  EXPECT_EQ(s.InfRead("DataFile17"), "/data/version.ini");
  EXPECT_EQ(s.InfRead("DataFile2"), "");
  EXPECT_EQ(s.InfRead("FlyersPath"), "/pics/flyers/");
  EXPECT_EQ(s.InfRead("Language"), "0");
  EXPECT_EQ(t.ctx.messages.Lng(26), Messages::FrenchTable()[26]);
}

TEST(Options, SameLanguageLeavesTheSearchDialogAlone) {
  TestContext t;
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  model.Load();
  EXPECT_FALSE(model.Save());
  EXPECT_FALSE(t.ctx.SearchMayClose);
}

TEST(Options, CancelSavesNoPathButKeepsTheSiteTables) {
  TestContext t;
  Sites sites;
  {
    OptionsModel model(t.ctx, sites.Access());
    model.Load();
    model.RomPath = "/somewhere/";
    model.DataFiles[0] = "/x/history.dat";
    ASSERT_TRUE(model.AddSearchSite("Mine", "http://mine.example/#ROMNAME#"));
    model.SetOnlineImage(1, "http://snaps.example/#ROMNAME#.png");
    model.SetSearchEngineAddress(0, "http://maws2.example/#ROMNAME#");
    model.Unload();
  }
  EXPECT_EQ(sites.writes, 1);
  EXPECT_EQ(t.ctx.settings.InfRead("RomPath"), "-1");
  EXPECT_EQ(t.ctx.settings.InfRead("DataFile2"), "-1");
  ASSERT_EQ(sites.tables.SearchEngineCount(), 3);
  EXPECT_EQ(sites.tables.SearchEngines[3], "Mine:http://mine.example/#ROMNAME#");
  EXPECT_EQ(sites.tables.SearchEngines[1], "MAWS:http://maws2.example/#ROMNAME#");
  EXPECT_EQ(sites.tables.OnlineImages[2], "http://snaps.example/#ROMNAME#.png");
}

TEST(Options, SiteNeedsBothNameAndAddress) {
  TestContext t;
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  EXPECT_FALSE(model.AddSearchSite("", "http://x"));
  EXPECT_FALSE(model.AddSearchSite("x", ""));
  EXPECT_EQ(sites.tables.SearchEngineCount(), 2);
}

TEST(Options, OtherLanguageWritesTheTemplateButNoLanguageKey) {
  TestContext t;
  t.ctx.messages.LanguageNumber = Messages::kFrench;
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  model.Load();
  model.LanguageText = "Other...";
  EXPECT_TRUE(model.Save());
  EXPECT_EQ(t.ctx.messages.LanguageNumber, Messages::kEnglish);
  EXPECT_EQ(t.ctx.settings.InfRead("Language"), "-1");
  EXPECT_TRUE(FileExists(FindFileNoCase(t.ctx.AppFolder(), "language.lng")));
}

TEST(Options, LanguageFileChoiceWritesBothKeys) {
  TestContext t;
  WriteFile(t.Path("Deutsch.lng"), "=Spieldatenbank\r\n");
  Sites sites;
  OptionsModel model(t.ctx, sites.Access());
  model.Load();
  model.LanguageText = "Deutsch";
  EXPECT_TRUE(model.Save());
  EXPECT_EQ(t.ctx.settings.InfRead("Language"), "2");
  EXPECT_EQ(t.ctx.settings.InfRead("LngFile"), "Deutsch.lng");
  EXPECT_EQ(t.ctx.messages.Lng(1), "Spieldatenbank");
  // Shown again by its name.
  OptionsModel again(t.ctx, sites.Access());
  again.Load();
  EXPECT_EQ(again.LanguageText, "Deutsch");
}

// --- Path wizard ---

WizardEnvironment FakeEnvironment(bool debianMame) {
  WizardEnvironment env;
  env.FileExists = [debianMame](const std::string& p) {
    return debianMame && p == "/usr/games/mame";
  };
  env.FolderExists = [](const std::string&) { return false; };
  env.FindOnPath = [](const std::string&) { return std::string(); };
  env.HomeFolder = "/home/player";
  return env;
}

TEST(PathWizard, StepsSaveTheirKeysAndOfferDefaults) {
  TestContext t;
  PathWizard wizard(t.ctx, FakeEnvironment(false));
  EXPECT_EQ(wizard.Step(), 0);
  EXPECT_EQ(wizard.QuestionNumber(), 67);
  EXPECT_FALSE(wizard.BoxVisible());
  EXPECT_FALSE(wizard.PreviousVisible());
  wizard.Continue("");
  EXPECT_EQ(wizard.Step(), 1);
  EXPECT_EQ(wizard.QuestionNumber(), 94);
  EXPECT_TRUE(wizard.BoxVisible());
  EXPECT_TRUE(wizard.BrowseVisible());
  EXPECT_FALSE(wizard.PreviousVisible());
  EXPECT_EQ(t.ctx.settings.InfRead("DataFile1"), "-1");
  wizard.Continue("/opt/arcade/mame");
  EXPECT_TRUE(wizard.PreviousVisible());
  EXPECT_EQ(wizard.Step(), 2);
  EXPECT_EQ(wizard.QuestionNumber(), 95);
  EXPECT_EQ(wizard.BoxText(), "/opt/arcade/roms/");
  EXPECT_EQ(t.ctx.settings.InfRead("DataFile1"), "/opt/arcade/mame");
  const char* keys[] = {"RomPath",      "TitlesPath", "SnapPath",  "MarqueesPath",
                        "CabinetsPath", "CpanelPath", "FlyersPath"};
  const char* folders[] = {"roms", "titles", "snap", "marquees", "cabinets", "cpanel", "flyers"};
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(wizard.BoxText(), std::string("/opt/arcade/") + folders[i] + "/");
    EXPECT_FALSE(wizard.Finished());
    wizard.Continue(wizard.BoxText());
    EXPECT_EQ(t.ctx.settings.InfRead(keys[i]), std::string("/opt/arcade/") + folders[i] + "/");
  }
  EXPECT_TRUE(wizard.Finished());
}

TEST(PathWizard, WindowsStylePathsKeepBackslashes) {
  TestContext t;
  PathWizard wizard(t.ctx, FakeEnvironment(false));
  wizard.Continue("");
  wizard.Continue("d:\\games\\mame\\mame.exe");
  EXPECT_EQ(wizard.BoxText(), "d:\\games\\mame\\roms\\");
}

TEST(PathWizard, DebianEmulatorIsProposedWithTheUsersMameFolder) {
  TestContext t;
  PathWizard wizard(t.ctx, FakeEnvironment(true));
  wizard.Continue("");
  EXPECT_EQ(wizard.BoxText(), "/usr/games/mame");
  wizard.Continue(wizard.BoxText());
  EXPECT_EQ(wizard.BoxText(), "/home/player/mame/roms/");
}

TEST(PathWizard, EmulatorOnThePathIsProposed) {
  TestContext t;
  WizardEnvironment env = FakeEnvironment(false);
  env.FindOnPath = [](const std::string& name) { return "/opt/bin/" + name; };
  PathWizard wizard(t.ctx, env);
  wizard.Continue("");
  EXPECT_EQ(wizard.BoxText(), "/opt/bin/mame");
}

TEST(PathWizard, WindowsDefaults) {
  TestContext t;
  WizardEnvironment env = FakeEnvironment(false);
  env.WindowsDefaults = true;
  PathWizard wizard(t.ctx, env);
  wizard.Continue("");
  EXPECT_EQ(wizard.BoxText(), "c:\\mame32\\mame32.exe");
  wizard.Continue("mame.exe");
  EXPECT_EQ(wizard.BoxText(), "c:\\mame32\\roms\\");
  WizardEnvironment withMame = env;
  withMame.FileExists = [](const std::string& p) { return p == "c:\\mame\\mame.exe"; };
  PathWizard second(t.ctx, withMame);
  second.Continue("");
  EXPECT_EQ(second.BoxText(), "c:\\mame\\mame.exe");
}

TEST(PathWizard, PreviousSavesTheBoxUnderTheKeyTwoStepsBack) {
  TestContext t;
  PathWizard wizard(t.ctx, FakeEnvironment(false));
  wizard.Continue("");
  wizard.Continue("/opt/arcade/mame");
  wizard.Continue("/opt/arcade/roms/");
  ASSERT_EQ(wizard.Step(), 3);
  wizard.Previous("/typed/titles/");
  // Back on step 2 with its default; the titles text went under DataFile1.
  EXPECT_EQ(wizard.Step(), 2);
  EXPECT_EQ(t.ctx.settings.InfRead("DataFile1"), "/typed/titles/");
  EXPECT_EQ(t.ctx.settings.InfRead("TitlesPath"), "-1");
}

TEST(PathWizard, PreviousFromTheFirstStepsLandsOnStepOneUnsaved) {
  TestContext t;
  PathWizard wizard(t.ctx, FakeEnvironment(false));
  wizard.Continue("");
  wizard.Previous("/typed");
  EXPECT_EQ(wizard.Step(), 1);
  wizard.Continue("/a/mame");
  wizard.Previous("/b/roms/");
  EXPECT_EQ(wizard.Step(), 1);
  EXPECT_EQ(t.ctx.settings.InfRead("DataFile1"), "/a/mame");
}

TEST(PathWizard, ClosingAtTheFirstStepWritesNoPath) {
  TestContext t;
  {
    PathWizard wizard(t.ctx, FakeEnvironment(false));
    wizard.Continue("");
  }
  for (const char* key : {"DataFile1", "RomPath", "TitlesPath", "FlyersPath"}) {
    EXPECT_EQ(t.ctx.settings.InfRead(key), "-1") << key;
  }
}

}  // namespace
}  // namespace tessarin
