#include "platform/accounts.h"

namespace skerrow::platform {

std::optional<std::string> homeFolder(const Environment& environment, const Accounts& accounts,
                                      const std::string& user) {
  if (user.empty()) {
    if (auto home = environment.variable("HOME"); home && home->starts_with('/')) return home;
  }
  return accounts.homeFolder(user);
}

}  // namespace skerrow::platform
