#include "scripting/argument_evaluation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "core/script_error.h"
#include "scripting/dictionary/kind_words.h"
#include "tests/scripting/test_commands.h"
#include "tests/support/building.h"
#include "tests/support/describe.h"

namespace skerrow::scripting {
namespace {

using namespace literals;
using tests::described;
using tests::fileReference;
using tests::plain;
using tests::scriptRecord;
using tests::scriptText;

const ArgumentEntry& argument(std::string_view key) {
  return *testDictionary().command("TestEcho")->argument(key);
}

// What the command finds, or the refusal.
std::string evaluated(std::string_view key, const ScriptValue& value) {
  try {
    return described(evaluateArgument(argument(key), value));
  } catch (const core::ScriptError& error) {
    return std::to_string(error.number()) + " " + error.message();
  }
}

ScriptValue payload(FourCharCode type, std::string_view bytes) {
  return ScriptValue::withPayload(type, bytes);
}

struct Row {
  const char* key;
  ScriptValue given;
  const char* found;
};

void expectFound(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(evaluated(row.key, row.given), row.found) << row.key << " " << described(row.given);
  }
}

TEST(EvaluateArgument, PlainKindsArriveUnpacked) {
  expectFound({
      {"text", scriptText(u"é"), "“\\u00E9”"},
      {"text", scriptText(u""), "“”"},
      {"text", payload("utf8"_code, "é"), "“\\u00E9”"},
      {"text", payload("TEXT"_code, "\x8E"), "“\\u00E9”"},
      {"integer", ScriptValue::integer32(-5), "signed32 -5"},
      {"integer", plain<std::int16_t>("shor"_code, 7), "signed32 7"},
      {"integer", plain<std::uint32_t>("magn"_code, INT32_MAX), "signed32 2147483647"},
      {"integer", plain<std::int64_t>("comp"_code, INT32_MIN), "signed32 -2147483648"},
      {"integer", ScriptValue::real(3.0), "signed32 3"},
      {"integer", ScriptValue::real(-0.0), "signed32 0"},
      {"real", ScriptValue::real(2.5), "real 2.5"},
      {"real", ScriptValue::integer32(2), "signed32 2"},
      {"real", plain<std::uint64_t>("ucom"_code, UINT64_MAX), "unsigned64 18446744073709551615"},
      {"number", ScriptValue::integer32(2), "signed32 2"},
      {"number", ScriptValue::real(2.5), "real 2.5"},
      {"number", plain<std::int64_t>("comp"_code, INT64_MAX), "signed64 9223372036854775807"},
      {"boolean", ScriptValue::boolean(true), "boolean 1"},
      {"boolean", ScriptValue::boolean(false), "boolean 0"},
      {"boolean", payload("bool"_code, "\x02"), "boolean 1"},
      {"date", plain<std::int64_t>("ldt "_code, 3061152000), "date 0"},
      {"file", fileReference("file:///a"), "url file:///a"},
      {"file", payload("alis"_code, "/a b"), "url file:///a%20b"},
      {"file", payload("fsrf"_code, "/a"), "url file:///a"},
      {"type", ScriptValue::typeCode("pnam"_code), "null"},
      {"data", payload("rdat"_code, "ab"), "data 6162"},
      {"data", payload("rdat"_code, ""), "data "},
      {"dateOrText", scriptText(u"a"), "“a”"},
      {"dateOrText", plain<std::int64_t>("ldt "_code, 3061152060), "date 60"},
  });
}

// A number stays the number that was given where reals are welcome too.
TEST(EvaluateArgument, AWholeRealStaysARealWhereRealsAreTaken) {
  for (const ScriptValue& three : {ScriptValue::real(3.0), plain<float>("sing"_code, 3.0F),
                                   plain<long double>("ldbl"_code, 3.0L)}) {
    EXPECT_EQ(evaluated("number", three), "real 3");
    EXPECT_EQ(evaluated("real", three), "real 3");
    EXPECT_EQ(evaluated("integer", three), "signed32 3");
  }
}

TEST(EvaluateArgument, EnumeratorsArriveAsTheirCodesGivenAsSuchOrAsIntegers) {
  expectFound({
      {"colour", plain("enum"_code, FourCharCode{0x62E56531}), "unsigned32 1659200817"},
      {"colour", ScriptValue::integer32(0x62E56531), "unsigned32 1659200817"},
      {"colour", plain<std::int64_t>("comp"_code, 0xFFFFFFFF), "unsigned32 4294967295"},
      {"colour", plain<std::uint64_t>("ucom"_code, 0x62E56531), "unsigned32 1659200817"},
      {"colour", ScriptValue::integer32(0), "unsigned32 0"},
      {"colour", ScriptValue::integer32(-1), "unsigned32 4294967295"},
  });
}

TEST(EvaluateArgument, ListsArriveAsListsOfGivenItemsAndASingleValueAsAListOfOne) {
  expectFound({
      {"items", ScriptValue::list({}), "[]"},
      {"items", ScriptValue::list({scriptText(u"a"), ScriptValue(), ScriptValue::list({})}),
       "[raw 'utxt' “a”, raw 'type' 676E736D, raw 'list' []]"},
      {"texts", ScriptValue::list({scriptText(u"a"), payload("utf8"_code, "b")}),
       "[raw 'utxt' “a”, raw 'utf8' 62]"},
      {"texts", ScriptValue::list({}), "[]"},
      {"textOrTexts", ScriptValue::list({scriptText(u"a")}), "[raw 'utxt' “a”]"},
      {"textOrTexts", scriptText(u"a"), "[raw 'utxt' “a”]"},
      {"textOrTexts", scriptText(u""), "[raw 'utxt' “”]"},
      {"colours", plain("enum"_code, "redC"_code), "[raw 'enum' 43646572]"},
      {"colours", ScriptValue::integer32(5), "[raw 'long' 05000000]"},
      {"colours", ScriptValue::list({plain("enum"_code, "redC"_code), ScriptValue::integer32(5)}),
       "[raw 'enum' 43646572, raw 'long' 05000000]"},
      {"recordOrRecords", scriptRecord({}), "[raw 'reco' {'usrf': 'list' []}]"},
      {"recordOrRecords", ScriptValue::list({scriptRecord({})}),
       "[raw 'reco' {'usrf': 'list' []}]"},
  });
}

TEST(EvaluateArgument, RecordsScriptsAndAnythingArriveAsTheyWereGiven) {
  expectFound({
      {"record", scriptRecord({scriptText(u"a"), ScriptValue()}),
       "raw 'reco' {'usrf': 'list' ['utxt' “a”, 'type' 676E736D]}"},
      {"record", ScriptValue::record("reco"_code, {}), "raw 'reco' {}"},
      {"script", payload("scpt"_code, "ab"), "raw 'scpt' 6162"},
      {"anything", ScriptValue(), "raw 'type' 676E736D"},
      {"anything", ScriptValue::null(), "raw 'null' "},
      {"anything", scriptText(u"a"), "raw 'utxt' “a”"},
      {"anything", ScriptValue::list({scriptText(u"a")}), "raw 'list' ['utxt' “a”]"},
      {"anything", ScriptValue::record("cobj"_code, {}), "raw 'cobj' {}"},
      {"anything", payload("abcd"_code, "x"), "raw 'abcd' 78"},
  });
}

struct RefusalRow {
  const char* key;
  const char* takes;
};

const RefusalRow kRefusalRows[] = {
    {"text", "a text"},
    {"integer", "an integer"},
    {"real", "a real number"},
    {"number", "an integer or a real number"},
    {"boolean", "true or false"},
    {"date", "a date"},
    {"file", "a file"},
    {"record", "a record"},
    {"type", "a class"},
    {"data", "raw data"},
    {"script", "a script"},
    {"colour", "a constant"},
    {"colours", "a constant, or a list of constants"},
    {"texts", "a list of texts"},
    {"items", "a list"},
    {"textOrTexts", "a text, or a list of texts"},
    {"recordOrRecords", "a record, or a list of records"},
    {"dateOrText", "a text or a date"},
};

TEST(TypesInWords, NameEverythingThatAnArgumentTakes) {
  for (const RefusalRow& row : kRefusalRows) EXPECT_EQ(argument(row.key).type.inWords, row.takes);
  EXPECT_EQ(argument("anything").type.inWords, "any value");
}

// A value of each kind, in words, with the arguments that take it.
struct KindRow {
  ScriptValue value;
  const char* words;
  std::vector<std::string_view> takenBy;
};

const char* const kLongReference = [] {
  static const std::string words = "the reference “" + std::string(200, 'x') + "…”";
  return words.c_str();
}();

const std::vector<KindRow>& kindRows() {
  static const std::vector<KindRow> rows = {
      {scriptText(u"long"), "a text", {"text", "textOrTexts", "dateOrText"}},
      {payload("TEXT"_code, ""), "a text", {"text", "textOrTexts", "dateOrText"}},
      {ScriptValue::boolean(false), "a boolean", {"boolean"}},
      {payload("bool"_code, "\x01"), "a boolean", {"boolean"}},
      {ScriptValue::integer32(7),
       "the integer 7",
       {"integer", "real", "number", "colour", "colours"}},
      {ScriptValue::integer32(-7),
       "the integer -7",
       {"integer", "real", "number", "colour", "colours"}},
      {plain<std::int64_t>("comp"_code, -2147483649),
       "the integer -2147483649",
       {"real", "number"}},
      {plain<std::int64_t>("comp"_code, 2147483648),
       "the integer 2147483648",
       {"real", "number", "colour", "colours"}},
      {plain<std::int64_t>("comp"_code, 4294967296), "the integer 4294967296", {"real", "number"}},
      {plain<std::uint64_t>("ucom"_code, UINT64_MAX),
       "the integer 18446744073709551615",
       {"real", "number"}},
      {ScriptValue::real(2.5), "the real number 2.5", {"real", "number"}},
      {ScriptValue::real(1e300), "the real number 1e+300", {"real", "number"}},
      {ScriptValue::real(3), "the real number 3", {"integer", "real", "number"}},
      {ScriptValue::list({}),
       "a list",
       {"texts", "items", "textOrTexts", "colours", "recordOrRecords"}},
      {scriptRecord({}), "a record", {"record", "recordOrRecords"}},
      {ScriptValue::record("cobj"_code, {}), "a record of the class “cobj”", {}},
      {ScriptValue(), "missing value", {}},
      {payload("msng"_code, ""), "missing value", {}},
      {ScriptValue::null(), "the null value", {}},
      {plain<std::int64_t>("ldt "_code, 0), "a date", {"date", "dateOrText"}},
      {fileReference("file:///a"), "a file", {"file"}},
      {payload("alis"_code, "/a"), "a file", {"file"}},
      {ScriptValue::typeCode("pnam"_code), "a class", {"type"}},
      {plain("enum"_code, "abcd"_code), "a constant", {"colour", "colours"}},
      {payload("rdat"_code, ""), "raw data", {"data"}},
      {payload("scpt"_code, ""), "a script", {"script"}},
      {tests::objectReference("a.b"), "the reference “a.b”", {}},
      {tests::objectReference(std::string(300, 'x')), kLongReference, {}},
      {payload("obj "_code, ""), "a reference", {}},
      {payload("abcd"_code, ""), "a value of type “abcd”", {}},
      {payload("long"_code, "abc"), "a value of type “long”", {}},
      {payload("\xC7\x61\x62\x63"_code, ""), "a value of type “«abc”", {}},
  };
  return rows;
}

TEST(KindInWords, NamesEveryValue) {
  for (const KindRow& row : kindRows()) {
    EXPECT_EQ(kindInWords(row.value), row.words) << described(row.value);
  }
}

// Why a value is refused, in the words of the message.
std::string refusal(const RefusalRow& argumentRow, const KindRow& kindRow) {
  const std::string_view given = kindRow.words;
  const bool isInteger = given.starts_with("the integer ");
  const bool isTooLarge = isInteger && std::string_view(argumentRow.key) == "integer";
  const bool isDamaged = kindRow.value == payload("long"_code, "abc");
  return "-1700 “" + std::string(argumentRow.key) + "” takes " +
         (isTooLarge ? "an integer of 32 bits" : argumentRow.takes) + ", not " + kindRow.words +
         (isDamaged ? " with damaged data." : ".");
}

TEST(EvaluateArgument, RefusesEveryOtherKindByNameOfTheArgumentAndTheValue) {
  for (const RefusalRow& argumentRow : kRefusalRows) {
    for (const KindRow& kindRow : kindRows()) {
      const std::string found = evaluated(argumentRow.key, kindRow.value);
      if (std::ranges::find(kindRow.takenBy, argumentRow.key) != kindRow.takenBy.end()) {
        EXPECT_FALSE(found.starts_with("-1700")) << found;
      } else {
        EXPECT_EQ(found, refusal(argumentRow, kindRow));
      }
    }
  }
}

TEST(EvaluateArgument, RefusesAListForTheFirstItemThatItCannotHold) {
  expectFound({
      {"texts", ScriptValue::list({scriptText(u"a"), ScriptValue::integer32(1), ScriptValue()}),
       "-1700 “texts” takes a list of texts, not a list with the integer 1."},
      {"texts", ScriptValue::list({ScriptValue::list({scriptText(u"a")})}),
       "-1700 “texts” takes a list of texts, not a list with a list."},
      {"colours", ScriptValue::list({ScriptValue::real(1)}),
       "-1700 “colours” takes a constant, or a list of constants, not a list with the real number "
       "1."},
      {"recordOrRecords", ScriptValue::list({scriptRecord({}), ScriptValue()}),
       "-1700 “recordOrRecords” takes a record, or a list of records, not a list with missing "
       "value."},
      {"integer", ScriptValue::real(2.5),
       "-1700 “integer” takes an integer, not the real number 2.5."},
      {"integer", ScriptValue::real(std::numeric_limits<double>::infinity()),
       "-1700 “integer” takes an integer, not the real number inf."},
      {"text", ScriptValue(), "-1700 “text” takes a text, not missing value."},
  });
}

TEST(EvaluateArgument, RefusesPayloadsThatTheirTypeCannotHave) {
  for (const ScriptValue& value : {payload("ldt "_code, "ab"), payload("long"_code, "ab"),
                                   payload("bool"_code, ""), fileReference("no address")}) {
    EXPECT_TRUE(evaluated("date", value).starts_with("-1700 “date” takes a date, not "));
    EXPECT_TRUE(evaluated("boolean", value).starts_with("-1700 "));
    EXPECT_TRUE(evaluated("number", value).starts_with("-1700 "));
    EXPECT_TRUE(evaluated("file", value).starts_with("-1700 "));
  }
}

}  // namespace
}  // namespace skerrow::scripting
