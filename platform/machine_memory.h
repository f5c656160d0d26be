#pragma once
// How much memory there is for this process, as the kernel says.

#include <cstddef>
#include <optional>
#include <string>

namespace skerrow::platform {

/// The bytes of memory of this machine.
std::size_t machineMemory() noexcept;

/// The lowest limit in bytes among the control groups (version 1 or 2) in which this
/// process is; nothing without a limit. `root` is put before the paths that are read.
std::optional<std::size_t> controlGroupMemoryLimit(const std::string& root = {});

}  // namespace skerrow::platform
