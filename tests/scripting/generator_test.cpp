// The program that makes the dictionary's tables, run on definitions with faults.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

namespace skerrow::scripting {
namespace {

using tests::ScratchFolder;

struct Outcome {
  int status;
  std::string output;
};

std::string programs() {
  return (std::filesystem::path(SKERROW_CASES) / ".." / ".." / "scripting" / "dictionary").string();
}

Outcome run(const std::string& command) {
  FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
  if (pipe == nullptr) return {-1, "no process"};
  std::string output;
  std::array<char, 4096> piece{};
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe)) {
    output.append(piece.data(), count);
  }
  const int status = ::pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

Outcome generate(const ScratchFolder& folder, const std::string& definition) {
  const std::string path = folder.write("Faulty.sdef", definition);
  return run("python3 -B '" + programs() + "/generate_dictionary.py' '" + path + "' --tables '" +
             folder.path("tables.cpp") + "' --classes '" + folder.path("classes.cpp") +
             "' --keys '" + folder.path("keys") + "' --namespace-function faulty");
}

// What is wrong with each of several definitions, a line for each, from one process.
std::vector<std::string> problemsOf(const std::vector<std::string>& definitions) {
  const ScratchFolder folder;
  const std::string program = folder.write("read_all.py",
                                           "import sys\n"
                                           "sys.path.insert(0, sys.argv[1])\n"
                                           "from definition import Malformed, read\n"
                                           "for path in sys.argv[2:]:\n"
                                           "    try:\n"
                                           "        read(path)\n"
                                           "        print('nothing')\n"
                                           "    except Malformed as problem:\n"
                                           "        print(problem)\n");
  std::string command = "python3 -B '" + program + "' '" + programs() + "'";
  for (std::size_t i = 0; i < definitions.size(); ++i) {
    command += " '" + folder.write(std::to_string(i) + ".sdef", definitions[i]) + "'";
  }
  const Outcome outcome = run(command);
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  std::vector<std::string> lines;
  std::istringstream output(outcome.output);
  for (std::string line; std::getline(output, line);) lines.push_back(line);
  return lines;
}

std::string inDictionary(const std::string& content) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><dictionary title="T"><suite name="S" code="SSSS">)" +
         content + "</suite></dictionary>";
}

std::string command(const std::string& content) {
  return inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa class="DoIt"/>)" + content +
                      "</command>");
}

std::string parameter(const std::string& attributes) {
  return "<parameter " + attributes + R"(><cocoa key="key"/></parameter>)";
}

struct Row {
  const char* about;
  std::string definition;
  const char* message;
};

