// The text commands on files, as far as tables cannot say it.

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>

#include "platform/platform_error.h"
#include "platform/system_platform.h"
#include "tests/support/in_process.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_platform.h"

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

class FileInput : public testing::TestWithParam<FileCommand> {};

TEST_P(FileInput, FailsWithTheReasonForWhichTheFileCannotBeRead) {
  const platform::SystemPlatform system;
  tests::FailingPlatform failing(system);
  failing.fail("readWhole /secret", platform::PlatformError("Could not read “é”", EACCES));
  std::string event = GetParam().event;
  std::ranges::replace(event, '\n', ' ');
  EXPECT_EQ(
      tests::InProcess(failing).answer(event.replace(event.find("%F"), 2, jsonFile("/secret"))),
      R"({"error":{"number":)" + std::to_string(GetParam().unreadable) +
          R"(,"message":"Could not read “é”: Permission denied."}})");
}

std::string nameOf(const testing::TestParamInfo<FileCommand>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Commands, FileInput, testing::ValuesIn(kCommands), nameOf);

class FileText : public testing::Test {
 protected:
  std::string upper(const std::string& direct) {
    return commands.answer(
        R"({"command": "SKWMungeText", "arguments": {"stringMungeOption": {"$enum": "0x62E56531"}},)"
        R"("direct": )" +
        direct + "}");
  }

  tests::ScratchFolder folder;
  tests::InProcess commands;
};

// 50 MB, of which every line is changed, cut into fields or found.
TEST_F(FileText, MayBeLong) {
  constexpr std::string_view kLine = "größe,12 und \"mehr, viel mehr\"\n";
  constexpr std::size_t kCount = 4'000'000 / kLine.size();
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

}  // namespace
}  // namespace skerrow::text
