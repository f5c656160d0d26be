#pragma once
// Percent escapes in URLs (RFC 2396, section 2.4.1), over UTF-8.

#include <optional>
#include <string>
#include <string_view>

namespace skerrow::foundation {

/// Whether the characters with a meaning of their own in a URL, :/?@;,&=+$, stay.
enum class ReservedCharacters { kept, escaped };

/// Escapes every character that may not stand in a URL: all but letters and digits
/// of ASCII, the marks -_.!~*'() and, if kept, the reserved ones. A lone surrogate
/// has no UTF-8 and so gives nothing.
std::optional<std::u16string> percentEscaped(std::u16string_view text, ReservedCharacters reserved);

/// Replaces escapes by what their bytes spell. A % without two hexadecimal digits
/// stays. Nothing where neighbouring escapes together are not UTF-8.
std::optional<std::u16string> percentUnescaped(std::u16string_view text);

}  // namespace skerrow::foundation
