#include "lists/modify_list.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "argument_keys/SKWModifyList.h"
#include "core/pack.h"
#include "core/unpack.h"
#include "lists/distinct.h"
#include "values/script_value.h"
#include "values/value_index.h"
#include "work/stopping.h"

namespace skerrow::lists {

using namespace literals;
using core::ErrorEntry;
using core::ScriptError;

namespace {

namespace key = argument_keys::SKWModifyList;
constexpr ErrorEntry kNotAList = {1121, "Direct parameter is not a list."};
constexpr ErrorEntry kExtraAfterFlattening = {
    1122, "Can't perform 'xtra cols to rows' after flattening."};
constexpr ErrorEntry kNoSuchItem = {1123, "Can't get item %d; list has %d items."};
constexpr ErrorEntry kNoSuchPlace = {1124, "Can't get item %d; list has %d items."};
constexpr ErrorEntry kStrangeDeletion = {1127, "Unknown error. Please report circumstances."};
constexpr ErrorEntry kBadGrouping = {1128, "The 'grouping every' value must be a positive number."};
constexpr ErrorEntry kBadSeparator = {
    1129, "Invalid merge parameter. The third item in the list must be a string."};
constexpr ErrorEntry kSwapNeedsTwo = {1281, "It takes two to swap."};
constexpr ErrorEntry kSwapOutOfRange = {
    1282, "One or both of the swap indexes are out of range; list has only %d items."};
// Kept: the message speaks of 0 also for an index that lies before the first item.
constexpr ErrorEntry kSwapOfZero = {1283, "You can't use 0 as an index for swapping items."};
constexpr ErrorEntry kCannotJoin = {1284, "Error packing array into list of descriptors."};
constexpr ErrorEntry kFirstRowNotAList = {
    1285, "Can't perform cols to rows on a list that doesn't consist solely of lists."};
constexpr ErrorEntry kUnequalRows = {
    1286, "Can't perform cols to rows when lists have differing item counts."};
constexpr ErrorEntry kRowNotAList = {
    1287, "Strangely, the list's list is not a list. Please report the circumstances."};
constexpr ErrorEntry kPaddedNotAList = {
    1288, "Can't perform pad arrays on a list that doesn't consist solely of lists."};
constexpr ErrorEntry kUnequalColumn = {1381,
                                       "The number of items in 'inserting in order' list doesn't "
                                       "match that of the main list."};
constexpr ErrorEntry kBadMerge = {1383,
                                  "Invalid merge indexes parameter; the list must contain only "
                                  "two integers or two integers plus a string."};
constexpr ErrorEntry kMergeOfOthers = {1384, "Unable to merge; one of the items is not a string."};
constexpr ErrorEntry kNothingToTranspose = {1385, "Can't perform cols to rows on an empty list."};
constexpr ErrorEntry kMergeNeedsIntegers = {1386, "Merge indexes must be integers."};
constexpr ErrorEntry kMergeOutOfRange = {
    1387, "At least one of the merge indexes is out of range or otherwise invalid."};
constexpr ErrorEntry kNotAListOfLists = {1388, "Target is not a list of lists."};

using Items = SKWModifyList::Items;

std::int64_t signedCount(std::size_t count) { return static_cast<std::int64_t>(count); }

// Iterators count in signed steps.
auto at(Items& list, std::size_t position) {
  return list.begin() + static_cast<std::ptrdiff_t>(position);
}

// A given value by its content, one level deep: the items of a given list stay
// as they were given.
Value content(const Value& item) {
  if (!item.isRaw()) return item;
  if (item.raw().type() == "list"_code) return core::unpackListShallow(item.raw());
  return core::unpack(item.raw()).value_or(Value());
}

bool holdsRaw(const Value& item) {
  return item.isRaw() || (item.isList() && std::ranges::any_of(item.items(), holdsRaw));
}

// The same at every depth, for comparing.
Value wholeContent(const Value& item) {
  if (!holdsRaw(item)) return item;
  if (item.isRaw()) return core::unpack(item.raw()).value_or(Value());
  Items items;
  items.reserve(item.items().size());
  for (const Value& one : item.items()) items.push_back(wholeContent(one));
  return items;
}

// The items of a row; fails with `otherwise` when it is no list.
Items takeRow(Value& row, const ErrorEntry& otherwise) {
  Value list = row.isRaw() ? content(row) : std::exchange(row, Value());
  if (!list.isList()) throw ScriptError(otherwise);
  return std::move(list).takeItems();
}

std::int64_t integerFrom(const Value& value) {
  const Value number = content(value);
  return number.isNumber() ? number.number().asInteger() : 0;
}

// What a change works with beside the list.
struct Givens {
  const Value& argument;
  std::int64_t beforeIndex;
  std::vector<Items>& remains;  // takes many items that are not needed any more
};

void pad(Items& list, const Givens& givens) {
  list = SKWModifyList::padArrays(std::move(list), givens.argument);
}

void transpose(Items& list, const Givens& /*givens*/) {
  list = SKWModifyList::colsToRowsIn(std::move(list));
}

// Removes from the highest position down. Positions are not merged: each repeat
// removes the item that has moved up to the place meanwhile.
void removePositions(Items& list, std::vector<std::pair<std::size_t, std::int64_t>> positions) {
  std::ranges::sort(positions, std::greater<>());
  Items kept;  // what stays of the items from `unseen` on, last item first
  std::size_t unseen = list.size();
  std::size_t count = list.size();
  for (const auto& [position, asGiven] : positions) {
    while (unseen > position) kept.push_back(std::move(list[--unseen]));
    if (kept.empty()) throw ScriptError(kNoSuchItem, asGiven, count);
    kept.pop_back();
    --count;
  }
  list.resize(unseen);
  list.insert(list.end(), std::make_move_iterator(kept.rbegin()),
              std::make_move_iterator(kept.rend()));
}

void deleteItems(Items& list, const Givens& givens) {
  const Value given = content(givens.argument);
  std::vector<std::pair<std::size_t, std::int64_t>> positions;
  const auto add = [&](Number number) {
    const std::int64_t index = number.asInteger();
    // What 64 bits cannot hold is out of range, and is shown as it was given.
    const bool isBeyond = !(std::abs(number.asReal()) < 9e18);
    if (isBeyond) throw ScriptError(kNoSuchItem, number, list.size());
    positions.emplace_back(SKWModifyList::adjustedIndex(index, list.size()), index);
  };
  if (given.isNumber()) {
    add(given.number());
  } else if (given.isList()) {
    for (const Value& item : given.items()) {
      const Value index = content(item);
      if (index.isNumber()) add(index.number());
    }
  } else {
    throw ScriptError(kStrangeDeletion);
  }
  removePositions(list, std::move(positions));
}

void flatten(Items& list, const Givens& /*givens*/) {
  Items flat;
  for (const Value& item : list) {
    if (!item.isList()) throw ScriptError(kNotAListOfLists);
    flat.insert(flat.end(), item.items().begin(), item.items().end());
  }
  list = std::move(flat);
}

void flattenFully(Items& list, const Givens& /*givens*/) {
  Items flat;
  SKWModifyList::addItemsWithinArray(list, flat);
  list = std::move(flat);
}

void group(Items& list, const Givens& givens) {
  const std::int64_t size = givens.argument.number().asInteger();
  if (size < 1) throw ScriptError(kBadGrouping);
  Items groups;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.size(), start + static_cast<std::size_t>(size));
    groups.emplace_back(
        Items(std::make_move_iterator(at(list, start)), std::make_move_iterator(at(list, end))));
    start = end;
  }
  list = std::move(groups);
}

