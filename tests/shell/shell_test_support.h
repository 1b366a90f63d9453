#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "app/context.h"
#include "core/userinterface.h"
#include "support/testfiles.h"

namespace tessarin::shelltest {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

inline bool Exists(const std::string& path) { return std::filesystem::exists(path); }

// Records what the program tells the user and answers questions from a script.
class ScriptedUi final : public UserInterface {
 public:
  struct Shown {
    std::string text;
    std::string title;
    Icon icon;
  };
  std::vector<Shown> shown;
  std::vector<std::string> questions;
  std::vector<std::string> opened;
  bool answer = false;

  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    shown.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string& text, const std::string&, Icon) override {
    questions.push_back(text);
    return answer;
  }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string& path) override { opened.push_back(path); }
  void HoldJobMessages() override { ++holds; }
  void ReleaseJobMessages() override { ++releases; }
  int holds = 0;
  int releases = 0;
};

// A context in a temporary folder, with the English messages and a scripted front end.
struct TestContext {
  TempFolder folder;
  AppContext ctx{folder.Path()};
  ScriptedUi ui;
  TestContext() {
    ctx.SetUi(&ui);
    ctx.messages.LoadMessages();
  }
  ~TestContext() { ctx.SetUi(nullptr); }
  std::string Path(std::string_view name) const { return folder / name; }
};

}  // namespace tessarin::shelltest
