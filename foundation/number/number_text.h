#pragma once
// Numbers as plain text, the same in every locale: digits, a full stop, an
// exponent. This is not formatting for people.

#include <optional>
#include <string>
#include <string_view>

#include "values/number.h"

namespace skerrow::foundation {

/// The number that the whole text spells in decimal, with white space around it
/// allowed; an integer where it is written as one and 64 bits hold it.
std::optional<Number> numberFromText(std::u16string_view text);

/// The number at the front of the text, after white space; 0 when there is none.
Number numberAtFront(std::u16string_view text);

/// The shortest text for an integer; up to 16 significant digits for a real.
std::u16string textFromNumber(Number number);

}  // namespace skerrow::foundation
