#pragma once
// Record: keys and their values in stored order. Keys are text as a rule; a
// label that is no text, or a key that is a raw value, is kept as it is. Looking
// a key up is linear for a few fields and constant for many.

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "values/value.h"

namespace skerrow {

class ValueIndex;

class Record {
 public:
  struct Field {
    Value key;
    Value value;
  };

  Record();
  Record(std::initializer_list<Field> fields);
  Record(const Record& other);
  Record(Record&& other) noexcept;
  Record& operator=(Record other) noexcept;
  ~Record();

  /// Makes room for so many fields.
  void reserve(std::size_t fieldCount) { fields_.reserve(fieldCount); }

  /// Stores a value under a key; a key that is there keeps its place.
  void set(Value key, Value value);

  /// The value under a key, or null when the record has none.
  [[nodiscard]] const Value* find(const Value& key) const;

  [[nodiscard]] std::span<const Field> fields() const noexcept { return fields_; }
  [[nodiscard]] std::size_t fieldCount() const noexcept { return fields_.size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return fields_.empty(); }

  /// The same keys with equal values, in any order.
  friend bool operator==(const Record& a, const Record& b);

 private:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  [[nodiscard]] std::size_t positionOf(const Value& key) const;

  std::vector<Field> fields_;
  std::unique_ptr<ValueIndex> index_;  // only once there are many fields
};

}  // namespace skerrow
