// SKWValuesForLabel: for each of several records the values under several labels.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWValuesForLabel.h"
#include "core/command.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWValuesForLabel;
using Items = std::vector<Value>;

class SKWValuesForLabel final : public core::Command {
  std::optional<Value> compute() override {
    const Items labels = labelsFrom(*directParameter(), kDirectParameter);
    const auto records = recordsArgument(evaluatedArguments(), key::inRecords);
    Items rows;
    rows.reserve(records.size());
    for (const Record& record : records) {
      Items row;
      row.reserve(labels.size());
      for (const Value& label : labels) {
        const Value* value = record.find(label);
        row.push_back(value == nullptr ? Value() : *value);
      }
      rows.emplace_back(std::move(row));
    }
    return rows;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWValuesForLabel() {
  return std::make_unique<lists::SKWValuesForLabel>();
}

}  // namespace skerrow
