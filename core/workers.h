#pragma once
// Workers: threads that take operations off the main thread. Who they are differs: a
// pool that serves everybody, or the very thread that waits for the answer.

#include <functional>
#include <stop_token>

namespace skerrow::core {

using Operation = std::function<void()>;

class Workers {
 public:
  Workers() = default;
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  virtual ~Workers() = default;

  /// Hands over an operation, which must not throw. Once `stop` is asked for, the operation
  /// keeps no thread from the others, however long it goes on. Callable on any thread.
  virtual void run(Operation operation, std::stop_token stop) = 0;
  void run(Operation operation) { run(std::move(operation), std::stop_token()); }
};

}  // namespace skerrow::core
