#pragma once
// WorkingText: a text on its way through a chain of changes. Some changes work on
// units in place, others take a shared text and give a new one; this holds either
// and converts only where the next change needs the other. For one thread.

#include <string>
#include <string_view>
#include <utility>

#include "values/text.h"

namespace skerrow::text {

class WorkingText {
 public:
  explicit WorkingText(Text text) noexcept : text_(std::move(text)) {}

  WorkingText& operator=(Text text) noexcept {
    text_ = std::move(text);
    isShared_ = true;
    return *this;
  }
  WorkingText& operator=(std::u16string&& units) noexcept {
    units_ = std::move(units);
    isShared_ = false;
    return *this;
  }

  [[nodiscard]] std::u16string_view view() const noexcept {
    return isShared_ ? text_.view() : std::u16string_view(units_);
  }

  /// The units, to be changed.
  [[nodiscard]] std::u16string& units() {
    if (isShared_) units_ = text_.view();
    text_ = Text();
    isShared_ = false;
    return units_;
  }

  /// The text as it is now.
  [[nodiscard]] const Text& text() {
    if (!isShared_) *this = Text(std::exchange(units_, {}));
    return text_;
  }

 private:
  Text text_;
  std::u16string units_;
  bool isShared_ = true;
};

}  // namespace skerrow::text
