#pragma once
// ValueIndex: finds equal values among many in constant time. It holds
// positions, not values: the caller keeps the values and says where each one
// stands. The order of insertion is the order of the positions.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "values/value.h"

namespace skerrow {

class ValueIndex {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// The position of an entry equal to `value`, or kNone. `valueAt` gives the
  /// value that stands at a position.
  template <class ValueAt>
  [[nodiscard]] std::size_t find(const Value& value, ValueAt&& valueAt) const {
    return findHashed(value, hashOf(value), valueAt);
  }

  /// The position of an entry equal to `value`; when there is none, enters the
  /// value as standing at `position` and gives kNone.
  template <class ValueAt>
  std::size_t findOrInsert(const Value& value, std::size_t position, ValueAt&& valueAt) {
    const std::uint32_t hash = hashOf(value);
    const std::size_t found = findHashed(value, hash, valueAt);
    if (found == kNone) enter(hash, position);
    return found;
  }

  /// Enters a value that stands at `position`; it must not be there yet.
  void insert(const Value& value, std::size_t position) { enter(hashOf(value), position); }

  /// Goes through many values: one that has no equal among those entered is entered
  /// as standing at the next free position, counted from 0, and `onNew(i)` is
  /// called, which must put values[i] where `valueAt` finds it at that position.
  /// Values for which `isWanted(i)` is false are passed over. Several times faster
  /// than one by one once there are more values than the processor's caches hold.
  template <class ValueAt, class IsWanted, class OnNew>
  void findOrInsertAll(std::span<const Value> values, ValueAt&& valueAt, IsWanted&& isWanted,
                       OnNew&& onNew) {
    // What a step will touch is fetched while other values are at theirs.
    constexpr std::size_t kBlock = 32;
    std::array<std::uint32_t, kBlock> hashes;
    std::array<std::size_t, kBlock> likely;
    for (std::size_t first = 0; first < values.size(); first += kBlock) {
      const std::size_t count = std::min(kBlock, values.size() - first);
      for (std::size_t i = 0; i < count; ++i) {
        hashes[i] = hashOf(values[first + i]);
        fetchSlot(hashes[i]);
      }
      for (std::size_t i = 0; i < count; ++i) {
        likely[i] = likelyPosition(hashes[i]);
        if (likely[i] != kNone) __builtin_prefetch(&valueAt(likely[i]));
      }
      for (std::size_t i = 0; i < count; ++i) {
        if (likely[i] != kNone) valueAt(likely[i]).prefetch();
      }
      for (std::size_t i = 0; i < count; ++i) {
        if (!isWanted(first + i)) continue;
        if (findHashed(values[first + i], hashes[i], valueAt) != kNone) continue;
        enter(hashes[i], count_);
        onNew(first + i);
      }
    }
  }

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t entry = 0;  // position + 1, 0 for a free slot
  };

  template <class ValueAt>
  std::size_t findHashed(const Value& value, std::uint32_t hash, ValueAt&& valueAt) const {
    if (slots_.empty()) return kNone;
    for (std::size_t slot = hash & mask();; slot = (slot + 1) & mask()) {
      if (slots_[slot].entry == 0) return kNone;
      if (slots_[slot].hash != hash) continue;
      const std::size_t position = slots_[slot].entry - 1;
      if (valueAt(position) == value) return position;
    }
  }

  [[nodiscard]] static std::uint32_t hashOf(const Value& value) noexcept {
    return static_cast<std::uint32_t>((value.hash() * 0x9E3779B97F4A7C15ULL) >> 32U);
  }
  void fetchSlot(std::uint32_t hash) const noexcept {
    if (!slots_.empty()) __builtin_prefetch(&slots_[hash & mask()]);
  }
  // The position of the first entry with this hash, which is most often the equal one.
  [[nodiscard]] std::size_t likelyPosition(std::uint32_t hash) const noexcept {
    if (slots_.empty()) return kNone;
    std::size_t slot = hash & mask();
    while (slots_[slot].entry != 0 && slots_[slot].hash != hash) slot = (slot + 1) & mask();
    return slots_[slot].entry == 0 ? kNone : slots_[slot].entry - 1;
  }
  [[nodiscard]] std::size_t mask() const noexcept { return slots_.size() - 1; }
  // Throws std::length_error for a position that a slot cannot hold.
  void enter(std::uint32_t hash, std::size_t position);
  void grow();
  void place(Slot entry);

  std::vector<Slot> slots_;  // a power of two of them, open addressing
  std::size_t count_ = 0;
};

/// A set of values, in the order of their insertion.
class ValueSet {
 public:
  ValueSet() = default;
  explicit ValueSet(std::span<const Value> values) {
    index_.findOrInsertAll(
        values, at(), [](std::size_t /*i*/) { return true; },
        [&](std::size_t i) { values_.push_back(values[i]); });
  }

  /// False when an equal value was there already.
  bool insert(const Value& value) {
    if (index_.findOrInsert(value, values_.size(), at()) != ValueIndex::kNone) return false;
    values_.push_back(value);
    return true;
  }

  static constexpr std::size_t kNone = ValueIndex::kNone;

  /// The values in the order of their insertion.
  [[nodiscard]] const std::vector<Value>& values() const noexcept { return values_; }
  /// How many values were inserted before an equal one; kNone when it is not here.
  [[nodiscard]] std::size_t position(const Value& value) const { return index_.find(value, at()); }
  [[nodiscard]] bool contains(const Value& value) const { return position(value) != kNone; }

 private:
  struct At {
    const std::vector<Value>& values;
    const Value& operator()(std::size_t position) const { return values[position]; }
  };
  [[nodiscard]] At at() const { return {values_}; }

  std::vector<Value> values_;
  ValueIndex index_;
};

}  // namespace skerrow
