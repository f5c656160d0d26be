#include "values/text.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "values/shared_count.h"

namespace skerrow {

// The units follow the header in the same allocation, or, when a string was
// adopted, the string object itself does.
struct TextPayload : SharedCount {
  static constexpr std::uint32_t kAdopted = 0xFFFFFFFF;
  std::uint32_t count = 0;  // units, or kAdopted

  [[nodiscard]] void* tail() noexcept { return this + 1; }
  [[nodiscard]] const void* tail() const noexcept { return this + 1; }
};

static_assert(sizeof(TextPayload) % alignof(std::u16string) == 0);

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

const std::u16string& adoptedString(const TextPayload* payload) noexcept {
  return *std::launder(static_cast<const std::u16string*>(payload->tail()));
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

Text::Text(const Text& other) noexcept : payload_(other.payload_) { retain(payload_); }

Text& Text::operator=(Text other) noexcept {
  std::swap(payload_, other.payload_);
  return *this;
}

Text::~Text() { release(payload_); }

std::u16string_view Text::view() const noexcept { return view(payload_); }

const TextPayload* Text::releasePayload() && noexcept { return std::exchange(payload_, nullptr); }

void Text::retain(const TextPayload* payload) noexcept {
  if (payload != nullptr) payload->retain();
}

void Text::release(const TextPayload* payload) noexcept {
  if (payload == nullptr || !payload->release()) return;
  if (payload->count == TextPayload::kAdopted) std::destroy_at(&adoptedString(payload));
  payload->~TextPayload();
  ::operator delete(const_cast<TextPayload*>(payload));
}

std::u16string_view Text::view(const TextPayload* payload) noexcept {
  if (payload == nullptr) return {};
  if (payload->count == TextPayload::kAdopted) return adoptedString(payload);
  return {static_cast<const char16_t*>(payload->tail()), payload->count};
}

}  // namespace skerrow
