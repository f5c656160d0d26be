#include "cli/performing.h"

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/options.h"
#include "core/application_delegate.h"
#include "core/main_loop.h"
#include "core/operation_queue.h"
#include "core/script_compiler.h"
#include "platform/byte_stream.h"
#include "platform/platform_error.h"
#include "platform/system_platform.h"
#include "scripting/dispatcher.h"
#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"

namespace skerrow::cli {

namespace {

using scripting::Event;
using scripting::JsonError;
using scripting::JsonSource;

// Everything that events need, with no service, no bus and no display.
struct Process {
  core::NoApplication application;
  core::NoScriptCompiler compiler;
  platform::SystemPlatform platform;
  platform::SystemClock clock;
  core::MainLoop loop;
  core::WorkerPool pool;
  scripting::Dispatcher dispatcher{
      scripting::skerrowDictionary(), scripting::skerrowDictionaryClasses(), loop,
      core::CommandContext{application, pool, compiler, platform, clock}};
  core::Reply reply;  // of the only command

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

}  // namespace

int performOne(const PerformOne& asked) {
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
  // Made beforehand, as memory is quicker to get while the task does not give back its own.
  auto output = platform::OutputStream::standardOutput();
  Process& process = Process::start();
  const core::Reply& reply = process.reply = process.dispatcher.perform(std::move(event));
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) {
    std::cerr << "skerrow: " << error->message() << " (" << error->number() << ")\n";
    return 1;
  }
  const auto& result = std::get<std::optional<ScriptValue>>(reply);
  if (!result) return 0;
  scripting::writeTypedJson(*result, [&output](std::string_view piece) { output.write(piece); });
  output.put('\n');
  output.flush();
  return 0;
}

int performStream() {
  Process& process = Process::start();
  auto output = platform::OutputStream::standardOutput();
  JsonSource source =
      sourceFrom(std::make_shared<platform::InputFile>(platform::InputFile::standardInput()));
  while (source.beginLine()) {
    core::Reply reply;
    try {
      reply = process.dispatcher.perform(scripting::readEvent(source));
    } catch (const JsonError& error) {
      reply = core::ScriptError(core::scripting_error::kWrongKind, std::string(error.what()) + ".");
    }
    scripting::writeReply(reply, [&output](std::string_view piece) { output.write(piece); });
    output.put('\n');
    output.flush();
  }
  return 0;
}

}  // namespace skerrow::cli
