#pragma once
// JsonWriter: writes one JSON text (RFC 8259), on one line, and hands it on in
// pieces. Commas and colons come by themselves. Half of a surrogate pair, which has
// no bytes in UTF-8, is written as its escape.

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

namespace skerrow::scripting {

/// Takes the text piece by piece.
using JsonSink = std::function<void(std::string_view piece)>;

class JsonWriter {
 public:
  explicit JsonWriter(const JsonSink& sink) : sink_(sink) {}

  void beginArray() { begin('['); }
  void endArray() { end(']'); }
  void beginObject() { begin('{'); }
  void endObject() { end('}'); }
  /// The name of the member whose value comes next.
  void label(std::u16string_view units);
  void text(std::u16string_view units);
  /// A number, or one of the words true, false and null, as it stands.
  void literal(std::string_view ascii);
  /// Hands on what is left; the text is complete.
  void flush();

 private:
  void begin(char bracket);
  void end(char bracket);
  void separate();
  void put(char character);
  void string(std::u16string_view units);
  std::size_t special(std::u16string_view units);
  void escape(char16_t unit);

  const JsonSink& sink_;
  bool needsComma_ = false;
  std::size_t used_ = 0;
  std::array<char, 16 * 1024> piece_;  // not cleared: most answers are short
};

}  // namespace skerrow::scripting
