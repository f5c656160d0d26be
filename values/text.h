#pragma once
// Text: an immutable run of UTF-16 units, shared between its copies. A handle
// is one pointer wide; the empty text allocates nothing, and any other text is
// one allocation unless a long string is adopted whole. Units are kept exactly
// as given, lone surrogates included. Safe to copy and read on any thread.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "values/shared_count.h"

namespace skerrow {

/// What the copies of a text share. The units follow in the same allocation, or,
/// when a string was adopted, the string object itself does.
struct TextPayload : SharedCount {
  static constexpr std::uint32_t kAdopted = 0xFFFFFFFF;
  std::uint32_t count = 0;  // units, or kAdopted

  [[nodiscard]] const void* tail() const noexcept { return this + 1; }
  [[nodiscard]] void* tail() noexcept { return this + 1; }
  [[nodiscard]] const std::u16string& adopted() const noexcept {
    return *std::launder(static_cast<const std::u16string*>(tail()));
  }
  [[nodiscard]] std::u16string_view view() const noexcept {
    if (count == kAdopted) return adopted();
    return {static_cast<const char16_t*>(tail()), count};
  }
};

static_assert(sizeof(TextPayload) % alignof(std::u16string) == 0);

/// The same as ==, which compares unit by unit for this type of text.
inline bool haveSameUnits(std::u16string_view a, std::u16string_view b) noexcept {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0);
}

/// A hash of the units, for tables within this process.
std::size_t hashOfUnits(std::u16string_view units) noexcept;

class Text {
 public:
  Text() noexcept = default;

  /// Copies the units.
  explicit Text(std::u16string_view units);

  /// Takes a long string over without copying it; copies a short one.
  explicit Text(std::u16string&& units);

  Text(const Text& other) noexcept : payload_(other.payload_) { retain(payload_); }
  Text(Text&& other) noexcept : payload_(other.payload_) { other.payload_ = nullptr; }
  Text& operator=(Text other) noexcept {
    std::swap(payload_, other.payload_);
    return *this;
  }
  ~Text() { release(payload_); }

  /// The units; valid as long as any copy of this text lives.
  [[nodiscard]] std::u16string_view view() const noexcept { return view(payload_); }
  [[nodiscard]] std::size_t unitCount() const noexcept { return view().size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return payload_ == nullptr; }

  friend bool operator==(const Text& a, const Text& b) noexcept {
    return a.payload_ == b.payload_ || haveSameUnits(a.view(), b.view());
  }

 private:
  friend class Value;
  friend class ScriptValue;

  // The value types hold a text by its bare payload, to stay two words small.
  explicit Text(const TextPayload* owned) noexcept : payload_(owned) {}
  [[nodiscard]] const TextPayload* releasePayload() && noexcept {
    return std::exchange(payload_, nullptr);
  }
  static void retain(const TextPayload* payload) noexcept {
    if (payload != nullptr) payload->retain();
  }
  static void release(const TextPayload* payload) noexcept {
    if (payload != nullptr && payload->release()) destroy(payload);
  }
  static void destroy(const TextPayload* payload) noexcept;
  static std::u16string_view view(const TextPayload* payload) noexcept {
    return payload == nullptr ? std::u16string_view() : payload->view();
  }

  const TextPayload* payload_ = nullptr;
};

}  // namespace skerrow
