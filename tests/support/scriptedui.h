#pragma once

// A front end for tests: it answers questions from a script (then with a default answer) and
// keeps every message shown and every document opened.

#include <deque>
#include <mutex>
#include <string>
#include <vector>

#include "core/userinterface.h"

namespace tessarin::testsupport {

class ScriptedUi final : public UserInterface {
 public:
  struct Shown {
    std::string text, title;
    Icon icon;
  };
  void ShowMessage(bool, const std::string& text, const std::string& title, Icon icon) override {
    std::lock_guard lock(m_mutex);
    messages.push_back({text, title, icon});
  }
  bool AskYesNo(const std::string& text, const std::string&, Icon) override {
    std::lock_guard lock(m_mutex);
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
  void OpenDocument(const std::string& path) override {
    std::lock_guard lock(m_mutex);
    opened.push_back(path);
  }
  // True when a message with exactly this text was shown.
  bool Showed(const std::string& text) const {
    std::lock_guard lock(m_mutex);
    for (const Shown& m : messages) {
      if (m.text == text) return true;
    }
    return false;
  }

  std::vector<Shown> messages;
  std::vector<std::string> questions;
  std::vector<std::string> opened;
  std::deque<bool> answers;
  bool defaultAnswer = true;

 private:
  mutable std::mutex m_mutex;
};

}  // namespace tessarin::testsupport
