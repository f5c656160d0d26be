#include "foundation/date/date_parser.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "foundation/text/text_encoding.h"

namespace skerrow::foundation {
namespace {

using std::chrono::year_month_day;

// Seconds since 2001-01-01 00:00:00 UTC.
double at(int year, unsigned month, unsigned day, double secondsOfDay = 0) {
  using namespace std::chrono;
  const sys_days date =
      year_month_day(std::chrono::year(year), std::chrono::month(month), std::chrono::day(day));
  const sys_days reference = std::chrono::year(2001) / January / 1;
  return static_cast<double>((date - reference).count()) * 86400.0 + secondsOfDay;
}

std::optional<double> parsed(std::u16string_view pattern, std::u16string_view text,
                             const std::string& locale = "en_GB",
                             const std::string& timeZone = "UTC") {
  const std::optional<DateParser> parser = DateParser::make(pattern, locale, timeZone);
  if (!parser) return std::nullopt;
  const std::optional<Date> date = parser->parse(text);
  if (!date) return std::nullopt;
  return date->seconds;
}

struct DateCase {
  const char16_t* pattern;
  const char16_t* text;
  double expected;
};

TEST(DateParser, ReadsDatesByTheirPattern) {
  const DateCase cases[] = {
      {u"yyyy-MM-dd", u"2024-02-29", at(2024, 2, 29)},
      {u"yyyyMMdd", u"20240209", at(2024, 2, 9)},
      {u"d MMMM yyyy", u"3 March 2024", at(2024, 3, 3)},
      {u"d MMMM yyyy", u"3 MARCH 2024", at(2024, 3, 3)},
      {u"yyyy-MM-dd HH:mm:ss Z", u"2024-01-02 03:04:05 +0200", at(2024, 1, 2, 3845)},
      {u"yyyy-MM-dd'T'HH:mm:ssXXX", u"2024-01-02T03:04:05Z", at(2024, 1, 2, 11045)},
      {u"h:mm a", u"12:05 AM", at(2000, 1, 1, 300)},
      {u"ss.SSS", u"01.250", at(2000, 1, 1, 1.25)},
      {u"D", u"60", at(2000, 2, 29)},
      {u"yyyy 'o''clock'.", u"2024 o'clock.", at(2024, 1, 1)},
      {u"yyyy-MM-dd", u"0001-01-01", at(1, 1, 1) - 2 * 86400.0},  // the Julian calendar
      {u"yyyy-MM-dd", u"1582-10-15", at(1582, 10, 15)},
  };
  for (const auto& each : cases) {
    const auto seconds = parsed(each.pattern, each.text);
    ASSERT_TRUE(seconds) << utf8FromUtf16(each.text);
    EXPECT_DOUBLE_EQ(*seconds, each.expected) << utf8FromUtf16(each.text);
  }
}

TEST(DateParser, TakesMissingFieldsFromTheStartOf2000) {
  EXPECT_EQ(parsed(u"HH:mm", u"14:05"), at(2000, 1, 1, 50700));
  EXPECT_EQ(parsed(u"yyyy", u"1999"), at(1999, 1, 1));
  EXPECT_EQ(parsed(u"MM/dd", u"02/29"), at(2000, 2, 29));
  EXPECT_EQ(parsed(u"dd", u"31"), at(2000, 1, 31));
  EXPECT_EQ(parsed(u"", u""), at(2000, 1, 1));
  EXPECT_EQ(parsed(u"HH", u"01", "en_GB", "Europe/Berlin"), at(2000, 1, 1, 0));
}

// What else a pattern says of a day does not move the date, wherever it stands.
TEST(DateParser, TakesTheDateAsItStandsBesideItsWeek) {
  const DateCase cases[] = {
      {u"yyyy-MM-dd EEEE", u"2024-03-01 Friday", at(2024, 3, 1)},
      {u"EEE, dd MMM yyyy", u"Fri, 01 Mar 2024", at(2024, 3, 1)},
      {u"dd MMM yyyy, EEE", u"01 Mar 2024, Fri", at(2024, 3, 1)},
      {u"M/d/yyyy (EEE)", u"12/25/2023 (Mon)", at(2023, 12, 25)},
      {u"yyyy-MM-dd e", u"2024-03-01 6", at(2024, 3, 1)},
      {u"yyyy-MM-dd w", u"2024-03-01 9", at(2024, 3, 1)},
      {u"yyyy-MM-dd W", u"2024-03-15 3", at(2024, 3, 15)},
      {u"yyyy D", u"2024 60", at(2024, 2, 29)},
      {u"dd.MM.yyyy EEEE HH:mm", u"01.03.2024 Friday 15:05", at(2024, 3, 1, 54300)},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(parsed(each.pattern, each.text), each.expected) << utf8FromUtf16(each.pattern);
  }
}

TEST(DateParser, CountsWeeksWhereNoDayIsGiven) {
  EXPECT_EQ(parsed(u"YYYY-'W'ww-e", u"2024-W09-5", "en_GB"), at(2024, 3, 1));
  EXPECT_EQ(parsed(u"YYYY ww EEE", u"2024 09 Fri", "en_GB"), at(2024, 3, 1));
}

TEST(DateParser, ReadsHoursOfEitherClock) {
  EXPECT_EQ(parsed(u"HH:mm a", u"09:30 AM"), at(2000, 1, 1, 34200));
  EXPECT_EQ(parsed(u"HH:mm a", u"15:05 PM"), at(2000, 1, 1, 54300));
  EXPECT_EQ(parsed(u"a HH:mm", u"PM 15:05"), at(2000, 1, 1, 54300));
  EXPECT_EQ(parsed(u"h:mm a", u"3:05 PM"), at(2000, 1, 1, 54300));
  EXPECT_EQ(parsed(u"a h:mm", u"AM 12:05"), at(2000, 1, 1, 300));
  EXPECT_EQ(parsed(u"yyyy-MM-dd h a", u"2024-03-01 3 PM"), at(2024, 3, 1, 54000));
}

TEST(DateParser, RefusesWhatDoesNotFit) {
  const struct {
    const char16_t* pattern;
    const char16_t* text;
  } cases[] = {
      {u"yyyy-MM-dd", u""},
      {u"yyyy-MM-dd", u"2023-02-29"},
      {u"yyyy-MM-dd", u"2024-13-01"},
      {u"yyyy-MM-dd", u"2024-00-01"},
      {u"yyyy-MM-dd", u"2024-02-09x"},
      {u"yyyy-MM-dd", u"2024/02/09"},
      {u"yyyy-MM-dd", u"2018-3"},
      {u"yyyy-MM-dd", u"2018--9"},
      {u"yyyy-MM-dd", u"2018 -03-09"},
      {u"yyyy-MM-dd", u"2018-2-30"},
      {u"yyyy-MM-dd", u"2018-13-9"},
      {u"yyyy-MM-dd", u"2018-3-9 1"},
      {u"yyyyMMdd", u"202402090"},
      {u"yyyyMMdd", u"2024 209"},
      {u"HHmm", u"09305"},
      {u"yyyy-MM-dd", u" "},
      {u"yyyy-MM-dd", u"yesterday"},
      {u"HH:mm", u"24:00"},
      {u"HH:mm", u"12:60"},
      {u"h a", u"14 PM"},
      {u"MM/dd", u"02/30"},
      {u"d MMMM", u"3 Brumaire"},
      {u"", u"x"},
      {u"yyyy'x'", u"2024"},
      {u"yyyy'o''clock'", u"2024o"},
      {u"yyyy.", u"2024"},
  };
  for (const auto& each : cases) {
    EXPECT_FALSE(parsed(each.pattern, each.text)) << utf8FromUtf16(each.text);
  }
}

TEST(DateParser, TakesNumbersWithFewerDigitsThanLetters) {
  const DateCase cases[] = {
      {u"yyyy-MM-dd", u"2018-3-9", at(2018, 3, 9)},
      {u"MM/dd/yyyy", u"1/2/2012", at(2012, 1, 2)},
      {u"MM/dd/yyyy", u"01/2/2012", at(2012, 1, 2)},
      {u"dd MMMM yyyy", u"9 March 2018", at(2018, 3, 9)},
      {u"ddMMMyyyy", u"9Mar2018", at(2018, 3, 9)},
      {u"HH:mm:ss", u"7:05:9", at(2000, 1, 1, 25509)},
      {u"hh:mm a", u"5:05 PM", at(2000, 1, 1, 61500)},
      {u"yyyy DDD", u"2024 60", at(2024, 2, 29)},
      {u"yyyy-MM-dd'T'HHmmss", u"2024-1-2T093015", at(2024, 1, 2, 34215)},
      {u"yyyy 'MM' MM", u"2024 MM 3", at(2024, 3, 1)},
      {u"yyyy-MM-dd", u"800-01-01", at(800, 1, 1) + 4 * 86400.0},  // the Julian calendar
  };
  for (const auto& each : cases) {
    EXPECT_EQ(parsed(each.pattern, each.text), each.expected) << utf8FromUtf16(each.text);
  }
}

TEST(DateParser, AllowsWhiteSpaceAroundADate) {
  const DateCase cases[] = {
      {u"yyyy-MM-dd", u" 2018-03-09", at(2018, 3, 9)},
      {u"yyyy-MM-dd", u"2018-03-09 ", at(2018, 3, 9)},
      {u"yyyy-MM-dd", u"\u00A0\t2018-3-9\r\n", at(2018, 3, 9)},
      {u"'on' yyyy", u"  on 2018 ", at(2018, 1, 1)},
      {u"yyyy '.'", u"2018 .\n", at(2018, 1, 1)},
      {u" yyyy ", u" 2018 ", at(2018, 1, 1)},
      {u"' 'yyyy", u" 2018", at(2018, 1, 1)},
      {u"", u" ", at(2000, 1, 1)},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(parsed(each.pattern, each.text), each.expected) << utf8FromUtf16(each.text);
  }
}

TEST(DateParser, TakesYearsOfTwoDigitsBetween1950And2049) {
  EXPECT_EQ(parsed(u"yy-MM-dd", u"50-01-01"), at(1950, 1, 1));
  EXPECT_EQ(parsed(u"yy-MM-dd", u"99-12-31"), at(1999, 12, 31));
  EXPECT_EQ(parsed(u"yy-MM-dd", u"00-01-01"), at(2000, 1, 1));
  EXPECT_EQ(parsed(u"yy-MM-dd", u"49-12-31"), at(2049, 12, 31));
  EXPECT_EQ(parsed(u"yyMMdd", u"491231"), at(2049, 12, 31));
  EXPECT_EQ(parsed(u"yy-MM-dd HH:mm", u"50-01-01 00:00", "en_GB", "Pacific/Auckland"),
            at(1949, 12, 31, 43200));
  EXPECT_EQ(parsed(u"yy-MM-dd HH:mm", u"50-01-01 00:00", "en_GB", "America/New_York"),
            at(1950, 1, 1, 18000));
  EXPECT_EQ(parsed(u"yy-MM-dd", u"2018-01-02"), at(2018, 1, 2));
  EXPECT_FALSE(parsed(u"yy-MM-dd", u"50-13-01"));
  EXPECT_FALSE(parsed(u"yy-MM-dd", u"50-02-29"));
}

TEST(DateParser, ReadsTheNamesOfALocale) {
  EXPECT_EQ(parsed(u"d. MMMM yyyy", u"3. März 2024", "de_DE"), at(2024, 3, 3));
  EXPECT_EQ(parsed(u"d MMMM yyyy", u"3 mars 2024", "fr_FR"), at(2024, 3, 3));
  EXPECT_EQ(parsed(u"d MMMM yyyy", u"3 March 2024", ""), at(2024, 3, 3));
  EXPECT_FALSE(parsed(u"d MMMM yyyy", u"3 March 2024", "fr_FR"));
}

TEST(DateParser, ReadsLocalTimeInItsZone) {
  EXPECT_EQ(parsed(u"yyyy-MM-dd HH:mm", u"2024-07-01 12:00", "en_GB", "Europe/Berlin"),
            at(2024, 7, 1, 36000));
  EXPECT_FALSE(parsed(u"yyyy-MM-dd HH:mm", u"2024-03-31 02:30", "en_GB", "Europe/Berlin"));
}

TEST(DateParser, OneParserReadsManyTexts) {
  const std::optional<DateParser> parser = DateParser::make(u"yyyy-MM-dd", "en_GB", "UTC");
  ASSERT_TRUE(parser);
  EXPECT_EQ(parser->parse(u"2024-01-02")->seconds, at(2024, 1, 2));
  EXPECT_FALSE(parser->parse(u"none"));
  EXPECT_EQ(parser->parse(u"1999-12-31")->seconds, at(1999, 12, 31));
}

}  // namespace
}  // namespace skerrow::foundation
