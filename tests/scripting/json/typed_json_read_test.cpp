#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>
#include <vector>

#include "scripting/json/typed_json_reader.h"
#include "tests/scripting/json/json_outcome.h"
#include "tests/scripting/test_commands.h"
#include "tests/support/building.h"
#include "tests/support/generators.h"
#include "values/depth.h"

namespace skerrow::scripting {
namespace {

using namespace literals;
using tests::described;
using tests::fileReference;
using tests::outcomeOf;
using tests::plain;
using tests::scriptRecord;
using tests::scriptText;
using tests::valueOrError;

ScriptValue payload(FourCharCode type, std::string_view bytes) {
  return ScriptValue::withPayload(type, bytes);
}

struct Row {
  std::string json;
  ScriptValue value;
};

void expectReads(const std::vector<Row>& rows) {
  for (const Row& row : rows) EXPECT_EQ(valueOrError(row.json), described(row.value)) << row.json;
}

TEST(ReadTypedJson, TextsBooleansAndConstants) {
  expectReads({
      {R"("")", scriptText(u"")},
      {R"("é🏔")", scriptText(u"é🏔")},
      {R"("\"\\\/\b\f\n\r\t")", scriptText(u"\"\\/\b\f\n\r\t")},
      {R"("\u0000a")", scriptText(std::u16string(u"\0a", 2))},
      {R"("\u00e9\uD83C\uDFD4")", scriptText(u"é🏔")},
      {R"("\uD800")", scriptText(std::u16string(1, 0xD800))},
      {R"("\udc00\ud800")", scriptText({u"\xDC00\xD800", 2})},
      {"\"\u007F\"", scriptText(u"\u007F")},
      {"true", ScriptValue::boolean(true)},
      {"false", ScriptValue::boolean(false)},
      {"null", ScriptValue()},
      {R"({"$null": true})", ScriptValue::null()},
      {R"({"$type": "pnam"})", ScriptValue::typeCode("pnam"_code)},
      {R"({"$type": "msng"})", ScriptValue()},
      {R"({"$type": "0x62E56531"})", ScriptValue::typeCode(FourCharCode{0x62E56531})},
      {R"({"$enum": "yes "})", plain("enum"_code, "yes "_code)},
      {R"({"$enum": "0x62E56531"})", plain("enum"_code, FourCharCode{0x62E56531})},
      {R"({"$enum": "0x62e56531"})", plain("enum"_code, FourCharCode{0x62E56531})},
      {R"({"$enum": "bÂe1"})", plain("enum"_code, FourCharCode{0x62E56531})},
      {R"({"$enum": "uppercasing"})", plain("enum"_code, FourCharCode{0x62E56531})},
      {R"({"$enum": "Encoding URL"})", plain("enum"_code, FourCharCode{0x62E56536})},
      {R"({"$enum": "none"})", plain("enum"_code, "none"_code)},
      {R"({"$object": "progWin.progMessage"})", tests::objectReference("progWin.progMessage")},
      {R"({"$object": "a[name=\"é\"]"})", tests::objectReference("a[name=\"é\"]")},
  });
}

