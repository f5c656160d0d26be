#pragma once
// CompiledRegex: one regular expression compiled by ICU, with the state of one
// search. It does not own the text that it searches, which is never copied and
// must stay where it is until another is set. An object belongs to one thread
// at a time; clones of it may search on other threads at once.
//
//   auto regex = CompiledRegex::compile(u"(\\w+)-(\\w+)", 0);
//   regex.setSubject(u"ab-cd", {0, 5});
//   while (regex.findNext(monitor)) regex.group(1);  // {0, 2}

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/regex/match_monitor.h"
#include "foundation/text/unit_range.h"

struct URegularExpression;

namespace skerrow::foundation {

/// Thrown where ICU refuses a pattern or cannot finish a match.
struct RegexFault {
  /// Where in the pattern: lines from 1, units of the line from 0.
  struct Position {
    std::int32_t line = 0;
    std::int32_t offset = 0;
    std::u16string before;  // a few units of the pattern on either side
    std::u16string after;
  };

  /// The code of a pattern whose groups or sets are nested more than about 100 deep.
  static const std::int32_t kNestedTooDeep;

  std::int32_t code = 0;  // ICU's UErrorCode
  std::string name;       // ICU's name of it
  std::optional<Position> position;
};

class CompiledRegex {
 public:
  /// How much memory the backtracking of one search may take, in bytes. A match
  /// that needs more fails with U_REGEX_STACK_OVERFLOW.
  static constexpr std::int32_t kMemoryLimit = 64 << 20;

  /// `options` are ICU's flags (URegexpFlag), passed on unchanged. Throws RegexFault.
  static CompiledRegex compile(std::u16string_view pattern, std::uint32_t options);

  /// The same pattern for another search, without its subject. Safe while the
  /// original searches on another thread.
  [[nodiscard]] CompiledRegex clone() const;

  [[nodiscard]] std::int32_t groupCount() const noexcept { return groupCount_; }
  /// The number of the group `(?<name>…)`, if the pattern has it.
  [[nodiscard]] std::optional<std::int32_t> groupNumber(std::u16string_view name) const;

  /// What to search next. The range must lie inside the subject, the subject
  /// must be shorter than INT_MAX units. ^ and $ match at the ends of the range;
  /// a range that begins inside a surrogate pair begins with an unpaired surrogate.
  void setSubject(std::u16string_view subject, UnitRange range);

  /// Starts again in the subject that is set, in another or the same range of it.
  void restart(UnitRange range);

  /// Goes to the next match; the first one after setSubject or restart. Throws
  /// RegexFault, and Stopped when nobody waits any more; then only a restart helps.
  [[nodiscard]] bool findNext(MatchMonitor& monitor);

  /// Whether the whole range of the subject matches. Throws like findNext.
  [[nodiscard]] bool matchesWhole(MatchMonitor& monitor);

  /// Where a group of the current match lies: 0 for the whole match, not found
  /// for a group that took no part.
  [[nodiscard]] UnitRange group(std::int32_t number) const;

  /// Gives back the memory that long matches took. Needs a restart.
  void shrink();

 private:
  struct Closer {
    void operator()(URegularExpression* regex) const noexcept;
  };

  // Runs one of ICU's searching functions under the monitor's eyes.
  template <class Search>
  bool run(MatchMonitor& monitor, Search search);

  CompiledRegex(URegularExpression* regex, std::int32_t groupCount, bool mayMatchHalves)
      : regex_(regex), groupCount_(groupCount), mayMatchHalves_(mayMatchHalves) {}

  // Shows ICU the subject from `base` on.
  void show(std::size_t base);

  std::unique_ptr<URegularExpression, Closer> regex_;
  std::int32_t groupCount_;
  bool mayMatchHalves_;  // of surrogate pairs, by the pattern's look
  std::u16string_view subject_;
  std::size_t base_ = 0;  // where in the subject the text begins that ICU sees
};

}  // namespace skerrow::foundation
