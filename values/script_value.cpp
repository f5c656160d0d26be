#include "values/script_value.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

#include "values/depth.h"
#include "values/keys.h"
#include "values/object_reference.h"
#include "values/prefetching.h"
#include "values/shared_count.h"
#include "values/value.h"

namespace skerrow {

using namespace literals;

struct ScriptValue::Bytes : SharedCount {
  std::string bytes;
};

struct ScriptValue::Reference : SharedCount {
  std::shared_ptr<const ObjectReference> object;
};

// A few items follow the header in the same allocation; where there are many, a
// vector does.
class ScriptValue::Items : public SharedCount {
 public:
  /// Takes the items over.
  static const Items* make(std::uint32_t depth, std::span<ScriptValue> few) {
    auto* block = allocate(depth, static_cast<std::uint32_t>(few.size()), few.size_bytes());
    std::uninitialized_move(few.begin(), few.end(), static_cast<ScriptValue*>(block->tail()));
    return block;
  }
  static const Items* make(std::uint32_t depth, std::vector<ScriptValue> items) {
    if (items.size() <= kFew) return make(depth, std::span(items));
    auto* block = allocate(depth, kMany, sizeof(std::vector<ScriptValue>));
    new (block->tail()) std::vector<ScriptValue>(std::move(items));
    return block;
  }
  static constexpr std::size_t kFew = 16;

  Items(const Items&) = delete;
  Items& operator=(const Items&) = delete;

  [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }
  [[nodiscard]] std::span<const ScriptValue> all() const noexcept {
    return const_cast<Items*>(this)->all();
  }
  [[nodiscard]] std::span<ScriptValue> all() noexcept {
    return count_ == kMany ? std::span<ScriptValue>(many()) : std::span<ScriptValue>(few(), count_);
  }
  /// The items, for whoever holds the block alone.
  [[nodiscard]] std::vector<ScriptValue> take() {
    if (count_ == kMany) return std::move(many());
    return {std::make_move_iterator(few()), std::make_move_iterator(few() + count_)};
  }

  static void destroy(const Items* shared) noexcept {
    auto* block = const_cast<Items*>(shared);
    if (block->count_ == kMany) {
      forEachPrefetched(block->many(), [](ScriptValue& item) { item = ScriptValue(); });
      std::destroy_at(&block->many());
    } else {
      std::destroy_n(block->few(), block->count_);
    }
    block->~Items();
    ::operator delete(block);
  }

 private:
  static constexpr std::uint32_t kMany = 0xFFFFFFFF;

  Items(std::uint32_t depth, std::uint32_t count) noexcept : depth_(depth), count_(count) {}
  ~Items() = default;

  static Items* allocate(std::uint32_t depth, std::uint32_t count, std::size_t tailBytes) {
    static_assert(sizeof(Items) % alignof(std::vector<ScriptValue>) == 0);
    return new (::operator new(sizeof(Items) + tailBytes)) Items(depth, count);
  }

  [[nodiscard]] void* tail() noexcept { return this + 1; }
  [[nodiscard]] ScriptValue* few() noexcept {
    return std::launder(static_cast<ScriptValue*>(tail()));
  }
  [[nodiscard]] std::vector<ScriptValue>& many() noexcept {
    return *std::launder(static_cast<std::vector<ScriptValue>*>(tail()));
  }

  std::uint32_t depth_;
  alignas(8) std::uint32_t count_;
};

struct ScriptValue::Fields : SharedCount {
  std::uint32_t depth = 0;
  std::vector<ScriptField> fields;
};

// The labels of a record of user fields; its values follow in the same allocation.
class ScriptValue::Labelled : public SharedCount {
 public:
  static const Labelled* make(std::uint32_t depth, const Keys& labels,
                              std::span<ScriptValue> values) {
    static_assert(sizeof(Labelled) % alignof(ScriptValue) == 0);
    void* const memory = ::operator new(sizeof(Labelled) + values.size_bytes());
    auto* const block = new (memory) Labelled(depth, labels);
    void* const tail = block + 1;
    std::uninitialized_move(values.begin(), values.end(), static_cast<ScriptValue*>(tail));
    return block;
  }

