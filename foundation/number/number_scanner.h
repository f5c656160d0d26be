#pragma once
// Scanning a number at the start of a text: white space and newlines are skipped,
// the longest number is read, and what follows does not matter.
//
//   real:    [sign] (digits [point [digits]] | point digits) [(e|E) [sign] digits]
//   integer: [sign] digits
//
// An exponent without digits is not part of the number. Neither hexadecimal
// numbers nor words for infinity are read. Scanning is linear.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace skerrow::foundation {

/// How numbers are written.
class NumberSymbols {
 public:
  /// A full stop, no grouping, ASCII digits; the same everywhere.
  NumberSymbols() = default;

  /// As a locale writes them (CLDR, for the locale's own digits): its decimal
  /// separator, signs, digits of any script, and its grouping separator where it
  /// stands between two digits before the decimal separator. `locale` is an ICU
  /// locale identifier; an unknown one counts as the root.
  static NumberSymbols ofLocale(const std::string& locale);

 private:
  friend class NumberReader;

  std::u16string decimal_ = u".";
  std::u16string grouping_;
  std::u16string minus_ = u"-";
  std::u16string plus_ = u"+";
  bool isLocalized_ = false;
};

template <class Number>
struct ScannedNumber {
  Number value{};
  std::size_t end = 0;  // units read, skipped ones included
};

/// Infinite where the number is too large, zero where it is too small.
std::optional<ScannedNumber<double>> scanReal(std::u16string_view text,
                                              const NumberSymbols& symbols = {});

/// The nearest end of the range where the number lies outside.
std::optional<ScannedNumber<std::int64_t>> scanInteger(std::u16string_view text,
                                                       const NumberSymbols& symbols = {});

}  // namespace skerrow::foundation
