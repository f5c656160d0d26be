#include "foundation/collation/text_search.h"

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

TextSearch::TextSearch(std::u16string_view sought, FoldingOptions options)
    : options_(options),
      sought_(isLiteral() ? std::u16string(sought) : TextFolding(options).fold(sought)),
      borders_(sought_.size() + 1, 0) {
  for (std::size_t i = 1, length = 0; i < sought_.size(); ++i) {
    while (length > 0 && sought_[i] != sought_[length]) length = borders_[length];
    if (sought_[i] == sought_[length]) ++length;
    borders_[i + 1] = length;
  }
}

UnitRange TextSearch::first(std::u16string_view text) const { return Scan(*this, text).next(); }

UnitRange TextSearch::last(std::u16string_view text) const {
  Scan scan(*this, text);
  UnitRange last = UnitRange::notFound();
  for (;;) {
    const UnitRange found = scan.nextOverlapping();
    if (!found.isFound()) return last;
    last = found;
  }
}

bool TextSearch::isIn(std::u16string_view text, TextFolding& folding) const {
  return Scan(*this, text, folding).next().isFound();
}

bool TextSearch::isAtFrontOf(std::u16string_view text, TextFolding& folding) const {
  if (sought_.empty()) return false;
  if (isLiteral()) return text.starts_with(sought_) && !isInsidePair(text, sought_.size());
  std::u16string_view left = sought_;
  for (std::size_t position = 0; position < text.size() && !left.empty();) {
    const TextFolding::Character character = folding.next(text, position);
    if (!left.starts_with(character.folded)) return false;
    left.remove_prefix(character.folded.size());
    position += character.unitCount;
  }
  return left.empty();
}

// Behind the last occurrence there may be what folds to nothing.
bool TextSearch::isAtEndOf(std::u16string_view text, TextFolding& folding) const {
  Scan scan(*this, text, folding);
  UnitRange last = UnitRange::notFound();
  for (UnitRange found = scan.nextOverlapping(); found.isFound(); found = scan.nextOverlapping()) {
    last = found;
  }
  if (!last.isFound()) return false;
  const std::u16string_view rest = text.substr(last.end());
  return isLiteral() ? rest.empty() : folding.fold(rest).empty();
}

std::u16string TextSearch::replacingAll(std::u16string_view text,
                                        std::u16string_view replacement) const {
  std::u16string result;
  Scan scan(*this, text);
  std::size_t kept = 0;
  for (UnitRange found = scan.next(); found.isFound(); found = scan.next()) {
    if (kept == 0) result.reserve(text.size());
    result.append(text, kept, found.location - kept);
    result += replacement;
    kept = found.end();
  }
  return result.append(text, kept);
}

TextSearch::Scan::Scan(const TextSearch& search, std::u16string_view text)
    : search_(search), text_(text) {
  if (search.isLiteral()) return;
  ownFolding_ = std::make_unique<TextFolding>(search.options_);
  folding_ = ownFolding_.get();
  begins_.resize(search.sought_.size());
}

TextSearch::Scan::Scan(const TextSearch& search, std::u16string_view text, TextFolding& folding)
    : search_(search), text_(text) {
  if (search.isLiteral()) return;
  folding_ = &folding;
  begins_.resize(search.sought_.size());
}

UnitRange TextSearch::Scan::next() {
  const UnitRange found = find();
  matched_ = 0;
  return found;
}

UnitRange TextSearch::Scan::nextOverlapping() {
  const UnitRange found = find();
  if (found.isFound()) matched_ = search_.borders_[matched_];
  return found;
}

UnitRange TextSearch::Scan::find() {
  if (search_.sought_.empty()) return UnitRange::notFound();
  return search_.isLiteral() ? findLiteral() : findFolded();
}

// One step of the automaton that has read `matched_` units of what is sought.
void TextSearch::Scan::advance(char16_t unit) {
  const std::u16string& sought = search_.sought_;
  if (matched_ == sought.size()) matched_ = search_.borders_[matched_];
  while (matched_ > 0 && unit != sought[matched_]) matched_ = search_.borders_[matched_];
  if (unit == sought[matched_]) ++matched_;
}

UnitRange TextSearch::Scan::findLiteral() {
  const std::u16string& sought = search_.sought_;
  while (position_ < text_.size()) {
    if (matched_ == 0) {
      position_ = text_.find(sought.front(), position_);
      if (position_ == std::u16string_view::npos) break;
    }
    advance(text_[position_++]);
    if (matched_ != sought.size()) continue;
    const std::size_t begin = position_ - matched_;
    if (!isInsidePair(text_, begin) && !isInsidePair(text_, position_)) return {begin, matched_};
  }
  position_ = text_.size();
  return UnitRange::notFound();
}

UnitRange TextSearch::Scan::findFolded() {
  const std::size_t soughtCount = search_.sought_.size();
  while (position_ < text_.size()) {
    const TextFolding::Character character = folding_->next(text_, position_);
    std::size_t begin = position_;
    for (const char16_t unit : character.folded) {
      begins_[foldedCount_++ % soughtCount] = begin;
      begin = kInsideCharacter;
      advance(unit);
    }
    position_ += character.unitCount;
    // Only what ends with a character and begins with one counts.
    if (matched_ != soughtCount || character.folded.empty()) continue;
    begin = begins_[foldedCount_ % soughtCount];
    if (begin != kInsideCharacter) return {begin, position_ - begin};
  }
  return UnitRange::notFound();
}

}  // namespace skerrow::foundation
