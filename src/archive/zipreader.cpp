#include "archive/zipreader.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>

#include "archive/zippath.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::uint32_t kCentralSignature = 0x02014b50;
constexpr std::uint32_t kLocalSignature = 0x04034b50;
constexpr std::uint32_t kZip64EndSignature = 0x06064b50;
constexpr std::uint32_t kZip64LocatorSignature = 0x07064b50;
constexpr std::size_t kEndRecordSize = 22;
constexpr std::size_t kCentralHeaderSize = 46;
constexpr std::size_t kLocalHeaderSize = 30;
constexpr std::size_t kZip64EndSize = 56;
constexpr std::size_t kZip64LocatorSize = 20;
constexpr std::size_t kBlockSize = 64 * 1024;

std::uint16_t Read16(const char* p) {
  const auto* u = reinterpret_cast<const unsigned char*>(p);
  return static_cast<std::uint16_t>(u[0] | (u[1] << 8));
}
std::uint32_t Read32(const char* p) {
  const auto* u = reinterpret_cast<const unsigned char*>(p);
  return static_cast<std::uint32_t>(u[0]) | (static_cast<std::uint32_t>(u[1]) << 8) |
         (static_cast<std::uint32_t>(u[2]) << 16) | (static_cast<std::uint32_t>(u[3]) << 24);
}
std::uint64_t Read64(const char* p) {
  return static_cast<std::uint64_t>(Read32(p)) | (static_cast<std::uint64_t>(Read32(p + 4)) << 32);
}

}  // namespace

std::string ZipDateTime::ToText() const {
  char text[32];
  std::snprintf(text, sizeof text, "%02d/%02d/%04d %02d:%02d:%02d", day, month, year, hour, minute,
                second);
  return text;
}

ZipDateTime DecodeDosDateTime(std::uint16_t dosDate, std::uint16_t dosTime) {
  ZipDateTime result;
  result.day = dosDate & 0x1f;
  result.month = (dosDate >> 5) & 0x0f;
  result.year = 1980 + (dosDate >> 9);
  result.second = (dosTime & 0x1f) * 2;
  result.minute = (dosTime >> 5) & 0x3f;
  result.hour = dosTime >> 11;
  return result;
}

std::string ZipErrorText(int code, std::string_view name) {
  const std::string n(name);
  switch (code) {
    case kZipNoZlib:
      return "La librairie Zlib n'est pas installée";
    case kZipNotAZip:
      return "Le fichier " + n + " n'est pas un fichier Zip";
    case kZipNotOpen:
      return "Il n'y a pas de fichier Zip ouvert";
    case kZipBadMethod:
      return "La méthode de compression pour " + n + " n'est pas supportée";
    case kZipBadChecksum:
      return "Erreur de checksum dans " + n;
    case kZipDamaged:
      return "Le fichier " + n + " est endommagé";
    case kZipUnsafeName:
      return "Le nom " + n + " sort du répertoire de destination";
    case kZipCannotWrite:
      return "Impossible d'écrire le fichier " + n;
    case kZipMissingFile:
      return "Le fichier " + n + " n'existe pas";
    case kZipFileExists:
      return "Le fichier " + n + " existe déjà";
    case kZipCannotDelete:
      return "Ne peut pas supprimer le fichier " + n;
    case kZipCannotMakeFolder:
      return "Impossible de créer le répertoire " + n;
    case kZipOverlapping:
      return "Le fichier " + n + " a des entrées qui se recouvrent (refusé)";
    case kZipNoSpace:
      return "Pas assez de place pour extraire dans " + n;
    default:
      return "Erreur " + std::to_string(code) + " " + n;
  }
}

ZipExtractionClass::~ZipExtractionClass() {
  // The receivers of the events may be gone already: close without a word.
  Status = nullptr;
  ZipClose();
}

void ZipExtractionClass::RaiseStatus(const std::string& text) {
  if (Status) Status(text);
}

void ZipExtractionClass::RaiseError(int code, std::string_view name) {
  if (ZipError) ZipError(code, ZipErrorText(code, name));
}

bool ZipExtractionClass::RaiseProgress(int percent) {
  bool cancel = false;
  if (Progress) Progress(percent, cancel);
  return cancel;
}

