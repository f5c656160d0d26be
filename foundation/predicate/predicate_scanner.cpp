#include "foundation/predicate/predicate_scanner.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "foundation/number/decimal.h"
#include "foundation/predicate/predicate_error.h"
#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

using Kind = PredicateToken::Kind;

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

int digitValue(char16_t unit) {
  if (isDigit(unit)) return unit - u'0';
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  return 16;
}

int radixAt(char16_t first, char16_t second) {
  if (first != u'0') return 10;
  if (second == u'x' || second == u'X') return 16;
  if (second == u'o' || second == u'O') return 8;
  return second == u'b' || second == u'B' ? 2 : 10;
}

Number smallest(std::uint64_t integer) {
  if (integer > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
    return Number::unsigned64(integer);
  }
  return Number::signed64(static_cast<std::int64_t>(integer));
}

bool startsWord(char32_t character) {
  return character == U'_' || u_isIDStart(static_cast<UChar32>(character)) != 0;
}

bool continuesWord(char32_t character) {
  const auto point = static_cast<UChar32>(character);
  return startsWord(character) || (u_isIDPart(point) != 0 && u_isIDIgnorable(point) == 0);
}

}  // namespace

void PredicateScanner::fail(std::size_t place, const std::string& what) const {
  throw PredicateError::unreadable(format_, place, what);
}

void PredicateScanner::skipSpace() {
  while (place_ < format_.size() && u_isUWhiteSpace(format_[place_])) ++place_;
}

PredicateToken PredicateScanner::next() {
  skipSpace();
  PredicateToken token;
  token.begin = place_;
  if (place_ < format_.size()) {
    const char16_t unit = unitAt(place_);
    if (unit == u'"' || unit == u'\'') {
      readText(token);
    } else if (isDigit(unit) || (unit == u'.' && isDigit(unitAt(place_ + 1)))) {
      readNumber(token);
    } else if (unit == u'%') {
      readPlaceholder(token);
    } else if (unit == u'#' || unit == u'@') {
      ++place_;
      if (!readWord(token)) {
        fail(token.begin, std::string("a key is missing behind “") + static_cast<char>(unit) + "”");
      }
      token.kind = Kind::key;
      if (unit == u'@') token.text.insert(0, u"@");
    } else if (unit == u'$') {
      ++place_;
      if (!readWord(token)) fail(token.begin, "the name of a variable is missing behind “$”");
      token.kind = Kind::variable;
    } else if (!readWord(token)) {
      readSymbol(token);
    }
  }
  return token;
}

// Behind a backslash: three octal digits, x and two or u and four hexadecimal digits.
bool PredicateScanner::readEscape(std::u16string& into) {
  const char16_t lead = unitAt(place_);
  const bool isHex = lead == u'x' || lead == u'X';
  const bool isUnicode = lead == u'u' || lead == u'U';
  const int radix = isHex || isUnicode ? 16 : 8;
  const std::size_t count = isHex ? 2 : isUnicode ? 4 : 3;
  const std::size_t first = place_ + (isHex || isUnicode ? 1 : 0);
  int value = 0;
  for (std::size_t i = first; i < first + count; ++i) {
    const int digit = digitValue(unitAt(i));
    if (digit >= radix) return false;
    value = value * radix + digit;
  }
  into += static_cast<char16_t>(value);
  place_ = first + count;
  return true;
}

bool PredicateScanner::readWord(PredicateToken& token) {
  token.kind = Kind::word;
  while (place_ < format_.size()) {
    std::size_t next = place_;
    if (format_[place_] == u'\\') {
      ++place_;
      if (!readEscape(token.text)) {
        fail(place_ - 1,
             "a backslash in a key needs three octal digits, x and two or u and four "
             "hexadecimal digits");
      }
      token.kind = Kind::key;
      continue;
    }
    const char16_t* const units = format_.data();
    char32_t character = 0;
    U16_NEXT(units, next, format_.size(), character);
    const bool belongs = token.text.empty() ? startsWord(character) : continuesWord(character);
    if (!belongs) break;
    token.text.append(format_.substr(place_, next - place_));
    place_ = next;
  }
  // The two keywords with hyphens.
  for (const std::u16string_view rest : {u"-CONFORMS-TO", u"-EQUALS"}) {
    if (token.kind == Kind::word && equalsIgnoringAsciiCase(token.text, u"UTI") &&
        equalsIgnoringAsciiCase(format_.substr(place_, rest.size()), rest)) {
      token.text.append(rest);
      place_ += rest.size();
    }
  }
  return !token.text.empty();
}

