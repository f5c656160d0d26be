#pragma once
// Platforms for tests, each around another one: one that notes what is asked of it, one
// in which chosen calls fail, and one with variables of its own. Usable on any thread.

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "platform/platform_error.h"

namespace skerrow::tests {

/// Told of every call before it is passed on; what it throws is what the caller gets.
/// The operation is the name of the function, the subject its path, name or nothing.
using PlatformWatch = std::function<void(const std::string& operation, const std::string& subject)>;

namespace detail {

class WatchedContents final : public platform::FileContents {
 public:
  WatchedContents(const FileContents& real, PlatformWatch watch);
  [[nodiscard]] std::string readWhole(const std::string& path) const override;

 private:
  const FileContents& real_;
  PlatformWatch watch_;
};

class WatchedFacts final : public platform::FileFacts {
 public:
  WatchedFacts(const FileFacts& real, PlatformWatch watch);
  [[nodiscard]] std::optional<std::string> resolvedLink(const std::string& path) const override;

 private:
  const FileFacts& real_;
  PlatformWatch watch_;
};

class WatchedAccounts final : public platform::Accounts {
 public:
  WatchedAccounts(const Accounts& real, PlatformWatch watch);
  [[nodiscard]] std::optional<std::string> homeFolder(const std::string& user) const override;

 private:
  const Accounts& real_;
  PlatformWatch watch_;
};

class WatchedEnvironment final : public platform::Environment {
 public:
  WatchedEnvironment(const Environment& real, PlatformWatch watch);
  [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;

 private:
  const Environment& real_;
  PlatformWatch watch_;
};

class WatchedChance final : public platform::Chance {
 public:
  WatchedChance(const Chance& real, PlatformWatch watch);
  [[nodiscard]] std::uint64_t draw() const override;

 private:
  const Chance& real_;
  PlatformWatch watch_;
};

class WatchedMachine final : public platform::Machine {
 public:
  WatchedMachine(const Machine& real, PlatformWatch watch);
  [[nodiscard]] std::size_t memory() const override;

 private:
  const Machine& real_;
  PlatformWatch watch_;
};

struct WatchedParts {
  WatchedParts(const platform::Platform& real, const PlatformWatch& watch);

  WatchedContents theContents;
  WatchedFacts theFacts;
  WatchedAccounts theAccounts;
  WatchedEnvironment theEnvironment;
  WatchedChance theChance;
  WatchedMachine theMachine;
};

}  // namespace detail

class WatchedPlatform : private detail::WatchedParts, public platform::Platform {
 public:
  WatchedPlatform(const Platform& real, const PlatformWatch& watch);
  WatchedPlatform(const WatchedPlatform&) = delete;
  WatchedPlatform& operator=(const WatchedPlatform&) = delete;
  ~WatchedPlatform() = default;
};

namespace detail {

class NotedCalls {
 public:
  void note(std::string call);
  [[nodiscard]] std::vector<std::string> all() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> calls_;  // under mutex_
};

class ChosenFailures {
 public:
  void add(std::string call, const platform::PlatformError& error);
  /// Throws what was chosen for the call, if anything was.
  void throwFor(const std::string& operation, const std::string& subject) const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, platform::PlatformError> failures_;  // under mutex_
};

}  // namespace detail

class RecordingPlatform final : private detail::NotedCalls, public WatchedPlatform {
 public:
  explicit RecordingPlatform(const Platform& real);

  /// "readWhole /a/b", in the order of the calls.
  [[nodiscard]] std::vector<std::string> calls() const { return all(); }
};

class FailingPlatform final : private detail::ChosenFailures, public WatchedPlatform {
 public:
  explicit FailingPlatform(const Platform& real);

  /// From now on a call fails: "readWhole /a/b", or every call of it: "readWhole".
  void fail(std::string call, const platform::PlatformError& error) { add(std::move(call), error); }
};

/// The variables given, and those of another environment where none of that name is.
class GivenEnvironment final : public platform::Environment {
 public:
  using Variables = std::map<std::string, std::string>;

  GivenEnvironment(const Environment& otherwise, Variables variables)
      : otherwise_(otherwise), variables_(std::move(variables)) {}
  [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override;

 private:
  const Environment& otherwise_;
  Variables variables_;
};

/// A platform with another environment.
platform::Platform withEnvironment(const platform::Platform& platform,
                                   const platform::Environment& environment);

}  // namespace skerrow::tests
