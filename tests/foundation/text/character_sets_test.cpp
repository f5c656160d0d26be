#include "foundation/text/character_sets.h"

#include <gtest/gtest.h>

#include <string>

namespace skerrow::foundation {
namespace {

TEST(CharacterSets, WhiteSpaceIsTheSpaceSeparatorsAndTab) {
  for (const char16_t unit :
       std::u16string(u" \t\u00A0\u1680\u2000\u2009\u200A\u202F\u205F\u3000")) {
    EXPECT_TRUE(isWhiteSpace(unit)) << std::hex << unsigned{unit};
    EXPECT_FALSE(isNewline(unit)) << std::hex << unsigned{unit};
  }
  for (const char16_t unit : std::u16string(u"a0\u180E\u200B\u2060\uFEFF\0", 7)) {
    EXPECT_FALSE(isWhiteSpaceOrNewline(unit)) << std::hex << unsigned{unit};
  }
}

TEST(CharacterSets, NewlinesAreWhatEndsALine) {
  for (const char16_t unit : std::u16string(u"\n\v\f\r\u0085\u2028\u2029")) {
    EXPECT_TRUE(isNewline(unit)) << std::hex << unsigned{unit};
    EXPECT_FALSE(isWhiteSpace(unit)) << std::hex << unsigned{unit};
  }
  EXPECT_FALSE(isNewline(u'\u0086'));
  EXPECT_FALSE(isNewline(u'\x1C'));
}

TEST(CharacterSets, DecimalDigitsAreOfAnyScript) {
  EXPECT_EQ(decimalDigit(U'7'), 7);
  EXPECT_EQ(decimalDigit(U'٣'), 3);
  EXPECT_EQ(decimalDigit(U'\U0001D7D8'), 0);
  EXPECT_EQ(decimalDigit(U'a'), std::nullopt);
  EXPECT_EQ(decimalDigit(U'²'), std::nullopt);
  EXPECT_EQ(decimalDigit(U'Ⅷ'), std::nullopt);
}

TEST(CharacterSets, DiacriticsAreMarksThatAreNotRead) {
  for (const char32_t mark : std::u32string(U"\u0301\u0323\u05B0\u064E\u093C\u3099")) {
    EXPECT_TRUE(isDiacritic(mark)) << std::hex << static_cast<unsigned>(mark);
  }
  for (const char32_t other : std::u32string(U"a\u094D\u093F\u0E31\u00B4")) {
    EXPECT_FALSE(isDiacritic(other)) << std::hex << static_cast<unsigned>(other);
  }
}

TEST(CharacterSets, TrimmingLeavesWhatIsInside) {
  const struct {
    std::u16string_view text;
    UnitRange expected;
  } cases[] = {
      {u"", {0, 0}},
      {u" a ", {1, 1}},
      {u"a b", {0, 3}},
      {u"\u3000\r\n", {3, 0}},
      {u"\u2029\u00A0x\u0085", {2, 1}},
      {u"\u200Ba", {0, 2}},
  };
  for (const auto& each : cases) EXPECT_EQ(trimmedRange(each.text), each.expected);
}

}  // namespace
}  // namespace skerrow::foundation