TEST(Definition, IsRefusedWithWhatIsWrongWithIt) {
  const std::string twice = parameter(R"(name="a" code="aaaa" type="text")");
  const Row rows[] = {
      {"no XML", "words", "syntax error: line 1, column 0"},
      {"nothing", "", "no element found: line 1, column 0"},
      {"no title", "<dictionary/>", "<dictionary name=\"\"> has no title"},
      {"no class", inDictionary(R"(<command name="do it" code="TESTdoit"/>)"),
       "“do it” has no <cocoa class>"},
      {"a class without a name",
       inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa/></command>)"),
       "<cocoa name=\"\"> has no class"},
      {"no words", inDictionary(R"(<command code="TESTdoit"><cocoa class="DoIt"/></command>)"),
       "<command name=\"\"> has no name"},
      {"no event code", inDictionary(R"(<command name="do it"><cocoa class="DoIt"/></command>)"),
       "<command name=\"do it\"> has no code"},
      {"a short event code",
       inDictionary(R"(<command name="do it" code="TEST"><cocoa class="DoIt"/></command>)"),
       "the code “TEST” does not have 8 characters"},
      {"a parameter without a type", command(parameter(R"(name="a" code="aaaa")")),
       "<parameter name=\"a\"> has no type"},
      {"a parameter without a name", command(parameter(R"(code="aaaa" type="text")")),
       "<parameter name=\"\"> has no name"},
      {"a parameter without a code", command(parameter(R"(name="a" type="text")")),
       "<parameter name=\"a\"> has no code"},
      {"a parameter without a key", command(R"(<parameter name="a" code="aaaa" type="text"/>)"),
       "“a” has no <cocoa key>"},
      {"a type that is not there", command(parameter(R"(name="a" code="aaaa" type="colour")")),
       "there is no type “colour”"},
      {"an item type that is not there",
       command(R"(<direct-parameter><type type="étrange" list="yes"/></direct-parameter>)"),
       "there is no type “étrange”"},
      {"a short code", command(parameter(R"(name="a" code="aaa" type="text")")),
       "the code “aaa” does not have 4 characters"},
      {"a long code", command(parameter(R"(name="a" code="aaaaa" type="text")")),
       "the code “aaaaa” does not have 4 characters"},
      {"a code outside Mac OS Roman", command(parameter(R"(name="a" code="a漢aa" type="text")")),
       "the code “a漢aa” does not have 4 characters"},
      {"the same parameter twice", command(twice + twice),
       "in “do it” the parameter “a” stands there twice"},
      {"the same code twice", command(twice + parameter(R"(name="b" code="aaaa" type="text")")),
       "in “do it” the code “aaaa” stands there twice"},
      {"the same key twice", command(twice + parameter(R"(name="b" code="bbbb" type="text")")),
       "in “do it” the key “key” stands there twice"},
      {"a key that is no name",
       command(R"(<parameter name="a" code="aaaa" type="text"><cocoa key="a b"/></parameter>)"),
       "the key “a b” cannot be a name: it needs letters and digits"},
      {"a key that C++ has another use for",
       command(R"(<parameter name="a" code="aaaa" type="text"><cocoa key="default"/></parameter>)"),
       "the key “default” cannot be a name: it needs letters and digits"},
      {"a class that is no name",
       inDictionary(R"(<command name="a" code="TESTaaaa"><cocoa class="../A"/></command>)"),
       "the class “../A” cannot be a name: it needs letters and digits"},
      {"a required argument with a number that is none",
       command(
           R"(<parameter name="a" code="aaaa" type="text"><cocoa key="key"/><missing number="x"/>
                  </parameter>)"),
       "<missing> of “a” needs a number"},
      {"an optional argument with a number for when it is missing",
       command(R"(<parameter name="a" code="aaaa" type="text" optional="yes"><cocoa key="key"/>
                  <missing number="5"/></parameter>)"),
       "“a” is optional and has a number for when it is missing"},
      {"neither optional nor not",
       command(parameter(R"(name="a" code="aaaa" type="text" optional="maybe")")),
       "<parameter> cannot have optional=\"maybe\", only yes, no"},
      {"two enumerations at once",
       inDictionary(R"(<enumeration name="c" code="cccc"/><enumeration name="d" code="dddd"/>
                       <command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <result><type type="c"/><type type="d" list="yes"/></result></command>)"),
       "<result> cannot be of “c” and “d” at once"},
      {"one word with two codes in two commands",
       inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <parameter name="by" code="byOn" type="text"><cocoa key="key"/></parameter>
                       </command>
                       <command name="undo it" code="TESTundo"><cocoa class="UndoIt"/>
                         <parameter name="By" code="byTw" type="text"><cocoa key="key"/></parameter>
                       </command>)"),
       "“By” has the code “byOn” in “do it” and “byTw” in “undo it”; one word has one code"},
      {"one code for two words in two commands",
       inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <parameter name="by" code="byOn" type="text"><cocoa key="key"/></parameter>
                       </command>
                       <command name="undo it" code="TESTundo"><cocoa class="UndoIt"/>
                         <parameter name="with" code="byOn" type="text"><cocoa key="key"/></parameter>
                       </command>)"),
       "the code “byOn” is “by” in “do it” and “with” in “undo it”; one code has one word"},
      {"an enumerator with the code of a parameter",
       inDictionary(R"(<enumeration name="c" code="cccc"><enumerator name="red" code="0x6279314E"/>
                       </enumeration>
                       <command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <parameter name="by" code="by1N" type="text"><cocoa key="key"/></parameter>
                       </command>)"),
       "the code “0x6279314E” is “by” in “do it” and “red” of “c”; one code has one word"},
      {"an enumerator with the word of a property",
       inDictionary(R"(<enumeration name="c" code="cccc"><enumerator name="red" code="redC"/>
                       </enumeration>
                       <class name="thing" code="Thin"><cocoa class="Thing"/>
                         <property name="red" code="redP" type="text"><cocoa key="red"/></property>
                       </class>)"),
       "“red” has the code “redC” of “c” and “redP” of “thing”; one word has one code"},
      {"a class with the word of a parameter",
       inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <parameter name="by" code="byOn" type="text"><cocoa key="key"/></parameter>
                       </command>
                       <class name="by" code="Byby"><cocoa class="By"/></class>)"),
       "“by” has the code “byOn” in “do it” and “Byby” as a class; one word has one code"},
      {"a plural with the word of a parameter",
       inDictionary(R"(<command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                         <parameter name="bys" code="byOn" type="text"><cocoa key="key"/></parameter>
                       </command>
                       <class name="by" code="Byby"><cocoa class="By"/></class>)"),
       "“bys” is the plural of “by” and has the code “byOn” in “do it”; one word has one code"},
      {"a command with the word of a parameter",
       command(parameter(R"(name="do it" code="aaaa" type="text")")),
       "“do it” is a command and has the code “aaaa” in “do it”; one word has one code"},
      {"a constant with the code of another one as its name",
       inDictionary(R"(<enumeration name="c" code="cccc"><enumerator name="red" code="blue"/>
                         <enumerator name="blue" code="Blue"/></enumeration>)"),
       "the constant “blue” has the code of “red” as its name"},
      {"a class without a name in the program",
       inDictionary(R"(<class name="thing" code="Thin"/>)"), "“thing” has no <cocoa class>"},
      {"a class without a code", inDictionary(R"(<class name="thing"><cocoa class="T"/></class>)"),
       "<class name=\"thing\"> has no code"},
      {"two classes of one name",
       inDictionary(R"(<class name="a" code="aaaa"><cocoa class="T"/></class>
                       <class name="b" code="bbbb"><cocoa class="T"/></class>)"),
       "the class “T” stands there twice"},
      {"a base that is not there",
       inDictionary(R"(<class name="a" code="aaaa" inherits="b"><cocoa class="T"/></class>)"),
       "“a” inherits from “b”, which is not there"},
      {"a class that is its own base",
       inDictionary(R"(<class name="a" code="aaaa" inherits="b"><cocoa class="A"/></class>
                       <class name="b" code="bbbb" inherits="a"><cocoa class="B"/></class>)"),
       "“a” inherits from itself"},
      {"a property of no type", inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/>
                         <property name="p" code="pppp"><cocoa key="p"/></property></class>)"),
       "<property name=\"p\"> has no type"},
      {"an access that there is not", inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/>
                         <property name="p" code="pppp" type="text" access="x"><cocoa key="p"/>
                         </property></class>)"),
       "<property> cannot have access=\"x\", only r, w, rw"},
      {"the same key for a property and elements",
       inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/>
                         <property name="p" code="pppp" type="text"><cocoa key="k"/></property>
                         <element type="a"><cocoa key="k"/></element></class>)"),
       "in “a” the key “k” stands there twice"},
      {"elements of a class that is not there",
       inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/>
                         <element type="b"><cocoa key="k"/></element></class>)"),
       "there is no class “b” for an element"},
      {"elements without a key",
       inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/><element type="a"/></class>)"),
       "“a” has no <cocoa key>"},
      {"a way of naming elements that there is not",
       inDictionary(R"(<class name="a" code="aaaa"><cocoa class="A"/>
                         <element type="a"><cocoa key="k"/><accessor style="colour"/></element>
                       </class>)"),
       "<accessor> cannot have style=\"colour\", only index, name, id, range, relative, test"},
      {"the same enumeration twice",
       inDictionary(R"(<enumeration name="c" code="cccc"/><enumeration name="c" code="cccc"/>)"),
       "the enumeration “c” stands there twice"},
      {"the same class twice",
       inDictionary(R"(<command name="a" code="TESTaaaa"><cocoa class="A"/></command>
                       <command name="b" code="TESTbbbb"><cocoa class="A"/></command>)"),
       "the class “A” stands there twice"},
      {"the same words twice",
       inDictionary(R"(<command name="a" code="TESTaaaa"><cocoa class="A"/></command>
                       <command name="a" code="TESTbbbb"><cocoa class="B"/></command>)"),
       "the command “a” stands there twice"},
      {"the same event code twice",
       inDictionary(R"(<command name="a" code="TESTaaaa"><cocoa class="A"/></command>
                       <command name="b" code="TESTaaaa"><cocoa class="B"/></command>)"),
       "the event code “TESTaaaa” stands there twice"},
      {"an enumerator without a code",
       inDictionary(R"(<enumeration name="c" code="cccc"><enumerator name="red"/></enumeration>)"),
       "<enumerator name=\"red\"> has no code"},
      {"an enumeration without a code", inDictionary(R"(<enumeration name="c"/>)"),
       "<enumeration name=\"c\"> has no code"},
  };
  std::vector<std::string> definitions;
  for (const Row& row : rows) definitions.push_back(row.definition);
  const std::vector<std::string> problems = problemsOf(definitions);
  ASSERT_EQ(problems.size(), std::size(rows));
  for (std::size_t i = 0; i < problems.size(); ++i) {
    EXPECT_EQ(problems[i], rows[i].message) << rows[i].about;
  }
}

