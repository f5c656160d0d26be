#pragma once
// MainLoop: the loop of the main thread, over a GLib main context. Commands are
// started, timers fire and replies arrive on the thread that runs it. Posts and
// timers are sources of the context, so they are served by whoever runs it: this
// loop, a toolkit, or a window that waits inside of one of its own tasks.
//
// Only `post` may be called on other threads.

#include <chrono>
#include <compare>
#include <cstdint>
#include <functional>
#include <memory>

#include "platform/clock.h"

namespace skerrow::core {

class MainLoop {
 public:
  using Task = std::function<void()>;

  /// Names a timer that was started; empty for none.
  struct TimerId {
    platform::Clock::Steady due{};
    std::uint64_t number = 0;

    static const TimerId none;
    friend auto operator<=>(const TimerId&, const TimerId&) = default;
  };

  /// Whose context it runs: one of its own, or the one that toolkits, GIO and everything
  /// else of this process use on the main thread.
  enum class Context { own, ofProcess };

  /// A loop for the thread that makes it. The clock, which outlives it, says when timers fire.
  explicit MainLoop(const platform::Clock& clock, Context context = Context::own);
  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;
  ~MainLoop();

  /// Runs the task on the loop's thread, after the tasks posted before it.
  void post(Task task);

  /// Runs the task once after a while of any length, unless it is stopped first.
  TimerId startTimer(std::chrono::milliseconds delay, Task task);
  /// The same at a time of the clock.
  TimerId startTimerAt(platform::Clock::Steady due, Task task);
  void stopTimer(const TimerId& timer);

  /// Serves tasks, timers and the other sources of the context until `isDone` says so
  /// after one of them.
  void runUntil(const std::function<bool()>& isDone);

  [[nodiscard]] bool isOwnThread() const noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

inline constexpr MainLoop::TimerId MainLoop::TimerId::none{};

}  // namespace skerrow::core
