#pragma once
// Refusals: script errors -1700 of commands that have no failure of their own for
// a value that is missing or of the wrong kind. Their messages name the parameter,
// what it needs and what was given.

#include <string_view>

#include "values/script_value.h"

namespace skerrow::scripting {

/// How messages name the direct parameter; any other name is an argument's key.
inline constexpr std::string_view kDirectParameter = "direct parameter";

/// "The direct parameter must be a list, not a text."
[[noreturn]] void refuseKind(std::string_view parameter, std::string_view needed,
                             const ScriptValue& given);

/// "The items of the argument “inRecords” must be records, not a text."
[[noreturn]] void refuseItem(std::string_view parameter, std::string_view needed,
                             const ScriptValue& given);

/// "The direct parameter must be a list, and it is missing."
[[noreturn]] void refuseMissing(std::string_view parameter, std::string_view needed);

}  // namespace skerrow::scripting
