#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin::myzip {

// One file to put in the zip.
struct ZipFile {
  std::string FileName;  // its name in the zip, '/' between folders
  std::filesystem::path SourcePath;
  std::uint64_t Size = 0;
  std::uint16_t DosDate = 0x21;  // 1980-01-01
  std::uint16_t DosTime = 0;
};

// Writes standard zip files: raw deflate with its CRC-32, or the stored method for data that
// doesn't shrink, local headers, the central directory and the end record, and the Zip64
// records when there are more than 65,535 files or sizes and offsets reach 4 GiB. Files are read
// and deflated in blocks, so their size doesn't matter.
class ZipClass final {
 public:
  // The files added, in the order they will be written.
  std::vector<ZipFile> Files;
  // Written behind the end record.
  std::string Comment;

  int FileCount() const { return static_cast<int>(Files.size()); }
  // Totals of the last WriteZip.
  std::uint64_t SizeCompressed() const { return m_sizeCompressed; }
  std::uint64_t SizeUncompressed() const { return m_sizeUncompressed; }

  // Adds the files that `fileSpec` names: a file, or a folder and a pattern with the
  // wildcards * and ? ("C:\roms\game\*.*", case ignored; "*.*" matches every name). With
  // `recurseDirectories` the subfolders are walked with the same pattern, each file being named
  // by its path below the start folder. `pathChoice` 0 keeps that path; any other value keeps
  // the file name alone. Gives the number of files added (0 when the folder is missing).
  int FileAdd(std::string_view fileSpec, int pathChoice, bool recurseDirectories);
  // Removes file `index` (1 to FileCount). False when there is no such file.
  bool FileDel(int index);
  // Writes the zip to `path`, replacing it. False when a file can't be read or the zip can't be
  // written; the half-written zip is then deleted.
  bool WriteZip(const std::string& path);

 private:
  std::uint64_t m_sizeCompressed = 0;
  std::uint64_t m_sizeUncompressed = 0;
};

// True when `name` matches `pattern` (* and ?, case ignored; "*.*" matches everything).
bool MatchesPattern(std::string_view name, std::string_view pattern);

}  // namespace tessarin::myzip
