#include "foundation/date/long_date_time.h"

#include <glib.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string_view>

namespace skerrow::foundation {

namespace {

using std::chrono::sys_days;
using std::chrono::sys_seconds;
using namespace std::chrono_literals;

constexpr std::int64_t kSecondsFrom1904To1970 =
    (sys_seconds(sys_days(1970y / 1 / 1)) - sys_seconds(sys_days(1904y / 1 / 1))).count();
static_assert((sys_seconds(sys_days(2001y / 1 / 1)) - sys_seconds(sys_days(1904y / 1 / 1)))
                  .count() == kSecondsFrom1904To2001);

constexpr std::int64_t kFirstSecond =
    sys_seconds(sys_days(1y / 1 / 1)).time_since_epoch().count() + kSecondsFrom1904To1970;
constexpr std::int64_t kEndSecond =
    sys_seconds(sys_days(std::chrono::year(10000) / 1 / 1)).time_since_epoch().count() +
    kSecondsFrom1904To1970;

struct DateTimeUnref {
  void operator()(GDateTime* dateTime) const { g_date_time_unref(dateTime); }
};

struct TimeZoneUnref {
  void operator()(GTimeZone* timeZone) const { g_time_zone_unref(timeZone); }
};

constexpr std::int64_t kSecondsOfDay = 86400;

// A text in a form that the library takes, and what it leaves out.
struct PlainIso8601 {
  std::string text;
  std::int64_t extraSeconds = 0;
  bool isLeapSecond = false;
};

// The digits of the time behind a position, without what separates them.
std::string timeDigitsFrom(std::string_view text) {
  std::string digits;
  for (const char character : text) {
    if (character == '.' || character == ',' || character == ':') continue;
    if (g_ascii_isdigit(character) == 0) break;
    digits += character;
  }
  return digits;
}

// An offset from UTC stands at the end, "+02:00", "+0200" or "+02".
bool hasPossibleOffset(std::string_view time) {
  const std::size_t sign = time.find_first_of("+-");
  if (sign == std::string_view::npos) return true;
  const std::string digits = timeDigitsFrom(time.substr(sign + 1));
  if (digits.size() != 2 && digits.size() != 4) return false;
  constexpr int kMostMinutes = 18 * 60;
  const int hours = std::stoi(digits.substr(0, 2));
  const int minutes = digits.size() == 4 ? std::stoi(digits.substr(2)) : 0;
  return minutes < 60 && hours * 60 + minutes <= kMostMinutes;
}

// The end of a day is the start of the next one, and so is a leap second, as a count of
// seconds has no other place for it. Nothing where the time cannot be.
std::optional<PlainIso8601> plainForm(std::string text) {
  const std::size_t separator = text.find_first_of("Tt ");
  if (separator == std::string::npos) return PlainIso8601{std::move(text)};
  if (text[separator] == 't') text[separator] = 'T';
  if (text.ends_with('z')) text.back() = 'Z';
  const std::string_view time = std::string_view(text).substr(separator + 1);
  if (!hasPossibleOffset(time)) return std::nullopt;
  const std::string digits = timeDigitsFrom(time);
  PlainIso8601 plain{std::move(text)};
  if (digits.starts_with("24")) {
    const bool isEndOfDay = digits.find_first_not_of('0', 2) == std::string::npos;
    if (!isEndOfDay) return std::nullopt;
    plain.text.replace(separator + 1, 2, "00");
    plain.extraSeconds = kSecondsOfDay;
  } else if (digits.size() >= 6 && digits[4] >= '6') {
    if (digits.compare(2, 4, "5960") != 0) return std::nullopt;
    plain.text.replace(plain.text.find("60", separator + 1 + 4), 2, "59");
    plain.extraSeconds = 1;
    plain.isLeapSecond = true;
  }
  return plain;
}

// `zone` is that of a text without an offset; null refuses such a text.
std::optional<std::int64_t> longDateTime(const std::string& text, GTimeZone* zone) {
  if (text.find('\0') != std::string::npos) return std::nullopt;
  const std::optional<PlainIso8601> plain = plainForm(text);
  if (!plain) return std::nullopt;
  const std::unique_ptr<GDateTime, DateTimeUnref> dateTime(
      g_date_time_new_from_iso8601(plain->text.c_str(), zone));
  if (!dateTime) return std::nullopt;
  const std::int64_t seconds = g_date_time_to_unix(dateTime.get()) + plain->extraSeconds;
  if (plain->isLeapSecond && seconds % kSecondsOfDay != 0) return std::nullopt;
  return seconds + kSecondsFrom1904To1970;
}

}  // namespace

Date dateFromLongDateTime(std::int64_t secondsSince1904) {
  // The difference first: it is exact for every date that a double can tell apart.
  if (secondsSince1904 < INT64_MIN + kSecondsFrom1904To2001) {
    return {static_cast<double>(secondsSince1904) - static_cast<double>(kSecondsFrom1904To2001)};
  }
  return {static_cast<double>(secondsSince1904 - kSecondsFrom1904To2001)};
}

std::optional<std::int64_t> longDateTimeFromDate(Date date) {
  constexpr double kTwoTo63 = 9223372036854775808.0;
  const double whole = std::floor(date.seconds);
  if (!(whole >= -kTwoTo63 && whole < kTwoTo63)) return std::nullopt;
  std::int64_t seconds = 0;
  if (__builtin_add_overflow(static_cast<std::int64_t>(whole), kSecondsFrom1904To2001, &seconds)) {
    return std::nullopt;
  }
  return seconds;
}

std::optional<std::string> iso8601FromLongDateTime(std::int64_t secondsSince1904) {
  if (secondsSince1904 < kFirstSecond || secondsSince1904 >= kEndSecond) return std::nullopt;
  const sys_seconds moment(std::chrono::seconds(secondsSince1904 - kSecondsFrom1904To1970));
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(moment - day);
  char text[32];
  const int length = std::snprintf(
      text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
      static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
      static_cast<int>(time.seconds().count()));
  return std::string(text, static_cast<std::size_t>(length));
}

std::optional<std::int64_t> longDateTimeFromIso8601(const std::string& text) {
  return longDateTime(text, nullptr);
}

std::optional<std::int64_t> longDateTimeFromPlainIso8601(std::string text,
                                                         const std::string& timeZone) {
  constexpr std::size_t kDateLength = 10;     // 2024-03-01
  constexpr std::size_t kMinutesLength = 16;  // 2024-03-01T15:05
  const std::size_t space = text.find(' ', kMinutesLength);
  if (space != std::string::npos && text.find_first_of("+-Zz", space) == space + 1) {
    text.erase(space, 1);
  }
  if (text.size() == kDateLength) text += "T00:00:00";
  const bool hasMinutes = text.size() >= kMinutesLength && text[13] == ':';
  if (hasMinutes &&
      std::min(text.find_first_of("+-Zz", kMinutesLength), text.size()) == kMinutesLength) {
    text.insert(kMinutesLength, ":00");
  }
  std::unique_ptr<GTimeZone, TimeZoneUnref> local;
  if (!timeZone.empty()) local.reset(g_time_zone_new_identifier(timeZone.c_str()));
  if (!local) local.reset(g_time_zone_new_local());
  return longDateTime(text, local.get());
}

}  // namespace skerrow::foundation
