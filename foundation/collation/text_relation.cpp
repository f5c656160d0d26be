#include "foundation/collation/text_relation.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "foundation/text/canonical_form.h"
#include "foundation/text/character_sets.h"
#include "foundation/text/code_points.h"
#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

namespace {

// Where `part` begins in `text`, in time linear in both (Knuth, Morris and Pratt).
bool containsLinearly(std::u16string_view text, std::u16string_view part) {
  std::vector<std::size_t> border(part.size() + 1, 0);
  for (std::size_t i = 1, length = 0; i < part.size(); ++i) {
    while (length > 0 && part[i] != part[length]) length = border[length];
    if (part[i] == part[length]) ++length;
    border[i + 1] = length;
  }
  std::size_t matched = 0;
  for (const char16_t unit : text) {
    while (matched > 0 && unit != part[matched]) matched = border[matched];
    if (unit == part[matched]) ++matched;
    if (matched == part.size()) return true;
  }
  return false;
}

}  // namespace

bool containsText(std::u16string_view text, std::u16string_view part) {
  if (part.empty()) return false;
  // The plain search is quick on what people write and slow on what tests it.
  constexpr std::size_t kLongPart = 64;
  if (part.size() < kLongPart) return text.find(part) != std::u16string_view::npos;
  return part.size() <= text.size() && containsLinearly(text, part);
}

namespace {

bool standsIn(std::u16string_view text, std::u16string_view part, TextPlace place) {
  if (part.empty()) return false;
  if (place == TextPlace::atFront) return text.starts_with(part);
  if (place == TextPlace::atEnd) return text.ends_with(part);
  return containsText(text, part);
}

bool standsIn(std::u16string_view text, const TextSearch& part, TextPlace place,
              TextFolding& folding) {
  if (place == TextPlace::atFront) return part.isAtFrontOf(text, folding);
  if (place == TextPlace::atEnd) return part.isAtEndOf(text, folding);
  return part.isIn(text, folding);
}

TextFolding& foldingFor(FoldingOptions options, TextRelation::Workspace& work) {
  for (const std::unique_ptr<TextFolding>& folding : work.foldings) {
    if (folding->options() == options) return *folding;
  }
  return *work.foldings.emplace_back(std::make_unique<TextFolding>(options));
}

}  // namespace

void TextRelation::Close::operator()(UCollator* collator) const { ucol_close(collator); }