std::string ZipExtractionClass::ZLibVersion() const {
  const char* version = zlibVersion();
  return version ? version : "";
}

void ZipExtractionClass::ZipClose() {
  const bool wasOpen = ZipIsOpen();
  if (m_file.is_open()) m_file.close();
  m_file.clear();
  m_path.clear();
  m_fileSize = 0;
  m_endRecordPosition = 0;
  m_thisDisk = m_directoryDisk = 0;
  m_baseOffset = 0;
  m_comment.clear();
  m_entries.assign(1, ZipEntry{});
  m_byName.clear();
  if (wasOpen) RaiseStatus("Zip fermé");
}

bool ZipExtractionClass::ReadAt(std::uint64_t offset, char* buffer, std::size_t size) {
  if (offset > m_fileSize || size > m_fileSize - offset) return false;
  m_file.clear();
  m_file.seekg(static_cast<std::streamoff>(offset));
  m_file.read(buffer, static_cast<std::streamsize>(size));
  return static_cast<std::size_t>(m_file.gcount()) == size;
}

bool ZipExtractionClass::ZipOpen(const std::string& path) {
  RaiseStatus("Ouverture du Zip");
  ZipClose();
  std::error_code ec;
  const fs::path native = PathFromText(path);
  if (!fs::is_regular_file(native, ec)) {
    RaiseError(kZipMissingFile, path);
    return false;
  }
  m_file.open(native, std::ios::binary);
  const std::uintmax_t size = fs::file_size(native, ec);
  if (!m_file.is_open() || ec) {
    m_file.close();
    RaiseError(kZipMissingFile, path);
    return false;
  }
  m_fileSize = size;
  m_path = path;

  std::uint64_t cdOffset = 0, cdSize = 0, entryCount = 0;
  if (!FindEndRecord(cdOffset, cdSize, entryCount)) {
    m_file.close();
    m_path.clear();
    m_fileSize = 0;
    m_endRecordPosition = 0;
    RaiseError(kZipNotAZip, path);
    return false;
  }
  RaiseStatus("Zip ouvert");
  if (ZLibVersion().empty()) {
    RaiseError(kZipNoZlib, {});
    return true;
  }
  ReadCentralDirectory(cdOffset, cdSize, entryCount);
  // Entries whose data overlap let a small archive write the same bytes over and over (20,000
  // entries on one local header declare terabytes): such an archive is refused whole.
  if (EntriesOverlap()) {
    m_file.close();
    m_entries.assign(1, ZipEntry{});
    m_byName.clear();
    RaiseError(kZipOverlapping, path);
    m_path.clear();
    m_fileSize = 0;
    m_endRecordPosition = 0;
    return false;
  }
  return true;
}

bool ZipExtractionClass::EntriesOverlap() const {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> spans;  // [start, end) of each entry
  spans.reserve(m_entries.size());
  for (std::size_t i = 1; i < m_entries.size(); ++i) {
    const ZipEntry& e = m_entries[i];
    // The local header is at least 30 bytes and the name, then the data: a lower bound of the
    // entry's real end, so an honest archive never looks overlapping.
    spans.emplace_back(e.localHeaderOffset,
                       e.localHeaderOffset + 30 + e.filename.size() + e.compressedSize);
  }
  std::sort(spans.begin(), spans.end());
  for (std::size_t i = 1; i < spans.size(); ++i) {
    if (spans[i].first < spans[i - 1].second) return true;
  }
  return false;
}

