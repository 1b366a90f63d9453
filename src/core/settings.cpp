#include "core/settings.h"

#include <cmath>
#include <limits>

#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/textutil.h"

namespace tessarin {

namespace {

// Tracking numbers of this file's routines.
constexpr int kTrackInfLoad = 1201;
constexpr int kTrackInfRead = 1202;
constexpr int kTrackInfWrite = 1203;

// The key rule: the line's first length(key) characters equal the key, both in upper case.
bool StartsWithKey(std::string_view line, std::string_view key) {
  if (line.size() < key.size()) return false;
  for (size_t i = 0; i < key.size(); ++i) {
    if (UpperAscii(line[i]) != UpperAscii(key[i])) return false;
  }
  return true;
}

// Lines end with CR LF, LF or a lone CR; a final line end starts no further line.
std::vector<std::string> SplitLines(const std::string& content) {
  std::vector<std::string> lines;
  for (const std::string_view line : tessarin::SplitLines(content)) lines.emplace_back(line);
  return lines;
}

}  // namespace

Settings::Settings(std::string filePath, Log& log) : m_filePath(std::move(filePath)), m_log(log) {}

void Settings::InfLoad() {
  m_lines.assign(1, std::string());
  RunGuarded(m_log, kTrackInfLoad, [&] {
    std::string content;
    if (!FileExists(m_filePath) || !ReadWholeFile(m_filePath, content)) return;
    for (std::string& line : SplitLines(content)) m_lines.push_back(std::move(line));
  });
}

std::string Settings::InfRead(std::string_view key) const {
  std::string result = "-1";
  RunGuarded(m_log, kTrackInfRead, [&] {
    for (size_t i = 1; i < m_lines.size(); ++i) {
      const std::string& line = m_lines[i];
      if (!StartsWithKey(line, key)) continue;
      const size_t eq = line.find('=');
      if (eq == std::string::npos) continue;
      result = line.substr(eq + 1);
      return;
    }
  });
  return result;
}

void Settings::InfWrite(std::string_view key, std::string_view value) {
  RunGuarded(m_log, kTrackInfWrite, [&] {
    std::string newLine(key);
    newLine += '=';
    newLine += value;

    // The file on disk, not the memory copy, is the base: it is what the user may have edited.
    std::vector<std::string> table;
    std::string content;
    if (FileExists(m_filePath)) {
      if (!ReadWholeFile(m_filePath, content)) throw Failure(75, "Path/File access error");
      table = SplitLines(content);
    }
    bool replaced = false;
    for (std::string& line : table) {
      if (StartsWithKey(line, key)) {
        line = newLine;
        replaced = true;
        break;
      }
    }
    if (!replaced) table.push_back(newLine);

    m_lines.assign(1, std::string());
    std::string out;
    for (std::string& line : table) {
      out += line;
      out += "\r\n";
      m_lines.push_back(std::move(line));
    }
    if (!WriteFileAtomically(m_filePath, out)) {
      throw Failure(75, "Path/File access error: can't write " + m_filePath);
    }
  });
}

void Settings::InfWrite(std::string_view key, long long value) {
  InfWrite(key, std::string_view(std::to_string(value)));
}

int Settings::InfReadNumber(std::string_view key) const { return ParseLeadingNumber(InfRead(key)); }

std::string Settings::InfReadOrEmpty(std::string_view key) const {
  std::string value = InfRead(key);
  if (value == "-1") value.clear();
  return value;
}

int ParseLeadingNumber(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
    negative = text[i] == '-';
    ++i;
  }
  double value = 0;
  bool any = false;
  while (i < text.size() && text[i] >= '0' && text[i] <= '9') {
    value = value * 10 + (text[i] - '0');
    any = true;
    ++i;
  }
  if (i < text.size() && text[i] == '.') {
    ++i;
    double scale = 0.1;
    while (i < text.size() && text[i] >= '0' && text[i] <= '9') {
      value += (text[i] - '0') * scale;
      scale /= 10;
      any = true;
      ++i;
    }
  }
  if (!any) return 0;
  if (negative) value = -value;
  // Halves go to the even neighbour, as the classic integer conversion does.
  value = std::nearbyint(value);
  if (value > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  if (value < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

}  // namespace tessarin
