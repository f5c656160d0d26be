#pragma once
// ScriptValue: a value at the scripting boundary. It carries a four-character
// type code and either a payload of bytes (in the host's byte order), the items
// of a list, the fields of a record, or a reference to an object. Two words wide: payloads of up to
// eight bytes are held inline, everything else is one immutable block shared between copies. Safe
// to copy and read on any thread.
//
// A record is a run of fields, each under a keyword; the fields that a script
// labels freely lie together in a list, label, value, label, value, under the
// keyword 'usrf'. A record that has no other fields can be made of its labels,
// which records share, and its values; it is the same to whoever looks at it.
//
// Text made here is of type 'utxt' and keeps its units as they are; a 'utxt'
// made from bytes is kept as bytes and decoded by whoever unpacks it.

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "values/four_char_code.h"
#include "values/text.h"

namespace skerrow {

class Keys;
class ObjectReference;
struct ScriptField;

/// The class of a plain record, and the keyword of the fields that scripts label freely.
inline constexpr FourCharCode kPlainRecord{0x7265636F};  // 'reco'
inline constexpr FourCharCode kUserFields{0x75737266};   // 'usrf'

class ScriptValue {
 public:
  /// The "missing value" constant: type 'type' with the payload 'msng'.
  ScriptValue() noexcept : type_{0x74797065}, inlineCount_(sizeof(FourCharCode)), content_{} {
    constexpr FourCharCode kMissing{0x6D736E67};
    __builtin_memcpy(content_.bytes, &kMissing, sizeof kMissing);
  }

  ScriptValue(const ScriptValue& other) noexcept;
  ScriptValue(ScriptValue&& other) noexcept
      : type_(other.type_),
        storage_(std::exchange(other.storage_, Storage::inlineBytes)),
        inlineCount_(std::exchange(other.inlineCount_, std::uint8_t{0})),
        content_(other.content_) {}
  ScriptValue& operator=(const ScriptValue& other) noexcept { return *this = ScriptValue(other); }
  ScriptValue& operator=(ScriptValue&& other) noexcept {
    ScriptValue taken(std::move(other));
    std::swap(type_, taken.type_);
    std::swap(storage_, taken.storage_);
    std::swap(inlineCount_, taken.inlineCount_);
    std::swap(content_, taken.content_);
    return *this;
  }
  ~ScriptValue() {
    if (storage_ != Storage::inlineBytes) release();
  }

  /// A value of any type from the bytes of its payload.
  static ScriptValue withPayload(FourCharCode type, std::string_view payload);
  /// The same for a payload that is a plain number in the host's byte order.
  template <class Plain>
  static ScriptValue withPlain(FourCharCode type, const Plain& plain) {
    return withPayload(type, {reinterpret_cast<const char*>(&plain), sizeof plain});
  }
  static ScriptValue text(Text text);
  static ScriptValue boolean(bool value);
  static ScriptValue integer32(std::int32_t value);
  static ScriptValue real(double value);
  /// A value of type 'type' (a class or constant) that names a code.
  static ScriptValue typeCode(FourCharCode code);
  /// The platform's null value, which is not "missing value".
  static ScriptValue null();
  /// A value of type 'obj '.
  static ScriptValue reference(std::shared_ptr<const ObjectReference> reference);
  /// Throws NestingTooDeep.
  static ScriptValue list(std::vector<ScriptValue> items);
  /// The same of items that are taken from where they lie.
  static ScriptValue listTaking(std::span<ScriptValue> items);
  /// A record of the class `type`. Throws NestingTooDeep.
  static ScriptValue record(FourCharCode type, std::vector<ScriptField> fields);
  /// A plain record of user fields only: labels, which are texts, and as many values, which
  /// are taken from where they lie. Throws NestingTooDeep.
  static ScriptValue labelledRecord(const Keys& labels, std::span<ScriptValue> values);

  [[nodiscard]] FourCharCode type() const noexcept { return type_; }

