#pragma once
// What the commands of this room take in: records and labels, checked for what the
// terminology does not say of them. A value of the wrong kind, where a command has no
// failure of its own for it, is refused with -1700 and a message that names the
// parameter. What the terminology requires is there.

#include <vector>

#include "core/command.h"
#include "scripting/refusal.h"
#include "values/record.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::lists {

using scripting::kDirectParameter;

/// The record that a value unpacks to; refuses any other value.
Record recordFrom(const ScriptValue& value, core::ArgumentKey parameter);
/// A required argument that is declared as a record.
Record recordArgument(const core::Arguments& arguments, core::ArgumentKey key);

/// The records of a required argument that is declared as a list; refuses other items.
std::vector<Record> recordsArgument(const core::Arguments& arguments, core::ArgumentKey key);

/// The key that a label names in records: its text, or for the name of a class or
/// property its code between « and ». Refuses anything else.
Value labelFrom(const ScriptValue& value, core::ArgumentKey parameter);
/// The keys of a list of labels; refuses other items.
std::vector<Value> labelsFrom(const ScriptValue& list, core::ArgumentKey parameter);
/// The keys of a required argument that is declared as a list.
std::vector<Value> labelsArgument(const core::Arguments& arguments, core::ArgumentKey key);

}  // namespace skerrow::lists
