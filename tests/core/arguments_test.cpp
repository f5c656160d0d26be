#include <gtest/gtest.h>

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "core/command.h"
#include "tests/support/describe.h"
#include "values/value.h"

namespace skerrow::core {
namespace {

using tests::described;

Arguments with(Value value) {
  Arguments arguments;
  arguments.set(ArgumentKey("key"), std::move(value));
  return arguments;
}

TEST(Arguments, AreFoundByTheirExactKey) {
  Arguments arguments = with(u"value");
  arguments.set(ArgumentKey("Key"), Value());
  arguments.set(ArgumentKey(""), u"empty");
  ASSERT_TRUE(arguments.has(ArgumentKey("key")));
  EXPECT_EQ(described(*arguments.find(ArgumentKey("key"))), "“value”");
  EXPECT_EQ(described(*arguments.find(ArgumentKey("Key"))), "null");
  EXPECT_EQ(described(*arguments.find(ArgumentKey(""))), "“empty”");
  for (const char* absent : {"KEY", "ke", "keys", " key", "é"}) {
    EXPECT_EQ(arguments.find(ArgumentKey(absent)), nullptr) << absent;
    EXPECT_FALSE(arguments.has(ArgumentKey(absent))) << absent;
  }
  EXPECT_FALSE(Arguments().has(ArgumentKey("")));
}

// A key is a constant that was made from the terminology, or says that it is not.
static_assert(!std::is_convertible_v<const char*, ArgumentKey> &&
              !std::is_convertible_v<std::string_view, ArgumentKey>);

TEST(Arguments, CountAsLastGiven) {
  Arguments arguments = with(u"first");
  arguments.set(ArgumentKey("key"), u"second");
  EXPECT_EQ(described(*arguments.find(ArgumentKey("key"))), "“second”");
}

struct Row {
  Value value;
  bool isSet;
  std::optional<std::int64_t> integer;
};

TEST(Arguments, ABooleanIsSetWhenPresentAndTrueAndOnlyNumbersAreIntegers) {
  const Row rows[] = {
      {Number::boolean(true), true, 1},
      {Number::boolean(false), false, 0},
      {Number::signed32(-1), true, -1},
      {Number::signed64(INT64_MIN), true, INT64_MIN},
      {Number::real(2.9), true, 2},
      {Number::real(-0.0), false, 0},
      {u"true", false, std::nullopt},
      {u"1", false, std::nullopt},
      {Value(), false, std::nullopt},
      {std::vector<Value>{Number::boolean(true)}, false, std::nullopt},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(with(row.value).isSet(ArgumentKey("key")), row.isSet) << described(row.value);
    EXPECT_EQ(with(row.value).integer(ArgumentKey("key")), row.integer) << described(row.value);
  }
  EXPECT_FALSE(Arguments().isSet(ArgumentKey("key")));
  EXPECT_EQ(Arguments().integer(ArgumentKey("key")), std::nullopt);
}

}  // namespace
}  // namespace skerrow::core
