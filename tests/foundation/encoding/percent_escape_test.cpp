#include "foundation/encoding/percent_escape.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

std::string shown(const std::optional<std::u16string>& text) {
  return text ? utf8FromUtf16(*text) : "(nothing)";
}

const std::u16string kLoneSurrogate(1, u'\xD83D');

TEST(PercentEscape, EscapesWhatMayNotStandInAUrl) {
  const struct {
    std::u16string text;
    const char* kept;
    const char* escaped;
  } cases[] = {
      {u"", "", ""},
      {u"a b/c", "a%20b/c", "a%20b%2Fc"},
      {u"azAZ09-_.!~*'()", "azAZ09-_.!~*'()", "azAZ09-_.!~*'()"},
      {u";/?:@&=+$,", ";/?:@&=+$,", "%3B%2F%3F%3A%40%26%3D%2B%24%2C"},
      {u"%#[]<>\"{}|\\^`", "%25%23%5B%5D%3C%3E%22%7B%7D%7C%5C%5E%60",
       "%25%23%5B%5D%3C%3E%22%7B%7D%7C%5C%5E%60"},
      {u"é€😀", "%C3%A9%E2%82%AC%F0%9F%98%80", "%C3%A9%E2%82%AC%F0%9F%98%80"},
      {{u'\0', u'\n', u'\x7F'}, "%00%0A%7F", "%00%0A%7F"},
      {kLoneSurrogate, "(nothing)", "(nothing)"},
      {u"a" + kLoneSurrogate + u"b", "(nothing)", "(nothing)"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(shown(percentEscaped(each.text, ReservedCharacters::kept)), each.kept);
    EXPECT_EQ(shown(percentEscaped(each.text, ReservedCharacters::escaped)), each.escaped);
  }
}

TEST(PercentEscape, UnescapesBytesAsUtf8) {
  const struct {
    std::u16string text;
    const char* expected;
  } cases[] = {
      {u"", ""},
      {u"a%20b%2fc", "a b/c"},
      {u"a+b", "a+b"},
      {u"%C3%A9é%e2%82%ac", "éé€"},
      {u"%", "%"},
      {u"100%", "100%"},
      {u"%4", "%4"},
      {u"%4x%x4%%41", "%4x%x4%A"},
      {u"%2541", "%41"},
      {u"%FF", "(nothing)"},
      {u"%C3", "(nothing)"},
      {u"%C3x%A9", "(nothing)"},
      {u"%ED%A0%80", "(nothing)"},
      {u"%C0%80", "(nothing)"},
      {u"%４1", "%４1"},
      {kLoneSurrogate + u"%41",
       "\xEF\xBF\xBD"
       "A"},
  };
  for (const auto& each : cases) EXPECT_EQ(shown(percentUnescaped(each.text)), each.expected);
}

RC_GTEST_PROP(PercentEscape, UnescapingGivesBackWhatWasEscaped, ()) {
  const auto bytes = *rc::gen::arbitrary<std::string>();
  const std::u16string text = utf16FromUtf8Replacing(bytes);
  for (const auto reserved : {ReservedCharacters::kept, ReservedCharacters::escaped}) {
    RC_ASSERT(percentUnescaped(percentEscaped(text, reserved).value()) == text);
  }
}

}  // namespace
}  // namespace skerrow::foundation
