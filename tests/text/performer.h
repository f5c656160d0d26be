#pragma once
// Performer: sends events to the commands in this process, for tests that need
// files, time-outs or values that tables cannot spell.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "core/application_delegate.h"
#include "core/main_loop.h"
#include "core/operation_queue.h"
#include "core/script_compiler.h"
#include "core/shared_services.h"
#include "scripting/dictionary.h"
#include "scripting/dispatcher.h"
#include "scripting/typed_json_reader.h"
#include "scripting/typed_json_writer.h"

namespace skerrow::text {

class Performer {
 public:
  explicit Performer(
      std::shared_ptr<core::SharedServices> services = std::make_shared<core::SharedServices>())
      : services_(std::move(services)) {}

  core::Reply reply(scripting::Event event) { return dispatcher_.perform(std::move(event)); }

  /// The answer to an event, both as lines of typed JSON.
  std::string answer(std::string_view event) {
    scripting::JsonSource source{event};
    const core::Reply got = reply(scripting::readEvent(source));
    std::string line;
    scripting::writeReply(got, [&line](std::string_view piece) { line += piece; });
    return line;
  }

 private:
  std::shared_ptr<core::SharedServices> services_;
  core::NoApplication application_;
  core::NoScriptCompiler compiler_;
  core::MainLoop loop_;
  core::WorkerPool pool_;
  scripting::Dispatcher dispatcher_{
      scripting::skerrowDictionary(), scripting::skerrowDictionaryClasses(), loop_,
      core::CommandContext{application_, pool_, compiler_, services_}};
};

/// A folder of its own for a test's files, removed with them.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "skerrow-XXXXXX").string();
    path_ = ::mkdtemp(name.data());
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }

  [[nodiscard]] std::string path(std::string_view name) const { return (path_ / name).string(); }

  /// Makes a file and gives its path.
  [[nodiscard]] std::string file(std::string_view name, std::string_view bytes) const {
    std::ofstream(path_ / name, std::ios::binary) << bytes;
    return path(name);
  }

 private:
  std::filesystem::path path_;
};

}  // namespace skerrow::text
