#include "foundation/whole_match.h"

#include <unicode/uregex.h>

#include "foundation/icu_text.h"
#include "foundation/text_encoding.h"

namespace skerrow::foundation {

namespace {

// ICU counts time in steps of about a millisecond; memory is left at its default.
constexpr std::int32_t kTimeLimit = 3000;

std::string inWords(UErrorCode status) {
  switch (status) {
    case U_REGEX_TIME_OUT:
    case U_REGEX_STACK_OVERFLOW:
      return "matching takes too long";
    case U_REGEX_MISMATCHED_PAREN:
    case U_REGEX_MISSING_CLOSE_BRACKET:
      return "a bracket has no partner";
    default:
      return std::string("its syntax is wrong (") + u_errorName(status) + ")";
  }
}

[[noreturn]] void fail(std::u16string_view pattern, UErrorCode status) {
  constexpr std::size_t kLongest = 100;
  const std::string shown = pattern.size() <= kLongest
                                ? utf8FromUtf16(pattern)
                                : utf8FromUtf16(pattern.substr(0, kLongest)) + "…";
  throw WholeMatchError("the pattern “" + shown + "” of MATCHES fails: " + inWords(status));
}

}  // namespace

void WholeMatch::Close::operator()(URegularExpression* regex) const { uregex_close(regex); }

WholeMatch::WholeMatch() = default;
WholeMatch::WholeMatch(WholeMatch&&) noexcept = default;
WholeMatch& WholeMatch::operator=(WholeMatch&&) noexcept = default;
WholeMatch::~WholeMatch() = default;

void WholeMatch::compile(std::u16string_view pattern, MatchCase matchCase) {
  const std::uint32_t flags = matchCase == MatchCase::insensitive ? UREGEX_CASE_INSENSITIVE : 0;
  UErrorCode status = U_ZERO_ERROR;
  regex_.reset();
  // An empty pattern, which ICU refuses, matches what an empty group matches.
  const std::u16string_view given = pattern.empty() ? u"(?:)" : pattern;
  regex_.reset(uregex_open(given.data(), icuLength(given), flags, nullptr, &status));
  if (U_FAILURE(status)) fail(pattern, status);
  uregex_setTimeLimit(regex_.get(), kTimeLimit, &status);
  pattern_ = pattern;
}

bool WholeMatch::matches(std::u16string_view text, std::u16string_view pattern,
                         MatchCase matchCase) {
  if (!regex_ || pattern_ != pattern) compile(pattern, matchCase);
  UErrorCode status = U_ZERO_ERROR;
  uregex_setText(regex_.get(), icuUnits(text), icuLength(text), &status);
  const bool isMatch = uregex_matches(regex_.get(), 0, &status) != 0;
  if (U_FAILURE(status)) fail(pattern, status);
  return isMatch;
}

}  // namespace skerrow::foundation
