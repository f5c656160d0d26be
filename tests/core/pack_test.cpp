#include "core/pack.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "core/unpack.h"
#include "foundation/encoding/code_text.h"
#include "tests/support/building.h"
#include "tests/support/generators.h"
#include "values/depth.h"

namespace skerrow::core {
namespace {

using namespace literals;
using tests::described;
using tests::plain;
using tests::scriptText;

using Items = std::vector<Value>;

struct Row {
  const char* about;
  Value value;
  ScriptValue expected;
};

void expectPacks(const Row& row) {
  SCOPED_TRACE(row.about);
  EXPECT_EQ(described(makeDescriptor(row.value)), described(row.expected));
  Value given = row.value;
  EXPECT_EQ(described(makeDescriptor(std::move(given))), described(row.expected));
}

ScriptValue integer(std::int32_t value) { return ScriptValue::integer32(value); }
ScriptValue real(double value) { return ScriptValue::real(value); }

TEST(MakeDescriptor, NumbersByTheirStorage) {
  const Row rows[] = {
      {"true", Number::boolean(true), ScriptValue::boolean(true)},
      {"false", Number::boolean(false), ScriptValue::boolean(false)},
      {"a boolean that holds 2", Number::booleanHolding(2), ScriptValue::boolean(true)},
      {"a negative boolean is false", Number::booleanHolding(-1), ScriptValue::boolean(false)},
      {"signed 16, lowest", Number::signed16(-32768), integer(-32768)},
      {"signed 16, highest", Number::signed16(32767), integer(32767)},
      {"unsigned 16, highest", Number::unsigned16(65535), integer(65535)},
      {"signed 32, lowest", Number::signed32(INT32_MIN), integer(INT32_MIN)},
      {"signed 32, highest: always an integer", Number::signed32(INT32_MAX), integer(INT32_MAX)},
      {"unsigned 32, 0", Number::unsigned32(0), integer(0)},
      {"unsigned 32, below the bound", Number::unsigned32(2147483646), integer(2147483646)},
      {"unsigned 32, the bound", Number::unsigned32(2147483647), real(2147483647)},
      {"unsigned 32, highest", Number::unsigned32(UINT32_MAX), real(4294967295)},
      {"unsigned 64, below the bound", Number::unsigned64(2147483646), integer(2147483646)},
      {"unsigned 64, the bound", Number::unsigned64(2147483647), real(2147483647)},
      {"unsigned 64, highest", Number::unsigned64(UINT64_MAX), real(18446744073709551616.0)},
      {"signed 64, below the bound", Number::signed64(2147483646), integer(2147483646)},
      {"signed 64, the bound", Number::signed64(2147483647), real(2147483647)},
      {"signed 64, -1", Number::signed64(-1), integer(-1)},
      {"signed 64, lowest of 32 bits", Number::signed64(INT32_MIN), integer(INT32_MIN)},
      {"signed 64, below that: its low 32 bits", Number::signed64(-3000000000),
       integer(1294967296)},
      {"signed 64, lowest", Number::signed64(INT64_MIN), integer(0)},
      {"signed 64, highest", Number::signed64(INT64_MAX), real(9223372036854775808.0)},
      {"a real that is whole stays a real", Number::real(2.0), real(2.0)},
      {"a real", Number::real(0.1), real(0.1)},
      {"negative zero", Number::real(-0.0), real(-0.0)},
      {"infinity", Number::real(-HUGE_VAL), real(-HUGE_VAL)},
  };
  for (const Row& row : rows) expectPacks(row);
}

TEST(MakeDescriptor, EveryOtherKind) {
  const Row rows[] = {
      {"text", u"é🏔", scriptText(u"é🏔")},
      {"empty text", u"", scriptText(u"")},
      {"a lone surrogate", std::u16string(1, 0xDC00), scriptText(std::u16string(1, 0xDC00))},
      {"an error", ErrorObject{"“é” is gone."},
       scriptText(u"An NSError was generated: “é” is gone.")},
      {"an error without a description", ErrorObject{""},
       scriptText(u"An NSError was generated: ")},
      {"an empty list", Items{}, ScriptValue::list({})},
      {"a list", Items{u"a", Items{Value()}},
       ScriptValue::list({scriptText(u"a"), ScriptValue::list({ScriptValue()})})},
      {"a raw value", ScriptValue::withPayload("abcd"_code, "x"),
       ScriptValue::withPayload("abcd"_code, "x")},
      {"an empty record", Record{}, ScriptValue::record("reco"_code, {})},
      {"data", Value::data(std::string("\0\xFF", 2)),
       ScriptValue::withPayload("rdat"_code, {"\0\xFF", 2})},
      {"no data", Value::data(""), ScriptValue::withPayload("rdat"_code, "")},
      {"a file", Url{"file:///Users/x/a.txt"}, tests::fileReference("file:///Users/x/a.txt")},
      {"a file on another machine", Url{"file://there/a"}, tests::fileReference("file://there/a")},
      {"a web address is the null value", Url{"http://example.org"}, ScriptValue::null()},
      {"no address is the null value", Url{""}, ScriptValue::null()},
      {"a date", Date{0}, plain<std::int64_t>("ldt "_code, 3061152000)},
      {"a date with a fraction", Date{-0.5}, plain<std::int64_t>("ldt "_code, 3061151999)},
      {"null", Value(), ScriptValue::typeCode("msng"_code)},
  };
  for (const Row& row : rows) expectPacks(row);
}

TEST(MakeDescriptor, NothingForWhatScriptsCannotHold) {
  const Value rows[] = {OpaqueObject{"thing"}, Date{HUGE_VAL}, Date{std::nan("")}, Date{1e300}};
  for (const Value& value : rows) {
    EXPECT_EQ(described(makeDescriptor(value)), "nothing") << described(value);
    EXPECT_EQ(described(makeDescriptor(Value(value))), "nothing") << described(value);
    // In a list or record missing value takes its place.
    EXPECT_EQ(described(makeDescriptor(Items{value, u"a"})),
              "'list' ['type' 676E736D, 'utxt' “a”]");
    EXPECT_EQ(described(makeDescriptorForArray(Items{value, u"a"})),
              "'list' ['type' 676E736D, 'utxt' “a”]");
    EXPECT_EQ(described(makeDescriptor(Record{{u"a", value}})),
              "'reco' {'usrf': 'list' ['utxt' “a”, 'type' 676E736D]}");
  }
}

TEST(MakeDescriptorForArray, PacksEachItemInOrderFromASharedOrAGivenList) {
  const Items items = {u"a", Number::real(1), Url{"http://x"}, OpaqueObject{""}, Items{}};
  constexpr const char* kExpected =
      "'list' ['utxt' “a”, 'doub' 000000000000F03F, 'null' , 'type' 676E736D, 'list' []]";
  EXPECT_EQ(described(makeDescriptorForArray(std::span(items))), kExpected);
  EXPECT_EQ(described(makeDescriptorForArray(Items(items))), kExpected);
  EXPECT_EQ(described(makeDescriptorForArray(Items{})), "'list' []");
}

TEST(MakeListDescriptorForArrayOfDescriptors, TakesRawItemsAsTheyAre) {
  const Items raw = {ScriptValue::integer32(1), ScriptValue::list({ScriptValue()})};
  EXPECT_EQ(described(makeListDescriptorForArrayOfDescriptors(raw)),
            "'list' ['long' 01000000, 'list' ['type' 676E736D]]");
  EXPECT_EQ(described(makeListDescriptorForArrayOfDescriptors(Items{})), "'list' []");
}

TEST(MakeListDescriptorForArrayOfDescriptors, NothingWhenAnyItemIsNotRaw) {
  const Value raw = ScriptValue::integer32(1);
  for (const Items& items :
       {Items{u"a"}, Items{raw, Value()}, Items{Value(Items{raw})}, Items{raw, u"a", raw}}) {
    EXPECT_EQ(makeListDescriptorForArrayOfDescriptors(items), std::nullopt)
        << described(Value(items));
  }
}

struct RecordRow {
  const char* about;
  Record record;
  const char* expected;
};

Value propertyKey(FourCharCode code) { return ScriptValue::withPlain("prop"_code, code); }
Value typeKey(FourCharCode code) { return ScriptValue::typeCode(code); }

TEST(MakeDescriptorForDictionary, KeysBetweenAngleMarksBecomeKeywordsAndOthersUserFields) {
  const RecordRow rows[] = {
      {"empty", {}, "'reco' {}"},
      {"a keyword and a label",
       {{u"«pnam»", u"a"}, {u"name", u"b"}},
       "'reco' {'pnam': 'utxt' “a”, 'usrf': 'list' ['utxt' “name”, 'utxt' “b”]}"},
      {"keywords alone make no user fields",
       {{u"«pnam»", u"a"}, {u"«pcls»", Value()}},
       "'reco' {'pnam': 'utxt' “a”, 'pcls': 'type' 676E736D}"},
      {"labels in their order",
       {{u"b", u"1"}, {u"a", u"2"}},
       "'reco' {'usrf': 'list' ['utxt' “b”, 'utxt' “1”, 'utxt' “a”, 'utxt' “2”]}"},
      {"five characters are a label",
       {{u"«abc»", u"x"}},
       "'reco' {'usrf': 'list' ['utxt' “\\u00ABabc\\u00BB”, 'utxt' “x”]}"},
      {"seven characters are a label",
       {{u"«abcde»", u"x"}},
       "'reco' {'usrf': 'list' ['utxt' “\\u00ABabcde\\u00BB”, 'utxt' “x”]}"},
      {"the wrong marks make a label",
       {{u"»abcd«", u"x"}},
       "'reco' {'usrf': 'list' ['utxt' “\\u00BBabcd\\u00AB”, 'utxt' “x”]}"},
      {"the empty label", {{u"", u"x"}}, "'reco' {'usrf': 'list' ['utxt' “”, 'utxt' “x”]}"},
      {"a web address among user fields vanishes",
       {{u"a", Url{"http://x"}}, {u"b", u"x"}},
       "'reco' {'usrf': 'list' ['utxt' “b”, 'utxt' “x”]}"},
      {"and leaves no empty list behind", {{u"a", Url{"http://x"}}}, "'reco' {}"},
      {"a raw null value vanishes too", {{u"a", ScriptValue::null()}}, "'reco' {}"},
      {"a web address under a keyword stays",
       {{u"«pnam»", Url{"http://x"}}},
       "'reco' {'pnam': 'null' }"},
      {"a record within",
       {{u"a", Record{{u"b", u"c"}}}},
       "'reco' {'usrf': 'list' ['utxt' “a”, 'reco' {'usrf': 'list' ['utxt' “b”, 'utxt' “c”]}]}"},
      {"a key that names a property",
       {{propertyKey("pnam"_code), u"a"}},
       "'reco' {'pnam': 'utxt' “a”}"},
      {"a key that names a class", {{typeKey("pnam"_code), u"a"}}, "'reco' {'pnam': 'utxt' “a”}"},
      {"the keyword is set again",
       {{u"«pnam»", u"a"}, {propertyKey("pnam"_code), u"b"}},
       "'reco' {'pnam': 'utxt' “b”}"},
      {"also the other way round",
       {{typeKey("pnam"_code), u"b"}, {u"«pnam»", u"a"}},
       "'reco' {'pnam': 'utxt' “a”}"},
      {"and by both",
       {{typeKey("pnam"_code), u"b"}, {propertyKey("pnam"_code), u"a"}},
       "'reco' {'pnam': 'utxt' “a”}"},
      {"the class of the record",
       {{u"a", u"b"}, {propertyKey("pcls"_code), ScriptValue::typeCode("cobj"_code)}},
       "'cobj' {'usrf': 'list' ['utxt' “a”, 'utxt' “b”]}"},
      {"the class by a class key",
       {{typeKey("pcls"_code), ScriptValue::typeCode("cobj"_code)}},
       "'cobj' {}"},
      {"a class that is no class is a field",
       {{propertyKey("pcls"_code), u"cobj"}},
       "'reco' {'pcls': 'utxt' “cobj”}"},
      {"a text key sets the field only",
       {{u"«pcls»", ScriptValue::typeCode("cobj"_code)}},
       "'reco' {'pcls': 'type' 6A626F63}"},
      {"user fields replace those under the keyword",
       {{u"«usrf»", u"x"}, {u"a", u"b"}},
       "'reco' {'usrf': 'list' ['utxt' “a”, 'utxt' “b”]}"},
      {"without user fields those stay", {{u"«usrf»", u"x"}}, "'reco' {'usrf': 'utxt' “x”}"},
      {"a key that is a number",
       {{Number::signed32(1), u"x"}},
       "'reco' {'usrf': 'list' ['long' 01000000, 'utxt' “x”]}"},
      {"a key of another raw type",
       {{ScriptValue::withPayload("enum"_code, "abcd"), u"x"}},
       "'reco' {'usrf': 'list' ['enum' 61626364, 'utxt' “x”]}"},
      {"a property key of the wrong width",
       {{ScriptValue::withPayload("prop"_code, "ab"), u"x"}},
       "'reco' {'usrf': 'list' ['prop' 6162, 'utxt' “x”]}"},
      {"a keyword outside ASCII",
       {{u"«bÂe1»", u"x"}},
       "'reco' {'b\xE5"
       "e1': 'utxt' “x”}"},
      {"a character that no code has makes a label",
       {{u"«ab漢d»", u"x"}},
       "'reco' {'usrf': 'list' ['utxt' “\\u00ABab\\u6F22d\\u00BB”, 'utxt' “x”]}"},
  };
  for (const RecordRow& row : rows) {
    EXPECT_EQ(described(makeDescriptorForDictionary(row.record)), row.expected) << row.about;
    EXPECT_EQ(described(makeDescriptor(Value(row.record))), row.expected) << row.about;
  }
}

TEST(MissingValue, IsTheTypeValueThatNamesIt) {
  EXPECT_TRUE(descriptorWithMissingValue() == plain("type"_code, "msng"_code));
}

TEST(ScriptHook, HandsOnCompiledScriptsOnly) {
  const ScriptValue script = ScriptValue::withPayload("scpt"_code, "compiled");
  EXPECT_EQ(described(scriptingScriptWithDescriptor(script)), described(script));
  for (const ScriptValue& other : {ScriptValue(), scriptText(u"return 1"),
                                   scriptingScriptWithDescriptor(), ScriptValue::list({script})}) {
    EXPECT_EQ(described(scriptingScriptWithDescriptor(other)), "nothing");
  }
  EXPECT_TRUE(scriptingScriptWithDescriptor() == plain("type"_code, "scpt"_code));
}

TEST(RecordHook, HandsOnPlainRecordsOnly) {
  const ScriptValue record = tests::scriptRecord({scriptText(u"a"), scriptText(u"b")});
  EXPECT_EQ(described(scriptingRecordWithDescriptor(record)), described(record));
  EXPECT_EQ(described(scriptingRecordWithDescriptor(ScriptValue::record("reco"_code, {}))),
            "'reco' {}");
  for (const ScriptValue& other : {ScriptValue(), ScriptValue::record("cobj"_code, {}),
                                   ScriptValue::list({record}), scriptText(u"reco")}) {
    EXPECT_EQ(described(scriptingRecordWithDescriptor(other)), "nothing");
  }
  EXPECT_EQ(described(scriptingRecordDescriptor(record)), described(record));
  EXPECT_EQ(described(scriptingRecordDescriptor(ScriptValue())), described(ScriptValue()));
}

TEST(MakeDescriptor, AsDeepAsValuesGo) {
  Value list = u"core";
  for (std::uint32_t i = 0; i < kMaximumDepth; ++i) list = Items{list};
  EXPECT_EQ(makeDescriptor(list)->depth(), kMaximumDepth);
  EXPECT_EQ(makeDescriptor(std::move(list))->depth(), kMaximumDepth);
  Value record = u"core";
  for (std::uint32_t i = 0; i < kMaximumDepth / 2; ++i) record = Record{{u"a", record}};
  EXPECT_EQ(makeDescriptor(record)->depth(), kMaximumDepth);
}

TEST(MakeDescriptor, AnUnsigned32BitNumberPastTheBoundComesBackAsAReal) {
  const ScriptValue given = plain<std::uint32_t>("magn"_code, UINT32_MAX);
  EXPECT_EQ(described(unpack(given)), "unsigned32 4294967295");
  EXPECT_EQ(described(makeDescriptor(*unpack(given))), described(ScriptValue::real(4294967295)));
}

// What the narrowing leaves of a number.
Number narrowed(Number number) {
  switch (number.kind()) {
    case NumberKind::boolean:
      return Number::boolean(number.asInteger() >= 1);
    case NumberKind::signed16:
    case NumberKind::unsigned16:
    case NumberKind::signed32:
      return Number::signed32(static_cast<std::int32_t>(number.asInteger()));
    case NumberKind::real:
      return number;
    default:
      if (number.asReal() >= 2147483647.0) return Number::real(number.asReal());
      return Number::signed32(static_cast<std::int32_t>(number.asInteger() & 0xFFFFFFFF));
  }
}

// A value as it is after it went out and came in again.
Value narrowed(const Value& value) {
  switch (value.kind()) {
    case Kind::number:
      return narrowed(value.number());
    case Kind::list: {
      Items items;
      for (const Value& item : value.items()) items.push_back(narrowed(item));
      return items;
    }
    case Kind::record: {
      // Keywords first, then the user fields, each in their order.
      Record keywords;
      Record labels;
      for (const Record::Field& field : value.record().fields()) {
        const bool isKeyword = foundation::keywordFromKey(field.key.text()).has_value();
        (isKeyword ? keywords : labels).set(field.key, narrowed(field.value));
      }
      for (const Record::Field& field : labels.fields()) keywords.set(field.key, field.value);
      return keywords;
    }
    default:
      return value;
  }
}

RC_GTEST_PROP(PackAndUnpack, KeepEveryValueUpToTheNarrowing, ()) {
  const Value value = *tests::anyValue();
  const auto packed = makeDescriptor(value);
  RC_ASSERT(packed.has_value());
  RC_ASSERT(described(unpack(*packed)) == described(narrowed(value)));
}

RC_GTEST_PROP(PackAndUnpack, AreStableAfterTheFirstTime, ()) {
  const Value value = *tests::anyValue();
  const auto once = makeDescriptor(*unpack(*makeDescriptor(value)));
  RC_ASSERT(described(makeDescriptor(*unpack(*once))) == described(once));
}

RC_GTEST_PROP(MakeDescriptor, HandingAValueOverGivesTheSameAsLeavingIt, ()) {
  const Value value = *tests::anyValue();
  const std::string expected = described(makeDescriptor(value));
  const std::string before = described(value);
  RC_ASSERT(described(makeDescriptor(Value(value))) == expected);
  RC_ASSERT(described(value) == before);
}

}  // namespace
}  // namespace skerrow::core
