// This machine behind the interfaces, and the platforms that tests put around it.

#include "platform/platform.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/platform_error.h"
#include "platform/system_platform.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_platform.h"

namespace skerrow::platform {
namespace {

namespace fs = std::filesystem;
using tests::FailingPlatform;
using tests::GivenEnvironment;
using tests::RecordingPlatform;
using tests::ScratchFolder;

TEST(SystemPlatform, ReadsAWholeFile) {
  const SystemPlatform system;
  const ScratchFolder folder;
  EXPECT_EQ(system.contents.readWhole(folder.write("é", "a\r\né")), "a\r\né");
}

TEST(SystemPlatform, SaysWhyAFileCannotBeRead) {
  const SystemPlatform system;
  const ScratchFolder folder;
  const auto failureOf = [&system](const std::string& path) {
    try {
      static_cast<void>(system.contents.readWhole(path));
    } catch (const PlatformError& error) {
      return error.failure();
    }
    throw std::logic_error("it was read");
  };
  EXPECT_EQ(failureOf(folder.path("none")), Failure::notThere);
  EXPECT_EQ(failureOf(folder.path()), Failure::isAFolder);
  EXPECT_EQ(failureOf(folder.write("a", "") + "/b"), Failure::notAFolder);
  EXPECT_EQ(failureOf("/dev/null"), Failure::other);
  EXPECT_EQ(failureOf(""), Failure::notThere);
}

TEST(SystemPlatform, FollowsALinkToItsRealPath) {
  const SystemPlatform system;
  const ScratchFolder scratch;
  const fs::path folder = fs::canonical(scratch.path());
  fs::create_directories(folder / "real");
  fs::create_symlink("real", folder / "one");
  fs::create_symlink(folder / "one", folder / "two");
  fs::create_symlink("none", folder / "broken");
  EXPECT_EQ(system.facts.resolvedLink(folder / "one"), folder / "real");
  EXPECT_EQ(system.facts.resolvedLink(folder / "two"), folder / "real");
  EXPECT_EQ(system.facts.resolvedLink(folder / "real"), std::nullopt);
  EXPECT_EQ(system.facts.resolvedLink(folder / "broken"), std::nullopt);
  EXPECT_EQ(system.facts.resolvedLink(folder / "none"), std::nullopt);
  EXPECT_EQ(system.facts.resolvedLink(""), std::nullopt);
}

TEST(SystemPlatform, KnowsTheHomeFoldersOfAccounts) {
  const SystemPlatform system;
  EXPECT_EQ(system.accounts.homeFolder("root"), "/root");
  EXPECT_EQ(system.accounts.homeFolder(""), std::string(::getpwuid(::getuid())->pw_dir));
  EXPECT_EQ(system.accounts.homeFolder("no-such-user"), std::nullopt);
}

TEST(SystemPlatform, TellsVariablesThatAreEmptyFromThoseThatAreNotThere) {
  const SystemPlatform system;
  EXPECT_TRUE(system.environment.variable("PATH").has_value());
  EXPECT_EQ(system.environment.variable("NO_SUCH_VARIABLE_HERE"), std::nullopt);
  EXPECT_EQ(system.environment.variable(""), std::nullopt);
}

TEST(SystemPlatform, DrawsAnotherNumberEachTime) {
  const SystemPlatform system;
  std::set<std::uint64_t> drawn;
  for (int i = 0; i < 1000; ++i) drawn.insert(system.chance.draw());
  EXPECT_EQ(drawn.size(), 1000U);
}

TEST(HomeFolder, IsWhatTheEnvironmentSaysForTheUserOfThisProgramOnly) {
  const SystemPlatform system;
  const auto home = [&](const std::string& variable, const std::string& user) {
    return homeFolder(GivenEnvironment(system.environment, {{"HOME", variable}}), system.accounts,
                      user);
  };
  EXPECT_EQ(home("/hôme of mine", ""), "/hôme of mine");
  EXPECT_EQ(home("/home/mine", "root"), "/root");
  EXPECT_EQ(home("/home/mine", "no-such-user"), std::nullopt);
}

TEST(HomeFolder, IsThatOfTheAccountWhereTheEnvironmentNamesNoAbsolutePath) {
  const SystemPlatform system;
  for (const std::string variable : {"", "relative", "~"}) {
    EXPECT_EQ(
        homeFolder(GivenEnvironment(system.environment, {{"HOME", variable}}), system.accounts, ""),
        system.accounts.homeFolder(""));
  }
}

TEST(RecordingPlatform, NotesCallsInTheirOrderAndPassesThemOn) {
  const SystemPlatform system;
  const ScratchFolder folder;
  const RecordingPlatform platform(system);
  const std::string file = folder.write("a", "content");
  EXPECT_EQ(platform.contents.readWhole(file), "content");
  EXPECT_EQ(platform.facts.resolvedLink(file), std::nullopt);
  EXPECT_EQ(platform.accounts.homeFolder("root"), "/root");
  EXPECT_EQ(platform.environment.variable("PATH"), system.environment.variable("PATH"));
  EXPECT_NE(platform.chance.draw(), platform.chance.draw());
  EXPECT_EQ(platform.machine.memory(), system.machine.memory());
  EXPECT_EQ(platform.calls(), (std::vector<std::string>{"readWhole " + file, "resolvedLink " + file,
                                                        "homeFolder root", "variable PATH", "draw",
                                                        "draw", "memory"}));
}

TEST(FailingPlatform, FailsTheChosenCallsOnly) {
  const SystemPlatform system;
  const ScratchFolder folder;
  FailingPlatform platform(system);
  const std::string good = folder.write("good", "content");
  platform.fail("readWhole /bad", PlatformError("It is bad.", Failure::notPermitted));
  EXPECT_EQ(platform.contents.readWhole(good), "content");
  try {
    static_cast<void>(platform.contents.readWhole("/bad"));
    ADD_FAILURE() << "nothing was thrown";
  } catch (const PlatformError& error) {
    EXPECT_EQ(error.localizedDescription(), "It is bad.");
    EXPECT_EQ(error.failure(), Failure::notPermitted);
  }
  platform.fail("readWhole", PlatformError("None can be read."));
  EXPECT_THROW(static_cast<void>(platform.contents.readWhole(good)), PlatformError);
  EXPECT_NO_THROW(static_cast<void>(platform.environment.variable("PATH")));
}

}  // namespace
}  // namespace skerrow::platform
