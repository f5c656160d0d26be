#pragma once
// Locked: data that several threads share, reachable only while its lock is held.
// What waits for a change of the data waits through the same guard.

#include <condition_variable>
#include <mutex>
#include <utility>

namespace skerrow::work {

template <class Data>
class Locked {
 public:
  /// Holds the lock for as long as it lives, and gives the data.
  class Access {
   public:
    explicit Access(Locked& locked) : lock_(locked.mutex_), data_(locked.data_) {}

    Data* operator->() noexcept { return &data_; }
    Data& operator*() noexcept { return data_; }

    /// Gives the lock up until the condition holds; somebody notifies after each change.
    template <class Condition>
    void wait(std::condition_variable& changed, Condition&& holds) {
      changed.wait(lock_, [&] { return holds(data_); });
    }
    /// The same, but not for longer than a while; whether the condition holds.
    template <class Duration, class Condition>
    bool waitFor(std::condition_variable& changed, Duration atMost, Condition&& holds) {
      return changed.wait_for(lock_, atMost, [&] { return holds(data_); });
    }
    /// Gives the lock up before the end.
    void unlock() { lock_.unlock(); }
    /// Takes it again.
    void lock() { lock_.lock(); }

   private:
    std::unique_lock<std::mutex> lock_;
    Data& data_;
  };

  Locked() = default;
  explicit Locked(Data data) : data_(std::move(data)) {}
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  ~Locked() = default;

  [[nodiscard]] Access access() { return Access(*this); }

 private:
  std::mutex mutex_;
  Data data_{};
};

}  // namespace skerrow::work
