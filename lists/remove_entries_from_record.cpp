// SKWRemoveEntriesFromRecord: records without the entries of some labels.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/command.h"
#include "lists/list_input.h"
#include "values/record.h"
#include "values/value_index.h"

namespace skerrow::lists {

namespace {

class SKWRemoveEntriesFromRecord final : public core::Command {
  void check() override {
    requireList(directParameter());
    for (const ScriptValue& label : directParameter()->items()) {
      labels_.insert(labelFrom(label, kDirectParameter));
    }
    records_ = recordsArgument(evaluatedArguments(), "inRecords");
  }

  std::optional<Value> compute() override {
    std::vector<Value> results;
    results.reserve(records_.size());
    for (const Record& record : records_) {
      Record rest;
      for (const Record::Field& field : record.fields()) {
        if (!labels_.contains(field.key)) rest.set(field.key, field.value);
      }
      results.emplace_back(std::move(rest));
    }
    return results;
  }

  ValueSet labels_;
  std::vector<Record> records_;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWRemoveEntriesFromRecord() {
  return std::make_unique<lists::SKWRemoveEntriesFromRecord>();
}

}  // namespace skerrow
