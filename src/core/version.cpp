// Kept in the core, below the application context: code that only needs the version (the
// language template, the about box) must link without the game store.
#include "core/version.h"

#include <string>

namespace tessarin {

std::string AppVersion() {
  return std::to_string(TESSARIN_VERSION_MAJOR) + "." + std::to_string(TESSARIN_VERSION_MINOR) +
         "." + std::to_string(TESSARIN_VERSION_PATCH);
}

}  // namespace tessarin
