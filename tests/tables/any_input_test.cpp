// Whatever a command is given, it answers with a result or with an error of its own or
// of the scripting layer, never with another failure. Commands and arguments are those
// of the dictionary; what they are given is drawn from the cases of all commands, their
// own above all; and an error must be one that the command's cases know.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "scripting/dictionary/dictionary.h"
#include "scripting/json/typed_json_reader.h"
#include "tests/support/case_table.h"
#include "tests/support/generators.h"
#include "tests/support/in_process.h"
#include "tests/support/json_text.h"

namespace skerrow::tests {
namespace {

using namespace literals;
using scripting::ArgumentEntry;
using scripting::CommandEntry;
using Pool = std::vector<ScriptValue>;

// Rooms whose commands change nothing outside of the process, so that they can be given
// anything. A command that removes files must not meet a path at random.
const std::set<std::string> kHarmlessRooms = {"lists", "text"};

// What the cases of a command give it, and which errors they know.
struct Known {
  std::string room;
  Pool direct;
  std::map<std::string, Pool, std::less<>> arguments;
  std::set<int> numbers;
};

std::optional<scripting::Event> eventFrom(const std::string& line) {
  try {
    scripting::JsonSource source{std::string_view(line)};
    return scripting::readEvent(source);
  } catch (const scripting::JsonError&) {
    return std::nullopt;  // a case of an event that cannot be read
  }
}

std::optional<int> numberIn(const std::string& answer) {
  for (const JsonPart& member : membersOf(answer)) {
    if (member.name != "error") continue;
    for (const JsonPart& part : membersOf(member.text)) {
      if (part.name == "number") return std::stoi(std::string(part.text));
    }
  }
  return std::nullopt;
}

Known knownFrom(const std::filesystem::path& file) {
  Known known;
  known.room = file.parent_path().filename().string();
  for (const TestCase& each : readCaseTable(file)) {
    if (const auto number = numberIn(each.expected)) known.numbers.insert(*number);
    auto event = eventFrom(each.event);
    if (!event) continue;
    if (event->directParameter) known.direct.push_back(std::move(*event->directParameter));
    for (auto& [key, value] : event->arguments) known.arguments[key].push_back(std::move(value));
  }
  return known;
}

const std::map<std::string, Known, std::less<>>& knownByCommand() {
  static const auto all = [] {
    std::map<std::string, Known, std::less<>> known;
    for (const auto& file : caseTableFiles()) known.emplace(file.stem().string(), knownFrom(file));
    return known;
  }();
  return all;
}

// Everything that any command is given.
const Pool& everything() {
  static const Pool all = [] {
    Pool values;
    for (const auto& [command, known] : knownByCommand()) {
      values.insert(values.end(), known.direct.begin(), known.direct.end());
      for (const auto& [key, pool] : known.arguments) {
        values.insert(values.end(), pool.begin(), pool.end());
      }
    }
    return values;
  }();
  return all;
}

ScriptValue drawnFrom(const Pool& pool) {
  return pool[*rc::gen::inRange(std::size_t{0}, pool.size())];
}

ScriptValue drawn(const Pool& own) {
  enum class From { itsOwn, all, items, anything };
  const From from = *rc::gen::weightedElement<From>(
      {{14, From::itsOwn}, {2, From::all}, {2, From::items}, {1, From::anything}});
  if (from == From::itsOwn && !own.empty()) return drawnFrom(own);
  if (from == From::anything) return *anyScriptValue();
  if (from == From::all) return drawnFrom(everything());
  std::vector<ScriptValue> items;
  for (int i = *rc::gen::inRange(0, 4); i > 0; --i) items.push_back(drawnFrom(everything()));
  return ScriptValue::list(std::move(items));
}

class AnyInput : public ::testing::TestWithParam<const CommandEntry*> {};

// A time that only what never answers takes, and what is not known to does not have.
constexpr std::chrono::milliseconds kShortly{50};

TEST_P(AnyInput, IsAnswered) {
  const CommandEntry& command = *GetParam();
  const auto found = knownByCommand().find(command.name);
  ASSERT_NE(found, knownByCommand().end()) << "The command has no cases.";
  const Known& known = found->second;
  if (!kHarmlessRooms.contains(known.room)) GTEST_SKIP() << "It changes more than its answer.";
  const bool mayBeSilent = known.numbers.contains(core::scripting_error::kTimedOut);
  rc::detail::checkGTest([&] {
    scripting::Event event;
    event.command = command.name;
    if (mayBeSilent) event.timeout = kShortly;
    const auto isLeftOut = [](const ArgumentEntry& argument) {
      return *rc::gen::inRange(0, argument.isOptional() ? 2 : 20) == 0;
    };
    if (command.directParameter != nullptr && !isLeftOut(*command.directParameter)) {
      event.directParameter = drawn(known.direct);
    }
    for (const ArgumentEntry& argument : command.arguments) {
      const auto own = known.arguments.find(argument.key);
      EXPECT_NE(own, known.arguments.end()) << "No case gives “" << argument.key << "”.";
      if (isLeftOut(argument) || own == known.arguments.end()) continue;
      event.arguments.emplace_back(argument.key, drawn(own->second));
    }
    InProcess commands;
    const core::Reply reply = commands.perform(event);
    const auto* error = std::get_if<core::ScriptError>(&reply);
    RC_CLASSIFY(error == nullptr, "result");
    if (error == nullptr) {
      RC_ASSERT(command.result == nullptr ||
                std::get<std::optional<ScriptValue>>(reply).has_value());
      return;
    }
    RC_CLASSIFY(error->number() > 0, "error of the command");
    RC_LOG() << error->message() << " (" << error->number() << ")\n";
    RC_ASSERT((error->number() == core::scripting_error::kWrongKind ||
               error->number() == core::scripting_error::kMissingArgument ||
               known.numbers.contains(error->number())));
    RC_ASSERT(!error->message().empty());
  });
}

std::vector<const CommandEntry*> allCommands() {
  std::vector<const CommandEntry*> commands;
  for (const CommandEntry& command : scripting::skerrowDictionary().commands) {
    commands.push_back(&command);
  }
  return commands;
}

INSTANTIATE_TEST_SUITE_P(Commands, AnyInput, ::testing::ValuesIn(allCommands()),
                         [](const auto& made) { return std::string(made.param->name); });

// What the dictionary says of a required argument holds of the command.
TEST(RequiredArguments, AreMissedWithTheNumberThatTheDictionaryHas) {
  for (const CommandEntry* command : allCommands()) {
    const Known& known = knownByCommand().at(std::string(command->name));
    scripting::Event complete;
    complete.command = command->name;
    if (command->directParameter != nullptr) complete.directParameter = known.direct.at(0);
    for (const ArgumentEntry& argument : command->arguments) {
      if (argument.isOptional()) continue;
      complete.arguments.emplace_back(argument.key,
                                      known.arguments.at(std::string(argument.key)).at(0));
    }
    const auto expectMissed = [&](const ArgumentEntry& argument, scripting::Event without) {
      InProcess commands;
      const core::Reply reply = commands.perform(std::move(without));
      const auto* error = std::get_if<core::ScriptError>(&reply);
      ASSERT_NE(error, nullptr) << command->name << " " << argument.key;
      EXPECT_EQ(error->number(), argument.missingNumber) << command->name << " " << argument.key;
    };
    const ArgumentEntry* direct = command->directParameter;
    if (direct != nullptr && !direct->isOptional()) {
      scripting::Event without = complete;
      without.directParameter.reset();
      expectMissed(*direct, std::move(without));
    }
    for (const ArgumentEntry& argument : command->arguments) {
      if (argument.askedBy == scripting::AskedBy::nobody) continue;
      scripting::Event without = complete;
      std::erase_if(without.arguments,
                    [&](const auto& given) { return given.first == argument.key; });
      expectMissed(argument, std::move(without));
    }
  }
}

TEST(Commands, TakeNoRecordOfATypeThatOtherValuesHave) {
  for (const FourCharCode type : {"utxt"_code, "list"_code, "long"_code, "type"_code}) {
    InProcess commands;
    const core::Reply reply = commands.perform(
        {"SKWAllLabelsOfRecord", ScriptValue::record(type, {{"pnam"_code, ScriptValue()}}), {}});
    const auto* error = std::get_if<core::ScriptError>(&reply);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->number(), -1700) << error->message();
  }
}

}  // namespace
}  // namespace skerrow::tests
