#pragma once

#include <string>

namespace tessarin {

class Log;

// Thread priority and process class of a priority choice, in the classic values (thread -15, 0,
// 2; class 64 idle, 32 normal, 128 high).
struct PriorityLevels {
  int ThreadPriority = 0;
  int ProcessClass = 32;
};

// 0 idle, 1 normal, 2 high; any other choice is treated as normal.
PriorityLevels PriorityLevelsFor(int choice);

// Applies a choice to the running process, logging the values before and after.
void ApplyPriority(Log& log, int choice);

// Where the change happens: logs "Current Thread Priority:", "Current Priority Class:",
// "PRIORITY=", sets both levels, then logs "New Thread Priority:" and "New Priority Class:".
// A refusal by the system is logged and leaves the run going.
void SetProcessPriority(Log& log, int threadPriority, int processClass, int choice);

// A number as the log shows it: a blank in front of a positive one or zero, the minus sign of a
// negative one.
std::string SignedNumberText(long long value);

// The platform side, in priorityplatform.cpp. Levels are read back from the system, so they say
// what really is in force.
namespace platform {
int GetThreadPriority();
int GetPriorityClass();
// False when the system refuses the change; `error` then says why.
bool SetThreadPriority(int threadPriority, std::string& error);
bool SetPriorityClass(int processClass, std::string& error);
}  // namespace platform

}  // namespace tessarin
