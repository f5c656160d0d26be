#include "text/regex/regex_service.h"

#include <utility>

#include "foundation/text/text_encoding.h"
#include "text/regex/regex_template.h"

namespace skerrow::text {

namespace {

using foundation::UnitRange;

constexpr const char* kPatternMissing = "The regular expression argument is NULL.";
constexpr const char* kReplacementMissing = "The replacement string argument is NULL.";
constexpr const char* kReplacementTooLong = "Replacement string length exceeds INT_MAX.";
constexpr const char* kReplacedTooLong = "Replaced string length exceeds INT_MAX.";
constexpr const char* kKeysMissing = "The keys argument is NULL.";
constexpr const char* kEnumerationInvalid = "The RKLRegexEnumerationOptions argument is not valid.";

// "capture 2 of 3", counted from 1.
std::string placeOf(const char* what, std::size_t index, std::size_t count) {
  return std::string(what) + " " + std::to_string(index + 1) + " of " + std::to_string(count);
}

std::string nameOf(const Value& key) {
  return key.isText() ? foundation::utf8FromUtf16(key.text()) : std::string("(no text)");
}

void checkKeys(std::span<const CaptureKey> keys, std::int32_t groupCount) {
  if (keys.data() == nullptr) throw RegexArgumentException(kKeysMissing);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const CaptureKey& key = keys[i];
    if (key.key.isNull()) {
      throw RegexArgumentException("The capture key (" + placeOf("key", i, keys.size()) +
                                   ") is NULL.");
    }
    if (key.capture < 0 || key.capture > groupCount) {
      throw RegexArgumentException("The capture argument " + std::to_string(key.capture) + " (" +
                                   placeOf("capture", i, keys.size()) + ") for key '" +
                                   nameOf(key.key) + "' is not valid.");
    }
  }
}

Record recordOf(const RegexRun& run, std::span<const CaptureKey> keys) {
  Record record;
  for (const CaptureKey& key : keys) record.set(key.key, run.groupText(key.capture));
  return record;
}

std::vector<Value> groupsOf(const RegexRun& run) {
  std::vector<Value> groups;
  groups.reserve(static_cast<std::size_t>(run.groupCount()) + 1);
  for (std::int32_t i = 0; i <= run.groupCount(); ++i) groups.emplace_back(run.groupText(i));
  return groups;
}

// Calls `piece` for every piece of the range between matches until it is false.
template <class Piece>
void separate(RegexRun& run, Piece&& piece) {
  std::size_t begin = run.range().location;
  while (run.next()) {
    const UnitRange match = run.group(0);
    if (!piece(UnitRange{begin, match.location - begin})) return;
    begin = match.end();
  }
  piece(UnitRange{begin, run.range().end() - begin});
}

// Runs an enumeration; an error in it tells the options.
template <class Body>
void enumerating(const RegexCall& call, Body&& body) {
  if (call.enumerationOptions != 0) throw RegexArgumentException(kEnumerationInvalid);
  try {
    std::forward<Body>(body)();
  } catch (RegexFailure& failure) {
    failure.error().enumerationOptions = call.enumerationOptions;
    throw;
  }
}

}  // namespace

UnitRange RegexMatch::range(std::int32_t capture) const {
  if (capture < 0 || capture > captureCount_) {
    throw RegexArgumentException("The capture argument is not valid.");
  }
  return piece_ ? *piece_ : run_.group(capture);
}

Text RegexMatch::string(std::int32_t capture) const {
  return Text(range(capture).of(run_.units()));
}

RegexService::RegexService(RegexCache::Observer observer, RegexLimits limits)
    : limits_(limits), cache_(std::move(observer)) {}

bool RegexService::isRegexValid(TextArgument pattern, RegexOptions options,
                                std::optional<RegexError>* error) {
  std::optional<RegexError> ignored;
  const auto count = storingError(error != nullptr ? *error : ignored,
                                  [&] { return captureCount(pattern, options); });
  return count.has_value();
}

std::int32_t RegexService::captureCount(TextArgument pattern, RegexOptions options) {
  return cache_.lease(pattern.required(kPatternMissing), options).regex().groupCount();
}

bool RegexService::isMatchedByRegex(TextArgument subject, TextArgument pattern,
                                    const RegexCall& call) {
  return RegexRun(cache_, limits_, subject, pattern, call).next();
}

UnitRange RegexService::rangeOfRegex(TextArgument subject, TextArgument pattern,
                                     const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  return run.next() ? run.group(call.capture) : UnitRange::notFound();
}

std::optional<Text> RegexService::stringByMatching(TextArgument subject, TextArgument pattern,
                                                   const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  if (!run.next()) return std::nullopt;
  return run.groupText(call.capture);
}

std::vector<Value> RegexService::captureComponentsMatchedByRegex(TextArgument subject,
                                                                 TextArgument pattern,
                                                                 const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  return run.next() ? groupsOf(run) : std::vector<Value>{};
}

std::optional<Record> RegexService::dictionaryByMatchingRegex(
    TextArgument subject, TextArgument pattern, std::span<const CaptureKey> keysAndCaptures,
    const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  checkKeys(keysAndCaptures, run.groupCount());
  if (!run.next()) return std::nullopt;
  return recordOf(run, keysAndCaptures);
}

