#include "scripting/json/json_writer.h"

#include <algorithm>
#include <utility>

#include "foundation/text/code_points.h"
#include "foundation/text/text_encoding.h"

namespace skerrow::scripting {

namespace {

constexpr std::size_t kLongestEscape = 6;  // and no character has as many bytes

bool isPlain(char16_t unit) { return unit >= ' ' && unit < 0x80 && unit != '"' && unit != '\\'; }

}  // namespace

void JsonWriter::flush() {
  if (used_ > 0) sink_({piece_.data(), std::exchange(used_, 0)});
}

void JsonWriter::put(char character) {
  if (used_ == piece_.size()) flush();
  piece_[used_++] = character;
}

void JsonWriter::separate() {
  if (std::exchange(needsComma_, true)) put(',');
}

void JsonWriter::begin(char bracket) {
  separate();
  put(bracket);
  needsComma_ = false;
}

void JsonWriter::end(char bracket) {
  put(bracket);
  needsComma_ = true;
}

void JsonWriter::label(std::u16string_view units) {
  separate();
  string(units);
  put(':');
  needsComma_ = false;
}

void JsonWriter::text(std::u16string_view units) {
  separate();
  string(units);
}

void JsonWriter::literal(std::string_view ascii) {
  separate();
  for (const char character : ascii) put(character);
}

void JsonWriter::string(std::u16string_view units) {
  put('"');
  while (!units.empty()) {
    if (piece_.size() - used_ < kLongestEscape) flush();
    char* const to = piece_.data() + used_;
    const std::size_t room = std::min(units.size(), piece_.size() - used_);
    std::size_t count = 0;
    for (; count < room && isPlain(units[count]); ++count)
      to[count] = static_cast<char>(units[count]);
    used_ += count;
    units.remove_prefix(count == 0 ? special(units) : count);
  }
  put('"');
}

// Writes the character at the front, for which there is room, and says how many units
// it has.
std::size_t JsonWriter::special(std::u16string_view units) {
  const foundation::CodePoint character = foundation::codePointAt(units, 0);
  if (character.value < 0x80 || character.isLoneSurrogate()) {
    escape(units.front());
  } else {
    used_ += foundation::encodeUtf8(character.value, piece_.data() + used_);
  }
  return character.unitCount;
}

void JsonWriter::escape(char16_t unit) {
  constexpr std::string_view kLetters = "\"\"\\\\\bb\ff\nn\rr\tt";
  constexpr char kDigits[] = "0123456789ABCDEF";
  put('\\');
  for (std::size_t i = 0; i < kLetters.size(); i += 2) {
    if (unit == static_cast<char16_t>(kLetters[i])) return put(kLetters[i + 1]);
  }
  put('u');
  for (const unsigned shift : {12U, 8U, 4U, 0U}) put(kDigits[unit >> shift & 0xFU]);
}

}  // namespace skerrow::scripting
