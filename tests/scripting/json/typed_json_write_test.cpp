#include "scripting/json/typed_json_writer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "scripting/json/typed_json_reader.h"
#include "tests/scripting/json/json_outcome.h"
#include "tests/support/building.h"
#include "tests/support/generators.h"
#include "values/depth.h"

namespace skerrow::scripting {
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

ScriptValue readBack(std::string_view json) {
  JsonSource source(json);
  return readTypedJson(source);
}

struct Row {
  ScriptValue value;
  const char* json;
};

// Each row is also read back, and must be written the same again.
void expectWrites(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(typedJson(row.value), row.json) << described(row.value);
    EXPECT_EQ(tests::outcomeOf([&] { return typedJson(readBack(row.json)); }), row.json);
  }
}

TEST(WriteTypedJson, TextsOfEveryType) {
  expectWrites({
      {scriptText(u""), R"("")"},
      {scriptText(u"é🏔"), R"("é🏔")"},
      {scriptText(u"\"\\/\b\f\n\r\t"), R"("\"\\/\b\f\n\r\t")"},
      {scriptText(std::u16string(u"\0\x1F\x7F", 3)), "\"\\u0000\\u001F\x7F\""},
      {scriptText(u"\u2028"), "\"\u2028\""},
      {scriptText(std::u16string(1, 0xD800)), R"("\uD800")"},
      {scriptText({u"\xDC00\xD800", 2}), R"("\uDC00\uD800")"},
      {scriptText({u"a\xD83C\xD83C\xDFD4", 4}), R"("a\uD83C🏔")"},
      {scriptText({u"\xD83Cz", 2}), R"("\uD83Cz")"},
      {scriptText(u"\uFEFFa"), "\"\uFEFFa\""},
      {payload("utxt"_code, {"a\0", 2}), R"("a")"},
      {payload("utxt"_code, {"\xFE\xFF\0a", 4}), R"("a")"},
      {payload("ut16"_code, {"a\0", 2}), R"("a")"},
      {payload("utf8"_code, "é"), R"("é")"},
      {payload("TEXT"_code, "\x8E"), R"("é")"},
      {payload("STXT"_code, "a"), R"("a")"},
      {payload("itxt"_code, {"\0\0\0\0\x8E", 5}), R"("é")"},
  });
}

TEST(WriteTypedJson, NumbersOfEveryType) {
  expectWrites({
      {ScriptValue::boolean(true), "true"},
      {ScriptValue::boolean(false), "false"},
      {payload("bool"_code, "\x02"), "true"},
      {payload("bool"_code, {"\0", 1}), "false"},
      {plain<std::int16_t>("shor"_code, -32768), "-32768"},
      {plain<std::uint16_t>("ushr"_code, 65535), "65535"},
      {ScriptValue::integer32(INT32_MIN), "-2147483648"},
      {plain<std::uint32_t>("magn"_code, UINT32_MAX), "4294967295"},
      {plain<std::int64_t>("comp"_code, INT64_MIN), "-9223372036854775808"},
      {plain<std::int64_t>("comp"_code, INT64_MAX), "9223372036854775807"},
      {plain<std::uint64_t>("ucom"_code, 5), "5"},
      {plain<float>("sing"_code, 0.5F), "0.5"},
      {plain<float>("sing"_code, 0.1F), "0.10000000149011612"},
      {plain<long double>("ldbl"_code, 1.5L), "1.5"},
      {ScriptValue::real(3), "3.0"},
      {ScriptValue::real(0), "0.0"},
      {ScriptValue::real(-0.0), "-0.0"},
      {ScriptValue::real(0.1), "0.1"},
      {ScriptValue::real(1e300), "1e+300"},
      {ScriptValue::real(-1.5e-300), "-1.5e-300"},
      {ScriptValue::real(123456789.0), "123456789.0"},
      {ScriptValue::real(9007199254740993.0), "9007199254740992.0"},
      {ScriptValue::real(1e22), "1e+22"},
      {ScriptValue::real(5e-324), "5e-324"},
      {ScriptValue::real(1.7976931348623157e308), "1.7976931348623157e+308"},
      {ScriptValue::real(HUGE_VAL), R"({"$real":"inf"})"},
      {ScriptValue::real(-HUGE_VAL), R"({"$real":"-inf"})"},
      {ScriptValue::real(std::nan("")), R"({"$real":"nan"})"},
      {ScriptValue::real(-std::nan("7")), R"({"$real":"nan"})"},
  });
}

