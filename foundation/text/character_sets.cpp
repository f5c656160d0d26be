#include "foundation/text/character_sets.h"

#include <unicode/uchar.h>

#include <cstdint>

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

bool isWhiteSpace(char16_t unit) noexcept {
  if (unit < 0x80) return unit == u' ' || unit == u'\t';
  return u_charType(unit) == U_SPACE_SEPARATOR;
}

std::optional<int> decimalDigit(char32_t character) noexcept {
  if (character < 0x80) {
    if (character < U'0' || character > U'9') return std::nullopt;
    return static_cast<int>(character - U'0');
  }
  const auto codePoint = static_cast<UChar32>(character);
  if (u_isdigit(codePoint) == 0) return std::nullopt;
  return u_charDigitValue(codePoint);
}

bool isDiacritic(char32_t character) noexcept {
  constexpr std::uint8_t kVirama = 9;
  const auto codePoint = static_cast<UChar32>(character);
  const std::uint8_t combiningClass = u_getCombiningClass(codePoint);
  return combiningClass != 0 && combiningClass != kVirama &&
         u_charType(codePoint) == U_NON_SPACING_MARK;
}

void removeDiacritics(std::u16string& text) {
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = codePointAt(text, i);
    if (!isDiacritic(point.value)) {
      for (std::size_t j = i; j < i + point.unitCount; ++j) text[kept++] = text[j];
    }
    i += point.unitCount;
  }
  text.resize(kept);
}

UnitRange trimmedRange(std::u16string_view text) noexcept {
  std::size_t end = text.size();
  std::size_t begin = 0;
  while (begin < end && isWhiteSpaceOrNewline(text[begin])) ++begin;
  while (end > begin && isWhiteSpaceOrNewline(text[end - 1])) --end;
  return {begin, end - begin};
}

}  // namespace skerrow::foundation
