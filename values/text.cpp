#include "values/text.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "values/hash.h"

namespace skerrow {

namespace {

// Below this a copy costs less than a second allocation kept alive.
constexpr std::size_t kShortestAdopted = 256;

const TextPayload* copied(std::u16string_view units) {
  if (units.empty()) return nullptr;
  void* memory = ::operator new(sizeof(TextPayload) + units.size() * sizeof(char16_t));
  auto* payload = new (memory) TextPayload;
  payload->count = static_cast<std::uint32_t>(units.size());
  std::memcpy(payload->tail(), units.data(), units.size() * sizeof(char16_t));
  return payload;
}

const TextPayload* adopted(std::u16string&& units) {
  void* memory = ::operator new(sizeof(TextPayload) + sizeof(std::u16string));
  auto* payload = new (memory) TextPayload;
  payload->count = TextPayload::kAdopted;
  new (payload->tail()) std::u16string(std::move(units));
  return payload;
}

}  // namespace

std::size_t hashOfUnits(std::u16string_view units) noexcept {
  return hashOfBytes(units.data(), units.size() * sizeof(char16_t));
}

Text::Text(std::u16string_view units)
    : payload_(units.size() < TextPayload::kAdopted ? copied(units)
                                                    : adopted(std::u16string(units))) {}

Text::Text(std::u16string&& units)
    : payload_(units.size() < kShortestAdopted ? copied(units) : adopted(std::move(units))) {}

void Text::destroy(const TextPayload* payload) noexcept {
  if (payload->count == TextPayload::kAdopted) std::destroy_at(&payload->adopted());
  payload->~TextPayload();
  ::operator delete(const_cast<TextPayload*>(payload));
}

}  // namespace skerrow
