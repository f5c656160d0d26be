// The operations that read a file where a script gave one for its text, as far as tables
// of cases cannot say it.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "core/script_error.h"
#include "core/unpack.h"
#include "foundation/url/url.h"
#include "platform/platform_error.h"
#include "platform/system_platform.h"
#include "tests/support/building.h"
#include "tests/support/describe.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_platform.h"

namespace skerrow::core {
namespace {

using namespace literals;
using tests::described;
using tests::fileReference;
using tests::plain;
using tests::ScratchFolder;
using tests::scriptText;

ScriptValue fileAt(const std::string& path) {
  return fileReference(foundation::fileUrl(path).value().absoluteString);
}

Value unpackTextOrListOrFile(const ScriptValue& value) {
  return core::unpackTextOrListOrFile(value, platform::SystemFileContents());
}

std::string failureOf(const ScriptValue& value) {
  try {
    return "no failure, but " + described(unpackTextOrListOrFile(value));
  } catch (const ScriptError& error) {
    return std::to_string(error.number()) + " " + error.message();
  }
}

TEST(BestStringFromUrl, FailsOnAddressesThatAreNoFileOfThisMachine) {
  for (const char* address : {"http://example.org/a", "file://elsewhere/a", "mailto:a@b", ""}) {
    try {
      bestStringFromURL(Url{address}, platform::SystemFileContents());
      ADD_FAILURE() << address;
    } catch (const platform::PlatformError& error) {
      EXPECT_EQ(error.localizedDescription(),
                "Could not read “" + std::string(address) +
                    "”: it is not the address of a file on this machine.");
    }
  }
}

TEST(UnpackTextOrListOrFile, ConvertsTextAndLeavesOtherValuesRaw) {
  EXPECT_EQ(described(unpackTextOrListOrFile(scriptText(u"é"))), "“\\u00E9”");
  EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue::withPayload("TEXT"_code, "\x8E"))),
            "“\\u00E9”");
  EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue::integer32(1))), "raw 'long' 01000000");
  EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue())), "raw 'type' 676E736D");
  EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue::list({}))), "[]");
}

TEST(UnpackTextOrListOrFile, AFileThatCannotBeReadIsError1012WithThePlatformsReason) {
  const ScratchFolder folder;
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(failureOf(fileAt(pipe)),
            "1012 Could not read “" + pipe + "”: it is not a regular file.");
  for (const ScriptValue& value : {fileReference("no address"), fileReference(""),
                                   ScriptValue::withPayload("fsrf"_code, "relative")}) {
    EXPECT_EQ(failureOf(value), "1012 The file reference does not name a file.");
  }
}

TEST(UnpackAEListJustTextOrFile, PutsTheTextOfEachFileInItsPlace) {
  const ScratchFolder folder;
  const std::string one = folder.write("one", "first");
  const std::string two = folder.write("two", "\x8E");
  const ScriptValue list = ScriptValue::list(
      {fileAt(one), scriptText(u"a"), ScriptValue::list({fileAt(two), ScriptValue::boolean(true)}),
       ScriptValue::list({})});
  constexpr const char* kExpected = "[“first”, “a”, [“\\u00E9”, raw 'true' ], []]";
  EXPECT_EQ(described(core::unpackAEListJustTextOrFile(list, platform::SystemFileContents())),
            kExpected);
  EXPECT_EQ(described(unpackTextOrListOrFile(list)), kExpected);
}

TEST(BestStringFromUrl, DropsAByteOrderMarkOfUtf8) {
  const ScratchFolder folder;
  const auto textOf = [&](const std::string& content) {
    return described(unpackTextOrListOrFile(fileAt(folder.write("file", content))));
  };
  EXPECT_EQ(textOf("\xEF\xBB\xBF"
                   "a"),
            "“a”");
  EXPECT_EQ(textOf("\xEF\xBB\xBF"), "“”");
  EXPECT_EQ(textOf("a\xEF\xBB\xBF"), "“a\\uFEFF”");
  // What is no UTF-8 keeps all its bytes.
  EXPECT_EQ(textOf("\xEF\xBB\xBF\x8E"), "“\\u00D4\\u00AA\\u00F8\\u00E9”");
}

TEST(UnpackAEListJustTextOrFile, ReadsFilesWhoseNamesAreNoUtf8) {
  const ScratchFolder folder;
  EXPECT_EQ(described(unpackTextOrListOrFile(fileAt(folder.write("name \xFF", "content")))),
            "“content”");
}

TEST(UnpackAEListJustTextOrFile, DoesNotLookAtTheItemsAfterIt) {
  const platform::SystemPlatform system;
  tests::FailingPlatform failing(system);
  failing.fail("readWhole /missing", platform::PlatformError("It is gone."));
  const tests::RecordingPlatform platform(failing);
  const ScriptValue list = ScriptValue::list({fileAt("/missing"), fileAt("/after")});
  EXPECT_THROW(core::unpackTextOrListOrFile(list, platform.contents), ScriptError);
  EXPECT_EQ(platform.calls(), std::vector<std::string>{"readWhole /missing"});
}

}  // namespace
}  // namespace skerrow::core
