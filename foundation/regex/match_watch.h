#pragma once
// MatchWatch: what may end a long match early, given by whoever waits for it.
// MatchMonitor is the state of one watched operation; it belongs to the thread
// that matches.

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>

namespace skerrow::foundation {

/// Thrown by a match that its watch ended. Nobody waits for the result any more.
struct MatchStopped {};

struct MatchWatch {
  /// Set by any thread to end the match.
  const std::atomic<bool>* stopFlag = nullptr;
  /// Asked now and then on the matching thread; true ends the match. What it
  /// throws leaves the operation.
  std::function<bool()> isStopped = nullptr;
  /// A match that takes longer fails with U_REGEX_TIME_OUT.
  std::optional<std::chrono::milliseconds> timeLimit = std::nullopt;
};

class MatchMonitor {
 public:
  /// `watch` may be null and must outlive the monitor.
  explicit MatchMonitor(const MatchWatch* watch) : watch_(watch) {
    if (watch_ != nullptr && watch_->timeLimit) deadline_ = Clock::now() + *watch_->timeLimit;
  }

  [[nodiscard]] bool isWatched() const noexcept { return watch_ != nullptr; }

  /// Called once for some thousand steps of a match. False ends it.
  [[nodiscard]] bool mayContinueMatch() noexcept {
    isLong_ = true;
    return watch_ == nullptr || mayContinue();
  }

  /// Called for about every unit that a search passes. False ends it.
  [[nodiscard]] bool mayContinueSearch() noexcept {
    if (watch_->stopFlag != nullptr && watch_->stopFlag->load(std::memory_order_relaxed)) {
      return false;
    }
    return ++passed_ % kUnitsBetweenChecks != 0 || mayContinue();
  }

  /// Whether a match took so many steps that it may have taken much memory.
  [[nodiscard]] bool isLong() const noexcept { return isLong_; }
  [[nodiscard]] bool isTimedOut() const noexcept { return isTimedOut_; }

  /// Throws what the watch threw, if it did.
  void rethrow() const {
    if (thrown_) std::rethrow_exception(thrown_);
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::uint32_t kUnitsBetweenChecks = 4096;

  [[nodiscard]] bool mayContinue() noexcept {
    if (watch_->stopFlag != nullptr && watch_->stopFlag->load(std::memory_order_relaxed)) {
      return false;
    }
    // The engine that calls this is C and must not be unwound.
    try {
      if (watch_->isStopped && watch_->isStopped()) return false;
    } catch (...) {
      thrown_ = std::current_exception();
      return false;
    }
    isTimedOut_ = deadline_ && Clock::now() >= *deadline_;
    return !isTimedOut_;
  }

  const MatchWatch* watch_;
  std::optional<Clock::time_point> deadline_;
  std::exception_ptr thrown_;
  std::uint32_t passed_ = 0;
  bool isLong_ = false;
  bool isTimedOut_ = false;
};

}  // namespace skerrow::foundation
