#pragma once

#include <string>
#include <vector>

namespace tessarin {

// Exit codes of tessarin-cli.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the operation ran and did not succeed
inline constexpr int kExitUsage = 2;   // wrong arguments

// Parses the command line and runs the command; gives the process exit code.
int RunCli(int argc, char** argv, const std::string& executableFolder);

}  // namespace tessarin
