#include "scripting/typed_json_builder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

#include "core/unpack.h"
#include "foundation/base64.h"
#include "foundation/code_text.h"
#include "foundation/long_date_time.h"
#include "foundation/text_encoding.h"
#include "foundation/url.h"
#include "values/depth.h"

namespace skerrow::scripting {

using namespace literals;

namespace {

// «pcls», the field that names a record's class.
constexpr std::u16string_view kClassKey = u"«pcls»";

std::string utf8(std::u16string_view text) { return foundation::utf8FromUtf16(text); }

[[noreturn]] void refuse(const std::string& problem) { throw JsonError(problem); }

std::string textOf(const ScriptValue& value, std::u16string_view form) {
  const auto text = core::textFromScriptValue(value);
  if (!text) refuse("“" + utf8(form) + "” needs a text");
  return utf8(text->view());
}

std::string bytesOf(const ScriptValue& value, std::u16string_view form) {
  auto bytes = foundation::bytesFromBase64(textOf(value, form));
  if (!bytes) refuse("“" + utf8(form) + "” needs base64");
  return std::move(*bytes);
}

// Four characters, or 0x and eight hexadecimal digits.
FourCharCode codeOf(const ScriptValue& value, std::u16string_view form) {
  const std::string text = textOf(value, form);
  std::uint32_t bits = 0;
  if (text.size() == 10 && text.starts_with("0x")) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 2, end, bits, 16);
    if (error == std::errc() && stop == end) return FourCharCode{bits};
  }
  const auto code = foundation::codeFromText(core::textFromScriptValue(value)->view());
  if (!code) refuse("“" + utf8(form) + "” needs four characters, or 0x and eight digits");
  return *code;
}

// An integer takes the smallest of the signed types that holds it.
ScriptValue plainNumber(Number number) {
  if (!number.isReal() && Number::signed64(number.asInteger()) == number) {
    const std::int64_t integer = number.asInteger();
    if (std::in_range<std::int32_t>(integer)) {
      return ScriptValue::integer32(static_cast<std::int32_t>(integer));
    }
    return ScriptValue::withPlain("comp"_code, integer);
  }
  return ScriptValue::real(number.asReal());
}

[[noreturn]] void refuseNumber(FourCharCode type) {
  refuse("the number is not one that “" + utf8(foundation::textFromCode(type)) + "” can hold");
}

template <class Plain>
ScriptValue integerOfType(FourCharCode type, Number number) {
  const bool isNegative = number.asReal() < 0;
  if (number.isReal() || !(isNegative ? std::in_range<Plain>(number.asInteger())
                                      : std::in_range<Plain>(number.asUnsigned()))) {
    refuseNumber(type);
  }
  return ScriptValue::withPlain(type, isNegative ? static_cast<Plain>(number.asInteger())
                                                 : static_cast<Plain>(number.asUnsigned()));
}

ScriptValue numberOfType(FourCharCode type, Number value) {
  switch (number(type)) {
    case number("shor"_code):
      return integerOfType<std::int16_t>(type, value);
    case number("ushr"_code):
      return integerOfType<std::uint16_t>(type, value);
    case number("long"_code):
      return integerOfType<std::int32_t>(type, value);
    case number("magn"_code):
      return integerOfType<std::uint32_t>(type, value);
    case number("comp"_code):
      return integerOfType<std::int64_t>(type, value);
    case number("ucom"_code):
      return integerOfType<std::uint64_t>(type, value);
    case number("sing"_code):
      if (std::abs(value.asReal()) > static_cast<double>(std::numeric_limits<float>::max())) {
        refuseNumber(type);
      }
      return ScriptValue::withPlain(type, static_cast<float>(value.asReal()));
    case number("doub"_code):
      return ScriptValue::real(value.asReal());
    case number("ldbl"_code):
      return ScriptValue::withPlain(type, static_cast<long double>(value.asReal()));
    default:
      refuse("“" + utf8(foundation::textFromCode(type)) + "” is not a type of numbers");
  }
}

ScriptValue specialReal(const std::string& name) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (name == "inf") return ScriptValue::real(kInfinity);
  if (name == "-inf") return ScriptValue::real(-kInfinity);
  if (name == "nan") return ScriptValue::real(std::numeric_limits<double>::quiet_NaN());
  refuse("“$real” needs “inf”, “-inf” or “nan”");
}