TEST(DictionaryGenerator, SaysWhatIsWrongWithADefinitionAndWritesNothing) {
  const ScratchFolder folder;
  const Outcome outcome = generate(folder, inDictionary(R"(<enumeration name="c"/>)"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output,
            folder.path("Faulty.sdef") + ": <enumeration name=\"c\"> has no code\n");
  EXPECT_FALSE(std::filesystem::exists(folder.path("tables.cpp")));
  EXPECT_FALSE(std::filesystem::exists(folder.path("classes.cpp")));
  EXPECT_FALSE(std::filesystem::exists(folder.path("keys")));
}

TEST(DictionaryGenerator, NamesACodeThatBeginsLikeHexadecimalAndIsNone) {
  const ScratchFolder folder;
  const Outcome outcome =
      generate(folder, command(parameter(R"(name="a" code="0xABCDEFGH" type="text")")));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.output.starts_with(folder.path("Faulty.sdef") + ": the code “0xABCDEFGH” "))
      << outcome.output;
}

TEST(DictionaryGenerator, LetsOneWordWithOneCodeStandInSeveralPlaces) {
  const ScratchFolder folder;
  const Outcome outcome = generate(
      folder,
      inDictionary(R"(<enumeration name="c" code="cccc"><enumerator name="name" code="0x6E616D65"/>
                      </enumeration>
                      <command name="do it" code="TESTdoit"><cocoa class="DoIt"/>
                        <parameter name="Name" code="name" type="text"><cocoa key="key"/></parameter>
                      </command>
                      <class name="thing" code="Thin"><cocoa class="Thing"/>
                        <property name="name" code="name" type="text"><cocoa key="name"/></property>
                      </class>)"));
  EXPECT_EQ(outcome.status, 0) << outcome.output;
}

TEST(DictionaryGenerator, LeavesAFileAloneThatWouldStayTheSame) {
  const ScratchFolder folder;
  const auto longAgo = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
  const std::string definition = command(parameter(R"(name="a" code="aaaa" type="text")"));
  ASSERT_EQ(generate(folder, definition).status, 0);
  for (const char* file : {"tables.cpp", "classes.cpp", "keys/DoIt.h"}) {
    std::filesystem::last_write_time(folder.path(file), longAgo);
  }
  const std::string changed =
      command(parameter(R"(name="a" code="aaaa" type="text" description="more")"));
  ASSERT_EQ(generate(folder, changed).status, 0);
  EXPECT_GT(std::filesystem::last_write_time(folder.path("tables.cpp")), longAgo);
  EXPECT_EQ(std::filesystem::last_write_time(folder.path("classes.cpp")), longAgo);
  EXPECT_EQ(std::filesystem::last_write_time(folder.path("keys/DoIt.h")), longAgo);
}

TEST(DictionaryGenerator, WritesTheSourcesForASoundDefinition) {
  const ScratchFolder folder;
  const Outcome outcome = generate(
      folder, command(parameter(R"(name="a “b” \ &quot;c&quot;" code="0x62E56531" type="text")")));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_TRUE(std::filesystem::exists(folder.path("tables.cpp")));
  EXPECT_TRUE(std::filesystem::exists(folder.path("classes.cpp")));
  EXPECT_TRUE(std::filesystem::exists(folder.path("keys/DoIt.h")));
}

}  // namespace
}  // namespace skerrow::scripting
