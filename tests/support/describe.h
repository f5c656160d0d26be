#pragma once
// Values in words, for failing tests and for comparing exactly: unlike equality
// of values these tell storage kinds, types and orders apart.

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "values/script_value.h"
#include "values/value.h"

namespace skerrow::tests {

std::string described(std::u16string_view units);
std::string described(const std::u16string& units);
std::string described(const char16_t* units);
std::string inHexadecimal(std::string_view bytes);
std::string described(double real);
std::string described(Number number);
std::string described(FourCharCode code);
std::string described(const ScriptValue& value);
std::string described(const Value& value);

template <class Held>
std::string described(const std::optional<Held>& held) {
  return held ? described(*held) : "nothing";
}

}  // namespace skerrow::tests

namespace skerrow {

// What rapidcheck prints of a counterexample.
void showValue(const Value& value, std::ostream& stream);
void showValue(const ScriptValue& value, std::ostream& stream);
void showValue(Number number, std::ostream& stream);

}  // namespace skerrow