TEST(ReadTypedJson, IntegersTakeTheSmallestTypeAndOtherNumbersAreReals) {
  expectReads({
      {"0", ScriptValue::integer32(0)},
      {"-0", ScriptValue::integer32(0)},
      {"2147483647", ScriptValue::integer32(INT32_MAX)},
      {"-2147483648", ScriptValue::integer32(INT32_MIN)},
      {"2147483648", plain<std::int64_t>("comp"_code, 2147483648)},
      {"-2147483649", plain<std::int64_t>("comp"_code, -2147483649)},
      {"4294967295", plain<std::int64_t>("comp"_code, 4294967295)},
      {"9223372036854775807", plain<std::int64_t>("comp"_code, INT64_MAX)},
      {"-9223372036854775808", plain<std::int64_t>("comp"_code, INT64_MIN)},
      {"9223372036854775808", ScriptValue::real(9223372036854775808.0)},
      {"-9223372036854775809", ScriptValue::real(-9223372036854775808.0)},
      {"18446744073709551615", ScriptValue::real(18446744073709551616.0)},
      {"18446744073709551616", ScriptValue::real(18446744073709551616.0)},
      {"1" + std::string(300, '0'), ScriptValue::real(1e300)},
      {"1.0", ScriptValue::real(1)},
      {"-0.0", ScriptValue::real(-0.0)},
      {"1e2", ScriptValue::real(100)},
      {"1E+2", ScriptValue::real(100)},
      {"0.1", ScriptValue::real(0.1)},
      {"9007199254740993.0", ScriptValue::real(9007199254740992.0)},
      {"2.2250738585072011e-308", ScriptValue::real(2.2250738585072011e-308)},
      {"5e-324", ScriptValue::real(5e-324)},
      {"1e-400", ScriptValue::real(0)},
      {"-1e-400", ScriptValue::real(-0.0)},
      // Around the smallest and the largest real, and where digits and exponent balance.
      {"1.2345678901234567e-340", ScriptValue::real(0)},
      {"1e-325", ScriptValue::real(0)},
      {"2.47e-324", ScriptValue::real(0)},
      {"2.4703282292062327e-324", ScriptValue::real(0)},
      {"2.4703282292062328e-324", ScriptValue::real(5e-324)},
      {"1.7976931348623158e308", ScriptValue::real(1.7976931348623157e308)},
      {"0." + std::string(352, '0'), ScriptValue::real(0)},
      {"0." + std::string(350, '0') + "1", ScriptValue::real(0)},
      {std::string(310, '4') + "e-308", ScriptValue::real(44.44444444444444)},
      {"0." + std::string(400, '0') + "1e401", ScriptValue::real(1)},
      {"1" + std::string(400, '0') + "e-400", ScriptValue::real(1)},
      {"0e309", ScriptValue::real(0)},
      {"-0.0e400", ScriptValue::real(-0.0)},
      {"1e-99999999999999999999", ScriptValue::real(0)},
      {"0.30000000000000004440892098500626161694526672363281250001",
       ScriptValue::real(0x1.3333333333334p-2)},
      {"0e300", ScriptValue::real(0)},
      {"-0.0", ScriptValue::real(-0.0)},
      {"0.0e5", ScriptValue::real(0)},
      {"-0e-1", ScriptValue::real(-0.0)},
      {"-0.000e-300", ScriptValue::real(-0.0)},
      {"1.7976931348623157e308", ScriptValue::real(1.7976931348623157e308)},
      {R"({"$real": "inf"})", ScriptValue::real(HUGE_VAL)},
      {R"({"$real": "-inf"})", ScriptValue::real(-HUGE_VAL)},
      {R"({"$real": "nan"})", ScriptValue::real(std::numeric_limits<double>::quiet_NaN())},
  });
}

// The C library rounds correctly, too.
RC_GTEST_PROP(ReadTypedJson, RealsAreTheNearestToWhatIsWritten, ()) {
  const double real = *tests::anyReal();
  const int digits = *rc::gen::inRange(0, 40);
  const int exponent = *rc::gen::inRange(-30, 30);
  RC_PRE(std::isfinite(real));
  char text[512];
  std::snprintf(text, sizeof text, "%.*e", digits, real);
  std::string json = text;
  const std::size_t at = json.find('e');
  const int shifted = std::stoi(json.substr(at + 1)) + exponent;
  json.replace(at + 1, std::string::npos, std::to_string(shifted));
  const double expected = std::strtod(json.c_str(), nullptr);
  RC_PRE(std::isfinite(expected));
  RC_ASSERT(valueOrError(json) == described(ScriptValue::real(expected)));
}

