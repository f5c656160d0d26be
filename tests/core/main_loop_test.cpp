#include "core/main_loop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/core/waiting.h"

namespace skerrow::core {
namespace {

using namespace std::chrono_literals;

TEST(MainLoop, ReturnsAtOnceWhenAllIsDone) {
  MainLoop loop;
  int served = 0;
  loop.post([&] { ++served; });
  loop.runUntil([] { return true; });
  EXPECT_EQ(served, 0);
  loop.runUntil([&] { return served > 0; });
  EXPECT_EQ(served, 1);
}

TEST(MainLoop, ServesTasksInTheOrderOfTheirPosting) {
  MainLoop loop;
  std::string order;
  for (char name = 'a'; name <= 'j'; ++name) {
    loop.post([&order, name] { order += name; });
  }
  loop.runUntil([&] { return order.size() == 10; });
  EXPECT_EQ(order, "abcdefghij");
}

TEST(MainLoop, ServesTasksThatTasksPost) {
  MainLoop loop;
  std::string order;
  loop.post([&] {
    order += 'a';
    loop.post([&] { order += 'c'; });
  });
  loop.post([&] { order += 'b'; });
  loop.runUntil([&] { return order.size() == 3; });
  EXPECT_EQ(order, "abc");
}

TEST(MainLoop, ServesTasksOfManyThreadsOnItsOwnInTheOrderOfEach) {
  constexpr int kThreads = 4;
  constexpr int kTasks = 2000;
  MainLoop loop;
  std::vector<std::vector<int>> seen(kThreads);
  int served = 0;
  bool isAlwaysOwnThread = true;
  std::vector<std::jthread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int task = 0; task < kTasks; ++task) {
        loop.post([&, thread, task] {
          seen[static_cast<std::size_t>(thread)].push_back(task);
          isAlwaysOwnThread = isAlwaysOwnThread && loop.isOwnThread();
          ++served;
        });
      }
    });
  }
  loop.runUntil([&] { return served == kThreads * kTasks; });
  EXPECT_TRUE(isAlwaysOwnThread);
  std::vector<int> expected(kTasks);
  for (int task = 0; task < kTasks; ++task) expected[static_cast<std::size_t>(task)] = task;
  for (const std::vector<int>& tasks : seen) EXPECT_EQ(tasks, expected);
}

TEST(MainLoop, WakesFromWaitingWhenATaskIsPosted) {
  for (int round = 0; round < 200; ++round) {
    MainLoop loop;
    bool isServed = false;
    std::jthread poster([&] { loop.post([&] { isServed = true; }); });
    loop.runUntil([&] { return isServed; });
    EXPECT_TRUE(isServed);
  }
}

TEST(MainLoop, ATaskMayServeTheLoopItself) {
  MainLoop loop;
  std::string order;
  loop.post([&] {
    bool isInnerDone = false;
    loop.post([&] { isInnerDone = true; });
    loop.runUntil([&] { return isInnerDone; });
    order += "outer";
  });
  loop.runUntil([&] { return !order.empty(); });
  EXPECT_EQ(order, "outer");
}

TEST(MainLoop, ATaskThatServesTheLoopAlsoServesThoseThatWereWaitingBesideIt) {
  MainLoop loop;
  bool isBesideDone = false;
  bool isOuterDone = false;
  bool isGivenUp = false;
  loop.post([&] {
    // The end of a hang: without it, this test could not fail.
    loop.startTimer(5s, [&] { isGivenUp = true; });
    loop.runUntil([&] { return isBesideDone || isGivenUp; });
    isOuterDone = true;
  });
  loop.post([&] { isBesideDone = true; });
  loop.runUntil([&] { return isOuterDone; });
  EXPECT_FALSE(isGivenUp);
}

TEST(MainLoop, ATimerFiresOnceAfterItsDelay) {
  MainLoop loop;
  int fired = 0;
  bool isLaterFired = false;
  const auto start = std::chrono::steady_clock::now();
  std::chrono::steady_clock::duration waited{};
  loop.startTimer(20ms, [&] {
    ++fired;
    waited = std::chrono::steady_clock::now() - start;
  });
  loop.startTimer(70ms, [&] { isLaterFired = true; });
  loop.runUntil([&] { return isLaterFired; });
  EXPECT_EQ(fired, 1);
  EXPECT_GE(waited, 19ms);  // the system rounds to milliseconds
}

