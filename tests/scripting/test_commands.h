#pragma once
// The commands of the test dictionary, and the stage on which a test watches
// them work.

#include <memory>

#include "scripting/dictionary/dictionary.h"
#include "tests/core/waiting.h"

namespace skerrow::scripting {

const Dictionary& testDictionary();
CommandClasses testDictionaryClasses();

}  // namespace skerrow::scripting

namespace skerrow::tests {

/// What passes between a test and the commands that work long.
struct Stage {
  Counter started;    ///< has begun to work
  Signal release;     ///< may end
  Counter cancelled;  ///< has found itself cancelled
  Counter ended;      ///< has replied and is gone
};

/// The stage that commands find when they are created: the last one set.
std::shared_ptr<Stage> stage();
void setStage(std::shared_ptr<Stage> stage);

}  // namespace skerrow::tests
