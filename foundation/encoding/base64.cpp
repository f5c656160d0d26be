#include "foundation/encoding/base64.h"

#include <glib.h>

#include <algorithm>

namespace skerrow::foundation {

namespace {

bool isBase64Digit(char character) {
  return g_ascii_isalnum(character) != 0 || character == '+' || character == '/';
}

}  // namespace

std::string base64FromBytes(std::string_view bytes) {
  // Pieces of whole groups, so that no second copy of the whole stands beside the result.
  constexpr std::size_t kPiece = 48 * 1024;
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kPiece, bytes.size()))) {
    const std::string_view piece = bytes.substr(0, kPiece);
    char* encoded = g_base64_encode(reinterpret_cast<const guchar*>(piece.data()), piece.size());
    text += encoded;
    g_free(encoded);
  }
  return text;
}

std::optional<std::string> bytesFromBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::string_view digits = text;
  for (int padding = 0; padding < 2 && digits.ends_with('='); ++padding) digits.remove_suffix(1);
  if (!std::ranges::all_of(digits, isBase64Digit)) return std::nullopt;
  std::string bytes(text);
  gsize count = 0;
  if (!bytes.empty()) g_base64_decode_inplace(bytes.data(), &count);
  bytes.resize(count);
  return bytes;
}

}  // namespace skerrow::foundation
