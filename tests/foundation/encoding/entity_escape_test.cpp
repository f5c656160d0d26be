#include "foundation/encoding/entity_escape.h"

#include <gtest/gtest.h>

#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

TEST(EntityEscape, EscapesTheFiveCharacters) {
  EXPECT_EQ(utf8FromUtf16(entitiesEscaped(u"<a href=\"x\">R&D's é</a>")),
            "&lt;a href=&quot;x&quot;&gt;R&amp;D&apos;s é&lt;/a&gt;");
  EXPECT_EQ(utf8FromUtf16(entitiesEscaped(u"&amp;")), "&amp;amp;");
  EXPECT_EQ(entitiesEscaped(u""), u"");
  EXPECT_EQ(entitiesEscaped(u"plain"), u"plain");
}

TEST(EntityEscape, UnescapesEntitiesAndCharacterReferences) {
  const struct {
    const char16_t* text;
    const char* expected;
  } cases[] = {
      {u"", ""},
      {u"&lt;&gt;&amp;&quot;&apos;", "<>&\"'"},
      {u"&#233;&#xE9;&#xe9;", "ééé"},
      {u"&#x1F600;&#128512;", "😀😀"},
      {u"&#0000000000000000000065;", "A"},
      {u"&#9;&#10;", "\t\n"},
      {u"&amp;lt;", "&lt;"},
      {u"&#38;lt;", "&lt;"},
      {u"&&amp;&", "&&&"},
      {u"&nbsp;&eacute;", "&nbsp;&eacute;"},
      {u"&amp", "&amp"},
      {u"&", "&"},
      {u"&;", "&;"},
      {u"&#;", "&#;"},
      {u"&#x;", "&#x;"},
      {u"&#XE9;", "&#XE9;"},
      {u"&#12a;", "&#12a;"},
      {u"&#xG;", "&#xG;"},
      {u"&#0;", "&#0;"},
      {u"&#xD800;", "&#xD800;"},
      {u"&#x110000;", "&#x110000;"},
      {u"&#99999999999999999999;", "&#99999999999999999999;"},
      {u"&AMP;", "&AMP;"},
      {u"& lt;", "& lt;"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(utf8FromUtf16(entitiesUnescaped(each.text)), each.expected);
  }
}

TEST(ConvertEntiesInString, GivesTheCharactersOfMarkup) {
  const struct {
    std::u16string text;
    const char* expected;
  } cases[] = {
      {u"", ""},
      {u"plain é😀", "plain é😀"},
      {u"a &lt; b &amp;&amp; c &gt; d &quot;&apos;", "a < b && c > d \"'"},
      {u"&#233;&#xE9;&#x1F600;", "éé😀"},
      {u"one <b>two <i a='1'>three</i></b> four", "one two three four"},
      {u"a<!-- no -->b<![CDATA[<c>&amp;]]>d", "ab<c>&amp;d"},
      {u"before &nbsp; after", ""},
      {u"<b>kept</b> &amp; <i>lost", "kept & lost"},
      {std::u16string(1, u'\xD800'), "\xEF\xBF\xBD"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(utf8FromUtf16(convertEntiesInString(each.text)), each.expected)
        << utf8FromUtf16(each.text);
  }
}

RC_GTEST_PROP(EntityEscape, UnescapingGivesBackWhatWasEscaped, ()) {
  const auto bytes = *rc::gen::arbitrary<std::string>();
  const std::u16string text = utf16FromUtf8Replacing(bytes) + u"&<>\"'";
  RC_ASSERT(entitiesUnescaped(entitiesEscaped(text)) == text);
}

}  // namespace
}  // namespace skerrow::foundation
