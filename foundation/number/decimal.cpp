#include "foundation/number/decimal.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <system_error>

namespace skerrow::foundation {

namespace {

// Of a number that no real can hold: whether it is too large and not too small.
bool isTooLarge(std::string_view decimal) {
  const std::size_t exponentAt = std::min(decimal.find_first_of("eE"), decimal.size());
  std::string_view exponent = decimal.substr(std::min(exponentAt + 1, decimal.size()));
  if (exponent.starts_with('+')) exponent.remove_prefix(1);
  const std::string_view mantissa = decimal.substr(0, exponentAt);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t first = mantissa.find_first_of("123456789");
  // The decimal exponent of the first digit that counts.
  const auto magnitude = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
  std::int64_t shift = 0;
  const auto read = std::from_chars(exponent.data(), exponent.data() + exponent.size(), shift);
  if (read.ec == std::errc::result_out_of_range) return !exponent.starts_with('-');
  return shift > -magnitude;
}

}  // namespace

double nearestReal(std::string_view decimal) {
  double real = 0;
  const auto read = std::from_chars(decimal.data(), decimal.data() + decimal.size(), real);
  if (read.ec != std::errc::result_out_of_range) return real;
  real = isTooLarge(decimal) ? std::numeric_limits<double>::infinity() : 0.0;
  return decimal.starts_with('-') ? -real : real;
}

}  // namespace skerrow::foundation
