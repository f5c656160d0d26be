#include "values/number.h"

#include <bit>
#include <cmath>
#include <limits>

#include "values/hash.h"

namespace skerrow {

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kTwoTo64 = 18446744073709551616.0;

// Every numeric value has one canonical form, so that equality and hashing are
// exact across storage kinds without rounding a 64-bit integer to a real.
struct Canonical {
  enum class Form : std::uint8_t { negativeInteger, integer, fraction } form;
  std::uint64_t bits;
  friend bool operator==(const Canonical&, const Canonical&) = default;
};

Canonical fromSigned(std::int64_t value) {
  return {value < 0 ? Canonical::Form::negativeInteger : Canonical::Form::integer,
          static_cast<std::uint64_t>(value)};
}

Canonical fromReal(double value) {
  if (std::isnan(value)) {
    return {Canonical::Form::fraction,
            std::bit_cast<std::uint64_t>(std::numeric_limits<double>::quiet_NaN())};
  }
  if (value == std::trunc(value)) {
    if (value >= -kTwoTo63 && value < kTwoTo63) return fromSigned(static_cast<std::int64_t>(value));
    if (value > 0 && value < kTwoTo64) {
      return {Canonical::Form::integer, static_cast<std::uint64_t>(value)};
    }
  }
  return {Canonical::Form::fraction, std::bit_cast<std::uint64_t>(value)};
}

Canonical canonical(const Number& number) {
  switch (number.kind()) {
    case NumberKind::real:
      return fromReal(number.asReal());
    case NumberKind::unsigned64:
      return {Canonical::Form::integer, number.asUnsigned()};
    default:
      return fromSigned(number.asInteger());
  }
}

}  // namespace

double Number::asReal() const noexcept {
  switch (kind_) {
    case NumberKind::real:
      return real_;
    case NumberKind::unsigned64:
      return static_cast<double>(unsigned_);
    default:
      return static_cast<double>(signed_);
  }
}

std::int64_t Number::asInteger() const noexcept {
  using Limits = std::numeric_limits<std::int64_t>;
  switch (kind_) {
    case NumberKind::real:
      if (std::isnan(real_)) return 0;
      if (real_ >= kTwoTo63) return Limits::max();
      if (real_ < -kTwoTo63) return Limits::min();
      return static_cast<std::int64_t>(real_);
    case NumberKind::unsigned64:
      return unsigned_ > static_cast<std::uint64_t>(Limits::max())
                 ? Limits::max()
                 : static_cast<std::int64_t>(unsigned_);
    default:
      return signed_;
  }
}

std::uint64_t Number::asUnsigned() const noexcept {
  switch (kind_) {
    case NumberKind::real:
      if (!(real_ > 0)) return 0;
      if (real_ >= kTwoTo64) return std::numeric_limits<std::uint64_t>::max();
      return static_cast<std::uint64_t>(real_);
    case NumberKind::unsigned64:
      return unsigned_;
    default:
      return signed_ < 0 ? 0 : static_cast<std::uint64_t>(signed_);
  }
}

bool Number::isNonZero() const noexcept {
  return kind_ == NumberKind::real ? real_ != 0.0 : asUnsigned() != 0 || asInteger() != 0;
}

bool operator==(const Number& a, const Number& b) noexcept { return canonical(a) == canonical(b); }

std::size_t Number::hash() const noexcept {
  const Canonical form = canonical(*this);
  return mixedHash(static_cast<std::uint64_t>(form.form), form.bits);
}

}  // namespace skerrow
