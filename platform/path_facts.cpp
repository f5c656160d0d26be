#include "platform/path_facts.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <vector>

namespace skerrow::platform {

std::optional<std::string> homeFolder(const std::string& user) {
  if (user.empty()) {
    const char* const home = std::getenv("HOME");
    if (home != nullptr && *home == '/') return home;
  }
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

std::optional<std::string> resolvedLink(const std::string& path) {
  struct stat facts {};
  if (lstat(path.c_str(), &facts) != 0 || !S_ISLNK(facts.st_mode)) return std::nullopt;
  struct Free {
    void operator()(char* memory) const { std::free(memory); }
  };
  const std::unique_ptr<char, Free> real(realpath(path.c_str(), nullptr));
  if (!real) return std::nullopt;
  return real.get();
}

}  // namespace skerrow::platform