  /// Whether this is a list or record that holds its items (one made from bytes does not).
  [[nodiscard]] bool hasItems() const noexcept { return storage_ == Storage::items; }
  /// Whether this is shaped like a record, of whatever class.
  [[nodiscard]] bool hasFields() const noexcept {
    return storage_ == Storage::fields || storage_ == Storage::labelled;
  }
  /// The items of a list, valid as long as any copy of this value lives; empty for anything
  /// else.
  [[nodiscard]] std::span<const ScriptValue> items() const noexcept;
  /// The fields of a record in stored order, in a vector made for this call; empty for
  /// anything else.
  [[nodiscard]] std::vector<ScriptField> fields() const;
  /// The labels of a record that was made of labels and values; null for anything else.
  /// They and the values are valid as long as any copy of this value lives.
  [[nodiscard]] const Keys* labels() const noexcept;
  /// Its values, by the position of their label; empty for anything else.
  [[nodiscard]] std::span<const ScriptValue> labelledValues() const noexcept;
  /// Whether this was made from a text.
  [[nodiscard]] bool holdsText() const noexcept { return storage_ == Storage::text; }
  /// The text, if this was made from one; nothing for payloads given as bytes.
  [[nodiscard]] std::optional<Text> heldText() const noexcept;
  /// Its units, valid as long as any copy of this value lives.
  [[nodiscard]] std::optional<std::u16string_view> heldUnits() const noexcept {
    if (storage_ != Storage::text) return std::nullopt;
    return Text::view(block<TextPayload>());
  }
  /// The same text, handed over.
  [[nodiscard]] std::optional<Text> takeText() && noexcept;
  /// The items of a list, handed over where nobody else has them, else copied.
  [[nodiscard]] std::vector<ScriptValue> takeItems() &&;
  /// The values of a record that was made of labels and values, to be taken from, as long
  /// as this value lives; empty where somebody else has them too.
  [[nodiscard]] std::span<ScriptValue> ownLabelledValues() noexcept;
  /// The reference that this was made of, valid as long as any copy of this value lives;
  /// null for anything else.
  [[nodiscard]] const ObjectReference* objectReference() const noexcept;
  /// The payload's bytes, valid as long as this object; empty for lists, records and
  /// references.
  [[nodiscard]] std::string_view payload() const noexcept;
  /// The payload as a plain number, or nothing when its width is another.
  template <class Plain>
  [[nodiscard]] std::optional<Plain> plain() const noexcept {
    const std::string_view bytes = payload();
    if (bytes.size() != sizeof(Plain)) return std::nullopt;
    Plain value;
    __builtin_memcpy(&value, bytes.data(), sizeof value);
    return value;
  }
  /// The code that a value of type 'type' names; nothing for any other value.
  [[nodiscard]] std::optional<FourCharCode> namedCode() const noexcept;
  [[nodiscard]] bool isMissingValue() const noexcept;

  /// 0 for a plain value, 1 more than the deepest item for a list, 2 more than the
  /// deepest field for a record, as for the values that they unpack to.
  [[nodiscard]] std::uint32_t depth() const noexcept;

  /// Tells the processor that this value's content is about to be looked at.
  void prefetch() const noexcept {
    if (storage_ != Storage::inlineBytes) __builtin_prefetch(content_.shared);
  }

  /// Same type and same payload, items or fields, in the same order; of references, the
  /// same path.
  friend bool operator==(const ScriptValue& a, const ScriptValue& b);

 private:
  enum class Storage : std::uint8_t {
    inlineBytes,
    bytes,
    text,
    items,
    fields,
    labelled,
    reference
  };
  static constexpr std::size_t kInlineBytes = 8;
  union Content {
    char bytes[kInlineBytes];
    const void* shared;
  };

  struct Bytes;
  class Items;
  struct Fields;
  class Labelled;
  struct Reference;

  ScriptValue(FourCharCode type, Storage storage, const void* block) noexcept;
  void retain() const noexcept;
  void release() noexcept;
  template <class Block>
  [[nodiscard]] const Block* block() const noexcept {
    return static_cast<const Block*>(content_.shared);
  }
  // For a block that nobody else has.
  template <class Block>
  [[nodiscard]] Block* ownBlock() noexcept {
    return const_cast<Block*>(block<Block>());
  }

  FourCharCode type_;
  Storage storage_ = Storage::inlineBytes;
  std::uint8_t inlineCount_ = 0;
  Content content_;
};

/// One field of a record at the scripting boundary.
struct ScriptField {
  FourCharCode keyword;
  ScriptValue value;

  friend bool operator==(const ScriptField&, const ScriptField&) = default;
};

}  // namespace skerrow
