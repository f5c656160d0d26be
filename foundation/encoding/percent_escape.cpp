#include "foundation/encoding/percent_escape.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

constexpr std::u16string_view kMarks = u"-_.!~*'()";
constexpr std::u16string_view kReserved = u";/?:@&=+$,";
constexpr std::u16string_view kDigits = u"0123456789ABCDEF";

using Legal = std::array<bool, 128>;

constexpr Legal legalCharacters(std::u16string_view others) {
  Legal legal{};
  for (char16_t unit = u'0'; unit <= u'9'; ++unit) legal[unit] = true;
  for (char16_t unit = u'A'; unit <= u'Z'; ++unit) legal[unit] = true;
  for (char16_t unit = u'a'; unit <= u'z'; ++unit) legal[unit] = true;
  for (const char16_t unit : kMarks) legal[unit] = true;
  for (const char16_t unit : others) legal[unit] = true;
  return legal;
}

constexpr Legal kLegal = legalCharacters(kReserved);
constexpr Legal kLegalButReserved = legalCharacters({});

void appendEscaped(std::u16string& result, std::string_view bytes) {
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    result += u'%';
    result += kDigits[value >> 4U];
    result += kDigits[value & 0x0FU];
  }
}

// The byte that an escape at this place spells, or nothing.
std::optional<char> escapedByte(std::u16string_view text, std::size_t position) {
  if (position >= text.size() || text[position] != u'%') return std::nullopt;
  const auto byte = codePointFromHexadecimal(text.substr(position + 1), 2);
  if (!byte) return std::nullopt;
  return static_cast<char>(*byte);
}

}  // namespace

std::optional<std::u16string> percentEscaped(std::u16string_view text,
                                             ReservedCharacters reserved) {
  const Legal& legal = reserved == ReservedCharacters::kept ? kLegal : kLegalButReserved;
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = codePointAt(text, i);
    if (point.value < legal.size() && legal[point.value]) {
      result += text[i];
    } else if (point.isLoneSurrogate()) {
      return std::nullopt;
    } else {
      appendEscaped(result, utf8FromUtf16(text.substr(i, point.unitCount)));
    }
    i += point.unitCount;
  }
  return result;
}

std::optional<std::u16string> percentUnescaped(std::u16string_view text) {
  std::u16string result;
  result.reserve(text.size());
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    for (; const auto byte = escapedByte(text, i); i += 3) bytes += *byte;
    if (!bytes.empty()) {
      const auto spelled = utf16FromUtf8(bytes);
      if (!spelled) return std::nullopt;
      result += *spelled;
      bytes.clear();
      continue;
    }
    const std::size_t end = std::min(text.find(u'%', i + 1), text.size());
    result += text.substr(i, end - i);
    i = end;
  }
  return result;
}

}  // namespace skerrow::foundation
