#include "scripting/event.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

namespace skerrow::scripting {
namespace {

using namespace std::chrono_literals;

TEST(Event, WaitsTwoMinutesUnlessToldOtherwise) { EXPECT_EQ(Event().timeout, 120s); }

TEST(TimeoutFromSeconds, CountsMillisecondsUpwardsAndNoneFor0) {
  const std::pair<double, std::chrono::milliseconds> rows[] = {
      {0, Event::kNoTimeout}, {-0.0, Event::kNoTimeout}, {1, 1s},     {0.5, 500ms}, {0.0001, 1ms},
      {1e-300, 1ms},          {1.0001, 1001ms},          {120, 120s},
  };
  for (const auto& [seconds, timeout] : rows) {
    EXPECT_EQ(timeoutFromSeconds(seconds), timeout) << seconds;
  }
}

TEST(TimeoutFromSeconds, TakesEndlessTimesForVeryLongOnes) {
  for (const double seconds : {1e10, 1e300, std::numeric_limits<double>::infinity()}) {
    ASSERT_TRUE(timeoutFromSeconds(seconds).has_value()) << seconds;
    EXPECT_GE(*timeoutFromSeconds(seconds), std::chrono::hours(24 * 365)) << seconds;
  }
}

TEST(TimeoutFromSeconds, NothingForWhatIsNoTime) {
  for (const double seconds :
       {-1.0, -1e-300, -std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_EQ(timeoutFromSeconds(seconds), std::nullopt) << seconds;
  }
}

}  // namespace
}  // namespace skerrow::scripting
