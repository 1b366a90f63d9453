#pragma once

#include <functional>
#include <string>

#include "cli/session.h"

namespace tessarin {

// Parses the command line and runs the command; gives the process exit code. `moreCommands`,
// when given, registers commands beside the program's own (tests use it).
int RunCli(int argc, char** argv, const std::string& executableFolder,
           const std::function<void(CliRegistry&)>& moreCommands = {});

}  // namespace tessarin
