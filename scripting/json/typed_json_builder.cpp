#include "scripting/json/typed_json_builder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <memory>
#include <utility>

#include "core/unpack.h"
#include "foundation/date/long_date_time.h"
#include "foundation/encoding/base64.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/quoted_text.h"
#include "foundation/text/text_encoding.h"
#include "foundation/url/url.h"
#include "scripting/dictionary/nearest.h"
#include "values/depth.h"
#include "values/object_reference.h"

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
std::optional<FourCharCode> codeFrom(const std::string& text) {
  std::uint32_t bits = 0;
  if (text.size() == 10 && text.starts_with("0x")) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 2, end, bits, 16);
    if (error == std::errc() && stop == end) return FourCharCode{bits};
  }
  return foundation::codeFromText(foundation::utf16FromUtf8Replacing(text));
}

FourCharCode codeOf(const ScriptValue& value, std::u16string_view form) {
  const auto code = codeFrom(textOf(value, form));
  if (!code) refuse("“" + utf8(form) + "” needs four characters, or 0x and eight digits");
  return *code;
}

// An enumerator by its code or its name. One name has one code, whichever enumeration
// it belongs to; four characters are a name only where they are that of an enumerator.
FourCharCode enumeratorOf(const ScriptValue& value, const Dictionary& dictionary) {
  const std::string text = textOf(value, u"$enum");
  const auto code = codeFrom(text);
  if (code && dictionary.enumerator(*code) != nullptr) return *code;
  if (const EnumeratorEntry* named = dictionary.enumeratorByWords(text)) return named->code;
  if (code) return *code;
  Nearest nearest(text);
  for (const EnumerationEntry& enumeration : dictionary.enumerations) {
    for (const EnumeratorEntry& one : enumeration.enumerators) nearest.consider(one.words);
  }
  refuse("there is no constant “" + foundation::shortened(text) + "”" +
         (nearest.found().empty()
              ? "; “$enum” needs the name of one, four characters, or 0x and eight digits"
              : " (did you mean “" + std::string(nearest.found()) + "”?)"));
}

ScriptValue referenceFrom(std::string path) {
  if (path.empty()) refuse("“$object” needs a path such as progWin.progMessage");
  return ScriptValue::reference(std::make_shared<PathReference>(std::move(path)));
}

