// Kept apart from context.cpp: the context holds the game store, and code that only needs the
// version (the language template, the about box) must link without it.
#include <string>

#include "core/context.h"

namespace tessarin {

std::string AppVersion() {
  return std::to_string(TESSARIN_VERSION_MAJOR) + "." + std::to_string(TESSARIN_VERSION_MINOR) +
         "." + std::to_string(TESSARIN_VERSION_PATCH);
}

}  // namespace tessarin
