// Numbers at the start of a text, plain and as locales write them: what was read
// lies inside the text, reads the same again on its own, and plain numbers have the
// value that the C library gives them.

#include <glib.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "foundation/number/number_scanner.h"
#include "foundation/text/text_encoding.h"

using namespace skerrow::foundation;

namespace {

void check(std::u16string_view text, const NumberSymbols& symbols) {
  const auto real = scanReal(text, symbols);
  const auto integer = scanInteger(text, symbols);
  if (integer && (!real || integer->end > real->end)) std::abort();
  if (!real) return;
  if (real->end > text.size() || std::isnan(real->value)) std::abort();
  const auto again = scanReal(text.substr(0, real->end), symbols);
  if (!again || again->value != real->value || again->end != real->end) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const NumberSymbols english = NumberSymbols::ofLocale("en_US");
  static const NumberSymbols french = NumberSymbols::ofLocale("fr_FR");
  static const NumberSymbols arabic = NumberSymbols::ofLocale("ar_EG");
  const std::u16string text = utf16FromUtf8Replacing({reinterpret_cast<const char*>(data), size});
  for (const NumberSymbols* symbols : {&english, &french, &arabic}) check(text, *symbols);
  check(text, {});
  if (const auto real = scanReal(text)) {
    std::u16string_view number = std::u16string_view(text).substr(0, real->end);
    number.remove_prefix(number.find_first_of(u"+-.0123456789"));
    if (g_ascii_strtod(utf8FromUtf16(number).c_str(), nullptr) != real->value) std::abort();
  }
  return 0;
}
