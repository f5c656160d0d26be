// SKWDoTrigOn: a trigonometric or hyperbolic function of a number, or of every
// number of a list. Angles are in radians.

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "argument_keys/SKWDoTrigOn.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/number/number_text.h"
#include "foundation/text/character_sets.h"

namespace skerrow::lists {

using namespace literals;

namespace {

namespace key = argument_keys::SKWDoTrigOn;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;
using Function = double (*)(double);

constexpr ErrorEntry kNotNumbers = {1271,
                                    "Direct parameter is neither a number nor a list of numbers."};
constexpr ErrorEntry kUnknownFunction = {1272, "Unknown function."};

struct NamedFunction {
  std::u16string_view name;
  Function function;
};

constexpr NamedFunction kFunctions[] = {
    {u"sin", std::sin},   {u"cos", std::cos},     {u"tan", std::tan},     {u"asin", std::asin},
    {u"acos", std::acos}, {u"atan", std::atan},   {u"sinh", std::sinh},   {u"cosh", std::cosh},
    {u"tanh", std::tanh}, {u"asinh", std::asinh}, {u"acosh", std::acosh}, {u"atanh", std::atanh},
};

// A text counts as the number that it spells.
std::optional<double> realFrom(const Value& item) {
  if (item.isNumber()) return item.number().asReal();
  if (!item.isText()) return std::nullopt;
  const auto number = foundation::numberFromText(item.text());
  if (!number) return std::nullopt;
  return number->asReal();
}

class SKWDoTrigOn final : public core::Command {
  void check() override {
    const auto& direct = directParameter();
    const bool isList = direct && direct->type() == "list"_code;
    if (!isList && !(direct && core::isNumberType(direct->type()))) throw ScriptError(kNotNumbers);
    if (isList && direct->items().empty()) {
      answerAtOnce(Items{});
      return;
    }
    const Value* argument = evaluatedArguments().find(key::usingFunction);
    const std::u16string_view name = argument == nullptr ? u"" : argument->text();
    const auto trimmed = foundation::trimmedRange(name).of(name);
    const auto* found = std::ranges::find(kFunctions, trimmed, &NamedFunction::name);
    if (found == std::end(kFunctions)) throw ScriptError(kUnknownFunction);
    function_ = found->function;
  }

  std::optional<Value> compute() override {
    const Value given = core::unpack(*takeDirectParameter()).value_or(Value());
    if (!given.isList()) return applied(given);
    Items results;
    results.reserve(given.items().size());
    for (const Value& item : given.items()) results.push_back(applied(item));
    return results;
  }

  // Missing value where there is no number, or none that the function has a result for.
  [[nodiscard]] Value applied(const Value& item) const {
    const auto argument = realFrom(item);
    if (!argument) return {};
    const double result = function_(*argument);
    return std::isnan(result) ? Value() : Value(Number::real(result));
  }

  Function function_ = nullptr;
};

}  // namespace

}  // namespace skerrow::lists

namespace skerrow {

std::unique_ptr<core::Command> createSKWDoTrigOn() {
  return std::make_unique<lists::SKWDoTrigOn>();
}

}  // namespace skerrow