TEST(ReadTypedJson, NumbersOfAGivenType) {
  expectReads({
      {R"({"$number": 5, "as": "shor"})", plain<std::int16_t>("shor"_code, 5)},
      {R"({"as": "shor", "$number": -32768})", plain<std::int16_t>("shor"_code, -32768)},
      {R"({"$number": 65535, "as": "ushr"})", plain<std::uint16_t>("ushr"_code, 65535)},
      {R"({"$number": 5, "as": "long"})", ScriptValue::integer32(5)},
      {R"({"$number": 4294967295, "as": "magn"})", plain<std::uint32_t>("magn"_code, UINT32_MAX)},
      {R"({"$number": 5, "as": "comp"})", plain<std::int64_t>("comp"_code, 5)},
      {R"({"$number": -9223372036854775808, "as": "comp"})",
       plain<std::int64_t>("comp"_code, INT64_MIN)},
      {R"({"$number": 18446744073709551615, "as": "ucom"})",
       plain<std::uint64_t>("ucom"_code, UINT64_MAX)},
      {R"({"$number": 0.1, "as": "sing"})", plain<float>("sing"_code, 0.1F)},
      {R"({"$number": 2, "as": "sing"})", plain<float>("sing"_code, 2)},
      {R"({"$number": 2, "as": "doub"})", ScriptValue::real(2)},
      {R"([1, {"$number": 2, "as": "shor"}])",
       ScriptValue::list({ScriptValue::integer32(1), plain<std::int16_t>("shor"_code, 2)})},
  });
}

// What stands beside the ten bytes that count is nobody's business.
TEST(ReadTypedJson, NumbersOfTheWidestRealType) {
  JsonSource source(std::string_view(R"({"$number": 1.5, "as": "ldbl"})"));
  const ScriptValue value = readTypedJson(source);
  EXPECT_EQ(value.type(), "ldbl"_code);
  EXPECT_EQ(value.plain<long double>(), 1.5L);
}

