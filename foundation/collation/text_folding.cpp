#include "foundation/collation/text_folding.h"

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <new>

#include "foundation/text/canonical_form.h"
#include "foundation/text/character_sets.h"
#include "foundation/text/code_points.h"
#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

TextFolding::TextFolding(FoldingOptions options) : options_(options) {
  UErrorCode status = U_ZERO_ERROR;
  composition_ = unorm2_getNFCInstance(&status);
  if (U_FAILURE(status)) throw std::bad_alloc();
}

TextFolding::Character TextFolding::nextOther(std::u16string_view text, std::size_t position) {
  const CodePoint first = codePointAt(text, position);
  std::size_t end = position + first.unitCount;
  while (end < text.size() && text[end] >= kFirstMark) {
    const CodePoint point = codePointAt(text, end);
    if (unorm2_hasBoundaryBefore(composition_, static_cast<UChar32>(point.value)) != 0) break;
    end += point.unitCount;
  }
  const std::u16string_view character = text.substr(position, end - position);
  if (character.size() > first.unitCount) return {character.size(), folded(character)};

  Known& known = known_[first.value % kKnownCount];
  if (known.codePoint != first.value) {
    const std::u16string& units = folded(character);
    if (units.size() > known.units.size()) return {character.size(), units};
    known.codePoint = first.value;
    known.count = static_cast<std::uint8_t>(units.size());
    std::ranges::copy(units, known.units.begin());
  }
  return {character.size(), {known.units.data(), known.count}};
}

// The canonical caseless match of the Unicode Standard, section 3.13 (D145). The Turkic
// rules fold a capital with a dot, which must not come apart before.
const std::u16string& TextFolding::folded(std::u16string_view character) {
  const bool isTurkic = options_.caseInsensitive && options_.caseRules == CaseRules::turkic;
  const auto form = isTurkic ? CanonicalForm::composed : CanonicalForm::decomposed;
  makeCanonical(form, character, folded_);
  if (options_.diacriticInsensitive && !isTurkic) removeDiacritics(folded_);
  if (!options_.caseInsensitive) return folded_;
  const std::uint32_t rules = isTurkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
  convertInto(
      intermediate_, folded_.size(), [&](char16_t* units, std::int32_t room, UErrorCode* status) {
        return u_strFoldCase(units, room, folded_.data(), icuLength(folded_), rules, status);
      });
  makeCanonical(CanonicalForm::decomposed, intermediate_, folded_);
  if (options_.diacriticInsensitive && isTurkic) removeDiacritics(folded_);
  return folded_;
}

std::u16string TextFolding::fold(std::u16string_view text) {
  std::u16string result;
  for (std::size_t i = 0; i < text.size();) {
    const Character character = next(text, i);
    result += character.folded;
    i += character.unitCount;
  }
  return result;
}

}  // namespace skerrow::foundation
