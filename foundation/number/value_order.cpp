#include "foundation/number/value_order.h"

#include "foundation/number/number_arithmetic.h"

namespace skerrow::foundation {

std::partial_ordering compareValues(const Value& a, const Value& b) noexcept {
  if (a.kind() != b.kind()) return std::partial_ordering::unordered;
  switch (a.kind()) {
    case Kind::number:
      return compareNumbers(a.number(), b.number());
    case Kind::text:
      return a.text() <=> b.text();
    case Kind::date:
      return a.date().seconds <=> b.date().seconds;
    default:
      return std::partial_ordering::unordered;
  }
}

}  // namespace skerrow::foundation
