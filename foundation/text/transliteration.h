#pragma once
// Transliteration: ICU's transforms by their names (any transform or compound
// identifier that ICU knows, such as "Latin-Cyrillic" or "[^\x20-\x7e]-Hex/XML"),
// over a whole text in time linear in it. One object serves one thread.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace skerrow::foundation {

class Transliteration {
 public:
  enum class Direction { forward, reverse };

  /// Nothing where ICU does not know the identifier, or no way back from it.
  static std::optional<Transliteration> make(std::u16string_view identifier,
                                             Direction direction = Direction::forward);

  Transliteration(Transliteration&&) noexcept;
  Transliteration& operator=(Transliteration&&) noexcept;
  ~Transliteration();

  static constexpr std::size_t kLongest = std::size_t{1} << 28U;  ///< units

  /// Throws std::length_error for a text that is longer than `longest`, at most kLongest, or
  /// grows to be: a transform may make ten units of each, and the next one ten of each of those.
  [[nodiscard]] std::u16string apply(std::u16string_view text,
                                     std::size_t longest = kLongest) const;

 private:
  struct Transform;
  explicit Transliteration(std::unique_ptr<Transform> transform);

  std::unique_ptr<Transform> transform_;
};

}  // namespace skerrow::foundation
