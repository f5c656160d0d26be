#pragma once
// Kinds of values in words, as messages, the program's listing and the reference page
// have them: one table for all, made with the dictionary.

#include <span>
#include <string>
#include <string_view>

#include "scripting/dictionary/dictionary.h"
#include "values/script_value.h"

namespace skerrow::scripting {

struct KindWords {
  Kinds kind;
  std::string_view one;   ///< "a text"
  std::string_view many;  ///< "texts"
};

std::span<const KindWords> kindWords() noexcept;

/// The words of a single kind.
const KindWords& wordsOf(Kinds kind) noexcept;

/// "a text", "missing value", "the integer 5": what a value is.
std::string kindInWords(const ScriptValue& value);

}  // namespace skerrow::scripting
