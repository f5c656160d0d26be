#pragma once
// ReplaceableText: a text that ICU's transforms edit, in time linear in the text.
// They go through it from the front and replace a little at a time, so the units
// lie in two halves with a gap between them at the place of the last change. And
// they put a replacement together behind the end of the text before it goes to its
// place, so what lies behind the original end is kept apart.

#include <unicode/rep.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace skerrow::foundation {

class ReplaceableText final : public icu::Replaceable {
 public:
  /// The text does not grow beyond so many units: what would make it do so throws
  /// std::length_error.
  ReplaceableText(std::u16string_view text, std::size_t longest);

  /// The text as it is now.
  [[nodiscard]] std::u16string text() const;

  void handleReplaceBetween(std::int32_t start, std::int32_t limit,
                            const icu::UnicodeString& replacement) override;
  void copy(std::int32_t start, std::int32_t limit, std::int32_t destination) override;
  void extractBetween(std::int32_t start, std::int32_t limit,
                      icu::UnicodeString& target) const override;
  [[nodiscard]] UBool hasMetaData() const override { return 0; }
  [[nodiscard]] ReplaceableText* clone() const override { return new ReplaceableText(*this); }

  static UClassID getStaticClassID();
  [[nodiscard]] UClassID getDynamicClassID() const override;

 protected:
  [[nodiscard]] std::int32_t getLength() const override {
    return static_cast<std::int32_t>(bodyLength() + behind_.size());
  }
  [[nodiscard]] char16_t getCharAt(std::int32_t offset) const override {
    return unitAt(static_cast<std::size_t>(offset));
  }
  [[nodiscard]] UChar32 getChar32At(std::int32_t offset) const override;

 private:
  [[nodiscard]] std::size_t bodyLength() const { return body_.size() - (gapEnd_ - gapBegin_); }
  [[nodiscard]] char16_t unitAt(std::size_t offset) const {
    if (offset < gapBegin_) return body_[offset];
    const std::size_t behindGap = offset + (gapEnd_ - gapBegin_);
    if (behindGap < body_.size()) return body_[behindGap];
    return behind_[behindGap - body_.size()];
  }
  [[nodiscard]] std::u16string units(std::size_t start, std::size_t limit) const;
  void replace(std::size_t start, std::size_t limit, std::u16string_view replacement);
  void replaceInBody(std::size_t start, std::size_t limit, std::u16string_view replacement);
  void moveGap(std::size_t position);
  void widenGap(std::size_t atLeast);

  void requireRoomFor(std::size_t unitCount) const;

  std::size_t longest_;
  std::u16string body_;  // with the gap in it
  std::size_t gapBegin_ = 0;
  std::size_t gapEnd_ = 0;
  std::u16string behind_;
};

}  // namespace skerrow::foundation
