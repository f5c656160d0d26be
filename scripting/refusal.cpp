#include "scripting/refusal.h"

#include <string>

#include "core/script_error.h"
#include "scripting/argument_evaluation.h"

namespace skerrow::scripting {

namespace {

using core::ErrorEntry;
using core::ScriptError;
using core::scripting_error::kWrongKind;

constexpr ErrorEntry kNotOfKind = {kWrongKind, "The %@ must be %@, not %@."};
constexpr ErrorEntry kItemNotOfKind = {kWrongKind, "The items of the %@ must be %@, not %@."};
constexpr ErrorEntry kMissing = {kWrongKind, "The %@ must be %@, and it is missing."};

std::string named(std::string_view parameter) {
  if (parameter == kDirectParameter) return std::string(parameter);
  return "argument “" + std::string(parameter) + "”";
}

}  // namespace

void refuseKind(std::string_view parameter, std::string_view needed, const ScriptValue& given) {
  throw ScriptError(kNotOfKind, named(parameter), needed, kindInWords(given));
}

void refuseItem(std::string_view parameter, std::string_view needed, const ScriptValue& given) {
  throw ScriptError(kItemNotOfKind, named(parameter), needed, kindInWords(given));
}

void refuseMissing(std::string_view parameter, std::string_view needed) {
  throw ScriptError(kMissing, named(parameter), needed);
}

}  // namespace skerrow::scripting
