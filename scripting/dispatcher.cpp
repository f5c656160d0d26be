#include "scripting/dispatcher.h"

#include <atomic>
#include <cassert>
#include <future>
#include <optional>
#include <stop_token>
#include <string>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "core/command.h"
#include "core/main_loop.h"
#include "core/script_error.h"
#include "core/worker_pool.h"
#include "foundation/text/quoted_text.h"
#include "scripting/argument_evaluation.h"
#include "scripting/call.h"
#include "scripting/dictionary/nearest.h"

namespace skerrow::scripting {

namespace {

using core::ScriptError;

constexpr core::ErrorEntry kTimedOut = {core::scripting_error::kTimedOut, "AppleEvent timed out."};
constexpr core::ErrorEntry kUnknownCommand = {core::scripting_error::kUnknownCommand,
                                              "There is no command “%@”%@"};
constexpr core::ErrorEntry kNoThread = {core::scripting_error::kOutOfMemory,
                                        "The system gives no thread to do this on."};

}  // namespace

// Commands may resume when the dispatcher is gone: they hold it weakly.
struct Dispatcher::State : std::enable_shared_from_this<State> {
  State(const Dictionary& theDictionary, CommandClasses theClasses,
        const core::CommandContext& theContext)
      : dictionary(theDictionary), classes(theClasses), context(theContext) {}

  // An event that was sent, until its command is started.
  struct Sent {
    EventId event;
    std::chrono::milliseconds timeout;
    std::shared_ptr<Call> call;
    std::shared_ptr<core::Command> command;
  };
  // An event whose command is at work. The main thread's own.
  struct Pending {
    std::stop_source stop;
    core::MainLoop::TimerId timer;
    std::shared_ptr<Call> call;
  };

  EventId send(Event&& event, const std::shared_ptr<Call>& call);
  std::shared_ptr<core::Command> prepared(EventId event, Event&& given,
                                          const std::shared_ptr<Call>& call);
  void onMainThread(std::function<void(State&)> task);
  void start(Sent sent);
  std::optional<Pending> remove(EventId event);
  void timeOut(EventId event);
  void cancel(EventId event);

