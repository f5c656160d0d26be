#pragma once
// MainLoop: the loop of the main thread, over a GLib main context. Commands are
// started, timers fire and replies arrive on the thread that runs it. Only
// `post` may be called on other threads.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace skerrow::core {

class MainLoop {
 public:
  using Task = std::function<void()>;
  enum class TimerId : std::uint32_t { none = 0 };

  /// A loop of its own context, for the thread that makes it.
  MainLoop();
  MainLoop(const MainLoop&) = delete;
  MainLoop& operator=(const MainLoop&) = delete;
  ~MainLoop();

  /// Runs the task on the loop's thread, after the tasks posted before it.
  void post(Task task);

  /// Runs the task once after a while, unless it is stopped first.
  TimerId startTimer(std::chrono::milliseconds delay, Task task);
  void stopTimer(TimerId timer);

  /// Serves tasks and timers until `isDone` says so after one of them.
  void runUntil(const std::function<bool()>& isDone);

  [[nodiscard]] bool isOwnThread() const noexcept;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace skerrow::core
