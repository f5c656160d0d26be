#include "values/hash.h"

#include <chrono>
#include <cstring>
#include <exception>
#include <random>

namespace skerrow {

namespace {

constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15ULL;
constexpr std::uint64_t kSecond = 0xD6E8FEB86659FD93ULL;

// The halves of the product, on top of each other.
std::uint64_t foldedProduct(std::uint64_t a, std::uint64_t b) noexcept {
  __extension__ using Wide = unsigned __int128;
  const auto product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

std::uint64_t drawnNumber() noexcept {
  try {
    std::random_device device;
    return static_cast<std::uint64_t>(device()) << 32U | device();
  } catch (const std::exception&) {  // a system without a source of chance
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    return static_cast<std::uint64_t>(now) * kFirst;
  }
}

std::uint64_t seed() noexcept {
  static const std::uint64_t drawn = drawnNumber();
  return drawn;
}

}  // namespace

std::size_t mixedHash(std::uint64_t a, std::uint64_t b) noexcept {
  return foldedProduct(foldedProduct(a ^ seed(), kFirst) ^ b, kSecond);
}

// Eight bytes at a time.
std::size_t hashOfBytes(const void* bytes, std::size_t count) noexcept {
  std::uint64_t hash = seed() ^ count * kFirst;
  const auto* next = static_cast<const char*>(bytes);
  std::size_t left = count;
  std::uint64_t word = 0;
  for (; left >= sizeof word; left -= sizeof word, next += sizeof word) {
    std::memcpy(&word, next, sizeof word);
    hash = foldedProduct(hash ^ word, kSecond);
  }
  word = 0;
  if (left > 0) std::memcpy(&word, next, left);
  return foldedProduct(hash ^ word, kFirst);
}

}  // namespace skerrow
