// Whatever a list command is given, it answers with a result or with an error of
// its own or of the scripting layer, never with another failure.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/lists/command_results.h"
#include "tests/support/in_process.h"

namespace skerrow::lists {
namespace {

// What an argument takes, roughly: what is inside need not fit.
enum class Shape : std::uint8_t {
  boolean,
  booleans,
  code,
  indexes,
  keyPath,
  label,
  labels,
  list,
  lists,
  name,
  numbers,
  predicates,
  record,
  records,
  value,
};

struct Expectation {
  const char* command;
  Shape direct;
  std::vector<std::pair<const char*, Shape>> arguments;
  std::vector<int> numbers;
};

const std::vector<Expectation>& expectations() {
  static const std::vector<Expectation> all = {
      {"SKWMungeList",
       Shape::list,
       {{"sortDirection", Shape::boolean},
        {"uniqueOption", Shape::boolean},
        {"listMungeOption", Shape::code}},
       {}},
      {"SKWMungeRecords",
       Shape::records,
       {{"recordKeys", Shape::labels},
        {"sortDirection", Shape::booleans},
        {"uniqueOption", Shape::boolean},
        {"listMungeOption", Shape::code}},
       {1041, 1042, 1043, 1044, 1045, 1046}},
      {"SKWMungeListOfLists",
       Shape::lists,
       {{"listIndexes", Shape::indexes},
        {"sortDirection", Shape::booleans},
        {"uniqueOption", Shape::boolean},
        {"listMungeOption", Shape::code}},
       {1051, 1052, 1053, 1055, 1056, 1057, 10543}},
      {"SKWFilterLists",
       Shape::lists,
       {{"doSublists", Shape::boolean}, {"predicateList", Shape::predicates}},
       {1161, 1162, 1163, 1164, 1165, 1166, 1167, 1168, 1169}},
      {"SKWLookInListFor",
       Shape::lists,
       {{"doSublists", Shape::boolean},
        {"invertingValue", Shape::boolean},
        {"onlyFirst", Shape::boolean},
        {"matchingItem", Shape::value},
        {"matchingItems", Shape::list}},
       {1161, 1162, 1163}},
      {"SKWSummarizeNumbers", Shape::numbers, {}, {1091, 1092}},
      {"SKWDoTrigOn", Shape::numbers, {{"usingFunction", Shape::name}}, {1271, 1272}},
      {"SKWAllLabelsOfRecord", Shape::record, {{"forValues", Shape::list}}, {}},
      {"SKWCompareRecord",
       Shape::record,
       {{"toRecord", Shape::record}, {"inRecords", Shape::boolean}},
       {}},
      {"SKWLinkValuesWithLabels",
       Shape::list,
       {{"withLabels", Shape::labels}, {"inRecord", Shape::record}},
       {1390}},
      {"SKWLinkValueListsWithLabels", Shape::lists, {{"withLabels", Shape::labels}}, {1395, 1396}},
      {"SKWRemoveEntriesFromRecord", Shape::labels, {{"inRecords", Shape::records}}, {}},
      {"SKWValueForLabel",
       Shape::label,
       {{"inRecords", Shape::records}, {"doRecursion", Shape::boolean}},
       {}},
      {"SKWValuesForLabel", Shape::labels, {{"inRecords", Shape::records}}, {}},
      {"SKWValueForKeyPathCommand", Shape::keyPath, {{"ofItem", Shape::value}}, {1281, 1282}},
      {"SKWMergeRecords", Shape::records, {{"mergeType", Shape::code}}, {1401, 1402}},
  };
  return all;
}

rc::Gen<Value> predicateText() {
  return rc::gen::element<Value>(
      u"SELF > 1", u"a == 1", u"ANY SELF == %@", u"1 / a == 1", u"SELF LIKE '?'",
      u"SELF MATCHES '['", u"a.@sum.self > 0", u"%K == %@", u"", u"SELF IN {1, 'a'}", u"NOT (",
      u"CAST(SELF, 'NSNumber') < 2", u"SUBQUERY(SELF, $x, $x == 1).@count > 0");
}

rc::Gen<Value> fitting(Shape shape) {
  const auto boolean = rc::gen::map(rc::gen::arbitrary<bool>(),
                                    [](bool isTrue) { return Value(Number::boolean(isTrue)); });
  const auto index =
      rc::gen::map(rc::gen::inRange(-1, 4), [](int n) { return Value(Number::signed32(n)); });
  const auto label = rc::gen::element<Value>(u"a", u"b", u"c", u"\u00ABpnam\u00BB");
  const auto pair =
      rc::gen::map(rc::gen::pair(predicateText(), fewLists()), [](std::pair<Value, Value> parts) {
        return Value(Items{std::move(parts.first), std::move(parts.second)});
      });
  const auto number =
      rc::gen::map(tests::anyNumber(), [](Number any) { return settled(Value(any)); });
  switch (shape) {
    case Shape::boolean:
      return boolean;
    case Shape::booleans:
      return rc::gen::oneOf(boolean, listOf(boolean));
    case Shape::code:
      return rc::gen::map(rc::gen::inRange<std::uint32_t>(0, 14), [](std::uint32_t n) {
        return Value(Number::unsigned32(n < 7 ? 0x61E56530 + n : 0x68E56530 + n - 7));
      });
    case Shape::indexes:
      return rc::gen::resize(3, listOf(index));
    case Shape::keyPath:
      return rc::gen::element<Value>(u"a", u"a.b", u"@count", u"a.@sum.self",
                                     u"@unionOfArrays.self", u"@max.a", u"a b", u"..", u"self");
    case Shape::label:
      return label;
    case Shape::labels:
      return rc::gen::resize(3, listOf(label));
    case Shape::list:
      return fewLists();
    case Shape::lists:
      return rc::gen::oneOf(listOf(fewLists()), fewLists());
    case Shape::name:
      return rc::gen::element<Value>(u"sin", u"acosh", u" atanh ", u"cot");
    case Shape::numbers:
      return rc::gen::oneOf(number, listOf(number), listOf(fewValues()), listOf(listOf(number)));
    case Shape::predicates:
      return rc::gen::oneOf(predicateText(), listOf(rc::gen::oneOf(predicateText(), pair)));
    case Shape::record:
      return fewRecords();
    case Shape::records:
      return rc::gen::oneOf(listOf(fewRecords()), fewLists());
    case Shape::value:
      break;
  }
  return fewValues();
}

rc::Gen<ScriptValue> anyArgument(Shape shape) {
  return rc::gen::weightedOneOf<ScriptValue>(
      {{14, rc::gen::map(fitting(shape), [](const Value& value) { return packed(value); })},
       {1, tests::anyScriptValue()}});
}

RC_GTEST_PROP(ListCommands, AnswerWhateverTheyAreGiven, ()) {
  const Expectation& expectation = *rc::gen::elementOf(expectations());
  scripting::EventArguments arguments;
  for (const auto& [key, shape] : expectation.arguments) {
    if (*rc::gen::weightedElement<bool>({{3, true}, {1, false}})) {
      arguments.emplace_back(key, *anyArgument(shape));
    }
  }
  const ScriptValue direct = *anyArgument(expectation.direct);
  tests::InProcess commands;
  const core::Reply reply = commands.perform({expectation.command, direct, arguments});
  const auto* error = std::get_if<core::ScriptError>(&reply);
  RC_CLASSIFY(error == nullptr, "result");
  if (error == nullptr) {
    RC_ASSERT(std::get<std::optional<ScriptValue>>(reply).has_value());
    return;
  }
  RC_CLASSIFY(error->number() > 0, "error of the command");
  RC_LOG() << expectation.command << ": " << error->message() << " (" << error->number() << ")\n";
  RC_ASSERT((error->number() == -1700 ||
             std::ranges::find(expectation.numbers, error->number()) != expectation.numbers.end()));
  RC_ASSERT(!error->message().empty());
}

TEST(ListCommands, TakeNoRecordOfATypeThatOtherValuesHave) {
  using namespace literals;
  for (const FourCharCode type : {"utxt"_code, "list"_code, "long"_code, "type"_code}) {
    tests::InProcess commands;
    const core::Reply reply = commands.perform(
        {"SKWAllLabelsOfRecord", ScriptValue::record(type, {{"pnam"_code, ScriptValue()}}), {}});
    const auto* error = std::get_if<core::ScriptError>(&reply);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->number(), -1700) << error->message();
  }
}

}  // namespace
}  // namespace skerrow::lists
