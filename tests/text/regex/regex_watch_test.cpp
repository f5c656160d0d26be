#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

using foundation::MatchStopped;
using foundation::MatchWatch;

// Takes more steps than anybody has time for.
const Text& catastrophicPattern() {
  static const Text pattern = u"(a+)+[bc]"_text;
  return pattern;
}
const Text& catastrophicSubject() {
  static const Text subject(std::u16string(64, u'a'));
  return subject;
}

TEST(RegexWatch, AFlagEndsACatastrophicMatch) {
  RegexService regex;
  std::atomic<bool> flag = false;
  std::atomic<bool> isAsked = false;
  const MatchWatch watch{.stopFlag = &flag, .isStopped = [&] {
                           isAsked = true;
                           isAsked.notify_one();
                           return false;
                         }};
  std::thread setter([&] {
    isAsked.wait(false);
    flag = true;
  });
  EXPECT_THROW(
      regex.isMatchedByRegex(catastrophicSubject(), catastrophicPattern(), {.watch = &watch}),
      MatchStopped);
  isAsked = true;  // in case nobody asked
  isAsked.notify_one();
  setter.join();
}

TEST(RegexWatch, AFunctionEndsACatastrophicMatchAndThePatternStaysUsable) {
  RegexService regex;
  int asked = 0;
  const MatchWatch watch{.isStopped = [&] { return ++asked == 3; }};
  EXPECT_THROW(regex.componentsMatchedByRegex(catastrophicSubject(), catastrophicPattern(),
                                              {.watch = &watch}),
               MatchStopped);
  EXPECT_EQ(asked, 3);
  EXPECT_TRUE(regex.isMatchedByRegex(u"aab"_text, catastrophicPattern()));
}

TEST(RegexWatch, WhatTheFunctionThrowsLeavesTheOperation) {
  RegexService regex;
  const MatchWatch watch{.isStopped = []() -> bool { throw std::domain_error("caller gone"); }};
  EXPECT_THROW(
      regex.isMatchedByRegex(catastrophicSubject(), catastrophicPattern(), {.watch = &watch}),
      std::domain_error);
}

TEST(RegexWatch, ATimeLimitIsAFailureWithItsOwnName) {
  RegexService regex;
  const MatchWatch watch{.timeLimit = std::chrono::milliseconds(5)};
  std::optional<RegexError> error;
  storingError(error, [&] {
    return regex.stringByReplacingOccurrencesOfRegex(
        Text(u"ab" + std::u16string(catastrophicSubject().view())), catastrophicPattern(),
        u"-"_text, {.watch = &watch});
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
  std::atomic<bool> flag = true;
  const MatchWatch stopped{.stopFlag = &flag};
  EXPECT_THROW(regex.isMatchedByRegex(subject, u"[b]"_text, {.watch = &stopped}), MatchStopped);
  int asked = 0;
  const MatchWatch counted{.isStopped = [&] { return ++asked == 2; }};
  EXPECT_THROW(regex.isMatchedByRegex(subject, u"[b]"_text, {.watch = &counted}), MatchStopped);
  flag = false;
  EXPECT_FALSE(regex.isMatchedByRegex(subject, u"[b]"_text, {.watch = &stopped}));
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