TextRelation::TextRelation(TextOptions options, const std::string& locale) : options_(options) {
  if (options_.normalized) {
    options_.caseInsensitive = false;
    options_.diacriticInsensitive = false;
  }
  if (!options_.localeSensitive) return;

  char language[ULOC_LANG_CAPACITY] = "";
  UErrorCode status = U_ZERO_ERROR;
  uloc_getLanguage(locale.c_str(), language, sizeof language, &status);
  if (std::strcmp(language, "tr") == 0 || std::strcmp(language, "az") == 0) {
    caseRules_ = CaseRules::turkic;
  }
  status = U_ZERO_ERROR;
  collator_.reset(ucol_open(locale.c_str(), &status));
  ucol_setAttribute(collator_.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
  const UColAttributeValue strength = options_.diacriticInsensitive ? UCOL_PRIMARY
                                      : options_.caseInsensitive    ? UCOL_SECONDARY
                                                                    : UCOL_TERTIARY;
  ucol_setAttribute(collator_.get(), UCOL_STRENGTH, strength, &status);
  if (options_.diacriticInsensitive && !options_.caseInsensitive) {
    ucol_setAttribute(collator_.get(), UCOL_CASE_LEVEL, UCOL_ON, &status);
  }
  if (U_FAILURE(status)) throw std::runtime_error("The rules for ordering texts cannot be read.");
}

TextRelation::TextRelation(TextRelation&&) noexcept = default;
TextRelation& TextRelation::operator=(TextRelation&&) noexcept = default;
TextRelation::~TextRelation() = default;

bool TextRelation::isLiteral() const noexcept {
  return !options_.caseInsensitive && !options_.diacriticInsensitive && !options_.localeSensitive;
}

bool TextRelation::isEqual(std::u16string_view a, std::u16string_view b, Workspace& work) const {
  if (isLiteral()) return a == b;
  return order(a, b, work) == 0;
}

std::weak_ordering TextRelation::order(std::u16string_view a, std::u16string_view b,
                                       Workspace& work) const {
  if (isLiteral()) return a <=> b;
  if (collator_) {
    a = withOrderedMarks(a, work.left);
    b = withOrderedMarks(b, work.right);
    return ucol_strcoll(collator_.get(), icuUnits(a), icuLength(a), icuUnits(b), icuLength(b)) <=>
           0;
  }
  return folded(a, work.left, work.intermediate) <=> folded(b, work.right, work.intermediate);
}

// Where each character folds to one unit, parts of characters cannot be found.
bool TextRelation::foldsUnits(std::u16string_view text) const {
  return isLiteral() ||
         (isAsciiOnly(text) && (caseRules_ == CaseRules::common || !options_.caseInsensitive));
}

FoldingOptions TextRelation::foldingOptions() const {
  return {options_.caseInsensitive, options_.diacriticInsensitive, caseRules_};
}

TextRelation::Part TextRelation::part(std::u16string_view text) const {
  std::u16string room;
  std::u16string intermediate;
  const bool foldsUnits = this->foldsUnits(text);
  return {std::u16string(folded(text, room, intermediate)), foldsUnits,
          TextSearch(text, foldingOptions())};
}

bool TextRelation::isPartOf(std::u16string_view text, const Part& part, TextPlace place,
                            Workspace& work) const {
  if (!part.foldsUnits || !foldsUnits(text)) {
    return standsIn(text, part.search, place, foldingFor(foldingOptions(), work));
  }
  return standsIn(folded(text, work.left, work.intermediate), part.folded, place);
}

bool TextRelation::isPartOf(std::u16string_view text, std::u16string_view part, TextPlace place,
                            Workspace& work) const {
  if (!foldsUnits(part) || !foldsUnits(text)) {
    return standsIn(text, TextSearch(part, foldingOptions()), place,
                    foldingFor(foldingOptions(), work));
  }
  return standsIn(folded(text, work.left, work.intermediate),
                  folded(part, work.right, work.intermediate), place);
}

std::u16string_view TextRelation::folded(std::u16string_view text, std::u16string& into,
                                         std::u16string& intermediate) const {
  if (foldsUnits(text)) {
    if (!options_.caseInsensitive) return text;
    into.resize(text.size());
    std::ranges::transform(text, into.begin(), lowercaseAscii);
    return into;
  }
  // The Turkic rules fold a capital with a dot, which must not come apart before.
  const bool isTurkic = options_.caseInsensitive && caseRules_ == CaseRules::turkic;
  makeCanonical(isTurkic ? CanonicalForm::composed : CanonicalForm::decomposed, text, intermediate);
  if (options_.diacriticInsensitive && !isTurkic) removeDiacritics(intermediate);
  if (options_.caseInsensitive) {
    const std::uint32_t rules = isTurkic ? U_FOLD_CASE_EXCLUDE_SPECIAL_I : U_FOLD_CASE_DEFAULT;
    convertInto(into, intermediate.size(),
                [&](char16_t* units, std::int32_t room, UErrorCode* error) {
                  return u_strFoldCase(units, room, intermediate.data(), icuLength(intermediate),
                                       rules, error);
                });
    intermediate.swap(into);
  }
  if (options_.diacriticInsensitive && isTurkic) {
    makeCanonical(CanonicalForm::decomposed, intermediate, into);
    removeDiacritics(into);
    intermediate.swap(into);
  }
  // Composed again, so that a letter with an accent is one character to a pattern.
  makeCanonical(CanonicalForm::composed, intermediate, into);
  return into;
}

std::u16string TextRelation::withoutDiacritics(std::u16string_view text) const {
  if (!options_.diacriticInsensitive || isAsciiOnly(text)) return std::u16string(text);
  std::u16string decomposed;
  makeCanonical(CanonicalForm::decomposed, text, decomposed);
  removeDiacritics(decomposed);
  std::u16string composed;
  makeCanonical(CanonicalForm::composed, decomposed, composed);
  return composed;
}

}  // namespace skerrow::foundation
