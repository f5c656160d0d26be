#pragma once
// Hashes for the tables of this process. Each process draws a number of its own
// that goes into all of them, so nobody can prepare many values of one hash.

#include <cstddef>
#include <cstdint>

namespace skerrow {

/// Depends on every bit of both numbers and on their order.
std::size_t mixedHash(std::uint64_t a, std::uint64_t b) noexcept;

std::size_t hashOfBytes(const void* bytes, std::size_t count) noexcept;

}  // namespace skerrow
