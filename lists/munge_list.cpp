// SKWMungeList: sorts a flat list, with or without its repeated items.

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "argument_keys/SKWMungeList.h"
#include "core/command.h"
#include "core/unpack.h"
#include "foundation/collation/text_sort.h"
#include "lists/distinct.h"
#include "lists/list_input.h"
#include "lists/sort_criteria.h"

namespace skerrow::lists {

namespace {

namespace key = argument_keys::SKWMungeList;
using foundation::SortDirection;
using foundation::TextComparison;
using Items = std::vector<Value>;

void sortTexts(Items& texts, const foundation::TextComparator& comparator,
               SortDirection direction) {
  std::vector<std::u16string_view> views;
  views.reserve(texts.size());
  for (const Value& text : texts) views.push_back(text.text());
  const auto positions = foundation::sortedPositions(views, comparator, direction);
  texts = inOrder(std::move(texts), positions);
}

void sortPlainly(Items& items, SortDirection direction) {
  std::ranges::stable_sort(items, [direction](const Value& a, const Value& b) {
    const auto order = plainOrder(a, b);
    return direction == SortDirection::ascending ? order < 0 : order > 0;
  });
}

class SKWMungeList final : public core::Command {
  void check() override {
    const core::Arguments& arguments = evaluatedArguments();
    isUnique_ = arguments.isSet(key::uniqueOption);
    isAscending_ = !arguments.has(key::sortDirection) || arguments.isSet(key::sortDirection);
    comparison_ = comparisonFromCode(sortingOption(arguments, key::listMungeOption))
                      .value_or(TextComparison::sortPlain);
  }

  // Items of several kinds are sorted kind by kind, each kind in its own order.
  std::optional<Value> compute() override {
    Items list = core::unpackAEList(*takeDirectParameter()).takeItems();
    if (list.empty()) return list;
    const auto direction = isAscending_ ? SortDirection::ascending : SortDirection::descending;
    const auto comparison = list.front().isText() ? comparison_ : TextComparison::sortPlain;
    if (isUnique_) keepDistinct(list);
    const std::size_t count = list.size();
    std::array<Items, 4> kinds;  // by SortKind
    for (Value& item : list) {
      kinds[static_cast<std::size_t>(sortKindOf(item))].push_back(std::move(item));
    }
    sortPlainly(kinds[static_cast<std::size_t>(SortKind::number)], direction);
    sortPlainly(kinds[static_cast<std::size_t>(SortKind::date)], direction);
    sortTexts(kinds[static_cast<std::size_t>(SortKind::text)],
              comparatorFor(comparison, context().platform.environment), direction);
    if (!isAscending_) std::ranges::reverse(kinds);
    list.clear();
    list.reserve(count);
    for (Items& kind : kinds) std::ranges::move(kind, std::back_inserter(list));
    return list;
  }

  bool isUnique_ = false;
  bool isAscending_ = true;
  TextComparison comparison_ = TextComparison::sortPlain;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWMungeList() {
  return std::make_unique<lists::SKWMungeList>();
}

}  // namespace skerrow
