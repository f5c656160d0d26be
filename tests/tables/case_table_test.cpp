// The runner of the tables itself: what is no table is refused, and a wrong answer
// never passes.

#include "tests/support/case_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/folder_content.h"
#include "tests/support/json_text.h"

namespace skerrow::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A table of one case with these members beside its name.
std::vector<TestCase> tableWith(const std::string& members) {
  return parseCaseTable("{\"command\": \"SKWReverse\", \"cases\": [\n{\"name\": \"It works\"" +
                            (members.empty() ? "" : ", " + members) + "}]}",
                        "table");
}

std::string problemWith(std::string_view table) {
  try {
    parseCaseTable(table, "table");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no problem";
}

std::string problemWithCase(const std::string& members) {
  try {
    tableWith(members);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "no problem";
}

FrontEnd answering(std::vector<std::string> answers) {
  return {"Canned", [answers = std::move(answers)](auto /*events*/, auto /*environment*/) {
            return answers;
          }};
}

// Answers each event with itself and its environment, and does something before.
FrontEnd echoing(std::function<void(const std::string& event)> before = [](const auto&) {}) {
  return {"Echo", [=](std::span<const std::string> events, const Variables& environment) {
            std::vector<std::string> answers;
            for (const std::string& event : events) {
              before(event);
              std::string variables;
              for (const auto& [name, value] : environment) variables += name + "=" + value + " ";
              answers.push_back(R"({"result":)" + jsonString(variables + event) + "}");
            }
            return answers;
          }};
}

// The scratch folder that an event speaks of.
std::string folderIn(const std::string& event) {
  const std::size_t begin = event.find("\"direct\": \"") + std::size("\"direct\": \"") - 1;
  return event.substr(begin, event.find('"', begin) - begin);
}

TEST(CaseTable, BecomesEventsOnOneLineEach) {
  const auto cases = tableWith("\"direct\": [1,\n 2.50], \"timeout\": 3, \"result\": null");
  ASSERT_EQ(cases.size(), 1U);
  EXPECT_EQ(cases[0].name, "It works");
  EXPECT_EQ(cases[0].place, "table:2");
  EXPECT_EQ(cases[0].event, R"({"command": "SKWReverse", "direct": [1,  2.50], "timeout": 3})");
  EXPECT_EQ(cases[0].expected, R"({"result":null})");
}

TEST(CaseTable, LetsACaseNameAnotherCommand) {
  EXPECT_EQ(tableWith(R"("command": "SKWOther", "nothing": true)")[0].event,
            R"({"command": "SKWOther", "timeout": 10})");
}

TEST(CaseTable, ExpectsAnErrorByNumberAndMessageInWhateverOrder) {
  EXPECT_EQ(tableWith(R"("error": {"message": "No “a”.", "number": -1})")[0].expected,
            R"({"error":{"number":-1,"message":"No “a”."}})");
}

TEST(CaseTable, ExpectsNothingAsAnEmptyAnswer) {
  EXPECT_EQ(tableWith(R"("nothing": true)")[0].expected, "{}");
}

TEST(CaseTable, RefusesACaseThatExpectsNotExactlyOneAnswer) {
  constexpr const char* kProblem =
      "table:2: a case expects exactly one of “result”, “nothing” and “error”";
  EXPECT_EQ(problemWithCase(""), kProblem);
  EXPECT_EQ(problemWithCase(R"("result": 1, "nothing": true)"), kProblem);
  EXPECT_EQ(problemWithCase(R"("result": 1, "error": {"number": 1, "message": "a"})"), kProblem);
}

TEST(CaseTable, RefusesAnEmptyExpectation) {
  EXPECT_EQ(problemWithCase(R"("nothing": false)"), "table:2: “nothing” can only be true");
  EXPECT_EQ(problemWithCase(R"("error": {})"), "table:2: the member “number” is missing");
  EXPECT_EQ(problemWithCase(R"("error": {"number": 1})"),
            "table:2: the member “message” is missing");
  EXPECT_EQ(problemWithCase(R"("error": {"number": 1, "message": ""})"),
            "table:2: “message” is empty");
  EXPECT_EQ(problemWithCase(R"("error": {"number": "1", "message": "a"})"),
            "table:2: “number” must be an integer");
}

TEST(CaseTable, RefusesMembersThatItDoesNotKnowOrSeesTwice) {
  EXPECT_EQ(problemWithCase(R"("results": 1)"), "table:2: there is no use for a member “results”");
  EXPECT_EQ(problemWithCase(R"("result": 1, "result": 2)"),
            "table:2: the member “result” is given twice");
  EXPECT_EQ(problemWith(R"({"command": "C", "cases": [], "case": 1})"),
            "table:1: there is no use for a member “case”");
}

TEST(CaseTable, RefusesATableWithoutCasesOrCommand) {
  EXPECT_EQ(problemWith(R"({"command": "C", "cases": []})"), "table:1: a table needs cases");
  EXPECT_EQ(problemWith(R"({"cases": [{"name": "a", "result": 1}]})"),
            "table:1: the member “command” is missing");
}

TEST(CaseTable, RefusesTwoCasesOfOneName) {
  EXPECT_EQ(problemWith("{\"command\": \"C\", \"cases\": [{\"name\": \"a\", \"result\": 1},\n"
                        "{\"name\": \"a\", \"result\": 1}]}"),
            "table:2: another case has the name “a”");
}

TEST(CaseTable, RefusesWhatIsNoJsonAndSaysWhere) {
  EXPECT_THAT(problemWith("{\"command\": \"C\",\n \"cases\": [}"), StartsWith("table:2: "));
  EXPECT_EQ(problemWith("[]"), "table:1: an object is needed here");
  EXPECT_EQ(problemWith(R"({"command": "C", "cases": {}})"), "table:1: an array is needed here");
}

TEST(CaseTable, TakesFilesBeforeAndAfterAndVariables) {
  const auto cases = tableWith(R"("files": {"a": "x", "b/c": "y"}, "filesAfter": {"a": null},
                                  "environment": {"HOME": "${scratch}", "TZ": ""}, "nothing": true)");
  EXPECT_EQ(cases[0].filesBefore.size(), 3U);
  EXPECT_EQ(cases[0].filesAfter.size(), 2U);
  EXPECT_EQ(cases[0].environment, (Variables{{"HOME", "${scratch}"}, {"TZ", ""}}));
  EXPECT_TRUE(cases[0].hasScratchFolder());
  EXPECT_FALSE(tableWith(R"("environment": {"HOME": "/"}, "nothing": true)")[0].hasScratchFolder());
  EXPECT_TRUE(tableWith(R"("result": "${scratch}")")[0].hasScratchFolder());
}

TEST(CaseTable, RefusesFilesAndVariablesThatCannotBe) {
  EXPECT_EQ(problemWithCase(R"("files": {"../a": "x"}, "result": 1)"),
            "table:2: “../a” is no path inside of a folder");
  EXPECT_EQ(problemWithCase(R"("files": {"a": 1}, "result": 1)"),
            "table:2: an object is needed here");
  EXPECT_EQ(problemWithCase(R"("filesAfter": {"a": null}, "result": 1)"),
            "table:2: “a” is not there before either");
  EXPECT_EQ(problemWithCase(R"("files": {"a": "x"}, "filesAfter": {"a": "x"}, "result": 1)"),
            "table:2: “filesAfter” changes nothing and is to be left out");
  EXPECT_EQ(problemWithCase(R"("environment": {"A=B": "x"}, "result": 1)"),
            "table:2: “A=B” is no name of a variable");
  EXPECT_EQ(problemWithCase(R"("environment": {"A": "x", "A": "y"}, "result": 1)"),
            "table:2: the variable “A” is given twice");
  EXPECT_EQ(problemWithCase(R"("environment": {"A": 1}, "result": 1)"),
            "table:2: a string is needed here");
}

TEST(Mismatches, PutAScratchFolderOfItsOwnWhereACaseNamesIt) {
  const auto cases = tableWith(R"("files": {"a": "${scratch}", "l": {"link": "${scratch}/a"}},
      "environment": {"HOME": "${scratch}/h"}, "direct": "${scratch}",
      "result": "HOME=${scratch}/h {\"command\": \"SKWReverse\", \"direct\": \"${scratch}\", \"timeout\": 10}")");
  std::string folder;
  EXPECT_THAT(mismatches(cases, echoing([&folder](const std::string& event) {
                           folder = folderIn(event);
                           EXPECT_EQ(
                               contentOfFolder(folder),
                               (FolderContent{{"a", {FolderItem::Kind::file, folder}},
                                              {"l", {FolderItem::Kind::link, folder + "/a"}}}));
                         })),
              IsEmpty());
  EXPECT_TRUE(folder.starts_with("/")) << folder;
  EXPECT_FALSE(std::filesystem::exists(folder));
}

TEST(Mismatches, IncludeFilesThatAreNotAsExpectedAfterwards) {
  const auto cases = tableWith(R"("files": {"a": "x"}, "direct": "${scratch}",
                                  "filesAfter": {"b": "y"}, "nothing": true)");
  const auto found = [&cases](const FolderContent& made) {
    const auto frontEnd =
        FrontEnd{"Making", [&made](std::span<const std::string> events, const Variables&) {
                   makeContent(made, folderIn(events[0]));
                   return std::vector<std::string>{"{}"};
                 }};
    return mismatches(cases, frontEnd);
  };
  EXPECT_THAT(found(afterChanges({}, R"({"b": "y"})")), IsEmpty());
  EXPECT_THAT(found({}), ElementsAre(HasSubstr("  expected files: {\"b\": \"y\"}\n"
                                               "  actual files:   {}")));
  EXPECT_THAT(found(afterChanges({}, R"({"b": "y", "left over": ""})")),
              ElementsAre(HasSubstr(R"(actual files:   {"b": "y", "left over": ""})")));
}

TEST(Mismatches, SendCasesOfOneEnvironmentTogether) {
  const auto cases = parseCaseTable(R"({"command": "C", "cases": [
      {"name": "1", "result": 1}, {"name": "2", "environment": {"A": "x"}, "result": 2},
      {"name": "3", "result": 3}]})",
                                    "table");
  std::vector<std::size_t> counts;
  const FrontEnd frontEnd = {
      "Counting", [&counts](std::span<const std::string> events, const Variables& given) {
        counts.push_back(events.size());
        return given.empty() ? std::vector<std::string>{R"({"result":1})", R"({"result":3})"}
                             : std::vector<std::string>{R"({"result":2})"};
      }};
  EXPECT_THAT(mismatches(cases, frontEnd), IsEmpty());
  EXPECT_THAT(counts, ElementsAre(2U, 1U));
}

