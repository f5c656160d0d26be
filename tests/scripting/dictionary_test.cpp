#include "scripting/dictionary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "core/command.h"
#include "tests/scripting/test_commands.h"

namespace skerrow::scripting {
namespace {

using namespace literals;

struct DictionaryUnderTest {
  const Dictionary& dictionary;
  CommandClasses classes;
};

std::vector<DictionaryUnderTest> bothDictionaries() {
  return {{skerrowDictionary(), skerrowDictionaryClasses()},
          {testDictionary(), testDictionaryClasses()}};
}

template <class Items, class Key>
bool areUnique(const Items& items, Key key) {
  std::set<decltype(key(*items.begin()))> seen;
  return std::ranges::all_of(items,
                             [&](const auto& item) { return seen.insert(key(item)).second; });
}

TEST(Dictionary, ListsItsCommandsInTheOrderOfTheirClassesEachOnce) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    ASSERT_FALSE(dictionary.commands.empty());
    EXPECT_TRUE(std::ranges::is_sorted(dictionary.commands, {}, &CommandEntry::className));
    EXPECT_TRUE(areUnique(dictionary.commands, [](const CommandEntry& c) { return c.className; }));
    EXPECT_TRUE(areUnique(dictionary.commands, [](const CommandEntry& c) { return c.words; }));
    EXPECT_TRUE(areUnique(dictionary.commands, [](const CommandEntry& c) {
      return std::pair(number(c.eventClass), number(c.eventCode));
    }));
  }
}

TEST(Dictionary, SaysSomethingOfEverything) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    EXPECT_FALSE(dictionary.title.empty());
    for (const CommandEntry& command : dictionary.commands) {
      SCOPED_TRACE(command.className);
      EXPECT_FALSE(command.words.empty());
      EXPECT_FALSE(command.description.empty());
      EXPECT_NE(command.eventCode, FourCharCode{0});
      for (const ArgumentEntry& argument : command.arguments) {
        SCOPED_TRACE(argument.key);
        EXPECT_FALSE(argument.words.empty());
        EXPECT_FALSE(argument.description.empty());
        EXPECT_NE(argument.code, FourCharCode{0});
        EXPECT_TRUE(argument.single != Kinds::none || argument.items != Kinds::none);
        const bool takesEnumerators = contains(argument.single, Kinds::enumeration) ||
                                      contains(argument.items, Kinds::enumeration);
        EXPECT_EQ(argument.enumeration != nullptr, takesEnumerators);
      }
    }
  }
}

TEST(Dictionary, ArgumentsOfACommandDifferInWordsCodeAndKey) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    for (const CommandEntry& command : dictionary.commands) {
      SCOPED_TRACE(command.className);
      EXPECT_TRUE(areUnique(command.arguments, [](const ArgumentEntry& a) { return a.words; }));
      EXPECT_TRUE(
          areUnique(command.arguments, [](const ArgumentEntry& a) { return number(a.code); }));
      EXPECT_TRUE(areUnique(command.arguments, [](const ArgumentEntry& a) { return a.key; }));
    }
  }
}

TEST(Dictionary, FindsEveryCommandAndArgumentByItsExactName) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    for (const CommandEntry& command : dictionary.commands) {
      EXPECT_EQ(dictionary.command(command.className), &command);
      EXPECT_EQ(dictionary.command(std::string(command.className) + "x"), nullptr);
      EXPECT_EQ(dictionary.command(command.className.substr(1)), nullptr);
      EXPECT_EQ(command.argument(""), nullptr);
      for (const ArgumentEntry& argument : command.arguments) {
        EXPECT_EQ(command.argument(argument.key), &argument);
        EXPECT_EQ(command.argument(std::string(argument.key) + " "), nullptr);
      }
    }
    for (const char* absent : {"", "A", "zzz", "testecho", "SKW", "é"}) {
      EXPECT_EQ(dictionary.command(absent), nullptr) << absent;
    }
  }
}

TEST(Dictionary, HasAFactoryForEachCommandThatMakesANewOne) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    ASSERT_EQ(classes.size(), dictionary.commands.size());
    for (const CommandFactory factory : classes) {
      const auto one = factory();
      const auto other = factory();
      ASSERT_NE(one, nullptr);
      EXPECT_NE(one, other);
      EXPECT_EQ(one->state(), core::Command::State::created);
    }
  }
}

TEST(SkerrowDictionary, ModifyListHasItsArguments) {
  const CommandEntry* command = skerrowDictionary().command("SKWModifyList");
  ASSERT_NE(command, nullptr);
  EXPECT_EQ(command->words, "modify list");
  std::set<std::string_view> keys;
  for (const ArgumentEntry& argument : command->arguments) {
    keys.insert(argument.key);
    EXPECT_TRUE(argument.isOptional) << argument.key;
  }
  const std::set<std::string_view> expected = {
      "groupingEvery",   "swapColsAndRows",    "xtraColsToRows",  "makingUnique",
      "reversingOrder",  "removingBlanks",     "trimmingBlanks",  "flattening",
      "fullFlattening",  "replacingNullsWith", "deletingIndexes", "addingPadding",
      "insertingItem",   "insertingItems",     "swappingIndexes", "intersectingWithList",
      "subtractingList", "insertingInOrder",   "mergingIndexes",  "movingIndex",
      "beforeIndex",     "doSublists"};
  EXPECT_EQ(keys, expected);
  EXPECT_NE(command->directParameter, nullptr);
  EXPECT_NE(command->result, nullptr);
}

