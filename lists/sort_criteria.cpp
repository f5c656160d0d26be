#include "lists/sort_criteria.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <string_view>
#include <utility>

#include "core/unpack.h"
#include "foundation/number/value_order.h"
#include "foundation/text/user_preferences.h"

namespace skerrow::lists {

using foundation::SortDirection;
using foundation::TextComparison;

namespace {

constexpr std::uint32_t kRankOfOthers = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t kFirstOption = 0x61E56531;  // sortPlain, and on from there

// Dense ranks by numbers that a real holds exactly; nothing where one is not such.
std::optional<std::vector<std::uint32_t>> realRanks(const std::vector<const Value*>& values) {
  struct Entry {
    double real;
    std::uint32_t position;
  };
  constexpr double kExactBelow = 0x1p53;
  std::vector<Entry> entries;
  entries.reserve(values.size());
  for (const Value* value : values) {
    if (!value->isNumber()) return std::nullopt;
    const double real = value->number().asReal();
    const bool isExact =
        value->number().isReal() ? !std::isnan(real) : std::abs(real) < kExactBelow;
    if (!isExact) return std::nullopt;
    entries.push_back({real, static_cast<std::uint32_t>(entries.size())});
  }
  std::ranges::sort(entries, {}, &Entry::real);
  std::vector<std::uint32_t> ranks(values.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i > 0 && entries[i - 1].real < entries[i].real) ++rank;
    ranks[entries[i].position] = rank;
  }
  return ranks;
}

// Dense ranks of values that are there, by their plain order.
std::vector<std::uint32_t> plainRanks(const std::vector<const Value*>& values) {
  if (auto ranks = realRanks(values)) return std::move(*ranks);
  std::vector<std::uint32_t> order(values.size());
  std::iota(order.begin(), order.end(), 0U);
  const auto isLess = [&values](std::uint32_t a, std::uint32_t b) {
    return plainOrder(*values[a], *values[b]) < 0;
  };
  std::ranges::sort(order, isLess);
  std::vector<std::uint32_t> ranks(values.size());
  std::uint32_t rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && isLess(order[i - 1], order[i])) ++rank;
    ranks[order[i]] = rank;
  }
  return ranks;
}

std::vector<std::uint32_t> textRanks(const std::vector<const Value*>& values,
                                     const foundation::TextComparator& comparator) {
  std::vector<std::u16string_view> texts;
  texts.reserve(values.size());
  for (const Value* value : values) texts.push_back(value->text());
  return foundation::sortRanks(texts, comparator);
}

}  // namespace

std::optional<TextComparison> comparisonFromCode(std::uint32_t code) {
  const std::uint32_t place = code - kFirstOption;
  if (place > static_cast<std::uint32_t>(TextComparison::sortLocalizedStandard)) {
    return std::nullopt;
  }
  return static_cast<TextComparison>(place);
}

std::uint32_t sortingOption(const core::Arguments& arguments, core::ArgumentKey key) {
  const auto code = arguments.integer(key);
  return code ? static_cast<std::uint32_t>(*code) : kStandardOption;
}

std::vector<SortDirection> sortDirections(const core::Arguments& arguments, core::ArgumentKey key,
                                          std::size_t count) {
  std::vector<SortDirection> directions;
  if (const Value* given = arguments.find(key)) {
    for (const Value& one : given->items()) {
      const auto number = core::numberFromScriptValue(one.raw());
      directions.push_back(number && number->isNonZero() ? SortDirection::ascending
                                                         : SortDirection::descending);
    }
  }
  directions.resize(count, directions.empty() ? SortDirection::ascending : directions.back());
  return directions;
}

SortKind sortKindOf(const Value& value) {
  switch (value.kind()) {
    case Kind::number:
      return SortKind::number;
    case Kind::text:
      return SortKind::text;
    case Kind::date:
      return SortKind::date;
    default:
      return SortKind::other;
  }
}

