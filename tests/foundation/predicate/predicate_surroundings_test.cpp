// Predicates that ask about more than their items.

#include "foundation/predicate/predicate_surroundings.h"

#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <string>

#include "platform/system_platform.h"
#include "tests/foundation/predicate/predicate_rows.h"
#include "tests/support/test_platform.h"

namespace skerrow::foundation {
namespace {

class FixedClock final : public platform::Clock {
 public:
  [[nodiscard]] Wall wall() const noexcept override { return time; }
  [[nodiscard]] Steady steady() const noexcept override { return {}; }

  Wall time;
};

class FixedChance final : public platform::Chance {
 public:
  [[nodiscard]] std::uint64_t draw() const override { return 42; }
};

std::string failureOf(std::u16string_view format) {
  try {
    return Predicate::parse(format).evaluate(Value()) ? "true" : "false";
  } catch (const PredicateError& error) {
    return error.reason();
  }
}

TEST(PredicateSurroundings, SayWhatTimeItIsNow) {
  FixedClock clock;
  const PredicateSurroundings surroundings = {.clock = &clock};
  const Predicate predicate =
      Predicate::parse(u"now() = CAST('2024-02-29T12:00:00Z', 'NSDate')", {}, surroundings);
  clock.time = std::chrono::sys_days(std::chrono::year(2024) / 2 / 29) + std::chrono::hours(12);
  EXPECT_TRUE(predicate.evaluate(Value()));
  clock.time += std::chrono::seconds(1);
  EXPECT_FALSE(predicate.evaluate(Value()));
}

TEST(PredicateSurroundings, DrawTheNumbersOfRandom) {
  const FixedChance chance;
  const PredicateSurroundings surroundings = {.chance = &chance};
  const auto isDrawn = [&surroundings](std::int64_t number) {
    const std::vector<Value> arguments = {integer(number)};
    return Predicate::parse(u"random(1000) = %@", arguments, surroundings).evaluate(Value());
  };
  int count = 0;
  for (std::int64_t number = 0; number < 1000; ++number) count += isDrawn(number) ? 1 : 0;
  EXPECT_EQ(count, 1);
}

TEST(PredicateSurroundings, AreMissedWhereNothingSaysTheTimeOrDraws) {
  EXPECT_EQ(
      failureOf(u"now() > CAST(0, 'NSDate')"),
      "Unable to evaluate the predicate “now() > CAST(0, 'NSDate')”: nothing here knows the time.");
  EXPECT_EQ(failureOf(u"random() > -1"),
            "Unable to evaluate the predicate “random() > -1”: nothing here draws by chance.");
  EXPECT_EQ(failureOf(u"1 = 1 OR random() > now()"), "true");
}

TEST(PredicateSurroundings, SayTheTimeZoneOfDatesWithoutAnOffset) {
  const platform::SystemPlatform system;
  const auto isNoonUtc = [&system](const std::string& timeZone, std::u16string_view time) {
    const tests::GivenEnvironment environment(system.environment, {{"TZ", timeZone}});
    const std::vector<Value> arguments = {Value(time)};
    return Predicate::parse(u"CAST(%@, 'NSDate') = CAST('2024-07-01T12:00:00Z', 'NSDate')",
                            arguments, {.environment = &environment})
        .evaluate(Value());
  };
  EXPECT_TRUE(isNoonUtc("Europe/Oslo", u"2024-07-01T14:00"));
  EXPECT_TRUE(isNoonUtc("Pacific/Honolulu", u"2024-07-01T02:00"));
  EXPECT_TRUE(isNoonUtc("", u"2024-07-01T12:00"));
  EXPECT_TRUE(isNoonUtc("Europe/Oslo", u"2024-07-01T12:00Z"));
  EXPECT_FALSE(isNoonUtc("Europe/Oslo", u"2024-07-01T12:00"));
}

TEST(PredicateSurroundings, SayTheLanguageOfTheOptionL) {
  const platform::SystemPlatform system;
  const auto isTrue = [&system](const std::string& language) {
    const tests::GivenEnvironment environment(system.environment, {{"LC_ALL", language}});
    return Predicate::parse(u"'i' =[cl] 'I'", {}, {.environment = &environment}).evaluate(Value());
  };
  EXPECT_TRUE(isTrue("en_GB.UTF-8"));
  EXPECT_TRUE(isTrue("C"));
  EXPECT_FALSE(isTrue("tr_TR.UTF-8"));
}

}  // namespace
}  // namespace skerrow::foundation
