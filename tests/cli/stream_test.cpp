// Streams of events, and the standard streams of the program when they are not
// what it hopes for.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/program.h"
#include "tests/support/sanitized.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

const ProgramSetup kStream = {.words = {"perform", "--stdin"}};

// What answers a line that is no event, its place included.
auto refusedAt(const std::string& place) {
  return StartsWith(R"({"error":{"number":-1700,"message":")" + place);
}

const auto kCannotWrite = MatchesRegex("skerrow: [^\n]*standard output: [^\n]+\n");

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) all.push_back(line);
  return all;
}

std::vector<std::string> answersTo(std::string_view input) {
  const ProgramEnd end = runProgram(kStream, input);
  EXPECT_TRUE(end.isExit(0)) << end.summary();
  EXPECT_EQ(end.errors, "");
  return linesOf(end.output);
}

std::string reversing(const std::string& list) {
  return R"({"command": "SKWModifyList", "direct": )" + list +
         R"(, "arguments": {"reversingOrder": true}})";
}

TEST(Stream, AnswersEveryEventInOrder) {
  EXPECT_THAT(
      answersTo(reversing("[1,2]") + "\n" + R"({"command": "SKWModifyList"})" + "\n" +
                R"({"arguments": {}, "timeout": 0, "direct": [3], "command": "SKWModifyList"})" +
                "\n" + R"({"command": "SKWNothing"})" + "\n"),
      ElementsAre(R"({"result":[2,1]})",
                  R"({"error":{"number":1121,"message":"Direct parameter is not a list."}})",
                  R"({"result":[3]})",
                  R"({"error":{"number":-1708,"message":"There is no command “SKWNothing”."}})"));
}

TEST(Stream, AnswersThousandsOfEventsInOrder) {
  std::string events;
  std::vector<std::string> expected;
  for (int i = 0; i < 3000; ++i) {
    events += reversing("[" + std::to_string(i) + ",0]") + "\n";
    expected.push_back("{\"result\":[0," + std::to_string(i) + "]}");
  }
  EXPECT_EQ(answersTo(events), expected);
}

TEST(Stream, AnswersNothingWhenNothingIsAsked) { EXPECT_THAT(answersTo(""), IsEmpty()); }

TEST(Stream, AnswersALastLineWithoutItsEnd) {
  EXPECT_THAT(answersTo(reversing("[1]") + "\n" + reversing("[2]")),
              ElementsAre(R"({"result":[1]})", R"({"result":[2]})"));
}

TEST(Stream, TakesLinesThatEndAsOtherSystemsEndThem) {
  EXPECT_THAT(answersTo(reversing("[1]") + "\r\n\t" + reversing("[2]") + " \r\n"),
              ElementsAre(R"({"result":[1]})", R"({"result":[2]})"));
}

TEST(Stream, AnswersABlankLineWithAnErrorLikeAnyThatIsNoEvent) {
  EXPECT_THAT(answersTo("\n" + reversing("[1]") + "\n   \n\n"),
              ElementsAre(refusedAt("line 1, column 1: "), R"({"result":[1]})",
                          refusedAt("line 3, column "), refusedAt("line 4, column 1: ")));
}

TEST(Stream, AnswersALineThatIsNoEventAndGoesOn) {
  const char* const kLines[] = {
      R"({"command": "SKWModifyList", "direct": [1, x]})",
      R"({"command": "SKWModifyList", "direct": [1]} {})",
      R"({"command": "SKWModifyList", "list": [1]})",
      R"({"command": "SKWModifyList", "arguments": []})",
      R"({"command": "SKWModifyList", "arguments": null})",
      R"({"command": "SKWModifyList", "timeout": "1"})",
      R"({"command": "SKWModifyList", "timeout": -1})",
      R"({"command": "SKWModifyList", "timeout": true})",
      R"({"command": "SKWModifyList", "timeout": null})",
      R"({"command": "SKWModifyList", "direct": {"$what": 1}})",
      R"({"command": ["SKWModifyList"]})",
      R"({"command": ""})",
      R"({"command": null})",
      R"({"direct": [1]})",
      R"({})",
      R"([1])",
      R"("SKWModifyList")",
      R"(null)",
      R"(SKWModifyList)",
      R"({"command": "SKWModifyList", "direct": [1])",
      "{\"command\": \"SKWModifyList\", \"direct\": [\"\xFF\"]}",
  };
  std::string input;
  for (const char* line : kLines) input += std::string(line) + "\n" + reversing("[1,2]") + "\n";
  const auto answers = answersTo(input);
  ASSERT_EQ(answers.size(), 2 * std::size(kLines));
  for (std::size_t i = 0; i < answers.size(); i += 2) {
    EXPECT_THAT(answers[i], refusedAt("line " + std::to_string(i + 1) + ", column "))
        << kLines[i / 2];
    EXPECT_EQ(answers[i + 1], R"({"result":[2,1]})") << kLines[i / 2];
  }
}