TEST(ReadTypedJson, DatesFilesAndData) {
  expectReads({
      {R"({"$date": "2024-03-01T15:05:00Z"})", plain<std::int64_t>("ldt "_code, 3792150300)},
      {R"({"$date": "2024-03-01T17:05:00+02:00"})", plain<std::int64_t>("ldt "_code, 3792150300)},
      {R"({"$date": "0001-01-01T00:00:00Z"})", plain<std::int64_t>("ldt "_code, -60052752000)},
      {R"({"$ldt": 0})", plain<std::int64_t>("ldt "_code, 0)},
      {R"({"$ldt": -9223372036854775808})", plain<std::int64_t>("ldt "_code, INT64_MIN)},
      {R"({"$ldt": 9223372036854775807})", plain<std::int64_t>("ldt "_code, INT64_MAX)},
      {R"({"$file": "/a b/é"})", fileReference("file:///a%20b/%C3%A9")},
      {R"({"$file": "/"})", fileReference("file:///")},
      {R"({"$file": "/folder/"})", fileReference("file:///folder")},
      {R"({"$file": "//"})", fileReference("file:///")},
      {R"({"$url": "file:///a%20b"})", fileReference("file:///a%20b")},
      {R"({"$url": "http://x/y"})", fileReference("http://x/y")},
      {R"({"$url": ""})", fileReference("")},
      {R"({"$file": "/a\udcff/\udc80é"})", fileReference("file:///a%FF/%80%C3%A9")},
      {R"({"$alias": "/\udcff"})", payload("alis"_code, "/\xFF")},
      {R"({"$fsrf": "/\udc80"})", payload("fsrf"_code, "/\x80")},
      {R"({"$url": "file:///\udcffé"})", fileReference("file:///%FFé")},
      {R"({"$alias": "/a b"})", payload("alis"_code, "/a b")},
      {R"({"$fsrf": "/é"})", payload("fsrf"_code, "/é")},
      {R"({"$data": ""})", payload("rdat"_code, "")},
      {R"({"$data": "AAH/"})", payload("rdat"_code, {"\0\x01\xFF", 3})},
      {R"({"$script": "Zm9v"})", payload("scpt"_code, "foo")},
      {R"({"$raw": "abcd", "data": "Zm9v"})", payload("abcd"_code, "foo")},
      {R"({"data": "", "$raw": "list"})", payload("list"_code, "")},
      {R"({"$raw": "0x62E56531", "data": ""})", payload(FourCharCode{0x62E56531}, "")},
  });
}

TEST(ReadTypedJson, ListsAndRecords) {
  const ScriptValue a = scriptText(u"a");
  const ScriptValue b = scriptText(u"b");
  const auto one = [] { return ScriptValue::integer32(1); };
  const auto record = [](std::vector<ScriptField> fields) {
    return ScriptValue::record("reco"_code, std::move(fields));
  };
  expectReads({
      {"[]", ScriptValue::list({})},
      {" [ 1 , [ ] ,\tnull\r\n] ",
       ScriptValue::list({one(), ScriptValue::list({}), ScriptValue()})},
      {"{}", record({})},
      {R"({"a": 1})", scriptRecord({a, one()})},
      {R"({"b": 1, "a": [1]})", scriptRecord({b, one(), a, ScriptValue::list({one()})})},
      {R"({"": 1})", scriptRecord({scriptText(u""), one()})},
      {R"({"\uD800": 1})", scriptRecord({scriptText(std::u16string(1, 0xD800)), one()})},
      {R"({"a": 1, "a": 2})", scriptRecord({a, one(), a, ScriptValue::integer32(2)})},
      {R"({"a": {"b": 1}})", scriptRecord({a, scriptRecord({b, one()})})},
      {R"({"«pnam»": "a"})", record({{"pnam"_code, a}})},
      {R"({"«pnam»": "a", "b": 1})",
       record({{"pnam"_code, a}, {"usrf"_code, ScriptValue::list({b, one()})}})},
      {R"({"b": 1, "«pnam»": "a", "a": 1})",
       record({{"usrf"_code, ScriptValue::list({b, one(), a, one()})}, {"pnam"_code, a}})},
      {R"({"«abc»": 1})", scriptRecord({scriptText(u"«abc»"), one()})},
      {R"({"«ab漢d»": 1})", scriptRecord({scriptText(u"«ab漢d»"), one()})},
      {R"({"«pcls»": {"$type": "cobj"}})", ScriptValue::record("cobj"_code, {})},
      {R"({"«pcls»": {"$type": "cobj"}, "a": 1})",
       ScriptValue::record("cobj"_code, {{"usrf"_code, ScriptValue::list({a, one()})}})},
      {R"({"a": 1, "«pcls»": {"$type": "cobj"}})",
       record({{"usrf"_code, ScriptValue::list({a, one()})},
               {"pcls"_code, ScriptValue::typeCode("cobj"_code)}})},
      {R"({"«pcls»": "cobj"})", record({{"pcls"_code, scriptText(u"cobj")}})},
      {R"({"«usrf»": ["a"]})", record({{"usrf"_code, ScriptValue::list({a})}})},
  });
}

TEST(ReadTypedJson, RecordsWhoseLabelsLookLikeForms) {
  const ScriptValue one = ScriptValue::integer32(1);
  const ScriptValue text = scriptText(u"a");
  const auto labelled = [](std::u16string_view label, const ScriptValue& value) {
    return scriptRecord({scriptText(label), value});
  };
  const ScriptValue dateLike = labelled(u"$date", scriptText(u"2024-03-01T15:05:00Z"));
  const ScriptValue date = plain<std::int64_t>("ldt "_code, 3792150300);
  expectReads({
      {R"({"$record": {"$date": "2024-03-01T15:05:00Z"}})", dateLike},
      {R"({"$record": {"$nope": 1}})", labelled(u"$nope", one)},
      {R"({"$record": {}})", ScriptValue::record("reco"_code, {})},
      {R"({"$record": {"a": 1}})", labelled(u"a", one)},
      {R"({"$record": {"$record": 1}})", labelled(u"$record", one)},
      {R"({"$record": {"$record": {"$date": "2024-03-01T15:05:00Z"}}})",
       labelled(u"$record", date)},
      {R"({"$record": {"$record": {"$record": {"$date": "2024-03-01T15:05:00Z"}}}})",
       labelled(u"$record", dateLike)},
      {R"({"$record": {"$number": 1, "as": "a"}})",
       scriptRecord({scriptText(u"$number"), one, scriptText(u"as"), text})},
      {R"({"$date": "a", "b": 1})",
       scriptRecord({scriptText(u"$date"), text, scriptText(u"b"), one})},
      {R"({"$number": 1, "b": "a"})",
       scriptRecord({scriptText(u"$number"), one, scriptText(u"b"), text})},
      {R"({"a": {"$record": {"$date": "a"}}})", labelled(u"a", labelled(u"$date", text))},
      // Among other labels "$record" is one like any, and what lies under it is read as usual.
      {R"({"$record": {"$date": "2024-03-01T15:05:00Z"}, "a": 1})",
       scriptRecord({scriptText(u"$record"), date, text, one})},
      {R"({"a": 1, "$record": {"$date": "2024-03-01T15:05:00Z"}})",
       scriptRecord({text, one, scriptText(u"$record"), date})},
      {R"({"$record": {"a": 1}, "a": 1})",
       scriptRecord({scriptText(u"$record"), labelled(u"a", one), text, one})},
      {R"({"$record": {"$raw": "abcd", "data": ""}, "a": 1})",
       scriptRecord({scriptText(u"$record"), payload("abcd"_code, ""), text, one})},
      {R"({"$record": {"$number": 1, "as": "shor"}, "a": 1})",
       scriptRecord({scriptText(u"$record"), plain<std::int16_t>("shor"_code, 1), text, one})},
      {R"({"$record": {"$real": "inf"}, "a": 1})",
       scriptRecord({scriptText(u"$record"), ScriptValue::real(HUGE_VAL), text, one})},
      {R"({"$record": {"$record": {"$date": "2024-03-01T15:05:00Z"}}, "a": 1})",
       scriptRecord({scriptText(u"$record"), dateLike, text, one})},
      {R"({"$record": {"«pcls»": {"$type": "cobj"}, "$date": "a"}, "a": 1})",
       scriptRecord(
           {scriptText(u"$record"),
            ScriptValue::record("cobj"_code,
                                {{"usrf"_code, ScriptValue::list({scriptText(u"$date"), text})}}),
            text, one})},
  });
}

struct ErrorRow {
  std::string json;
  const char* place;
  const char* problem;  // what the message must say, wherever in it
};

void expectRefuses(const std::vector<ErrorRow>& rows) {
  for (const ErrorRow& row : rows) {
    const std::string error = valueOrError(row.json);
    EXPECT_TRUE(error.starts_with(std::string(row.place) + ": ")) << row.json << "\n" << error;
    EXPECT_NE(error.find(row.problem), std::string::npos) << row.json << "\n" << error;
  }
}

TEST(ReadTypedJson, RefusesWhatIsNoJsonAndNamesThePlace) {
  expectRefuses({
      {"", "line 1, column 1", "no JSON value"},
      {"  \n ", "line 2, column 2", "no JSON value"},
      {"nul", "line 1, column 4", "value"},
      {"True", "line 1, column 1", "value"},
      {"[1, ]", "line 1, column 5", "value"},
      {"[1 2]", "line 1, column 4", "comma"},
      {"[1", "line 1, column 3", "]"},
      {"{", "line 1, column 2", "name"},
      {"{1: 2}", "line 1, column 2", "name"},
      {R"({"a" 1})", "line 1, column 6", "colon"},
      {R"({"a": 1 "b": 2})", "line 1, column 9", "comma"},
      {R"({"a": 1)", "line 1, column 8", "}"},
      {"\n\n  [1,\n }", "line 4, column 2", "value"},
      {"1 2", "line 1, column 3", "follow"},
      {"[] []", "line 1, column 4", "follow"},
      {R"("a)", "line 1, column 3", "quotation mark"},
      {"\"a\nb\"", "line 1, column 3", "control character"},
      {"\"tab\there\"", "line 1, column 5", "control character"},
      {R"("\q")", "line 1, column 2", "escape"},
      {R"("\u12G4")", "line 1, column 2", "hexadecimal"},
      {R"('a')", "line 1, column 1", "value"},
      {"\"a\xFF\"", "line 1, column 3", "UTF-8"},
      {"\"\xC0\xAF\"", "line 1, column 2", "UTF-8"},
      {"\"\xED\xA0\x80\"", "line 1, column 2", "UTF-8"},
      {"\"é\xF4\x90\x80\x80\"", "line 1, column 3", "UTF-8"},
      {"1e400", "line 1, column 1", "too large"},
      {"-1e400", "line 1, column 1", "too large"},
      {"1.7976931348623159e308", "line 1, column 1", "too large"},
      {"[0, 2e308]", "line 1, column 5", "too large"},
      {"5e308", "line 1, column 1", "too large"},
      {"1e+99999999999999999999", "line 1, column 1", "too large"},
      {"[\n  1" + std::string(200000, '0') + "]", "line 2, column 3", "too large"},
      {"1" + std::string(400, '0'), "line 1, column 1", "too large"},
      {"1.", "line 1, column 3", "digit"},
      {"1e", "line 1, column 3", "digit"},
      {".5", "line 1, column 1", "value"},
      {"01", "line 1, column 2", "follow"},
      {"+1", "line 1, column 1", "value"},
      {"-", "line 1, column 2", "value"},
      {"NaN", "line 1, column 1", "value"},
      {"Infinity", "line 1, column 1", "value"},
      {"// a\n1", "line 1, column 1", "value"},
      {"[1,\n\t{\"é\": x}]", "line 2, column 8", "value"},
      {std::string("[1\0]", 4), "line 1, column 3", "comma"},
      {std::string("1\0", 2), "line 1, column 2", "NUL"},
  });
}

TEST(ReadTypedJson, RefusesFormsThatAreNotWellMade) {
  // The place is where reading stands once the form is complete.
  expectRefuses({
      {R"({"$nope": 1})", "line 1, column 11", "“$nope” is not one of the forms"},
      {R"({"$": 1})", "line 1, column 7", "“$” is not one of the forms"},
      {R"({"$Date": "2024-03-01T15:05:00Z"})", "line 1, column 32",
       "“$Date” is not one of the forms"},
      {R"({"$date": 5})", "line 1, column 11", "“$date” needs a text"},
      {R"({"$date": "now"})", "line 1, column 15", "“$date” needs a date and time"},
      {R"({"$date": "2024-03-01T15:05:00"})", "line 1, column 31", "“$date” needs a date and time"},
      {R"({"$date": "2024-02-30T15:05:00Z"})", "line 1, column 32",
       "“$date” needs a date and time"},
      {R"({"$ldt": "5"})", "line 1, column 12", "“$ldt” needs an integer"},
      {R"({"$ldt": 5.0})", "line 1, column 12", "“$ldt” needs an integer"},
      {R"({"$ldt": 9223372036854775808})", "line 1, column 28", "“$ldt” needs an integer"},
      {R"({"$ldt": true})", "line 1, column 13", "“$ldt” needs an integer"},
      {R"({"$null": false})", "line 1, column 15", "“$null” needs true"},
      {R"({"$null": 1})", "line 1, column 11", "“$null” needs true"},
      {R"({"$real": "infinity"})", "line 1, column 20", "“$real” needs “inf”"},
      {R"({"$real": 1.5})", "line 1, column 13", "“$real” needs"},
      {R"({"$file": "relative"})", "line 1, column 20", "“$file” needs a path"},
      {R"({"$file": ""})", "line 1, column 12", "“$file” needs a path"},
      {R"({"$file": "/a\u0000b"})", "line 1, column 21", "“$file” needs a path"},
      {R"({"$file": "/a\ud800"})", "line 1, column 20", "“$file” cannot hold a lone surrogate but"},
      {R"({"$file": "/a\udc7f"})", "line 1, column 20", "“$file” cannot hold a lone surrogate but"},
      {R"({"$alias": "/a\udd00"})", "line 1, column 21", "“$alias” cannot hold a lone surrogate"},
      {R"({"$url": "file:///\ud800"})", "line 1, column 25", "“$url” cannot hold a lone surrogate"},
      {R"({"$file": null})", "line 1, column 14", "“$file” needs a text"},
      {R"({"$alias": "a"})", "line 1, column 14", "“$alias” needs a path"},
      {R"({"$fsrf": "a"})", "line 1, column 13", "“$fsrf” needs a path"},
      {R"({"$url": 1})", "line 1, column 10", "“$url” needs a text"},
      {R"({"$data": "a"})", "line 1, column 13", "“$data” needs base64"},
      {R"({"$data": "Zm9v\n"})", "line 1, column 18", "“$data” needs base64"},
      {R"({"$data": ["Zm9v"]})", "line 1, column 17", "“$data” needs a text"},
      {R"({"$script": "é"})", "line 1, column 15", "“$script” needs base64"},
      {R"({"$type": "abc"})", "line 1, column 15", "“$type” needs four characters"},
      {R"({"$type": "abcde"})", "line 1, column 17", "“$type” needs four characters"},
      {R"({"$type": "ab漢d"})", "line 1, column 16", "“$type” needs four characters"},
      {R"({"$type": null})", "line 1, column 14", "“$type” needs a text"},
      {R"({"$enum": 5})", "line 1, column 11", "“$enum” needs a text"},
      {R"({"$enum": "0x62E5653"})", "line 1, column 21",
       "there is no constant “0x62E5653”; “$enum” needs the name of one, four characters"},
      {R"({"$enum": "0x62E5653G"})", "line 1, column 22", "there is no constant “0x62E5653G”"},
      {R"({"$enum": "0x-2E56531"})", "line 1, column 22", "there is no constant “0x-2E56531”"},
      {R"({"$enum": ""})", "line 1, column 12", "there is no constant “”"},
      {R"({"$enum": "upercasing"})", "line 1, column 22",
       "there is no constant “upercasing” (did you mean “uppercasing”?)"},
      {R"({"$enum": "text modification"})", "line 1, column 29", "there is no constant “text"},
      {R"({"$object": ""})", "line 1, column 14", "“$object” needs a path"},
      {R"({"$object": 5})", "line 1, column 13", "“$object” needs a text"},
      {R"({"$object": "\ud800"})", "line 1, column 20", "“$object” cannot hold a lone surrogate"},
      {R"({"$raw": "abcd"})", "line 1, column 15", "“$raw” needs its companion “data”"},
      {R"({"$raw": "abc", "data": ""})", "line 1, column 26", "“$raw” needs four characters"},
      {R"({"$raw": "abcd", "data": 5})", "line 1, column 26", "“data” needs a text"},
      {R"({"$number": 5})", "line 1, column 13", "“$number” needs its companion “as”"},
      {R"({"$number": "5", "as": "shor"})", "line 1, column 29", "“$number” needs a number"},
      {R"({"$number": true, "as": "shor"})", "line 1, column 30", "“$number” needs a number"},
      {R"([7, {"$number": true, "as": "shor"}])", "line 1, column 34", "“$number” needs a number"},
      {R"({"$number": [5], "as": "shor"})", "line 1, column 29", "“$number” needs a number"},
      {R"({"$number": 5, "as": "utxt"})", "line 1, column 27", "“utxt” is not a type of numbers"},
      {R"({"$number": 5, "as": "bool"})", "line 1, column 27", "“bool” is not a type of numbers"},
      {R"({"$number": 5, "as": 5})", "line 1, column 22", "“as” needs a text"},
      {R"({"$number": 32768, "as": "shor"})", "line 1, column 31", "“shor” can hold"},
      {R"({"$number": -1, "as": "ushr"})", "line 1, column 28", "“ushr” can hold"},
      {R"({"$number": 2147483648, "as": "long"})", "line 1, column 36", "“long” can hold"},
      {R"({"$number": 4294967296, "as": "magn"})", "line 1, column 36", "“magn” can hold"},
      {R"({"$number": 9223372036854775808, "as": "comp"})", "line 1, column 45", "“comp” can hold"},
      {R"({"$number": -1, "as": "ucom"})", "line 1, column 28", "“ucom” can hold"},
      {R"({"$number": 18446744073709551616, "as": "ucom"})", "line 1, column 46",
       "“ucom” can hold"},
      {R"({"$number": 5.0, "as": "shor"})", "line 1, column 29", "“shor” can hold"},
      {R"({"$number": 1e39, "as": "sing"})", "line 1, column 30", "“sing” can hold"},
      {R"({"$record": 5})", "line 1, column 13", "“$record” needs an object"},
      {R"({"$record": [{"a": 1}]})", "line 1, column 20", "“$record” needs an object"},
      {R"({"$source": "return 1"})", "line 1, column 22", "“$source” needs a script engine"},
      {R"({"$source": 1})", "line 1, column 13", "“$source” needs a text"},
      {"[1,\n {\"a\":\n  {\"$date\":\n \"now\"}}]", "line 4, column 6",
       "“$date” needs a date and time"},
  });
}

TEST(ReadTypedJson, TakesConstantsByTheNamesOfTheDictionary) {
  const auto read = [](std::string_view json) {
    JsonSource source{json};
    return readTypedJson(source, {.dictionary = &testDictionary()});
  };
  EXPECT_EQ(read(R"({"$enum": "red"})"), plain("enum"_code, "redC"_code));
  EXPECT_EQ(read(R"({"$enum": "redC"})"), plain("enum"_code, "redC"_code));
  // Four characters are the name of a constant, unless they are the code of another one.
  EXPECT_EQ(read(R"({"$enum": "blue"})"), plain("enum"_code, FourCharCode{0x62E56531}));
  EXPECT_EQ(read(R"({"$enum": "grey"})"), plain("enum"_code, "grey"_code));
  EXPECT_THROW(read(R"({"$enum": "uppercasing"})"), JsonError);
}

TEST(ReadTypedJson, CompilesScriptSourceWhereThereIsACompiler) {
  const CompileSource compile = [](std::u16string_view source) {
    if (source == u"wrong") throw JsonError("no such word");
    return "compiled " + std::to_string(source.size());
  };
  const auto read = [&](std::string_view json) {
    return outcomeOf([&] {
      JsonSource source(json);
      return described(readTypedJson(source, {.compileSource = &compile}));
    });
  };
  EXPECT_EQ(read(R"([{"$source": "return 1"}])"),
            described(ScriptValue::list({payload("scpt"_code, "compiled 8")})));
  EXPECT_EQ(read(R"({"$source": "wrong"})"), "line 1, column 19: no such word");
}

TEST(ReadTypedJson, NestsAsDeepAsValuesGoAndNoDeeper) {
  const std::string lists = std::string(kMaximumDepth, '[') + std::string(kMaximumDepth, ']');
  JsonSource deepest(lists);
  EXPECT_EQ(readTypedJson(deepest).depth(), kMaximumDepth);
  EXPECT_EQ(valueOrError("[" + lists + "]"),
            "line 1, column 4097: Lists and records can be nested at most 4096 deep, where a "
            "record counts twice");
  const std::string endless(100000, '[');
  EXPECT_EQ(valueOrError(endless),
            "line 1, column 4097: Lists and records can be nested at most 4096 deep, where a "
            "record counts twice");
}

TEST(ReadTypedJson, ARecordOfUserFieldsCountsTwice) {
  const auto nested = [](std::size_t times) {
    std::string json;
    for (std::size_t i = 0; i < times; ++i) json += R"({"a":)";
    return json + "1" + std::string(times, '}');
  };
  JsonSource deepest(nested(kMaximumDepth / 2));
  EXPECT_EQ(readTypedJson(deepest).depth(), kMaximumDepth);
  EXPECT_NE(valueOrError(nested(kMaximumDepth / 2 + 1))
                .find("nested at most 4096 deep, where a record counts twice"),
            std::string::npos);
  EXPECT_NE(
      valueOrError(nested(100000)).find("nested at most 4096 deep, where a record counts twice"),
      std::string::npos);
}

}  // namespace
}  // namespace skerrow::scripting
