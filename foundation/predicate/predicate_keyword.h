#pragma once
// The reserved words of predicates, which are the same in any case. As a key each
// of them is written with a "#" in front, except behind a full stop.

#include <cstdint>
#include <string_view>

#include "foundation/predicate/predicate_scanner.h"

namespace skerrow::foundation {

enum class PredicateKeyword : std::uint8_t {
  none,
  logicalAnd,
  logicalOr,
  logicalNot,
  truePredicate,
  falsePredicate,
  any,
  all,
  noneOf,
  between,
  in,
  contains,
  beginsWith,
  endsWith,
  like,
  matches,
  typeConformsTo,
  typeEquals,
  null,
  yes,
  no,
  self,
  first,
  last,
  size,
  subquery,
  cast,
  function,
  ternary,
  anyKey,
  fetch,
  caseInsensitive,
};

/// What a token means as a keyword; `none` for a token that is no plain word.
PredicateKeyword keywordOf(const PredicateToken& token);

}  // namespace skerrow::foundation
