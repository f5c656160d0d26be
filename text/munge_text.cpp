// SKWMungeText: applies modifications, one after another in the order in which the
// script lists them, to a text, to the texts of a list or to the text of a file. Two
// of them make a table of the text and end the chain.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "argument_keys/SKWMungeText.h"
#include "core/command.h"
#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/encoding/entity_escape.h"
#include "foundation/encoding/md5.h"
#include "foundation/encoding/percent_escape.h"
#include "foundation/text/case_mapping.h"
#include "foundation/text/character_sets.h"
#include "foundation/text/text_encoding.h"
#include "foundation/text/transliteration.h"
#include "foundation/url/posix_path.h"
#include "text/csv_reader.h"
#include "text/pattern_replacement.h"
#include "text/quote_curling.h"
#include "text/regex/regex_service.h"
#include "text/space_tidying.h"
#include "text/text_input.h"
#include "text/working_text.h"
#include "work/stopping.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWMungeText;
using core::ErrorEntry;
using core::ScriptError;
using foundation::ReservedCharacters;
using foundation::Transliteration;

constexpr ErrorEntry kTooLong = {1021, "The text can't be padded to %ld characters."};
constexpr ErrorEntry kNotDecimal = {1021, "Conversion failed, reason unknown."};
constexpr ErrorEntry kNotHexadecimal = {1022, "Conversion failed, reason unknown."};
constexpr ErrorEntry kNotDecoded = {1023, "Conversion failed, reason unknown."};
constexpr ErrorEntry kNoTransform = {1024, "No 'ICU transform' parameter specified."};
constexpr ErrorEntry kBadTransform = {1025, "ICU transform failed. Invalid transform specified?"};
constexpr ErrorEntry kLongTransform = {1025, "The name of the ICU transform is too long."};
constexpr ErrorEntry kGrowingText = {1025, "The text grows too long when it is transformed."};
constexpr int kUnreadableFile = 1026;

struct FixedTransform {
  std::u16string_view identifier;
  ErrorEntry failure;
};
// The first two change all but U+0020 to U+007E, and so line ends too.
constexpr FixedTransform kToDecimal = {u"[^\\x20-\\x7e]-Hex/XML10", kNotDecimal};
constexpr FixedTransform kToHexadecimal = {u"[^\\x20-\\x7e]-Hex/XML", kNotHexadecimal};
constexpr FixedTransform kFromHexadecimal = {u"Hex-Any", kNotDecoded};

constexpr PatternReplacement kBlankLines = {u"(?m)^[ \t]*[\r\n]", u""};
constexpr PatternReplacement kLastBlankLine = {u"[\r\n][ \t]*$", u""};

// Of a transform's name, in units: names of names, one behind the other, take time and
// memory for each.
constexpr std::size_t kLongestTransformName = 2000;

constexpr std::uint32_t kDefaultPadLength = 20;
// What padding may add for one command, over all its texts.
constexpr std::size_t kMostPadding = std::size_t{1} << 28U;

// The codes that scripts give.
enum class StringModificationCode : std::uint32_t {
  upperCase = 0x62E56531,
  lowerCase = 0x62E56532,
  capitalizeWords = 0x62E56533,
  trimWhitespace = 0x62E56534,
  padToLength = 0x62E56535,
  encodeURL = 0x62E56536,
  encodeURLReserved = 0x62E56537,
  decodeURL = 0x62E56538,
  encodeXMLEntities = 0x62E56539,
  md5Digest = 0x62E56561,
  icuTransform = 0x62E56562,
  parseCSV = 0x62E56563,
  smartQuotes = 0x62E56564,
  straightQuotes = 0x62E56565,
  decodeHexEscapes = 0x62E56566,
  decodeXMLEntities = 0x62E56567,
  escapeNonASCIIDecimal = 0x62E56568,
  escapeNonASCIIHex = 0x62E56569,
  standardizePath = 0x62E5656A,
  parseTSV = 0x62E5656B,
  collapseSpaces = 0x62E5656C,
  removeBlankLines = 0x62E5656D,
};
using Code = StringModificationCode;

