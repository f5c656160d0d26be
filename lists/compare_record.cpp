// SKWCompareRecord: what is left of two records when their common entries, or
// their common labels, are taken away.

#include <memory>
#include <optional>
#include <vector>

#include "argument_keys/SKWCompareRecord.h"
#include "core/command.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWCompareRecord;
using Items = std::vector<Value>;

// Whether an entry is compared by its label alone or with its value.
enum class Comparing { labels, entries };

// What one record has and the other has not.
Record without(const Record& record, const Record& other, Comparing comparing) {
  Record rest;
  for (const Record::Field& field : record.fields()) {
    const Value* counterpart = other.find(field.key);
    const bool isCommon =
        counterpart != nullptr && (comparing == Comparing::labels || *counterpart == field.value);
    if (!isCommon) rest.set(field.key, field.value);
  }
  return rest;
}

class SKWCompareRecord final : public core::Command {
  std::optional<Value> compute() override {
    const Record a = recordFrom(*directParameter(), kDirectParameter);
    const Record b = recordArgument(evaluatedArguments(), key::toRecord);
    const auto comparing =
        evaluatedArguments().isSet(key::inRecords) ? Comparing::labels : Comparing::entries;
    return Items{without(a, b, comparing), without(b, a, comparing)};
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWCompareRecord() {
  return std::make_unique<lists::SKWCompareRecord>();
}

}  // namespace skerrow
