#include "values/script_value.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "values/depth.h"
#include "values/fetching.h"
#include "values/shared_count.h"

namespace skerrow {

using namespace literals;

struct ScriptValue::Bytes : SharedCount {
  std::string bytes;
};

struct ScriptValue::Items : SharedCount {
  Items(std::uint32_t itsDepth, std::vector<ScriptValue> itsItems)
      : depth(itsDepth), items(std::move(itsItems)) {}
  Items(const Items&) = delete;
  Items& operator=(const Items&) = delete;
  ~Items() {
    forEachFetched(items, [](ScriptValue& item) { item = ScriptValue(); });
  }

  std::uint32_t depth;
  std::vector<ScriptValue> items;
};

struct ScriptValue::Fields : SharedCount {
  std::uint32_t depth = 0;
  std::vector<ScriptField> fields;
};

namespace {

std::uint32_t deeperBy(std::uint32_t levels, std::uint32_t deepest) {
  if (deepest + levels > kMaximumDepth) throw NestingTooDeep();
  return deepest + levels;
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
      block<Items>()->retain();
      return;
    case Storage::fields:
      block<Fields>()->retain();
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
      if (block<Items>()->release()) delete block<Items>();
      return;
    case Storage::fields:
      if (block<Fields>()->release()) delete block<Fields>();
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
  std::uint32_t deepest = 0;
  for (const ScriptValue& item : items) deepest = std::max(deepest, item.depth());
  return {"list"_code, Storage::items, new Items(deeperBy(1, deepest), std::move(items))};
}

ScriptValue ScriptValue::record(FourCharCode type, std::vector<ScriptField> fields) {
  std::uint32_t deepest = 0;
  for (const ScriptField& field : fields) {
    // The list of user fields is the second of a record's own levels.
    const bool isOwnLevel = field.keyword == "usrf"_code && field.value.hasItems();
    deepest = std::max(deepest, field.value.depth() - (isOwnLevel ? 1 : 0));
  }
  return {type, Storage::fields, new Fields{{}, deeperBy(2, deepest), std::move(fields)}};
}

std::span<const ScriptValue> ScriptValue::items() const noexcept {
  if (storage_ != Storage::items) return {};
  return block<Items>()->items;
}

std::span<const ScriptField> ScriptValue::fields() const noexcept {
  if (storage_ != Storage::fields) return {};
  return block<Fields>()->fields;
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
  if (block<Items>()->isUnique()) {
    // Nobody else sees the block, and it goes with this value.
    taken = std::move(const_cast<Items*>(block<Items>())->items);
  } else {
    taken = block<Items>()->items;
  }
  *this = ScriptValue();
  return taken;
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
      return block<Items>()->depth;
    case Storage::fields:
      return block<Fields>()->depth;
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
