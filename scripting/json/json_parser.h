#pragma once
// JsonParser: reads one JSON text (RFC 8259) from a JsonSource and tells a handler
// what it holds, in order. Texts come as UTF-16, in which half of a surrogate pair,
// spelled as its escape, is a unit like any other. Integers up to 64 bits come
// exactly, all other numbers as the nearest real. Reading recurses as deep as the
// handler lets arrays and objects nest. A text may have 1,073,741,823 units, and a
// number as many digits.
//
// A handler has null(), boolean(bool), number(Number), text(units), beginArray(),
// endArray(), beginObject(), label(units) and endObject(), each called when its
// token was taken; units are valid during the call. What it throws passes through.

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <system_error>

#include "foundation/number/decimal.h"
#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"
#include "scripting/json/json_source.h"
#include "values/number.h"

namespace skerrow::scripting {

/// What is wrong with a JSON text, and where, in words for a person.
struct JsonFault {
  std::string place;
  const char* problem;
};

template <class Handler>
class JsonParser {
 public:
  JsonParser(JsonSource& source, Handler& handler) : source_(source), handler_(handler) {}

  /// Reads the whole text, which is one value. Throws JsonFault.
  void parse() {
    skipSpace();
    if (source_.isAtEnd()) fail("there is no JSON value here");
    value();
    skipSpace();
    if (source_.isAtEnd()) return;
    fail(source_.peek() == '\0' ? "the character NUL has no place here"
                                : "something follows the end of the value");
  }

 private:
  // Text services count units in 31 bits, and some make several of one.
  static constexpr std::size_t kMostUnits = 0x3FFFFFFF;
  static constexpr const char* kControlCharacter =
      "a control character in a text must be written as an escape";

  [[noreturn]] void fail(const char* problem) { fail(source_.offset(), problem); }
  [[noreturn]] void fail(std::size_t offset, const char* problem) {
    throw JsonFault{source_.placeOf(offset), problem};
  }

  void skipSpace() {
    for (;;) {
      const char next = source_.peek();
      if (next > ' ' || (next != ' ' && next != '\n' && next != '\r' && next != '\t')) return;
      source_.skip(1);
    }
  }

  bool takeIf(char wanted) {
    if (source_.peek() != wanted) return false;
    source_.skip(1);
    return true;
  }

  void value() {
    switch (source_.peek()) {
      case '{':
        return object();
      case '[':
        return array();
      case '"':
        return handler_.text(string());
      case 't':
        word("true");
        return handler_.boolean(true);
      case 'f':
        word("false");
        return handler_.boolean(false);
      case 'n':
        word("null");
        return handler_.null();
      default:
        return number();
    }
  }

  void word(std::string_view letters) {
    for (const char letter : letters) {
      if (!takeIf(letter)) fail("a value was expected here");
    }
  }

  void array() {
    source_.skip(1);
    handler_.beginArray();
    skipSpace();
    if (takeIf(']')) return handler_.endArray();
    for (;;) {
      value();
      skipSpace();
      if (takeIf(']')) return handler_.endArray();
      if (!takeIf(',')) fail("a comma or “]” was expected after the item");
      skipSpace();
    }
  }

  void object() {
    source_.skip(1);
    handler_.beginObject();
    skipSpace();
    if (takeIf('}')) return handler_.endObject();
    for (;;) {
      if (source_.peek() != '"') fail("a name in double quotes, or “}”, was expected here");
      handler_.label(string());
      skipSpace();
      if (!takeIf(':')) fail("a colon was expected after the name");
      skipSpace();
      value();
      skipSpace();
      if (takeIf('}')) return handler_.endObject();
      if (!takeIf(',')) fail("a comma or “}” was expected after the member");
      skipSpace();
    }
  }

  std::u16string_view string() {
    source_.skip(1);
    used_ = 0;
    for (;;) {
      takePlain();
      const char next = source_.peek();
      if (next == '"') {
        source_.skip(1);
        return {text_.data(), used_};
      }
      if (next == '\\') {
        escape();
      } else if (static_cast<unsigned char>(next) >= 0x80) {
        characters();
      } else if (source_.isAtEnd()) {
        fail("the text has no closing quotation mark");
      } else if (next < ' ') {
        fail(kControlCharacter);
      }
    }
  }

  void takePlain() {
    const std::string_view ready = source_.ready(1);
    const std::size_t count = plainCount(ready);
    char16_t* const units = roomFor(count);
    for (std::size_t i = 0; i < count; ++i) units[i] = static_cast<unsigned char>(ready[i]);
    used_ += count;
    source_.skip(count);
  }

  char16_t* roomFor(std::size_t count) {
    if (text_.size() - used_ < count) grow(count);
    return text_.data() + used_;
  }

  void grow(std::size_t count) {
    if (count > kMostUnits - used_) fail("the text has more than 1073741823 UTF-16 units");
    text_.resize(std::min(2 * text_.size() + count, kMostUnits));
  }

  void append(char16_t unit) {
    *roomFor(1) = unit;
    ++used_;
  }

