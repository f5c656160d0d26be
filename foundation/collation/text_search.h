#pragma once
// TextSearch: finding and replacing one text in another, not by a pattern. Without
// options texts are compared unit by unit, and half of a surrogate pair is not found
// in the pair. Where case or diacritics do not matter, they are compared character
// by character as TextFolding sees them, so that what is found may be longer or
// shorter than what was looked for, and begins and ends between characters: "s" is
// not found in "ß", nor "e" in "é" unless diacritics do not matter. An empty text is
// found nowhere. Every search is linear.
//
//   const TextSearch search(u"strasse", {.caseInsensitive = true});
//   search.first(u"Die Straße");   // {4, 6}
//   TextSearch::Scan scan(search, text);
//   for (auto found = scan.next(); found.isFound(); found = scan.next()) …

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/collation/text_folding.h"
#include "foundation/text/unit_range.h"

namespace skerrow::foundation {

/// What is looked for, made ready once. Threads may share it.
class TextSearch {
 public:
  explicit TextSearch(std::u16string_view sought, FoldingOptions options = {});

  /// The first occurrence, or not found.
  [[nodiscard]] UnitRange first(std::u16string_view text) const;

  /// The occurrence that begins last (a search backwards), or not found.
  [[nodiscard]] UnitRange last(std::u16string_view text) const;

  /// Whether the text holds, begins or ends with what is looked for. Takes a folding of
  /// the same options, which who asks of many texts keeps.
  [[nodiscard]] bool isIn(std::u16string_view text, TextFolding& folding) const;
  [[nodiscard]] bool isAtFrontOf(std::u16string_view text, TextFolding& folding) const;
  [[nodiscard]] bool isAtEndOf(std::u16string_view text, TextFolding& folding) const;

  /// The text with every occurrence replaced, from the front, none overlapping another.
  [[nodiscard]] std::u16string replacingAll(std::u16string_view text,
                                            std::u16string_view replacement) const;

  class Scan;

 private:
  [[nodiscard]] bool isLiteral() const noexcept { return options_ == FoldingOptions{}; }

  FoldingOptions options_;
  std::u16string sought_;             // folded
  std::vector<std::size_t> borders_;  // of every prefix, its longest border (Knuth, Morris, Pratt)
};

/// One pass over a text from its front to its end. The search and the text must
/// outlive it.
class TextSearch::Scan {
 public:
  Scan(const TextSearch& search, std::u16string_view text);
  /// With a folding of the search's options.
  Scan(const TextSearch& search, std::u16string_view text, TextFolding& folding);

  /// The next occurrence behind the one before, or not found.
  UnitRange next();

  /// The next one that begins behind where the one before begins, or not found.
  UnitRange nextOverlapping();

 private:
  static constexpr std::size_t kInsideCharacter = static_cast<std::size_t>(-1);

  UnitRange find();
  UnitRange findLiteral();
  UnitRange findFolded();
  void advance(char16_t unit);

  const TextSearch& search_;
  std::u16string_view text_;
  std::size_t position_ = 0;
  std::size_t matched_ = 0;  // units of what is sought that end at the position
  // For folded searches: for the last folded units, as many as are sought, where
  // in the text their character begins.
  TextFolding* folding_ = nullptr;
  std::unique_ptr<TextFolding> ownFolding_;
  std::vector<std::size_t> begins_;
  std::size_t foldedCount_ = 0;
};

}  // namespace skerrow::foundation
