#include "foundation/text/transliteration.h"

#include <gtest/gtest.h>
#include <unicode/translit.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

using Direction = Transliteration::Direction;

std::string applied(std::u16string_view identifier, std::u16string_view text,
                    Direction direction = Direction::forward) {
  const std::optional<Transliteration> transform = Transliteration::make(identifier, direction);
  return transform ? utf8FromUtf16(transform->apply(text)) : "(none)";
}

TEST(Transliteration, AppliesTransformsByName) {
  const struct {
    const char16_t* identifier;
    const char16_t* text;
    const char* expected;
    Direction direction = Direction::forward;
  } cases[] = {
      {u"Latin-ASCII", u"Größe Ærø", "Grosse AEro"},
      {u"Latin-Cyrillic", u"privet", "привет"},
      {u"Latin-Cyrillic", u"привет", "privet", Direction::reverse},
      {u"Hex-Any", u"caf\\u00E9 \\uZ", "café \\uZ"},
      {u"[^\\x20-\\x7e]-Hex/XML10", u"é\t\r\n~", "&#233;&#9;&#13;&#10;~"},
      {u"[^\\x20-\\x7e]-Hex/XML", u"é😀", "&#xE9;&#x1F600;"},
      {u"NFD; [:M:] Remove; NFC", u"éàü", "eau"},
      {u"Null", u"\xD800", "\xEF\xBF\xBD"},
      {u"Upper", u"straße", "STRASSE"},
      {u"Upper", u"", ""},
      {u"No-Such-Transform", u"x", "(none)"},
      {u"", u"x", "(none)"},
      {u"[a-", u"x", "(none)"},
      {u"No-Such-Transform", u"x", "(none)", Direction::reverse},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(applied(each.identifier, each.text, each.direction), each.expected)
        << utf8FromUtf16(each.identifier);
  }
}

TEST(Transliteration, StopsATextThatGrowsWithoutEnd) {
  const auto growing = Transliteration::make(u"Any-Hex;Any-Hex;Any-Hex;Any-Hex;Any-Hex;Any-Hex");
  EXPECT_THROW((void)growing->apply(u"a", 2000), std::length_error);
  const auto escaping = Transliteration::make(u"Any-Hex");
  EXPECT_EQ(escaping->apply(u"ab", 100), u"\\u0061\\u0062");
  EXPECT_THROW((void)escaping->apply(u"ab", 11), std::length_error);
  EXPECT_THROW((void)escaping->apply(u"ab", 1), std::length_error);
  // Line by line.
  std::u16string lines;
  for (int i = 0; i < 20'000; ++i) lines += u"a\n";
  const auto latin = Transliteration::make(u"Latin-Cyrillic");
  EXPECT_EQ(latin->apply(lines, lines.size() + 10).size(), lines.size());
  EXPECT_THROW((void)latin->apply(lines, lines.size() - 1), std::length_error);
}

std::u16string appliedInOneCall(const icu::Transliterator& transform, const std::u16string& text) {
  icu::UnicodeString units(text.data(), static_cast<std::int32_t>(text.size()));
  transform.transliterate(units);
  return {units.getBuffer(), static_cast<std::size_t>(units.length())};
}

RC_GTEST_PROP(Transliteration, AgreesWithTheOneCallFormOfEveryTransform, ()) {
  const auto part = rc::gen::elementOf(std::vector<std::u16string>{u"a",
                                                                   u"B",
                                                                   u"é",
                                                                   u"e\u0301",
                                                                   u"ß",
                                                                   u"ﬁ",
                                                                   u" ",
                                                                   u"\n",
                                                                   u"'",
                                                                   u"\"",
                                                                   u"-",
                                                                   u"α",
                                                                   u"Σ",
                                                                   u"ς",
                                                                   u"\u0345",
                                                                   u"щ",
                                                                   u"Ж",
                                                                   u"か",
                                                                   u"が",
                                                                   u"ー",
                                                                   u"ッ",
                                                                   u"漢字",
                                                                   u"แ",
                                                                   u"ก",
                                                                   u"ش",
                                                                   u"שׁ",
                                                                   u"क्ष",
                                                                   u"각",
                                                                   u"\u1100\u1161",
                                                                   u"\\u00e9",
                                                                   u"&#233;",
                                                                   u"U+0041",
                                                                   u"{\\N{SPACE}}",
                                                                   u"😀",
                                                                   std::u16string(1, u'\xD800'),
                                                                   u"\u200D"});
  std::u16string text;
  for (const std::u16string& each : *rc::gen::container<std::vector<std::u16string>>(part)) {
    text += each;
  }
  const int count = icu::Transliterator::countAvailableIDs();
  const icu::UnicodeString& id = icu::Transliterator::getAvailableID(*rc::gen::inRange(0, count));
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::Transliterator> transform(
      icu::Transliterator::createInstance(id, UTRANS_FORWARD, status));
  const auto ours = Transliteration::make({id.getBuffer(), static_cast<std::size_t>(id.length())});
  RC_ASSERT(ours.has_value() == (transform != nullptr));
  if (!transform) return;
  RC_ASSERT(utf8FromUtf16(ours->apply(text)) == utf8FromUtf16(appliedInOneCall(*transform, text)));
}

// Long texts are worked on in pieces, which must not show.
TEST(Transliteration, AgreesWithTheOneCallFormOnLongTexts) {
  const std::vector<std::u16string> lines = {
      u"Straße “ΣΑΣ” οδός\n", u"ไทยแลนด์ กรุงเทพ\n",        u"\n",  u"щука Ёж\r\n",
      u"’t 漢字かな ー ッ\n", u"\u0301é e\u0301\u0345\n", u"-\n", u"ǅ ijs i\u0307\n",
      u"क्ष १२ 각\n",
  };
  std::u16string text;
  for (std::size_t i = 0; text.size() < 20'000; ++i) text += lines[i * i % 97 % lines.size()];
  for (const char16_t* identifier :
       {u"Any-Latin", u"Thai-Latin", u"Latin-ASCII", u"Any-Title", u"Lower", u"Greek-Latin",
        u"Any-NFKC", u"Any-Publishing", u"NFD; [:M:] Remove; NFC", u"[\\n] Remove; Any-Title"}) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Transliterator> transform(
        icu::Transliterator::createInstance(identifier, UTRANS_FORWARD, status));
    ASSERT_NE(transform, nullptr) << utf8FromUtf16(identifier);
    EXPECT_EQ(Transliteration::make(identifier)->apply(text), appliedInOneCall(*transform, text))
        << utf8FromUtf16(identifier);
  }
}

TEST(Transliteration, TakesLongTextsInItsStride) {
  std::u16string text;
  std::u16string expected;
  for (int i = 0; i < 400'000; ++i) {
    text += u"ßé";
    expected += u"sse";
  }
  EXPECT_EQ(Transliteration::make(u"Latin-ASCII")->apply(text), expected);
}

}  // namespace
}  // namespace skerrow::foundation
