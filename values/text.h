#pragma once
// Text: an immutable run of UTF-16 units, shared between its copies. A handle
// is one pointer wide; the empty text allocates nothing, and any other text is
// one allocation unless a long string is adopted whole. Units are kept exactly
// as given, lone surrogates included. Safe to copy and read on any thread.

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace skerrow {

struct TextPayload;

/// The same as ==, which compares unit by unit for this type of text.
inline bool haveSameUnits(std::u16string_view a, std::u16string_view b) noexcept {
  return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
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

  Text(const Text& other) noexcept;
  Text(Text&& other) noexcept : payload_(other.payload_) { other.payload_ = nullptr; }
  Text& operator=(Text other) noexcept;
  ~Text();

  /// The units; valid as long as any copy of this text lives.
  [[nodiscard]] std::u16string_view view() const noexcept;
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
  [[nodiscard]] const TextPayload* releasePayload() && noexcept;
  static void retain(const TextPayload* payload) noexcept;
  static void release(const TextPayload* payload) noexcept;
  static std::u16string_view view(const TextPayload* payload) noexcept;

  const TextPayload* payload_ = nullptr;
};

}  // namespace skerrow
