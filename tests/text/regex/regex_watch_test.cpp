#include <gtest/gtest.h>

#include <chrono>
#include <stop_token>
#include <string>
#include <thread>

#include "tests/support/stopped_work.h"
#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

// Takes more steps than anybody has time for.
const Text& catastrophicPattern() {
  static const Text pattern = u"(a+)+[bc]"_text;
  return pattern;
}
const Text& catastrophicSubject() {
  static const Text subject(std::u16string(64, u'a'));
  return subject;
}

TEST(RegexWatch, ACatastrophicMatchEndsWhenNobodyWaitsAnyMoreAndThePatternStaysUsable) {
  RegexService regex;
  std::stop_source source;
  const work::StopScope scope(source.get_token());
  std::jthread stopping([&source] {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));  // into the match, most times
    source.request_stop();
  });
  EXPECT_THROW(regex.componentsMatchedByRegex(catastrophicSubject(), catastrophicPattern(), {}),
               work::Stopped);
  const work::UndividedStep undisturbed;
  EXPECT_TRUE(regex.isMatchedByRegex(u"aab"_text, catastrophicPattern()));
}

TEST(RegexWatch, ATimeLimitIsAFailureWithItsOwnName) {
  RegexService regex;
  std::optional<RegexError> error;
  storingError(error, [&] {
    return regex.stringByReplacingOccurrencesOfRegex(
        Text(u"ab" + std::u16string(catastrophicSubject().view())), catastrophicPattern(),
        u"-"_text, {.timeLimit = std::chrono::milliseconds(5)});
  });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->fault.name, "U_REGEX_TIME_OUT");
  EXPECT_EQ(error->localizedDescription(), u"There was an error matching the regular expression.");
  EXPECT_EQ(*error->details().find(u"RKLICURegexReplacedCount"), Value(Number::signed32(1)));
  EXPECT_EQ(*error->details().find(u"RKLICURegexReplacedString"), Value(u"-"));
}

TEST(RegexWatch, ASearchThatOnlyPassesUnitsIsStoppedToo) {
  RegexService regex;
  const Text subject(std::u16string(1 << 20, u'a'));
  {
    const tests::StoppedWork stopped;
    EXPECT_THROW(regex.isMatchedByRegex(subject, u"[b]"_text, {}), work::Stopped);
  }
  EXPECT_FALSE(regex.isMatchedByRegex(subject, u"[b]"_text, {}));
}

TEST(RegexWatch, BacktrackingBeyondItsMemoryIsAFailureAndLeavesNothingBehind) {
  RegexService regex;
  const Text subject(std::u16string(8 << 20, u'a'));
  const Text pattern = u"(?:a|b)*[c]"_text;
  for (int round = 0; round < 2; ++round) {
    std::optional<RegexError> error;
    storingError(error, [&] { return regex.isMatchedByRegex(subject, pattern); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->fault.name, "U_REGEX_STACK_OVERFLOW");
  }
  EXPECT_TRUE(regex.isMatchedByRegex(u"abc"_text, pattern));
}

TEST(RegexWatch, LongTextsThatNeedMuchBacktrackingStillMatch) {
  RegexService regex;
  const Text subject(std::u16string(1 << 20, u'a') + u"c");
  EXPECT_EQ(regex.rangeOfRegex(subject, u"(?:a|b)*[c]"_text).length, subject.unitCount());
}

}  // namespace
}  // namespace skerrow::text