  Labelled(const Labelled&) = delete;
  Labelled& operator=(const Labelled&) = delete;

  [[nodiscard]] std::uint32_t depth() const noexcept { return depth_; }
  [[nodiscard]] const Keys& labels() const noexcept { return labels_; }
  [[nodiscard]] std::span<const ScriptValue> values() const noexcept {
    return const_cast<Labelled*>(this)->values();
  }
  [[nodiscard]] std::span<ScriptValue> values() noexcept {
    return {std::launder(static_cast<ScriptValue*>(static_cast<void*>(this + 1))), labels_.count()};
  }

  static void destroy(const Labelled* shared) noexcept {
    auto* const block = const_cast<Labelled*>(shared);
    std::ranges::destroy(block->values());
    block->~Labelled();
    ::operator delete(block);
  }

 private:
  Labelled(std::uint32_t depth, const Keys& labels) noexcept : depth_(depth), labels_(labels) {}
  ~Labelled() = default;

  std::uint32_t depth_;
  Keys labels_;
};

namespace {

std::uint32_t depthOver(std::span<const ScriptValue> values, std::uint32_t levels) {
  std::uint32_t deepest = 0;
  for (const ScriptValue& value : values) deepest = std::max(deepest, value.depth());
  return deeperBy(levels, deepest);
}

std::uint32_t depthOver(const std::vector<ScriptField>& fields) {
  std::uint32_t deepest = 0;
  for (const ScriptField& field : fields) {
    // The list of user fields is the second of a record's own levels.
    const bool isOwnLevel = field.keyword == kUserFields && field.value.hasItems();
    deepest = std::max(deepest, field.value.depth() - (isOwnLevel ? 1 : 0));
  }
  return deeperBy(2, deepest);
}

bool beginsLikeByteOrderMark(std::u16string_view units) {
  return !units.empty() && (units.front() == u'\uFEFF' || units.front() == u'\xFFFE');
}

}  // namespace

ScriptValue::ScriptValue(FourCharCode type, Storage storage, const void* block) noexcept
    : type_(type), storage_(storage), content_{.shared = block} {}

ScriptValue::ScriptValue(const ScriptValue& other) noexcept
    : type_(other.type_),
      storage_(other.storage_),
      inlineCount_(other.inlineCount_),
      content_(other.content_) {
  retain();
}

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
      block<Items>()->retain();
      return;
    case Storage::fields:
      block<Fields>()->retain();
      return;
    case Storage::labelled:
      block<Labelled>()->retain();
      return;
    case Storage::reference:
      block<Reference>()->retain();
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
      if (block<Items>()->release()) Items::destroy(block<Items>());
      return;
    case Storage::fields:
      if (block<Fields>()->release()) delete block<Fields>();
      return;
    case Storage::labelled:
      if (block<Labelled>()->release()) Labelled::destroy(block<Labelled>());
      return;
    case Storage::reference:
      if (block<Reference>()->release()) delete block<Reference>();
      return;
  }
}

ScriptValue ScriptValue::withPayload(FourCharCode type, std::string_view payload) {
  if (payload.size() > kInlineBytes) {
    return {type, Storage::bytes, new Bytes{{}, std::string(payload)}};
  }
  ScriptValue value(type, Storage::inlineBytes, nullptr);
  if (!payload.empty()) std::memcpy(value.content_.bytes, payload.data(), payload.size());
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
  const std::uint32_t depth = depthOver(items, 1);
  return {"list"_code, Storage::items, Items::make(depth, std::move(items))};
}

ScriptValue ScriptValue::listTaking(std::span<ScriptValue> items) {
  if (items.size() > Items::kFew) {
    return list({std::make_move_iterator(items.begin()), std::make_move_iterator(items.end())});
  }
  return {"list"_code, Storage::items, Items::make(depthOver(items, 1), items)};
}

ScriptValue ScriptValue::record(FourCharCode type, std::vector<ScriptField> fields) {
  return {type, Storage::fields, new Fields{{}, depthOver(fields), std::move(fields)}};
}

