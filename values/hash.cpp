#include "values/hash.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <iterator>
#include <random>

namespace skerrow {

namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kPrime = (std::uint64_t{1} << 61U) - 1;

// A coefficient is seven bytes, which are less than the prime, read as eight.
constexpr std::size_t kCoefficient = 7;
constexpr std::uint64_t kSevenBytes = ~std::uint64_t{0} >> 8U;

// Equal modulo the prime, and little more than it; for numbers below 2^124.
std::uint64_t reduced(Wide number) noexcept {
  const std::uint64_t sum =
      (static_cast<std::uint64_t>(number) & kPrime) + static_cast<std::uint64_t>(number >> 61U);
  return (sum & kPrime) + (sum >> 61U);
}

std::uint64_t foldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
  const auto product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

template <class Word>
std::uint64_t load(const unsigned char* bytes) noexcept {
  Word word = 0;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

std::uint64_t firstSeven(const unsigned char* bytes) noexcept {
  return load<std::uint64_t>(bytes) & kSevenBytes;
}

std::uint64_t lastSeven(const unsigned char* end) noexcept {
  return load<std::uint64_t>(end - 8) >> 8U;
}

// Up to seven bytes, of which some may be read twice: with their count they are told apart.
std::uint64_t few(const unsigned char* bytes, std::size_t count) noexcept {
  if (count >= 4) {
    return load<std::uint32_t>(bytes) | load<std::uint32_t>(bytes + count - 4) << 24U;
  }
  if (count == 0) return 0;
  return bytes[0] | std::uint64_t{bytes[count / 2]} << 8U | std::uint64_t{bytes[count - 1]} << 16U;
}

std::uint64_t drawnNumber() noexcept {
  try {
    std::random_device device;
    return static_cast<std::uint64_t>(device()) << 32U | device();
  } catch (const std::exception&) {  // a system without a source of chance
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return static_cast<std::uint64_t>(now) * 0x9E3779B97F4A7C15ULL;
  }
}

}  // namespace

KeyedHash::KeyedHash(std::uint64_t first, std::uint64_t second) noexcept
    : powers_{first % (kPrime - 2) + 2}, secrets_{second, foldedProduct(second, first | 1U) | 1U} {
  for (std::size_t i = 1; i < std::size(powers_); ++i) {
    powers_[i] = reduced(static_cast<Wide>(powers_[i - 1]) * powers_[0]);
  }
}

const KeyedHash& KeyedHash::ofProcess() noexcept {
  static const KeyedHash drawn(drawnNumber(), drawnNumber());
  return drawn;
}

// Several coefficients at a time, as their products do not wait for each other. The
// count stands behind them, and all are multiplied once more, so that no difference of
// two polynomials is known.
std::size_t KeyedHash::ofBytes(const void* bytes, std::size_t count) const noexcept {
  const auto [key, key2, key3, key4] = powers_;
  const auto* next = static_cast<const unsigned char*>(bytes);
  const unsigned char* const end = next + count;
  const auto product = [&next](std::size_t place, std::uint64_t power) {
    return static_cast<Wide>(firstSeven(next + place * kCoefficient)) * power;
  };
  const auto isMoreThan = [&](std::ptrdiff_t coefficients) {
    return end - next > coefficients * static_cast<std::ptrdiff_t>(kCoefficient);
  };
  std::uint64_t hash = 0;
  for (; isMoreThan(4); next += 4 * kCoefficient) {
    hash = reduced(static_cast<Wide>(hash) * key4 + product(0, key3) + product(1, key2) +
                   product(2, key) + product(3, 1));
  }
  for (; isMoreThan(2); next += 2 * kCoefficient) {
    hash = reduced(static_cast<Wide>(hash) * key2 + product(0, key) + product(1, 1));
  }
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  if (const auto left = static_cast<std::size_t>(end - next); left > kCoefficient) {
    first = firstSeven(next);
    second = lastSeven(end);
  } else {
    second = few(next, left);
  }
  return scattered(reduced(static_cast<Wide>(hash) * key4 + static_cast<Wide>(first) * key3 +
                           static_cast<Wide>(second) * key2 + static_cast<Wide>(count) * key));
}

// A polynomial of the halves of the numbers.
std::size_t KeyedHash::mixed(std::uint64_t a, std::uint64_t b) const noexcept {
  constexpr std::uint64_t kHalf = 0xFFFFFFFF;
  const auto [key, key2, key3, key4] = powers_;
  const std::uint64_t hash =
      reduced(static_cast<Wide>(a & kHalf) * key4 + static_cast<Wide>(a >> 32U) * key3 +
              static_cast<Wide>(b & kHalf) * key2 + static_cast<Wide>(b >> 32U) * key);
  return scattered(hash);
}

// Polynomials of what differs by equal steps differ by equal steps, and the sum of two is
// one again: a product with a secret takes both away.
std::uint64_t KeyedHash::scattered(std::uint64_t polynomial) const noexcept {
  return foldedProduct(polynomial ^ secrets_[0], secrets_[1]);
}

}  // namespace skerrow
