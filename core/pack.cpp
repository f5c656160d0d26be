#include "core/pack.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "foundation/date/long_date_time.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/text_encoding.h"
#include "foundation/url/url.h"
#include "values/keys.h"
#include "values/prefetching.h"
#include "values/record.h"

namespace skerrow::core {

using namespace literals;

namespace {

// Kept: the comparison is strict, so this very number becomes a real.
constexpr std::int64_t kLongBound = 0x7FFFFFFF;

constexpr std::string_view kErrorObjectLead = "An NSError was generated:";

ScriptValue packInteger32(std::int64_t value) {
  return ScriptValue::integer32(static_cast<std::int32_t>(static_cast<std::uint64_t>(value)));
}

ScriptValue packNumber(Number value) {
  switch (value.kind()) {
    case NumberKind::boolean:
      return ScriptValue::boolean(value.asInteger() >= 1);
    case NumberKind::signed16:
    case NumberKind::unsigned16:
    case NumberKind::signed32:
      return packInteger32(value.asInteger());
    case NumberKind::unsigned32:
    case NumberKind::unsigned64:
      if (value.asUnsigned() >= static_cast<std::uint64_t>(kLongBound)) break;
      return packInteger32(value.asInteger());
    case NumberKind::signed64:
      // Kept: there is no lower bound; below -2147483648 the low 32 bits remain.
      if (value.asInteger() >= kLongBound) break;
      return packInteger32(value.asInteger());
    case NumberKind::real:
      break;
  }
  return ScriptValue::real(value.asReal());
}

std::optional<ScriptValue> packDate(Date date) {
  const auto seconds = foundation::longDateTimeFromDate(date);
  if (!seconds) return std::nullopt;
  return ScriptValue::withPlain("ldt "_code, *seconds);
}

ScriptValue packUrl(const Url& url) {
  if (!foundation::isFileUrl(url)) return ScriptValue::null();
  return ScriptValue::withPayload("furl"_code, url.absoluteString);
}

ScriptValue packError(const ErrorObject& error) {
  const std::string text = std::string(kErrorObjectLead) + " " + error.localizedDescription;
  return ScriptValue::text(Text(foundation::utf16FromUtf8Replacing(text)));
}

ScriptValue packOrMissing(const Value& value) {
  return makeDescriptor(value).value_or(descriptorWithMissingValue());
}

ScriptValue packOrMissing(Value&& value) {
  return makeDescriptor(std::move(value)).value_or(descriptorWithMissingValue());
}

bool isNullValue(const ScriptValue& value) { return value.type() == "null"_code; }

// A record that has nothing but user fields. Values that are not constant are used up.
template <class Item>
ScriptValue packLabelled(const Keys& labels, std::span<Item> values) {
  std::vector<ScriptValue> packed;
  packed.reserve(values.size());
  for (Item& value : values) packed.push_back(packOrMissing(std::move(value)));
  if (std::ranges::none_of(packed, isNullValue)) {
    return ScriptValue::labelledRecord(labels, packed);
  }
  Keys kept;
  for (std::size_t i = 0; i < packed.size(); ++i) {
    if (!isNullValue(packed[i])) kept.append(labels[i]);
  }
  std::erase_if(packed, isNullValue);
  return ScriptValue::labelledRecord(kept, packed);
}

// Builds one record at the scripting boundary, of whatever keys.
class RecordPacker {
 public:
  explicit RecordPacker(std::size_t fieldCount) { userFields_.reserve(2 * fieldCount); }

  void add(const Value& key, const Value& value) {
    if (const auto keyword = keywordOf(key)) return setKeyword(*keyword, packOrMissing(value));
    ScriptValue packedKey = packOrMissing(key);
    ScriptValue packed = packOrMissing(value);
    if (const auto code = codeOf(packedKey)) {
      expectRepeatedKeywords();
      if (*code == "pcls"_code && packed.namedCode()) {
        class_ = *packed.namedCode();
      } else {
        setKeyword(*code, std::move(packed));
      }
    } else if (!isNullValue(packed)) {
      userFields_.push_back(std::move(packedKey));
      userFields_.push_back(std::move(packed));
    }
  }

  ScriptValue finish() && {
    if (!userFields_.empty()) {
      expectRepeatedKeywords();
      setKeyword(kUserFields, ScriptValue::list(std::move(userFields_)));
    }
    return ScriptValue::record(class_, std::move(fields_));
  }

 private:
  static std::optional<FourCharCode> keywordOf(const Value& key) {
    return key.isText() ? foundation::keywordFromKey(key.text()) : std::nullopt;
  }

