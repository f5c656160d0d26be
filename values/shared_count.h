#pragma once
// Reference counting for the immutable payloads of the value types. A payload
// begins with its count, is never changed while shared, and may be released on
// any thread.

#include <atomic>
#include <cstdint>

namespace skerrow {

/// The first base of every shared payload.
struct SharedCount {
  mutable std::atomic<std::uint32_t> owners{1};

  void retain() const noexcept { owners.fetch_add(1, std::memory_order_relaxed); }

  /// True when the caller was the last owner and must destroy the payload.
  [[nodiscard]] bool release() const noexcept {
    // The only owner need not tell anybody.
    return isUnique() || owners.fetch_sub(1, std::memory_order_acq_rel) == 1;
  }

  /// True while the caller is the only owner, so that the payload may be taken apart.
  [[nodiscard]] bool isUnique() const noexcept {
    return owners.load(std::memory_order_acquire) == 1;
  }
};

}  // namespace skerrow
