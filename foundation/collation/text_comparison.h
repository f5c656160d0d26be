#pragma once
// The five ways in which two texts are put in order. A comparator is made once
// for a sort, as making one reads the rules of the locale, and is then cheap to
// call; it never changes, so several threads may compare with it at once.

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct UCollator;

namespace skerrow::foundation {

enum class TextComparison : std::uint8_t {
  sortPlain,            ///< literally, by UTF-16 unit
  sortLocalized,        ///< by the rules of the language; canonically equivalent texts are equal
  sortCaseInsensitive,  ///< case folded (Unicode case folding), no locale
  /// By the rules of the language, case only where all else is equal.
  sortCaseInsensitiveLocalized,
  sortLocalizedStandard,  ///< the same as file managers show names: digits by value
};

/// The text without case, canonically decomposed: what sortCaseInsensitive compares literally.
std::u16string caselessForm(std::u16string_view text);

class TextComparator {
 public:
  /// `locale` is a language tag or ICU locale identifier; without one, the rules of all
  /// languages (CLDR root) count. Throws std::runtime_error when the collation rules of
  /// the system cannot be read at all.
  explicit TextComparator(TextComparison comparison, const std::string& locale = {});
  TextComparator(TextComparator&&) noexcept;
  TextComparator& operator=(TextComparator&&) noexcept;
  ~TextComparator();

  /// Texts that differ only in case have a fixed order: that of the language, where
  /// small letters mostly come first, or without a language the literal one. Texts that
  /// not even case tells apart are ordered literally; only sortLocalized takes
  /// canonically equivalent texts as equal.
  [[nodiscard]] std::weak_ordering compare(std::u16string_view a, std::u16string_view b) const;

  [[nodiscard]] TextComparison comparison() const noexcept { return comparison_; }

  /// The rules in use; null for the comparisons that need no locale.
  [[nodiscard]] const UCollator* collator() const noexcept { return collator_.get(); }

 private:
  struct Close {
    void operator()(UCollator* collator) const;
  };

  [[nodiscard]] std::weak_ordering compareByRules(std::u16string_view a,
                                                  std::u16string_view b) const;

  TextComparison comparison_;
  std::unique_ptr<UCollator, Close> collator_;
};

}  // namespace skerrow::foundation
