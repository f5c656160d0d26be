#pragma once
// Writing typed JSON: values and replies, on one line, as they are walked.
// Reading what was written gives a value that is written the same again.

#include <string>

#include "core/reply.h"
#include "scripting/json/json_writer.h"
#include "values/script_value.h"

namespace skerrow::scripting {

void writeTypedJson(const ScriptValue& value, const JsonSink& sink);

/// Whether a reply is a result, and neither nothing nor an error.
[[nodiscard]] bool hasResult(const core::Reply& reply);

/// The result of a reply that has one. A list that comes by its items is written as they
/// come; what its source throws leaves the list where it is.
void writeResult(const core::Reply& reply, const JsonSink& sink);

/// {"result": V}, {} for no result, or {"error": {"number": N, "message": M}}. The result is
/// written as by writeResult.
void writeReply(const core::Reply& reply, const JsonSink& sink);

std::string typedJson(const ScriptValue& value);

}  // namespace skerrow::scripting
