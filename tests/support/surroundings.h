#pragma once
// Surroundings: what commands have around them in a test, with no application and no script
// engine, and a main loop for the thread that makes it.

#include <memory>
#include <utility>

#include "core/application_delegate.h"
#include "core/command_context.h"
#include "core/main_loop.h"
#include "core/script_compiler.h"
#include "core/shared_services.h"
#include "core/worker_pool.h"
#include "platform/clock.h"
#include "platform/system_platform.h"

namespace skerrow::tests {

struct Surroundings {
  static std::shared_ptr<core::SharedServices> newServices() {
    return std::make_shared<core::SharedServices>();
  }

  /// On this machine.
  explicit Surroundings(std::shared_ptr<core::SharedServices> shared = newServices())
      : platform(system), services(std::move(shared)) {}
  /// On another platform, whose parts outlive this.
  explicit Surroundings(const platform::Platform& other)
      : platform(other), services(newServices()) {}

  [[nodiscard]] core::CommandContext context() {
    return {.loop = loop,
            .workers = pool,
            .platform = platform,
            .clock = clock,
            .delegate = application,
            .compiler = compiler,
            .services = services,
            .memoryAllowance = memoryAllowance};
  }

  platform::SystemPlatform system;
  platform::Platform platform;
  platform::SystemClock clock;
  core::NoApplication application;
  core::NoScriptCompiler compiler;
  std::shared_ptr<core::SharedServices> services;
  std::size_t memoryAllowance = core::CommandContext::kUnlimitedMemory;
  core::MainLoop loop{clock};
  core::WorkerPool pool;  // goes first, with what runs in it
};

}  // namespace skerrow::tests
