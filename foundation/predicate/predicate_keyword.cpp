#include "foundation/predicate/predicate_keyword.h"

#include <algorithm>
#include <array>

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

namespace {

struct Entry {
  std::u16string_view word;
  PredicateKeyword keyword;
};

constexpr std::array kWords = {
    Entry{u"AND", PredicateKeyword::logicalAnd},
    Entry{u"OR", PredicateKeyword::logicalOr},
    Entry{u"NOT", PredicateKeyword::logicalNot},
    Entry{u"TRUEPREDICATE", PredicateKeyword::truePredicate},
    Entry{u"FALSEPREDICATE", PredicateKeyword::falsePredicate},
    Entry{u"ANY", PredicateKeyword::any},
    Entry{u"SOME", PredicateKeyword::any},
    Entry{u"ALL", PredicateKeyword::all},
    Entry{u"NONE", PredicateKeyword::noneOf},
    Entry{u"BETWEEN", PredicateKeyword::between},
    Entry{u"IN", PredicateKeyword::in},
    Entry{u"CONTAINS", PredicateKeyword::contains},
    Entry{u"BEGINSWITH", PredicateKeyword::beginsWith},
    Entry{u"ENDSWITH", PredicateKeyword::endsWith},
    Entry{u"LIKE", PredicateKeyword::like},
    Entry{u"MATCHES", PredicateKeyword::matches},
    Entry{u"UTI-CONFORMS-TO", PredicateKeyword::typeConformsTo},
    Entry{u"UTI-EQUALS", PredicateKeyword::typeEquals},
    Entry{u"NULL", PredicateKeyword::null},
    Entry{u"NIL", PredicateKeyword::null},
    Entry{u"YES", PredicateKeyword::yes},
    Entry{u"TRUE", PredicateKeyword::yes},
    Entry{u"NO", PredicateKeyword::no},
    Entry{u"FALSE", PredicateKeyword::no},
    Entry{u"SELF", PredicateKeyword::self},
    Entry{u"FIRST", PredicateKeyword::first},
    Entry{u"LAST", PredicateKeyword::last},
    Entry{u"SIZE", PredicateKeyword::size},
    Entry{u"SUBQUERY", PredicateKeyword::subquery},
    Entry{u"CAST", PredicateKeyword::cast},
    Entry{u"FUNCTION", PredicateKeyword::function},
    Entry{u"TERNARY", PredicateKeyword::ternary},
    Entry{u"ANYKEY", PredicateKeyword::anyKey},
    Entry{u"FETCH", PredicateKeyword::fetch},
    Entry{u"CASEINSENSITIVE", PredicateKeyword::caseInsensitive},
    Entry{u"CI", PredicateKeyword::caseInsensitive},
};

}  // namespace

PredicateKeyword keywordOf(const PredicateToken& token) {
  if (token.kind != PredicateToken::Kind::word) return PredicateKeyword::none;
  const auto* const found = std::ranges::find_if(
      kWords, [&](const Entry& entry) { return equalsIgnoringAsciiCase(token.text, entry.word); });
  return found == kWords.end() ? PredicateKeyword::none : found->keyword;
}

}  // namespace skerrow::foundation
