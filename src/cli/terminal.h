#pragma once

#include <cstdio>

namespace tessarin {

// True when the stream is shown on a terminal (so a progress bar may redraw its line).
bool IsTerminal(std::FILE* stream);

}  // namespace tessarin
