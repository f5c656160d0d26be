#include "foundation/predicate/wildcard_pattern.h"

#include <unicode/utf16.h>

#include <cstddef>

namespace skerrow::foundation {

namespace {

constexpr char32_t kOne = 0x110000;
constexpr char32_t kAny = 0x110001;

constexpr std::size_t kFreeStepsOfUnit = 16;

char32_t nextCharacter(std::u16string_view text, std::size_t& index) {
  const char16_t* const units = text.data();
  char32_t character = 0;
  U16_NEXT(units, index, text.size(), character);
  return character;
}

bool isSpecial(char16_t unit) { return unit == u'*' || unit == u'?' || unit == u'\\'; }

}  // namespace

void WildcardPattern::assign(std::u16string_view pattern) {
  elements_.clear();
  for (std::size_t i = 0; i < pattern.size();) {
    const bool isEscape =
        pattern[i] == u'\\' && i + 1 < pattern.size() && isSpecial(pattern[i + 1]);
    if (isEscape) ++i;
    const char32_t character = nextCharacter(pattern, i);
    const bool isAny = !isEscape && character == U'*';
    const bool isOne = !isEscape && character == U'?';
    if (isAny && !elements_.empty() && elements_.back() == kAny) continue;
    elements_.push_back(isAny ? kAny : isOne ? kOne : character);
  }
}

bool WildcardPattern::matches(std::u16string_view text, StepBudget& steps) const {
  constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
  std::size_t inText = 0;
  std::size_t inPattern = 0;
  // Behind the last "*" met and where in the text it ends for now: only that one
  // needs to take more, as what stands before it has been matched as early as can be.
  std::size_t behindAny = kNowhere;
  std::size_t endOfAny = 0;
  std::size_t freeSteps = kFreeStepsOfUnit * text.size();
  while (inText < text.size()) {
    if (freeSteps > 0) {
      --freeSteps;
    } else {
      steps.spend(1);
    }
    if (inPattern < elements_.size() && elements_[inPattern] == kAny) {
      behindAny = ++inPattern;
      endOfAny = inText;
      continue;
    }
    std::size_t next = inText;
    const char32_t character = nextCharacter(text, next);
    if (inPattern < elements_.size() &&
        (elements_[inPattern] == kOne || elements_[inPattern] == character)) {
      ++inPattern;
      inText = next;
      continue;
    }
    if (behindAny == kNowhere) return false;
    inPattern = behindAny;
    nextCharacter(text, endOfAny);
    inText = endOfAny;
  }
  if (inPattern < elements_.size() && elements_[inPattern] == kAny) ++inPattern;
  return inPattern == elements_.size();
}

}  // namespace skerrow::foundation
