// Reads any bytes as typed JSON: as a value, as arguments and as lines of events.
// What is accepted must be written as text that reads back and is written the same.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "core/pack.h"
#include "core/unpack.h"
#include "scripting/json/json_source.h"
#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"

namespace {

using skerrow::ScriptField;
using skerrow::ScriptValue;
using skerrow::scripting::JsonError;
using skerrow::scripting::JsonSource;
using namespace skerrow::literals;

// Plain digits past the signed integers read as a real.
bool holdsUnsignedBeyondSigned(const ScriptValue& value) {
  if (value.type() == "ucom"_code) return value.plain<std::uint64_t>().value_or(0) > INT64_MAX;
  return std::ranges::any_of(value.items(), holdsUnsignedBeyondSigned) ||
         std::ranges::any_of(value.fields(), [](const ScriptField& field) {
           return holdsUnsignedBeyondSigned(field.value);
         });
}

[[noreturn]] void fail(const char* what, const std::string& one, const std::string& other) {
  std::fprintf(stderr, "%s\n%s\n%s\n", what, one.c_str(), other.c_str());
  std::abort();
}

void checkThatItReadsBack(const ScriptValue& value) {
  const std::string json = skerrow::scripting::typedJson(value);
  std::string again;
  try {
    JsonSource source(json);
    again = skerrow::scripting::typedJson(skerrow::scripting::readTypedJson(source));
  } catch (const JsonError& error) {
    fail("What was written is refused:", json, error.what());
  }
  if (again != json && !holdsUnsignedBeyondSigned(value))
    fail("It is written otherwise:", json, again);
}

void checkThatItUnpacks(const ScriptValue& value) {
  if (const auto unpacked = skerrow::core::unpack(value)) skerrow::core::makeDescriptor(*unpacked);
}

void readAsValue(std::string_view text) {
  try {
    JsonSource source(text);
    const ScriptValue value = skerrow::scripting::readTypedJson(source);
    checkThatItReadsBack(value);
    checkThatItUnpacks(value);
  } catch (const JsonError&) {
    return;  // refused, as it should be
  }
}

void readAsArguments(std::string_view text) {
  try {
    JsonSource source(text);
    for (const auto& [key, value] : skerrow::scripting::readArguments(source)) {
      checkThatItReadsBack(value);
    }
  } catch (const JsonError&) {
    return;
  }
}

void readAsEvents(std::string_view text) {
  JsonSource source(text);
  while (source.beginLine()) {
    try {
      const auto event = skerrow::scripting::readEvent(source);
      if (event.directParameter) checkThatItReadsBack(*event.directParameter);
      for (const auto& [key, value] : event.arguments) checkThatItReadsBack(value);
    } catch (const JsonError&) {
      continue;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), count);
  readAsValue(text);
  readAsArguments(text);
  readAsEvents(text);
  return 0;
}
