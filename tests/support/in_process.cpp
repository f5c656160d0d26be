#include "tests/support/in_process.h"

#include <utility>

#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"

namespace skerrow::tests {

InProcess::InProcess(std::shared_ptr<core::SharedServices> services)
    : surroundings_(std::move(services)) {}

InProcess::InProcess(const platform::Platform& platform) : surroundings_(platform) {}

std::string InProcess::answer(std::string_view event) {
  scripting::JsonSource source{event};
  std::string line;
  scripting::writeReply(perform(scripting::readEvent(source)),
                        [&line](std::string_view piece) { line += piece; });
  return line;
}

}  // namespace skerrow::tests
