#include "core/main_loop.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/core/waiting.h"
#include "tests/support/set_clock.h"

namespace skerrow::core {
namespace {

using namespace std::chrono_literals;

const platform::Clock& theClock() {
  static const platform::SystemClock clock;
  return clock;
}

TEST(MainLoop, ReturnsAtOnceWhenAllIsDone) {
  MainLoop loop(theClock());
  int served = 0;
  loop.post([&] { ++served; });
  loop.runUntil([] { return true; });
  EXPECT_EQ(served, 0);
  loop.runUntil([&] { return served > 0; });
  EXPECT_EQ(served, 1);
}

TEST(MainLoop, ServesTasksInTheOrderOfTheirPosting) {
  MainLoop loop(theClock());
  std::string order;
  for (char name = 'a'; name <= 'j'; ++name) {
    loop.post([&order, name] { order += name; });
  }
  loop.runUntil([&] { return order.size() == 10; });
  EXPECT_EQ(order, "abcdefghij");
}

TEST(MainLoop, ServesTasksThatTasksPost) {
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
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
    MainLoop loop(theClock());
    bool isServed = false;
    std::jthread poster([&] { loop.post([&] { isServed = true; }); });
    loop.runUntil([&] { return isServed; });
    EXPECT_TRUE(isServed);
  }
}

TEST(MainLoop, ATaskMayServeTheLoopItself) {
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
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
  EXPECT_GE(waited, 20ms);
}

TEST(MainLoop, TimersFireInTheOrderOfTheirTimes) {
  MainLoop loop(theClock());
  std::string order;
  loop.startTimer(40ms, [&] { order += 'c'; });
  loop.startTimer(0ms, [&] { order += 'a'; });
  loop.startTimer(20ms, [&] { order += 'b'; });
  loop.runUntil([&] { return order.size() == 3; });
  EXPECT_EQ(order, "abc");
}

TEST(MainLoop, AStoppedTimerNeverFires) {
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
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
  MainLoop loop(theClock());
  bool isFired = false;
  std::function<void()> again = [&] {
    if (!isFired) loop.post(again);
  };
  loop.post(again);
  loop.startTimer(1ms, [&] { isFired = true; });
  loop.runUntil([&] { return isFired; });
  EXPECT_TRUE(isFired);
}

// What a toolkit does while a window waits: it runs the context of the process, and knows
// nothing of the loop.
class ToolkitLoop {
 public:
  ToolkitLoop() = default;
  ToolkitLoop(const ToolkitLoop&) = delete;
  ToolkitLoop& operator=(const ToolkitLoop&) = delete;
  ~ToolkitLoop() { g_main_loop_unref(loop_); }

  void run() { g_main_loop_run(loop_); }
  void quit() { g_main_loop_quit(loop_); }

 private:
  GMainLoop* loop_ = g_main_loop_new(nullptr, FALSE);
};

TEST(MainLoop, ServesPostsAndTimersWhileAWindowRunsTheContextInsideOfATask) {
  MainLoop loop(theClock(), MainLoop::Context::ofProcess);
  ToolkitLoop window;
  std::string order;
  std::jthread other;
  loop.post([&] {
    order += "opens ";
    loop.startTimer(1ms, [&] { order += "timer "; });
    other = std::jthread([&] {
      loop.post([&] { order += "posted "; });
      loop.post([&] { loop.startTimer(5ms, [&] { window.quit(); }); });
    });
    window.run();
    order += "closes";
  });
  loop.runUntil([&] { return order.ends_with("closes"); });
  EXPECT_TRUE(order == "opens posted timer closes" || order == "opens timer posted closes")
      << order;
}

TEST(MainLoop, ServesTasksOfTasksInWindowsInsideOfWindows) {
  MainLoop loop(theClock(), MainLoop::Context::ofProcess);
  ToolkitLoop outer;
  ToolkitLoop inner;
  std::string order;
  loop.post([&] {
    loop.post([&] {
      loop.post([&] {
        order += "inner ";
        inner.quit();
      });
      inner.run();
      loop.post([&] {
        order += "outer ";
        outer.quit();
      });
    });
    outer.run();
    order += "done";
  });
  loop.runUntil([&] { return order.ends_with("done"); });
  EXPECT_EQ(order, "inner outer done");
}

TEST(MainLoop, ServesTheOtherSourcesOfTheContextWhileTasksKeepComing) {
  MainLoop loop(theClock(), MainLoop::Context::ofProcess);
  bool isServed = false;
  g_timeout_add_once(
      0, [](gpointer served) { *static_cast<bool*>(served) = true; }, &isServed);
  std::function<void()> again = [&] {
    if (!isServed) loop.post(again);
  };
  loop.post(again);
  loop.runUntil([&] { return isServed; });
  EXPECT_TRUE(isServed);
}

TEST(MainLoop, TimersFireByTheClockHoweverFarAway) {
  tests::SetClock clock;
  MainLoop loop(clock);
  std::string fired;
  const auto serve = [&] {
    bool isServed = false;
    for (int round = 0; round < 3; ++round) {
      isServed = false;
      loop.post([&] { isServed = true; });
      loop.runUntil([&] { return isServed; });
    }
  };
  loop.startTimer(24h * 50, [&] { fired += "50 days "; });  // 2^32 ms are 49.7 days
  loop.startTimer(24h * 365 * 90, [&] { fired += "90 years "; });
  loop.startTimer(std::chrono::milliseconds::max(), [&] { fired += "never "; });
  serve();
  EXPECT_EQ(fired, "");
  clock.setForward(24h * 49 + 20h);
  serve();
  EXPECT_EQ(fired, "");
  clock.setForward(4h - 1ms);
  serve();
  EXPECT_EQ(fired, "");
  clock.setForward(1ms);
  serve();
  EXPECT_EQ(fired, "50 days ");
  clock.setForward(24h * 365 * 90);
  serve();
  EXPECT_EQ(fired, "50 days 90 years ");
}

TEST(MainLoop, GoesWithItsTimersAndTasks) {
  const auto token = std::make_shared<int>(0);
  {
    MainLoop loop(theClock());
    loop.startTimer(1h, [token] {});
    loop.startTimer(24h * 365, [token] {});
    loop.post([token] {});
  }
  EXPECT_EQ(token.use_count(), 1);
}

TEST(MainLoop, WhatAServedTaskOwnsIsLetGo) {
  MainLoop loop(theClock());
  const auto token = std::make_shared<int>(0);
  bool isDone = false;
  loop.post([token] {});
  loop.startTimer(0ms, [token, &isDone] { isDone = true; });
  loop.runUntil([&] { return isDone; });
  EXPECT_EQ(token.use_count(), 1);
}

TEST(MainLoop, KnowsItsOwnThread) {
  MainLoop loop(theClock());
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
        MainLoop loop(theClock());
        std::jthread([&] { loop.startTimer(0ms, [] {}); }).join();
      },
      "isOwnThread");
  EXPECT_DEATH(
      {
        MainLoop loop(theClock());
        std::jthread([&] { loop.stopTimer(MainLoop::TimerId::none); }).join();
      },
      "isOwnThread");
  EXPECT_DEATH(
      {
        MainLoop loop(theClock());
        std::jthread([&] { loop.runUntil([] { return true; }); }).join();
      },
      "isOwnThread");
}
#endif

}  // namespace
}  // namespace skerrow::core
