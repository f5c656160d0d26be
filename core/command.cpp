#include "core/command.h"

#include <cassert>
#include <new>
#include <stdexcept>
#include <utility>

#include "core/application_delegate.h"
#include "core/effects_in_progress.h"
#include "core/item_source.h"
#include "core/main_loop.h"
#include "core/operation_queue.h"
#include "core/pack.h"
#include "work/memory.h"
#include "work/stopping.h"

namespace skerrow::core {

namespace {

constexpr ErrorEntry kNoMemory = {scripting_error::kOutOfMemory,
                                  "There is not enough memory for this."};
constexpr ErrorEntry kTooMuchMemory = {
    scripting_error::kOutOfMemory, "This would take %@ of memory, and one command may take %@."};
constexpr ErrorEntry kTooLargeResult = {
    scripting_error::kOutOfMemory,
    "There is not enough memory for %@: it would take %@, and one command may take %@."};

struct Unanswered {
  ScriptError error;
};

std::optional<ScriptValue> packed(std::optional<Value> value) {
  if (!value) return std::nullopt;
  return makeDescriptor(std::move(*value));
}

}  // namespace

ScriptError tooMuchMemory(const work::MemoryExceeded& exceeded) {
  const std::string wanted = work::sizeInWords(exceeded.wanted());
  const std::string allowance = work::sizeInWords(exceeded.allowance());
  if (dynamic_cast<const work::ResultTooLarge*>(&exceeded) == nullptr) {
    return ScriptError(kTooMuchMemory, wanted, allowance);
  }
  return ScriptError(kTooLargeResult, exceeded.what(), wanted, allowance);
}

ScriptError noMemory() { return ScriptError(kNoMemory); }

// The items of a command's source, each made as a task is run.
class Command::TaskItems final : public ReplyItems {
 public:
  TaskItems(std::shared_ptr<Command> command, std::unique_ptr<ItemSource> source)
      : command_(std::move(command)), source_(std::move(source)) {}
  TaskItems(const TaskItems&) = delete;
  TaskItems& operator=(const TaskItems&) = delete;
  ~TaskItems() override { end(); }

  std::optional<ScriptValue> next() override {
    if (source_ == nullptr) return std::nullopt;
    Outcome outcome = command_->measured([this]() -> std::optional<ScriptValue> {
      auto item = source_->next();
      if (!item) return std::nullopt;
      return makeDescriptor(std::move(*item)).value_or(descriptorWithMissingValue());
    });
    if (!outcome.result) end();
    if (command_->scriptError_) throw ScriptError(*command_->scriptError_);
    return std::move(outcome.result);
  }

 private:
  void end() {
    if (std::exchange(source_, nullptr) != nullptr) command_->restartTimerAtEnd();
  }

