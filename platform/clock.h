#pragma once
// Clock: what time it is, for people and for waiting. Whoever needs the time gets a
// clock handed in, so that a test decides what time it is and never waits for it.
// Readable on any thread.

#include <chrono>

#include "platform/interface.h"

namespace skerrow::platform {

class Clock : public Interface {
 public:
  using Wall = std::chrono::system_clock::time_point;
  using Steady = std::chrono::steady_clock::time_point;

  /// The date and time of day, which may be set back and forth.
  [[nodiscard]] virtual Wall wall() const noexcept = 0;
  /// A time that only goes on: for time-outs and for measuring.
  [[nodiscard]] virtual Steady steady() const noexcept = 0;
};

/// The clock of this machine.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] Wall wall() const noexcept override { return std::chrono::system_clock::now(); }
  [[nodiscard]] Steady steady() const noexcept override { return std::chrono::steady_clock::now(); }
};

}  // namespace skerrow::platform
