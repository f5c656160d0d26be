#include "foundation/collation/text_relation.h"

#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

static_assert(U_FOLD_CASE_DEFAULT == 0);

namespace {

bool isAscii(std::u16string_view text) {
  return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
}

// A virama joins consonants and a mark of class 0 is a vowel or a sign of its own:
// leaving them out would leave out what is read.
bool isDiacritic(char32_t character) {
  constexpr std::uint8_t kVirama = 9;
  const auto point = static_cast<UChar32>(character);
  const std::uint8_t combiningClass = u_getCombiningClass(point);
  return combiningClass != 0 && combiningClass != kVirama &&
         u_charType(point) == U_NON_SPACING_MARK;
}

void removeDiacritics(std::u16string& text) {
  const char16_t* const units = text.data();
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t begin = i;
    char32_t character = 0;
    U16_NEXT(units, i, text.size(), character);
    if (isDiacritic(character)) continue;
    for (std::size_t j = begin; j < i; ++j) text[kept++] = text[j];
  }
  text.resize(kept);
}

enum class Form { composed, decomposed };

void normalize(Form form, std::u16string_view text, std::u16string& into) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const normalizer =
      form == Form::composed ? unorm2_getNFCInstance(&status) : unorm2_getNFDInstance(&status);
  convertInto(into, text.size(), [&](char16_t* units, std::int32_t room, UErrorCode* error) {
    return unorm2_normalize(normalizer, icuUnits(text), icuLength(text), units, room, error);
  });
}

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
  if (part.empty()) return true;
  // The plain search is quick on what people write and slow on what tests it.
  constexpr std::size_t kLongPart = 64;
  if (part.size() < kLongPart) return text.find(part) != std::u16string_view::npos;
  return part.size() <= text.size() && containsLinearly(text, part);
}

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
    foldOptions_ = U_FOLD_CASE_EXCLUDE_SPECIAL_I;
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
    return ucol_strcoll(collator_.get(), icuUnits(a), icuLength(a), icuUnits(b), icuLength(b)) <=>
           0;
  }
  return folded(a, work.left, work.intermediate) <=> folded(b, work.right, work.intermediate);
}

std::u16string_view TextRelation::folded(std::u16string_view text, std::u16string& into,
                                         std::u16string& intermediate) const {
  if (isLiteral()) return text;
  if (isAscii(text) && (foldOptions_ == U_FOLD_CASE_DEFAULT || !options_.caseInsensitive)) {
    if (!options_.caseInsensitive) return text;
    into.resize(text.size());
    std::ranges::transform(text, into.begin(), [](char16_t unit) {
      return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
    });
    return into;
  }
  // Turkish folds a dotted I, which must not come apart before.
  const bool isTurkish = foldOptions_ != U_FOLD_CASE_DEFAULT;
  normalize(isTurkish ? Form::composed : Form::decomposed, text, intermediate);
  if (options_.caseInsensitive) {
    convertInto(into, intermediate.size(),
                [&](char16_t* units, std::int32_t room, UErrorCode* error) {
                  return u_strFoldCase(units, room, intermediate.data(), icuLength(intermediate),
                                       foldOptions_, error);
                });
    intermediate.swap(into);
  }
  if (options_.diacriticInsensitive) {
    normalize(Form::decomposed, intermediate, into);
    removeDiacritics(into);
    intermediate.swap(into);
  }
  // Composed again, so that a letter is not found in the same letter with an accent.
  normalize(Form::composed, intermediate, into);
  return into;
}

std::u16string TextRelation::withoutDiacritics(std::u16string_view text) const {
  if (!options_.diacriticInsensitive || isAscii(text)) return std::u16string(text);
  std::u16string decomposed;
  normalize(Form::decomposed, text, decomposed);
  removeDiacritics(decomposed);
  std::u16string composed;
  normalize(Form::composed, decomposed, composed);
  return composed;
}

}  // namespace skerrow::foundation