// Walks back from the end of the file for the end record. The last record in the file that is
// consistent (its comment fits in the file and its directory stands in front of it) wins, so a
// comment that happens to hold the signature doesn't fool the reader. Only the tail is read: the
// record plus the longest comment it can have.
bool ZipExtractionClass::FindEndRecord(std::uint64_t& cdOffset, std::uint64_t& cdSize,
                                       std::uint64_t& entryCount) {
  if (m_fileSize < kEndRecordSize) return false;
  const std::uint64_t tailLength =
      std::min<std::uint64_t>(m_fileSize, kEndRecordSize + 0xffff + kZip64LocatorSize);
  const std::uint64_t tailStart = m_fileSize - tailLength;
  std::string tail(static_cast<std::size_t>(tailLength), '\0');
  if (!ReadAt(tailStart, tail.data(), tail.size())) return false;

  for (std::size_t i = tail.size() - kEndRecordSize + 1; i-- > 0;) {
    if (Read32(tail.data() + i) != kEndSignature) continue;
    const char* record = tail.data() + i;
    const std::uint64_t position = tailStart + i;
    const std::uint16_t commentLength = Read16(record + 20);
    if (position + kEndRecordSize + commentLength > m_fileSize) continue;
    std::uint64_t entries = Read16(record + 10);
    std::uint64_t size = Read32(record + 12);
    std::uint64_t offset = Read32(record + 16);
    std::uint32_t thisDisk = Read16(record + 4);
    std::uint32_t directoryDisk = Read16(record + 6);
    std::uint64_t directoryEnd = position;  // where the directory (or the Zip64 records) ends

    // A Zip64 archive puts its true numbers in a Zip64 end record, found through the locator
    // that stands right in front of the classic end record.
    if (position >= kZip64LocatorSize && i >= kZip64LocatorSize &&
        Read32(record - kZip64LocatorSize) == kZip64LocatorSignature) {
      const std::uint64_t zip64Offset = Read64(record - kZip64LocatorSize + 8);
      std::array<char, kZip64EndSize> zip64{};
      if (zip64Offset + kZip64EndSize <= position - kZip64LocatorSize &&
          ReadAt(zip64Offset, zip64.data(), zip64.size()) &&
          Read32(zip64.data()) == kZip64EndSignature) {
        thisDisk = Read32(zip64.data() + 16);
        directoryDisk = Read32(zip64.data() + 20);
        entries = Read64(zip64.data() + 32);
        size = Read64(zip64.data() + 40);
        offset = Read64(zip64.data() + 48);
        directoryEnd = zip64Offset;
      }
    }
    if (size > directoryEnd) continue;
    // Data in front of the archive (a self-extractor) shifts every offset by the same amount.
    std::uint64_t base = 0;
    if (offset + size != directoryEnd && size <= directoryEnd) {
      const std::uint64_t actual = directoryEnd - size;
      if (actual > offset) base = actual - offset;
    }
    if (offset + base + size > directoryEnd) continue;

    m_endRecordPosition = position + 1;
    m_thisDisk = static_cast<std::uint16_t>(thisDisk);
    m_directoryDisk = static_cast<std::uint16_t>(directoryDisk);
    m_baseOffset = base;
    m_comment.assign(record + kEndRecordSize, commentLength);
    cdOffset = offset + base;
    cdSize = size;
    entryCount = entries;
    return true;
  }
  return false;
}

bool ZipExtractionClass::ReadCentralDirectory(std::uint64_t cdOffset, std::uint64_t cdSize,
                                              std::uint64_t entryCount) {
  // The directory is bounded by the file (checked when the end record was found), so this is
  // never a huge allocation, whatever the counts in the end record say.
  std::string directory(static_cast<std::size_t>(cdSize), '\0');
  if (!ReadAt(cdOffset, directory.data(), directory.size())) return false;
  const std::uint64_t plausible = cdSize / kCentralHeaderSize;
  m_entries.reserve(static_cast<std::size_t>(std::min(entryCount, plausible)) + 1);
  m_byName.reserve(static_cast<std::size_t>(std::min(entryCount, plausible)));

  std::size_t position = 0;
  for (std::uint64_t slot = 0; slot < entryCount; ++slot) {
    if (directory.size() - position < kCentralHeaderSize) break;
    const char* header = directory.data() + position;
    if (Read32(header) != kCentralSignature) break;
    const std::size_t nameLength = Read16(header + 28);
    const std::size_t extraLength = Read16(header + 30);
    const std::size_t commentLength = Read16(header + 32);
    const std::size_t total = kCentralHeaderSize + nameLength + extraLength + commentLength;
    if (directory.size() - position < total) break;

    ZipEntry entry;
    entry.flags = Read16(header + 8);
    entry.method = Read16(header + 10);
    entry.dosTime = Read16(header + 12);
    entry.dosDate = Read16(header + 14);
    entry.crc = Read32(header + 16);
    entry.compressedSize = Read32(header + 20);
    entry.uncompressedSize = Read32(header + 24);
    entry.localHeaderOffset = Read32(header + 42);
    entry.filename.assign(header + kCentralHeaderSize, nameLength);

    // Zip64 extra field: the 64-bit values of exactly those fields that hold 0xffffffff.
    const char* extra = header + kCentralHeaderSize + nameLength;
    for (std::size_t e = 0; e + 4 <= extraLength;) {
      const std::uint16_t id = Read16(extra + e);
      const std::size_t length = Read16(extra + e + 2);
      if (e + 4 + length > extraLength) break;
      if (id == 0x0001) {
        const char* field = extra + e + 4;
        std::size_t left = length;
        auto take = [&](std::uint64_t& value) {
          if (value != 0xffffffffu || left < 8) return;
          value = Read64(field);
          field += 8;
          left -= 8;
        };
        take(entry.uncompressedSize);
        take(entry.compressedSize);
        take(entry.localHeaderOffset);
      }
      e += 4 + length;
    }
    position += total;

    // Folders and empty files have nothing to write: they stay out of the table.
    if (entry.uncompressedSize == 0) continue;
    std::replace(entry.filename.begin(), entry.filename.end(), '/', '\\');
    m_byName.emplace(EntryNameKey(entry.filename), static_cast<int>(m_entries.size()));
    m_entries.push_back(std::move(entry));
  }
  return true;
}

