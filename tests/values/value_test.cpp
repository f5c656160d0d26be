#include "values/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/generators.h"
#include "values/record.h"
#include "values/script_value.h"

namespace skerrow {
namespace {

using tests::described;

using Items = std::vector<Value>;

Value one() { return Number::signed32(1); }

TEST(Value, IsNullUnlessMadeOtherwise) {
  EXPECT_TRUE(Value().isNull());
  EXPECT_EQ(Value().kind(), Kind::null);
}

// Values that must all differ from each other, several of each kind.
std::vector<Value> distinctValues() {
  return {
      Value(),
      one(),
      Number::signed64(9007199254740993),
      Number::real(9007199254740992.0),
      Number::unsigned64(UINT64_MAX),
      Number::real(std::numeric_limits<double>::quiet_NaN()),
      Date{0},
      Date{1},
      Date{-1.5},
      u"",
      u"1",
      u"true",
      u"a text that is long enough to differ at the end only: a",
      u"a text that is long enough to differ at the end only: b",
      Url{""},
      Url{"1"},
      Items{},
      Items{Value()},
      Items{one()},
      Items{one(), one()},
      Items{Value(Items{one()})},
      Items{one(), Items{}},
      Items{Items{}, one()},
      Record{},
      Record{{u"a", one()}},
      Record{{u"b", one()}},
      Record{{u"a", u"1"}},
      Record{{u"a", one()}, {u"b", Value()}},
      Record{{u"a", Value()}, {u"b", one()}},
      Record{{u"a", one()}, {u"b", Value()}, {u"c", Value()}},
      Value::data(""),
      Value::data("1"),
      ScriptValue::null(),
      ScriptValue::integer32(1),
      ScriptValue::list({}),
      ErrorObject{""},
      ErrorObject{"1"},
      OpaqueObject{""},
      OpaqueObject{""},  // another object: each equals only itself
  };
}

TEST(Value, EqualsOnlyWhatHasTheSameKindAndContent) {
  const std::vector<Value> values = distinctValues();
  for (const Value& a : values) {
    for (const Value& b : values) {
      EXPECT_EQ(a == b, &a == &b) << described(a) << " and " << described(b);
    }
  }
}

struct EqualRow {
  const char* about;
  Value a;
  Value b;
};

TEST(Value, EqualValuesHaveEqualHashesHoweverTheyAreStored) {
  const EqualRow rows[] = {
      {"1 and 1.0", one(), Number::real(1)},
      {"1 and true", one(), Number::boolean(true)},
      {"zeros", Number::real(-0.0), Number::boolean(false)},
      {"NaNs", Number::real(std::numeric_limits<double>::quiet_NaN()),
       Number::real(-std::numeric_limits<double>::quiet_NaN())},
      {"dates that are zero", Date{0.0}, Date{-0.0}},
      {"texts", u"é", std::u16string(u"é")},
      {"adopted and copied text", std::u16string(300, u'x'),
       std::u16string_view(std::u16string(300, u'x'))},
      {"lone surrogates", std::u16string(1, 0xD800), std::u16string(1, 0xD800)},
      {"lists", Items{one(), u"a"}, Items{Number::real(1), u"a"}},
      {"empty lists", Items{}, Items{}},
      {"records in another order", Record{{u"a", one()}, {u"b", u"x"}},
       Record{{u"b", u"x"}, {u"a", Number::boolean(true)}}},
      {"records within lists", Items{Record{{u"a", one()}, {u"b", one()}}},
       Items{Record{{u"b", one()}, {u"a", one()}}}},
      {"keys that are numbers", Record{{one(), u"x"}}, Record{{Number::real(1), u"x"}}},
      {"data", Value::data("x"), Value::data("x")},
      {"URLs", Url{"file:///a"}, Url{"file:///a"}},
      {"raw values", ScriptValue::integer32(7), ScriptValue::integer32(7)},
      {"raw lists", ScriptValue::list({ScriptValue()}), ScriptValue::list({ScriptValue()})},
      {"errors", ErrorObject{"e"}, ErrorObject{"e"}},
  };
  for (const EqualRow& row : rows) {
    EXPECT_TRUE(row.a == row.b) << row.about;
    EXPECT_TRUE(row.b == row.a) << row.about;
    EXPECT_EQ(row.a.hash(), row.b.hash()) << row.about;
  }
}

// As NaN does among numbers: otherwise a list of such dates could not be made unique.
TEST(Value, EqualsItsCopyWhateverItHolds) {
  std::vector<Value> values = distinctValues();
  values.emplace_back(Date{std::numeric_limits<double>::quiet_NaN()});
  for (const Value& value : values) {
    const Value copy = value;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_TRUE(copy == value) << described(value);
    EXPECT_EQ(copy.hash(), value.hash()) << described(value);
  }
}

TEST(Value, OrdinaryTextsAndNumbersSpreadOverTheHashes) {
  std::vector<std::size_t> hashes;
  for (int i = 0; i < 2000; ++i) {
    hashes.push_back(Value(Number::signed32(i)).hash());
    hashes.push_back(Value(Number::real(i + 0.5)).hash());
    hashes.push_back(
        Value(std::u16string(static_cast<std::size_t>(i % 50), u'x') + char16_t(i)).hash());
  }
  std::ranges::sort(hashes);
  EXPECT_EQ(std::ranges::adjacent_find(hashes), hashes.end());
}

TEST(Value, GivesBackWhatItWasMadeFrom) {
  EXPECT_EQ(described(Value(Number::unsigned64(UINT64_MAX)).number()),
            "unsigned64 18446744073709551615");
  EXPECT_EQ(described(Value(Number::real(-0.0)).number()), "real -0");
  EXPECT_EQ(described(Value(Number::booleanHolding(-5)).number()), "boolean -5");
  EXPECT_EQ(Value(Date{2.5}).date().seconds, 2.5);
  EXPECT_EQ(described(Value(u"é").text()), described(u"é"));
  EXPECT_EQ(Value(Url{"http://x"}).url().absoluteString, "http://x");
  EXPECT_EQ(Value(Items{one(), one()}).items().size(), 2U);
  EXPECT_EQ(Value(Record{{u"a", one()}}).record().fieldCount(), 1U);
  EXPECT_EQ(Value::data(std::string("\0a", 2)).data(), std::string("\0a", 2));
  EXPECT_TRUE(Value(ScriptValue::integer32(3)).raw() == ScriptValue::integer32(3));
  EXPECT_EQ(Value(ErrorObject{"why"}).error().localizedDescription, "why");
  EXPECT_EQ(Value(OpaqueObject{"thing"}).opaque().description, "thing");
}

TEST(Value, SharesTextWithItsCopies) {
  const Value value = std::u16string(1000, u'x');
  const Text shared = value.sharedText();
  EXPECT_EQ(shared.view().data(), value.text().data());
  Value given = value;
  EXPECT_EQ(std::move(given).takeText().view().data(), value.text().data());
}

TEST(Value, TakingTheEmptyTextGivesTheEmptyText) {
  Value value = u"";
  EXPECT_TRUE(std::move(value).takeText().isEmpty());
}

TEST(Value, HandsTheItemsOfAListOverWhenNobodyElseHasThem) {
  Value list = Items{u"one", u"two"};
  const Value* const place = list.items().data();
  const Items taken = std::move(list).takeItems();
  EXPECT_EQ(taken.data(), place);
}

TEST(Value, CopiesTheItemsOfASharedListSoThatTheOtherKeepsThem) {
  Value list = Items{u"one", u"two"};
  const Value other = list;
  Items taken = std::move(list).takeItems();
  taken.at(0) = one();
  EXPECT_EQ(described(other), "[“one”, “two”]");
}

TEST(Value, MovingLeavesNullBehind) {
  for (Value value : distinctValues()) {
    const std::string before = described(value);
    const Value moved = std::move(value);
    EXPECT_EQ(described(moved), before);
    EXPECT_TRUE(value.isNull());  // NOLINT(bugprone-use-after-move): that is the test
  }
}

TEST(Value, SurvivesAssignmentFromAPartOfItself) {
  Value list = Items{Value(Items{u"inner"})};
  list = list.items()[0];
  EXPECT_EQ(described(list), "[“inner”]");
  Value record = Record{{u"a", Record{{u"b", u"inner"}}}};
  record = *record.record().find(u"a");
  EXPECT_EQ(described(record), "{“b”: “inner”}");
}

RC_GTEST_PROP(Value, EqualsItsContentInOtherStorageAndHashesTheSame, ()) {
  const Value value = *tests::anyValue();
  const Value other = tests::rebuilt(value);
  RC_ASSERT(value == other);
  RC_ASSERT(other == value);
  RC_ASSERT(value.hash() == other.hash());
}

RC_GTEST_PROP(Value, EqualityIsSymmetricAndHashesRespectIt, ()) {
  const Value a = *tests::anyValue();
  const Value b = *tests::anyValue();
  RC_ASSERT((a == b) == (b == a));
  if (a == b) RC_ASSERT(a.hash() == b.hash());
}

}  // namespace
}  // namespace skerrow
