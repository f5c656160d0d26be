#pragma once
// The order of two values of one kind: numbers by numeric value, texts literally
// by UTF-16 unit, dates by time. Everything else has no order.

#include <compare>

#include "values/value.h"

namespace skerrow::foundation {

/// Unordered for values of two kinds and of kinds without an order.
std::partial_ordering compareValues(const Value& a, const Value& b) noexcept;

}  // namespace skerrow::foundation
