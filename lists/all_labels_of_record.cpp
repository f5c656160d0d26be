// SKWAllLabelsOfRecord: the labels of a record, or those under which given values
// stand.

#include <memory>
#include <optional>
#include <vector>

#include "argument_keys/SKWAllLabelsOfRecord.h"
#include "core/command.h"
#include "core/unpack.h"
#include "lists/list_input.h"
#include "values/record.h"
#include "values/value_index.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWAllLabelsOfRecord;
using Items = std::vector<Value>;

class SKWAllLabelsOfRecord final : public core::Command {
  std::optional<Value> compute() override {
    const Record record = recordFrom(*directParameter(), kDirectParameter);
    const Value* values = evaluatedArguments().find(key::forValues);
    Items labels;
    if (values == nullptr) {
      for (const Record::Field& field : record.fields()) labels.push_back(field.key);
      return labels;
    }
    // The labels of equal values, found once for all the values asked for.
    ValueSet distinct;
    std::vector<Items> labelsOf;
    for (const Record::Field& field : record.fields()) {
      if (distinct.insert(field.value)) labelsOf.emplace_back();
      labelsOf[distinct.position(field.value)].push_back(field.key);
    }
    const Value wanted = core::unpackArrayOfAEDescs(*values);
    for (const Value& value : wanted.items()) {
      const std::size_t position = distinct.position(value);
      if (position == ValueSet::kNone) continue;
      labels.insert(labels.end(), labelsOf[position].begin(), labelsOf[position].end());
    }
    return labels;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWAllLabelsOfRecord() {
  return std::make_unique<lists::SKWAllLabelsOfRecord>();
}

}  // namespace skerrow
