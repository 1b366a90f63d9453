#include "shell/priority.h"

#include "core/log.h"

namespace tessarin {

PriorityLevels PriorityLevelsFor(int choice) {
  switch (choice) {
    case 0:
      return {-15, 64};
    case 2:
      return {2, 128};
    default:
      return {0, 32};
  }
}

std::string SignedNumberText(long long value) {
  return value < 0 ? std::to_string(value) : " " + std::to_string(value);
}

void ApplyPriority(Log& log, int choice) {
  const PriorityLevels levels = PriorityLevelsFor(choice);
  SetProcessPriority(log, levels.ThreadPriority, levels.ProcessClass, choice);
}

void SetProcessPriority(Log& log, int threadPriority, int processClass, int choice) {
  log.WriteLogLine("Current Thread Priority:" + SignedNumberText(platform::GetThreadPriority()));
  log.WriteLogLine("Current Priority Class:" + SignedNumberText(platform::GetPriorityClass()));
  log.WriteLogLine("PRIORITY=" + SignedNumberText(choice));
  std::string error;
  // The class first: on systems where one nice value stands for both, the thread's finer step
  // is then applied on top of it.
  if (!platform::SetPriorityClass(processClass, error)) {
    log.WriteLogLine("Priority class refused: " + error);
  }
  if (!platform::SetThreadPriority(threadPriority, error)) {
    log.WriteLogLine("Thread priority refused: " + error);
  }
  log.WriteLogLine("New Thread Priority:" + SignedNumberText(platform::GetThreadPriority()));
  log.WriteLogLine("New Priority Class:" + SignedNumberText(platform::GetPriorityClass()));
}

}  // namespace tessarin
