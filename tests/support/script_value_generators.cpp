#include <cstdint>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "tests/support/generators.h"
#include "values/keys.h"
#include "values/object_reference.h"

namespace skerrow::tests {

namespace {

rc::Gen<FourCharCode> anyCode() {
  using namespace literals;
  return rc::gen::weightedOneOf<FourCharCode>(
      {{2, rc::gen::element("pnam"_code, "pcls"_code, "usrf"_code, "msng"_code)},
       {1, rc::gen::map(rc::gen::arbitrary<std::uint32_t>(),
                        [](std::uint32_t bits) { return FourCharCode{bits * 2654435761U}; })}});
}

// Values made from bytes, of every type that has a form or width of its own.
rc::Gen<ScriptValue> anyPayload() {
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

rc::Gen<std::vector<ScriptValue>> anyScriptValues() {
  return rc::gen::scale(
      0.25, rc::gen::container<std::vector<ScriptValue>>(rc::gen::lazy(anyScriptValue)));
}

using UserFields = std::vector<std::pair<std::u16string, ScriptValue>>;

// Labels are keywords, forms of typed JSON, or anything.
rc::Gen<UserFields> anyUserFields() {
  const auto fixed = rc::gen::element<std::u16string>(u"a", u"$date", u"$record", u"$number", u"as",
                                                      u"$raw", u"data", u"«abcd»", u"");
  return rc::gen::scale(
      0.25, rc::gen::container<UserFields>(rc::gen::pair(rc::gen::oneOf(fixed, arbitraryUnits()),
                                                         rc::gen::lazy(anyScriptValue))));
}

ScriptValue listOf(const UserFields& fields) {
  std::vector<ScriptValue> labelsAndValues;
  for (const auto& [label, value] : fields) {
    labelsAndValues.push_back(ScriptValue::text(Text(label)));
    labelsAndValues.push_back(value);
  }
  return ScriptValue::list(std::move(labelsAndValues));
}

rc::Gen<ScriptValue> anyScriptRecord() {
  using namespace literals;
  const auto field = rc::gen::pair(anyCode(), rc::gen::lazy(anyScriptValue));
  const auto keywords = rc::gen::scale(
      0.3, rc::gen::container<std::vector<std::pair<FourCharCode, ScriptValue>>>(field));
  const auto theClass = rc::gen::element(kPlainRecord, kPlainRecord, "cobj"_code);
  return rc::gen::map(rc::gen::tuple(theClass, keywords, anyUserFields()), [](const auto& parts) {
    std::vector<ScriptField> fields;
    bool hasUserFields = false;
    for (const auto& [keyword, value] : std::get<1>(parts)) {
      hasUserFields = hasUserFields || keyword == kUserFields;
      fields.push_back({keyword, value});
    }
    // At most one field of user fields, as scripts send them.
    if (!hasUserFields) fields.push_back({kUserFields, listOf(std::get<2>(parts))});
    return ScriptValue::record(std::get<0>(parts), std::move(fields));
  });
}

rc::Gen<ScriptValue> anyLabelledRecord() {
  return rc::gen::map(anyUserFields(), [](const UserFields& fields) {
    Keys labels;
    std::vector<ScriptValue> values;
    for (const auto& [label, value] : fields) {
      if (labels.position(Value(std::u16string_view(label))) != Keys::kNone) continue;
      labels.append(Value(std::u16string_view(label)));
      values.push_back(value);
    }
    return ScriptValue::labelledRecord(labels, values);
  });
}

}  // namespace

rc::Gen<ScriptValue> anyScriptValue() {
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
      {1, rc::gen::map(rc::gen::element<std::string>("a.b", "a[1]", "\"é\""),
                       [](std::string path) {
                         return ScriptValue::reference(
                             std::make_shared<PathReference>(std::move(path)));
                       })},
      {1, rc::gen::map(
              anyScriptValues(),
              [](std::vector<ScriptValue> items) { return ScriptValue::list(std::move(items)); })},
      {1, anyScriptRecord()},
      {1, anyLabelledRecord()},
  });
}

}  // namespace skerrow::tests

namespace rc {

template class Gen<skerrow::ScriptValue>;
template class Gen<std::vector<skerrow::ScriptValue>>;

namespace gen {

template Gen<std::vector<skerrow::ScriptValue>> container<std::vector<skerrow::ScriptValue>>(
    Gen<skerrow::ScriptValue>);

}  // namespace gen

}  // namespace rc
