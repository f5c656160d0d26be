// Text commands whose caller has gone, and commands that ask for too much.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "tests/support/in_process.h"
#include "tests/support/program.h"
#include "tests/support/sanitized.h"
#include "tests/text/text_literal.h"

namespace skerrow::text {
namespace {

using namespace std::chrono_literals;

std::string timedOut() { return R"({"error":{"number":-1712,"message":"AppleEvent timed out."}})"; }

// Matching (a+)+[bc] against many a would take longer than anybody lives, so the pool
// of the commands, which waits for what runs in it, only ends when it is stopped.
TEST(Interruption, EndsACatastrophicMatchWhenTheCallerHasGone) {
  const std::string many(40, 'a');
  for (const char* arguments :
       {R"("stringToSearch": ")", R"("invertFlag": true, "stringToSearch": ")",
        R"("replacementPattern": "", "stringToSearch": ")"}) {
    tests::InProcess commands;
    EXPECT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "(a+)+[bc]", "timeout": 0.05,)"
                              R"("arguments": {)" +
                              std::string(arguments) + many + "\"}}"),
              timedOut());
  }
}

TEST(Interruption, LeavesTheServiceInOrderForTheNextCommand) {
  tests::InProcess commands;
  const std::string many(40, 'a');
  EXPECT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "(a+)+[bc]", "timeout": 0.05,)"
                            R"("arguments": {"stringToSearch": ")" +
                            many + "\"}}"),
            timedOut());
  EXPECT_EQ(
      commands.answer(
          R"({"command": "SKWFindIt", "direct": "(a+)+[bc]", "arguments": {"stringToSearch": "aab"}})"),
      R"({"result":["aab"]})");
}

TEST(Interruption, AMatchThatNeedsTooMuchMemoryFailsInsteadOfTakingIt) {
  scripting::Event event;
  event.command = "SKWFindIt";
  event.directParameter = ScriptValue::text(u"(?:a|b)*[cd]"_text);
  event.arguments = {{"stringToSearch", ScriptValue::text(Text(std::u16string(20'000'000, u'a')))}};
  tests::InProcess commands;
  const core::Reply reply = commands.perform(std::move(event));
  ASSERT_TRUE(std::holds_alternative<core::ScriptError>(reply));
  EXPECT_EQ(std::get<core::ScriptError>(reply).number(), 1018);
  EXPECT_NE(std::get<core::ScriptError>(reply).message().find("U_REGEX_STACK_OVERFLOW"),
            std::string::npos);
}

TEST(Padding, IsMeasuredOverTheWholeList) {
  if (tests::kIsSanitized) GTEST_SKIP() << "pads hundreds of megabytes";
  const std::string event =
      R"({"command": "SKWMungeText", "direct": [[""], ""],)"
      R"("arguments": {"stringMungeOption": {"$enum": "0x62E56535"}, "padLength": 140000000}})";
  EXPECT_EQ(tests::InProcess().answer(event),
            R"({"error":{"number":1021,"message":)"
            R"("The text can't be padded to 140000000 characters."}})");
}

TEST(LocalizedNumbers, AreReadAsTheUsersLanguageWritesThem) {
  const auto answerIn = [](const std::string& locale) {
    return tests::runProgram({.words = {"perform", "SKWConvertStrings", "--direct",
                                        R"(["1.234,5", "1,5", "1.5"])", "--arguments",
                                        R"({"asReals": true, "useLocalized": true})"},
                              .environment = {"LC_ALL=" + locale}})
        .output;
  };
  EXPECT_EQ(answerIn("de_DE.UTF-8"), "[1234.5,1.5,15.0]\n");
  EXPECT_EQ(answerIn("en_US.UTF-8"), "[1.234,15.0,1.5]\n");
}

}  // namespace
}  // namespace skerrow::text
