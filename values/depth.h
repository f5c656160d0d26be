#pragma once
// How deep values may nest. Every list and record counts its own depth when it
// is made, so no deeper value can exist and code that walks values may recurse.

#include <cstdint>
#include <stdexcept>

namespace skerrow {

inline constexpr std::uint32_t kMaximumDepth = 4096;

/// Thrown where a list or record deeper than kMaximumDepth would come to be.
class NestingTooDeep : public std::length_error {
 public:
  NestingTooDeep();
};

/// The depth of something that is `levels` deeper than the deepest of what it holds. Throws
/// NestingTooDeep.
inline std::uint32_t deeperBy(std::uint32_t levels, std::uint32_t deepest) {
  if (deepest + levels > kMaximumDepth) throw NestingTooDeep();
  return deepest + levels;
}

}  // namespace skerrow
