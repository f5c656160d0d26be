#include "tests/support/test_platform.h"

#include <utility>

namespace skerrow::tests {

namespace detail {

WatchedContents::WatchedContents(const FileContents& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::string WatchedContents::readWhole(const std::string& path) const {
  watch_("readWhole", path);
  return real_.readWhole(path);
}

WatchedFacts::WatchedFacts(const FileFacts& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::optional<std::string> WatchedFacts::resolvedLink(const std::string& path) const {
  watch_("resolvedLink", path);
  return real_.resolvedLink(path);
}

WatchedAccounts::WatchedAccounts(const Accounts& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::optional<std::string> WatchedAccounts::homeFolder(const std::string& user) const {
  watch_("homeFolder", user);
  return real_.homeFolder(user);
}

WatchedEnvironment::WatchedEnvironment(const Environment& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::optional<std::string> WatchedEnvironment::variable(const std::string& name) const {
  watch_("variable", name);
  return real_.variable(name);
}

WatchedChance::WatchedChance(const Chance& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::uint64_t WatchedChance::draw() const {
  watch_("draw", "");
  return real_.draw();
}

WatchedMachine::WatchedMachine(const Machine& real, PlatformWatch watch)
    : real_(real), watch_(std::move(watch)) {}

std::size_t WatchedMachine::memory() const {
  watch_("memory", "");
  return real_.memory();
}

WatchedParts::WatchedParts(const platform::Platform& real, const PlatformWatch& watch)
    : theContents(real.contents, watch),
      theFacts(real.facts, watch),
      theAccounts(real.accounts, watch),
      theEnvironment(real.environment, watch),
      theChance(real.chance, watch),
      theMachine(real.machine, watch) {}

void NotedCalls::note(std::string call) {
  const std::lock_guard lock(mutex_);
  calls_.push_back(std::move(call));
}

std::vector<std::string> NotedCalls::all() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

void ChosenFailures::add(std::string call, const platform::PlatformError& error) {
  const std::lock_guard lock(mutex_);
  failures_.insert_or_assign(std::move(call), error);
}

void ChosenFailures::throwFor(const std::string& operation, const std::string& subject) const {
  const std::lock_guard lock(mutex_);
  for (const std::string& call : {operation + " " + subject, operation}) {
    const auto found = failures_.find(call);
    if (found != failures_.end()) throw platform::PlatformError(found->second);
  }
}

}  // namespace detail

WatchedPlatform::WatchedPlatform(const Platform& real, const PlatformWatch& watch)
    : WatchedParts(real, watch), Platform{theContents,    theFacts,  theAccounts,
                                          theEnvironment, theChance, theMachine} {}

RecordingPlatform::RecordingPlatform(const Platform& real)
    : WatchedPlatform(real, [this](const std::string& operation, const std::string& subject) {
        note(subject.empty() ? operation : operation + " " + subject);
      }) {}

FailingPlatform::FailingPlatform(const Platform& real)
    : WatchedPlatform(real, [this](const std::string& operation, const std::string& subject) {
        throwFor(operation, subject);
      }) {}

std::optional<std::string> GivenEnvironment::variable(const std::string& name) const {
  const auto found = variables_.find(name);
  return found != variables_.end() ? std::optional(found->second) : otherwise_.variable(name);
}

platform::Platform withEnvironment(const platform::Platform& platform,
                                   const platform::Environment& environment) {
  return {platform.contents, platform.facts,  platform.accounts,
          environment,       platform.chance, platform.machine};
}

}  // namespace skerrow::tests
