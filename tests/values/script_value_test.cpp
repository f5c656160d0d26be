#include "values/script_value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/building.h"
#include "tests/support/generators.h"
#include "values/object_reference.h"

namespace skerrow {
namespace {

using namespace literals;
using tests::described;
using tests::labelledRecord;
using tests::scriptRecord;
using tests::scriptText;

TEST(ScriptValue, IsMissingValueUnlessMadeOtherwise) {
  const ScriptValue value;
  EXPECT_TRUE(value.isMissingValue());
  EXPECT_EQ(value.type(), "type"_code);
  EXPECT_EQ(value.namedCode(), "msng"_code);
  EXPECT_EQ(value.payload().size(), 4U);
  EXPECT_TRUE(value == ScriptValue::typeCode("msng"_code));
}

TEST(ScriptValue, KeepsAPayloadOfAnyLengthByteForByte) {
  for (const std::size_t count : {0U, 1U, 7U, 8U, 9U, 16U, 4096U}) {
    SCOPED_TRACE(count);
    std::string bytes(count, '\0');
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 37);
    const ScriptValue value = ScriptValue::withPayload("abcd"_code, bytes);
    EXPECT_EQ(value.payload(), bytes);
    EXPECT_EQ(value.type(), "abcd"_code);
    EXPECT_FALSE(value.hasItems());
    EXPECT_FALSE(value.hasFields());
    EXPECT_EQ(value.depth(), 0U);
    EXPECT_EQ(value.heldUnits(), std::nullopt);
    const ScriptValue copy = value;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.payload(), bytes);
    EXPECT_TRUE(copy == value);
  }
}

TEST(ScriptValue, HoldsAReferenceToAnObject) {
  const auto object = std::make_shared<PathReference>("progWin.progMessage");
  const ScriptValue value = ScriptValue::reference(object);
  EXPECT_EQ(value.type(), "obj "_code);
  EXPECT_EQ(value.objectReference(), object.get());
  EXPECT_EQ(value.objectReference()->path(), "progWin.progMessage");
  EXPECT_EQ(value.payload(), "");
  EXPECT_EQ(value.depth(), 0U);
  EXPECT_FALSE(value.hasItems() || value.hasFields() || value.holdsText());
  const ScriptValue list = ScriptValue::list({value, value});
  EXPECT_EQ(list.items()[1].objectReference(), object.get());
  EXPECT_EQ(ScriptValue::withPayload("obj "_code, "progWin").objectReference(), nullptr);
  EXPECT_EQ(ScriptValue().objectReference(), nullptr);
}

TEST(ScriptValue, GivesItsReferenceUpWithItsLastCopy) {
  auto object = std::make_shared<PathReference>("a");
  const std::weak_ptr<const ObjectReference> watched = object;
  {
    const ScriptValue value = ScriptValue::reference(std::move(object));
    ScriptValue copy = value;
    const ScriptValue moved = std::move(copy);
    EXPECT_EQ(watched.use_count(), 1);
    EXPECT_EQ(moved.objectReference()->path(), "a");
  }
  EXPECT_TRUE(watched.expired());
}

TEST(ScriptValue, ReferencesAreEqualByTheirPaths) {
  const auto reference = [](const char* path) {
    return ScriptValue::reference(std::make_shared<PathReference>(path));
  };
  EXPECT_TRUE(reference("a.b") == reference("a.b"));
  EXPECT_FALSE(reference("a.b") == reference("a.c"));
  EXPECT_FALSE(reference("") == ScriptValue::withPayload("obj "_code, ""));
  EXPECT_FALSE(ScriptValue::withPayload("obj "_code, "") == reference(""));
  EXPECT_FALSE(reference("a") == ScriptValue());
}

struct MadeRow {
  const char* about;
  ScriptValue value;
  const char* expected;
};

