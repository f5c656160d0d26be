#pragma once
// JSON as text, for comparing what the program writes with what a table expects.
// Nothing here knows typed JSON or shares code with the program's own reader and
// writer: it splits texts and brings them into one spelling.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace skerrow::tests {

/// What is wrong with a JSON text and at which byte, counted from 0.
class MalformedJson : public std::runtime_error {
 public:
  MalformedJson(const std::string& problem, std::size_t offset)
      : std::runtime_error(problem), offset_(offset) {}
  [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

 private:
  std::size_t offset_;
};

/// The same JSON without white space and with every character of a text spelled in
/// one way. Members keep their order and numbers their spelling, so 1, 1.0 and 1e0
/// stay apart. A lone surrogate remains an escape.
std::string normalJson(std::string_view text);

/// One member of an object or item of an array: a part of the text that was split.
struct JsonPart {
  std::string name;  ///< of a member; empty for an item
  std::string_view text;
  std::string_view member = {};  ///< the text with its name; as the text for an item
};

/// The members of the object, or the items of the array, that the text is. Throws
/// MalformedJson for anything else.
std::vector<JsonPart> membersOf(std::string_view object);
std::vector<JsonPart> itemsOf(std::string_view array);

/// The characters of a JSON string, in UTF-8. Throws MalformedJson for anything else.
std::string contentOf(std::string_view string);

/// The characters as a JSON string.
std::string jsonString(std::string_view utf8);

}  // namespace skerrow::tests
