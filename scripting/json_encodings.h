#pragma once
// The two encodings that the JSON library converts between here: UTF-8 outside,
// UTF-16 inside, where a lone surrogate is a unit like any other and is spelled
// as its \uXXXX escape outside.

#include <rapidjson/encodings.h>

#include "scripting/json_source.h"

namespace skerrow::scripting {

struct JsonUtf8 : rapidjson::UTF8<> {
  /// Takes one character, or a lone surrogate that JsonSource has marked.
  template <class Input>
  static bool Decode(Input& input, unsigned* character) {
    if (input.Peek() != JsonSource::kSurrogateMark) {
      return rapidjson::UTF8<>::Decode(input, character);
    }
    input.Take();
    unsigned unit = 0;
    for (int digit = 0; digit < 4; ++digit) unit = unit << 4U | hexadecimalDigit(input.Take());
    input.Take();
    *character = unit;
    return true;
  }

  template <class Output>
  static void Encode(Output& output, unsigned character) {
    if (character < 0x80) {
      output.Put(static_cast<char>(character));
    } else if (character >= 0xD800 && character <= 0xDFFF) {
      static constexpr char kDigits[] = "0123456789ABCDEF";
      output.Put('\\');
      output.Put('u');
      for (const unsigned shift : {12U, 8U, 4U, 0U}) output.Put(kDigits[character >> shift & 0xFU]);
    } else {
      rapidjson::UTF8<>::Encode(output, character);
    }
  }

  template <class Output>
  static void EncodeUnsafe(Output& output, unsigned character) {
    Encode(output, character);
  }

 private:
  static unsigned hexadecimalDigit(char digit) {
    if (digit <= '9') return static_cast<unsigned>(digit - '0');
    return static_cast<unsigned>((digit | 0x20) - 'a') + 10U;
  }
};

struct JsonUtf16 : rapidjson::UTF16<char16_t> {
  template <class Input>
  static bool Decode(Input& input, unsigned* character) {
    const unsigned unit = input.Take();
    *character = unit;
    if ((unit & 0xFC00U) == 0xD800 && (static_cast<unsigned>(input.Peek()) & 0xFC00U) == 0xDC00) {
      *character = (unit << 10U) + static_cast<unsigned>(input.Take()) - 0x35FDC00U;
    }
    return true;
  }

  template <class Output>
  static void Encode(Output& output, unsigned character) {
    if (character < 0x10000) {
      output.Put(static_cast<char16_t>(character));
      return;
    }
    output.Put(static_cast<char16_t>(0xD7C0U + (character >> 10U)));
    output.Put(static_cast<char16_t>(0xDC00U + (character & 0x3FFU)));
  }
};

}  // namespace skerrow::scripting

/// From the source into the library's buffer: a run of plain ASCII is taken at
/// once, anything else character by character.
template <>
struct rapidjson::Transcoder<skerrow::scripting::JsonUtf8, skerrow::scripting::JsonUtf16> {
  template <class Output>
  static bool Transcode(skerrow::scripting::JsonSource& source, Output& output) {
    return Validate(source, output);
  }

  template <class Output>
  static bool Validate(skerrow::scripting::JsonSource& source, Output& output) {
    const std::string_view ready = source.ready();
    std::size_t count = 0;
    while (count < ready.size() && isPlain(ready[count])) ++count;
    if (count == 0) {
      unsigned character = 0;
      if (!skerrow::scripting::JsonUtf8::Decode(source, &character)) return false;
      skerrow::scripting::JsonUtf16::Encode(output, character);
      return true;
    }
    auto* const units = static_cast<char16_t*>(output.Push(static_cast<SizeType>(count)));
    for (std::size_t i = 0; i < count; ++i) units[i] = static_cast<unsigned char>(ready[i]);
    source.skip(count);
    return true;
  }

 private:
  static bool isPlain(char character) {
    return character >= ' ' && character < 0x7F && character != '"' && character != '\\';
  }
};
