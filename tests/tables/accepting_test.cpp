// Showing and accepting new answers: all else in a table stays as it is, to the character.

#include "tests/support/accepting.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace skerrow::tests {
namespace {

// A case in a table with another one on either side.
std::string tableWith(const std::string& members) {
  return "{\"command\": \"SKWReverse\", \"cases\": [\n"
         "  {\"name\": \"First\",  \"result\": 1},\n\n"
         "  {" +
         members +
         "},\n"
         "  {\"name\": \"Last\",\n   \"result\":[ 2 ]}\n]}\n";
}

const CaseOutcome kFirst = {R"({"result":1})", {}};
const CaseOutcome kLast = {R"({"result":[2]})", {}};

std::string accepted(const std::string& members, const CaseOutcome& outcome) {
  const std::string table = tableWith(members);
  const std::vector<CaseOutcome> outcomes = {kFirst, outcome, kLast};
  return acceptedTable(table, parseCaseTable(table, "table"), outcomes);
}

std::string difference(const std::string& members, const CaseOutcome& outcome) {
  return differenceOf(parseCaseTable(tableWith(members), "table")[1], outcome);
}

FolderContent folder(const std::string& json) { return afterChanges({}, json); }

TEST(AcceptedTable, IsTheSameWhereAllIsAsExpected) {
  const std::string members = "\"name\": \"It works\",\n    \"result\" :  {\"b\":[1, 2.50]}";
  EXPECT_EQ(accepted(members, {R"({"result": {"b":[1,2.50]}})", {}}), tableWith(members));
}

TEST(AcceptedTable, HoldsTheNewResultInTheOldPlace) {
  EXPECT_EQ(accepted(R"("name": "It, \"works\"", "result":{"b": [1]} , "direct": "result")",
                     {R"({"result":{"a":[1,"x,y:\""],"b":2.50}})", {}}),
            tableWith(R"("name": "It, \"works\"", "result": {"a": [1, "x,y:\""], "b": 2.50} , )"
                      R"("direct": "result")"));
}

TEST(AcceptedTable, HoldsAnErrorWhereAResultWasExpectedAndTheOtherWayRound) {
  const std::string error = R"("error": {"number": 5, "message": "No “a”."})";
  EXPECT_EQ(accepted(R"("name": "It", "result": 3)",
                     {R"({"error":{"number":5,"message":"No “a”."}})", {}}),
            tableWith(R"("name": "It", )" + error));
  EXPECT_EQ(accepted(error + R"(, "name": "It")", {R"({"result":null})", {}}),
            tableWith(R"("result": null, "name": "It")"));
}

TEST(AcceptedTable, HoldsNothingAsTrue) {
  EXPECT_EQ(accepted(R"("name": "It", "result": 3)", {"{}", {}}),
            tableWith(R"("name": "It", "nothing": true)"));
}

TEST(AcceptedTable, KeepsTheEscapesOfLoneSurrogates) {
  EXPECT_EQ(
      accepted(R"("name": "It", "result": "\ud83d\\D83D")", {R"({"result":"\ude00\\D83D"})", {}}),
      tableWith(R"("name": "It", "result": "\ude00\\D83D")"));
}

TEST(AcceptedTable, GainsFilesThatWereNotExpected) {
  EXPECT_EQ(accepted(R"("name": "It", "files": {"a": "x"}, "result": 3, "timeout": 4)",
                     {R"({"result":3})", folder(R"({"b": "y"})")}),
            tableWith(R"("name": "It", "files": {"a": "x"}, "result": 3, )"
                      R"("filesAfter": {"a": null, "b": "y"}, "timeout": 4)"));
}

TEST(AcceptedTable, HoldsOtherFilesThanThoseExpected) {
  EXPECT_EQ(accepted(R"("name": "It", "filesAfter":{"a": "x"}, "nothing": true)",
                     {"{}", folder(R"({"a": "z"})")}),
            tableWith(R"("name": "It", "filesAfter":{"a": "z"}, "nothing": true)"));
}

