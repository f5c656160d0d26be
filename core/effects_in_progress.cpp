#include "core/effects_in_progress.h"

namespace skerrow::core {

void EffectsInProgress::end() {
  // Told under the lock, as whoever waits may take this object down.
  auto count = count_.access();
  --*count;
  changed_.notify_all();
}

bool EffectsInProgress::waitForEnd(std::chrono::milliseconds atMost) {
  return count_.access().waitFor(changed_, atMost, [](std::size_t count) { return count == 0; });
}

}  // namespace skerrow::core
