#pragma once
// Dispatcher: takes events and answers them. For each event it creates the command,
// evaluates its arguments, has it performed on the main thread, and sees to its time-out.
// It refuses unknown commands and arguments and values of the wrong kind.
//
// Events are sent from any thread, and what is large about them stays there and on the
// workers: values are evaluated where an event is sent, and a reply is received where its
// command worked. The main thread starts commands, keeps their timers, and holds nothing
// of an event but what tells its command to stop.

#include <cstdint>
#include <functional>
#include <memory>

#include "core/command_context.h"
#include "core/reply.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/event.h"

namespace skerrow::scripting {

class Dispatcher {
 public:
  enum class EventId : std::uint64_t {};

  /// Made and taken down on the main loop's thread. What `context` refers to outlives the
  /// commands, of which some may run on when the dispatcher is gone; all else outlives the
  /// dispatcher.
  Dispatcher(const Dictionary& dictionary, CommandClasses classes,
             const core::CommandContext& context);
  Dispatcher(const Dispatcher&) = delete;
  Dispatcher& operator=(const Dispatcher&) = delete;
  /// Tells what is still waited for to stop; its replies are dropped.
  ~Dispatcher();

  /// Sends an event; any thread. The reply comes once: for a refusal on this thread before
  /// this returns, for a time-out on the main thread, else on a worker.
  EventId send(Event event, core::ReplyReceiver receiver);

  /// The caller of an event is gone: its command is told to stop and its reply dropped.
  /// Any thread.
  void cancel(EventId event);

  /// Sends an event and waits for its reply, as a whole. On the main thread the loop is
  /// served meanwhile; on another one the reply is nothing when the dispatcher goes first.
  core::Reply perform(Event event);

  /// Whether the thread that lent itself is still the one that goes on.
  enum class Lent { givenBack, leftBehind };

  /// Sends an event and lends this thread, which is not the main one, to its command. The
  /// reply comes as with `send`, before this returns. Where the time is over while this
  /// thread works, the reply comes on the main thread, `onLeftBehind` is called there to
  /// find another thread to go on with, and this one is left behind.
  Lent performHere(Event event, core::ReplyReceiver receiver,
                   const std::function<void()>& onLeftBehind);

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace skerrow::scripting