void insertColumn(Items& list, const Givens& givens) {
  const Value items = core::unpackArrayOfAEDescs(givens.argument);
  list = SKWModifyList::insertInOrder(items.items(), std::move(list), givens.beforeIndex);
}

void insertItem(Items& list, const Givens& givens) {
  const std::size_t position = SKWModifyList::adjustedBeforeIndex(givens.beforeIndex, list.size());
  list.insert(at(list, position), givens.argument);
}

void insertItems(Items& list, const Givens& givens) {
  const std::size_t position = SKWModifyList::adjustedBeforeIndex(givens.beforeIndex, list.size());
  const auto items = givens.argument.items();
  list.insert(at(list, position), items.begin(), items.end());
}

// Keeps the first of equal items, if `isWanted`, in their order.
template <class IsWanted>
void keepDistinctWhere(Items& list, const Givens& givens, IsWanted&& isWanted) {
  Items contents;  // what items are compared by, where it is not the items themselves
  if (std::ranges::any_of(list, holdsRaw)) {
    contents.reserve(list.size());
    for (const Value& item : list) contents.push_back(wholeContent(item));
  }
  const Items& compared = contents.empty() ? list : contents;
  Items kept = takeDistinct(list, contents,
                            [&](std::size_t position) { return isWanted(compared[position]); });
  givens.remains.push_back(std::exchange(list, std::move(kept)));
}