TEST(Stream, NamesWhatIsWrongWithALine) {
  EXPECT_THAT(
      answersTo("{\"command\": \"SKWModifyList\", \"list\": [1]}\n[1]\n{\"direct\": [1]}\n"),
      ElementsAre(HasSubstr("“list”"), HasSubstr("an event is an object"), HasSubstr("“command”")));
}

TEST(Stream, TakesATextThatIsBrokenOffByALineEndForTwoBadLines) {
  EXPECT_THAT(
      answersTo("{\"command\": \"SKWModifyList\", \"direct\": [\"a\nb\"]}\n" + reversing("[1]")),
      ElementsAre(refusedAt("line 1, "), refusedAt("line 2, column 1: "), R"({"result":[1]})"));
}

TEST(Stream, AnswersNulCharactersWithErrors) {
  using namespace std::string_literals;
  EXPECT_THAT(answersTo("\0\n\0\0\0\n"s + reversing("[1]") + "\0\n"s + reversing("[2]") + "\n"),
              ElementsAre(refusedAt("line 1, column 1: "), refusedAt("line 2, column 1: "),
                          refusedAt("line 3, column "), R"({"result":[2]})"));
}

TEST(Stream, AnswersNestingThatIsTooDeepAndGoesOn) {
  const std::string deep = std::string(100000, '[') + std::string(100000, ']');
  EXPECT_THAT(
      answersTo(reversing(deep) + "\n" + std::string(100000, '{') + "\n" + reversing("[1]") + "\n"),
      ElementsAre(refusedAt("line 1, column "), refusedAt("line 2, column "), R"({"result":[1]})"));
}

TEST(Stream, AnswersATimeOutAndGoesOn) {
  EXPECT_THAT(answersTo(R"({"command": "SKWModifyList", "direct": [[1]], "timeout": 0.02, )"
                        R"("arguments": {"insertingInOrder": []}})"
                        "\n" +
                        reversing("[1]") + "\n"),
              ElementsAre(R"({"error":{"number":-1712,"message":"AppleEvent timed out."}})",
                          R"({"result":[1]})"));
}

// Wherever an escape or a character of several bytes meets the end of what is read at once.
TEST(Stream, ReadsCharactersAndEscapesWholeAcrossPieces) {
  constexpr std::size_t kPiece = 64 * 1024;
  const std::string before = R"({"command": "SKWModifyList", "direct": [")";
  std::string input;
  std::vector<std::string> expected;
  for (std::size_t i = 0; i < 48; ++i) {
    const std::string filling(kPiece - 40 - before.size() + i, 'x');
    std::string line = before + filling + R"(\ud83dé\ude00\ud83d\ude00😀\\\n"]})";
    line.resize(2 * kPiece - 1, ' ');  // every line begins where a piece does
    input += line + "\n";
    expected.push_back(R"({"result":[")" + filling + R"(\uD83Dé\uDE00😀😀\\\n"]})");
  }
  const ScratchFolder folder;
  const ProgramEnd end = runProgram({.words = {"perform", "--stdin"},
                                     .input = StandardStream::file(folder.write("events", input))});
  EXPECT_TRUE(end.isExit(0)) << end.errors;
  EXPECT_TRUE(linesOf(end.output) == expected);
}

TEST(Stream, HandsEachAnswerOverBeforeItReadsTheNextLine) {
  Program program(kStream);
  for (const char* number : {"1", "2", "3"}) {
    ASSERT_TRUE(program.write(reversing(std::string("[0,") + number + "]") + "\n"));
    EXPECT_EQ(program.readLine(), R"({"result":[)" + std::string(number) + ",0]}");
  }
  ASSERT_TRUE(program.write("no event\n"));
  EXPECT_THAT(program.readLine().value_or(""), refusedAt("line 4, column "));
  EXPECT_TRUE(program.finish().isExit(0));
}

// Gives the program a line of this many bytes after its beginning, and an event
// after that; tells the most memory that it took.
std::size_t peakForLine(const std::string& beginning, std::string_view filling, std::size_t count,
                        const std::string& end, const std::string& answerBeginning) {
  Program program({.words = kStream.words, .limit = std::chrono::seconds(30)});
  program.write(beginning);
  std::string block;
  while (block.size() + filling.size() <= 1024 * 1024) block += filling;
  for (std::size_t written = 0; written < count; written += block.size()) program.write(block);
  EXPECT_TRUE(program.write(end + "\n"));
  const auto answer = program.readLine();
  EXPECT_TRUE(answer && answer->starts_with(answerBeginning)) << answer.value_or("").substr(0, 200);
  EXPECT_TRUE(program.write(reversing("[1,2]") + "\n"));
  EXPECT_EQ(program.readLine(), R"({"result":[2,1]})");
  const std::size_t peak = program.peakMemoryInBytes();
  EXPECT_TRUE(program.finish().isExit(0));
  return peak;
}

