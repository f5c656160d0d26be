#pragma once
// Writing typed JSON: values and replies, on one line, as they are walked.
// Reading what was written gives a value that is written the same again.

#include <string>

#include "core/command.h"
#include "scripting/json/json_writer.h"
#include "values/script_value.h"

namespace skerrow::scripting {

void writeTypedJson(const ScriptValue& value, const JsonSink& sink);

/// {"result": V}, {} for no result, or {"error": {"number": N, "message": M}}.
void writeReply(const core::Reply& reply, const JsonSink& sink);

std::string typedJson(const ScriptValue& value);

}  // namespace skerrow::scripting
