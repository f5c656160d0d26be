#include "core/command.h"

#include <algorithm>
#include <cassert>
#include <new>
#include <stdexcept>
#include <utility>

#include "core/application_delegate.h"
#include "core/operation_queue.h"
#include "core/pack.h"

namespace skerrow::core {

namespace {

struct Unanswered {
  ScriptError error;
};

}  // namespace

void Arguments::set(ArgumentKey key, Value value) {
  const auto there = std::ranges::find(values_, key, &std::pair<ArgumentKey, Value>::first);
  if (there != values_.end()) {
    there->second = std::move(value);
  } else {
    values_.emplace_back(key, std::move(value));
  }
}

const Value* Arguments::find(ArgumentKey key) const noexcept {
  const auto found = std::ranges::find(values_, key, &std::pair<ArgumentKey, Value>::first);
  return found == values_.end() ? nullptr : &found->second;
}

bool Arguments::isSet(ArgumentKey key) const noexcept {
  const Value* value = find(key);
  return value != nullptr && value->isNumber() && value->number().isNonZero();
}

std::optional<std::int64_t> Arguments::integer(ArgumentKey key) const noexcept {
  const Value* value = find(key);
  if (value == nullptr || !value->isNumber()) return std::nullopt;
  return value->number().asInteger();
}

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
  state_ = State::checking;
  Outcome outcome = guarded([this] { return performDefaultImplementation(); });
  // Once suspended the reply comes from the task, unless it could not be queued.
  if (state() != State::checking && !outcome.isFailed) return std::nullopt;
  state_ = State::resumed;
  return replyWith(std::move(outcome.result));
}

std::optional<Value> Command::performDefaultImplementation() {
  if (quitTimer() == QuitTimer::restartedAtStart) {
    context().delegate.startQuitTimer();
  } else {
    context().delegate.invalidateQuitTimer();
  }
  check();
  if (immediateResult_) return std::exchange(immediateResult_, std::nullopt);
  suspendExecution();
  OperationQueue queue(context().pool);
  queue.addOperation([self = shared_from_this()] { self->runTask(); });
  return std::nullopt;
}

void Command::runTask() {
  Outcome outcome = guarded([this] { return compute(); });
  if (!outcome.isAnswered) return;
  if (quitTimer() == QuitTimer::stoppedWhileWorking) context().delegate.startQuitTimer();
  resumeExecutionWithResult(std::move(outcome.result));
  discarded_.clear();
  discardedGiven_.clear();
}

Command::Outcome Command::guarded(const std::function<std::optional<Value>()>& work) noexcept {
  Outcome outcome;
  try {
    if (std::optional<Value> value = work()) outcome.result = makeDescriptor(std::move(*value));
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
  } catch (const Cancelled&) {
    // Nobody waits for this reply; it goes out empty and is dropped.
  } catch (const std::bad_alloc&) {
    scriptError_.emplace(scripting_error::kOutOfMemory, "There is not enough memory for this.");
  } catch (const std::exception& error) {
    scriptError_.emplace(scripting_error::kHandlerFailed, error.what());
  } catch (...) {
    scriptError_.emplace(scripting_error::kHandlerFailed, "The command failed.");
  }
}

void Command::suspendExecution() { state_ = State::suspended; }

void Command::resumeExecutionWithResult(std::optional<ScriptValue> result) {
  State expected = State::suspended;
  if (!state_.compare_exchange_strong(expected, State::resumed)) {
    throw std::logic_error("A command resumes once, and only after it was suspended.");
  }
  receiver_(replyWith(std::move(result)));
}

Reply Command::replyWith(std::optional<ScriptValue> result) {
  if (scriptError_) return *scriptError_;
  return result;
}

void Command::leaveUnanswered(ScriptError error) { throw Unanswered{std::move(error)}; }

}  // namespace skerrow::core
