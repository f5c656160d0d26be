#pragma once
// What the collection operators of key paths and the list functions of predicates
// compute over the items of a list.
//
// Numbers are added and averaged as 64-bit reals. A text that spells a number
// counts as that number, and a null as 0 in sums and averages, as the platform's
// guide to key-value coding says; least and greatest pass nulls by.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "values/value.h"

namespace skerrow::foundation {

/// The item as a number for a sum; nothing for what is none.
std::optional<double> summand(const Value& item);

/// Nothing when an item is no number. The sum of no items is 0.
std::optional<double> sumOf(std::span<const Value> items);

/// Nothing when an item is no number. The average of no items is 0.
std::optional<double> averageOf(std::span<const Value> items);

enum class Extreme : std::uint8_t { least, greatest };

struct ExtremeItem {
  const Value* item = nullptr;  ///< null when there is none, as in an empty list
  bool isComparable = true;     ///< false when two items have no order
};

/// The first of the least or greatest items: numbers, texts or dates, not mixed.
ExtremeItem extremeOf(Extreme extreme, std::span<const Value> items);

/// The different items, in the order in which each is first seen.
std::vector<Value> distinct(std::span<const Value> items);

/// The middle number, or the mean of the two middle ones; null for no items.
/// Nothing when an item is no number. Nulls are passed by.
std::optional<Value> medianOf(std::span<const Value> items);

/// The values that occur most often, in the order in which they are first seen.
std::vector<Value> modesOf(std::span<const Value> items);

/// The standard deviation of the whole population, null for no items; nothing when
/// an item is no number. Nulls are passed by.
std::optional<Value> standardDeviationOf(std::span<const Value> items);

}  // namespace skerrow::foundation
