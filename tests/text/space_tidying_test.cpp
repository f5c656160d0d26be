#include "text/space_tidying.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/text/text_literal.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

using Change = void (*)(std::u16string&);

std::u16string changed(std::u16string text, Change change) {
  change(text);
  return text;
}

// A change and the patterns that define it, each with what replaces it.
struct Definition {
  Change change;
  std::initializer_list<std::pair<const char16_t*, const char16_t*>> patterns;
};

const Definition kDefinitions[] = {
    {removeSpacesAtLineEdges, {{u"(?m)^ +", u""}, {u"(?m) +$", u""}}},
    {collapseSpaceRuns, {{u"  +", u" "}}},
    {removeSpacesAroundDashes, {{u" *— *", u"—"}}},
};

TEST(SpaceTidying, DoesWhatItsPatternsDo) {
  constexpr std::u16string_view kUnits = u"      ——\n\r\n\v\f\u0085\u2028\u2029\tab\u00A0\xD800";
  std::mt19937 random(11);
  std::uniform_int_distribution<std::size_t> unit(0, kUnits.size() - 1);
  std::uniform_int_distribution<std::size_t> length(0, 24);
  RegexService service;
  for (int round = 0; round < 20'000; ++round) {
    std::u16string given;
    for (std::size_t left = length(random); left > 0; --left) given += kUnits[unit(random)];
    for (const Definition& definition : kDefinitions) {
      Text expected(given);
      for (const auto& [pattern, replacement] : definition.patterns) {
        expected = service.stringByReplacingOccurrencesOfRegex(expected, textOf(pattern),
                                                               textOf(replacement));
      }
      ASSERT_EQ(changed(given, definition.change), expected.view())
          << foundation::utf8FromUtf16(given);
    }
  }
}

// A pattern would look at the rest of the run once for every space in it.
TEST(SpaceTidying, TakesLongRunsInItsStride) {
  const std::u16string run(8'000'000, u' ');
  EXPECT_EQ(changed(u"a" + run + u"b", removeSpacesAtLineEdges).size(), run.size() + 2);
  EXPECT_EQ(changed(u"a" + run + u"b", removeSpacesAroundDashes).size(), run.size() + 2);
  EXPECT_EQ(changed(u"a" + run + u"b", collapseSpaceRuns), u"a b");
  EXPECT_EQ(changed(run + u"\n" + run, removeSpacesAtLineEdges), u"\n");
  EXPECT_EQ(changed(run, removeSpacesAtLineEdges), u"");
}

}  // namespace
}  // namespace skerrow::text
