#include "foundation/date/date_parser.h"

#include <unicode/ucal.h>
#include <unicode/uchar.h>
#include <unicode/udat.h>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "foundation/text/icu_text.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;
constexpr double kReferenceDate = 978307200.0;     // 2001-01-01T00:00:00Z in seconds since 1970
constexpr std::int32_t kFirstTwoDigitYear = 1950;  // and so to 2049, whatever today is

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

// One field of a pattern, or the literal text between two fields.
struct PatternPart {
  char16_t letter = 0;    // of a field, else 0
  std::u16string text;    // of a literal, without the quotation marks
  std::u16string source;  // as it stands in the pattern
};

std::vector<PatternPart> partsOf(std::u16string_view pattern) {
  std::vector<PatternPart> parts;
  bool isQuoted = false;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char16_t unit = pattern[i];
    const bool isMark = unit == u'\'';
    const bool isLetter = (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
    const char16_t letter = isLetter && !isQuoted ? unit : u'\0';
    if (parts.empty() || parts.back().letter != letter) parts.push_back({letter, {}, {}});
    PatternPart& part = parts.back();
    part.source += unit;
    if (isMark && pattern.substr(i + 1).starts_with(u'\'')) {
      part.source += pattern[++i];
      part.text += unit;
    } else if (isMark) {
      isQuoted = !isQuoted;
    } else if (letter == 0) {
      part.text += unit;
    }
  }
  return parts;
}

// Whether the part is a field of one of these letters.
bool isField(const PatternPart& part, std::u16string_view letters) {
  return part.letter != 0 && letters.find(part.letter) != std::u16string_view::npos;
}

bool isDigits(const PatternPart& part) {
  static constexpr std::u16string_view kNumbers = u"yYurdDFgHhKkmsSAwW";
  static constexpr std::u16string_view kNamesWhenLong = u"MLQqec";
  return isField(part, kNumbers) || (part.source.size() <= 2 && isField(part, kNamesWhenLong));
}

// The pattern with one letter for each number that may have fewer digits than letters.
// Where numbers touch, only their letters tell where one ends. A year is read with fewer
// digits anyway, and two letters of it mean something else than one; so does a fraction.
std::u16string withoutDigitCounts(const std::vector<PatternPart>& parts) {
  static constexpr std::u16string_view kKept = u"yYrS";
  std::u16string pattern;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const bool touches =
        (i > 0 && isDigits(parts[i - 1])) || (i + 1 < parts.size() && isDigits(parts[i + 1]));
    if (isDigits(parts[i]) && !touches && !isField(parts[i], kKept)) {
      pattern += parts[i].letter;
    } else {
      pattern += parts[i].source;
    }
  }
  return pattern;
}

std::u16string_view withoutSpaceAtEnd(std::u16string_view text) {
  while (!text.empty() && u_isUWhiteSpace(text.back()) != 0) text.remove_suffix(1);
  return text;
}

std::u16string_view withoutSpaceAtFront(std::u16string_view text) {
  while (!text.empty() && u_isUWhiteSpace(text.front()) != 0) text.remove_prefix(1);
  return text;
}

UDate startOf(std::int32_t year, std::u16string_view zone, UErrorCode& status) {
  const CalendarPointer calendar(ucal_open(zone.empty() ? nullptr : zone.data(), icuLength(zone),
                                           "", UCAL_GREGORIAN, &status));
  if (U_FAILURE(status)) return 0;
  ucal_clear(calendar.get());
  ucal_setDateTime(calendar.get(), year, UCAL_JANUARY, 1, 0, 0, 0, &status);
  return ucal_getMillis(calendar.get(), &status);
}

// A calendar at 2000-01-01 00:00:00 of the Gregorian calendar, whichever calendar it
// is itself. Of fields that contradict each other a calendar follows those that were
// set last, and all that it knows at first counts as set. So where the pattern names
// a day, the calendar knows no week that a day of the week could count from, and
// never a time of day.
CalendarPointer startFor(const UCalendar* kind, std::u16string_view zone, bool hasDay,
                         UErrorCode& status) {
  CalendarPointer start(ucal_clone(kind, &status));
  if (U_FAILURE(status)) return start;
  ucal_setMillis(start.get(), startOf(2000, zone, status), &status);
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
  bool beginsWithSpace = false;
  std::u16string literalAtEnd;  // the text behind the last field, without white space at its end
};

DateParser::DateParser(std::unique_ptr<Formats> formats) : formats_(std::move(formats)) {}
DateParser::DateParser(DateParser&&) noexcept = default;
DateParser& DateParser::operator=(DateParser&&) noexcept = default;
DateParser::~DateParser() = default;

std::optional<DateParser> DateParser::make(std::u16string_view pattern, const std::string& locale,
                                           const std::string& timeZone) {
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string zoneName = utf16FromUtf8Replacing(timeZone);
  const char16_t* const zone = zoneName.empty() ? nullptr : zoneName.data();
  const std::int32_t zoneLength = icuLength(zoneName);
  const char* const language = locale.empty() ? "en_US_POSIX" : locale.c_str();
  const std::vector<PatternPart> parts = partsOf(pattern);
  const std::u16string relaxed = withoutDigitCounts(parts);
  auto formats = std::make_unique<Formats>();
  formats->format.reset(udat_open(UDAT_PATTERN, UDAT_PATTERN, language, zone, zoneLength,
                                  icuUnits(relaxed), icuLength(relaxed), &status));
  if (U_FAILURE(status)) return std::nullopt;
  udat_setLenient(formats->format.get(), 0);
  for (const UDateFormatBooleanAttribute leniency : kLeniencies) {
    udat_setBooleanAttribute(formats->format.get(), leniency, 0, &status);
  }
  udat_set2DigitYearStart(formats->format.get(), startOf(kFirstTwoDigitYear, zoneName, status),
                          &status);
  const bool hasDay =
      std::ranges::any_of(parts, [](const auto& part) { return isField(part, u"dDg"); });
  formats->start = startFor(udat_getCalendar(formats->format.get()), zoneName, hasDay, status);
  if (U_FAILURE(status)) return std::nullopt;
  if (!parts.empty()) {
    const std::u16string& front = parts.front().text;
    formats->beginsWithSpace = withoutSpaceAtFront(front).size() < front.size();
    formats->literalAtEnd = withoutSpaceAtEnd(parts.back().text);
  }
  return DateParser(std::move(formats));
}

std::optional<Date> DateParser::parse(std::u16string_view text) const {
  text = withoutSpaceAtEnd(text);
  if (!formats_->beginsWithSpace) text = withoutSpaceAtFront(text);
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