void PredicateScanner::readText(PredicateToken& token) {
  token.kind = Kind::text;
  const char16_t mark = format_[place_++];
  for (;;) {
    if (place_ >= format_.size()) fail(token.begin, "the closing quotation mark is missing");
    const char16_t unit = format_[place_++];
    if (unit == mark) return;
    if (unit != u'\\' || place_ >= format_.size()) {
      token.text += unit;
      continue;
    }
    if (readEscape(token.text)) continue;
    static constexpr std::u16string_view kLetters = u"abfnrtv";
    static constexpr std::u16string_view kMeanings = u"\a\b\f\n\r\t\v";
    const char16_t escaped = format_[place_++];
    const std::size_t letter = kLetters.find(escaped);
    token.text += letter == std::u16string_view::npos ? escaped : kMeanings[letter];
  }
}

// The digits of a decimal number from the current place on; whether they are an integer's.
bool PredicateScanner::skipDecimalNumber() {
  const auto skipDigits = [this] {
    while (isDigit(unitAt(place_))) ++place_;
  };
  bool isInteger = true;
  skipDigits();
  if (unitAt(place_) == u'.' && isDigit(unitAt(place_ + 1))) {
    isInteger = false;
    ++place_;
    skipDigits();
  }
  if (unitAt(place_) != u'e' && unitAt(place_) != u'E') return isInteger;
  const bool hasSign = unitAt(place_ + 1) == u'+' || unitAt(place_ + 1) == u'-';
  const std::size_t exponent = place_ + (hasSign ? 2 : 1);
  if (!isDigit(unitAt(exponent))) return isInteger;
  place_ = exponent;
  skipDigits();
  return false;
}

void PredicateScanner::readNumber(PredicateToken& token) {
  token.kind = Kind::number;
  if (const int radix = radixAt(unitAt(place_), unitAt(place_ + 1)); radix != 10) {
    return readRadixNumber(token, radix);
  }
  const bool isInteger = skipDecimalNumber();
  const std::string digits = utf8FromUtf16(format_.substr(token.begin, place_ - token.begin));
  const char* const last = digits.data() + digits.size();
  std::uint64_t integer = 0;
  if (isInteger && std::from_chars(digits.data(), last, integer).ec == std::errc()) {
    token.number = smallest(integer);
  } else {
    const double real = nearestReal(digits);
    if (std::isinf(real)) fail(token.begin, "the number is out of range");
    token.number = Number::real(real);
  }
  checkNumberEnd(token);
}

void PredicateScanner::checkNumberEnd(const PredicateToken& token) const {
  if (!continuesWord(unitAt(place_))) return;
  fail(token.begin, "a number runs into letters or digits that are none of its own");
}

void PredicateScanner::readRadixNumber(PredicateToken& token, int radix) {
  place_ += 2;
  std::uint64_t value = 0;
  std::size_t count = 0;
  for (; digitValue(unitAt(place_)) < radix; ++place_, ++count) {
    const auto digit = static_cast<std::uint64_t>(digitValue(unitAt(place_)));
    if (__builtin_mul_overflow(value, static_cast<std::uint64_t>(radix), &value) ||
        __builtin_add_overflow(value, digit, &value)) {
      fail(token.begin, "the number is out of range");
    }
  }
  if (count == 0) fail(token.begin, "the digits of a number are missing");
  checkNumberEnd(token);
  token.number = smallest(value);
}

void PredicateScanner::readPlaceholder(PredicateToken& token) {
  token.kind = Kind::placeholder;
  ++place_;
  // The length modifiers of the printf family say nothing about a value.
  while (std::u16string_view(u"hlqLzjt").find(unitAt(place_)) != std::u16string_view::npos) {
    ++place_;
  }
  const bool isPlain = place_ == token.begin + 1;
  static constexpr std::u16string_view kPlain = u"@K%";
  static constexpr std::u16string_view kPrintf = u"diouxXDOUeEfFgGaAcCsS";
  const char16_t unit = unitAt(place_);
  const bool isKnown =
      unit != u'\0' && (kPrintf.find(unit) != std::u16string_view::npos ||
                        (isPlain && kPlain.find(unit) != std::u16string_view::npos));
  if (!isKnown) fail(token.begin, "“%” begins no placeholder such as “%@” or “%K”");
  token.text = unit;
  ++place_;
}

void PredicateScanner::readSymbol(PredicateToken& token) {
  token.kind = Kind::symbol;
  static constexpr std::u16string_view kPairs[] = {u"**", u"==", u"=<", u"=>", u"!=", u"<>", u"<=",
                                                   u">=", u"&&", u"||", u":=", u"<<", u">>"};
  static constexpr std::u16string_view kSingle = u"=<>!(){}[],.:+-*/&|^";
  const std::u16string_view rest = format_.substr(place_);
  for (const std::u16string_view symbol : kPairs) {
    if (!rest.starts_with(symbol)) continue;
    token.text = symbol;
    place_ += symbol.size();
    return;
  }
  if (kSingle.find(rest.front()) == std::u16string_view::npos) {
    fail(place_, "this character has no meaning in predicates");
  }
  token.text = rest.front();
  ++place_;
}

}  // namespace skerrow::foundation
