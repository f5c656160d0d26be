#pragma once
// Sorting by several keys, as the sorting commands of this room share it: the
// options' codes, the directions, and criteria of which the first decides and
// each later one breaks the ties of those before it. Sorts are stable.

#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/command.h"
#include "foundation/collation/text_comparison.h"
#include "foundation/collation/text_sort.h"
#include "platform/environment.h"
#include "values/value.h"

namespace skerrow::lists {

/// The code of the sorting option that is used unless another is given.
inline constexpr std::uint32_t kStandardOption = 0x61E56534;

/// The comparison that a sorting option's code stands for; nothing for other codes.
std::optional<foundation::TextComparison> comparisonFromCode(std::uint32_t code);

/// The code given as this argument, or the standard one.
std::uint32_t sortingOption(const core::Arguments& arguments, core::ArgumentKey key);

/// Directions for sorting by `count` values from this argument, a list: the last one given
/// serves for those that have none of their own; ascending unless given.
std::vector<foundation::SortDirection> sortDirections(const core::Arguments& arguments,
                                                      core::ArgumentKey key, std::size_t count);

/// The kinds of values that can be sorted by, in the order in which lists of
/// several kinds are sorted.
enum class SortKind : std::uint8_t { number, text, date, other };
SortKind sortKindOf(const Value& value);

/// The plain order of two values of one kind. What is no number, such as the root
/// of -1, comes before all numbers; values that have no order are equivalent.
std::weak_ordering plainOrder(const Value& a, const Value& b) noexcept;

/// A comparator by the user's language, where the comparison goes by a language.
foundation::TextComparator comparatorFor(foundation::TextComparison comparison,
                                         const platform::Environment& environment);

class SortCriteria {
 public:
  /// The environment, which says the language, outlives this.
  SortCriteria(std::size_t itemCount, const platform::Environment& environment)
      : itemCount_(itemCount), environment_(environment) {}

  /// Adds a key with one value an item, of this kind; null stands for an item without
  /// a value, which comes first when ascending. Values of other kinds come last and
  /// have no order. The values stay where they are.
  void add(const std::vector<const Value*>& values, SortKind kind,
           foundation::TextComparison comparison, foundation::SortDirection direction);

  /// Whether two items are the same by the first `count` keys.
  [[nodiscard]] bool areTied(std::uint32_t a, std::uint32_t b, std::size_t count) const;

  /// The positions of the items in sorted order.
  [[nodiscard]] std::vector<std::uint32_t> positions() const;

 private:
  struct Criterion {
    std::vector<std::uint32_t> ranks;  // 0 for an item without a value
    foundation::SortDirection direction;
  };

  // The item's rank by a key, turned round for a descending order.
  [[nodiscard]] std::uint32_t rankOf(std::size_t criterion, std::uint32_t item) const;

  std::size_t itemCount_;
  const platform::Environment& environment_;
  std::vector<Criterion> criteria_;
};

/// The items in the order of these positions.
std::vector<Value> inOrder(std::vector<Value> items, const std::vector<std::uint32_t>& positions);

}  // namespace skerrow::lists
