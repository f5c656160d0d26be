// SKWSummarizeNumbers: the sum, the greatest and the least of a list of numbers,
// or of each list in a list of lists.

#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "lists/list_input.h"

namespace skerrow::lists {

namespace {

using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kNeitherListNorNumber = {1091, "Item is not a list or number."};
constexpr ErrorEntry kNotANumber = {1092, "List item is not a number."};

Value triple(double sum, double maximum, double minimum) {
  return Items{Number::real(sum), Number::real(maximum), Number::real(minimum)};
}

Value sumMaxMin(std::span<const Value> list) {
  double sum = 0;
  // Kept: the greatest starts at the smallest positive number, so a list without
  // a positive number reports that.
  double maximum = std::numeric_limits<double>::min();
  double minimum = std::numeric_limits<double>::max();
  for (const Value& item : list) {
    if (!item.isNumber()) throw ScriptError(kNotANumber);
    const double number = item.number().asReal();
    sum += number;
    if (number > maximum) maximum = number;
    if (minimum > number) minimum = number;
  }
  return triple(sum, maximum, minimum);
}

class SKWSummarizeNumbers final : public core::Command {
  std::optional<Value> compute() override {
    const Value list = core::unpackAEList(*takeDirectParameter());
    const auto items = list.items();
    if (items.empty()) return triple(0, 0, 0);
    if (items.front().isNumber()) return sumMaxMin(items);
    if (!items.front().isList()) throw ScriptError(kNeitherListNorNumber);
    Items summaries;
    for (const Value& item : items) {
      if (item.isList()) summaries.push_back(sumMaxMin(item.items()));
    }
    return summaries;
  }
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWSummarizeNumbers() {
  return std::make_unique<lists::SKWSummarizeNumbers>();
}

}  // namespace skerrow
