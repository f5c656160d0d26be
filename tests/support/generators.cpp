#include "tests/support/generators.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "values/record.h"

namespace skerrow::tests {

namespace {

// Mostly short, as a long one takes as long to make as a hundred values.
template <class Container>
rc::Gen<Container> ofAnyLength(const rc::Gen<Container>& texts) {
  return rc::gen::weightedOneOf<Container>({{9, rc::gen::scale(0.1, texts)}, {1, texts}});
}

}  // namespace

rc::Gen<std::u16string> arbitraryUnits() {
  return ofAnyLength(rc::gen::container<std::u16string>(rc::gen::weightedOneOf<char16_t>({
      {6, rc::gen::inRange<char16_t>(u'a', u'e')},
      {2, rc::gen::element<char16_t>(u'\0', u'"', u'\\', u'\n', u'$', u'«', u'»', 0xFEFF, 0xFFFE)},
      {2, rc::gen::inRange<char16_t>(0xD7F0, 0xE010)},
      {1, rc::gen::arbitrary<char16_t>()},
  })));
}

rc::Gen<std::string> arbitraryBytes() {
  return ofAnyLength(rc::gen::container<std::string>(rc::gen::arbitrary<char>()));
}

namespace {

template <class Integer>
rc::Gen<Integer> integerNearEnds() {
  using Limits = std::numeric_limits<Integer>;
  return rc::gen::weightedOneOf<Integer>({
      {3, rc::gen::arbitrary<Integer>()},
      {1, rc::gen::element<Integer>(Limits::min(), Limits::max(), Limits::max() - 1, 0, 1)},
  });
}

}  // namespace

rc::Gen<double> anyReal() {
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

rc::Gen<Number> anyNumber() {
  return rc::gen::oneOf(rc::gen::map(rc::gen::arbitrary<bool>(), Number::boolean),
                        rc::gen::map(integerNearEnds<std::int16_t>(), Number::signed16),
                        rc::gen::map(integerNearEnds<std::uint16_t>(), Number::unsigned16),
                        rc::gen::map(integerNearEnds<std::int32_t>(), Number::signed32),
                        rc::gen::map(integerNearEnds<std::uint32_t>(), Number::unsigned32),
                        rc::gen::map(integerNearEnds<std::int64_t>(), Number::signed64),
                        rc::gen::map(integerNearEnds<std::uint64_t>(), Number::unsigned64),
                        rc::gen::map(anyReal(), Number::real));
}

namespace {

rc::Gen<Value> anyPlainValue() {
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

rc::Gen<std::vector<Value>> anyValues() {
  return rc::gen::scale(0.25, rc::gen::container<std::vector<Value>>(rc::gen::lazy(anyValue)));
}

rc::Gen<Value> anyRecord() {
  return rc::gen::scale(0.25, recordsOf(arbitraryUnits(), rc::gen::lazy(anyValue)));
}

}  // namespace

rc::Gen<Value> recordsOf(const rc::Gen<std::u16string>& labels, const rc::Gen<Value>& values) {
  using Fields = std::vector<std::pair<std::u16string, Value>>;
  return rc::gen::map(rc::gen::container<Fields>(rc::gen::pair(labels, values)), [](Fields fields) {
    Record record;
    for (auto& [key, value] : fields) record.set(Value(std::move(key)), std::move(value));
    return Value(std::move(record));
  });
}

rc::Gen<Value> anyValue() {
  return rc::gen::weightedOneOf<Value>(
      {{6, anyPlainValue()},
       {1, rc::gen::map(anyValues(),
                        [](std::vector<Value> items) { return Value(std::move(items)); })},
       {1, anyRecord()}});
}

Value rebuilt(const Value& value) {
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

}  // namespace skerrow::tests

namespace rc {

template class Gen<skerrow::Number>;
template class Gen<skerrow::Value>;
template class Gen<std::vector<skerrow::Value>>;

namespace gen {

template Gen<std::vector<skerrow::Value>> container<std::vector<skerrow::Value>>(
    Gen<skerrow::Value>);

}  // namespace gen

}  // namespace rc
