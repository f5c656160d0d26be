#pragma once
// DateParser: reads dates by a pattern of Unicode Technical Standard #35. The whole
// text must fit the pattern and name a day and time that exist. White space is allowed
// around it and in front of a field, a name of a month in another length, and a number
// with fewer digits than letters unless it touches another number. A year of two
// letters and two digits lies between 1950 and 2049. What the pattern does not say is
// that of 2000-01-01 00:00:00. A day of the week beside a date is read and not held
// against it. One object serves one thread.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "values/value.h"

namespace skerrow::foundation {

class DateParser {
 public:
  /// Nothing where ICU rejects the pattern. `locale` is an ICU locale identifier, by
  /// whose names of months and days, and in whose calendar, dates are read; the root,
  /// which has no names, means English. A pattern without a zone means local time, or
  /// that of `timeZone` (an Olson name) if given.
  static std::optional<DateParser> make(std::u16string_view pattern, const std::string& locale = {},
                                        const std::string& timeZone = {});

  DateParser(DateParser&&) noexcept;
  DateParser& operator=(DateParser&&) noexcept;
  ~DateParser();

  /// Nothing where the text is no date of the pattern.
  [[nodiscard]] std::optional<Date> parse(std::u16string_view text) const;

 private:
  struct Formats;
  explicit DateParser(std::unique_ptr<Formats> formats);

  std::unique_ptr<Formats> formats_;
};

}  // namespace skerrow::foundation
