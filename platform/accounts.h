#pragma once
// Accounts: the users whom this machine knows.

#include <optional>
#include <string>

#include "platform/environment.h"
#include "platform/interface.h"

namespace skerrow::platform {

class Accounts : public Interface {
 public:
  /// The home folder that the account of a user names, of the one who runs this program
  /// for an empty name; nothing for an unknown user.
  [[nodiscard]] virtual std::optional<std::string> homeFolder(const std::string& user) const = 0;
};

/// The home folder of a user by name. For an empty name it is that of the one who runs
/// this program: what HOME says, or else the account.
std::optional<std::string> homeFolder(const Environment& environment, const Accounts& accounts,
                                      const std::string& user);

}  // namespace skerrow::platform
