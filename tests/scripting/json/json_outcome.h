#pragma once
// Reading typed JSON in tests: the value in words, or what is wrong and where.

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "scripting/json/json_source.h"
#include "scripting/json/typed_json_reader.h"
#include "tests/support/describe.h"

namespace skerrow::tests {

/// A source that gives its text in pieces of a certain size.
inline scripting::JsonSource sourceInPieces(std::string_view text, std::size_t pieceSize) {
  auto rest = std::make_shared<std::string>(text);
  return scripting::JsonSource([rest, pieceSize](char* buffer, std::size_t capacity) {
    const std::size_t count = std::min({pieceSize, capacity, rest->size()});
    std::memcpy(buffer, rest->data(), count);
    rest->erase(0, count);
    return count;
  });
}

/// What the reading ends with: words for the value, or the error's message.
inline std::string outcomeOf(const std::function<std::string()>& read) {
  try {
    return read();
  } catch (const scripting::JsonError& error) {
    return error.what();
  }
}

inline std::string valueOrError(scripting::JsonSource source) {
  return outcomeOf([&] { return described(scripting::readTypedJson(source)); });
}

inline std::string valueOrError(std::string_view json) {
  return valueOrError(scripting::JsonSource(json));
}

inline std::string described(const scripting::EventArguments& arguments) {
  std::string text;
  for (const auto& [key, value] : arguments) {
    text += (text.empty() ? "" : ", ") + key + ": " + described(value);
  }
  return "(" + text + ")";
}

inline std::string described(const scripting::Event& event) {
  std::string text = event.command;
  if (event.directParameter) text += " of " + described(*event.directParameter);
  return text + " " + described(event.arguments) + " within " +
         std::to_string(event.timeout.count());
}

inline std::string eventOrError(scripting::JsonSource& source) {
  return outcomeOf([&] { return described(scripting::readEvent(source)); });
}

}  // namespace skerrow::tests
