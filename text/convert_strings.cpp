// SKWConvertStrings: reads a text, or each text of a list, as a date by a pattern or
// as a number.

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "argument_keys/SKWConvertStrings.h"
#include "core/command.h"
#include "core/script_error.h"
#include "foundation/date/date_parser.h"
#include "foundation/number/number_scanner.h"
#include "foundation/text/quoted_text.h"
#include "foundation/text/user_preferences.h"
#include "text/text_input.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWConvertStrings;
using core::ErrorEntry;
using core::ScriptError;
using foundation::DateParser;
using foundation::NumberSymbols;
using Items = std::vector<Value>;

// Kept: the misspellings are part of the messages, which scripts test for.
constexpr ErrorEntry kNotTexts = {1421,
                                  "Direct parameter is neither a string nor a list of strings."};
constexpr ErrorEntry kDatesAndIntegers = {1422, "Cannot conver to both dates and integers."};
constexpr ErrorEntry kDatesAndReals = {1423, "Cannot conver to both dates and reals."};
constexpr ErrorEntry kIntegersAndReals = {1424, "Cannot conver to both integers and reals."};
constexpr ErrorEntry kNoTarget = {1425, "You must specifiy one of the optional paramters."};
constexpr ErrorEntry kBadFormat = {1426, "Unable to initialize date formatter."};
constexpr ErrorEntry kNotADate = {1427, "String '%@' could not be converted to date."};
constexpr ErrorEntry kNotANumber = {1428, "Unable to scan '%@'."};
constexpr ErrorEntry kInfinite = {1429, "Value '%@' is out of range."};

// The nearest integer, the even one of two, in the smallest form that holds it; the
// real itself where it is too large for 64 bits.
Number roundedInteger(double real) {
  const double rounded = std::nearbyint(real);
  if (rounded >= std::numeric_limits<std::int32_t>::min() &&
      rounded <= std::numeric_limits<std::int32_t>::max()) {
    return Number::signed32(static_cast<std::int32_t>(rounded));
  }
  constexpr double kEndOf64Bits = 0x1p63;
  if (rounded >= -kEndOf64Bits && rounded < kEndOf64Bits) {
    return Number::signed64(static_cast<std::int64_t>(rounded));
  }
  return Number::real(real);
}

class SKWConvertStrings final : public core::Command {
  void check() override {
    requireTextOrList(directParameter(), kNotTexts);
    if (isEmptyList(*directParameter())) {
      answerAtOnce(Items{});
      return;
    }
    const core::Arguments& arguments = evaluatedArguments();
    format_ = textArgument(arguments.find(key::formatString));
    // Kept: given at all they count, whatever their value.
    const bool hasIntegers = arguments.has(key::asIntegers);
    const bool hasReals = arguments.has(key::asReals);
    isLocalized_ = arguments.isSet(key::useLocalized);
    if (hasIntegers && format_) throw ScriptError(kDatesAndIntegers);
    if (hasReals && format_) throw ScriptError(kDatesAndReals);
    if (hasIntegers && hasReals) throw ScriptError(kIntegersAndReals);
    if (!format_ && !hasIntegers && !hasReals) throw ScriptError(kNoTarget);
    isMakingIntegers_ = hasIntegers;
  }

  std::optional<Value> compute() override { return format_ ? dates() : numbers(); }

  [[nodiscard]] const platform::Environment& environment() const {
    return context().platform.environment;
  }

  [[nodiscard]] Value dates() {
    const std::optional<DateParser> parser =
        DateParser::make(format_->view(), foundation::userLocale(environment()),
                         foundation::userTimeZone(environment()));
    if (!parser) throw ScriptError(kBadFormat);
    return convertTextOrTexts(*takeDirectParameter(), kNotTexts, [&parser](const Text& text) {
      const std::optional<Date> date = parser->parse(text.view());
      if (!date) throw ScriptError(kNotADate, foundation::shortened(text.view()));
      return Value(*date);
    });
  }

  [[nodiscard]] Value numbers() {
    const NumberSymbols symbols =
        isLocalized_ ? NumberSymbols::ofLocale(foundation::userLocale(environment()))
                     : NumberSymbols();
    return convertTextOrTexts(
        *takeDirectParameter(), kNotTexts, [this, &symbols](const Text& text) {
          const auto scanned = foundation::scanReal(text.view(), symbols);
          if (!scanned) throw ScriptError(kNotANumber, foundation::shortened(text.view()));
          if (std::isinf(scanned->value)) {
            throw ScriptError(kInfinite, foundation::shortened(text.view()));
          }
          return Value(isMakingIntegers_ ? roundedInteger(scanned->value)
                                         : Number::real(scanned->value));
        });
  }

  std::optional<Text> format_;
  bool isMakingIntegers_ = false;
  bool isLocalized_ = false;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWConvertStrings() {
  return std::make_unique<text::SKWConvertStrings>();
}

}  // namespace skerrow