std::weak_ordering plainOrder(const Value& a, const Value& b) noexcept {
  const std::partial_ordering order = foundation::compareValues(a, b);
  if (order < 0) return std::weak_ordering::less;
  if (order > 0) return std::weak_ordering::greater;
  if (order == 0) return std::weak_ordering::equivalent;
  const auto isNumber = [](const Value& value) {
    return !value.isNumber() || !std::isnan(value.number().asReal());
  };
  return isNumber(a) <=> isNumber(b);
}

foundation::TextComparator comparatorFor(TextComparison comparison,
                                         const platform::Environment& environment) {
  const bool isByLanguage =
      comparison != TextComparison::sortPlain && comparison != TextComparison::sortCaseInsensitive;
  return foundation::TextComparator(
      comparison, isByLanguage ? foundation::userLocale(environment) : std::string());
}

void SortCriteria::add(const std::vector<const Value*>& values, SortKind kind,
                       TextComparison comparison, SortDirection direction) {
  std::vector<const Value*> present;
  present.reserve(values.size());
  const auto isOfKind = [kind](const Value* value) {
    return value != nullptr && sortKindOf(*value) == kind;
  };
  std::ranges::copy_if(values, std::back_inserter(present), isOfKind);
  const std::vector<std::uint32_t> presentRanks =
      kind == SortKind::text ? textRanks(present, comparatorFor(comparison, environment_))
                             : plainRanks(present);
  std::vector<std::uint32_t> ranks(itemCount_, 0);
  std::size_t next = 0;
  for (std::size_t i = 0; i < itemCount_; ++i) {
    if (values[i] == nullptr) continue;
    ranks[i] = isOfKind(values[i]) ? presentRanks[next++] + 1 : kRankOfOthers;
  }
  criteria_.push_back({std::move(ranks), direction});
}

bool SortCriteria::areTied(std::uint32_t a, std::uint32_t b, std::size_t count) const {
  return std::all_of(
      criteria_.begin(), criteria_.begin() + static_cast<std::ptrdiff_t>(count),
      [a, b](const Criterion& criterion) { return criterion.ranks[a] == criterion.ranks[b]; });
}

std::uint32_t SortCriteria::rankOf(std::size_t criterion, std::uint32_t item) const {
  const Criterion& by = criteria_[criterion];
  return by.direction == SortDirection::ascending ? by.ranks[item] : ~by.ranks[item];
}

std::vector<std::uint32_t> SortCriteria::positions() const {
  // The ranks of the first two keys lie beside the position, as most comparisons
  // need no more.
  struct Entry {
    std::uint64_t ranks;
    std::uint32_t position;
  };
  constexpr std::size_t kBeside = 2;
  std::vector<Entry> entries(itemCount_);
  for (std::uint32_t i = 0; i < itemCount_; ++i) {
    entries[i] = {0, i};
    for (std::size_t key = 0; key < kBeside; ++key) {
      entries[i].ranks = entries[i].ranks << 32U | (key < criteria_.size() ? rankOf(key, i) : 0);
    }
  }
  std::ranges::sort(entries, [this](const Entry& a, const Entry& b) {
    if (a.ranks != b.ranks) return a.ranks < b.ranks;
    for (std::size_t key = kBeside; key < criteria_.size(); ++key) {
      const std::uint32_t first = rankOf(key, a.position);
      const std::uint32_t second = rankOf(key, b.position);
      if (first != second) return first < second;
    }
    return a.position < b.position;
  });
  std::vector<std::uint32_t> order;
  order.reserve(itemCount_);
  for (const Entry& entry : entries) order.push_back(entry.position);
  return order;
}

std::vector<Value> inOrder(std::vector<Value> items, const std::vector<std::uint32_t>& positions) {
  // The items are called for from all over the list, so some are on their way early.
  constexpr std::size_t kAhead = 16;
  std::vector<Value> ordered;
  ordered.reserve(items.size());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (i + kAhead < positions.size()) __builtin_prefetch(&items[positions[i + kAhead]]);
    ordered.push_back(std::move(items[positions[i]]));
  }
  return ordered;
}

}  // namespace skerrow::lists
