#include "foundation/url/posix_path.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "foundation/text/text_encoding.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::foundation {
namespace {

namespace fs = std::filesystem;

std::string standardized(const std::string& path) {
  return utf8FromUtf16(standardizedPath(utf16FromUtf8Replacing(path)));
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
  EXPECT_EQ(standardizedPath(path), (std::u16string{u'/', u'\xD800'}));
}

class PosixPathWithHome : public testing::Test {
 protected:
  PosixPathWithHome() { ::setenv("HOME", "/home/of mine", 1); }
  ~PosixPathWithHome() override {
    if (before) {
      ::setenv("HOME", before->c_str(), 1);
    } else {
      ::unsetenv("HOME");
    }
  }
  const std::optional<std::string> before = std::getenv("HOME") == nullptr
                                                ? std::nullopt
                                                : std::optional<std::string>(std::getenv("HOME"));
};

TEST_F(PosixPathWithHome, ExpandsATildeInFront) {
  EXPECT_EQ(standardized("~"), "/home/of mine");
  EXPECT_EQ(standardized("~/"), "/home/of mine");
  EXPECT_EQ(standardized("~/a/./b"), "/home/of mine/a/b");
  EXPECT_EQ(standardized("~/.."), "/home");
  EXPECT_EQ(standardized("~root/x"), "/root/x");
  EXPECT_EQ(standardized("~no-such-user/x/"), "~no-such-user/x");
}

// Longer than the system takes, so no link is looked for; a time that grew with the
// square would be noticed.
TEST(PosixPath, GoesUpInPathsOfAnyLength) {
  std::u16string path = u"/";
  std::u16string expected;
  for (int i = 0; i < 100'000; ++i) {
    path += u"a/../b/./";
    expected += u"/b";
  }
  EXPECT_EQ(standardizedPath(path), expected);
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

}  // namespace
}  // namespace skerrow::foundation
