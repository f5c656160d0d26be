#include "foundation/regex/compiled_regex.h"

#include <unicode/uregex.h>
#include <unicode/utext.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "foundation/text/code_points.h"

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

// ICU's matcher for texts in one piece walks backwards by whole characters until
// it meets the position from which it came. A position inside a surrogate pair is
// never met: the walk leaves the text. Two things lead there: a range that begins
// inside a pair, and a run of literals in a pattern that ends with the first half
// of one, since runs are compared by units.

bool isHexDigitOfLead(char16_t unit) {
  return std::u16string_view(u"89abAB").find(unit) != std::u16string_view::npos;
}

// Whether \uD83D, \U0000D83D or \x{D83D} stands at the backslash.
bool isEscapedLead(std::u16string_view pattern, std::size_t backslash) {
  constexpr std::u16string_view kKinds = u"uUx";
  std::size_t place = backslash + 1;
  if (place >= pattern.size() || kKinds.find(pattern[place]) == std::u16string_view::npos) {
    return false;
  }
  place = pattern.find_first_not_of(u"{0", place + 1);
  return place < pattern.size() && (pattern[place] | 0x20U) == u'd' && place + 1 < pattern.size() &&
         isHexDigitOfLead(pattern[place + 1]);
}

// Whether brackets in the pattern are those of sets, as far as can be told easily.
bool hasPlainSets(std::u16string_view pattern) {
  constexpr std::array<std::u16string_view, 5> kDoubtful = {u"#", u"\\Q", u"\\c", u"[]", u"[^]"};
  return std::ranges::none_of(kDoubtful, [&](std::u16string_view doubtful) {
    return pattern.find(doubtful) != std::u16string_view::npos;
  });
}

// Whether half a pair stands outside sets, which are matched by whole characters.
// Errs on the side of true.
bool mayMatchHalfOfPair(std::u16string_view pattern) {
  const bool knowsSets = hasPlainSets(pattern);
  std::size_t openSets = 0;
  for (std::size_t i = 0; i < pattern.size(); ++i) {
    const char16_t unit = pattern[i];
    const bool isHalf = unit == u'\\' ? isEscapedLead(pattern, i)
                                      : U16_IS_LEAD(unit) && !isInsidePair(pattern, i + 1);
    if (isHalf && (openSets == 0 || !knowsSets)) return true;
    if (unit == u'[') ++openSets;
    if (unit == u']' && openSets > 0) --openSets;
    const bool escapesBracket =
        unit == u'\\' && i + 1 < pattern.size() && !U16_IS_LEAD(pattern[i + 1]);
    if (escapesBracket) ++i;
  }
  return false;
}

bool hasPair(std::u16string_view text) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (isInsidePair(text, i)) return true;
  }
  return false;
}

std::int64_t nativeFromOffset(const UText* text) { return text->chunkOffset; }
std::int32_t offsetFromNative(const UText* /*text*/, std::int64_t index) {
  return static_cast<std::int32_t>(index);
}

// Sets a text that does not pass for one in a single piece of UTF-16, so that
// ICU takes its other matcher, which compares whole characters everywhere. It is
// slower, and sees no word boundary at the end of a text behind another assertion.
void setTextByCharacters(URegularExpression* regex, std::u16string_view units, UErrorCode& status) {
  UText text = UTEXT_INITIALIZER;
  utext_openUChars(&text, units.data(), static_cast<std::int64_t>(units.size()), &status);
  if (U_FAILURE(status)) return;
  static const UTextFuncs kFunctions = [&text] {
    UTextFuncs functions = *text.pFuncs;
    functions.mapOffsetToNative = nativeFromOffset;
    functions.mapNativeIndexToUTF16 = offsetFromNative;
    return functions;
  }();
  text.pFuncs = &kFunctions;
  text.nativeIndexingLimit = 0;
  uregex_setUText(regex, &text, &status);
  utext_close(&text);
}

}  // namespace

const std::int32_t RegexFault::kNestedTooDeep = U_REGEX_INTERNAL_ERROR;

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
      uregex_open(units, static_cast<std::int32_t>(pattern.size()), options, &place, &status), 0,
      mayMatchHalfOfPair(pattern));
  if (U_FAILURE(status)) throw RegexFault{status, u_errorName(status), positionOf(place)};
  uregex_setStackLimit(compiled.regex_.get(), kStackLimit, &status);
  compiled.groupCount_ = uregex_groupCount(compiled.regex_.get(), &status);
  check(status);
  return compiled;
}

CompiledRegex CompiledRegex::clone() const {
  UErrorCode status = U_ZERO_ERROR;
  CompiledRegex copy(uregex_clone(regex_.get(), &status), groupCount_, mayMatchHalves_);
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
  // An empty text has no address of its own.
  subject_ = subject.empty() ? u"" : subject;
  show(0);
  restart(range);
}

void CompiledRegex::show(std::size_t base) {
  UErrorCode status = U_ZERO_ERROR;
  const std::u16string_view units = subject_.substr(base);
  if (mayMatchHalves_ && hasPair(units)) {
    setTextByCharacters(regex_.get(), units, status);
  } else {
    uregex_setText(regex_.get(), units.data(), static_cast<std::int32_t>(units.size()), &status);
  }
  check(status);
  base_ = base;
}

void CompiledRegex::restart(UnitRange range) {
  const std::size_t base = isInsidePair(subject_, range.location) ? range.location : 0;
  if (base != base_) show(base);
  UErrorCode status = U_ZERO_ERROR;
  uregex_setRegion(regex_.get(), static_cast<std::int32_t>(range.location - base),
                   static_cast<std::int32_t>(range.end() - base), &status);
  check(status);
}

template <class Search>
bool CompiledRegex::run(MatchMonitor& monitor, Search search) {
  UErrorCode status = U_ZERO_ERROR;
  uregex_setMatchCallback(regex_.get(), continueMatch, &monitor, &status);
  // Asking at every position costs a little, so only where somebody answers.
  uregex_setFindProgressCallback(regex_.get(), monitor.isNeeded() ? continueSearch : nullptr,
                                 &monitor, &status);
  const bool isMatch = search(regex_.get(), &status) != 0;
  if (status == U_REGEX_STOPPED_BY_CALLER) {
    if (monitor.isTimedOut()) throw faultOf(U_REGEX_TIME_OUT);
    throw work::Stopped{};
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
  return {base_ + static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)};
}

void CompiledRegex::shrink() {
  UErrorCode status = U_ZERO_ERROR;
  // Setting a lower limit is what makes ICU free the memory above it.
  uregex_setStackLimit(regex_.get(), 1, &status);
  uregex_setStackLimit(regex_.get(), kStackLimit, &status);
  check(status);
}

}  // namespace skerrow::foundation
