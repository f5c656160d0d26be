#include "core/operation_queue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <stop_token>
#include <thread>
#include <vector>

#include "core/worker_pool.h"
#include "tests/core/waiting.h"

namespace skerrow::core {
namespace {

using tests::Counter;
using tests::Signal;

TEST(OperationQueue, RunsAnOperationOnAnotherThread) {
  WorkerPool pool;
  OperationQueue queue(pool);
  Signal done;
  std::thread::id thread;
  queue.addOperation([&] {
    thread = std::this_thread::get_id();
    done.set();
  });
  ASSERT_TRUE(done.wait());
  EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(OperationQueue, OperationsThatWaitForEachOtherRunAtTheSameTime) {
  WorkerPool pool;
  Signal first;
  Signal second;
  Counter met;
  OperationQueue(pool).addOperation([&] {
    first.set();
    if (second.wait()) met.add();
  });
  OperationQueue(pool).addOperation([&] {
    second.set();
    if (first.wait()) met.add();
  });
  EXPECT_TRUE(met.waitFor(2));
}

TEST(OperationQueue, OneMoreNeverWaitsForOthersUpToTheMaximum) {
  constexpr int kMany = static_cast<int>(WorkerPool::kMaximumThreads);
  WorkerPool pool;
  Counter running;
  Counter ended;
  Signal release;
  for (int i = 0; i < kMany; ++i) {
    OperationQueue(pool).addOperation([&] {
      running.add();
      if (release.wait()) ended.add();
    });
  }
  EXPECT_TRUE(running.waitFor(kMany));
  Signal oneMore;
  OperationQueue(pool).addOperation([&] { oneMore.set(); });
  EXPECT_FALSE(oneMore.isSet());  // all threads are taken
  release.set();
  EXPECT_TRUE(ended.waitFor(kMany));
  EXPECT_TRUE(oneMore.wait());
}

TEST(OperationQueue, AnOperationCanAddOthers) {
  WorkerPool pool;
  Counter done;
  OperationQueue(pool).addOperation([&] {
    for (int i = 0; i < 10; ++i) OperationQueue(pool).addOperation([&] { done.add(); });
  });
  EXPECT_TRUE(done.waitFor(10));
}

TEST(OperationQueue, ManyShortOperationsNeedNoMoreThanTheMaximumOfThreads) {
  constexpr int kMany = 20000;
  WorkerPool pool;
  Counter done;
  std::mutex mutex;
  std::set<std::thread::id> threads;
  for (int i = 0; i < kMany; ++i) {
    pool.run([&] {
      {
        const std::lock_guard lock(mutex);
        threads.insert(std::this_thread::get_id());
      }
      done.add();
    });
  }
  ASSERT_TRUE(done.waitFor(kMany));
  EXPECT_LE(threads.size(), WorkerPool::kMaximumThreads);
}

TEST(OperationQueue, WhatAnOperationOwnsGoesWithIt) {
  WorkerPool pool;
  Signal gone;
  auto owned = std::shared_ptr<int>(new int(1), [&gone](const int* number) {
    delete number;
    gone.set();
  });
  pool.run([owned = std::move(owned)] {});
  EXPECT_TRUE(gone.wait());
}

TEST(WorkerPool, CanGoWithoutEverHavingWorked) {
  EXPECT_NO_THROW({ const WorkerPool pool; });
}

// Whether one still ran is a matter of luck; that nothing is lost or run twice is not.
TEST(WorkerPool, AtShutdownEveryOperationHasRunOnceOrIsDropped) {
  for (int round = 0; round < 20; ++round) {
    constexpr int kMany = 500;
    std::atomic<int> runs = 0;
    const auto token = std::make_shared<int>(0);
    {
      WorkerPool pool;
      std::vector<std::jthread> producers;
      for (int producer = 0; producer < 4; ++producer) {
        producers.emplace_back([&] {
          for (int i = 0; i < kMany; ++i) pool.run([&runs, token] { ++runs; });
        });
      }
      producers.clear();
    }
    EXPECT_LE(runs, 4 * kMany);
    EXPECT_EQ(token.use_count(), 1);
  }
}

TEST(WorkerPool, WaitsAtShutdownForWhatRunsAndDropsWhatWaits) {
  constexpr int kMany = static_cast<int>(WorkerPool::kMaximumThreads);
  Counter running;
  Counter ended;
  Signal release;
  std::atomic<int> lateRuns = 0;
  const auto token = std::make_shared<int>(0);
  std::optional<WorkerPool> pool(std::in_place);
  for (int i = 0; i < kMany; ++i) {
    pool->run([&, token] {
      running.add();
      if (release.wait()) ended.add();
    });
  }
  ASSERT_TRUE(running.waitFor(kMany));
  for (int i = 0; i < 100; ++i) pool->run([&lateRuns, token] { ++lateRuns; });
  std::jthread releasing([&] { release.set(); });
  pool.reset();
  EXPECT_EQ(ended.count(), kMany);
  EXPECT_LE(lateRuns, 100);
  EXPECT_EQ(token.use_count(), 1);
}

// Keeps as many operations at work as there may be.
class Crowd {
 public:
  explicit Crowd(WorkerPool& pool, std::stop_token stop = {}) {
    for (std::size_t i = 0; i < WorkerPool::kMaximumThreads; ++i) {
      pool.run(
          [this] {
            running_.add();
            if (release_.wait()) ended_.add();
          },
          stop);
    }
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;
  ~Crowd() {
    release_.set();
    EXPECT_TRUE(ended_.waitFor(kMany));
  }

  [[nodiscard]] bool isAtWork() { return running_.waitFor(kMany); }

 private:
  static constexpr int kMany = static_cast<int>(WorkerPool::kMaximumThreads);
  Counter running_;
  Counter ended_;
  Signal release_;
};

TEST(WorkerPool, OperationsThatWereToldToStopKeepNoThreadFromOthers) {
  WorkerPool pool;
  const std::stop_source stop;
  Crowd deaf(pool, stop.get_token());
  ASSERT_TRUE(deaf.isAtWork());
  Signal done;
  pool.run([&] { done.set(); });
  EXPECT_FALSE(done.isSet());
  stop.request_stop();
  EXPECT_TRUE(done.wait());
}

TEST(WorkerPool, OperationsThatAreToldToStopBeforeTheyRunDoNotCountEither) {
  WorkerPool pool;
  std::stop_source stop;
  stop.request_stop();
  Crowd deaf(pool, stop.get_token());
  ASSERT_TRUE(deaf.isAtWork());
  Signal done;
  pool.run([&] { done.set(); });
  EXPECT_TRUE(done.wait());
}

TEST(WorkerPool, NothingWaitsInACircleWhereOperationsWaitForOthers) {
  WorkerPool pool;
  Counter done;
  constexpr int kMany = 2 * static_cast<int>(WorkerPool::kMaximumThreads);
  for (int i = 0; i < kMany; ++i) {
    pool.run([&] {
      Signal inner;
      pool.run([&] { inner.set(); });
      const WaitingForOthers waiting;
      if (inner.wait()) done.add();
    });
  }
  EXPECT_TRUE(done.waitFor(kMany));
}

TEST(WorkerPool, NoMoreWorkAtOnceThanMayAfterSomeDidNotCount) {
  std::atomic<bool> isTooMany = false;  // set when the crowd has gone, too
  WorkerPool pool;
  const std::stop_source stop;
  {
    Crowd deaf(pool, stop.get_token());
    ASSERT_TRUE(deaf.isAtWork());
    stop.request_stop();
    Crowd others(pool);
    ASSERT_TRUE(others.isAtWork());
  }
  // Twice as many threads are there now.
  Crowd crowd(pool);
  ASSERT_TRUE(crowd.isAtWork());
  pool.run([&] { isTooMany = true; });
  EXPECT_FALSE(isTooMany);
}

// Says when a thread of the pool ends.
struct EndOfThread {
  Signal* signal = nullptr;
  EndOfThread() = default;
  EndOfThread(const EndOfThread&) = delete;
  EndOfThread& operator=(const EndOfThread&) = delete;
  ~EndOfThread() {
    if (signal != nullptr) signal->set();
  }
};

// An operation adds another while the pool is closing: one of its threads has
// ended already, and it waits for the one that adds.
void addWhileClosing() {
  Signal idleThreadEnded;
  Signal bothRun;
  Signal firstMayEnd;
  {
    WorkerPool pool;
    pool.run([&] {
      static thread_local EndOfThread end;
      end.signal = &idleThreadEnded;
      if (!firstMayEnd.wait()) std::_Exit(2);
    });
    pool.run([&] {
      bothRun.set();
      if (!idleThreadEnded.wait()) std::_Exit(3);
      for (int i = 0; i < 10; ++i) pool.run([] {});
    });
    if (!bothRun.wait()) std::_Exit(4);
    firstMayEnd.set();
  }
  std::_Exit(0);
}

TEST(WorkerPoolDeathTest, AnOperationMayAddAnotherWhileThePoolIsClosing) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(addWhileClosing(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace skerrow::core
