#pragma once
// EffectsInProgress: which commands are changing something outside of the program just
// now. A program that ends gives them a while to finish the item at hand.

#include <chrono>
#include <condition_variable>
#include <cstddef>

#include "work/locked.h"

namespace skerrow::core {

class EffectsInProgress {
 public:
  void begin() { ++*count_.access(); }
  void end();

  /// Waits until none is left; false when they take longer. Callable on any thread.
  bool waitForEnd(std::chrono::milliseconds atMost);

 private:
  std::condition_variable changed_;
  work::Locked<std::size_t> count_;
};

}  // namespace skerrow::core
