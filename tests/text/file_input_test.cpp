// The text commands on files.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/in_process.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::text {
namespace {

std::string jsonFile(const std::string& path) { return R"({"$file": ")" + path + R"("})"; }

// A command that reads files, and how to ask it: %F is the file.
struct FileCommand {
  const char* name;
  const char* event;
  int unreadable;  // its error number
};

constexpr FileCommand kCommands[] = {
    {"Modify", R"({"command": "SKWMungeText", "direct": %F,
                   "arguments": {"stringMungeOption": {"$enum": "0x62E56531"}}})",
     1026},
    {"Find", R"({"command": "SKWFindIt", "direct": ".+", "arguments": {"stringToSearch": %F}})",
     1012},
    {"ReplaceByPattern", R"({"command": "SKWFindIt", "direct": "x",
                               "arguments": {"stringToSearch": %F, "replacementPattern": "."}})",
     1015},
    {"Replace", R"({"command": "SKWReplaceString", "direct": "x",
                    "arguments": {"stringToSearch": %F, "replacementPattern": "y"}})",
     1061},
    {"Clean", R"({"command": "SKWCleanString", "direct": %F})", 1261},
};

class FileInput : public testing::TestWithParam<FileCommand> {
 protected:
  std::string answerFor(const std::string& files) {
    std::string event = GetParam().event;
    std::ranges::replace(event, '\n', ' ');
    return commands.answer(event.replace(event.find("%F"), 2, files));
  }

  [[nodiscard]] static std::string failure(const std::string& message) {
    return R"({"error":{"number":)" + std::to_string(GetParam().unreadable) + R"(,"message":")" +
           message + R"("}})";
  }

  tests::ScratchFolder folder;
  tests::InProcess commands;
};

TEST_P(FileInput, FailsWithTheCommandsNumberForAFileThatIsNotThere) {
  const std::string path = folder.path("gone.txt");
  EXPECT_EQ(answerFor(jsonFile(path)),
            failure("Could not open the file “" + path + "”: No such file or directory."));
}

TEST_P(FileInput, FailsForAFolder) {
  const std::string path = folder.path("folder");
  std::filesystem::create_directory(path);
  EXPECT_EQ(answerFor(jsonFile(path)),
            failure("Could not read “" + path + "”: it is not a regular file."));
}

TEST_P(FileInput, FailsForADevice) {
  EXPECT_EQ(answerFor(jsonFile("/dev/zero")),
            failure("Could not read “/dev/zero”: it is not a regular file."));
}

TEST_P(FileInput, FailsForAFileWithoutPermission) {
  const std::string path = folder.write("secret.txt", "x");
  ::chmod(path.c_str(), 0);
  if (::access(path.c_str(), R_OK) == 0) GTEST_SKIP() << "This user may read every file.";
  EXPECT_EQ(answerFor(jsonFile(path)),
            failure("Could not open the file “" + path + "”: Permission denied."));
}

TEST_P(FileInput, FailsForAPathWhoseMiddleIsAFile) {
  const std::string path = folder.write("a", "x") + "/b";
  EXPECT_EQ(answerFor(jsonFile(path)),
            failure("Could not open the file “" + path + "”: Not a directory."));
}

TEST_P(FileInput, FailsForAWholeListWithOneSuchFile) {
  const std::string good = jsonFile(folder.write("good.txt", "x"));
  const std::string path = folder.path("gone.txt");
  EXPECT_EQ(answerFor("[" + good + ", " + jsonFile(path) + ", " + good + "]"),
            failure("Could not open the file “" + path + "”: No such file or directory."));
}

TEST_P(FileInput, LeavesTheFileAsItWas) {
  const std::string path = folder.write("a.txt", "x--y\r\n");
  answerFor(jsonFile(path));
  std::ifstream file(path, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "x--y\r\n");
}

std::string nameOf(const testing::TestParamInfo<FileCommand>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Commands, FileInput, testing::ValuesIn(kCommands), nameOf);

class FileText : public testing::Test {
 protected:
  std::string cleaned(std::string_view bytes) {
    return commands.answer(R"({"command": "SKWCleanString", "direct": )" +
                           jsonFile(folder.write("a.txt", bytes)) + "}");
  }
  std::string upper(const std::string& direct) {
    return commands.answer(
        R"({"command": "SKWMungeText", "arguments": {"stringMungeOption": {"$enum": "0x62E56531"}},)"
        R"("direct": )" +
        direct + "}");
  }

  tests::ScratchFolder folder;
  tests::InProcess commands;
};

TEST_F(FileText, IsReadAsUtf8) { EXPECT_EQ(cleaned("é—😀  x"), R"({"result":"é—😀 x"})"); }

TEST_F(FileText, IsReadAsMacRomanWhereItIsNotUtf8) {
  EXPECT_EQ(cleaned("caf\x8E \xDB"), R"({"result":"café €"})");
  // One bad byte is enough, and the whole file is read the other way.
  EXPECT_EQ(cleaned("\xC3\xA9 \xFF"), R"({"result":"√© ˇ"})");
}

TEST_F(FileText, OfAnEmptyFileIsEmpty) { EXPECT_EQ(cleaned(""), R"({"result":""})"); }

