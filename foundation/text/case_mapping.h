#pragma once
// Upper, lower and title case by Unicode's full mappings (The Unicode Standard,
// section 3.13), without the rules of any language: one letter may become several,
// and a sigma at the end of a word its final form.

#include <string>
#include <string_view>

namespace skerrow::foundation {

std::u16string uppercased(std::u16string_view text);
std::u16string lowercased(std::u16string_view text);

/// The first character of every word in title case, the others in lower case. Words
/// are what white space and newlines separate, so a word may begin with a sign.
std::u16string capitalized(std::u16string_view text);

}  // namespace skerrow::foundation
