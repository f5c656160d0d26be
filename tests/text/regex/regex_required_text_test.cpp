#include "text/regex/regex_required_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"
#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

using foundation::UnitRange;

TEST(RegexRequiredText, IsTheLongestRunOfLiteralsThatMustOccur) {
  const struct {
    const char16_t* pattern;
    const char* expected;
  } cases[] = {
      {u"abc", "abc"},
      {u"\\w+@\\w+\\.com", ".com"},
      {u"(\\w+)-(\\w+)", "-"},
      {u"  +", "  "},
      {u"ab?c", "a"},
      {u"abc*", "ab"},
      {u"ab+cde", "cde"},
      {u"ab+?c", "ab"},
      {u"ab{2}", "a"},
      {u"a{0,3}?b", "b"},
      {u"^<[^>]>$", "<"},
      {u"[[a-z]&&[^x]]\\]end", "]end"},
      {u"(?m)^ +", " "},
      {u"(?:ab|cd)ef", "ef"},
      {u"(?<=x)ab(?!c)", "ab"},
      {u"x\U0001F600?", "x"},
      {u"\U0001F600", "😀"},
      {u"\\b[a-z]+\\d+\\b", ""},
      {u"", ""},
      {u"a*", ""},
      {u"(abc)", ""},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(foundation::utf8FromUtf16(requiredText(each.pattern, kNoRegexOptions)), each.expected)
        << foundation::utf8FromUtf16(each.pattern);
  }
}

TEST(RegexRequiredText, IsEmptyWhereThePatternIsInDoubt) {
  for (const std::u16string_view pattern :
       {u"ab|cd", u"(?i)ab", u"(?x) a b", u"a(?#note)b", u"\\Qab\\E", u"\\x41bc", u"\\u0041bc",
        u"(a)bc\\1", u"\\p{L}bc", u"[]a]bc", u"(?i:a)bc", u"\\tbc"}) {
    EXPECT_EQ(requiredText(pattern, kNoRegexOptions), u"") << foundation::utf8FromUtf16(pattern);
  }
  EXPECT_EQ(requiredText(u"abc", kCaseInsensitive), u"");
  EXPECT_EQ(requiredText(u"a b", kComments), u"");
  EXPECT_EQ(requiredText(u"abc", kMultiline | kDotAll | kUnicodeWordBreaks), u"abc");
  EXPECT_EQ(requiredText(std::u16string(100'000, u'[') + std::u16string(100'000, u']') + u"a",
                         kNoRegexOptions),
            u"");
}

// Some patterns made by chance need more steps than anybody has time for.
constexpr std::chrono::milliseconds kShort(5);

// Every match in a range, by the engine alone; nothing where it takes too long.
std::optional<std::vector<Value>> matchesOfTheEngine(const Text& pattern, RegexOptions options,
                                                     const Text& subject, UnitRange range) {
  std::vector<Value> matches;
  foundation::MatchMonitor monitor(kShort);
  try {
    auto regex = foundation::CompiledRegex::compile(pattern.view(), options);
    regex.setSubject(subject.view(), range);
    while (regex.findNext(monitor)) {
      matches.emplace_back(Text(regex.group(0).of(subject.view())));
    }
  } catch (const foundation::RegexFault&) {
    return std::nullopt;
  }
  return matches;
}

std::u16string concatenated(const std::vector<std::u16string>& parts) {
  std::u16string text;
  for (const std::u16string& part : parts) text += part;
  return text;
}

RC_GTEST_PROP(RegexRequiredText, NeverChangesWhatTheEngineFinds, ()) {
  using Parts = std::vector<std::u16string>;
  const auto patternPart = rc::gen::elementOf(
      Parts{u"a",     u"b",       u"-",     u"\\-",  u"ab",     u"b-",      u"?",      u"*",
            u"+",     u"{2}",     u"{0,1}", u"+?",   u".",      u"^",       u"$",      u"\\b",
            u"\\w",   u"\\d",     u"[ab]",  u"[^a]", u"[[a]-]", u"[\\]a]",  u"(a)",    u"(?:b|-)",
            u"(?=a)", u"(?<=b)",  u"(?!a)", u"(?m)", u"(?i)",   u"(",       u")",      u"|",
            u"\\1",   u"\\Q-\\E", u"😀",     u"#",    u" ",      u"\\ud83d", u"a\xD83D"});
  const auto subjectPart =
      rc::gen::elementOf(Parts{u"a", u"A", u"b", u"-", u"ab", u"b-", u"😀", u"1", u"\n", u" ", u"#",
                               u"]", u"\xD83D", u"\xDE00"});
  const auto patterns = *rc::gen::container<std::vector<Parts>>(
      rc::gen::resize(8, rc::gen::container<Parts>(patternPart)));
  const Text subject(concatenated(*rc::gen::container<Parts>(subjectPart)));
  const auto begin = *rc::gen::inRange<std::size_t>(0, subject.unitCount() + 1);
  const UnitRange range{begin, *rc::gen::inRange<std::size_t>(0, subject.unitCount() - begin + 1)};
  RegexService service;
  for (const Parts& parts : patterns) {
    const Text pattern(concatenated(parts));
    for (const RegexOptions options : {kNoRegexOptions, kMultiline, kComments, kCaseInsensitive}) {
      const auto expected = matchesOfTheEngine(pattern, options, subject, range);
      if (!expected) continue;
      RC_ASSERT(service.componentsMatchedByRegex(
                    subject, pattern, {.options = options, .range = range}) == *expected);
    }
  }
}

}  // namespace
}  // namespace skerrow::text