  std::shared_ptr<Command> command_;
  std::unique_ptr<ItemSource> source_;
};

void Command::prepare(std::optional<ScriptValue> directParameter, Arguments evaluatedArguments,
                      const CommandContext& context, ReplyReceiver receiver) {
  assert(state() == State::created);
  directParameter_ = std::move(directParameter);
  arguments_ = std::move(evaluatedArguments);
  context_.emplace(context);
  receiver_ = std::move(receiver);
}

void Command::setScriptErrorNumber(int number) {
  scriptError_.emplace(number, scriptError_ ? scriptError_->message() : std::string());
}

void Command::setScriptErrorString(std::string message) {
  scriptError_.emplace(scriptError_ ? scriptError_->number() : 0, std::move(message));
}

std::optional<Reply> Command::perform() {
  assert(context().loop.isOwnThread());
  state_ = State::checking;
  Outcome outcome = guarded([this] { return packed(performDefaultImplementation()); });
  const bool goesOn = hasTask_ || state() != State::checking;
  if (goesOn && !outcome.isFailed) return std::nullopt;
  // A task that was queued before the failure may have answered meanwhile.
  if (state_.exchange(State::resumed) == State::resumed) return std::nullopt;
  return replyWith(std::move(outcome.result));
}

std::optional<Value> Command::performDefaultImplementation() {
  const QuitTimer timer = quitTimer();
  if (timer == QuitTimer::restartedAtStart) context().delegate.startQuitTimer();
  if (timer == QuitTimer::stoppedWhileWorking) context().delegate.invalidateQuitTimer();
  check();
  if (immediateResult_) return std::exchange(immediateResult_, std::nullopt);
  if (place() == Place::worker) {
    suspendExecution();
    queueTask();
    return std::nullopt;
  }
  std::optional<Value> result;
  try {
    result = compute();
  } catch (...) {
    restartTimerAtEnd();
    throw;
  }
  if (state() == State::checking) restartTimerAtEnd();
  return result;
}

void Command::queueTask() {
  assert(context().loop.isOwnThread());
  hasTask_ = true;
  OperationQueue queue(context().workers);
  try {
    queue.addOperation([self = shared_from_this()] { self->runTask(); }, stopSource_.get_token());
  } catch (...) {
    hasTask_ = false;
    throw;
  }
}

void Command::runTask() {
  const auto effects =
      stopping() == Stopping::afterItem ? context().services->of<EffectsInProgress>() : nullptr;
  if (effects) effects->begin();
  Outcome outcome = measured([this] { return packed(compute()); });
  if (outcome.isAnswered) {
    if (items_ != nullptr && !scriptError_) {
      tryToResume(std::make_shared<TaskItems>(shared_from_this(), std::move(items_)));
    } else {
      restartTimerAtEnd();
      tryToResume(replyWith(std::move(outcome.result)));
    }
  }
  if (effects) effects->end();
}

void Command::restartTimerAtEnd() {
  if (quitTimer() != QuitTimer::restartedAtStart) context().delegate.startQuitTimer();
}

void Command::answerWithItems(std::unique_ptr<ItemSource> items) { items_ = std::move(items); }

std::function<void()> Command::laterStep(std::function<void()> step) {
  return [self = shared_from_this(), step = std::move(step)] {
    assert(self->context().loop.isOwnThread());
    if (self->state() != State::suspended || self->stopSource_.stop_requested()) return;
    const Outcome outcome = self->guarded([&step]() -> std::optional<ScriptValue> {
      step();
      return std::nullopt;
    });
    if (outcome.isFailed && outcome.isAnswered) self->finish(std::nullopt);
  };
}

void Command::finish(std::optional<Value> result) {
  assert(context().loop.isOwnThread());
  restartTimerAtEnd();
  // Results are packed and given back where they keep nobody waiting.
  context().workers.run([self = shared_from_this(), result = std::move(result)]() mutable {
    Outcome outcome = self->guarded([&result] { return packed(std::move(result)); });
    self->tryToResume(self->replyWith(std::move(outcome.result)));
  });
}

Command::Outcome Command::measured(
    const std::function<std::optional<ScriptValue>()>& work) noexcept {
  return guarded([&]() -> std::optional<ScriptValue> {
    const work::StopScope stopping(stopSource_.get_token());
    const work::MemoryScope memory(context().memoryAllowance);
    work::stopIfAsked();
    return work();
  });
}

Command::Outcome Command::guarded(
    const std::function<std::optional<ScriptValue>()>& work) noexcept {
  Outcome outcome;
  try {
    outcome.result = work();
  } catch (...) {
    outcome.isFailed = true;
    recordCurrentException(outcome.isAnswered);
  }
  return outcome;
}

void Command::recordCurrentException(bool& isAnswered) {
  try {
    throw;
  } catch (const ScriptError& error) {
    scriptError_ = error;
  } catch (const Unanswered& unanswered) {
    scriptError_ = unanswered.error;
    isAnswered = false;
  } catch (const work::Stopped&) {
    // Nobody waits for this reply; it goes out empty and is dropped.
  } catch (const work::MemoryExceeded& exceeded) {
    scriptError_ = tooMuchMemory(exceeded);
  } catch (const std::bad_alloc&) {
    scriptError_ = noMemory();
  } catch (const std::exception& error) {
    scriptError_.emplace(scripting_error::kHandlerFailed, error.what());
  } catch (...) {
    scriptError_.emplace(scripting_error::kHandlerFailed, "The command failed.");
  }
}

void Command::suspendExecution() { state_ = State::suspended; }

void Command::resumeExecutionWithResult(std::optional<ScriptValue> result) {
  if (tryToResume(replyWith(std::move(result)))) return;
  throw std::logic_error("A command resumes once, and only after it was suspended.");
}

bool Command::tryToResume(Reply reply) {
  State now = state();
  while (now == State::suspended || (now == State::checking && hasTask_)) {
    if (!state_.compare_exchange_weak(now, State::resumed)) continue;
    receiver_(std::move(reply));
    return true;
  }
  return false;
}

Reply Command::replyWith(std::optional<ScriptValue> result) {
  if (scriptError_) return *scriptError_;
  return result;
}

void Command::leaveUnanswered(ScriptError error) { throw Unanswered{std::move(error)}; }

}  // namespace skerrow::core
