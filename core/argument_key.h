#pragma once
// ArgumentKey: the name under which a command finds an argument. Commands use the
// constants that are made from the terminology, a namespace for each command, so a
// key that the command does not have does not compile.

#include <string_view>

namespace skerrow::core {

class ArgumentKey {
 public:
  /// The text is not copied.
  constexpr explicit ArgumentKey(std::string_view text) noexcept : text_(text) {}

  [[nodiscard]] constexpr std::string_view text() const noexcept { return text_; }

  friend constexpr bool operator==(ArgumentKey, ArgumentKey) noexcept = default;

 private:
  std::string_view text_;
};

}  // namespace skerrow::core
