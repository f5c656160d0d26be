#pragma once
// WorkerPool: the threads that all operation queues draw from. It starts a thread when
// work comes and none is idle, so that one command never waits for another. Only so
// many work at once; a thread whose operation was told to stop, or waits for another
// command, does not count, so that neither keeps the others waiting.

#include <array>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <stop_token>
#include <vector>

#include "core/workers.h"
#include "platform/thread.h"
#include "work/locked.h"

namespace skerrow::core {

class WorkerPool final : public Workers {
 public:
  /// At most this many operations work at once; more wait their turn.
  static constexpr std::size_t kMaximumThreads = 64;
  /// At most this many threads are there, whatever they do.
  static constexpr std::size_t kMostThreads = 1024;

  WorkerPool() = default;
  /// Drops the operations that wait and joins those that run.
  ~WorkerPool() override;

  /// A pool that is closing drops the operation. Throws std::system_error when the system
  /// gives not even one thread.
  void run(Operation operation, std::stop_token stop) override;
  using Workers::run;

 private:
  friend class WaitingForOthers;

  struct Job {
    Operation operation;
    std::stop_token stop;
  };
  struct State {
    std::deque<Job> waiting;
    std::size_t idleThreads = 0;  // those that are only starting too
    std::size_t working = 0;      // operations that run and count
    bool isClosing = false;
    std::vector<platform::Thread> threads;
  };

  using Access = work::Locked<State>::Access;

  void startThread(Access& state);
  void serve();
  bool perform(const Job& job);
  // An operation that runs does not count from now on, or does again.
  void exempt();
  void count();

  std::condition_variable wake_;
  std::atomic<std::size_t> waitingCount_ = 0;  // set under the lock, looked at without it
  work::Locked<State> state_;
};

/// As long as it lives, the operation that makes it waits for another command, and its
/// thread does not count among those of its pool. Harmless on any other thread.
class WaitingForOthers {
 public:
  WaitingForOthers();
  WaitingForOthers(const WaitingForOthers&) = delete;
  WaitingForOthers& operator=(const WaitingForOthers&) = delete;
  ~WaitingForOthers();

 private:
  WorkerPool* pool_;
};

}  // namespace skerrow::core
