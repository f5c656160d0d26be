// SKWLinkValueListsWithLabels: a list of records from a list of lists of values
// and the labels that all of them share.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWLinkValueListsWithLabels.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/list_input.h"
#include "values/keys.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWLinkValueListsWithLabels;

constexpr core::ErrorEntry kNotAList = {1395, "One of the items of the target list is not a list."};
constexpr core::ErrorEntry kCountsDiffer = {1396,
                                            "Number of values does not match number of labels."};

class SKWLinkValueListsWithLabels final : public core::Command {
  std::optional<Value> compute() override {
    const auto labels = labelsArgument(evaluatedArguments(), key::withLabels);
    Keys keys;                        // which all the records share
    std::vector<std::size_t> places;  // of each label; where one is repeated, the last value counts
    for (const Value& label : labels) {
      const std::size_t place = keys.position(label);
      places.push_back(place == Keys::kNone ? keys.count() : place);
      if (place == Keys::kNone) keys.append(label);
    }
    std::vector<Value> records = core::unpackAEList(*takeDirectParameter()).takeItems();
    for (Value& item : records) {
      if (!item.isList()) throw core::ScriptError(kNotAList);
      std::vector<Value> values = std::move(item).takeItems();
      if (values.size() != labels.size()) throw core::ScriptError(kCountsDiffer);
      for (std::size_t i = 0; i < places.size(); ++i) values[places[i]] = std::move(values[i]);
      values.resize(keys.count());
      item = Record(keys, std::move(values));
    }
    return records;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWLinkValueListsWithLabels() {
  return std::make_unique<lists::SKWLinkValueListsWithLabels>();
}

}  // namespace skerrow
