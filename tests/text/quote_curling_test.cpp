#include "text/quote_curling.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

// The replacements that define curling, one after another, by the service.
class StepByStep {
 public:
  std::u16string curled(std::u16string_view given, int decadeRuns) {
    Text text(given);
    for (int run = 0; run < decadeRuns; ++run) replace(text, u"'(\\d{2}'?s)", u"’$1");
    replace(text, u"(\\s|>)'", u"$1‘");
    replace(text, u"^'", u"‘");
    replace(text, u"'", u"’");
    replace(text, u"(\\s|>)\"", u"$1“");
    replace(text, u"^\"", u"“");
    replace(text, u"\"", u"”");
    return std::u16string(text.view());
  }

 private:
  void replace(Text& text, const char16_t* pattern, const char16_t* replacement) {
    text = service_.stringByReplacingOccurrencesOfRegex(text, textOf(pattern), textOf(replacement));
  }

  RegexService service_;
};

std::u16string curled(std::u16string text) {
  curlQuotes(text);
  return text;
}

std::u16string straightened(std::u16string text) {
  straightenQuotes(text);
  return text;
}

TEST(QuoteCurling, DoesInOnePassWhatTheReplacementsDoInTurn) {
  constexpr std::u16string_view kUnits = u"''''\"\"900s> \n\t٣a\xD835\xDFCE\xD800\u00A0-";
  std::mt19937 random(7);
  std::uniform_int_distribution<std::size_t> unit(0, kUnits.size() - 1);
  std::uniform_int_distribution<std::size_t> length(0, 24);
  StepByStep stepByStep;
  for (int round = 0; round < 5'000; ++round) {
    std::u16string text;
    for (std::size_t left = length(random); left > 0; --left) text += kUnits[unit(random)];
    const std::u16string actual = curled(text);
    ASSERT_EQ(actual, stepByStep.curled(text, 1)) << foundation::utf8FromUtf16(text);
    ASSERT_EQ(actual, stepByStep.curled(text, 2)) << foundation::utf8FromUtf16(text);
  }
}

TEST(QuoteCurling, OpensAfterTheWhiteSpaceThatPatternsKnow) {
  std::u16string text;
  for (char32_t unit = 1; unit < 0xD800; ++unit) {
    text += static_cast<char16_t>(unit);
    text += unit % 2 == 0 ? u"'a" : u"\"a";
  }
  EXPECT_TRUE(curled(text) == StepByStep().curled(text, 1));
}

TEST(QuoteCurling, KnowsTheDigitsThatPatternsKnow) {
  std::u16string text;
  for (char32_t unit = 1; unit < 0xD800; ++unit) {
    text += u" '";
    text.append(2, static_cast<char16_t>(unit));
    text += u's';
  }
  EXPECT_TRUE(curled(text) == StepByStep().curled(text, 1));
}

TEST(QuoteCurling, StraightensTheFourQuotesOnly) {
  EXPECT_EQ(straightened(u"‘a’ “b” „c‟ ‚d‛ '\""), u"'a' \"b\" „c‟ ‚d‛ '\"");
  EXPECT_EQ(straightened(u""), u"");
}

TEST(QuoteCurling, LosesNothingThatStraighteningBringsBack) {
  const std::u16string text = u"'Tis \"so\" in the '90s, isn't it?";
  EXPECT_EQ(straightened(curled(text)), text);
}

}  // namespace
}  // namespace skerrow::text
