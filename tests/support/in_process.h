#pragma once
// InProcess: the commands of the program inside the test's own process, with no
// application and no script engine around them. For the thread that makes it.

#include "core/application_delegate.h"
#include "core/command.h"
#include "core/main_loop.h"
#include "core/operation_queue.h"
#include "core/script_compiler.h"
#include "scripting/dictionary.h"
#include "scripting/dispatcher.h"
#include "scripting/event.h"

namespace skerrow::tests {

class InProcess {
 public:
  core::Reply perform(scripting::Event event) { return dispatcher_.perform(std::move(event)); }

 private:
  core::NoApplication application_;
  core::NoScriptCompiler compiler_;
  core::MainLoop loop_;
  core::WorkerPool pool_;
  scripting::Dispatcher dispatcher_{scripting::skerrowDictionary(),
                                    scripting::skerrowDictionaryClasses(), loop_,
                                    core::CommandContext{application_, pool_, compiler_}};
};

}  // namespace skerrow::tests
