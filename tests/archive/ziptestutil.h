#pragma once

#include <sys/wait.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace tessarin::testing {

namespace fs = std::filesystem;

// A fresh folder under the build tree, removed at the end of the test.
class TempFolder {
 public:
  explicit TempFolder(const std::string& tag) {
    std::random_device rd;
    m_path = fs::path(TESSARIN_BINARY_DIR) / "test-tmp" /
             (tag + "-" + std::to_string(rd()) + "-" + std::to_string(rd()));
    fs::create_directories(m_path);
  }
  ~TempFolder() {
    std::error_code ec;
    fs::remove_all(m_path, ec);
  }
  const fs::path& Path() const { return m_path; }
  std::string Text() const { return m_path.string() + "/"; }
  std::string operator/(const std::string& name) const { return (m_path / name).string(); }

 private:
  fs::path m_path;
};

inline std::string ReadAll(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

inline void WriteAll(const fs::path& path, const std::string& content) {
  fs::create_directories(path.parent_path());
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out << content;
}

inline int Shell(const std::string& command) {
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline std::string Quote(const std::string& text) {
  std::string q = "'";
  for (char c : text) {
    if (c == '\'') {
      q += "'\\''";
    } else {
      q += c;
    }
  }
  return q + "'";
}

inline std::string RawDeflate(const std::string& data) {
  z_stream s{};
  deflateInit2(&s, Z_DEFAULT_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&s, data.size()) + 16, '\0');
  s.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
  s.avail_in = static_cast<uInt>(data.size());
  s.next_out = reinterpret_cast<Bytef*>(out.data());
  s.avail_out = static_cast<uInt>(out.size());
  deflate(&s, Z_FINISH);
  out.resize(out.size() - s.avail_out);
  deflateEnd(&s);
  return out;
}

inline std::uint32_t Crc(const std::string& data) {
  return static_cast<std::uint32_t>(
      crc32(0L, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size())));
}

// Builds zip files byte by byte, so that a test can make them lie.
class RawZip {
 public:
  struct Entry {
    std::string name;
    std::string payload;  // the bytes as stored in the archive
    std::uint16_t method = 0;
    std::uint32_t crc = 0;
    std::uint32_t compressedSize = 0;
    std::uint32_t uncompressedSize = 0;
    std::uint32_t centralCompressed = 0;
    std::uint32_t centralUncompressed = 0;
    std::uint16_t flags = 0;
    std::int64_t offsetOverride = -1;  // local header offset written in the directory
  };

  // A correct entry, stored or deflated.
  Entry& Add(const std::string& name, const std::string& data, bool deflate) {
    Entry e;
    e.name = name;
    e.payload = deflate ? RawDeflate(data) : data;
    e.method = deflate ? 8 : 0;
    e.crc = Crc(data);
    e.compressedSize = e.centralCompressed = static_cast<std::uint32_t>(e.payload.size());
    e.uncompressedSize = e.centralUncompressed = static_cast<std::uint32_t>(data.size());
    m_entries.push_back(e);
    return m_entries.back();
  }

  std::string comment;

  std::string Bytes() const {
    std::string out, directory;
    for (const Entry& e : m_entries) {
      const std::uint32_t offset = static_cast<std::uint32_t>(out.size());
      P32(out, 0x04034b50);
      P16(out, 20);
      P16(out, e.flags);
      P16(out, e.method);
      P16(out, 0x6000);
      P16(out, 0x5a21);
      P32(out, e.crc);
      P32(out, e.compressedSize);
      P32(out, e.uncompressedSize);
      P16(out, static_cast<std::uint16_t>(e.name.size()));
      P16(out, 0);
      out += e.name;
      out += e.payload;
      P32(directory, 0x02014b50);
      P16(directory, 20);
      P16(directory, 20);
      P16(directory, e.flags);
      P16(directory, e.method);
      P16(directory, 0x6000);
      P16(directory, 0x5a21);
      P32(directory, e.crc);
      P32(directory, e.centralCompressed);
      P32(directory, e.centralUncompressed);
      P16(directory, static_cast<std::uint16_t>(e.name.size()));
      P16(directory, 0);
      P16(directory, 0);
      P16(directory, 0);
      P16(directory, 0);
      P32(directory, 0);
      P32(directory, e.offsetOverride >= 0 ? static_cast<std::uint32_t>(e.offsetOverride) : offset);
      directory += e.name;
    }
    const std::uint32_t cdOffset = static_cast<std::uint32_t>(out.size());
    out += directory;
    P32(out, 0x06054b50);
    P16(out, 0);
    P16(out, 0);
    P16(out, static_cast<std::uint16_t>(m_entries.size()));
    P16(out, static_cast<std::uint16_t>(m_entries.size()));
    P32(out, static_cast<std::uint32_t>(directory.size()));
    P32(out, cdOffset);
    P16(out, static_cast<std::uint16_t>(comment.size()));
    out += comment;
    return out;
  }

  void Write(const fs::path& path) const { WriteAll(path, Bytes()); }

  static void P16(std::string& s, std::uint32_t v) {
    s += static_cast<char>(v & 0xff);
    s += static_cast<char>((v >> 8) & 0xff);
  }
  static void P32(std::string& s, std::uint32_t v) {
    P16(s, v & 0xffff);
    P16(s, v >> 16);
  }
  static void P64(std::string& s, std::uint64_t v) {
    P32(s, static_cast<std::uint32_t>(v));
    P32(s, static_cast<std::uint32_t>(v >> 32));
  }

 private:
  std::vector<Entry> m_entries;
};

// Every file below `folder`, as paths relative to it with '/' between folders.
inline std::vector<std::string> ListTree(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file())
      names.push_back(fs::relative(entry.path(), folder).generic_string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace tessarin::testing
