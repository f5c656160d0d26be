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
constexpr std::u16string_view kRecord = u"$record";

std::string utf8(std::u16string_view text) { return foundation::utf8FromUtf16(text); }

[[noreturn]] void refuse(const std::string& problem) { throw JsonError(problem); }

std::string textOf(const ScriptValue& value, std::u16string_view form) {
  const auto text = core::textFromScriptValue(value);
  if (!text) refuse("“" + utf8(form) + "” needs a text");
  if (foundation::hasLoneSurrogate(text->view())) {
    refuse("“" + utf8(form) + "” cannot hold a lone surrogate");
  }
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
      // Beyond this a number no longer rounds to one that four bytes hold.
      if (std::isfinite(value.asReal()) && std::abs(value.asReal()) >= 0x1.ffffffp127) {
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
        "“$date” needs a date and time that exist, written with an offset as in "
        "2024-03-01T15:05:00Z");
  }
  return ScriptValue::withPlain("ldt "_code, *seconds);
}

// A path, without slashes at its end, so that one file has one spelling.
std::string absolutePath(const ScriptValue& value, std::u16string_view form) {
  std::string path = textOf(value, form);
  if (!path.starts_with('/')) refuse("“" + utf8(form) + "” needs a path that begins with “/”");
  if (path.find('\0') != std::string::npos) {
    refuse("“" + utf8(form) + "” needs a path without the character NUL");
  }
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

ScriptValue rawForm(const ScriptValue& type, const ScriptValue& data) {
  return ScriptValue::withPayload(codeOf(type, u"$raw"), bytesOf(data, u"data"));
}

// Whether a value names a class that records can be of, and not a type of other values.
bool isClass(const ScriptValue& value) {
  const auto code = value.namedCode();
  if (!code || value.isMissingValue()) return false;
  const auto unpacked = core::unpack(ScriptValue::record(*code, {}));
  return unpacked && unpacked->isRecord();
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

void TypedJsonBuilder::addLabel(std::u16string_view label) {
  constexpr std::size_t kLongestKnown = 32;
  if (label.empty() || label.size() > kLongestKnown) {
    labels_.emplace_back(label);
    return;
  }
  const std::size_t mixed = label.size() * 31 + label.front() * 7U + label.back();
  Text& known = knownLabels_[mixed % knownLabels_.size()];
  if (!haveSameUnits(known.view(), label)) known = Text(label);
  labels_.push_back(known);
}

void TypedJsonBuilder::open(bool isObject) {
  if (frames_.size() >= kMaximumDepth) throw NestingTooDeep();
  frames_.push_back({isObject, values_.size(), labels_.size()});
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
  const Frame frame = std::move(frames_.back());
  frames_.pop_back();
  const auto labels = std::span(labels_).subspan(frame.firstLabel);
  const auto values = std::span(values_).subspan(frame.firstValue);
  const bool isUnderLabel = frame.firstLabel > 0 && labels_[frame.firstLabel - 1].view() == kRecord;
  const auto isSpecial = [](const Text& label) { return label.view().starts_with(u'$'); };
  if (isUnderLabel || !frame.problem.empty() || std::ranges::any_of(labels, isSpecial)) {
    return closeObject(frame);
  }
  ScriptValue record = recordFrom(labels, values);
  labels_.resize(frame.firstLabel);
  values_.resize(frame.firstValue);
  values_.push_back(std::move(record));
  lastNumber_.reset();
}

ScriptValue TypedJsonBuilder::recordFrom(std::span<Text> labels, std::span<ScriptValue> values) {
  FourCharCode type = "reco"_code;
  fields_.clear();
  userFields_.clear();
  std::optional<std::size_t> userFieldsAt;  // they stand where the first of them stood
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::u16string_view label = labels[i].view();
    if (i == 0 && label == kClassKey && isClass(values[i])) {
      type = *values[i].namedCode();
    } else if (const auto keyword = foundation::keywordFromKey(label)) {
      fields_.push_back({*keyword, std::move(values[i])});
    } else {
      if (!userFieldsAt) userFieldsAt = fields_.size();
      userFields_.push_back(ScriptValue::text(std::move(labels[i])));
      userFields_.push_back(std::move(values[i]));
    }
  }
  if (userFieldsAt) {
    fields_.insert(fields_.begin() + static_cast<std::ptrdiff_t>(*userFieldsAt),
                   {"usrf"_code, ScriptValue::listTaking(userFields_)});
  }
  return ScriptValue::recordTaking(type, fields_);
}

// An object that is one of the special forms, or stands under the label of one.
void TypedJsonBuilder::closeObject(const Frame& frame) {
  const auto first = labels_.begin() + static_cast<std::ptrdiff_t>(frame.firstLabel);
  std::vector<Text> labels(std::make_move_iterator(first), std::make_move_iterator(labels_.end()));
  labels_.resize(frame.firstLabel);
  std::vector<ScriptValue> values = closeValues(frame.firstValue);

  Reading form = readAsForm(frame, labels, values);
  const bool isForm = form.value || !form.problem.empty();
  Reading plain{std::nullopt, frame.problem};
  if ((!isForm || isUnderRecordLabel()) && plain.problem.empty()) {
    plain.value = recordFrom(labels, values);
  }
  const Reading& reading = isForm ? form : plain;
  lastNumber_.reset();
  values_.push_back(reading.value.value_or(ScriptValue()));
  if (isUnderRecordLabel()) {
    frames_.back().problem = reading.problem;
    frames_.back().plainFirst = std::move(plain);
  } else if (!reading.problem.empty()) {
    refuse(reading.problem);
  }
}

bool TypedJsonBuilder::isUnderRecordLabel() const {
  return !frames_.empty() && frames_.back().isObject &&
         labels_.size() == frames_.back().firstLabel + 1 && labels_.back().view() == kRecord;
}

ScriptValue TypedJsonBuilder::take() { return std::exchange(values_, {}).front(); }

// As one of the special forms; neither value nor problem when it has none of their shapes.
TypedJsonBuilder::Reading TypedJsonBuilder::readAsForm(const Frame& frame,
                                                       std::span<const Text> labels,
                                                       std::span<const ScriptValue> values) const {
  if (labels.size() == 1 && labels.front().view() == kRecord) {
    return frame.plainFirst.value_or(Reading{std::nullopt, "“$record” needs an object"});
  }
  try {
    return {specialForm(labels, values), {}};
  } catch (const JsonError& error) {
    return {std::nullopt, error.what()};
  }
}

std::optional<ScriptValue> TypedJsonBuilder::specialForm(
    std::span<const Text> labels, std::span<const ScriptValue> values) const {
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

ScriptValue TypedJsonBuilder::singleForm(std::u16string_view label,
                                         const ScriptValue& value) const {
  if (label == u"$null") {
    if (value.type() != "true"_code) refuse("“$null” needs true");
    return ScriptValue::null();
  }
  if (label == u"$real") return specialReal(textOf(value, label));
  if (label == u"$date") return dateFrom(textOf(value, label));
  if (label == u"$ldt") {
    const auto seconds = core::numberFromScriptValue(value);
    if (!seconds || seconds->isReal() || seconds->kind() == NumberKind::boolean) {
      refuse("“$ldt” needs an integer of 64 bits");
    }
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
  const auto real = core::numberFromScriptValue(value);
  const bool isSpecialReal = real && real->isReal() && !std::isfinite(real->asReal());
  const bool isNumber = real && real->kind() != NumberKind::boolean;
  if (!isSpecialReal && (!lastNumber_ || !isNumber)) {
    refuse("“$number” needs a number");
  }
  return numberOfType(codeOf(type, u"as"), isSpecialReal ? *real : *lastNumber_);
}

}  // namespace skerrow::scripting
