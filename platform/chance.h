#pragma once
// Chance: numbers that nobody can foretell, for names that are nobody's yet and for
// what is to come out differently each time.

#include <cstdint>

#include "platform/interface.h"

namespace skerrow::platform {

class Chance : public Interface {
 public:
  [[nodiscard]] virtual std::uint64_t draw() const = 0;
};

}  // namespace skerrow::platform
