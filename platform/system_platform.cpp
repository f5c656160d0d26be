#include "platform/system_platform.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "platform/byte_stream.h"
#include "platform/machine_memory.h"

namespace skerrow::platform {

std::optional<std::string> SystemAccounts::homeFolder(const std::string& user) const {
  std::vector<char> room(1024);
  for (;;) {
    passwd entry{};
    passwd* found = nullptr;
    const int error = user.empty()
                          ? getpwuid_r(getuid(), &entry, room.data(), room.size(), &found)
                          : getpwnam_r(user.c_str(), &entry, room.data(), room.size(), &found);
    if (error == ERANGE) {
      room.resize(room.size() * 2);
      continue;
    }
    if (found == nullptr || found->pw_dir == nullptr) return std::nullopt;
    return found->pw_dir;
  }
}

// Nothing in this program changes a variable, so reading one is safe on any thread.
std::optional<std::string> SystemEnvironment::variable(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  if (value == nullptr) return std::nullopt;
  return value;
}

std::string SystemFileContents::readWhole(const std::string& path) const {
  return readWholeFile(path);
}

std::optional<std::string> SystemFileFacts::resolvedLink(const std::string& path) const {
  struct stat facts {};
  if (lstat(path.c_str(), &facts) != 0 || !S_ISLNK(facts.st_mode)) return std::nullopt;
  struct Free {
    void operator()(char* memory) const { std::free(memory); }
  };
  const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
  if (!real) return std::nullopt;
  return real.get();
}

std::uint64_t SystemChance::draw() const {
  std::random_device device;
  return static_cast<std::uint64_t>(device()) << 32U | device();
}

std::size_t SystemMachine::memory() const {
  const std::size_t all = machineMemory();
  return std::min(controlGroupMemoryLimit().value_or(all), all);
}

SystemPlatform::SystemPlatform()
    : Platform{theContents, theFacts, theAccounts, theEnvironment, theChance, theMachine} {}

}  // namespace skerrow::platform
