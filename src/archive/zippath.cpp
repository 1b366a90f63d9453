#include "archive/zippath.h"

namespace tessarin {

std::string EntryNameKey(std::string_view name) {
  std::string key = LowerCopy(name);
  for (char& c : key) {
    if (c == '/') c = '\\';
  }
  return key;
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
