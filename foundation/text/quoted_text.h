#pragma once
// Texts of others as messages for people show them.

#include <cstddef>
#include <string>
#include <string_view>

namespace skerrow::foundation {

/// At most `length` units of a text from around a place on, in UTF-8, with dots where
/// more was. Control characters and lone surrogates are shown as their \uXXXX escapes.
std::string excerpt(std::u16string_view text, std::size_t place, std::size_t length);

/// How much of a text a message shows.
inline constexpr std::size_t kLongestShown = 200;

/// A text of a caller for a message, cut behind 200 characters with dots where more was.
std::string shortened(std::string_view utf8);
/// The same, in UTF-8.
std::string shortened(std::u16string_view text);

/// The text in quotation marks, cut behind 200 units: “a\u0000b”
std::string quoted(std::u16string_view text);

}  // namespace skerrow::foundation
