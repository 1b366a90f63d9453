#pragma once

// A folder of the fuzzer's own under the system's temporary folder, made on first use and
// removed when the run ends; the process id keeps parallel runs apart.

#include <unistd.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace fuzzsupport {

struct ScratchFolder {
  std::string path;
  ~ScratchFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path, ec);
  }
};

// `tag` names the fuzzer; the path ends with '/'. Every call of one run gives the same folder.
inline const std::string& Folder(const char* tag) {
  static const ScratchFolder folder{[tag] {
    std::error_code ec;
    std::filesystem::path base = std::filesystem::temp_directory_path(ec);
    if (ec) base = ".";
    const std::filesystem::path path =
        base / (std::string("tessarin-") + tag + "-" + std::to_string(::getpid()));
    std::filesystem::create_directories(path, ec);
    return path.string() + "/";
  }()};
  return folder.path;
}

}  // namespace fuzzsupport
