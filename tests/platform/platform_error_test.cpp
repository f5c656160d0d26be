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

TEST(PlatformError, TellsTheReasonsApartThatCallersActOn) {
  const struct {
    int number;
    Failure failure;
  } rows[] = {
      {ENOENT, Failure::notThere},
      {EEXIST, Failure::exists},
      {EACCES, Failure::notPermitted},
      {EPERM, Failure::notPermitted},
      {ENOTDIR, Failure::notAFolder},
      {EISDIR, Failure::isAFolder},
      {ENOTEMPTY, Failure::notEmpty},
      {EXDEV, Failure::otherVolume},
      {EROFS, Failure::readOnlyVolume},
      {ENOSPC, Failure::noSpace},
      {EDQUOT, Failure::noSpace},
      {ENOSYS, Failure::notSupported},
      {EOPNOTSUPP, Failure::notSupported},
      {EIO, Failure::other},
      {0, Failure::other},
  };
  for (const auto& row : rows) {
    const PlatformError error("Could not", row.number);
    EXPECT_EQ(error.failure(), row.failure) << row.number;
    EXPECT_EQ(error.errorNumber(), row.number);
  }
}

TEST(PlatformError, HasNoNumberOfTheSystemWhereTheSystemWasNotAsked) {
  EXPECT_EQ(PlatformError("why").errorNumber(), 0);
  EXPECT_EQ(PlatformError("why").failure(), Failure::other);
  EXPECT_EQ(PlatformError("There is one.", Failure::exists).failure(), Failure::exists);
}

}  // namespace
}  // namespace skerrow::platform
