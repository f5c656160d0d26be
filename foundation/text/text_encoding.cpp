#include "foundation/text/text_encoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "foundation/text/code_points.h"

namespace skerrow::foundation {

namespace {

constexpr char16_t kReplacement = u'\uFFFD';

// The upper half of Mac OS Roman; the lower half is ASCII.
constexpr std::u16string_view kMacRomanUpperHalf =
    u"ÄÅÇÉÑÖÜáàâäãåçéè"
    u"êëíìîïñóòôöõúùûü"
    u"†°¢£§•¶ß®©™´¨≠ÆØ"
    u"∞±≤≥¥µ∂∑∏π∫ªºΩæø"
    u"¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ"
    u"–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
    u"‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ"
    u"\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
static_assert(kMacRomanUpperHalf.size() == 128);

struct Decoded {
  char32_t character = 0;
  std::size_t length = 0;  // bytes taken; of an ill-formed run, its length
  bool isWellFormed = false;
};

// One character of two bytes or more, or the maximal ill-formed subsequence.
Decoded decodeMultibyte(const unsigned char* bytes, std::size_t available) {
  const unsigned char lead = bytes[0];
  std::size_t length = 0;
  unsigned char lowest = 0x80;  // bounds of the second byte
  unsigned char highest = 0xBF;
  char32_t character = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    character = lead & 0x1FU;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    character = lead & 0x0FU;
    if (lead == 0xE0) lowest = 0xA0;
    if (lead == 0xED) highest = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    character = lead & 0x07U;
    if (lead == 0xF0) lowest = 0x90;
    if (lead == 0xF4) highest = 0x8F;
  } else {
    return {0, 1, false};
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (i >= available || bytes[i] < lowest || bytes[i] > highest) return {0, i, false};
    character = character << 6U | (bytes[i] & 0x3FU);
    lowest = 0x80;
    highest = 0xBF;
  }
  return {character, length, true};
}

// Copies ASCII eight bytes at a time; stops at the first byte that is none.
const unsigned char* copyAscii(const unsigned char* bytes, const unsigned char* end,
                               char16_t*& out) {
  while (end - bytes >= 8) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, bytes, sizeof eight);
    if ((eight & 0x8080808080808080ULL) != 0) break;
    for (int i = 0; i < 8; ++i) out[i] = bytes[i];
    bytes += 8;
    out += 8;
  }
  while (bytes != end && *bytes < 0x80) *out++ = *bytes++;
  return bytes;
}

enum class IllFormed { refused, replaced, keptAsSurrogates };

constexpr char16_t kFirstByteSurrogate = 0xDC00;

// False at the first ill-formed subsequence where such are refused.
bool decodeUtf8(std::string_view utf8, IllFormed illFormed, std::u16string& text) {
  text.resize(utf8.size());  // no character has more units than bytes
  char16_t* out = text.data();
  const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
  const unsigned char* const end = bytes + utf8.size();
  while ((bytes = copyAscii(bytes, end, out)) != end) {
    const Decoded next = decodeMultibyte(bytes, static_cast<std::size_t>(end - bytes));
    if (next.isWellFormed) {
      out += encodeUtf16(next.character, out);
    } else if (illFormed == IllFormed::replaced) {
      *out++ = kReplacement;
    } else if (illFormed == IllFormed::keptAsSurrogates) {
      for (std::size_t i = 0; i < next.length; ++i) {
        *out++ = static_cast<char16_t>(kFirstByteSurrogate + bytes[i]);
      }
    } else {
      return false;
    }
    bytes += next.length;
  }
  text.resize(static_cast<std::size_t>(out - text.data()));
  return true;
}

}  // namespace

std::optional<std::u16string> utf16FromUtf8(std::string_view bytes) {
  std::u16string text;
  if (!decodeUtf8(bytes, IllFormed::refused, text)) return std::nullopt;
  return text;
}

std::u16string utf16FromUtf8Replacing(std::string_view bytes) {
  std::u16string text;
  decodeUtf8(bytes, IllFormed::replaced, text);
  return text;
}

std::optional<CodePoint> codePointFromUtf8(std::string_view bytes) {
  const auto* const first = reinterpret_cast<const unsigned char*>(bytes.data());
  if (bytes.empty()) return std::nullopt;
  if (*first < 0x80) return CodePoint{*first, 1};
  const Decoded next = decodeMultibyte(first, bytes.size());
  if (!next.isWellFormed) return std::nullopt;
  return CodePoint{next.character, next.length};
}

