#include "core/textutil.h"

namespace tessarin {

std::string_view TrimBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(' ');
  return text.substr(first, last - first + 1);
}

std::string_view TrimWhite(std::string_view text) {
  constexpr std::string_view kWhite = " \t\r\n";
  const size_t first = text.find_first_not_of(kWhite);
  if (first == std::string_view::npos) return {};
  const size_t last = text.find_last_not_of(kWhite);
  return text.substr(first, last - first + 1);
}

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

char UpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

std::string LowerCopy(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = LowerAscii(c);
  return out;
}

std::string UpperCopy(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = UpperAscii(c);
  return out;
}

bool EqualsNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
  }
  return true;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

bool EndsWithNoCase(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() &&
         EqualsNoCase(text.substr(text.size() - ending.size()), ending);
}

std::string_view FirstCharacter(std::string_view text) {
  if (text.empty()) return text;
  const auto lead = static_cast<unsigned char>(text[0]);
  const size_t length = lead < 0x80           ? 1
                        : (lead >> 5) == 0x6  ? 2
                        : (lead >> 4) == 0xE  ? 3
                        : (lead >> 3) == 0x1E ? 4
                                              : 1;
  if (length > text.size()) return text.substr(0, 1);
  for (size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return text.substr(0, 1);
  }
  return text.substr(0, length);
}

bool WildcardMatch(std::string_view pattern, std::string_view name) {
  // Iterative, with one back-tracking point: linear in practice.
  size_t p = 0, n = 0, starP = std::string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pattern.size() &&
        (pattern[p] == '?' || LowerAscii(pattern[p]) == LowerAscii(name[n]))) {
      ++p;
      ++n;
    } else if (p < pattern.size() && pattern[p] == '*') {
      starP = p++;
      starN = n;
    } else if (starP != std::string_view::npos) {
      p = starP + 1;
      n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r' && text[i] != '\n') continue;
    lines.push_back(text.substr(start, i - start));
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
    start = i + 1;
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

std::vector<std::string_view> Split(std::string_view text, char delimiter) {
  std::vector<std::string_view> parts;
  SplitInto(text, delimiter, parts);
  return parts;
}

void SplitInto(std::string_view text, char delimiter, std::vector<std::string_view>& parts) {
  parts.clear();
  size_t start = 0;
  for (size_t at = text.find(delimiter); at != std::string_view::npos;
       at = text.find(delimiter, start)) {
    parts.push_back(text.substr(start, at - start));
    start = at + 1;
  }
  parts.push_back(text.substr(start));
}

bool IsPathSeparator(char c) { return c == '/' || c == '\\'; }

std::string CutFinalSeparator(std::string path) {
  // A root ("/" or "C:\") keeps its separator: without it, it names another thing.
  while (path.size() > 1 && IsPathSeparator(path.back()) && !(path.size() == 3 && path[1] == ':')) {
    path.pop_back();
  }
  return path;
}

std::filesystem::path PathFromText(std::string_view text) {
  std::u8string utf8(text.begin(), text.end());
#ifndef _WIN32
  for (char8_t& c : utf8) {
    if (c == u8'\\') c = u8'/';
  }
#endif
  return std::filesystem::path(utf8);
}

std::string TextFromPath(const std::filesystem::path& path) {
  const std::u8string utf8 = path.u8string();
  return std::string(utf8.begin(), utf8.end());
}

}  // namespace tessarin
