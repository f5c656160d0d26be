#include "foundation/number/number_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

struct ReadCase {
  std::u16string_view text;
  std::optional<Number> whole;  // of the whole text
  Number front;                 // at its front
};

TEST(NumberText, ReadsNumbers) {
  const Number none = Number::signed64(0);
  const ReadCase cases[] = {
      {u"", std::nullopt, none},
      {u"0", Number::signed64(0), Number::signed64(0)},
      {u"12", Number::signed64(12), Number::signed64(12)},
      {u"-12", Number::signed64(-12), Number::signed64(-12)},
      {u"+12", Number::signed64(12), Number::signed64(12)},
      {u" \t12\n", Number::signed64(12), Number::signed64(12)},
      {u"1.5", Number::real(1.5), Number::real(1.5)},
      {u".5", Number::real(0.5), Number::real(0.5)},
      {u"1e3", Number::real(1000), Number::real(1000)},
      {u"1E-2", Number::real(0.01), Number::real(0.01)},
      {u"9223372036854775807", Number::signed64(INT64_MAX), Number::signed64(INT64_MAX)},
      {u"9223372036854775808", Number::real(9223372036854775808.0),
       Number::real(9223372036854775808.0)},
      {u"12 pears", std::nullopt, Number::signed64(12)},
      {u"1.5kg", std::nullopt, Number::real(1.5)},
      {u"1e", std::nullopt, Number::signed64(1)},
      {u"1 2", std::nullopt, Number::signed64(1)},
      {u"1,5", std::nullopt, Number::signed64(1)},
      {u"0x10", std::nullopt, none},
      {u"+-1", std::nullopt, none},
      {u"--1", std::nullopt, none},
      {u"-", std::nullopt, none},
      {u"+", std::nullopt, none},
      {u".", std::nullopt, none},
      {u"e5", std::nullopt, none},
      {u"inf", std::nullopt, none},
      {u"nan", std::nullopt, none},
      {u"1e999", std::nullopt, none},
      {u"\u0661", std::nullopt, none},
  };
  for (const ReadCase& row : cases) {
    SCOPED_TRACE(utf8FromUtf16(row.text));
    const std::optional<Number> whole = numberFromText(row.text);
    ASSERT_EQ(whole.has_value(), row.whole.has_value());
    if (whole) {
      EXPECT_EQ(*whole, *row.whole);
      EXPECT_EQ(whole->kind(), row.whole->kind());
    }
    EXPECT_EQ(numberAtFront(row.text), row.front);
  }
}

TEST(NumberText, WritesNumbers) {
  EXPECT_EQ(textFromNumber(Number::signed64(INT64_MIN)), u"-9223372036854775808");
  EXPECT_EQ(textFromNumber(Number::unsigned64(UINT64_MAX)), u"18446744073709551615");
  EXPECT_EQ(textFromNumber(Number::boolean(true)), u"1");
  EXPECT_EQ(textFromNumber(Number::real(1)), u"1");
  EXPECT_EQ(textFromNumber(Number::real(0.1)), u"0.1");
  EXPECT_EQ(textFromNumber(Number::real(-1.5e300)), u"-1.5e+300");
  EXPECT_EQ(textFromNumber(Number::real(std::numeric_limits<double>::infinity())), u"inf");
}

RC_GTEST_PROP(NumberText, ReadsTheIntegersThatItWrites, ()) {
  const auto value = *rc::gen::arbitrary<std::int64_t>();
  const std::optional<Number> number = numberFromText(textFromNumber(Number::signed64(value)));
  RC_ASSERT(number.has_value());
  RC_ASSERT(*number == Number::signed64(value));
}

}  // namespace
}  // namespace skerrow::foundation
