#include "tests/lists/command_results.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "core/pack.h"
#include "core/unpack.h"
#include "tests/support/in_process.h"

namespace skerrow::lists {

ScriptValue packed(const Value& value) {
  return core::makeDescriptor(value).value_or(ScriptValue());
}

Value settled(const Value& value) { return core::unpack(packed(value)).value_or(Value()); }

Value resultOf(const std::string& command, const Value& direct, const NamedValues& arguments) {
  tests::InProcess commands;
  scripting::EventArguments given;
  for (const auto& [key, value] : arguments) given.emplace_back(key, packed(value));
  const core::Reply reply = commands.perform({command, packed(direct), std::move(given)});
  if (const auto* error = std::get_if<core::ScriptError>(&reply)) RC_FAIL(error->message());
  return core::unpack(*std::get<std::optional<ScriptValue>>(reply)).value_or(Value());
}

Items itemsOf(const Value& list) { return {list.items().begin(), list.items().end()}; }

bool isExactly(const Value& a, const Value& b) {
  return tests::described(a) == tests::described(b);
}

Value boolean(bool isTrue) { return Number::boolean(isTrue); }
Value integer(std::size_t value) { return Number::signed32(static_cast<std::int32_t>(value)); }

rc::Gen<std::u16string> fewTexts() {
  return rc::gen::element<std::u16string>(u"", u"a", u"A", u"b", u"\u00E9", u"e\u0301", u"x2",
                                          u"x10", u"\U0001F600", u"_");
}

namespace {

rc::Gen<Value> fewPlainValues() {
  return rc::gen::oneOf(
      rc::gen::element<Value>(Value(), Number::signed32(0), Number::signed32(1), Number::real(1),
                              Number::boolean(true), Number::real(0.5), Value(Date{0}),
                              Value(Date{60})),
      rc::gen::map(fewTexts(), [](std::u16string text) { return Value(std::move(text)); }));
}

}  // namespace

rc::Gen<Value> fewRecords(int depth) {
  const auto label =
      rc::gen::element<std::u16string>(u"a", u"b", u"c", u"A", u"\u00E9", u"", u"\u00ABpnam\u00BB");
  return rc::gen::resize(6, tests::recordsOf(label, fewValues(depth - 1)));
}

rc::Gen<Value> fewLists(int depth) { return rc::gen::resize(4, listOf(fewValues(depth - 1))); }

rc::Gen<Value> fewValues(int depth) {
  if (depth <= 0) return fewPlainValues();
  return rc::gen::weightedOneOf<Value>(
      {{3, fewPlainValues()}, {2, fewRecords(depth)}, {2, fewLists(depth)}});
}

rc::Gen<Value> listOf(const rc::Gen<Value>& items) {
  return rc::gen::map(rc::gen::container<Items>(items),
                      [](Items list) { return Value(std::move(list)); });
}

}  // namespace skerrow::lists
