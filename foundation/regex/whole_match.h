#pragma once
// Whether a regular expression matches a whole text, for predicates. The last
// pattern stays compiled, so that asking the same of many texts is cheap. An
// object belongs to one thread at a time.

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "foundation/regex/compiled_regex.h"

namespace skerrow::foundation {

/// A pattern that is none, or that takes too long on a text. The reason is a
/// clause without a full stop.
class WholeMatchError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

enum class MatchCase : bool { sensitive, insensitive };

class WholeMatch {
 public:
  /// The pattern is in the syntax of ICU; all calls with one pattern ask for the
  /// same case. Throws WholeMatchError, also for a text that takes seconds, and
  /// Stopped.
  bool matches(std::u16string_view text, std::u16string_view pattern, MatchCase matchCase);

 private:
  std::u16string pattern_;
  std::optional<CompiledRegex> regex_;
};

}  // namespace skerrow::foundation
