#include "foundation/collation/primary_ranks.h"

#include <unicode/ucol.h>
#include <unicode/uset.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace skerrow::foundation {

namespace {

constexpr std::size_t kBytes = PrimaryRanks::kWords * sizeof(std::uint64_t);
constexpr std::size_t kMostDigits = 200;  // of one number; its count must fit a byte
constexpr int kMostRanks = 254;
constexpr char16_t kHighestCharacter = u'\uFFFF';  // above every character, by CLDR

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

struct CloseCollator {
  void operator()(UCollator* collator) const { ucol_close(collator); }
};
struct CloseSet {
  void operator()(USet* set) const { uset_close(set); }
};

// The rules of a comparator, looked at on their first level only.
class FirstLevel {
 public:
  explicit FirstLevel(const UCollator* rules) {
    UErrorCode status = U_ZERO_ERROR;
    collator_.reset(ucol_clone(rules, &status));
    if (U_FAILURE(status)) return;
    ucol_setAttribute(collator_.get(), UCOL_STRENGTH, UCOL_PRIMARY, &status);
    contractions_.reset(uset_openEmpty());
    ucol_getContractionsAndExpansions(rules, contractions_.get(), nullptr, true, &status);
    isUsable_ = U_SUCCESS(status) &&
                ucol_getAttribute(rules, UCOL_ALTERNATE_HANDLING, &status) == UCOL_NON_IGNORABLE;
  }

  [[nodiscard]] bool isUsable() const { return isUsable_; }

  [[nodiscard]] int compare(std::u16string_view a, std::u16string_view b) const {
    return ucol_strcoll(collator_.get(), a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                        static_cast<std::int32_t>(b.size()));
  }

  // The sequences of characters that the rules take as one.
  [[nodiscard]] std::vector<std::u16string> contractions() const {
    std::vector<std::u16string> found;
    const std::int32_t count = uset_getItemCount(contractions_.get());
    for (std::int32_t i = 0; i < count; ++i) {
      UChar32 first = 0;
      UChar32 last = 0;
      char16_t text[32];
      UErrorCode status = U_ZERO_ERROR;
      const std::int32_t length =
          uset_getItem(contractions_.get(), i, &first, &last, text, 32, &status);
      if (length > 1 && U_SUCCESS(status)) {
        found.emplace_back(text, static_cast<std::size_t>(length));
      }
    }
    return found;
  }

 private:
  std::unique_ptr<UCollator, CloseCollator> collator_;
  std::unique_ptr<USet, CloseSet> contractions_;
  bool isUsable_ = false;
};

std::vector<char16_t> candidates(bool withDigits) {
  std::vector<char16_t> found;
  const auto add = [&](char16_t first, char16_t last) {
    for (char16_t unit = first; unit <= last; ++unit) {
      if (withDigits || !isDigit(unit) || unit == u'0') found.push_back(unit);
    }
  };
  add(u'\t', u'\r');
  add(u' ', u'~');
  add(u'\u00A0', u'\u017F');
  add(u'\u0370', u'\u03FF');
  add(u'\u0400', u'\u045F');
  return found;
}

}  // namespace

PrimaryRanks::PrimaryRanks(const TextComparator& comparator) {
  const FirstLevel level(comparator.collator());
  if (!level.isUsable()) return;

  // The digit 0 stands for all numbers where digits count by value.
  const bool byValue = comparator.comparison() == TextComparison::sortLocalizedStandard;
  std::vector<char16_t> characters = candidates(!byValue);
  const auto text = [](const char16_t& unit) { return std::u16string_view(&unit, 1); };
  std::erase_if(characters, [&](char16_t unit) { return level.compare(text(unit), u"") == 0; });
  std::ranges::stable_sort(
      characters, [&](char16_t a, char16_t b) { return level.compare(text(a), text(b)) < 0; });

  // A character may have a rank if whatever follows the one before it cannot lift
  // that one above it, that is, if the one before is not the front of an expansion.
  int next = 1;
  std::u16string highestBefore;
  char16_t before = 0;
  for (const char16_t unit : characters) {
    const bool isNew = before == 0 || level.compare(text(before), text(unit)) != 0;
    if (isNew && before != 0 && level.compare(highestBefore, text(unit)) >= 0) continue;
    if (isNew && next > kMostRanks) break;
    if (isNew) {
      ++next;
      before = unit;
      highestBefore =
          byValue && isDigit(unit) ? std::u16string(kMostDigits, u'9') : std::u16string(1, unit);
      highestBefore += kHighestCharacter;
    }
    ranks_[unit] = static_cast<std::uint8_t>(next);
  }
  if (byValue) {
    digitRank_ = ranks_[u'0'];
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) ranks_[digit] = 0;
  }

  // One character of every contraction loses its rank, one outside ASCII if there is any.
  for (const std::u16string& contraction : level.contractions()) {
    const bool hasRanks = std::ranges::all_of(
        contraction, [&](char16_t unit) { return rank(unit) != 0 || startsNumber(unit); });
    if (!hasRanks) continue;
    const auto given =
        std::ranges::find_if(contraction, [](char16_t unit) { return unit >= 0x80; });
    ranks_[given == contraction.end() ? contraction.back() : *given] = 0;
  }
}

bool PrimaryRanks::encode(std::u16string_view text, Front& front) const {
  front = {};
  std::size_t count = 0;
  const auto append = [&](std::size_t byte) {
    if (count < kBytes)
      front[count / 8] |= static_cast<std::uint64_t>(byte) << (56 - count % 8 * 8);
    ++count;
  };
  std::size_t i = 0;
  while (i < text.size() && count < kBytes) {
    if (startsNumber(text[i])) {
      // A number: its rank, how many digits it has without zeros in front, the digits.
      while (i < text.size() && text[i] == u'0') ++i;
      const std::size_t first = i;
      while (i < text.size() && isDigit(text[i])) ++i;
      if (i - first > kMostDigits) return false;
      append(digitRank_);
      append(i - first + 1);
      for (std::size_t j = first; j < i; ++j) append(text[j] - u'0' + 1U);
      continue;
    }
    const std::uint8_t byte = rank(text[i]);
    if (byte == 0) return false;
    append(byte);
    ++i;
  }
  // What follows may join the last character seen.
  return i == text.size() || rank(text[i]) != 0 || startsNumber(text[i]);
}

}  // namespace skerrow::foundation
