#pragma once
// PlatformError: something that the operating system refused. Its description is
// written for a person: what was tried, on what, and why it failed. Its failure is for
// code that goes on differently after one refusal than after another.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace skerrow::platform {

/// The reasons for a refusal that callers tell apart.
enum class Failure : std::uint8_t {
  other,
  notThere,
  exists,
  notPermitted,
  notAFolder,
  isAFolder,
  notEmpty,
  otherVolume,
  readOnlyVolume,
  noSpace,
  notSupported,
};

class PlatformError : public std::runtime_error {
 public:
  explicit PlatformError(const std::string& localizedDescription, Failure failure = Failure::other)
      : std::runtime_error(localizedDescription), failure_(failure) {}

  /// "«attempt»: «the system's reason for `errorNumber`»."
  PlatformError(const std::string& attempt, int errorNumber);

  [[nodiscard]] std::string localizedDescription() const { return what(); }
  [[nodiscard]] Failure failure() const noexcept { return failure_; }
  /// The system's own number; 0 for what was refused before the system was asked.
  [[nodiscard]] int errorNumber() const noexcept { return errorNumber_; }

 private:
  Failure failure_;
  int errorNumber_ = 0;
};

}  // namespace skerrow::platform