  // How many bytes at the front stand for themselves: ASCII but for control characters,
  // quotation marks and backslashes.
  static std::size_t plainCount(std::string_view bytes) {
    constexpr std::uint64_t kEach = 0x0101010101010101U;
    std::size_t count = 0;
    for (std::uint64_t word = 0; bytes.size() - count >= sizeof word; count += sizeof word) {
      std::memcpy(&word, bytes.data() + count, sizeof word);
      if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
      // The highest bit of each byte that is none of these. Subtracting may set it in
      // plain bytes too, but only behind another one.
      const std::uint64_t marked = (word | (word - kEach * ' ') | ((word ^ kEach * '"') - kEach) |
                                    ((word ^ kEach * '\\') - kEach)) &
                                   kEach * 0x80;
      if (marked != 0) return count + static_cast<std::size_t>(std::countr_zero(marked)) / 8;
    }
    while (count < bytes.size() && isPlain(static_cast<unsigned char>(bytes[count]))) ++count;
    return count;
  }
  static bool isPlain(unsigned char byte) {
    return byte >= ' ' && byte < 0x80 && byte != '"' && byte != '\\';
  }

  // A run of characters that are not ASCII.
  void characters() {
    constexpr std::size_t kLongest = 4;
    std::string_view ready = source_.ready(kLongest);
    do {
      const auto character = foundation::codePointFromUtf8(ready);
      if (!character) fail("the text is not valid UTF-8");
      used_ += foundation::encodeUtf16(character->value, roomFor(2));
      source_.skip(character->unitCount);
      ready.remove_prefix(character->unitCount);
    } while (ready.size() >= kLongest && static_cast<unsigned char>(ready.front()) >= 0x80);
  }

  void escape() {
    const std::size_t begin = source_.offset();
    source_.take();
    const char escaped = source_.peek();
    switch (escaped) {
      case '"':
      case '\\':
      case '/':
        append(static_cast<char16_t>(escaped));
        break;
      case 'b':
        append(u'\b');
        break;
      case 'f':
        append(u'\f');
        break;
      case 'n':
        append(u'\n');
        break;
      case 'r':
        append(u'\r');
        break;
      case 't':
        append(u'\t');
        break;
      case 'u':
        source_.take();
        return unit(begin);
      default: {
        const bool isControl = static_cast<unsigned char>(escaped) < ' ' && !source_.isAtEnd();
        fail(begin, isControl ? kControlCharacter : "there is no such escape");
      }
    }
    source_.take();
  }

  void unit(std::size_t begin) {
    unsigned spelled = 0;
    for (int i = 0; i < 4; ++i) {
      const char digit = source_.peek();
      const auto value = foundation::hexadecimalDigit(static_cast<unsigned char>(digit));
      if (!value) fail(begin, "four hexadecimal digits were expected after \\u");
      source_.take();
      spelled = spelled << 4U | *value;
    }
    append(static_cast<char16_t>(spelled));
  }

  static bool isDigit(char character) { return character >= '0' && character <= '9'; }

  // Short integers, which most numbers are, are read where they lie.
  void number() {
    constexpr std::size_t kMostDigits = 18;
    const std::string_view ready = source_.ready(1);
    const std::size_t first = ready.starts_with('-') ? 1 : 0;
    std::size_t end = first;
    std::int64_t integer = 0;
    for (; end < ready.size() && end - first < kMostDigits && isDigit(ready[end]); ++end) {
      integer = integer * 10 + (ready[end] - '0');
    }
    const bool isWhole = end < ready.size() && !isDigit(ready[end]) && ready[end] != '.' &&
                         ready[end] != 'e' && ready[end] != 'E';
    if (end == first || !isWhole || (ready[first] == '0' && end > first + 1)) return anyNumber();
    source_.skip(end);
    handler_.number(Number::signed64(first > 0 ? -integer : integer));
  }

  void anyNumber() {
    source_.mark(source_.offset());
    number_.clear();
    if (source_.peek() == '-') number_ += source_.take();
    if (!isDigit(source_.peek())) fail("a value was expected here");
    if (source_.peek() == '0') {
      number_ += source_.take();
    } else {
      takeDigits();
    }
    bool isInteger = true;
    if (source_.peek() == '.') {
      isInteger = false;
      number_ += source_.take();
      if (!isDigit(source_.peek())) fail("a digit was expected after the decimal point");
      takeDigits();
    }
    if (source_.peek() == 'e' || source_.peek() == 'E') {
      isInteger = false;
      number_ += source_.take();
      if (source_.peek() == '+' || source_.peek() == '-') number_ += source_.take();
      if (!isDigit(source_.peek())) fail("a digit was expected in the exponent");
      takeDigits();
    }
    if (isInteger && (sendInteger<std::int64_t>(&Number::signed64) ||
                      sendInteger<std::uint64_t>(&Number::unsigned64))) {
      return;
    }
    const double real = foundation::nearestReal(number_);
    if (std::isinf(real)) throw JsonFault{source_.placeOfMark(), "the number is too large"};
    handler_.number(Number::real(real));
  }

  void takeDigits() {
    while (isDigit(source_.peek())) {
      if (number_.size() == kMostUnits) fail("the number has more than 1073741823 digits");
      number_ += source_.take();
    }
  }

  // False where the type is too small for what was read.
  template <class Integer>
  bool sendInteger(Number (*make)(Integer)) {
    Integer integer = 0;
    const char* const end = number_.data() + number_.size();
    if (std::from_chars(number_.data(), end, integer).ec != std::errc()) return false;
    handler_.number(make(integer));
    return true;
  }

  JsonSource& source_;
  Handler& handler_;
  std::u16string text_;  // room for the units of a text
  std::size_t used_ = 0;
  std::string number_;
};

}  // namespace skerrow::scripting