struct ArgumentRow {
  const char* key;
  FourCharCode code;
  Kinds single;
  Kinds items;
  Arrival arrival;
  bool isOptional;
};

TEST(TestDictionary, HoldsEachArgumentAsItIsDefined) {
  const ArgumentRow rows[] = {
      {"text", "text"_code, Kinds::text, Kinds::none, Arrival::plain, true},
      {"integer", "inte"_code, Kinds::integer, Kinds::none, Arrival::plain, true},
      {"real", "real"_code, Kinds::real, Kinds::none, Arrival::plain, true},
      {"number", "numb"_code, Kinds::integer | Kinds::real, Kinds::none, Arrival::plain, true},
      {"boolean", "bool"_code, Kinds::boolean, Kinds::none, Arrival::plain, true},
      {"date", "date"_code, Kinds::date, Kinds::none, Arrival::plain, true},
      {"file", "file"_code, Kinds::file, Kinds::none, Arrival::plain, true},
      {"record", "reco"_code, Kinds::record, Kinds::none, Arrival::given, true},
      {"type", "type"_code, Kinds::type, Kinds::none, Arrival::plain, true},
      {"data", "data"_code, Kinds::data, Kinds::none, Arrival::plain, true},
      {"script", "scri"_code, Kinds::script, Kinds::none, Arrival::given, true},
      {"colour", "colo"_code, Kinds::enumeration, Kinds::none, Arrival::plain, true},
      {"colours", "cols"_code, Kinds::enumeration, Kinds::enumeration, Arrival::list, true},
      {"texts", "txts"_code, Kinds::none, Kinds::text, Arrival::list, true},
      {"anything", "anyt"_code, Kinds::any, Kinds::none, Arrival::given, true},
      {"items", "itms"_code, Kinds::none, Kinds::any, Arrival::list, true},
      {"textOrTexts", "tots"_code, Kinds::text, Kinds::text, Arrival::list, true},
      {"recordOrRecords", "rors"_code, Kinds::record, Kinds::record, Arrival::list, true},
      {"dateOrText", "dort"_code, Kinds::date | Kinds::text, Kinds::none, Arrival::plain, true},
      {"needed", "need"_code, Kinds::text, Kinds::none, Arrival::plain, false},
  };
  const CommandEntry& command = *testDictionary().command("TestEcho");
  EXPECT_EQ(command.arguments.size(), std::size(rows));
  for (const ArgumentRow& row : rows) {
    SCOPED_TRACE(row.key);
    const ArgumentEntry* argument = command.argument(row.key);
    ASSERT_NE(argument, nullptr);
    EXPECT_EQ(argument->code, row.code);
    EXPECT_EQ(argument->single, row.single);
    EXPECT_EQ(argument->items, row.items);
    EXPECT_EQ(argument->arrival, row.arrival);
    EXPECT_EQ(argument->isOptional, row.isOptional);
  }
}

TEST(TestDictionary, HoldsItsCommandsAndEnumeratorsAsTheyAreDefined) {
  EXPECT_EQ(testDictionary().title, "Test Terminology");
  const CommandEntry& echo = *testDictionary().command("TestEcho");
  EXPECT_EQ(echo.words, "echo");
  EXPECT_EQ(echo.eventClass, "TEST"_code);
  EXPECT_EQ(echo.eventCode, "echo"_code);
  EXPECT_TRUE(echo.directParameter->isOptional);
  EXPECT_EQ(echo.directParameter->words, "");
  const CommandEntry& workLong = *testDictionary().command("TestWorkLong");
  EXPECT_TRUE(workLong.arguments.empty());
  EXPECT_EQ(workLong.result, nullptr);
  EXPECT_FALSE(testDictionary().command("TestBehave")->directParameter->isOptional);
  const EnumerationEntry& colour = *echo.argument("colours")->enumeration;
  EXPECT_EQ(&colour, echo.argument("colour")->enumeration);
  EXPECT_EQ(colour.name, "colour");
  EXPECT_EQ(colour.code, "Colr"_code);
  ASSERT_EQ(colour.enumerators.size(), 2U);
  EXPECT_EQ(colour.enumerators[0].words, "red");
  EXPECT_EQ(colour.enumerators[0].code, "redC"_code);
  EXPECT_EQ(colour.enumerators[1].code, FourCharCode{0x62E56531});
  EXPECT_EQ(colour.enumerators[1].description, "the colour of the sky");
}

}  // namespace
}  // namespace skerrow::scripting
