#pragma once

#include <cstdio>

namespace tessarin {

// True when the stream is shown on a terminal (so a progress bar may redraw its line).
bool IsTerminal(std::FILE* stream);

// From this call on, the first Ctrl-C (SIGINT) only raises a flag that InterruptRequested
// reports, so that a long job can stop cleanly; a second one ends the program as usual.
void CatchInterrupt();
bool InterruptRequested();

}  // namespace tessarin
