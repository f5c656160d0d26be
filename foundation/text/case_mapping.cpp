#include "foundation/text/case_mapping.h"

#include <unicode/casemap.h>
#include <unicode/stringoptions.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "foundation/text/character_sets.h"
#include "foundation/text/icu_text.h"

namespace skerrow::foundation {

namespace {

enum class Case { upper, lower };

constexpr std::uint32_t kWholeWord = U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_BREAK_ADJUSTMENT;
constexpr char16_t kCapitalSigma = u'Σ';

template <Case kCase>
constexpr char16_t mappedAscii(char16_t unit) {
  constexpr char16_t kFirst = kCase == Case::upper ? u'a' : u'A';
  const bool changes = unit >= kFirst && unit < kFirst + 26;
  return static_cast<char16_t>(unit ^ (static_cast<unsigned>(changes) << 5U));
}

bool isAscii(char16_t unit) { return unit < 0x80; }

template <Case kCase>
void appendMappedByIcu(std::u16string& result, std::u16string_view text, std::u16string& work) {
  convertInto(work, text.size(), [&](char16_t* units, std::int32_t room, UErrorCode* status) {
    return kCase == Case::upper
               ? u_strToUpper(units, room, icuUnits(text), icuLength(text), "", status)
               : u_strToLower(units, room, icuUnits(text), icuLength(text), "", status);
  });
  result += work;
}

// Maps ASCII as far as it goes, in blocks that the compiler can do at once.
template <Case kCase>
const char16_t* appendMappedAscii(std::u16string& result, const char16_t* next,
                                  const char16_t* end) {
  std::array<char16_t, 256> block;
  while (static_cast<std::size_t>(end - next) >= block.size()) {
    unsigned all = 0;
    for (std::size_t i = 0; i < block.size(); ++i) {
      all |= next[i];
      block[i] = mappedAscii<kCase>(next[i]);
    }
    if (all >= 0x80) break;
    result.append(block.data(), block.size());
    next += block.size();
  }
  for (; next != end && isAscii(*next); ++next) result += mappedAscii<kCase>(*next);
  return next;
}

// ASCII runs are mapped here, what lies between them by ICU. Only the lower case of
// sigma looks at its neighbours, so a text with one is left to ICU as a whole.
template <Case kCase>
std::u16string mapped(std::u16string_view text) {
  constexpr std::size_t kShortestRun = 16;  // below, handing over costs more
  std::u16string result;
  std::u16string work;
  if (kCase == Case::lower && text.find(kCapitalSigma) != std::u16string_view::npos) {
    appendMappedByIcu<kCase>(result, text, work);
    return result;
  }
  result.reserve(text.size());
  const char16_t* next = text.data();
  const char16_t* const end = next + text.size();
  while (next != end) {
    next = appendMappedAscii<kCase>(result, next, end);
    const char16_t* const other = next;
    std::size_t run = 0;
    while (next != end && run < kShortestRun) run = isAscii(*next++) ? run + 1 : 0;
    if (run == kShortestRun) next -= run;
    if (next != other) appendMappedByIcu<kCase>(result, {other, next}, work);
  }
  return result;
}

void appendCapitalizedWord(std::u16string& result, std::u16string_view word, std::u16string& work) {
  if (std::ranges::all_of(word, isAscii)) {
    result += mappedAscii<Case::upper>(word.front());
    for (const char16_t unit : word.substr(1)) result += mappedAscii<Case::lower>(unit);
    return;
  }
  convertInto(work, word.size(), [&](char16_t* units, std::int32_t room, UErrorCode* status) {
    return icu::CaseMap::toTitle("", kWholeWord, nullptr, word.data(), icuLength(word), units, room,
                                 nullptr, *status);
  });
  result += work;
}

}  // namespace

std::u16string uppercased(std::u16string_view text) { return mapped<Case::upper>(text); }

std::u16string lowercased(std::u16string_view text) { return mapped<Case::lower>(text); }

std::u16string capitalized(std::u16string_view text) {
  std::u16string result;
  std::u16string work;
  result.reserve(text.size());
  for (auto next = text.begin(); next != text.end();) {
    const auto word = std::find_if_not(next, text.end(), isWhiteSpaceOrNewline);
    result.append(next, word);
    next = std::find_if(word, text.end(), isWhiteSpaceOrNewline);
    if (word != next) appendCapitalizedWord(result, {word, next}, work);
  }
  return result;
}

}  // namespace skerrow::foundation
