#pragma once
// The MD5 digest (RFC 1321), as a name for contents and nothing else: it protects
// against nobody.

#include <string>
#include <string_view>

namespace skerrow::foundation {

/// 32 lower-case hexadecimal digits.
std::string md5Digest(std::string_view bytes);

}  // namespace skerrow::foundation
