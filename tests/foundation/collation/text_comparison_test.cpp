#include "foundation/collation/text_comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <compare>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/collation/primary_ranks.h"
#include "foundation/collation/text_relation.h"
#include "foundation/collation/text_sort.h"
#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

using enum TextComparison;

constexpr TextComparison kAll[] = {sortPlain, sortLocalized, sortCaseInsensitive,
                                   sortCaseInsensitiveLocalized, sortLocalizedStandard};

std::string name(TextComparison comparison) {
  switch (comparison) {
    case sortPlain:
      return "plain";
    case sortLocalized:
      return "localized";
    case sortCaseInsensitive:
      return "case-insensitive";
    case sortCaseInsensitiveLocalized:
      return "case-insensitive localized";
    case sortLocalizedStandard:
      return "standard";
  }
  return {};
}

// The texts in sorted order, joined by blanks.
std::string sorted(TextComparison comparison, std::vector<std::u16string_view> texts,
                   const std::string& locale = "en",
                   SortDirection direction = SortDirection::ascending) {
  const TextComparator comparator(comparison, locale);
  std::string joined;
  for (const std::uint32_t position : sortedPositions(texts, comparator, direction)) {
    joined += utf8FromUtf16(texts[position]) + " ";
  }
  if (!joined.empty()) joined.pop_back();
  return joined;
}

struct OrderCase {
  TextComparison comparison;
  std::vector<std::u16string_view> texts;
  std::string expected;
  std::string locale = "en";
};

TEST(TextComparison, PutsTextsIntoTheOrderOfEachKind) {
  const OrderCase cases[] = {
      {sortPlain, {u"b", u"A", u"a", u"B"}, "A B a b"},
      {sortPlain, {u"x2", u"x10", u"x1"}, "x1 x10 x2"},
      {sortPlain, {u"é", u"z", u"e"}, "e z é"},
      {sortPlain, {u"ab", u"", u"a"}, " a ab"},
      // By unit: a surrogate comes before the private use area.
      {sortPlain, {u"\uE000", u"\U0001F600", u"z"}, "z \U0001F600 \uE000"},
      {sortCaseInsensitive, {u"b", u"A", u"a", u"B"}, "A a B b"},
      {sortCaseInsensitive, {u"b", u"a", u"A", u"B"}, "A a B b"},
      {sortCaseInsensitive, {u"z", u"É", u"e", u"é"}, "e É é z"},
      {sortCaseInsensitive, {u"strasse", u"straße", u"STRASSE"}, "STRASSE strasse straße"},
      {sortCaseInsensitive, {u"a_b", u"aab"}, "a_b aab"},
      {sortCaseInsensitive, {u"x2", u"x10"}, "x10 x2"},
      {sortCaseInsensitiveLocalized, {u"b", u"A", u"a", u"B"}, "a A b B"},
      {sortCaseInsensitiveLocalized, {u"AbCd", u"abCD", u"abc"}, "abc abCD AbCd"},
      {sortCaseInsensitiveLocalized, {u"b", u"A", u"a", u"B"}, "A a B b", "da"},
      {sortCaseInsensitiveLocalized, {u"z", u"É", u"e", u"é", u"f"}, "e é É f z"},
      {sortCaseInsensitiveLocalized, {u"côte", u"cote", u"coté"}, "cote coté côte"},
      {sortCaseInsensitiveLocalized, {u"x2", u"x10"}, "x10 x2"},
      {sortCaseInsensitiveLocalized, {u"zebra", u"ähnlich", u"abc"}, "abc ähnlich zebra", "de"},
      {sortCaseInsensitiveLocalized, {u"zebra", u"ähnlich", u"abc"}, "abc zebra ähnlich", "sv"},
      {sortCaseInsensitiveLocalized, {u"da", u"cz", u"cha"}, "cz da cha", "cs"},
      {sortLocalized, {u"b", u"A", u"a", u"B"}, "a A b B"},
      {sortLocalized, {u"zebra", u"Öl", u"Oase"}, "Oase Öl zebra", "de"},
      {sortLocalized, {u"x2", u"x10"}, "x10 x2"},
      {sortLocalizedStandard, {u"x10", u"x2", u"x1"}, "x1 x2 x10"},
      {sortLocalizedStandard, {u"b", u"A", u"a", u"B"}, "a A b B"},
      {sortLocalizedStandard, {u"AbCd2", u"abCD2", u"abc10"}, "abc10 abCD2 AbCd2"},
      {sortLocalizedStandard, {u"Kap 10.2", u"kap 9", u"Kap 10.10"}, "kap 9 Kap 10.2 Kap 10.10"},
      {sortLocalizedStandard, {u"a01", u"a1", u"a001", u"a2"}, "a001 a01 a1 a2"},
      {sortLocalizedStandard, {u"ｆile2", u"file10", u"file1"}, "file1 ｆile2 file10"},
      {sortLocalizedStandard, {u"a", u"10", u"9", u"-1"}, "-1 9 10 a"},
      {sortLocalizedStandard,
       {u"n12345678901234567890", u"n99999999999999999999", u"n2345678901234567890"},
       "n2345678901234567890 n12345678901234567890 n99999999999999999999"},
  };
  for (const OrderCase& row : cases) {
    SCOPED_TRACE(name(row.comparison) + ": " + row.expected);
    EXPECT_EQ(sorted(row.comparison, row.texts, row.locale), row.expected);
    std::vector<std::u16string_view> reversed(row.texts.rbegin(), row.texts.rend());
    EXPECT_EQ(sorted(row.comparison, reversed, row.locale), row.expected);
  }
}

