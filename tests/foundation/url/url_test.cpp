#include "foundation/url/url.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>

#include "tests/support/generators.h"

namespace skerrow::foundation {
namespace {

TEST(Url, KeepsAnyTextThatSpellsOneAsItStands) {
  const std::string rows[] = {"file:///Users/x/a.txt",
                              "http://example.org/a?b=c#d",
                              "mailto:a@b.c",
                              "FILE:///X",
                              "file:///a%20b/%C3%A9",
                              "urn:x:y",
                              "file://localhost/a",
                              "file:///a//b/",
                              "x:"};
  for (const std::string& text : rows) {
    const auto url = parseUrl(text);
    ASSERT_TRUE(url.has_value()) << text;
    EXPECT_EQ(url->absoluteString, text);
  }
}

TEST(Url, NothingForTextThatSpellsNone) {
  const std::string rows[] = {"",
                              "a text",
                              "/posix/path",
                              "file:///%ZZ",
                              "file:///%4",
                              "://x",
                              "1http://x",
                              "http://[::1",
                              std::string("file:///a\0b", 11),
                              "http://a:b:c/"};
  for (const std::string& text : rows) EXPECT_EQ(parseUrl(text).has_value(), false) << text;
}

struct PathRow {
  const char* path;
  const char* url;
};

TEST(FileUrl, EscapesWhatAUrlCannotHoldAndBack) {
  const PathRow rows[] = {
      {"/", "file:///"},
      {"/Users/x/a.txt", "file:///Users/x/a.txt"},
      {"/a b", "file:///a%20b"},
      {"/100%", "file:///100%25"},
      {"/a?b#c", "file:///a%3Fb%23c"},
      {"/é", "file:///%C3%A9"},
      {"/e\xCC\x81", "file:///e%CC%81"},
      {"/🏔", "file:///%F0%9F%8F%94"},
      {"/not \xFF utf-8", "file:///not%20%FF%20utf-8"},
      {"/new\nline", "file:///new%0Aline"},
      {"/folder/", "file:///folder/"},
      {"/a:b;c@d", "file:///a:b%3Bc@d"},
  };
  for (const PathRow& row : rows) {
    const auto url = fileUrl(row.path);
    ASSERT_TRUE(url.has_value()) << row.path;
    EXPECT_EQ(url->absoluteString, row.url);
    EXPECT_TRUE(isFileUrl(*url));
    EXPECT_EQ(filePath(*url), row.path);
  }
}

TEST(FileUrl, NothingForAPathThatIsNotAbsoluteOrHoldsNul) {
  for (const std::string& path : {std::string(), std::string("relative"), std::string("./a"),
                                  std::string("~"), std::string("/a\0b", 4)}) {
    EXPECT_EQ(fileUrl(path).has_value(), false) << path;
  }
}

struct UrlRow {
  const char* url;
  bool isFile;
  std::optional<std::string> path;
};

TEST(FileUrl, HasAPathOnlyOnThisMachine) {
  const UrlRow rows[] = {
      {"file:///a", true, "/a"},
      {"file://localhost/a", true, "/a"},
      {"FILE:///a", true, "/a"},
      {"file:/a", true, "/a"},
      {"file://elsewhere/a", true, std::nullopt},
      {"file:///a%2Fb", true, std::nullopt},
      {"file:///a%00b", true, std::nullopt},
      {"file:///%ZZ", true, std::nullopt},
      {"file:///a?q", true, std::nullopt},
      {"file:///a#f", true, std::nullopt},
      {"file:///a%3Fq", true, "/a?q"},
      {"http://example.org/a", false, std::nullopt},
      {"filex:///a", false, std::nullopt},
      {"", false, std::nullopt},
      {"fil", false, std::nullopt},
      {"/a", false, std::nullopt},
  };
  for (const UrlRow& row : rows) {
    const Url url{row.url};
    EXPECT_EQ(isFileUrl(url), row.isFile) << row.url;
    EXPECT_EQ(filePath(url), row.path) << row.url;
  }
}

RC_GTEST_PROP(FileUrl, EveryPathWithoutNulIsAUrlAndBack, ()) {
  std::string path = "/" + *tests::arbitraryBytes();
  std::erase(path, '\0');
  const auto url = fileUrl(path);
  RC_ASSERT(url.has_value());
  RC_ASSERT(filePath(*url) == path);
  RC_ASSERT(parseUrl(url->absoluteString).has_value());
}

}  // namespace
}  // namespace skerrow::foundation