TEST(Mismatches, AreNoneWhenEveryAnswerIsTheExpectedOne) {
  const auto cases = tableWith(R"("result": {"a": "é", "b": [1, 2.5]})");
  EXPECT_THAT(mismatches(cases, answering({R"({"result": {"a":"\u00e9","b":[1,2.5]}})"})),
              IsEmpty());
}

TEST(Mismatches, ShowPlaceNameEventAndBothAnswers) {
  const auto cases = tableWith(R"("direct": [1], "result": 1)");
  EXPECT_THAT(
      mismatches(cases, answering({R"({"result":2})"})),
      ElementsAre("table:2: It works\n"
                  "  event:    {\"command\": \"SKWReverse\", \"direct\": [1], \"timeout\": 10}\n"
                  "  expected: {\"result\":1}\n"
                  "  actual:   {\"result\":2}"));
}

TEST(Mismatches, TellNumbersAndOrdersApart) {
  EXPECT_EQ(mismatches(tableWith(R"("result": 1)"), answering({R"({"result":1.0})"})).size(), 1U);
  EXPECT_EQ(mismatches(tableWith(R"("result": 1)"), answering({R"({"result":true})"})).size(), 1U);
  EXPECT_EQ(mismatches(tableWith(R"("result": {"a": 1, "b": 2})"),
                       answering({R"({"result":{"b":2,"a":1}})"}))
                .size(),
            1U);
  EXPECT_EQ(mismatches(tableWith(R"("nothing": true)"), answering({R"({"result":null})"})).size(),
            1U);
}

TEST(Mismatches, IncludeAnswersThatAreMissingTooManyOrNoJson) {
  const auto cases = tableWith(R"("result": 1)");
  EXPECT_THAT(mismatches(cases, answering({})), ElementsAre(HasSubstr("no answer at all")));
  EXPECT_THROW(mismatches(cases, answering({R"({"result":1})", "{}"})), std::runtime_error);
  EXPECT_THAT(mismatches(cases, answering({R"({"result":1)"})),
              ElementsAre(HasSubstr("(no JSON: ")));
}

TEST(NormalJson, KeepsLoneSurrogatesApartFromEverythingElse) {
  EXPECT_EQ(normalJson(R"("\ud83d\ude00")"), "\"😀\"");
  EXPECT_NE(normalJson(R"("\ud83d")"), normalJson(R"("\ude00")"));
  EXPECT_EQ(normalJson(R"("\ud83d x")"), normalJson(R"("\uD83D x")"));
}

}  // namespace
}  // namespace skerrow::tests
