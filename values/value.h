#pragma once
// Value: what commands compute with. A kind and a number or one shared,
// immutable payload, two words wide, so lists of small values are one block
// and copies cost a count. Lists and records never nest deeper than
// kMaximumDepth. Safe to copy and read on any thread.
//
// Equality is by content within a kind: numbers by numeric value, text unit by
// unit, lists item by item, records key by key whatever their order. Values of
// different kinds are never equal, and equal values have equal hashes.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "values/number.h"
#include "values/text.h"

namespace skerrow {

class Record;
class ScriptValue;

/// An absolute time: seconds since 1 January 2001 00:00:00, no time zone.
struct Date {
  double seconds = 0;
};

/// A URL as its absolute string, kept as given.
struct Url {
  std::string absoluteString;
};

/// A failure that a lower layer hands on as a value.
struct ErrorObject {
  std::string localizedDescription;
};

/// An object of the program that has no counterpart in scripts.
struct OpaqueObject {
  std::string description;
};

enum class Kind : std::uint8_t {
  null,  ///< "missing value" and its relatives
  number,
  date,
  text,
  url,
  list,
  record,
  data,  ///< raw bytes
  raw,   ///< a ScriptValue left as it came
  error,
  opaque,
};

class Value {
 public:
  Value() noexcept = default;  ///< null
  Value(Number number) noexcept;
  Value(Date date) noexcept;
  Value(Text text) noexcept;
  Value(std::u16string_view text);
  Value(const char16_t* text);
  Value(std::u16string&& text);
  Value(Url url);
  Value(std::vector<Value> items);  ///< throws NestingTooDeep
  Value(Record record);             ///< throws NestingTooDeep
  Value(ScriptValue raw);
  Value(ErrorObject error);
  Value(OpaqueObject object);
  static Value data(std::string bytes);
  // No other pointer, and so no bare bool, is a value; say Number::boolean.
  Value(const void*) = delete;

  Value(const Value& other) noexcept;
  Value(Value&& other) noexcept
      : kind_(std::exchange(other.kind_, Kind::null)),
        numberKind_(other.numberKind_),
        signed_(other.signed_) {}
  Value& operator=(const Value& other) noexcept { return *this = Value(other); }
  Value& operator=(Value&& other) noexcept {
    Value taken(std::move(other));
    std::swap(kind_, taken.kind_);
    std::swap(numberKind_, taken.numberKind_);
    std::swap(signed_, taken.signed_);
    return *this;
  }
  ~Value() {
    if (isShared()) release();
  }

  [[nodiscard]] Kind kind() const noexcept { return kind_; }
  [[nodiscard]] bool isNull() const noexcept { return kind_ == Kind::null; }
  [[nodiscard]] bool isNumber() const noexcept { return kind_ == Kind::number; }
  [[nodiscard]] bool isText() const noexcept { return kind_ == Kind::text; }
  [[nodiscard]] bool isList() const noexcept { return kind_ == Kind::list; }
  [[nodiscard]] bool isRecord() const noexcept { return kind_ == Kind::record; }
  [[nodiscard]] bool isRaw() const noexcept { return kind_ == Kind::raw; }

  // Each of these needs the kind it names. Views and references are valid as
  // long as any copy of the value lives.
  [[nodiscard]] Number number() const noexcept;
  [[nodiscard]] Date date() const noexcept;
  [[nodiscard]] std::u16string_view text() const noexcept {
    return Text::view(static_cast<const TextPayload*>(shared_));
  }
  [[nodiscard]] Text sharedText() const noexcept;
  [[nodiscard]] const Url& url() const noexcept;
  [[nodiscard]] std::span<const Value> items() const noexcept;
  [[nodiscard]] const Record& record() const noexcept;
  [[nodiscard]] const std::string& data() const noexcept;
  [[nodiscard]] const ScriptValue& raw() const noexcept;
  [[nodiscard]] const ErrorObject& error() const noexcept;
  [[nodiscard]] const OpaqueObject& opaque() const noexcept;

  /// The text, handed over.
  [[nodiscard]] Text takeText() && noexcept;
  /// The items of a list to change at will, handed over where nobody else has
  /// them, else copied.
  [[nodiscard]] std::vector<Value> takeItems() &&;
  /// A record to change at will, likewise.
  [[nodiscard]] Record takeRecord() &&;

  /// 0 for a plain value, 1 more than the deepest item for a list, 2 more for a
  /// record (its fields lie in a list when it crosses the scripting boundary).
  [[nodiscard]] std::uint32_t depth() const noexcept;

  friend bool operator==(const Value& a, const Value& b);
  [[nodiscard]] std::size_t hash() const noexcept;
  /// Tells the processor that this value's content is about to be looked at.
  void prefetch() const noexcept {
    if (isShared()) __builtin_prefetch(shared_);
  }

 private:
  struct ListBlock;
  struct RecordBlock;
  template <class Content>
  struct Block;

  template <class BlockType>
  [[nodiscard]] const BlockType* block() const noexcept {
    return static_cast<const BlockType*>(shared_);
  }
  // The plain kinds come first.
  [[nodiscard]] bool isShared() const noexcept { return kind_ >= Kind::text; }
  void retain() const noexcept;
  void release() noexcept;
  template <class Visitor>
  void withBlock(Visitor&& visitor) const noexcept;

  Kind kind_ = Kind::null;
  NumberKind numberKind_ = NumberKind::boolean;
  union {
    std::int64_t signed_ = 0;
    std::uint64_t unsigned_;
    double real_;
    const void* shared_;
  };
};

}  // namespace skerrow
