#include "foundation/number/number_scanner.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct RealCase {
  std::u16string_view text;
  std::optional<double> value;
  std::size_t end = 0;
};

void expectReals(const NumberSymbols& symbols, std::initializer_list<RealCase> cases) {
  for (const RealCase& each : cases) {
    const auto scanned = scanReal(each.text, symbols);
    ASSERT_EQ(scanned.has_value(), each.value.has_value()) << utf8FromUtf16(each.text);
    if (!scanned) continue;
    EXPECT_EQ(scanned->value, *each.value) << utf8FromUtf16(each.text);
    EXPECT_EQ(scanned->end, each.end) << utf8FromUtf16(each.text);
  }
}

TEST(NumberScanner, ReadsTheLongestRealAtTheStart) {
  expectReals({}, {
                      {u"0", 0.0, 1},
                      {u"12abc", 12.0, 2},
                      {u" \t\n\u00A03.5 ", 3.5, 7},
                      {u"-2.5", -2.5, 4},
                      {u"+7", 7.0, 2},
                      {u".5", 0.5, 2},
                      {u"-.5e1", -5.0, 5},
                      {u"5.", 5.0, 2},
                      {u"5.e1", 50.0, 4},
                      {u"5..3", 5.0, 2},
                      {u"1.2.3", 1.2, 3},
                      {u"1e3", 1000.0, 3},
                      {u"1E-3", 0.001, 4},
                      {u"1e+3x", 1000.0, 4},
                      {u"1e", 1.0, 1},
                      {u"1e+", 1.0, 1},
                      {u"1e5.5", 1e5, 3},
                      {u"0x1F", 0.0, 1},
                      {u"1,234", 1.0, 1},
                      {u"007", 7.0, 3},
                      {u"9007199254740993", 9007199254740992.0, 16},
                      {u"0.1", 0.1, 3},
                      {u"1e308", 1e308, 5},
                      {u"1e309", kInfinity, 5},
                      {u"-1e309", -kInfinity, 6},
                      {u"1e-400", 0.0, 6},
                      {u"0e999999999999999999999", 0.0, 23},
                      {u"1e999999999999999999999", kInfinity, 23},
                      {u"1e-999999999999999999999", 0.0, 24},
                      {u"0.00001e312", 1e307, 11},
                      {u"4.9e-324", 4.9e-324, 8},
                  });
}

TEST(NumberScanner, ReadsNothingWhereNoNumberBegins) {
  for (const std::u16string_view text :
       {u"", u"  ", u"abc", u"-", u"+", u".", u"-.", u".e1", u"e5", u"- 5", u"--5", u"+-5", u"inf",
        u"nan", u"٣", u"$5", u"(5)"}) {
    EXPECT_FALSE(scanReal(text)) << utf8FromUtf16(text);
    EXPECT_FALSE(scanInteger(text)) << utf8FromUtf16(text);
  }
  EXPECT_FALSE(scanInteger(u".5"));
}

TEST(NumberScanner, TellsHugeNumbersFromTinyOnes) {
  const std::u16string zeros(400, u'0');
  EXPECT_EQ(scanReal(u"1" + zeros)->value, kInfinity);
  EXPECT_EQ(scanReal(u"0." + zeros + u"1")->value, 0.0);
  EXPECT_EQ(scanReal(u"0." + zeros + u"1e401")->value, 1.0);
  EXPECT_EQ(scanReal(u"1" + zeros + u"e-400")->value, 1.0);
  EXPECT_TRUE(std::signbit(scanReal(u"-1e-400")->value));
}

TEST(NumberScanner, ReadsIntegersAndHoldsThemInTheirRange) {
  const struct {
    std::u16string_view text;
    std::int64_t value;
    std::size_t end;
  } cases[] = {
      {u" 42 ", 42, 3},
      {u"-42.9", -42, 3},
      {u"+1e3", 1, 2},
      {u"9223372036854775807", INT64_MAX, 19},
      {u"9223372036854775808", INT64_MAX, 19},
      {u"-9223372036854775808", INT64_MIN, 20},
      {u"-99999999999999999999x", INT64_MIN, 21},
  };
  for (const auto& each : cases) {
    const auto scanned = scanInteger(each.text);
    ASSERT_TRUE(scanned);
    EXPECT_EQ(scanned->value, each.value);
    EXPECT_EQ(scanned->end, each.end);
  }
}

TEST(NumberScanner, ReadsNumbersAsALocaleWritesThem) {
  expectReals(NumberSymbols::ofLocale("en_US"), {
                                                    {u"1,234.5", 1234.5, 7},
                                                    {u"1,234,567x", 1234567.0, 9},
                                                    {u"1,", 1.0, 1},
                                                    {u",5", std::nullopt},
                                                    {u"0.1,5", 0.1, 3},
                                                    {u"1,,2", 1.0, 1},
                                                    {u"٣٫", 3.0, 1},
                                                });
  expectReals(NumberSymbols::ofLocale("de_DE"), {
                                                    {u"1.234,5", 1234.5, 7},
                                                    {u"-0,25", -0.25, 5},
                                                    {u",5e1", 5.0, 4},
                                                    {u"1 234", 1.0, 1},
                                                });
  expectReals(NumberSymbols::ofLocale("fr_FR"), {
                                                    {u"1\u202F234,5", 1234.5, 7},
                                                    {u"1 234\u00A0567,5", 1234567.5, 11},
                                                    {u"1  2", 1.0, 1},
                                                    {u"1 x", 1.0, 1},
                                                    {u"1\t2", 1.0, 1},
                                                });
  expectReals(NumberSymbols::ofLocale("sv_SE"), {{u"\u22125,5", -5.5, 4}, {u"-5,5", -5.5, 4}});
  expectReals(NumberSymbols::ofLocale("ar_EG"), {{u"١٬٢٣٤٫٥", 1234.5, 7}});
  expectReals(NumberSymbols::ofLocale("no such locale"), {{u"1.5", 1.5, 3}});
}

RC_GTEST_PROP(NumberScanner, ReadsBackWhatWasWritten, ()) {
  const auto value = *rc::gen::arbitrary<double>();
  char digits[64];
  const auto written = std::to_chars(digits, digits + sizeof digits, value);
  const std::string text(digits, written.ptr);
  const auto scanned = scanReal(utf16FromUtf8Replacing(text) + u"x");
  RC_ASSERT(scanned.has_value());
  RC_ASSERT(scanned->value == value);
  RC_ASSERT(scanned->end == text.size());
}

}  // namespace
}  // namespace skerrow::foundation