void intersect(Items& list, const Givens& givens) {
  const ValueSet others(givens.argument.items());
  keepDistinctWhere(list, givens, [&others](const Value& item) { return others.contains(item); });
}

void makeUnique(Items& list, const Givens& givens) {
  keepDistinctWhere(list, givens, [](const Value& /*item*/) { return true; });
}

void subtract(Items& list, const Givens& givens) {
  const ValueSet others(givens.argument.items());
  keepDistinctWhere(list, givens, [&others](const Value& item) { return !others.contains(item); });
}

void merge(Items& list, const Givens& givens) {
  const Value indexes = core::unpackArrayOfAEDescs(givens.argument);
  list = SKWModifyList::mergeIndexes(indexes.items(), std::move(list));
}

void moveItem(Items& list, const Givens& givens) {
  const std::size_t to = SKWModifyList::adjustedBeforeIndex(givens.beforeIndex, list.size());
  // Kept: the source is checked by the rule for places too.
  const std::int64_t index = givens.argument.number().asInteger();
  const std::size_t from = SKWModifyList::adjustedBeforeIndex(index, list.size());
  if (from == list.size()) throw ScriptError(kNoSuchPlace, index, list.size());
  if (from < to) {
    std::rotate(at(list, from), at(list, from + 1), at(list, to));
  } else {
    std::rotate(at(list, to), at(list, from), at(list, from + 1));
  }
}

void removeBlanks(Items& list, const Givens& /*givens*/) {
  std::erase_if(list, SKWModifyList::itemIsAnEmpty);
}

void replaceMissing(Items& list, const Givens& givens) {
  std::ranges::replace_if(
      list, [](const Value& item) { return content(item).isNull(); }, givens.argument);
}

void swapItems(Items& list, const Givens& givens) {
  const auto indexes = givens.argument.items();
  if (indexes.size() != 2) throw ScriptError(kSwapNeedsTwo);
  const std::int64_t count = signedCount(list.size());
  std::int64_t places[] = {integerFrom(indexes[0]), integerFrom(indexes[1])};
  if (places[0] > count || places[1] > count) throw ScriptError(kSwapOutOfRange, count);
  for (std::int64_t& place : places) {
    if (place < 0) place += count + 1;
    if (place < 1) throw ScriptError(kSwapOfZero);
  }
  std::swap(list[static_cast<std::size_t>(places[0] - 1)],
            list[static_cast<std::size_t>(places[1] - 1)]);
}

void trimBlanks(Items& list, const Givens& /*givens*/) {
  while (!list.empty() && SKWModifyList::itemIsAnEmpty(list.back())) list.pop_back();
}

void reverse(Items& list, const Givens& /*givens*/) { std::ranges::reverse(list); }

// What asks for a change: its argument being there, or being true or not 0.
enum class Asked { byPresence, byValue };

enum class Reading { asGiven, unpackedBeforehand };

struct Change {
  core::ArgumentKey key;
  Asked asked;
  void (*apply)(Items& list, const Givens& givens);
  Reading reading = Reading::asGiven;
};

