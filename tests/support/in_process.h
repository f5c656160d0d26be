#pragma once
// InProcess: the commands of the program inside the test's own process, with no
// application and no script engine around them. For the thread that makes it.

#include <memory>
#include <string>
#include <string_view>

#include "core/reply.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/dispatcher.h"
#include "scripting/event.h"
#include "tests/support/surroundings.h"

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

  Surroundings& surroundings() { return surroundings_; }

 private:
  Surroundings surroundings_;
  scripting::Dispatcher dispatcher_{scripting::skerrowDictionary(),
                                    scripting::skerrowDictionaryClasses(), surroundings_.context()};
};

}  // namespace skerrow::tests
