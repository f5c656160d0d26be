#include "foundation/url/posix_path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "foundation/text/text_encoding.h"
#include "platform/system_platform.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_platform.h"

namespace skerrow::foundation {
namespace {

namespace fs = std::filesystem;

std::string standardized(const std::string& path, const platform::Platform& platform) {
  return utf8FromUtf16(standardizedPath(utf16FromUtf8Replacing(path), platform));
}

std::string standardized(const std::string& path) {
  return standardized(path, platform::SystemPlatform());
}

TEST(PosixPath, LeavesOutWhatChangesNothing) {
  const struct {
    const char* path;
    const char* expected;
  } cases[] = {
      {"", ""},
      {"/", "/"},
      {"//", "/"},
      {"/.", "/"},
      {".", "."},
      {"./", "."},
      {"a/", "a"},
      {"/usr//bin/./grep/", "/usr/bin/grep"},
      {"a//b/./c/", "a/b/c"},
      {"./a", "a"},
      {"a/../b", "a/../b"},
      {"../a/..", "../a/.."},
      {"/..", "/"},
      {"/../../a", "/a"},
      {"/no/such/folder/../file", "/no/such/file"},
      {"/a/...", "/a/..."},
      {"/é/./ü", "/é/ü"},
      {"/a/~", "/a/~"},
  };
  for (const auto& each : cases) EXPECT_EQ(standardized(each.path), each.expected);
}

TEST(PosixPath, KeepsUnitsThatNoFileNameCanHold) {
  const std::u16string path = {u'/', u'\xD800', u'/', u'/', u'\0', u'/', u'.', u'.'};
  EXPECT_EQ(standardizedPath(path, platform::SystemPlatform()), (std::u16string{u'/', u'\xD800'}));
}

TEST(PosixPath, KeepsBytesOfNamesThatAreNoUtf8) {
  const std::u16string path = {u'/', u'a', u'\xDCFF', u'/', u'.', u'/', u'b'};
  EXPECT_EQ(standardizedPath(path, platform::SystemPlatform()),
            (std::u16string{u'/', u'a', u'\xDCFF', u'/', u'b'}));
}

TEST(PosixPath, ExpandsATildeInFront) {
  const platform::SystemPlatform system;
  const tests::GivenEnvironment environment(system.environment, {{"HOME", "/home/of mine"}});
  const platform::Platform platform = tests::withEnvironment(system, environment);
  EXPECT_EQ(standardized("~", platform), "/home/of mine");
  EXPECT_EQ(standardized("~/", platform), "/home/of mine");
  EXPECT_EQ(standardized("~/a/./b", platform), "/home/of mine/a/b");
  EXPECT_EQ(standardized("~/..", platform), "/home");
  EXPECT_EQ(standardized("~root/x", platform), "/root/x");
  EXPECT_EQ(standardized("~no-such-user/x/", platform), "~no-such-user/x");
}

// Longer than the system takes, so no link is looked for; a time that grew with the
// square would be noticed.
TEST(PosixPath, GoesUpInPathsOfAnyLength) {
  std::u16string path = u"/";
  std::u16string expected;
  for (int i = 0; i < 30'000; ++i) {
    path += u"a/../b/./";
    expected += u"/b";
  }
  EXPECT_EQ(standardizedPath(path, platform::SystemPlatform()), expected);
}

class PosixPathOnDisk : public testing::Test {
 protected:
  PosixPathOnDisk() {
    fs::create_directories(folder / "real/inner");
    fs::create_directory_symlink(folder / "real/inner", folder / "link");
    fs::create_directory_symlink(folder / "nowhere", folder / "broken");
  }

  tests::ScratchFolder scratch;
  fs::path folder = fs::canonical(scratch.path());
};

TEST_F(PosixPathOnDisk, GoesToTheRealParentBehindASymbolicLink) {
  EXPECT_EQ(standardized(folder / "link/../x"), folder / "real/x");
  EXPECT_EQ(standardized(folder / "link/x"), folder / "link/x");
  EXPECT_EQ(standardized(folder / "real/../link/../.."), folder);
  EXPECT_EQ(standardized(folder / "broken/../x"), folder / "x");
}

TEST_F(PosixPathOnDisk, FollowsLinksWhoseNamesAreNoUtf8) {
  fs::create_directories(folder / "real/\xFE/inner");
  fs::create_directory_symlink(folder / "real/\xFE/inner", folder / "link\xFF");
  const std::u16string start = textFromFileName(folder.native());
  const std::u16string given =
      start + std::u16string{u'/', u'l', u'i', u'n', u'k', u'\xDCFF'} + u"/../x";
  EXPECT_EQ(standardizedPath(given, platform::SystemPlatform()),
            start + u"/real/" + std::u16string{u'\xDCFE'} + u"/x");
}

}  // namespace
}  // namespace skerrow::foundation
