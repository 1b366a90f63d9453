#include "zipworker/zipclass.h"

#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <system_error>

#include "core/textutil.h"

namespace tessarin::myzip {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBlockSize = 256 * 1024;
constexpr std::uint64_t kMax32 = 0xffffffffu;

void DosStamp(const fs::path& path, std::uint16_t& date, std::uint16_t& time) {
  date = 0x21;
  time = 0;
  std::error_code ec;
  const fs::file_time_type stamp = fs::last_write_time(path, ec);
  if (ec) return;
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::file_clock::to_sys(stamp));
  // The worker is single-threaded, so the static buffer of localtime is safe here.
  const std::tm* local = std::localtime(&seconds);
  if (!local || local->tm_year < 80) return;
  const int year = std::min(local->tm_year - 80, 127);
  date = static_cast<std::uint16_t>((year << 9) | ((local->tm_mon + 1) << 5) | local->tm_mday);
  time = static_cast<std::uint16_t>((local->tm_hour << 11) | (local->tm_min << 5) |
                                    (local->tm_sec / 2));
}

bool IsUtf8NonAscii(std::string_view text) {
  bool nonAscii = false;
  for (std::size_t i = 0; i < text.size();) {
    const auto c = static_cast<unsigned char>(text[i]);
    std::size_t length = c < 0x80         ? 1
                         : (c >> 5) == 6  ? 2
                         : (c >> 4) == 14 ? 3
                         : (c >> 3) == 30 ? 4
                                          : 0;
    if (length == 0 || i + length > text.size()) return false;
    for (std::size_t k = 1; k < length; ++k) {
      if ((static_cast<unsigned char>(text[i + k]) >> 6) != 2) return false;
    }
    if (length > 1) nonAscii = true;
    i += length;
  }
  return nonAscii;
}

void Put16(std::string& out, std::uint32_t value) {
  out += static_cast<char>(value & 0xff);
  out += static_cast<char>((value >> 8) & 0xff);
}
void Put32(std::string& out, std::uint32_t value) {
  Put16(out, value & 0xffff);
  Put16(out, value >> 16);
}
void Put64(std::string& out, std::uint64_t value) {
  Put32(out, static_cast<std::uint32_t>(value & kMax32));
  Put32(out, static_cast<std::uint32_t>(value >> 32));
}
std::uint32_t Clamp32(std::uint64_t value) {
  return value >= kMax32 ? static_cast<std::uint32_t>(kMax32) : static_cast<std::uint32_t>(value);
}

struct Written {
  std::uint64_t offset = 0;
  std::uint64_t compressed = 0;
  std::uint64_t uncompressed = 0;
  std::uint32_t crc = 0;
  std::uint16_t method = 8;
  std::uint16_t flags = 0;
  bool zip64Local = false;
};

// The local header, with the sizes known or still to be patched in.
std::string LocalHeader(const ZipFile& file, const Written& w) {
  std::string h;
  Put32(h, 0x04034b50);
  Put16(h, w.zip64Local ? 45 : 20);
  Put16(h, w.flags);
  Put16(h, w.method);
  Put16(h, file.DosTime);
  Put16(h, file.DosDate);
  Put32(h, w.crc);
  Put32(h, w.zip64Local ? static_cast<std::uint32_t>(kMax32)
                        : static_cast<std::uint32_t>(w.compressed));
  Put32(h, w.zip64Local ? static_cast<std::uint32_t>(kMax32)
                        : static_cast<std::uint32_t>(w.uncompressed));
  Put16(h, static_cast<std::uint32_t>(file.FileName.size()));
  Put16(h, w.zip64Local ? 20 : 0);
  h += file.FileName;
  if (w.zip64Local) {
    Put16(h, 0x0001);
    Put16(h, 16);
    Put64(h, w.uncompressed);
    Put64(h, w.compressed);
  }
  return h;
}

class Output {
 public:
  explicit Output(const fs::path& path)
      : m_stream(path, std::ios::binary | std::ios::in | std::ios::out | std::ios::trunc) {}
  bool Good() const { return m_stream.good(); }
  std::uint64_t Position() const { return m_position; }
  void Write(const char* data, std::size_t size) {
    m_stream.write(data, static_cast<std::streamsize>(size));
    m_position += size;
    m_end = std::max(m_end, m_position);
  }
  void Write(const std::string& data) { Write(data.data(), data.size()); }
  void Seek(std::uint64_t position) {
    m_stream.seekp(static_cast<std::streamoff>(position));
    m_position = position;
  }
  std::uint64_t End() const { return m_end; }
  void Close() { m_stream.close(); }

 private:
  std::fstream m_stream;
  std::uint64_t m_position = 0;
  std::uint64_t m_end = 0;
};

