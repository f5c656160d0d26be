#include "tests/support/describe.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <utility>

#include "values/object_reference.h"
#include "values/record.h"

namespace skerrow::tests {

std::string described(std::u16string_view units) {
  std::string text = "“";
  for (const char16_t unit : units) {
    if (unit >= u' ' && unit < 0x7F) {
      text += static_cast<char>(unit);
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
      text += escape;
    }
  }
  return text + "”";
}

std::string described(const std::u16string& units) { return described(std::u16string_view(units)); }

std::string described(const char16_t* units) { return described(std::u16string_view(units)); }

std::string inHexadecimal(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) {
    char digits[4];
    std::snprintf(digits, sizeof digits, "%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    text += digits;
  }
  return text;
}

std::string described(double real) {
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, real).ptr};
}

std::string described(Number number) {
  switch (number.kind()) {
    case NumberKind::boolean:
      return "boolean " + std::to_string(number.asInteger());
    case NumberKind::signed16:
      return "signed16 " + std::to_string(number.asInteger());
    case NumberKind::unsigned16:
      return "unsigned16 " + std::to_string(number.asInteger());
    case NumberKind::signed32:
      return "signed32 " + std::to_string(number.asInteger());
    case NumberKind::unsigned32:
      return "unsigned32 " + std::to_string(number.asInteger());
    case NumberKind::signed64:
      return "signed64 " + std::to_string(number.asInteger());
    case NumberKind::unsigned64:
      return "unsigned64 " + std::to_string(number.asUnsigned());
    case NumberKind::real:
      return "real " + described(number.asReal());
  }
  return "number of no kind";
}

std::string described(FourCharCode code) {
  const std::uint32_t bits = number(code);
  std::string text = "'";
  for (const unsigned shift : {24U, 16U, 8U, 0U}) text += static_cast<char>(bits >> shift & 0xFFU);
  return text + "'";
}

std::string described(const ScriptValue& value) {
  std::string text = described(value.type());
  std::string separator;
  if (value.hasItems()) {
    text += " [";
    for (const ScriptValue& item : value.items()) {
      text += std::exchange(separator, ", ") + described(item);
    }
    return text + "]";
  }
  if (value.hasFields()) {
    text += " {";
    for (const ScriptField& field : value.fields()) {
      text +=
          std::exchange(separator, ", ") + described(field.keyword) + ": " + described(field.value);
    }
    return text + "}";
  }
  if (const ObjectReference* object = value.objectReference()) return text + " " + object->path();
  const std::string_view bytes = value.payload();
  if (value.type() != FourCharCode{0x75747874} || bytes.size() % 2 != 0) {
    return text + " " + inHexadecimal(bytes);
  }
  std::u16string units(bytes.size() / 2, u'\0');
  if (!bytes.empty()) std::memcpy(units.data(), bytes.data(), bytes.size());
  return text + " " + described(std::u16string_view(units));
}

std::string described(const Value& value) {
  std::string separator;
  std::string text;
  switch (value.kind()) {
    case Kind::null:
      return "null";
    case Kind::number:
      return described(value.number());
    case Kind::date:
      return "date " + described(value.date().seconds);
    case Kind::text:
      return described(value.text());
    case Kind::url:
      return "url " + value.url().absoluteString;
    case Kind::list:
      for (const Value& item : value.items()) {
        text += std::exchange(separator, ", ") + described(item);
      }
      return "[" + text + "]";
    case Kind::record:
      for (const Record::Field& field : value.record().fields()) {
        text +=
            std::exchange(separator, ", ") + described(field.key) + ": " + described(field.value);
      }
      return "{" + text + "}";
    case Kind::data:
      return "data " + inHexadecimal(value.data());
    case Kind::raw:
      return "raw " + described(value.raw());
    case Kind::error:
      return "error " + value.error().localizedDescription;
    case Kind::opaque:
      return "opaque " + value.opaque().description;
  }
  return "value of no kind";
}

}  // namespace skerrow::tests

namespace skerrow {

void showValue(const Value& value, std::ostream& stream) { stream << tests::described(value); }
void showValue(const ScriptValue& value, std::ostream& stream) {
  stream << tests::described(value);
}
void showValue(Number number, std::ostream& stream) { stream << tests::described(number); }

}  // namespace skerrow
