#pragma once
// SpinWait: waiting a few microseconds without going to sleep. Handing work to a
// sleeping thread and back costs more than most commands do, so a thread that
// just had work looks for more a little while before it sleeps. On a busy machine
// that is time lost: one that looked in vain looks less often. One thread's own.

#include <algorithm>
#include <chrono>
#include <thread>

namespace skerrow::core {

class SpinWait {
 public:
  /// Waits until the condition holds, for a short while or not at all; whether it holds.
  template <class Condition>
  bool until(Condition&& condition) {
    if (condition()) return true;
    if (isAlone() || --skips_ > 0) return false;
    const auto end = std::chrono::steady_clock::now() + kWhile;
    do {
      for (int look = 0; look < kLooksBetweenClocks; ++look) {
        if (condition()) {
          failures_ = skips_ = 0;
          return true;
        }
        pause();
      }
    } while (std::chrono::steady_clock::now() < end);
    failures_ = std::min(failures_ + 1, kMostFailures);
    skips_ = 1 << failures_;
    return false;
  }

 private:
  static constexpr std::chrono::microseconds kWhile{20};
  static constexpr int kLooksBetweenClocks = 32;
  static constexpr int kMostFailures = 7;

  // Tells the processor that this thread waits, where there is an instruction for that.
  static void pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
  }

  // Without a second processor nobody could make the condition hold meanwhile.
  static bool isAlone() {
    static const bool isOnlyOne = std::thread::hardware_concurrency() < 2;
    return isOnlyOne;
  }

  int failures_ = 0;
  int skips_ = 0;  // waits to sleep through at once before looking again
};

}  // namespace skerrow::core
