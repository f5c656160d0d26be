#include "foundation/date/date_parser.h"

#include <unicode/ucal.h>
#include <unicode/udat.h>

#include <iterator>
#include <utility>

#include "foundation/text/icu_text.h"

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

using CalendarPointer = std::unique_ptr<UCalendar, CloseCalendar>;

// A pattern taken apart, as far as it matters here.
struct PatternParts {
  std::u16string fields;        // its letters
  std::u16string literalAtEnd;  // the literal text behind the last field
};

PatternParts partsOf(std::u16string_view pattern) {
  PatternParts parts;
  bool isQuoted = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char16_t unit = pattern[i];
    const bool isLetter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
    if (unit == u'\'' && pattern.substr(i + 1).starts_with(u'\'')) {
      parts.literalAtEnd += pattern[i++];
    } else if (unit == u'\'') {
      isQuoted = !isQuoted;
    } else if (isLetter && !isQuoted) {
      parts.fields += unit;
      parts.literalAtEnd.clear();
    } else {
      parts.literalAtEnd += unit;
    }
  }
  return parts;
}

// A calendar at 2000-01-01 00:00:00 of the Gregorian calendar, whichever calendar it
// is itself. Of fields that contradict each other a calendar follows those that were
// set last, and all that it knows at first counts as set. So where the pattern names
// a day, the calendar knows no week that a day of the week could count from, and
// never a time of day.
CalendarPointer startFor(const UCalendar* kind, std::u16string_view zone, bool hasDay,
                         UErrorCode& status) {
  const char16_t* const zoneUnits = zone.empty() ? nullptr : zone.data();
  const CalendarPointer gregorian(
      ucal_open(zoneUnits, icuLength(zone), "", UCAL_GREGORIAN, &status));
  CalendarPointer start(ucal_clone(kind, &status));
  if (U_FAILURE(status)) return start;
  ucal_clear(gregorian.get());
  ucal_setDateTime(gregorian.get(), 2000, UCAL_JANUARY, 1, 0, 0, 0, &status);
  ucal_setMillis(start.get(), ucal_getMillis(gregorian.get(), &status), &status);
  if (hasDay) {
    constexpr UCalendarDateFields kDateFields[] = {UCAL_ERA, UCAL_YEAR, UCAL_MONTH, UCAL_DATE};
    std::int32_t values[std::size(kDateFields)];
    for (std::size_t i = 0; i < std::size(kDateFields); ++i) {
      values[i] = ucal_get(start.get(), kDateFields[i], &status);
    }
    ucal_clear(start.get());
    for (std::size_t i = 0; i < std::size(kDateFields); ++i) {
      ucal_set(start.get(), kDateFields[i], values[i]);
    }
  } else {
    for (const UCalendarDateFields field :
         {UCAL_AM_PM, UCAL_HOUR, UCAL_HOUR_OF_DAY, UCAL_MINUTE, UCAL_SECOND, UCAL_MILLISECOND,
          UCAL_MILLISECONDS_IN_DAY, UCAL_ZONE_OFFSET, UCAL_DST_OFFSET}) {
      ucal_clearField(start.get(), field);
    }
  }
  ucal_setAttribute(start.get(), UCAL_LENIENT, 0);
  return start;
}

}  // namespace

struct DateParser::Formats {
  std::unique_ptr<UDateFormat, CloseFormat> format;
  CalendarPointer start;
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
  PatternParts parts = partsOf(pattern);
  const bool hasDay = parts.fields.find_first_of(u"dDg") != std::u16string::npos;
  formats->start = startFor(udat_getCalendar(formats->format.get()), timeZone, hasDay, status);
  if (U_FAILURE(status)) return std::nullopt;
  formats->literalAtEnd = std::move(parts.literalAtEnd);
  return DateParser(std::move(formats));
}

std::optional<Date> DateParser::parse(std::u16string_view text) const {
  // ICU takes a text that ends before the literal does.
  if (!text.ends_with(formats_->literalAtEnd)) return std::nullopt;
  UErrorCode status = U_ZERO_ERROR;
  const CalendarPointer calendar(ucal_clone(formats_->start.get(), &status));
  std::int32_t position = 0;
  udat_parseCalendar(formats_->format.get(), calendar.get(), icuUnits(text), icuLength(text),
                     &position, &status);
  // An hour of the whole day leaves nothing for a.m. and p.m. to say.
  if (ucal_isSet(calendar.get(), UCAL_HOUR_OF_DAY) && !ucal_isSet(calendar.get(), UCAL_HOUR)) {
    ucal_clearField(calendar.get(), UCAL_AM_PM);
  }
  const double milliseconds = ucal_getMillis(calendar.get(), &status);
  if (U_FAILURE(status) || position != icuLength(text)) return std::nullopt;
  return Date{milliseconds / kMillisecondsPerSecond - kReferenceDate};
}

}  // namespace skerrow::foundation
