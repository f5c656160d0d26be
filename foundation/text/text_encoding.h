#pragma once
// Conversions between UTF-16 text and bytes. All of them are linear and keep no
// state. Lone surrogates, which no byte encoding here can hold, become U+FFFD, but
// for those that stand for bytes of file names.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

/// UTF-8 to UTF-16, strictly (Unicode 15, table 3-7): nothing when any byte is
/// out of place. A byte-order mark is kept as U+FEFF.
std::optional<std::u16string> utf16FromUtf8(std::string_view bytes);

/// The same, with U+FFFD for each maximal ill-formed subsequence.
std::u16string utf16FromUtf8Replacing(std::string_view bytes);

std::string utf8FromUtf16(std::u16string_view text);

/// The character at the front of UTF-8, with the number of its bytes as that of its
/// units; nothing when it is ill-formed or cut off.
std::optional<CodePoint> codePointFromUtf8(std::string_view bytes);

/// Writes the one to four bytes of a character, which must not be a surrogate; how many.
std::size_t encodeUtf8(char32_t character, char* bytes);

/// The bytes of a file name, which may be any, as text: UTF-8 where they are, and each other
/// byte as the lone surrogate U+DC00 above it. No two names become the same text.
std::u16string textFromFileName(std::string_view bytes);

/// The bytes again; nothing where a lone surrogate stands for no such byte.
std::optional<std::string> fileNameFromText(std::u16string_view text);

/// The bytes without a byte-order mark of UTF-8 at their front.
std::string_view withoutUtf8Mark(std::string_view bytes);

/// Whether any half of a surrogate pair stands without the other.
bool hasLoneSurrogate(std::u16string_view text) noexcept;

/// Bytes of UTF-16 in the host's order, or in the order that a byte-order mark at
/// the front tells; the mark is dropped. An odd last byte is ignored.
std::u16string utf16FromUtf16Bytes(std::string_view bytes);

/// Mac OS Roman as published by the Unicode Consortium (VENDORS/APPLE/ROMAN.TXT,
/// with the euro sign at 0xDB). Every byte has a character.
std::u16string utf16FromMacRoman(std::string_view bytes);

/// Nothing when a character has no place in Mac OS Roman.
std::optional<std::string> macRomanFromUtf16(std::u16string_view text);

}  // namespace skerrow::foundation
