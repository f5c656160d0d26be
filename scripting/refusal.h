#pragma once
// Refusals: script errors of commands that have no failure of their own for a value
// that is missing or of the wrong kind, where the terminology does not say it all.
// Their messages name the parameter, what it needs and what was given. Wrong kinds have
// the number -1700.

#include <string_view>

#include "core/argument_key.h"
#include "values/script_value.h"

namespace skerrow::scripting {

/// Names the direct parameter among the keys of the arguments.
inline constexpr core::ArgumentKey kDirectParameter{""};

/// "The direct parameter must be a label, not the integer 5."
[[noreturn]] void refuseKind(core::ArgumentKey parameter, std::string_view needed,
                             const ScriptValue& given);

/// "“ofItem” is missing; it takes any value." Script error -1715.
[[noreturn]] void refuseMissing(core::ArgumentKey parameter, std::string_view taken);

/// "The items of the argument “inRecords” must be records, not a text."
[[noreturn]] void refuseItem(core::ArgumentKey parameter, std::string_view needed,
                             const ScriptValue& given);

}  // namespace skerrow::scripting
