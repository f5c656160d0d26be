#pragma once
// ItemSource: a command's result that is a list, made item by item on the thread that
// asks for them. It may fail in the course of it, by throwing as a task does.

#include <optional>

#include "values/value.h"

namespace skerrow::core {

class ItemSource {
 public:
  ItemSource() = default;
  ItemSource(const ItemSource&) = delete;
  ItemSource& operator=(const ItemSource&) = delete;
  virtual ~ItemSource() = default;

  /// The next item, or nothing at the end.
  virtual std::optional<Value> next() = 0;
};

}  // namespace skerrow::core
