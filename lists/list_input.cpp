#include "lists/list_input.h"

#include <optional>
#include <utility>

#include "core/unpack.h"
#include "foundation/encoding/code_text.h"
#include "scripting/dictionary/kind_words.h"
#include "scripting/refusal.h"

namespace skerrow::lists {

using namespace literals;

namespace {

using scripting::refuseItem;
using scripting::refuseKind;

std::optional<Record> asRecord(const ScriptValue& value) {
  auto unpacked = value.hasFields() ? core::unpack(value) : std::nullopt;
  if (!unpacked || !unpacked->isRecord()) return std::nullopt;
  return std::move(*unpacked).takeRecord();
}

// Its text, or for the name of a class or property its code between « and ».
std::optional<Value> asLabel(const ScriptValue& value) {
  if (auto text = core::textFromScriptValue(value)) return Value(std::move(*text));
  const bool isName = value.type() == "type"_code || value.type() == "prop"_code;
  const auto code = value.plain<FourCharCode>();
  if (!isName || !code || value.isMissingValue()) return std::nullopt;
  return Value(foundation::keyFromKeyword(*code));
}

// The labels among items, of each of which `rawOf` gives the raw value.
template <class Items, class RawOf>
std::vector<Value> labelsOf(const Items& items, core::ArgumentKey parameter, RawOf rawOf) {
  std::vector<Value> labels;
  labels.reserve(items.size());
  for (const auto& item : items) {
    auto label = asLabel(*rawOf(item));
    if (!label) refuseItem(parameter, "labels", *rawOf(item));
    labels.push_back(std::move(*label));
  }
  return labels;
}

}  // namespace

Record recordFrom(const ScriptValue& value, core::ArgumentKey parameter) {
  auto record = asRecord(value);
  if (!record) refuseKind(parameter, scripting::wordsOf(scripting::Kinds::record).one, value);
  return std::move(*record);
}

Record recordArgument(const core::Arguments& arguments, core::ArgumentKey key) {
  return recordFrom(arguments.find(key)->raw(), key);
}

std::vector<Record> recordsArgument(const core::Arguments& arguments, core::ArgumentKey key) {
  const auto items = arguments.find(key)->items();
  std::vector<Record> records;
  records.reserve(items.size());
  for (const Value& item : items) {
    auto record = asRecord(item.raw());
    if (!record) refuseItem(key, scripting::wordsOf(scripting::Kinds::record).many, item.raw());
    records.push_back(std::move(*record));
  }
  return records;
}

Value labelFrom(const ScriptValue& value, core::ArgumentKey parameter) {
  auto label = asLabel(value);
  if (!label) refuseKind(parameter, "a label", value);
  return std::move(*label);
}

std::vector<Value> labelsFrom(const ScriptValue& list, core::ArgumentKey parameter) {
  return labelsOf(list.items(), parameter, [](const ScriptValue& item) { return &item; });
}

std::vector<Value> labelsArgument(const core::Arguments& arguments, core::ArgumentKey key) {
  return labelsOf(arguments.find(key)->items(), key, [](const Value& item) { return &item.raw(); });
}

}  // namespace skerrow::lists
