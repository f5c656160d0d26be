#pragma once
// The pattern of a predicate's LIKE: "?" stands for one character, "*" for any
// number of them, also none. A backslash takes the meaning from either, and from
// another backslash; before anything else it is an ordinary character.

#include <string_view>
#include <vector>

#include "foundation/key_path/step_budget.h"

namespace skerrow::foundation {

class WildcardPattern {
 public:
  WildcardPattern() = default;
  explicit WildcardPattern(std::u16string_view pattern) { assign(pattern); }

  /// Replaces the pattern and keeps its memory.
  void assign(std::u16string_view pattern);

  /// Whether the whole text matches. Steps in proportion to the text are free; what
  /// a hostile pattern takes is not. Throws TooManySteps.
  bool matches(std::u16string_view text, StepBudget& steps) const;

 private:
  std::vector<char32_t> elements_;  // characters, and two numbers that are none
};

}  // namespace skerrow::foundation
