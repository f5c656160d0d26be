#include "values/script_value.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "values/depth.h"
#include "values/fetching.h"
#include "values/shared_count.h"

namespace skerrow {

using namespace literals;

struct ScriptValue::Bytes : SharedCount {
  std::string bytes;
};

// The items of a list or the fields of a record. A few of them follow the header in
// the same allocation; where there are many, a vector does.
template <class Child>
class ScriptValue::Children : public SharedCount {
 public:
  /// Takes the children over.
  static const Children* make(std::uint32_t depth, std::span<Child> few) {
    auto* block = allocate(depth, static_cast<std::uint32_t>(few.size()), few.size_bytes());
    std::ranges::uninitialized_move(few, std::span(block->few(), few.size()));
    return block;
  }
  static const Children* make(std::uint32_t depth, std::vector<Child> children) {
    if (children.size() <= kFew) return make(depth, std::span(children));
    auto* block = allocate(depth, kMany, sizeof(std::vector<Child>));
    new (block->tail()) std::vector<Child>(std::move(children));
    return block;
  }
  static constexpr std::size_t kFew = 16;

  Children(const Children&) = delete;
  Children& operator=(const Children&) = delete;

  [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }
  [[nodiscard]] std::span<const Child> all() const noexcept {
    return const_cast<Children*>(this)->all();
  }
  [[nodiscard]] std::span<Child> all() noexcept {
    return count_ == kMany ? std::span<Child>(many()) : std::span<Child>(few(), count_);
  }
  /// The children, for whoever holds the block alone.
  [[nodiscard]] std::vector<Child> take() {
    if (count_ == kMany) return std::move(many());
    return {std::make_move_iterator(few()), std::make_move_iterator(few() + count_)};
  }

  static void destroy(const Children* shared) noexcept {
    auto* block = const_cast<Children*>(shared);
    if (block->count_ == kMany) {
      if constexpr (std::is_same_v<Child, ScriptValue>) {
        forEachFetched(block->many(), [](ScriptValue& item) { item = ScriptValue(); });
      }
      std::destroy_at(&block->many());
    } else {
      std::destroy_n(block->few(), block->count_);
    }
    block->~Children();
    ::operator delete(block);
  }

 private:
  static constexpr std::uint32_t kMany = 0xFFFFFFFF;

  Children(std::uint32_t depth, std::uint32_t count) noexcept : depth_(depth), count_(count) {}
  ~Children() = default;

  static Children* allocate(std::uint32_t depth, std::uint32_t count, std::size_t tailBytes) {
    static_assert(sizeof(Children) % alignof(std::vector<Child>) == 0);
    return new (::operator new(sizeof(Children) + tailBytes)) Children(depth, count);
  }

  [[nodiscard]] void* tail() noexcept { return this + 1; }
  [[nodiscard]] Child* few() noexcept { return std::launder(static_cast<Child*>(tail())); }
  [[nodiscard]] std::vector<Child>& many() noexcept {
    return *std::launder(static_cast<std::vector<Child>*>(tail()));
  }

