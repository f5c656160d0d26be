#include "platform/platform_error.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace skerrow::platform {
namespace {

TEST(PlatformError, DescribesWhatWasTriedAndWhyItFailed) {
  EXPECT_EQ(PlatformError("Could not open the file “a”", ENOENT).localizedDescription(),
            "Could not open the file “a”: No such file or directory.");
  EXPECT_EQ(PlatformError("Could not read it", EACCES).localizedDescription(),
            "Could not read it: Permission denied.");
  EXPECT_EQ(PlatformError("", EISDIR).localizedDescription(), ": Is a directory.");
}

TEST(PlatformError, KeepsADescriptionAsItIsGiven) {
  EXPECT_EQ(PlatformError("Ünlesbar: %@ {}").localizedDescription(), "Ünlesbar: %@ {}");
  EXPECT_STREQ(PlatformError("why").what(), "why");
}

TEST(PlatformError, SaysSoWhenTheSystemKnowsNoReason) {
  const std::string description = PlatformError("Could not", 123456).localizedDescription();
  EXPECT_TRUE(description.starts_with("Could not: Unknown error")) << description;
}

}  // namespace
}  // namespace skerrow::platform
