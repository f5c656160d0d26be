#pragma once
// Call: one event on its way, from its sending to its reply. It answers once, whoever
// comes first: the command, the time-out, or nobody once the caller is gone. It also is
// what its command's tasks run on: the thread that waits for the answer, where one lent
// itself, else the workers of everybody.

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>
#include <vector>

#include "core/reply.h"
#include "core/workers.h"
#include "work/locked.h"

namespace skerrow::core {
class Command;
}

namespace skerrow::scripting {

class Call final : public core::Workers {
 public:
  Call(core::ReplyReceiver receiver, core::Workers& workers)
      : receiver_(std::move(receiver)), workers_(workers) {}

  /// Gives the reply, unless there was one; whether this was it. Any thread.
  bool answer(core::Reply reply);
  /// The caller is gone: nothing is answered any more. Any thread.
  void drop();
  [[nodiscard]] bool isAnswered() const noexcept { return isAnswered_; }

  /// For what the main thread has to say, a reply that is there at once or that the time is
  /// over: where a thread waits, it takes the reply; where a thread is at work, it is left
  /// behind; else a worker takes it. `command`, if any, is let go of there too.
  void answerFromMainThread(core::Reply reply, std::shared_ptr<core::Command> command);

  /// Operations are kept back until `letGo`: the main thread has to be done with the
  /// command by then, so that it is never the one that gives its memory back.
  void run(core::Operation operation, std::stop_token stop) override;
  using core::Workers::run;
  /// Hands on what was kept back, and from now on everything at once. Throws
  /// std::system_error where the system gives no thread.
  void letGo();

  /// Before the event is sent: this thread is going to serve.
  void lend(std::function<void()> onLeftBehind);
  /// Runs what there is to run until the call is answered; false when this thread was left
  /// behind meanwhile.
  bool serveUntilAnswered();

 private:
  enum class Lending { none, waiting, working, leftBehind };
  struct Job {
    core::Operation operation;
    std::stop_token stop;
  };
  struct State {
    bool isKeepingBack = true;
    std::vector<Job> keptBack;
    Lending lending = Lending::none;
    std::function<void()> onLeftBehind;
    core::Operation operation;  // for the thread that waits
    std::optional<core::Reply> reply;
    std::shared_ptr<core::Command> command;  // goes with the reply
    bool isOver = false;
  };

  [[nodiscard]] static bool hasNews(const State& state) {
    return state.operation || state.reply || state.isOver;
  }
  void end();
  void tell();  // under the lock

  core::ReplyReceiver receiver_;
  core::Workers& workers_;
  std::atomic<bool> isAnswered_ = false;
  std::atomic<bool> hasNews_ = false;
  std::condition_variable changed_;
  work::Locked<State> state_;
};

}  // namespace skerrow::scripting