  const Dictionary& dictionary;
  CommandClasses classes;
  core::CommandContext context;
  std::atomic<std::uint64_t> lastEvent = 0;
  std::unordered_map<EventId, Pending> pending;
};

Dispatcher::Dispatcher(const Dictionary& dictionary, CommandClasses classes,
                       const core::CommandContext& context)
    : state_(std::make_shared<State>(dictionary, classes, context)) {
  assert(dictionary.commands.size() == classes.size());
  assert(context.loop.isOwnThread());
}

Dispatcher::~Dispatcher() {
  assert(state_->context.loop.isOwnThread());
  while (!state_->pending.empty()) state_->cancel(state_->pending.begin()->first);
}

// At once on the main thread, else as soon as it comes to it; not any more when the
// dispatcher is gone.
void Dispatcher::State::onMainThread(std::function<void(State&)> task) {
  if (context.loop.isOwnThread()) return task(*this);
  context.loop.post([weak = weak_from_this(), task = std::move(task)] {
    if (const auto state = weak.lock()) task(*state);
  });
}

std::shared_ptr<core::Command> Dispatcher::State::prepared(EventId event, Event&& given,
                                                           const std::shared_ptr<Call>& call) {
  const CommandEntry* entry = dictionary.command(given.command);
  if (entry == nullptr) {
    throw ScriptError(kUnknownCommand, foundation::shortened(given.command),
                      didYouMean(dictionary, given.command));
  }
  core::Arguments arguments = evaluateArguments(*entry, given);
  const auto position = static_cast<std::size_t>(entry - dictionary.commands.data());
  std::shared_ptr<core::Command> command = classes[position]();
  core::CommandContext surroundings{.loop = context.loop,
                                    .workers = *call,
                                    .platform = context.platform,
                                    .clock = context.clock,
                                    .delegate = context.delegate,
                                    .compiler = context.compiler,
                                    .services = context.services,
                                    .memoryAllowance = context.memoryAllowance};
  command->prepare(std::move(given.directParameter), std::move(arguments), surroundings,
                   [weak = weak_from_this(), call, event](core::Reply reply) {
                     call->answer(std::move(reply));
                     if (const auto state = weak.lock()) {
                       state->onMainThread([event](State& there) { there.remove(event); });
                     }
                   });
  return command;
}

Dispatcher::EventId Dispatcher::State::send(Event&& event, const std::shared_ptr<Call>& call) {
  Sent sent{.event = EventId{++lastEvent}, .timeout = event.timeout, .call = call, .command = {}};
  const EventId identifier = sent.event;
  try {
    sent.command = prepared(identifier, std::move(event), call);
  } catch (const ScriptError& refusal) {
    call->answer(refusal);
    return identifier;
  }
  if (context.loop.isOwnThread()) {
    start(std::move(sent));
    return identifier;
  }
  auto carried = std::make_shared<Sent>(std::move(sent));
  context.loop.post([weak = weak_from_this(), carried = std::move(carried)] {
    if (const auto state = weak.lock()) {
      state->start(std::move(*carried));
    } else {
      carried->call->drop();
    }
  });
  return identifier;
}

void Dispatcher::State::start(Sent sent) {
  if (sent.call->isAnswered()) return;  // its caller went away before
  const std::stop_source stop = sent.command->stopSource();
  auto timer = core::MainLoop::TimerId::none;
  if (sent.timeout != Event::kNoTimeout) {
    timer = context.loop.startTimer(sent.timeout, [this, event = sent.event] { timeOut(event); });
  }
  pending.emplace(sent.event, Pending{stop, timer, sent.call});
  auto reply = sent.command->perform();
  if (reply) {
    remove(sent.event);
    // The command goes with its reply, as it may hold much that takes time to give back.
    return sent.call->answerFromMainThread(std::move(*reply), std::move(sent.command));
  }
  sent.command = nullptr;
  try {
    sent.call->letGo();
  } catch (const std::system_error&) {
    remove(sent.event);
    sent.call->answerFromMainThread(ScriptError(kNoThread), nullptr);
  }
}

std::optional<Dispatcher::State::Pending> Dispatcher::State::remove(EventId event) {
  const auto found = pending.find(event);
  if (found == pending.end()) return std::nullopt;
  Pending removed = std::move(found->second);
  pending.erase(found);
  context.loop.stopTimer(removed.timer);
  return removed;
}

void Dispatcher::State::timeOut(EventId event) {
  auto waiting = remove(event);
  if (!waiting) return;
  waiting->call->answerFromMainThread(ScriptError(kTimedOut), nullptr);
  waiting->stop.request_stop();
}

void Dispatcher::State::cancel(EventId event) {
  const auto waiting = remove(event);
  if (!waiting) return;
  waiting->call->drop();
  waiting->stop.request_stop();
}

Dispatcher::EventId Dispatcher::send(Event event, core::ReplyReceiver receiver) {
  return state_->send(std::move(event),
                      std::make_shared<Call>(std::move(receiver), state_->context.workers));
}

void Dispatcher::cancel(EventId event) {
  state_->onMainThread([event](State& state) { state.cancel(event); });
}

core::Reply Dispatcher::perform(Event event) {
  core::MainLoop& loop = state_->context.loop;
  if (!loop.isOwnThread()) {
    std::promise<core::Reply> promise;
    auto reply = promise.get_future();
    send(std::move(event),
         [promise = std::make_shared<std::promise<core::Reply>>(std::move(promise))](
             core::Reply given) { promise->set_value(gathered(std::move(given))); });
    const core::WaitingForOthers waiting;
    try {
      return reply.get();
    } catch (const std::future_error&) {
      return std::optional<ScriptValue>();  // the dispatcher went, and the promise with it
    }
  }
  auto reply = std::make_shared<std::optional<core::Reply>>();
  send(std::move(event), [reply, &loop](core::Reply given) {
    auto whole = std::make_shared<core::Reply>(gathered(std::move(given)));
    if (loop.isOwnThread()) {
      *reply = std::move(*whole);
    } else {
      loop.post([reply, whole] { *reply = std::move(*whole); });
    }
  });
  loop.runUntil([&reply] { return reply->has_value(); });
  return std::move(**reply);
}

Dispatcher::Lent Dispatcher::performHere(Event event, core::ReplyReceiver receiver,
                                         const std::function<void()>& onLeftBehind) {
  assert(!state_->context.loop.isOwnThread());
  const auto call = std::make_shared<Call>(std::move(receiver), state_->context.workers);
  call->lend(onLeftBehind);
  state_->send(std::move(event), call);
  return call->serveUntilAnswered() ? Lent::givenBack : Lent::leftBehind;
}

}  // namespace skerrow::scripting
