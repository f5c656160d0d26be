#pragma once
// Performing commands of this room with Values, for laws that hold for all values,
// and values of which few are different, so that equal ones meet.

#include <rapidcheck.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/pack.h"
#include "core/unpack.h"
#include "tests/support/in_process.h"
#include "tests/values/describe.h"
#include "tests/values/generators.h"

namespace skerrow::lists {

using Items = std::vector<Value>;
using NamedValues = std::vector<std::pair<std::string, Value>>;

inline ScriptValue packed(const Value& value) {
  return core::makeDescriptor(value).value_or(ScriptValue());
}

/// The value as it is once it has been through a command.
inline Value settled(const Value& value) { return core::unpack(packed(value)).value_or(Value()); }

/// The result of a command; an error fails the property.
inline Value resultOf(const std::string& command, const Value& direct,
                      const NamedValues& arguments = {}) {
  tests::InProcess commands;
  scripting::EventArguments given;
  for (const auto& [key, value] : arguments) given.emplace_back(key, packed(value));
  const core::Reply reply = commands.perform({command, packed(direct), std::move(given)});
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) RC_FAIL(error->message());
  return core::unpack(*std::get<std::optional<ScriptValue>>(reply)).value_or(Value());
}

inline Items itemsOf(const Value& list) { return {list.items().begin(), list.items().end()}; }

/// Tells storage kinds and orders apart, unlike equality.
inline bool isExactly(const Value& a, const Value& b) {
  return tests::described(a) == tests::described(b);
}

inline Value boolean(bool isTrue) { return Number::boolean(isTrue); }
inline Value integer(std::size_t value) {
  return Number::signed32(static_cast<std::int32_t>(value));
}

inline rc::Gen<std::u16string> fewTexts() {
  return rc::gen::element<std::u16string>(u"", u"a", u"A", u"b", u"\u00E9", u"e\u0301", u"x2",
                                          u"x10", u"\U0001F600", u"_");
}

inline rc::Gen<Value> fewPlainValues() {
  return rc::gen::oneOf(
      rc::gen::element<Value>(Value(), Number::signed32(0), Number::signed32(1), Number::real(1),
                              Number::boolean(true), Number::real(0.5), Value(Date{0}),
                              Value(Date{60})),
      rc::gen::map(fewTexts(), [](std::u16string text) { return Value(std::move(text)); }));
}

inline rc::Gen<Value> fewValues(int depth = 2);

inline rc::Gen<Value> fewRecords(int depth = 2) {
  using Fields = std::vector<std::pair<std::u16string, Value>>;
  const auto label =
      rc::gen::element<std::u16string>(u"a", u"b", u"c", u"A", u"\u00E9", u"", u"\u00ABpnam\u00BB");
  return rc::gen::map(
      rc::gen::resize(6, rc::gen::container<Fields>(rc::gen::pair(label, fewValues(depth - 1)))),
      [](Fields fields) {
        Record record;
        for (auto& [key, value] : fields) record.set(Value(std::move(key)), std::move(value));
        return Value(std::move(record));
      });
}

inline rc::Gen<Value> fewLists(int depth = 2) {
  return rc::gen::map(rc::gen::resize(4, rc::gen::container<Items>(fewValues(depth - 1))),
                      [](Items items) { return Value(std::move(items)); });
}

inline rc::Gen<Value> fewValues(int depth) {
  if (depth <= 0) return fewPlainValues();
  return rc::gen::weightedOneOf<Value>(
      {{3, fewPlainValues()}, {2, fewRecords(depth)}, {2, fewLists(depth)}});
}

/// Several values of a generator, as a list.
inline rc::Gen<Value> listOf(const rc::Gen<Value>& items) {
  return rc::gen::map(rc::gen::container<Items>(items),
                      [](Items list) { return Value(std::move(list)); });
}

}  // namespace skerrow::lists
