#include "scripting/call.h"

#include <utility>

#include "core/command.h"
#include "core/spin_wait.h"

namespace skerrow::scripting {

namespace {

// Threads that lend themselves one time after the other spin only where that pays.
thread_local core::SpinWait spin;

}  // namespace

bool Call::answer(core::Reply reply) {
  if (isAnswered_.exchange(true)) return false;
  const core::ReplyReceiver receiver = std::move(receiver_);
  receiver(std::move(reply));
  end();
  return true;
}

void Call::drop() {
  if (isAnswered_.exchange(true)) return;
  receiver_ = nullptr;
  end();
}

void Call::end() {
  auto state = state_.access();
  state->isOver = true;
  tell();
}

void Call::answerFromMainThread(core::Reply reply, std::shared_ptr<core::Command> command) {
  core::ReplyReceiver receiver;
  std::function<void()> onLeftBehind;
  {
    // Who answers and who goes on is decided in one, so that a lent thread sees both.
    auto state = state_.access();
    if (isAnswered_.exchange(true)) return;
    if (state->lending == Lending::waiting) {
      state->reply = std::move(reply);
      state->command = std::move(command);
      return tell();
    }
    receiver = std::move(receiver_);
    if (state->lending == Lending::working) {
      state->lending = Lending::leftBehind;
      onLeftBehind = std::move(state->onLeftBehind);
    }
  }
  // Errors are small; a result is taken where it keeps nobody waiting.
  const bool isSmall = command == nullptr && std::holds_alternative<core::ScriptError>(reply);
  if (isSmall) {
    receiver(std::move(reply));
    if (onLeftBehind) onLeftBehind();
  } else {
    workers_.run([receiver = std::move(receiver), reply = std::move(reply),
                  command = std::move(command)]() mutable { receiver(std::move(reply)); });
  }
}

void Call::run(core::Operation operation, std::stop_token stop) {
  {
    auto state = state_.access();
    if (state->isKeepingBack) {
      state->keptBack.push_back({std::move(operation), std::move(stop)});
      return;
    }
    if (state->lending == Lending::waiting && !state->operation) {
      state->operation = std::move(operation);
      return tell();
    }
  }
  workers_.run(std::move(operation), std::move(stop));
}

void Call::letGo() {
  std::vector<Job> jobs;
  {
    auto state = state_.access();
    state->isKeepingBack = false;
    jobs.swap(state->keptBack);
  }
  for (Job& job : jobs) run(std::move(job.operation), std::move(job.stop));
}

void Call::tell() {
  hasNews_.store(true, std::memory_order_release);
  changed_.notify_one();
}

void Call::lend(std::function<void()> onLeftBehind) {
  auto state = state_.access();
  state->lending = Lending::waiting;
  state->onLeftBehind = std::move(onLeftBehind);
}

bool Call::serveUntilAnswered() {
  auto state = state_.access();
  for (;;) {
    if (!hasNews(*state)) {
      state.unlock();
      spin.until([this] { return hasNews_.load(std::memory_order_acquire); });
      state.lock();
      state.wait(changed_, hasNews);
    }
    hasNews_ = false;
    if (state->isOver) return true;
    if (state->reply) {
      core::Reply reply = std::move(*state->reply);
      const auto command = std::move(state->command);
      state.unlock();
      receiver_(std::move(reply));
      return true;
    }
    state->lending = Lending::working;
    core::Operation operation = std::exchange(state->operation, nullptr);
    state.unlock();
    operation();
    operation = nullptr;  // what it owns goes before the lock is held again
    state.lock();
    if (state->lending == Lending::leftBehind) return false;
    state->lending = Lending::waiting;
  }
}

}  // namespace skerrow::scripting
