#include "foundation/number/decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "tests/support/describe.h"

namespace skerrow::foundation {
namespace {

TEST(NearestReal, RoundsToTheNearestAndTiesToTheEven) {
  const struct {
    std::string decimal;
    double real;
  } rows[] = {
      {"0", 0},
      {"-0", -0.0},
      {"12.5e3", 12500},
      {"-12.5E+3", -12500},
      {"9007199254740993", 9007199254740992},
      {"9007199254740995", 9007199254740996},
      {"9007199254740993.00000000000000000001", 9007199254740994},
      {"2.2250738585072011e-308", 0x0.fffffffffffffp-1022},
      {"5e-324", 5e-324},
      {"2.4703282292062328e-324", 5e-324},
      {"2.4703282292062327e-324", 0},
      {"-1e-400", -0.0},
      {"1.2345678901234567e-340", 0},
      {"1e-99999999999999999999", 0},
      {"0." + std::string(1000, '0') + "1", 0},
      {"0." + std::string(1000, '0') + "1e1001", 1},
      {"1" + std::string(1000, '0') + "e-1000", 1},
      {"1.7976931348623158e308", 0x1.fffffffffffffp1023},
      {"1.7976931348623159e308", HUGE_VAL},
      {"-1e309", -HUGE_VAL},
      {"1e+99999999999999999999", HUGE_VAL},
      {"1" + std::string(1000, '0'), HUGE_VAL},
      {"0e99999", 0},
      {"-0.000e-99999", -0.0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(tests::described(nearestReal(row.decimal)), tests::described(row.real))
        << row.decimal;
  }
}

}  // namespace
}  // namespace skerrow::foundation
