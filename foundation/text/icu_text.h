#pragma once
// What every call of an ICU conversion needs: lengths as ICU counts them, and
// room that grows when the result turns out longer than was thought.

#include <unicode/utypes.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>

namespace skerrow::foundation {

/// Units of a text, at most as many as ICU can count.
inline std::int32_t icuLength(std::u16string_view text) {
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(text.size(), kMost));
}

/// The units of a text, which ICU wants to have an address even when there are none.
inline const char16_t* icuUnits(std::u16string_view text) {
  return text.empty() ? u"" : text.data();
}

/// Replaces `result` by what `conversion(units, room, status)` writes. The text
/// that is converted must not be `result`. Throws std::bad_alloc when ICU fails.
template <class Conversion>
void convertInto(std::u16string& result, std::size_t guess, Conversion&& conversion) {
  result.resize(guess + guess / 2 + 8);
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t length = conversion(result.data(), icuLength(result), &status);
    if (status != U_BUFFER_OVERFLOW_ERROR && U_FAILURE(status)) throw std::bad_alloc();
    const bool fits = status != U_BUFFER_OVERFLOW_ERROR;
    result.resize(static_cast<std::size_t>(length));
    if (fits) return;
  }
}

}  // namespace skerrow::foundation