ScriptValue ScriptValue::labelledRecord(const Keys& labels, std::span<ScriptValue> values) {
  assert(labels.count() == values.size() && std::ranges::all_of(labels.all(), &Value::isText));
  return {kPlainRecord, Storage::labelled, Labelled::make(depthOver(values, 2), labels, values)};
}

ScriptValue ScriptValue::reference(std::shared_ptr<const ObjectReference> reference) {
  assert(reference != nullptr);
  return {"obj "_code, Storage::reference, new Reference{{}, std::move(reference)}};
}

const ObjectReference* ScriptValue::objectReference() const noexcept {
  return storage_ == Storage::reference ? block<Reference>()->object.get() : nullptr;
}

std::span<const ScriptValue> ScriptValue::items() const noexcept {
  if (storage_ != Storage::items) return {};
  return block<Items>()->all();
}

std::vector<ScriptField> ScriptValue::fields() const {
  if (storage_ == Storage::fields) return block<Fields>()->fields;
  if (storage_ != Storage::labelled) return {};
  const Keys& labels = block<Labelled>()->labels();
  if (labels.count() == 0) return {};
  std::vector<ScriptValue> labelsAndValues;
  labelsAndValues.reserve(2 * labels.count());
  for (std::size_t i = 0; i < labels.count(); ++i) {
    labelsAndValues.push_back(text(labels[i].sharedText()));
    labelsAndValues.push_back(labelledValues()[i]);
  }
  return {{kUserFields, list(std::move(labelsAndValues))}};
}

const Keys* ScriptValue::labels() const noexcept {
  return storage_ == Storage::labelled ? &block<Labelled>()->labels() : nullptr;
}

std::span<const ScriptValue> ScriptValue::labelledValues() const noexcept {
  if (storage_ != Storage::labelled) return {};
  return block<Labelled>()->values();
}

std::optional<Text> ScriptValue::heldText() const noexcept {
  if (storage_ != Storage::text) return std::nullopt;
  Text::retain(block<TextPayload>());
  return Text(block<TextPayload>());
}

std::optional<Text> ScriptValue::takeText() && noexcept {
  if (storage_ != Storage::text) return std::nullopt;
  storage_ = Storage::inlineBytes;
  return Text(block<TextPayload>());
}

std::vector<ScriptValue> ScriptValue::takeItems() && {
  std::vector<ScriptValue> taken;
  if (storage_ != Storage::items) return taken;
  if (block<Items>()->isUnique()) {
    taken = ownBlock<Items>()->take();
  } else {
    taken.assign(items().begin(), items().end());
  }
  *this = ScriptValue();
  return taken;
}

std::span<ScriptValue> ScriptValue::ownLabelledValues() noexcept {
  if (storage_ != Storage::labelled || !block<Labelled>()->isUnique()) return {};
  return ownBlock<Labelled>()->values();
}

std::string_view ScriptValue::payload() const noexcept {
  switch (storage_) {
    case Storage::inlineBytes:
      return {content_.bytes, inlineCount_};
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
      return block<Items>()->depth();
    case Storage::fields:
      return block<Fields>()->depth;
    case Storage::labelled:
      return block<Labelled>()->depth();
    default:
      return 0;
  }
}

bool operator==(const ScriptValue& a, const ScriptValue& b) {
  if (a.type_ != b.type_ || a.hasItems() != b.hasItems() || a.hasFields() != b.hasFields()) {
    return false;
  }
  const ObjectReference* const object = a.objectReference();
  const ObjectReference* const other = b.objectReference();
  if (object != nullptr && other != nullptr) {
    return object == other || object->path() == other->path();
  }
  if (object != nullptr || other != nullptr) return false;
  if (!a.hasFields()) return a.payload() == b.payload() && std::ranges::equal(a.items(), b.items());
  const Keys* const labels = a.labels();
  const Keys* const others = b.labels();
  if (labels != nullptr && others != nullptr) {
    return (labels->areShared(*others) || std::ranges::equal(labels->all(), others->all())) &&
           std::ranges::equal(a.labelledValues(), b.labelledValues());
  }
  if (labels == nullptr && others == nullptr) {
    return a.block<ScriptValue::Fields>()->fields == b.block<ScriptValue::Fields>()->fields;
  }
  return a.fields() == b.fields();
}

}  // namespace skerrow
