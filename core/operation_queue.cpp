#include "core/operation_queue.h"

#include <system_error>
#include <utility>

#include "core/spin_wait.h"

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
    if (isClosing_) return;  // dropped, as those that wait are
    waiting_.push_back(std::move(operation));
    waitingCount_ = waiting_.size();
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
    waitingCount_ = waiting_.size();
    throw;
  }
}

void WorkerPool::serve() {
  SpinWait spin;
  std::unique_lock lock(mutex_);
  for (;;) {
    ++idleThreads_;
    if (waiting_.empty() && !isClosing_) {
      lock.unlock();
      spin.until([this] { return waitingCount_.load(std::memory_order_acquire) > 0; });
      lock.lock();
    }
    wake_.wait(lock, [this] { return isClosing_ || !waiting_.empty(); });
    --idleThreads_;
    if (isClosing_) return;
    Operation operation = std::move(waiting_.front());
    waiting_.pop_front();
    waitingCount_ = waiting_.size();
    lock.unlock();
    operation();
    operation = nullptr;  // what it owns goes before the lock is held again
    lock.lock();
  }
}

}  // namespace skerrow::core
