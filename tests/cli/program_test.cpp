// What the program promises to people and other programs: its words, its output
// and errors, and its exit status. One command at a time; streams of events have
// tests of their own.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/encoding/code_text.h"
#include "scripting/dictionary/dictionary.h"
#include "tests/support/program.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::tests {
namespace {

using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;
using Words = std::vector<std::string>;

constexpr const char* kTimedOut = "skerrow: AppleEvent timed out. (-1712)\n";

ProgramEnd run(Words words, std::string_view input = {}) {
  return runProgram({.words = std::move(words)}, input);
}

ProgramEnd modify(Words options, std::string_view input = {}) {
  options.insert(options.begin(), {"perform", "SKWModifyList"});
  return run(std::move(options), input);
}

void expectOutput(const ProgramEnd& end, const std::string& output) {
  EXPECT_TRUE(end.isExit(0)) << end.summary();
  EXPECT_EQ(end.output, output);
  EXPECT_EQ(end.errors, "");
}

void expectScriptError(const ProgramEnd& end, const std::string& errors) {
  EXPECT_TRUE(end.isExit(1)) << end.summary();
  EXPECT_EQ(end.output, "");
  EXPECT_EQ(end.errors, errors);
}

// One line on standard error that holds this, and the exit status of wrong usage.
void expectWrongUsage(const ProgramEnd& end, const std::string& named) {
  EXPECT_TRUE(end.isExit(2)) << end.summary();
  EXPECT_EQ(end.output, "");
  EXPECT_THAT(end.errors, AllOf(StartsWith("skerrow: "), HasSubstr(named), EndsWith("\n")));
  EXPECT_EQ(std::ranges::count(end.errors, '\n'), 1) << end.errors;
}

std::string nested(int depth, std::string_view opening, std::string_view closing) {
  std::string text;
  for (int i = 0; i < depth; ++i) text += opening;
  text += "1";
  for (int i = 0; i < depth; ++i) text += closing;
  return text;
}

TEST(Perform, PrintsTheResultAsOneLineOfTypedJson) {
  expectOutput(modify({"--direct", "[[1,2],[3,4]]", "--arguments", R"({"swapColsAndRows": true})"}),
               "[[1,3],[2,4]]\n");
}

TEST(Perform, TakesItsWordsInAnyOrderAndJoined) {
  expectOutput(run({"perform", R"(--arguments={"reversingOrder":true})", "--timeout=5",
                    "--direct=[\"a=b\", 2]", "SKWModifyList"}),
               "[2,\"a=b\"]\n");
}

TEST(Perform, ReadsStandardInputForADash) {
  expectOutput(modify({"--direct", "-"}, "\n [1,\n\t2]\r\n"), "[1,2]\n");
  expectOutput(modify({"--direct", "[1,2]", "--arguments", "-"}, R"({"reversingOrder": true})"),
               "[2,1]\n");
}

TEST(Perform, ReadsFiles) {
  const ScratchFolder folder;
  const std::string list = folder.write("a list.json", "[1, \"é\"]\n");
  const std::string arguments = folder.write("arguments.json", R"({"reversingOrder": true})");
  expectOutput(modify({"--direct", "@" + list, "--arguments", "@" + arguments}), "[\"é\",1]\n");
}

TEST(Perform, LeavesStandardInputAloneUnlessAskedToReadIt) {
  Program program({.words = {"perform", "SKWModifyList", "--direct", "[1]"}});
  EXPECT_EQ(program.readLine(), "[1]");
  EXPECT_TRUE(program.finish().isExit(0));
}

TEST(Perform, NeedsNoDisplayNoBusAndNoHome) {
  const ProgramEnd end = runProgram(
      {.words = {"perform", "SKWModifyList", "--direct", "[1]"},
       .environment = {"HOME=/nonexistent", "XDG_CONFIG_HOME=/nonexistent", "DISPLAY=", "LANG=C",
                       "WAYLAND_DISPLAY=", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent"}});
  expectOutput(end, "[1]\n");
}

TEST(Perform, PrintsAScriptErrorWithItsNumber) {
  expectScriptError(modify({"--direct", "\"a\""}),
                    "skerrow: Direct parameter is not a list. (1121)\n");
  expectScriptError(modify({"--direct", "null"}),
                    "skerrow: Direct parameter is not a list. (1121)\n");
  expectScriptError(modify({}), "skerrow: Direct parameter is not a list. (1121)\n");
}

TEST(Perform, PrintsWhatTheScriptingLayerRefused) {
  expectScriptError(run({"perform", "SKWNothing"}),
                    "skerrow: There is no command “SKWNothing”. (-1708)\n");
  expectScriptError(modify({"--direct", "[]", "--arguments", R"({"reverse": true})"}),
                    "skerrow: SKWModifyList has no argument “reverse”. (-1701)\n");
  expectScriptError(modify({"--direct", "[]", "--arguments", R"({"flattening": "yes"})"}),
                    "skerrow: “flattening” takes true or false, not a text. (-1700)\n");
}

// A column of another length than the list is never answered.
const Words kUnanswered = {"--direct", "[[1]]", "--arguments", R"({"insertingInOrder": []})"};

ProgramEnd modifyUnanswered(const Words& timeout) {
  Words words = kUnanswered;
  words.insert(words.end(), timeout.begin(), timeout.end());
  return modify(words);
}

TEST(Timeout, EndsTheWaitForACommandThatNeverAnswers) {
  expectScriptError(modifyUnanswered({"--timeout", "0.02"}), kTimedOut);
  expectScriptError(modifyUnanswered({"--timeout=2e-2"}), kTimedOut);
  expectScriptError(modifyUnanswered({"--timeout", "1e-300"}), kTimedOut);
}

TEST(Timeout, EndsTheProgramWhileACommandStillWorks) {
  std::string list = "[";
  for (int i = 0; i < 300000; ++i) list += "[\"" + std::to_string(i) + "\"],";
  list += "[]]";
  expectScriptError(
      modify(
          {"--direct", "-", "--timeout", "0.001", "--arguments",
           R"({"addingPadding": 0, "makingUnique": true, "subtractingList": [], "reversingOrder": true})"},
          list),
      kTimedOut);
}

TEST(Timeout, CanBeNoneOrVeryLong) {
  for (const char* seconds : {"0", "0.0", "1e9", "1e300"}) {
    expectOutput(modify({"--direct", "[1]", "--timeout", seconds}), "[1]\n");
  }
}

TEST(Timeout, MustBeANumberOfSeconds) {
  for (const char* seconds :
       {"", "x", "-1", "-0.5", "nan", "1s", " 1", "1 ", "0x10", "1,5", "1e"}) {
    expectWrongUsage(modify({"--direct", "[1]", "--timeout", seconds}), "--timeout");
  }
}

TEST(Usage, IsWrongWithoutWordsAndWithUnknownOnes) {
  expectWrongUsage(run({}), "skerrow");
  expectWrongUsage(run({""}), "");
  expectWrongUsage(run({"performs"}), "performs");
  expectWrongUsage(run({"--verbose"}), "--verbose");
  expectWrongUsage(run({"--version", "now"}), "now");
  expectWrongUsage(run({"--help", "me"}), "me");
  expectWrongUsage(run({"commands", "SKWModifyList", "more"}), "more");
  expectWrongUsage(run({"commands", "SKWNothing"}), "SKWNothing");
}

TEST(Usage, OfPerformIsWrongWithoutItsParts) {
  expectWrongUsage(run({"perform"}), "perform");
  expectWrongUsage(run({"perform", ""}), "perform");
  expectWrongUsage(run({"perform", "--direct", "[1]"}), "perform");
  expectWrongUsage(modify({"--direct"}), "--direct");
  expectWrongUsage(modify({"--arguments"}), "--arguments");
  expectWrongUsage(modify({"--timeout"}), "--timeout");
}

TEST(Usage, OfPerformIsWrongWithPartsThatHaveNoPlace) {
  expectWrongUsage(modify({"--list", "[1]"}), "--list");
  expectWrongUsage(modify({"SKWOther"}), "SKWOther");
  expectWrongUsage(run({"perform", "SKWModifyList=garbage"}), "SKWModifyList=garbage");
  expectWrongUsage(run({"perform", "=garbage", "--direct", "[1]"}), "=garbage");
  expectWrongUsage(modify({"SKWOther=garbage"}), "SKWOther=garbage");
  expectWrongUsage(run({"perform", "--stdin=no"}), "--stdin");
  expectWrongUsage(run({"perform", "--stdin="}), "--stdin");
  expectWrongUsage(run({"perform", "--help=x"}), "--help");
  expectWrongUsage(run({"--help=x"}), "--help=x");
  expectWrongUsage(run({"--version=x"}), "--version=x");
  expectWrongUsage(run({"commands", "--help=x"}), "--help=x");
  expectWrongUsage(modify({"--direct", "[1]", "--direct", "[2]"}), "--direct");
  expectWrongUsage(modify({"--arguments={}", "--arguments", "{}"}), "--arguments");
  expectWrongUsage(modify({"--direct", "-", "--arguments", "-"}, "[1]"), "standard input");
  expectWrongUsage(modify({"--stdin"}), "--stdin");
  expectWrongUsage(run({"perform", "--stdin", "--direct", "[1]"}), "--stdin");
  expectWrongUsage(run({"perform", "--timeout", "1", "--stdin"}), "--stdin");
}

TEST(Usage, IsWrongWithFilesThatCannotBeRead) {
  const ScratchFolder folder;
  expectWrongUsage(modify({"--direct", "@" + folder.path("none")}), folder.path("none"));
  expectWrongUsage(modify({"--direct", "[1]", "--arguments", "@" + folder.path()}), folder.path());
  expectWrongUsage(modify({"--direct", "@"}), "--direct");
}

TEST(Help, ShowsEveryWayToCallTheProgram) {
  const ProgramEnd end = run({"--help"});
  expectOutput(end, end.output);
  for (const char* word : {"perform COMMAND", "--direct", "--arguments", "--timeout", "--stdin",
                           "commands", "--version", "--help"}) {
    EXPECT_THAT(end.output, HasSubstr(word));
  }
}

TEST(Version, IsTheNameAndANumber) {
  const ProgramEnd end = run({"--version"});
  expectOutput(end, end.output);
  EXPECT_THAT(end.output, MatchesRegex("skerrow [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(Commands, ListsEveryCommandByClassAndWords) {
  const ProgramEnd end = run({"commands"});
  expectOutput(end, end.output);
  for (const auto& command : scripting::skerrowDictionary().commands) {
    EXPECT_THAT(end.output, HasSubstr(std::string(command.name)));
    EXPECT_THAT(end.output, HasSubstr(std::string(command.words)));
  }
}

TEST(Commands, ShowsEveryArgumentOfACommandByItsClassOrWords) {
  for (const auto& command : scripting::skerrowDictionary().commands) {
    const ProgramEnd end = run({"commands", std::string(command.name)});
    expectOutput(end, end.output);
    for (const auto& argument : command.arguments) {
      EXPECT_THAT(end.output, HasSubstr("\n  " + std::string(argument.key) + " ("));
    }
    EXPECT_EQ(run({"commands", std::string(command.words)}).output, end.output);
  }
}

TEST(Commands, ShowsConstantsByNameAndCode) {
  for (const auto& command : scripting::skerrowDictionary().commands) {
    const ProgramEnd end = run({"commands", std::string(command.name)});
    for (const auto& argument : command.arguments) {
      if (argument.type.enumeration == nullptr) continue;
      for (const auto& one : argument.type.enumeration->enumerators) {
        EXPECT_THAT(end.output, HasSubstr("\n        " + std::string(one.words) + " (" +
                                          foundation::plainTextFromCode(one.code) + "): "));
      }
    }
  }
}

TEST(Commands, SaysWhatIsRequired) {
  const ProgramEnd end = run({"commands", "SKWCompareRecord"});
  EXPECT_THAT(end.output, HasSubstr("\nDirect parameter (a record, required)\n"));
  EXPECT_THAT(end.output, HasSubstr("\n  toRecord (a record, required)\n"));
  EXPECT_THAT(end.output, HasSubstr("\n  inRecords (true or false)\n"));
}

TEST(Usage, AsksWhatWasMeant) {
  expectWrongUsage(run({"commands", "SKWModfyList"}), "; did you mean SKWModifyList? ");
  expectWrongUsage(run({"commands", "sort lst"}), "; did you mean SKWMungeList? ");
  EXPECT_EQ(run({"perform", "SKWModfyList"}).errors,
            "skerrow: There is no command “SKWModfyList”; did you mean SKWModifyList? (-1708)\n");
  EXPECT_EQ(modify({"--direct", "[1]", "--arguments", R"({"flatening": true})"}).errors,
            "skerrow: SKWModifyList has no argument “flatening”; did you mean “flattening”? "
            "(-1701)\n");
}

TEST(Messages, ShowNoMoreThanTwoHundredCharactersOfWhatWasGiven) {
  const std::string longName(1000, 'x');
  const std::string shown = "“" + longName.substr(0, 200) + "…”";
  expectWrongUsage(run({longName}), shown);
  expectWrongUsage(run({"--version", longName}), shown);
  expectWrongUsage(run({"commands", longName}), shown);
  expectWrongUsage(run({"perform", "--" + longName}), "“--" + longName.substr(0, 198) + "…”");
  expectWrongUsage(modify({longName}), shown);
  expectWrongUsage(modify({"--timeout", longName}), shown);
  const std::string member = "{\"" + longName + "\": 1}";
  expectWrongUsage(modify({"--direct", "{\"$" + longName + "\": 1}"}),
                   longName.substr(0, 199) + "…”");
  expectWrongUsage(modify({"--direct", "{\"$enum\": \"" + longName + "\"}"}), shown);
  EXPECT_THAT(run({"perform", longName}).errors, HasSubstr(shown));
  EXPECT_THAT(modify({"--direct", "[1]", "--arguments", member}).errors, HasSubstr(shown));
}

TEST(MalformedJson, IsReportedWithItsPlace) {
  const struct {
    const char* json;
    const char* place;
  } kRows[] = {
      {"", "line 1, column 1:"},          {"  ", "line 1, column 3:"},
      {"[1, x]", "line 1, column 5:"},    {"[1,\n  2,\n y]", "line 3, column 2:"},
      {"[1 2]", "line 1, column 4:"},     {"[1] 2", "line 1, column 5:"},
      {"[1", "line 1, column 3:"},        {"[\"é\" x]", "line 1, column 6:"},
      {"[1,\r\n?]", "line 2, column 1:"}, {"{\"a\" 1}", "line 1, column 6:"},
      {"{1: 2}", "line 1, column 2:"},    {"]", "line 1, column 1:"},
  };
  for (const auto& row : kRows) {
    const ProgramEnd end = modify({"--direct", "-"}, row.json);
    expectWrongUsage(end, row.place);
    EXPECT_THAT(end.errors, StartsWith("skerrow: --direct: ")) << row.json;
  }
}

TEST(MalformedJson, IsEverythingThatIsNoJson) {
  for (const char* json :
       {"nul",           "True",   "'a'",          "[1,]",       "{\"a\":1,}", "[01]",
        "[1.]",          "[.5]",   "[+1]",         "[0x10]",     "[NaN]",      "[Infinity]",
        "[1e]",          "[-]",    "[\"\x01\"]",   "[\"a\nb\"]", R"(["\q"])",  R"(["\u12"])",
        R"(["\u12G4"])", "[\"abc", R"(["\)",       "[//\n1]",    "[,]",        "[1,,2]",
        "{\"a\"}",       "{,}",    R"("\ud83d\u")"}) {
    const ProgramEnd end = modify({"--direct", json});
    expectWrongUsage(end, "line ");
    EXPECT_THAT(end.errors, StartsWith("skerrow: --direct: line ")) << json;
  }
}

TEST(MalformedJson, IsWhatTypedJsonHasNoFormFor) {
  for (const char* json : {R"({"$what": 1})",
                           R"({"$date": "yesterday"})",
                           R"({"$date": 1})",
                           R"({"$ldt": 1.5})",
                           R"({"$number": 32768, "as": "shor"})",
                           R"({"$number": -1, "as": "magn"})",
                           R"({"$number": 1.5, "as": "long"})",
                           R"({"$number": 1, "as": "utxt"})",
                           R"({"$number": "1", "as": "long"})",
                           R"({"$number": 1})",
                           R"({"$raw": "abc", "data": ""})",
                           R"({"$raw": "abcd", "data": "!"})",
                           R"({"$raw": "abcd"})",
                           R"({"$data": "A"})",
                           R"({"$type": "longer"})",
                           R"({"$enum": "0x1"})",
                           R"({"$object": ""})",
                           R"({"$null": false})",
                           R"({"$real": "1"})",
                           R"({"$file": "a"})",
                           R"({"$file": "/\u0000"})",
                           R"({"$record": 1})"}) {
    const ProgramEnd end = modify({"--direct", "[" + std::string(json) + "]"});
    expectWrongUsage(end, "--direct: line 1, column ");
  }
}

TEST(MalformedJson, IsArgumentsThatAreNoObject) {
  for (const char* json : {"[]", "1", "null", "\"a\"", "", "{", "{\"a\": }"}) {
    expectWrongUsage(modify({"--direct", "[1]", "--arguments", json}), "--arguments: line 1, ");
  }
}

TEST(MalformedJson, IsInvalidUtf8) {
  for (const std::string_view bytes :
       {"\xFF", "\x80", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\xBD", "\xED\xB8\x80",
        "\xF4\x90\x80\x80", "\xF8\x44\x38\x33\x44\xF8", "\xF0\x9F\x98"}) {
    const ProgramEnd end = modify({"--direct", "-"}, "[\"" + std::string(bytes) + "\"]");
    expectWrongUsage(end, "--direct: line 1, column ");
  }
}

TEST(MalformedJson, IsANulCharacterWhereverItStands) {
  using namespace std::string_view_literals;
  for (const std::string_view json : {"[1\0]"sv, "[\"\0\"]"sv, "\0[1]"sv, "[1]\0"sv, "[1]\0[2]"sv,
                                      "\0"sv, "12\0"sv, "\"a\"\0\n"sv}) {
    expectWrongUsage(modify({"--direct", "-"}, json), "--direct: line 1, column ");
  }
}

TEST(Numbers, BeyondEveryIntegerBecomeReals) {
  expectOutput(modify({"--direct", "[123456789012345678901234567890, -9223372036854775809]"}),
               "[1.2345678901234568e+29,-9.223372036854776e+18]\n");
  expectOutput(modify({"--direct", "[]", "--arguments",
                       R"({"insertingItems": [9223372036854775807, 9223372036854775808,
                           -9223372036854775808, 18446744073709551615, 18446744073709551616]})"}),
               "[9223372036854775807,9.223372036854776e+18,-9223372036854775808,"
               "1.8446744073709552e+19,1.8446744073709552e+19]\n");
}

TEST(Numbers, AreWrittenInTheShortestFormThatReadsBackTheSame) {
  expectOutput(modify({"--direct",
                       "[3.0, 1e300, 1E+300, 0.1, 1e-400, -0.0, 4.9e-324, 2e-5, "
                       "1.7976931348623157e308, 100000.5]"}),
               "[3.0,1e+300,1e+300,0.1,0.0,-0.0,5e-324,2e-05,1.7976931348623157e+308,100000.5]\n");
}

TEST(Numbers, BeyondEveryRealAreRefused) {
  expectWrongUsage(modify({"--direct", "[1e400]"}), "--direct: line 1, column 2:");
  expectWrongUsage(modify({"--direct", "[1, -1e999999999]"}), "--direct: line 1, column 5:");
  expectWrongUsage(modify({"--direct", "[" + std::string(400, '9') + "]"}),
                   "--direct: line 1, column 2:");
}

TEST(LoneSurrogates, AreReadAndWrittenAsEscapes) {
  expectOutput(
      modify({"--direct", R"(["\ud83d", "\ude00\ud83d", "\ud83d\u0041", "\ud83d\ud83d\ude00"])"}),
      "[\"\\uD83D\",\"\\uDE00\\uD83D\",\"\\uD83DA\",\"\\uD83D😀\"]\n");
  expectOutput(modify({"--direct", R"([{"\ud83d": "\ude00"}, "\\ud83d", "\\\ud83d"])"}),
               "[{\"\\uD83D\":\"\\uDE00\"},\"\\\\ud83d\",\"\\\\\\uD83D\"]\n");
}

TEST(DeepNesting, IsRefusedWithItsPlaceWhateverItsKind) {
  const std::string place = "--direct: line 1, column ";
  expectWrongUsage(modify({"--direct", "-"}, nested(100000, "[", "]")), place + "4097");
  expectWrongUsage(modify({"--direct", "-"}, std::string(100000, '[')), place + "4097");
  expectWrongUsage(modify({"--direct", "-"}, nested(100000, "{\"a\":", "}")), place);
  expectWrongUsage(modify({"--direct", "-"}, nested(100000, "[{\"$record\":", "}]")), place);
  expectWrongUsage(
      modify({"--arguments", "-"}, "{\"insertingItem\":" + nested(100000, "[", "]") + "}"),
      "--arguments: line 1, column ");
}

TEST(DeepNesting, ThatIsAllowedComesBack) {
  const std::string deep = nested(4096, "[", "]");
  expectOutput(modify({"--direct", "-"}, deep), deep + "\n");
}

TEST(DeepNesting, ThatACommandWouldMakeTooDeepIsAScriptError) {
  const ProgramEnd end =
      modify({"--direct", "-", "--arguments", R"({"groupingEvery": 1})"}, nested(4096, "[", "]"));
  EXPECT_TRUE(end.isExit(1)) << end.summary();
  EXPECT_EQ(end.output, "");
  EXPECT_THAT(end.errors, MatchesRegex("skerrow: [^\n]+ \\(-?[0-9]+\\)\n"));
}

}  // namespace
}  // namespace skerrow::tests