ScriptValue dateFrom(const std::string& text) {
  const auto seconds = foundation::longDateTimeFromIso8601(text);
  if (!seconds) {
    refuse(
        "“$date” needs an ISO 8601 date and time with an offset, such as "
        "2024-03-01T15:05:00Z");
  }
  return ScriptValue::withPlain("ldt "_code, *seconds);
}

std::string absolutePath(const ScriptValue& value, std::u16string_view form) {
  std::string path = textOf(value, form);
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) {
    refuse("“" + utf8(form) + "” needs a path that begins with “/”");
  }
  return path;
}

ScriptValue rawForm(const ScriptValue& type, const ScriptValue& data) {
  return ScriptValue::withPayload(codeOf(type, u"$raw"), bytesOf(data, u"data"));
}

ScriptValue recordFrom(std::vector<Text> labels, std::vector<ScriptValue> values) {
  FourCharCode type = "reco"_code;
  std::vector<ScriptField> fields;
  std::vector<ScriptValue> userFields;
  std::optional<std::size_t> userFieldsAt;  // they stand where the first of them stood
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::u16string_view label = labels[i].view();
    if (i == 0 && label == kClassKey && values[i].namedCode() && !values[i].isMissingValue()) {
      type = *values[i].namedCode();
    } else if (const auto keyword = foundation::keywordFromKey(label)) {
      fields.push_back({*keyword, std::move(values[i])});
    } else {
      if (!userFieldsAt) userFieldsAt = fields.size();
      userFields.push_back(ScriptValue::text(std::move(labels[i])));
      userFields.push_back(std::move(values[i]));
    }
  }
  if (userFieldsAt) {
    fields.insert(fields.begin() + static_cast<std::ptrdiff_t>(*userFieldsAt),
                  {"usrf"_code, ScriptValue::list(std::move(userFields))});
  }
  return ScriptValue::record(type, std::move(fields));
}

}  // namespace

void TypedJsonBuilder::addNull() { values_.emplace_back(); }

void TypedJsonBuilder::addBoolean(bool value) { values_.push_back(ScriptValue::boolean(value)); }

void TypedJsonBuilder::addNumber(Number number) {
  values_.push_back(plainNumber(number));
  lastNumber_ = number;
}

void TypedJsonBuilder::addText(std::u16string_view text) {
  values_.push_back(ScriptValue::text(Text(text)));
}

void TypedJsonBuilder::beginArray() { open(false); }

void TypedJsonBuilder::beginObject() { open(true); }

void TypedJsonBuilder::addLabel(std::u16string_view label) { labels_.emplace_back(label); }

void TypedJsonBuilder::open(bool isObject) {
  if (frames_.size() >= kMaximumDepth) {
    refuse("lists and records can be nested at most " + std::to_string(kMaximumDepth) + " deep");
  }
  const bool isUnderRecord =
      !frames_.empty() && frames_.back().isObject && !frames_.back().isPlainRecord &&
      labels_.size() == frames_.back().firstLabel + 1 && labels_.back().view() == u"$record";
  frames_.push_back({isObject, isObject && isUnderRecord, values_.size(), labels_.size()});
}

std::vector<ScriptValue> TypedJsonBuilder::closeValues(std::size_t first) {
  if (first == 0) return std::exchange(values_, {});  // the outermost: all there is
  const auto begin = values_.begin() + static_cast<std::ptrdiff_t>(first);
  std::vector<ScriptValue> values(std::make_move_iterator(begin),
                                  std::make_move_iterator(values_.end()));
  values_.resize(first);
  return values;
}

void TypedJsonBuilder::endArray() {
  const Frame frame = frames_.back();
  frames_.pop_back();
  ScriptValue list = ScriptValue::list(closeValues(frame.firstValue));
  values_.push_back(std::move(list));
  lastNumber_.reset();
}

void TypedJsonBuilder::endObject() {
  const Frame frame = frames_.back();
  frames_.pop_back();
  const auto first = labels_.begin() + static_cast<std::ptrdiff_t>(frame.firstLabel);
  std::vector<Text> labels(std::make_move_iterator(first), std::make_move_iterator(labels_.end()));
  labels_.resize(frame.firstLabel);
  ScriptValue value =
      objectFrom(std::move(labels), closeValues(frame.firstValue), frame.isPlainRecord);
  values_.push_back(std::move(value));
  lastNumber_.reset();
}

ScriptValue TypedJsonBuilder::take() { return std::exchange(values_, {}).front(); }

