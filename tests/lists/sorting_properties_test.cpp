// Laws that the sorting commands keep for all lists.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "foundation/collation/text_comparison.h"
#include "foundation/number/number_arithmetic.h"
#include "tests/lists/command_results.h"
#include "values/record.h"

namespace skerrow::lists {
namespace {

using foundation::TextComparator;
using foundation::TextComparison;

constexpr std::uint32_t kFirstOption = 0x61E56531;

Value optionOf(TextComparison comparison) {
  return Number::unsigned32(kFirstOption + static_cast<std::uint32_t>(comparison));
}

rc::Gen<TextComparison> anyComparison() {
  return rc::gen::element(
      TextComparison::sortPlain, TextComparison::sortLocalized, TextComparison::sortCaseInsensitive,
      TextComparison::sortCaseInsensitiveLocalized, TextComparison::sortLocalizedStandard);
}

// Short texts in which all that comparisons tell apart or leave out is frequent.
rc::Gen<Value> comparableText() {
  const auto unit = rc::gen::element<char16_t>(u'a', u'A', u'b', u'\u00E9', u'e', u'\u0301', u'0',
                                               u'1', u'2', u'_', u' ', u'\u200B', u'\u00DF', u's',
                                               char16_t{0xD83D}, char16_t{0xDE00});
  return rc::gen::map(rc::gen::resize(5, rc::gen::container<std::u16string>(unit)),
                      [](std::u16string units) { return Value(std::move(units)); });
}

rc::Gen<Value> comparableNumber() {
  return rc::gen::map(tests::anyNumber(), [](Number number) { return settled(Value(number)); });
}

// What is no number comes first.
std::weak_ordering numberOrder(const Value& a, const Value& b) {
  const auto isNumber = [](const Value& value) { return !std::isnan(value.number().asReal()); };
  if (!isNumber(a) || !isNumber(b)) return isNumber(a) <=> isNumber(b);
  const auto order = foundation::compareNumbers(a.number(), b.number());
  return order < 0   ? std::weak_ordering::less
         : order > 0 ? std::weak_ordering::greater
                     : std::weak_ordering::equivalent;
}

std::weak_ordering inDirection(std::weak_ordering order, bool isAscending) {
  return isAscending ? order : 0 <=> order;
}

// The items with their places behind them: what is equal can still be told apart.
Items numbered(const Items& items) {
  Items rows;
  for (const Value& item : items) rows.emplace_back(Items{item, integer(rows.size())});
  return rows;
}

// Sorts items by themselves, and rows by their first item, and expects what a
// plain stable sort gives.
template <class Order>
void requireStableSort(const Items& items, Order&& order, bool isAscending,
                       const NamedValues& options) {
  Items expected = numbered(items);
  std::ranges::stable_sort(expected, [&](const Value& a, const Value& b) {
    return inDirection(order(a.items()[0], b.items()[0]), isAscending) < 0;
  });
  NamedValues arguments = options;
  arguments.emplace_back("sortDirection", boolean(isAscending));
  Items alone;
  for (const Value& row : expected) alone.push_back(row.items()[0]);
  RC_ASSERT(isExactly(resultOf("SKWMungeList", items, arguments), alone));
  arguments.emplace_back("listIndexes", Items{integer(1)});
  RC_ASSERT(isExactly(resultOf("SKWMungeListOfLists", numbered(items), arguments), expected));
}

RC_GTEST_PROP(SortingCommands, SortTextsAsAStableSortByTheComparisonDoes, ()) {
  const auto texts = *rc::gen::container<Items>(comparableText());
  const auto comparison = *anyComparison();
  const TextComparator comparator(comparison);
  const auto order = [&](const Value& a, const Value& b) {
    return comparator.compare(a.text(), b.text());
  };
  requireStableSort(texts, order, *rc::gen::arbitrary<bool>(),
                    {{"listMungeOption", optionOf(comparison)}});
}

RC_GTEST_PROP(SortingCommands, SortTextsOfManyScriptsAsAStableSortDoes, ()) {
  const auto texts = *rc::gen::container<Items>(rc::gen::map(
      tests::arbitraryUnits(), [](std::u16string units) { return Value(std::move(units)); }));
  const auto comparison = *anyComparison();
  const TextComparator comparator(comparison);
  const auto order = [&](const Value& a, const Value& b) {
    return comparator.compare(a.text(), b.text());
  };
  requireStableSort(texts, order, *rc::gen::arbitrary<bool>(),
                    {{"listMungeOption", optionOf(comparison)}});
}

RC_GTEST_PROP(SortingCommands, SortNumbersByValueWhateverTheOption, ()) {
  const auto numbers = *rc::gen::container<Items>(comparableNumber());
  requireStableSort(numbers, numberOrder, *rc::gen::arbitrary<bool>(),
                    {{"listMungeOption", optionOf(*anyComparison())}});
}

// Numbers, texts, dates, others.
int rankOf(const Value& item) {
  return item.isNumber() ? 0 : item.isText() ? 1 : item.kind() == Kind::date ? 2 : 3;
}

Items ofRank(const Items& items, int rank) {
  Items chosen;
  std::ranges::copy_if(items, std::back_inserter(chosen),
                       [rank](const Value& item) { return rankOf(item) == rank; });
  return chosen;
}

RC_GTEST_PROP(SortingCommands, SortSeveralKindsKindByKind, ()) {
  const Items items =
      itemsOf(settled(*rc::gen::oneOf(listOf(fewValues()), listOf(tests::anyValue()))));
  const bool isAscending = *rc::gen::arbitrary<bool>();
  const NamedValues arguments = {{"listMungeOption", optionOf(TextComparison::sortPlain)},
                                 {"sortDirection", boolean(isAscending)}};
  const Items sorted = itemsOf(resultOf("SKWMungeList", items, arguments));
  RC_ASSERT(sorted.size() == items.size());
  RC_ASSERT(std::ranges::is_sorted(sorted, [&](const Value& a, const Value& b) {
    return isAscending ? rankOf(a) < rankOf(b) : rankOf(a) > rankOf(b);
  }));
  for (const int rank : {0, 1, 2}) {
    RC_ASSERT(
        isExactly(ofRank(sorted, rank), resultOf("SKWMungeList", ofRank(items, rank), arguments)));
  }
  RC_ASSERT(isExactly(ofRank(sorted, 3), ofRank(items, 3)));
}

RC_GTEST_PROP(SortingCommands, ChangeNothingWhenTheyComeASecondTime, ()) {
  const Value list = settled(*listOf(fewValues()));
  const NamedValues arguments = {{"listMungeOption", optionOf(TextComparison::sortPlain)},
                                 {"sortDirection", boolean(*rc::gen::arbitrary<bool>())},
                                 {"uniqueOption", boolean(*rc::gen::arbitrary<bool>())}};
  const Value sorted = resultOf("SKWMungeList", list, arguments);
  RC_ASSERT(isExactly(resultOf("SKWMungeList", sorted, arguments), sorted));
}

RC_GTEST_PROP(SortingCommands, MakeUniqueAsThoughBeforeSorting, ()) {
  const Items items = itemsOf(settled(*listOf(fewValues())));
  Items firsts;
  for (const Value& item : items) {
    if (std::ranges::find(firsts, item) == firsts.end()) firsts.push_back(item);
  }
  RC_ASSERT(isExactly(resultOf("SKWMungeList", items, {{"uniqueOption", boolean(true)}}),
                      resultOf("SKWMungeList", firsts)));
}

// Rows of two keys, either of which may be missing, in an order of their own.
struct Row {
  std::vector<std::optional<int>> keys;
};

std::vector<Row> someRows(bool isComplete) {
  const auto key = rc::gen::inRange(0, 4);
  std::vector<Row> rows(*rc::gen::inRange<std::size_t>(0, 20));
  for (Row& row : rows) {
    for (int i = 0; i < 2; ++i) {
      const bool isThere = isComplete || *rc::gen::weightedElement<bool>({{3, true}, {1, false}});
      row.keys.push_back(isThere ? std::optional(*key) : std::nullopt);
    }
  }
  return rows;
}

// An absent key comes before all others, which std::optional has as its order.
std::vector<std::size_t> naiveOrder(const std::vector<Row>& rows,
                                    const std::vector<bool>& directions) {
  std::vector<std::size_t> order(rows.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < directions.size(); ++i) {
      const auto& first = rows[a].keys[i];
      const auto& second = rows[b].keys[i];
      if (first != second) return directions[i] ? first < second : second < first;
    }
    return false;
  });
  return order;
}

