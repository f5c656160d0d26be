#include "core/unpack.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "core/script_compiler.h"
#include "core/script_error.h"
#include "foundation/date/long_date_time.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/text_encoding.h"
#include "foundation/url/url.h"
#include "platform/platform_error.h"
#include "values/keys.h"
#include "values/record.h"

namespace skerrow::core {

using namespace literals;

namespace {

constexpr int kUnreadableFile = 1012;

constexpr FourCharCode kInteger32 = "long"_code;
constexpr FourCharCode kList = "list"_code;

// 'itxt': the script code and the language code, two bytes each, then the text.
constexpr std::size_t kIntlTextHeader = 4;

template <class Convert>
Value eachItem(std::span<const ScriptValue> items, Convert&& convert) {
  std::vector<Value> values;
  values.reserve(items.size());
  for (const ScriptValue& item : items) values.push_back(convert(item));
  return values;
}

Value heldText(const ScriptValue& item) { return *item.heldText(); }

Value heldText(ScriptValue&& item) { return *std::move(item).takeText(); }

// The two that there are most of go the shortest way.
template <class Item>
Value unpackItem(Item&& item) {
  if (item.holdsText()) return heldText(std::forward<Item>(item));
  if (item.type() == kInteger32) {
    if (const auto integer = item.template plain<std::int32_t>()) {
      return Number::signed32(*integer);
    }
  }
  return unpack(std::forward<Item>(item)).value_or(Value());
}

std::optional<Value> unpackDate(const ScriptValue& value) {
  const auto seconds = value.plain<std::int64_t>();
  if (!seconds) return std::nullopt;
  return foundation::dateFromLongDateTime(*seconds);
}

template <class Plain>
std::optional<Number> numberFromPlain(const ScriptValue& value, Number (*make)(Plain)) {
  const auto plain = value.plain<Plain>();
  if (!plain) return std::nullopt;
  return make(*plain);
}

template <class Held>
std::optional<Value> asValue(std::optional<Held> held) {
  if (!held) return std::nullopt;
  return Value(std::move(*held));
}

// The items of a 'usrf' list: label, value, label, value. The last label has no
// value when the count is odd.
void setUserFields(Record& record, std::span<const ScriptValue> labelsAndValues) {
  record.reserve(record.fieldCount() + labelsAndValues.size() / 2);
  for (std::size_t i = 0; i + 1 < labelsAndValues.size(); i += 2) {
    record.set(unpackItem(labelsAndValues[i]), unpackItem(labelsAndValues[i + 1]));
  }
}

Record recordFrom(std::span<const ScriptField> fields) {
  Record record;
  for (const ScriptField& field : fields) {
    if (field.keyword == kUserFields && field.value.type() == kList) {
      setUserFields(record, field.value.items());
    } else {
      record.set(foundation::keyFromKeyword(field.keyword), unpackItem(field.value));
    }
  }
  return record;
}

// The record shares its labels with the one that it is made from, and takes its
// values where they are not constant.
template <class Item>
Record recordFrom(const Keys& labels, std::span<Item> items) {
  std::vector<Value> values;
  values.reserve(items.size());
  for (Item& item : items) values.push_back(unpackItem(std::move(item)));
  return {labels, std::move(values)};
}

}  // namespace

bool isTextType(FourCharCode type) noexcept {
  switch (number(type)) {
    case number("STXT"_code):
    case number("TEXT"_code):
    case number("itxt"_code):
    case number("ut16"_code):
    case number("utf8"_code):
    case number("utxt"_code):
      return true;
    default:
      return false;
  }
}

bool isNumberType(FourCharCode type) noexcept {
  switch (number(type)) {
    case number("bool"_code):
    case number("true"_code):
    case number("fals"_code):
    case number("shor"_code):
    case number("ushr"_code):
    case number("long"_code):
    case number("magn"_code):
    case number("comp"_code):
    case number("ucom"_code):
    case number("sing"_code):
    case number("doub"_code):
    case number("ldbl"_code):
      return true;
    default:
      return false;
  }
}

bool isFileType(FourCharCode type) noexcept {
  return type == "furl"_code || type == "alis"_code || type == "fsrf"_code;
}

std::optional<Text> textFromScriptValue(const ScriptValue& value) {
  if (auto held = value.heldText()) return held;
  const std::string_view bytes = value.payload();
  switch (number(value.type())) {
    case number("utxt"_code):
    case number("ut16"_code):
      return Text(foundation::utf16FromUtf16Bytes(bytes));
    case number("utf8"_code):
      return Text(foundation::utf16FromUtf8Replacing(foundation::withoutUtf8Mark(bytes)));
    case number("TEXT"_code):
    case number("STXT"_code):
      return Text(foundation::utf16FromMacRoman(bytes));
    case number("itxt"_code):
      return Text(
          foundation::utf16FromMacRoman(bytes.substr(std::min(bytes.size(), kIntlTextHeader))));
    default:
      return std::nullopt;
  }
}

std::optional<Number> numberFromScriptValue(const ScriptValue& value) {
  switch (number(value.type())) {
    case number("true"_code):
      return Number::boolean(true);
    case number("fals"_code):
      return Number::boolean(false);
    case number("bool"_code):
      if (value.payload().empty()) return std::nullopt;
      return Number::boolean(value.payload().front() != 0);
    case number("shor"_code):
      return numberFromPlain(value, &Number::signed16);
    case number("ushr"_code):
      return numberFromPlain(value, &Number::unsigned16);
    case number("long"_code):
      return numberFromPlain(value, &Number::signed32);
    case number("magn"_code):
      return numberFromPlain(value, &Number::unsigned32);
    case number("comp"_code):
      return numberFromPlain(value, &Number::signed64);
    case number("ucom"_code):
      return numberFromPlain(value, &Number::unsigned64);
    case number("sing"_code):
      return numberFromPlain<float>(value, [](float real) { return Number::real(real); });
    case number("doub"_code):
      return numberFromPlain(value, &Number::real);
    case number("ldbl"_code):
      return numberFromPlain<long double>(
          value, [](long double real) { return Number::real(static_cast<double>(real)); });
    default:
      return std::nullopt;
  }
}

std::optional<Url> urlFromScriptValue(const ScriptValue& value) {
  if (value.type() == "furl"_code) return foundation::parseUrl(value.payload());
  // An alias or file reference holds the path of its file, in the file system's bytes.
  if (isFileType(value.type())) return foundation::fileUrl(value.payload());
  return std::nullopt;
}

std::optional<Value> unpack(const ScriptValue& value) {
  const FourCharCode type = value.type();
  if (type == kPlainRecord) return unpackAERecord(value);
  if (isTextType(type)) return asValue(textFromScriptValue(value));
  if (isNumberType(type)) return asValue(numberFromScriptValue(value));
  switch (number(type)) {
    case number("list"_code):
      return unpackAEList(value);
    case number("ldt "_code):
      return unpackDate(value);
    case number("furl"_code):
    case number("alis"_code):
    case number("fsrf"_code):
      return asValue(urlFromScriptValue(value));
    case number("msng"_code):
    case number("null"_code):
    case number("type"_code):
      return Value();
    case number("rdat"_code):
      return Value::data(std::string(value.payload()));
    default:
      return unpackUnknown(value);
  }
}

std::optional<Value> unpack(ScriptValue&& value) {
  if (value.holdsText()) return heldText(std::move(value));
  if (value.hasItems()) return unpackAEList(std::move(value));
  if (value.type() == kPlainRecord) return unpackAERecord(std::move(value));
  return unpack(std::as_const(value));
}

Value unpackAEList(ScriptValue&& list) {
  std::vector<Value> values;
  values.reserve(list.items().size());
  for (ScriptValue& item : std::move(list).takeItems()) {
    values.push_back(unpackItem(std::move(item)));
  }
  return values;
}

Value unpackAEList(const ScriptValue& list) { return unpackArrayOfAEDescs(list.items()); }

Value unpackArrayOfAEDescs(std::span<const ScriptValue> values) {
  return eachItem(values, [](const ScriptValue& item) { return unpackItem(item); });
}

Value unpackArrayOfAEDescs(const Value& listOfRaw) {
  std::vector<Value> values;
  values.reserve(listOfRaw.items().size());
  for (const Value& item : listOfRaw.items()) {
    values.push_back(item.isRaw() ? unpackItem(item.raw()) : item);
  }
  return values;
}

Value unpackListShallow(const ScriptValue& list) {
  return eachItem(list.items(), [](const ScriptValue& item) { return Value(item); });
}

Value unpackAERecord(const ScriptValue& record) {
  if (const Keys* labels = record.labels()) return recordFrom(*labels, record.labelledValues());
  return recordFrom(record.fields());
}

Value unpackAERecord(ScriptValue&& record) {
  const std::span<ScriptValue> own = record.ownLabelledValues();
  if (own.empty()) return unpackAERecord(std::as_const(record));
  return recordFrom(*record.labels(), own);
}

Value unpackUnknown(const ScriptValue& value) {
  if (!value.hasFields()) return Value(value);
  std::vector<ScriptField> fields = value.fields();
  const auto theClass = std::ranges::find(fields, "pcls"_code, &ScriptField::keyword);
  if (theClass != fields.end()) {
    theClass->value = ScriptValue::typeCode(value.type());
  } else {
    fields.push_back({"pcls"_code, ScriptValue::typeCode(value.type())});
  }
  return recordFrom(fields);
}

Value unpackTextOrList(const ScriptValue& value) {
  if (auto text = textFromScriptValue(value)) return std::move(*text);
  if (value.type() == "list"_code) return unpackAEListJustText(value);
  return value;
}

Value unpackAEListJustText(const ScriptValue& list) {
  return eachItem(list.items(), unpackTextOrList);
}

Value unpackTextOrListOrFile(const ScriptValue& value, const platform::FileContents& files) {
  if (value.type() == "list"_code) return unpackAEListJustTextOrFile(value, files);
  if (!isFileType(value.type())) return unpackTextOrList(value);
  const auto url = urlFromScriptValue(value);
  if (!url) throw ScriptError(kUnreadableFile, "The file reference does not name a file.");
  try {
    return bestStringFromURL(*url, files);
  } catch (const platform::PlatformError& error) {
    throw ScriptError(kUnreadableFile, error.localizedDescription());
  }
}

Value unpackAEListJustTextOrFile(const ScriptValue& list, const platform::FileContents& files) {
  return eachItem(list.items(), [&files](const ScriptValue& item) {
    return unpackTextOrListOrFile(item, files);
  });
}

Text bestStringFromURL(const Url& url, const platform::FileContents& files) {
  const auto path = foundation::filePath(url);
  if (!path) {
    throw platform::PlatformError("Could not read “" + url.absoluteString +
                                  "”: it is not the address of a file on this machine.");
  }
  const std::string bytes = files.readWhole(*path);
  if (auto text = foundation::utf16FromUtf8(foundation::withoutUtf8Mark(bytes))) {
    return Text(std::move(*text));
  }
  return Text(foundation::utf16FromMacRoman(bytes));
}

ClassifiedValue unpackTextNumberDate(const ScriptValue& value) {
  if (isTextType(value.type())) return {asValue(textFromScriptValue(value)), ValueClass::text};
  if (isNumberType(value.type()))
    return {asValue(numberFromScriptValue(value)), ValueClass::number};
  if (value.type() == "ldt "_code) return {unpackDate(value), ValueClass::date};
  return {Value(value), ValueClass::other};
}

std::optional<Value> scriptObjectFromString(std::u16string_view source,
                                            const ScriptCompiler& compiler, Value& errors) {
  auto outcome = compiler.compile(source);
  if (auto* failure = std::get_if<Record>(&outcome)) {
    errors = std::move(*failure);
    return std::nullopt;
  }
  return Value::data(std::get<std::string>(std::move(outcome)));
}

}  // namespace skerrow::core
