#pragma once
// The functions that expressions may call, by the names that the platform
// publishes for its expressions.

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "foundation/predicate/predicate_evaluation.h"
#include "values/value.h"

namespace skerrow::foundation {

struct PredicateFunction {
  static constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

  std::u16string_view name;  ///< "sum", "add:to:"; a single colon at the end is left out
  std::size_t fewestArguments;
  std::size_t mostArguments;
  /// Nothing for arguments of the wrong kind. Throws DivisionByZero.
  std::optional<Value> (*call)(std::span<const Value> arguments, PredicateEvaluation& evaluation);

  /// The function of a name, with or without the colon at its end and in any case;
  /// null when there is none.
  static const PredicateFunction* named(std::u16string_view name);
};

}  // namespace skerrow::foundation
