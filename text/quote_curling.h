#pragma once
// Straight and typographic quotes. Both directions change units in place, one for
// one, in a single pass.

#include <string>

namespace skerrow::text {

/// Turns straight quotes into typographic ones. An apostrophe before an abbreviated
/// decade ('90s, '90's) is a right single quote. Any other straight quote opens at
/// the very start of the text, after white space and after ">", and closes elsewhere.
///
/// The rule for decades may be applied once or several times over: what it leaves
/// holds no decade, so one pass serves every command that curls quotes.
void curlQuotes(std::u16string& units);

/// Turns the four typographic quotes of English into straight ones.
void straightenQuotes(std::u16string& units);

}  // namespace skerrow::text
