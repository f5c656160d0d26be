#include "values/depth.h"

#include <string>

namespace skerrow {

NestingTooDeep::NestingTooDeep()
    : std::length_error("Lists and records can be nested at most " + std::to_string(kMaximumDepth) +
                        " deep, where a record counts twice.") {}

}  // namespace skerrow
