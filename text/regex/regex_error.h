#pragma once
// The failures of the regular-expression service. RegexError is the value that
// describes a pattern or a match that ICU could not handle; the exceptions carry
// a name and a reason. A caller that wants the error as a value instead of an
// exception wraps the operation in storingError.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "foundation/regex/compiled_regex.h"
#include "foundation/text/unit_range.h"
#include "values/record.h"
#include "values/text.h"

namespace skerrow::text {

/// ICU's pattern flags; the named ones and any other that ICU knows.
using RegexOptions = std::uint32_t;

inline constexpr RegexOptions kNoRegexOptions = 0;
inline constexpr RegexOptions kCaseInsensitive = 2;
inline constexpr RegexOptions kComments = 4;             ///< white space and #-comments allowed
inline constexpr RegexOptions kMultiline = 8;            ///< ^ and $ match at line boundaries
inline constexpr RegexOptions kDotAll = 32;              ///< . matches line terminators
inline constexpr RegexOptions kUnicodeWordBreaks = 256;  ///< \b follows UAX #29

struct RegexError {
  static constexpr std::u16string_view kDomain = u"RKLICURegexErrorDomain";
  enum class Stage : std::uint8_t { compiling, matching };

  Stage stage = Stage::compiling;
  foundation::RegexFault fault;
  Text regex;
  RegexOptions options = kNoRegexOptions;

  // What the operation worked on, as far as it has such a thing.
  std::optional<Text> subject;
  std::optional<foundation::UnitRange> subjectRange;
  std::optional<Text> replacement;
  std::optional<Text> replaced;  ///< the text as far as it was replaced
  std::optional<std::size_t> replacedCount;
  std::optional<std::uint32_t> enumerationOptions;

  [[nodiscard]] std::int32_t code() const noexcept { return fault.code; }
  /// One sentence for a person: what failed.
  [[nodiscard]] std::u16string localizedDescription() const;
  /// One sentence more: why, and at which place of the pattern.
  [[nodiscard]] std::u16string localizedFailureReason() const;
  /// What ICU's name of the error leaves unsaid, as a sentence; empty for most errors.
  [[nodiscard]] std::u16string explanation() const;
  /// Everything above under its "RKLICURegex…" key. A range is the list of its
  /// location and length.
  [[nodiscard]] Record details() const;
};

/// The base of the service's exceptions.
class RegexException : public std::exception {
 public:
  RegexException(std::string_view name, std::string reason)
      : name_(name), reason_(std::move(reason)) {}

  [[nodiscard]] const std::string& name() const noexcept { return name_; }
  [[nodiscard]] const std::string& reason() const noexcept { return reason_; }
  [[nodiscard]] const char* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string name_;
  std::string reason_;
};

/// A pattern that does not compile, or a match that ICU had to give up.
class RegexFailure : public RegexException {
 public:
  static constexpr std::string_view kName = "RKLICURegexException";
  explicit RegexFailure(RegexError error);

  [[nodiscard]] const RegexError& error() const noexcept { return error_; }
  [[nodiscard]] RegexError& error() noexcept { return error_; }

 private:
  RegexError error_;
};

/// A fault in the caller's arguments.
class RegexArgumentException : public RegexException {
 public:
  static constexpr std::string_view kName = "InvalidArgumentException";
  explicit RegexArgumentException(std::string reason) : RegexException(kName, std::move(reason)) {}
};

/// A pattern that is too long for ICU.
class RegexRangeException : public RegexException {
 public:
  static constexpr std::string_view kName = "NSRangeException";
  explicit RegexRangeException(std::string reason) : RegexException(kName, std::move(reason)) {}
};

/// ICU answered something that it must not.
class RegexInternalFault : public RegexException {
 public:
  static constexpr std::string_view kName = "RKLInternalFault";
  explicit RegexInternalFault(std::string reason = "The ICU library returned an unexpected error.")
      : RegexException(kName, std::move(reason)) {}
};

/// The result of `operation`; nothing where its pattern fails, and then the
/// error in `place`. Faults in the arguments leave as exceptions all the same.
template <class Operation>
std::optional<std::invoke_result_t<Operation>> storingError(std::optional<RegexError>& place,
                                                            Operation&& operation) {
  place.reset();
  try {
    return std::forward<Operation>(operation)();
  } catch (RegexFailure& failure) {
    place = std::move(failure.error());
    return std::nullopt;
  }
}

}  // namespace skerrow::text
