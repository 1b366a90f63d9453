// MyZip: writes one zip per run, for the main program that can only read them.
//
//   MyZip "C:\out\game.zip,C:\roms\game\*.*"
//   MyZip                       (the job is then the first line of myzip.todo.tmp)
//
// The arguments are joined with blanks into one job text, as the command line always was.

#include <filesystem>
#include <string>
#include <system_error>

#include "zipworker/myzipjob.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

// The folder of this program, where the todo and feedback files live.
std::string OwnFolder(const char* argv0) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::path self;
#ifdef _WIN32
  wchar_t buffer[32768];
  const DWORD length = GetModuleFileNameW(nullptr, buffer, 32768);
  if (length > 0 && length < 32768) self = fs::path(std::wstring(buffer, length));
#else
  self = fs::read_symlink("/proc/self/exe", ec);
#endif
  if (self.empty() && argv0) self = fs::absolute(fs::path(argv0), ec);
  const std::u8string folder = self.parent_path().u8string();
  return std::string(folder.begin(), folder.end());
}

}  // namespace

int main(int argc, char** argv) {
  std::string commandLine;
  for (int i = 1; i < argc; ++i) {
    if (i > 1) commandLine += ' ';
    commandLine += argv[i];
  }
  return tessarin::myzip::RunWorker(commandLine, OwnFolder(argc > 0 ? argv[0] : nullptr));
}
