#include "values/keys.h"

#include <algorithm>

#include "values/value_index.h"

namespace skerrow {

namespace {

// Up to here comparing keys one by one beats hashing them.
constexpr std::size_t kFewKeys = 12;

}  // namespace

Keys::Block::Block() = default;
Keys::Block::~Block() = default;

Keys::Block::Block(const Block& other)
    : SharedCount(),
      depth(other.depth),
      keys(other.keys),
      index(other.index ? std::make_unique<ValueIndex>(*other.index) : nullptr) {}

void Keys::Block::append(Value key) {
  depth = std::max(depth, key.depth());
  keys.push_back(std::move(key));
  if (index) {
    index->insert(keys.back(), keys.size() - 1);
  } else if (keys.size() > kFewKeys) {
    index = std::make_unique<ValueIndex>();
    for (std::size_t i = 0; i < keys.size(); ++i) index->insert(keys[i], i);
  }
}

void Keys::append(Value key) {
  if (block_ == nullptr) {
    block_ = new Block;
  } else if (!block_->isUnique()) {
    Keys own;
    own.block_ = new Block(*block_);
    *this = std::move(own);
  }
  const_cast<Block*>(block_)->append(std::move(key));  // nobody else sees it
}

std::size_t Keys::position(const Value& key) const {
  if (block_ == nullptr) return kNone;
  const std::vector<Value>& keys = block_->keys;
  if (block_->index) {
    return block_->index->find(key, [&keys](std::size_t i) -> const Value& { return keys[i]; });
  }
  auto found = keys.begin();
  if (key.isText()) {
    const std::u16string_view units = key.text();
    found = std::ranges::find_if(keys, [units](const Value& one) {
      return one.isText() && haveSameUnits(one.text(), units);
    });
  } else {
    found = std::ranges::find(keys, key);
  }
  return found == keys.end() ? kNone : static_cast<std::size_t>(found - keys.begin());
}

}  // namespace skerrow
