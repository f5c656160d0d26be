#pragma once
// Arguments: what a script gave to a command by key, as the scripting layer evaluated
// it: plain Values, lists of raw items, or raw values, as each is declared.

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "core/argument_key.h"
#include "values/value.h"

namespace skerrow::core {

class Arguments {
 public:
  void set(ArgumentKey key, Value value);

  /// The argument, or null when the script left it out.
  [[nodiscard]] const Value* find(ArgumentKey key) const noexcept;
  [[nodiscard]] bool has(ArgumentKey key) const noexcept { return find(key) != nullptr; }
  /// Set when present and true.
  [[nodiscard]] bool isSet(ArgumentKey key) const noexcept;
  /// The integer given, or nothing. The argument is declared as an integer.
  [[nodiscard]] std::optional<std::int64_t> integer(ArgumentKey key) const noexcept;

 private:
  std::vector<std::pair<ArgumentKey, Value>> values_;
};

}  // namespace skerrow::core
