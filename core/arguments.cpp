#include "core/arguments.h"

#include <algorithm>

namespace skerrow::core {

void Arguments::set(ArgumentKey key, Value value) {
  const auto there = std::ranges::find(values_, key, &std::pair<ArgumentKey, Value>::first);
  if (there != values_.end()) {
    there->second = std::move(value);
  } else {
    values_.emplace_back(key, std::move(value));
  }
}

const Value* Arguments::find(ArgumentKey key) const noexcept {
  const auto found = std::ranges::find(values_, key, &std::pair<ArgumentKey, Value>::first);
  return found == values_.end() ? nullptr : &found->second;
}

bool Arguments::isSet(ArgumentKey key) const noexcept {
  const Value* value = find(key);
  return value != nullptr && value->isNumber() && value->number().isNonZero();
}

std::optional<std::int64_t> Arguments::integer(ArgumentKey key) const noexcept {
  const Value* value = find(key);
  if (value == nullptr || !value->isNumber()) return std::nullopt;
  return value->number().asInteger();
}

}  // namespace skerrow::core
