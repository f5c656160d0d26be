#include "foundation/key_path/collection_operator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "foundation/number/number_text.h"
#include "foundation/number/value_order.h"
#include "values/value_index.h"

namespace skerrow::foundation {

namespace {

std::optional<std::vector<double>> numbersAmong(std::span<const Value> items) {
  std::vector<double> numbers;
  numbers.reserve(items.size());
  for (const Value& item : items) {
    if (item.isNull()) continue;
    const std::optional<double> number = summand(item);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
  }
  return numbers;
}

}  // namespace

std::optional<double> summand(const Value& item) {
  if (item.isNumber()) return item.number().asReal();
  if (item.isNull()) return 0.0;
  if (!item.isText()) return std::nullopt;
  const std::optional<Number> number = numberFromText(item.text());
  if (!number) return std::nullopt;
  return number->asReal();
}

std::optional<double> sumOf(std::span<const Value> items) {
  double sum = 0;
  for (const Value& item : items) {
    const std::optional<double> number = summand(item);
    if (!number) return std::nullopt;
    sum += *number;
  }
  return sum;
}

std::optional<double> averageOf(std::span<const Value> items) {
  const std::optional<double> sum = sumOf(items);
  if (!sum || items.empty()) return sum;
  return *sum / static_cast<double>(items.size());
}

ExtremeItem extremeOf(Extreme extreme, std::span<const Value> items) {
  ExtremeItem found;
  for (const Value& item : items) {
    if (item.isNull()) continue;
    // A single item is compared with itself, as it must be of a kind with an order.
    const std::partial_ordering order = compareValues(item, found.item ? *found.item : item);
    if (order == std::partial_ordering::unordered) return {nullptr, false};
    if (!found.item || (extreme == Extreme::least ? order < 0 : order > 0)) found.item = &item;
  }
  return found;
}

std::vector<Value> distinct(std::span<const Value> items) { return ValueSet(items).values(); }

std::optional<Value> medianOf(std::span<const Value> items) {
  std::optional<std::vector<double>> numbers = numbersAmong(items);
  if (!numbers) return std::nullopt;
  if (numbers->empty()) return Value();
  const auto middle = numbers->begin() + static_cast<std::ptrdiff_t>(numbers->size() / 2);
  std::ranges::nth_element(*numbers, middle);
  if (numbers->size() % 2 == 1) return Value(Number::real(*middle));
  const double below = *std::max_element(numbers->begin(), middle);
  return Value(Number::real(below + (*middle - below) / 2));
}

std::vector<Value> modesOf(std::span<const Value> items) {
  std::vector<const Value*> values;
  std::vector<std::size_t> counts;
  ValueIndex index;
  const auto valueAt = [&](std::size_t position) -> const Value& { return *values[position]; };
  for (const Value& item : items) {
    if (item.isNull()) continue;
    const std::size_t position = index.findOrInsert(item, values.size(), valueAt);
    if (position != ValueIndex::kNone) {
      ++counts[position];
      continue;
    }
    values.push_back(&item);
    counts.push_back(1);
  }
  std::vector<Value> modes;
  const std::size_t most = counts.empty() ? 0 : *std::ranges::max_element(counts);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (counts[i] == most) modes.push_back(*values[i]);
  }
  return modes;
}

std::optional<Value> standardDeviationOf(std::span<const Value> items) {
  const std::optional<std::vector<double>> numbers = numbersAmong(items);
  if (!numbers) return std::nullopt;
  if (numbers->empty()) return Value();
  const auto count = static_cast<double>(numbers->size());
  double sum = 0;
  for (const double number : *numbers) sum += number;
  const double mean = sum / count;
  double squares = 0;
  for (const double number : *numbers) squares += (number - mean) * (number - mean);
  return Value(Number::real(std::sqrt(squares / count)));
}

}  // namespace skerrow::foundation
