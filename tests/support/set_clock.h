#pragma once
// SetClock: a clock that stands still until a test sets it forward.

#include <atomic>
#include <chrono>
#include <cstdint>

#include "platform/clock.h"

namespace skerrow::tests {

class SetClock final : public platform::Clock {
 public:
  [[nodiscard]] Wall wall() const noexcept override { return Wall(elapsed()); }
  [[nodiscard]] Steady steady() const noexcept override { return Steady(elapsed()); }

  void setForward(std::chrono::nanoseconds by) noexcept { elapsed_ += by.count(); }

 private:
  [[nodiscard]] std::chrono::nanoseconds elapsed() const noexcept {
    return std::chrono::nanoseconds(elapsed_.load());
  }

  std::atomic<std::int64_t> elapsed_ = 0;
};

}  // namespace skerrow::tests
