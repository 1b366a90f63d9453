// The one place where Tessarin changes its scheduling priority.
#include <cerrno>
#include <cstring>

#include "shell/priority.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/resource.h>
#endif

namespace tessarin::platform {

#ifdef _WIN32

int GetThreadPriority() { return ::GetThreadPriority(::GetCurrentThread()); }
int GetPriorityClass() {
  switch (::GetPriorityClass(::GetCurrentProcess())) {
    case IDLE_PRIORITY_CLASS:
      return 64;
    case HIGH_PRIORITY_CLASS:
      return 128;
    default:
      return 32;
  }
}
bool SetThreadPriority(int threadPriority, std::string& error) {
  if (::SetThreadPriority(::GetCurrentThread(), threadPriority)) return true;
  error = "error " + std::to_string(::GetLastError());
  return false;
}
bool SetPriorityClass(int processClass, std::string& error) {
  const DWORD value = processClass == 64    ? IDLE_PRIORITY_CLASS
                      : processClass == 128 ? HIGH_PRIORITY_CLASS
                                            : NORMAL_PRIORITY_CLASS;
  if (::SetPriorityClass(::GetCurrentProcess(), value)) return true;
  error = "error " + std::to_string(::GetLastError());
  return false;
}

#else

// Here one nice value stands for both levels: idle is the weakest nice, high a modest boost
// (which an ordinary user is usually refused, and that is logged).
namespace {
constexpr int kIdleNice = 19;
constexpr int kHighNice = -5;

int CurrentNice() {
  errno = 0;
  const int value = getpriority(PRIO_PROCESS, 0);
  return errno == 0 ? value : 0;
}

bool SetNice(int nice, std::string& error) {
  if (CurrentNice() == nice) return true;
  if (setpriority(PRIO_PROCESS, 0, nice) == 0) return true;
  error = std::strerror(errno);
  return false;
}
}  // namespace

int GetThreadPriority() {
  const int nice = CurrentNice();
  if (nice >= 10) return -15;
  if (nice < 0) return 2;
  return 0;
}

int GetPriorityClass() {
  const int nice = CurrentNice();
  if (nice >= 10) return 64;
  if (nice < 0) return 128;
  return 32;
}

bool SetThreadPriority(int threadPriority, std::string& error) {
  // The class has set the nice value already; a thread level only confirms it.
  const int wanted = threadPriority <= -15 ? kIdleNice : threadPriority >= 2 ? kHighNice : 0;
  if (CurrentNice() == wanted) return true;
  return SetNice(wanted, error);
}

bool SetPriorityClass(int processClass, std::string& error) {
  const int nice = processClass == 64 ? kIdleNice : processClass == 128 ? kHighNice : 0;
  return SetNice(nice, error);
}

#endif

}  // namespace tessarin::platform