class SKWMungeText final : public core::Command {
  // A change of the text; false when nothing comes of it.
  using Effect = bool (SKWMungeText::*)(WorkingText&);
  // Makes a table of the text, which ends the chain.
  using Table = Value (*)(std::u16string_view);
  struct Modification {
    Code code;
    Effect effect;  // null where there is a table to be made
    Table table = nullptr;
  };
  static std::span<const Modification> modifications();

  void check() override {
    const core::Arguments& arguments = evaluatedArguments();
    if (const Value* options = arguments.find(key::stringMungeOption)) readOptions(*options);
    if (const auto given = textArgument(arguments.find(key::padString))) padString_ = *given;
    if (const auto given = arguments.integer(key::padLength)) givenPadLength_ = *given;
    padLength_ = static_cast<std::uint32_t>(givenPadLength_);
    isTransformInverse_ = arguments.isSet(key::transformInverse);
    transformName_ = textArgument(arguments.find(key::transformName));
    service_ = sharedRegexService(context());
  }

  // Codes that mean nothing are left out.
  void readOptions(const Value& options) {
    for (const Value& item : options.items()) {
      const Code code{codeOf(item.raw())};
      const auto found = std::ranges::find(modifications(), code, &Modification::code);
      if (found != modifications().end()) modOptions_.push_back(*found);
    }
  }

  static std::uint32_t codeOf(const ScriptValue& given) {
    if (const auto number = core::numberFromScriptValue(given)) {
      return static_cast<std::uint32_t>(number->asUnsigned());
    }
    return given.plain<std::uint32_t>().value_or(0);
  }

  std::optional<Value> compute() override { return mungeTextWithin(*takeDirectParameter()); }

  [[nodiscard]] std::optional<Value> mungeTextWithin(const ScriptValue& value) {
    return mapTexts(value,
                    {.convert = [this](const Text& text) { return mungeTheText(text); },
                     .textFromFile = readingFiles(context().platform.contents, kUnreadableFile)});
  }

  [[nodiscard]] std::optional<Value> mungeTheText(const Text& given) {
    WorkingText text(given);
    for (const Modification& modification : modOptions_) {
      work::stopIfAsked();
      if (modification.table != nullptr) return modification.table(text.view());
      if (!(this->*modification.effect)(text)) return std::nullopt;
    }
    return text.text();
  }

  // The modifications.

  template <std::u16string (*kConvert)(std::u16string_view)>
  bool convert(WorkingText& text) {
    text = kConvert(text.view());
    return true;
  }

  template <void (*kChange)(std::u16string&)>
  bool change(WorkingText& text) {
    kChange(text.units());
    return true;
  }

  bool trimWhitespace(WorkingText& text) {
    const foundation::UnitRange kept = foundation::trimmedRange(text.view());
    if (kept.length == text.view().size()) return true;
    text = Text(kept.of(text.view()));
    return true;
  }

  bool padToLength(WorkingText& text) {
    std::u16string& units = text.units();
    const std::u16string_view pad = padString_.view();
    if (units.size() >= padLength_) {
      units.resize(padLength_);
    } else if (!pad.empty()) {
      padding_ += padLength_ - units.size();
      if (padding_ > kMostPadding) throw ScriptError(kTooLong, givenPadLength_);
      units.reserve(padLength_);
      while (padLength_ - units.size() > pad.size()) units += pad;
      units += pad.substr(0, padLength_ - units.size());
    }
    return true;
  }

  template <ReservedCharacters kReserved>
  bool encodeURL(WorkingText& text) {
    return take(text, foundation::percentEscaped(text.view(), kReserved));
  }

  bool decodeURL(WorkingText& text) {
    return take(text, foundation::percentUnescaped(text.view()));
  }

  static bool take(WorkingText& text, std::optional<std::u16string> result) {
    if (result) text = std::move(*result);
    return result.has_value();
  }

  bool md5Digest(WorkingText& text) {
    const std::string digest = foundation::md5Digest(foundation::utf8FromUtf16(text.view()));
    text = std::u16string(digest.begin(), digest.end());
    return true;
  }

  bool icuTransform(WorkingText& text) {
    if (!transformName_) throw ScriptError(kNoTransform);
    const auto direction = isTransformInverse_ ? Transliteration::Direction::reverse
                                               : Transliteration::Direction::forward;
    if (transformName_->unitCount() > kLongestTransformName) throw ScriptError(kLongTransform);
    if (!named_) named_ = Transliteration::make(transformName_->view(), direction);
    return apply(named_, text, kBadTransform, kGrowingText);
  }

