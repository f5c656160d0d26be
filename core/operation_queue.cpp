#include "core/operation_queue.h"

#include <system_error>
#include <utility>

namespace skerrow::core {

WorkerPool::~WorkerPool() {
  std::deque<Operation> dropped;  // destroyed outside the lock: they own commands
  {
    const std::lock_guard lock(mutex_);
    isClosing_ = true;
    dropped.swap(waiting_);
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::run(Operation operation) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(operation));
    if (idleThreads_ < waiting_.size() && threads_.size() < kMaximumThreads) startThread();
  }
  wake_.notify_one();
}

// A system that gives no further thread leaves the work to those that there are.
void WorkerPool::startThread() {
  try {
    threads_.emplace_back([this] { serve(); });
  } catch (const std::system_error&) {
    if (!threads_.empty()) return;
    waiting_.pop_back();
    throw;
  }
}

void WorkerPool::serve() {
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idleThreads_;
    wake_.wait(lock, [this] { return isClosing_ || !waiting_.empty(); });
    --idleThreads_;
    if (isClosing_) return;
    Operation operation = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    operation();
    operation = nullptr;  // what it owns goes before the lock is held again
    lock.lock();
  }
}

}  // namespace skerrow::core