TEST(TextComparison, TellsTextsApartThatDifferOnlyInCase) {
  for (const TextComparison comparison : kAll) {
    const TextComparator comparator(comparison, "en");
    EXPECT_TRUE(std::is_neq(comparator.compare(u"Name", u"name"))) << name(comparison);
    EXPECT_TRUE(std::is_eq(comparator.compare(u"name", u"name"))) << name(comparison);
    EXPECT_TRUE(std::is_eq(comparator.compare(u"", u""))) << name(comparison);
    EXPECT_TRUE(std::is_lt(comparator.compare(u"", u"a"))) << name(comparison);
    EXPECT_TRUE(std::is_gt(comparator.compare(u"a", u""))) << name(comparison);
  }
}

TEST(TextComparison, TakesCanonicallyEquivalentTextsAsEqualOnlyWhereLocalized) {
  const std::u16string_view composed = u"caf\u00E9";
  const std::u16string_view decomposed = u"cafe\u0301";
  EXPECT_TRUE(std::is_eq(TextComparator(sortLocalized, "en").compare(composed, decomposed)));
  EXPECT_TRUE(std::is_gt(TextComparator(sortPlain).compare(composed, decomposed)));
  EXPECT_TRUE(std::is_gt(TextComparator(sortCaseInsensitive).compare(composed, decomposed)));
  EXPECT_TRUE(std::is_lt(TextComparator(sortCaseInsensitive).compare(composed, u"cafe\u0301s")));
  EXPECT_TRUE(std::is_lt(TextComparator(sortCaseInsensitive).compare(decomposed, u"caf\u00E9s")));
}

TEST(TextComparison, NeedsNoLanguageToTellLowerAndUpperCase) {
  const TextComparator comparator(sortCaseInsensitiveLocalized);
  EXPECT_TRUE(std::is_lt(comparator.compare(u"a", u"B")));
  EXPECT_TRUE(std::is_lt(comparator.compare(u"A", u"b")));
}

TEST(TextComparison, FallsBackToTheRulesOfAllLanguagesForAnUnknownLocale) {
  const TextComparator comparator(sortLocalized, "xx-nowhere");
  EXPECT_TRUE(std::is_lt(comparator.compare(u"a", u"b")));
}

