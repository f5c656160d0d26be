#include "foundation/date_parser.h"

#include <unicode/ucal.h>
#include <unicode/udat.h>

#include "foundation/icu_text.h"

namespace skerrow::foundation {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;
constexpr double kReferenceDate = 978307200.0;  // 2001-01-01T00:00:00Z in seconds since 1970

struct CloseFormat {
  void operator()(UDateFormat* format) const { udat_close(format); }
};
struct CloseCalendar {
  void operator()(UCalendar* calendar) const { ucal_close(calendar); }
};

// The leniency that udat_setLenient leaves on.
constexpr UDateFormatBooleanAttribute kLeniencies[] = {
    UDAT_PARSE_ALLOW_WHITESPACE,
    UDAT_PARSE_ALLOW_NUMERIC,
    UDAT_PARSE_PARTIAL_LITERAL_MATCH,
};

// The literal text behind the last field of a pattern.
std::u16string literalAtEnd(std::u16string_view pattern) {
  std::u16string literal;
  bool isQuoted = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char16_t unit = pattern[i];
    const bool isLetter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
    if (unit == u'\'' && pattern.substr(i + 1).starts_with(u'\'')) {
      literal += pattern[i++];
    } else if (unit == u'\'') {
      isQuoted = !isQuoted;
    } else if (isLetter && !isQuoted) {
      literal.clear();
    } else {
      literal += unit;
    }
  }
  return literal;
}

}  // namespace

struct DateParser::Formats {
  std::unique_ptr<UDateFormat, CloseFormat> format;
  std::unique_ptr<UCalendar, CloseCalendar> start;  // at 2000-01-01 00:00:00
  std::u16string literalAtEnd;
};

DateParser::DateParser(std::unique_ptr<Formats> formats) : formats_(std::move(formats)) {}
DateParser::DateParser(DateParser&&) noexcept = default;
DateParser& DateParser::operator=(DateParser&&) noexcept = default;
DateParser::~DateParser() = default;

std::optional<DateParser> DateParser::make(std::u16string_view pattern, const std::string& locale,
                                           std::u16string_view timeZone) {
  UErrorCode status = U_ZERO_ERROR;
  const char16_t* const zone = timeZone.empty() ? nullptr : timeZone.data();
  const std::int32_t zoneLength = icuLength(timeZone);
  const char* const language = locale.empty() ? "en_US_POSIX" : locale.c_str();
  auto formats = std::make_unique<Formats>();
  formats->format.reset(udat_open(UDAT_PATTERN, UDAT_PATTERN, language, zone, zoneLength,
                                  icuUnits(pattern), icuLength(pattern), &status));
  if (U_FAILURE(status)) return std::nullopt;
  udat_setLenient(formats->format.get(), 0);
  for (const UDateFormatBooleanAttribute leniency : kLeniencies) {
    udat_setBooleanAttribute(formats->format.get(), leniency, 0, &status);
  }

  // The start is a day of the Gregorian calendar, whichever calendar the locale has.
  const std::unique_ptr<UCalendar, CloseCalendar> gregorian(
      ucal_open(zone, zoneLength, "", UCAL_GREGORIAN, &status));
  ucal_clear(gregorian.get());
  ucal_setDateTime(gregorian.get(), 2000, UCAL_JANUARY, 1, 0, 0, 0, &status);
  formats->start.reset(ucal_clone(udat_getCalendar(formats->format.get()), &status));
  ucal_setMillis(formats->start.get(), ucal_getMillis(gregorian.get(), &status), &status);
  if (U_FAILURE(status)) return std::nullopt;
  ucal_setAttribute(formats->start.get(), UCAL_LENIENT, 0);
  formats->literalAtEnd = literalAtEnd(pattern);
  return DateParser(std::move(formats));
}

std::optional<Date> DateParser::parse(std::u16string_view text) const {
  // ICU takes a text that ends before the literal does.
  if (!text.ends_with(formats_->literalAtEnd)) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UCalendar, CloseCalendar> calendar(
      ucal_clone(formats_->start.get(), &status));
  std::int32_t position = 0;
  udat_parseCalendar(formats_->format.get(), calendar.get(), icuUnits(text), icuLength(text),
                     &position, &status);
  const double milliseconds = ucal_getMillis(calendar.get(), &status);
  if (U_FAILURE(status) || position != icuLength(text)) return std::nullopt;
  return Date{milliseconds / kMillisecondsPerSecond - kReferenceDate};
}

}  // namespace skerrow::foundation
