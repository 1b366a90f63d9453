#include "archive/zippath.h"

namespace tessarin {

std::filesystem::path PathFromText(std::string_view text) {
  std::u8string utf8(text.begin(), text.end());
#ifndef _WIN32
  // Paths of the settings and of zip entries may come with '\' between folders.
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

std::optional<std::vector<std::string>> SafeEntryParts(std::string_view entryName) {
  if (entryName.find('\0') != std::string_view::npos) return std::nullopt;
  if (entryName.empty() || entryName.front() == '\\' || entryName.front() == '/') {
    return std::nullopt;
  }
  if (entryName.size() >= 2 && entryName[1] == ':' &&
      ((entryName[0] >= 'A' && entryName[0] <= 'Z') ||
       (entryName[0] >= 'a' && entryName[0] <= 'z'))) {
    return std::nullopt;
  }
  std::vector<std::string> parts;
  std::string part;
  auto flush = [&]() -> bool {
    if (part == "..") return false;
    if (!part.empty() && part != ".") parts.push_back(part);
    part.clear();
    return true;
  };
  for (const char c : entryName) {
    if (c == '\\' || c == '/') {
      if (!flush()) return std::nullopt;
    } else {
      part += c == ':' ? '_' : c;
    }
  }
  if (!flush() || parts.empty()) return std::nullopt;
  return parts;
}

}  // namespace tessarin