TEST(TextComparison, ComparesLoneSurrogates) {
  for (const TextComparison comparison : kAll) {
    const TextComparator comparator(comparison, "en");
    const std::u16string lone = u"a\xD800";
    const std::u16string other = u"a\xDC00";
    EXPECT_TRUE(std::is_eq(comparator.compare(lone, lone))) << name(comparison);
    EXPECT_TRUE(std::is_neq(comparator.compare(lone, u"a"))) << name(comparison);
    if (comparison == sortLocalized) continue;
    EXPECT_TRUE(std::is_neq(comparator.compare(lone, other))) << name(comparison);
  }
}

TEST(TextComparison, TakesTimeLinearInTheMarksOfACharacter) {
  std::u16string a = u"a\u0300";
  std::u16string b = u"a\u0302";
  for (int i = 0; i < 200'000; ++i) {
    a += u"\u0301\u0323";  // never in order
    b += u"\u0301\u0323";
  }
  for (const TextComparison comparison : kAll) {
    const TextComparator comparator(comparison, "en");
    EXPECT_TRUE(std::is_neq(comparator.compare(a, b))) << name(comparison);
    EXPECT_TRUE(std::is_eq(comparator.compare(a, a))) << name(comparison);
  }
}

TEST(TextSort, KeepsTheOrderOfEqualTextsInBothDirections) {
  const TextComparator comparator(sortLocalized, "en");
  const std::u16string_view composed = u"\u00E9";
  const std::u16string_view decomposed = u"e\u0301";
  const std::vector<std::u16string_view> few = {u"z", composed, decomposed, u"a", composed};
  EXPECT_EQ(sortedPositions(few, comparator), (std::vector<std::uint32_t>{3, 1, 2, 4, 0}));
  EXPECT_EQ(sortedPositions(few, comparator, SortDirection::descending),
            (std::vector<std::uint32_t>{0, 1, 2, 4, 3}));

  std::vector<std::u16string_view> many;
  for (int i = 0; i < 300; ++i) many.push_back(i % 2 == 0 ? composed : decomposed);
  std::vector<std::uint32_t> inOrder(many.size());
  std::iota(inOrder.begin(), inOrder.end(), 0U);
  EXPECT_EQ(sortedPositions(many, comparator), inOrder);
  EXPECT_EQ(sortedPositions(many, comparator, SortDirection::descending), inOrder);
}

TEST(TextSort, GivesEqualTextsEqualRanks) {
  const TextComparator comparator(sortPlain);
  const std::vector<std::u16string_view> texts = {u"b", u"a", u"b", u"c", u"a"};
  EXPECT_EQ(sortRanks(texts, comparator), (std::vector<std::uint32_t>{1, 0, 1, 2, 0}));
  EXPECT_TRUE(sortRanks({}, comparator).empty());
}

TEST(TextSort, SortsNothingAndOneText) {
  const TextComparator comparator(sortLocalizedStandard, "en");
  EXPECT_TRUE(sortedPositions({}, comparator).empty());
  const std::u16string_view one = u"a";
  EXPECT_EQ(sortedPositions({&one, 1}, comparator), std::vector<std::uint32_t>{0});
}

const std::vector<std::string> kLocales = {"",
                                           "en",
                                           "de",
                                           "sv",
                                           "da",
                                           "cs",
                                           "hr",
                                           "hu",
                                           "es",
                                           "fr-CA",
                                           "ja",
                                           "zh",
                                           "ru",
                                           "el",
                                           "th",
                                           "lt",
                                           "tr",
                                           "cy",
                                           "ca",
                                           "de-u-co-phonebk",
                                           "en-u-kr-digit-grek"};

