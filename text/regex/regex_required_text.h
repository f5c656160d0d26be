#pragma once
// What text a pattern cannot match without, so that a subject need not be searched
// where that text is no more.

#include <string>
#include <string_view>

#include "text/regex/regex_error.h"

namespace skerrow::text {

/// A run of units that every match of the pattern holds within itself, the longest
/// one that is easy to see: literal characters in a row, outside groups and classes,
/// that must occur. Empty where there is none, and for every pattern that holds
/// anything whose meaning is in doubt (a choice at the top, case-insensitive
/// matching, comments, rare escapes). The pattern must compile with the options.
std::u16string requiredText(std::u16string_view pattern, RegexOptions options);

}  // namespace skerrow::text
