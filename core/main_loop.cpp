#include "core/main_loop.h"

#include <glib.h>

#include <algorithm>
#include <atomic>
#include <cassert>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include "core/spin_wait.h"

namespace skerrow::core {

// Every task is posted together with a wake-up of the context, so that a loop
// which waits in it comes round and finds the task.
struct MainLoop::State {
  GMainContext* context = g_main_context_new();
  std::thread::id thread = std::this_thread::get_id();
  SpinWait spin;
  std::mutex mutex;
  std::deque<Task> posted;                   // under mutex
  std::atomic<std::size_t> postedCount = 0;  // set under mutex, looked at without it

  // Empty when nothing was posted.
  Task nextPosted() {
    const std::lock_guard lock(mutex);
    if (posted.empty()) return {};
    Task task = std::move(posted.front());
    posted.pop_front();
    postedCount = posted.size();
    return task;
  }
};

namespace {

gboolean runTimer(gpointer task) {
  // A task may stop timers or start others, so it runs from a copy that nothing else owns.
  const MainLoop::Task running = *static_cast<MainLoop::Task*>(task);
  running();
  return G_SOURCE_REMOVE;
}

void deleteTimerTask(gpointer task) { delete static_cast<MainLoop::Task*>(task); }

}  // namespace

MainLoop::MainLoop() : state_(std::make_unique<State>()) {}

MainLoop::~MainLoop() { g_main_context_unref(state_->context); }

void MainLoop::post(Task task) {
  {
    const std::lock_guard lock(state_->mutex);
    state_->posted.push_back(std::move(task));
    state_->postedCount = state_->posted.size();
  }
  g_main_context_wakeup(state_->context);
}

MainLoop::TimerId MainLoop::startTimer(std::chrono::milliseconds delay, Task task) {
  assert(isOwnThread());
  constexpr std::chrono::milliseconds kLongest(G_MAXUINT);
  GSource* source = g_timeout_source_new(static_cast<guint>(std::min(delay, kLongest).count()));
  g_source_set_callback(source, runTimer, new Task(std::move(task)), deleteTimerTask);
  const guint identifier = g_source_attach(source, state_->context);
  g_source_unref(source);
  return TimerId{identifier};
}

void MainLoop::stopTimer(TimerId timer) {
  assert(isOwnThread());
  if (timer == TimerId::none) return;
  GSource* source = g_main_context_find_source_by_id(state_->context, static_cast<guint>(timer));
  if (source != nullptr) g_source_destroy(source);
}

void MainLoop::runUntil(const std::function<bool()>& isDone) {
  assert(isOwnThread());
  const auto hasPosted = [this] { return state_->postedCount.load(std::memory_order_acquire) > 0; };
  while (!isDone()) {
    // One at a time, as a task may itself serve the loop.
    if (Task task = state_->nextPosted()) {
      task();
      g_main_context_iteration(state_->context, FALSE);
    } else if (!state_->spin.until(hasPosted)) {
      // A task that comes within microseconds finds the thread awake; now it sleeps.
      g_main_context_iteration(state_->context, TRUE);
    }
  }
}

bool MainLoop::isOwnThread() const noexcept { return std::this_thread::get_id() == state_->thread; }

}  // namespace skerrow::core
