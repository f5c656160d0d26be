#pragma once
// PlatformError: something that the operating system refused. Its description is
// written for a person: what was tried, on what, and why it failed.

#include <stdexcept>
#include <string>

namespace skerrow::platform {

class PlatformError : public std::runtime_error {
 public:
  explicit PlatformError(const std::string& localizedDescription)
      : std::runtime_error(localizedDescription) {}

  /// "«attempt»: «the system's reason for `errorNumber`»."
  PlatformError(const std::string& attempt, int errorNumber);

  [[nodiscard]] std::string localizedDescription() const { return what(); }
};

}  // namespace skerrow::platform
