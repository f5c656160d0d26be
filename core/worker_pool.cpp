#include "core/worker_pool.h"

#include <system_error>
#include <utility>

#include "core/spin_wait.h"

namespace skerrow::core {

namespace {

// The pool that the thread belongs to.
constinit thread_local WorkerPool* poolOfThread = nullptr;

}  // namespace

WorkerPool::~WorkerPool() {
  std::deque<Job> dropped;  // destroyed outside the lock: they own commands
  std::vector<platform::Thread> threads;
  {
    auto state = state_.access();
    state->isClosing = true;
    dropped.swap(state->waiting);
    threads.swap(state->threads);
  }
  wake_.notify_all();
}

void WorkerPool::run(Operation operation, std::stop_token stop) {
  {
    auto state = state_.access();
    if (state->isClosing) return;  // dropped, as those that wait are
    state->waiting.push_back({std::move(operation), std::move(stop)});
    waitingCount_ = state->waiting.size();
    startThread(state);
  }
  wake_.notify_one();
}

// Starts one where fewer are idle than operations wait, unless enough work. A system that
// gives no further thread leaves the work to those that there are.
void WorkerPool::startThread(Access& state) {
  const bool isNeeded = state->idleThreads < state->waiting.size();
  if (!isNeeded || state->isClosing || state->working + state->idleThreads >= kMaximumThreads ||
      state->threads.size() >= kMostThreads) {
    return;
  }
  try {
    state->threads.emplace_back([this] { serve(); });
    ++state->idleThreads;
  } catch (const std::system_error&) {
    if (!state->threads.empty()) return;
    state->waiting.pop_back();
    waitingCount_ = state->waiting.size();
    throw;
  }
}

void WorkerPool::exempt() {
  {
    auto state = state_.access();
    --state->working;
    startThread(state);
  }
  wake_.notify_one();
}

void WorkerPool::count() { ++state_.access()->working; }

void WorkerPool::serve() {
  poolOfThread = this;
  SpinWait spin;
  const auto mayTake = [](const State& state) {
    return !state.waiting.empty() && state.working < kMaximumThreads;
  };
  auto state = state_.access();
  for (;;) {  // the thread is counted as idle here
    if (!mayTake(*state) && !state->isClosing) {
      state.unlock();
      spin.until([this] { return waitingCount_.load(std::memory_order_acquire) > 0; });
      state.lock();
    }
    state.wait(wake_, [&](const State& now) { return now.isClosing || mayTake(now); });
    --state->idleThreads;
    if (state->isClosing) return;
    ++state->working;
    Job job = std::move(state->waiting.front());
    state->waiting.pop_front();
    waitingCount_ = state->waiting.size();
    state.unlock();
    const bool isExempt = perform(job);
    job = {};  // what it owns goes before the lock is held again
    state.lock();
    if (!isExempt) --state->working;
    ++state->idleThreads;
  }
}

// Whether it ceased to count meanwhile.
bool WorkerPool::perform(const Job& job) {
  bool isExempt = false;
  {
    const std::stop_callback onStop(job.stop, [this, &isExempt] {
      isExempt = true;
      exempt();
    });
    job.operation();
  }  // here the callback has run or never will
  return isExempt;
}

WaitingForOthers::WaitingForOthers() : pool_(poolOfThread) {
  if (pool_ != nullptr) pool_->exempt();
}

WaitingForOthers::~WaitingForOthers() {
  if (pool_ != nullptr) pool_->count();
}

}  // namespace skerrow::core
