#pragma once
// FileFacts: what the file system knows about a path, without what stands in the file.

#include <optional>
#include <string>

#include "platform/interface.h"

namespace skerrow::platform {

class FileFacts : public Interface {
 public:
  /// The absolute path without symbolic links to which a symbolic link leads; nothing
  /// for anything but a link that leads somewhere.
  [[nodiscard]] virtual std::optional<std::string> resolvedLink(const std::string& path) const = 0;
};

}  // namespace skerrow::platform
