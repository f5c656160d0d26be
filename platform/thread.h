#pragma once
// Thread: a thread whose stack has a size that the program sets. The system's own
// default depends on how the program was started, down to 2 MB, and values nest so
// deep that walking them needs more.

#include <pthread.h>

#include <functional>
#include <optional>
#include <utility>

namespace skerrow::platform {

class Thread {
 public:
  /// Runs what it is given, which must not throw. Throws std::system_error when the system
  /// gives no thread.
  explicit Thread(std::function<void()> run);
  Thread(Thread&& other) noexcept : thread_(std::exchange(other.thread_, std::nullopt)) {}
  Thread& operator=(Thread&&) = delete;
  /// Waits for its end, unless it was joined or detached.
  ~Thread();

  void join();
  /// Lets it go on by itself.
  void detach();

 private:
  std::optional<pthread_t> thread_;
};

}  // namespace skerrow::platform
