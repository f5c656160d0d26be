#include "foundation/number/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

#include "foundation/number/decimal.h"

namespace skerrow::foundation {

namespace {

bool isSpace(char16_t unit) {
  return unit == u' ' || (unit >= u'\t' && unit <= u'\r') || unit == u'\u00A0';
}

struct NumberAtFront {
  std::optional<Number> number;
  std::size_t endUnit = 0;  // behind the number
};

NumberAtFront readNumber(std::u16string_view text) {
  std::size_t begin = 0;
  while (begin < text.size() && isSpace(text[begin])) ++begin;
  std::string ascii;
  for (const char16_t unit : text.substr(begin)) {
    const bool belongs = (unit >= u'0' && unit <= u'9') || unit == u'.' || unit == u'-' ||
                         unit == u'+' || unit == u'e' || unit == u'E';
    if (!belongs) break;
    ascii += static_cast<char>(unit);
  }
  const bool plus = ascii.starts_with('+');  // which the conversion does not know
  const char* const first = ascii.data() + (plus ? 1 : 0);
  const char* const last = ascii.data() + ascii.size();
  if (first == last || (plus && *first == '-')) return {};
  const auto endUnit = [&](const char* end) {
    return begin + static_cast<std::size_t>(end - ascii.data());
  };

  double real = 0;
  const auto [realEnd, realError] = std::from_chars(first, last, real);
  if (realError == std::errc::invalid_argument) return {};
  if (realError != std::errc()) real = nearestReal({first, realEnd});
  if (std::isinf(real)) return {};
  std::int64_t integer = 0;
  const auto [integerEnd, integerError] = std::from_chars(first, last, integer);
  if (integerError == std::errc() && integerEnd == realEnd) {
    return {Number::signed64(integer), endUnit(realEnd)};
  }
  return {Number::real(real), endUnit(realEnd)};
}

}  // namespace

std::optional<Number> numberFromText(std::u16string_view text) {
  const NumberAtFront found = readNumber(text);
  if (!found.number) return std::nullopt;
  if (!std::ranges::all_of(text.substr(found.endUnit), isSpace)) return std::nullopt;
  return found.number;
}

Number numberAtFront(std::u16string_view text) {
  return readNumber(text).number.value_or(Number::signed64(0));
}

std::u16string textFromNumber(Number number) {
  char buffer[32];
  char* const end = buffer + sizeof buffer;
  const std::to_chars_result result =
      number.isReal() ? std::to_chars(buffer, end, number.asReal(), std::chars_format::general, 16)
      : number.kind() == NumberKind::unsigned64 ? std::to_chars(buffer, end, number.asUnsigned())
                                                : std::to_chars(buffer, end, number.asInteger());
  return {buffer, result.ptr};
}

}  // namespace skerrow::foundation
