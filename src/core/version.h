#pragma once

#include <string>

namespace tessarin {

// "major.minor.revision" of this build.
std::string AppVersion();

}  // namespace tessarin
