#pragma once
// Walking many values whose contents lie all over memory, as they do in another
// order than that in which they were made.

#include <cstddef>
#include <utility>

namespace skerrow {

/// Calls `use` with each item, in order, while the contents of items further on are
/// on their way from memory. An item has a function prefetch().
template <class Items, class Use>
void forEachPrefetched(Items&& items, Use&& use) {
  constexpr std::size_t kAhead = 16;
  const std::size_t count = items.size();
  for (std::size_t i = 0; i < count; ++i) {
    if (i + kAhead < count) items[i + kAhead].prefetch();
    use(items[i]);
  }
}

}  // namespace skerrow
