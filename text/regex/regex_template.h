#pragma once
// RegexTemplate: a replacement template, taken apart once and applied to every
// match. The rules are those of ICU's append-replacement step, except that
// nothing in a template is an error:
//
//   $n        the text of group n; of several digits, as many as name a group
//             that the pattern has, and at least the first
//   ${name}   the text of the group (?<name>…)
//   \c        the character c; \uhhhh and \Uhhhhhhhh the code point
//   $         itself before anything else; a last \ stands for nothing
//
// A group that the pattern lacks, or that took no part, inserts nothing.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/regex/compiled_regex.h"
#include "values/text.h"

namespace skerrow::text {

class RegexTemplate {
 public:
  /// Group numbers and names are those of `regex`.
  RegexTemplate(const Text& source, const foundation::CompiledRegex& regex);

  /// Appends what the template makes of the current match in `subject`. The
  /// pattern must be the one that the template was made for, or a clone.
  void appendTo(std::u16string& result, const foundation::CompiledRegex& match,
                std::u16string_view subject) const;

 private:
  static constexpr std::int32_t kNoGroup = -1;

  // Literal units and, after them, a group.
  struct Piece {
    std::size_t literalEnd;  // in literals_; it begins where the one before ends
    std::int32_t group;
  };

  class Parser;

  std::u16string literals_;
  std::vector<Piece> pieces_;
};

}  // namespace skerrow::text
