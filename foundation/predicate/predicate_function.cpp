#include "foundation/predicate/predicate_function.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "foundation/key_path/collection_operator.h"
#include "foundation/number/number_arithmetic.h"
#include "foundation/text/case_mapping.h"
#include "foundation/text/code_points.h"

namespace skerrow::foundation {

namespace {

using Arguments = std::span<const Value>;
using Result = std::optional<Value>;

constexpr std::size_t kAnyNumber = PredicateFunction::kAnyNumber;

// A list function takes one list, or its items one by one.
std::optional<Arguments> itemsOf(Arguments arguments) {
  if (arguments.size() != 1) return arguments;
  if (!arguments.front().isList()) return std::nullopt;
  return arguments.front().items();
}

bool isNullAlone(Arguments arguments) {
  return arguments.size() == 1 && arguments.front().isNull();
}

template <auto function>
Result ofItems(Arguments arguments, PredicateEvaluation&) {
  if (isNullAlone(arguments)) return Value();
  const std::optional<Arguments> items = itemsOf(arguments);
  if (!items) return std::nullopt;
  return function(*items);
}

Result sum(Arguments items) {
  const std::optional<double> result = sumOf(items);
  return result ? Result(Number::real(*result)) : std::nullopt;
}

Result average(Arguments items) {
  const std::optional<double> result = averageOf(items);
  return result ? Result(Number::real(*result)) : std::nullopt;
}

template <Extreme extreme>
Result extremeItem(Arguments items) {
  const ExtremeItem found = extremeOf(extreme, items);
  if (!found.isComparable) return std::nullopt;
  return found.item != nullptr ? *found.item : Value();
}

Result mode(Arguments items) { return Value(modesOf(items)); }

// A null has no items.
Result count(Arguments arguments, PredicateEvaluation&) {
  std::size_t number = 0;
  if (arguments.size() == 1 && arguments.front().isRecord()) {
    number = arguments.front().record().fieldCount();
  } else if (!isNullAlone(arguments)) {
    const std::optional<Arguments> items = itemsOf(arguments);
    if (!items) return std::nullopt;
    number = items->size();
  }
  return Number::signed64(static_cast<std::int64_t>(number));
}

// Applied to one number; a null stays one.
template <auto function>
Result ofNumber(Arguments arguments, PredicateEvaluation&) {
  const Value& argument = arguments.front();
  if (argument.isNull()) return Value();
  if (!argument.isNumber()) return std::nullopt;
  return Value(function(argument.number()));
}

template <double (*function)(double)>
Number real(Number number) {
  return Number::real(function(number.asReal()));
}

template <double (*function)(double)>
Number whole(Number number) {
  return number.isReal() ? wholeNumber(function(number.asReal())) : number;
}

Number absolute(Number number) {
  return compareNumbers(number, Number::signed64(0)) < 0 ? negated(number) : number;
}

Number complement(Number number) { return Number::signed64(~number.asInteger()); }

template <ArithmeticOperator operation>
Result arithmetic(Arguments arguments, PredicateEvaluation&) {
  if (arguments[0].isNull() || arguments[1].isNull()) return Value();
  if (!arguments[0].isNumber() || !arguments[1].isNumber()) return std::nullopt;
  return Value(calculate(operation, arguments[0].number(), arguments[1].number()));
}

template <auto conversion>
Result inCase(Arguments arguments, PredicateEvaluation&) {
  const Value& argument = arguments.front();
  if (argument.isNull()) return Value();
  if (!argument.isText()) return std::nullopt;
  return Value(conversion(argument.text()));
}

// In UTF-16 units.
Result length(Arguments arguments, PredicateEvaluation&) {
  const Value& argument = arguments.front();
  if (argument.isNull()) return Value();
  if (!argument.isText()) return std::nullopt;
  return Number::signed64(static_cast<std::int64_t>(argument.text().size()));
}

// Without an argument any whole number that is not negative, with one a whole number below it.
Result random(Arguments arguments, PredicateEvaluation& evaluation) {
  std::int64_t highest = INT32_MAX;
  if (!arguments.empty()) {
    if (arguments.front().isNull()) return Value();
    if (!arguments.front().isNumber()) return std::nullopt;
    highest = arguments.front().number().asInteger() - 1;
    if (highest < 0) return std::nullopt;
  }
  return Number::signed64(
      std::uniform_int_distribution<std::int64_t>(0, highest)(evaluation.random()));
}

Result now(Arguments, PredicateEvaluation& evaluation) { return evaluation.now(); }

Result itself(Arguments arguments, PredicateEvaluation&) { return arguments.front(); }

constexpr std::array kFunctions = {
    PredicateFunction{u"sum", 1, kAnyNumber, ofItems<sum>},
    PredicateFunction{u"count", 1, kAnyNumber, count},
    PredicateFunction{u"min", 1, kAnyNumber, ofItems<extremeItem<Extreme::least>>},
    PredicateFunction{u"max", 1, kAnyNumber, ofItems<extremeItem<Extreme::greatest>>},
    PredicateFunction{u"average", 1, kAnyNumber, ofItems<average>},
    PredicateFunction{u"median", 1, kAnyNumber, ofItems<medianOf>},
    PredicateFunction{u"mode", 1, kAnyNumber, ofItems<mode>},
    PredicateFunction{u"stddev", 1, kAnyNumber, ofItems<standardDeviationOf>},
    PredicateFunction{u"add:to:", 2, 2, arithmetic<ArithmeticOperator::add>},
    PredicateFunction{u"from:subtract:", 2, 2, arithmetic<ArithmeticOperator::subtract>},
    PredicateFunction{u"multiply:by:", 2, 2, arithmetic<ArithmeticOperator::multiply>},
    PredicateFunction{u"divide:by:", 2, 2, arithmetic<ArithmeticOperator::divide>},
    PredicateFunction{u"modulus:by:", 2, 2, arithmetic<ArithmeticOperator::modulus>},
    PredicateFunction{u"raise:toPower:", 2, 2, arithmetic<ArithmeticOperator::power>},
    PredicateFunction{u"sqrt", 1, 1, ofNumber<real<std::sqrt>>},
    PredicateFunction{u"log", 1, 1, ofNumber<real<std::log10>>},
    PredicateFunction{u"ln", 1, 1, ofNumber<real<std::log>>},
    PredicateFunction{u"exp", 1, 1, ofNumber<real<std::exp>>},
    PredicateFunction{u"floor", 1, 1, ofNumber<whole<std::floor>>},
    PredicateFunction{u"ceiling", 1, 1, ofNumber<whole<std::ceil>>},
    PredicateFunction{u"trunc", 1, 1, ofNumber<whole<std::trunc>>},
    PredicateFunction{u"abs", 1, 1, ofNumber<absolute>},
    PredicateFunction{u"bitwiseAnd:with:", 2, 2, arithmetic<ArithmeticOperator::bitwiseAnd>},
    PredicateFunction{u"bitwiseOr:with:", 2, 2, arithmetic<ArithmeticOperator::bitwiseOr>},
    PredicateFunction{u"bitwiseXor:with:", 2, 2, arithmetic<ArithmeticOperator::bitwiseXor>},
    PredicateFunction{u"leftshift:by:", 2, 2, arithmetic<ArithmeticOperator::shiftLeft>},
    PredicateFunction{u"rightshift:by:", 2, 2, arithmetic<ArithmeticOperator::shiftRight>},
    PredicateFunction{u"onesComplement", 1, 1, ofNumber<complement>},
    PredicateFunction{u"uppercase", 1, 1, inCase<uppercased>},
    PredicateFunction{u"lowercase", 1, 1, inCase<lowercased>},
    PredicateFunction{u"length", 1, 1, length},
    PredicateFunction{u"random", 0, 1, random},
    PredicateFunction{u"randomn", 1, 1, random},
    PredicateFunction{u"now", 0, 0, now},
    PredicateFunction{u"noindex", 1, 1, itself},
};

}  // namespace

const PredicateFunction* PredicateFunction::named(std::u16string_view name) {
  if (std::ranges::count(name, u':') == 1 && name.ends_with(u':')) name.remove_suffix(1);
  const auto found = std::ranges::find_if(kFunctions, [name](const PredicateFunction& function) {
    return equalsIgnoringAsciiCase(name, function.name);
  });
  return found == kFunctions.end() ? nullptr : &*found;
}

}  // namespace skerrow::foundation
