#pragma once
// Arithmetic and ordering on numbers that keeps integers exact. Two integers give
// an integer as long as 64 bits hold it, a real otherwise; an integer and a real
// give a real.

#include <compare>
#include <cstdint>
#include <stdexcept>

#include "values/number.h"

namespace skerrow::foundation {

enum class ArithmeticOperator : std::uint8_t {
  add,
  subtract,
  multiply,
  divide,
  modulus,
  power,
  bitwiseAnd,
  bitwiseOr,
  bitwiseXor,
  shiftLeft,
  shiftRight,
};

/// Thrown by a division or modulus whose divisor is zero, of integers and of reals.
class DivisionByZero : public std::domain_error {
 public:
  DivisionByZero();
};

/// The quotient of two integers is an integer without its fraction, as the
/// platform's expressions have it: 1 / 2 is 0 and 1.0 / 2 is 0.5. A modulus takes
/// the sign of the dividend. Bits are those of signed integers of 64 bits, without the
/// fractions of reals; a shift by less than nothing goes the other way. Throws
/// DivisionByZero.
Number calculate(ArithmeticOperator operation, Number a, Number b);

/// The number with the other sign.
Number negated(Number number);

/// By exact numeric value whatever the storage; NaN is unordered, even with itself.
std::partial_ordering compareNumbers(Number a, Number b) noexcept;

/// A whole real as an integer of 64 bits where one holds it; any other real stays one.
Number wholeNumber(double value);

}  // namespace skerrow::foundation
