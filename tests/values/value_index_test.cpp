#include "values/value_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/generators.h"
#include "values/record.h"

namespace skerrow {
namespace {

using tests::described;

Value numbered(std::size_t i) { return Number::signed64(static_cast<std::int64_t>(i)); }

TEST(ValueIndex, FindsNothingWhileItIsEmpty) {
  const ValueIndex index;
  const auto never = [](std::size_t) -> const Value& {
    throw std::logic_error("nothing stands there");
  };
  EXPECT_EQ(index.find(Value(), never), ValueIndex::kNone);
}

TEST(ValueIndex, GivesThePositionAtWhichAnEqualValueStands) {
  const std::vector<Value> values = {u"a", Value(), Number::real(1), u"", std::vector<Value>{u"a"}};
  const auto at = [&values](std::size_t i) -> const Value& { return values[i]; };
  ValueIndex index;
  for (std::size_t i = 0; i < values.size(); ++i) index.insert(values[i], i);
  EXPECT_EQ(index.find(u"a", at), 0U);
  EXPECT_EQ(index.find(Value(), at), 1U);
  EXPECT_EQ(index.find(Number::boolean(true), at), 2U);
  EXPECT_EQ(index.find(u"", at), 3U);
  EXPECT_EQ(index.find(Value(std::vector<Value>{u"a"}), at), 4U);
  EXPECT_EQ(index.find(u"b", at), ValueIndex::kNone);
  EXPECT_EQ(index.find(Number::real(1.5), at), ValueIndex::kNone);
}

TEST(ValueIndex, EntersAValueOnlyWhenNoEqualOneIsThere) {
  const std::vector<Value> values = {u"a", u"b"};
  const auto at = [&values](std::size_t i) -> const Value& { return values[i]; };
  ValueIndex index;
  EXPECT_EQ(index.findOrInsert(u"a", 0, at), ValueIndex::kNone);
  EXPECT_EQ(index.findOrInsert(u"b", 1, at), ValueIndex::kNone);
  EXPECT_EQ(index.findOrInsert(u"a", 1, at), 0U);
  EXPECT_EQ(index.findOrInsert(u"b", 0, at), 1U);
}

// Far more entries than slots to begin with, and positions well past 16 bits.
TEST(ValueIndex, FindsEveryOneOfManyValues) {
  constexpr std::size_t kCount = 100000;
  std::vector<Value> values;
  for (std::size_t i = 0; i < kCount; ++i) values.push_back(numbered(i * 7));
  const auto at = [&values](std::size_t i) -> const Value& { return values[i]; };
  ValueIndex index;
  for (std::size_t i = 0; i < kCount; ++i) index.insert(values[i], i);
  for (std::size_t i = 0; i < kCount; ++i) ASSERT_EQ(index.find(numbered(i * 7), at), i);
  for (std::size_t i = 0; i < kCount; ++i) {
    ASSERT_EQ(index.find(numbered(i * 7 + 1), at), ValueIndex::kNone);
  }
}

TEST(ValueIndex, PassesOverTheValuesThatAreNotWanted) {
  const std::vector<Value> values = {u"a", u"b", u"a", u"c", u"b", u"d"};
  std::vector<std::size_t> entered;
  const auto at = [&](std::size_t i) -> const Value& { return values[entered[i]]; };
  ValueIndex index;
  index.findOrInsertAll(
      values, at, [](std::size_t i) { return i != 0 && i != 3; },
      [&](std::size_t i) { entered.push_back(i); });
  EXPECT_EQ(entered, (std::vector<std::size_t>{1, 2, 5}));
  EXPECT_EQ(index.find(u"a", at), 1U);
  EXPECT_EQ(index.find(u"d", at), 2U);
  EXPECT_EQ(index.find(u"c", at), ValueIndex::kNone);
}

// How many small values with all sorts of equal ones among them.
rc::Gen<std::vector<Value>> valuesWithRepeats() {
  return rc::gen::container<std::vector<Value>>(rc::gen::oneOf(
      rc::gen::map(rc::gen::inRange(-3, 4), [](int i) { return Value(Number::signed32(i)); }),
      rc::gen::map(rc::gen::inRange(-3, 4), [](int i) { return Value(Number::real(i)); }),
      rc::gen::map(rc::gen::inRange(0, 40),
                   [](int i) { return Value(std::u16string(static_cast<std::size_t>(i), u'x')); }),
      rc::gen::resize(10, tests::anyValue())));
}

std::vector<Value> insertedOneByOne(const std::vector<Value>& values) {
  ValueSet set;
  for (const Value& value : values) set.insert(value);
  return set.values();
}

RC_GTEST_PROP(ValueSet, AgreesWithSearchingALine, ()) {
  const auto values = *valuesWithRepeats();
  ValueSet set;
  std::vector<Value> model;
  for (const Value& value : values) {
    const bool isNew = std::ranges::find(model, value) == model.end();
    RC_ASSERT(set.contains(value) == !isNew);
    RC_ASSERT(set.insert(value) == isNew);
    if (isNew) model.push_back(value);
  }
  for (const Value& value : values) RC_ASSERT(set.contains(value));
}

RC_GTEST_PROP(ValueSet, MakingItOfManyIsTheSameAsOneByOne, ()) {
  const auto values = *rc::gen::scale(3.0, valuesWithRepeats());
  RC_ASSERT(ValueSet(values).values() == insertedOneByOne(values));
}

// A block is 32 values: repeats inside one, across two and at their ends.
TEST(ValueSet, MakingItOfManyIsTheSameAsOneByOneAroundTheEdgesOfBlocks) {
  for (const std::size_t count : {0U, 1U, 31U, 32U, 33U, 63U, 64U, 65U, 1000U}) {
    for (const std::size_t distinct : {1U, 2U, 31U, 32U, 33U, 500U}) {
      std::vector<Value> values;
      for (std::size_t i = 0; i < count; ++i) values.push_back(numbered(i * i % distinct));
      EXPECT_EQ(ValueSet(values).values(), insertedOneByOne(values)) << count << " of " << distinct;
    }
  }
}

TEST(ValueSet, ManyRepeatsOfOneValueAreOneValue) {
  const std::vector<Value> values(100000, Value(u"the same"));
  EXPECT_EQ(ValueSet(values).values(), std::vector<Value>{u"the same"});
}

TEST(ValueSet, GoesOnAfterManyWereInserted) {
  ValueSet set(std::vector<Value>{u"a", u"b"});
  EXPECT_FALSE(set.insert(u"a"));
  EXPECT_TRUE(set.insert(u"c"));
  EXPECT_FALSE(set.contains(u"e"));
}

TEST(ValueSet, TakesOneOfEachNumericValueWhateverTheStorage) {
  ValueSet set;
  EXPECT_TRUE(set.insert(Number::boolean(true)));
  EXPECT_FALSE(set.insert(Number::real(1)));
  EXPECT_TRUE(set.insert(u"1"));
  EXPECT_TRUE(set.insert(Number::real(std::nan(""))));
  EXPECT_FALSE(set.insert(Number::real(-std::nan(""))));
  EXPECT_TRUE(set.insert(Record{{u"a", Value()}, {u"b", Value()}}));
  EXPECT_FALSE(set.insert(Record{{u"b", Value()}, {u"a", Value()}}));
}

}  // namespace
}  // namespace skerrow
