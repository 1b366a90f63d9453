// Feeds arbitrary bytes to the zip reader as a file, extracts everything into a scratch folder
// and checks that nothing was written beside that folder.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "archive/zipreader.h"

namespace {

namespace fs = std::filesystem;

// Made once per run and removed at its end.
struct ScratchFolder {
  fs::path path;
  ~ScratchFolder() {
    std::error_code ec;
    fs::remove_all(path, ec);
  }
};

const fs::path& Scratch() {
  static const ScratchFolder folder{[] {
    std::error_code ec;
    fs::path base = fs::temp_directory_path(ec);
    if (ec) base = ".";
    fs::path path = base / ("tessarin-zipfuzz-" + std::to_string(::getpid()));
    fs::remove_all(path, ec);
    fs::create_directories(path / "box");
    return path;
  }()};
  return folder.path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fs::path& scratch = Scratch();
  const fs::path box = scratch / "box";  // the only thing below `scratch` besides the zip
  const fs::path zipPath = scratch / "input.zip";
  {
    std::ofstream out(zipPath, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  tessarin::ZipExtractionClass zip;
  if (zip.ZipOpen(zipPath.string())) {
    for (int i = 1; i <= zip.FileCount(); ++i) {
      std::string content;
      zip.ExtractToMemory(i, content, 1 << 20);
      zip.FindEntry(zip.filename(i));
      (void)zip.FileDateAndTime(i);
    }
    zip.ExtractAllFiles((box / "dest").string(), true, true);
    zip.ExtractAllFiles((box / "flat").string(), false, false);
    zip.ZipClose();
  }
  // Whatever the archive said, all it wrote stays inside the destination folders.
  std::error_code ec;
  for (fs::directory_iterator it(scratch, ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path name = it->path().filename();
    if (name != "box" && name != "input.zip") std::abort();
  }
  for (fs::directory_iterator it(box, ec), end; !ec && it != end; it.increment(ec)) {
    const fs::path name = it->path().filename();
    if (name != "dest" && name != "flat") std::abort();
  }
  fs::remove_all(box / "dest", ec);
  fs::remove_all(box / "flat", ec);
  return 0;
}
