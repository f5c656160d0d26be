#include "lists/list_input.h"

#include "core/unpack.h"
#include "foundation/code_text.h"

namespace skerrow::lists {

using namespace literals;

namespace {

using scripting::refuseItem;

const Value& required(const core::Arguments& arguments, std::string_view key,
                      std::string_view needed) {
  const Value* argument = arguments.find(key);
  if (argument == nullptr) refuseMissing(key, needed);
  return *argument;
}

std::optional<Record> asRecord(const ScriptValue& value) {
  const auto unpacked = value.hasFields() ? core::unpack(value) : std::nullopt;
  if (!unpacked) return std::nullopt;
  return unpacked->record();
}

// Its text, or for the name of a class or property its code between « and ».
std::optional<Value> asLabel(const ScriptValue& value) {
  if (auto text = core::textFromScriptValue(value)) return Value(std::move(*text));
  const bool isName = value.type() == "type"_code || value.type() == "prop"_code;
  const auto code = value.plain<FourCharCode>();
  if (!isName || !code || value.isMissingValue()) return std::nullopt;
  return Value(foundation::keyFromKeyword(*code));
}

}  // namespace

void requireList(const std::optional<ScriptValue>& direct) {
  if (!direct) refuseMissing(kDirectParameter, "a list");
  if (direct->type() != "list"_code) refuseKind(kDirectParameter, "a list", *direct);
}

Record recordFrom(const ScriptValue& value, std::string_view parameter) {
  auto record = asRecord(value);
  if (!record) refuseKind(parameter, "a record", value);
  return std::move(*record);
}

Record recordArgument(const core::Arguments& arguments, std::string_view key) {
  return recordFrom(required(arguments, key, "a record").raw(), key);
}

std::vector<Record> recordsArgument(const core::Arguments& arguments, std::string_view key) {
  const auto items = required(arguments, key, "a list of records").items();
  std::vector<Record> records;
  records.reserve(items.size());
  for (const Value& item : items) {
    auto record = asRecord(item.raw());
    if (!record) refuseItem(key, "records", item.raw());
    records.push_back(std::move(*record));
  }
  return records;
}

Value labelFrom(const ScriptValue& value, std::string_view parameter) {
  auto label = asLabel(value);
  if (!label) refuseKind(parameter, "a label", value);
  return std::move(*label);
}

std::vector<Value> labelsFrom(const ScriptValue& list, std::string_view parameter) {
  std::vector<Value> labels;
  labels.reserve(list.items().size());
  for (const ScriptValue& item : list.items()) {
    auto label = asLabel(item);
    if (!label) refuseItem(parameter, "labels", item);
    labels.push_back(std::move(*label));
  }
  return labels;
}

std::vector<Value> labelsArgument(const core::Arguments& arguments, std::string_view key) {
  const auto items = required(arguments, key, "a list of labels").items();
  std::vector<Value> labels;
  labels.reserve(items.size());
  for (const Value& item : items) {
    auto label = asLabel(item.raw());
    if (!label) refuseItem(key, "labels", item.raw());
    labels.push_back(std::move(*label));
  }
  return labels;
}

}  // namespace skerrow::lists
