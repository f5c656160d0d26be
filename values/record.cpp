#include "values/record.h"

#include <algorithm>
#include <utility>

#include "values/value_index.h"

namespace skerrow {

namespace {

// Up to here comparing keys one by one beats hashing them.
constexpr std::size_t kFewFields = 12;

}  // namespace

Record::Record() = default;
Record::Record(Record&& other) noexcept = default;
Record::~Record() = default;

Record::Record(const Record& other)
    : fields_(other.fields_),
      index_(other.index_ ? std::make_unique<ValueIndex>(*other.index_) : nullptr) {}

Record::Record(std::initializer_list<Field> fields) {
  for (const Field& field : fields) set(field.key, field.value);
}

Record& Record::operator=(Record other) noexcept {
  fields_.swap(other.fields_);
  index_.swap(other.index_);
  return *this;
}

void Record::set(Value key, Value value) {
  if (const std::size_t position = positionOf(key); position != kNone) {
    fields_[position].value = std::move(value);
    return;
  }
  fields_.push_back({std::move(key), std::move(value)});
  if (index_) {
    index_->insert(fields_.back().key, fields_.size() - 1);
  } else if (fields_.size() > kFewFields) {
    index_ = std::make_unique<ValueIndex>();
    for (std::size_t i = 0; i < fields_.size(); ++i) index_->insert(fields_[i].key, i);
  }
}

const Value* Record::find(const Value& key) const {
  const std::size_t position = positionOf(key);
  return position == kNone ? nullptr : &fields_[position].value;
}

std::size_t Record::positionOf(const Value& key) const {
  if (index_) {
    return index_->find(key, [this](std::size_t i) -> const Value& { return fields_[i].key; });
  }
  const auto found = std::ranges::find(fields_, key, &Field::key);
  return found == fields_.end() ? kNone : static_cast<std::size_t>(found - fields_.begin());
}

bool operator==(const Record& a, const Record& b) {
  return a.fieldCount() == b.fieldCount() &&
         std::ranges::all_of(a.fields_, [&b](const Record::Field& field) {
           const Value* other = b.find(field.key);
           return other != nullptr && *other == field.value;
         });
}

}  // namespace skerrow