// Deflates `source` into `out` (raw deflate, default level) and gives its CRC and sizes.
bool DeflateFile(const fs::path& source, Output& out, Written& w, std::string& in,
                 std::string& buffer) {
  std::ifstream file(source, std::ios::binary);
  if (!file.is_open()) return false;
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    return false;
  }
  uLong crc = crc32(0L, Z_NULL, 0);
  std::uint64_t read = 0, written = 0;
  bool ok = true;
  int flush = Z_NO_FLUSH;
  do {
    file.read(in.data(), static_cast<std::streamsize>(in.size()));
    const std::size_t got = static_cast<std::size_t>(file.gcount());
    if (file.bad()) {
      ok = false;
      break;
    }
    crc = crc32(crc, reinterpret_cast<const Bytef*>(in.data()), static_cast<uInt>(got));
    read += got;
    flush = file.eof() ? Z_FINISH : Z_NO_FLUSH;
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(got);
    do {
      stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
      stream.avail_out = static_cast<uInt>(buffer.size());
      deflate(&stream, flush);
      const std::size_t have = buffer.size() - stream.avail_out;
      out.Write(buffer.data(), have);
      written += have;
    } while (stream.avail_out == 0);
  } while (flush != Z_FINISH);
  deflateEnd(&stream);
  w.crc = static_cast<std::uint32_t>(crc);
  w.uncompressed = read;
  w.compressed = written;
  return ok && out.Good();
}

// Copies `source` into `out` as it stands.
bool StoreFile(const fs::path& source, Output& out, Written& w, std::string& in) {
  std::ifstream file(source, std::ios::binary);
  if (!file.is_open()) return false;
  uLong crc = crc32(0L, Z_NULL, 0);
  std::uint64_t read = 0;
  while (file) {
    file.read(in.data(), static_cast<std::streamsize>(in.size()));
    const std::size_t got = static_cast<std::size_t>(file.gcount());
    if (file.bad()) return false;
    crc = crc32(crc, reinterpret_cast<const Bytef*>(in.data()), static_cast<uInt>(got));
    out.Write(in.data(), got);
    read += got;
  }
  w.crc = static_cast<std::uint32_t>(crc);
  w.uncompressed = read;
  w.compressed = read;
  return out.Good();
}

}  // namespace

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*" || pattern == "*") return true;
  return WildcardMatch(pattern, name);
}

int ZipClass::FileAdd(std::string_view fileSpec, int pathChoice, bool recurseDirectories) {
  const std::size_t cut = fileSpec.find_last_of("\\/");
  const std::string folderText =
      cut == std::string_view::npos ? std::string(".") : std::string(fileSpec.substr(0, cut + 1));
  const std::string pattern(cut == std::string_view::npos ? fileSpec : fileSpec.substr(cut + 1));
  const fs::path start = PathFromText(folderText);
  std::error_code ec;
  if (pattern.empty() || !fs::is_directory(start, ec)) return 0;

  int added = 0;
  // Files of a folder first, then its subfolders, each in name order so that a zip comes out
  // the same on every run.
  std::vector<std::pair<fs::path, std::string>> pending{{start, std::string()}};
  while (!pending.empty()) {
    auto [folder, prefix] = pending.back();
    pending.pop_back();
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
      entries.push_back(*it);
    }
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
      return a.path().filename() < b.path().filename();
    });
    std::vector<std::pair<fs::path, std::string>> subfolders;
    for (const fs::directory_entry& entry : entries) {
      const std::string name = TextFromPath(entry.path().filename());
      std::error_code e;
      if (entry.is_directory(e) && !entry.is_symlink(e)) {
        if (recurseDirectories) subfolders.emplace_back(entry.path(), prefix + name + '/');
        continue;
      }
      if (!entry.is_regular_file(e) || !MatchesPattern(name, pattern)) continue;
      ZipFile file;
      file.FileName = pathChoice == 0 ? prefix + name : name;
      file.SourcePath = entry.path();
      file.Size = entry.file_size(e);
      DosStamp(entry.path(), file.DosDate, file.DosTime);
      Files.push_back(std::move(file));
      ++added;
    }
    // Walked in name order: the stack takes them back to front.
    for (auto it = subfolders.rbegin(); it != subfolders.rend(); ++it) pending.push_back(*it);
  }
  return added;
}

bool ZipClass::FileDel(int index) {
  if (index < 1 || index > FileCount()) return false;
  Files.erase(Files.begin() + (index - 1));
  return true;
}

