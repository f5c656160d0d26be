#include "foundation/collation/text_comparison.h"

#include <unicode/ucol.h>
#include <unicode/unorm.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <stdexcept>

#include "foundation/text/canonical_form.h"
#include "foundation/text/code_points.h"
#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

namespace {

// Folded and canonical: what is ASCII at the front is decided without ICU, as no
// ASCII character takes part in a composition with what stands before it.
std::weak_ordering compareFolded(std::u16string_view a, std::u16string_view b) {
  const std::size_t shorter = std::min(a.size(), b.size());
  std::size_t i = 0;
  for (; i < shorter && a[i] < 0x80 && b[i] < 0x80; ++i) {
    const char16_t unitOfA = lowercaseAscii(a[i]);
    const char16_t unitOfB = lowercaseAscii(b[i]);
    if (unitOfA != unitOfB) return unitOfA <=> unitOfB;
  }
  if (i == shorter) return a.size() <=> b.size();
  std::u16string roomOfA;
  std::u16string roomOfB;
  a = withOrderedMarks(a.substr(i), roomOfA);
  b = withOrderedMarks(b.substr(i), roomOfB);
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t order = unorm_compare(icuUnits(a), icuLength(a), icuUnits(b), icuLength(b),
                                           U_COMPARE_IGNORE_CASE, &status);
  return U_SUCCESS(status) ? order <=> 0 : std::weak_ordering(a <=> b);
}

void setAttribute(UCollator* collator, UColAttribute attribute, UColAttributeValue value) {
  UErrorCode status = U_ZERO_ERROR;
  ucol_setAttribute(collator, attribute, value, &status);
}

}  // namespace

std::u16string caselessForm(std::u16string_view text) {
  std::u16string form(text);
  if (isAsciiOnly(text)) {
    std::ranges::transform(form, form.begin(), lowercaseAscii);
    return form;
  }
  // NFD of the folded NFD is the caseless match of the Unicode Standard, section 3.13 (D145).
  std::u16string decomposed;
  makeCanonical(CanonicalForm::decomposed, text, decomposed);
  convertInto(form, form.size(), [&](char16_t* units, std::int32_t room, UErrorCode* error) {
    return u_strFoldCase(units, room, decomposed.data(), icuLength(decomposed), U_FOLD_CASE_DEFAULT,
                         error);
  });
  makeCanonical(CanonicalForm::decomposed, form, decomposed);
  return decomposed;
}

void TextComparator::Close::operator()(UCollator* collator) const { ucol_close(collator); }

TextComparator::TextComparator(TextComparison comparison, const std::string& locale)
    : comparison_(comparison) {
  if (comparison == TextComparison::sortPlain ||
      comparison == TextComparison::sortCaseInsensitive) {
    return;
  }
  UErrorCode status = U_ZERO_ERROR;
  collator_.reset(ucol_open(locale.c_str(), &status));
  if (U_FAILURE(status)) {
    throw std::runtime_error(std::string("The rules for ordering texts cannot be read: ") +
                             u_errorName(status) + ".");
  }
  setAttribute(collator_.get(), UCOL_NORMALIZATION_MODE, UCOL_ON);
  // Case and width are differences of the third level, which counts only where the
  // levels before it find none: as a tie-break.
  setAttribute(collator_.get(), UCOL_STRENGTH, UCOL_TERTIARY);
  if (comparison == TextComparison::sortLocalizedStandard) {
    setAttribute(collator_.get(), UCOL_NUMERIC_COLLATION, UCOL_ON);
  }
}

TextComparator::TextComparator(TextComparator&&) noexcept = default;
TextComparator& TextComparator::operator=(TextComparator&&) noexcept = default;
TextComparator::~TextComparator() = default;

std::weak_ordering TextComparator::compare(std::u16string_view a, std::u16string_view b) const {
  if (comparison_ == TextComparison::sortPlain) return a <=> b;
  const std::weak_ordering order = collator_ ? compareByRules(a, b) : compareFolded(a, b);
  if (order != 0 || comparison_ == TextComparison::sortLocalized) return order;
  return a <=> b;
}

std::weak_ordering TextComparator::compareByRules(std::u16string_view a,
                                                  std::u16string_view b) const {
  std::u16string roomOfA;
  std::u16string roomOfB;
  a = withOrderedMarks(a, roomOfA);
  b = withOrderedMarks(b, roomOfB);
  return ucol_strcoll(collator_.get(), icuUnits(a), icuLength(a), icuUnits(b), icuLength(b)) <=> 0;
}

}  // namespace skerrow::foundation
