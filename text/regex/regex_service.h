#pragma once
// RegexService: matches, splits and replaces text with ICU's regular expressions
// (syntax and option flags as ICU publishes them), through a cache of compiled
// patterns. One service serves the whole program, on any thread.
//
//   RegexService regex;
//   regex.componentsMatchedByRegex(Text(u"a1b22"), Text(u"\\d+"));          // 1, 22
//   regex.componentsSeparatedByRegex(Text(u"a1b22"), Text(u"\\d+"));        // a, b, ""
//   regex.stringByReplacingOccurrencesOfRegex(Text(u"ab-cd"), Text(u"(\\w+)-(\\w+)"),
//                                             Text(u"$2+$1"));              // cd+ab
//   regex.rangeOfRegex(Text(u"a1"), Text(u"(\\d)"), {.capture = 1});        // {1, 1}
//
// Positions and lengths count UTF-16 units. Lists hold texts, as Values, so that a
// list becomes a Value as it stands. A group that took no part is an empty text.
//
// Every operation that takes a pattern throws RegexArgumentException for a fault
// in its arguments (a missing text, a range outside the text, a group that the
// pattern lacks), RegexRangeException for a pattern of INT_MAX units or more, and
// RegexFailure for a pattern that does not compile or a match that ICU gives up
// (backtracking beyond 64 MB, the watch's time limit). A watch that stops it
// throws Stopped. Wrap a call in storingError to have a RegexFailure as a
// value. Nothing is returned in part.

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "text/regex/regex_cache.h"
#include "text/regex/regex_error.h"
#include "text/regex/regex_run.h"
#include "values/record.h"
#include "values/value.h"

namespace skerrow::text {

/// The match that an enumeration stands at, for the duration of the call. Of a
/// piece between matches, group 0 is the piece and there are no others.
class RegexMatch {
 public:
  /// Groups of the pattern, without the whole match.
  [[nodiscard]] std::int32_t captureCount() const noexcept { return captureCount_; }
  [[nodiscard]] foundation::UnitRange range(std::int32_t capture = 0) const;
  [[nodiscard]] Text string(std::int32_t capture = 0) const;
  /// Makes this match the last one.
  void stop() noexcept { isStopped_ = true; }

 private:
  friend class RegexService;
  explicit RegexMatch(const RegexRun& run) : run_(run), captureCount_(run.groupCount()) {}
  RegexMatch(const RegexRun& run, foundation::UnitRange piece) : run_(run), piece_(piece) {}

  const RegexRun& run_;
  std::optional<foundation::UnitRange> piece_;
  std::int32_t captureCount_ = 0;
  bool isStopped_ = false;
};

/// A key of a record and the group whose text stands under it.
struct CaptureKey {
  Value key;  // null counts as missing
  std::int32_t capture = 0;
};

class RegexService {
 public:
  using MatchFunction = std::function<void(RegexMatch&)>;
  using ReplacementFunction = std::function<Text(RegexMatch&)>;

  explicit RegexService(RegexCache::Observer observer = {}, RegexLimits limits = {});

  // Asking about a pattern.

  /// False where the pattern does not compile; the reason then is in `error`.
  bool isRegexValid(TextArgument pattern, RegexOptions options = kNoRegexOptions,
                    std::optional<RegexError>* error = nullptr);
  std::int32_t captureCount(TextArgument pattern, RegexOptions options = kNoRegexOptions);

  // The first match.

  bool isMatchedByRegex(TextArgument subject, TextArgument pattern, const RegexCall& call = {});
  /// Not found where nothing matches, or where the group took no part.
  foundation::UnitRange rangeOfRegex(TextArgument subject, TextArgument pattern,
                                     const RegexCall& call = {});
  std::optional<Text> stringByMatching(TextArgument subject, TextArgument pattern,
                                       const RegexCall& call = {});
  /// The whole match and then every group; empty where nothing matches.
  std::vector<Value> captureComponentsMatchedByRegex(TextArgument subject, TextArgument pattern,
                                                     const RegexCall& call = {});
  std::optional<Record> dictionaryByMatchingRegex(TextArgument subject, TextArgument pattern,
                                                  std::span<const CaptureKey> keysAndCaptures,
                                                  const RegexCall& call = {});

  // Every match, in order.

  /// The group `call.capture` of every match.
  std::vector<Value> componentsMatchedByRegex(TextArgument subject, TextArgument pattern,
                                              const RegexCall& call = {});
  /// A list for every match: the whole match and then every group.
  std::vector<Value> arrayOfCaptureComponentsMatchedByRegex(TextArgument subject,
                                                            TextArgument pattern,
                                                            const RegexCall& call = {});
  std::vector<Value> arrayOfDictionariesByMatchingRegex(TextArgument subject, TextArgument pattern,
                                                        std::span<const CaptureKey> keysAndCaptures,
                                                        const RegexCall& call = {});
  /// The pieces of the range outside its n matches: n + 1 of them, empty ones too.
  std::vector<Value> componentsSeparatedByRegex(TextArgument subject, TextArgument pattern,
                                                const RegexCall& call = {});
  /// The function may call the service.
  void enumerateStringsMatchedByRegex(TextArgument subject, TextArgument pattern,
                                      const MatchFunction& function, const RegexCall& call = {});
  void enumerateStringsSeparatedByRegex(TextArgument subject, TextArgument pattern,
                                        const MatchFunction& function, const RegexCall& call = {});

  // Replacing every match; the text outside the range is kept.

  /// By a template, as RegexTemplate describes it.
  Text stringByReplacingOccurrencesOfRegex(TextArgument subject, TextArgument pattern,
                                           TextArgument replacement, const RegexCall& call = {});
  /// By what the function makes of each match, taken literally.
  Text stringByReplacingOccurrencesOfRegex(TextArgument subject, TextArgument pattern,
                                           const ReplacementFunction& function,
                                           const RegexCall& call = {});
  /// Puts the new text in the place of the old and returns how many were replaced.
  std::size_t replaceOccurrencesOfRegex(Text& subject, TextArgument pattern,
                                        TextArgument replacement, const RegexCall& call = {});

  // The cache.

  /// Forgets all compiled patterns.
  void clearStringCache() { cache_.clear(); }
  /// Forgets the texts that patterns were last set to.
  void flushCachedRegexData() { cache_.forgetSubjects(); }

 private:
  struct Replaced {
    Text text;
    std::size_t count = 0;
  };
  // Appends the replacement of the current match.
  using Appender = std::function<bool(std::u16string& result, const RegexRun& run)>;

  Replaced replaceByTemplate(TextArgument subject, TextArgument pattern, TextArgument replacement,
                             const RegexCall& call);
  Replaced replace(RegexRun& run, const Appender& append) const;

  RegexLimits limits_;
  RegexCache cache_;
};

}  // namespace skerrow::text
