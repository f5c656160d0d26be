#pragma once
// What only the system knows of paths. Paths are the bytes that the file system has.

#include <optional>
#include <string>

namespace skerrow::platform {

/// The home folder of a user by name, of the one who runs this program for an empty
/// name; nothing for an unknown user.
std::optional<std::string> homeFolder(const std::string& user);

/// The absolute path without symbolic links to which a symbolic link leads; nothing
/// for anything but a link that leads somewhere.
std::optional<std::string> resolvedLink(const std::string& path);

}  // namespace skerrow::platform
