// The operations that read a file where a script gave one for its text.

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

struct ContentRow {
  const char* about;
  std::string bytes;
  std::u16string text;
};

TEST(BestStringFromUrl, ReadsUtf8AndMacOsRomanWhereItIsNone) {
  const ContentRow rows[] = {
      {"empty", "", u""},
      {"ASCII", "a\r\nb\n", u"a\r\nb\n"},
      {"UTF-8", "é🏔", u"é🏔"},
      {"a byte-order mark is kept",
       "\xEF\xBB\xBF"
       "a",
       u"\uFEFFa"},
      {"Mac OS Roman", "caf\x8E \xA5", u"café •"},
      {"UTF-8 with one ill-formed byte at the end", "é\xFF", u"√©ˇ"},
      {"an overlong form is no UTF-8", "\xC0\xAF", u"¿Ø"},
      {"a surrogate is no UTF-8", "\xED\xA0\x80", u"Ì†Ä"},
      {"a character cut short", "a\xE2\x82", u"a‚Ç"},
      {"UTF-16 is not looked for", std::string("\xFE\xFF\0a", 4), std::u16string(u"˛ˇ\0a", 4)},
      {"NUL", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
  };
  const ScratchFolder folder;
  for (const ContentRow& row : rows) {
    SCOPED_TRACE(row.about);
    const std::string path = folder.write("a file é", row.bytes);
    EXPECT_EQ(described(bestStringFromURL(foundation::fileUrl(path).value(),
                                          platform::SystemFileContents())
                            .view()),
              described(row.text));
    EXPECT_EQ(described(unpackTextOrListOrFile(fileAt(path))), described(row.text));
    EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue::withPayload("alis"_code, path))),
              described(row.text));
    EXPECT_EQ(described(unpackTextOrListOrFile(ScriptValue::withPayload("fsrf"_code, path))),
              described(row.text));
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
  const std::string missing = folder.path("missing");
  const std::string pipe = folder.path("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(failureOf(fileAt(missing)),
            "1012 Could not open the file “" + missing + "”: No such file or directory.");
  EXPECT_EQ(failureOf(fileAt(folder.path())),
            "1012 Could not read “" + folder.path() + "”: it is not a regular file.");
  EXPECT_EQ(failureOf(fileAt(pipe)),
            "1012 Could not read “" + pipe + "”: it is not a regular file.");
  EXPECT_EQ(failureOf(ScriptValue::withPayload("alis"_code, missing)),
            "1012 Could not open the file “" + missing + "”: No such file or directory.");
  EXPECT_EQ(failureOf(fileReference("http://x/y")),
            "1012 Could not read “http://x/y”: it is not the address of a file on this machine.");
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

TEST(UnpackAEListJustTextOrFile, StopsAtTheFirstFileThatCannotBeRead) {
  const ScratchFolder folder;
  const std::string good = folder.write("good", "text");
  const std::string first = folder.path("first missing");
  const std::string second = folder.path("second missing");
  const std::string expected =
      "1012 Could not open the file “" + first + "”: No such file or directory.";
  EXPECT_EQ(failureOf(ScriptValue::list({fileAt(good), fileAt(first), fileAt(second)})), expected);
  EXPECT_EQ(failureOf(ScriptValue::list({ScriptValue::list({fileAt(first)}), fileAt(second)})),
            expected);
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
