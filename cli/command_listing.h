#pragma once
// What `skerrow commands` shows, from the dictionary's tables.

#include <optional>
#include <string>

namespace skerrow::cli {

/// All commands with a line each, or everything about the one that is named by
/// its class or its words. Throws UsageError when there is no such command.
std::string commandListing(const std::optional<std::string>& command);

}  // namespace skerrow::cli
