#include "foundation/encoding/entity_escape.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include <glib.h>

#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

struct Entity {
  std::u16string_view name;
  char16_t character;
};

constexpr Entity kEntities[] = {
    {u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"apos", u'\''},
};
constexpr std::u16string_view kEscaped = u"&<>\"'";
constexpr std::size_t kLongestReference = 64;  // leading zeros and all

// The code point that the digits of a character reference spell.
std::optional<char32_t> referredTo(std::u16string_view digits) {
  const bool isHexadecimal = digits.starts_with(u'x');
  if (isHexadecimal) digits.remove_prefix(1);
  if (digits.empty()) return std::nullopt;
  const char32_t base = isHexadecimal ? 16 : 10;
  char32_t codePoint = 0;
  for (const char16_t unit : digits) {
    const std::optional<unsigned> digit = hexadecimalDigit(unit);
    if (!digit || *digit >= base) return std::nullopt;
    codePoint = codePoint * base + *digit;
    if (codePoint > 0x10FFFF) return std::nullopt;
  }
  const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
  if (codePoint == 0 || isSurrogate) return std::nullopt;
  return codePoint;
}

// What stands for the text between & and ;.
std::optional<char32_t> meaningOf(std::u16string_view name) {
  if (name.starts_with(u'#')) return referredTo(name.substr(1));
  const auto* const entity = std::ranges::find(kEntities, name, &Entity::name);
  if (entity == std::ranges::end(kEntities)) return std::nullopt;
  return entity->character;
}

}  // namespace

std::u16string entitiesEscaped(std::u16string_view text) {
  std::u16string result;
  result.reserve(text.size());
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] > u'>' || kEscaped.find(text[i]) == std::u16string_view::npos) continue;
    result += text.substr(kept, i - kept);
    result += u'&';
    result += std::ranges::find(kEntities, text[i], &Entity::character)->name;
    result += u';';
    kept = i + 1;
  }
  return result += text.substr(kept);
}

std::u16string entitiesUnescaped(std::u16string_view text) {
  std::u16string result;
  result.reserve(text.size());
  std::size_t kept = 0;
  for (std::size_t i = text.find(u'&'); i < text.size(); i = text.find(u'&', i + 1)) {
    const std::size_t length = text.substr(i + 1, kLongestReference).find(u';');
    if (length == std::u16string_view::npos) continue;
    const std::optional<char32_t> meaning = meaningOf(text.substr(i + 1, length));
    if (!meaning) continue;
    result += text.substr(kept, i - kept);
    appendCodePoint(result, *meaning);
    kept = i + length + 2;
  }
  return result += text.substr(kept);
}

std::u16string convertEntiesInString(std::u16string_view text) {
  std::string found;
  GMarkupParser parser{};
  parser.text = [](GMarkupParseContext*, const char* bytes, gsize count, void* into, GError**) {
    static_cast<std::string*>(into)->append(bytes, count);
  };
  const std::unique_ptr<GMarkupParseContext, decltype(&g_markup_parse_context_free)> context(
      g_markup_parse_context_new(&parser, G_MARKUP_TREAT_CDATA_AS_TEXT, &found, nullptr),
      g_markup_parse_context_free);
  const std::string document = "<d>" + utf8FromUtf16(text) + "</d>";
  // Its answer is left alone: what was found before a fault counts.
  g_markup_parse_context_parse(context.get(), document.data(), static_cast<gssize>(document.size()),
                               nullptr);
  return utf16FromUtf8Replacing(found);
}

}  // namespace skerrow::foundation
