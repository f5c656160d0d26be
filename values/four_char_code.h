#pragma once
// Four-character codes: the 32-bit names of types, keywords and enumerators at
// the scripting boundary. The first character is the most significant byte.

#include <cstdint>

namespace skerrow {

enum class FourCharCode : std::uint32_t {};

namespace literals {

/// "utxt"_code. A literal of any other length does not compile.
consteval FourCharCode operator""_code(const char* characters, std::size_t count) {
  if (count != 4) throw "a four-character code has four characters";
  std::uint32_t code = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    code = code << 8U | static_cast<unsigned char>(characters[i]);
  }
  return FourCharCode{code};
}

}  // namespace literals

constexpr std::uint32_t number(FourCharCode code) { return static_cast<std::uint32_t>(code); }

}  // namespace skerrow
