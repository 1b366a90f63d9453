#pragma once

#include <string>

#include "cli/session.h"

namespace tessarin {

// Parses the command line and runs the command; gives the process exit code.
int RunCli(int argc, char** argv, const std::string& executableFolder);

}  // namespace tessarin
