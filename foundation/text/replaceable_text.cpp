#include "foundation/text/replaceable_text.h"

#include <algorithm>
#include <stdexcept>

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

UOBJECT_DEFINE_RTTI_IMPLEMENTATION(ReplaceableText)

ReplaceableText::ReplaceableText(std::u16string_view text, std::size_t longest)
    : longest_(longest) {
  requireRoomFor(text.size());
  body_ = text;
}

void ReplaceableText::requireRoomFor(std::size_t unitCount) const {
  if (unitCount > longest_) throw std::length_error("The text is too long to be transformed.");
}

std::u16string ReplaceableText::text() const { return units(0, bodyLength() + behind_.size()); }

UChar32 ReplaceableText::getChar32At(std::int32_t offset) const {
  const auto position = static_cast<std::size_t>(offset);
  const auto length = static_cast<std::size_t>(getLength());
  const char16_t unit = unitAt(position);
  // From either half of a pair the code point is the whole of it.
  std::size_t first = position;
  if (isTrailingSurrogate(unit) && position > 0 && isLeadingSurrogate(unitAt(position - 1))) {
    first = position - 1;
  }
  const char16_t pair[2] = {unitAt(first), first + 1 < length ? unitAt(first + 1) : u'\0'};
  return static_cast<UChar32>(codePointAt({pair, 2}, 0).value);
}

std::u16string ReplaceableText::units(std::size_t start, std::size_t limit) const {
  std::u16string result;
  result.reserve(limit - start);
  if (start < gapBegin_) {
    result.append(body_, start, std::min(limit, gapBegin_) - start);
    start = std::min(limit, gapBegin_);
  }
  const std::size_t body = bodyLength();
  if (start < limit && start < body) {
    const std::size_t end = std::min(limit, body);
    result.append(body_, start + (gapEnd_ - gapBegin_), end - start);
    start = end;
  }
  if (start < limit) result.append(behind_, start - body, limit - start);
  return result;
}

void ReplaceableText::extractBetween(std::int32_t start, std::int32_t limit,
                                     icu::UnicodeString& target) const {
  const std::u16string found =
      units(static_cast<std::size_t>(start), static_cast<std::size_t>(limit));
  target.setTo(found.data(), static_cast<std::int32_t>(found.size()));
}

void ReplaceableText::handleReplaceBetween(std::int32_t start, std::int32_t limit,
                                           const icu::UnicodeString& replacement) {
  replace(static_cast<std::size_t>(start), static_cast<std::size_t>(limit),
          {replacement.getBuffer(), static_cast<std::size_t>(replacement.length())});
}

void ReplaceableText::copy(std::int32_t start, std::int32_t limit, std::int32_t destination) {
  if (limit <= start) return;
  const auto place = static_cast<std::size_t>(destination);
  replace(place, place, units(static_cast<std::size_t>(start), static_cast<std::size_t>(limit)));
}

void ReplaceableText::replace(std::size_t start, std::size_t limit,
                              std::u16string_view replacement) {
  const std::size_t body = bodyLength();
  requireRoomFor(body + behind_.size() + replacement.size());
  if (start >= body) {
    behind_.replace(start - body, limit - start, replacement);
    return;
  }
  if (limit > body) {
    behind_.erase(0, limit - body);
    limit = body;
  }
  replaceInBody(start, limit, replacement);
}

void ReplaceableText::replaceInBody(std::size_t start, std::size_t limit,
                                    std::u16string_view replacement) {
  const std::size_t removed = limit - start;
  if (replacement.size() == removed && (limit <= gapBegin_ || start >= gapBegin_)) {
    const std::size_t at = limit <= gapBegin_ ? start : start + (gapEnd_ - gapBegin_);
    std::ranges::copy(replacement, body_.begin() + static_cast<std::ptrdiff_t>(at));
    return;
  }
  moveGap(start);
  gapEnd_ += removed;
  if (gapEnd_ - gapBegin_ < replacement.size()) widenGap(replacement.size());
  std::ranges::copy(replacement, body_.begin() + static_cast<std::ptrdiff_t>(gapBegin_));
  gapBegin_ += replacement.size();
}

void ReplaceableText::moveGap(std::size_t position) {
  const auto begin = body_.begin();
  const auto at = [&](std::size_t offset) { return begin + static_cast<std::ptrdiff_t>(offset); };
  if (position < gapBegin_) {
    const std::size_t count = gapBegin_ - position;
    std::move_backward(at(position), at(gapBegin_), at(gapEnd_));
    gapBegin_ -= count;
    gapEnd_ -= count;
  } else if (position > gapBegin_) {
    const std::size_t count = position - gapBegin_;
    std::move(at(gapEnd_), at(gapEnd_ + count), at(gapBegin_));
    gapBegin_ += count;
    gapEnd_ += count;
  }
}

// Grows with the text, so that all the growing together is linear.
void ReplaceableText::widenGap(std::size_t atLeast) {
  const std::size_t more = std::max(atLeast, body_.size() / 2 + 64);
  body_.insert(gapEnd_, more, u'\0');
  gapEnd_ += more;
}

}  // namespace skerrow::foundation
