// Reads arbitrary bytes as a key path and follows it through values of every kind.
// Only a KeyPathError may come out of it, exactly where the lookup without a reason
// finds nothing.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/key_path/key_path.h"
#include "foundation/text/text_encoding.h"
#include "values/record.h"
#include "values/value.h"

namespace {

using skerrow::Number;
using skerrow::Record;
using skerrow::Value;
using skerrow::foundation::KeyPath;
using skerrow::foundation::KeyPathError;

std::vector<Value> everyKind() {
  const Value texts(std::vector<Value>{u"a", u"10", u""});
  const Value inner(Record{{u"a", Number::signed64(1)}, {u"b", texts}, {u"", u"empty"}});
  const Value lists(std::vector<Value>{texts, texts, std::vector<Value>{}});
  return {Value(),
          Number::real(1.5),
          skerrow::Date{1.5},
          u"text",
          texts,
          lists,
          std::vector<Value>{inner, inner, Value()},
          std::vector<Value>{std::vector<Value>{inner}, std::vector<Value>{inner, inner}},
          Record{{u"a", lists}, {u"b", std::vector<Value>{inner}}, {u"c", inner}, {u"@x", texts}}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const std::vector<Value> items = everyKind();
  const std::u16string text =
      skerrow::foundation::utf16FromUtf8Replacing({reinterpret_cast<const char*>(bytes), size});
  for (const KeyPath::TextKeys textKeys : {KeyPath::TextKeys::none, KeyPath::TextKeys::published}) {
    try {
      const KeyPath path(text, textKeys);
      for (const Value& item : items) {
        Value room;
        skerrow::foundation::StepBudget steps;
        const Value* const found = path.find(item, room, steps);
        try {
          const Value value = path.valueIn(item);
          if (found == nullptr || *found != value) __builtin_trap();
        } catch (const KeyPathError&) {
          if (found != nullptr) __builtin_trap();
        }
      }
    } catch (const KeyPathError& error) {
      if (error.reason().empty()) __builtin_trap();
    }
  }
  return 0;
}
