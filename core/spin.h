#pragma once
// Waiting a few microseconds without going to sleep. Handing work to a sleeping
// thread and back costs more than most commands do, so a thread that just had
// work looks for more a little while before it sleeps.

#include <chrono>
#include <thread>

namespace skerrow::core {

/// Waits until the condition holds, for a short while; false when it did not come
/// to hold. Gives up at once where there is no second processor to bring it about.
template <class Condition>
bool spinUntil(Condition&& condition) {
  static const bool isAlone = std::thread::hardware_concurrency() < 2;
  constexpr auto kWhile = std::chrono::microseconds(40);
  if (isAlone) return condition();
  const auto end = std::chrono::steady_clock::now() + kWhile;
  do {
    for (int look = 0; look < 64; ++look) {
      if (condition()) return true;
      __builtin_ia32_pause();
    }
  } while (std::chrono::steady_clock::now() < end);
  return false;
}

}  // namespace skerrow::core