TEST(MainLoop, TimersFireInTheOrderOfTheirTimes) {
  MainLoop loop;
  std::string order;
  loop.startTimer(40ms, [&] { order += 'c'; });
  loop.startTimer(0ms, [&] { order += 'a'; });
  loop.startTimer(20ms, [&] { order += 'b'; });
  loop.runUntil([&] { return order.size() == 3; });
  EXPECT_EQ(order, "abc");
}

TEST(MainLoop, AStoppedTimerNeverFires) {
  MainLoop loop;
  int fired = 0;
  bool isLaterFired = false;
  const auto stopped = loop.startTimer(10ms, [&] { ++fired; });
  const auto stoppedByAnother = loop.startTimer(30ms, [&] { ++fired; });
  loop.startTimer(0ms, [&] { loop.stopTimer(stoppedByAnother); });
  loop.stopTimer(stopped);
  loop.startTimer(50ms, [&] { isLaterFired = true; });
  loop.runUntil([&] { return isLaterFired; });
  EXPECT_EQ(fired, 0);
}

TEST(MainLoop, StoppingATimerThatIsGoneChangesNothing) {
  MainLoop loop;
  int fired = 0;
  const auto gone = loop.startTimer(0ms, [&] { ++fired; });
  loop.runUntil([&] { return fired == 1; });
  const auto other = loop.startTimer(0ms, [&] { ++fired; });
  EXPECT_NE(gone, other);
  loop.stopTimer(gone);
  loop.stopTimer(gone);
  loop.stopTimer(MainLoop::TimerId::none);
  loop.runUntil([&] { return fired == 2; });
  EXPECT_EQ(fired, 2);
}

TEST(MainLoop, ATimerMayStopItselfAndStartOthers) {
  MainLoop loop;
  std::string order;
  auto self = MainLoop::TimerId::none;
  self = loop.startTimer(0ms, [&] {
    loop.stopTimer(self);
    order += 'a';
    loop.startTimer(0ms, [&] { order += 'b'; });
  });
  loop.runUntil([&] { return order.size() == 2; });
  EXPECT_EQ(order, "ab");
}

TEST(MainLoop, TasksThatKeepComingDoNotKeepTimersWaiting) {
  MainLoop loop;
  bool isFired = false;
  std::function<void()> again = [&] {
    if (!isFired) loop.post(again);
  };
  loop.post(again);
  loop.startTimer(1ms, [&] { isFired = true; });
  loop.runUntil([&] { return isFired; });
  EXPECT_TRUE(isFired);
}

TEST(MainLoop, GoesWithItsTimersAndTasks) {
  const auto token = std::make_shared<int>(0);
  {
    MainLoop loop;
    loop.startTimer(1h, [token] {});
    loop.startTimer(24h * 365, [token] {});
    loop.post([token] {});
  }
  EXPECT_EQ(token.use_count(), 1);
}

TEST(MainLoop, WhatAServedTaskOwnsIsLetGo) {
  MainLoop loop;
  const auto token = std::make_shared<int>(0);
  bool isDone = false;
  loop.post([token] {});
  loop.startTimer(0ms, [token, &isDone] { isDone = true; });
  loop.runUntil([&] { return isDone; });
  EXPECT_EQ(token.use_count(), 1);
}

TEST(MainLoop, KnowsItsOwnThread) {
  MainLoop loop;
  EXPECT_TRUE(loop.isOwnThread());
  bool isOwn = true;
  std::jthread([&] { isOwn = loop.isOwnThread(); }).join();
  EXPECT_FALSE(isOwn);
}

#ifndef NDEBUG
TEST(MainLoopDeathTest, NothingButPostingIsForOtherThreads) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_DEATH(
      {
        MainLoop loop;
        std::jthread([&] { loop.startTimer(0ms, [] {}); }).join();
      },
      "isOwnThread");
  EXPECT_DEATH(
      {
        MainLoop loop;
        std::jthread([&] { loop.stopTimer(MainLoop::TimerId::none); }).join();
      },
      "isOwnThread");
  EXPECT_DEATH(
      {
        MainLoop loop;
        std::jthread([&] { loop.runUntil([] { return true; }); }).join();
      },
      "isOwnThread");
}
#endif

}  // namespace
}  // namespace skerrow::core
