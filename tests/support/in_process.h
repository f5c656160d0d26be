#pragma once
// InProcess: the commands of the program inside the test's own process, with no
// application and no script engine around them. For the thread that makes it.

#include <memory>
#include <string>
#include <string_view>

#include "core/application_delegate.h"
#include "core/command.h"
#include "core/main_loop.h"
#include "core/operation_queue.h"
#include "core/script_compiler.h"
#include "core/shared_services.h"
#include "platform/system_platform.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/dispatcher.h"
#include "scripting/event.h"

namespace skerrow::tests {

class InProcess {
 public:
  /// On this machine.
  explicit InProcess(
      std::shared_ptr<core::SharedServices> services = std::make_shared<core::SharedServices>());
  /// On another platform, whose parts outlive this.
  explicit InProcess(const platform::Platform& platform);

  core::Reply perform(scripting::Event event) { return dispatcher_.perform(std::move(event)); }

  /// The answer to an event, both as lines of typed JSON.
  std::string answer(std::string_view event);

 private:
  platform::SystemPlatform system_;
  platform::SystemClock clock_;
  platform::Platform platform_;
  std::shared_ptr<core::SharedServices> services_;
  core::NoApplication application_;
  core::NoScriptCompiler compiler_;
  core::MainLoop loop_;
  core::WorkerPool pool_;
  scripting::Dispatcher dispatcher_{
      scripting::skerrowDictionary(), scripting::skerrowDictionaryClasses(), loop_,
      core::CommandContext{application_, pool_, compiler_, platform_, clock_, services_}};
};

}  // namespace skerrow::tests
