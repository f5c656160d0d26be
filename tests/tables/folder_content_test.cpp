// Folders as tables write them, made on disk and read back.

#include "tests/support/folder_content.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "tests/support/scratch_folder.h"

namespace skerrow::tests {
namespace {

namespace fs = std::filesystem;
using Kind = FolderItem::Kind;

std::string problemWith(const std::string& json, const FolderContent& before = {}) {
  try {
    afterChanges(before, json);
  } catch (const std::runtime_error& error) {
    return error.what();
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "no problem";
}

TEST(FolderContent, IsFilesFoldersAndLinksAndTheFoldersOnTheWay) {
  const FolderContent content = afterChanges({}, R"({"é.txt": "a\n", "b/c/d": {"base64": "AP8="},
      "empty": {"folder": true}, "link": {"link": "é.txt"}})");
  EXPECT_EQ(content, (FolderContent{{"é.txt", {Kind::file, "a\n"}},
                                    {"b", {}},
                                    {"b/c", {}},
                                    {"b/c/d", {Kind::file, std::string("\0\xFF", 2)}},
                                    {"empty", {}},
                                    {"link", {Kind::link, "é.txt"}}}));
}

TEST(FolderContent, ComesBackFromDiskAsItWasMade) {
  const FolderContent content = afterChanges(
      {}, R"({"a": "", "a-b": "x", "f": {"folder": true}, "f/g": {"base64": "AP8="}, "f-g": "y",
              "broken": {"link": "nowhere"}, "loop": {"link": "."}})");
  const ScratchFolder folder;
  makeContent(content, folder.path());
  EXPECT_EQ(contentOfFolder(folder.path()), content);
}

TEST(FolderContent, OfAnEmptyFolderIsEmpty) {
  EXPECT_EQ(contentOfFolder(ScratchFolder().path()), FolderContent());
}

TEST(FolderContent, IsRefusedForWhatIsNeitherFileFolderNorLink) {
  EXPECT_THROW(contentOfFolder("/dev"), std::runtime_error);
  EXPECT_THROW(contentOfFolder("/no/such/folder"), fs::filesystem_error);
}

TEST(FolderChanges, ReplaceAddAndRemove) {
  const FolderContent before = afterChanges({}, R"({"a": "1", "b": "2", "c/d": "3", "c/e": "4"})");
  EXPECT_EQ(afterChanges(before, R"({"a": "x", "b": null, "c": null, "f": "5"})"),
            (FolderContent{{"a", {Kind::file, "x"}}, {"f", {Kind::file, "5"}}}));
  EXPECT_EQ(
      afterChanges(before, R"({"c": {"link": "a"}, "c/d": null, "c/e": null, "b": null})").at("c"),
      (FolderItem{Kind::link, "a"}));
}

TEST(FolderChanges, AreRefusedWhereTheyContradictThemselves) {
  EXPECT_EQ(problemWith(R"({"a": null})"), "“a” is not there before either");
  EXPECT_EQ(problemWith(R"({"a": "x", "a/b": "y"})"), "“a” is no folder for “a/b”");
  EXPECT_EQ(problemWith(R"({"a/b": "y", "a": "x"})"), "“a” is a folder for “a/b”");
}

TEST(FolderChanges, AreRefusedForPathsThatLeadElsewhere) {
  for (const std::string path : {"", "/a", ".", "..", "../a", "a/../b", "a//b", "a/", "./a"}) {
    EXPECT_EQ(problemWith("{\"" + path + "\": \"x\"}"),
              "“" + path + "” is no path inside of a folder");
  }
}

TEST(FolderChanges, AreRefusedForItemsOfNoKnownForm) {
  for (const std::string item : {R"({})", R"({"folder": false})", R"({"base64": "A"})",
                                 R"({"link": "a", "folder": true})", R"({"text": "a"})"}) {
    EXPECT_EQ(problemWith("{\"a\": " + item + "}"),
              "“a” needs a text, “base64”, “folder”: true or “link”");
  }
  EXPECT_EQ(problemWith(R"({"a": 1})"), "an object is needed here");
  EXPECT_EQ(problemWith(R"([])"), "an object is needed here");
}

TEST(ChangesBetween, AreWrittenAsTheyAreRead) {
  const FolderContent before = afterChanges({}, R"({"a": "1", "b": "2", "c/d": "3", "c/e": "4"})");
  for (const std::string changes :
       {R"({})", R"({"a": "\"x\"\n"})", R"({"b": null, "c": null, "a": "9"})",
        R"({"c/d": null, "n-w": "5", "n/o/p": "6"})", R"({"c/e": {"link": "../a"}})",
        R"({"new": {"folder": true}})", R"({"bytes": {"base64": "AP8="}})"}) {
    EXPECT_EQ(changesBetween(before, afterChanges(before, changes)), changes);
  }
}

}  // namespace
}  // namespace skerrow::tests
