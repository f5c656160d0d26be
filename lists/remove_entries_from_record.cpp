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
  void check() override { requireList(directParameter()); }

  std::optional<Value> compute() override {
    ValueSet labels;
    labels.insertAll(labelsFrom(*directParameter(), kDirectParameter));
    const auto records = recordsArgument(evaluatedArguments(), "inRecords");
    std::vector<Value> results;
    results.reserve(records.size());
    for (const Record& record : records) {
      Record rest;
      for (const Record::Field& field : record.fields()) {
        if (!labels.contains(field.key)) rest.set(field.key, field.value);
      }
      results.emplace_back(std::move(rest));
    }
    return results;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWRemoveEntriesFromRecord() {
  return std::make_unique<lists::SKWRemoveEntriesFromRecord>();
}

}  // namespace skerrow
