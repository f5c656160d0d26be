#pragma once
// Hashes for the tables of this process. Each process draws a key of its own that
// goes into all of them, so that nobody can prepare many values of one hash: bytes
// are the coefficients of a polynomial modulo the prime 2^61 - 1 whose variable is
// the key (Carter and Wegman's universal hashing). Two polynomials of n coefficients
// agree for at most n keys out of 2^61, whichever bytes somebody chooses beforehand.

#include <cstddef>
#include <cstdint>

namespace skerrow {

class KeyedHash {
 public:
  /// Two numbers that nobody knows.
  KeyedHash(std::uint64_t first, std::uint64_t second) noexcept;

  /// With the key of this process.
  static const KeyedHash& ofProcess() noexcept;

  [[nodiscard]] std::size_t ofBytes(const void* bytes, std::size_t count) const noexcept;

  /// Depends on every bit of both numbers and on their order. Sums of such hashes
  /// depend on which numbers go together.
  [[nodiscard]] std::size_t mixed(std::uint64_t a, std::uint64_t b) const noexcept;

 private:
  [[nodiscard]] std::uint64_t scattered(std::uint64_t polynomial) const noexcept;

  std::uint64_t powers_[4];  // the key and its powers
  std::uint64_t secrets_[2];
};

inline std::size_t mixedHash(std::uint64_t a, std::uint64_t b) noexcept {
  return KeyedHash::ofProcess().mixed(a, b);
}

inline std::size_t hashOfBytes(const void* bytes, std::size_t count) noexcept {
  return KeyedHash::ofProcess().ofBytes(bytes, count);
}

}  // namespace skerrow
