#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarin {

// One file of an open zip, as its central directory describes it.
struct ZipEntry {
  std::string filename;  // '\' between folders, as the rest of the program expects
  std::uint64_t compressedSize = 0;
  std::uint64_t uncompressedSize = 0;
  std::uint16_t dosDate = 0;
  std::uint16_t dosTime = 0;
  std::uint16_t method = 0;
  std::uint16_t flags = 0;
  std::uint32_t crc = 0;
  std::uint64_t localHeaderOffset = 0;
};

// A DOS date and time, as stored in a zip.
struct ZipDateTime {
  int year = 1980, month = 1, day = 1, hour = 0, minute = 0, second = 0;
  // "dd/mm/yyyy hh:mm:ss".
  std::string ToText() const;
};
ZipDateTime DecodeDosDateTime(std::uint16_t dosDate, std::uint16_t dosTime);

// Error codes raised through ZipError. 1 to 5 and 10 to 13 are the reader's classic codes; 6 to 8
// cover what hostile or damaged archives do and what the classic ones had no word for.
enum ZipErrorCode : int {
  kZipNoZlib = 1,
  kZipNotAZip = 2,
  kZipNotOpen = 3,
  kZipBadMethod = 4,
  kZipBadChecksum = 5,
  kZipDamaged = 6,      // data or header lying past the end of the file
  kZipUnsafeName = 7,   // '..', an absolute path or a drive letter
  kZipCannotWrite = 8,  // the target file can't be created
  kZipOverlapping = 9,  // entries share their bytes (a zip bomb's trick): the archive is refused
  kZipMissingFile = 10,
  kZipFileExists = 11,
  kZipCannotDelete = 12,
  kZipCannotMakeFolder = 13,
  kZipNoSpace = 14,  // the entries would not fit the free space of the destination
};

// The text of an error code, with `name` (a path or an entry name) put in.
std::string ZipErrorText(int code, std::string_view name);

// Reads zip archives and writes out their entries, one at a time. It never writes zip files.
//
// Opening reads only the tail of the file and the central directory, so an image pack of several
// gigabytes opens at once; entries are read by their offsets and inflated in blocks, so memory
// stays small whatever the entry's size. Zip64 archives (more than 65,535 entries, or files and
// offsets past 4 GiB) are read too, and entries with a data descriptor are read with the sizes of
// the central directory.
//
// Errors are reported through the ZipError event, never thrown; the operation goes on with the
// next entry except for errors 1, 2, 3, 10 and 13, which end it.
class ZipExtractionClass final {
 public:
  ZipExtractionClass() = default;
  ~ZipExtractionClass();
  ZipExtractionClass(const ZipExtractionClass&) = delete;
  ZipExtractionClass& operator=(const ZipExtractionClass&) = delete;

  // Events. The receiver of Progress may set `cancel` to end the running extraction.
  std::function<void(int percent, bool& cancel)> Progress;
  std::function<void(const std::string& text)> Status;
  std::function<void(int code, const std::string& text)> ZipError;
  // Lines worth keeping in the run log (an entry refused for its name).
  std::function<void(const std::string& line)> LogLine;
  // The free bytes of a destination folder; the file system's own figure when empty (tests
  // give a small one).
  std::function<std::uint64_t(const std::filesystem::path& folder)> FreeSpace;

  // Opens `path`, closing whatever was open. False (with error 10 or 2) when it is missing or is
  // no zip.
  bool ZipOpen(const std::string& path);
  void ZipClose();
  // Writes entry `entry` (1 to FileCount) into `destFolder`. True when the loop over the entries
  // ran to its end, even if the entry itself raised an error; false when cancelled, when no zip is
  // open or when a folder can't be made.
  bool ExtractSingleFile(int entry, const std::string& destFolder, bool keepFolders,
                         bool overwrite);
  // Writes every entry into `destFolder`; true likewise.
  bool ExtractAllFiles(const std::string& destFolder, bool keepFolders, bool overwrite);

  bool ZipIsOpen() const { return m_endRecordPosition != 0; }
  const std::string& ZipComment() const { return m_comment; }
  int FileCount() const { return static_cast<int>(m_entries.size()) - 1; }
  // Entry `entry`'s name with '\' as separator; empty outside 1 to FileCount.
  std::string filename(int entry) const;
  std::uint64_t FileCompressedSize(int entry) const;
  std::uint64_t FileUncompressedSize(int entry) const;
  ZipDateTime FileDateAndTime(int entry) const;
  // zlib's version text.
  std::string ZLibVersion() const;

  // The number of the first entry named `name` ('/' or '\' between folders, case ignored); 0 when
  // there is none. A hash look-up: constant time whatever the archive's size.
  int FindEntry(std::string_view name) const;
  // Entry `entry` inflated into `content`. False (and an error raised) when it is damaged, fails
  // its checksum, or is bigger than `maxSize`.
  bool ExtractToMemory(int entry, std::string& content,
                       std::uint64_t maxSize = 256ull * 1024 * 1024);
  // The entry's full description; entry 0 is an empty one.
  const ZipEntry& Entry(int entry) const;
  const std::string& OpenPath() const { return m_path; }

 private:
  using Sink = std::function<bool(const char* data, std::size_t size)>;
  bool FindEndRecord(std::uint64_t& cdOffset, std::uint64_t& cdSize, std::uint64_t& entryCount);
  bool ReadCentralDirectory(std::uint64_t cdOffset, std::uint64_t cdSize, std::uint64_t entryCount);
  // True when two entries' local headers and data share bytes.
  bool EntriesOverlap() const;
  // Inflates or copies one entry into `sink`. Gives false on any error (already raised).
  // `wroteSomething` tells whether the sink was called with data that must now be thrown away.
  bool ReadEntryData(const ZipEntry& entry, const Sink& sink);
  bool ReadAt(std::uint64_t offset, char* buffer, std::size_t size);
  bool RunExtraction(int onlyEntry, const std::string& destFolder, bool keepFolders,
                     bool overwrite);
  void RaiseStatus(const std::string& text);
  void RaiseError(int code, std::string_view name);
  bool RaiseProgress(int percent);  // true when a receiver asked to cancel

  std::ifstream m_file;
  std::string m_path;
  std::uint64_t m_fileSize = 0;
  std::uint64_t m_endRecordPosition = 0;  // 1-based; 0 while no zip is open
  std::uint16_t m_thisDisk = 0;
  std::uint16_t m_directoryDisk = 0;
  // Added to every stored offset: non-zero for a zip with data in front of it (a self-extractor).
  std::uint64_t m_baseOffset = 0;
  std::string m_comment;
  std::vector<ZipEntry> m_entries{ZipEntry{}};
  std::unordered_map<std::string, int> m_byName;
};

}  // namespace tessarin
