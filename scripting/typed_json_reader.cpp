#include "scripting/typed_json_reader.h"

#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "core/unpack.h"
#include "foundation/text_encoding.h"
#include "scripting/json_encodings.h"
#include "values/depth.h"

// Most often there is none, and that is seen at once.
template <>
inline void rapidjson::SkipWhitespace(skerrow::scripting::JsonSource& source) {
  for (;;) {
    const char next = source.Peek();
    if (next > ' ' || (next != ' ' && next != '\n' && next != '\r' && next != '\t')) return;
    source.skip(1);
  }
}

namespace skerrow::scripting {

namespace {

// What the text is an instance of. Arguments and events are objects of known
// shape around typed values.
enum class Form { value, arguments, event };

std::string quoted(const std::string& text) { return "“" + text + "”"; }

// Receives the pieces of the text from the JSON library. The names are the
// library's.
class Receiver {
 public:
  Receiver(Form form, const JsonSource& source, const CompileSource* compileSource)
      : source_(source),
        builder_(compileSource),
        place_(form == Form::value ? Place::value : Place::outside),
        form_(form) {}

  bool Null() {
    return leaf([this] { builder_.addNull(); });
  }
  bool Bool(bool value) {
    return leaf([this, value] { builder_.addBoolean(value); });
  }
  bool Int(int value) { return addNumber(Number::signed32(value)); }
  bool Uint(unsigned value) { return addNumber(Number::unsigned32(value)); }
  bool Int64(std::int64_t value) { return addNumber(Number::signed64(value)); }
  bool Uint64(std::uint64_t value) { return addNumber(Number::unsigned64(value)); }
  bool Double(double value) {
    // What the library makes of zeros with an exponent, such as -0e300, is undefined.
    return addNumber(Number::real(source_.zeroBehind().value_or(value)));
  }
  // Only asked for when numbers are wanted as they are written.
  static bool RawNumber(const char16_t* /*units*/, rapidjson::SizeType /*count*/, bool /*copy*/) {
    return false;
  }
  bool String(const char16_t* units, rapidjson::SizeType count, bool /*copy*/) {
    return leaf([&] { builder_.addText({units, count}); });
  }
  bool StartArray() {
    lastToken_ = source_.Tell();
    requireValuePlace();
    builder_.beginArray();
    return true;
  }
  bool EndArray(rapidjson::SizeType /*count*/) {
    builder_.endArray();
    return finishValue();
  }
  bool StartObject() {
    lastToken_ = source_.Tell();
    if (!builder_.isInside()) {
      if (place_ == Place::outside)
        return enter(form_ == Form::event ? Place::event : Place::arguments);
      if (place_ == Place::event && key_ == "arguments") {
        event_.arguments.clear();
        return enter(Place::arguments);
      }
    }
    builder_.beginObject();
    return true;
  }
  bool Key(const char16_t* units, rapidjson::SizeType count, bool /*copy*/) {
    lastToken_ = source_.Tell();
    const std::u16string_view label(units, count);
    if (builder_.isInside()) {
      builder_.addLabel(label);
    } else {
      key_ = foundation::utf8FromUtf16(label);
      if (place_ == Place::event) requireMember();
    }
    return true;
  }
  bool EndObject(rapidjson::SizeType /*count*/) {
    if (builder_.isInside()) {
      builder_.endObject();
      return finishValue();
    }
    place_ = place_ == Place::arguments && form_ == Form::event ? Place::event : Place::outside;
    return true;
  }
  ScriptValue takeValue() { return std::move(value_); }
  Event takeEvent() { return std::move(event_); }
  /// Where the token ends that was received last, but for closing brackets.
  [[nodiscard]] std::size_t lastPlace() const { return lastToken_ - 1; }
  [[nodiscard]] bool hasCommand() const { return !event_.command.empty(); }

 private:
  enum class Place { value, outside, event, arguments };

  bool enter(Place place) {
    place_ = place;
    return true;
  }

  void requireValuePlace() const {
    if (builder_.isInside()) return;
    if (place_ == Place::outside) {
      throw JsonError(form_ == Form::event
                          ? "an event is an object such as {\"command\": "
                            "\"SKWModifyList\", \"direct\": [1, 2]}"
                          : "arguments are an object such as {\"reversingOrder\": true}");
    }
    if (place_ == Place::event && key_ == "arguments")
      throw JsonError("“arguments” needs an object");
  }

  bool addNumber(Number number) {
    return leaf([this, number] { builder_.addNumber(number); });
  }

  template <class Add>
  bool leaf(Add&& add) {
    lastToken_ = source_.Tell();
    requireValuePlace();
    add();
    return finishValue();
  }

  // A value has been added; it may complete what the builder holds.
  bool finishValue() {
    if (builder_.isInside()) return true;
    ScriptValue value = builder_.take();
    if (place_ == Place::value) {
      value_ = std::move(value);
    } else if (place_ == Place::arguments) {
      setArgument(std::move(value));
    } else {
      setMember(std::move(value));
    }
    return true;
  }

  void setArgument(ScriptValue value) {
    const auto there =
        std::ranges::find(event_.arguments, key_, &EventArguments::value_type::first);
    if (there != event_.arguments.end()) {
      there->second = std::move(value);
    } else {
      // Far more than any command takes, and few enough to be searched one by one.
      constexpr std::size_t kMostArguments = 1000;
      if (event_.arguments.size() == kMostArguments) {
        throw JsonError("“arguments” holds more than 1000 arguments");
      }
      event_.arguments.emplace_back(key_, std::move(value));
    }
  }

