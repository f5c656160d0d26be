#pragma once
// Script dates: signed 64-bit seconds since 1 January 1904 00:00:00. They and
// absolute dates (since 2001) differ by a constant; no time zone enters.

#include <cstdint>
#include <optional>
#include <string>

#include "values/value.h"

namespace skerrow::foundation {

/// Seconds from 1 January 1904 to 1 January 2001.
inline constexpr std::int64_t kSecondsFrom1904To2001 = 3061152000;

Date dateFromLongDateTime(std::int64_t secondsSince1904);

/// The whole second in which a date lies; nothing for a date that 64 bits cannot hold.
std::optional<std::int64_t> longDateTimeFromDate(Date date);

/// "2024-03-01T15:05:00Z"; nothing outside the years 1 to 9999.
std::optional<std::string> iso8601FromLongDateTime(std::int64_t secondsSince1904);

/// Any ISO 8601 date and time with an offset from UTC, of 18 hours at most. A fraction of
/// a second is dropped. 24:00:00 and the leap second 23:59:60 UTC are the start of the next day.
std::optional<std::int64_t> longDateTimeFromIso8601(const std::string& text);

/// The same as people write it: the seconds or the whole time may be missing, which are
/// 0 then, and the offset, which makes it local time; a space may stand before the offset.
/// Local time is that of `timeZone` (an Olson name) if given, else of this machine.
std::optional<std::int64_t> longDateTimeFromPlainIso8601(std::string text,
                                                         const std::string& timeZone = {});

}  // namespace skerrow::foundation
