#pragma once
// Command: the base of every scripting command. The scripting layer creates an
// instance, fills it in with `prepare` and calls `perform` on the main thread; the
// command checks what needs no work, suspends, and computes on a worker thread. It
// resumes exactly once, with a result, with nothing, or with its script error.
//
// A command overrides `check` and `compute` and fails by throwing ScriptError.
// It owns what it reads in `check`; after suspension only its task touches it.

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/argument_key.h"
#include "core/cancel_token.h"
#include "core/script_error.h"
#include "core/shared_services.h"
#include "platform/clock.h"
#include "platform/platform.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::core {

class ApplicationDelegate;
class ScriptCompiler;
class WorkerPool;

/// What a command ends with: a result, nothing, or an error.
using Reply = std::variant<std::optional<ScriptValue>, ScriptError>;

/// Receives the reply of a suspended command, on whichever thread it resumes.
using ReplyReceiver = std::function<void(Reply)>;

/// What surrounds a command. Everything that it refers to outlives the command.
struct CommandContext {
  ApplicationDelegate& delegate;
  WorkerPool& pool;
  const ScriptCompiler& compiler;
  const platform::Platform& platform;
  const platform::Clock& clock;
  /// What commands share. A command that needs a service in its task takes hold of
  /// it in its checks.
  std::shared_ptr<SharedServices> services = std::make_shared<SharedServices>();
};

/// The arguments that a script gave, by key, as the scripting layer evaluated
/// them: plain Values, lists of raw items, or raw values, as each is declared.
class Arguments {
 public:
  void set(ArgumentKey key, Value value);

  /// The argument, or null when the script left it out.
  [[nodiscard]] const Value* find(ArgumentKey key) const noexcept;
  [[nodiscard]] bool has(ArgumentKey key) const noexcept { return find(key) != nullptr; }
  /// Set when present and true.
  [[nodiscard]] bool isSet(ArgumentKey key) const noexcept;
  /// The integer given, or nothing. The argument is declared as an integer.
  [[nodiscard]] std::optional<std::int64_t> integer(ArgumentKey key) const noexcept;

 private:
  std::vector<std::pair<ArgumentKey, Value>> values_;
};

class Command : public std::enable_shared_from_this<Command> {
 public:
  enum class State { created, checking, suspended, resumed };

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

  [[nodiscard]] State state() const noexcept { return state_.load(); }
  /// The failure that was recorded, if any.
  [[nodiscard]] const std::optional<ScriptError>& scriptError() const noexcept {
    return scriptError_;
  }
  /// Tells the task that nobody waits any more. Callable on any thread.
  void cancel() const noexcept { cancelToken_.cancel(); }

 protected:
  /// How the idle-quit timer is used: most commands restart it as they start;
  /// long ones stop it and restart it when their work ends.
  enum class QuitTimer { restartedAtStart, stoppedWhileWorking };

  [[nodiscard]] virtual QuitTimer quitTimer() const { return QuitTimer::restartedAtStart; }

  /// The common shape: restarts the timer, checks, suspends and queues the task.
  /// A command that computes at once overrides it and returns its result.
  virtual std::optional<Value> performDefaultImplementation();

  /// Reads the arguments and runs the checks that need no work.
  virtual void check() {}

  /// For `check`: this is the result, and there is no work to do.
  void answerAtOnce(Value result) { immediateResult_ = std::move(result); }

  /// The work, on a worker thread. Nothing is a result too.
  virtual std::optional<Value> compute() = 0;

  /// For `compute`: keeps values that are not needed any more until the script has
  /// its answer, as giving the memory of many back can take as long as the work.
  void discard(std::vector<Value> values) { discarded_.push_back(std::move(values)); }
  void discard(std::vector<ScriptValue> values) { discardedGiven_.push_back(std::move(values)); }

  [[nodiscard]] const std::optional<ScriptValue>& directParameter() const noexcept {
    return directParameter_;
  }
  /// Hands the direct parameter over, so that its memory goes once it is unpacked.
  [[nodiscard]] std::optional<ScriptValue> takeDirectParameter() noexcept {
    return std::exchange(directParameter_, std::nullopt);
  }
  [[nodiscard]] const Arguments& evaluatedArguments() const noexcept { return arguments_; }
  [[nodiscard]] const CommandContext& context() const { return context_.value(); }
  [[nodiscard]] const CancelToken& cancelToken() const noexcept { return cancelToken_; }

  // The two halves of the script error, for a failure that is recorded rather
  // than thrown. What is thrown is recorded by the runner.
  void setScriptErrorNumber(int number);
  void setScriptErrorString(std::string message);

  void suspendExecution();
  /// Ends the script's wait: with the script error if one is set, else with the
  /// result or nothing. Throws std::logic_error when the command is not suspended.
  void resumeExecutionWithResult(std::optional<ScriptValue> result);

  /// Ends the task so that the script never hears of it and waits until its own
  /// time-out; the error stays recorded. For the few places where that is meant.
  [[noreturn]] static void leaveUnanswered(ScriptError error);

 private:
  /// How a piece of a command's work ended.
  struct Outcome {
    std::optional<ScriptValue> result;
    bool isFailed = false;
    bool isAnswered = true;
  };

  // The one place where failures are caught: they become the script error.
  Outcome guarded(const std::function<std::optional<Value>()>& work) noexcept;
  void recordCurrentException(bool& isAnswered);
  [[nodiscard]] Reply replyWith(std::optional<ScriptValue> result);
  void runTask();

  std::optional<ScriptValue> directParameter_;
  Arguments arguments_;
  std::optional<CommandContext> context_;
  ReplyReceiver receiver_;
  CancelToken cancelToken_;
  std::vector<std::vector<Value>> discarded_;
  std::vector<std::vector<ScriptValue>> discardedGiven_;
  std::optional<Value> immediateResult_;
  std::optional<ScriptError> scriptError_;
  std::atomic<State> state_ = State::created;
};

}  // namespace skerrow::core
