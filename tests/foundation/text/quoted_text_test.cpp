#include "foundation/text/quoted_text.h"

#include <gtest/gtest.h>

#include <string>

namespace skerrow::foundation {
namespace {

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

TEST(Shortened, LeavesATextOfTwoHundredCharactersAsItIs) {
  for (const char* one : {"a", "é", "漢", "😀", "\n"}) {
    EXPECT_EQ(shortened(repeated(one, 200)), repeated(one, 200)) << one;
  }
  EXPECT_EQ(shortened(std::string_view()), "");
  EXPECT_EQ(shortened(std::u16string_view(u"")), "");
  EXPECT_EQ(shortened(std::u16string_view(u"a\u00E9")), "aé");
}

TEST(Shortened, CutsALongerOneAndSaysSo) {
  for (const char* one : {"a", "é", "漢", "😀"}) {
    EXPECT_EQ(shortened(repeated(one, 201)), repeated(one, 200) + "…") << one;
    EXPECT_EQ(shortened(repeated(one, 100000)), repeated(one, 200) + "…") << one;
  }
}

TEST(Shortened, CutsUnitsWhereItCutsTheirCharacters) {
  std::u16string pairs;
  for (int i = 0; i < 200; ++i) pairs += u"\U0001F600";
  EXPECT_EQ(shortened(std::u16string_view(pairs)), repeated("😀", 200));
  EXPECT_EQ(shortened(std::u16string_view(pairs + u"a")), repeated("😀", 200) + "…");
  EXPECT_EQ(shortened(std::u16string_view(std::u16string(201, u'b'))), repeated("b", 200) + "…");
}

TEST(Shortened, TakesBytesThatAreNoUtf8) {
  EXPECT_EQ(shortened("\x80\xFF"), "\x80\xFF");
  EXPECT_EQ(shortened(repeated("\xFF", 201)), repeated("\xFF", 200) + "…");
}

TEST(Quoted, ShowsWhatCannotBeSeen) {
  EXPECT_EQ(quoted(std::u16string_view(u"a\0b\n", 4)), "“a\\u0000b\\u000A”");
  EXPECT_EQ(foundation::quoted(std::u16string(201, u'a')), "“" + repeated("a", 200) + "…”");
}

}  // namespace
}  // namespace skerrow::foundation
