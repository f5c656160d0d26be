#pragma once
// OperationQueue: where one command's task runs. Every command has a queue of its own;
// all queues draw their threads from the same workers.

#include <stop_token>
#include <utility>

#include "core/workers.h"

namespace skerrow::core {

class OperationQueue {
 public:
  explicit OperationQueue(Workers& workers) noexcept : workers_(workers) {}

  /// Runs the operation on a worker thread as soon as there is one. `stop` says when nobody
  /// waits for it any more.
  void addOperation(Operation operation, std::stop_token stop = {}) {
    workers_.run(std::move(operation), std::move(stop));
  }

 private:
  Workers& workers_;
};

}  // namespace skerrow::core