// Texts that are hard on the abbreviated keys: digits, zeros in front, accents,
// contractions, expansions, ignorable and control characters, long common fronts.
// `draw(n)` gives a number below n.
template <class Draw>
std::u16string hardText(Draw&& draw) {
  using namespace std::string_view_literals;
  static const std::vector<std::u16string_view> kPieces = {u"a",
                                                           u"A",
                                                           u"b",
                                                           u"B",
                                                           u"z",
                                                           u"0",
                                                           u"00",
                                                           u"1",
                                                           u"9",
                                                           u"10",
                                                           u"123",
                                                           u"é",
                                                           u"e\u0301",
                                                           u"\u0301",
                                                           u"ß",
                                                           u"ss",
                                                           u"æ",
                                                           u"ö",
                                                           u"ø",
                                                           u"l",
                                                           u"·",
                                                           u"ch",
                                                           u"CH",
                                                           u"aa",
                                                           u"å",
                                                           u"dž",
                                                           u"lj",
                                                           u"ñ",
                                                           u"\u0131",
                                                           u"i",
                                                           u"I",
                                                           u"İ",
                                                           u"-",
                                                           u"_",
                                                           u" ",
                                                           u".",
                                                           u"'",
                                                           u"\u00AD",
                                                           u"\u200B",
                                                           u"\t",
                                                           u"日",
                                                           u"本",
                                                           u"カ",
                                                           u"か",
                                                           u"ｶ",
                                                           u"Ａ",
                                                           u"\U0001F600",
                                                           u"Ж",
                                                           u"ж",
                                                           u"и\u0306",
                                                           u"й",
                                                           u"Σ",
                                                           u"ς",
                                                           u"ά",
                                                           u"\xD800",
                                                           u"\0"sv,
                                                           u"common front of many letters ",
                                                           u"12345678901234567890"};
  std::u16string text;
  for (std::size_t count = draw(6); count > 0; --count) text += kPieces[draw(kPieces.size())];
  return text;
}

std::u16string hardText() {
  return hardText([](std::size_t below) { return *rc::gen::inRange<std::size_t>(0, below); });
}

std::vector<std::uint32_t> sortedOneByOne(const std::vector<std::u16string_view>& texts,
                                          const TextComparator& comparator,
                                          SortDirection direction) {
  std::vector<std::uint32_t> positions(texts.size());
  std::iota(positions.begin(), positions.end(), 0U);
  std::ranges::stable_sort(positions, [&](std::uint32_t a, std::uint32_t b) {
    const std::weak_ordering order = comparator.compare(texts[a], texts[b]);
    return direction == SortDirection::ascending ? order < 0 : order > 0;
  });
  return positions;
}

RC_GTEST_PROP(TextSort, AgreesWithComparingOneByOne, ()) {
  const TextComparison comparison = kAll[*rc::gen::inRange(0, 5)];
  const TextComparator comparator(comparison,
                                  kLocales[*rc::gen::inRange<std::size_t>(0, kLocales.size())]);
  const auto direction =
      *rc::gen::arbitrary<bool>() ? SortDirection::ascending : SortDirection::descending;
  std::vector<std::u16string> texts(static_cast<std::size_t>(*rc::gen::inRange(0, 120)));
  for (std::u16string& text : texts) text = hardText();
  const std::vector<std::u16string_view> views(texts.begin(), texts.end());
  RC_ASSERT(sortedPositions(views, comparator, direction) ==
            sortedOneByOne(views, comparator, direction));
}

