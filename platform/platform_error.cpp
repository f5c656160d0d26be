#include "platform/platform_error.h"

#include <system_error>

namespace skerrow::platform {

PlatformError::PlatformError(const std::string& attempt, int errorNumber)
    : std::runtime_error(attempt + ": " + std::generic_category().message(errorNumber) + ".") {}

}  // namespace skerrow::platform