TEST_F(FileText, KeepsNullCharactersAndAByteOrderMark) {
  EXPECT_EQ(cleaned(std::string_view("a\0b", 3)), R"({"result":"a\u0000b"})");
  EXPECT_EQ(cleaned("\xEF\xBB\xBF-"), "{\"result\":\"\xEF\xBB\xBF-\"}");
}

TEST_F(FileText, IsReadThroughAliasesAndLinks) {
  const std::string path = folder.write("a.txt", "abc");
  std::filesystem::create_symlink(path, folder.path("link"));
  EXPECT_EQ(upper(R"({"$alias": ")" + path + R"("})"), R"({"result":"ABC"})");
  EXPECT_EQ(upper(R"({"$fsrf": ")" + path + R"("})"), R"({"result":"ABC"})");
  EXPECT_EQ(upper(jsonFile(folder.path("link"))), R"({"result":"ABC"})");
}

TEST_F(FileText, TakesTheFilesPlaceInAList) {
  const std::string file = jsonFile(folder.write("a b.txt", "abc"));
  EXPECT_EQ(upper("[\"x\", " + file + ", [" + file + ", 3]]"),
            R"({"result":["X","ABC",["ABC",3]]})");
}

TEST_F(FileText, IsParsedAsATable) {
  const std::string file = jsonFile(folder.write("a.csv", "a,\"b\r\nc\"\r\nd\r\n"));
  EXPECT_EQ(
      commands.answer(R"({"command": "SKWMungeText",)"
                      R"("arguments": {"stringMungeOption": {"$enum": "0x62E56563"}}, "direct": )" +
                      file + "}"),
      R"({"result":[["a","b\r\nc"],["d"]]})");
}

TEST_F(FileText, IsSearchedAlikeAloneAndInAList) {
  const std::string file = jsonFile(folder.write("a.txt", "a1b22"));
  const std::string event = R"({"command": "SKWFindIt", "direct": "\\d+",)";
  EXPECT_EQ(commands.answer(event + R"("arguments": {"stringToSearch": )" + file + "}}"),
            R"({"result":["1","22"]})");
  EXPECT_EQ(commands.answer(event + R"("arguments": {"stringToSearch": [)" + file + R"(, "3"]}})"),
            R"({"result":[["1","22"],["3"]]})");
}

TEST_F(FileText, IsReplacedByPatternInTheAnswerOnly) {
  const std::string path = folder.write("a.txt", "a1b22");
  EXPECT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "\\d+",)"
                            R"("arguments": {"replacementPattern": "<$0>", "stringToSearch": )" +
                            jsonFile(path) + "}}"),
            R"({"result":"a<1>b<22>"})");
}

// 50 MB, of which every line is changed, cut into fields or found.
TEST_F(FileText, MayBeLong) {
  constexpr std::string_view kLine = "größe,12 und \"mehr, viel mehr\"\n";
  constexpr std::size_t kCount = 50'000'000 / kLine.size();
  std::string content;
  content.reserve(kCount * kLine.size());
  for (std::size_t i = 0; i < kCount; ++i) content += kLine;
  const std::string file = jsonFile(folder.write("long.csv", content));
  content.clear();
  content.shrink_to_fit();

  const std::string changed = upper(file);
  EXPECT_EQ(changed.size(),
            std::string_view(R"({"result":""})").size() +
                kCount * std::string_view(R"(GRÖSSE,12 UND \"MEHR, VIEL MEHR\"\n)").size());
  EXPECT_NE(changed.find(R"(VIEL MEHR\"\n"})"), std::string::npos);

  const std::string found = commands.answer(
      R"({"command": "SKWFindIt", "direct": "[0-9]+", "arguments": {"stringToSearch": )" + file +
      "}}");
  EXPECT_EQ(found.size(), std::string_view(R"({"result":[]})").size() + kCount * 5 - 1);

  const std::string rows = commands.answer(
      R"({"command": "SKWMungeText", "arguments": {"stringMungeOption": {"$enum": "0x62E56563"}},)"
      R"("direct": )" +
      file + "}");
  EXPECT_TRUE(rows.starts_with(R"({"result":[["größe","12 und mehr, viel mehr"],)"));
  EXPECT_EQ(std::ranges::count(rows, '['), static_cast<std::ptrdiff_t>(kCount) + 1);
}

// Kept: where a text is replaced literally, a file stands for its address.
TEST_F(FileText, IsOnlyLookedAtWhereTheAddressIsReplaced) {
  const std::string file = jsonFile(folder.write("notes x.txt", "notes"));
  const std::string event = R"({"command": "SKWReplaceString", "direct": "NOTES%20",)"
                            R"("arguments": {"replacementPattern": "é/", "stringToSearch": )";
  EXPECT_EQ(commands.answer(event + file + "}}"),
            R"({"result":"file://)" + folder.path("é/x.txt") + R"("})");
  EXPECT_EQ(commands.answer(event + "[" + file + R"(, "a notes%20"]}})"),
            R"({"result":["file://)" + folder.path("é/x.txt") + R"(","a é/"]})");
}

}  // namespace
}  // namespace skerrow::text
