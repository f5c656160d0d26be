#include "foundation/text/canonical_form.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

#include "foundation/text/code_points.h"
#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

namespace {

// So many units of marks in a row are more than any language writes.
constexpr std::size_t kManyMarks = 64;

const UNormalizer2* normalizerTo(CanonicalForm form) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const normalizer = form == CanonicalForm::composed
                                             ? unorm2_getNFCInstance(&status)
                                             : unorm2_getNFDInstance(&status);
  if (U_FAILURE(status)) throw std::bad_alloc();
  return normalizer;
}

void normalize(CanonicalForm form, std::u16string_view text, std::u16string& into) {
  const UNormalizer2* const normalizer = normalizerTo(form);
  convertInto(into, text.size(), [&](char16_t* units, std::int32_t room, UErrorCode* status) {
    return unorm2_normalize(normalizer, icuUnits(text), icuLength(text), units, room, status);
  });
}

std::size_t beginOfCodePoint(std::u16string_view text, std::size_t position) {
  return isInsidePair(text, position) ? position - 1 : position;
}

// Whether marks stand in a row around a position, which is one of a mark, as far as to
// make them many.
bool areManyAround(std::u16string_view text, std::size_t position) {
  std::size_t begin = position;
  while (begin > 0 && position - begin < kManyMarks) {
    const std::size_t before = beginOfCodePoint(text, begin - 1);
    if (!isOrderedMark(codePointAt(text, before).value)) break;
    begin = before;
  }
  std::size_t end = position;
  while (end < text.size() && end - begin < kManyMarks) {
    const CodePoint point = codePointAt(text, end);
    if (!isOrderedMark(point.value)) break;
    end += point.unitCount;
  }
  return end - begin >= kManyMarks;
}

// A row of many marks covers one of the units that are looked at.
bool hasManyMarksInARow(std::u16string_view text) {
  for (std::size_t i = kManyMarks - 1; i < text.size(); i += kManyMarks) {
    if (text[i] < 0x300) continue;
    const std::size_t begin = beginOfCodePoint(text, i);
    if (isOrderedMark(codePointAt(text, begin).value) && areManyAround(text, begin)) return true;
  }
  return false;
}

// Takes decomposed code points one by one and puts marks in order, by counting.
class Decomposition {
 public:
  explicit Decomposition(std::u16string& into) : into_(into) {}

  void add(char32_t codePoint) {
    const std::uint8_t combiningClass = u_getCombiningClass(static_cast<UChar32>(codePoint));
    if (combiningClass != 0) {
      isInOrder_ = isInOrder_ && (marks_.empty() || marks_.back().order <= combiningClass);
      marks_.push_back({codePoint, combiningClass});
      return;
    }
    flush();
    appendCodePoint(into_, codePoint);
  }

  void flush() {
    if (!isInOrder_) sort();
    for (const Mark& mark : marks_) appendCodePoint(into_, mark.codePoint);
    marks_.clear();
    isInOrder_ = true;
  }

 private:
  struct Mark {
    char32_t codePoint;
    std::uint8_t order;
  };

  // Stable, as marks of one class keep their order.
  void sort() {
    std::array<std::size_t, 256> places{};
    for (const Mark& mark : marks_) ++places[mark.order];
    std::size_t place = 0;
    for (std::size_t& each : places) place += std::exchange(each, place);
    std::vector<Mark> sorted(marks_.size());
    for (const Mark& mark : marks_) sorted[places[mark.order]++] = mark;
    marks_.swap(sorted);
  }

  std::u16string& into_;
  std::vector<Mark> marks_;
  bool isInOrder_ = true;
};

void decomposeByCounting(std::u16string_view text, std::u16string& into) {
  const UNormalizer2* const normalizer = normalizerTo(CanonicalForm::decomposed);
  into.clear();
  into.reserve(text.size());
  Decomposition decomposition(into);
  for (std::size_t i = 0; i < text.size();) {
    const CodePoint point = codePointAt(text, i);
    i += point.unitCount;
    char16_t units[32];
    UErrorCode status = U_ZERO_ERROR;
    const std::int32_t count = unorm2_getDecomposition(
        normalizer, static_cast<UChar32>(point.value), units, std::size(units), &status);
    if (count < 0 || U_FAILURE(status)) {
      decomposition.add(point.value);
      continue;
    }
    const std::u16string_view decomposed(units, static_cast<std::size_t>(count));
    for (std::size_t j = 0; j < decomposed.size();) {
      const CodePoint part = codePointAt(decomposed, j);
      decomposition.add(part.value);
      j += part.unitCount;
    }
  }
  decomposition.flush();
}

}  // namespace

bool isOrderedMark(char32_t codePoint) noexcept {
  // Of a mark that comes apart, what its first part is.
  return u_getIntPropertyValue(static_cast<UChar32>(codePoint),
                               UCHAR_LEAD_CANONICAL_COMBINING_CLASS) != 0;
}

void makeCanonical(CanonicalForm form, std::u16string_view text, std::u16string& into) {
  if (!hasManyMarksInARow(text)) return normalize(form, text, into);
  if (form == CanonicalForm::decomposed) return decomposeByCounting(text, into);
  std::u16string decomposed;
  decomposeByCounting(text, decomposed);
  normalize(form, decomposed, into);
}

std::u16string_view withOrderedMarks(std::u16string_view text, std::u16string& room) {
  if (!hasManyMarksInARow(text)) return text;
  decomposeByCounting(text, room);
  return room;
}

}  // namespace skerrow::foundation
