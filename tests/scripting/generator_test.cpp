// The program that makes the dictionary's tables, run on definitions with faults.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/scratch_folder.h"

namespace skerrow::scripting {
namespace {

using tests::ScratchFolder;

struct Outcome {
  int status;
  std::string output;
};

Outcome generate(const ScratchFolder& folder, const std::string& definition) {
  const std::string path = folder.write("Faulty.sdef", definition);
  const auto generator =
      std::filesystem::path(SKERROW_CASES) / ".." / ".." / "scripting" / "generate_dictionary.py";
  const std::string command = "python3 -B '" + generator.string() + "' '" + path + "' --tables '" +
                              folder.path("tables.cpp") + "' --classes '" +
                              folder.path("classes.cpp") + "' --keys '" + folder.path("keys") +
                              "' --namespace-function faulty 2>&1";
  FILE* pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return {-1, "no process"};
  std::string output;
  std::array<char, 4096> piece{};
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe)) {
    output.append(piece.data(), count);
  }
  const int status = ::pclose(pipe);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
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

TEST(DictionaryGenerator, SaysWhatIsWrongWithADefinitionAndWritesNothing) {
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
  for (const Row& row : rows) {
    SCOPED_TRACE(row.about);
    const ScratchFolder folder;
    const Outcome outcome = generate(folder, row.definition);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, folder.path("Faulty.sdef") + ": " + row.message + "\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path("tables.cpp")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("classes.cpp")));
    EXPECT_FALSE(std::filesystem::exists(folder.path("keys")));
  }
}

TEST(DictionaryGenerator, NamesACodeThatBeginsLikeHexadecimalAndIsNone) {
  const ScratchFolder folder;
  const Outcome outcome =
      generate(folder, command(parameter(R"(name="a" code="0xABCDEFGH" type="text")")));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.output.starts_with(folder.path("Faulty.sdef") + ": the code “0xABCDEFGH” "))
      << outcome.output;
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
