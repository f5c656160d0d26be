#include "lists/list_input.h"

#include <string>

#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/code_text.h"
#include "scripting/argument_evaluation.h"

namespace skerrow::lists {

using namespace literals;

namespace {

constexpr core::ErrorEntry kWrongKind = {core::scripting_error::kWrongKind,
                                         "The %@ must be %@, not %@."};
constexpr core::ErrorEntry kMissing = {core::scripting_error::kWrongKind,
                                       "The %@ must be %@, and it is missing."};

std::string named(std::string_view parameter) {
  if (parameter == kDirectParameter) return std::string(parameter);
  return "argument “" + std::string(parameter) + "”";
}

const Value& required(const core::Arguments& arguments, std::string_view key,
                      std::string_view needed) {
  const Value* argument = arguments.find(key);
  if (argument == nullptr) refuseMissing(key, needed);
  return *argument;
}

}  // namespace

void refuseKind(std::string_view parameter, std::string_view needed, const ScriptValue& given) {
  throw core::ScriptError(kWrongKind, named(parameter), needed, scripting::kindInWords(given));
}

void refuseMissing(std::string_view parameter, std::string_view needed) {
  throw core::ScriptError(kMissing, named(parameter), needed);
}

void requireList(const std::optional<ScriptValue>& direct) {
  if (!direct) refuseMissing(kDirectParameter, "a list");
  if (direct->type() != "list"_code) refuseKind(kDirectParameter, "a list", *direct);
}

Record recordFrom(const ScriptValue& value, std::string_view parameter) {
  const auto unpacked = value.hasFields() ? core::unpack(value) : std::nullopt;
  if (!unpacked) {
    refuseKind(parameter, parameter == kDirectParameter ? "a record" : "records", value);
  }
  return unpacked->record();
}

Record recordArgument(const core::Arguments& arguments, std::string_view key) {
  return recordFrom(required(arguments, key, "a record").raw(), key);
}

std::vector<Record> recordsArgument(const core::Arguments& arguments, std::string_view key) {
  std::vector<Record> records;
  for (const Value& item : required(arguments, key, "a list of records").items()) {
    records.push_back(recordFrom(item.raw(), key));
  }
  return records;
}

Value labelFrom(const ScriptValue& label, std::string_view parameter) {
  if (auto text = core::textFromScriptValue(label)) return Value(std::move(*text));
  const bool isName = label.type() == "type"_code || label.type() == "prop"_code;
  const auto code = label.plain<FourCharCode>();
  if (!isName || !code || label.isMissingValue()) {
    refuseKind(parameter, "a label or labels", label);
  }
  return Value(foundation::keyFromKeyword(*code));
}

std::vector<Value> labelsArgument(const core::Arguments& arguments, std::string_view key) {
  std::vector<Value> labels;
  for (const Value& item : required(arguments, key, "a list of labels").items()) {
    labels.push_back(labelFrom(item.raw(), key));
  }
  return labels;
}

}  // namespace skerrow::lists