TEST(AcceptedTable, LosesFilesThatDidNotCome) {
  const CaseOutcome outcome = {R"({"result":4})", {}};
  EXPECT_EQ(accepted(R"("name": "It",  "filesAfter": {"a": "x"}, "result": 3)", outcome),
            tableWith(R"("name": "It", "result": 4)"));
  EXPECT_EQ(accepted(R"("filesAfter": {"a": "x"},  "name": "It", "result": 3)", outcome),
            tableWith(R"("name": "It", "result": 4)"));
  EXPECT_EQ(accepted(R"("name": "It", "result": 3 , "filesAfter": {"a": "x"} )", outcome),
            tableWith(R"("name": "It", "result": 4 )"));
}

TEST(AcceptedTable, HoldsTheChangesOfSeveralCases) {
  const std::string table = tableWith(R"("name": "It", "result": 3)");
  const std::vector<CaseOutcome> outcomes = {
      {R"({"result":"one"})", {}}, {R"({"result":3})", {}}, {"{}", {}}};
  EXPECT_EQ(acceptedTable(table, parseCaseTable(table, "table"), outcomes),
            "{\"command\": \"SKWReverse\", \"cases\": [\n"
            "  {\"name\": \"First\",  \"result\": \"one\"},\n\n"
            "  {\"name\": \"It\", \"result\": 3},\n"
            "  {\"name\": \"Last\",\n   \"nothing\": true}\n]}\n");
}

TEST(AcceptedTable, IsReadAgainWithWhatWasAccepted) {
  const CaseOutcome outcome = {
      R"({"error":{"number":-1,"message":"é\n"}})",
      folder(R"({"d/e": {"base64": "AP8="}, "l": {"link": "${scratch}"}})")};
  const std::string table = accepted(R"("name": "It", "files": {"a": "x"}, "result": 3)", outcome);
  EXPECT_TRUE(outcome.isAsExpected(parseCaseTable(table, "table")[1])) << table;
}

TEST(AcceptedTable, IsNotMadeOfAnswersThatAreNone) {
  const std::string members = R"("name": "It", "result": 3)";
  EXPECT_THROW(accepted(members, {std::nullopt, {}}), std::invalid_argument);
  EXPECT_THROW(accepted(members, {"{\"result\":", {}}), std::invalid_argument);
  EXPECT_THROW(accepted(members, {R"({"result":1,"error":2})", {}}), std::invalid_argument);
}

TEST(DifferenceOf, IsEmptyWhereAllIsAsExpected) {
  EXPECT_EQ(difference(R"("name": "It", "result": 3)", {R"({"result": 3})", {}}), "");
}

TEST(DifferenceOf, ShowsShortAnswersOnALineEach) {
  EXPECT_EQ(difference(R"("name": "It", "result": [1,2])", {R"({"result":[1,3]})", {}}),
            "table:4: It\n"
            "  - {\"result\": [1, 2]}\n"
            "  + {\"result\": [1, 3]}\n");
}

TEST(DifferenceOf, ShowsOfLongAnswersTheLinesThatDiffer) {
  std::string items;
  for (int i = 0; i < 40; ++i) items += std::to_string(i) + ",";
  EXPECT_EQ(difference(R"("name": "It", "result": [)" + items + "40]",
                       {R"({"result":[)" + items + "\"new\",40]}", {}}),
            "table:4: It\n"
            "        39,\n"
            "  +     \"new\",\n"
            "        40\n");
}

TEST(DifferenceOf, ShowsFilesAndAnswersThatAreNone) {
  EXPECT_EQ(difference(R"("name": "It", "files": {"a": "x"}, "result": 1)", {std::nullopt, {}}),
            "table:4: It\n"
            "  - {\"result\": 1}\n"
            "  + no answer at all\n"
            "  files afterwards:\n"
            "  - {}\n"
            "  + {\"a\": null}\n");
}

}  // namespace
}  // namespace skerrow::tests
