#pragma once

// Zip files for tests, made by Debian's zip from files the test names, and spoiled on purpose.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "support/testfiles.h"

namespace tessarin::testsupport {

// Writes `entries` (name -> content; names may hold folders) into a zip at `zipPath`.
inline void MakeZip(const std::string& zipPath, const std::map<std::string, std::string>& entries) {
  namespace fs = std::filesystem;
  const fs::path stage =
      fs::path(zipPath).parent_path() / (fs::path(zipPath).filename().string() + ".stage");
  fs::remove_all(stage);
  for (const auto& [name, content] : entries) {
    fs::create_directories((stage / name).parent_path());
    WriteFile((stage / name).string(), content);
  }
  fs::remove(zipPath);
  const std::string command =
      "cd '" + stage.string() + "' && zip -q -r -9 -X '" + fs::absolute(zipPath).string() + "' .";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  fs::remove_all(stage);
}

// The zip's bytes with the CRC of the local header of `entryName` changed: the deflated entry
// then fails its CRC check.
inline std::string SpoilCrc(const std::string& zipBytes, const std::string& entryName) {
  std::string spoiled = zipBytes;
  const std::string signature("PK\x03\x04", 4);
  for (size_t at = spoiled.find(signature); at != std::string::npos && at + 30 <= spoiled.size();
       at = spoiled.find(signature, at + 4)) {
    const size_t nameLength = static_cast<unsigned char>(spoiled[at + 26]) |
                              (static_cast<unsigned char>(spoiled[at + 27]) << 8);
    if (spoiled.compare(at + 30, nameLength, entryName) == 0) {
      spoiled[at + 14] = static_cast<char>(spoiled[at + 14] ^ 0x5A);
      return spoiled;
    }
  }
  ADD_FAILURE() << "no local header for " << entryName;
  return spoiled;
}

}  // namespace tessarin::testsupport
