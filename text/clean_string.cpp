// SKWCleanString: tidies typed or pasted text for typesetting, in a text, in the
// texts of a list or in the text of a file. The steps have a fixed order.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "argument_keys/SKWCleanString.h"
#include "core/command.h"
#include "core/script_error.h"
#include "text/pattern_replacement.h"
#include "text/quote_curling.h"
#include "text/regex/regex_service.h"
#include "text/space_tidying.h"
#include "text/text_input.h"
#include "text/working_text.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWCleanString;

constexpr int kUnreadableFile = 1261;

constexpr char16_t kEmDash = u'\u2014';
constexpr std::u16string_view kSpacedEmDash = u" \u2014 ";

// Kept: only tags of a single character go.
constexpr PatternReplacement kTags = {u"<[^>]>", u""};
constexpr PatternReplacement kHyphenBeforeDigit = {u"-([0-9])", u"\u2013$1"};
constexpr PatternReplacement kEmptyLines = {u"\r\r+", u"\r"};

enum class LineFeeds { kept, becomeReturns };
enum class Tabs { kept, becomeSpaces };

// CR LF becomes CR and two hyphens an em dash, in place.
void replaceTypewriterSigns(std::u16string& units, LineFeeds lineFeeds, Tabs tabs) {
  const std::size_t count = units.size();
  std::size_t written = 0;
  for (std::size_t i = 0; i < count; ++i) {
    char16_t unit = units[i];
    const char16_t next = i + 1 < count ? units[i + 1] : u'\0';
    if (unit == u'\r' && next == u'\n') {
      ++i;
    } else if (unit == u'-' && next == u'-') {
      unit = kEmDash;
      ++i;
    } else if (unit == u'\n' && lineFeeds == LineFeeds::becomeReturns) {
      unit = u'\r';
    } else if (unit == u'\t' && tabs == Tabs::becomeSpaces) {
      unit = u' ';
    }
    units[written++] = unit;
  }
  units.resize(written);
}

std::u16string withSpacedDashes(std::u16string_view text) {
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t begin = 0;;) {
    const std::size_t dash = text.find(kEmDash, begin);
    result += text.substr(begin, dash - begin);
    if (dash == std::u16string_view::npos) return result;
    result += kSpacedEmDash;
    begin = dash + 1;
  }
}

class SKWCleanString final : public core::Command {
  enum class Choice { absent, yes, no };

  void check() override {
    lineFeeds_ = choice(key::LFLikeCR) == Choice::yes ? LineFeeds::becomeReturns : LineFeeds::kept;
    tabs_ = choice(key::tabsLikeSpaces) == Choice::yes ? Tabs::becomeSpaces : Tabs::kept;
    isRemovingTags_ = choice(key::tagsRemoved) == Choice::yes;
    dashesSpaced_ = choice(key::dashesSpaced);
    hasEnDashes_ = choice(key::endashesBeforeNumerals) == Choice::yes;
    isRemovingEmptyLines_ = choice(key::emptyLines) == Choice::no;
    isCurlingQuotes_ = choice(key::curledQuotes) != Choice::no;
    service_ = sharedRegexService(context());
  }

  [[nodiscard]] Choice choice(core::ArgumentKey key) const {
    if (!evaluatedArguments().has(key)) return Choice::absent;
    return evaluatedArguments().isSet(key) ? Choice::yes : Choice::no;
  }

  std::optional<Value> compute() override { return cleanTextWithin(*takeDirectParameter()); }

  [[nodiscard]] std::optional<Value> cleanTextWithin(const ScriptValue& value) const {
    return mapTexts(value,
                    {.convert = [this](const Text& text) { return cleanTheText(text); },
                     .textFromFile = readingFiles(context().platform.contents, kUnreadableFile)});
  }

  [[nodiscard]] std::optional<Value> cleanTheText(const Text& given) const {
    WorkingText text(given);
    replaceTypewriterSigns(text.units(), lineFeeds_, tabs_);
    if (isRemovingTags_ && !replace(text, kTags)) return std::nullopt;
    removeSpacesAtLineEdges(text.units());
    if (dashesSpaced_ == Choice::yes) text = withSpacedDashes(text.view());
    if (dashesSpaced_ == Choice::no) removeSpacesAroundDashes(text.units());
    collapseSpaceRuns(text.units());
    if (hasEnDashes_ && !replace(text, kHyphenBeforeDigit)) return std::nullopt;
    if (isRemovingEmptyLines_ && !replace(text, kEmptyLines)) return std::nullopt;
    if (isCurlingQuotes_) curlQuotes(text.units());
    return text.text();
  }

  bool replace(WorkingText& text, const PatternReplacement& replacement) const {
    return replaceMatchesIn(text, replacement, *service_);
  }

  std::shared_ptr<RegexService> service_;
  LineFeeds lineFeeds_ = LineFeeds::kept;
  Tabs tabs_ = Tabs::kept;
  Choice dashesSpaced_ = Choice::absent;
  bool isRemovingTags_ = false;
  bool hasEnDashes_ = false;
  bool isRemovingEmptyLines_ = false;
  bool isCurlingQuotes_ = true;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWCleanString() {
  return std::make_unique<text::SKWCleanString>();
}

}  // namespace skerrow