  template <const FixedTransform& kTransform, std::optional<Transliteration> SKWMungeText::*kMade>
  bool transform(WorkingText& text) {
    std::optional<Transliteration>& made = this->*kMade;
    if (!made) made = Transliteration::make(kTransform.identifier);
    return apply(made, text, kTransform.failure, kTransform.failure);
  }

  static bool apply(const std::optional<Transliteration>& transform, WorkingText& text,
                    const ErrorEntry& unknown, const ErrorEntry& tooLong) {
    if (!transform) throw ScriptError(unknown);
    try {
      text = transform->apply(text.view());
    } catch (const std::length_error&) {
      throw ScriptError(tooLong);
    }
    return true;
  }

  bool standardizePath(WorkingText& text) {
    text = foundation::standardizedPath(text.view(), context().platform);
    return true;
  }

  bool collapseSpaces(WorkingText& text) {
    removeSpacesAtLineEdges(text.units());
    collapseSpaceRuns(text.units());
    return true;
  }

  bool removeBlankLines(WorkingText& text) {
    return replaceMatchesIn(text, kBlankLines, *service_) &&
           replaceMatchesIn(text, kLastBlankLine, *service_);
  }

  std::vector<Modification> modOptions_;
  // Transforms, made when the first text needs them and kept for the others.
  std::optional<Transliteration> named_;
  std::optional<Transliteration> toDecimal_;
  std::optional<Transliteration> toHexadecimal_;
  std::optional<Transliteration> fromHexadecimal_;
  Text padString_{std::u16string_view(u" ")};
  std::int64_t givenPadLength_ = kDefaultPadLength;
  std::uint32_t padLength_ = kDefaultPadLength;  // Kept: what is below 0 counts from above
  std::size_t padding_ = 0;
  bool isTransformInverse_ = false;
  std::optional<Text> transformName_;
  std::shared_ptr<RegexService> service_;
};

std::span<const SKWMungeText::Modification> SKWMungeText::modifications() {
  static constexpr Modification kModifications[] = {
      {Code::upperCase, &SKWMungeText::convert<foundation::uppercased>},
      {Code::lowerCase, &SKWMungeText::convert<foundation::lowercased>},
      {Code::capitalizeWords, &SKWMungeText::convert<foundation::capitalized>},
      {Code::trimWhitespace, &SKWMungeText::trimWhitespace},
      {Code::padToLength, &SKWMungeText::padToLength},
      {Code::encodeURL, &SKWMungeText::encodeURL<ReservedCharacters::kept>},
      {Code::encodeURLReserved, &SKWMungeText::encodeURL<ReservedCharacters::escaped>},
      {Code::decodeURL, &SKWMungeText::decodeURL},
      {Code::encodeXMLEntities, &SKWMungeText::convert<foundation::entitiesEscaped>},
      {Code::md5Digest, &SKWMungeText::md5Digest},
      {Code::icuTransform, &SKWMungeText::icuTransform},
      {Code::parseCSV, nullptr, parseCSVIn},
      {Code::smartQuotes, &SKWMungeText::change<curlQuotes>},
      {Code::straightQuotes, &SKWMungeText::change<straightenQuotes>},
      {Code::decodeHexEscapes,
       &SKWMungeText::transform<kFromHexadecimal, &SKWMungeText::fromHexadecimal_>},
      {Code::decodeXMLEntities, &SKWMungeText::convert<foundation::entitiesUnescaped>},
      {Code::escapeNonASCIIDecimal,
       &SKWMungeText::transform<kToDecimal, &SKWMungeText::toDecimal_>},
      {Code::escapeNonASCIIHex,
       &SKWMungeText::transform<kToHexadecimal, &SKWMungeText::toHexadecimal_>},
      {Code::standardizePath, &SKWMungeText::standardizePath},
      {Code::parseTSV, nullptr, parseTSVIn},
      {Code::collapseSpaces, &SKWMungeText::collapseSpaces},
      {Code::removeBlankLines, &SKWMungeText::removeBlankLines},
  };
  return kModifications;
}

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWMungeText() {
  return std::make_unique<text::SKWMungeText>();
}

}  // namespace skerrow
