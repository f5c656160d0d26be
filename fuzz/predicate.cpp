// Reads arbitrary bytes as a predicate format and asks it of values of every kind.
// Only a PredicateError may come out of it, and soon.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/predicate/predicate.h"
#include "foundation/text/text_encoding.h"
#include "platform/clock.h"
#include "platform/system_platform.h"
#include "values/record.h"
#include "values/value.h"

namespace {

using skerrow::Date;
using skerrow::Number;
using skerrow::Record;
using skerrow::Value;
using skerrow::foundation::Predicate;
using skerrow::foundation::PredicateError;

std::vector<Value> everyKind() {
  const Value numbers(std::vector<Value>{Number::signed64(3), Number::real(-0.5), Value()});
  const Value texts(std::vector<Value>{u"a", u"Éa", u"10", u""});
  const Value inner(Record{{u"a", Number::signed64(1)}, {u"b", texts}});
  return {Value(),
          Number::boolean(true),
          Number::signed64(INT64_MIN),
          Number::unsigned64(UINT64_MAX),
          Number::real(0.0 / -1.0),
          Date{1.5},
          u"",
          u"aAé*?\\\xD800",
          skerrow::Url{"file:///a"},
          Value::data("bytes"),
          numbers,
          texts,
          std::vector<Value>{inner, inner, u"a"},
          Record{{u"a", Number::signed64(7)},
                 {u"b", u"text"},
                 {u"c", numbers},
                 {u"d", inner},
                 {u"e", std::vector<Value>{inner, inner}}}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const skerrow::platform::SystemPlatform system;
  static const skerrow::platform::SystemClock clock;
  static const std::vector<Value> items = everyKind();
  static const Record variables{{u"x", u"a"}, {u"y", items.back()}};
  const std::u16string format =
      skerrow::foundation::utf16FromUtf8Replacing({reinterpret_cast<const char*>(bytes), size});
  try {
    const Predicate predicate = Predicate::parse(
        format, items,
        {.environment = &system.environment, .clock = &clock, .chance = &system.chance});
    for (const Value& item : items) {
      try {
        if (predicate.evaluate(item, variables) != Predicate(predicate).evaluate(item, variables) &&
            format.find(u'r') == std::u16string::npos &&
            format.find(u'R') == std::u16string::npos &&
            format.find(u'n') == std::u16string::npos &&
            format.find(u'N') == std::u16string::npos) {
          __builtin_trap();  // only random() and now() may change their minds
        }
      } catch (const PredicateError&) {  // NOLINT(bugprone-empty-catch): an answer like another
      }
    }
  } catch (const PredicateError& error) {
    if (error.reason().empty()) __builtin_trap();
  }
  return 0;
}
