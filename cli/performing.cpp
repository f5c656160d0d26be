#include "cli/performing.h"

#include <atomic>
#include <charconv>
#include <chrono>
#include <exception>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "cli/options.h"
#include "core/application_delegate.h"
#include "core/command.h"
#include "core/effects_in_progress.h"
#include "core/main_loop.h"
#include "core/script_compiler.h"
#include "core/worker_pool.h"
#include "platform/byte_stream.h"
#include "platform/clock.h"
#include "platform/platform_error.h"
#include "platform/system_platform.h"
#include "platform/thread.h"
#include "scripting/dispatcher.h"
#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"
#include "work/memory.h"

namespace skerrow::cli {

namespace {

using scripting::Dispatcher;
using scripting::Event;
using scripting::JsonError;
using scripting::JsonSource;

// How long a command that changes files may take to finish the one at hand when the
// program ends.
constexpr std::chrono::seconds kTimeToFinish(5);

// The share of the machine's memory that one command may take, unless the environment says
// how many bytes.
std::size_t memoryOfOneCommand(const platform::Platform& platform) {
  constexpr std::size_t kShare = 4;
  if (const auto given = platform.environment.variable("SKERROW_MEMORY")) {
    std::size_t bytes = 0;
    const char* const end = given->data() + given->size();
    const auto [stop, error] = std::from_chars(given->data(), end, bytes);
    if (error == std::errc() && stop == end && bytes > 0) return bytes;
    throw UsageError("the variable SKERROW_MEMORY needs a number of bytes, not “" + *given + "”");
  }
  return platform.machine.memory() / kShare;
}

// Everything that events need, with no service, no bus and no display.
struct Process {
  platform::SystemPlatform platform;
  platform::SystemClock clock;
  core::NoApplication application;
  core::NoScriptCompiler compiler;
  core::MainLoop loop{clock, core::MainLoop::Context::ofProcess};
  core::WorkerPool pool;
  core::CommandContext context{.loop = loop,
                               .workers = pool,
                               .platform = platform,
                               .clock = clock,
                               .delegate = application,
                               .compiler = compiler,
                               .memoryAllowance = memoryOfOneCommand(platform)};
  std::optional<Dispatcher> dispatcher{std::in_place, scripting::skerrowDictionary(),
                                       scripting::skerrowDictionaryClasses(), context};

  // Serves the main thread's work until the conversation is over. What it ended with is
  // its status, or thrown here.
  int serve() {
    loop.runUntil([this] { return isOver; });
    dispatcher.reset();  // tells what still runs to stop
    context.services->of<core::EffectsInProgress>()->waitForEnd(kTimeToFinish);
    if (failure) std::rethrow_exception(failure);
    return status;
  }

  // Any thread.
  void end(int withStatus, const std::exception_ptr& withFailure = nullptr) {
    loop.post([this, withStatus, withFailure] {
      status = withStatus;
      failure = withFailure;
      isOver = true;
    });
  }

  bool isOver = false;
  int status = 0;
  std::exception_ptr failure;

  // Never taken down: a command that timed out may still work in it, and the
  // memory of everything goes with the program anyway.
  static Process& start() { return *std::make_unique<Process>().release(); }
};

JsonSource sourceFrom(std::shared_ptr<platform::InputFile> file) {
  return JsonSource([file = std::move(file)](char* buffer, std::size_t capacity) {
    return file->read(buffer, capacity);
  });
}

// The JSON that an option's word gives: itself, from a file, or from standard input.
JsonSource sourceOf(const std::string& word) {
  if (word == "-") {
    return sourceFrom(std::make_shared<platform::InputFile>(platform::InputFile::standardInput()));
  }
  if (word.starts_with('@')) {
    return sourceFrom(std::make_shared<platform::InputFile>(word.substr(1)));
  }
  return JsonSource(std::string_view(word));
}

template <class Read>
auto readOption(const std::string& option, const std::string& word, Read&& read) {
  try {
    JsonSource source = sourceOf(word);
    return read(source);
  } catch (const JsonError& error) {
    throw JsonError(option + ": " + error.what());
  } catch (const platform::PlatformError& error) {
    throw InputError(option + ": " + error.localizedDescription());
  }
}

Event readEvent(const PerformOne& asked) {
  Event event;
  event.command = asked.command;
  event.timeout = asked.timeout;
  if (asked.direct) {
    event.directParameter = readOption("--direct", *asked.direct, [](JsonSource& source) {
      return scripting::readTypedJson(source);
    });
  }
  if (asked.arguments) {
    event.arguments = readOption("--arguments", *asked.arguments, [](JsonSource& source) {
      return scripting::readArguments(source);
    });
  }
  return event;
}

// Prints what one command ends with; the exit status.
int print(const core::Reply& reply, platform::OutputStream& output) {
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) {
    std::cerr << "skerrow: " << error->message() << " (" << error->number() << ")\n";
    return 1;
  }
  if (!scripting::hasResult(reply)) return 0;
  const auto start = output.place();
  try {
    scripting::writeResult(reply, [&output](std::string_view piece) { output.write(piece); });
  } catch (const core::ScriptError& error) {
    output.goBackTo(start);
    output.flush();
    return print(error, output);
  }
  output.put('\n');
  output.flush();
  return 0;
}

// Prints the answer to one event of a stream. Where a list fails when much of it is written
// already, the error takes the place of the rest, and its line is no JSON.
void printLine(const core::Reply& reply, platform::OutputStream& output) {
  const auto start = output.place();
  const auto sink = [&output](std::string_view piece) { output.write(piece); };
  try {
    scripting::writeReply(reply, sink);
  } catch (const core::ScriptError& error) {
    output.goBackTo(start);
    scripting::writeReply(error, sink);
  }
  output.put('\n');
  output.flush();
}

// A conversation: reading, having performed and answering, on a thread beside the main one
// that lends itself to the commands.
class Conversation : public std::enable_shared_from_this<Conversation> {
 public:
  explicit Conversation(Process& process) : process_(process) {}
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;
  virtual ~Conversation() = default;

