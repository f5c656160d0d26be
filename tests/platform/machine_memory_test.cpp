// Trees as the kernel shows them, in a folder of the test's own.

#include "platform/machine_memory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

#include "platform/system_platform.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::platform {
namespace {

using Files = std::map<std::string, std::string>;

std::optional<std::size_t> limitWith(const Files& files) {
  const tests::ScratchFolder folder;
  for (const auto& [path, content] : files) {
    std::filesystem::create_directories(std::filesystem::path(folder.path(path)).parent_path());
    folder.write(path, content);
  }
  return controlGroupMemoryLimit(folder.path());
}

constexpr const char* kGroups = "proc/self/cgroup";

TEST(ControlGroupMemoryLimit, IsThatOfTheGroupInVersion2) {
  EXPECT_EQ(limitWith({{kGroups, "0::/user.slice/app\n"},
                       {"sys/fs/cgroup/user.slice/app/memory.max", "1000000\n"}}),
            1000000U);
}

TEST(ControlGroupMemoryLimit, IsTheLowestOfTheGroupsAround) {
  EXPECT_EQ(limitWith({{kGroups, "0::/a/b/c\n"},
                       {"sys/fs/cgroup/a/b/c/memory.max", "3000\n"},
                       {"sys/fs/cgroup/a/b/memory.max", "max\n"},
                       {"sys/fs/cgroup/a/memory.max", "2000\n"},
                       {"sys/fs/cgroup/a/other/memory.max", "1\n"}}),
            2000U);
}

TEST(ControlGroupMemoryLimit, IsThatOfTheMemoryHierarchyInVersion1) {
  const Files files = {{kGroups,
                        "12:cpuset:/x\n5:cpu,memory,pids:/box/é one\n"
                        "4:memory_other:/low\n1:name=systemd:/low\n"},
                       {"sys/fs/cgroup/memory/box/é one/memory.limit_in_bytes", "4096\n"},
                       {"sys/fs/cgroup/memory/low/memory.limit_in_bytes", "1\n"}};
  EXPECT_EQ(limitWith(files), 4096U);
}

TEST(ControlGroupMemoryLimit, LooksAtBothVersionsWhereBothAre) {
  EXPECT_EQ(limitWith({{kGroups, "5:memory:/a\n0::/a\n"},
                       {"sys/fs/cgroup/memory/a/memory.limit_in_bytes", "9223372036854771712\n"},
                       {"sys/fs/cgroup/unified/a/memory.max", "700\n"}}),
            700U);
}

TEST(ControlGroupMemoryLimit, IsThatOfTheRootWhereTheGroupIsOutOfSight) {
  EXPECT_EQ(limitWith({{kGroups, "9:memory:/docker/0123\n"},
                       {"sys/fs/cgroup/memory/memory.limit_in_bytes", "512\n"}}),
            512U);
  for (const std::string group : {"/../..", "/../other", "", "relative", "/"}) {
    EXPECT_EQ(limitWith({{kGroups, "0::" + group}, {"sys/fs/cgroup/memory.max", "512"}}), 512U)
        << group;
  }
  EXPECT_EQ(limitWith({{kGroups, "0::/a..b\n"}, {"sys/fs/cgroup/a..b/memory.max", "7"}}), 7U);
}

TEST(ControlGroupMemoryLimit, IsNothingWithoutALimitOrWithoutGroups) {
  EXPECT_EQ(limitWith({}), std::nullopt);
  EXPECT_EQ(limitWith({{kGroups, ""}}), std::nullopt);
  EXPECT_EQ(limitWith({{kGroups, "0::/a\n"}}), std::nullopt);
  EXPECT_EQ(limitWith({{kGroups, "0::/a\n"}, {"sys/fs/cgroup/a/memory.max", "max\n"}}),
            std::nullopt);
  EXPECT_EQ(limitWith({{kGroups, "0::/a\n"}, {"sys/fs/cgroup/a/memory.max", ""}}), std::nullopt);
}

TEST(ControlGroupMemoryLimit, PassesOverLinesThatNameNoGroup) {
  EXPECT_EQ(limitWith({{kGroups, "\n:\nnonsense\n0::/a"}, {"sys/fs/cgroup/a/memory.max", "8"}}),
            8U);
}

TEST(MachineMemory, IsWhatTheKernelSaysInAll) {
  const std::string facts = SystemFileContents().readWhole("/proc/meminfo");
  ASSERT_TRUE(facts.starts_with("MemTotal:")) << facts.substr(0, 40);
  EXPECT_EQ(machineMemory(), std::stoul(facts.substr(9)) * 1024);
}

TEST(MachineMemory, IsTheUpperLimitOfWhatAProcessCanHave) {
  const std::size_t memory = SystemMachine().memory();
  EXPECT_GT(memory, 0U);
  EXPECT_LE(memory, machineMemory());
}

}  // namespace
}  // namespace skerrow::platform
