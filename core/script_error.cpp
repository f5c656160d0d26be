#include "core/script_error.h"

#include <array>
#include <charconv>

namespace skerrow::core {

std::string textFrom(Number number) {
  char digits[32];
  char* const end = digits + sizeof digits;
  const auto written = number.isReal() ? std::to_chars(digits, end, number.asReal())
                       : number.kind() == NumberKind::unsigned64
                           ? std::to_chars(digits, end, number.asUnsigned())
                           : std::to_chars(digits, end, number.asInteger());
  return {digits, written.ptr};
}

std::size_t ScriptError::fillPlaceholder(std::size_t from, const std::string& value) {
  static constexpr std::array<std::string_view, 3> kPlaceholders = {"%@", "%d", "%ld"};
  for (std::size_t at = message_.find('%', from); at != std::string::npos;
       at = message_.find('%', at + 1)) {
    for (const std::string_view placeholder : kPlaceholders) {
      if (message_.compare(at, placeholder.size(), placeholder) != 0) continue;
      message_.replace(at, placeholder.size(), value);
      return at + value.size();
    }
  }
  return message_.size();
}

}  // namespace skerrow::core
