#pragma once
// Keys: the keys of a record in stored order, each once. All records that have
// the same keys can share them: a handle is one pointer wide, and a copy costs a
// count. Looking a key up is linear for a few keys and constant for many. Safe to
// copy and read on any thread.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "values/shared_count.h"
#include "values/value.h"

namespace skerrow {

class ValueIndex;

class Keys {
 public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Keys() noexcept = default;
  Keys(const Keys& other) noexcept : block_(other.block_) {
    if (block_ != nullptr) block_->retain();
  }
  Keys(Keys&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
  Keys& operator=(Keys other) noexcept {
    std::swap(block_, other.block_);
    return *this;
  }
  ~Keys() {
    if (block_ != nullptr && block_->release()) delete block_;
  }

  /// Adds a key, which must not be here yet. Copies made before keep their own.
  void append(Value key);

  /// Valid until this handle grows or goes.
  [[nodiscard]] std::span<const Value> all() const noexcept {
    return block_ == nullptr ? std::span<const Value>() : std::span(block_->keys);
  }
  [[nodiscard]] std::size_t count() const noexcept { return all().size(); }
  [[nodiscard]] const Value& operator[](std::size_t position) const noexcept {
    return all()[position];
  }
  /// Where a key stands, or kNone.
  [[nodiscard]] std::size_t position(const Value& key) const;
  /// Of the deepest key.
  [[nodiscard]] std::uint32_t depth() const noexcept {
    return block_ == nullptr ? 0 : block_->depth;
  }
  /// Whether both are copies of one.
  [[nodiscard]] bool areShared(const Keys& other) const noexcept { return block_ == other.block_; }

 private:
  struct Block : SharedCount {
    Block();
    Block(const Block& other);
    Block& operator=(const Block&) = delete;
    ~Block();
    void append(Value key);

    std::uint32_t depth = 0;
    std::vector<Value> keys;
    std::unique_ptr<ValueIndex> index;  // only once there are many keys
  };

  const Block* block_ = nullptr;  // none while there are no keys
};

}  // namespace skerrow
