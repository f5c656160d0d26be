#include "foundation/encoding/code_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "foundation/text/text_encoding.h"
#include "values/keys.h"

namespace skerrow::foundation {

std::u16string textFromCode(FourCharCode code) {
  const std::uint32_t bits = number(code);
  const char bytes[] = {static_cast<char>(bits >> 24U), static_cast<char>(bits >> 16U),
                        static_cast<char>(bits >> 8U), static_cast<char>(bits)};
  return utf16FromMacRoman({bytes, sizeof bytes});
}

std::string plainTextFromCode(FourCharCode code) {
  const std::u16string text = textFromCode(code);
  if (std::ranges::all_of(text, [](char16_t unit) { return unit >= u' ' && unit < 0x7F; })) {
    return {text.begin(), text.end()};
  }
  char hexadecimal[16];
  const int length = std::snprintf(hexadecimal, sizeof hexadecimal, "0x%08X", number(code));
  return {hexadecimal, static_cast<std::size_t>(length)};
}

std::optional<FourCharCode> codeFromText(std::u16string_view text) {
  if (text.size() != 4) return std::nullopt;
  const auto bytes = macRomanFromUtf16(text);
  if (!bytes) return std::nullopt;
  std::uint32_t code = 0;
  for (const char byte : *bytes) code = code << 8U | static_cast<unsigned char>(byte);
  return FourCharCode{code};
}

std::u16string keyFromKeyword(FourCharCode keyword) { return u"«" + textFromCode(keyword) + u"»"; }

std::optional<FourCharCode> keywordFromKey(std::u16string_view key) {
  if (key.size() != 6 || key.front() != u'«' || key.back() != u'»') return std::nullopt;
  return codeFromText(key.substr(1, 4));
}

bool areUserLabels(const Keys& keys) {
  return std::ranges::all_of(
      keys.all(), [](const Value& key) { return key.isText() && !keywordFromKey(key.text()); });
}

}  // namespace skerrow::foundation
