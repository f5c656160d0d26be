#pragma once
// Record: keys and their values in stored order. Keys are text as a rule; a
// label that is no text, or a key that is a raw value, is kept as it is. Records
// that have the same keys can share them.

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

#include "values/keys.h"
#include "values/value.h"

namespace skerrow {

class Record {
 public:
  /// A field to begin with.
  struct Entry {
    Value key;
    Value value;
  };
  /// A field as it lies in a record.
  struct Field {
    const Value& key;
    const Value& value;
  };
  class Fields;

  Record() noexcept = default;
  Record(std::initializer_list<Entry> entries);
  /// Keys with as many values.
  Record(Keys keys, std::vector<Value> values) noexcept;

  /// Makes room for the values of so many fields.
  void reserve(std::size_t fieldCount) { values_.reserve(fieldCount); }

  /// Stores a value under a key; a key that is there keeps its place.
  void set(Value key, Value value);

  /// The value under a key, or null when the record has none.
  [[nodiscard]] const Value* find(const Value& key) const;

  [[nodiscard]] Fields fields() const noexcept;
  [[nodiscard]] const Keys& keys() const noexcept { return keys_; }
  [[nodiscard]] std::span<const Value> values() const noexcept { return values_; }
  [[nodiscard]] std::size_t fieldCount() const noexcept { return values_.size(); }
  [[nodiscard]] bool isEmpty() const noexcept { return values_.empty(); }

  /// The values to change at will, handed over.
  [[nodiscard]] std::vector<Value> takeValues() && noexcept {
    keys_ = Keys();
    return std::move(values_);
  }

  /// The same keys with equal values, in any order.
  friend bool operator==(const Record& a, const Record& b);

 private:
  Keys keys_;
  std::vector<Value> values_;  // by the position of their key
};

/// The fields of a record, valid as long as it stays as it is.
class Record::Fields {
 public:
  class Iterator {
   public:
    using value_type = Field;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::input_iterator_tag;

    Iterator() noexcept = default;
    Iterator(const Value* key, const Value* value) noexcept : key_(key), value_(value) {}

    Field operator*() const noexcept { return {*key_, *value_}; }
    Iterator& operator++() noexcept {
      ++key_;
      ++value_;
      return *this;
    }
    Iterator operator++(int) noexcept { return std::exchange(*this, {key_ + 1, value_ + 1}); }
    friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
      return a.value_ == b.value_;
    }

   private:
    const Value* key_ = nullptr;
    const Value* value_ = nullptr;
  };

  explicit Fields(const Record& record) noexcept
      : keys_(record.keys_.all()), values_(record.values_) {}

  [[nodiscard]] Iterator begin() const noexcept { return {keys_.data(), values_.data()}; }
  [[nodiscard]] Iterator end() const noexcept {
    return {keys_.data() + keys_.size(), values_.data() + values_.size()};
  }
  [[nodiscard]] std::size_t size() const noexcept { return values_.size(); }
  Field operator[](std::size_t i) const noexcept { return {keys_[i], values_[i]}; }

 private:
  std::span<const Value> keys_;
  std::span<const Value> values_;
};

inline Record::Fields Record::fields() const noexcept { return Fields(*this); }

}  // namespace skerrow
