#pragma once

#include <atomic>
#include <mutex>
#include <string>

namespace tessarin {

// The progress and cancel state that a long job shares with whoever watches it (the working
// dialog, the command line's progress bar, a test). Every member may be touched from any thread.
class Work final {
 public:
  std::atomic<bool> CancelRequested{false};
  std::atomic<long long> ProgressValue{0};
  std::atomic<long long> ProgressMax{0};

  void SetStatus(std::string text) {
    std::lock_guard lock(m_mutex);
    m_status = std::move(text);
  }
  std::string Status() const {
    std::lock_guard lock(m_mutex);
    return m_status;
  }
  // Percent done, 0 to 100; 0 while the maximum is unknown.
  int Percent() const {
    const long long max = ProgressMax.load();
    if (max <= 0) return 0;
    long long value = ProgressValue.load();
    if (value < 0) value = 0;
    if (value > max) value = max;
    return static_cast<int>(value * 100 / max);
  }
  void Reset() {
    CancelRequested = false;
    ProgressValue = 0;
    ProgressMax = 0;
    SetStatus({});
  }

 private:
  mutable std::mutex m_mutex;
  std::string m_status;
};

}  // namespace tessarin
