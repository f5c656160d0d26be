#pragma once
// Making lists distinct: of equal items the first is kept, in its place.

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "values/value.h"
#include "values/value_index.h"

namespace skerrow::lists {

/// Keeps the first of equal items, if `isWanted(comparedItem)` says so too. Items
/// are compared by their counterparts in `compared`, which may be the list itself.
template <class IsWanted>
void keepDistinct(std::vector<Value>& list, std::span<const Value> compared, IsWanted&& isWanted) {
  ValueSet seen;
  std::size_t kept = 0;
  seen.insertAll(compared, [&](std::size_t i, bool isNew) {
    if (isNew && isWanted(compared[i])) std::swap(list[kept++], list[i]);
  });
  list.resize(kept);
}

inline void keepDistinct(std::vector<Value>& list) {
  keepDistinct(list, list, [](const Value& /*item*/) { return true; });
}

}  // namespace skerrow::lists
