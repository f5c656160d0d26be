#pragma once
// URLs as texts: parsing, and the way between file URLs and POSIX paths
// (RFC 3986 and RFC 8089, as GLib implements them).

#include <optional>
#include <string>
#include <string_view>

#include "values/value.h"

namespace skerrow::foundation {

/// The URL that a text spells, kept as it stands; nothing when it spells none.
std::optional<Url> parseUrl(std::string_view text);

/// The file URL of an absolute path; nothing for a relative or empty path.
std::optional<Url> fileUrl(std::string_view posixPath);

[[nodiscard]] bool isFileUrl(const Url& url);

/// The path of a file URL on this machine, as the bytes that the file system
/// knows; nothing for any other URL.
std::optional<std::string> filePath(const Url& url);

}  // namespace skerrow::foundation