// An integer takes the smallest of the signed types that holds it.
ScriptValue plainNumber(Number number) {
  const bool isUnsigned = number.kind() == NumberKind::unsigned64;
  if (number.isReal() || (isUnsigned && !std::in_range<std::int64_t>(number.asUnsigned()))) {
    return ScriptValue::real(number.asReal());
  }
  const std::int64_t integer = number.asInteger();
  if (std::in_range<std::int32_t>(integer)) {
    return ScriptValue::integer32(static_cast<std::int32_t>(integer));
  }
  return ScriptValue::withPlain("comp"_code, integer);
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

// A text that names a file, as the bytes that the file system knows.
std::string fileNameOf(const ScriptValue& value, std::u16string_view form) {
  const auto text = core::textFromScriptValue(value);
  if (!text) refuse("“" + utf8(form) + "” needs a text");
  auto name = foundation::fileNameFromText(text->view());
  if (!name) {
    refuse("“" + utf8(form) + "” cannot hold a lone surrogate but \\uDC80 to \\uDCFF");
  }
  return std::move(*name);
}

// A URL as it stands; only what stands for a byte of a file name is escaped.
std::string urlOf(const ScriptValue& value, std::u16string_view form) {
  std::string url = fileNameOf(value, form);
  const auto text = core::textFromScriptValue(value);
  if (!foundation::hasLoneSurrogate(text->view())) return url;
  url.clear();
  for (std::size_t i = 0; i < text->view().size();) {
    const foundation::CodePoint character = foundation::codePointAt(text->view(), i);
    const std::string bytes =
        *foundation::fileNameFromText(text->view().substr(i, character.unitCount));
    if (character.isLoneSurrogate()) {
      char escape[4];
      std::snprintf(escape, sizeof escape, "%%%02X", static_cast<unsigned char>(bytes.front()));
      url += escape;
    } else {
      url += bytes;
    }
    i += character.unitCount;
  }
  return url;
}

// A path, without slashes at its end, so that one file has one spelling.
std::string absolutePath(const ScriptValue& value, std::u16string_view form) {
  std::string path = fileNameOf(value, form);
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
  labels_.push(label);
  Frame& frame = frames_.back();
  frame.hasFormLabel = frame.hasFormLabel || label.starts_with(u'$');
  // A hash at a glance: where it is the same for different labels, they are not shared.
  std::size_t glance = label.size();
  if (!label.empty()) {
    glance += std::size_t{label.front()} << 16U | std::size_t{label[label.size() / 2]} << 32U |
              std::size_t{label.back()} << 48U;
  }
  frame.labelHash = (frame.labelHash ^ glance) * 0x9E3779B97F4A7C15ULL;
}

void TypedJsonBuilder::open(bool isObject) {
  if (frames_.size() >= kMaximumDepth) throw NestingTooDeep();
  frames_.push_back({isObject, false, values_.size(), labels_.count(), 0});
}

void TypedJsonBuilder::endArray() {
  const Frame frame = std::move(frames_.back());
  frames_.pop_back();
  const std::size_t first = frame.firstValue;
  ScriptValue list = first == 0 ? ScriptValue::list(std::exchange(values_, {}))  // all there is
                                : ScriptValue::listTaking(std::span(values_).subspan(first));
  close(frame, std::move(list));
}

void TypedJsonBuilder::endObject() {
  const Frame frame = std::move(frames_.back());
  frames_.pop_back();
  const bool isUnderFormLabel = !frames_.empty() && frames_.back().hasFormLabel;
  const Keys* const labels = frame.hasFormLabel || isUnderFormLabel ? nullptr : userLabelsOf(frame);
  if (labels == nullptr) return closeObject(frame);
  close(frame, ScriptValue::labelledRecord(*labels, std::span(values_).subspan(frame.firstValue)));
}

// Puts the finished value where its members lay.
void TypedJsonBuilder::close(const Frame& frame, ScriptValue value) {
  labels_.cut(frame.firstLabel);
  values_.resize(frame.firstValue);
  values_.push_back(std::move(value));
  lastNumber_.reset();
}

// The labels of an object, if all are those of user fields and none is there twice.
const Keys* TypedJsonBuilder::userLabelsOf(const Frame& frame) {
  KnownKeys& known = knownKeys_[(frame.labelHash >> 32U) % knownKeys_.size()];
  if (known.hash == frame.labelHash && labels_.are(known.keys.all(), frame.firstLabel)) {
    return &known.keys;
  }
  Keys keys;
  for (std::size_t i = frame.firstLabel; i < labels_.count(); ++i) {
    if (foundation::keywordFromKey(labels_[i])) return nullptr;
    Value label(labels_[i]);
    if (keys.position(label) != Keys::kNone) return nullptr;
    keys.append(std::move(label));
  }
  known = {frame.labelHash, std::move(keys)};
  return &known.keys;
}

// A record that may have other fields than user fields.
ScriptValue TypedJsonBuilder::recordFrom(Labels labels, std::span<ScriptValue> values) {
  FourCharCode type = kPlainRecord;
  std::vector<ScriptField> fields;
  std::vector<ScriptValue> userFields;
  std::size_t userFieldsAt = 0;  // they stand where the first of them stood
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (i == 0 && labels[i] == kClassKey && isClass(values[i])) {
      type = *values[i].namedCode();
    } else if (const auto keyword = foundation::keywordFromKey(labels[i])) {
      fields.push_back({*keyword, std::move(values[i])});
    } else {
      if (userFields.empty()) userFieldsAt = fields.size();
      userFields.push_back(ScriptValue::text(Text(labels[i])));
      userFields.push_back(std::move(values[i]));
    }
  }
  if (!userFields.empty()) {
    fields.insert(fields.begin() + static_cast<std::ptrdiff_t>(userFieldsAt),
                  {kUserFields, ScriptValue::list(std::move(userFields))});
  }
  return ScriptValue::record(type, std::move(fields));
}

