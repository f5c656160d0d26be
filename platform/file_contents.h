#pragma once
// FileContents: what stands in files.

#include <string>

#include "platform/interface.h"

namespace skerrow::platform {

class FileContents : public Interface {
 public:
  /// The whole content of a regular file, or of one that a link leads to. Throws PlatformError.
  [[nodiscard]] virtual std::string readWhole(const std::string& path) const = 0;
};

}  // namespace skerrow::platform
