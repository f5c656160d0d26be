#include "foundation/text/transliteration.h"

#include <unicode/translit.h>

#include <algorithm>
#include <utility>

#include "foundation/text/icu_text.h"
#include "foundation/text/replaceable_text.h"

namespace skerrow::foundation {

struct Transliteration::Transform {
  std::unique_ptr<icu::Transliterator> icu;
};

Transliteration::Transliteration(std::unique_ptr<Transform> transform)
    : transform_(std::move(transform)) {}
Transliteration::Transliteration(Transliteration&&) noexcept = default;
Transliteration& Transliteration::operator=(Transliteration&&) noexcept = default;
Transliteration::~Transliteration() = default;

std::optional<Transliteration> Transliteration::make(std::u16string_view identifier,
                                                     Direction direction) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString name(icuUnits(identifier), icuLength(identifier));
  auto transform = std::make_unique<Transform>();
  transform->icu.reset(icu::Transliterator::createInstance(
      name, direction == Direction::forward ? UTRANS_FORWARD : UTRANS_REVERSE, status));
  if (U_FAILURE(status) || !transform->icu) return std::nullopt;
  return Transliteration(std::move(transform));
}

namespace {

std::u16string applyToWhole(const icu::Transliterator& icu, std::u16string_view text,
                            std::size_t longest) {
  ReplaceableText replaceable(text, longest);
  icu.transliterate(replaceable);
  return replaceable.text();
}

// Some transforms, such as those from Thai, look at the whole text once for every
// run of their script. Rules look no further than to the end of a line, so long
// texts go line by line, a few thousand units at a time, each piece with the line
// end before it in its sight.
std::u16string applyToLines(const icu::Transliterator& icu, std::u16string_view text,
                            std::size_t longest) {
  constexpr std::size_t kPieceLength = 1 << 12;
  std::u16string result;
  result.reserve(text.size());
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t lineEnd = text.find(u'\n', std::min(begin + kPieceLength, text.size()));
    const std::size_t end = std::min(lineEnd, text.size() - 1) + 1;
    const std::size_t context = begin == 0 ? 0 : 1;
    const std::size_t used = std::min(result.size(), longest);
    ReplaceableText piece(text.substr(begin - context, end - begin + context),
                          longest - used + context);
    UTransPosition position{};
    position.contextLimit = position.limit = piece.length();
    position.start = static_cast<std::int32_t>(context);
    icu.finishTransliteration(piece, position);
    result.append(piece.text(), context);
    begin = end;
  }
  return result;
}

}  // namespace

std::u16string Transliteration::apply(std::u16string_view text, std::size_t longest) const {
  constexpr std::size_t kLong = 1 << 14;
  constexpr std::u16string_view kLineEnd = u"\n";
  const icu::Transliterator& icu = *transform_->icu;
  const bool isByLines = text.size() > kLong && applyToWhole(icu, kLineEnd, kLongest) == kLineEnd;
  return isByLines ? applyToLines(icu, text, longest) : applyToWhole(icu, text, longest);
}

}  // namespace skerrow::foundation
