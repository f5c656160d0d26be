#pragma once
// Decimal numbers as ASCII text.

#include <string_view>

namespace skerrow::foundation {

/// The real nearest to a number such as -12.5e3, which must be well formed; of two that
/// are as near the even one. Infinite where it is too large, zero where it is too small.
double nearestReal(std::string_view decimal);

}  // namespace skerrow::foundation
