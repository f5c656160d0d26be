#pragma once
// Refusals: script errors -1700 of commands that have no failure of their own for
// a value that is missing or of the wrong kind. Their messages name the parameter,
// what it needs and what was given.

#include <string_view>

#include "core/argument_key.h"
#include "values/script_value.h"

namespace skerrow::scripting {

/// Names the direct parameter among the keys of the arguments.
inline constexpr core::ArgumentKey kDirectParameter{""};

/// "The direct parameter must be a list, not a text."
[[noreturn]] void refuseKind(core::ArgumentKey parameter, std::string_view needed,
                             const ScriptValue& given);

/// "The items of the argument “inRecords” must be records, not a text."
[[noreturn]] void refuseItem(core::ArgumentKey parameter, std::string_view needed,
                             const ScriptValue& given);

/// "The direct parameter must be a list, and it is missing."
[[noreturn]] void refuseMissing(core::ArgumentKey parameter, std::string_view needed);

}  // namespace skerrow::scripting
