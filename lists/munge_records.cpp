// SKWMungeRecords: sorts a list of records by the values under one or more labels.

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWMungeRecords.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/distinct.h"
#include "lists/list_input.h"
#include "lists/sort_criteria.h"
#include "values/record.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWMungeRecords;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kNotARecord = {1041, "One or more items in the list is not a record."};
constexpr ErrorEntry kNoKeys = {
    1042,
    "'label key' parameter not supplied. Records can't be sorted without knowing the label for "
    "the value on which to sort."};
constexpr ErrorEntry kSeveralClasses = {
    1043, "Unable to sort on a key that has values of more than one class."};
constexpr ErrorEntry kUnknownOption = {1044, "Unknown error."};
// Kept: the message of 1043 under a number of its own.
constexpr ErrorEntry kUnsortable = {
    1045, "Unable to sort on a key that has values of more than one class."};
constexpr ErrorEntry kKeyNotText = {1046, "Invalid type for keys."};

class SKWMungeRecords final : public core::Command {
  void check() override {
    const core::Arguments& arguments = evaluatedArguments();
    const Value* keys = arguments.find(key::recordKeys);
    if (keys == nullptr) throw ScriptError(kNoKeys);
    for (const Value& key : keys->items()) {
      auto text = core::textFromScriptValue(key.raw());
      if (!text) throw ScriptError(kKeyNotText);
      labels_.emplace_back(std::move(*text));
    }
    directions_ = sortDirections(arguments, key::sortDirection, labels_.size());
    option_ = sortingOption(arguments, key::listMungeOption);
    isUnique_ = arguments.isSet(key::uniqueOption);
  }

  std::optional<Value> compute() override {
    Items records = core::unpackAEList(*takeDirectParameter()).takeItems();
    if (!std::ranges::all_of(records, &Value::isRecord)) throw ScriptError(kNotARecord);
    if (isUnique_) keepDistinct(records);
    std::vector<Key> keys;
    keys.reserve(labels_.size());
    for (const Value& label : labels_) keys.push_back(keyFrom(records, label));
    const auto comparison = comparisonFromCode(option_);
    const auto isText = [](const Key& key) { return key.kind == SortKind::text; };
    if (!comparison && std::ranges::any_of(keys, isText)) throw ScriptError(kUnknownOption);
    SortCriteria criteria(records.size(), context().platform.environment);
    for (std::size_t i = 0; i < keys.size(); ++i) {
      criteria.add(keys[i].values, keys[i].kind,
                   comparison.value_or(foundation::TextComparison::sortPlain), directions_[i]);
    }
    const std::vector<std::uint32_t> order = criteria.positions();
    for (std::size_t i = 0; i < keys.size(); ++i) {
      if (keys[i].hasOthers) requireSortable(keys[i], order, i, criteria);
    }
    return inOrder(std::move(records), order);
  }

  // What the records have under a label: null where they have nothing.
  struct Key {
    std::vector<const Value*> values;
    SortKind kind = SortKind::text;
    bool hasOthers = false;  // values that cannot be compared, such as lists
  };

  // Values that cannot be compared may stand only where the earlier keys leave
  // nothing to compare them with.
  static void requireSortable(const Key& key, const std::vector<std::uint32_t>& order,
                              std::size_t earlierKeys, const SortCriteria& criteria) {
    std::size_t presentCount = 0;
    bool hasOthers = false;
    for (std::size_t i = 0; i < order.size(); ++i) {
      if (i == 0 || !criteria.areTied(order[i - 1], order[i], earlierKeys)) {
        presentCount = 0;
        hasOthers = false;
      }
      const Value* value = key.values[order[i]];
      if (value == nullptr) continue;
      ++presentCount;
      hasOthers = hasOthers || sortKindOf(*value) == SortKind::other;
      if (hasOthers && presentCount > 1) throw ScriptError(kUnsortable);
    }
  }

  static Key keyFrom(const Items& records, const Value& label) {
    Key key;
    key.values.reserve(records.size());
    bool hasTexts = false;
    bool hasNumbers = false;
    bool hasDates = false;
    for (const Value& record : records) {
      const Value* value = record.record().find(label);
      if (value != nullptr && value->isNull()) value = nullptr;
      key.values.push_back(value);
      if (value == nullptr) continue;
      const SortKind kind = sortKindOf(*value);
      hasTexts = hasTexts || kind == SortKind::text;
      hasNumbers = hasNumbers || kind == SortKind::number;
      hasDates = hasDates || kind == SortKind::date;
      key.hasOthers = key.hasOthers || kind == SortKind::other;
    }
    if (hasTexts + hasNumbers + hasDates > 1) throw ScriptError(kSeveralClasses);
    key.kind = hasDates ? SortKind::date : hasNumbers ? SortKind::number : SortKind::text;
    return key;
  }

  Items labels_;
  std::vector<foundation::SortDirection> directions_;
  std::uint32_t option_ = kStandardOption;
  bool isUnique_ = false;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWMungeRecords() {
  return std::make_unique<lists::SKWMungeRecords>();
}

}  // namespace skerrow
