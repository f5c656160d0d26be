#pragma once
// TypedJsonBuilder: makes a script value from the pieces of a typed JSON text as
// they are read, in order. Nothing is kept but the finished values, and the labels
// of some objects, for others to share.

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "scripting/dictionary/dictionary.h"
#include "values/keys.h"
#include "values/number.h"
#include "values/script_value.h"
#include "values/text.h"
#include "values/value.h"

namespace skerrow::scripting {

/// Compiles the text of a script into its data; throws JsonError when it cannot.
using CompileSource = std::function<std::string(std::u16string_view source)>;

/// What the forms need that JSON alone does not hold.
struct FormServices {
  const CompileSource* compileSource = nullptr;         ///< without one, script source is an error
  const Dictionary* dictionary = &skerrowDictionary();  ///< of the names of constants
};

/// What is wrong with a JSON text, in words for a person, with its place once known.
class JsonError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TypedJsonBuilder {
 public:
  explicit TypedJsonBuilder(const FormServices& services) : services_(services) {}

  // Each throws JsonError for what has no place in typed JSON, and what begins or ends
  // NestingTooDeep.
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
  // What an object can be read as. Most can be read as one thing only. In
  //   {"$record": {"$date": "tomorrow"}}
  // the inner object is a record with the label $date, but in
  //   {"$record": {"$date": "tomorrow"}, "a": 1}
  // it is a date that cannot be read. Which of them it is shows only behind it, so
  // both readings are kept until the outer object closes or has another label.
  struct Reading {
    std::optional<ScriptValue> value;
    std::string problem;  // why it cannot be read so
  };
  struct RecordCandidate {
    Reading asPlainRecord;
    std::string problem;  // of the other reading
  };
  struct Frame {
    bool isObject;
    bool hasFormLabel;  // one that begins like those of the special forms
    std::size_t firstValue;
    std::size_t firstLabel;
    std::size_t labelHash;                            // of all labels so far
    std::unique_ptr<RecordCandidate> candidate = {};  // the first member, under "$record"
  };
  using Labels = std::span<const std::u16string_view>;
  using Values = std::span<const ScriptValue>;

  // The labels of the objects that are open, innermost last, in one run of units.
  class LabelStack {
   public:
    void push(std::u16string_view label) {
      const std::size_t begin = startOf(ends_.size());
      if (units_.size() - begin < label.size()) units_.resize(2 * units_.size() + label.size());
      label.copy(units_.data() + begin, label.size());
      ends_.push_back(begin + label.size());
    }
    [[nodiscard]] std::size_t count() const noexcept { return ends_.size(); }
    /// Valid until the next change.
    [[nodiscard]] std::u16string_view operator[](std::size_t i) const noexcept {
      return std::u16string_view(units_).substr(startOf(i), ends_[i] - startOf(i));
    }
    /// Whether those from one on are these texts.
    [[nodiscard]] bool are(std::span<const Value> texts, std::size_t first) const noexcept {
      if (count() - first != texts.size()) return false;
      for (std::size_t i = 0; i < texts.size(); ++i) {
        if (!haveSameUnits(texts[i].text(), (*this)[first + i])) return false;
      }
      return true;
    }
    /// Drops all but so many.
    void cut(std::size_t count) noexcept {
      while (ends_.size() > count) ends_.pop_back();
    }

   private:
    [[nodiscard]] std::size_t startOf(std::size_t i) const noexcept {
      return i == 0 ? 0 : ends_[i - 1];
    }

    std::u16string units_;  // room for them
    std::vector<std::size_t> ends_;
  };

  // Labels that an object had, and their hash.
  struct KnownKeys {
    std::size_t hash = 0;
    Keys keys = {};
  };

  void open(bool isObject);
  [[nodiscard]] const Keys* userLabelsOf(const Frame& frame);
  void close(const Frame& frame, ScriptValue value);
  void closeObject(const Frame& frame);
  // Takes the values from where they lie.
  [[nodiscard]] static ScriptValue recordFrom(Labels labels, std::span<ScriptValue> values);
  [[nodiscard]] bool isUnderRecordLabel(const Frame& frame) const;
  [[nodiscard]] Reading readAsForm(const Frame& frame, Labels labels, Values values) const;
  [[nodiscard]] std::optional<ScriptValue> specialForm(Labels labels, Values values) const;
  [[nodiscard]] ScriptValue singleForm(std::u16string_view label, const ScriptValue& value) const;
  [[nodiscard]] ScriptValue numberForm(const ScriptValue& value, const ScriptValue& type) const;

  FormServices services_;
  std::vector<Frame> frames_;
  std::vector<ScriptValue> values_;  // of all open arrays and objects, innermost last
  LabelStack labels_;
  std::array<KnownKeys, 64> knownKeys_;  // most objects have the labels of others before
  std::optional<Number> lastNumber_;     // as it was read, if nothing was closed since
};

}  // namespace skerrow::scripting
