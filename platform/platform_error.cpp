#include "platform/platform_error.h"

#include <cerrno>
#include <system_error>

namespace skerrow::platform {

namespace {

Failure failureOf(int errorNumber) noexcept {
  switch (errorNumber) {
    case ENOENT:
      return Failure::notThere;
    case EEXIST:
      return Failure::exists;
    case EACCES:
    case EPERM:
      return Failure::notPermitted;
    case ENOTDIR:
      return Failure::notAFolder;
    case EISDIR:
      return Failure::isAFolder;
    case ENOTEMPTY:
      return Failure::notEmpty;
    case EXDEV:
      return Failure::otherVolume;
    case EROFS:
      return Failure::readOnlyVolume;
    case ENOSPC:
    case EDQUOT:
      return Failure::noSpace;
    case ENOSYS:
    case EOPNOTSUPP:
      return Failure::notSupported;
    default:
      return Failure::other;
  }
}

}  // namespace

PlatformError::PlatformError(const std::string& attempt, int errorNumber)
    : std::runtime_error(attempt + ": " + std::generic_category().message(errorNumber) + "."),
      failure_(failureOf(errorNumber)),
      errorNumber_(errorNumber) {}

}  // namespace skerrow::platform
