// SKWMungeListOfLists: sorts a list of lists by the items at one or more positions.

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "argument_keys/SKWMungeListOfLists.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/distinct.h"
#include "lists/list_input.h"
#include "lists/sort_criteria.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWMungeListOfLists;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kNotAList = {1051, "One or more items in the list is not a list."};
constexpr ErrorEntry kNoIndexes = {
    1052,
    "'indexes' parameter not supplied. Sublists can't be sorted without knowing the index of the "
    "item to sort on."};
constexpr ErrorEntry kEmptyIndexes = {1053, "'indexes' parameter is an empty list."};
// Kept: the number has five digits.
constexpr ErrorEntry kIndexTooSmall = {
    10543,
    "One or more of the values provided for indexes is less than 1. All values must be greater "
    "than 0."};
constexpr ErrorEntry kTooFewItems = {
    1055, "One or more sublists has fewer items than one of the sorting indexes."};
// Kept: the number depends on whether repeated sublists are dropped.
constexpr ErrorEntry kUnsortableWhenUnique = {
    1055,
    "The items at one or more of the sorting indexes are not of a sortable class (text, numbers, "
    "dates, booleans)."};
constexpr ErrorEntry kUnsortable = {
    1056,
    "The items at one or more of the sorting indexes are not of a sortable class (text, numbers, "
    "dates, booleans)."};
constexpr ErrorEntry kSeveralClasses = {
    1057, "The items at one or more of the sorting indexes differ in class."};

class SKWMungeListOfLists final : public core::Command {
  void check() override {
    const core::Arguments& arguments = evaluatedArguments();
    const Value* indexes = arguments.find(key::listIndexes);
    if (indexes == nullptr) throw ScriptError(kNoIndexes);
    if (indexes->items().empty()) throw ScriptError(kEmptyIndexes);
    for (const Value& index : indexes->items()) {
      indexes_.push_back(core::numberFromScriptValue(index.raw())->asInteger());
    }
    directions_ = sortDirections(arguments, key::sortDirection, indexes_.size());
    comparison_ = comparisonFromCode(sortingOption(arguments, key::listMungeOption))
                      .value_or(foundation::TextComparison::sortPlain);
    isUnique_ = arguments.isSet(key::uniqueOption);
  }

  std::optional<Value> compute() override {
    std::vector<Items> lists = sublists();
    SortCriteria criteria(lists.size(), context().platform.environment);
    for (std::size_t i = 0; i < indexes_.size(); ++i) addCriterion(criteria, lists, i);
    const auto positions = criteria.positions();
    Items sorted;
    sorted.reserve(lists.size());
    for (const std::uint32_t position : positions) sorted.emplace_back(std::move(lists[position]));
    return sorted;
  }

  // Unpacked whole when they are to be compared, else only as far as they are sorted by.
  std::vector<Items> sublists() {
    const ScriptValue direct = *takeDirectParameter();
    Items unpacked;
    unpacked.reserve(direct.items().size());
    for (const ScriptValue& item : direct.items()) {
      unpacked.push_back(isUnique_         ? core::unpack(item).value_or(Value())
                         : item.hasItems() ? core::unpackListShallow(item)
                                           : Value());
      if (!unpacked.back().isList()) throw ScriptError(kNotAList);
    }
    if (isUnique_) keepDistinct(unpacked);
    std::vector<Items> lists;
    lists.reserve(unpacked.size());
    for (Value& list : unpacked) lists.push_back(std::move(list).takeItems());
    return lists;
  }

  void addCriterion(SortCriteria& criteria, std::vector<Items>& lists, std::size_t key) const {
    if (indexes_[key] < 1) throw ScriptError(kIndexTooSmall);
    const auto position = static_cast<std::size_t>(indexes_[key] - 1);
    std::vector<const Value*> values;
    values.reserve(lists.size());
    for (Items& list : lists) {
      if (position >= list.size()) throw ScriptError(kTooFewItems);
      Value& item = list[position];
      if (item.isRaw()) item = core::unpackTextNumberDate(item.raw()).value.value_or(Value());
      const SortKind kind = sortKindOf(item);
      if (kind == SortKind::other) {
        throw ScriptError(isUnique_ ? kUnsortableWhenUnique : kUnsortable);
      }
      if (!values.empty() && kind != sortKindOf(*values.front())) {
        throw ScriptError(kSeveralClasses);
      }
      values.push_back(&item);
    }
    const SortKind kind = values.empty() ? SortKind::text : sortKindOf(*values.front());
    criteria.add(values, kind, comparison_, directions_[key]);
  }

  std::vector<std::int64_t> indexes_;
  std::vector<foundation::SortDirection> directions_;
  foundation::TextComparison comparison_ = foundation::TextComparison::sortPlain;
  bool isUnique_ = false;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWMungeListOfLists() {
  return std::make_unique<lists::SKWMungeListOfLists>();
}

}  // namespace skerrow
