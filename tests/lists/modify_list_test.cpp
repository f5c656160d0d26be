// The operations of SKWModifyList by themselves. What the command does as a whole
// stands in its table of cases.

#include "lists/modify_list.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "core/script_error.h"
#include "tests/support/describe.h"
#include "values/record.h"
#include "values/script_value.h"

namespace skerrow::lists {
namespace {

using namespace literals;
using Items = SKWModifyList::Items;

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kGreatest = std::numeric_limits<std::int64_t>::max();

Value integer(std::int32_t value) { return Number::signed32(value); }
Value list(Items items) { return Value(std::move(items)); }
Value given(ScriptValue value) { return Value(std::move(value)); }

Value givenList() {
  return given(ScriptValue::list({ScriptValue::integer32(7), ScriptValue::typeCode("pnam"_code)}));
}

std::string shown(const Items& items) { return tests::described(Value(items)); }

// "1123 Can't get item 0; list has 3 items.", or that nothing failed.
template <class Operation>
std::string failureOf(Operation&& operation) {
  try {
    operation();
  } catch (const core::ScriptError& error) {
    return std::to_string(error.number()) + " " + error.message();
  }
  return "nothing failed";
}

std::string failureOfIndex(std::int64_t index, std::size_t count) {
  return failureOf([=] { SKWModifyList::adjustedIndex(index, count); });
}

std::string failureOfBeforeIndex(std::int64_t index, std::size_t count) {
  return failureOf([=] { SKWModifyList::adjustedBeforeIndex(index, count); });
}

TEST(AdjustedIndex, CountsFromEitherEnd) {
  EXPECT_EQ(SKWModifyList::adjustedIndex(1, 3), 0U);
  EXPECT_EQ(SKWModifyList::adjustedIndex(3, 3), 2U);
  EXPECT_EQ(SKWModifyList::adjustedIndex(-1, 3), 2U);
  EXPECT_EQ(SKWModifyList::adjustedIndex(-3, 3), 0U);
}

TEST(AdjustedIndex, RefusesWhatNamesNoItem) {
  EXPECT_EQ(failureOfIndex(0, 3), "1123 Can't get item 0; list has 3 items.");
  EXPECT_EQ(failureOfIndex(4, 3), "1123 Can't get item 4; list has 3 items.");
  EXPECT_EQ(failureOfIndex(-4, 3), "1123 Can't get item -4; list has 3 items.");
  EXPECT_EQ(failureOfIndex(1, 0), "1123 Can't get item 1; list has 0 items.");
  EXPECT_EQ(failureOfIndex(kGreatest, 1),
            "1123 Can't get item 9223372036854775807; list has 1 items.");
  EXPECT_EQ(failureOfIndex(kLeast, 1),
            "1123 Can't get item -9223372036854775808; list has 1 items.");
}

TEST(AdjustedBeforeIndex, CountsFromEitherEndAndAppendsAfterTheLast) {
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(1, 3), 0U);
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(3, 3), 2U);
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(4, 3), 3U);
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(-1, 3), 2U);
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(-3, 3), 0U);
  EXPECT_EQ(SKWModifyList::adjustedBeforeIndex(1, 0), 0U);
}

TEST(AdjustedBeforeIndex, RefusesWhatNamesNoPlace) {
  EXPECT_EQ(failureOfBeforeIndex(0, 3), "1124 Can't get item 0; list has 3 items.");
  EXPECT_EQ(failureOfBeforeIndex(5, 3), "1124 Can't get item 5; list has 3 items.");
  EXPECT_EQ(failureOfBeforeIndex(-4, 3), "1124 Can't get item -4; list has 3 items.");
  EXPECT_EQ(failureOfBeforeIndex(2, 0), "1124 Can't get item 2; list has 0 items.");
  EXPECT_EQ(failureOfBeforeIndex(-1, 0), "1124 Can't get item -1; list has 0 items.");
  EXPECT_EQ(failureOfBeforeIndex(kGreatest, 1),
            "1124 Can't get item 9223372036854775807; list has 1 items.");
  EXPECT_EQ(failureOfBeforeIndex(kLeast, 1),
            "1124 Can't get item -9223372036854775808; list has 1 items.");
}

TEST(ItemIsAnEmpty, HoldsForMissingValueEmptyTextAndListsOfThem) {
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(Value()));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(u""));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(list({})));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(list({u"", Value(), list({list({})})})));
}

