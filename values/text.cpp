#include "values/text.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

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

// Multiplies and folds eight bytes at a time.
std::size_t hashOfUnits(std::u16string_view units) noexcept {
  __extension__ using Wide = unsigned __int128;
  constexpr std::uint64_t kFirst = 0x9E3779B97F4A7C15ULL;
  constexpr std::uint64_t kSecond = 0xD6E8FEB86659FD93ULL;
  const auto mixed = [](std::uint64_t a, std::uint64_t b) {
    const auto product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
  };
  std::uint64_t hash = units.size() * kFirst;
  const char16_t* unit = units.data();
  std::size_t left = units.size();
  for (; left >= 4; left -= 4, unit += 4) {
    std::uint64_t four = 0;
    std::memcpy(&four, unit, sizeof four);
    hash = mixed(hash ^ four, kSecond);
  }
  std::uint64_t rest = 0;
  if (left > 0) std::memcpy(&rest, unit, left * sizeof(char16_t));
  return mixed(hash ^ rest, kFirst);
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
