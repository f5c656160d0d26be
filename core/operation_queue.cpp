#include "core/operation_queue.h"

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
    if (idleThreads_ < waiting_.size() && threads_.size() < kMaximumThreads) {
      threads_.emplace_back([this] { serve(); });
    }
  }
  wake_.notify_one();
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
