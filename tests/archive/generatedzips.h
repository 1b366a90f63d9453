#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

#include "ziptestutil.h"

namespace tessarin::testing {

// The archives of Python's zipfile and Debian's zip, made by the scripts in tests/data/archive.
// CTest runs every test in a process of its own, so they are made once per build tree and kept
// (bump the folder's version when a script changes); a half-made set is never seen, as it is
// made aside and renamed into place.
inline std::filesystem::path GeneratedZips() {
  namespace fs = std::filesystem;
  const fs::path root = fs::path(TESSARIN_BINARY_DIR) / "test-tmp";
  const fs::path final = root / "generated-zips-v1";
  if (fs::exists(final / "complete")) return final;
  const fs::path work = root / ("generated-zips-" + std::to_string(::getpid()));
  fs::remove_all(work);
  fs::create_directories(work);
  const std::string data = std::string(TESSARIN_TEST_DATA) + "/archive/";
  if (Shell("python3 " + Quote(data + "make_zips.py") + " " + Quote(work.string())) != 0 ||
      Shell("sh " + Quote(data + "make_zips_infozip.sh") + " " + Quote(work.string())) != 0) {
    ADD_FAILURE() << "the archive scripts failed (python3 and zip are needed)";
    return work;
  }
  WriteAll(work / "complete", "1");
  std::error_code ec;
  fs::rename(work, final, ec);
  if (ec) fs::remove_all(work, ec);  // another test process made it first
  return final;
}

}  // namespace tessarin::testing
