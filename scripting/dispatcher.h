#pragma once
// Dispatcher: takes events and answers them. For each event it creates the
// command, fills in its arguments, performs it and waits for its reply, serving
// other events meanwhile. It refuses unknown commands and arguments and values of
// the wrong kind, and answers for a command that takes longer than its time-out.
//
// All of it happens on the main loop's thread; replies are handed over there.

#include <cstdint>
#include <functional>
#include <memory>

#include "core/command.h"
#include "core/main_loop.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/event.h"

namespace skerrow::scripting {

class Dispatcher {
 public:
  enum class EventId : std::uint64_t {};

  /// The loop, and what `context` refers to, outlive the commands, of which some may
  /// run on when the dispatcher is gone; all else outlives the dispatcher.
  Dispatcher(const Dictionary& dictionary, CommandClasses classes, core::MainLoop& loop,
             const core::CommandContext& context);
  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;
  /// Cancels what is still waited for; its replies are dropped.
  ~Dispatcher();

  /// Starts an event. The reply comes once, possibly before this returns.
  EventId send(Event event, core::ReplyReceiver receiver);

  /// The caller of an event is gone: its command is told to stop and its reply dropped.
  void cancel(EventId event);

  /// Starts an event and serves the loop until its reply is there.
  core::Reply perform(Event event);

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace skerrow::scripting
