#pragma once
// KeyPath: keys separated by full stops, looked up one in what the other found,
// as the platform's guide to key-value coding describes. Compiled once, safe to
// use on several threads.
//
//   KeyPath(u"owner.name").valueIn(record)          the label "name" of what "owner" names
//   KeyPath(u"name").valueIn(listOfRecords)         a list: the name of each
//   KeyPath(u"items.@sum.price").valueIn(record)    the sum over the items
//
// On a record a key names a label; an absent label gives null. On a list the rest
// of the path is applied to every item and the results form a list, null where an
// item has none. A null gives null. On anything else a key fails, except "self",
// which gives the value that it is asked of.
//
// Collection operators: what stands before one names the list, what stands behind
// it is looked up in each item. @count (also of a record), @sum, @avg, @min, @max;
// @unionOfObjects, @distinctUnionOfObjects; @unionOfArrays, @distinctUnionOfArrays
// and the forms for sets, which lists stand for here, over a list of lists. All but
// @count need a key behind them. An absent label counts as null: a union of items
// keeps it, a sum and an average take it as 0, a least and greatest item pass it by.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/key_path/step_budget.h"
#include "values/depth.h"
#include "values/value.h"

namespace skerrow::foundation {

/// A key path that cannot be followed. The reason is a sentence for a person and
/// names the key.
class KeyPathError : public std::runtime_error {
 public:
  explicit KeyPathError(const std::string& reason) : std::runtime_error(reason) {}

  [[nodiscard]] std::string reason() const { return what(); }
};

class KeyPath {
 public:
  /// Longer paths are refused; no value nests as deep.
  static constexpr std::size_t kMaximumKeys = kMaximumDepth;

  /// Whether texts answer the keys by which the platform's texts tell about
  /// themselves: length (UTF-16 units), uppercaseString, lowercaseString, intValue,
  /// integerValue, longLongValue, floatValue, doubleValue and boolValue.
  enum class TextKeys : std::uint8_t { none, published };

  /// Throws KeyPathError for an operator without its key and for too many keys.
  explicit KeyPath(std::u16string_view path, TextKeys textKeys = TextKeys::none);

  /// The value found, which may be null. Throws KeyPathError, and as `find` does.
  [[nodiscard]] Value valueIn(const Value& item, StepBudget steps = StepBudget()) const;

  /// The same without a reason: no pointer where the lookup fails. The value found
  /// lies in `item` or in `room`. Throws TooManySteps and what the budget's look throws.
  [[nodiscard]] const Value* find(const Value& item, Value& room, StepBudget& steps) const;

 private:
  enum class Operator : std::uint8_t;

  struct Key {
    Value name;  // a text
    Operator collectionOperator;
    bool isSelf;
  };

  // What went wrong, put into words only where somebody reads them.
  struct Failure;
  struct Walk;

  [[nodiscard]] const Value* follow(std::size_t index, const Value& from, Value& room,
                                    Walk& walk) const;
  [[nodiscard]] bool followItems(std::size_t index, const Value& list, Value& into,
                                 Walk& walk) const;
  [[nodiscard]] bool lookUp(const Key& key, const Value& from, Value& into, Walk& walk) const;
  [[nodiscard]] bool lookUpInText(const Key& key, const Value& text, Value& into) const;
  [[nodiscard]] bool apply(std::size_t index, const Value& from, Value& into, Walk& walk) const;
  [[nodiscard]] bool applyUnion(std::size_t index, std::vector<Value> found, Value& into,
                                Walk& walk) const;
  [[nodiscard]] std::string describe(const Failure& failure) const;

  static Operator operatorNamed(std::u16string_view key);

  std::vector<Key> keys_;
  TextKeys textKeys_;
};

}  // namespace skerrow::foundation
