#include "core/shared_services.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace skerrow::core {
namespace {

struct Counted {
  Counted() { ++made; }
  static inline std::atomic<int> made = 0;
};
struct Other {};

TEST(SharedServices, GiveEverybodyTheSameObjectOfAType) {
  SharedServices services;
  const auto first = services.of<Other>();
  EXPECT_NE(first, nullptr);
  EXPECT_EQ(services.of<Other>(), first);
  EXPECT_NE(static_cast<void*>(services.of<Counted>().get()), static_cast<void*>(first.get()));
}

TEST(SharedServices, MakeAnObjectOnceWhenSeveralThreadsAsk) {
  Counted::made = 0;
  SharedServices services;
  std::vector<std::shared_ptr<Counted>> found(8);
  std::vector<std::thread> threads;
  threads.reserve(found.size());
  for (auto& place : found) {
    threads.emplace_back([&services, &place] { place = services.of<Counted>(); });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Counted::made, 1);
  EXPECT_EQ(std::set(found.begin(), found.end()).size(), 1U);
}

TEST(SharedServices, KeepNothingThatNobodyAskedFor) {
  Counted::made = 0;
  SharedServices services;
  (void)services.of<Other>();
  EXPECT_EQ(Counted::made, 0);
}

TEST(SharedServices, GiveWhatWasProvided) {
  SharedServices services;
  const auto provided = std::make_shared<Other>();
  services.provide(provided);
  EXPECT_EQ(services.of<Other>(), provided);
}

TEST(SharedServices, LetAHeldObjectOutliveThem) {
  std::shared_ptr<Other> held;
  {
    SharedServices services;
    held = services.of<Other>();
  }
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace skerrow::core
