#pragma once
// u"…"_text: texts in tests.

#include <cstddef>
#include <string_view>

#include "values/text.h"

namespace skerrow::text {

inline Text operator""_text(const char16_t* units, std::size_t count) {
  return Text(std::u16string_view(units, count));
}

inline Text textOf(const char16_t* units) { return Text(std::u16string_view(units)); }

}  // namespace skerrow::text
