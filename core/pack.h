#pragma once
// Packing: from the Values that commands compute with to the values that scripts
// receive. The inverse of unpacking, with deliberate asymmetries: integers
// narrow to 32 bits or widen to reals, an error becomes text, a URL that is no
// file becomes the null value. Callable on any thread; linear.

#include <optional>
#include <span>
#include <vector>

#include "values/record.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::core {

/// Nothing for a value that scripts cannot hold.
std::optional<ScriptValue> makeDescriptor(const Value& value);
/// The same for a value that is not needed any more: its texts are handed over.
std::optional<ScriptValue> makeDescriptor(Value&& value);

/// A list; an item that packs to nothing becomes missing value.
ScriptValue makeDescriptorForArray(std::span<const Value> items);
ScriptValue makeDescriptorForArray(std::vector<Value>&& items);

/// A list of raw items as they are; nothing when any item is not raw.
std::optional<ScriptValue> makeListDescriptorForArrayOfDescriptors(std::span<const Value> items);

/// A record: keys between « and » become keywords, other keys user fields in
/// their order. A raw key of type 'type' or 'prop' is the keyword that it names,
/// and «pcls» among those makes a record of that class.
ScriptValue makeDescriptorForDictionary(const Record& record);
ScriptValue makeDescriptorForDictionary(Record&& record);

ScriptValue descriptorWithMissingValue();

// How the scripting layer hands over parameters that are declared as a script or
// a record: as they came, for the command to unpack.

/// The same value if it is a compiled script ('scpt'), else nothing.
std::optional<ScriptValue> scriptingScriptWithDescriptor(const ScriptValue& value);
/// The type that such parameters have: a 'type' value that names 'scpt'.
ScriptValue scriptingScriptWithDescriptor();
/// The value itself.
ScriptValue scriptingRecordDescriptor(const ScriptValue& value);
/// The same value if it is a plain record ('reco'), else nothing.
std::optional<ScriptValue> scriptingRecordWithDescriptor(const ScriptValue& value);

}  // namespace skerrow::core
