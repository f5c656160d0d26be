#include "scripting/event.h"

#include <algorithm>
#include <cmath>

namespace skerrow::scripting {

std::optional<std::chrono::milliseconds> timeoutFromSeconds(double seconds) {
  if (!(seconds >= 0)) return std::nullopt;
  constexpr double kLongestSeconds = 1e9;  // about thirty years
  const double milliseconds = std::ceil(std::min(seconds, kLongestSeconds) * 1000.0);
  return std::chrono::milliseconds(static_cast<std::int64_t>(milliseconds));
}

}  // namespace skerrow::scripting
