#pragma once

// A small database of three games built from the fixtures of tests/data/gamepage, on a
// temporary application folder.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "app/context.h"
#include "builder/pipeline.h"
#include "core/userinterface.h"
#include "core/work.h"
#include "store/indexfile.h"
#include "support/testfiles.h"

namespace tessarin::gamepagetest {

inline std::string Fixture(const std::string& name) {
  return std::string(TESSARIN_TEST_DATA) + "/gamepage/" + name;
}

// Keeps what is shown; answers no.
class RecordingUi final : public UserInterface {
 public:
  struct Shown {
    std::string text, title;
    Icon icon;
  };
  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    messages.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return false; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string&) override {}
  std::vector<Shown> messages;
};

class FixtureHome {
 public:
  // With `build`, the fixture's list, History, Mameinfo, Catlist, CatVer, genre list and notes
  // make the database.
  explicit FixtureHome(bool build = true) : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
    std::filesystem::create_directories(Path("DataFiles"));
    std::filesystem::create_directories(Path("HTML"));
    std::filesystem::create_directories(Path("Temp"));
    ctx.TempFolder = Path("Temp/");
    if (!build) return;
    using testsupport::ReadFile;
    using testsupport::WriteFile;
    WriteFile(DefaultListXmlPath(ctx.AppFolder()), ReadFile(Fixture("listxml.xml")));
    WriteFile(Path("history.dat"), ReadFile(Fixture("history.dat")));
    WriteFile(Path("mameinfo.dat"), ReadFile(Fixture("mameinfo.dat")));
    WriteFile(Path("catver.ini"), ReadFile(Fixture("catver.ini")));
    WriteFile(Path("catlist.ini"), ReadFile(Fixture("catlist.ini")));
    WriteFile(Path("genre.ini"), ReadFile(Fixture("genre.ini")));
    WriteFile(Path("notes.txt"), ReadFile(Fixture("notes.txt")));
    ctx.settings.InfWrite("DataFile2", Path("history.dat"));
    ctx.settings.InfWrite("DataFile3", Path("mameinfo.dat"));
    ctx.settings.InfWrite("DataFile12", Path("catlist.ini"));
    ctx.settings.InfWrite("DataFile13", Path("catver.ini"));
    ctx.settings.InfWrite("DataFile14", Path("genre.ini"));
    ctx.store.DatabaseVersion = "MAME v0.251 (fixture)";
    Work work;
    EXPECT_TRUE(BuildDatabase(ctx, work));
    EXPECT_EQ(ctx.store.GameCount(), 3);
  }

  std::string Path(const std::string& relative) const { return ctx.AppFolder() + relative; }

  QTemporaryDir dir;
  RecordingUi ui;
  AppContext ctx;
};

}  // namespace tessarin::gamepagetest
