#include "foundation/regex/whole_match.h"

#include <unicode/uregex.h>

#include "foundation/text/quoted_text.h"

namespace skerrow::foundation {

namespace {

constexpr std::chrono::seconds kTimeLimit(3);

std::string inWords(std::int32_t code) {
  switch (code) {
    case U_REGEX_TIME_OUT:
    case U_REGEX_STACK_OVERFLOW:
      return "matching takes too long";
    case U_REGEX_MISMATCHED_PAREN:
    case U_REGEX_MISSING_CLOSE_BRACKET:
      return "a bracket has no partner";
    default:
      return std::string("its syntax is wrong (") + u_errorName(static_cast<UErrorCode>(code)) +
             ")";
  }
}

std::string description(std::u16string_view pattern, const RegexFault& fault) {
  return "the pattern " + quoted(pattern) + " of MATCHES fails: " + inWords(fault.code);
}

CompiledRegex compiled(std::u16string_view pattern, MatchCase matchCase) {
  const std::uint32_t options = matchCase == MatchCase::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
  // An empty pattern, which ICU refuses, matches what an empty group matches.
  return CompiledRegex::compile(pattern.empty() ? u"(?:)" : pattern, options);
}

}  // namespace

bool WholeMatch::matches(std::u16string_view text, std::u16string_view pattern,
                         MatchCase matchCase) {
  try {
    if (!regex_ || pattern_ != pattern) {
      regex_ = compiled(pattern, matchCase);
      pattern_ = pattern;
    }
    regex_->setSubject(text, UnitRange::whole(text));
    MatchMonitor monitor(kTimeLimit);
    return regex_->matchesWhole(monitor);
  } catch (const RegexFault& fault) {
    throw WholeMatchError(description(pattern, fault));
  }
}

}  // namespace skerrow::foundation
