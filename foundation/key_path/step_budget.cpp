#include "foundation/key_path/step_budget.h"

#include <algorithm>

#include "values/record.h"
#include "work/stopping.h"

namespace skerrow::foundation {

void StepBudget::share(std::uint64_t steps) noexcept {
  untilLook_ = std::min(steps, kStepsBetweenLooks);
  afterLook_ = steps - untilLook_;
}

void StepBudget::spendAndLook(std::uint64_t steps) {
  if (steps - untilLook_ > afterLook_) throw TooManySteps();
  work::stopIfAsked();
  share(untilLook_ + afterLook_ - steps);
}

// Values nest at most kMaximumDepth deep.
void StepBudget::spendOnContent(const Value& value) {
  spend(1);
  if (value.isText()) spendOnText(value.text().size());
  if (!value.isList() && !value.isRecord()) return;
  for (const Value& item : value.isList() ? value.items() : value.record().values()) {
    spendOnContent(item);
  }
}

}  // namespace skerrow::foundation
