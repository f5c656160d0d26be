#include "foundation/date/long_date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string>

#include "tests/support/properties.h"

namespace skerrow::foundation {
namespace {

constexpr std::int64_t k2001 = 3061152000;
constexpr std::int64_t kYear1 = -60052752000;  // 0001-01-01T00:00:00Z since 1904
constexpr std::int64_t kYear9999End = 255485145599;

TEST(LongDateTime, DiffersFromAbsoluteDatesByAConstant) {
  EXPECT_EQ(dateFromLongDateTime(k2001).seconds, 0.0);
  EXPECT_EQ(dateFromLongDateTime(0).seconds, -3061152000.0);
  EXPECT_EQ(dateFromLongDateTime(k2001 - 1).seconds, -1.0);
  EXPECT_EQ(longDateTimeFromDate({0}), k2001);
  EXPECT_EQ(longDateTimeFromDate({-3061152000.0}), 0);
}

TEST(LongDateTime, AFractionBelongsToTheSecondInWhichItLies) {
  EXPECT_EQ(longDateTimeFromDate({0.999}), k2001);
  EXPECT_EQ(longDateTimeFromDate({-0.001}), k2001 - 1);
  EXPECT_EQ(longDateTimeFromDate({-1.0}), k2001 - 1);
  EXPECT_EQ(longDateTimeFromDate({-1.5}), k2001 - 2);
}

TEST(LongDateTime, NothingForDatesThat64BitsCannotHold) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double seconds :
       {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN(), std::ldexp(1.0, 63),
        -std::ldexp(1.1, 63), 1e300, std::ldexp(1.0, 63) - 1024}) {
    EXPECT_EQ(longDateTimeFromDate({seconds}), std::nullopt) << seconds;
  }
  EXPECT_EQ(longDateTimeFromDate({-std::ldexp(1.0, 63)}), INT64_MIN + k2001);
}

TEST(LongDateTime, TheEndsOf64BitsBecomeTheNearestDates) {
  EXPECT_EQ(dateFromLongDateTime(INT64_MAX).seconds, static_cast<double>(INT64_MAX - k2001));
  EXPECT_EQ(dateFromLongDateTime(INT64_MIN).seconds, -9223372036854775808.0 - 3061152000.0);
  EXPECT_EQ(dateFromLongDateTime(INT64_MIN + k2001).seconds, -9223372036854775808.0);
}

// Up to 2^53 seconds a real holds every whole one.
RC_GTEST_PROP(LongDateTime, EveryOrdinaryCountIsADateAndBack, ()) {
  const auto any = *rc::gen::arbitrary<std::int64_t>();
  const std::int64_t seconds = any % (std::int64_t{1} << 52);
  RC_ASSERT(longDateTimeFromDate(dateFromLongDateTime(seconds)) == seconds);
}

struct IsoRow {
  const char* text;
  std::int64_t seconds;
};

TEST(Iso8601, IsWrittenInUtcForTheYears1To9999) {
  const IsoRow rows[] = {
      {"1904-01-01T00:00:00Z", 0},
      {"1903-12-31T23:59:59Z", -1},
      {"2001-01-01T00:00:00Z", k2001},
      {"2024-03-01T15:05:00Z", 3792150300},
      {"2000-02-29T12:00:00Z", 3034670400},
      {"0001-01-01T00:00:00Z", kYear1},
      {"9999-12-31T23:59:59Z", kYear9999End},
  };
  for (const IsoRow& row : rows) {
    EXPECT_EQ(iso8601FromLongDateTime(row.seconds), row.text);
    EXPECT_EQ(longDateTimeFromIso8601(row.text), row.seconds) << row.text;
  }
}

TEST(Iso8601, IsNotWrittenOutsideThoseYears) {
  for (const std::int64_t seconds : {kYear1 - 1, kYear9999End + 1, INT64_MIN, INT64_MAX}) {
    EXPECT_EQ(iso8601FromLongDateTime(seconds), std::nullopt) << seconds;
  }
}

TEST(Iso8601, IsReadWithAnyOffset) {
  const IsoRow rows[] = {
      {"2024-03-01T15:05:00+00:00", 3792150300},
      {"2024-03-01T15:05:00-00:00", 3792150300},
      {"2024-03-01T17:05:00+02:00", 3792150300},
      {"2024-03-01T17:05:00+0200", 3792150300},
      {"2024-03-01T17:05:00+02", 3792150300},
      {"2024-03-01T09:35:00-05:30", 3792150300},
      {"2024-03-02T03:05:00+12:00", 3792150300},
      {"2024-02-29T23:05:00-16:00", 3792150300},
      {"20240301T150500Z", 3792150300},
      {"2024-W09-5T15:05:00Z", 3792150300},
      {"2024-061T15:05:00Z", 3792150300},
      {"2024-03-01 15:05:00Z", 3792150300},
      {"2024-03-01T15:05:00.999Z", 3792150300},
      {"2024-03-01T15:05:00,5Z", 3792150300},
      {"1903-12-31T23:59:58.5Z", -2},
      {"1969-12-31T23:59:59.5Z", 2082844799},
      {"2016-12-31T23:59:59Z", k2001 + 504921599},
      {"2016-12-31T23:59:60Z", k2001 + 504921600},
      {"2016-12-31T23:59:60.75Z", k2001 + 504921600},
      {"2017-01-01T00:59:60+01:00", k2001 + 504921600},
      {"20161231T235960Z", k2001 + 504921600},
      {"2016-12-31T24:00:00Z", k2001 + 504921600},
      {"2016-12-31T24:00:00.000Z", k2001 + 504921600},
      {"20161231T240000+0000", k2001 + 504921600},
      {"2024-02-28T24:00:00Z", 3792150300 - 54300 - 86400},
      {"2024-03-01t15:05:00z", 3792150300},
      {"2024-03-01T15:05:00z", 3792150300},
      {"2024-03-01t17:05:00+02:00", 3792150300},
      {"2024-03-02T09:05:00+18:00", 3792150300},
      {"2024-02-29T21:05:00-18:00", 3792150300},
  };
  for (const IsoRow& row : rows) {
    EXPECT_EQ(longDateTimeFromIso8601(row.text), row.seconds) << row.text;
  }
}

