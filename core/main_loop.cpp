#include "core/main_loop.h"

#include <glib.h>

#include <algorithm>
#include <atomic>
#include <cassert>
#include <deque>
#include <map>
#include <optional>
#include <thread>
#include <utility>

#include "core/spin_wait.h"
#include "work/locked.h"

namespace skerrow::core {

namespace {

using Steady = platform::Clock::Steady;

// While one task follows the other, the context's other sources are looked at so often.
constexpr unsigned kTasksBetweenLooks = 16;

// What a source says of itself before the context waits: milliseconds, rounded up, as a timer
// never fires early; what is further away than the type can say is asked for again.
int waitingTime(Steady::duration left) {
  const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
  return static_cast<int>(std::min<std::chrono::milliseconds::rep>(milliseconds, G_MAXINT));
}

}  // namespace

struct MainLoop::State {
  // The source through which the context serves posts and timers.
  struct Source {
    GSource base;
    State* state;
  };

  State(const platform::Clock& theClock, Context which);
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State();

  bool isReady();
  std::optional<int> timeUntilTimer();
  bool runNext();
  Task dueTimer();
  Task nextPosted();

  static gboolean prepare(GSource* source, int* timeout);
  static gboolean check(GSource* source);
  static gboolean dispatch(GSource* source, GSourceFunc callback, gpointer data);

  const platform::Clock& clock;
  GMainContext* context;
  GSource* source;
  std::thread::id thread = std::this_thread::get_id();
  SpinWait spin;
  bool isTimersTurn = true;
  std::uint64_t lastTimer = 0;
  std::map<TimerId, Task> timers;

  work::Locked<std::deque<Task>> posted;
  std::atomic<std::size_t> postedCount = 0;  // set under the lock, looked at without it
  // Whether the context may be about to wait, so that a post has to wake it. Set before the
  // posts are looked at for the last time, and read after a post is there.
  std::atomic<bool> isWakingNeeded = true;
};

namespace {

GSourceFuncs functionsOf(gboolean (*prepare)(GSource*, int*), gboolean (*check)(GSource*),
                         gboolean (*dispatch)(GSource*, GSourceFunc, gpointer)) {
  GSourceFuncs functions{};
  functions.prepare = prepare;
  functions.check = check;
  functions.dispatch = dispatch;
  return functions;
}

}  // namespace

MainLoop::State::State(const platform::Clock& theClock, Context which)
    : clock(theClock),
      context(which == Context::own ? g_main_context_new()
                                    : g_main_context_ref(g_main_context_default())) {
  static GSourceFuncs functions = functionsOf(prepare, check, dispatch);
  source = g_source_new(&functions, sizeof(Source));
  reinterpret_cast<Source*>(source)->state = this;
  g_source_set_can_recurse(source, TRUE);  // a task may itself run the context
  g_source_attach(source, context);
}

MainLoop::State::~State() {
  g_source_destroy(source);
  g_source_unref(source);
  g_main_context_unref(context);
}

gboolean MainLoop::State::prepare(GSource* source, int* timeout) {
  State& self = *reinterpret_cast<Source*>(source)->state;
  self.isWakingNeeded = true;
  if (self.isReady()) {
    self.isWakingNeeded = false;
    *timeout = 0;
    return TRUE;
  }
  *timeout = self.timeUntilTimer().value_or(-1);
  return FALSE;
}

gboolean MainLoop::State::check(GSource* source) {
  State& self = *reinterpret_cast<Source*>(source)->state;
  self.isWakingNeeded = false;
  return self.isReady() ? TRUE : FALSE;
}

gboolean MainLoop::State::dispatch(GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) {
  reinterpret_cast<Source*>(source)->state->runNext();
  return G_SOURCE_CONTINUE;
}

bool MainLoop::State::isReady() { return postedCount > 0 || timeUntilTimer() == 0; }

std::optional<int> MainLoop::State::timeUntilTimer() {
  if (timers.empty()) return std::nullopt;
  const Steady::duration left = timers.begin()->first.due - clock.steady();
  return left.count() <= 0 ? 0 : waitingTime(left);
}

// One timer or one task, in turns where there are both; whether there was one.
bool MainLoop::State::runNext() {
  isTimersTurn = !isTimersTurn;
  Task task = isTimersTurn ? dueTimer() : nextPosted();
  if (!task) task = isTimersTurn ? nextPosted() : dueTimer();
  if (!task) return false;
  task();
  return true;
}

// A timer is gone before it runs, as its task may stop it, start others or run the loop.
MainLoop::Task MainLoop::State::dueTimer() {
  if (timeUntilTimer() != 0) return {};
  return std::move(timers.extract(timers.begin()).mapped());
}

MainLoop::Task MainLoop::State::nextPosted() {
  if (postedCount.load(std::memory_order_acquire) == 0) return {};
  auto tasks = posted.access();
  if (tasks->empty()) return {};
  Task task = std::move(tasks->front());
  tasks->pop_front();
  postedCount = tasks->size();
  return task;
}

MainLoop::MainLoop(const platform::Clock& clock, Context context)
    : state_(std::make_unique<State>(clock, context)) {}

MainLoop::~MainLoop() = default;

void MainLoop::post(Task task) {
  {
    auto tasks = state_->posted.access();
    tasks->push_back(std::move(task));
    state_->postedCount = tasks->size();
  }
  if (state_->isWakingNeeded) g_main_context_wakeup(state_->context);
}

MainLoop::TimerId MainLoop::startTimer(std::chrono::milliseconds delay, Task task) {
  // Beyond this the clock's own count would run over.
  constexpr auto kLongest = std::chrono::hours(24 * 365 * 100);
  return startTimerAt(state_->clock.steady() + std::min<std::chrono::milliseconds>(delay, kLongest),
                      std::move(task));
}

MainLoop::TimerId MainLoop::startTimerAt(platform::Clock::Steady due, Task task) {
  assert(isOwnThread());
  const TimerId timer{due, ++state_->lastTimer};
  state_->timers.emplace(timer, std::move(task));
  return timer;
}

void MainLoop::stopTimer(const TimerId& timer) {
  assert(isOwnThread());
  state_->timers.erase(timer);
}

void MainLoop::runUntil(const std::function<bool()>& isDone) {
  assert(isOwnThread());
  const auto hasPosted = [this] { return state_->postedCount.load(std::memory_order_acquire) > 0; };
  unsigned served = 0;
  while (!isDone()) {
    if (state_->runNext()) {
      if (++served % kTasksBetweenLooks == 0) g_main_context_iteration(state_->context, FALSE);
    } else if (!state_->spin.until(hasPosted)) {
      // A task that comes within microseconds finds the thread awake; now it sleeps.
      g_main_context_iteration(state_->context, TRUE);
    }
  }
}

bool MainLoop::isOwnThread() const noexcept { return std::this_thread::get_id() == state_->thread; }

}  // namespace skerrow::core
