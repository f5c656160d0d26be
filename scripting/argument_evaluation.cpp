#include "scripting/argument_evaluation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/pack.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/text/quoted_text.h"
#include "scripting/dictionary/kind_words.h"
#include "scripting/dictionary/nearest.h"
#include "scripting/refusal.h"

namespace skerrow::scripting {

using namespace literals;

namespace {

using core::ErrorEntry;
using core::ScriptError;
namespace number_of = core::scripting_error;

constexpr ErrorEntry kUnknownArgument = {number_of::kUnknownArgument, "%@ has no argument “%@”%@"};
constexpr ErrorEntry kWrongArgument = {number_of::kWrongKind, "“%@” takes %@, not %@."};
constexpr ErrorEntry kWrongDirectParameter = {number_of::kWrongKind,
                                              "The direct parameter must be %@, not %@."};

// An integer of 32 bits, or a real that is one.
std::optional<Number> wholeNumber(const ScriptValue& value) {
  const auto number = core::numberFromScriptValue(value);
  if (!number || number->kind() == NumberKind::boolean) return std::nullopt;
  const double real = number->asReal();
  if (real != std::trunc(real) || real < std::numeric_limits<std::int32_t>::min() ||
      real > std::numeric_limits<std::int32_t>::max()) {
    return std::nullopt;
  }
  return Number::signed32(static_cast<std::int32_t>(real));
}

// The code of an enumerator, also where it is given as an integer.
std::optional<Number> enumeratorCode(const ScriptValue& value) {
  if (value.type() == "enum"_code) {
    const auto code = value.plain<std::uint32_t>();
    if (!code) return std::nullopt;
    return Number::unsigned32(*code);
  }
  const auto number = core::numberFromScriptValue(value);
  if (!number || number->isReal() || number->kind() == NumberKind::boolean) return std::nullopt;
  // A code is 32 bits, and a script may have them as a negative integer.
  if (number->asInteger() < std::numeric_limits<std::int32_t>::min() ||
      number->asInteger() > std::numeric_limits<std::uint32_t>::max()) {
    return std::nullopt;
  }
  return Number::unsigned32(static_cast<std::uint32_t>(number->asInteger()));
}

bool isBoolean(FourCharCode type) {
  return type == "true"_code || type == "fals"_code || type == "bool"_code;
}

bool isRealType(FourCharCode type) {
  return type == "doub"_code || type == "sing"_code || type == "ldbl"_code;
}

// The name of a class or of a property.
bool isName(const ScriptValue& value) {
  return value.type() == "prop"_code || (value.namedCode() && !value.isMissingValue());
}

// The value in its plain shape; nothing when it is of none of these kinds.
std::optional<Value> plainValue(Kinds kinds, const ScriptValue& value) {
  const FourCharCode type = value.type();
  if (contains(kinds, Kinds::any)) return Value(value);
  const bool isPlainKind =
      (contains(kinds, Kinds::text) && core::isTextType(type)) ||
      (contains(kinds, Kinds::boolean) && isBoolean(type)) ||
      (contains(kinds, Kinds::real) && core::isNumberType(type) && !isBoolean(type)) ||
      (contains(kinds, Kinds::date) && type == "ldt "_code) ||
      (contains(kinds, Kinds::file) && core::isFileType(type)) ||
      (contains(kinds, Kinds::data) && type == "rdat"_code) ||
      (contains(kinds, Kinds::type) && isName(value));
  const bool staysReal = contains(kinds, Kinds::real) && isRealType(type);
  if (contains(kinds, Kinds::integer) && !staysReal) {
    if (const auto number = wholeNumber(value)) return Value(*number);
  }
  if (isPlainKind) return core::unpack(value);
  if (contains(kinds, Kinds::enumeration)) {
    if (const auto code = enumeratorCode(value)) return Value(*code);
  }
  const bool isObjectKind = (contains(kinds, Kinds::reference) && type == "obj "_code) ||
                            (contains(kinds, Kinds::point) && type == "QDpt"_code) ||
                            (contains(kinds, Kinds::rectangle) && type == "qdrt"_code);
  if (isObjectKind) return Value(value);
  if (contains(kinds, Kinds::record) && core::scriptingRecordWithDescriptor(value))
    return Value(value);
  if (contains(kinds, Kinds::script) && core::scriptingScriptWithDescriptor(value))
    return Value(value);
  return std::nullopt;
}

// Why a value is refused, of which a damaged one is a sort of its own.
std::string refusedInWords(const ScriptValue& value) {
  const bool isDamaged = core::isNumberType(value.type()) && !core::numberFromScriptValue(value);
  return kindInWords(value) + (isDamaged ? " with damaged data" : "");
}

// What an argument takes; said in full where an integer is refused for its size.
std::string takenInWords(const TypeEntry& type, Kinds kinds, const ScriptValue& refused) {
  const auto number = core::numberFromScriptValue(refused);
  const bool isTooLarge =
      contains(kinds, Kinds::integer) && number && !number->isReal() && !isBoolean(refused.type());
  return std::string(type.inWords) + (isTooLarge ? " of 32 bits" : "");
}

[[noreturn]] void refuse(const ArgumentEntry& argument, const std::string& takes,
                         const std::string& given) {
  if (argument.key.empty()) throw ScriptError(kWrongDirectParameter, takes, given);
  throw ScriptError(kWrongArgument, argument.key, takes, given);
}

// Refuses what an argument cannot take, lists item by item.
std::optional<Value> checked(const ArgumentEntry& argument, const ScriptValue& value) {
  const TypeEntry& type = argument.type;
  if (type.items == Kinds::none || value.type() != "list"_code) {
    auto plain = plainValue(type.single, value);
    if (!plain) {
      refuse(argument, takenInWords(type, type.single, value), refusedInWords(value));
    }
    return plain;
  }
  if (contains(type.items, Kinds::any)) return std::nullopt;
  for (const ScriptValue& item : value.items()) {
    if (plainValue(type.items, item)) continue;
    refuse(argument, takenInWords(type, type.items, item), "a list with " + kindInWords(item));
  }
  return std::nullopt;
}

// The direct parameter arrives as it was given, records of every class among them.
void checkDirect(const ArgumentEntry& argument, const ScriptValue& value) {
  if (contains(argument.type.single, Kinds::record) && value.hasFields()) return;
  checked(argument, value);
}

void requireGiven(const ArgumentEntry& argument) {
  if (argument.askedBy != AskedBy::scriptingLayer) return;
  refuseMissing(core::ArgumentKey(argument.key), argument.type.inWords);
}

}  // namespace

Value evaluateArgument(const ArgumentEntry& argument, const ScriptValue& value) {
  std::optional<Value> plain = checked(argument, value);
  if (argument.arrival == Arrival::plain && plain) return std::move(*plain);
  if (argument.arrival != Arrival::list) return value;
  if (value.type() == "list"_code) return core::unpackListShallow(value);
  return std::vector<Value>{Value(value)};
}

core::Arguments evaluateArguments(const CommandEntry& command, const Event& event) {
  for (const auto& [key, value] : event.arguments) {
    if (command.argument(key) != nullptr) continue;
    throw ScriptError(kUnknownArgument, command.name, foundation::shortened(key),
                      didYouMean(command, key));
  }
  const ArgumentEntry* direct = command.directParameter;
  if (direct != nullptr && !event.directParameter) requireGiven(*direct);
  for (const ArgumentEntry& argument : command.arguments) {
    const auto given =
        std::ranges::find(event.arguments, argument.key, &EventArguments::value_type::first);
    if (given == event.arguments.end()) requireGiven(argument);
  }
  if (direct != nullptr && event.directParameter && direct->askedBy != AskedBy::command) {
    checkDirect(*direct, *event.directParameter);
  }
  core::Arguments arguments;
  for (const auto& [key, value] : event.arguments) {
    const ArgumentEntry& argument = *command.argument(key);
    arguments.set(core::ArgumentKey(argument.key), evaluateArgument(argument, value));
  }
  return arguments;
}

}  // namespace skerrow::scripting
