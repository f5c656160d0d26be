#include "foundation/collation/text_search.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

constexpr FoldingOptions kLiteral{};
constexpr FoldingOptions kNoCase{.caseInsensitive = true, .diacriticInsensitive = false};
constexpr FoldingOptions kNoMarks{.caseInsensitive = false, .diacriticInsensitive = true};
constexpr FoldingOptions kNeither{.caseInsensitive = true, .diacriticInsensitive = true};

std::vector<UnitRange> allOf(const TextSearch& search, std::u16string_view text) {
  std::vector<UnitRange> all;
  TextSearch::Scan scan(search, text);
  for (UnitRange found = scan.next(); found.isFound(); found = scan.next()) all.push_back(found);
  return all;
}

// The occurrences in brackets.
std::string marked(std::u16string_view text, const std::vector<UnitRange>& found) {
  std::u16string result;
  std::size_t kept = 0;
  for (const UnitRange range : found) {
    result += text.substr(kept, range.location - kept);
    result += u"[" + std::u16string(range.of(text)) + u"]";
    kept = range.end();
  }
  result += text.substr(kept);
  return utf8FromUtf16(result);
}

struct Case {
  FoldingOptions options;
  const char16_t* sought;
  const char16_t* text;
  const char* expected;
};

TEST(TextSearch, FindsEveryOccurrenceFromTheFront) {
  const Case cases[] = {
      {kLiteral, u"cat", u"Cat cat CAT", "Cat [cat] CAT"},
      {kLiteral, u"aa", u"aaaaa", "[aa][aa]a"},
      {kLiteral, u"\xD83D", u"a😀b", "a😀b"},  // half of a surrogate pair
      {kLiteral, u"\xDE00", u"a😀b", "a😀b"},
      {kLiteral, u"😀", u"a😀😀b", "a[😀][😀]b"},
      {kLiteral, u"aab", u"aaab", "a[aab]"},
      {kLiteral, u"", u"abc", "abc"},
      {kLiteral, u"abc", u"", ""},
      {kLiteral, u"abc", u"ab", "ab"},
      {kLiteral, u"é", u"e\u0301", "e\u0301"},
      {kLiteral, u"e", u"e\u0301", "[e]\u0301"},
      {kLiteral, u"\r", u"a\r\nb", "a[\r]\nb"},
      {kNoCase, u"cat", u"Cat cat CAT", "[Cat] [cat] [CAT]"},
      {kNoCase, u"strasse", u"STRASSE Straße strase", "[STRASSE] [Straße] strase"},
      {kNoCase, u"straße", u"STRASSE", "[STRASSE]"},
      {kNoCase, u"s", u"ßs", "ß[s]"},
      {kNoCase, u"ss", u"sßs", "s[ß]s"},
      {kNoCase, u"sss", u"sß", "[sß]"},
      {kNoCase, u"ﬁ", u"fi FI", "[fi] [FI]"},
      {kNoCase, u"i", u"ﬁ", "ﬁ"},
      {kNoCase, u"é", u"É e\u0301 E\u0301", "[É] [e\u0301] [E\u0301]"},
      {kNoCase, u"e", u"é e\u0301 E", "é e\u0301 [E]"},
      {kNoCase, u"\u0301", u"é e\u0301", "é e\u0301"},
      {kNoCase, u"σ", u"ΣΣς", "[Σ][Σ][ς]"},
      {kNoCase, u"k", u"\u212A", "[\u212A]"},
      {kNoCase, u"привет", u"ПРИВЕТ Привет", "[ПРИВЕТ] [Привет]"},
      {kNoCase, u"\U00010428", u"\U00010400", "[\U00010400]"},
      {kNoCase, u"가", u"\u1100\u1161 가", "[\u1100\u1161] [가]"},
      {kNoCase, u"\u1100", u"가", "가"},
      {kNoMarks, u"cafe", u"café CAFÉ cafe\u0301!", "[café] CAFÉ [cafe\u0301]!"},
      {kNoMarks, u"é", u"e è", "[e] [è]"},
      {kNoMarks, u"\u0301", u"e\u0301", "e\u0301"},
      {kNoMarks, u"e", u"\u0301e\u0301\u0302f", "\u0301[e\u0301\u0302]f"},
      {kNoMarks, u"שלום", u"שָׁלוֹם", "[שָׁלוֹם]"},
      {kNoMarks, u"क", u"क्ष", "क्ष"},
      {kNeither, u"CAFE", u"café Cafe\u0301", "[café] [Cafe\u0301]"},
      {kNeither, u"istanbul", u"İstanbul", "[İstanbul]"},
      {kNeither, u"ω", u"ᾯ", "[ᾯ]"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(marked(each.text, allOf(TextSearch(each.sought, each.options), each.text)),
              each.expected);
  }
}

TEST(TextSearch, FindsTheFirstAndTheLast) {
  const Case cases[] = {
      {kNoCase, u"cat", u"Cat cat CAT", "[Cat] cat CAT|Cat cat [CAT]"},
      {kLiteral, u"cat", u"Cat cat CAT", "Cat [cat] CAT|Cat [cat] CAT"},
      {kLiteral, u"aa", u"aaa", "[aa]a|a[aa]"},
      {kNoCase, u"ss", u"ßxSs", "[ß]xSs|ßx[Ss]"},
      {kNoCase, u"ss", u"sss", "[ss]s|s[ss]"},
      {kNeither, u"e", u"éxe\u0301", "[é]xe\u0301|éx[e\u0301]"},
      {kLiteral, u"z", u"abc", "abc|abc"},
      {kLiteral, u"", u"abc", "abc|abc"},
  };
  for (const Case& each : cases) {
    const TextSearch search(each.sought, each.options);
    std::string shown;
    for (const UnitRange found : {search.first(each.text), search.last(each.text)}) {
      if (!shown.empty()) shown += "|";
      shown += marked(each.text, found.isFound() ? std::vector{found} : std::vector<UnitRange>{});
    }
    EXPECT_EQ(shown, each.expected);
  }
}

TEST(TextSearch, TellsWhatATextBeginsAndEndsWith) {
  const struct {
    FoldingOptions options;
    std::u16string_view sought;
    std::u16string_view text;
    bool begins;
    bool ends;
  } cases[] = {
      {kLiteral, u"ab", u"abcab", true, true},
      {kLiteral, u"ab", u"Abcab", false, true},
      {kLiteral, u"", u"ab", false, false},
      {kLiteral, u"ab", u"", false, false},
      {kLiteral, u"\xD83D", u"😀", false, false},
      {kNoCase, u"ss", u"ßxß", true, true},
      {kNoCase, u"s", u"ßxß", false, false},
      {kNoCase, u"aa", u"AAA", true, true},
      {kNoCase, u"e", u"éxé", false, false},
      {kNoMarks, u"e", u"éxé", true, true},
      {kNoMarks, u"e", u"\u0301e\u0301", true, true},
      {kNoMarks, u"\u0301", u"\u0301", false, false},
      {kNeither, u"abc", u"ab", false, false},
  };
  for (const auto& row : cases) {
    const TextSearch search(row.sought, row.options);
    TextFolding folding(row.options);
    EXPECT_EQ(search.isAtFrontOf(row.text, folding), row.begins) << utf8FromUtf16(row.text);
    EXPECT_EQ(search.isAtEndOf(row.text, folding), row.ends) << utf8FromUtf16(row.text);
    EXPECT_EQ(search.isIn(row.text, folding), search.first(row.text).isFound());
  }
}

TEST(TextSearch, ReplacesEveryOccurrence) {
  const auto replaced = [](std::u16string_view text, std::u16string_view sought,
                           std::u16string_view replacement) {
    return utf8FromUtf16(TextSearch(sought, kNoCase).replacingAll(text, replacement));
  };
  EXPECT_EQ(replaced(u"Cat cat CAT", u"cat", u"dog"), "dog dog dog");
  EXPECT_EQ(replaced(u"cat", u"cat", u""), "");
  EXPECT_EQ(replaced(u"cat", u"dog", u"x"), "cat");
  EXPECT_EQ(replaced(u"cat", u"", u"x"), "cat");
  EXPECT_EQ(replaced(u"Straße!", u"ss", u"$1"), "Stra$1e!");
}

// Every search by its definition: ranges between characters whose folded forms agree.
std::vector<UnitRange> allByDefinition(std::u16string_view sought, std::u16string_view text,
                                       FoldingOptions options) {
  TextFolding folding(options);
  const std::u16string wanted = folding.fold(sought);
  std::vector<UnitRange> all;
  if (wanted.empty()) return all;
  std::vector<std::size_t> boundaries;
  std::vector<bool> foldsToNothing;
  for (std::size_t i = 0; i < text.size();) {
    boundaries.push_back(i);
    const TextFolding::Character character = folding.next(text, i);
    foldsToNothing.push_back(character.folded.empty());
    i += character.unitCount;
  }
  boundaries.push_back(text.size());
  for (std::size_t from = 0; from + 1 < boundaries.size(); ++from) {
    if (foldsToNothing[from]) continue;
    for (std::size_t to = from + 1; to < boundaries.size(); ++to) {
      const UnitRange range{boundaries[from], boundaries[to] - boundaries[from]};
      if (folding.fold(range.of(text)) != wanted) continue;
      all.push_back(range);
      from = to - 1;
      break;
    }
  }
  return all;
}

std::u16string concatenated(const std::vector<std::u16string>& parts) {
  std::u16string text;
  for (const std::u16string& part : parts) text += part;
  return text;
}

RC_GTEST_PROP(TextSearch, AgreesWithItsDefinition, ()) {
  const auto part = rc::gen::elementOf(std::vector<std::u16string>{
      u"s", u"s", u"S", u"ß", u"ẞ", u"e", u"E", u"é", u"\u0301", u"\u0323", u"i", u"İ", u"\u0307",
      u"ﬃ", u"f", u"\u1100", u"\u1161", u"가", u"\U00010400"});
  const auto parts = rc::gen::container<std::vector<std::u16string>>(part);
  for (const FoldingOptions options : {kNoCase, kNoMarks, kNeither}) {
    const std::u16string text = concatenated(*parts);
    const std::u16string sought = concatenated(*rc::gen::resize(4, parts));
    RC_ASSERT(allOf(TextSearch(sought, options), text) == allByDefinition(sought, text, options));
  }
}

RC_GTEST_PROP(TextSearch, FindsLiterallyWhatThePlainSearchOfStringsFinds, ()) {
  const auto units = rc::gen::container<std::u16string>(rc::gen::elementOf(std::u16string(u"ab")));
  const std::u16string text = *units;
  const std::u16string sought = *rc::gen::resize(4, units);
  const UnitRange first = TextSearch(sought).first(text);
  const UnitRange last = TextSearch(sought).last(text);
  RC_ASSERT(sought.empty() || first.location == text.find(sought));
  RC_ASSERT(sought.empty() || last.location == text.rfind(sought));
}

TEST(TextSearch, TakesTimeLinearInTheTextHoweverItRepeats) {
  const std::u16string text(4'000'000, u'a');
  const std::u16string sought = std::u16string(200'000, u'a') + u"b";
  for (const FoldingOptions options : {kLiteral, kNeither}) {
    EXPECT_FALSE(TextSearch(sought, options).first(text).isFound());
  }
}

TEST(TextSearch, TakesTimeLinearInTheMarksOfACharacter) {
  std::u16string text = u"a";
  for (int i = 0; i < 400'000; ++i) text += u"\u0301\u0323";  // never in order
  for (const FoldingOptions options : {kNoCase, kNoMarks, kNeither}) {
    EXPECT_EQ(TextSearch(text, options).first(text), (UnitRange{0, text.size()}));
    EXPECT_FALSE(TextSearch(u"b", options).first(text).isFound());
  }
}

}  // namespace
}  // namespace skerrow::foundation
