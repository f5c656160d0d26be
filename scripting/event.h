#pragma once
// Event: one call of a command, as a front end hands it to the dispatcher.

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "values/script_value.h"

namespace skerrow::scripting {

/// Arguments by key, in the order given.
using EventArguments = std::vector<std::pair<std::string, ScriptValue>>;

struct Event {
  static constexpr std::chrono::milliseconds kDefaultTimeout = std::chrono::seconds(120);
  static constexpr std::chrono::milliseconds kNoTimeout{0};

  std::string command;  ///< the name of the command's class
  std::optional<ScriptValue> directParameter;
  EventArguments arguments;
  std::chrono::milliseconds timeout = kDefaultTimeout;
};

/// A time-out from seconds, fractions included: at least a millisecond unless it
/// is 0, which means none. Nothing for a negative number or NaN.
std::optional<std::chrono::milliseconds> timeoutFromSeconds(double seconds);

}  // namespace skerrow::scripting