std::string ZipExtractionClass::filename(int entry) const {
  if (entry < 1 || entry > FileCount()) return {};
  return m_entries[static_cast<std::size_t>(entry)].filename;
}

std::uint64_t ZipExtractionClass::FileCompressedSize(int entry) const {
  return Entry(entry).compressedSize;
}

std::uint64_t ZipExtractionClass::FileUncompressedSize(int entry) const {
  return Entry(entry).uncompressedSize;
}

ZipDateTime ZipExtractionClass::FileDateAndTime(int entry) const {
  const ZipEntry& e = Entry(entry);
  return DecodeDosDateTime(e.dosDate, e.dosTime);
}

const ZipEntry& ZipExtractionClass::Entry(int entry) const {
  if (entry < 1 || entry > FileCount()) return m_entries[0];
  return m_entries[static_cast<std::size_t>(entry)];
}

int ZipExtractionClass::FindEntry(std::string_view name) const {
  const auto found = m_byName.find(EntryNameKey(name));
  return found == m_byName.end() ? 0 : found->second;
}

bool ZipExtractionClass::ReadEntryData(const ZipEntry& entry, const Sink& sink) {
  const std::uint64_t localOffset = entry.localHeaderOffset + m_baseOffset;
  std::array<char, kLocalHeaderSize> local{};
  if (localOffset < entry.localHeaderOffset || !ReadAt(localOffset, local.data(), local.size())) {
    RaiseError(kZipDamaged, entry.filename);
    return false;
  }
  // A header that isn't a local header is passed over without a word, as it always was.
  if (Read32(local.data()) != kLocalSignature) return false;

  const std::uint16_t flags = Read16(local.data() + 6);
  const std::uint16_t method = Read16(local.data() + 8);
  std::uint32_t crc = Read32(local.data() + 14);
  std::uint64_t compressed = Read32(local.data() + 18);
  std::uint64_t uncompressed = Read32(local.data() + 22);
  // Sizes written behind the data (a data descriptor) or in a Zip64 field: the central
  // directory has them.
  if ((flags & 0x0008) != 0 || compressed == 0xffffffffu || uncompressed == 0xffffffffu) {
    crc = entry.crc;
    compressed = entry.compressedSize;
    uncompressed = entry.uncompressedSize;
  }
  const std::uint64_t dataStart =
      localOffset + kLocalHeaderSize + Read16(local.data() + 26) + Read16(local.data() + 28);
  if (dataStart > m_fileSize || compressed > m_fileSize - dataStart) {
    RaiseError(kZipDamaged, entry.filename);
    return false;
  }

  std::string input(kBlockSize, '\0');
  std::uint64_t left = compressed;
  std::uint64_t at = dataStart;

  if (method == 0) {
    // Stored: written as it stands, without a checksum test.
    while (left > 0) {
      const std::size_t chunk = static_cast<std::size_t>(std::min<std::uint64_t>(left, kBlockSize));
      if (!ReadAt(at, input.data(), chunk)) {
        RaiseError(kZipDamaged, entry.filename);
        return false;
      }
      if (!sink(input.data(), chunk)) return false;
      at += chunk;
      left -= chunk;
    }
    return true;
  }
  if (method != 8) {
    RaiseError(kZipBadMethod, entry.filename);
    return false;
  }

  // Deflated: a raw deflate stream, inflated block by block. The output may not pass the size
  // that the header gives, and only a matching size and checksum make a good entry.
  z_stream stream{};
  if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) {
    RaiseError(kZipNoZlib, {});
    return false;
  }
  std::string output(kBlockSize, '\0');
  std::uint64_t produced = 0;
  uLong check = crc32(0L, Z_NULL, 0);
  bool good = true;
  bool ended = false;
  while (good && !ended) {
    if (stream.avail_in == 0 && left > 0) {
      const std::size_t chunk = static_cast<std::size_t>(std::min<std::uint64_t>(left, kBlockSize));
      if (!ReadAt(at, input.data(), chunk)) {
        good = false;
        break;
      }
      at += chunk;
      left -= chunk;
      stream.next_in = reinterpret_cast<Bytef*>(input.data());
      stream.avail_in = static_cast<uInt>(chunk);
    }
    stream.next_out = reinterpret_cast<Bytef*>(output.data());
    stream.avail_out = static_cast<uInt>(output.size());
    const int result = inflate(&stream, Z_NO_FLUSH);
    const std::size_t got = output.size() - stream.avail_out;
    if (got > 0) {
      if (produced + got > uncompressed) {
        good = false;
        break;
      }
      produced += got;
      check = crc32(check, reinterpret_cast<const Bytef*>(output.data()), static_cast<uInt>(got));
      if (!sink(output.data(), got)) {
        inflateEnd(&stream);
        return false;
      }
    }
    if (result == Z_STREAM_END) {
      ended = true;
    } else if (result == Z_BUF_ERROR && stream.avail_in == 0 && left == 0) {
      good = false;  // the data ran out before the stream ended
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
      good = false;
    }
  }
  inflateEnd(&stream);
  if (!good || produced != uncompressed || check != crc) {
    RaiseError(kZipBadChecksum, entry.filename);
    return false;
  }
  return true;
}

