#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

class Log;

// Tessarin.inf: one flat file of key=value lines, kept in memory and rewritten whole on every
// write (atomically: a temporary file renamed over the old one).
//
// Keys match by prefix and without regard to case: the first line whose leading characters
// equal the key is the key's line, so "DataFile1" is satisfied by "DataFile12=..." when that
// line comes first. Lines that aren't key=value are kept as they stand.
class Settings final {
 public:
  Settings(std::string filePath, Log& log);

  const std::string& FilePath() const { return m_filePath; }

  // Reads the file into memory; a missing file leaves no lines.
  void InfLoad();
  // The value behind the first '=' of the key's line; "-1" when no line has the key.
  std::string InfRead(std::string_view key) const;
  // Replaces the key's line (or appends one) in the file as it is on disk, then rewrites it.
  void InfWrite(std::string_view key, std::string_view value);
  void InfWrite(std::string_view key, long long value);
  void InfWrite(std::string_view key, int value) { InfWrite(key, static_cast<long long>(value)); }
  // A literal would otherwise take the bool overload (a standard conversion beats the
  // conversion to string_view) and fail to compile.
  void InfWrite(std::string_view key, const char* value) { InfWrite(key, std::string_view(value)); }
  // A flag has two stored forms (a check box's tag "1"/"" or a truth value -1/0); say which.
  void InfWrite(std::string_view key, bool value) = delete;

  // The number in front of the value (0 when there is none), rounded; -1 means no setting.
  int InfReadNumber(std::string_view key) const;
  // InfRead with "-1" turned into the empty text, as the options dialog shows it.
  std::string InfReadOrEmpty(std::string_view key) const;

  // SettingsLines, from 1: element 0 is unused. SettingsLineCount is its size less one.
  const std::vector<std::string>& SettingsLines() const { return m_lines; }
  int SettingsLineCount() const { return static_cast<int>(m_lines.size()) - 1; }

 private:
  std::string m_filePath;
  Log& m_log;
  std::vector<std::string> m_lines{std::string()};
};

// The leading-number parse used for numeric settings: blanks skipped, an optional sign, digits
// with an optional decimal point, rounded half to even; 0 when no number stands in front.
int ParseLeadingNumber(std::string_view text);

}  // namespace tessarin
