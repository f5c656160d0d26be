#include "foundation/transliteration.h"

#include <unicode/translit.h>

#include <limits>
#include <stdexcept>
#include <utility>

#include "foundation/icu_text.h"
#include "foundation/replaceable_text.h"

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

std::u16string Transliteration::apply(std::u16string_view text) const {
  constexpr std::size_t kTooLong = std::numeric_limits<std::int32_t>::max() / 2;
  if (text.size() >= kTooLong) throw std::length_error("The text is too long to be transformed.");
  ReplaceableText replaceable(text);
  transform_->icu->transliterate(replaceable);
  return replaceable.text();
}

}  // namespace skerrow::foundation
