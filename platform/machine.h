#pragma once
// Machine: how large the computer is on which this runs.

#include <cstddef>

#include "platform/interface.h"

namespace skerrow::platform {

class Machine : public Interface {
 public:
  /// The bytes of memory that this process can have at most: those of the machine, or
  /// fewer where a control group around the process has a limit.
  [[nodiscard]] virtual std::size_t memory() const = 0;
};

}  // namespace skerrow::platform
