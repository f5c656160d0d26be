#include "foundation/key_path/step_budget.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/stopped_work.h"
#include "values/record.h"

namespace skerrow::foundation {
namespace {

TEST(StepBudget, EndsWorkThatNeedsMore) {
  StepBudget steps(10);
  steps.spend(4);
  steps.spend(6);
  steps.spend(0);
  EXPECT_THROW(steps.spend(1), TooManySteps);
  steps.begin();
  steps.spend(10);
  EXPECT_THROW(steps.spend(StepBudget::kUnlimited), TooManySteps);
}

TEST(StepBudget, HoldsMoreThanLiesBetweenTwoLooks) {
  StepBudget steps(10'000'000);
  steps.spend(9'999'999);
  steps.spend(1);
  EXPECT_THROW(steps.spend(1), TooManySteps);
  steps.begin();
  for (int i = 0; i < 10'000; ++i) steps.spend(1'000);
  EXPECT_THROW(steps.spend(1), TooManySteps);
}

TEST(StepBudget, LooksNowAndThenWhetherItIsStillWanted) {
  const tests::StoppedWork stopped;
  StepBudget steps;
  EXPECT_NO_THROW(steps.spend(1));
  const auto spendMuch = [&steps] {
    for (int i = 0; i < 100; ++i) steps.spend(100'000);
  };
  EXPECT_THROW(spendMuch(), work::Stopped);
  EXPECT_THROW(StepBudget().spend(100'000'000), work::Stopped);
}

TEST(StepBudget, ContentCostsEveryItemOfIt) {
  const Value numbers(std::vector<Value>(10, Value(Number::signed64(1))));
  const auto costs = [](const Value& value, std::uint64_t expected) {
    StepBudget enough(expected);
    enough.spendOnContent(value);
    EXPECT_THROW(enough.spend(1), TooManySteps);
  };
  costs(Value(), 1);
  costs(numbers, 11);
  costs(Value(std::vector<Value>{numbers, numbers}), 23);
  costs(Value(Record{{Value(u"a"), numbers}, {Value(u"b"), Value()}}), 13);
  costs(Value(u"abc"), 1);
  costs(Value(std::u16string(1600, u'a')), 401);
}

}  // namespace
}  // namespace skerrow::foundation
