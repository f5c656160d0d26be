#include "foundation/regex/compiled_regex.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace skerrow::foundation {
namespace {

using Matches = std::vector<std::u16string>;

Matches matchesOf(std::u16string_view pattern, std::u16string_view subject, UnitRange range) {
  MatchMonitor monitor;
  CompiledRegex regex = CompiledRegex::compile(pattern, 0);
  regex.setSubject(subject, range);
  Matches matches;
  while (regex.findNext(monitor)) matches.emplace_back(regex.group(0).of(subject));
  return matches;
}

Matches matchesOf(std::u16string_view pattern, std::u16string_view subject) {
  return matchesOf(pattern, subject, UnitRange::whole(subject));
}

TEST(CompiledRegex, FindsWhatLiesInTheRange) {
  EXPECT_EQ(matchesOf(u"^.", u"abc", {1, 2}), (Matches{u"b"}));
  EXPECT_EQ(matchesOf(u".$", u"abc", {0, 2}), (Matches{u"b"}));
  EXPECT_EQ(matchesOf(u"a?", u"", {0, 0}), (Matches{u""}));
}

TEST(CompiledRegex, ARangeMayBeginInsideASurrogatePair) {
  constexpr std::u16string_view kSubject = u"😀ab-]-";
  EXPECT_EQ(matchesOf(u"[^-]*x", kSubject, {1, 6}), Matches{});
  EXPECT_EQ(matchesOf(u"[^-]*-", kSubject, {1, 6}), (Matches{u"\xDE00"
                                                             u"ab-",
                                                             u"]-"}));
  EXPECT_EQ(matchesOf(u".", kSubject, {1, 1}), (Matches{u"\xDE00"}));
  EXPECT_EQ(matchesOf(u"(?<=.)a", kSubject, {1, 6}), (Matches{u"a"}));
  EXPECT_EQ(matchesOf(u"(?<=.)b", kSubject, {2, 3}), (Matches{u"b"}));
}

TEST(CompiledRegex, ARangeMayEndInsideASurrogatePair) {
  EXPECT_EQ(matchesOf(u".*", u"ab😀", {0, 3}), (Matches{u"ab\xD83D", u""}));
  EXPECT_EQ(matchesOf(u"[^a]*x", u"ab😀x", {0, 3}), Matches{});
}

TEST(CompiledRegex, RestartsInsideAndOutsideAPair) {
  constexpr std::u16string_view kSubject = u"a😀b";
  MatchMonitor monitor;
  CompiledRegex regex = CompiledRegex::compile(u".+", 0);
  regex.setSubject(kSubject, {0, 4});
  for (const std::size_t start : {2U, 1U, 0U, 3U, 2U}) {
    regex.restart({start, 4 - start});
    ASSERT_TRUE(regex.findNext(monitor));
    EXPECT_EQ(regex.group(0).location, start);
    EXPECT_EQ(regex.group(0).length, 4 - start);
  }
}

// However the half is written, it is no part of a whole character, and looking
// for what follows it ends.
TEST(CompiledRegex, HalfAPairInAPatternMatchesNoHalfOfAPair) {
  for (const std::u16string_view half :
       {u"a\xD83D", u"a\\ud83d", u"a\\uD83D", u"a\\U0000d83d", u"a\\x{d83d}", u"a\\x{00D83D}"}) {
    const std::u16string pattern(half);
    EXPECT_EQ(matchesOf(pattern, u"a😀bbb"), Matches{});
    EXPECT_EQ(matchesOf(pattern + u"[^b]*x", u"a😀bbb"), Matches{});
    EXPECT_EQ(matchesOf(pattern + u".*x", u"a😀bbb"), Matches{});
    EXPECT_EQ(matchesOf(pattern + u"(?<=.).*x", u"a😀bbb"), Matches{});
    EXPECT_EQ(matchesOf(pattern + u"b+",
                        u"a\xD83D"
                        u"bb"),
              (Matches{u"a\xD83D"
                       u"bb"}));
    EXPECT_EQ(matchesOf(pattern, u""), Matches{});
    EXPECT_EQ(matchesOf(pattern, u"a\xD83D"), (Matches{u"a\xD83D"}));
    EXPECT_EQ(matchesOf(pattern, u"😀a\xD83D", {1, 3}), (Matches{u"a\xD83D"}));
    EXPECT_EQ(matchesOf(pattern + u"|n\\b\\b", u"n"), (Matches{u"n"}));
    for (const std::u16string_view before : {u"[]]?", u"[^]]?", u"\\Q[\\E?", u"(?#[)", u"\\c[?"}) {
      EXPECT_EQ(matchesOf(std::u16string(before) + pattern + u".*x", u"a😀bbb"), Matches{});
    }
  }
}

TEST(CompiledRegex, HalvesInSetsAreCharacters) {
  EXPECT_EQ(matchesOf(u"[\\ud800-\\udbff]\\b\\B|\\b\\b$", u"😀n"), (Matches{u""}));
  EXPECT_EQ(matchesOf(u"[\\ud800-\\udfff]",
                      u"a\xD83D"
                      u"😀\xDE00"),
            (Matches{u"\xD83D", u"\xDE00"}));
}

TEST(CompiledRegex, APairWrittenAsTwoEscapesIsOneCharacter) {
  EXPECT_EQ(matchesOf(u"a\\ud83d\\ude00b", u"a😀b"), (Matches{u"a😀b"}));
  EXPECT_EQ(matchesOf(u"[\\ud83d\\ude00]+", u"a😀😀b"), (Matches{u"😀😀"}));
}

TEST(CompiledRegex, CloneFindsTheSame) {
  constexpr std::u16string_view kSubject = u"a😀a\xD83D";
  MatchMonitor monitor;
  const CompiledRegex original = CompiledRegex::compile(u"a\\ud83d(?!.)", 0);
  CompiledRegex regex = original.clone();
  regex.setSubject(kSubject, UnitRange::whole(kSubject));
  ASSERT_TRUE(regex.findNext(monitor));
  EXPECT_EQ(regex.group(0).location, 3U);
  EXPECT_FALSE(regex.findNext(monitor));
}

}  // namespace
}  // namespace skerrow::foundation
