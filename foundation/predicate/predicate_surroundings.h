#pragma once
// PredicateSurroundings: what predicates may ask about beside their items. A predicate
// without surroundings depends on nothing but its item and the machine's time zone.

#include "platform/chance.h"
#include "platform/clock.h"
#include "platform/environment.h"

namespace skerrow::foundation {

/// What they point to outlives the predicate; each may be left out.
struct PredicateSurroundings {
  const platform::Environment* environment = nullptr;  ///< for the user's language and time zone
  const platform::Clock* clock = nullptr;              ///< for now()
  const platform::Chance* chance = nullptr;            ///< for random()
};

}  // namespace skerrow::foundation
