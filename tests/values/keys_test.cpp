#include "values/keys.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "values/record.h"

namespace skerrow {
namespace {

Value keyNumber(std::size_t i) { return Value(u"key" + std::u16string(i, u'x')); }

Keys keysOf(std::size_t count) {
  Keys keys;
  for (std::size_t i = 0; i < count; ++i) keys.append(keyNumber(i));
  return keys;
}

// Around 12 keys an index takes over from comparing key by key.
TEST(Keys, FindsEveryKeyWhereItStandsAndNoOther) {
  for (const std::size_t count : {0U, 1U, 11U, 12U, 13U, 14U, 300U}) {
    SCOPED_TRACE(count);
    const Keys keys = keysOf(count);
    ASSERT_EQ(keys.count(), count);
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(keys.position(keyNumber(i)), i);
      EXPECT_TRUE(keys[i] == keyNumber(i));
    }
    EXPECT_EQ(keys.position(keyNumber(count)), Keys::kNone);
    EXPECT_EQ(keys.position(Number::signed32(0)), Keys::kNone);
  }
}

TEST(Keys, TakesKeysThatAreNoText) {
  Keys keys;
  keys.append(Value());
  keys.append(Number::signed32(1));
  keys.append(u"1");
  EXPECT_EQ(keys.position(Value()), 0U);
  EXPECT_EQ(keys.position(Number::real(1)), 1U);
  EXPECT_EQ(keys.position(u"1"), 2U);
  EXPECT_EQ(keys.position(u"2"), Keys::kNone);
}

TEST(Keys, CopiesAreSharedUntilOneOfThemGrows) {
  for (const std::size_t count : {0U, 3U, 30U}) {
    SCOPED_TRACE(count);
    const Keys original = keysOf(count);
    Keys copy = original;
    EXPECT_TRUE(copy.areShared(original));
    copy.append(u"more");
    EXPECT_FALSE(copy.areShared(original));
    EXPECT_EQ(original.count(), count);
    EXPECT_EQ(original.position(u"more"), Keys::kNone);
    EXPECT_EQ(copy.position(u"more"), count);
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(copy.position(keyNumber(i)), i);
  }
}

TEST(Keys, AMovedOneLeavesNoneBehind) {
  Keys keys = keysOf(2);
  const Keys taken = std::move(keys);
  EXPECT_EQ(taken.count(), 2U);
  EXPECT_EQ(keys.count(), 0U);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(keys.depth(), 0U);
}

TEST(Keys, AreAsDeepAsTheDeepest) {
  Keys keys = keysOf(2);
  EXPECT_EQ(keys.depth(), 0U);
  keys.append(Value(Record{}));
  keys.append(Value(std::vector<Value>{}));
  EXPECT_EQ(keys.depth(), 2U);
}

}  // namespace
}  // namespace skerrow
