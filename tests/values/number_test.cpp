#include "values/number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "tests/support/generators.h"

namespace skerrow {
namespace {

using tests::described;

constexpr std::int64_t kTwoTo53 = 9007199254740992;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
const double kTwoTo63 = std::ldexp(1.0, 63);
const double kTwoTo64 = std::ldexp(1.0, 64);

// Each row is one numeric value in every storage that can hold it.
const std::vector<std::vector<Number>> kClasses = {
    {Number::boolean(false), Number::signed16(0), Number::unsigned16(0), Number::signed32(0),
     Number::unsigned32(0), Number::signed64(0), Number::unsigned64(0), Number::real(0),
     Number::real(-0.0)},
    {Number::boolean(true), Number::signed16(1), Number::unsigned16(1), Number::signed32(1),
     Number::unsigned32(1), Number::signed64(1), Number::unsigned64(1), Number::real(1)},
    {Number::signed16(-1), Number::signed32(-1), Number::signed64(-1), Number::real(-1),
     Number::booleanHolding(-1)},
    {Number::booleanHolding(2), Number::signed16(2), Number::real(2)},
    {Number::real(0.5)},
    {Number::real(-0.5)},
    {Number::unsigned16(65535), Number::signed32(65535), Number::real(65535)},
    {Number::unsigned32(4294967295), Number::signed64(4294967295), Number::unsigned64(4294967295),
     Number::real(4294967295)},
    {Number::signed64(kTwoTo53 - 1), Number::unsigned64(kTwoTo53 - 1),
     Number::real(9007199254740991.0)},
    {Number::signed64(kTwoTo53), Number::unsigned64(kTwoTo53), Number::real(9007199254740992.0)},
    {Number::signed64(kTwoTo53 + 1), Number::unsigned64(kTwoTo53 + 1)},
    {Number::signed64(kTwoTo53 + 2), Number::real(9007199254740994.0)},
    {Number::signed64(-kTwoTo53 - 1)},
    {Number::signed64(-kTwoTo53), Number::real(-9007199254740992.0)},
    {Number::signed64(INT64_MAX), Number::unsigned64(INT64_MAX)},
    {Number::unsigned64(1ULL << 63U), Number::real(kTwoTo63)},
    {Number::signed64(INT64_MIN), Number::real(-kTwoTo63)},
    {Number::unsigned64((1ULL << 63U) + 1)},
    {Number::unsigned64(UINT64_MAX)},
    {Number::real(kTwoTo64)},
    {Number::real(std::nextafter(kTwoTo64, 0.0)), Number::unsigned64(UINT64_MAX - 2047)},
    {Number::real(std::nextafter(-kTwoTo63, -kInfinity))},
    {Number::real(std::numeric_limits<double>::denorm_min())},
    {Number::real(std::numeric_limits<double>::max())},
    {Number::real(kInfinity)},
    {Number::real(-kInfinity)},
    {Number::real(kNaN), Number::real(-kNaN), Number::real(std::nan("7"))},
};

TEST(Number, EqualsOfTheSameNumericValueWhateverTheStorageAndOnlyThose) {
  for (const auto& oneClass : kClasses) {
    for (const auto& otherClass : kClasses) {
      for (const Number one : oneClass) {
        for (const Number other : otherClass) {
          EXPECT_EQ(one == other, &oneClass == &otherClass)
              << described(one) << " and " << described(other);
        }
      }
    }
  }
}

TEST(Number, EqualNumbersHaveEqualHashes) {
  for (const auto& oneClass : kClasses) {
    for (const Number one : oneClass) {
      EXPECT_EQ(one.hash(), oneClass.front().hash()) << described(one);
    }
  }
}

struct ConversionRow {
  Number number;
  double real;
  std::int64_t integer;
  std::uint64_t unsignedInteger;
  bool isNonZero;
};

TEST(Number, ConvertsToTheNearestThatTheTargetHolds) {
  const ConversionRow rows[] = {
      {Number::boolean(false), 0, 0, 0, false},
      {Number::boolean(true), 1, 1, 1, true},
      {Number::booleanHolding(-3), -3, -3, 0, true},
      {Number::signed16(-32768), -32768, -32768, 0, true},
      {Number::unsigned16(65535), 65535, 65535, 65535, true},
      {Number::signed32(INT32_MIN), -2147483648.0, INT32_MIN, 0, true},
      {Number::unsigned32(UINT32_MAX), 4294967295.0, 4294967295, 4294967295, true},
      {Number::signed64(INT64_MIN), -kTwoTo63, INT64_MIN, 0, true},
      {Number::signed64(INT64_MAX), kTwoTo63, INT64_MAX, INT64_MAX, true},
      {Number::signed64(kTwoTo53 + 1), 9007199254740992.0, kTwoTo53 + 1, kTwoTo53 + 1, true},
      {Number::unsigned64(0), 0, 0, 0, false},
      {Number::unsigned64(UINT64_MAX), kTwoTo64, INT64_MAX, UINT64_MAX, true},
      {Number::unsigned64(1ULL << 63U), kTwoTo63, INT64_MAX, 1ULL << 63U, true},
      {Number::real(0), 0, 0, 0, false},
      {Number::real(-0.0), -0.0, 0, 0, false},
      {Number::real(2.9), 2.9, 2, 2, true},
      {Number::real(-2.9), -2.9, -2, 0, true},
      {Number::real(0.1), 0.1, 0, 0, true},
      {Number::real(kTwoTo63), kTwoTo63, INT64_MAX, 1ULL << 63U, true},
      {Number::real(-kTwoTo63), -kTwoTo63, INT64_MIN, 0, true},
      {Number::real(kTwoTo64), kTwoTo64, INT64_MAX, UINT64_MAX, true},
      {Number::real(kInfinity), kInfinity, INT64_MAX, UINT64_MAX, true},
      {Number::real(-kInfinity), -kInfinity, INT64_MIN, 0, true},
      {Number::real(kNaN), kNaN, 0, 0, true},
  };
  for (const ConversionRow& row : rows) {
    SCOPED_TRACE(described(row.number));
    EXPECT_EQ(described(row.number.asReal()), described(row.real));
    EXPECT_EQ(row.number.asInteger(), row.integer);
    EXPECT_EQ(row.number.asUnsigned(), row.unsignedInteger);
    EXPECT_EQ(row.number.isNonZero(), row.isNonZero);
  }
}

RC_GTEST_PROP(Number, EqualityIsAnEquivalenceThatHashesRespect, ()) {
  const Number a = *tests::anyNumber();
  const Number b = *tests::anyNumber();
  const Number c = *tests::anyNumber();
  RC_ASSERT(a == a);
  RC_ASSERT((a == b) == (b == a));
  if (a == b) RC_ASSERT(a.hash() == b.hash());
  if (a == b && b == c) RC_ASSERT(a == c);
}

RC_GTEST_PROP(Number, AnIntegerEqualsARealOnlyWhenTheRealIsExactlyThatInteger, ()) {
  const auto integer = *rc::gen::arbitrary<std::int64_t>();
  const Number real = Number::real(static_cast<double>(integer));
  const bool isExact = static_cast<double>(integer) < kTwoTo63 &&
                       static_cast<std::int64_t>(static_cast<double>(integer)) == integer;
  RC_ASSERT((Number::signed64(integer) == real) == isExact);
}

}  // namespace
}  // namespace skerrow
