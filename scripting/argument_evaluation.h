#pragma once
// Evaluating arguments: what a script gave is held against what a command is declared
// to take, and brought into the shape in which the command finds it. What does not fit
// is refused with a message that names it, before the command sees anything.

#include "core/command.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/event.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::scripting {

/// Refuses, in this order, with a ScriptError: an argument that the command does not
/// have (-1701); one that it needs and that is missing, the direct parameter first
/// (-1715), unless the command asks for it itself; a value of a kind that its argument
/// cannot take (-1700).
core::Arguments evaluateArguments(const CommandEntry& command, const Event& event);

/// One argument; throws ScriptError -1700.
Value evaluateArgument(const ArgumentEntry& argument, const ScriptValue& value);

}  // namespace skerrow::scripting
