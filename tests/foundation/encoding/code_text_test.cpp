#include "foundation/encoding/code_text.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/describe.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

using namespace literals;
using tests::described;

TEST(CodeText, EachByteIsOneCharacter) {
  EXPECT_EQ(described(textFromCode("pnam"_code)), described(u"pnam"));
  EXPECT_EQ(described(textFromCode("ldt "_code)), described(u"ldt "));
  EXPECT_EQ(described(textFromCode(FourCharCode{0x62E56531})), described(u"bÂe1"));
  EXPECT_EQ(described(textFromCode(FourCharCode{0})), described(std::u16string(4, u'\0')));
  EXPECT_EQ(described(textFromCode(FourCharCode{0xFFFFFFFF})), described(u"ˇˇˇˇ"));
}

TEST(CodeText, IsPlainWhereEveryCharacterIs) {
  EXPECT_EQ(plainTextFromCode("yes "_code), "yes ");
  EXPECT_EQ(plainTextFromCode("~!A0"_code), "~!A0");
  EXPECT_EQ(plainTextFromCode(FourCharCode{0x62E56531}), "0x62E56531");
  EXPECT_EQ(plainTextFromCode(FourCharCode{0}), "0x00000000");
  EXPECT_EQ(plainTextFromCode(FourCharCode{0x6162637F}), "0x6162637F");
  EXPECT_EQ(plainTextFromCode(FourCharCode{0x6162631F}), "0x6162631F");
}

TEST(CodeText, NothingUnlessFourCharactersOfMacOsRoman) {
  const std::u16string refused[] = {
      u"", u"abc", u"abcde", u"abc漢", u"🏔ab", u"abš ", {u'a', u'b', u'c', 0xD800}};
  for (const std::u16string& text : refused) {
    EXPECT_EQ(codeFromText(text), std::nullopt) << described(text);
  }
  EXPECT_EQ(codeFromText(u"yes "), "yes "_code);
  EXPECT_EQ(codeFromText(u"bÂe1"), FourCharCode{0x62E56531});
  EXPECT_EQ(codeFromText(std::u16string(4, u'\0')), FourCharCode{0});
}

TEST(CodeText, AKeywordsKeyStandsBetweenAngleMarks) {
  EXPECT_EQ(described(keyFromKeyword("pnam"_code)), described(u"«pnam»"));
  EXPECT_EQ(keyFromKeyword(FourCharCode{0xC7C7C8C8}), u"«««»»»");
}

TEST(CodeText, OnlyAKeyOfSixCharactersBetweenAngleMarksNamesAKeyword) {
  const std::u16string refused[] = {u"",        u"name",  u"pnam",   u"«abc»",  u"«abcde»",
                                    u"«abcd",   u"abcd»", u"»abcd«", u"<abcd>", u" «abcd»",
                                    u"«ab漢d»", u"«»",    u"«abcd«", u"»abcd»", u"«a🏔b»"};
  for (const std::u16string& key : refused) {
    EXPECT_EQ(keywordFromKey(key), std::nullopt) << described(key);
  }
  EXPECT_EQ(keywordFromKey(u"«pnam»"), "pnam"_code);
  EXPECT_EQ(keywordFromKey(u"«    »"), "    "_code);
  EXPECT_EQ(keywordFromKey(u"«««»»»"), FourCharCode{0xC7C7C8C8});
}

RC_GTEST_PROP(CodeText, EveryCodeIsTextAndKeyAndBack, ()) {
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  const FourCharCode code{seed * 2654435761U};
  RC_ASSERT(codeFromText(textFromCode(code)) == code);
  RC_ASSERT(keywordFromKey(keyFromKeyword(code)) == code);
}

}  // namespace
}  // namespace skerrow::foundation
