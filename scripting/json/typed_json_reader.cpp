#include "scripting/json/typed_json_reader.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "core/unpack.h"
#include "foundation/text/quoted_text.h"
#include "foundation/text/text_encoding.h"
#include "scripting/json/json_parser.h"
#include "values/depth.h"

namespace skerrow::scripting {

namespace {

// What the text is an instance of. Arguments and events are objects of known
// shape around typed values.
enum class Form { value, arguments, event };

// Receives what the parser finds.
class Receiver {
 public:
  Receiver(Form form, JsonSource& source, const FormServices& services)
      : source_(source),
        builder_(services),
        place_(form == Form::value ? Place::value : Place::outside),
        form_(form) {}

  void null() {
    leaf([this] { builder_.addNull(); });
  }
  void boolean(bool value) {
    leaf([this, value] { builder_.addBoolean(value); });
  }
  void number(Number number) {
    leaf([this, number] { builder_.addNumber(number); });
  }
  void text(std::u16string_view units) {
    leaf([this, units] { builder_.addText(units); });
  }
  void beginArray() {
    markToken();
    requireValuePlace();
    builder_.beginArray();
  }
  void endArray() {
    builder_.endArray();
    finishValue();
  }
  void beginObject() {
    markToken();
    if (!builder_.isInside()) {
      if (place_ == Place::outside) {
        place_ = form_ == Form::event ? Place::event : Place::arguments;
        return;
      }
      if (place_ == Place::event && key_ == "arguments") {
        event_.arguments.clear();
        place_ = Place::arguments;
        return;
      }
    }
    builder_.beginObject();
  }
  void label(std::u16string_view units) {
    markToken();
    if (builder_.isInside()) {
      builder_.addLabel(units);
    } else {
      key_ = foundation::utf8FromUtf16(units);
      if (place_ == Place::event) requireMember();
    }
  }
  void endObject() {
    if (builder_.isInside()) {
      builder_.endObject();
      finishValue();
    } else {
      place_ = place_ == Place::arguments && form_ == Form::event ? Place::event : Place::outside;
    }
  }

  ScriptValue takeValue() { return std::move(value_); }
  Event takeEvent() { return std::move(event_); }
  [[nodiscard]] bool hasCommand() const { return !event_.command.empty(); }

 private:
  enum class Place { value, outside, event, arguments };

  // What is wrong with a value shows at the end of a token, or at a closing bracket, which
  // is no place to look for it.
  void markToken() { source_.mark(source_.offset() - 1); }

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

  template <class Add>
  void leaf(Add&& add) {
    markToken();
    requireValuePlace();
    add();
    finishValue();
  }

  // A value has been added; it may complete what the builder holds.
  void finishValue() {
    if (builder_.isInside()) return;
    ScriptValue value = builder_.take();
    if (place_ == Place::value) {
      value_ = std::move(value);
    } else if (place_ == Place::arguments) {
      setArgument(std::move(value));
    } else {
      setMember(std::move(value));
    }
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
    if (!isKnown) throw JsonError("an event has no member “" + foundation::shortened(key_) + "”");
  }

  JsonSource& source_;
  TypedJsonBuilder builder_;
  Place place_;
  Form form_;
  std::string key_;
  ScriptValue value_;
  Event event_;
};

[[noreturn]] void failAt(const std::string& place, const std::string& problem) {
  throw JsonError(place + ": " + problem);
}

void read(JsonSource& source, Receiver& receiver) {
  try {
    JsonParser(source, receiver).parse();
  } catch (const JsonFault& fault) {
    failAt(fault.place, fault.problem);
  } catch (const NestingTooDeep& tooDeep) {
    std::string_view problem = tooDeep.what();
    problem.remove_suffix(1);  // its full stop comes where the whole message ends
    failAt(source.placeOfMark(), std::string(problem));
  } catch (const JsonError& error) {
    failAt(source.placeOfMark(), error.what());
  }
}

}  // namespace

ScriptValue readTypedJson(JsonSource& source, const FormServices& services) {
  Receiver receiver(Form::value, source, services);
  read(source, receiver);
  return receiver.takeValue();
}

EventArguments readArguments(JsonSource& source, const FormServices& services) {
  Receiver receiver(Form::arguments, source, services);
  read(source, receiver);
  return receiver.takeEvent().arguments;
}

Event readEvent(JsonSource& source, const FormServices& services) {
  Receiver receiver(Form::event, source, services);
  read(source, receiver);
  if (!receiver.hasCommand()) {
    failAt(source.currentPlace(), "the event does not name its “command”");
  }
  return receiver.takeEvent();
}

}  // namespace skerrow::scripting
