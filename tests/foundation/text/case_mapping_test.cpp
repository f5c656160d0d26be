#include "foundation/text/case_mapping.h"

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

struct Case {
  const char16_t* text;
  const char* upper;
  const char* lower;
  const char* capitalized;
};

TEST(CaseMapping, MapsWholeTextsByTheFullMappingsOfUnicode) {
  const Case cases[] = {
      {u"", "", "", ""},
      {u"heLLo woRLD", "HELLO WORLD", "hello world", "Hello World"},
      {u"straße", "STRASSE", "straße", "Straße"},
      {u"ﬁn ǆ ßa", "FIN Ǆ SSA", "ﬁn ǆ ßa", "Fin ǅ Ssa"},
      {u"ΟΔΟΣ ΣΑΣ", "ΟΔΟΣ ΣΑΣ", "οδος σας", "Οδος Σας"},
      {u"İI", "İI", "i̇i", "İi"},
      {u"o'neil \"quoted\" x-ray", "O'NEIL \"QUOTED\" X-RAY", "o'neil \"quoted\" x-ray",
       "O'neil \"quoted\" X-ray"},
      {u"a\tb\nc\rd\u2028e\u00A0f", "A\tB\nC\rD\u2028E\u00A0F", "a\tb\nc\rd\u2028e\u00A0f",
       "A\tB\nC\rD\u2028E\u00A0F"},
      {u"  two  spaces ", "  TWO  SPACES ", "  two  spaces ", "  Two  Spaces "},
      {u"1st éCOLE", "1ST ÉCOLE", "1st école", "1st École"},
      {u"\U00010428a", "\U00010400A", "\U00010428a", "\U00010400a"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(utf8FromUtf16(uppercased(each.text)), each.upper);
    EXPECT_EQ(utf8FromUtf16(lowercased(each.text)), each.lower);
    EXPECT_EQ(utf8FromUtf16(capitalized(each.text)), each.capitalized);
  }
}

TEST(CaseMapping, KeepsLoneSurrogates) {
  const std::u16string text = {u'a', u'\xDC00', u'\xD800', u'b'};
  EXPECT_EQ(uppercased(text), (std::u16string{u'A', u'\xDC00', u'\xD800', u'B'}));
  EXPECT_EQ(capitalized(text), (std::u16string{u'A', u'\xDC00', u'\xD800', u'b'}));
}

template <class Mapping>
std::u16string mappedAtOnce(Mapping mapping, const std::u16string& text) {
  std::u16string result(text.size() * 3 + 8, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length =
      mapping(result.data(), static_cast<std::int32_t>(result.size()), text.data(),
              static_cast<std::int32_t>(text.size()), "", &status);
  result.resize(static_cast<std::size_t>(length));
  return result;
}

RC_GTEST_PROP(CaseMapping, MapsInPiecesAsIcuDoesAtOnce, ()) {
  const auto part = rc::gen::elementOf(std::vector<std::u16string>{
      u"a", u"Plain ASCII of some length", u"é", u"É", u"ß", u"İ", u"i\u0307", u"Σ", u"ΑΣ", u"ς",
      u"\u0301", u".", u"\u00AD", u"ŉ", u"ǰ", u"ᾳ", u"\U00010428", std::u16string(1, u'\xD801')});
  std::u16string text;
  for (const std::u16string& each : *rc::gen::container<std::vector<std::u16string>>(part)) {
    text += each;
  }
  RC_ASSERT(uppercased(text) == mappedAtOnce(u_strToUpper, text));
  RC_ASSERT(lowercased(text) == mappedAtOnce(u_strToLower, text));
}

}  // namespace
}  // namespace skerrow::foundation
