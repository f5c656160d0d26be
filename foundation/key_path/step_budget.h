#pragma once
// StepBudget: what one piece of work may cost. Work whose measure others decide, as
// predicates and key paths are, counts its steps before it takes them, so that it
// ends where it would have no end, and looks from time to time whether it is still
// wanted.

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "values/value.h"

namespace skerrow::foundation {

/// Thrown by work that needs more steps than it may take.
class TooManySteps : public std::runtime_error {
 public:
  TooManySteps() : std::runtime_error("it takes too many steps") {}
};

class StepBudget {
 public:
  static constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

  explicit StepBudget(std::uint64_t maximum = kUnlimited) : maximum_(maximum) { begin(); }

  /// Begins with new work that may take all the steps again.
  void begin() noexcept { share(maximum_); }

  /// Throws TooManySteps where fewer are left.
  void spend(std::uint64_t steps) {
    if (steps > untilLook_) {
      spendAndLook(steps);
    } else {
      untilLook_ -= steps;
    }
  }

  /// Pays for reading, comparing or changing a text of so many units. Short ones are free.
  void spendOnText(std::size_t units) { spend(units / kUnitsOfStep); }

  /// Pays for a walk through everything in a value, before the walk.
  void spendOnContent(const Value& value);

 private:
  static constexpr std::uint64_t kStepsBetweenLooks = 1U << 20U;
  static constexpr std::size_t kUnitsOfStep = 4;

  void share(std::uint64_t steps) noexcept;
  void spendAndLook(std::uint64_t steps);

  std::uint64_t maximum_;
  std::uint64_t untilLook_ = 0;
  std::uint64_t afterLook_ = 0;
};

}  // namespace skerrow::foundation
