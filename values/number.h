#pragma once
// Number: a number that remembers how it was stored. The storage kind decides
// how the number is packed again; a boolean is a number of the boolean kind.

#include <cstddef>
#include <cstdint>

namespace skerrow {

enum class NumberKind : std::uint8_t {
  boolean,
  signed16,
  unsigned16,
  signed32,
  unsigned32,
  signed64,
  unsigned64,
  real,
};

class Number {
 public:
  static constexpr Number boolean(bool value) { return {NumberKind::boolean, std::int64_t{value}}; }
  static constexpr Number signed16(std::int16_t value) {
    return {NumberKind::signed16, std::int64_t{value}};
  }
  static constexpr Number unsigned16(std::uint16_t value) {
    return {NumberKind::unsigned16, std::int64_t{value}};
  }
  static constexpr Number signed32(std::int32_t value) {
    return {NumberKind::signed32, std::int64_t{value}};
  }
  static constexpr Number unsigned32(std::uint32_t value) {
    return {NumberKind::unsigned32, std::int64_t{value}};
  }
  static constexpr Number signed64(std::int64_t value) { return {NumberKind::signed64, value}; }
  static constexpr Number unsigned64(std::uint64_t value) { return Number(value); }
  static constexpr Number real(double value) { return Number(value); }

  /// A boolean that holds an integer other than 0 and 1, as a lower layer may hand over.
  static constexpr Number booleanHolding(std::int64_t value) {
    return {NumberKind::boolean, value};
  }

  [[nodiscard]] constexpr NumberKind kind() const { return kind_; }
  [[nodiscard]] constexpr bool isReal() const { return kind_ == NumberKind::real; }

  /// The value as a double; large 64-bit integers are rounded to the nearest.
  [[nodiscard]] double asReal() const noexcept;

  /// The value as a signed 64-bit integer: a real loses its fraction, what lies
  /// outside the range becomes the nearest end of it, NaN becomes 0.
  [[nodiscard]] std::int64_t asInteger() const noexcept;

  /// The value as an unsigned 64-bit integer, by the same rules.
  [[nodiscard]] std::uint64_t asUnsigned() const noexcept;

  /// Whether the value is anything but zero.
  [[nodiscard]] bool isNonZero() const noexcept;

  /// Equality by numeric value, whatever the storage: 1 equals 1.0 and true.
  /// NaN equals itself here, so that a list can be made unique.
  friend bool operator==(const Number& a, const Number& b) noexcept;

  /// Equal numbers have equal hashes.
  [[nodiscard]] std::size_t hash() const noexcept;

 private:
  friend class Value;

  constexpr Number(NumberKind kind, std::int64_t value) : signed_(value), kind_(kind) {}
  constexpr explicit Number(std::uint64_t value)
      : unsigned_(value), kind_(NumberKind::unsigned64) {}
  constexpr explicit Number(double value) : real_(value), kind_(NumberKind::real) {}

  union {
    std::int64_t signed_;  // every integer kind but unsigned64
    std::uint64_t unsigned_;
    double real_;
  };
  NumberKind kind_;
};

}  // namespace skerrow
