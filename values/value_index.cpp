#include "values/value_index.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace skerrow {

void ValueIndex::place(Slot entry) {
  std::size_t slot = entry.hash & mask();
  while (slots_[slot].entry != 0) slot = (slot + 1) & mask();
  slots_[slot] = entry;
}

void ValueIndex::enter(std::uint32_t hash, std::size_t position) {
  if (position >= UINT32_MAX) throw std::length_error("There are too many values.");
  if ((count_ + 1) * 3 > slots_.size() * 2) grow();
  place({hash, static_cast<std::uint32_t>(position + 1)});
  ++count_;
}

void ValueIndex::grow() {
  std::vector<Slot> old(std::max<std::size_t>(16, slots_.size() * 2));
  old.swap(slots_);
  for (const Slot& entry : old) {
    if (entry.entry != 0) place(entry);
  }
}

}  // namespace skerrow