std::vector<Value> RegexService::componentsMatchedByRegex(TextArgument subject,
                                                          TextArgument pattern,
                                                          const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  std::vector<Value> components;
  while (run.next()) components.emplace_back(run.groupText(call.capture));
  return components;
}

std::vector<Value> RegexService::arrayOfCaptureComponentsMatchedByRegex(TextArgument subject,
                                                                        TextArgument pattern,
                                                                        const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  std::vector<Value> matches;
  while (run.next()) matches.emplace_back(groupsOf(run));
  return matches;
}

std::vector<Value> RegexService::arrayOfDictionariesByMatchingRegex(
    TextArgument subject, TextArgument pattern, std::span<const CaptureKey> keysAndCaptures,
    const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  checkKeys(keysAndCaptures, run.groupCount());
  std::vector<Value> matches;
  while (run.next()) matches.emplace_back(recordOf(run, keysAndCaptures));
  return matches;
}

std::vector<Value> RegexService::componentsSeparatedByRegex(TextArgument subject,
                                                            TextArgument pattern,
                                                            const RegexCall& call) {
  RegexRun run(cache_, limits_, subject, pattern, call);
  std::vector<Value> pieces;
  separate(run, [&](UnitRange piece) {
    pieces.emplace_back(Text(piece.of(run.units())));
    return true;
  });
  return pieces;
}

void RegexService::enumerateStringsMatchedByRegex(TextArgument subject, TextArgument pattern,
                                                  const MatchFunction& function,
                                                  const RegexCall& call) {
  enumerating(call, [&] {
    RegexRun run(cache_, limits_, subject, pattern, call);
    while (run.next()) {
      RegexMatch match(run);
      function(match);
      if (match.isStopped_) return;
    }
  });
}

void RegexService::enumerateStringsSeparatedByRegex(TextArgument subject, TextArgument pattern,
                                                    const MatchFunction& function,
                                                    const RegexCall& call) {
  enumerating(call, [&] {
    RegexRun run(cache_, limits_, subject, pattern, call);
    separate(run, [&](UnitRange piece) {
      RegexMatch match(run, piece);
      function(match);
      return !match.isStopped_;
    });
  });
}

Text RegexService::stringByReplacingOccurrencesOfRegex(TextArgument subject, TextArgument pattern,
                                                       TextArgument replacement,
                                                       const RegexCall& call) {
  return replaceByTemplate(subject, pattern, replacement, call).text;
}

Text RegexService::stringByReplacingOccurrencesOfRegex(TextArgument subject, TextArgument pattern,
                                                       const ReplacementFunction& function,
                                                       const RegexCall& call) {
  Text result;
  enumerating(call, [&] {
    RegexRun run(cache_, limits_, subject, pattern, call);
    result = replace(run, [&](std::u16string& text, const RegexRun& at) {
               RegexMatch match(at);
               text += function(match).view();
               return !match.isStopped_;
             }).text;
  });
  return result;
}

std::size_t RegexService::replaceOccurrencesOfRegex(Text& subject, TextArgument pattern,
                                                    TextArgument replacement,
                                                    const RegexCall& call) {
  Replaced replaced = replaceByTemplate(subject, pattern, replacement, call);
  subject = std::move(replaced.text);
  return replaced.count;
}

RegexService::Replaced RegexService::replaceByTemplate(TextArgument subject, TextArgument pattern,
                                                       TextArgument replacement,
                                                       const RegexCall& call) {
  const Text& source = replacement.required(kReplacementMissing);
  try {
    RegexRun run(cache_, limits_, subject, pattern, call);
    if (source.unitCount() > limits_.longestText) {
      throw RegexArgumentException(kReplacementTooLong);
    }
    const RegexTemplate replacementTemplate(source, run.regex());
    return replace(run, [&](std::u16string& text, const RegexRun& at) {
      replacementTemplate.appendTo(text, at.regex(), at.units());
      return true;
    });
  } catch (RegexFailure& failure) {
    failure.error().replacement = source;
    throw;
  }
}

RegexService::Replaced RegexService::replace(RegexRun& run, const Appender& append) const {
  const std::u16string_view units = run.units();
  std::u16string text;
  std::size_t kept = 0;
  std::size_t count = 0;
  try {
    bool isGoingOn = true;
    while (isGoingOn && run.next()) {
      if (count == 0) text.reserve(units.size());
      const UnitRange match = run.group(0);
      text.append(units, kept, match.location - kept);
      isGoingOn = append(text, run);
      if (text.size() > limits_.longestText) throw RegexArgumentException(kReplacedTooLong);
      kept = match.end();
      ++count;
    }
  } catch (RegexFailure& failure) {
    failure.error().replaced = Text(std::move(text));
    failure.error().replacedCount = count;
    throw;
  }
  if (count == 0) return {run.subject(), 0};
  text.append(units, kept);
  if (text.size() > limits_.longestText) throw RegexArgumentException(kReplacedTooLong);
  if (text.size() < text.capacity() / 2) text.shrink_to_fit();
  return {Text(std::move(text)), count};
}

}  // namespace skerrow::text
