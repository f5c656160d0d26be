// SKWSplitString: the pieces of a text, or of each text of a list, between the
// occurrences of a separator; or the two pieces around its first or last occurrence.

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "argument_keys/SKWSplitString.h"
#include "core/command.h"
#include "core/script_error.h"
#include "foundation/collation/text_search.h"
#include "foundation/text/code_points.h"
#include "scripting/dictionary/kind_words.h"
#include "scripting/refusal.h"
#include "text/text_input.h"

namespace skerrow::text {

namespace {

namespace key = argument_keys::SKWSplitString;
using core::ErrorEntry;
using core::ScriptError;
using foundation::TextSearch;
using foundation::UnitRange;
using Items = std::vector<Value>;

constexpr ErrorEntry kNotTexts = {1131,
                                  "Direct parameter is neither a string nor a list of strings."};
constexpr ErrorEntry kFirstByCharacter = {
    1132, "The 'only first' option can't be used with the 'by character' option."};
constexpr ErrorEntry kLastByCharacter = {
    1132, "The 'only last' option can't be used with the 'by character' option."};
constexpr ErrorEntry kFirstAndLast = {
    1132, "The 'only last' option can't be used with the 'only first' option."};

// Separators that are single characters.
class CharacterSet {
 public:
  explicit CharacterSet(std::u16string_view characters) {
    for (std::size_t i = 0; i < characters.size();) {
      const foundation::CodePoint character = foundation::codePointAt(characters, i);
      i += character.unitCount;
      if (character.value < kFew) {
        few_[character.value] = true;
      } else {
        others_.push_back(character.value);
      }
    }
    std::ranges::sort(others_);
  }

  [[nodiscard]] bool contains(char32_t character) const {
    if (character < kFew) return few_[character];
    return std::ranges::binary_search(others_, character);
  }

 private:
  static constexpr std::size_t kFew = 0x100;

  std::array<bool, kFew> few_{};
  std::vector<char32_t> others_;  // in order
};

Value piecesBetween(std::u16string_view text, const CharacterSet& separators) {
  Items pieces;
  std::size_t begin = 0;
  for (std::size_t i = 0; i < text.size();) {
    const foundation::CodePoint character = foundation::codePointAt(text, i);
    if (separators.contains(character.value)) {
      pieces.emplace_back(text.substr(begin, i - begin));
      begin = i + character.unitCount;
    }
    i += character.unitCount;
  }
  pieces.emplace_back(text.substr(begin));
  return pieces;
}

Value piecesAround(std::u16string_view text, UnitRange separator) {
  return Items{text.substr(0, separator.location), text.substr(separator.end())};
}

class SKWSplitString final : public core::Command {
  void check() override {
    requireTextOrList(directParameter(), kNotTexts);
    if (isEmptyList(*directParameter())) {
      answerAtOnce(Items{});
      return;
    }
    const core::Arguments& arguments = evaluatedArguments();
    const std::optional<Text> separator = textArgument(arguments.find(key::splittingString));
    isByCharacter_ = arguments.isSet(key::byCharacter);
    folding_ = {.caseInsensitive = !arguments.isSet(key::caseMatters),
                .diacriticInsensitive = arguments.isSet(key::ignoreDiacriticals)};
    isOnlyFirst_ = arguments.isSet(key::onlyFirst);
    isOnlyLast_ = arguments.isSet(key::onlyLast);
    if (isOnlyFirst_ && isByCharacter_) throw ScriptError(kFirstByCharacter);
    if (isOnlyLast_ && isByCharacter_) throw ScriptError(kLastByCharacter);
    if (isOnlyLast_ && isOnlyFirst_) throw ScriptError(kFirstAndLast);
    if (!separator) {
      scripting::refuseMissing(key::splittingString, wordsOf(scripting::Kinds::text).one);
    }
    separator_ = *separator;
  }

  std::optional<Value> compute() override {
    if (isByCharacter_) {
      separators_.emplace(separator_.view());
    } else {
      search_.emplace(separator_.view(), folding_);
    }
    return convertTextOrTexts(*takeDirectParameter(), kNotTexts,
                              [this](const Text& text) { return piecesOf(text); });
  }

  [[nodiscard]] Value piecesOf(const Text& text) const {
    const std::u16string_view units = text.view();
    if (separators_) return piecesBetween(units, *separators_);
    if (isOnlyFirst_ || isOnlyLast_) {
      const UnitRange found = isOnlyLast_ ? search_->last(units) : search_->first(units);
      return found.isFound() ? piecesAround(units, found) : Value(Items{text});
    }
    TextSearch::Scan scan(*search_, units);
    Items pieces;
    std::size_t begin = 0;
    for (UnitRange found = scan.next(); found.isFound(); found = scan.next()) {
      pieces.emplace_back(units.substr(begin, found.location - begin));
      begin = found.end();
    }
    // A text without the separator is its only piece, shared rather than copied.
    pieces.push_back(begin == 0 ? Value(text) : Value(units.substr(begin)));
    return pieces;
  }

  Text separator_;
  foundation::FoldingOptions folding_;
  // The separator, made ready in the task.
  std::optional<CharacterSet> separators_;
  std::optional<TextSearch> search_;
  bool isByCharacter_ = false;
  bool isOnlyFirst_ = false;
  bool isOnlyLast_ = false;
};

}  // namespace

}  // namespace skerrow::text

namespace skerrow {

std::unique_ptr<core::Command> createSKWSplitString() {
  return std::make_unique<text::SKWSplitString>();
}

}  // namespace skerrow
