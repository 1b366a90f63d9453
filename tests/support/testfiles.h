#pragma once

// Files and folders for tests: a fresh folder per test, and whole-file reads and writes.

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace tessarin::testsupport {

// A fresh folder per test, removed with everything in it at the end. Path() ends with '/'.
class TempFolder {
 public:
  TempFolder() { EXPECT_TRUE(m_dir.isValid()); }
  std::string Path() const { return m_dir.path().toStdString() + "/"; }
  std::string operator/(std::string_view name) const { return Path() + std::string(name); }

 private:
  QTemporaryDir m_dir;
};

inline std::string ReadFile(const std::string& path) {
  std::ifstream in(std::filesystem::path(path), std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline void WriteFile(const std::string& path, std::string_view content) {
  std::ofstream out(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  ASSERT_TRUE(out.good()) << path;
}

}  // namespace tessarin::testsupport
