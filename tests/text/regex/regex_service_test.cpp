#include "text/regex/regex_service.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <thread>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/text/text_literal.h"

namespace skerrow::text {
namespace {

using foundation::UnitRange;

std::string shown(const Value& value) {
  if (value.isText()) return "'" + foundation::utf8FromUtf16(value.text()) + "'";
  std::string list = "[";
  for (const Value& item : value.items()) list += (list.size() > 1 ? " " : "") + shown(item);
  return list + "]";
}

std::string shown(std::vector<Value> values) { return shown(Value(std::move(values))); }

std::string shown(const Text& text) { return foundation::utf8FromUtf16(text.view()); }

// The name and reason of the exception that `operation` ends in.
template <class Operation>
std::string complaint(Operation&& operation) {
  try {
    operation();
  } catch (const RegexException& exception) {
    return exception.name() + ": " + exception.reason();
  }
  return "none";
}

class RegexServiceTest : public testing::Test {
 protected:
  RegexService regex;
};

struct Case {
  const char16_t* subject;
  const char16_t* pattern;
  const char* expected;
  RegexCall call = {};
};

TEST_F(RegexServiceTest, ListsTheAskedGroupOfEveryMatch) {
  const Case cases[] = {
      {u"a1b22", u"\\d+", "['1' '22']"},
      {u"", u"\\d+", "[]"},
      {u"", u"x*", "['']"},
      {u"ab", u"x*", "['' '' '']"},
      {u"k=v;l=w", u"(\\w)=(\\w)", "['v' 'w']", {.capture = 2}},
      {u"ab", u"(a)|(b)", "['' 'b']", {.capture = 2}},
      {u"x\U0001F600y", u"\\W", "['😀']"},
      {u"\xD800 \xDC00", u"\\s", "[' ']"},
      {u"a\nb", u"^b", "[]"},
      {u"a\nb", u"^b", "['b']", {.options = kMultiline}},
      {u"a\nb", u"a.b", "['a\nb']", {.options = kDotAll}},
      {u"AB", u"b", "['B']", {.options = kCaseInsensitive}},
      {u"ab", u"a b # both", "['ab']", {.options = kComments}},
      {u"don't", u"\\b", "['' '' '' '']"},
      {u"don't", u"\\b", "['' '']", {.options = kUnicodeWordBreaks}},
      {u"aXbXc", u"X", "['X']", {.range = UnitRange{2, 2}}},
      {u"abc", u"^b$", "['b']", {.range = UnitRange{1, 1}}},
      {u"abc", u".", "[]", {.range = UnitRange{3, 0}}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(shown(regex.componentsMatchedByRegex(textOf(each.subject), textOf(each.pattern),
                                                   each.call)),
              each.expected)
        << shown(textOf(each.pattern));
  }
}

TEST_F(RegexServiceTest, SplitsIntoOnePieceMoreThanThereAreMatches) {
  const Case cases[] = {
      {u"a1b22", u"\\d+", "['a' 'b' '']"},
      {u"a,b,,c", u",", "['a' 'b' '' 'c']"},
      {u"abc", u",", "['abc']"},
      {u"", u",", "['']"},
      {u",", u",", "['' '']"},
      {u"ab", u"x*", "['' 'a' 'b' '']"},
      {u"1,2,3,4", u",", "['2' '3']", {.range = UnitRange{2, 3}}},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(shown(regex.componentsSeparatedByRegex(textOf(each.subject), textOf(each.pattern),
                                                     each.call)),
              each.expected)
        << shown(textOf(each.pattern));
  }
}

TEST_F(RegexServiceTest, GivesAllGroupsOfEveryMatchAndOfTheFirst) {
  const Text subject = u"a b"_text;
  const Text pattern = u"(a)|(b)"_text;
  EXPECT_EQ(shown(regex.arrayOfCaptureComponentsMatchedByRegex(subject, pattern)),
            "[['a' 'a' ''] ['b' '' 'b']]");
  EXPECT_EQ(shown(regex.captureComponentsMatchedByRegex(subject, pattern)), "['a' 'a' '']");
  EXPECT_EQ(
      shown(regex.captureComponentsMatchedByRegex(subject, pattern, {.range = UnitRange{1, 1}})),
      "[]");
}

TEST_F(RegexServiceTest, FindsTheRangeAndTextOfAGroup) {
  const Text subject = u"xé12"_text;
  EXPECT_EQ(regex.rangeOfRegex(subject, u"\\d+"_text), (UnitRange{2, 2}));
  EXPECT_EQ(regex.rangeOfRegex(subject, u"(\\d)(\\d)"_text, {.capture = 2}), (UnitRange{3, 1}));
  EXPECT_EQ(regex.rangeOfRegex(subject, u"(z)?x"_text, {.capture = 1}), UnitRange::notFound());
  EXPECT_EQ(regex.rangeOfRegex(subject, u"z"_text), UnitRange::notFound());
  EXPECT_EQ(regex.stringByMatching(subject, u"\\d+"_text), u"12"_text);
  EXPECT_EQ(regex.stringByMatching(subject, u"(z)?x"_text, {.capture = 1}), Text());
  EXPECT_EQ(regex.stringByMatching(subject, u"z"_text), std::nullopt);
}

TEST_F(RegexServiceTest, TellsWhetherAPatternMatchesAnywhereInTheRange) {
  EXPECT_TRUE(regex.isMatchedByRegex(u"abc"_text, u"c"_text));
  EXPECT_FALSE(regex.isMatchedByRegex(u"abc"_text, u"c"_text, {.range = UnitRange{0, 2}}));
  EXPECT_FALSE(regex.isMatchedByRegex(Text(), u"c"_text));
  EXPECT_TRUE(regex.isMatchedByRegex(Text(), u"^$"_text));
}

TEST_F(RegexServiceTest, CountsTheGroupsOfAPattern) {
  EXPECT_EQ(regex.captureCount(u"a"_text), 0);
  EXPECT_EQ(regex.captureCount(u"(a)((b)(?:c))"_text), 3);
  EXPECT_EQ(regex.captureCount(u"# (\n(a)"_text, kComments), 1);
}

TEST_F(RegexServiceTest, ReplacesEveryMatchInTheRangeAndKeepsWhatLiesOutside) {
  struct Replacement {
    const char16_t* subject;
    const char16_t* pattern;
    const char16_t* replacement;
    const char* expected;
    std::size_t count;
    RegexCall call = {};
  };
  const Replacement cases[] = {
      {u"ab-cd", u"(\\w+)-(\\w+)", u"$2+$1", "cd+ab", 1},
      {u"aaa", u"a", u"", "", 3},
      {u"abc", u"z", u"!", "abc", 0},
      {u"", u"x*", u"!", "!", 1},
      {u"ab", u"x*", u"-", "-a-b-", 3},
      {u"a.a.a", u"\\.", u"!", "a!a.a", 1, {.range = UnitRange{0, 2}}},
      {u"a.a.a", u"\\.", u"!", "a.a!a", 1, {.range = UnitRange{2, 3}}},
      {u"x", u"(y)?x", u"[$1]", "[]", 1},
      {u"\U0001F600", u".", u"$0$0", "😀😀", 1},
  };
  for (const Replacement& each : cases) {
    Text text = textOf(each.subject);
    EXPECT_EQ(shown(regex.stringByReplacingOccurrencesOfRegex(text, textOf(each.pattern),
                                                              textOf(each.replacement), each.call)),
              each.expected);
    EXPECT_EQ(regex.replaceOccurrencesOfRegex(text, textOf(each.pattern), textOf(each.replacement),
                                              each.call),
              each.count);
    EXPECT_EQ(shown(text), each.expected);
  }
}

TEST_F(RegexServiceTest, HandsBackTheSameTextWhenNothingIsReplaced) {
  const Text subject = u"nothing here"_text;
  const Text result = regex.stringByReplacingOccurrencesOfRegex(subject, u"z"_text, u"!"_text);
  EXPECT_EQ(result.view().data(), subject.view().data());
}

TEST_F(RegexServiceTest, ReplacesByWhatAFunctionMakesOfEachMatch) {
  const auto doubled = [](RegexMatch& match) {
    if (match.string(1) == u"2"_text) match.stop();
    return Text(std::u16string(match.string().view()) + u"$1");
  };
  EXPECT_EQ(
      shown(regex.stringByReplacingOccurrencesOfRegex(u"a1b2c3"_text, u"[a-z](\\d)"_text, doubled)),
      "a1$1b2$1c3");
}

TEST_F(RegexServiceTest, EnumeratesMatchesUntilTheFunctionStops) {
  std::vector<std::string> seen;
  regex.enumerateStringsMatchedByRegex(u"a1b2c3"_text, u"([a-z])\\d"_text, [&](RegexMatch& match) {
    EXPECT_EQ(match.captureCount(), 1);
    seen.push_back(shown(match.string(1)) + std::to_string(match.range().location));
    if (seen.size() == 2) match.stop();
  });
  EXPECT_EQ(seen, (std::vector<std::string>{"a0", "b2"}));
}

TEST_F(RegexServiceTest, EnumeratesThePiecesBetweenMatches) {
  std::vector<std::string> seen;
  const auto collect = [&](RegexMatch& piece) {
    EXPECT_EQ(piece.captureCount(), 0);
    seen.push_back(shown(piece.string()));
    if (seen.back() == "stop") piece.stop();
  };
  regex.enumerateStringsSeparatedByRegex(u"a,,b"_text, u",()"_text, collect);
  EXPECT_EQ(seen, (std::vector<std::string>{"a", "", "b"}));
  seen.clear();
  regex.enumerateStringsSeparatedByRegex(u"a,stop,b"_text, u","_text, collect);
  EXPECT_EQ(seen, (std::vector<std::string>{"a", "stop"}));
}

TEST_F(RegexServiceTest, AFunctionMayUseTheSamePatternItself) {
  const Text pattern = u"\\w"_text;
  std::string inner;
  regex.enumerateStringsMatchedByRegex(u"ab"_text, pattern, [&](RegexMatch& match) {
    inner += shown(regex.componentsMatchedByRegex(match.string(), pattern));
    regex.clearStringCache();
  });
  EXPECT_EQ(inner, "['a']['b']");
}

TEST_F(RegexServiceTest, MakesRecordsOfKeysAndGroups) {
  const CaptureKey keys[] = {{u"name", 1}, {u"value", 2}};
  const Text subject = u"k=v;l="_text;
  const Text pattern = u"(\\w)=(\\w)?"_text;
  const std::optional<Record> first = regex.dictionaryByMatchingRegex(subject, pattern, keys);
  ASSERT_TRUE(first);
  EXPECT_EQ(*first, (Record{{u"name", u"k"}, {u"value", u"v"}}));
  const std::vector<Value> all = regex.arrayOfDictionariesByMatchingRegex(subject, pattern, keys);
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all[1].record(), (Record{{u"name", u"l"}, {u"value", u""}}));
  EXPECT_EQ(regex.dictionaryByMatchingRegex(u"none"_text, pattern, keys), std::nullopt);
}

TEST_F(RegexServiceTest, TellsWhatIsWrongWithTheArguments) {
  const Text text = u"abc"_text;
  const Text group = u"(b)"_text;
  const CaptureKey keyMissing[] = {{u"k", 0}, {Value(), 1}};
  const CaptureKey groupMissing[] = {{u"k", 2}};
  const struct {
    std::function<void()> operation;
    const char* reason;
  } cases[] = {
      {[&] { regex.isMatchedByRegex(text, nullptr); }, "The regular expression argument is NULL."},
      {[&] { regex.isRegexValid(nullptr); }, "The regular expression argument is NULL."},
      {[&] { regex.captureCount(nullptr); }, "The regular expression argument is NULL."},
      {[&] { regex.componentsMatchedByRegex(nullptr, group); },
       "The match string argument is NULL."},
      {[&] { regex.stringByReplacingOccurrencesOfRegex(text, group, TextArgument(nullptr)); },
       "The replacement string argument is NULL."},
      {[&] { regex.dictionaryByMatchingRegex(text, group, {}); }, "The keys argument is NULL."},
      {[&] { regex.rangeOfRegex(text, group, {.capture = 2}); },
       "The capture argument is not valid."},
      {[&] { regex.componentsMatchedByRegex(text, group, {.capture = -1}); },
       "The capture argument is not valid."},
      {[&] { regex.dictionaryByMatchingRegex(text, group, keyMissing); },
       "The capture key (key 2 of 2) is NULL."},
      {[&] { regex.arrayOfDictionariesByMatchingRegex(text, group, groupMissing); },
       "The capture argument 2 (capture 1 of 1) for key 'k' is not valid."},
      {[&] {
         regex.isMatchedByRegex(text, group, {.range = UnitRange{2, 2}});
       },
       "Range or index out of bounds."},
      {[&] { regex.isMatchedByRegex(text, group, {.range = UnitRange::notFound()}); },
       "Range or index out of bounds."},
      {[&] {
         regex.enumerateStringsMatchedByRegex(text, group, [](RegexMatch&) {},
                                              {.enumerationOptions = 1});
       },
       "The RKLRegexEnumerationOptions argument is not valid."},
      {[&] {
         regex.enumerateStringsMatchedByRegex(text, group,
                                              [](RegexMatch& match) { (void)match.string(2); });
       },
       "The capture argument is not valid."},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(complaint(each.operation), std::string("InvalidArgumentException: ") + each.reason);
  }
}

TEST(RegexServiceLimits, RefuseTextsThatAreTooLong) {
  RegexService regex({}, {.longestText = 4});
  const Text four = u"aaaa"_text;
  const Text five = u"aaaaa"_text;
  const auto replaced = [&](const Text& subject, const char16_t* replacement) {
    return complaint([&] {
      regex.stringByReplacingOccurrencesOfRegex(subject, u"aa"_text, textOf(replacement));
    });
  };
  EXPECT_EQ(complaint([&] { regex.isMatchedByRegex(five, u"a"_text); }),
            "InvalidArgumentException: String length exceeds INT_MAX.");
  EXPECT_EQ(replaced(four, u"12345"),
            "InvalidArgumentException: Replacement string length exceeds INT_MAX.");
  EXPECT_EQ(replaced(four, u"123"),
            "InvalidArgumentException: Replaced string length exceeds INT_MAX.");
  EXPECT_EQ(replaced(four, u"12"), "none");
}

TEST_F(RegexServiceTest, ThrowsForAPatternThatDoesNotCompile) {
  const auto compile = [&](const char16_t* pattern) {
    return complaint([&] { regex.isMatchedByRegex(u"a"_text, textOf(pattern)); });
  };
  EXPECT_EQ(compile(u"a(b"),
            "RKLICURegexException: ICU regular expression error #66310, "
            "U_REGEX_MISMATCHED_PAREN.");
  EXPECT_EQ(compile(u""),
            "RKLICURegexException: ICU regular expression error #1, U_ILLEGAL_ARGUMENT_ERROR.");
  EXPECT_EQ(compile(u"a{3,2}"),
            "RKLICURegexException: ICU regular expression error #66313, U_REGEX_MAX_LT_MIN.");
}

TEST_F(RegexServiceTest, StoresTheErrorWhereThereIsAPlaceForIt) {
  std::optional<RegexError> place;
  const auto result = storingError(place, [&] {
    return regex.componentsMatchedByRegex(u"some"_text, u"x\ny["_text,
                                          {.options = kMultiline, .range = UnitRange{1, 2}});
  });
  EXPECT_EQ(result, std::nullopt);
  ASSERT_TRUE(place);
  EXPECT_EQ(RegexError::kDomain, u"RKLICURegexErrorDomain");
  EXPECT_EQ(foundation::utf8FromUtf16(place->localizedDescription()),
            "There was an error compiling the regular expression.");
  EXPECT_EQ(foundation::utf8FromUtf16(place->localizedFailureReason()),
            "The error U_REGEX_MISSING_CLOSE_BRACKET occurred at line 2, column 2: "
            "x\ny[<<HERE>>");
  const Record details = place->details();
  EXPECT_EQ(*details.find(u"RKLICURegexErrorCode"), Value(Number::signed32(66319)));
  EXPECT_EQ(*details.find(u"RKLICURegexErrorName"), Value(u"U_REGEX_MISSING_CLOSE_BRACKET"));
  EXPECT_EQ(*details.find(u"RKLICURegexLine"), Value(Number::signed32(2)));
  EXPECT_EQ(*details.find(u"RKLICURegexOffset"), Value(Number::signed32(2)));
  EXPECT_EQ(*details.find(u"RKLICURegexPreContext"), Value(u"x\ny["));
  EXPECT_EQ(*details.find(u"RKLICURegexPostContext"), Value(u""));
  EXPECT_EQ(*details.find(u"RKLICURegexRegex"), Value(u"x\ny["));
  EXPECT_EQ(*details.find(u"RKLICURegexRegexOptions"), Value(Number::signed32(8)));
  EXPECT_EQ(*details.find(u"RKLICURegexSubjectString"), Value(u"some"));
  EXPECT_EQ(*details.find(u"RKLICURegexSubjectRange"),
            Value(std::vector<Value>{Number::signed32(1), Number::signed32(2)}));
  EXPECT_EQ(details.find(u"RKLICURegexReplacementString"), nullptr);
}

TEST_F(RegexServiceTest, StoresWhatAReplacementAndAnEnumerationWorkedWith) {
  std::optional<RegexError> place;
  storingError(place, [&] {
    return regex.stringByReplacingOccurrencesOfRegex(u"a"_text, u"("_text, u"$1"_text);
  });
  ASSERT_TRUE(place);
  EXPECT_EQ(*place->details().find(u"RKLICURegexReplacementString"), Value(u"$1"));
  storingError(place, [&] {
    regex.enumerateStringsMatchedByRegex(u"a"_text, u"("_text, [](RegexMatch&) {});
    return true;
  });
  ASSERT_TRUE(place);
  EXPECT_EQ(*place->details().find(u"RKLICURegexEnumerationOptions"), Value(Number::signed32(0)));
}

TEST_F(RegexServiceTest, ShowsAFewUnitsOnEitherSideOfAFaultInALongPattern) {
  std::optional<RegexError> error;
  const std::u16string before(100, u'a');
  EXPECT_FALSE(regex.isRegexValid(Text(before + u"[z-a]" + before), kNoRegexOptions, &error));
  ASSERT_TRUE(error && error->fault.position);
  const foundation::RegexFault::Position& position = *error->fault.position;
  EXPECT_EQ(position.line, 1);
  EXPECT_EQ(position.offset, 104);
  EXPECT_TRUE(position.before.ends_with(u"aaaa[z-"));
  EXPECT_TRUE(position.after.starts_with(u"a]aaaa"));
  EXPECT_LE(position.before.size(), 16U);
  EXPECT_LE(position.after.size(), 16U);
}

TEST_F(RegexServiceTest, HasNoPositionForErrorsOutsideThePattern) {
  std::optional<RegexError> error;
  EXPECT_FALSE(regex.isRegexValid(u"a"_text, 1U << 20U, &error));
  ASSERT_TRUE(error);
  EXPECT_EQ(foundation::utf8FromUtf16(error->localizedFailureReason()),
            "The error U_REGEX_INVALID_FLAG occurred.");
  EXPECT_EQ(error->details().find(u"RKLICURegexLine"), nullptr);
}

TEST_F(RegexServiceTest, SaysWhetherAPatternIsValidWithItsOptions) {
  std::optional<RegexError> error;
  EXPECT_TRUE(regex.isRegexValid(u"a(b)"_text, kNoRegexOptions, &error));
  EXPECT_FALSE(error);
  EXPECT_FALSE(regex.isRegexValid(u"a(b"_text));
  EXPECT_FALSE(regex.isRegexValid(Text()));
  EXPECT_FALSE(regex.isRegexValid(u"a # ("_text));
  EXPECT_TRUE(regex.isRegexValid(u"a # ("_text, kComments));
}

TEST_F(RegexServiceTest, SeveralThreadsMatchAtOnce) {
  const Text pattern = u"(\\w)(\\d)"_text;
  std::vector<std::thread> threads;
  std::vector<std::string> results(4);
  for (std::size_t i = 0; i < results.size(); ++i) {
    threads.emplace_back([&, i] {
      for (int round = 0; round < 300; ++round) {
        if (round % 50 == 0) regex.clearStringCache();
        if (round % 70 == 0) regex.flushCachedRegexData();
        regex.captureCount(Text(u"x" + std::u16string(static_cast<std::size_t>(round), u'y')));
        results[i] =
            shown(regex.stringByReplacingOccurrencesOfRegex(u"a1 b2"_text, pattern, u"$2$1"_text));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(results, std::vector<std::string>(4, "1a 2b"));
}

}  // namespace
}  // namespace skerrow::text
