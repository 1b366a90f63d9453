#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "core/userinterface.h"
#include "support/testfiles.h"

namespace tessarin::testing {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

// The names of the entries of a folder, sorted.
inline std::vector<std::string> FolderEntries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(folder))) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// Splits on CR LF only; a final CR LF starts no further line. A lone LF or CR stays inside a
// line, so a test sees a wrong line end as a wrong line.
inline std::vector<std::string> CrLfLines(std::string_view text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find("\r\n", start);
    if (end == std::string_view::npos) {
      lines.emplace_back(text.substr(start));
      break;
    }
    lines.emplace_back(text.substr(start, end - start));
    start = end + 2;
  }
  return lines;
}

// Records what a routine tells the user; answers questions with a scripted value.
class RecordingUi final : public UserInterface {
 public:
  struct Shown {
    bool modeless;
    std::string text;
    std::string title;
    Icon icon;
  };
  std::vector<Shown> shown;
  bool answer = false;

  void ShowMessage(bool modeless, const std::string& text, const std::string& title,
                   Icon icon) override {
    shown.push_back({modeless, text, title, icon});
  }
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return answer; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string&) override {}
};

}  // namespace tessarin::testing
