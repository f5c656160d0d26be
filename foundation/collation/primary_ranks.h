#pragma once
// One byte for each of the common characters (Latin, Greek and Cyrillic letters,
// ASCII and Latin-1 signs) that says where it stands at the first level of a
// comparison. Where two texts of such characters first differ in their bytes, the
// bytes decide their order, and the collation rules need not be asked. Texts with
// any other character near the front have no such bytes.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "foundation/collation/text_comparison.h"

namespace skerrow::foundation {

class PrimaryRanks {
 public:
  /// For a comparison by the rules of a locale.
  explicit PrimaryRanks(const TextComparator& comparator);

  static constexpr std::size_t kWords = 3;

  /// The front of a text as 24 bytes of rank in three words, the first byte the
  /// highest. A text that ends before is filled up with zeros.
  using Front = std::array<std::uint64_t, kWords>;

  /// False when a character without a rank is met; `front` then says nothing.
  bool encode(std::u16string_view text, Front& front) const;

 private:
  static constexpr std::size_t kCharacters = 0x460;

  [[nodiscard]] std::uint8_t rank(char16_t unit) const {
    return unit < kCharacters ? ranks_[unit] : std::uint8_t{0};
  }
  [[nodiscard]] bool startsNumber(char16_t unit) const {
    return digitRank_ != 0 && unit >= u'0' && unit <= u'9';
  }

  std::array<std::uint8_t, kCharacters> ranks_{};  // 0: none
  std::uint8_t digitRank_ = 0;  // of a run of digits; 0 when digits are ordinary characters
};

}  // namespace skerrow::foundation
