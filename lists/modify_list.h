#pragma once
// SKWModifyList: edits a list in one call. Any number of changes may be asked
// for at once; they are made in one fixed order, whatever the order of the
// arguments, and the changed list is the result. Every change is linear in the
// list and in what is given with it.
//
// Given values (what is inserted, padded with or put in the place of missing
// values) stay in the list as they came, so that they are packed unchanged;
// later changes see them by their content. Kept: a column that is inserted in
// order is unpacked, and packed again.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/command.h"
#include "values/value.h"

namespace skerrow::lists {

class SKWModifyList final : public core::Command {
 public:
  using Items = std::vector<Value>;

  // The command's own operations. Positions given by scripts count from 1, or
  // from the end when negative; positions inside count from 0. Each throws the
  // script error of its failure.

  /// The position of an existing item. Fails with 1123.
  static std::size_t adjustedIndex(std::int64_t index, std::size_t forArrayOfCount);
  /// The position before which to insert; count + 1 appends. Fails with 1124.
  static std::size_t adjustedBeforeIndex(std::int64_t index, std::size_t forArrayOfCount);
  /// Whether it is missing value, an empty text, or a list of nothing but empty items.
  static bool itemIsAnEmpty(const Value& item);
  /// Brings all rows to the length of the longest.
  static Items padArrays(Items rows, const Value& usingPadding);
  /// Transposes a list of rows of equal length.
  static Items colsToRowsIn(Items rows);
  /// Inserts the i-th item into the i-th row, which makes a new column.
  static Items insertInOrder(std::span<const Value> items, Items inList, std::int64_t beforeIndex);
  /// Joins the texts at two positions into one, at the first of them.
  static Items mergeIndexes(std::span<const Value> indexes, Items inList);
  /// Appends everything in the list that is no list itself, at whatever depth.
  static void addItemsWithinArray(std::span<const Value> list, Items& toTarget);

 protected:
  void check() override;
  std::optional<Value> compute() override;

 private:
  [[nodiscard]] Value changed(Items list);

  struct Requested;
  std::vector<Requested> requested_;  // the changes asked for, in the order in which they are made
  std::int64_t beforeIndex_ = 1;
  // What is given back with the command keeps no script waiting.
  std::vector<Items> remains_;
};

}  // namespace skerrow::lists
