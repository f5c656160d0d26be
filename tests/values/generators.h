#pragma once
// Random values of every sort for properties, small ones and the ends of ranges
// more often than chance would have it.

#include <rapidcheck.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "tests/values/describe.h"
#include "values/record.h"
#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::tests {

inline rc::Gen<std::u16string> arbitraryUnits() {
  return rc::gen::container<std::u16string>(rc::gen::weightedOneOf<char16_t>({
      {6, rc::gen::inRange<char16_t>(u'a', u'e')},
      {2, rc::gen::element<char16_t>(u'\0', u'"', u'\\', u'\n', u'$', u'«', u'»', 0xFEFF, 0xFFFE)},
      {2, rc::gen::inRange<char16_t>(0xD7F0, 0xE010)},
      {1, rc::gen::arbitrary<char16_t>()},
  }));
}

inline rc::Gen<std::string> arbitraryBytes() {
  return rc::gen::container<std::string>(rc::gen::arbitrary<char>());
}

template <class Integer>
rc::Gen<Integer> integerNearEnds() {
  using Limits = std::numeric_limits<Integer>;
  return rc::gen::weightedOneOf<Integer>({
      {3, rc::gen::arbitrary<Integer>()},
      {1, rc::gen::element<Integer>(Limits::min(), Limits::max(), Limits::max() - 1, 0, 1)},
  });
}

/// Any pattern of bits, and small whole numbers as often.
inline rc::Gen<double> anyReal() {
  return rc::gen::oneOf(
      rc::gen::map(
          rc::gen::arbitrary<std::uint64_t>(),
          [](std::uint64_t bits) { return std::bit_cast<double>(bits * 0x9E3779B97F4A7C15ULL); }),
      rc::gen::map(rc::gen::inRange(-3, 4), [](int whole) { return static_cast<double>(whole); }),
      rc::gen::map(
          rc::gen::inRange<std::int64_t>(-4, 5),
          [](std::int64_t step) { return std::ldexp(1.0, 63) + static_cast<double>(step) * 2048; }),
      rc::gen::element(-0.0, 9007199254740993.0, 2147483647.0, std::ldexp(1.0, 64),
                       std::numeric_limits<double>::infinity(),
                       std::numeric_limits<double>::quiet_NaN()));
}

inline rc::Gen<Number> anyNumber() {
  return rc::gen::oneOf(rc::gen::map(rc::gen::arbitrary<bool>(), Number::boolean),
                        rc::gen::map(integerNearEnds<std::int16_t>(), Number::signed16),
                        rc::gen::map(integerNearEnds<std::uint16_t>(), Number::unsigned16),
                        rc::gen::map(integerNearEnds<std::int32_t>(), Number::signed32),
                        rc::gen::map(integerNearEnds<std::uint32_t>(), Number::unsigned32),
                        rc::gen::map(integerNearEnds<std::int64_t>(), Number::signed64),
                        rc::gen::map(integerNearEnds<std::uint64_t>(), Number::unsigned64),
                        rc::gen::map(anyReal(), Number::real));
}

inline rc::Gen<Value> anyValue();

inline rc::Gen<Value> anyPlainValue() {
  return rc::gen::oneOf(
      rc::gen::just(Value()),
      rc::gen::map(anyNumber(), [](Number number) { return Value(number); }),
      rc::gen::map(arbitraryUnits(), [](std::u16string units) { return Value(std::move(units)); }),
      rc::gen::map(rc::gen::inRange<std::int64_t>(-4000000000, 4000000000),
                   [](std::int64_t seconds) { return Value(Date{static_cast<double>(seconds)}); }),
      rc::gen::map(arbitraryBytes(),
                   [](std::string bytes) { return Value::data(std::move(bytes)); }),
      rc::gen::map(rc::gen::inRange(0, 3),
                   [](int page) { return Value(Url{"file:///" + std::to_string(page)}); }));
}

inline rc::Gen<std::vector<Value>> anyValues() {
  return rc::gen::scale(0.4, rc::gen::container<std::vector<Value>>(rc::gen::lazy(anyValue)));
}

inline rc::Gen<Value> anyRecord() {
  return rc::gen::map(
      rc::gen::scale(0.4, rc::gen::container<std::vector<std::pair<std::u16string, Value>>>(
                              rc::gen::pair(arbitraryUnits(), rc::gen::lazy(anyValue)))),
      [](std::vector<std::pair<std::u16string, Value>> fields) {
        Record record;
        for (auto& [key, value] : fields) record.set(Value(std::move(key)), std::move(value));
        return Value(std::move(record));
      });
}

inline rc::Gen<Value> anyValue() {
  return rc::gen::weightedOneOf<Value>(
      {{6, anyPlainValue()},
       {1, rc::gen::map(anyValues(),
                        [](std::vector<Value> items) { return Value(std::move(items)); })},
       {1, anyRecord()}});
}

/// The same content in other storage: every number as a real where that is exact,
/// every text and list in blocks of its own, the fields of records backwards.
inline Value rebuilt(const Value& value) {
  switch (value.kind()) {
    case Kind::number: {
      const Number real = Number::real(value.number().asReal());
      return real == value.number() ? real : value.number();
    }
    case Kind::text:
      return std::u16string(value.text());
    case Kind::list: {
      std::vector<Value> items;
      for (const Value& item : value.items()) items.push_back(rebuilt(item));
      return items;
    }
    case Kind::record: {
      Record record;
      const auto fields = value.record().fields();
      for (std::size_t i = fields.size(); i-- > 0;) {
        record.set(rebuilt(fields[i].key), rebuilt(fields[i].value));
      }
      return record;
    }
    case Kind::data:
      return Value::data(std::string(value.data()));
    case Kind::url:
      return Url{value.url()};
    default:
      return value;
  }
}

