#pragma once
// CommandContext: what surrounds a command, and all that it gets from outside.

#include <cstddef>
#include <limits>
#include <memory>

#include "core/shared_services.h"

namespace skerrow::platform {
class Clock;
struct Platform;
}  // namespace skerrow::platform

namespace skerrow::core {

class ApplicationDelegate;
class MainLoop;
class ScriptCompiler;
class Workers;

/// Everything that it refers to outlives the command.
struct CommandContext {
  static constexpr std::size_t kUnlimitedMemory = std::numeric_limits<std::size_t>::max();

  MainLoop& loop;
  Workers& workers;
  const platform::Platform& platform;
  const platform::Clock& clock;
  ApplicationDelegate& delegate;
  const ScriptCompiler& compiler;
  /// What commands share. A command that needs a service in its task takes hold of
  /// it in its checks.
  std::shared_ptr<SharedServices> services = std::make_shared<SharedServices>();
  /// How much memory the work of one command may take, in bytes.
  std::size_t memoryAllowance = kUnlimitedMemory;
};

}  // namespace skerrow::core
