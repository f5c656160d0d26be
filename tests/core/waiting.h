#pragma once
// Waiting for a thing to happen on another thread, with an end for the case that
// it never does.

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace skerrow::tests {

/// Long past anything but a hang.
inline constexpr std::chrono::seconds kPatience{60};

class Signal {
 public:
  void set() {
    const std::lock_guard lock(mutex_);
    isSet_ = true;
    changed_.notify_all();
  }

  /// False when it was not set in all that time.
  [[nodiscard]] bool wait() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this] { return isSet_; });
  }

  [[nodiscard]] bool isSet() {
    const std::lock_guard lock(mutex_);
    return isSet_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool isSet_ = false;
};

/// Counts up to a number that somebody waits for.
class Counter {
 public:
  void add() {
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_all();
  }

  [[nodiscard]] bool waitFor(int count) {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, kPatience, [this, count] { return count_ >= count; });
  }

  [[nodiscard]] int count() {
    const std::lock_guard lock(mutex_);
    return count_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

}  // namespace skerrow::tests
