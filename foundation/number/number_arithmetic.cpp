#include "foundation/number/number_arithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace skerrow::foundation {

namespace {

// Holds every 64-bit integer, signed or not, and their sums.
__extension__ using Wide = __int128;

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;

Wide wide(Number integer) {
  return integer.kind() == NumberKind::unsigned64 ? Wide{integer.asUnsigned()}
                                                  : Wide{integer.asInteger()};
}

Number narrowed(Wide value) {
  if (value >= std::numeric_limits<std::int64_t>::min() &&
      value <= std::numeric_limits<std::int64_t>::max()) {
    return Number::signed64(static_cast<std::int64_t>(value));
  }
  if (value > 0 && value <= std::numeric_limits<std::uint64_t>::max()) {
    return Number::unsigned64(static_cast<std::uint64_t>(value));
  }
  return Number::real(static_cast<double>(value));
}

Number calculateReals(ArithmeticOperator operation, double a, double b) {
  switch (operation) {
    case ArithmeticOperator::add:
      return Number::real(a + b);
    case ArithmeticOperator::subtract:
      return Number::real(a - b);
    case ArithmeticOperator::multiply:
      return Number::real(a * b);
    case ArithmeticOperator::divide:
      if (b == 0) throw DivisionByZero();
      return Number::real(a / b);
    case ArithmeticOperator::modulus:
      if (b == 0) throw DivisionByZero();
      return Number::real(std::fmod(a, b));
    default:
      return Number::real(std::pow(a, b));
  }
}

Number calculateIntegers(ArithmeticOperator operation, Number a, Number b) {
  switch (operation) {
    case ArithmeticOperator::add:
      return narrowed(wide(a) + wide(b));
    case ArithmeticOperator::subtract:
      return narrowed(wide(a) - wide(b));
    case ArithmeticOperator::multiply: {
      Wide product = 0;
      if (__builtin_mul_overflow(wide(a), wide(b), &product)) break;
      return narrowed(product);
    }
    case ArithmeticOperator::divide:
      if (wide(b) == 0) throw DivisionByZero();
      return narrowed(wide(a) / wide(b));
    case ArithmeticOperator::modulus:
      if (wide(b) == 0) throw DivisionByZero();
      return narrowed(wide(a) % wide(b));
    default:
      return wholeNumber(std::pow(a.asReal(), b.asReal()));
  }
  return calculateReals(operation, a.asReal(), b.asReal());
}

std::int64_t shiftedLeft(std::int64_t bits, std::int64_t by);

std::int64_t shiftedRight(std::int64_t bits, std::int64_t by) {
  if (by < 0) return by == INT64_MIN ? 0 : shiftedLeft(bits, -by);
  return bits >> std::min<std::int64_t>(by, 63);
}

std::int64_t shiftedLeft(std::int64_t bits, std::int64_t by) {
  if (by < 0) return shiftedRight(bits, by == INT64_MIN ? 63 : -by);
  if (by > 63) return 0;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(bits) << by);
}

std::int64_t calculateBits(ArithmeticOperator operation, std::int64_t a, std::int64_t b) {
  switch (operation) {
    case ArithmeticOperator::bitwiseAnd:
      return a & b;
    case ArithmeticOperator::bitwiseOr:
      return a | b;
    case ArithmeticOperator::bitwiseXor:
      return a ^ b;
    case ArithmeticOperator::shiftLeft:
      return shiftedLeft(a, b);
    default:
      return shiftedRight(a, b);
  }
}

std::partial_ordering compareIntegerWithReal(Wide integer, double real) noexcept {
  if (std::isnan(real)) return std::partial_ordering::unordered;
  if (real >= kTwoTo64) return std::partial_ordering::less;
  if (real < -kTwoTo63) return std::partial_ordering::greater;
  const double whole = std::trunc(real);
  const Wide other = static_cast<Wide>(whole);
  if (integer != other) return integer <=> other;
  return 0.0 <=> (real - whole);
}

}  // namespace

DivisionByZero::DivisionByZero() : std::domain_error("a number is divided by zero") {}

Number calculate(ArithmeticOperator operation, Number a, Number b) {
  if (operation >= ArithmeticOperator::bitwiseAnd) {
    return Number::signed64(calculateBits(operation, a.asInteger(), b.asInteger()));
  }
  if (a.isReal() || b.isReal()) return calculateReals(operation, a.asReal(), b.asReal());
  return calculateIntegers(operation, a, b);
}

Number negated(Number number) {
  if (number.isReal()) return Number::real(-number.asReal());
  return narrowed(-wide(number));
}

std::partial_ordering compareNumbers(Number a, Number b) noexcept {
  if (a.isReal()) {
    if (b.isReal()) return a.asReal() <=> b.asReal();
    return 0 <=> compareIntegerWithReal(wide(b), a.asReal());
  }
  if (b.isReal()) return compareIntegerWithReal(wide(a), b.asReal());
  return wide(a) <=> wide(b);
}

Number wholeNumber(double value) {
  if (value != std::trunc(value)) return Number::real(value);
  if (value >= -kTwoTo63 && value < kTwoTo63) {
    return Number::signed64(static_cast<std::int64_t>(value));
  }
  if (value > 0 && value < kTwoTo64) return Number::unsigned64(static_cast<std::uint64_t>(value));
  return Number::real(value);
}

}  // namespace skerrow::foundation