bool ZipExtractionClass::ExtractToMemory(int entry, std::string& content, std::uint64_t maxSize) {
  content.clear();
  if (!ZipIsOpen()) {
    RaiseError(kZipNotOpen, {});
    return false;
  }
  if (entry < 1 || entry > FileCount()) return false;
  const ZipEntry& e = m_entries[static_cast<std::size_t>(entry)];
  if (e.uncompressedSize > maxSize) {
    RaiseError(kZipDamaged, e.filename);
    return false;
  }
  content.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(
      e.uncompressedSize, std::min<std::uint64_t>(maxSize, m_fileSize * 4 + 4096))));
  const bool ok = ReadEntryData(e, [&](const char* data, std::size_t size) {
    if (content.size() + size > maxSize) return false;
    content.append(data, size);
    return true;
  });
  if (!ok) content.clear();
  return ok;
}

bool ZipExtractionClass::ExtractSingleFile(int entry, const std::string& destFolder,
                                           bool keepFolders, bool overwrite) {
  return RunExtraction(entry, destFolder, keepFolders, overwrite);
}

bool ZipExtractionClass::ExtractAllFiles(const std::string& destFolder, bool keepFolders,
                                         bool overwrite) {
  return RunExtraction(0, destFolder, keepFolders, overwrite);
}

