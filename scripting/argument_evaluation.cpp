#include "scripting/argument_evaluation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "core/pack.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::scripting {

using namespace literals;

namespace {

struct KindWords {
  Kinds kind;
  std::string_view one;
  std::string_view many;
};

constexpr KindWords kKindWords[] = {
    {Kinds::any, "any value", "values"},
    {Kinds::text, "a text", "texts"},
    {Kinds::integer, "an integer", "integers"},
    {Kinds::real, "a real number", "real numbers"},
    {Kinds::boolean, "true or false", "booleans"},
    {Kinds::date, "a date", "dates"},
    {Kinds::file, "a file", "files"},
    {Kinds::record, "a record", "records"},
    {Kinds::type, "a class", "classes"},
    {Kinds::enumeration, "a constant", "constants"},
    {Kinds::data, "raw data", "pieces of raw data"},
    {Kinds::script, "a script", "scripts"},
};

std::string joined(Kinds kinds, std::string_view KindWords::*words) {
  std::string text;
  for (const KindWords& entry : kKindWords) {
    if (!contains(kinds, entry.kind)) continue;
    if (!text.empty()) text += " or ";
    text += entry.*words;
  }
  return text;
}

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
      (contains(kinds, Kinds::type) && value.namedCode() && !value.isMissingValue());
  const bool staysReal = contains(kinds, Kinds::real) && type == "doub"_code;
  if (contains(kinds, Kinds::integer) && !staysReal) {
    if (const auto number = wholeNumber(value)) return Value(*number);
  }
  if (isPlainKind) return core::unpack(value);
  if (contains(kinds, Kinds::enumeration)) {
    if (const auto code = enumeratorCode(value)) return Value(*code);
  }
  if (contains(kinds, Kinds::record) && core::scriptingRecordWithDescriptor(value))
    return Value(value);
  if (contains(kinds, Kinds::script) && core::scriptingScriptWithDescriptor(value))
    return Value(value);
  return std::nullopt;
}

[[noreturn]] void refuse(const ArgumentEntry& argument, const std::string& takes,
                         const std::string& given) {
  throw core::ScriptError(
      core::scripting_error::kWrongKind,
      "“" + std::string(argument.key) + "” takes " + takes + ", not " + given + ".");
}

// An integer of more than 32 bits, where an integer is taken.
bool isLargeInteger(Kinds kinds, const ScriptValue& refused) {
  const auto number = core::numberFromScriptValue(refused);
  return contains(kinds, Kinds::integer) && number && !number->isReal() &&
         !isBoolean(refused.type());
}

[[noreturn]] void refuse(const ArgumentEntry& argument, const ScriptValue& value) {
  const bool isTooLarge = isLargeInteger(argument.single, value);
  const bool isDamaged = core::isNumberType(value.type()) && !core::numberFromScriptValue(value);
  refuse(argument, isTooLarge ? "an integer of 32 bits" : kindsInWords(argument),
         kindInWords(value) + (isDamaged ? " with damaged data" : ""));
}

Value givenItems(const ArgumentEntry& argument, const ScriptValue& list) {
  const auto taken =
      contains(argument.items, Kinds::any) ? std::span<const ScriptValue>() : list.items();
  for (const ScriptValue& item : taken) {
    if (!plainValue(argument.items, item)) {
      refuse(argument,
             isLargeInteger(argument.items, item) ? "a list of integers of 32 bits"
                                                  : kindsInWords(argument),
             "a list with " + kindInWords(item));
    }
  }
  return core::unpackListShallow(list);
}

}  // namespace

std::string kindsInWords(const ArgumentEntry& argument) {
  std::string text = joined(argument.single, &KindWords::one);
  if (argument.items == Kinds::none) return text;
  if (!text.empty()) text += ", or ";
  text += "a list";
  if (!contains(argument.items, Kinds::any))
    text += " of " + joined(argument.items, &KindWords::many);
  return text;
}

std::string kindInWords(const ScriptValue& value) {
  const FourCharCode type = value.type();
  if (core::isTextType(type)) return "a text";
  if (isBoolean(type)) return "a boolean";
  if (const auto number = core::numberFromScriptValue(value)) {
    return (number->isReal() ? "the real number " : "the integer ") + core::textFrom(*number);
  }
  if (type == "list"_code) return "a list";
  if (value.type() == "reco"_code) return "a record";
  if (value.hasFields()) {
    return "a record of the class “" + foundation::utf8FromUtf16(foundation::textFromCode(type)) +
           "”";
  }
  if (value.isMissingValue() || type == "msng"_code) return "missing value";
  if (type == "null"_code) return "the null value";
  if (type == "ldt "_code) return "a date";
  if (core::isFileType(type)) return "a file";
  if (type == "type"_code) return "a class";
  if (type == "enum"_code) return "a constant";
  if (type == "rdat"_code) return "raw data";
  if (type == "scpt"_code) return "a script";
  return "a value of type “" + foundation::utf8FromUtf16(foundation::textFromCode(type)) + "”";
}

Value evaluateArgument(const ArgumentEntry& argument, const ScriptValue& value) {
  if (argument.items != Kinds::none && value.type() == "list"_code) {
    if (argument.arrival == Arrival::list) return givenItems(argument, value);
    return value;
  }
  auto plain = plainValue(argument.single, value);
  if (!plain) refuse(argument, value);
  switch (argument.arrival) {
    case Arrival::plain:
      return std::move(*plain);
    case Arrival::list:
      return std::vector<Value>{Value(value)};
    case Arrival::given:
      break;
  }
  return value;
}

}  // namespace skerrow::scripting
