// SKWValuesForLabel: for each of several records the values under several labels.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/command.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

using Items = std::vector<Value>;

class SKWValuesForLabel final : public core::Command {
  void check() override {
    requireList(directParameter());
    for (const ScriptValue& label : directParameter()->items()) {
      labels_.push_back(labelFrom(label, kDirectParameter));
    }
    records_ = recordsArgument(evaluatedArguments(), "inRecords");
  }

  std::optional<Value> compute() override {
    Items rows;
    rows.reserve(records_.size());
    for (const Record& record : records_) {
      Items row;
      row.reserve(labels_.size());
      for (const Value& label : labels_) {
        const Value* value = record.find(label);
        row.push_back(value == nullptr ? Value() : *value);
      }
      rows.emplace_back(std::move(row));
    }
    return rows;
  }

  Items labels_;
  std::vector<Record> records_;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWValuesForLabel() {
  return std::make_unique<lists::SKWValuesForLabel>();
}

}  // namespace skerrow