  // The code of a key that was a raw class or property name.
  static std::optional<FourCharCode> codeOf(const ScriptValue& key) {
    if (key.type() != "prop"_code && key.type() != "type"_code) return std::nullopt;
    return key.plain<FourCharCode>();
  }

  // Text keys differ from each other, so only other keys can name a keyword again.
  void expectRepeatedKeywords() {
    if (places_) return;
    places_.emplace();
    for (std::size_t i = 0; i < fields_.size(); ++i) places_->emplace(fields_[i].keyword, i);
  }

  void setKeyword(FourCharCode keyword, ScriptValue value) {
    if (places_) {
      const auto [there, isNew] = places_->emplace(keyword, fields_.size());
      if (!isNew) {
        fields_[there->second].value = std::move(value);
        return;
      }
    }
    fields_.push_back({keyword, std::move(value)});
  }

  FourCharCode class_ = kPlainRecord;
  std::vector<ScriptField> fields_;
  std::vector<ScriptValue> userFields_;
  std::optional<std::map<FourCharCode, std::size_t>> places_;  // of keywords that may come again
};

}  // namespace

std::optional<ScriptValue> makeDescriptor(const Value& value) {
  switch (value.kind()) {
    case Kind::number:
      return packNumber(value.number());
    case Kind::error:
      return packError(value.error());
    case Kind::text:
      return ScriptValue::text(value.sharedText());
    case Kind::list:
      return makeDescriptorForArray(value.items());
    case Kind::raw:
      return value.raw();
    case Kind::record:
      return makeDescriptorForDictionary(value.record());
    case Kind::data:
      return ScriptValue::withPayload("rdat"_code, value.data());
    case Kind::url:
      return packUrl(value.url());
    case Kind::date:
      return packDate(value.date());
    case Kind::null:
      return descriptorWithMissingValue();
    case Kind::opaque:
      return std::nullopt;
  }
  return std::nullopt;
}

ScriptValue makeDescriptorForArray(std::span<const Value> items) {
  std::vector<ScriptValue> packed;
  packed.reserve(items.size());
  for (const Value& item : items) packed.push_back(packOrMissing(item));
  return ScriptValue::list(std::move(packed));
}

std::optional<ScriptValue> makeDescriptor(Value&& value) {
  if (value.isText()) return ScriptValue::text(std::move(value).takeText());
  if (value.isList()) return makeDescriptorForArray(std::move(value).takeItems());
  if (value.isRecord()) return makeDescriptorForDictionary(std::move(value).takeRecord());
  return makeDescriptor(std::as_const(value));
}

ScriptValue makeDescriptorForArray(std::vector<Value>&& items) {
  std::vector<ScriptValue> packed;
  packed.reserve(items.size());
  forEachPrefetched(items,
                    [&packed](Value& item) { packed.push_back(packOrMissing(std::move(item))); });
  items.clear();
  return ScriptValue::list(std::move(packed));
}

std::optional<ScriptValue> makeListDescriptorForArrayOfDescriptors(std::span<const Value> items) {
  if (!std::ranges::all_of(items, &Value::isRaw)) return std::nullopt;
  std::vector<ScriptValue> packed;
  packed.reserve(items.size());
  for (const Value& item : items) packed.push_back(item.raw());
  return ScriptValue::list(std::move(packed));
}

ScriptValue makeDescriptorForDictionary(const Record& record) {
  if (foundation::areUserLabels(record.keys())) return packLabelled(record.keys(), record.values());
  RecordPacker packer(record.fieldCount());
  for (const Record::Field& field : record.fields()) packer.add(field.key, field.value);
  return std::move(packer).finish();
}

ScriptValue makeDescriptorForDictionary(Record&& record) {
  if (!foundation::areUserLabels(record.keys()))
    return makeDescriptorForDictionary(std::as_const(record));
  const Keys labels = record.keys();
  std::vector<Value> values = std::move(record).takeValues();
  return packLabelled(labels, std::span(values));
}

ScriptValue descriptorWithMissingValue() { return {}; }

std::optional<ScriptValue> scriptingScriptWithDescriptor(const ScriptValue& value) {
  if (value.type() != "scpt"_code) return std::nullopt;
  return value;
}

ScriptValue scriptingScriptWithDescriptor() { return ScriptValue::typeCode("scpt"_code); }

ScriptValue scriptingRecordDescriptor(const ScriptValue& value) { return value; }

std::optional<ScriptValue> scriptingRecordWithDescriptor(const ScriptValue& value) {
  if (value.type() != "reco"_code) return std::nullopt;
  return value;
}

}  // namespace skerrow::core
