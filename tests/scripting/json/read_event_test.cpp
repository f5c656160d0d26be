#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scripting/json/typed_json_reader.h"
#include "tests/scripting/json/json_outcome.h"

namespace skerrow::scripting {
namespace {

using tests::described;
using tests::eventOrError;
using tests::outcomeOf;

std::string readEventFrom(std::string_view json) {
  JsonSource source(json);
  return eventOrError(source);
}

std::string readArgumentsFrom(std::string_view json) {
  return outcomeOf([&] {
    JsonSource source(json);
    return described(readArguments(source));
  });
}

struct Row {
  const char* json;
  const char* event;
};

TEST(ReadEvent, TakesItsMembersInAnyOrderAndAllButTheCommandMayBeLeftOut) {
  const Row rows[] = {
      {R"({"command": "C"})", "C () within 120000"},
      {R"({"command": "É"})", "É () within 120000"},
      {R"({"command": "C", "direct": [1, "a"]})",
       "C of 'list' ['long' 01000000, 'utxt' “a”] () within 120000"},
      {R"({"command": "C", "direct": null})", "C of 'type' 676E736D () within 120000"},
      {R"({"command": "C", "direct": {"$date": "1904-01-01T00:00:00Z"}})",
       "C of 'ldt ' 0000000000000000 () within 120000"},
      {R"({"command": "C", "direct": {"command": "D"}})",
       "C of 'reco' {'usrf': 'list' ['utxt' “command”, 'utxt' “D”]} () within 120000"},
      {R"({"command": "C", "arguments": {}})", "C () within 120000"},
      {R"({"command": "C", "arguments": {"a": 1, "é": null}})",
       "C (a: 'long' 01000000, é: 'type' 676E736D) within 120000"},
      {R"({"arguments": {"a": {"b": [{}]}}, "direct": 1, "timeout": 5, "command": "C"})",
       "C of 'long' 01000000 (a: 'reco' {'usrf': 'list' ['utxt' “b”, 'list' ['reco' {}]]}) within "
       "5000"},
      {R"({"command": "C", "arguments": {"$date": 1, "command": 2}})",
       "C ($date: 'long' 01000000, command: 'long' 02000000) within 120000"},
      {R"({"command": "C", "arguments": {"a": {"$enum": "yes "}}})",
       "C (a: 'enum' 20736579) within 120000"},
      {R"({"command": "C", "arguments": {"": []}})", "C (: 'list' []) within 120000"},
      {R"({"command": "C", "timeout": 0})", "C () within 0"},
      {R"({"command": "C", "timeout": 0.25})", "C () within 250"},
      {R"({"command": "C", "timeout": 1e-9})", "C () within 1"},
      {R"({"command": "A", "command": "B"})", "B () within 120000"},
      {R"({"command": "C", "arguments": {"a": 1, "b": 2, "a": 3}})",
       "C (a: 'long' 03000000, b: 'long' 02000000) within 120000"},
  };
  for (const Row& row : rows) EXPECT_EQ(readEventFrom(row.json), row.event) << row.json;
}

TEST(ReadEvent, RefusesWhatIsNoEventAndNamesThePlaceAndTheProblem) {
  constexpr const char* kExample =
      "an event is an object such as {\"command\": \"SKWModifyList\", \"direct\": [1, 2]}";
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"{}", "line 1, column 3: the event does not name its “command”"},
      {R"({"direct": 1})", "line 1, column 14: the event does not name its “command”"},
      {R"({"command": ""})", "line 1, column 14: “command” needs the name of a command"},
      {R"({"command": 5})", "line 1, column 13: “command” needs the name of a command"},
      {R"({"command": null})", "line 1, column 16: “command” needs the name of a command"},
      {R"({"command": {"a": "C"}})", "line 1, column 21: “command” needs the name of a command"},
      {R"({"command": "C", "comand": 1})", "line 1, column 25: an event has no member “comand”"},
      {R"({"command": "C", "é": {}})", "line 1, column 20: an event has no member “é”"},
      {R"({"command": "C", "arguments": []})", "line 1, column 31: “arguments” needs an object"},
      {R"({"command": "C", "arguments": null})", "line 1, column 34: “arguments” needs an object"},
      {R"({"command": "C", "arguments": "a"})", "line 1, column 33: “arguments” needs an object"},
      {R"({"command": "C", "timeout": -1})",
       "line 1, column 30: “timeout” needs a number of seconds, 0 or more"},
      {R"({"command": "C", "timeout": "5"})",
       "line 1, column 31: “timeout” needs a number of seconds, 0 or more"},
      {R"({"command": "C", "timeout": true})",
       "line 1, column 32: “timeout” needs a number of seconds, 0 or more"},
      {R"({"command": "C", "timeout": null})",
       "line 1, column 32: “timeout” needs a number of seconds, 0 or more"},
      {R"({"command": "C", "timeout": {"$real": "nan"}})",
       "line 1, column 43: “timeout” needs a number of seconds, 0 or more"},
      {"[]", std::string("line 1, column 1: ") + kExample},
      {"5", std::string("line 1, column 1: ") + kExample},
      {R"("C")", std::string("line 1, column 3: ") + kExample},
      {"null", std::string("line 1, column 4: ") + kExample},
      {R"({"command": "C", "direct": {"$date": "now"}})",
       "line 1, column 42: “$date” needs a date and time that exist, written with an offset as in "
       "2024-03-01T15:05:00Z"},
  };
  for (const auto& [json, error] : rows) EXPECT_EQ(readEventFrom(json), error) << json;
}

TEST(ReadEvent, RefusesWhatIsNoJson) {
  for (const char* json :
       {"", "{", R"({"command": "C")", R"({"command": "C"} x)", R"({"command": "C"}})",
        R"({"command": "C", "arguments": {"a": 1})", "{\"command\": \"\xFF\"}"}) {
    EXPECT_TRUE(readEventFrom(json).starts_with("line 1, column ")) << json << readEventFrom(json);
  }
}

TEST(ReadArguments, TakesAnObjectOfValuesByKey) {
  const Row rows[] = {
      {"{}", "()"},
      {R"({"a": 1, "b": {"$null": true}})", "(a: 'long' 01000000, b: 'null' )"},
      {R"({"a": 1, "a": 2})", "(a: 'long' 02000000)"},
      {R"({"$date": "now"})", "($date: 'utxt' “now”)"},
      {R"({"arguments": {"command": 1}})",
       "(arguments: 'reco' {'usrf': 'list' ['utxt' “command”, 'long' 01000000]})"},
  };
  for (const Row& row : rows) EXPECT_EQ(readArgumentsFrom(row.json), row.event) << row.json;
}

TEST(ReadArguments, RefusesAnythingElse) {
  constexpr const char* kExample = "arguments are an object such as {\"reversingOrder\": true}";
  EXPECT_EQ(readArgumentsFrom("[]"), std::string("line 1, column 1: ") + kExample);
  EXPECT_EQ(readArgumentsFrom("null"), std::string("line 1, column 4: ") + kExample);
  EXPECT_EQ(readArgumentsFrom("\n5"), std::string("line 2, column 1: ") + kExample);
  EXPECT_TRUE(readArgumentsFrom("{} {}").starts_with("line 1, column 4: "));
  EXPECT_TRUE(
      readArgumentsFrom(R"({"a": {"$nope": 1}})").starts_with("line 1, column 17: “$nope” is not"));
}

}  // namespace
}  // namespace skerrow::scripting
