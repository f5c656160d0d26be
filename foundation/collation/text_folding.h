#pragma once
// TextFolding: a text as a search compares it, character by character. A character
// here is what canonical composition keeps together: a base with its combining
// marks, or the letters of a Hangul syllable. Canonically equivalent characters
// fold to the same units. Folding is Unicode's full case folding and leaves out
// nonspacing marks where diacritics do not matter.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/text/code_points.h"

struct UNormalizer2;

namespace skerrow::foundation {

/// Turkic languages have an i with and one without a dot, in either case.
enum class CaseRules : std::uint8_t { common, turkic };

struct FoldingOptions {
  bool caseInsensitive = false;
  bool diacriticInsensitive = false;
  CaseRules caseRules = CaseRules::common;

  friend bool operator==(FoldingOptions, FoldingOptions) = default;
};

/// Holds results of its own, so each thread has its own object.
class TextFolding {
 public:
  explicit TextFolding(FoldingOptions options);

  struct Character {
    std::size_t unitCount = 0;   // in the text
    std::u16string_view folded;  // until the next call
  };

  /// The character that begins at a unit, which must lie inside the text.
  Character next(std::u16string_view text, std::size_t position) {
    const char16_t unit = text[position];
    const bool isAlone = position + 1 == text.size() || text[position + 1] < kFirstMark;
    const bool isOther = unit >= 0x80 || options_.caseRules == CaseRules::turkic;
    if (isOther || !isAlone) return nextOther(text, position);
    single_ = options_.caseInsensitive ? lowercaseAscii(unit) : unit;
    return {1, {&single_, 1}};
  }

  [[nodiscard]] FoldingOptions options() const noexcept { return options_; }

  /// A whole text, folded.
  std::u16string fold(std::u16string_view text);

 private:
  // What one code point folds to, kept for the next time that it is met.
  struct Known {
    char32_t codePoint = 0xFFFFFFFF;
    std::uint8_t count = 0;
    std::array<char16_t, 7> units{};
  };
  static constexpr char16_t kFirstMark = u'\u0300';  // no unit below is a combining mark
  static constexpr std::size_t kKnownCount = 256;

  Character nextOther(std::u16string_view text, std::size_t position);
  const std::u16string& folded(std::u16string_view character);

  FoldingOptions options_;
  const UNormalizer2* composition_;
  std::array<Known, kKnownCount> known_{};
  char16_t single_ = 0;
  std::u16string folded_;
  std::u16string intermediate_;
};

}  // namespace skerrow::foundation
