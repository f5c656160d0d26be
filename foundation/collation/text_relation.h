#pragma once
// How two texts are compared under the options of a predicate. Made once; several
// threads may use it at once, each with its own working space.
//
// Without options texts are compared literally, unit by unit. With [c] they are
// case folded, with [d] nonspacing marks are left out; both take canonically
// equivalent texts as equal. Whether a text begins with, ends with or holds another
// is asked character by character then, as in a search: "ß" equals "ss" and does not
// hold "s".

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/collation/text_search.h"

struct UCollator;

namespace skerrow::foundation {

/// Whether `part` occurs in `text`, unit by unit, in time linear in both. The empty text
/// occurs nowhere.
bool containsText(std::u16string_view text, std::u16string_view part);

/// The options in brackets behind a predicate's operator.
struct TextOptions {
  bool caseInsensitive = false;       ///< [c]
  bool diacriticInsensitive = false;  ///< [d]
  bool normalized = false;       ///< [n]: the texts are prepared; literal, whatever [c] and [d] say
  bool localeSensitive = false;  ///< [l]: by the rules of a language

  friend bool operator==(const TextOptions&, const TextOptions&) = default;
};

/// Where a text is looked for in another one.
enum class TextPlace : std::uint8_t { anywhere, atFront, atEnd };

class TextRelation {
 public:
  /// What is looked for in texts, made ready once.
  struct Part {
    std::u16string folded;
    bool foldsUnits;  // each by itself
    TextSearch search;
  };

  /// Room for texts in the making, kept between calls so that they need not allocate.
  struct Workspace {
    std::u16string left;
    std::u16string right;
    std::u16string intermediate;
    std::vector<std::unique_ptr<TextFolding>> foldings;  // one for each kind of options met
  };

  /// `locale` matters with [l] only.
  explicit TextRelation(TextOptions options = {}, const std::string& locale = "");
  TextRelation(TextRelation&&) noexcept;
  TextRelation& operator=(TextRelation&&) noexcept;
  ~TextRelation();

  bool isEqual(std::u16string_view a, std::u16string_view b, Workspace& work) const;
  std::weak_ordering order(std::u16string_view a, std::u16string_view b, Workspace& work) const;

  /// Whether a text has another one as a part. The empty text is a part of none, nor is
  /// one of which the options leave nothing.
  bool isPartOf(std::u16string_view text, const Part& part, TextPlace place, Workspace& work) const;
  bool isPartOf(std::u16string_view text, std::u16string_view part, TextPlace place,
                Workspace& work) const;
  [[nodiscard]] Part part(std::u16string_view text) const;

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

  [[nodiscard]] bool foldsUnits(std::u16string_view text) const;
  [[nodiscard]] FoldingOptions foldingOptions() const;

  TextOptions options_;
  CaseRules caseRules_ = CaseRules::common;
  std::unique_ptr<UCollator, Close> collator_;  // with [l] only
};

}  // namespace skerrow::foundation
