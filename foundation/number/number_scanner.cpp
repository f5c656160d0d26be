#include "foundation/number/number_scanner.h"

#include <unicode/unum.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <system_error>

#include "foundation/number/decimal.h"
#include "foundation/text/character_sets.h"
#include "foundation/text/code_points.h"

namespace skerrow::foundation {

namespace {

// Writers use whichever of these the keyboard has.
bool isSpaceLike(std::u16string_view separator) {
  return separator.size() == 1 && isWhiteSpace(separator.front());
}

std::u16string symbolOf(const UNumberFormat* format, UNumberFormatSymbol symbol,
                        std::u16string_view fallback) {
  char16_t units[32];
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t length = unum_getSymbol(format, symbol, units, 32, &status);
  if (U_FAILURE(status) || length == 0) return std::u16string(fallback);
  return {units, static_cast<std::size_t>(length)};
}

}  // namespace

NumberSymbols NumberSymbols::ofLocale(const std::string& locale) {
  struct Close {
    void operator()(UNumberFormat* format) const { unum_close(format); }
  };
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UNumberFormat, Close> format(
      unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &status));
  NumberSymbols symbols;
  symbols.isLocalized_ = true;
  if (U_FAILURE(status)) return symbols;
  symbols.decimal_ = symbolOf(format.get(), UNUM_DECIMAL_SEPARATOR_SYMBOL, u".");
  symbols.grouping_ = symbolOf(format.get(), UNUM_GROUPING_SEPARATOR_SYMBOL, u"");
  symbols.minus_ = symbolOf(format.get(), UNUM_MINUS_SIGN_SYMBOL, u"-");
  symbols.plus_ = symbolOf(format.get(), UNUM_PLUS_SIGN_SYMBOL, u"+");
  return symbols;
}

// Reads a text by its symbols and writes the number down in ASCII.
class NumberReader {
 public:
  NumberReader(std::u16string_view text, const NumberSymbols& symbols)
      : text_(text), symbols_(symbols) {
    while (position_ < text_.size() && isWhiteSpaceOrNewline(text_[position_])) ++position_;
  }

  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  [[nodiscard]] const std::string& ascii() const noexcept { return ascii_; }

  /// False where no number begins.
  bool readInteger() {
    readSign();
    return readDigits(Grouping::allowed) > 0;
  }

  bool readReal() {
    readSign();
    std::size_t digits = readDigits(Grouping::allowed);
    const std::size_t point = position_;
    if (skip(symbols_.decimal_)) {
      ascii_ += '.';
      const std::size_t fraction = readDigits(Grouping::none);
      digits += fraction;
      if (digits == 0) position_ = point;
    }
    if (digits == 0) return false;
    readExponent();
    return true;
  }

 private:
  enum class Grouping { none, allowed };

  bool skip(std::u16string_view symbol) {
    if (symbol.empty() || !text_.substr(position_).starts_with(symbol)) return false;
    position_ += symbol.size();
    return true;
  }

  void readSign() {
    if (skip(symbols_.minus_) || skip(u"-")) {
      ascii_ += '-';
    } else if (!skip(symbols_.plus_)) {
      skip(u"+");
    }
  }

  [[nodiscard]] std::optional<int> digitAt(std::size_t position, std::size_t& unitCount) const {
    if (position >= text_.size()) return std::nullopt;
    const CodePoint point = codePointAt(text_, position);
    unitCount = point.unitCount;
    if (point.value >= 0x80 && !symbols_.isLocalized_) return std::nullopt;
    return decimalDigit(point.value);
  }

  std::size_t readDigits(Grouping grouping) {
    std::size_t count = 0;
    for (;;) {
      std::size_t unitCount = 0;
      const std::optional<int> digit = digitAt(position_, unitCount);
      if (digit) {
        ascii_ += static_cast<char>('0' + *digit);
        position_ += unitCount;
        ++count;
      } else if (count == 0 || grouping == Grouping::none || !skipGrouping()) {
        return count;
      }
    }
  }

  // A separator counts only with a digit behind it.
  bool skipGrouping() {
    const std::size_t before = position_;
    const bool isSeparator =
        skip(symbols_.grouping_) ||
        (isSpaceLike(symbols_.grouping_) && position_ < text_.size() &&
         isWhiteSpace(text_[position_]) && text_[position_] != u'\t' && ++position_ > before);
    std::size_t unitCount = 0;
    if (isSeparator && digitAt(position_, unitCount)) return true;
    position_ = before;
    return false;
  }

  void readExponent() {
    const std::size_t before = position_;
    const std::size_t written = ascii_.size();
    if (!skip(u"e") && !skip(u"E")) return;
    ascii_ += 'e';
    readSign();
    if (readDigits(Grouping::none) > 0) return;
    position_ = before;
    ascii_.resize(written);
  }

  std::u16string_view text_;
  const NumberSymbols& symbols_;
  std::size_t position_ = 0;
  std::string ascii_;
};

std::optional<ScannedNumber<double>> scanReal(std::u16string_view text,
                                              const NumberSymbols& symbols) {
  NumberReader reader(text, symbols);
  if (!reader.readReal()) return std::nullopt;
  return ScannedNumber<double>{nearestReal(reader.ascii()), reader.position()};
}

std::optional<ScannedNumber<std::int64_t>> scanInteger(std::u16string_view text,
                                                       const NumberSymbols& symbols) {
  using Limits = std::numeric_limits<std::int64_t>;
  NumberReader reader(text, symbols);
  if (!reader.readInteger()) return std::nullopt;
  const std::string& ascii = reader.ascii();
  std::int64_t value = 0;
  const auto read = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
  if (read.ec == std::errc::result_out_of_range) {
    value = ascii.starts_with('-') ? Limits::min() : Limits::max();
  }
  return ScannedNumber<std::int64_t>{value, reader.position()};
}

}  // namespace skerrow::foundation
