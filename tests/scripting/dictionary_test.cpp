#include "scripting/dictionary/dictionary.h"

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
    EXPECT_TRUE(std::ranges::is_sorted(dictionary.commands, {}, &CommandEntry::name));
    EXPECT_TRUE(areUnique(dictionary.commands, [](const CommandEntry& c) { return c.name; }));
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
      SCOPED_TRACE(command.name);
      EXPECT_FALSE(command.words.empty());
      EXPECT_FALSE(command.description.empty());
      EXPECT_NE(command.eventCode, FourCharCode{0});
      for (const ArgumentEntry& argument : command.arguments) {
        SCOPED_TRACE(argument.key);
        EXPECT_FALSE(argument.words.empty());
        EXPECT_FALSE(argument.description.empty());
        EXPECT_NE(argument.code, FourCharCode{0});
        EXPECT_TRUE(argument.type.single != Kinds::none || argument.type.items != Kinds::none);
        const bool takesEnumerators = contains(argument.type.single, Kinds::enumeration) ||
                                      contains(argument.type.items, Kinds::enumeration);
        EXPECT_EQ(argument.type.enumeration != nullptr, takesEnumerators);
      }
    }
  }
}

TEST(Dictionary, ArgumentsOfACommandDifferInWordsCodeAndKey) {
  for (const auto& [dictionary, classes] : bothDictionaries()) {
    for (const CommandEntry& command : dictionary.commands) {
      SCOPED_TRACE(command.name);
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
      EXPECT_EQ(dictionary.command(command.name), &command);
      EXPECT_EQ(dictionary.command(std::string(command.name) + "x"), nullptr);
      EXPECT_EQ(dictionary.command(command.name.substr(1)), nullptr);
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
    EXPECT_TRUE(argument.isOptional()) << argument.key;
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
};

TEST(TestDictionary, HoldsEachArgumentAsItIsDefined) {
  const ArgumentRow rows[] = {
      {"text", "text"_code, Kinds::text, Kinds::none, Arrival::plain},
      {"integer", "inte"_code, Kinds::integer, Kinds::none, Arrival::plain},
      {"real", "real"_code, Kinds::real, Kinds::none, Arrival::plain},
      {"number", "numb"_code, Kinds::integer | Kinds::real, Kinds::none, Arrival::plain},
      {"boolean", "bool"_code, Kinds::boolean, Kinds::none, Arrival::plain},
      {"date", "date"_code, Kinds::date, Kinds::none, Arrival::plain},
      {"file", "file"_code, Kinds::file, Kinds::none, Arrival::plain},
      {"record", "reco"_code, Kinds::record, Kinds::none, Arrival::given},
      {"type", "type"_code, Kinds::type, Kinds::none, Arrival::plain},
      {"data", "data"_code, Kinds::data, Kinds::none, Arrival::plain},
      {"script", "scri"_code, Kinds::script, Kinds::none, Arrival::given},
      {"colour", "colo"_code, Kinds::enumeration, Kinds::none, Arrival::plain},
      {"colours", "cols"_code, Kinds::enumeration, Kinds::enumeration, Arrival::list},
      {"texts", "txts"_code, Kinds::none, Kinds::text, Arrival::list},
      {"anything", "anyt"_code, Kinds::any, Kinds::none, Arrival::given},
      {"items", "itms"_code, Kinds::none, Kinds::any, Arrival::list},
      {"textOrTexts", "tots"_code, Kinds::text, Kinds::text, Arrival::list},
      {"recordOrRecords", "rors"_code, Kinds::record, Kinds::record, Arrival::list},
      {"dateOrText", "dort"_code, Kinds::date | Kinds::text, Kinds::none, Arrival::plain},
  };
  const CommandEntry& command = *testDictionary().command("TestEcho");
  EXPECT_EQ(command.arguments.size(), std::size(rows));
  for (const ArgumentRow& row : rows) {
    SCOPED_TRACE(row.key);
    const ArgumentEntry* argument = command.argument(row.key);
    ASSERT_NE(argument, nullptr);
    EXPECT_EQ(argument->code, row.code);
    EXPECT_EQ(argument->type.single, row.single);
    EXPECT_EQ(argument->type.items, row.items);
    EXPECT_EQ(argument->arrival, row.arrival);
    EXPECT_TRUE(argument->isOptional());
  }
}

TEST(TestDictionary, HoldsItsCommandsAndEnumeratorsAsTheyAreDefined) {
  EXPECT_EQ(testDictionary().title, "Test Terminology");
  const CommandEntry& echo = *testDictionary().command("TestEcho");
  EXPECT_EQ(echo.words, "echo");
  EXPECT_EQ(echo.eventClass, "TEST"_code);
  EXPECT_EQ(echo.eventCode, "echo"_code);
  EXPECT_TRUE(echo.directParameter->isOptional());
  EXPECT_EQ(echo.directParameter->words, "");
  const CommandEntry& workLong = *testDictionary().command("TestWorkLong");
  EXPECT_TRUE(workLong.arguments.empty());
  EXPECT_EQ(workLong.result, nullptr);
  EXPECT_FALSE(testDictionary().command("TestBehave")->directParameter->isOptional());
  const EnumerationEntry& colour = *echo.argument("colours")->type.enumeration;
  EXPECT_EQ(&colour, echo.argument("colour")->type.enumeration);
  EXPECT_EQ(colour.words, "colour");
  EXPECT_EQ(colour.code, "Colr"_code);
  ASSERT_EQ(colour.enumerators.size(), 2U);
  EXPECT_EQ(colour.enumerators[0].words, "red");
  EXPECT_EQ(colour.enumerators[0].code, "redC"_code);
  EXPECT_EQ(colour.enumerators[1].code, FourCharCode{0x62E56531});
  EXPECT_EQ(colour.enumerators[1].description, "the colour of the sky");
}

TEST(TestDictionary, SaysWhoAsksForAnArgument) {
  const CommandEntry& insist = *testDictionary().command("TestInsist");
  EXPECT_EQ(insist.directParameter->askedBy, AskedBy::scriptingLayer);
  EXPECT_EQ(insist.directParameter->missingNumber, -1715);
  EXPECT_EQ(insist.argument("asked")->askedBy, AskedBy::command);
  EXPECT_EQ(insist.argument("asked")->missingNumber, 2005);
  EXPECT_EQ(insist.argument("text")->askedBy, AskedBy::nobody);
  EXPECT_EQ(insist.argument("text")->missingNumber, 0);
  EXPECT_EQ(testDictionary().command("TestAsk")->directParameter->missingNumber, 2006);
}

TEST(TestDictionary, AnswersByWordsByCodeAndByName) {
  const Dictionary& dictionary = testDictionary();
  const CommandEntry* action = dictionary.command("shutShop");
  ASSERT_NE(action, nullptr);
  EXPECT_EQ(action->performer, Performer::application);
  EXPECT_EQ(dictionary.command("TestEcho")->performer, Performer::commandClass);
  EXPECT_EQ(dictionary.commandByWords("Shut SHOP"), action);
  EXPECT_EQ(dictionary.command("TEST"_code, "shut"_code), action);
  const ClassEntry* shelf = dictionary.classNamed("TestShelf");
  ASSERT_NE(shelf, nullptr);
  EXPECT_EQ(dictionary.classByWords("shelf"), shelf);
  EXPECT_EQ(dictionary.classByWords("Shelves"), shelf);
  EXPECT_EQ(dictionary.classWithCode("Shel"_code), shelf);
  EXPECT_EQ(dictionary.enumeratorByWords("RED")->code, "redC"_code);
  EXPECT_EQ(dictionary.enumerator("redC"_code)->words, "red");
  EXPECT_EQ(dictionary.command("TestInsist")->argument("askN"_code)->key, "asked");

  EXPECT_EQ(dictionary.commandByWords("shutShop"), nullptr);
  EXPECT_EQ(dictionary.commandByWords(""), nullptr);
  EXPECT_EQ(dictionary.command("TEST"_code, "Shut"_code), nullptr);
  EXPECT_EQ(dictionary.command("shut"_code, "TEST"_code), nullptr);
  EXPECT_EQ(dictionary.classNamed("shelf"), nullptr);
  EXPECT_EQ(dictionary.classByWords("shelfs"), nullptr);
  EXPECT_EQ(dictionary.classWithCode("shel"_code), nullptr);
  EXPECT_EQ(dictionary.enumeratorByWords("réd"), nullptr);
  EXPECT_EQ(dictionary.enumerator("Colr"_code), nullptr);
  EXPECT_EQ(dictionary.command("TestInsist")->argument("nope"_code), nullptr);
}

TEST(TestDictionary, HoldsTheProperties) {
  const ClassEntry& application = *testDictionary().classNamed("TestApplication");
  const ClassEntry& shelf = *testDictionary().classNamed("TestShelf");
  const PropertyEntry* sign = application.propertyByKey("sign");
  ASSERT_NE(sign, nullptr);
  EXPECT_EQ(application.property("Sign"_code), sign);
  EXPECT_EQ(application.propertyByWords("Sign"), sign);
  EXPECT_EQ(sign->type.single, Kinds::enumeration);
  EXPECT_EQ(sign->type.enumeration->words, "colour");
  EXPECT_TRUE(allows(sign->access, Access::read) && allows(sign->access, Access::write));
  const PropertyEntry* front = application.propertyByWords("front shelf");
  ASSERT_NE(front, nullptr);
  EXPECT_EQ(front->key, "frontShelf");
  EXPECT_EQ(front->type.single, Kinds::reference);
  EXPECT_EQ(front->type.ofClass, &shelf);
  EXPECT_EQ(front->type.inWords, "a reference");
  EXPECT_FALSE(allows(front->access, Access::write));
  EXPECT_EQ(shelf.propertyByKey("shop")->type.ofClass, &application);
  EXPECT_EQ(shelf.propertyByKey("widths")->type.inWords, "a list of real numbers");
  const ClassEntry& book = *testDictionary().classNamed("TestBook");
  EXPECT_FALSE(allows(book.propertyByKey("secret")->access, Access::read));
  EXPECT_EQ(book.propertyByKey("corner")->type.single, Kinds::point);
  for (const char* absent : {"", "Sign", "front shelf", "shelves", "séc"}) {
    EXPECT_EQ(application.propertyByKey(absent), nullptr) << absent;
  }
}

TEST(TestDictionary, FindsInheritedProperties) {
  const ClassEntry& thing = *testDictionary().classNamed("TestThing");
  const ClassEntry& book = *testDictionary().classNamed("TestBook");
  EXPECT_EQ(thing.base, nullptr);
  EXPECT_EQ(book.base, &thing);
  EXPECT_EQ(book.propertyByKey("name"), thing.propertyByKey("name"));
  EXPECT_EQ(book.property("pnam"_code), &thing.properties[0]);
  EXPECT_EQ(thing.propertyByKey("secret"), nullptr);
}

TEST(TestDictionary, HoldsTheElementsAndHowTheyAreNamed) {
  const ClassEntry& application = *testDictionary().classNamed("TestApplication");
  const ClassEntry& shelf = *testDictionary().classNamed("TestShelf");
  const ElementEntry* shelves = application.elementByKey("shelves");
  ASSERT_NE(shelves, nullptr);
  EXPECT_EQ(application.element("Shel"_code), shelves);
  EXPECT_EQ(shelves->ofClass, &shelf);
  EXPECT_EQ(shelves->forms, AccessForms::index | AccessForms::name);
  EXPECT_FALSE(contains(shelves->forms, AccessForms::identifier));
  EXPECT_FALSE(allows(shelves->access, Access::write));
  const ElementEntry* books = shelf.element("Book"_code);
  ASSERT_NE(books, nullptr);
  for (const AccessForms form : {AccessForms::index, AccessForms::name, AccessForms::identifier,
                                 AccessForms::range, AccessForms::relative, AccessForms::test}) {
    EXPECT_TRUE(contains(books->forms, form));
  }
  EXPECT_EQ(application.element("Book"_code), nullptr);
  EXPECT_EQ(application.elementByKey("books"), nullptr);
}

TEST(TestDictionary, ListsItsClassesInTheOrderOfTheirNamesAndItsSuites) {
  EXPECT_TRUE(std::ranges::is_sorted(testDictionary().classes, {}, &ClassEntry::name));
  EXPECT_EQ(testDictionary().classes.size(), 4U);
  ASSERT_EQ(testDictionary().suites.size(), 1U);
  EXPECT_EQ(testDictionary().suites[0].words, "Test Suite");
  EXPECT_EQ(testDictionary().suites[0].code, "TEST"_code);
  EXPECT_EQ(skerrowDictionary().suites.size(), 2U);
}

}  // namespace
}  // namespace skerrow::scripting