inline rc::Gen<ScriptValue> anyScriptValue();

inline rc::Gen<FourCharCode> anyCode() {
  using namespace literals;
  return rc::gen::weightedOneOf<FourCharCode>(
      {{2, rc::gen::element("pnam"_code, "pcls"_code, "usrf"_code, "msng"_code)},
       {1, rc::gen::map(rc::gen::arbitrary<std::uint32_t>(),
                        [](std::uint32_t bits) { return FourCharCode{bits * 2654435761U}; })}});
}

/// Values made from bytes, of every type that has a form or width of its own.
inline rc::Gen<ScriptValue> anyPayload() {
  using namespace literals;
  const auto types =
      rc::gen::element("utxt"_code, "ut16"_code, "utf8"_code, "TEXT"_code, "STXT"_code, "itxt"_code,
                       "bool"_code, "true"_code, "fals"_code, "shor"_code, "ushr"_code, "long"_code,
                       "magn"_code, "comp"_code, "ucom"_code, "sing"_code, "doub"_code, "ldbl"_code,
                       "msng"_code, "null"_code, "type"_code, "enum"_code, "ldt "_code, "furl"_code,
                       "rdat"_code, "scpt"_code, "list"_code, "reco"_code, "abcd"_code);
  const auto payloads =
      rc::gen::mapcat(rc::gen::element<std::size_t>(0, 1, 2, 4, 8, 16), [](std::size_t count) {
        return rc::gen::container<std::string>(count, rc::gen::arbitrary<char>());
      });
  return rc::gen::map(rc::gen::pair(types, payloads), [](const auto& typed) {
    return ScriptValue::withPayload(typed.first, typed.second);
  });
}

inline rc::Gen<std::vector<ScriptValue>> anyScriptValues() {
  return rc::gen::scale(
      0.4, rc::gen::container<std::vector<ScriptValue>>(rc::gen::lazy(anyScriptValue)));
}

/// Labels that are keywords, forms of typed JSON, or anything.
inline rc::Gen<ScriptValue> anyLabel() {
  const auto fixed = rc::gen::element<std::u16string>(u"a", u"$date", u"$record", u"$number", u"as",
                                                      u"$raw", u"data", u"«abcd»", u"");
  return rc::gen::map(rc::gen::oneOf(fixed, arbitraryUnits()), [](std::u16string label) {
    return ScriptValue::text(Text(std::move(label)));
  });
}

inline rc::Gen<ScriptValue> userFields() {
  return rc::gen::map(
      rc::gen::scale(0.4, rc::gen::container<std::vector<std::pair<ScriptValue, ScriptValue>>>(
                              rc::gen::pair(anyLabel(), rc::gen::lazy(anyScriptValue)))),
      [](std::vector<std::pair<ScriptValue, ScriptValue>> fields) {
        std::vector<ScriptValue> items;
        for (auto& [label, value] : fields) {
          items.push_back(std::move(label));
          items.push_back(std::move(value));
        }
        return ScriptValue::list(std::move(items));
      });
}

inline rc::Gen<ScriptValue> anyScriptRecord() {
  using namespace literals;
  const auto field = rc::gen::pair(anyCode(), rc::gen::lazy(anyScriptValue));
  const auto keywords = rc::gen::scale(
      0.3, rc::gen::container<std::vector<std::pair<FourCharCode, ScriptValue>>>(field));
  const auto theClass = rc::gen::element("reco"_code, "reco"_code, "cobj"_code);
  static constexpr FourCharCode kUserFields = "usrf"_code;
  return rc::gen::map(rc::gen::tuple(theClass, keywords, userFields()), [](const auto& parts) {
    std::vector<ScriptField> fields;
    bool hasUserFields = false;
    for (const auto& [keyword, value] : std::get<1>(parts)) {
      hasUserFields = hasUserFields || keyword == kUserFields;
      fields.push_back({keyword, value});
    }
    // At most one field of user fields, as scripts send them.
    if (!hasUserFields) fields.push_back({kUserFields, std::get<2>(parts)});
    return ScriptValue::record(std::get<0>(parts), std::move(fields));
  });
}

inline rc::Gen<ScriptValue> anyScriptValue() {
  using namespace literals;
  return rc::gen::weightedOneOf<ScriptValue>({
      {4, rc::gen::map(
              arbitraryUnits(),
              [](std::u16string units) { return ScriptValue::text(Text(std::move(units))); })},
      {3, anyPayload()},
      {1, rc::gen::map(anyReal(), ScriptValue::real)},
      {1, rc::gen::map(
              rc::gen::arbitrary<std::int64_t>(),
              [](std::int64_t seconds) { return ScriptValue::withPlain("ldt "_code, seconds); })},
      {1, rc::gen::map(anyCode(), ScriptValue::typeCode)},
      {1, rc::gen::map(
              anyScriptValues(),
              [](std::vector<ScriptValue> items) { return ScriptValue::list(std::move(items)); })},
      {2, anyScriptRecord()},
  });
}

}  // namespace skerrow::tests

template <>
struct rc::Arbitrary<skerrow::Number> {
  static Gen<skerrow::Number> arbitrary() { return skerrow::tests::anyNumber(); }
};
template <>
struct rc::Arbitrary<skerrow::Value> {
  static Gen<skerrow::Value> arbitrary() { return skerrow::tests::anyValue(); }
};
template <>
struct rc::Arbitrary<skerrow::ScriptValue> {
  static Gen<skerrow::ScriptValue> arbitrary() { return skerrow::tests::anyScriptValue(); }
};
