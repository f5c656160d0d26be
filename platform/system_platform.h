#pragma once
// SystemPlatform: the operating system itself behind the interfaces of a Platform. The
// programs make one and hand it to all that they start.

#include "platform/platform.h"

namespace skerrow::platform {

class SystemAccounts final : public Accounts {
 public:
  [[nodiscard]] std::optional<std::string> homeFolder(const std::string& user) const override;
};

class SystemEnvironment final : public Environment {
 public:
  [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;
};

class SystemFileContents final : public FileContents {
 public:
  [[nodiscard]] std::string readWhole(const std::string& path) const override;
};

class SystemFileFacts final : public FileFacts {
 public:
  [[nodiscard]] std::optional<std::string> resolvedLink(const std::string& path) const override;
};

class SystemChance final : public Chance {
 public:
  [[nodiscard]] std::uint64_t draw() const override;
};

class SystemMachine final : public Machine {
 public:
  [[nodiscard]] std::size_t memory() const override;
};

namespace detail {

struct SystemParts {
  SystemFileContents theContents;
  SystemFileFacts theFacts;
  SystemAccounts theAccounts;
  SystemEnvironment theEnvironment;
  SystemChance theChance;
  SystemMachine theMachine;
};

}  // namespace detail

class SystemPlatform final : private detail::SystemParts, public Platform {
 public:
  SystemPlatform();
  SystemPlatform(const SystemPlatform&) = delete;
  SystemPlatform& operator=(const SystemPlatform&) = delete;
  ~SystemPlatform() = default;
};

}  // namespace skerrow::platform
