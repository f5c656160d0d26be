// SKWRemoveEntriesFromRecord: records without the entries of some labels.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWRemoveEntriesFromRecord.h"
#include "core/command.h"
#include "lists/list_input.h"
#include "values/keys.h"
#include "values/record.h"
#include "values/value_index.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWRemoveEntriesFromRecord;

class SKWRemoveEntriesFromRecord final : public core::Command {
  std::optional<Value> compute() override {
    const ValueSet labels(labelsFrom(*directParameter(), kDirectParameter));
    const auto records = recordsArgument(evaluatedArguments(), key::inRecords);
    std::vector<Value> results;
    results.reserve(records.size());
    Keys all;   // of the record before, which most often are those of the next one too
    Keys kept;  // what is left of them
    std::vector<std::size_t> keptAt;
    for (const Record& record : records) {
      if (!record.keys().areShared(all)) {
        all = record.keys();
        kept = Keys();
        keptAt.clear();
        for (std::size_t i = 0; i < all.count(); ++i) {
          if (labels.contains(all[i])) continue;
          kept.append(all[i]);
          keptAt.push_back(i);
        }
      }
      std::vector<Value> rest;
      rest.reserve(keptAt.size());
      for (const std::size_t i : keptAt) rest.push_back(record.values()[i]);
      results.emplace_back(Record(kept, std::move(rest)));
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
