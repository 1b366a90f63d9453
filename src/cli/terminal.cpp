#include "cli/terminal.h"

#include <csignal>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace tessarin {

// The one place the command line asks the system about its streams.
bool IsTerminal(std::FILE* stream) {
#ifdef _WIN32
  return _isatty(_fileno(stream)) != 0;
#else
  return isatty(fileno(stream)) != 0;
#endif
}

namespace {

// A signal handler can reach nothing but a flag of static storage: this is the one such flag of
// the program, and it only ever goes from 0 to 1.
volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void OnInterrupt(int) {
  g_interrupted = 1;
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

void CatchInterrupt() { std::signal(SIGINT, OnInterrupt); }

bool InterruptRequested() { return g_interrupted != 0; }

}  // namespace tessarin