bool ZipExtractionClass::RunExtraction(int onlyEntry, const std::string& destFolder,
                                       bool keepFolders, bool overwrite) {
  if (ZLibVersion().empty()) return false;
  RaiseStatus("Début d'extraction");
  if (!ZipIsOpen()) {
    RaiseError(kZipNotOpen, {});
    return false;
  }
  std::error_code ec;
  const fs::path destination = PathFromText(destFolder);
  if (!fs::is_directory(destination, ec)) {
    fs::create_directories(destination, ec);
    if (!fs::is_directory(destination, ec)) {
      RaiseError(kZipCannotMakeFolder, destFolder);
      return false;
    }
  }
  // An archive split over several disks is not ours to read.
  if (m_thisDisk != m_directoryDisk) {
    RaiseStatus("Extraction terminée");
    return false;
  }

  const int count = FileCount();
  // What the entries will take must fit the free space of the destination: a bomb is stopped
  // before it has filled the disk, with the reason told.
  std::uint64_t needed = 0;
  for (int number = 1; number <= count; ++number) {
    if (onlyEntry == 0 || number == onlyEntry) {
      needed += m_entries[static_cast<std::size_t>(number)].uncompressedSize;
    }
  }
  std::uint64_t available = UINT64_MAX;
  if (FreeSpace) {
    available = FreeSpace(destination);
  } else {
    const fs::space_info space = fs::space(destination, ec);
    if (!ec) available = space.available;
  }
  if (needed > available) {
    RaiseError(kZipNoSpace, destFolder + " (" + std::to_string(needed) + " octets > " +
                                std::to_string(available) + ")");
    if (LogLine) {
      LogLine("Zip not extracted, its " + std::to_string(needed) + " bytes don't fit the " +
              std::to_string(available) + " bytes free in " + destFolder + ": " + m_path);
    }
    return false;
  }
  for (int number = 1; number <= count; ++number) {
    if (onlyEntry == 0 || number == onlyEntry) {
      const ZipEntry& entry = m_entries[static_cast<std::size_t>(number)];
      const std::optional<std::vector<std::string>> parts = SafeEntryParts(entry.filename);
      if (!parts) {
        RaiseError(kZipUnsafeName, entry.filename);
        if (LogLine) {
          LogLine("Zip entry refused, its name leads out of the destination folder: " +
                  entry.filename + " in " + m_path);
        }
      } else {
        fs::path target = destination;
        bool folderFailed = false;
        std::string shown;
        bool throughLink = false;
        if (keepFolders) {
          for (std::size_t i = 0; i + 1 < parts->size(); ++i) {
            target /= PathFromText((*parts)[i]);
            // A link already inside the destination could lead the entry out of it.
            if (fs::is_symlink(fs::symlink_status(target, ec))) {
              throughLink = true;
              break;
            }
            if (!fs::is_directory(target, ec)) {
              fs::create_directory(target, ec);
              if (!fs::is_directory(target, ec)) {
                folderFailed = true;
                break;
              }
            }
            shown += (*parts)[i] + '\\';
          }
        }
        if (folderFailed) {
          RaiseError(kZipCannotMakeFolder, TextFromPath(target));
          return false;
        }
        if (throughLink) {
          RaiseError(kZipUnsafeName, entry.filename);
          if (LogLine) {
            LogLine("Zip entry refused, a link on its way leads out of the destination folder: " +
                    entry.filename + " in " + m_path);
          }
        }
        target /= PathFromText(parts->back());
        shown += parts->back();
        RaiseStatus(shown + "Extraction ...\\");

        bool go = !throughLink;
        if (go && fs::exists(fs::symlink_status(target, ec))) {
          if (!overwrite) {
            RaiseError(kZipFileExists, TextFromPath(target));
            go = false;
          } else if (!fs::remove(target, ec) || ec) {
            RaiseError(kZipCannotDelete, TextFromPath(target));
            go = false;
          }
        }
        if (go) {
          std::ofstream out(target, std::ios::binary | std::ios::trunc);
          if (!out.is_open()) {
            RaiseError(kZipCannotWrite, TextFromPath(target));
          } else {
            bool writeFailed = false;
            std::uint64_t written = 0;
            const bool ok = ReadEntryData(entry, [&](const char* data, std::size_t size) {
              // Never more than the entry declares, whatever its data inflate to.
              written += size;
              if (written > entry.uncompressedSize) return false;
              out.write(data, static_cast<std::streamsize>(size));
              if (!out) writeFailed = true;
              return !writeFailed;
            });
            out.close();
            if (writeFailed) RaiseError(kZipCannotWrite, TextFromPath(target));
            // A deflated entry that fails its checksum leaves no file behind.
            if (!ok) fs::remove(target, ec);
          }
        }
      }
    }
    const int percent =
        onlyEntry == 0 ? static_cast<int>(static_cast<long long>(number) * 100 / count) : 100;
    if (RaiseProgress(percent)) return false;
  }
  RaiseStatus("Extraction terminée");
  return true;
}

}  // namespace tessarin