  /// Begins, or goes on after its thread was left behind.
  void start() {
    platform::Thread([self = shared_from_this()] {
      self->guard([&self] { self->converse(); });
    }).detach();
  }

 protected:
  virtual void converse() = 0;
  virtual void print(const core::Reply& reply) = 0;

  /// What is thrown here ends the program.
  template <class Work>
  void guard(Work&& work) noexcept {
    try {
      work();
    } catch (...) {
      end(0, std::current_exception());
    }
  }

  /// Does something that may take much memory; gives the error where it would take too much.
  template <class Work>
  std::optional<core::ScriptError> withinMemory(Work&& work) {
    try {
      const work::MemoryScope memory(process_.context.memoryAllowance);
      work();
      return std::nullopt;
    } catch (const work::MemoryExceeded& exceeded) {
      return core::tooMuchMemory(exceeded);
    } catch (const std::bad_alloc&) {
      return core::noMemory();
    }
  }

  void answer(const core::Reply& reply) {
    guard([&] {
      if (const auto error = withinMemory([&] { print(reply); })) print(*error);
    });
  }

  Dispatcher::Lent perform(Event event) {
    return process_.dispatcher->performHere(
        std::move(event), [this](const core::Reply& reply) { answer(reply); },
        [self = shared_from_this()] { self->start(); });
  }

  void end(int status, const std::exception_ptr& failure = nullptr) {
    isOver_ = true;
    process_.end(status, failure);
  }
  [[nodiscard]] bool isOver() const noexcept { return isOver_; }

 private:
  Process& process_;
  std::atomic<bool> isOver_ = false;
};

// One command of the command line.
class Single final : public Conversation {
 public:
  Single(Process& process, PerformOne asked) : Conversation(process), asked_(std::move(asked)) {}

 private:
  void converse() override {
    Event event;
    if (const auto error = withinMemory([&] { event = readEvent(asked_); })) return answer(*error);
    perform(std::move(event));
  }

  void print(const core::Reply& reply) override { end(cli::print(reply, output_)); }

  PerformOne asked_;
  platform::OutputStream output_ = platform::OutputStream::standardOutput();
};

// The events of standard input, one after the other.
class Stream final : public Conversation {
 public:
  using Conversation::Conversation;

 private:
  void converse() override {
    while (!isOver() && source_.beginLine()) {
      Event event;
      if (auto error = readInto(event)) {
        answer(std::move(*error));
      } else if (perform(std::move(event)) == Dispatcher::Lent::leftBehind) {
        return;
      }
    }
    if (!isOver()) end(0);
  }

  std::optional<core::ScriptError> readInto(Event& event) {
    try {
      return withinMemory([&] { event = scripting::readEvent(source_); });
    } catch (const JsonError& error) {
      return core::ScriptError(core::scripting_error::kWrongKind, std::string(error.what()) + ".");
    }
  }

  void print(const core::Reply& reply) override { printLine(reply, output_); }

  platform::OutputStream output_ = platform::OutputStream::standardOutput();
  JsonSource source_ =
      sourceFrom(std::make_shared<platform::InputFile>(platform::InputFile::standardInput()));
};

}  // namespace

int performOne(const PerformOne& asked) {
  Process& process = Process::start();
  std::make_shared<Single>(process, asked)->start();
  return process.serve();
}

int performStream() {
  Process& process = Process::start();
  std::make_shared<Stream>(process)->start();
  return process.serve();
}

}  // namespace skerrow::cli
