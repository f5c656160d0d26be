#pragma once
// Stopping: work that nobody waits for any more ends by throwing Stopped at its
// next look. The side that waits holds a std::stop_source; the thread that works
// is given its token for the time of a StopScope. What waits instead of computing
// (a window, a child process) subscribes with std::stop_callback.
//
// A look costs about a nanosecond, so loops look at every item.

#include <stop_token>
#include <utility>

namespace skerrow::work {

/// Thrown by work that found that nobody waits for it. Only the task's runner catches it.
struct Stopped {};

namespace detail {
// What this thread looks at; null while it works for nobody in particular.
extern constinit thread_local const std::stop_token* watched;
}  // namespace detail

/// Whether this thread's work is no longer wanted.
[[nodiscard]] inline bool isStopAsked() noexcept {
  return detail::watched != nullptr && detail::watched->stop_requested();
}

/// Whether anybody could ask this thread to stop.
[[nodiscard]] inline bool isWatched() noexcept { return detail::watched != nullptr; }

/// The look that every loop takes. Throws Stopped.
inline void stopIfAsked() {
  if (isStopAsked()) throw Stopped{};
}

/// The token of this thread's work, for what subscribes; one that never stops without work.
[[nodiscard]] std::stop_token stopToken();

/// As long as it lives, looks of this thread look at its token. Scopes nest.
class StopScope {
 public:
  explicit StopScope(std::stop_token token) noexcept
      : token_(std::move(token)), before_(std::exchange(detail::watched, &token_)) {}
  StopScope(const StopScope&) = delete;
  StopScope& operator=(const StopScope&) = delete;
  ~StopScope() { detail::watched = before_; }

 private:
  std::stop_token token_;
  const std::stop_token* before_;
};

/// As long as it lives, this thread looks at nothing: for a step that must not be left
/// half done. The look before or behind it sees what was asked meanwhile.
class UndividedStep {
 public:
  UndividedStep() noexcept : before_(std::exchange(detail::watched, nullptr)) {}
  UndividedStep(const UndividedStep&) = delete;
  UndividedStep& operator=(const UndividedStep&) = delete;
  ~UndividedStep() { detail::watched = before_; }

 private:
  const std::stop_token* before_;
};

}  // namespace skerrow::work
