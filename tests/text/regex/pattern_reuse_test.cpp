// A script that calls commands in a loop with one pattern compiles it once.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/in_process.h"
#include "text/regex/regex_service.h"

namespace skerrow::text {
namespace {

class PatternReuse : public testing::Test {
 protected:
  static std::shared_ptr<core::SharedServices> countingServices(int& compilations) {
    auto services = std::make_shared<core::SharedServices>();
    services->provide(std::make_shared<RegexService>([&compilations](const RegexCacheEvent& event) {
      if (event.kind == RegexCacheEvent::Kind::miss) ++compilations;
    }));
    return services;
  }

  int compilations = 0;
  tests::InProcess commands{countingServices(compilations)};
};

TEST_F(PatternReuse, CompilesThePatternOfTenThousandCallsOnce) {
  for (int call = 0; call < 10'000; ++call) {
    ASSERT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "\\d+", )"
                              R"("arguments": {"stringToSearch": "a1b22"}})"),
              R"({"result":["1","22"]})");
  }
  EXPECT_EQ(compilations, 1);
}

TEST_F(PatternReuse, ReachesFromReplacingToSplitting) {
  EXPECT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "b", "arguments": )"
                            R"({"stringToSearch": ["ab", "bc"], "replacementPattern": "-"}})"),
            R"({"result":["a-","-c"]})");
  EXPECT_EQ(commands.answer(R"({"command": "SKWFindIt", "direct": "b", "arguments": )"
                            R"({"stringToSearch": "abc", "invertFlag": true}})"),
            R"({"result":["a","c"]})");
  EXPECT_EQ(compilations, 1);
}

}  // namespace
}  // namespace skerrow::text