TEST(ItemIsAnEmpty, DoesNotHoldForAnythingElse) {
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(u" "));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(std::u16string_view(u"\0", 1)));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(integer(0)));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(Number::boolean(false)));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(Number::real(0)));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(Date{0}));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(Record()));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(Value::data("")));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(list({u"", list({integer(0)})})));
}

TEST(ItemIsAnEmpty, LooksAtTheContentOfGivenValues) {
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(given(ScriptValue())));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(given(ScriptValue::null())));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(given(ScriptValue::typeCode("pnam"_code))));
  EXPECT_TRUE(SKWModifyList::itemIsAnEmpty(given(ScriptValue::withPayload("utf8"_code, ""))));
  EXPECT_TRUE(
      SKWModifyList::itemIsAnEmpty(given(ScriptValue::list({ScriptValue::list({ScriptValue()})}))));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(givenList()));
  EXPECT_FALSE(SKWModifyList::itemIsAnEmpty(given(ScriptValue::withPayload("abcd"_code, ""))));
}

TEST(PadArrays, KeepsWhatIsThereAndAppendsThePadding) {
  EXPECT_EQ(shown(SKWModifyList::padArrays({list({integer(1)}), list({u"a", u"b", u"c"}), list({})},
                                           u"x")),
            "[[signed32 1, “x”, “x”], [“a”, “b”, “c”], [“x”, “x”, “x”]]");
  EXPECT_EQ(shown(SKWModifyList::padArrays({}, u"x")), "[]");
}

TEST(PadArrays, LeavesOtherCopiesOfARowAlone) {
  const Value row = list({integer(1)});
  SKWModifyList::padArrays({row, list({u"a", u"b"})}, u"x");
  EXPECT_EQ(tests::described(row), "[signed32 1]");
}

TEST(PadArrays, RefusesItemsThatAreNoLists) {
  const std::string failure =
      "1288 Can't perform pad arrays on a list that doesn't consist solely of lists.";
  EXPECT_EQ(failureOf([] { SKWModifyList::padArrays({list({}), u"a"}, u"x"); }), failure);
  EXPECT_EQ(failureOf([] { SKWModifyList::padArrays({Value()}, u"x"); }), failure);
}

TEST(ColsToRows, Transposes) {
  EXPECT_EQ(shown(SKWModifyList::colsToRowsIn(
                {list({integer(1), integer(2)}), list({u"a", list({u"b"})})})),
            "[[signed32 1, “a”], [signed32 2, [“b”]]]");
  EXPECT_EQ(shown(SKWModifyList::colsToRowsIn({list({}), list({})})), "[]");
}

TEST(ColsToRows, TakesAGivenListAsARowOfGivenItems) {
  EXPECT_EQ(shown(SKWModifyList::colsToRowsIn({givenList(), list({u"a", u"b"})})),
            "[[raw 'long' 07000000, “a”], [raw 'type' 6D616E70, “b”]]");
}

TEST(ColsToRows, RefusesWhatIsNoRectangle) {
  EXPECT_EQ(failureOf([] { SKWModifyList::colsToRowsIn({}); }),
            "1385 Can't perform cols to rows on an empty list.");
  EXPECT_EQ(failureOf([] {
              SKWModifyList::colsToRowsIn({u"a", list({})});
            }),
            "1285 Can't perform cols to rows on a list that doesn't consist solely of lists.");
  EXPECT_EQ(failureOf([] {
              SKWModifyList::colsToRowsIn({list({u"a"}), list({})});
            }),
            "1286 Can't perform cols to rows when lists have differing item counts.");
  EXPECT_EQ(failureOf([] {
              SKWModifyList::colsToRowsIn({list({u"a"}), u"b"});
            }),
            "1287 Strangely, the list's list is not a list. Please report the circumstances.");
}

TEST(InsertInOrder, MakesANewColumn) {
  EXPECT_EQ(shown(SKWModifyList::insertInOrder(Items{integer(1), Value()},
                                               {list({u"a"}), list({u"b", u"c"})}, 2)),
            "[[“a”, signed32 1], [“b”, null, “c”]]");
  EXPECT_EQ(shown(SKWModifyList::insertInOrder(Items{integer(1)}, {list({u"a", u"b"})}, -1)),
            "[[“a”, signed32 1, “b”]]");
  EXPECT_EQ(shown(SKWModifyList::insertInOrder(Items{}, {}, 0)), "[]");
}

TEST(InsertInOrder, TakesAGivenListAsARow) {
  EXPECT_EQ(shown(SKWModifyList::insertInOrder(Items{u"x"}, {givenList()}, 3)),
            "[[raw 'long' 07000000, raw 'type' 6D616E70, “x”]]");
}