constexpr std::size_t kLongLine = kIsSanitized ? 10'000'000 : 100'000'000;

TEST(LongLine, OfOneTextIsAnsweredInMemoryOfAFewTimesItsSize) {
  const std::size_t peak = peakForLine(R"({"command": "SKWModifyList", "direct": [")", "x",
                                       kLongLine, R"("]})", R"({"result":["xxxx)");
  // Twice for the text, which has units of two bytes, and as much while it is made.
  if (!kIsSanitized) {
    EXPECT_LT(peak, 6 * kLongLine);
  }
}

TEST(LongLine, ThatIsNoEventTakesNoMemoryOfItsSize) {
  for (const char* filling : {"x", "[", " "}) {
    const std::size_t peak =
        peakForLine("", filling, kLongLine, "", R"({"error":{"number":-1700,)");
    if (!kIsSanitized) {
      EXPECT_LT(peak, kLongLine / 10) << filling;
    }
  }
}

void expectCannotWrite(const Words& words, const StandardStream& output, const std::string& input) {
  const ProgramEnd end = runProgram({.words = words, .output = output}, input);
  EXPECT_TRUE(end.isExit(1)) << end.summary() << " for " << input;
  EXPECT_THAT(end.errors, kCannotWrite);
}

// Answers of every length: what the system opens in the place of a closed stream
// may take those of some lengths and lose them.
TEST(Output, ThatIsClosedFailsTheProgramWithAClearError) {
  std::string list = "[1";
  for (int i = 0; i < 16; ++i) {
    expectCannotWrite({"perform", "SKWModifyList", "--direct", list + "]"},
                      StandardStream::closed(), "");
    expectCannotWrite({"perform", "--stdin"}, StandardStream::closed(), reversing(list + "]"));
    list += i % 2 == 0 ? "0" : ",1";
  }
  for (const char* word : {"--help", "--version", "commands"}) {
    expectCannotWrite({word}, StandardStream::closed(), "");
  }
}

TEST(Output, ThatIsFullFailsTheProgramWithAClearError) {
  for (const Words& words : {Words{"perform", "SKWModifyList", "--direct", "[1]"},
                             Words{"perform", "--stdin"}, Words{"--help"}, Words{"commands"}}) {
    expectCannotWrite(words, StandardStream::file("/dev/full"), reversing("[1]"));
  }
}

TEST(Output, ThatIsLeftByItsReaderEndsTheStreamAfterTheAnswersDue) {
  Program program(kStream);
  ASSERT_TRUE(program.write(reversing("[1,2]") + "\n"));
  EXPECT_EQ(program.readLine(), R"({"result":[2,1]})");
  program.closeOutput();
  program.write(reversing("[3]") + "\n");
  const ProgramEnd end = program.finish();
  EXPECT_TRUE(end.isExit(1)) << end.summary();
  EXPECT_THAT(end.errors, kCannotWrite);
}

TEST(Output, ThatIsLeftAmidALongResultEndsTheProgram) {
  Program program({.words = {"perform", "SKWModifyList", "--direct", "-"}});
  program.write("[\"\\n\",\n\"" + std::string(4'000'000, 'x') + "\"]");
  program.closeOutput();
  const ProgramEnd end = program.finish();
  EXPECT_TRUE(end.isExit(1)) << end.summary();
  EXPECT_THAT(end.errors, kCannotWrite);
}

TEST(Input, ThatIsADirectoryIsNamedAsTheProblem) {
  for (const Words& words :
       {Words{"perform", "--stdin"}, Words{"perform", "SKWModifyList", "--direct", "-"},
        Words{"perform", "SKWModifyList", "--arguments", "-"}}) {
    const ProgramEnd end = runProgram({.words = words, .input = StandardStream::file("/")});
    EXPECT_FALSE(end.isExit(0)) << end.summary();
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.errors,
                MatchesRegex("skerrow: [^\n]*standard input[^\n]*[Dd]irectory[^\n]*\n"));
  }
}

TEST(Input, ThatIsClosedIsNamedAsTheProblem) {
  for (const Words& words :
       {Words{"perform", "--stdin"}, Words{"perform", "SKWModifyList", "--direct", "-"}}) {
    const ProgramEnd end = runProgram({.words = words, .input = StandardStream::closed()});
    EXPECT_FALSE(end.isExit(0)) << end.summary();
    EXPECT_EQ(end.output, "");
    EXPECT_THAT(end.errors,
                MatchesRegex("skerrow: [^\n]*standard input: Bad file descriptor[^\n]*\n"));
  }
}

TEST(Input, ThatIsClosedDoesNotMatterWhereItIsNotRead) {
  const ProgramEnd end = runProgram({.words = {"perform", "SKWModifyList", "--direct", "[1]"},
                                     .input = StandardStream::closed()});
  EXPECT_TRUE(end.isExit(0)) << end.summary();
  EXPECT_EQ(end.output, "[1]\n");
}

}  // namespace
}  // namespace skerrow::tests
