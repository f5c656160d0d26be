#pragma once
// UnitRange: a run of UTF-16 units in a text. Positions count units from 0.

#include <cstddef>
#include <string_view>

namespace skerrow::foundation {

struct UnitRange {
  static constexpr std::size_t kNotFound = static_cast<std::size_t>(-1);

  std::size_t location = 0;
  std::size_t length = 0;

  static constexpr UnitRange notFound() { return {kNotFound, 0}; }
  static constexpr UnitRange whole(std::u16string_view text) { return {0, text.size()}; }

  [[nodiscard]] constexpr bool isFound() const { return location != kNotFound; }
  [[nodiscard]] constexpr std::size_t end() const { return location + length; }

  /// Whether the range lies inside a text of so many units.
  [[nodiscard]] constexpr bool fitsIn(std::size_t unitCount) const {
    return location <= unitCount && length <= unitCount - location;
  }

  /// The units that the range names, which must lie inside the text; none when not found.
  [[nodiscard]] constexpr std::u16string_view of(std::u16string_view text) const {
    return isFound() ? text.substr(location, length) : std::u16string_view{};
  }

  friend constexpr bool operator==(UnitRange, UnitRange) = default;
};

}  // namespace skerrow::foundation
