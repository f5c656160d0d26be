#pragma once
// Base64 (RFC 4648, with padding), as GLib does it.

#include <optional>
#include <string>
#include <string_view>

namespace skerrow::foundation {

std::string base64FromBytes(std::string_view bytes);

/// Nothing for a text that is not exactly base64.
std::optional<std::string> bytesFromBase64(std::string_view text);

}  // namespace skerrow::foundation
