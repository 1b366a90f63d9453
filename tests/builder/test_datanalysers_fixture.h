#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/context.h"
#include "core/work.h"
#include "store/gamerecord.h"

namespace tessarin::testing {

// An application folder of its own per test, with a store of a few games made as the XML
// import makes them, and helpers to put data files where the analysers look.
class AnalyserTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    app = m_dir.path().toStdString() + "/";
    ctx = std::make_unique<AppContext>(app);
    for (const char* name :
         {"alpha", "beta", "gamma", "delta", "epsilon", "zeta", "orphan", "007game", "a", "b"}) {
      AddGame(name);
    }
  }

  int AddGame(const std::string& name) {
    return ctx->store.AppendGame(name, NewXmlRecord(name, 1000 + ctx->store.GameCount()));
  }
  int Game(const std::string& name) const { return ctx->store.FindGame(name); }
  std::string& Record(const std::string& name) {
    return ctx->store.GameRecords[static_cast<size_t>(Game(name))];
  }
  // The value of a field of a game, as every reader takes it.
  std::string Field(const std::string& name, char tag) {
    return std::string(FieldValue(Record(name), tag));
  }

  static std::string FixturePath(const std::string& relative) {
    return std::string(TESSARIN_TEST_DATA) + "/builder/" + relative;
  }
  static std::string ReadFile(const std::string& path) {
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  static void WriteFile(const std::string& path, std::string_view content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream out(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    ASSERT_TRUE(out.good()) << path;
  }
  // The text with every LF turned into `lineEnd` (the fixtures are written with LF).
  static std::string WithLineEnds(std::string_view text, std::string_view lineEnd) {
    std::string out;
    for (char c : text) {
      if (c == '\n') {
        out += lineEnd;
      } else {
        out += c;
      }
    }
    return out;
  }
  // Puts a fixture (or its version with other line ends) at `relative` in the application
  // folder and gives the full path.
  std::string Install(const std::string& fixture, const std::string& relative,
                      std::string_view lineEnd = "\n") {
    const std::string path = app + relative;
    std::string text = ReadFile(FixturePath(fixture));
    if (lineEnd != "\n") text = WithLineEnds(text, lineEnd);
    WriteFile(path, text);
    return path;
  }
  std::string LogText() const { return ReadFile(ctx->log.LogPath()); }

  QTemporaryDir m_dir;
  std::string app;
  std::unique_ptr<AppContext> ctx;
  Work work;
};

}  // namespace tessarin::testing
