#pragma once

// Helpers shared by the builder's tests: temporary homes, fixture files, a scripted user.

#include <QTemporaryDir>
#include <deque>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "app/context.h"
#include "core/userinterface.h"

namespace tessarin::buildertest {

inline std::string BuilderFixture(const std::string& relative) {
  return std::string(TESSARIN_TEST_DATA) + "/builder/" + relative;
}

inline std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

inline void WriteBytes(const std::string& path, const std::string& bytes) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << bytes;
}

// The 0-based offset of the first byte of the line that holds `needle`; npos when absent.
inline size_t LineStartOf(const std::string& text, const std::string& needle) {
  const size_t at = text.find(needle);
  if (at == std::string::npos) return at;
  size_t start = at;
  while (start > 0 && text[start - 1] != '\n' && text[start - 1] != '\r') --start;
  return start;
}

// Answers questions from a list (then with `defaultAnswer`) and keeps every message shown.
class ScriptedUi final : public UserInterface {
 public:
  struct Shown {
    std::string text, title;
    Icon icon;
  };
  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    messages.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string& text, const std::string&, Icon) override {
    questions.push_back(text);
    if (answers.empty()) return defaultAnswer;
    const bool answer = answers.front();
    answers.pop_front();
    return answer;
  }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string& pathOrAddress) override { opened.push_back(pathOrAddress); }

  std::vector<Shown> messages;
  std::vector<std::string> opened;
  std::vector<std::string> questions;
  std::deque<bool> answers;
  bool defaultAnswer = true;
};

// A context on its own temporary application folder, with the English messages, a scripted
// user, and a fatal handler that doesn't end the test run.
class TestHome {
 public:
  TestHome() : ctx(dir.path().toStdString()) {
    ctx.log.SetFatalHandler([](const std::string&) {});
    ctx.SetUi(&ui);
    ctx.settings.InfLoad();
    ctx.messages.LanguageNumber = Messages::kEnglish;
    ctx.messages.LoadMessages();
  }
  std::string Folder() const { return ctx.AppFolder(); }
  std::string DataFiles() const { return ctx.AppFolder() + "DataFiles/"; }

  QTemporaryDir dir;
  ScriptedUi ui;
  AppContext ctx;
};

}  // namespace tessarin::buildertest
