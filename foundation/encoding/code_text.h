#pragma once
// Four-character codes as text: each byte is one character of Mac OS Roman.

#include <optional>
#include <string>
#include <string_view>

#include "values/four_char_code.h"

namespace skerrow {

class Keys;

namespace foundation {

/// Always four characters.
std::u16string textFromCode(FourCharCode code);

/// Four characters where all of them are plain ASCII, else 0x and eight digits.
std::string plainTextFromCode(FourCharCode code);

/// Nothing unless the text has exactly four characters, all of Mac OS Roman.
std::optional<FourCharCode> codeFromText(std::u16string_view text);

/// The key under which a record holds a keyword: the code between « and ».
std::u16string keyFromKeyword(FourCharCode keyword);

/// The keyword that such a key names; nothing for any other text.
std::optional<FourCharCode> keywordFromKey(std::u16string_view key);

/// Whether all keys are texts and none names a keyword: then a record that has them has
/// nothing but user fields.
bool areUserLabels(const Keys& keys);

}  // namespace foundation

}  // namespace skerrow