// Kept: the changes are made in this order, whatever the order of the call.
constexpr Change kChanges[] = {
    {key::addingPadding, Asked::byPresence, pad},
    {key::swapColsAndRows, Asked::byValue, transpose},
    {key::deletingIndexes, Asked::byPresence, deleteItems},
    {key::flattening, Asked::byValue, flatten},
    {key::fullFlattening, Asked::byValue, flattenFully},
    {key::groupingEvery, Asked::byPresence, group},
    {key::insertingInOrder, Asked::byPresence, insertColumn},
    {key::insertingItem, Asked::byPresence, insertItem},
    {key::insertingItems, Asked::byPresence, insertItems},
    {key::intersectingWithList, Asked::byPresence, intersect, Reading::unpackedBeforehand},
    {key::makingUnique, Asked::byValue, makeUnique},
    {key::mergingIndexes, Asked::byPresence, merge},
    {key::movingIndex, Asked::byValue, moveItem},
    {key::removingBlanks, Asked::byValue, removeBlanks},
    {key::replacingNullsWith, Asked::byPresence, replaceMissing},
    {key::subtractingList, Asked::byPresence, subtract, Reading::unpackedBeforehand},
    {key::swappingIndexes, Asked::byPresence, swapItems},
    {key::trimmingBlanks, Asked::byValue, trimBlanks},
    {key::xtraColsToRows, Asked::byValue, transpose},
    {key::reversingOrder, Asked::byValue, reverse},
};

}  // namespace

struct SKWModifyList::Requested {
  const Change& change;
  Value argument;
};

void SKWModifyList::check() {
  if (!directParameter() || directParameter()->type() != "list"_code) {
    throw ScriptError(kNotAList);
  }
  const core::Arguments& arguments = evaluatedArguments();
  if (arguments.isSet(key::xtraColsToRows) &&
      (arguments.isSet(key::flattening) || arguments.isSet(key::fullFlattening))) {
    throw ScriptError(kExtraAfterFlattening);
  }
  beforeIndex_ = arguments.integer(key::beforeIndex).value_or(1);
  for (const Change& change : kChanges) {
    const Value* argument = arguments.find(change.key);
    if (argument == nullptr) continue;
    if (change.asked == Asked::byValue && !arguments.isSet(change.key)) continue;
    requested_.push_back({change, *argument});
  }
}

std::optional<Value> SKWModifyList::compute() {
  for (Requested& requested : requested_) {
    if (requested.change.reading == Reading::unpackedBeforehand) {
      requested.argument = core::unpackArrayOfAEDescs(requested.argument);
    }
  }
  Value list = core::unpackAEList(*takeDirectParameter());
  if (!evaluatedArguments().isSet(key::doSublists)) return changed(std::move(list).takeItems());
  Items packed;
  for (Value& sublist : std::move(list).takeItems()) {
    work::stopIfAsked();
    packed.push_back(changed(takeRow(sublist, kNotAList)));
  }
  auto joined = core::makeListDescriptorForArrayOfDescriptors(packed);
  if (!joined) throw ScriptError(kCannotJoin);
  return Value(std::move(*joined));
}

Value SKWModifyList::changed(Items list) {
  for (const Requested& requested : requested_) {
    work::stopIfAsked();
    requested.change.apply(list, {requested.argument, beforeIndex_, remains_});
  }
  return core::makeDescriptorForArray(std::move(list));
}

std::size_t SKWModifyList::adjustedIndex(std::int64_t index, std::size_t forArrayOfCount) {
  const std::int64_t count = signedCount(forArrayOfCount);
  if (index > count || index < -count || index == 0) throw ScriptError(kNoSuchItem, index, count);
  return static_cast<std::size_t>(index > 0 ? index - 1 : count + index);
}

std::size_t SKWModifyList::adjustedBeforeIndex(std::int64_t index, std::size_t forArrayOfCount) {
  const std::int64_t count = signedCount(forArrayOfCount);
  if (index > count + 1 || index < -count || index == 0) {
    throw ScriptError(kNoSuchPlace, index, count);
  }
  return static_cast<std::size_t>(index > 0 ? index - 1 : count + index);
}

