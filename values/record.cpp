#include "values/record.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace skerrow {

Record::Record(std::initializer_list<Entry> entries) {
  for (const Entry& entry : entries) set(entry.key, entry.value);
}

Record::Record(Keys keys, std::vector<Value> values) noexcept
    : keys_(std::move(keys)), values_(std::move(values)) {
  assert(keys_.count() == values_.size());
}

void Record::set(Value key, Value value) {
  if (const std::size_t position = keys_.position(key); position != Keys::kNone) {
    values_[position] = std::move(value);
    return;
  }
  values_.push_back(std::move(value));
  keys_.append(std::move(key));
}

const Value* Record::find(const Value& key) const {
  const std::size_t position = keys_.position(key);
  return position == Keys::kNone ? nullptr : &values_[position];
}

bool operator==(const Record& a, const Record& b) {
  if (a.keys_.areShared(b.keys_)) return std::ranges::equal(a.values_, b.values_);
  return a.fieldCount() == b.fieldCount() &&
         std::ranges::all_of(a.fields(), [&b](const Record::Field& field) {
           const Value* other = b.find(field.key);
           return other != nullptr && *other == field.value;
         });
}

}  // namespace skerrow