// An object that has other labels than those of user fields, or stands under one that has.
void TypedJsonBuilder::closeObject(const Frame& frame) {
  std::vector<std::u16string_view> labels;
  for (std::size_t i = frame.firstLabel; i < labels_.count(); ++i) labels.push_back(labels_[i]);
  const auto values = std::span(values_).subspan(frame.firstValue);

  const Reading form = readAsForm(frame, labels, values);
  const bool isForm = form.value || !form.problem.empty();
  const bool isFirst = isUnderRecordLabel(frame);
  Reading plain{std::nullopt, frame.candidate ? frame.candidate->problem : ""};
  if ((!isForm || isFirst) && plain.problem.empty()) plain.value = recordFrom(labels, values);
  const Reading& reading = isForm ? form : plain;
  close(frame, reading.value.value_or(ScriptValue()));
  if (isFirst) {
    std::string problem = reading.problem;
    frames_.back().candidate =
        std::make_unique<RecordCandidate>(RecordCandidate{std::move(plain), std::move(problem)});
  } else if (!reading.problem.empty()) {
    refuse(reading.problem);
  }
}

// Whether an object that was closed is the first member of another one, and that
// may be the form that holds a plain record.
bool TypedJsonBuilder::isUnderRecordLabel(const Frame& frame) const {
  return !frames_.empty() && frames_.back().isObject &&
         frame.firstLabel == frames_.back().firstLabel + 1 &&
         labels_[frame.firstLabel - 1] == kRecord;
}

ScriptValue TypedJsonBuilder::take() { return std::exchange(values_, {}).front(); }

// As one of the special forms; neither value nor problem when it has none of their shapes.
TypedJsonBuilder::Reading TypedJsonBuilder::readAsForm(const Frame& frame, Labels labels,
                                                       Values values) const {
  if (labels.size() == 1 && labels.front() == kRecord) {
    if (!frame.candidate) return {std::nullopt, "“$record” needs an object"};
    return frame.candidate->asPlainRecord;
  }
  try {
    return {specialForm(labels, values), {}};
  } catch (const JsonError& error) {
    return {std::nullopt, error.what()};
  }
}

std::optional<ScriptValue> TypedJsonBuilder::specialForm(Labels labels, Values values) const {
  if (labels.size() == 1 && labels.front().starts_with(u'$')) {
    return singleForm(labels.front(), values.front());
  }
  if (labels.size() != 2) return std::nullopt;
  for (const std::size_t main : {0U, 1U}) {
    const std::u16string_view companion = labels[1 - main];
    if (labels[main] == u"$number" && companion == u"as") {
      return numberForm(values[main], values[1 - main]);
    }
    if (labels[main] == u"$raw" && companion == u"data") {
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
  if (label == u"$url") return ScriptValue::withPayload("furl"_code, urlOf(value, label));
  if (label == u"$alias") {
    return ScriptValue::withPayload("alis"_code, absolutePath(value, label));
  }
  if (label == u"$fsrf") {
    return ScriptValue::withPayload("fsrf"_code, absolutePath(value, label));
  }
  if (label == u"$data") return ScriptValue::withPayload("rdat"_code, bytesOf(value, label));
  if (label == u"$type") return ScriptValue::typeCode(codeOf(value, label));
  if (label == u"$enum") {
    return ScriptValue::withPlain("enum"_code, enumeratorOf(value, *services_.dictionary));
  }
  if (label == u"$object") return referenceFrom(textOf(value, label));
  if (label == u"$script") return ScriptValue::withPayload("scpt"_code, bytesOf(value, label));
  if (label == u"$source") {
    const auto source = core::textFromScriptValue(value);
    if (!source) refuse("“$source” needs a text");
    if (services_.compileSource == nullptr) {
      refuse("“$source” needs a script engine to compile with");
    }
    return ScriptValue::withPayload("scpt"_code, (*services_.compileSource)(source->view()));
  }
  if (label == u"$number") refuse("“$number” needs its companion “as”");
  if (label == u"$raw") refuse("“$raw” needs its companion “data”");
  refuse("“" + foundation::shortened(label) +
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
