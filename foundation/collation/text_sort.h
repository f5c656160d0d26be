#pragma once
// Sorting many texts. The order is exactly that of the comparator; common texts
// are compared by abbreviated keys, so the collation rules are rarely asked.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "foundation/collation/text_comparison.h"

namespace skerrow::foundation {

enum class SortDirection : std::uint8_t { ascending, descending };

/// The positions of the texts in sorted order. Stable in both directions: texts
/// that compare equal keep their order. At most 2^32 - 1 texts.
std::vector<std::uint32_t> sortedPositions(std::span<const std::u16string_view> texts,
                                           const TextComparator& comparator,
                                           SortDirection direction = SortDirection::ascending);

/// For each text how many different texts come before it, so that equal texts have
/// equal ranks: a key by which to sort together with other keys.
std::vector<std::uint32_t> sortRanks(std::span<const std::u16string_view> texts,
                                     const TextComparator& comparator);

}  // namespace skerrow::foundation
