#pragma once
// How two texts are compared under the options of a predicate. Made once; several
// threads may use it at once, each with its own working space.
//
// Without options texts are compared literally, unit by unit. With [c] they are
// case folded, with [d] nonspacing marks are left out; both take canonically
// equivalent texts as equal. Whether a text begins with, ends with or holds
// another is a literal question on their folded forms.

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct UCollator;

namespace skerrow::foundation {

/// Whether `part` occurs in `text`, unit by unit, in time linear in both. Every text
/// contains the empty one.
bool containsText(std::u16string_view text, std::u16string_view part);

/// The options in brackets behind a predicate's operator.
struct TextOptions {
  bool caseInsensitive = false;       ///< [c]
  bool diacriticInsensitive = false;  ///< [d]
  bool normalized = false;       ///< [n]: the texts are prepared; literal, whatever [c] and [d] say
  bool localeSensitive = false;  ///< [l]: by the rules of a language

  friend bool operator==(const TextOptions&, const TextOptions&) = default;
};

class TextRelation {
 public:
  /// Room for texts in the making, kept between calls so that they need not allocate.
  struct Workspace {
    std::u16string left;
    std::u16string right;
    std::u16string intermediate;
  };

  /// `locale` matters with [l] only.
  explicit TextRelation(TextOptions options = {}, const std::string& locale = "");
  TextRelation(TextRelation&&) noexcept;
  TextRelation& operator=(TextRelation&&) noexcept;
  ~TextRelation();

  bool isEqual(std::u16string_view a, std::u16string_view b, Workspace& work) const;
  std::weak_ordering order(std::u16string_view a, std::u16string_view b, Workspace& work) const;
  /// The text as it is compared: `text` itself where nothing has to change, else `into`.
  std::u16string_view folded(std::u16string_view text, std::u16string& into,
                             std::u16string& intermediate) const;

  /// The text without nonspacing marks where [d] is given, its case as it is.
  std::u16string withoutDiacritics(std::u16string_view text) const;

  [[nodiscard]] const TextOptions& options() const noexcept { return options_; }

  /// Whether texts are compared as they are.
  [[nodiscard]] bool isLiteral() const noexcept;

 private:
  struct Close {
    void operator()(UCollator* collator) const;
  };

  TextOptions options_;
  std::uint32_t foldOptions_ = 0;
  std::unique_ptr<UCollator, Close> collator_;  // with [l] only
};

}  // namespace skerrow::foundation
