#include "foundation/key_path/key_path.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/text_encoding.h"
#include "tests/support/properties.h"
#include "tests/support/stopped_work.h"
#include "values/depth.h"
#include "values/record.h"

namespace skerrow::foundation {
namespace {

Value integer(std::int64_t number) { return Number::signed64(number); }
Value real(double number) { return Number::real(number); }
Value list(std::vector<Value> items) { return Value(std::move(items)); }
Value record(std::initializer_list<Record::Entry> fields) { return Value(Record(fields)); }

Value item(const char16_t* name, std::int64_t price) {
  return record({{u"name", name}, {u"price", integer(price)}});
}

Value shop() {
  return record({{u"owner", record({{u"name", u"Ann"}, {u"age", integer(40)}})},
                 {u"items", list({item(u"pen", 3), item(u"ink", 12), item(u"pen", 5)})},
                 {u"shelves", list({list({integer(1), integer(2)}), list({integer(2)})})},
                 {u"empty", list({})},
                 {u"none", Value()},
                 {u"title", u"Shop"},
                 {u"opened", Date{100}}});
}

struct LookUpCase {
  std::u16string_view path;
  Value expected;
};

TEST(KeyPath, FindsValuesInRecordsAndLists) {
  const LookUpCase cases[] = {
      {u"title", u"Shop"},
      {u"owner.name", u"Ann"},
      {u"owner.age", integer(40)},
      {u"absent", Value()},
      {u"absent.deeper.still", Value()},
      {u"owner.absent", Value()},
      {u"none", Value()},
      {u"none.name", Value()},
      {u"none.@count", Value()},
      {u"absent.@sum.price", Value()},
      {u"", Value()},
      {u"owner..name", Value()},
      {u"title.self", u"Shop"},
      {u"opened.self.self", Date{100}},
      {u"items.name", list({u"pen", u"ink", u"pen"})},
      {u"items.absent", list({Value(), Value(), Value()})},
      {u"items.name.self", list({u"pen", u"ink", u"pen"})},
      {u"shelves.self", list({list({integer(1), integer(2)}), list({integer(2)})})},
      {u"empty.name", list({})},
      {u"self", Value()},  // a label like any other
      {u"owner.self", Value()},
  };
  for (const LookUpCase& row : cases) {
    EXPECT_EQ(KeyPath(row.path).valueIn(shop()), row.expected) << utf8FromUtf16(row.path);
  }
}

TEST(KeyPath, AppliesCollectionOperators) {
  const LookUpCase cases[] = {
      {u"items.@count", integer(3)},
      {u"items.@count.ignored", integer(3)},
      {u"@count", integer(7)},  // of a record its entries
      {u"owner.@count", integer(2)},
      {u"empty.@count", integer(0)},
      {u"items.@sum.price", integer(20)},
      {u"items.@avg.price", real(20.0 / 3)},
      {u"items.@min.price", integer(3)},
      {u"items.@max.price", integer(12)},
      {u"items.@min.name", u"ink"},
      {u"items.@max.name", u"pen"},
      {u"items.@sum.absent", integer(0)},
      {u"items.@avg.absent", integer(0)},
      {u"items.@min.absent", Value()},
      {u"empty.@sum.price", integer(0)},
      {u"empty.@avg.price", integer(0)},
      {u"empty.@min.price", Value()},
      {u"empty.@max.price", Value()},
      {u"items.@unionOfObjects.name", list({u"pen", u"ink", u"pen"})},
      {u"items.@distinctUnionOfObjects.name", list({u"pen", u"ink"})},
      {u"items.@unionOfObjects.absent", list({Value(), Value(), Value()})},
      {u"items.@distinctUnionOfObjects.absent", list({Value()})},
      {u"shelves.@unionOfArrays.self", list({integer(1), integer(2), integer(2)})},
      {u"shelves.@distinctUnionOfArrays.self", list({integer(1), integer(2)})},
      {u"shelves.@unionOfSets.self", list({integer(1), integer(2)})},
      {u"shelves.@distinctUnionOfSets.self", list({integer(1), integer(2)})},
      {u"shelves.@max.@count", integer(2)},
      {u"shelves.@sum.@max.self", integer(4)},
      {u"empty.@unionOfObjects.self", list({})},
      {u"empty.@unionOfArrays.self", list({})},
      {u"items.@unionOfArrays.absent", list({})},
  };
  for (const LookUpCase& row : cases) {
    EXPECT_EQ(KeyPath(row.path).valueIn(shop()), row.expected) << utf8FromUtf16(row.path);
  }
}

TEST(KeyPath, StartsFromAList) {
  const Value items = list({item(u"a", 1), item(u"b", 2)});
  EXPECT_EQ(KeyPath(u"name").valueIn(items), list({u"a", u"b"}));
  EXPECT_EQ(KeyPath(u"@sum.price").valueIn(items), integer(3));
  EXPECT_EQ(KeyPath(u"@count").valueIn(items), integer(2));
  EXPECT_EQ(KeyPath(u"@unionOfArrays.price").valueIn(list({items, items})),
            list({integer(1), integer(2), integer(1), integer(2)}));
}

TEST(KeyPath, GivesNullForNull) {
  EXPECT_EQ(KeyPath(u"a.b").valueIn(Value()), Value());
  EXPECT_EQ(KeyPath(u"@count").valueIn(Value()), Value());
}

TEST(KeyPath, GivesSumsAndAveragesAsReals) {
  const Value sum = KeyPath(u"@sum.self").valueIn(list({integer(1), integer(2)}));
  ASSERT_TRUE(sum.isNumber());
  EXPECT_TRUE(sum.number().isReal());
}

TEST(KeyPath, TakesTextsThatSpellNumbersAsNumbersInSums) {
  EXPECT_EQ(KeyPath(u"@sum.self").valueIn(list({u"1.5", u" 2 ", integer(3)})), real(6.5));
  EXPECT_EQ(KeyPath(u"@avg.self").valueIn(list({u"-1", u"+2"})), real(0.5));
}

TEST(KeyPath, FindsTheFirstOfTheLeastAndGreatestItems) {
  const Value one = Number::signed64(1);
  const Value alsoOne = Number::real(1);
  const Value least = KeyPath(u"@min.self").valueIn(list({alsoOne, one, integer(2)}));
  EXPECT_TRUE(least.number().isReal());
  EXPECT_EQ(KeyPath(u"@max.self").valueIn(list({Date{1}, Date{3}, Date{2}})), Value(Date{3}));
  // An integer that a real cannot tell from its neighbour.
  EXPECT_EQ(
      KeyPath(u"@max.self").valueIn(list({integer(9007199254740992), integer(9007199254740993)})),
      integer(9007199254740993));
}

TEST(KeyPath, UsesALabelThatLooksLikeAnUnknownOperator) {
  EXPECT_EQ(KeyPath(u"@id").valueIn(record({{u"@id", integer(7)}})), integer(7));
}

struct FailureCase {
  std::u16string_view path;
  Value item;
  std::string reason;
};

TEST(KeyPath, SaysWhatIsWrongAndNamesTheKey) {
  const FailureCase cases[] = {
      {u"name", u"text", "A text has no value for the key “name”."},
      {u"name", integer(1), "A number has no value for the key “name”."},
      {u"name", Number::boolean(true), "A number has no value for the key “name”."},
      {u"name", Date{0}, "A date has no value for the key “name”."},
      {u"name", Url{"file:///"}, "A URL has no value for the key “name”."},
      {u"name", Value::data("x"), "Data has no value for the key “name”."},
      {u"", u"text", "A text has no value for the key “”."},
      {u"length", u"text", "A text has no value for the key “length”."},
      {u"title.name", shop(), "A text has no value for the key “name”."},
      {u"items.price.unit", shop(), "A number has no value for the key “unit”."},
      {u"größe", u"text", "A text has no value for the key “größe”."},
      {u"name", list({item(u"a", 1), u"text"}), "A text has no value for the key “name”."},
      {u"title.@count", shop(),
       "A text is no list, so the collection operator “@count” cannot be applied to it."},
      {u"owner.@sum.age", shop(),
       "A record is no list, so the collection operator “@sum” cannot be applied to it."},
      {u"items.@sum.name", shop(),
       "The collection operator “@sum” found a value that is not a number."},
      {u"@avg.self", list({Date{1}}),
       "The collection operator “@avg” found a value that is not a number."},
      {u"@max.self", list({integer(1), u"a"}),
       "The collection operator “@max” found values that cannot be compared."},
      {u"@min.self", list({list({})}),
       "The collection operator “@min” found values that cannot be compared."},
      {u"@unionOfArrays.self", list({integer(1)}),
       "A number is no list, and the collection operator “@unionOfArrays” needs a list of lists."},
      {u"@median.self", list({integer(1)}), "There is no collection operator “@median”."},
      {u"@sum.price.deeper", list({item(u"a", 1)}), "A number has no value for the key “deeper”."},
  };
  for (const FailureCase& row : cases) {
    SCOPED_TRACE(utf8FromUtf16(row.path));
    try {
      (void)KeyPath(row.path).valueIn(row.item);
      ADD_FAILURE() << "no error";
    } catch (const KeyPathError& error) {
      EXPECT_EQ(error.reason(), row.reason);
    }
  }
}

struct RefusedCase {
  std::u16string path;
  std::string reason;
};

TEST(KeyPath, RefusesPathsThatCannotBeFollowedAnywhere) {
  std::u16string tooMany = u"a";
  for (int i = 0; i < 4096; ++i) tooMany += u".a";
  const RefusedCase cases[] = {
      {u"@sum",
       "The collection operator “@sum” needs a key behind it; “self” stands for numbers "
       "and texts themselves."},
      {u"a.@distinctUnionOfObjects",
       "The collection operator “@distinctUnionOfObjects” needs a key behind it; “self” stands "
       "for numbers and texts themselves."},
      {tooMany, "A key path can have at most 4096 keys."},
      {std::u16string(1'000'000, u'.'), "A key path can have at most 4096 keys."},
  };
  for (const RefusedCase& row : cases) {
    try {
      const KeyPath path(row.path);
      ADD_FAILURE() << "no error";
    } catch (const KeyPathError& error) {
      EXPECT_EQ(error.reason(), row.reason);
    }
  }
}

TEST(KeyPath, CutsALongKeyInItsReason) {
  try {
    (void)KeyPath(std::u16string(100'000, u'k')).valueIn(Value(u"text"));
    ADD_FAILURE() << "no error";
  } catch (const KeyPathError& error) {
    EXPECT_EQ(error.reason(), "A text has no value for the key “" + std::string(200, 'k') + "…”.");
  }
}

TEST(KeyPath, LooksUpAllAlongALongPath) {
  std::u16string path = u"self";
  for (int i = 0; i < 600; ++i) path += u".self";
  const Value numbers = list(std::vector<Value>(5000, integer(1)));
  const tests::StoppedWork stopped;
  EXPECT_THROW((void)KeyPath(path).valueIn(numbers), work::Stopped);
}

TEST(KeyPath, FindsWithoutAnExceptionForWhomNeedsNoReason) {
  Value room;
  StepBudget steps;
  EXPECT_EQ(KeyPath(u"name").find(Value(u"text"), room, steps), nullptr);
  EXPECT_EQ(KeyPath(u"@max.self").find(list({integer(1), u"a"}), room, steps), nullptr);
  const Value thing = item(u"pen", 3);
  const Value* const found = KeyPath(u"name").find(thing, room, steps);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found, thing.record().find(Value(u"name")));  // where it lies
}

TEST(KeyPath, AsksTextsAboutThemselvesWhereWanted) {
  struct TextKeyCase {
    std::u16string_view path;
    Value text;
    Value expected;
  };
  const TextKeyCase cases[] = {
      {u"length", u"abc", integer(3)},
      {u"length", u"", integer(0)},
      {u"length", u"\U0001F600", integer(2)},
      {u"uppercaseString", u"straße", u"STRASSE"},
      {u"lowercaseString", u"ÀB", u"àb"},
      {u"uppercaseString", u"", u""},
      {u"uppercaseString.length", u"ß", integer(2)},
      {u"integerValue", u" 42 pears", integer(42)},
      {u"intValue", u"3.9", integer(3)},
      {u"doubleValue", u"3.5e1x", real(35)},
      {u"doubleValue", u"none", integer(0)},
      {u"boolValue", u"Yes", Number::boolean(true)},
      {u"boolValue", u"true", Number::boolean(true)},
      {u"boolValue", u"007", Number::boolean(true)},
      {u"boolValue", u"0", Number::boolean(false)},
      {u"boolValue", u"no", Number::boolean(false)},
      {u"boolValue", u"", Number::boolean(false)},
      {u"length", list({u"a", u"bcd"}), list({integer(1), integer(3)})},
      {u"length", record({{u"length", integer(9)}}), integer(9)},
  };
  for (const TextKeyCase& row : cases) {
    const KeyPath path(row.path, KeyPath::TextKeys::published);
    EXPECT_EQ(path.valueIn(row.text), row.expected) << utf8FromUtf16(row.path);
  }
  EXPECT_THROW((void)KeyPath(u"size", KeyPath::TextKeys::published).valueIn(Value(u"a")),
               KeyPathError);
}

TEST(KeyPath, FollowsTheDeepestValues) {
  Value nested = integer(1);
  std::u16string path = u"a";
  for (int i = 0; i < 999; ++i) path += u".a";
  for (int i = 0; i < 1000; ++i) nested = record({{u"a", nested}});
  EXPECT_EQ(KeyPath(path).valueIn(nested), integer(1));

  Value lists = record({{u"a", integer(1)}});
  while (lists.depth() < kMaximumDepth) lists = list({lists});
  const Value found = KeyPath(u"a").valueIn(lists);
  EXPECT_EQ(found.depth(), kMaximumDepth - 2);

  std::u16string operators;
  for (int i = 0; i < 999; ++i) operators += u"@unionOfObjects.";
  Value inner = integer(1);
  for (int i = 0; i < 999; ++i) inner = list({inner});
  EXPECT_EQ(KeyPath(operators + u"self").valueIn(inner).depth(), 999U);
}

// A value of nested lists and records, with some absent labels.
Value arbitraryValue(int depth) {
  const int kind = *rc::gen::inRange(0, depth > 0 ? 6 : 4);
  switch (kind) {
    case 0:
      return Value();
    case 1:
      return integer(*rc::gen::inRange<std::int64_t>(-3, 4));
    case 2:
      return Value(std::u16string_view(u"1x").substr(*rc::gen::inRange<std::size_t>(0, 3)));
    case 3:
      return Value(Date{static_cast<double>(*rc::gen::inRange(0, 3))});
    case 4: {
      std::vector<Value> items(static_cast<std::size_t>(*rc::gen::inRange(0, 4)));
      for (Value& element : items) element = arbitraryValue(depth - 1);
      return Value(std::move(items));
    }
    default: {
      Record fields;
      for (const char16_t* label : {u"a", u"b", u"self"}) {
        if (*rc::gen::arbitrary<bool>()) fields.set(label, arbitraryValue(depth - 1));
      }
      return Value(std::move(fields));
    }
  }
}

std::u16string arbitraryPath() {
  static const std::vector<std::u16string> kKeys = {u"a",
                                                    u"b",
                                                    u"self",
                                                    u"@count",
                                                    u"@sum",
                                                    u"@max",
                                                    u"@unionOfObjects",
                                                    u"@distinctUnionOfArrays",
                                                    u"@x",
                                                    u""};
  const auto key = [] { return kKeys[*rc::gen::inRange<std::size_t>(0, kKeys.size())]; };
  std::u16string path = key();
  const int count = *rc::gen::inRange(0, 4);
  for (int i = 0; i < count; ++i) path += u"." + key();
  return path;
}

RC_GTEST_PROP(KeyPath, FindsTheSameWithAndWithoutAReason, ()) {
  const Value value = arbitraryValue(4);
  try {
    const KeyPath path(arbitraryPath());
    Value room;
    StepBudget steps;
    const Value* const found = path.find(value, room, steps);
    if (found != nullptr) {
      RC_ASSERT(path.valueIn(value) == *found);
    } else {
      RC_ASSERT_THROWS_AS((void)path.valueIn(value), KeyPathError);
    }
  } catch (const KeyPathError& error) {
    RC_ASSERT(std::string(error.what()).find("needs a key behind it") != std::string::npos);
  }
}

RC_GTEST_PROP(KeyPath, AppliesTheRestOfAPathToEveryItem, ()) {
  static const std::vector<std::u16string> kPaths = {u"a", u"a.b", u"self", u"b.self.a"};
  const KeyPath path(kPaths[*rc::gen::inRange<std::size_t>(0, kPaths.size())]);
  std::vector<Value> items(static_cast<std::size_t>(*rc::gen::inRange(0, 4)));
  for (Value& element : items) element = arbitraryValue(3);
  Value room;
  StepBudget steps;
  const Value* const found = path.find(list(items), room, steps);
  std::vector<Value> each;
  for (const Value& element : items) {
    Value itemRoom;
    const Value* const one = path.find(element, itemRoom, steps);
    if (one == nullptr) {
      RC_ASSERT(found == nullptr);
      return;
    }
    each.push_back(*one);
  }
  RC_ASSERT(found != nullptr);
  RC_ASSERT(*found == list(each));
}

}  // namespace
}  // namespace skerrow::foundation
