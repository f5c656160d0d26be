#pragma once
// RegexRun: one operation of the regular-expression service, walking the matches
// of a pattern in a range of a subject from its start. It checks the arguments
// first, holds the lease on the compiled pattern, and turns what ICU cannot do
// into the service's exceptions. For one thread, within one call.

#include <climits>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "foundation/collation/text_search.h"
#include "foundation/regex/match_monitor.h"
#include "foundation/text/unit_range.h"
#include "text/regex/regex_cache.h"
#include "text/regex/regex_error.h"
#include "values/text.h"

namespace skerrow::text {

/// A text given to an operation, or none. It must outlive the operation.
class TextArgument {
 public:
  TextArgument(const Text& text) : text_(&text) {}
  TextArgument(std::nullptr_t) {}

  /// The text; throws RegexArgumentException with the reason when there is none.
  [[nodiscard]] const Text& required(const char* reason) const {
    if (text_ == nullptr) throw RegexArgumentException(reason);
    return *text_;
  }

 private:
  const Text* text_ = nullptr;
};

/// What the full form of an operation takes beside its texts. Left as it is, it
/// makes the short form.
struct RegexCall {
  RegexOptions options = kNoRegexOptions;
  /// Where in the subject to match; nothing for the whole of it.
  std::optional<foundation::UnitRange> range = std::nullopt;
  /// The group that is asked for, 0 for the whole match.
  std::int32_t capture = 0;
  /// Of an enumeration; none is defined, so anything but 0 is refused.
  std::uint32_t enumerationOptions = 0;
  /// How long a match may take.
  foundation::MatchMonitor::TimeLimit timeLimit = std::nullopt;
};

/// The longest texts that operations take and make, in UTF-16 units.
struct RegexLimits {
  std::size_t longestText = INT_MAX;
};

class RegexRun {
 public:
  /// Throws RegexArgumentException, RegexRangeException or RegexFailure.
  RegexRun(RegexCache& cache, const RegexLimits& limits, TextArgument subject, TextArgument pattern,
           const RegexCall& call);
  RegexRun(const RegexRun&) = delete;
  RegexRun& operator=(const RegexRun&) = delete;
  ~RegexRun();

  /// Goes to the next match. Throws RegexFailure, and whatever ends the watch.
  [[nodiscard]] bool next();

  /// Groups of the pattern, without the whole match.
  [[nodiscard]] std::int32_t groupCount() const noexcept { return lease_.regex().groupCount(); }
  /// Where a group of the current match lies; not found if it took no part.
  [[nodiscard]] foundation::UnitRange group(std::int32_t number) const;
  /// Its text, which is empty if it took no part.
  [[nodiscard]] Text groupText(std::int32_t number) const { return Text(group(number).of(units_)); }

  [[nodiscard]] const foundation::CompiledRegex& regex() const noexcept { return lease_.regex(); }
  [[nodiscard]] const Text& subject() const noexcept { return subject_; }
  [[nodiscard]] std::u16string_view units() const noexcept { return units_; }
  [[nodiscard]] foundation::UnitRange range() const noexcept { return range_; }

 private:
  RegexCache::Lease lease(RegexCache& cache, const RegexLimits& limits);
  [[nodiscard]] bool mayMatchFrom(std::size_t position);
  void describe(RegexError& error) const;

  const Text pattern_;
  const Text subject_;
  const RegexCall& call_;
  std::u16string_view units_;
  foundation::UnitRange range_;
  std::size_t from_ = 0;  // where the next match may begin
  foundation::MatchMonitor monitor_;
  RegexCache::Lease lease_;
  // Where the next text that a match must hold begins, counted from the range's
  // start, and the search for it; without it there is no further match.
  std::optional<foundation::TextSearch::Scan> requiredScan_;
  foundation::UnitRange required_;
};

}  // namespace skerrow::text
