#pragma once
// Reading typed JSON: single values, the arguments of an event, and whole events.
// Everything is built while it is read, whatever its size. Errors are thrown as
// JsonError with the line and column where reading stopped.

#include "scripting/event.h"
#include "scripting/json/json_source.h"
#include "scripting/json/typed_json_builder.h"
#include "values/script_value.h"

namespace skerrow::scripting {

/// One value, which is all that the source holds.
ScriptValue readTypedJson(JsonSource& source, const FormServices& services = {});

/// An object whose members are arguments by key; a repeated key counts as last given.
EventArguments readArguments(JsonSource& source, const FormServices& services = {});

/// {"command": C, "direct": D, "arguments": {…}, "timeout": S}; all but the
/// command may be left out.
Event readEvent(JsonSource& source, const FormServices& services = {});

}  // namespace skerrow::scripting
