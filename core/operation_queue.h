#pragma once
// OperationQueue: where one command's task runs. Every command has a queue of its
// own; all queues draw their threads from one WorkerPool, which starts a thread
// when work comes and none is idle, so that one command never waits for another.

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace skerrow::core {

using Operation = std::function<void()>;

class WorkerPool {
 public:
  /// At most this many operations run at once; more wait their turn.
  static constexpr std::size_t kMaximumThreads = 64;

  WorkerPool() = default;
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  /// Drops the operations that wait and joins those that run.
  ~WorkerPool();

  /// Hands over an operation, which must not throw; a pool that is closing drops it.
  /// Callable on any thread, also from an operation. Throws
  /// std::system_error when the system gives not even one thread.
  void run(Operation operation);

 private:
  void startThread();
  void serve();

  std::mutex mutex_;
  std::condition_variable wake_;
  std::atomic<std::size_t> waitingCount_ = 0;  // set under mutex_, looked at without it
  std::deque<Operation> waiting_;              // under mutex_, as is everything below
  std::size_t idleThreads_ = 0;
  bool isClosing_ = false;
  std::vector<std::thread> threads_;
};

class OperationQueue {
 public:
  explicit OperationQueue(WorkerPool& pool) noexcept : pool_(pool) {}

  /// Runs the operation on a worker thread as soon as the pool has one.
  void addOperation(Operation operation) { pool_.run(std::move(operation)); }

 private:
  WorkerPool& pool_;
};

}  // namespace skerrow::core
