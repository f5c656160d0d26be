#pragma once
// MatchMonitor: what may end a long match: its time limit, or that nobody waits for the
// work of this thread any more. It is the state of one operation, and belongs to the
// thread that matches.

#include <chrono>
#include <cstdint>
#include <optional>

#include "work/stopping.h"

namespace skerrow::foundation {

class MatchMonitor {
 public:
  using TimeLimit = std::optional<std::chrono::milliseconds>;

  /// A match that takes longer than the limit fails with U_REGEX_TIME_OUT.
  explicit MatchMonitor(TimeLimit timeLimit = std::nullopt) {
    if (timeLimit) deadline_ = Clock::now() + *timeLimit;
  }

  /// Whether anything could end a match early.
  [[nodiscard]] bool isNeeded() const noexcept { return deadline_ || work::isWatched(); }

  /// Called once for some thousand steps of a match. False ends it.
  [[nodiscard]] bool mayContinueMatch() noexcept {
    isLong_ = true;
    return mayContinue();
  }

  /// Called for about every unit that a search passes. False ends it.
  [[nodiscard]] bool mayContinueSearch() noexcept {
    return ++passed_ % kUnitsBetweenChecks != 0 || mayContinue();
  }

  /// Whether a match took so many steps that it may have taken much memory.
  [[nodiscard]] bool isLong() const noexcept { return isLong_; }
  [[nodiscard]] bool isTimedOut() const noexcept { return isTimedOut_; }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::uint32_t kUnitsBetweenChecks = 4096;

  // The engine that calls this is C and must not be unwound.
  [[nodiscard]] bool mayContinue() noexcept {
    if (work::isStopAsked()) return false;
    isTimedOut_ = deadline_ && Clock::now() >= *deadline_;
    return !isTimedOut_;
  }

  std::optional<Clock::time_point> deadline_;
  std::uint32_t passed_ = 0;
  bool isLong_ = false;
  bool isTimedOut_ = false;
};

}  // namespace skerrow::foundation