TEST(ScriptValue, MakersGiveTheTypeAndPayloadOfTheirKind) {
  const MadeRow rows[] = {
      {"true", ScriptValue::boolean(true), "'true' "},
      {"false", ScriptValue::boolean(false), "'fals' "},
      {"an integer", ScriptValue::integer32(-2), "'long' FEFFFFFF"},
      {"a real", ScriptValue::real(1.0), "'doub' 000000000000F03F"},
      {"a class", ScriptValue::typeCode("pnam"_code), "'type' 6D616E70"},
      {"null", ScriptValue::null(), "'null' "},
      {"text", scriptText(u"ab"), "'utxt' “ab”"},
      {"empty text", scriptText(u""), "'utxt' “”"},
      {"an empty list", ScriptValue::list({}), "'list' []"},
      {"a list", ScriptValue::list({ScriptValue::boolean(true), ScriptValue::list({})}),
       "'list' ['true' , 'list' []]"},
      {"an empty record", ScriptValue::record("reco"_code, {}), "'reco' {}"},
      {"a record of a class", ScriptValue::record("cobj"_code, {{"pnam"_code, scriptText(u"n")}}),
       "'cobj' {'pnam': 'utxt' “n”}"},
  };
  for (const MadeRow& row : rows) EXPECT_EQ(described(row.value), row.expected) << row.about;
}

TEST(ScriptValue, PlainNumbersAreReadOnlyAtTheirExactWidth) {
  const ScriptValue value = ScriptValue::withPayload("abcd"_code, "\x01\x02\x03\x04");
  EXPECT_EQ(value.plain<std::uint32_t>(), 0x04030201U);
  EXPECT_EQ(value.plain<std::uint16_t>(), std::nullopt);
  EXPECT_EQ(value.plain<std::uint64_t>(), std::nullopt);
  EXPECT_EQ(ScriptValue::list({}).plain<std::uint32_t>(), std::nullopt);
}

TEST(ScriptValue, NamesACodeOnlyAsAFourByteType) {
  EXPECT_EQ(ScriptValue::typeCode("abcd"_code).namedCode(), "abcd"_code);
  EXPECT_EQ(ScriptValue::withPayload("type"_code, "abc").namedCode(), std::nullopt);
  EXPECT_EQ(ScriptValue::withPayload("type"_code, "").namedCode(), std::nullopt);
  EXPECT_EQ(ScriptValue::withPlain("enum"_code, "abcd"_code).namedCode(), std::nullopt);
  EXPECT_FALSE(ScriptValue::withPlain("enum"_code, "msng"_code).isMissingValue());
  EXPECT_FALSE(ScriptValue::withPayload("msng"_code, "").isMissingValue());
}

TEST(ScriptValue, TextKeepsItsUnitsLoneSurrogatesIncluded) {
  const std::u16string rows[] = {
      u"", u"a", u"é🏔", {0xD800}, {0xDC00, 0xD800}, {u'a', 0}, std::u16string(500, u'x')};
  for (const std::u16string& units : rows) {
    const ScriptValue value = scriptText(units);
    ASSERT_TRUE(value.heldUnits().has_value());
    EXPECT_EQ(described(*value.heldUnits()), described(units));
    EXPECT_EQ(described(value.heldText()->view()), described(units));
    EXPECT_EQ(value.payload().size(), units.size() * 2);
  }
}

// A reader of the payload would take the first unit for a byte-order mark.
TEST(ScriptValue, TextThatBeginsLikeAByteOrderMarkGetsATrueOneBeforeIt) {
  EXPECT_EQ(described(scriptText({u"\xFEFF"
                                  u"a"})),
            "'utxt' “\\uFEFF\\uFEFFa”");
  EXPECT_EQ(described(scriptText({u"\xFFFE"
                                  u"a"})),
            "'utxt' “\\uFEFF\\uFFFEa”");
  EXPECT_EQ(described(scriptText(u"a\xFEFF")), "'utxt' “a\\uFEFF”");
}

TEST(ScriptValue, HandsItsTextOverOnce) {
  ScriptValue value = scriptText(u"given");
  const ScriptValue copy = value;
  const auto taken = std::move(value).takeText();
  ASSERT_TRUE(taken.has_value());
  EXPECT_EQ(described(taken->view()), described(u"given"));
  EXPECT_EQ(described(copy), "'utxt' “given”");
  EXPECT_EQ(ScriptValue::integer32(1).takeText(), std::nullopt);
  EXPECT_EQ(ScriptValue::withPayload("utxt"_code, "a").takeText(), std::nullopt);
}

TEST(ScriptValue, HandsTheItemsOfAListOverWhenNobodyElseHasThem) {
  std::vector<ScriptValue> items(20, scriptText(u"one"));
  items[1] = scriptText(u"two");
  ScriptValue list = ScriptValue::list(std::move(items));
  const ScriptValue* const place = list.items().data();
  const std::vector<ScriptValue> taken = std::move(list).takeItems();
  EXPECT_EQ(taken.data(), place);
  EXPECT_EQ(described(taken.at(1)), "'utxt' “two”");
}

