#pragma once
// What the tests of predicates ask about, and how they ask it.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "foundation/predicate/predicate.h"
#include "foundation/text/text_encoding.h"
#include "platform/clock.h"
#include "platform/system_platform.h"
#include "values/record.h"
#include "values/value.h"

namespace skerrow::foundation {

inline Value integer(std::int64_t number) { return Number::signed64(number); }
inline Value real(double number) { return Number::real(number); }
inline Value list(std::vector<Value> items) { return Value(std::move(items)); }
inline Value record(std::initializer_list<Record::Entry> fields) { return Value(Record(fields)); }

// The item of the tables below, unless a row has its own.
inline Value person() {
  return record({
      {u"name", u"Adélaïde"},
      {u"age", integer(34)},
      {u"height", real(1.75)},
      {u"member", Number::boolean(true)},
      {u"note", Value()},
      {u"initial", u"A"},
      {u"first", u"A"},
      {u"size", integer(38)},
      {u"größe", integer(5)},
      {u"born", Date{-1000}},
      {u"tags", list({u"red", u"green", u"Blue"})},
      {u"scores", list({integer(3), integer(1), integer(2)})},
      {u"nothing", list({})},
      {u"address", record({{u"city", u"Oslo"}, {u"lines", list({u"Storgata 1", u"0155"})}})},
      {u"children",
       list({record({{u"name", u"Bo"}, {u"age", integer(4)}}),
             record({{u"name", u"Cy"}, {u"age", integer(9)}}), record({{u"name", u"Di"}})})},
  });
}

struct Row {
  std::u16string_view format;
  bool expected;
};

// Those of this machine.
inline PredicateSurroundings surroundings() {
  static const platform::SystemPlatform system;
  static const platform::SystemClock clock;
  return {.environment = &system.environment, .clock = &clock, .chance = &system.chance};
}

inline void check(std::span<const Row> rows, const Value& item) {
  for (const Row& row : rows) {
    SCOPED_TRACE(utf8FromUtf16(row.format));
    try {
      EXPECT_EQ(Predicate::parse(row.format, {}, surroundings()).evaluate(item), row.expected);
    } catch (const PredicateError& error) {
      ADD_FAILURE() << error.reason();
    }
  }
}

inline std::u16string repeated(std::u16string_view text, std::size_t count) {
  std::u16string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

}  // namespace skerrow::foundation