std::size_t encodeUtf8(char32_t character, char* bytes) {
  const auto tail = [character](unsigned shift) {
    return static_cast<char>(0x80U | (character >> shift & 0x3FU));
  };
  if (character < 0x80) {
    bytes[0] = static_cast<char>(character);
    return 1;
  }
  if (character < 0x800) {
    bytes[0] = static_cast<char>(0xC0U | character >> 6U);
    bytes[1] = tail(0);
    return 2;
  }
  if (character < 0x10000) {
    bytes[0] = static_cast<char>(0xE0U | character >> 12U);
    bytes[1] = tail(6);
    bytes[2] = tail(0);
    return 3;
  }
  bytes[0] = static_cast<char>(0xF0U | character >> 18U);
  bytes[1] = tail(12);
  bytes[2] = tail(6);
  bytes[3] = tail(0);
  return 4;
}

std::u16string textFromFileName(std::string_view bytes) {
  std::u16string text;
  decodeUtf8(bytes, IllFormed::keptAsSurrogates, text);
  return text;
}

std::string_view withoutUtf8Mark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
  return bytes;
}

namespace {

// Gives each lone surrogate to a function, which gives the byte that it stands for, or
// nothing to have it replaced.
template <class ByteOf>
std::string encodeAsUtf8(std::u16string_view text, ByteOf&& byteOf) {
  std::string bytes;
  bytes.reserve(text.size() + text.size() / 8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (character < 0x80) {
      bytes += static_cast<char>(character);
      continue;
    }
    if (isLeadingSurrogate(text[i]) && i + 1 < text.size() && isTrailingSurrogate(text[i + 1])) {
      character = ((character & 0x3FFU) << 10U) + (text[++i] & 0x3FFU) + 0x10000;
    } else if (isLeadingSurrogate(text[i]) || isTrailingSurrogate(text[i])) {
      if (const std::optional<char> byte = byteOf(text[i])) {
        bytes += *byte;
        continue;
      }
      character = kReplacement;
    }
    char encoded[4];
    bytes.append(encoded, encodeUtf8(character, encoded));
  }
  return bytes;
}

}  // namespace

std::string utf8FromUtf16(std::u16string_view text) {
  return encodeAsUtf8(text, [](char16_t) { return std::optional<char>(); });
}

std::optional<std::string> fileNameFromText(std::u16string_view text) {
  bool isName = true;
  std::string bytes = encodeAsUtf8(text, [&isName](char16_t unit) -> std::optional<char> {
    const bool standsForByte =
        unit >= kFirstByteSurrogate + 0x80 && unit <= kFirstByteSurrogate + 0xFF;
    isName = isName && standsForByte;
    if (!standsForByte) return std::nullopt;
    return static_cast<char>(unit - kFirstByteSurrogate);
  });
  if (!isName) return std::nullopt;
  return bytes;
}

bool hasLoneSurrogate(std::u16string_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isTrailingSurrogate(text[i])) return true;
    if (!isLeadingSurrogate(text[i])) continue;
    if (++i == text.size() || !isTrailingSurrogate(text[i])) return true;
  }
  return false;
}

std::u16string utf16FromUtf16Bytes(std::string_view bytes) {
  std::u16string text(bytes.size() / 2, u'\0');
  if (text.empty()) return text;
  std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
  if (text.front() == u'\xFFFE') {
    for (char16_t& unit : text) {
      unit = static_cast<char16_t>(static_cast<unsigned>(unit) << 8U | unit >> 8U);
    }
  }
  if (text.front() == u'\uFEFF') text.erase(0, 1);
  return text;
}

std::u16string utf16FromMacRoman(std::string_view bytes) {
  std::u16string text(bytes.size(), u'\0');
  std::ranges::transform(bytes, text.begin(), [](char byte) {
    const auto value = static_cast<unsigned char>(byte);
    return value < 0x80 ? static_cast<char16_t>(value) : kMacRomanUpperHalf[value - 0x80U];
  });
  return text;
}

std::optional<std::string> macRomanFromUtf16(std::u16string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const char16_t unit : text) {
    if (unit < 0x80) {
      bytes += static_cast<char>(unit);
      continue;
    }
    const std::size_t place = kMacRomanUpperHalf.find(unit);
    if (place == std::u16string_view::npos) return std::nullopt;
    bytes += static_cast<char>(0x80U + place);
  }
  return bytes;
}

}  // namespace skerrow::foundation
