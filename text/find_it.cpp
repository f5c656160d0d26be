// SKWFindIt: what a regular expression matches in a text, in each of several texts
// or in files; or the texts with every match replaced by a template.

#include <algorithm>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "argument_keys/SKWFindIt.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/text/text_encoding.h"
#include "text/pattern_replacement.h"
#include "text/regex/regex_service.h"
#include "text/text_input.h"
#include "work/stopping.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWFindIt;
using core::ErrorEntry;
using core::ScriptError;
using Items = std::vector<Value>;

constexpr ErrorEntry kNotTexts = {1011,
                                  "The in parameter is neither a string nor a list of strings, or "
                                  "a file or files that can't be read."};
constexpr ErrorEntry kItemNotText = {
    1012,
    "The in parameter list contains an item that is neither a string nor a list of strings, or a "
    "file that can't be read."};
constexpr ErrorEntry kBadCapture = {1013, "The capture number must be -1 or more."};
constexpr ErrorEntry kNoPattern = {1014, "Direct parameter cannot be an empty string."};
constexpr int kUnreadableFile = 1015;
constexpr ErrorEntry kBadPattern = {1018, "%@"};
constexpr ErrorEntry kNoSuchCapture = {1019, "No such capture number"};

constexpr std::int64_t kAllCaptures = -1;

struct OptionLetter {
  char16_t letter;
  RegexOptions option;
};

constexpr OptionLetter kOptionLetters[] = {
    {u'i', kCaseInsensitive}, {u'x', kComments},          {u's', kDotAll},
    {u'm', kMultiline},       {u'w', kUnicodeWordBreaks},
};

// Kept: letters that are given replace the default, so a text without m, even an
// empty one, turns multi-line matching off.
RegexOptions optionsFrom(const std::optional<Text>& letters) {
  if (!letters) return kMultiline;
  RegexOptions options = kNoRegexOptions;
  for (const OptionLetter& each : kOptionLetters) {
    if (letters->view().find(each.letter) != std::u16string_view::npos) options |= each.option;
  }
  return options;
}

std::string description(const RegexError& error) {
  std::u16string sentences = error.localizedDescription() + u" ";
  if (const std::u16string explanation = error.explanation(); !explanation.empty()) {
    sentences += explanation + u" ";
  }
  return foundation::utf8FromUtf16(sentences + error.localizedFailureReason());
}

class SKWFindIt final : public core::Command {
  void check() override {
    const auto& direct = directParameter();
    const std::optional<Text> pattern =
        direct ? core::textFromScriptValue(*direct) : std::optional<Text>();
    if (!pattern || pattern->isEmpty()) throw ScriptError(kNoPattern);
    pattern_ = *pattern;
    const core::Arguments& arguments = evaluatedArguments();
    replacement_ = textArgument(arguments.find(key::replacementPattern));
    capture_ = arguments.integer(key::captureNumber).value_or(0);
    if (capture_ < kAllCaptures) throw ScriptError(kBadCapture);
    call_.options = optionsFrom(textArgument(arguments.find(key::regExOptions)));
    isInverted_ = arguments.isSet(key::invertFlag);
    const Value* searched = arguments.find(key::stringToSearch);
    if (searched == nullptr) throw ScriptError(kNotTexts);
    searched_ = searched->raw();
    service_ = sharedRegexService(context());
  }

  std::optional<Value> compute() override {
    try {
      return replacement_ ? unpackAndMunge() : search();
    } catch (const RegexFailure& failure) {
      throw ScriptError(kBadPattern, description(failure.error()));
    } catch (const RegexException& exception) {
      throw ScriptError(kBadPattern, exception.reason());
    }
  }

  [[nodiscard]] Value search() const {
    const Value searched = core::unpackTextOrListOrFile(searched_, context().platform.contents);
    if (searched.isText()) return searchTheText(searched.sharedText());
    if (!searched.isList()) throw ScriptError(kNotTexts);
    Items results;
    results.reserve(searched.items().size());
    for (const Value& item : searched.items()) {
      work::stopIfAsked();
      if (!item.isText()) throw ScriptError(kItemNotText);
      results.push_back(searchTheText(item.sharedText()));
    }
    return results;
  }

  [[nodiscard]] Value searchTheText(const Text& text) const {
    if (isInverted_) return service_->componentsSeparatedByRegex(text, pattern_, call_);
    if (capture_ == kAllCaptures) {
      return service_->arrayOfCaptureComponentsMatchedByRegex(text, pattern_, call_);
    }
    if (capture_ > service_->captureCount(pattern_, call_.options)) {
      // Kept: only a match brings the missing group to light.
      if (service_->isMatchedByRegex(text, pattern_, call_)) throw ScriptError(kNoSuchCapture);
      return Items{};
    }
    RegexCall call = call_;
    call.capture = static_cast<std::int32_t>(capture_);
    return service_->componentsMatchedByRegex(text, pattern_, call);
  }

  [[nodiscard]] std::optional<Value> unpackAndMunge() const {
    return mapTexts(searched_,
                    {.convert = [this](const Text& text) -> std::optional<Value> {
                       return service_->stringByReplacingOccurrencesOfRegex(text, pattern_,
                                                                            *replacement_, call_);
                     },
                     .textFromFile = readingFiles(context().platform.contents, kUnreadableFile)});
  }

  std::shared_ptr<RegexService> service_;
  ScriptValue searched_;
  Text pattern_;
  std::optional<Text> replacement_;
  RegexCall call_;
  std::int64_t capture_ = 0;
  bool isInverted_ = false;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWFindIt() { return std::make_unique<text::SKWFindIt>(); }

}  // namespace skerrow
