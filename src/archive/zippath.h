#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

// A path given as UTF-8 text, '\' or '/' between folders, in the platform's own form.
std::filesystem::path PathFromText(std::string_view text);
// A platform path back as UTF-8 text.
std::string TextFromPath(const std::filesystem::path& path);

// The folders and file name under which a zip entry may be written below a destination folder:
// every ':' becomes '_', empty and "." parts are dropped. Nothing (std::nullopt) when the name
// would lead out of the destination: a ".." part, an absolute path, a drive letter, a NUL byte,
// or no name at all.
std::optional<std::vector<std::string>> SafeEntryParts(std::string_view entryName);

}  // namespace tessarin
