#include "archive/stagedunzip.h"

#include <atomic>
#include <filesystem>
#include <system_error>

#include "core/fileservices.h"
#include "core/log.h"

namespace tessarin {

namespace {

namespace fs = std::filesystem;

// Moves every file of `from` into `to`, keeping the folders, replacing files of the same name.
bool MoveTreeInto(const fs::path& from, const fs::path& to) {
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(from, ec);
       !ec && it != fs::recursive_directory_iterator(); it.increment(ec)) {
    const fs::path relative = fs::relative(it->path(), from, ec);
    if (ec) return false;
    const fs::path target = to / relative;
    if (it->is_directory(ec)) {
      fs::create_directories(target, ec);
      if (ec) return false;
      continue;
    }
    fs::create_directories(target.parent_path(), ec);
    if (ec) return false;
    // A rename inside one file system replaces the old file in one step.
    fs::rename(it->path(), target, ec);
    if (ec) {
      ec.clear();
      fs::copy_file(it->path(), target, fs::copy_options::overwrite_existing, ec);
      if (ec) return false;
    }
  }
  return !ec;
}

}  // namespace

bool UnzipAllStaged(const UnzipEnvironment& environment, const std::string& zipPath,
                    const std::string& destFolder) {
  static std::atomic<int> serial{0};
  const std::string dest = AddSlash(destFolder.empty() ? environment.appFolder : destFolder);
  std::error_code ec;
  fs::create_directories(FsPath(dest), ec);
  const fs::path staging =
      FsPath(dest) / (".tessarin-unpack-" + std::to_string(serial.fetch_add(1)));
  fs::remove_all(staging, ec);
  if (environment.unzipError) environment.unzipError->clear();
  bool ok = UnzipAll(environment, zipPath, PathText(staging), true);
  if (ok && environment.unzipError && !environment.unzipError->empty()) ok = false;
  if (ok && !MoveTreeInto(staging, FsPath(dest))) {
    if (environment.unzipError) {
      *environment.unzipError = "Can't move the unpacked files into " + dest;
    }
    ok = false;
  }
  fs::remove_all(staging, ec);
  return ok;
}

}  // namespace tessarin
