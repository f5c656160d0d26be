#include "values/text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/support/describe.h"

namespace skerrow {
namespace {

using tests::described;

struct Row {
  const char* about;
  std::u16string units;
};

// 256 units is where a string that is given away is no longer copied.
const Row kRows[] = {
    {"empty", u""},
    {"one unit", u"a"},
    {"accents", u"é à ñ"},
    {"beyond the basic plane", u"🏔️"},
    {"a leading surrogate alone", std::u16string(1, 0xD83C)},
    {"a trailing surrogate alone", std::u16string(1, 0xDFD4)},
    {"surrogates the wrong way round", {0xDFD4, 0xD83C}},
    {"NUL in the middle", {u'a', u'\0', u'b'}},
    {"a byte-order mark", {0xFEFF, u'a'}},
    {"the longest that is copied", std::u16string(255, u'x')},
    {"the shortest that is adopted", std::u16string(256, u'y')},
    {"long", std::u16string(100000, u'z')},
};

TEST(Text, KeepsEveryUnitAsGivenHoweverItIsMade) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.about);
    std::u16string given = row.units;
    const Text copied{std::u16string_view(row.units)};
    const Text adopted{std::move(given)};
    EXPECT_EQ(described(copied.view()), described(row.units));
    EXPECT_EQ(described(adopted.view()), described(row.units));
    EXPECT_EQ(copied.unitCount(), row.units.size());
    EXPECT_EQ(copied.isEmpty(), row.units.empty());
    EXPECT_EQ(adopted.isEmpty(), row.units.empty());
    EXPECT_TRUE(copied == adopted);
  }
}

TEST(Text, CopiesShareTheirUnitsAndOutliveTheOriginal) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.about);
    Text copy;
    {
      const Text original{std::u16string(row.units)};
      copy = original;
      EXPECT_EQ(copy.view().data(), original.view().data());
    }
    EXPECT_EQ(described(copy.view()), described(row.units));
  }
}

TEST(Text, MovingLeavesTheEmptyTextBehind) {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.about);
    Text original{std::u16string_view(row.units)};
    const Text moved = std::move(original);
    EXPECT_EQ(described(moved.view()), described(row.units));
    EXPECT_TRUE(original.isEmpty());  // NOLINT(bugprone-use-after-move): that is the test
  }
}

TEST(Text, AssigningToItselfKeepsTheUnits) {
  Text text{std::u16string_view(u"kept")};
  const Text& alias = text;
  text = alias;
  EXPECT_EQ(described(text.view()), described(u"kept"));
}

TEST(Text, AdoptingALongStringKeepsItsMemory) {
  std::u16string given(1000, u'a');
  const char16_t* const memory = given.data();
  const Text text{std::move(given)};
  EXPECT_EQ(text.view().data(), memory);
}

TEST(Text, CopyingAViewTakesMemoryOfItsOwn) {
  const std::u16string given(1000, u'a');
  const Text text{std::u16string_view(given)};
  EXPECT_NE(text.view().data(), given.data());
}

TEST(Text, DiffersWhenAnyUnitOrTheLengthDiffers) {
  const std::pair<std::u16string, std::u16string> rows[] = {
      {u"", u"a"},
      {u"a", u"A"},
      {u"a", u"ab"},
      {u"é", u"e\u0301"},
      {{0xD83C}, {0xFFFD}},
      {std::u16string(300, u'x'), std::u16string(300, u'x') + u"y"},
      {std::u16string(300, u'x') + u"a", std::u16string(300, u'x') + u"b"},
      {{u'a', u'\0'}, u"a"},
  };
  for (const auto& [one, other] : rows) {
    SCOPED_TRACE(described(other));
    EXPECT_FALSE(Text{std::u16string_view(one)} == Text{std::u16string_view(other)});
  }
}

}  // namespace
}  // namespace skerrow
