#pragma once
// TypedJsonBuilder: makes a script value from the pieces of a typed JSON text as
// they are read, in order. Nothing but the finished values is kept.

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "values/number.h"
#include "values/script_value.h"
#include "values/text.h"

namespace skerrow::scripting {

/// Compiles the text of a script into its data; throws JsonError when it cannot.
using CompileSource = std::function<std::string(std::u16string_view source)>;

/// What is wrong with a JSON text, in words for a person, with its place once known.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TypedJsonBuilder {
 public:
  explicit TypedJsonBuilder(const CompileSource* compileSource) : compileSource_(compileSource) {}

  // Each throws JsonError for what has no place in typed JSON.
  void addNull();
  void addBoolean(bool value);
  void addNumber(Number number);
  void addText(std::u16string_view text);
  void beginArray();
  void endArray();
  void beginObject();
  void addLabel(std::u16string_view label);
  void endObject();

  /// Whether an array or object is still open.
  [[nodiscard]] bool isInside() const noexcept { return !frames_.empty(); }

  /// The finished value; the builder is then ready for the next one.
  [[nodiscard]] ScriptValue take();

 private:
  // What an object can be read as. Most can be read as one thing only; the object
  // under "$record" is a plain record if that is the only label beside it, and that
  // shows only later.
  struct Reading {
    std::optional<ScriptValue> value;
    std::string problem;  // why it cannot be read so
  };
  struct Frame {
    bool isObject;
    std::size_t firstValue;
    std::size_t firstLabel;
    std::optional<Reading> plainFirst = {};  // the first member's object as a plain record
    std::string problem = {};                // of a member, unless it is read as a plain record
  };

  void open(bool isObject);
  [[nodiscard]] std::vector<ScriptValue> closeValues(std::size_t first);
  void closeObject(const Frame& frame);
  // Takes the labels and values over.
  [[nodiscard]] ScriptValue recordFrom(std::span<Text> labels, std::span<ScriptValue> values);
  [[nodiscard]] bool isUnderRecordLabel() const;
  [[nodiscard]] Reading readAsForm(const Frame& frame, std::span<const Text> labels,
                                   std::span<const ScriptValue> values) const;
  [[nodiscard]] std::optional<ScriptValue> specialForm(std::span<const Text> labels,
                                                       std::span<const ScriptValue> values) const;
  [[nodiscard]] ScriptValue singleForm(std::u16string_view label, const ScriptValue& value) const;
  [[nodiscard]] ScriptValue numberForm(const ScriptValue& value, const ScriptValue& type) const;

  const CompileSource* compileSource_;
  std::vector<Frame> frames_;
  std::vector<ScriptValue> values_;  // of all open arrays and objects, innermost last
  std::vector<Text> labels_;         // of all open objects, innermost last
  std::vector<ScriptField> fields_;  // room for those of the record that is being made
  std::vector<ScriptValue> userFields_;
  std::array<Text, 64> knownLabels_;  // most objects have labels that others had before
  std::optional<Number> lastNumber_;  // as it was read, if nothing was closed since
};

}  // namespace skerrow::scripting
