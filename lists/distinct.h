#pragma once
// Making lists distinct: of equal items the first is kept, in its place.

#include <cstddef>
#include <utility>
#include <vector>

#include "values/value.h"
#include "values/value_index.h"

namespace skerrow::lists {

/// The first of equal items each, moved out of the list, if `isWanted(position)`
/// says so too. Items are compared by their counterparts in `contents`, or by
/// themselves where that is empty; both lists are left with holes.
template <class IsWanted>
std::vector<Value> takeDistinct(std::vector<Value>& list, std::vector<Value>& contents,
                                IsWanted&& isWanted) {
  std::vector<Value> kept;
  std::vector<Value> keptContents;
  const bool isByItself = contents.empty();
  const std::vector<Value>& known = isByItself ? kept : keptContents;
  ValueIndex index;
  index.findOrInsertAll(
      isByItself ? list : contents,
      [&known](std::size_t position) -> const Value& { return known[position]; }, isWanted,
      [&](std::size_t position) {
        kept.push_back(std::move(list[position]));
        if (!isByItself) keptContents.push_back(std::move(contents[position]));
      });
  return kept;
}

inline void keepDistinct(std::vector<Value>& list) {
  std::vector<Value> byThemselves;
  list = takeDistinct(list, byThemselves, [](std::size_t /*position*/) { return true; });
}

}  // namespace skerrow::lists
