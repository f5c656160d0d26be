#include "foundation/text/quoted_text.h"

#include <algorithm>
#include <cstdio>

#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

constexpr bool isControl(char16_t unit) {
  return unit < u' ' || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

std::string shown(std::u16string_view text) {
  std::u16string escaped;
  escaped.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint character = codePointAt(text, i);
    if (isControl(text[i]) || character.isLoneSurrogate()) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(text[i]));
      escaped.append(escape, escape + 6);
    } else {
      escaped += text.substr(i, character.unitCount);
    }
    i += character.unitCount;
  }
  return utf8FromUtf16(escaped);
}

}  // namespace

std::string excerpt(std::u16string_view text, std::size_t place, std::size_t length) {
  if (text.size() <= length) return shown(text);
  const std::size_t before = std::min(place, length / 2);
  const std::size_t begin = std::min(place - before, text.size() - length);
  std::string result = shown(text.substr(begin, length));
  if (begin > 0) result.insert(0, "…");
  if (begin + length < text.size()) result += "…";
  return result;
}

std::string shortened(std::string_view utf8) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const bool beginsCharacter = (static_cast<unsigned char>(utf8[i]) & 0xC0U) != 0x80;
    if (beginsCharacter && ++count > kLongestShown) return std::string(utf8.substr(0, i)) + "…";
  }
  return std::string(utf8);
}

std::string shortened(std::u16string_view text) {
  // A character has at most two units; one more shows that there is more.
  return shortened(std::string_view(utf8FromUtf16(text.substr(0, 2 * (kLongestShown + 1)))));
}

std::string quoted(std::u16string_view text) { return "“" + excerpt(text, 0, kLongestShown) + "”"; }

}  // namespace skerrow::foundation
