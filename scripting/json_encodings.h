#pragma once
// The two encodings that the JSON library converts between here: UTF-8 outside,
// UTF-16 inside, where a lone surrogate is a unit like any other and is spelled
// as its \uXXXX escape outside.

#include <rapidjson/encodings.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

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

/// From the source into the library's buffer: what lies ready is taken in runs, as
/// far as it needs no escape and no second look.
template <>
struct rapidjson::Transcoder<skerrow::scripting::JsonUtf8, skerrow::scripting::JsonUtf16> {
  template <class Output>
  static bool Transcode(skerrow::scripting::JsonSource& source, Output& output) {
    return Validate(source, output);
  }

  template <class Output>
  static bool Validate(skerrow::scripting::JsonSource& source, Output& output) {
    const std::string_view ready = source.ready();
    const std::size_t plain = plainCount(ready.substr(0, kLongestRun));
    if (plain == 0) return otherCharacters(source, output);
    auto* const units = static_cast<char16_t*>(output.Push(static_cast<SizeType>(plain)));
    for (std::size_t i = 0; i < plain; ++i) units[i] = static_cast<unsigned char>(ready[i]);
    source.skip(plain);
    return true;
  }

 private:
  static constexpr std::size_t kLongestRun = std::size_t{1} << 20U;

  // How many bytes at the front stand for themselves: ASCII but for control characters,
  // quotation marks and backslashes.
  static std::size_t plainCount(std::string_view bytes) {
    constexpr std::uint64_t kEach = 0x0101010101010101U;
    std::size_t count = 0;
    for (std::uint64_t word = 0; bytes.size() - count >= sizeof word; count += sizeof word) {
      std::memcpy(&word, bytes.data() + count, sizeof word);
      if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
      // The highest bit of each byte that is none of these. Subtracting may set it in
      // plain bytes too, but only behind another one.
      const std::uint64_t marked = (word | (word - kEach * ' ') | ((word ^ kEach * '"') - kEach) |
                                    ((word ^ kEach * '\\') - kEach)) &
                                   kEach * 0x80;
      if (marked != 0) return count + static_cast<std::size_t>(std::countr_zero(marked)) / 8;
    }
    while (count < bytes.size() && isPlain(bytes[count])) ++count;
    return count;
  }

  static bool isPlain(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= ' ' && byte < 0x80 && byte != '"' && byte != '\\';
  }

  // A run of characters that are not ASCII, or any one character.
  template <class Output>
  static bool otherCharacters(skerrow::scripting::JsonSource& source, Output& output) {
    constexpr std::size_t kRun = 256;
    char16_t units[kRun];
    const std::string_view ready = source.ready();
    std::size_t taken = 0;
    std::size_t count = 0;
    while (count < kRun && taken < ready.size()) {
      const unsigned character = shortCharacter(ready.substr(taken));
      if (character == 0) break;
      units[count++] = static_cast<char16_t>(character);
      taken += character < 0x800 ? 2 : 3;
    }
    if (count == 0) return one(source, output);
    std::memcpy(output.Push(static_cast<SizeType>(count)), units, count * sizeof(char16_t));
    source.skip(taken);
    return true;
  }

  template <class Output>
  static bool one(skerrow::scripting::JsonSource& source, Output& output) {
    unsigned character = 0;
    if (!skerrow::scripting::JsonUtf8::Decode(source, &character)) return false;
    skerrow::scripting::JsonUtf16::Encode(output, character);
    return true;
  }

  static unsigned continuation(char byte) {
    const auto bits = static_cast<unsigned char>(byte);
    return (bits & 0xC0U) == 0x80 ? bits & 0x3FU : 0x100U;
  }

  // A character of two or three bytes at the front; 0 for anything else, also for
  // what is ill-formed.
  static unsigned shortCharacter(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (lead >= 0xC2 && lead <= 0xDF && bytes.size() >= 2) {
      const unsigned second = continuation(bytes[1]);
      return second < 0x100 ? (lead & 0x1FU) << 6U | second : 0;
    }
    if ((lead & 0xF0U) != 0xE0 || bytes.size() < 3) return 0;
    const unsigned second = continuation(bytes[1]);
    const unsigned third = continuation(bytes[2]);
    if (second >= 0x100 || third >= 0x100) return 0;
    const unsigned character = (lead & 0x0FU) << 12U | second << 6U | third;
    const bool isWellFormed = character >= 0x800 && (character < 0xD800 || character > 0xDFFF);
    return isWellFormed ? character : 0;
  }
};
