#pragma once

// Helpers of the list tests: a home with a scripted user, fixtures, whole-file reads.

#include <QTemporaryDir>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "app/context.h"
#include "core/userinterface.h"
#include "support/testfiles.h"

namespace tessarin::liststest {

using testsupport::ReadFile;
using testsupport::WriteFile;

inline std::string ListsFixture(const std::string& relative) {
  return std::string(TESSARIN_TEST_DATA) + "/lists/" + relative;
}

// Keeps what the program shows and asks, and answers file choices from a list.
class ScriptedUi final : public UserInterface {
 public:
  struct Shown {
    std::string text, title;
    Icon icon;
  };
  struct Chosen {
    std::string title, startPath, filter;
    bool save;
  };
  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    messages.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return true; }
  std::string ChooseFile(const std::string& title, const std::string& startPath,
                         const std::string& filter, bool save) override {
    choices.push_back({title, startPath, filter, save});
    if (files.empty()) return {};
    std::string file = files.front();
    files.pop_front();
    return file;
  }
  void OpenDocument(const std::string&) override {}

  std::vector<Shown> messages;
  std::vector<Chosen> choices;
  std::deque<std::string> files;
};

// A context on its own temporary application folder, English messages, a scripted user and a
// fatal handler that doesn't end the test run.
class TestHome {
 public:
  TestHome() : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
  }
  ~TestHome() { ctx.SetUi(nullptr); }
  std::string Folder() const { return ctx.AppFolder(); }
  std::string Path(const std::string& name) const { return ctx.AppFolder() + name; }

  QTemporaryDir dir;
  ScriptedUi ui;
  AppContext ctx;
};

}  // namespace tessarin::liststest
