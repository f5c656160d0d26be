#pragma once
// Evaluating arguments: each value that a script gave is held against the kinds
// that its argument is declared to take, and brought into the shape in which the
// command finds it.

#include <string>

#include "scripting/dictionary.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::scripting {

/// Throws ScriptError -1700, its message naming the argument, what it takes and
/// what was given, for a value of a kind that the argument cannot take.
Value evaluateArgument(const ArgumentEntry& argument, const ScriptValue& value);

/// "an integer", "true or false", "a list of texts": what an argument takes.
std::string kindsInWords(const ArgumentEntry& argument);

/// "a text", "missing value", "a list": what a value is, for messages.
std::string kindInWords(const ScriptValue& value);

}  // namespace skerrow::scripting