bool ZipClass::WriteZip(const std::string& path) {
  m_sizeCompressed = m_sizeUncompressed = 0;
  const fs::path target = PathFromText(path);
  std::error_code ec;
  fs::remove(target, ec);
  Output out(target);
  if (!out.Good()) return false;

  // A zip written into the folder it zips would be read while it is being written (or, left
  // from an earlier run, deleted before it is read): it never goes into itself.
  const fs::path self = fs::weakly_canonical(target, ec);
  Files.erase(std::remove_if(Files.begin(), Files.end(),
                             [&](const ZipFile& file) {
                               std::error_code e;
                               return !self.empty() &&
                                      fs::weakly_canonical(file.SourcePath, e) == self;
                             }),
              Files.end());

  std::string in(kBlockSize, '\0');
  std::string buffer(kBlockSize, '\0');
  std::vector<Written> written;
  written.reserve(Files.size());
  bool ok = true;

  for (const ZipFile& file : Files) {
    Written w;
    w.offset = out.Position();
    w.zip64Local = file.Size >= kMax32;
    if (IsUtf8NonAscii(file.FileName)) w.flags |= 0x0800;
    const std::string placeholder = LocalHeader(file, w);
    out.Write(placeholder);
    const std::uint64_t dataStart = out.Position();
    if (!DeflateFile(file.SourcePath, out, w, in, buffer)) {
      ok = false;
      break;
    }
    if (w.compressed >= w.uncompressed) {
      // Deflate made it no smaller: store it as it is.
      out.Seek(dataStart);
      w.method = 0;
      if (!StoreFile(file.SourcePath, out, w, in)) {
        ok = false;
        break;
      }
    }
    if (!w.zip64Local && (w.uncompressed >= kMax32 || w.compressed >= kMax32)) {
      ok = false;  // the file grew past 4 GiB while it was being read
      break;
    }
    const std::uint64_t dataEnd = out.Position();
    out.Seek(w.offset);
    out.Write(LocalHeader(file, w));
    out.Seek(dataEnd);
    m_sizeCompressed += w.compressed;
    m_sizeUncompressed += w.uncompressed;
    written.push_back(w);
  }

  if (ok) {
    const std::uint64_t directoryOffset = out.Position();
    std::string directory;
    for (std::size_t i = 0; i < Files.size(); ++i) {
      const ZipFile& file = Files[i];
      const Written& w = written[i];
      std::string extra;
      if (w.uncompressed >= kMax32) Put64(extra, w.uncompressed);
      if (w.compressed >= kMax32) Put64(extra, w.compressed);
      if (w.offset >= kMax32) Put64(extra, w.offset);
      const bool zip64 = !extra.empty() || w.zip64Local;
      std::string h;
      Put32(h, 0x02014b50);
      Put16(h, (3 << 8) | (zip64 ? 45 : 20));  // made on Unix, so the mode below is read
      Put16(h, zip64 ? 45 : 20);
      Put16(h, w.flags);
      Put16(h, w.method);
      Put16(h, file.DosTime);
      Put16(h, file.DosDate);
      Put32(h, w.crc);
      Put32(h, Clamp32(w.compressed));
      Put32(h, Clamp32(w.uncompressed));
      Put16(h, static_cast<std::uint32_t>(file.FileName.size()));
      Put16(h, extra.empty() ? 0 : static_cast<std::uint32_t>(extra.size() + 4));
      Put16(h, 0);               // comment
      Put16(h, 0);               // disk
      Put16(h, 0);               // internal attributes
      Put32(h, 0100644u << 16);  // a plain file, rw-r--r--
      Put32(h, Clamp32(w.offset));
      h += file.FileName;
      if (!extra.empty()) {
        Put16(h, 0x0001);
        Put16(h, static_cast<std::uint32_t>(extra.size()));
        h += extra;
      }
      directory += h;
      if (directory.size() >= kBlockSize) {
        out.Write(directory);
        directory.clear();
      }
    }
    out.Write(directory);
    const std::uint64_t directoryEnd = out.Position();
    const std::uint64_t directorySize = directoryEnd - directoryOffset;
    const std::uint64_t count = Files.size();
    std::string end;
    if (count >= 0xffff || directorySize >= kMax32 || directoryOffset >= kMax32) {
      Put32(end, 0x06064b50);
      Put64(end, 44);
      Put16(end, (3 << 8) | 45);
      Put16(end, 45);
      Put32(end, 0);
      Put32(end, 0);
      Put64(end, count);
      Put64(end, count);
      Put64(end, directorySize);
      Put64(end, directoryOffset);
      Put32(end, 0x07064b50);
      Put32(end, 0);
      Put64(end, directoryEnd);
      Put32(end, 1);
    }
    const std::string comment = Comment.substr(0, 0xffff);
    Put32(end, 0x06054b50);
    Put16(end, 0);
    Put16(end, 0);
    Put16(end, static_cast<std::uint32_t>(std::min<std::uint64_t>(count, 0xffff)));
    Put16(end, static_cast<std::uint32_t>(std::min<std::uint64_t>(count, 0xffff)));
    Put32(end, Clamp32(directorySize));
    Put32(end, Clamp32(directoryOffset));
    Put16(end, static_cast<std::uint32_t>(comment.size()));
    end += comment;
    out.Write(end);
    ok = out.Good();
  }
  const std::uint64_t finalSize = out.Position();
  const bool trim = out.End() > finalSize;
  out.Close();
  if (ok && trim) {
    // A file stored after its deflated form had been written leaves bytes behind the end.
    fs::resize_file(target, finalSize, ec);
    ok = !ec;
  }
  if (!ok) fs::remove(target, ec);
  return ok;
}

}  // namespace tessarin::myzip
