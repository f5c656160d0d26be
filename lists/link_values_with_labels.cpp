// SKWLinkValuesWithLabels: a record from values and their labels, alone or added
// to another record.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWLinkValuesWithLabels.h"
#include "core/command.h"
#include "core/script_error.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWLinkValuesWithLabels;

constexpr core::ErrorEntry kCountsDiffer = {1390,
                                            "Number of values does not match number of labels."};

class SKWLinkValuesWithLabels final : public core::Command {
  // Values are carried over as they were given.
  std::optional<Value> compute() override {
    const auto labels = labelsArgument(evaluatedArguments(), key::withLabels);
    Record record;
    if (evaluatedArguments().has(key::inRecord)) {
      record = recordArgument(evaluatedArguments(), key::inRecord);
    }
    const ScriptValue values = *takeDirectParameter();
    if (values.items().size() != labels.size()) throw core::ScriptError(kCountsDiffer);
    for (std::size_t i = 0; i < labels.size(); ++i) record.set(labels[i], Value(values.items()[i]));
    return record;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWLinkValuesWithLabels() {
  return std::make_unique<lists::SKWLinkValuesWithLabels>();
}

}  // namespace skerrow
