#pragma once
// CancelToken: tells work that nobody waits for its result any more. The side
// that waits cancels; the work looks now and then and stops by throwing.

#include <atomic>
#include <memory>

namespace skerrow::core {

/// Thrown by work that found itself cancelled. Nobody is left to hear of it.
struct Cancelled {};

class CancelToken {
 public:
  void cancel() const noexcept { flag_->store(true, std::memory_order_relaxed); }
  [[nodiscard]] bool isCancelled() const noexcept { return flag_->load(std::memory_order_relaxed); }
  void throwIfCancelled() const {
    if (isCancelled()) throw Cancelled{};
  }

 private:
  std::shared_ptr<std::atomic<bool>> flag_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace skerrow::core
