#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/textutil.h"

namespace tessarin {

// PathFromText and TextFromPath (paths given as UTF-8 text) are in core/textutil.h.

// The key under which a zip entry is looked up: ASCII letters in lower case, '/' as '\'.
std::string EntryNameKey(std::string_view name);

// The folders and file name under which a zip entry may be written below a destination folder:
// every ':' becomes '_', empty and "." parts are dropped. Nothing (std::nullopt) when the name
// would lead out of the destination: a ".." part, an absolute path, a drive letter, a NUL byte,
// or no name at all.
std::optional<std::vector<std::string>> SafeEntryParts(std::string_view entryName);

}  // namespace tessarin
