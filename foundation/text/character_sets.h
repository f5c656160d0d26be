#pragma once
// Sets of characters that several services share, by Unicode's general
// categories, and what is done with them. No set here holds a character beyond
// the basic plane but the decimal digits.

#include <optional>
#include <string>
#include <string_view>

#include "foundation/text/unit_range.h"

namespace skerrow::foundation {

/// White space inside a line: the space separators (category Zs) and TAB.
bool isWhiteSpace(char16_t unit) noexcept;

/// What ends a line: LF, VT, FF, CR, U+0085, U+2028 and U+2029.
constexpr bool isNewline(char16_t unit) noexcept {
  return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' ||
         unit == u'\u2029';
}

inline bool isWhiteSpaceOrNewline(char16_t unit) noexcept {
  return isNewline(unit) || isWhiteSpace(unit);
}

/// The value of a decimal digit of any script (category Nd), or nothing.
std::optional<int> decimalDigit(char32_t character) noexcept;

/// A combining mark that is no part of what is read: a nonspacing mark that has a
/// combining class and is no virama.
bool isDiacritic(char32_t character) noexcept;

/// Leaves the diacritics out of a decomposed text, in place.
void removeDiacritics(std::u16string& text);

/// What stays of a text without white space and newlines at both ends; an empty
/// range at the end of a text of nothing else.
UnitRange trimmedRange(std::u16string_view text) noexcept;

}  // namespace skerrow::foundation