  std::uint32_t depth_;
  alignas(8) std::uint32_t count_;
};

namespace {

std::uint32_t deeperBy(std::uint32_t levels, std::uint32_t deepest) {
  if (deepest + levels > kMaximumDepth) throw NestingTooDeep();
  return deepest + levels;
}

std::uint32_t depthOver(const std::vector<ScriptValue>& items) {
  std::uint32_t deepest = 0;
  for (const ScriptValue& item : items) deepest = std::max(deepest, item.depth());
  return deeperBy(1, deepest);
}

std::uint32_t depthOver(const std::vector<ScriptField>& fields) {
  std::uint32_t deepest = 0;
  for (const ScriptField& field : fields) {
    // The list of user fields is the second of a record's own levels.
    const bool isOwnLevel = field.keyword == "usrf"_code && field.value.hasItems();
    deepest = std::max(deepest, field.value.depth() - (isOwnLevel ? 1 : 0));
  }
  return deeperBy(2, deepest);
}

bool beginsLikeByteOrderMark(std::u16string_view units) {
  return !units.empty() && (units.front() == u'\uFEFF' || units.front() == u'\xFFFE');
}

}  // namespace

ScriptValue::ScriptValue() noexcept : type_("type"_code), inlineCount_(4) {
  const auto code = number("msng"_code);
  std::memcpy(inline_, &code, sizeof code);
}

ScriptValue::ScriptValue(FourCharCode type, Storage storage, const void* block) noexcept
    : type_(type), storage_(storage), shared_(block) {}

ScriptValue::ScriptValue(const ScriptValue& other) noexcept
    : type_(other.type_), storage_(other.storage_), inlineCount_(other.inlineCount_) {
  std::memcpy(inline_, other.inline_, kInlineBytes);
  retain();
}

ScriptValue::ScriptValue(ScriptValue&& other) noexcept
    : type_(other.type_), storage_(other.storage_), inlineCount_(other.inlineCount_) {
  std::memcpy(inline_, other.inline_, kInlineBytes);
  other.storage_ = Storage::inlineBytes;
  other.inlineCount_ = 0;
}

ScriptValue& ScriptValue::operator=(const ScriptValue& other) noexcept {
  return *this = ScriptValue(other);
}

ScriptValue& ScriptValue::operator=(ScriptValue&& other) noexcept {
  if (this == &other) return *this;
  release();
  type_ = other.type_;
  storage_ = std::exchange(other.storage_, Storage::inlineBytes);
  inlineCount_ = std::exchange(other.inlineCount_, std::uint8_t{0});
  std::memcpy(inline_, other.inline_, kInlineBytes);
  return *this;
}

ScriptValue::~ScriptValue() { release(); }

void ScriptValue::retain() const noexcept {
  switch (storage_) {
    case Storage::inlineBytes:
      return;
    case Storage::text:
      Text::retain(block<TextPayload>());
      return;
    case Storage::bytes:
      block<Bytes>()->retain();
      return;
    case Storage::items:
      block<Children<ScriptValue>>()->retain();
      return;
    case Storage::fields:
      block<Children<ScriptField>>()->retain();
      return;
  }
}

void ScriptValue::release() noexcept {
  switch (storage_) {
    case Storage::inlineBytes:
      return;
    case Storage::text:
      Text::release(block<TextPayload>());
      return;
    case Storage::bytes:
      if (block<Bytes>()->release()) delete block<Bytes>();
      return;
    case Storage::items:
      if (const auto* items = block<Children<ScriptValue>>(); items->release()) {
        Children<ScriptValue>::destroy(items);
      }
      return;
    case Storage::fields:
      if (const auto* fields = block<Children<ScriptField>>(); fields->release()) {
        Children<ScriptField>::destroy(fields);
      }
      return;
  }
}

ScriptValue ScriptValue::withPayload(FourCharCode type, std::string_view payload) {
  if (payload.size() > kInlineBytes) {
    return {type, Storage::bytes, new Bytes{{}, std::string(payload)}};
  }
  ScriptValue value(type, Storage::inlineBytes, nullptr);
  if (!payload.empty()) std::memcpy(value.inline_, payload.data(), payload.size());
  value.inlineCount_ = static_cast<std::uint8_t>(payload.size());
  return value;
}

ScriptValue ScriptValue::text(Text text) {
  const std::u16string_view units = text.view();
  if (beginsLikeByteOrderMark(units)) {
    // A decoder would take the first unit for a byte-order mark: put a true one before it.
    std::u16string marked(1, u'\uFEFF');
    marked += units;
    return withPayload("utxt"_code, {reinterpret_cast<const char*>(marked.data()),
                                     marked.size() * sizeof(char16_t)});
  }
  return {"utxt"_code, Storage::text, std::move(text).releasePayload()};
}

ScriptValue ScriptValue::boolean(bool value) {
  return withPayload(value ? "true"_code : "fals"_code, {});
}

ScriptValue ScriptValue::integer32(std::int32_t value) { return withPlain("long"_code, value); }

ScriptValue ScriptValue::real(double value) { return withPlain("doub"_code, value); }

ScriptValue ScriptValue::typeCode(FourCharCode code) { return withPlain("type"_code, code); }

ScriptValue ScriptValue::null() { return withPayload("null"_code, {}); }

ScriptValue ScriptValue::list(std::vector<ScriptValue> items) {
  const std::uint32_t depth = depthOver(items);
  return {"list"_code, Storage::items, Children<ScriptValue>::make(depth, std::move(items))};
}

ScriptValue ScriptValue::listTaking(std::vector<ScriptValue>& items) {
  if (items.size() > Children<ScriptValue>::kFew) return list(std::exchange(items, {}));
  ScriptValue made{"list"_code, Storage::items,
                   Children<ScriptValue>::make(depthOver(items), std::span(items))};
  items.clear();
  return made;
}

ScriptValue ScriptValue::record(FourCharCode type, std::vector<ScriptField> fields) {
  const std::uint32_t depth = depthOver(fields);
  return {type, Storage::fields, Children<ScriptField>::make(depth, std::move(fields))};
}

ScriptValue ScriptValue::recordTaking(FourCharCode type, std::vector<ScriptField>& fields) {
  if (fields.size() > Children<ScriptField>::kFew) return record(type, std::exchange(fields, {}));
  ScriptValue made{type, Storage::fields,
                   Children<ScriptField>::make(depthOver(fields), std::span(fields))};
  fields.clear();
  return made;
}

std::span<const ScriptValue> ScriptValue::items() const noexcept {
  if (storage_ != Storage::items) return {};
  return block<Children<ScriptValue>>()->all();
}

std::span<const ScriptField> ScriptValue::fields() const noexcept {
  if (storage_ != Storage::fields) return {};
  return block<Children<ScriptField>>()->all();
}

std::optional<Text> ScriptValue::heldText() const noexcept {
  if (storage_ != Storage::text) return std::nullopt;
  Text::retain(block<TextPayload>());
  return Text(block<TextPayload>());
}

std::optional<std::u16string_view> ScriptValue::heldUnits() const noexcept {
  if (storage_ != Storage::text) return std::nullopt;
  return Text::view(block<TextPayload>());
}

std::optional<Text> ScriptValue::takeText() && noexcept {
  if (storage_ != Storage::text) return std::nullopt;
  storage_ = Storage::inlineBytes;
  return Text(block<TextPayload>());
}

std::vector<ScriptValue> ScriptValue::takeItems() && {
  std::vector<ScriptValue> taken;
  if (storage_ != Storage::items) return taken;
  if (block<Children<ScriptValue>>()->isUnique()) {
    taken = ownBlock<Children<ScriptValue>>()->take();
  } else {
    taken.assign(items().begin(), items().end());
  }
  *this = ScriptValue();
  return taken;
}

std::span<ScriptValue> ScriptValue::itemsToTake(std::vector<ScriptValue>& room) {
  if (storage_ == Storage::items && block<Children<ScriptValue>>()->isUnique()) {
    return ownBlock<Children<ScriptValue>>()->all();
  }
  room.assign(items().begin(), items().end());
  return room;
}

std::span<ScriptField> ScriptValue::fieldsToTake(std::vector<ScriptField>& room) {
  if (storage_ == Storage::fields && block<Children<ScriptField>>()->isUnique()) {
    return ownBlock<Children<ScriptField>>()->all();
  }
  room.assign(fields().begin(), fields().end());
  return room;
}

std::string_view ScriptValue::payload() const noexcept {
  switch (storage_) {
    case Storage::inlineBytes:
      return {inline_, inlineCount_};
    case Storage::bytes:
      return block<Bytes>()->bytes;
    case Storage::text: {
      const std::u16string_view units = Text::view(block<TextPayload>());
      return {reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t)};
    }
    default:
      return {};
  }
}

std::optional<FourCharCode> ScriptValue::namedCode() const noexcept {
  if (type_ != "type"_code) return std::nullopt;
  return plain<FourCharCode>();
}

bool ScriptValue::isMissingValue() const noexcept { return namedCode() == "msng"_code; }

std::uint32_t ScriptValue::depth() const noexcept {
  switch (storage_) {
    case Storage::items:
      return block<Children<ScriptValue>>()->depth();
    case Storage::fields:
      return block<Children<ScriptField>>()->depth();
    default:
      return 0;
  }
}

bool operator==(const ScriptValue& a, const ScriptValue& b) noexcept {
  return a.type_ == b.type_ && a.hasItems() == b.hasItems() && a.hasFields() == b.hasFields() &&
         a.payload() == b.payload() && std::ranges::equal(a.items(), b.items()) &&
         std::ranges::equal(a.fields(), b.fields());
}

}  // namespace skerrow