TEST(TextSort, AgreesWithComparingOneByOneOnManyTexts) {
  std::mt19937 random(1);
  std::vector<std::u16string> texts(20'000);
  for (std::u16string& text : texts) {
    text = hardText([&random](std::size_t below) { return random() % below; });
  }
  const std::vector<std::u16string_view> views(texts.begin(), texts.end());
  for (const char* const locale : {"", "de", "da", "cs"}) {
    for (const TextComparison comparison : kAll) {
      const TextComparator comparator(comparison, locale);
      EXPECT_TRUE(sortedPositions(views, comparator) ==
                  sortedOneByOne(views, comparator, SortDirection::ascending))
          << name(comparison) << " in " << locale;
    }
  }
}

RC_GTEST_PROP(PrimaryRanks, DecideAsTheRulesDo, ()) {
  // Made once a locale, as making them takes milliseconds.
  static const std::vector<std::pair<TextComparator, PrimaryRanks>> kRanks = [] {
    std::vector<std::pair<TextComparator, PrimaryRanks>> all;
    for (const std::string& locale : kLocales) {
      for (const TextComparison comparison :
           {sortLocalized, sortCaseInsensitiveLocalized, sortLocalizedStandard}) {
        TextComparator comparator(comparison, locale);
        PrimaryRanks ranks(comparator);
        all.emplace_back(std::move(comparator), ranks);
      }
    }
    return all;
  }();
  const auto& [comparator, ranks] = kRanks[*rc::gen::inRange<std::size_t>(0, kRanks.size())];
  const std::u16string a = hardText();
  const std::u16string b = hardText();
  PrimaryRanks::Front frontOfA;
  PrimaryRanks::Front frontOfB;
  if (!ranks.encode(a, frontOfA) || !ranks.encode(b, frontOfB)) return;
  if (frontOfA < frontOfB) RC_ASSERT(std::is_lt(comparator.compare(a, b)));
  if (frontOfA > frontOfB) RC_ASSERT(std::is_gt(comparator.compare(a, b)));
}

TEST(PrimaryRanks, AreThereForWhatPeopleMostlyWrite) {
  for (const char* const locale : {"", "en", "de", "fr", "sv", "ru", "el"}) {
    const TextComparator comparator(sortCaseInsensitiveLocalized, locale);
    const PrimaryRanks ranks(comparator);
    PrimaryRanks::Front front;
    EXPECT_TRUE(ranks.encode(u"Hello, World (2nd_try).txt", front)) << locale;
    EXPECT_TRUE(ranks.encode(u"Élève à Zürich", front)) << locale;
    EXPECT_TRUE(ranks.encode(u"Привет", front)) << locale;
    EXPECT_FALSE(ranks.encode(u"日本", front)) << locale;
  }
}

RC_GTEST_PROP(TextComparison, IsATotalOrder, ()) {
  const TextComparison comparison = kAll[*rc::gen::inRange(0, 5)];
  const TextComparator comparator(comparison, "en");
  const std::u16string a = hardText();
  const std::u16string b = hardText();
  const std::u16string c = hardText();
  RC_ASSERT(std::is_eq(comparator.compare(a, a)));
  RC_ASSERT(std::is_lt(comparator.compare(a, b)) == std::is_gt(comparator.compare(b, a)));
  if (comparator.compare(a, b) <= 0 && comparator.compare(b, c) <= 0) {
    RC_ASSERT(std::is_lteq(comparator.compare(a, c)));
  }
  if (comparison != sortLocalized && comparator.compare(a, b) == 0) RC_ASSERT(a == b);
}

RC_GTEST_PROP(TextComparison, OfCaselessFormsIsLiteral, ()) {
  const TextComparator comparator(sortCaseInsensitive);
  const std::u16string a = hardText();
  const std::u16string b = hardText();
  const std::u16string formOfA = caselessForm(a);
  const std::u16string formOfB = caselessForm(b);
  if (formOfA != formOfB) RC_ASSERT(std::is_lt(comparator.compare(a, b)) == (formOfA < formOfB));
}

TEST(TextSort, EndsSoonOnManyTextsThatAreAlmostEqual) {
  const std::u16string front(2000, u'a');
  std::vector<std::u16string> texts;
  for (char16_t i = 0; i < 1000; ++i) texts.push_back(front + static_cast<char16_t>(u'A' + i % 50));
  const std::vector<std::u16string_view> views(texts.begin(), texts.end());
  for (const TextComparison comparison : kAll) {
    const TextComparator comparator(comparison, "en");
    const std::vector<std::uint32_t> positions = sortedPositions(views, comparator);
    EXPECT_TRUE(std::ranges::is_sorted(positions, [&](std::uint32_t a, std::uint32_t b) {
      return comparator.compare(views[a], views[b]) < 0;
    })) << name(comparison);
  }
}

struct RelationCase {
  std::u16string_view a;
  std::u16string_view b;
  TextOptions options;
  bool isEqual;
  std::string locale = "en";
};

constexpr TextOptions kCase{.caseInsensitive = true};
constexpr TextOptions kDiacritic{.diacriticInsensitive = true};
constexpr TextOptions kBoth{.caseInsensitive = true, .diacriticInsensitive = true};
constexpr TextOptions kNormalized{
    .caseInsensitive = true, .diacriticInsensitive = true, .normalized = true};
constexpr TextOptions kLocale{.localeSensitive = true};
constexpr TextOptions kLocaleCase{.caseInsensitive = true, .localeSensitive = true};
constexpr TextOptions kLocaleDiacritic{.diacriticInsensitive = true, .localeSensitive = true};

TEST(TextRelation, TellsWhichTextsAreEqualUnderTheOptions) {
  const RelationCase cases[] = {
      {u"", u"", {}, true},
      {u"a", u"A", {}, false},
      {u"é", u"e\u0301", {}, false},
      {u"a", u"A", kCase, true},
      {u"é", u"É", kCase, true},
      {u"é", u"e\u0301", kCase, true},
      {u"é", u"e", kCase, false},
      {u"straße", u"STRASSE", kCase, true},
      {u"ΣΑΣ", u"σας", kCase, true},
      {u"ﬁ", u"FI", kCase, true},
      {u"é", u"e", kDiacritic, true},
      {u"é", u"E", kDiacritic, false},
      {u"naïve", u"naive", kDiacritic, true},
      {u"ø", u"o", kDiacritic, false},
      {u"\u0301", u"", kDiacritic, true},
      {u"किताब", u"कताब", kDiacritic, false},  // a vowel sign is no diacritic
      {u"क\u0941", u"क", kDiacritic, false},   // nor is one without width,
      {u"क\u094D", u"क", kDiacritic, false},   // nor a virama
      {u"가", u"각", kDiacritic, false},
      {u"É", u"e", kBoth, true},
      {u"ŒUVRE", u"œuvre", kBoth, true},
      {u"a", u"A", kNormalized, false},
      {u"é", u"e", kNormalized, false},
      {u"i", u"I", kCase, true},
      {u"i", u"I", kLocaleCase, true},
      {u"a", u"A", kLocale, false},
      {u"é", u"e\u0301", kLocale, true},
      {u"é", u"e", kLocaleDiacritic, true},
      {u"é", u"E", kLocaleDiacritic, false},
  };
  for (const RelationCase& row : cases) {
    SCOPED_TRACE(utf8FromUtf16(row.a) + " and " + utf8FromUtf16(row.b));
    const TextRelation relation(row.options, row.locale);
    TextRelation::Workspace work;
    EXPECT_EQ(relation.isEqual(row.a, row.b, work), row.isEqual);
    EXPECT_EQ(relation.isEqual(row.b, row.a, work), row.isEqual);
  }
}

TEST(TextRelation, FoldsByTheRulesOfTurkishWhereAsked) {
  const TextRelation turkish(kLocaleCase, "tr");
  std::u16string into;
  std::u16string intermediate;
  EXPECT_EQ(turkish.folded(u"I", into, intermediate), u"ı");
  EXPECT_EQ(turkish.folded(u"İ", into, intermediate), u"i");
  const TextRelation english(kLocaleCase, "en");
  EXPECT_EQ(english.folded(u"I", into, intermediate), u"i");
}

TEST(TextRelation, DoesNotFindALetterInTheSameLetterWithAnAccent) {
  const TextRelation relation(kCase);
  TextRelation::Workspace work;
  EXPECT_FALSE(relation.isPartOf(u"e\u0301tude", u"et", TextPlace::anywhere, work));
  EXPECT_TRUE(relation.isPartOf(u"e\u0301tude", u"ét", TextPlace::anywhere, work));
  EXPECT_TRUE(relation.isPartOf(u"E\u0301tude", u"ét", TextPlace::atFront, work));
  EXPECT_FALSE(relation.isPartOf(u"Étude", u"e", TextPlace::atFront, work));
}

TEST(TextRelation, LooksForPartsByTheRulesOfTurkicLanguages) {
  const TextRelation turkish(kLocaleCase, "tr");
  TextRelation::Workspace work;
  EXPECT_TRUE(turkish.isPartOf(u"DİL", u"dil", TextPlace::anywhere, work));
  EXPECT_TRUE(turkish.isPartOf(u"DI\u0307L", u"dil", TextPlace::atEnd, work));
  EXPECT_TRUE(turkish.isPartOf(u"KIZ", u"kız", TextPlace::atFront, work));
  EXPECT_FALSE(turkish.isPartOf(u"KIZ", u"kiz", TextPlace::anywhere, work));
}

TEST(TextRelation, FindsAPartMadeReadyWhereItFindsOneThatIsNot) {
  TextRelation::Workspace work;
  for (const TextOptions options :
       {TextOptions{}, kCase, TextOptions{.diacriticInsensitive = true}}) {
    const TextRelation relation(options);
    for (const std::u16string_view part : {u"", u"s", u"ss", u"ß", u"é", u"e", u"\u0301", u"SS"}) {
      const TextRelation::Part ready = relation.part(part);
      for (const std::u16string_view text :
           {u"", u"s", u"ß", u"esse", u"eß", u"e\u0301", u"éS", u"\u0301"}) {
        for (const TextPlace place : {TextPlace::anywhere, TextPlace::atFront, TextPlace::atEnd}) {
          EXPECT_EQ(relation.isPartOf(text, ready, place, work),
                    relation.isPartOf(text, part, place, work))
              << utf8FromUtf16(text) << " / " << utf8FromUtf16(part);
        }
      }
    }
  }
}

struct ContainsCase {
  std::u16string_view text;
  std::u16string_view part;
  bool contains;
};

TEST(TextRelation, FindsOneTextInAnother) {
  const ContainsCase cases[] = {
      {u"", u"", false},     {u"a", u"", false},         {u"", u"a", false},
      {u"abc", u"b", true},  {u"abc", u"abc", true},     {u"abc", u"abcd", false},
      {u"aab", u"ab", true}, {u"ababac", u"abac", true}, {u"abc", u"ca", false},
  };
  for (const ContainsCase& row : cases) {
    EXPECT_EQ(containsText(row.text, row.part), row.contains)
        << utf8FromUtf16(row.text) << " / " << utf8FromUtf16(row.part);
  }
}

RC_GTEST_PROP(TextRelation, FindsLongPartsLikeThePlainSearch, ()) {
  std::u16string text;
  const int count = *rc::gen::inRange(100, 400);
  for (int i = 0; i < count; ++i) text += *rc::gen::inRange(0, 4) == 0 ? u'b' : u'a';
  std::u16string part;
  const int length = *rc::gen::inRange(64, 90);
  if (*rc::gen::arbitrary<bool>()) {
    part = text.substr(static_cast<std::size_t>(*rc::gen::inRange(0, count - 64)),
                       static_cast<std::size_t>(length));
  } else {
    for (int i = 0; i < length; ++i) part += *rc::gen::inRange(0, 4) == 0 ? u'b' : u'a';
  }
  RC_ASSERT(containsText(text, part) == (text.find(part) != std::u16string::npos));
}

TEST(TextRelation, FindsAHostilePartInLinearTime) {
  const std::u16string text(1'000'000, u'a');
  const std::u16string part = std::u16string(500'000, u'a') + u'b';
  EXPECT_FALSE(containsText(text, part));
}

}  // namespace
}  // namespace skerrow::foundation
