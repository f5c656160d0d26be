#include "scripting/dictionary/nearest.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/scripting/test_commands.h"

namespace skerrow::scripting {
namespace {

std::string nearestOf(std::string_view unknown) {
  Nearest nearest(unknown);
  for (const char* name : {"SKWModifyList", "SKWMungeList", "SKWMungeRecords", "at", "é"}) {
    nearest.consider(name);
  }
  nearest.consider("modify list", "SKWModifyList");
  return std::string(nearest.found());
}

TEST(Nearest, IsWhatAPersonMeantToWrite) {
  EXPECT_EQ(nearestOf("SKWModfyList"), "SKWModifyList");
  EXPECT_EQ(nearestOf("SKWModifyLists"), "SKWModifyList");
  EXPECT_EQ(nearestOf("SKWMoidfyList"), "SKWModifyList");
  EXPECT_EQ(nearestOf("skwmodifylist"), "SKWModifyList");
  EXPECT_EQ(nearestOf("ModifyList"), "SKWModifyList");
  EXPECT_EQ(nearestOf("SKWMungeRecord"), "SKWMungeRecords");
  EXPECT_EQ(nearestOf("SKWMungeLit"), "SKWMungeList");
  EXPECT_EQ(nearestOf("Modify List"), "SKWModifyList");
  EXPECT_EQ(nearestOf("modfy list"), "SKWModifyList");
  EXPECT_EQ(nearestOf("AT"), "at");
  EXPECT_EQ(nearestOf("é"), "é");
}

TEST(Nearest, IsNothingWhereNothingIsNear) {
  for (const char* unknown : {"", "x", "bt", "SKW", "SKWM", "list", "TestEcho", "漢字", " "}) {
    EXPECT_EQ(nearestOf(unknown), "") << unknown;
  }
  EXPECT_EQ(nearestOf(std::string(100000, 'S')), "");
}

TEST(Nearest, PrefersFewerMistakesAndOfEqualOnesTheFirst) {
  Nearest nearest("abcdef");
  nearest.consider("abcdxx", "two");
  nearest.consider("abcdex", "one");
  nearest.consider("abcdey", "another");
  EXPECT_EQ(nearest.found(), "one");
}

TEST(DidYouMean, AsksOrEndsTheSentence) {
  EXPECT_EQ(didYouMean(testDictionary(), "TestEco"), "; did you mean TestEcho?");
  EXPECT_EQ(didYouMean(testDictionary(), "shut shop"), "; did you mean shutShop?");
  EXPECT_EQ(didYouMean(testDictionary(), "Nope"), ".");
  const CommandEntry& echo = *testDictionary().command("TestEcho");
  EXPECT_EQ(didYouMean(echo, "colur"), "; did you mean “colour”?");
  EXPECT_EQ(didYouMean(echo, "with text or texts"), "; did you mean “textOrTexts”?");
  EXPECT_EQ(didYouMean(echo, "zzz"), ".");
  EXPECT_EQ(didYouMean(*testDictionary().command("TestWorkLong"), "text"), ".");
}

}  // namespace
}  // namespace skerrow::scripting
