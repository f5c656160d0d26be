#pragma once
// Code points in UTF-16 text. A lone surrogate counts as a code point of its own.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace skerrow::foundation {

struct CodePoint {
  char32_t value = 0;
  std::size_t unitCount = 0;

  [[nodiscard]] constexpr bool isLoneSurrogate() const { return (value & ~0x7FFU) == 0xD800; }
};

constexpr bool isLeadingSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
constexpr bool isTrailingSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

/// Whether a place in a text is between the two halves of a surrogate pair.
constexpr bool isInsidePair(std::u16string_view text, std::size_t position) {
  return position > 0 && position < text.size() && isTrailingSurrogate(text[position]) &&
         isLeadingSurrogate(text[position - 1]);
}

/// The code point that begins at a unit, which must lie inside the text.
constexpr CodePoint codePointAt(std::u16string_view text, std::size_t position) {
  const char16_t unit = text[position];
  if (isLeadingSurrogate(unit) && position + 1 < text.size() &&
      isTrailingSurrogate(text[position + 1])) {
    return {((unit & 0x3FFU) << 10U) + (text[position + 1] & 0x3FFU) + 0x10000, 2};
  }
  return {unit, 1};
}

/// Writes the one or two units of a code point, which must not be above U+10FFFF; how many.
constexpr std::size_t encodeUtf16(char32_t codePoint, char16_t* units) {
  if (codePoint < 0x10000) {
    units[0] = static_cast<char16_t>(codePoint);
    return 1;
  }
  units[0] = static_cast<char16_t>(0xD7C0 + (codePoint >> 10U));
  units[1] = static_cast<char16_t>(0xDC00 + (codePoint & 0x3FFU));
  return 2;
}

/// Appends a code point, which must not be above U+10FFFF.
constexpr void appendCodePoint(std::u16string& text, char32_t codePoint) {
  char16_t units[2] = {};
  text.append(units, encodeUtf16(codePoint, units));
}

/// The small letter of an ASCII capital; any other unit as it is.
constexpr char16_t lowercaseAscii(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

constexpr bool isAsciiOnly(std::u16string_view text) {
  return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

constexpr bool equalsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (lowercaseAscii(a[i]) != lowercaseAscii(b[i])) return false;
  }
  return true;
}

/// The value of a hexadecimal digit, or nothing.
constexpr std::optional<unsigned> hexadecimalDigit(char32_t character) {
  if (character >= U'0' && character <= U'9') return character - U'0';
  if (character >= U'a' && character <= U'f') return character - U'a' + 10;
  if (character >= U'A' && character <= U'F') return character - U'A' + 10;
  return std::nullopt;
}

/// The code point that the first `digitCount` units, at most eight, spell in
/// hexadecimal; nothing where they are too few, no digits, or name none.
constexpr std::optional<char32_t> codePointFromHexadecimal(std::u16string_view text,
                                                           std::size_t digitCount) {
  if (text.size() < digitCount) return std::nullopt;
  char32_t codePoint = 0;
  for (const char16_t unit : text.substr(0, digitCount)) {
    const std::optional<unsigned> digit = hexadecimalDigit(unit);
    if (!digit) return std::nullopt;
    codePoint = codePoint << 4U | *digit;
  }
  if (codePoint > 0x10FFFF) return std::nullopt;
  return codePoint;
}

}  // namespace skerrow::foundation
