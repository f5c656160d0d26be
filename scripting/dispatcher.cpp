#include "scripting/dispatcher.h"

#include <cassert>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "core/script_error.h"
#include "foundation/text/quoted_text.h"
#include "scripting/argument_evaluation.h"
#include "scripting/dictionary/nearest.h"

namespace skerrow::scripting {

namespace {

using core::ScriptError;

constexpr core::ErrorEntry kTimedOut = {core::scripting_error::kTimedOut, "AppleEvent timed out."};
constexpr core::ErrorEntry kUnknownCommand = {core::scripting_error::kUnknownCommand,
                                              "There is no command “%@”%@"};
}  // namespace

// Commands may resume when the dispatcher is gone: they hold it weakly.
struct Dispatcher::State : std::enable_shared_from_this<State> {
  State(const Dictionary& theDictionary, CommandClasses theClasses, core::MainLoop& theLoop,
        const core::CommandContext& theContext)
      : dictionary(theDictionary), classes(theClasses), loop(theLoop), context(theContext) {}

  struct Pending {
    std::shared_ptr<core::Command> command;
    core::MainLoop::TimerId timer;
    core::ReplyReceiver receiver;
  };

  std::shared_ptr<core::Command> prepared(EventId event, Event&& given);
  std::optional<Pending> remove(EventId event);
  void answer(EventId event, core::Reply reply);
  void timeOut(EventId event);

  const Dictionary& dictionary;
  CommandClasses classes;
  core::MainLoop& loop;
  core::CommandContext context;
  std::uint64_t lastEvent = 0;
  std::unordered_map<EventId, Pending> pending;
};

Dispatcher::Dispatcher(const Dictionary& dictionary, CommandClasses classes, core::MainLoop& loop,
                       const core::CommandContext& context)
    : state_(std::make_shared<State>(dictionary, classes, loop, context)) {
  assert(dictionary.commands.size() == classes.size());
}

Dispatcher::~Dispatcher() {
  while (!state_->pending.empty()) cancel(state_->pending.begin()->first);
}

std::shared_ptr<core::Command> Dispatcher::State::prepared(EventId event, Event&& given) {
  const CommandEntry* entry = dictionary.command(given.command);
  if (entry == nullptr) {
    throw ScriptError(kUnknownCommand, foundation::shortened(given.command),
                      didYouMean(dictionary, given.command));
  }
  core::Arguments arguments = evaluateArguments(*entry, given);
  const auto position = static_cast<std::size_t>(entry - dictionary.commands.data());
  std::shared_ptr<core::Command> command = classes[position]();
  command->prepare(std::move(given.directParameter), std::move(arguments), context,
                   [weak = weak_from_this(), &toLoop = loop, event](core::Reply reply) {
                     auto carried = std::make_shared<core::Reply>(std::move(reply));
                     toLoop.post([weak, event, carried] {
                       if (const auto state = weak.lock())
                         state->answer(event, std::move(*carried));
                     });
                   });
  return command;
}

Dispatcher::EventId Dispatcher::send(Event event, core::ReplyReceiver receiver) {
  assert(state_->loop.isOwnThread());
  const EventId identifier{++state_->lastEvent};
  const std::chrono::milliseconds timeout = event.timeout;
  std::shared_ptr<core::Command> command;
  std::optional<core::Reply> reply;
  try {
    command = state_->prepared(identifier, std::move(event));
    reply = command->perform();
  } catch (const ScriptError& refusal) {
    reply = refusal;
  }
  if (reply) {
    receiver(std::move(*reply));
    return identifier;
  }
  auto timer = core::MainLoop::TimerId::none;
  if (timeout != Event::kNoTimeout) {
    timer = state_->loop.startTimer(
        timeout, [state = state_.get(), identifier] { state->timeOut(identifier); });
  }
  state_->pending.emplace(identifier,
                          State::Pending{std::move(command), timer, std::move(receiver)});
  return identifier;
}

std::optional<Dispatcher::State::Pending> Dispatcher::State::remove(EventId event) {
  const auto found = pending.find(event);
  if (found == pending.end()) return std::nullopt;
  Pending removed = std::move(found->second);
  pending.erase(found);
  loop.stopTimer(removed.timer);
  return removed;
}

void Dispatcher::State::answer(EventId event, core::Reply reply) {
  if (auto waiting = remove(event)) waiting->receiver(std::move(reply));
}

void Dispatcher::State::timeOut(EventId event) {
  auto waiting = remove(event);
  if (!waiting) return;
  waiting->command->cancel();
  waiting->receiver(ScriptError(kTimedOut));
}

void Dispatcher::cancel(EventId event) {
  if (const auto waiting = state_->remove(event)) waiting->command->cancel();
}

core::Reply Dispatcher::perform(Event event) {
  std::optional<core::Reply> reply;
  send(std::move(event), [&reply](core::Reply given) { reply = std::move(given); });
  state_->loop.runUntil([&reply] { return reply.has_value(); });
  return std::move(*reply);
}

}  // namespace skerrow::scripting
