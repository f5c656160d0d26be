#include "core/unpack.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "core/pack.h"
#include "core/script_compiler.h"
#include "tests/support/building.h"
#include "tests/support/generators.h"
#include "values/depth.h"
#include "values/record.h"

namespace skerrow::core {
namespace {

using namespace literals;
using tests::described;
using tests::fileReference;
using tests::plain;
using tests::scriptRecord;
using tests::scriptText;

ScriptValue payload(FourCharCode type, std::string_view bytes) {
  return ScriptValue::withPayload(type, bytes);
}

struct Row {
  const char* about;
  ScriptValue value;
  std::optional<Value> expected;
  ValueClass isClass = ValueClass::other;
};

void expectUnpacks(const Row& row) {
  SCOPED_TRACE(row.about);
  EXPECT_EQ(described(unpack(row.value)), described(row.expected));
  ScriptValue given = row.value;
  EXPECT_EQ(described(unpack(std::move(given))), described(row.expected));
  ScriptValue alone = ScriptValue::list({row.value});
  EXPECT_EQ(described(unpack(std::move(alone))),
            described(Value(std::vector<Value>{row.expected.value_or(Value())})));
}

const std::vector<Row>& textRows() {
  static const std::vector<Row> rows = {
      {"text as it is kept here", scriptText(u"é🏔"), u"é🏔"},
      {"empty text", scriptText(u""), u""},
      {"a lone surrogate", scriptText(std::u16string(1, 0xD800)), std::u16string(1, 0xD800)},
      {"text that begins like a byte-order mark", scriptText(u"\uFEFFa"), u"\uFEFFa"},
      {"text that begins like a turned one", scriptText(u"\uFFFEa"), u"\uFFFEa"},
      {"utxt", payload("utxt"_code, {"h\0i\0", 4}), u"hi"},
      {"utxt with a mark", payload("utxt"_code, {"\xFF\xFEh\0", 4}), u"h"},
      {"utxt the other way round", payload("utxt"_code, {"\xFE\xFF\0h", 4}), u"h"},
      {"utxt with an odd last byte", payload("utxt"_code, {"h\0i", 3}), u"h"},
      {"utxt of nothing", payload("utxt"_code, ""), u""},
      {"ut16", payload("ut16"_code, {"h\0i\0", 4}), u"hi"},
      {"ut16 the other way round", payload("ut16"_code, {"\xFE\xFF\0h", 4}), u"h"},
      {"utf8", payload("utf8"_code, "é🏔"), u"é🏔"},
      {"utf8 that is ill-formed", payload("utf8"_code, "a\xFF"), u"a\uFFFD"},
      {"utf8 with a mark", payload("utf8"_code, "\xEF\xBB\xBFé"), u"é"},
      {"utf8 with two marks", payload("utf8"_code, "\xEF\xBB\xBF\xEF\xBB\xBF"), u"\uFEFF"},
      {"utf8 with a mark inside", payload("utf8"_code, "a\xEF\xBB\xBF"), u"a\uFEFF"},
      {"utf8 with half a mark", payload("utf8"_code, "\xEF\xBB"), u"\uFFFD"},
      {"utf8 of nothing", payload("utf8"_code, ""), u""},
      {"TEXT", payload("TEXT"_code, "\x8E\xA5"), u"é•"},
      {"TEXT that would be UTF-8", payload("TEXT"_code, "é"), u"√©"},
      {"TEXT of nothing", payload("TEXT"_code, ""), u""},
      {"STXT", payload("STXT"_code, "a\xDB"), u"a€"},
      {"itxt", payload("itxt"_code, {"\0\0\0\0\x8Eg", 6}), u"ég"},
      {"itxt of its two codes alone", payload("itxt"_code, {"\0\0\0\0", 4}), u""},
      {"itxt that is cut", payload("itxt"_code, "ab"), u""},
  };
  return rows;
}

const std::vector<Row>& numberRows() {
  static const std::vector<Row> rows = {
      {"true", ScriptValue::boolean(true), Number::boolean(true)},
      {"false", ScriptValue::boolean(false), Number::boolean(false)},
      {"bool 0", payload("bool"_code, {"\0", 1}), Number::boolean(false)},
      {"bool 1", payload("bool"_code, "\x01"), Number::boolean(true)},
      {"bool 2", payload("bool"_code, "\x02"), Number::boolean(true)},
      {"bool whose second byte is not 0", payload("bool"_code, {"\0\x01", 2}),
       Number::boolean(false)},
      {"shor", plain<std::int16_t>("shor"_code, -32768), Number::signed16(-32768)},
      {"ushr", plain<std::uint16_t>("ushr"_code, 65535), Number::unsigned16(65535)},
      {"long", plain<std::int32_t>("long"_code, INT32_MIN), Number::signed32(INT32_MIN)},
      {"long at its end", plain<std::int32_t>("long"_code, INT32_MAX), Number::signed32(INT32_MAX)},
      {"magn", plain<std::uint32_t>("magn"_code, UINT32_MAX), Number::unsigned32(UINT32_MAX)},
      {"comp", plain<std::int64_t>("comp"_code, INT64_MIN), Number::signed64(INT64_MIN)},
      {"ucom", plain<std::uint64_t>("ucom"_code, UINT64_MAX), Number::unsigned64(UINT64_MAX)},
      {"sing", plain<float>("sing"_code, 0.1F), Number::real(static_cast<double>(0.1F))},
      {"doub", plain<double>("doub"_code, -0.0), Number::real(-0.0)},
      {"doub that is infinite", plain<double>("doub"_code, std::numeric_limits<double>::infinity()),
       Number::real(std::numeric_limits<double>::infinity())},
      {"ldbl", plain<long double>("ldbl"_code, 1.5L), Number::real(1.5)},
      {"ldbl past the reals",
       plain<long double>("ldbl"_code, std::numeric_limits<long double>::max()),
       Number::real(std::numeric_limits<double>::infinity())},
  };
  return rows;
}

TEST(Unpack, TextOfEveryType) {
  for (const Row& row : textRows()) {
    EXPECT_TRUE(isTextType(row.value.type())) << row.about;
    expectUnpacks(row);
  }
}

TEST(Unpack, NumbersOfEveryTypeRememberTheirStorage) {
  for (const Row& row : numberRows()) {
    EXPECT_TRUE(isNumberType(row.value.type())) << row.about;
    expectUnpacks(row);
  }
}

TEST(Unpack, EverythingElseThatHasACounterpart) {
  const Row rows[] = {
      {"a date", plain<std::int64_t>("ldt "_code, 3061152000), Date{0}},
      {"a date before 2001", plain<std::int64_t>("ldt "_code, -1), Date{-3061152001.0}},
      {"a file", fileReference("file:///a%20b"), Url{"file:///a%20b"}},
      {"a web address", fileReference("http://x/y"), Url{"http://x/y"}},
      {"an alias", payload("alis"_code, "/a b"), Url{"file:///a%20b"}},
      {"a file system reference", payload("fsrf"_code, "/é"), Url{"file:///%C3%A9"}},
      {"missing value", ScriptValue(), Value()},
      {"msng", payload("msng"_code, ""), Value()},
      {"null", ScriptValue::null(), Value()},
      {"a class", ScriptValue::typeCode("pnam"_code), Value()},
      {"a class of no width", payload("type"_code, ""), Value()},
      {"raw data", payload("rdat"_code, {"\0\xFF", 2}), Value::data(std::string("\0\xFF", 2))},
      {"raw data of nothing", payload("rdat"_code, ""), Value::data("")},
      {"an empty list", ScriptValue::list({}), std::vector<Value>{}},
      {"a list made from bytes", payload("list"_code, "bytes"), std::vector<Value>{}},
      {"an empty record", ScriptValue::record("reco"_code, {}), Record{}},
      {"a record made from bytes", payload("reco"_code, "bytes"), Record{}},
      {"lists in lists",
       ScriptValue::list(
           {ScriptValue::list({}), ScriptValue::list({scriptText(u"a")}), ScriptValue()}),
       std::vector<Value>{std::vector<Value>{}, std::vector<Value>{u"a"}, Value()}},
  };
  for (const Row& row : rows) expectUnpacks(row);
}

TEST(Unpack, TypesThatHaveNoCounterpartStayRaw) {
  const ScriptValue rows[] = {plain("enum"_code, "yes "_code), payload("scpt"_code, "compiled"),
                              payload("abcd"_code, ""), plain("prop"_code, "pnam"_code)};
  for (const ScriptValue& value : rows) {
    EXPECT_EQ(described(unpack(value)), described(Value(value)));
    EXPECT_EQ(described(unpackUnknown(value)), described(Value(value)));
  }
}

TEST(Unpack, NothingForPayloadsThatTheirTypeCannotHave) {
  const ScriptValue rows[] = {
      payload("bool"_code, ""),
      payload("shor"_code, "a"),
      payload("shor"_code, "abc"),
      payload("ushr"_code, ""),
      payload("long"_code, "abc"),
      payload("long"_code, "abcdefgh"),
      payload("magn"_code, "ab"),
      payload("comp"_code, "abcd"),
      payload("ucom"_code, "abcdefghi"),
      payload("sing"_code, "abcdefgh"),
      payload("doub"_code, "abcd"),
      payload("ldbl"_code, "abcdefgh"),
      payload("ldt "_code, "abcd"),
      payload("ldt "_code, ""),
      fileReference(""),
      fileReference("no address"),
      fileReference("file:///%ZZ"),
      fileReference({"file:///a\0b", 11}),
      payload("alis"_code, "relative"),
      payload("fsrf"_code, ""),
  };
  for (const ScriptValue& value : rows) {
    EXPECT_EQ(described(unpack(value)), "nothing") << described(value);
    // In a list and a record it leaves its place to missing value.
    EXPECT_EQ(described(unpackAEList(ScriptValue::list({value, ScriptValue::boolean(true)}))),
              "[null, boolean 1]");
    EXPECT_EQ(described(unpack(scriptRecord({scriptText(u"a"), value}))), "{“a”: null}");
  }
}

struct RecordRow {
  const char* about;
  ScriptValue record;
  const char* expected;
};

TEST(UnpackAERecord, UserFieldsComeUnderTheirLabelsAndKeywordsUnderTheirCodes) {
  const auto record = [](std::vector<ScriptField> fields) {
    return ScriptValue::record("reco"_code, std::move(fields));
  };
  const ScriptValue a = scriptText(u"a");
  const ScriptValue b = scriptText(u"b");
  const RecordRow rows[] = {
      {"empty", record({}), "{}"},
      {"a keyword", record({{"pnam"_code, a}}), "{“\\u00ABpnam\\u00BB”: “a”}"},
      {"a keyword and a label of the same letters",
       record({{"pnam"_code, a}, {"usrf"_code, ScriptValue::list({scriptText(u"name"), b})}}),
       "{“\\u00ABpnam\\u00BB”: “a”, “name”: “b”}"},
      {"a label that looks like a keyword meets it",
       record({{"pnam"_code, a}, {"usrf"_code, ScriptValue::list({scriptText(u"«pnam»"), b})}}),
       "{“\\u00ABpnam\\u00BB”: “b”}"},
      {"user fields before a keyword",
       record({{"usrf"_code, ScriptValue::list({a, b})}, {"pnam"_code, a}}),
       "{“a”: “b”, “\\u00ABpnam\\u00BB”: “a”}"},
      {"an empty list of user fields", scriptRecord({}), "{}"},
      {"one label", scriptRecord({a}), "{}"},
      {"an odd last label", scriptRecord({a, b, a}), "{“a”: “b”}"},
      {"the same label twice", scriptRecord({a, a, b, b, a, b}), "{“a”: “b”, “b”: “b”}"},
      {"a label that is empty", scriptRecord({scriptText(u""), a}), "{“”: “a”}"},
      {"a label of another text type", scriptRecord({payload("TEXT"_code, "\x8E"), a}),
       "{“\\u00E9”: “a”}"},
      {"a label that is a number", scriptRecord({ScriptValue::integer32(1), a}),
       "{signed32 1: “a”}"},
      {"a class constant reads as missing value",
       scriptRecord({a, ScriptValue::typeCode("pnam"_code)}), "{“a”: null}"},
      {"a class constant under a keyword",
       record({{"pcls"_code, ScriptValue::typeCode("cobj"_code)}}), "{“\\u00ABpcls\\u00BB”: null}"},
      {"an enumerator stays raw", scriptRecord({a, plain("enum"_code, "yes "_code)}),
       "{“a”: raw 'enum' 20736579}"},
      {"a keyword twice", record({{"pnam"_code, a}, {"pcls"_code, b}, {"pnam"_code, b}}),
       "{“\\u00ABpnam\\u00BB”: “b”, “\\u00ABpcls\\u00BB”: “b”}"},
      {"user fields twice",
       record({{"usrf"_code, ScriptValue::list({a, a})},
               {"usrf"_code, ScriptValue::list({a, b, b, b})}}),
       "{“a”: “b”, “b”: “b”}"},
      {"user fields that are no list", record({{"usrf"_code, a}}), "{“\\u00ABusrf\\u00BB”: “a”}"},
      {"a keyword outside ASCII", record({{FourCharCode{0x62E56531}, a}}),
       "{“\\u00ABb\\u00C2e1\\u00BB”: “a”}"},
      {"lists and records within",
       scriptRecord({a, ScriptValue::list({b}), b, scriptRecord({a, b})}),
       "{“a”: [“b”], “b”: {“a”: “b”}}"},
  };
  for (const RecordRow& row : rows) {
    EXPECT_EQ(described(unpackAERecord(row.record)), row.expected) << row.about;
    EXPECT_EQ(described(unpack(row.record)), row.expected) << row.about;
  }
}

TEST(UnpackUnknown, ARecordOfAClassKeepsItsFieldsAndHoldsNullUnderThatOfTheClass) {
  const auto ofClass = [](std::vector<ScriptField> fields) {
    return ScriptValue::record("cobj"_code, std::move(fields));
  };
  const RecordRow rows[] = {
      {"empty", ofClass({}), "{“\\u00ABpcls\\u00BB”: null}"},
      {"fields", ofClass({{"pnam"_code, scriptText(u"n")}}),
       "{“\\u00ABpnam\\u00BB”: “n”, “\\u00ABpcls\\u00BB”: null}"},
      {"user fields",
       ofClass({{"usrf"_code, ScriptValue::list({scriptText(u"a"), scriptText(u"b")})}}),
       "{“a”: “b”, “\\u00ABpcls\\u00BB”: null}"},
      {"a class among the fields gives way",
       ofClass({{"pcls"_code, scriptText(u"x")}, {"pnam"_code, scriptText(u"n")}}),
       "{“\\u00ABpcls\\u00BB”: null, “\\u00ABpnam\\u00BB”: “n”}"},
  };
  for (const RecordRow& row : rows) {
    EXPECT_EQ(described(unpackUnknown(row.record)), row.expected) << row.about;
    EXPECT_EQ(described(unpack(row.record)), row.expected) << row.about;
  }
}

const std::vector<ScriptValue>& mixedItems() {
  static const std::vector<ScriptValue> items = {
      scriptText(u"a"),          ScriptValue::integer32(1), ScriptValue(),
      ScriptValue::list({}),     scriptRecord({}),          plain("enum"_code, "yes "_code),
      fileReference("file:///x")};
  return items;
}

constexpr const char* kMixedUnpacked =
    "[“a”, signed32 1, null, [], {}, raw 'enum' 20736579, url file:///x]";

TEST(UnpackAEList, EachItemThroughUnpack) {
  EXPECT_EQ(described(unpackAEList(ScriptValue::list(mixedItems()))), kMixedUnpacked);
  const ScriptValue shared = ScriptValue::list(mixedItems());
  ScriptValue given = shared;
  EXPECT_EQ(described(unpackAEList(std::move(given))), kMixedUnpacked);
  EXPECT_EQ(described(unpackAEList(shared)), kMixedUnpacked);
  EXPECT_EQ(described(unpackAEList(ScriptValue::list({}))), "[]");
}

TEST(UnpackArrayOfAEDescs, EachValueThroughUnpackInOrder) {
  EXPECT_EQ(described(unpackArrayOfAEDescs(std::span(mixedItems()))), kMixedUnpacked);
  EXPECT_EQ(described(unpackArrayOfAEDescs(std::span<const ScriptValue>())), "[]");
  const Value raw = unpackListShallow(ScriptValue::list(mixedItems()));
  EXPECT_EQ(described(unpackArrayOfAEDescs(raw)), kMixedUnpacked);
  EXPECT_EQ(described(unpackArrayOfAEDescs(Value(std::vector<Value>{u"a", raw.items()[1]}))),
            "[“a”, signed32 1]");
}

TEST(UnpackListShallow, LeavesTheItemsRaw) {
  EXPECT_EQ(described(unpackListShallow(ScriptValue::list({}))), "[]");
  EXPECT_EQ(described(unpackListShallow(ScriptValue::list(
                {scriptText(u"a"), ScriptValue::list({ScriptValue::boolean(true)})}))),
            "[raw 'utxt' “a”, raw 'list' ['true' ]]");
}

TEST(UnpackTextOrList, TextBecomesTextAndAnythingElseStaysRaw) {
  for (const Row& row : textRows()) {
    EXPECT_EQ(described(unpackTextOrList(row.value)), described(row.expected)) << row.about;
  }
  for (const Row& row : numberRows()) {
    EXPECT_EQ(described(unpackTextOrList(row.value)), described(Value(row.value))) << row.about;
  }
  for (const ScriptValue& value :
       {ScriptValue(), ScriptValue::null(), scriptRecord({}), plain<std::int64_t>("ldt "_code, 0),
        fileReference("file:///nowhere/at/all"), payload("rdat"_code, "x")}) {
    EXPECT_EQ(described(unpackTextOrList(value)), described(Value(value)));
  }
}

TEST(UnpackAEListJustText, SublistsBecomeListsOfTextAndOtherItemsStayRaw) {
  const ScriptValue list = ScriptValue::list(
      {scriptText(u"a"), ScriptValue::integer32(1),
       ScriptValue::list({payload("utf8"_code, "é"), ScriptValue::list({}), ScriptValue()})});
  constexpr const char* kExpected =
      "[“a”, raw 'long' 01000000, [“\\u00E9”, [], raw 'type' 676E736D]]";
  EXPECT_EQ(described(unpackAEListJustText(list)), kExpected);
  EXPECT_EQ(described(unpackTextOrList(list)), kExpected);
  EXPECT_EQ(described(unpackAEListJustText(ScriptValue::list({}))), "[]");
}

TEST(UnpackTextNumberDate, ConvertsTheseThreeAndTellsTheirClass) {
  for (const Row& row : textRows()) {
    const ClassifiedValue classified = unpackTextNumberDate(row.value);
    EXPECT_EQ(described(classified.value), described(row.expected)) << row.about;
    EXPECT_EQ(classified.isClass, ValueClass::text) << row.about;
  }
  for (const Row& row : numberRows()) {
    const ClassifiedValue classified = unpackTextNumberDate(row.value);
    EXPECT_EQ(described(classified.value), described(row.expected)) << row.about;
    EXPECT_EQ(classified.isClass, ValueClass::number) << row.about;
  }
  const ClassifiedValue date = unpackTextNumberDate(plain<std::int64_t>("ldt "_code, 3061152060));
  EXPECT_EQ(described(date.value), "date 60");
  EXPECT_EQ(date.isClass, ValueClass::date);
}

TEST(UnpackTextNumberDate, ADateThatCannotBeConvertedIsNothingOfTheClassOfDates) {
  const ClassifiedValue date = unpackTextNumberDate(payload("ldt "_code, "abc"));
  EXPECT_EQ(described(date.value), "nothing");
  EXPECT_EQ(date.isClass, ValueClass::date);
}

TEST(UnpackTextNumberDate, LeavesEverythingElseRaw) {
  for (const ScriptValue& value :
       {ScriptValue(), ScriptValue::null(), payload("msng"_code, ""),
        ScriptValue::list({scriptText(u"a")}), scriptRecord({}), fileReference("file:///x"),
        payload("alis"_code, "/x"), payload("rdat"_code, "x"), plain("enum"_code, "yes "_code),
        payload("abcd"_code, "x"), ScriptValue::record("cobj"_code, {})}) {
    const ClassifiedValue classified = unpackTextNumberDate(value);
    EXPECT_EQ(described(classified.value), described(Value(value)));
    EXPECT_EQ(classified.isClass, ValueClass::other);
  }
}

TEST(ValueClass, HasTheNumbersThatCommandsCompareBy) {
  EXPECT_EQ(static_cast<int>(ValueClass::text), 1);
  EXPECT_EQ(static_cast<int>(ValueClass::number), 2);
  EXPECT_EQ(static_cast<int>(ValueClass::date), 3);
  EXPECT_EQ(static_cast<int>(ValueClass::other), 1000);
}

// Compiles everything to its own length, but for one word.
class LengthCompiler final : public ScriptCompiler {
 public:
  [[nodiscard]] std::variant<std::string, Record> compile(
      std::u16string_view source) const override {
    if (source == u"wrong") return Record{{u"message", u"no such word"}};
    return std::to_string(source.size());
  }
};

TEST(ScriptObjectFromString, GivesTheCompiledDataOrTheCompilersAccount) {
  Value errors = u"untouched";
  EXPECT_EQ(described(scriptObjectFromString(u"right", LengthCompiler(), errors)), "data 35");
  EXPECT_EQ(described(scriptObjectFromString(u"", LengthCompiler(), errors)), "data 30");
  EXPECT_EQ(described(errors), "“untouched”");
  EXPECT_EQ(described(scriptObjectFromString(u"wrong", LengthCompiler(), errors)), "nothing");
  EXPECT_EQ(described(errors), "{“message”: “no such word”}");
}

TEST(ScriptObjectFromString, SaysSoWhereThereIsNoScriptEngine) {
  Value errors;
  EXPECT_EQ(described(scriptObjectFromString(u"return 1", NoScriptCompiler(), errors)), "nothing");
  ASSERT_TRUE(errors.isRecord());
  EXPECT_EQ(described(*errors.record().find(u"message")),
            "“This program has no script engine to compile with.”");
}

TEST(Unpack, AsDeepAsValuesGo) {
  ScriptValue list = scriptText(u"core");
  for (std::uint32_t i = 0; i < kMaximumDepth; ++i) list = ScriptValue::list({list});
  EXPECT_EQ(unpack(list)->depth(), kMaximumDepth);
  ScriptValue record = scriptText(u"core");
  for (std::uint32_t i = 0; i < kMaximumDepth / 2; ++i) {
    record = ScriptValue::record("reco"_code, {{"pnam"_code, record}});
  }
  EXPECT_EQ(unpack(record)->depth(), kMaximumDepth);
  ScriptValue labelled = scriptText(u"core");
  for (std::uint32_t i = 0; i < kMaximumDepth / 2; ++i) {
    labelled = scriptRecord({scriptText(u"a"), labelled});
  }
  EXPECT_EQ(unpack(labelled)->depth(), kMaximumDepth);
}

// A list or record made from bytes counts nothing itself and becomes an empty one.
RC_GTEST_PROP(Unpack, GoesNoDeeperThanWhatItUnpacks, ()) {
  const ScriptValue value = *tests::anyScriptValue();
  const auto unpacked = unpack(value);
  if (unpacked) RC_ASSERT(unpacked->depth() <= value.depth() + 2);
}

RC_GTEST_PROP(Unpack, HandingAValueOverGivesTheSameAsLeavingIt, ()) {
  const ScriptValue value = *tests::anyScriptValue();
  const std::string expected = described(unpack(value));
  ScriptValue shared = value;
  RC_ASSERT(described(unpack(std::move(shared))) == expected);
  RC_ASSERT(described(unpack(value)) == expected);
  RC_ASSERT(described(unpackTextOrList(value)) == described(unpackTextOrList(ScriptValue(value))));
}

}  // namespace
}  // namespace skerrow::core