TEST(ScriptValue, CopiesTheItemsOfASharedListSoThatTheOtherKeepsThem) {
  ScriptValue list = ScriptValue::list({scriptText(u"one"), scriptText(u"two")});
  const ScriptValue other = list;
  std::vector<ScriptValue> taken = std::move(list).takeItems();
  taken.at(0) = ScriptValue::integer32(0);
  EXPECT_EQ(described(other), "'list' ['utxt' “one”, 'utxt' “two”]");
}

std::vector<ScriptValue> numbered(std::size_t count) {
  std::vector<ScriptValue> items;
  for (std::size_t i = 0; i < count; ++i) {
    items.push_back(scriptText(u"item " + std::u16string(i % 5, u'x')));
  }
  return items;
}

// Few items lie elsewhere than many.
TEST(ScriptValue, KeepsItsItemsHoweverManyThereAre) {
  for (const std::size_t count : {0U, 1U, 2U, 15U, 16U, 17U, 100U}) {
    const std::vector<ScriptValue> items = numbered(count);
    std::vector<ScriptValue> given = items;
    const ScriptValue list = ScriptValue::listTaking(given);
    EXPECT_TRUE(list == ScriptValue::list(items)) << count;
    EXPECT_EQ(ScriptValue(list).takeItems(), items) << count;
  }
}

TEST(ScriptValue, ARecordOfLabelsAndValuesIsTheSameAsOneOfFields) {
  const ScriptValue a = scriptText(u"a");
  const ScriptValue one = ScriptValue::integer32(1);
  const struct {
    ScriptValue labelled;
    ScriptValue ofFields;
  } rows[] = {
      {labelledRecord({}), ScriptValue::record("reco"_code, {})},
      {labelledRecord({{u"b", one}}), scriptRecord({scriptText(u"b"), one})},
      {labelledRecord({{u"", a}, {u"pnam", one}, {u"«pnam»", a}}),
       scriptRecord({scriptText(u""), a, scriptText(u"pnam"), one, scriptText(u"«pnam»"), a})},
      {labelledRecord({{u"\uFEFFmark", one}}), scriptRecord({scriptText(u"\uFEFFmark"), one})},
      {labelledRecord({{u"b", labelledRecord({{u"c", ScriptValue::list({a})}})}}),
       scriptRecord({scriptText(u"b"), scriptRecord({scriptText(u"c"), ScriptValue::list({a})})})},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(described(row.ofFields));
    EXPECT_TRUE(row.labelled.hasFields());
    EXPECT_FALSE(row.labelled.hasItems());
    EXPECT_EQ(described(row.labelled), described(row.ofFields));
    EXPECT_EQ(row.labelled.fields(), row.ofFields.fields());
    EXPECT_EQ(row.labelled.depth(), row.ofFields.depth());
    EXPECT_TRUE(row.labelled == row.ofFields);
    EXPECT_TRUE(row.ofFields == row.labelled);
    for (const auto& other : rows) {
      EXPECT_EQ(row.labelled == other.labelled, &row == &other);
      EXPECT_EQ(row.labelled == other.ofFields, &row == &other);
    }
    EXPECT_EQ(row.ofFields.labels(), nullptr);
    EXPECT_TRUE(row.ofFields.labelledValues().empty());
  }
}

TEST(ScriptValue, ARecordKeepsItsValuesHoweverManyLabelsItHas) {
  for (const std::size_t count : {1U, 12U, 13U, 1000U}) {
    Keys labels;
    for (std::size_t i = 0; i < count; ++i) labels.append(Value(std::u16string(i, u'x')));
    const std::vector<ScriptValue> values = numbered(count);
    std::vector<ScriptValue> given = values;
    const ScriptValue record = ScriptValue::labelledRecord(labels, given);
    ASSERT_NE(record.labels(), nullptr);
    EXPECT_TRUE(record.labels()->areShared(labels));
    EXPECT_TRUE(std::ranges::equal(record.labelledValues(), values)) << count;
  }
}

TEST(ScriptValue, GivesItsOwnValuesToTakeFromOnlyWhereNobodyElseHasThem) {
  ScriptValue record = labelledRecord({{u"a", scriptText(u"one")}, {u"b", scriptText(u"two")}});
  EXPECT_EQ(record.ownLabelledValues().data(), record.labelledValues().data());
  EXPECT_EQ(record.ownLabelledValues().size(), 2U);
  const ScriptValue other = record;
  EXPECT_TRUE(record.ownLabelledValues().empty());
  EXPECT_EQ(other.labelledValues().front(), scriptText(u"one"));
  ScriptValue text = scriptText(u"a");
  EXPECT_TRUE(text.ownLabelledValues().empty());
}

