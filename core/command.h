#pragma once
// Command: the base of every scripting command. The scripting layer creates an
// instance, fills it in with `prepare` and calls `perform` on the main thread; the
// command checks what needs no work, suspends, and works on a worker thread, or on the
// main thread in steps that come later. It resumes exactly once, with a result, with
// nothing, or with its script error.
//
// A command overrides `check` and `compute` and fails by throwing ScriptError.
// It owns what it reads in `check`; after suspension only its task touches it.

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <utility>

#include "core/arguments.h"
#include "core/command_context.h"
#include "core/item_source.h"
#include "core/reply.h"
#include "core/script_error.h"
#include "platform/platform.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::work {
class MemoryExceeded;
}

namespace skerrow::core {

/// The failure (-108) of work that would have taken more memory than it may, which says
/// what would have been too large.
[[nodiscard]] ScriptError tooMuchMemory(const work::MemoryExceeded& exceeded);
/// The same where the system had none left.
[[nodiscard]] ScriptError noMemory();

class Command : public std::enable_shared_from_this<Command> {
 public:
  enum class State { created, checking, suspended, resumed };

  /// When a command that is told to stop does so: at its next look, or when the item at
  /// hand is finished, because it changes something that must not be left half done.
  enum class Stopping { atOnce, afterItem };

  Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;
  virtual ~Command() = default;

  /// Fills the command in; called once, before it is performed.
  void prepare(std::optional<ScriptValue> directParameter, Arguments evaluatedArguments,
               const CommandContext& context, ReplyReceiver receiver);

  /// Runs the command up to its suspension. The outcome is the reply of a command
  /// that never suspends, or empty: then the reply goes to the receiver. Main
  /// thread only.
  std::optional<Reply> perform();

  [[nodiscard]] virtual Stopping stopping() const { return Stopping::atOnce; }

  [[nodiscard]] State state() const noexcept { return state_.load(); }
  /// The failure that was recorded, if any.
  [[nodiscard]] const std::optional<ScriptError>& scriptError() const noexcept {
    return scriptError_;
  }
  /// What tells the command that nobody waits any more; it can be kept without keeping
  /// the command.
  [[nodiscard]] const std::stop_source& stopSource() const noexcept { return stopSource_; }

 protected:
  /// How the idle-quit timer is used: most commands restart it as they start; long ones
  /// stop it and restart it when their work ends; one that runs a script restarts it only
  /// when that ends.
  enum class QuitTimer { restartedAtStart, stoppedWhileWorking, restartedAtEnd };
  /// Where the work is done.
  enum class Place { worker, mainThread };

  [[nodiscard]] virtual QuitTimer quitTimer() const { return QuitTimer::restartedAtStart; }
  [[nodiscard]] virtual Place place() const { return Place::worker; }

  /// The common shape: sees to the timer, checks, and has the work done in its place.
  virtual std::optional<Value> performDefaultImplementation();

  /// Reads the arguments and runs the checks that need no work.
  virtual void check() {}

  /// For `check`: this is the result, and there is no work to do.
  void answerAtOnce(Value result) { immediateResult_ = std::move(result); }

  /// The work. Nothing is a result too. On the main thread it may suspend the command and
  /// go on later.
  virtual std::optional<Value> compute() = 0;

  /// For the end of a task, instead of a result: the list that these items make.
  void answerWithItems(std::unique_ptr<ItemSource> items);

  // For a command in its place on the main thread, once it is suspended there.

  /// What makes a callback of a step: when it is called, on the main thread, the step runs,
  /// and what it throws is the command's failure. Once the command has resumed or was told
  /// to stop, its steps are left out.
  [[nodiscard]] std::function<void()> laterStep(std::function<void()> step);
  /// Resumes the command from one of its steps.
  void finish(std::optional<Value> result);

  [[nodiscard]] const std::optional<ScriptValue>& directParameter() const noexcept {
    return directParameter_;
  }
  /// Hands the direct parameter over, so that its memory goes once it is unpacked.
  [[nodiscard]] std::optional<ScriptValue> takeDirectParameter() noexcept {
    return std::exchange(directParameter_, std::nullopt);
  }
  [[nodiscard]] const Arguments& evaluatedArguments() const noexcept { return arguments_; }
  [[nodiscard]] const CommandContext& context() const { return context_.value(); }

  // The two halves of the script error, for a failure that is recorded rather
  // than thrown. What is thrown is recorded by the runner.
  void setScriptErrorNumber(int number);
  void setScriptErrorString(std::string message);

  void suspendExecution();
  /// Has `compute` run on a worker, whether the command is suspended or not; main thread.
  void queueTask();
  /// Ends the script's wait: with the script error if one is set, else with the result or
  /// nothing. Throws std::logic_error when the command neither is suspended nor has queued
  /// its task, and when it has resumed already.
  void resumeExecutionWithResult(std::optional<ScriptValue> result);

  /// Ends the task so that the script never hears of it and waits until its own
  /// time-out; the error stays recorded. For the few places where that is meant.
  [[noreturn]] static void leaveUnanswered(ScriptError error);

 private:
  class TaskItems;

  /// How a piece of a command's work ended.
  struct Outcome {
    std::optional<ScriptValue> result;
    bool isFailed = false;
    bool isAnswered = true;
  };

  // The one place where failures are caught: they become the script error.
  Outcome guarded(const std::function<std::optional<ScriptValue>()>& work) noexcept;
  void recordCurrentException(bool& isAnswered);
  // The same on a worker, where the work can be stopped and its memory is measured.
  Outcome measured(const std::function<std::optional<ScriptValue>()>& work) noexcept;
  void runTask();
  bool tryToResume(Reply reply);
  void restartTimerAtEnd();
  [[nodiscard]] Reply replyWith(std::optional<ScriptValue> result);

  std::optional<ScriptValue> directParameter_;
  Arguments arguments_;
  std::optional<CommandContext> context_;
  ReplyReceiver receiver_;
  std::stop_source stopSource_;
  std::optional<Value> immediateResult_;
  std::unique_ptr<ItemSource> items_;
  std::optional<ScriptError> scriptError_;
  std::atomic<bool> hasTask_ = false;
  std::atomic<State> state_ = State::created;
};

}  // namespace skerrow::core
