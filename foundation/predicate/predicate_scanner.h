#pragma once
// Splits a predicate format into its words, texts, numbers and signs, as the
// platform's predicate format string syntax defines them. White space separates
// and means nothing else.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "values/value.h"

namespace skerrow::foundation {

struct PredicateToken {
  enum class Kind : std::uint8_t {
    end,
    word,  ///< a key, a function or a keyword
    key,   ///< a word that is never a keyword: #first, @count, or written with escapes
    text,  ///< in quotation marks, its escapes resolved
    number,
    variable,     ///< $name
    placeholder,  ///< %@, %K, %% and the like; `text` is what follows the percent sign
    symbol,
  };

  Kind kind = Kind::end;
  std::size_t begin = 0;  ///< in units of the format
  std::u16string text;    ///< of words, texts, variables (without $), placeholders and symbols
  Value number;

  [[nodiscard]] bool isSymbol(std::u16string_view symbol) const {
    return kind == Kind::symbol && text == symbol;
  }
};

class PredicateScanner {
 public:
  /// `format` must outlive the scanner.
  explicit PredicateScanner(std::u16string_view format) : format_(format) {}

  /// The next token; the end again and again once it is reached. Throws PredicateError.
  PredicateToken next();

 private:
  [[noreturn]] void fail(std::size_t place, const std::string& what) const;
  [[nodiscard]] char16_t unitAt(std::size_t index) const {
    return index < format_.size() ? format_[index] : u'\0';
  }

  void skipSpace();
  bool readEscape(std::u16string& into);
  bool readWord(PredicateToken& token);
  void readText(PredicateToken& token);
  void readNumber(PredicateToken& token);
  bool skipDecimalNumber();
  void checkNumberEnd(const PredicateToken& token) const;
  void readRadixNumber(PredicateToken& token, int radix);
  void readPlaceholder(PredicateToken& token);
  void readSymbol(PredicateToken& token);

  std::u16string_view format_;
  std::size_t place_ = 0;
};

}  // namespace skerrow::foundation
