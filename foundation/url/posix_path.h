#pragma once
// POSIX paths as texts.

#include <string>
#include <string_view>

#include "platform/platform.h"

namespace skerrow::foundation {

/// The path in its standard form: a leading ~ or ~user expanded (an unknown user
/// stays), "." components, doubled slashes and a trailing slash left out. In an
/// absolute path ".." goes to the real parent: behind a symbolic link, to the parent
/// of what the link leads to; otherwise the component before it is dropped. In a
/// relative path ".." stays. Other symbolic links stay as they are.
std::u16string standardizedPath(std::u16string_view path, const platform::Platform& platform);

}  // namespace skerrow::foundation