bool SKWModifyList::itemIsAnEmpty(const Value& item) {
  switch (item.kind()) {
    case Kind::null:
      return true;
    case Kind::text:
      return item.text().empty();
    case Kind::list:
      return std::ranges::all_of(item.items(), itemIsAnEmpty);
    case Kind::raw: {
      const Value given = content(item);
      return !given.isRaw() && itemIsAnEmpty(given);
    }
    default:
      return false;
  }
}

Items SKWModifyList::padArrays(Items rows, const Value& usingPadding) {
  std::size_t longest = 0;
  for (const Value& row : rows) {
    if (!row.isList()) throw ScriptError(kPaddedNotAList);
    longest = std::max(longest, row.items().size());
  }
  for (Value& row : rows) {
    if (row.items().size() == longest) continue;
    Items items = std::exchange(row, Value()).takeItems();
    items.resize(longest, usingPadding);
    row = std::move(items);
  }
  return rows;
}

Items SKWModifyList::colsToRowsIn(Items rows) {
  if (rows.empty()) throw ScriptError(kNothingToTranspose);
  const Value first = content(rows.front());
  if (!first.isList()) throw ScriptError(kFirstRowNotAList);
  std::vector<Items> taken;
  taken.reserve(rows.size());
  for (Value& row : rows) {
    taken.push_back(takeRow(row, kRowNotAList));
    if (taken.back().size() != first.items().size()) throw ScriptError(kUnequalRows);
  }
  std::vector<Items> columns(first.items().size());
  for (Items& column : columns) column.reserve(taken.size());
  for (Items& row : taken) {
    for (std::size_t i = 0; i < row.size(); ++i) columns[i].push_back(std::move(row[i]));
    row = Items();
  }
  return {std::make_move_iterator(columns.begin()), std::make_move_iterator(columns.end())};
}

Items SKWModifyList::insertInOrder(std::span<const Value> items, Items inList,
                                   std::int64_t beforeIndex) {
  // Kept: this failure is recorded and never answered; the script waits until its time-out.
  if (items.size() != inList.size()) leaveUnanswered(ScriptError(kUnequalColumn));
  for (std::size_t i = 0; i < inList.size(); ++i) {
    Items row = takeRow(inList[i], kNotAListOfLists);
    row.insert(at(row, adjustedBeforeIndex(beforeIndex, row.size())), items[i]);
    inList[i] = std::move(row);
  }
  return inList;
}

Items SKWModifyList::mergeIndexes(std::span<const Value> indexes, Items inList) {
  if (indexes.size() != 2 && indexes.size() != 3) throw ScriptError(kBadMerge);
  if (!indexes[0].isNumber() || !indexes[1].isNumber()) throw ScriptError(kMergeNeedsIntegers);
  const std::int64_t first = indexes[0].number().asInteger();
  const std::int64_t second = indexes[1].number().asInteger();
  const std::int64_t count = signedCount(inList.size());
  if (first < 1 || first > count || second < 1 || second > count || first == second) {
    throw ScriptError(kMergeOutOfRange);
  }
  if (indexes.size() == 3 && !indexes[2].isText()) throw ScriptError(kBadSeparator);
  Value& into = inList[static_cast<std::size_t>(first - 1)];
  const Value a = content(into);
  const Value b = content(inList[static_cast<std::size_t>(second - 1)]);
  if (!a.isText() || !b.isText()) throw ScriptError(kMergeOfOthers);
  std::u16string merged(a.text());
  if (indexes.size() == 3 && !a.text().empty() && !b.text().empty()) merged += indexes[2].text();
  merged += b.text();
  into = Value(std::move(merged));
  inList.erase(at(inList, static_cast<std::size_t>(second - 1)));
  return inList;
}

void SKWModifyList::addItemsWithinArray(std::span<const Value> list, Items& toTarget) {
  for (const Value& item : list) {
    const Value inside = content(item);
    if (inside.isList()) {
      addItemsWithinArray(inside.items(), toTarget);
    } else {
      toTarget.push_back(item);
    }
  }
}

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWModifyList() {
  return std::make_unique<lists::SKWModifyList>();
}

}  // namespace skerrow