ScriptValue TypedJsonBuilder::objectFrom(std::vector<Text> labels, std::vector<ScriptValue> values,
                                         bool isPlainRecord) {
  if (!isPlainRecord) {
    if (auto special = specialForm(labels, values)) return std::move(*special);
    // "$record" among other labels is a label like any: what lies under it was
    // read as a plain record and is looked at again.
    if (!labels.empty() && labels.front().view() == u"$record" && values.front().hasFields()) {
      std::vector<Text> innerLabels;
      std::vector<ScriptValue> innerValues;
      for (const ScriptField& field : values.front().fields()) {
        if (field.keyword != "usrf"_code) return recordFrom(std::move(labels), std::move(values));
        const auto items = field.value.items();
        for (std::size_t i = 0; i + 1 < items.size(); i += 2) {
          innerLabels.push_back(core::textFromScriptValue(items[i]).value_or(Text()));
          innerValues.push_back(items[i + 1]);
        }
      }
      if (auto special = specialForm(innerLabels, innerValues)) values.front() = *special;
    }
  }
  return recordFrom(std::move(labels), std::move(values));
}

std::optional<ScriptValue> TypedJsonBuilder::specialForm(const std::vector<Text>& labels,
                                                         const std::vector<ScriptValue>& values) {
  if (labels.size() == 1 && labels.front().view().starts_with(u'$')) {
    return singleForm(labels.front().view(), values.front());
  }
  if (labels.size() != 2) return std::nullopt;
  for (const std::size_t main : {0U, 1U}) {
    const std::u16string_view companion = labels[1 - main].view();
    if (labels[main].view() == u"$number" && companion == u"as") {
      return numberForm(values[main], values[1 - main]);
    }
    if (labels[main].view() == u"$raw" && companion == u"data") {
      return rawForm(values[main], values[1 - main]);
    }
  }
  return std::nullopt;
}

ScriptValue TypedJsonBuilder::singleForm(std::u16string_view label, const ScriptValue& value) {
  if (label == u"$record") {
    if (!value.hasFields()) refuse("“$record” needs an object");
    return value;
  }
  if (label == u"$null") {
    if (value.type() != "true"_code) refuse("“$null” needs true");
    return ScriptValue::null();
  }
  if (label == u"$real") return specialReal(textOf(value, label));
  if (label == u"$date") return dateFrom(textOf(value, label));
  if (label == u"$ldt") {
    const auto seconds = core::numberFromScriptValue(value);
    if (!seconds || seconds->isReal() || seconds->kind() == NumberKind::boolean)
      refuse("“$ldt” needs an integer of 64 bits");
    return ScriptValue::withPlain("ldt "_code, seconds->asInteger());
  }
  if (label == u"$file") {
    return ScriptValue::withPayload(
        "furl"_code, foundation::fileUrl(absolutePath(value, label))->absoluteString);
  }
  if (label == u"$url") return ScriptValue::withPayload("furl"_code, textOf(value, label));
  if (label == u"$alias") {
    return ScriptValue::withPayload("alis"_code, absolutePath(value, label));
  }
  if (label == u"$fsrf") {
    return ScriptValue::withPayload("fsrf"_code, absolutePath(value, label));
  }
  if (label == u"$data") return ScriptValue::withPayload("rdat"_code, bytesOf(value, label));
  if (label == u"$type") return ScriptValue::typeCode(codeOf(value, label));
  if (label == u"$enum") return ScriptValue::withPlain("enum"_code, codeOf(value, label));
  if (label == u"$script") return ScriptValue::withPayload("scpt"_code, bytesOf(value, label));
  if (label == u"$source") {
    const auto source = core::textFromScriptValue(value);
    if (!source) refuse("“$source” needs a text");
    if (compileSource_ == nullptr) refuse("“$source” needs a script engine to compile with");
    return ScriptValue::withPayload("scpt"_code, (*compileSource_)(source->view()));
  }
  if (label == u"$number") refuse("“$number” needs its companion “as”");
  if (label == u"$raw") refuse("“$raw” needs its companion “data”");
  refuse("“" + utf8(label) +
         "” is not one of the forms of typed JSON; a record with such a "
         "label is written {\"$record\": {…}}");
}

ScriptValue TypedJsonBuilder::numberForm(const ScriptValue& value, const ScriptValue& type) const {
  if (!lastNumber_ || !core::isNumberType(value.type())) refuse("“$number” needs a number");
  return numberOfType(codeOf(type, u"as"), *lastNumber_);
}

}  // namespace skerrow::scripting