TEST(ScriptValue, OnlyListsHaveItemsToHandOver) {
  EXPECT_TRUE(ScriptValue::list({}).takeItems().empty());
  EXPECT_TRUE(scriptText(u"text").takeItems().empty());
  EXPECT_TRUE(ScriptValue::record("reco"_code, {{"pnam"_code, ScriptValue()}}).takeItems().empty());
  EXPECT_TRUE(ScriptValue::withPayload("list"_code, "bytes").takeItems().empty());
}

TEST(ScriptValue, AListMadeFromBytesHoldsNoItems) {
  const ScriptValue list = ScriptValue::withPayload("list"_code, "bytes that are no list");
  EXPECT_FALSE(list.hasItems());
  EXPECT_TRUE(list.items().empty());
  EXPECT_FALSE(ScriptValue::withPayload("reco"_code, "").hasFields());
}

TEST(ScriptValue, EqualityNeedsTheSameTypeShapeAndContentInOrder) {
  const ScriptValue values[] = {
      ScriptValue(),
      ScriptValue::null(),
      ScriptValue::typeCode("pnam"_code),
      ScriptValue::withPlain("enum"_code, "pnam"_code),
      ScriptValue::integer32(1),
      ScriptValue::withPayload("magn"_code, ScriptValue::integer32(1).payload()),
      ScriptValue::real(1),
      ScriptValue::boolean(true),
      scriptText(u""),
      scriptText(u"a"),
      scriptText(u"a rather long text"),
      ScriptValue::withPayload("list"_code, ""),
      ScriptValue::list({}),
      ScriptValue::list({ScriptValue()}),
      ScriptValue::list({scriptText(u"a"), scriptText(u"")}),
      ScriptValue::list({scriptText(u""), scriptText(u"a")}),
      ScriptValue::withPayload("reco"_code, ""),
      ScriptValue::record("reco"_code, {}),
      ScriptValue::record("cobj"_code, {}),
      ScriptValue::record("list"_code, {}),
      ScriptValue::record("reco"_code, {{"pnam"_code, scriptText(u"a")}}),
      ScriptValue::record("reco"_code, {{"pcls"_code, scriptText(u"a")}}),
      ScriptValue::record("reco"_code, {{"pnam"_code, scriptText(u"b")}}),
      ScriptValue::record("reco"_code,
                          {{"pnam"_code, scriptText(u"a")}, {"pcls"_code, ScriptValue()}}),
      ScriptValue::record("reco"_code,
                          {{"pcls"_code, ScriptValue()}, {"pnam"_code, scriptText(u"a")}}),
  };
  for (const ScriptValue& one : values) {
    for (const ScriptValue& other : values) {
      EXPECT_EQ(one == other, &one == &other) << described(one) << " and " << described(other);
    }
  }
}

TEST(ScriptValue, EqualityDoesNotSeeHowAPayloadIsStored) {
  EXPECT_TRUE(scriptText(u"ab") == ScriptValue::withPayload("utxt"_code, {"a\0b\0", 4}));
  EXPECT_TRUE(scriptText(u"abcdefgh") ==
              ScriptValue::withPayload("utxt"_code, {"a\0b\0c\0d\0e\0f\0g\0h\0", 16}));
}

TEST(ScriptValue, SurvivesAssignmentFromAPartOfItself) {
  ScriptValue list = ScriptValue::list({ScriptValue::list({scriptText(u"inner text")})});
  list = list.items()[0];
  EXPECT_EQ(described(list), "'list' ['utxt' “inner text”]");
  list = list.items()[0];
  EXPECT_EQ(described(list), "'utxt' “inner text”");
  const ScriptValue& alias = list;
  list = alias;
  EXPECT_EQ(described(list), "'utxt' “inner text”");
}

RC_GTEST_PROP(ScriptValue, CopiesAreEqualAndMovingKeepsTheContent, ()) {
  const ScriptValue value = *tests::anyScriptValue();
  ScriptValue copy = value;
  RC_ASSERT(copy == value);
  const ScriptValue moved = std::move(copy);
  RC_ASSERT(moved == value);
  ScriptValue assigned;
  assigned = moved;
  RC_ASSERT(assigned == value);
}

}  // namespace
}  // namespace skerrow
