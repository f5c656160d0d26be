#include "scripting/refusal.h"

#include <string>

#include "core/script_error.h"
#include "scripting/dictionary/kind_words.h"

namespace skerrow::scripting {

namespace {

using core::ErrorEntry;
using core::ScriptError;
using core::scripting_error::kWrongKind;

constexpr ErrorEntry kNotOfKind = {kWrongKind, "The %@ must be %@, not %@."};
constexpr ErrorEntry kMissing = {core::scripting_error::kMissingArgument,
                                 "%@ is missing; it takes %@."};
constexpr ErrorEntry kItemNotOfKind = {kWrongKind, "The items of the %@ must be %@, not %@."};

std::string named(core::ArgumentKey parameter) {
  if (parameter == kDirectParameter) return "direct parameter";
  return "argument “" + std::string(parameter.text()) + "”";
}

}  // namespace

void refuseKind(core::ArgumentKey parameter, std::string_view needed, const ScriptValue& given) {
  throw ScriptError(kNotOfKind, named(parameter), needed, kindInWords(given));
}

void refuseMissing(core::ArgumentKey parameter, std::string_view taken) {
  const bool isDirect = parameter == kDirectParameter;
  throw ScriptError(kMissing,
                    isDirect ? "The direct parameter" : "“" + std::string(parameter.text()) + "”",
                    taken);
}

void refuseItem(core::ArgumentKey parameter, std::string_view needed, const ScriptValue& given) {
  throw ScriptError(kItemNotOfKind, named(parameter), needed, kindInWords(given));
}

}  // namespace skerrow::scripting
