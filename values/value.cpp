#include "values/value.h"

#include <algorithm>
#include <utility>

#include "values/depth.h"
#include "values/hash.h"
#include "values/record.h"
#include "values/script_value.h"
#include "values/shared_count.h"

namespace skerrow {

struct Value::ListBlock : SharedCount {
  std::uint32_t depth = 0;
  std::vector<Value> items;
};

struct Value::RecordBlock : SharedCount {
  std::uint32_t depth = 0;
  Record record;
};

template <class Content>
struct Value::Block : SharedCount {
  Content content;
};

namespace {

std::size_t hashOf(std::string_view bytes) { return hashOfBytes(bytes.data(), bytes.size()); }

}  // namespace

Value::Value(Number number) noexcept : kind_(Kind::number), numberKind_(number.kind_) {
  if (number.kind_ == NumberKind::real) {
    real_ = number.real_;
  } else if (number.kind_ == NumberKind::unsigned64) {
    unsigned_ = number.unsigned_;
  } else {
    signed_ = number.signed_;
  }
}

Value::Value(Date date) noexcept : kind_(Kind::date), real_(date.seconds) {}

Value::Value(Text text) noexcept : kind_(Kind::text), shared_(std::move(text).releasePayload()) {}

Value::Value(std::u16string_view text) : Value(Text(text)) {}

Value::Value(const char16_t* text) : Value(std::u16string_view(text)) {}

Value::Value(std::u16string&& text) : Value(Text(std::move(text))) {}

Value::Value(Url url) : kind_(Kind::url), shared_(new Block<Url>{{}, std::move(url)}) {}

Value::Value(std::vector<Value> items) : kind_(Kind::list) {
  std::uint32_t deepest = 0;
  for (const Value& item : items) deepest = std::max(deepest, item.depth());
  shared_ = new ListBlock{{}, deeperBy(1, deepest), std::move(items)};
}

Value::Value(Record record) : kind_(Kind::record) {
  std::uint32_t deepest = record.keys().depth();
  for (const Value& value : record.values()) deepest = std::max(deepest, value.depth());
  shared_ = new RecordBlock{{}, deeperBy(2, deepest), std::move(record)};
}

Value::Value(ScriptValue raw)
    : kind_(Kind::raw), shared_(new Block<ScriptValue>{{}, std::move(raw)}) {}

Value::Value(ErrorObject error)
    : kind_(Kind::error), shared_(new Block<ErrorObject>{{}, std::move(error)}) {}

Value::Value(OpaqueObject object)
    : kind_(Kind::opaque), shared_(new Block<OpaqueObject>{{}, std::move(object)}) {}

Value Value::data(std::string bytes) {
  Value value;
  value.shared_ = new Block<std::string>{{}, std::move(bytes)};
  value.kind_ = Kind::data;
  return value;
}

template <class Visitor>
void Value::withBlock(Visitor&& visitor) const noexcept {
  switch (kind_) {
    case Kind::null:
    case Kind::number:
    case Kind::date:
    case Kind::text:  // shared with ScriptValue, kept by Text
      return;
    case Kind::url:
      return visitor(block<Block<Url>>());
    case Kind::list:
      return visitor(block<ListBlock>());
    case Kind::record:
      return visitor(block<RecordBlock>());
    case Kind::data:
      return visitor(block<Block<std::string>>());
    case Kind::raw:
      return visitor(block<Block<ScriptValue>>());
    case Kind::error:
      return visitor(block<Block<ErrorObject>>());
    case Kind::opaque:
      return visitor(block<Block<OpaqueObject>>());
  }
}

void Value::retain() const noexcept {
  if (kind_ == Kind::text) return Text::retain(block<TextPayload>());
  withBlock([](const auto* shared) { shared->retain(); });
}

void Value::release() noexcept {
  if (kind_ == Kind::text) return Text::release(block<TextPayload>());
  withBlock([](const auto* shared) {
    if (shared->release()) delete shared;
  });
}

Value::Value(const Value& other) noexcept
    : kind_(other.kind_), numberKind_(other.numberKind_), signed_(other.signed_) {
  retain();
}

Number Value::number() const noexcept {
  if (numberKind_ == NumberKind::real) return Number::real(real_);
  if (numberKind_ == NumberKind::unsigned64) return Number::unsigned64(unsigned_);
  return {numberKind_, signed_};
}

Date Value::date() const noexcept { return {real_}; }

Text Value::sharedText() const noexcept {
  Text::retain(block<TextPayload>());
  return Text(block<TextPayload>());
}

const Url& Value::url() const noexcept { return block<Block<Url>>()->content; }

std::span<const Value> Value::items() const noexcept { return block<ListBlock>()->items; }

const Record& Value::record() const noexcept { return block<RecordBlock>()->record; }

const std::string& Value::data() const noexcept { return block<Block<std::string>>()->content; }

const ScriptValue& Value::raw() const noexcept { return block<Block<ScriptValue>>()->content; }

const ErrorObject& Value::error() const noexcept { return block<Block<ErrorObject>>()->content; }

const OpaqueObject& Value::opaque() const noexcept { return block<Block<OpaqueObject>>()->content; }

Text Value::takeText() && noexcept {
  kind_ = Kind::null;
  return Text(block<TextPayload>());
}

std::vector<Value> Value::takeItems() && {
  std::vector<Value> items;
  if (block<ListBlock>()->isUnique()) {
    // Nobody else sees the block, and it goes with this value.
    items = std::move(const_cast<ListBlock*>(block<ListBlock>())->items);
  } else {
    items = block<ListBlock>()->items;
  }
  *this = Value();
  return items;
}

Record Value::takeRecord() && {
  Record record;
  if (block<RecordBlock>()->isUnique()) {
    record = std::move(const_cast<RecordBlock*>(block<RecordBlock>())->record);
  } else {
    record = block<RecordBlock>()->record;
  }
  *this = Value();
  return record;
}

std::uint32_t Value::depth() const noexcept {
  switch (kind_) {
    case Kind::list:
      return block<ListBlock>()->depth;
    case Kind::record:
      return block<RecordBlock>()->depth;
    case Kind::raw:
      return raw().depth();
    default:
      return 0;
  }
}

bool operator==(const Value& a, const Value& b) {
  if (a.kind_ != b.kind_) return false;
  switch (a.kind_) {
    case Kind::null:
      return true;
    case Kind::number:
      return a.number() == b.number();
    case Kind::date:
      return Number::real(a.real_) == Number::real(b.real_);
    case Kind::text:
      return a.shared_ == b.shared_ || haveSameUnits(a.text(), b.text());
    default:
      break;
  }
  if (a.shared_ == b.shared_) return true;
  switch (a.kind_) {
    case Kind::url:
      return a.url().absoluteString == b.url().absoluteString;
    case Kind::list:
      return std::ranges::equal(a.items(), b.items());
    case Kind::record:
      return a.record() == b.record();
    case Kind::data:
      return a.data() == b.data();
    case Kind::raw:
      return a.raw() == b.raw();
    case Kind::error:
      return a.error().localizedDescription == b.error().localizedDescription;
    default:
      return false;  // an opaque object equals only itself
  }
}

std::size_t Value::hash() const noexcept {
  const auto kindNumber = static_cast<std::size_t>(kind_);
  switch (kind_) {
    case Kind::null:
      return kindNumber;
    case Kind::number:
      return number().hash();
    case Kind::date:
      return mixedHash(kindNumber, Number::real(real_).hash());
    case Kind::text:
      return hashOfUnits(text());
    case Kind::url:
      return mixedHash(kindNumber, hashOf(url().absoluteString));
    case Kind::list: {
      std::size_t hash = kindNumber;
      for (const Value& item : items()) hash = mixedHash(hash, item.hash());
      return hash;
    }
    case Kind::record: {
      std::size_t hash = kindNumber;  // a sum, as equality does not see the order
      for (const Record::Field& field : record().fields()) {
        hash += mixedHash(field.key.hash(), field.value.hash());
      }
      return hash;
    }
    case Kind::data:
      return mixedHash(kindNumber, hashOf(data()));
    case Kind::raw:
      return mixedHash(skerrow::number(raw().type()), hashOf(raw().payload()));
    case Kind::error:
      return mixedHash(kindNumber, hashOf(error().localizedDescription));
    case Kind::opaque:
      return mixedHash(kindNumber, reinterpret_cast<std::uintptr_t>(shared_));
  }
  return kindNumber;
}

}  // namespace skerrow
