#include "core/script_error.h"

#include <gtest/gtest.h>

#include <string>

namespace skerrow::core {
namespace {

TEST(ScriptError, HasItsNumberAndMessage) {
  const ScriptError error(1123, "Can't.");
  EXPECT_EQ(error.number(), 1123);
  EXPECT_EQ(error.message(), "Can't.");
  EXPECT_STREQ(error.what(), "Can't.");
}

struct Row {
  const char* about;
  ScriptError error;
  const char* expected;
};

TEST(ScriptError, PlaceholdersStandForTheOffendingValuesInOrder) {
  const Row rows[] = {
      {"none", ScriptError({1, "plain"}), "plain"},
      {"an empty message", ScriptError({1, ""}), ""},
      {"a text", ScriptError({1, "no %@ here"}, "é"), "no é here"},
      {"a text object", ScriptError({1, "%@"}, std::string("x")), "x"},
      {"an empty text", ScriptError({1, "<%@>"}, ""), "<>"},
      {"an int", ScriptError({1, "item %d"}, -3), "item -3"},
      {"a long", ScriptError({1, "item %ld"}, std::int64_t{-9223372036854775807 - 1}),
       "item -9223372036854775808"},
      {"a count", ScriptError({1, "%ld items"}, std::size_t{18446744073709551615U}),
       "18446744073709551615 items"},
      {"several", ScriptError({1, "Can't get item %d; list has %ld items of %@."}, 4, 3, "a"),
       "Can't get item 4; list has 3 items of a."},
      {"side by side", ScriptError({1, "%@%d%ld"}, "a", 1, 2), "a12"},
      {"a value that looks like a placeholder", ScriptError({1, "%@ and %@"}, "%@", "%d"),
       "%@ and %d"},
      {"fewer values than placeholders", ScriptError({1, "%@ and %d"}, "a"), "a and %d"},
      {"more values than placeholders", ScriptError({1, "only %@"}, "a", "b", 3), "only a"},
      {"no placeholder for a value", ScriptError({1, "none"}, 7), "none"},
      {"other signs of percent stay", ScriptError({1, "100% of %s, %@ %"}, "x"), "100% of %s, x %"},
      {"a percent sign right before one", ScriptError({1, "%%d"}, 5), "%5"},
      {"l without d", ScriptError({1, "%l %ld"}, 5), "%l 5"},
  };
  for (const Row& row : rows) EXPECT_EQ(row.error.message(), row.expected) << row.about;
}

TEST(ScriptError, IsEqualWhenNumberAndMessageAre) {
  EXPECT_TRUE(ScriptError(1, "a") == ScriptError({1, "%@"}, "a"));
  EXPECT_FALSE(ScriptError(1, "a") == ScriptError(2, "a"));
  EXPECT_FALSE(ScriptError(1, "a") == ScriptError(1, "b"));
}

}  // namespace
}  // namespace skerrow::core
