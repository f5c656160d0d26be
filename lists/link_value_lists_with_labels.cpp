// SKWLinkValueListsWithLabels: a list of records from a list of lists of values
// and the labels that all of them share.

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/list_input.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

constexpr core::ErrorEntry kNotAList = {1395, "One of the items of the target list is not a list."};
constexpr core::ErrorEntry kCountsDiffer = {1396,
                                            "Number of values does not match number of labels."};

class SKWLinkValueListsWithLabels final : public core::Command {
  void check() override { requireList(directParameter()); }

  std::optional<Value> compute() override {
    const auto labels = labelsArgument(evaluatedArguments(), "withLabels");
    std::vector<Value> records = core::unpackAEList(*takeDirectParameter()).takeItems();
    for (Value& item : records) {
      if (!item.isList()) throw core::ScriptError(kNotAList);
      const auto values = item.items();
      if (values.size() != labels.size()) throw core::ScriptError(kCountsDiffer);
      Record record;
      for (std::size_t i = 0; i < labels.size(); ++i) record.set(labels[i], values[i]);
      item = Value(std::move(record));
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
