#pragma once
// The nearest of the known names, for messages about an unknown one.

#include <cstddef>
#include <string>
#include <string_view>

#include "scripting/dictionary/dictionary.h"

namespace skerrow::scripting {

/// Gathers the known names one by one and keeps the one that a person who wrote the
/// unknown one most probably meant: it has the same words, or few letters are other
/// ones, missing, too many or swapped, whatever their case.
class Nearest {
 public:
  explicit Nearest(std::string_view unknown);

  /// What is meant by `text`, which may be another name of it.
  void consider(std::string_view text, std::string_view meant);
  void consider(std::string_view name) { consider(name, name); }

  /// Empty where none is near.
  [[nodiscard]] std::string_view found() const noexcept { return found_; }

 private:
  std::string unknown_;
  std::size_t distance_;  // of what is near enough, or nearer than what was found
  std::string_view found_;
};

/// "; did you mean SKWModifyList?", or a full stop where no command is near.
std::string didYouMean(const Dictionary& dictionary, std::string_view unknownCommand);
/// "; did you mean “reversingOrder”?", or a full stop.
std::string didYouMean(const CommandEntry& command, std::string_view unknownArgument);

}  // namespace skerrow::scripting