// It is written as an integer and read as a real, which is all that plain digits can say.
TEST(WriteTypedJson, AnUnsignedIntegerBeyondTheSignedOnesIsWrittenInFull) {
  EXPECT_EQ(typedJson(plain<std::uint64_t>("ucom"_code, UINT64_MAX)), "18446744073709551615");
}

TEST(WriteTypedJson, ConstantsDatesFilesAndData) {
  expectWrites({
      {ScriptValue(), "null"},
      {payload("msng"_code, ""), "null"},
      {ScriptValue::null(), R"({"$null":true})"},
      {ScriptValue::typeCode("pnam"_code), R"({"$type":"pnam"})"},
      {ScriptValue::typeCode(FourCharCode{0x62E56531}), R"({"$type":"bÂe1"})"},
      {ScriptValue::typeCode(FourCharCode{0}), R"({"$type":"\u0000\u0000\u0000\u0000"})"},
      {plain("enum"_code, "yes "_code), R"({"$enum":"yes "})"},
      {tests::objectReference("progWin.progMessage"), R"({"$object":"progWin.progMessage"})"},
      {tests::objectReference("a[name=\"é\"]"), R"({"$object":"a[name=\"é\"]"})"},
      {payload("obj "_code, "a"), R"({"$raw":"obj ","data":"YQ=="})"},
      {plain("enum"_code, FourCharCode{0x62E56531}), R"({"$enum":"0x62E56531"})"},
      {plain("enum"_code, FourCharCode{0}), R"({"$enum":"0x00000000"})"},
      {plain<std::int64_t>("ldt "_code, 3792150300), R"({"$date":"2024-03-01T15:05:00Z"})"},
      {plain<std::int64_t>("ldt "_code, -60052752000), R"({"$date":"0001-01-01T00:00:00Z"})"},
      {plain<std::int64_t>("ldt "_code, -60052752001), R"({"$ldt":-60052752001})"},
      {plain<std::int64_t>("ldt "_code, 255485145599), R"({"$date":"9999-12-31T23:59:59Z"})"},
      {plain<std::int64_t>("ldt "_code, 255485145600), R"({"$ldt":255485145600})"},
      {plain<std::int64_t>("ldt "_code, INT64_MIN), R"({"$ldt":-9223372036854775808})"},
      {fileReference("file:///a%20b/%C3%A9"), R"({"$file":"/a b/é"})"},
      {fileReference("file:///folder/"), R"({"$file":"/folder"})"},
      {fileReference("file:///"), R"({"$file":"/"})"},
      {fileReference("file://localhost/a"), R"({"$file":"/a"})"},
      {fileReference("file://elsewhere/a"), R"({"$url":"file://elsewhere/a"})"},
      {fileReference("http://x/é"), R"({"$url":"http://x/é"})"},
      {fileReference("no address"), R"({"$url":"no address"})"},
      {fileReference("file:///%FF"), R"({"$file":"/\uDCFF"})"},
      {fileReference("file:///a%C3%A9%80%ED%A0%80b"),
       R"({"$file":"/aé\uDC80\uDCED\uDCA0\uDC80b"})"},
      {fileReference("file:///a%00b"), R"({"$url":"file:///a%00b"})"},
      {fileReference(""), R"({"$url":""})"},
      {fileReference("\xFF"), R"({"$raw":"furl","data":"/w=="})"},
      {payload("alis"_code, "/a b"), R"({"$alias":"/a b"})"},
      {payload("alis"_code, "/folder/"), R"({"$alias":"/folder"})"},
      {payload("alis"_code, "relative"), R"({"$raw":"alis","data":"cmVsYXRpdmU="})"},
      {payload("alis"_code, "/\xFF"), R"({"$alias":"/\uDCFF"})"},
      {payload("fsrf"_code, "/\xC3"), R"({"$fsrf":"/\uDCC3"})"},
      {payload("alis"_code, {"/a\0b", 4}), R"({"$raw":"alis","data":"L2EAYg=="})"},
      {payload("fsrf"_code, "/é"), R"({"$fsrf":"/é"})"},
      {payload("fsrf"_code, ""), R"({"$raw":"fsrf","data":""})"},
      {payload("rdat"_code, ""), R"({"$data":""})"},
      {payload("rdat"_code, {"\0\x01\xFF", 3}), R"({"$data":"AAH/"})"},
      {payload("scpt"_code, "foo"), R"({"$script":"Zm9v"})"},
  });
}

TEST(WriteTypedJson, PayloadsThatFitNoFormAreRaw) {
  expectWrites({
      {payload("abcd"_code, "foo"), R"({"$raw":"abcd","data":"Zm9v"})"},
      {payload("abcd"_code, ""), R"({"$raw":"abcd","data":""})"},
      {payload("list"_code, "foo"), R"({"$raw":"list","data":"Zm9v"})"},
      {payload("reco"_code, ""), R"({"$raw":"reco","data":""})"},
      {payload("long"_code, "abc"), R"({"$raw":"long","data":"YWJj"})"},
      {payload("bool"_code, ""), R"({"$raw":"bool","data":""})"},
      {payload("type"_code, "abc"), R"({"$raw":"type","data":"YWJj"})"},
      {payload("enum"_code, ""), R"({"$raw":"enum","data":""})"},
      {payload("ldt "_code, "abc"), R"({"$raw":"ldt ","data":"YWJj"})"},
      {payload(FourCharCode{0x22000AF0}, ""), "{\"$raw\":\"\\\"\\u0000\\n\uF8FF\",\"data\":\"\"}"},
  });
}

TEST(WriteTypedJson, ListsAndRecords) {
  const ScriptValue a = scriptText(u"a");
  const ScriptValue one = ScriptValue::integer32(1);
  const auto record = [](std::vector<ScriptField> fields) {
    return ScriptValue::record("reco"_code, std::move(fields));
  };
  const auto userFields = [](std::vector<ScriptValue> items) {
    return ScriptField{"usrf"_code, ScriptValue::list(std::move(items))};
  };
  expectWrites({
      {ScriptValue::list({}), "[]"},
      {ScriptValue::list({one, ScriptValue::list({a}), ScriptValue()}), R"([1,["a"],null])"},
      {record({}), "{}"},
      {scriptRecord({}), "{}"},
      {scriptRecord({a, one}), R"({"a":1})"},
      {scriptRecord({scriptText(u"b"), one, a, one}), R"({"b":1,"a":1})"},
      {scriptRecord({scriptText(u""), one}), R"({"":1})"},
      {scriptRecord({scriptText(u"é\"\n"), one}), R"({"é\"\n":1})"},
      {scriptRecord({scriptText(std::u16string(1, 0xD800)), one}), R"({"\uD800":1})"},
      {scriptRecord({payload("utf8"_code, "é"), one}), R"({"é":1})"},
      {scriptRecord({a, one, a, one}), R"({"a":1,"a":1})"},
      {record({{"pnam"_code, a}}), R"({"«pnam»":"a"})"},
      {record({{"pnam"_code, a}, userFields({a, one})}), R"({"«pnam»":"a","a":1})"},
      {record({userFields({a, one}), {"pnam"_code, a}}), R"({"a":1,"«pnam»":"a"})"},
      {record({{FourCharCode{0x62E56531}, a}}), R"({"«bÂe1»":"a"})"},
      {ScriptValue::record("cobj"_code, {}), R"({"«pcls»":{"$type":"cobj"}})"},
      {ScriptValue::record("cobj"_code, {userFields({a, one})}),
       R"({"«pcls»":{"$type":"cobj"},"a":1})"},
      {record({{"pcls"_code, a}}), R"({"«pcls»":"a"})"},
      // User fields that labels of an object cannot show stay a list.
      {scriptRecord({a}), R"({"«usrf»":["a"]})"},
      {scriptRecord({a, one, a}), R"({"«usrf»":["a",1,"a"]})"},
      {scriptRecord({one, a}), R"({"«usrf»":[1,"a"]})"},
      {scriptRecord({scriptText(u"«pnam»"), one}), R"({"«usrf»":["«pnam»",1]})"},
      {record({{"usrf"_code, one}}), R"({"«usrf»":1})"},
      {scriptRecord({scriptText(u"«abc»"), one}), R"({"«abc»":1})"},
  });
}

TEST(WriteTypedJson, RecordsWhoseLabelsLookLikeFormsAreWrapped) {
  const ScriptValue a = scriptText(u"a");
  const ScriptValue one = ScriptValue::integer32(1);
  const auto labelled = [](std::u16string_view label, const ScriptValue& value) {
    return scriptRecord({scriptText(label), value});
  };
  const ScriptValue dateLike = labelled(u"$date", scriptText(u"2024-03-01T15:05:00Z"));
  const ScriptValue date = plain<std::int64_t>("ldt "_code, 3792150300);
  expectWrites({
      {labelled(u"$date", a), R"({"$record":{"$date":"a"}})"},
      {labelled(u"$", one), R"({"$record":{"$":1}})"},
      {labelled(u"$record", one), R"({"$record":{"$record":1}})"},
      {labelled(u"$record", labelled(u"a", one)), R"({"$record":{"$record":{"a":1}}})"},
      {labelled(u"$record", labelled(u"$date", a)),
       R"({"$record":{"$record":{"$record":{"$date":"a"}}}})"},
      {labelled(u"$record", date), R"({"$record":{"$record":{"$date":"2024-03-01T15:05:00Z"}}})"},
      {labelled(u"a", labelled(u"$type", a)), R"({"a":{"$record":{"$type":"a"}}})"},
      {scriptRecord({scriptText(u"$number"), one, scriptText(u"as"), a}),
       R"({"$record":{"$number":1,"as":"a"}})"},
      {scriptRecord({scriptText(u"as"), a, scriptText(u"$number"), one}),
       R"({"$record":{"as":"a","$number":1}})"},
      {scriptRecord({scriptText(u"$raw"), a, scriptText(u"data"), a}),
       R"({"$record":{"$raw":"a","data":"a"}})"},
      {scriptRecord({scriptText(u"data"), a, scriptText(u"$raw"), a}),
       R"({"$record":{"data":"a","$raw":"a"}})"},
      {scriptRecord({scriptText(u"$number"), one, scriptText(u"data"), a}),
       R"({"$number":1,"data":"a"})"},
      {scriptRecord({scriptText(u"$a"), one, scriptText(u"$b"), one}), R"({"$a":1,"$b":1})"},
      {scriptRecord({scriptText(u"$record"), date, a, one}),
       R"({"$record":{"$date":"2024-03-01T15:05:00Z"},"a":1})"},
      {scriptRecord({scriptText(u"$record"), dateLike, a, one}),
       R"({"$record":{"$record":{"$date":"2024-03-01T15:05:00Z"}},"a":1})"},
      {scriptRecord({a, one, scriptText(u"$record"), dateLike}),
       R"({"a":1,"$record":{"$record":{"$date":"2024-03-01T15:05:00Z"}}})"},
      {scriptRecord({scriptText(u"$record"),
                     ScriptValue::record("cobj"_code,
                                         {{"usrf"_code, ScriptValue::list({scriptText(u"$date"),
                                                                           scriptText(u"x")})}}),
                     a, one}),
       R"({"$record":{"«pcls»":{"$type":"cobj"},"$date":"x"},"a":1})"},
      {ScriptValue::record("cobj"_code,
                           {{"usrf"_code, ScriptValue::list({scriptText(u"$date"), a})}}),
       R"({"«pcls»":{"$type":"cobj"},"$date":"a"})"},
      {ScriptValue::record("reco"_code, {{"pnam"_code, a},
                                         {"usrf"_code, ScriptValue::list({scriptText(u"$a"), a})}}),
       R"({"«pnam»":"a","$a":"a"})"},
  });
}

// A record may hold its user fields in two lists, an empty one among them.
TEST(WriteTypedJson, RecordsWithSeveralListsOfUserFieldsAreWrappedWhereTheyMust) {
  const ScriptField none{"usrf"_code, ScriptValue::list({})};
  const ScriptField number{"usrf"_code,
                           ScriptValue::list({scriptText(u"$number"), ScriptValue::integer32(1)})};
  const ScriptField as{"usrf"_code, ScriptValue::list({scriptText(u"as"), scriptText(u"a")})};
  const ScriptField date{"usrf"_code, ScriptValue::list({scriptText(u"$date"), scriptText(u"a")})};
  expectWrites({
      {ScriptValue::record("reco"_code, {none, date}), R"({"$record":{"$date":"a"}})"},
      {ScriptValue::record("reco"_code, {date, none}), R"({"$record":{"$date":"a"}})"},
      {ScriptValue::record("reco"_code, {number, as}), R"({"$record":{"$number":1,"as":"a"}})"},
  });
}

std::string replyJson(const core::Reply& reply) {
  std::string text;
  writeReply(reply, [&text](std::string_view piece) { text += piece; });
  return text;
}

TEST(WriteReply, NamesTheResultOrTheErrorOrNeither) {
  EXPECT_EQ(replyJson(std::optional<ScriptValue>()), "{}");
  EXPECT_EQ(replyJson(ScriptValue()), R"({"result":null})");
  EXPECT_EQ(replyJson(ScriptValue::list({scriptText(u"é")})), R"({"result":["é"]})");
  EXPECT_EQ(replyJson(core::ScriptError(-1712, "AppleEvent timed out.")),
            R"({"error":{"number":-1712,"message":"AppleEvent timed out."}})");
  EXPECT_EQ(replyJson(core::ScriptError(1, "")), R"({"error":{"number":1,"message":""}})");
  EXPECT_EQ(replyJson(core::ScriptError(1, "“é”\n\"🏔\" \xFF")),
            "{\"error\":{\"number\":1,\"message\":\"“é”\\n\\\"🏔\\\" \uFFFD\"}}");
}

TEST(WriteTypedJson, IsTheSameInHoweverManyPiecesItIsHandedOver) {
  std::vector<ScriptValue> items;
  for (int i = 0; i < 5000; ++i) items.push_back(scriptText(u"é🏔 and \"more\""));
  std::string text;
  std::size_t pieces = 0;
  writeTypedJson(ScriptValue::list(items), [&](std::string_view piece) {
    text += piece;
    ++pieces;
  });
  EXPECT_GT(pieces, 1U);
  std::string expected = "[";
  for (int i = 0; i < 5000; ++i)
    expected += std::string(i == 0 ? "" : ",") + R"("é🏔 and \"more\"")";
  EXPECT_EQ(text, expected + "]");
}

// What has several bytes may come where a piece ends.
TEST(WriteTypedJson, TextsMayEndAPieceAnywhere) {
  for (std::size_t count = 16 * 1024 - 40; count < 16 * 1024 + 10; ++count) {
    const std::u16string units = std::u16string(count, u'x') + u"\u0001é🏔\"漢\\" + u'\xD800';
    const std::string expected = "\"" + std::string(count, 'x') + R"(\u0001é🏔\"漢\\\uD800")";
    EXPECT_EQ(typedJson(scriptText(units)), expected) << count;
  }
}

