#pragma once
// Environment: the variables that whoever started this program gave it, such as the
// home folder (HOME), the language (LANG) and the time zone (TZ).

#include <optional>
#include <string>

#include "platform/interface.h"

namespace skerrow::platform {

class Environment : public Interface {
 public:
  /// Nothing for a variable that is not there; it may also be there and empty.
  [[nodiscard]] virtual std::optional<std::string> variable(const std::string& name) const = 0;
};

}  // namespace skerrow::platform
