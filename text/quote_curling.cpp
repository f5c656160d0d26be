#include "text/quote_curling.h"

#include <cstddef>
#include <string_view>

#include "foundation/text/character_sets.h"
#include "foundation/text/code_points.h"

namespace skerrow::text {

namespace {

constexpr char16_t kApostrophe = u'\'';
constexpr char16_t kQuotationMark = u'"';
constexpr char16_t kLeftSingle = u'\u2018';
constexpr char16_t kRightSingle = u'\u2019';
constexpr char16_t kLeftDouble = u'\u201C';
constexpr char16_t kRightDouble = u'\u201D';

// Whether a text begins with two digits and an s, with or without an apostrophe
// before the s.
bool startsWithDecade(std::u16string_view text) {
  for (int digit = 0; digit < 2; ++digit) {
    if (text.empty()) return false;
    const foundation::CodePoint character = foundation::codePointAt(text, 0);
    if (!foundation::decimalDigit(character.value)) return false;
    text.remove_prefix(character.unitCount);
  }
  return text.starts_with(u"s") || text.starts_with(u"'s");
}

bool opensAt(std::u16string_view text, std::size_t position) {
  if (position == 0) return true;
  const char16_t before = text[position - 1];
  return before == u'>' || foundation::isWhiteSpaceOrNewline(before);
}

}  // namespace

void curlQuotes(std::u16string& units) {
  const std::u16string_view text = units;
  for (std::size_t i = 0; i < units.size(); ++i) {
    if (units[i] == kQuotationMark) {
      units[i] = opensAt(text, i) ? kLeftDouble : kRightDouble;
    } else if (units[i] == kApostrophe) {
      const bool isOpening = opensAt(text, i) && !startsWithDecade(text.substr(i + 1));
      units[i] = isOpening ? kLeftSingle : kRightSingle;
    }
  }
}

void straightenQuotes(std::u16string& units) {
  for (char16_t& unit : units) {
    if (unit == kLeftSingle || unit == kRightSingle) unit = kApostrophe;
    if (unit == kLeftDouble || unit == kRightDouble) unit = kQuotationMark;
  }
}

}  // namespace skerrow::text
