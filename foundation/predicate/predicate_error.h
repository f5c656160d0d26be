#pragma once
// PredicateError: a predicate that cannot be read, or cannot be evaluated. The
// reason quotes the predicate and, where it cannot be read, the place.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace skerrow::foundation {

class PredicateError : public std::runtime_error {
 public:
  explicit PredicateError(const std::string& reason) : std::runtime_error(reason) {}

  /// Unable to parse the predicate “a > )” at “)” (character 5): a value is missing.
  /// `what` is a clause without a full stop; `place` counts units from 0.
  static PredicateError unreadable(std::u16string_view format, std::size_t place,
                                   std::string_view what);

  /// Unable to evaluate the predicate “a / 0 = 1”: a number is divided by zero.
  static PredicateError failing(std::u16string_view format, std::string_view what);

  /// A sentence for a person, in UTF-8.
  [[nodiscard]] std::string reason() const { return what(); }
};

}  // namespace skerrow::foundation