TEST(InsertInOrder, RefusesPlacesThatARowDoesNotHaveAndRowsThatAreNoLists) {
  EXPECT_EQ(failureOf([] {
              SKWModifyList::insertInOrder(Items{u"x", u"y"}, {list({u"a"}), list({})}, 2);
            }),
            "1124 Can't get item 2; list has 0 items.");
  EXPECT_EQ(failureOf([] { SKWModifyList::insertInOrder(Items{u"x"}, {u"a"}, 1); }),
            "1388 Target is not a list of lists.");
}

std::string merged(const Items& indexes, Items items) {
  return shown(SKWModifyList::mergeIndexes(indexes, std::move(items)));
}

std::string failureOfMerging(const Items& indexes, const Items& items) {
  return failureOf([&] { SKWModifyList::mergeIndexes(indexes, items); });
}

TEST(MergeIndexes, JoinsTwoTextsAtTheFirstOfThem) {
  EXPECT_EQ(merged({integer(1), integer(3), u"-"}, {u"x", u"y", u"z"}), "[“x-z”, “y”]");
  EXPECT_EQ(merged({integer(3), integer(1)}, {u"x", u"y", u"z"}), "[“y”, “zx”]");
}

TEST(MergeIndexes, UsesTheSeparatorOnlyBetweenTexts) {
  EXPECT_EQ(merged({integer(1), integer(2), u"-"}, {u"", u"b"}), "[“b”]");
  EXPECT_EQ(merged({integer(1), integer(2), u"-"}, {u"a", u""}), "[“a”]");
  EXPECT_EQ(merged({integer(2), integer(1), u"-"}, {u"", u""}), "[“”]");
}

TEST(MergeIndexes, JoinsAGivenText) {
  EXPECT_EQ(
      merged({integer(1), integer(2)}, {given(ScriptValue::withPayload("utf8"_code, "a")), u"b"}),
      "[“ab”]");
}

TEST(MergeIndexes, ChecksItsParameterBeforeTheItems) {
  const std::string wrongCount =
      "1383 Invalid merge indexes parameter; the list must contain only two integers or two "
      "integers plus a string.";
  EXPECT_EQ(failureOfMerging({integer(1)}, {}), wrongCount);
  EXPECT_EQ(failureOfMerging({u"", u"", u"", u""}, {}), wrongCount);
  EXPECT_EQ(failureOfMerging({integer(9), u"a"}, {}), "1386 Merge indexes must be integers.");
  const std::string outOfRange =
      "1387 At least one of the merge indexes is out of range or otherwise invalid.";
  EXPECT_EQ(failureOfMerging({integer(1), integer(2), integer(3)}, {u"a"}), outOfRange);
  EXPECT_EQ(failureOfMerging({integer(1), integer(1)}, {u"a"}), outOfRange);
  EXPECT_EQ(failureOfMerging({integer(0), integer(1)}, {u"a"}), outOfRange);
  EXPECT_EQ(failureOfMerging({Number::signed64(kLeast), Number::signed64(kGreatest)}, {u"a"}),
            outOfRange);
  EXPECT_EQ(failureOfMerging({integer(1), integer(2), integer(3)}, {integer(1), integer(2)}),
            "1129 Invalid merge parameter. The third item in the list must be a string.");
  EXPECT_EQ(failureOfMerging({integer(1), integer(2)}, {u"a", integer(2)}),
            "1384 Unable to merge; one of the items is not a string.");
}

TEST(AddItemsWithinArray, AppendsInDepthFirstOrder) {
  Items target = {u"there"};
  SKWModifyList::addItemsWithinArray(
      Items{integer(1), list({integer(2), list({integer(3), list({})})}), Value(), u""}, target);
  EXPECT_EQ(shown(target), "[“there”, signed32 1, signed32 2, signed32 3, null, “”]");
}

TEST(AddItemsWithinArray, LooksIntoGivenListsAndKeepsWhatIsInThemAsItIs) {
  Items target;
  SKWModifyList::addItemsWithinArray(Items{list({givenList()}), u"a"}, target);
  EXPECT_EQ(shown(target), "[raw 'long' 07000000, raw 'type' 6D616E70, “a”]");
}

TEST(AddItemsWithinArray, DoesNotLookIntoRecords) {
  Items target;
  SKWModifyList::addItemsWithinArray(Items{Record{{u"a", list({integer(1)})}}}, target);
  EXPECT_EQ(shown(target), "[{“a”: [signed32 1]}]");
}

}  // namespace
}  // namespace skerrow::lists