// Texts whose order is that of the keys, so that both kinds are sorted.
Value keyValue(int key, bool isText) {
  if (!isText) return Number::signed32(key);
  return std::u16string(1, static_cast<char16_t>(u'a' + key));
}

RC_GTEST_PROP(SortingCommands, SortListsByTheFirstPositionAndThenTheNext, ()) {
  const std::vector<Row> rows = someRows(true);
  const std::vector<bool> directions = {*rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>()};
  const bool isText = *rc::gen::arbitrary<bool>();
  Items lists;
  for (const Row& row : rows) {
    lists.emplace_back(Items{integer(lists.size()), keyValue(*row.keys[1], !isText),
                             keyValue(*row.keys[0], isText)});
  }
  Items expected;
  for (const std::size_t place : naiveOrder(rows, directions)) expected.push_back(lists[place]);
  RC_ASSERT(isExactly(
      resultOf("SKWMungeListOfLists", lists,
               {{"listIndexes", Items{integer(3), integer(2)}},
                {"sortDirection", Items{boolean(directions[0]), boolean(directions[1])}}}),
      expected));
}

RC_GTEST_PROP(SortingCommands, SortRecordsByTheFirstLabelAndThenTheNext, ()) {
  const std::vector<Row> rows = someRows(false);
  const std::vector<bool> directions = {*rc::gen::arbitrary<bool>(), *rc::gen::arbitrary<bool>()};
  const bool isText = *rc::gen::arbitrary<bool>();
  Items records;
  for (const Row& row : rows) {
    Record record;
    record.set(Value(u"place"), integer(records.size()));
    if (row.keys[1]) record.set(Value(u"\u00E9"), keyValue(*row.keys[1], !isText));
    if (row.keys[0]) record.set(Value(u"a"), keyValue(*row.keys[0], isText));
    records.emplace_back(std::move(record));
  }
  Items expected;
  for (const std::size_t place : naiveOrder(rows, directions)) expected.push_back(records[place]);
  RC_ASSERT(isExactly(
      resultOf("SKWMungeRecords", records,
               {{"recordKeys", Items{Value(u"a"), Value(u"\u00E9")}},
                {"sortDirection", Items{boolean(directions[0]), boolean(directions[1])}}}),
      expected));
}

}  // namespace
}  // namespace skerrow::lists
