#include "values/record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/generators.h"

namespace skerrow {
namespace {

using tests::described;

std::u16string keyNumber(std::size_t i) {
  const std::string digits = std::to_string(i);
  return u"key " + std::u16string(digits.begin(), digits.end());
}

Value numbered(std::size_t i) { return Number::signed64(static_cast<std::int64_t>(i)); }

Record recordOf(std::size_t count) {
  Record record;
  for (std::size_t i = 0; i < count; ++i) record.set(keyNumber(i), numbered(i));
  return record;
}

TEST(Record, KeepsTheOrderInWhichKeysFirstCame) {
  const Record record{{u"b", Value()}, {u"a", Value()}, {u"", Value()}, {u"é", Value()}};
  EXPECT_EQ(described(Value(record)), "{“b”: null, “a”: null, “”: null, “\\u00E9”: null}");
}

TEST(Record, ALaterValueTakesThePlaceOfAnEarlierOneUnderTheSameKey) {
  const Record record{{u"a", numbered(1)}, {u"b", numbered(2)}, {u"a", numbered(3)}};
  EXPECT_EQ(described(Value(record)), "{“a”: signed64 3, “b”: signed64 2}");
}

TEST(Record, TellsKeysApartUnitByUnit) {
  const Record record{{u"a", numbered(1)},       {u"A", numbered(2)}, {u"é", numbered(3)},
                      {u"e\u0301", numbered(4)}, {u"", numbered(5)},  {u" ", numbered(6)}};
  EXPECT_EQ(record.fieldCount(), 6U);
  EXPECT_EQ(record.find(u"á"), nullptr);
  ASSERT_NE(record.find(u"e\u0301"), nullptr);
  EXPECT_TRUE(*record.find(u"e\u0301") == numbered(4));
}

TEST(Record, TakesKeysThatAreNoText) {
  Record record;
  record.set(numbered(1), u"number");
  record.set(Value(), u"null");
  record.set(u"1", u"text");
  record.set(Number::real(1), u"the same number");
  EXPECT_EQ(described(Value(record)), "{signed64 1: “the same number”, null: “null”, “1”: “text”}");
}

TEST(Record, SharesKeysWithOthersUntilItTakesOneOfItsOwn) {
  const Record first{{u"a", numbered(1)}, {u"b", numbered(2)}};
  Record second(first.keys(), {numbered(3), numbered(4)});
  EXPECT_TRUE(second.keys().areShared(first.keys()));
  EXPECT_EQ(described(Value(second)), "{“a”: signed64 3, “b”: signed64 4}");
  EXPECT_FALSE(first == second);
  second.set(u"a", numbered(1));
  second.set(u"b", numbered(2));
  EXPECT_TRUE(first == second);
  second.set(u"c", numbered(5));
  EXPECT_FALSE(first == second);
  EXPECT_EQ(described(Value(first)), "{“a”: signed64 1, “b”: signed64 2}");
  EXPECT_EQ(described(Value(second)), "{“a”: signed64 1, “b”: signed64 2, “c”: signed64 5}");
}

TEST(Record, HandsItsValuesOver) {
  Record record{{u"a", numbered(1)}, {u"b", u"two"}};
  const Value* const place = record.values().data();
  EXPECT_EQ(std::move(record).takeValues().data(), place);
}

TEST(Record, AnEmptyOneHasNoFieldsAndFindsNothing) {
  const Record record;
  EXPECT_TRUE(record.isEmpty());
  EXPECT_EQ(record.fieldCount(), 0U);
  EXPECT_EQ(record.find(u""), nullptr);
  EXPECT_EQ(record.find(Value()), nullptr);
}

// Around 12 fields an index takes over from comparing key by key.
TEST(Record, FindsEveryKeyAndNoOtherAtAnySize) {
  for (const std::size_t count : {0U, 1U, 11U, 12U, 13U, 14U, 100U, 5000U}) {
    SCOPED_TRACE(count);
    const Record record = recordOf(count);
    ASSERT_EQ(record.fieldCount(), count);
    for (std::size_t i = 0; i < count; ++i) {
      const Value* found = record.find(keyNumber(i));
      ASSERT_NE(found, nullptr) << i;
      ASSERT_TRUE(*found == numbered(i)) << i;
      ASSERT_TRUE(record.fields()[i].value == numbered(i)) << i;
    }
    EXPECT_EQ(record.find(keyNumber(count)), nullptr);
  }
}

TEST(Record, OverwritesInPlaceAtAnySize) {
  for (const std::size_t count : {1U, 12U, 13U, 200U}) {
    SCOPED_TRACE(count);
    Record record = recordOf(count);
    for (std::size_t i = 0; i < count; ++i) record.set(keyNumber(i), u"new");
    EXPECT_EQ(record.fieldCount(), count);
    EXPECT_TRUE(std::ranges::all_of(
        record.fields(), [](const Record::Field& field) { return field.value == Value(u"new"); }));
    EXPECT_TRUE(record.fields()[0].key == Value(keyNumber(0)));
  }
}

TEST(Record, CopiesGoTheirOwnWay) {
  for (const std::size_t count : {3U, 30U}) {
    const Record original = recordOf(count);
    Record copy = original;
    copy.set(keyNumber(1), u"changed");
    copy.set(u"more", u"added");
    EXPECT_TRUE(*original.find(keyNumber(1)) == numbered(1));
    EXPECT_EQ(original.find(u"more"), nullptr);
    EXPECT_TRUE(*copy.find(u"more") == Value(u"added"));
    EXPECT_TRUE(*copy.find(keyNumber(2)) == numbered(2));
  }
}

TEST(Record, AssignmentReplacesFieldsAndIndex) {
  Record record = recordOf(30);
  record = recordOf(2);
  EXPECT_EQ(record.fieldCount(), 2U);
  EXPECT_EQ(record.find(keyNumber(20)), nullptr);
  record = recordOf(30);
  ASSERT_NE(record.find(keyNumber(20)), nullptr);
  const Record moved = std::move(record);
  EXPECT_TRUE(*moved.find(keyNumber(20)) == numbered(20));
}

TEST(Record, EqualityDoesNotSeeTheOrderAtAnySize) {
  for (const std::size_t count : {2U, 12U, 13U, 60U}) {
    SCOPED_TRACE(count);
    const Record forwards = recordOf(count);
    Record backwards;
    for (std::size_t i = count; i-- > 0;) backwards.set(keyNumber(i), numbered(i));
    EXPECT_TRUE(forwards == backwards);
    backwards.set(keyNumber(0), u"other");
    EXPECT_FALSE(forwards == backwards);
    EXPECT_FALSE(forwards == recordOf(count - 1));
    EXPECT_FALSE(recordOf(count - 1) == forwards);
  }
}

// Against the plainest implementation there is.
RC_GTEST_PROP(Record, AgreesWithALineOfPairs, ()) {
  const auto steps = *rc::gen::arbitrary<std::vector<std::pair<std::uint8_t, std::uint8_t>>>();
  Record record;
  std::vector<std::pair<Value, Value>> model;
  for (const auto& [keyDigit, valueDigit] : steps) {
    const Value key = keyNumber(keyDigit % 40);
    const Value value = numbered(valueDigit);
    record.set(key, value);
    const auto there = std::ranges::find(model, key, &std::pair<Value, Value>::first);
    if (there != model.end()) {
      there->second = value;
    } else {
      model.emplace_back(key, value);
    }
  }
  RC_ASSERT(record.fieldCount() == model.size());
  for (std::size_t i = 0; i < model.size(); ++i) {
    RC_ASSERT(record.fields()[i].key == model[i].first);
    RC_ASSERT(record.fields()[i].value == model[i].second);
    RC_ASSERT(*record.find(model[i].first) == model[i].second);
  }
}

}  // namespace
}  // namespace skerrow
