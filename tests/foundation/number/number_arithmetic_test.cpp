#include "foundation/number/number_arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>
#include <compare>
#include <cstdint>
#include <limits>

#include "foundation/number/value_order.h"
#include "tests/support/properties.h"
#include "values/record.h"
#include "values/value.h"

namespace skerrow::foundation {
namespace {

using enum ArithmeticOperator;

Number integer(std::int64_t value) { return Number::signed64(value); }
Number real(double value) { return Number::real(value); }

struct CalculationCase {
  ArithmeticOperator operation;
  Number a;
  Number b;
  Number expected;
};

TEST(NumberArithmetic, KeepsIntegersExact) {
  const Number least = integer(INT64_MIN);
  const Number greatest = integer(INT64_MAX);
  const Number greatestUnsigned = Number::unsigned64(UINT64_MAX);
  const CalculationCase cases[] = {
      {add, integer(1), integer(2), integer(3)},
      {add, greatest, integer(1), Number::unsigned64(9223372036854775808ULL)},
      {add, greatestUnsigned, integer(1), real(18446744073709551616.0)},
      {add, integer(1), real(0.5), real(1.5)},
      {add, Number::boolean(true), Number::boolean(true), integer(2)},
      {subtract, least, integer(1), real(-9223372036854775808.0)},
      {subtract, greatestUnsigned, greatest, Number::unsigned64(9223372036854775808ULL)},
      {multiply, greatest, integer(2), Number::unsigned64(UINT64_MAX - 1)},
      {multiply, greatestUnsigned, greatestUnsigned, real(std::pow(2.0, 128))},
      {multiply, least, least, real(std::pow(2.0, 126))},
      {divide, integer(7), integer(2), integer(3)},
      {divide, integer(-7), integer(2), integer(-3)},
      {divide, integer(7), real(2), real(3.5)},
      {divide, least, integer(-1), Number::unsigned64(9223372036854775808ULL)},
      {modulus, integer(7), integer(-3), integer(1)},
      {modulus, integer(-7), integer(3), integer(-1)},
      {modulus, least, integer(-1), integer(0)},
      {modulus, real(7.5), integer(2), real(1.5)},
      {power, integer(2), integer(10), integer(1024)},
      {power, integer(2), integer(-1), real(0.5)},
      {power, integer(2), integer(63), Number::unsigned64(9223372036854775808ULL)},
      {power, integer(2), integer(64), real(18446744073709551616.0)},
      {power, real(2.0), integer(2), real(4)},
      {bitwiseAnd, integer(12), integer(10), integer(8)},
      {bitwiseOr, integer(12), integer(10), integer(14)},
      {bitwiseXor, integer(12), integer(10), integer(6)},
      {shiftLeft, integer(3), integer(62), integer(INT64_MIN | (std::int64_t{1} << 62))},
      {shiftLeft, integer(1), least, integer(0)},
      {shiftRight, least, integer(63), integer(-1)},
      {shiftRight, integer(1), least, integer(0)},
      {shiftRight, real(5.5), real(1.5), integer(2)},
  };
  for (const CalculationCase& row : cases) {
    const Number result = calculate(row.operation, row.a, row.b);
    EXPECT_EQ(result, row.expected) << result.asReal() << " for " << row.expected.asReal();
    EXPECT_EQ(result.kind(), row.expected.kind()) << row.expected.asReal();
  }
}

TEST(NumberArithmetic, RefusesToDivideByZero) {
  for (const ArithmeticOperator operation : {divide, modulus}) {
    for (const Number zero : {integer(0), real(0), real(-0.0), Number::boolean(false)}) {
      EXPECT_THROW(calculate(operation, integer(1), zero), DivisionByZero);
      EXPECT_THROW(calculate(operation, real(1), zero), DivisionByZero);
    }
  }
}

TEST(NumberArithmetic, Negates) {
  EXPECT_EQ(negated(integer(3)), integer(-3));
  EXPECT_EQ(negated(integer(INT64_MIN)), Number::unsigned64(9223372036854775808ULL));
  EXPECT_EQ(negated(Number::unsigned64(9223372036854775808ULL)), integer(INT64_MIN));
  EXPECT_EQ(negated(real(1.5)), real(-1.5));
}

TEST(NumberArithmetic, OrdersByExactValue) {
  const double infinity = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  // Each less than the next.
  const Number ascending[] = {real(-infinity),
                              real(-1e300),
                              integer(INT64_MIN),
                              integer(-2),
                              real(-1.5),
                              integer(-1),
                              integer(0),
                              real(0.5),
                              Number::boolean(true),
                              real(9007199254740992.0),
                              integer(9007199254740993),
                              integer(INT64_MAX),
                              real(9223372036854775808.0),
                              Number::unsigned64(9223372036854775809ULL),
                              Number::unsigned64(UINT64_MAX),
                              real(18446744073709551616.0),
                              real(infinity)};
  for (const Number& a : ascending) {
    for (const Number& b : ascending) {
      EXPECT_TRUE(compareNumbers(a, b) == (&a <=> &b)) << a.asReal() << ' ' << b.asReal();
    }
    EXPECT_TRUE(compareNumbers(a, real(nan)) == std::partial_ordering::unordered);
    EXPECT_TRUE(compareNumbers(real(nan), a) == std::partial_ordering::unordered);
  }
}

TEST(ValueOrder, OrdersValuesOfOneKind) {
  EXPECT_TRUE(std::is_lt(compareValues(integer(1), real(1.5))));
  EXPECT_TRUE(std::is_lt(compareValues(u"A", u"a")));
  EXPECT_TRUE(std::is_eq(compareValues(u"a", u"a")));
  EXPECT_TRUE(std::is_gt(compareValues(Date{2}, Date{1})));
  const Value unordered[] = {Value(), std::vector<Value>{}, Record(), Url{"a:"}, Value::data("")};
  for (const Value& value : unordered) {
    EXPECT_TRUE(compareValues(value, value) == std::partial_ordering::unordered);
    EXPECT_TRUE(compareValues(value, integer(1)) == std::partial_ordering::unordered);
  }
  EXPECT_TRUE(compareValues(u"1", integer(1)) == std::partial_ordering::unordered);
}

RC_GTEST_PROP(NumberArithmetic, IsUndoneByItsOpposite, ()) {
  const auto a = *rc::gen::arbitrary<std::int64_t>();
  const auto b = *rc::gen::arbitrary<std::int64_t>();
  RC_ASSERT(calculate(subtract, calculate(add, integer(a / 4), integer(b / 4)), integer(b / 4)) ==
            integer(a / 4));
  if (b != 0) {
    const Number quotient = calculate(divide, integer(a), integer(b));
    const Number rest = calculate(modulus, integer(a), integer(b));
    RC_ASSERT(calculate(add, calculate(multiply, quotient, integer(b)), rest) == integer(a));
  }
  RC_ASSERT(std::is_lt(compareNumbers(integer(a), integer(b))) == (a < b));
}

}  // namespace
}  // namespace skerrow::foundation