TEST(WriteTypedJson, AsDeepAsValuesGo) {
  ScriptValue list = ScriptValue::integer32(1);
  ScriptValue record = list;
  for (std::uint32_t i = 0; i < kMaximumDepth; ++i) list = ScriptValue::list({list});
  for (std::uint32_t i = 0; i < kMaximumDepth / 2; ++i) {
    record = ScriptValue::record("reco"_code, {{"pnam"_code, record}});
  }
  EXPECT_EQ(typedJson(list),
            std::string(kMaximumDepth, '[') + "1" + std::string(kMaximumDepth, ']'));
  EXPECT_TRUE(readBack(typedJson(list)) == list);
  EXPECT_TRUE(readBack(typedJson(record)) == record);
}

// Plain digits past the signed integers read as a real.
bool holdsUnsignedBeyondSigned(const ScriptValue& value) {
  if (value.type() == "ucom"_code) return value.plain<std::uint64_t>().value_or(0) > INT64_MAX;
  return std::ranges::any_of(value.items(), holdsUnsignedBeyondSigned) ||
         std::ranges::any_of(value.fields(), [](const ScriptField& field) {
           return holdsUnsignedBeyondSigned(field.value);
         });
}

RC_GTEST_PROP(TypedJson, WhatWasWrittenReadsBackAsAValueThatWritesTheSame, ()) {
  const ScriptValue value = *tests::anyScriptValue();
  RC_PRE(!holdsUnsignedBeyondSigned(value));
  const std::string json = typedJson(value);
  RC_ASSERT(typedJson(readBack(json)) == json);
  RC_ASSERT(json.find('\n') == std::string::npos);
}

RC_GTEST_PROP(TypedJson, TextAndRealsReadBackExactly, ()) {
  const std::u16string units = *tests::arbitraryUnits();
  RC_ASSERT(described(readBack(typedJson(scriptText(units)))) == described(scriptText(units)));
  const double real = *tests::anyReal();
  const auto back = readBack(typedJson(ScriptValue::real(real))).plain<double>();
  RC_ASSERT(back.has_value());
  RC_ASSERT(std::bit_cast<std::uint64_t>(*back) == std::bit_cast<std::uint64_t>(real) ||
            std::isnan(real));
}

RC_GTEST_PROP(TypedJson, IntegersReadBackExactly, ()) {
  const auto integer = *rc::gen::arbitrary<std::int64_t>();
  RC_ASSERT(readBack(typedJson(plain("comp"_code, integer))) == readBack(std::to_string(integer)));
}

}  // namespace
}  // namespace skerrow::scripting
