// SKWLookInListFor: the positions at which one or several items stand in a list.

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWLookInListFor.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/list_input.h"
#include "values/value_index.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWLookInListFor;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kBothGiven = {
    1161, "You can't specify both 'matching' and 'matching items' parameters."};
constexpr ErrorEntry kNoneGiven = {
    1162, "You must provide either the 'matching' or the 'matching items' parameters."};
constexpr ErrorEntry kNotAList = {1163, "Not all elements are lists."};

class SKWLookInListFor final : public core::Command {
  void check() override {
    // Kept: an empty list answers with the position 0, whatever else is given.
    if (directParameter()->items().empty()) {
      answerAtOnce(Items{Number::signed32(0)});
      return;
    }
    const core::Arguments& arguments = evaluatedArguments();
    const Value* item = arguments.find(key::matchingItem);
    const Value* items = arguments.find(key::matchingItems);
    if (item != nullptr && items != nullptr) throw ScriptError(kBothGiven);
    if (item == nullptr && items == nullptr) throw ScriptError(kNoneGiven);
    targets_ = item != nullptr ? Value(Items{*item}) : *items;
    isInverted_ = arguments.isSet(key::invertingValue);
    isOnlyFirst_ = arguments.isSet(key::onlyFirst);
    isInSublists_ = arguments.isSet(key::doSublists);
  }

  std::optional<Value> compute() override {
    const Value list = core::unpackAEList(*takeDirectParameter());
    const Value wanted = core::unpackArrayOfAEDescs(targets_);
    const ValueSet targets(wanted.items());
    if (!isInSublists_) return positionsIn(list.items(), targets);
    if (!std::ranges::all_of(list.items(), &Value::isList)) throw ScriptError(kNotAList);
    Items found;
    found.reserve(list.items().size());
    for (const Value& sublist : list.items()) {
      found.push_back(positionsIn(sublist.items(), targets));
    }
    return found;
  }

  [[nodiscard]] Value positionsIn(std::span<const Value> items, const ValueSet& targets) const {
    Items positions;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (targets.contains(items[i]) == isInverted_) continue;
      positions.emplace_back(Number::signed64(static_cast<std::int64_t>(i) + 1));
      if (isOnlyFirst_) break;
    }
    return positions;
  }

  Value targets_;
  bool isInverted_ = false;
  bool isOnlyFirst_ = false;
  bool isInSublists_ = false;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWLookInListFor() {
  return std::make_unique<lists::SKWLookInListFor>();
}

}  // namespace skerrow
