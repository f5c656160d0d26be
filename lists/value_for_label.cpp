// SKWValueForLabel: the value under one label in each of several records, or all
// values under it at any depth.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWValueForLabel.h"
#include "core/command.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWValueForLabel;
using Items = std::vector<Value>;

void lookForKey(const Value& key, const Value& object, Items& found) {
  if (object.isRecord()) {
    if (const Value* value = object.record().find(key)) found.push_back(*value);
    for (const Record::Field& field : object.record().fields()) {
      lookForKey(key, field.value, found);
    }
  } else if (object.isList()) {
    for (const Value& item : object.items()) lookForKey(key, item, found);
  }
}

class SKWValueForLabel final : public core::Command {
  void check() override {
    label_ = labelFrom(*directParameter(), kDirectParameter);
    isRecursive_ = evaluatedArguments().isSet(key::doRecursion);
  }

  std::optional<Value> compute() override {
    auto records = recordsArgument(evaluatedArguments(), key::inRecords);
    Items values;
    values.reserve(records.size());
    for (Record& record : records) {
      if (isRecursive_) {
        Items found;
        lookForKey(label_, std::move(record), found);
        values.emplace_back(std::move(found));
      } else {
        const Value* value = record.find(label_);
        values.push_back(value == nullptr ? Value() : *value);
      }
    }
    return values;
  }

  Value label_;
  bool isRecursive_ = false;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWValueForLabel() {
  return std::make_unique<lists::SKWValueForLabel>();
}

}  // namespace skerrow
