#include "foundation/compiled_regex.h"

#include <unicode/uregex.h>

#include <algorithm>
#include <iterator>

namespace skerrow::foundation {

namespace {

// ICU counts its limit in words of four bytes and fills words of eight.
constexpr std::int32_t kStackLimit = CompiledRegex::kMemoryLimit / 2;
constexpr std::int32_t kUnknownLine = -1;

RegexFault faultOf(UErrorCode status) { return {status, u_errorName(status), std::nullopt}; }

void check(UErrorCode status) {
  if (U_FAILURE(status)) throw faultOf(status);
}

// ICU may fill a context to its last unit and not end it.
std::u16string contextOf(const char16_t (&units)[U_PARSE_CONTEXT_LEN]) {
  return {std::begin(units), std::ranges::find(units, u'\0')};
}

std::optional<RegexFault::Position> positionOf(const UParseError& place) {
  if (place.line == kUnknownLine) return std::nullopt;
  return RegexFault::Position{place.line, place.offset, contextOf(place.preContext),
                              contextOf(place.postContext)};
}

UBool continueMatch(const void* context, std::int32_t /*steps*/) {
  return static_cast<UBool>(
      static_cast<MatchMonitor*>(const_cast<void*>(context))->mayContinueMatch());
}

UBool continueSearch(const void* context, std::int64_t /*position*/) {
  return static_cast<UBool>(
      static_cast<MatchMonitor*>(const_cast<void*>(context))->mayContinueSearch());
}

}  // namespace

void CompiledRegex::Closer::operator()(URegularExpression* regex) const noexcept {
  uregex_close(regex);
}

CompiledRegex CompiledRegex::compile(std::u16string_view pattern, std::uint32_t options) {
  UErrorCode status = U_ZERO_ERROR;
  UParseError place{};
  place.line = kUnknownLine;
  // An empty pattern has no address of its own.
  const char16_t* const units = pattern.empty() ? u"" : pattern.data();
  CompiledRegex compiled(
      uregex_open(units, static_cast<std::int32_t>(pattern.size()), options, &place, &status), 0);
  if (U_FAILURE(status)) throw RegexFault{status, u_errorName(status), positionOf(place)};
  uregex_setStackLimit(compiled.regex_.get(), kStackLimit, &status);
  compiled.groupCount_ = uregex_groupCount(compiled.regex_.get(), &status);
  check(status);
  return compiled;
}

CompiledRegex CompiledRegex::clone() const {
  UErrorCode status = U_ZERO_ERROR;
  CompiledRegex copy(uregex_clone(regex_.get(), &status), groupCount_);
  uregex_setStackLimit(copy.regex_.get(), kStackLimit, &status);
  check(status);
  return copy;
}

std::optional<std::int32_t> CompiledRegex::groupNumber(std::u16string_view name) const {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t number = uregex_groupNumberFromName(
      regex_.get(), name.data(), static_cast<std::int32_t>(name.size()), &status);
  if (U_FAILURE(status)) return std::nullopt;
  return number;
}

void CompiledRegex::setSubject(std::u16string_view subject, UnitRange range) {
  UErrorCode status = U_ZERO_ERROR;
  const char16_t* const units = subject.empty() ? u"" : subject.data();
  uregex_setText(regex_.get(), units, static_cast<std::int32_t>(subject.size()), &status);
  check(status);
  restart(range);
}

void CompiledRegex::restart(UnitRange range) {
  UErrorCode status = U_ZERO_ERROR;
  uregex_setRegion(regex_.get(), static_cast<std::int32_t>(range.location),
                   static_cast<std::int32_t>(range.end()), &status);
  check(status);
}

template <class Search>
bool CompiledRegex::run(MatchMonitor& monitor, Search search) {
  UErrorCode status = U_ZERO_ERROR;
  uregex_setMatchCallback(regex_.get(), continueMatch, &monitor, &status);
  // Asking at every position costs a little, so only where somebody answers.
  uregex_setFindProgressCallback(regex_.get(), monitor.isWatched() ? continueSearch : nullptr,
                                 &monitor, &status);
  const bool isMatch = search(regex_.get(), &status) != 0;
  if (status == U_REGEX_STOPPED_BY_CALLER) {
    monitor.rethrow();
    if (monitor.isTimedOut()) throw faultOf(U_REGEX_TIME_OUT);
    throw MatchStopped{};
  }
  check(status);
  return isMatch;
}

bool CompiledRegex::findNext(MatchMonitor& monitor) { return run(monitor, uregex_findNext); }

bool CompiledRegex::matchesWhole(MatchMonitor& monitor) {
  constexpr std::int32_t kWholeRange = -1;
  return run(monitor, [](URegularExpression* regex, UErrorCode* status) {
    return uregex_matches(regex, kWholeRange, status);
  });
}

UnitRange CompiledRegex::group(std::int32_t number) const {
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t start = uregex_start(regex_.get(), number, &status);
  const std::int32_t end = uregex_end(regex_.get(), number, &status);
  check(status);
  if (start < 0) return UnitRange::notFound();
  return {static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
}

void CompiledRegex::shrink() {
  UErrorCode status = U_ZERO_ERROR;
  // Setting a lower limit is what makes ICU free the memory above it.
  uregex_setStackLimit(regex_.get(), 1, &status);
  uregex_setStackLimit(regex_.get(), kStackLimit, &status);
  check(status);
}

}  // namespace skerrow::foundation
