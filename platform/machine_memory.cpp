#include "platform/machine_memory.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <string_view>

#include "platform/byte_stream.h"
#include "platform/platform_error.h"

namespace skerrow::platform {

namespace {

// Where a hierarchy of groups is seen, and the file of a group that holds its limit.
struct Hierarchy {
  std::string_view mounted;
  std::string_view limitFile;
};
constexpr Hierarchy kVersion1 = {"/sys/fs/cgroup/memory", "/memory.limit_in_bytes"};
constexpr Hierarchy kVersion2 = {"/sys/fs/cgroup", "/memory.max"};
constexpr Hierarchy kVersion2Beside1 = {"/sys/fs/cgroup/unified", "/memory.max"};

std::optional<std::string> contentOf(const std::string& path) {
  try {
    return readWholeFile(path);
  } catch (const PlatformError&) {
    return std::nullopt;  // the kernel has no such file
  }
}

std::optional<std::size_t> limitIn(const std::string& file) {
  const std::optional<std::string> content = contentOf(file);
  if (!content) return std::nullopt;
  std::size_t limit = 0;
  const char* const end = content->data() + content->size();
  // Where there is no limit it says "max".
  if (std::from_chars(content->data(), end, limit).ec != std::errc()) return std::nullopt;
  return limit;
}

std::optional<std::size_t> lower(std::optional<std::size_t> a, std::optional<std::size_t> b) {
  if (!a || !b) return a ? a : b;
  return std::min(*a, *b);
}

// Of the group and all groups around it. A group may be out of sight, as from inside of
// a container: then the nearest one in sight counts.
std::optional<std::size_t> limitUpFrom(std::string_view group, const Hierarchy& hierarchy,
                                       const std::string& root) {
  if (!group.starts_with('/') || group.starts_with("/..")) group = {};
  std::optional<std::size_t> lowest;
  for (;;) {
    while (group.ends_with('/')) group.remove_suffix(1);
    lowest = lower(lowest, limitIn(root + std::string(hierarchy.mounted) + std::string(group) +
                                   std::string(hierarchy.limitFile)));
    if (group.empty()) return lowest;
    group = group.substr(0, group.rfind('/'));
  }
}

bool namesMemory(std::string_view controllers) {
  return ("," + std::string(controllers) + ",").find(",memory,") != std::string::npos;
}

}  // namespace

std::size_t machineMemory() noexcept {
  return static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) *
         static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

std::optional<std::size_t> controlGroupMemoryLimit(const std::string& root) {
  const std::optional<std::string> groups = contentOf(root + "/proc/self/cgroup");
  std::optional<std::size_t> lowest;
  // Each line is NUMBER:CONTROLLERS:GROUP; version 2 has the number 0 and no controllers.
  std::string_view lines = groups ? std::string_view(*groups) : std::string_view();
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    const std::string_view line = lines.substr(0, end);
    lines.remove_prefix(std::min(end + 1, lines.size()));
    const std::size_t first = line.find(':');
    const std::size_t second = first == std::string_view::npos ? first : line.find(':', first + 1);
    if (second == std::string_view::npos) continue;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    const std::string_view group = line.substr(second + 1);
    if (namesMemory(controllers)) {
      lowest = lower(lowest, limitUpFrom(group, kVersion1, root));
    } else if (controllers.empty()) {
      lowest = lower(lowest, limitUpFrom(group, kVersion2, root));
      lowest = lower(lowest, limitUpFrom(group, kVersion2Beside1, root));
    }
  }
  return lowest;
}

}  // namespace skerrow::platform