TEST(Iso8601, RefusesWhatIsNoDateAndTimeWithAnOffset) {
  const std::string rows[] = {"",
                              "now",
                              "2024-03-01",
                              "2024-03-01T15:05:00",
                              "15:05:00Z",
                              "2024-13-01T15:05:00Z",
                              "2024-00-01T15:05:00Z",
                              "2024-02-30T15:05:00Z",
                              "2023-02-29T15:05:00Z",
                              "2024-03-00T15:05:00Z",
                              "2024-03-01T24:05:00Z",
                              "2024-03-01T24:00:01Z",
                              "2024-03-01T24:00:00.5Z",
                              "2024-03-01T25:00:00Z",
                              "2024-03-01T23:58:60Z",
                              "2024-03-01T22:59:60Z",
                              "2024-03-01T23:59:60+01:00",
                              "2024-03-01T23:59:61Z",
                              "2024-03-01T15:05:00+18:01",
                              "2024-03-01T15:05:00-18:01",
                              "2024-03-01T15:05:00+19:00",
                              "2024-03-01T15:05:00+02:60",
                              "2024-03-01T15:05:00+",
                              "2024-03-01T15:60:00Z",
                              "2024-03-01T15:05:61Z",
                              "2024-03-01T15:05:00Z ",
                              " 2024-03-01T15:05:00Z",
                              "2024-03-01T15:05:00 Z",
                              "2024-03-01T15:05:00+2:00",
                              "2024-03-01T15:05:00 CET",
                              "0000-01-01T00:00:00Z",
                              "10000-01-01T00:00:00Z",
                              "-001-01-01T00:00:00Z",
                              "2024-3-1T15:05:00Z",
                              "２０２４-03-01T15:05:00Z",
                              std::string("2024-03-01T15:05:00Z\0", 21),
                              std::string("2024-03-01T15:05:00\0Z", 21)};
  for (const std::string& text : rows) {
    EXPECT_EQ(longDateTimeFromIso8601(text), std::nullopt) << text;
  }
}

TEST(PlainIso8601, ReadsWhatPeopleWrite) {
  const IsoRow rows[] = {
      {"2024-03-01T15:05:00Z", 3792150300},
      {"2024-03-01 15:05:00 +0000", 3792150300},
      {"2024-03-01 17:05:00.5 +02:00", 3792150300},
      {"2024-03-01T15:05Z", 3792150300},
      {"2024-03-01 13:05 -0200", 3792150300},
      {"2024-03-01 15:05:00 Z", 3792150300},
      {"2024-03-01 15:05 Z", 3792150300},
      {"2024-03-01 15:05 z", 3792150300},
      {"2024-03-01t15:05z", 3792150300},
      {"2024-02-29 24:00Z", 3792150300 - 54300},
  };
  for (const IsoRow& row : rows) {
    EXPECT_EQ(longDateTimeFromPlainIso8601(row.text), row.seconds) << row.text;
  }
}

TEST(PlainIso8601, IsLocalTimeWithoutAnOffset) {
  std::tm midnight{};
  midnight.tm_year = 124;
  midnight.tm_mon = 2;
  midnight.tm_mday = 1;
  midnight.tm_isdst = -1;
  const std::int64_t expected = std::mktime(&midnight) + 2082844800;
  for (const char* const text : {"2024-03-01", "2024-03-01T00:00", "2024-03-01 00:00:00"}) {
    EXPECT_EQ(longDateTimeFromPlainIso8601(text), expected) << text;
  }
  EXPECT_EQ(longDateTimeFromPlainIso8601("2024-03-01T15:05"), expected + 54300);
}

TEST(PlainIso8601, RefusesWhatIsNoDate) {
  for (const char* const text :
       {"", " ", "now", "2024", "2024-03", "2024-13-01", "2024-03-01T", "2024-03-01 15",
        "2024-03-01 15:60", "2024-03-01 15:05:00 ", "2024-03-01 15:05:00 +", "15:05",
        "2024-03-01 15:05:00 CET", "2024-03-01T15:05.5Z", "2024-03-01T15:05.5", "0000-01-01"}) {
    EXPECT_EQ(longDateTimeFromPlainIso8601(text), std::nullopt) << text;
  }
  EXPECT_EQ(longDateTimeFromPlainIso8601(std::string("2024-03-01\0", 11)), std::nullopt);
}

RC_GTEST_PROP(Iso8601, EverySecondOfTheseYearsReadsBack, ()) {
  const auto seconds = *rc::gen::inRange<std::int64_t>(kYear1, kYear9999End + 1);
  const auto text = iso8601FromLongDateTime(seconds);
  RC_ASSERT(text.has_value());
  RC_ASSERT(text->size() == 20U);
  RC_ASSERT(longDateTimeFromIso8601(*text) == seconds);
}

}  // namespace
}  // namespace skerrow::foundation