  void setMember(ScriptValue value) {
    if (key_ == "direct") {
      event_.directParameter = std::move(value);
    } else if (key_ == "command") {
      const auto name = core::textFromScriptValue(value);
      if (!name || name->isEmpty()) throw JsonError("“command” needs the name of a command");
      event_.command = foundation::utf8FromUtf16(name->view());
    } else if (key_ == "timeout") {
      const auto seconds = core::numberFromScriptValue(value);
      const auto timeout = seconds && seconds->kind() != NumberKind::boolean
                               ? timeoutFromSeconds(seconds->asReal())
                               : std::nullopt;
      if (!timeout) throw JsonError("“timeout” needs a number of seconds, 0 or more");
      event_.timeout = *timeout;
    }
  }

  void requireMember() const {
    const bool isKnown =
        key_ == "command" || key_ == "direct" || key_ == "arguments" || key_ == "timeout";
    if (!isKnown) throw JsonError("an event has no member " + quoted(key_));
  }

  const JsonSource& source_;
  std::size_t lastToken_ = 1;
  TypedJsonBuilder builder_;
  Place place_;
  Form form_;
  std::string key_;
  ScriptValue value_;
  Event event_;
};

constexpr const char* kControlCharacter =
    "a control character in a text must be written as an escape";

// What the library found, in words for a person who may not know its terms.
std::string problemFrom(rapidjson::ParseErrorCode code, bool isControlCharacter) {
  switch (code) {
    case rapidjson::kParseErrorDocumentEmpty:
      return "there is no JSON value here";
    case rapidjson::kParseErrorDocumentRootNotSingular:
      return "something follows the end of the value";
    case rapidjson::kParseErrorValueInvalid:
      return "a value was expected here";
    case rapidjson::kParseErrorObjectMissName:
      return "a name in double quotes, or “}”, was expected here";
    case rapidjson::kParseErrorObjectMissColon:
      return "a colon was expected after the name";
    case rapidjson::kParseErrorObjectMissCommaOrCurlyBracket:
      return "a comma or “}” was expected after the member";
    case rapidjson::kParseErrorArrayMissCommaOrSquareBracket:
      return "a comma or “]” was expected after the item";
    case rapidjson::kParseErrorStringUnicodeEscapeInvalidHex:
      return "four hexadecimal digits were expected after \\u";
    case rapidjson::kParseErrorStringEscapeInvalid:
      return isControlCharacter ? kControlCharacter : "there is no such escape";
    case rapidjson::kParseErrorStringMissQuotationMark:
      return isControlCharacter ? kControlCharacter : "the text has no closing quotation mark";
    case rapidjson::kParseErrorStringInvalidEncoding:
      return "the text is not valid UTF-8";
    case rapidjson::kParseErrorNumberTooBig:
      return "the number is too large";
    case rapidjson::kParseErrorNumberMissFraction:
      return "a digit was expected after the decimal point";
    case rapidjson::kParseErrorNumberMissExponent:
      return "a digit was expected in the exponent";
    default:
      return rapidjson::GetParseError_En(code);
  }
}

[[noreturn]] void failAt(const JsonSource& source, std::size_t offset, const std::string& problem) {
  throw JsonError(source.placeOf(offset) + ": " + problem);
}

void read(JsonSource& source, Receiver& receiver) {
  // Reading recurses, as deep as values go.
  constexpr unsigned kFlags =
      rapidjson::kParseValidateEncodingFlag | rapidjson::kParseFullPrecisionFlag;
  rapidjson::GenericReader<JsonUtf8, JsonUtf16> reader;
  rapidjson::ParseResult result;
  try {
    result = reader.Parse<kFlags>(source, receiver);
  } catch (const NestingTooDeep& tooDeep) {
    std::string_view problem = tooDeep.what();
    problem.remove_suffix(1);  // its full stop comes where the whole message ends
    failAt(source, receiver.lastPlace(), std::string(problem));
  } catch (const JsonError& error) {
    failAt(source, receiver.lastPlace(), error.what());
  }
  if (result.IsError()) {
    const bool isControlCharacter =
        static_cast<unsigned char>(source.Peek()) < ' ' && !source.isAtEnd();
    failAt(source, result.Offset(), problemFrom(result.Code(), isControlCharacter));
  }
  if (!source.isAtEnd()) failAt(source, source.Tell(), "the character NUL has no place here");
}

}  // namespace

ScriptValue readTypedJson(JsonSource& source, const CompileSource* compileSource) {
  Receiver receiver(Form::value, source, compileSource);
  read(source, receiver);
  return receiver.takeValue();
}

EventArguments readArguments(JsonSource& source, const CompileSource* compileSource) {
  Receiver receiver(Form::arguments, source, compileSource);
  read(source, receiver);
  return receiver.takeEvent().arguments;
}

Event readEvent(JsonSource& source, const CompileSource* compileSource) {
  Receiver receiver(Form::event, source, compileSource);
  read(source, receiver);
  if (!receiver.hasCommand()) {
    failAt(source, source.Tell(), "the event does not name its “command”");
  }
  return receiver.takeEvent();
}

}  // namespace skerrow::scripting
