#include "foundation/text/user_preferences.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/system_platform.h"
#include "tests/support/test_platform.h"

namespace skerrow::foundation {
namespace {

using Variables = std::map<std::string, std::string>;

// An environment in which there is nothing else.
class NoEnvironment final : public platform::Environment {
 public:
  [[nodiscard]] std::optional<std::string> variable(const std::string& /*name*/) const override {
    return std::nullopt;
  }
};

std::string localeWith(const Variables& variables) {
  const NoEnvironment nothing;
  return userLocale(tests::GivenEnvironment(nothing, variables));
}

std::string timeZoneWith(const Variables& variables) {
  const NoEnvironment nothing;
  return userTimeZone(tests::GivenEnvironment(nothing, variables));
}

TEST(UserLocale, IsOfTheFirstVariableThatIsNotEmpty) {
  EXPECT_EQ(localeWith({{"LC_ALL", "da_DK"}, {"LC_MESSAGES", "de_DE"}, {"LANG", "fr_FR"}}),
            "da_DK");
  EXPECT_EQ(localeWith({{"LC_ALL", ""}, {"LC_MESSAGES", "de_DE"}, {"LANG", "fr_FR"}}), "de_DE");
  EXPECT_EQ(localeWith({{"LC_COLLATE", "de_DE"}, {"LANG", "fr_FR"}}), "fr_FR");
}

TEST(UserLocale, IsWrittenAsIcuKnowsIt) {
  EXPECT_EQ(localeWith({{"LANG", "de_DE.UTF-8"}}), "de_DE");
  EXPECT_EQ(localeWith({{"LANG", "ca_ES.UTF-8@valencia"}}), "ca_ES_VALENCIA");
  EXPECT_EQ(localeWith({{"LANG", "nb"}}), "nb");
  EXPECT_EQ(localeWith({{"LANG", "sr-latn-rs"}}), "sr_Latn_RS");
}

TEST(UserLocale, IsEmptyWithoutALanguage) {
  EXPECT_EQ(localeWith({}), "");
  EXPECT_EQ(localeWith({{"LANG", ""}}), "");
  for (const std::string name : {"C", "POSIX", "C.UTF-8"}) {
    EXPECT_EQ(localeWith({{"LC_ALL", name}, {"LANG", "de_DE"}}), "") << name;
  }
  EXPECT_EQ(localeWith({{"LANG", std::string(1000, 'x')}}), "");
}

TEST(UserTimeZone, IsTheOneThatTheEnvironmentNames) {
  EXPECT_EQ(timeZoneWith({{"TZ", "Europe/Oslo"}}), "Europe/Oslo");
  EXPECT_EQ(timeZoneWith({{"TZ", ":America/New_York"}}), "America/New_York");
  EXPECT_EQ(timeZoneWith({{"TZ", "UTC"}}), "UTC");
  EXPECT_EQ(timeZoneWith({{"TZ", "EST5EDT"}}), "EST5EDT");
}

TEST(UserTimeZone, IsUtcForAnEmptyName) { EXPECT_EQ(timeZoneWith({{"TZ", ""}}), "UTC"); }

TEST(UserTimeZone, IsLeftToTheMachineWhereNoZoneIsNamed) {
  EXPECT_EQ(timeZoneWith({}), "");
  for (const std::string other :
       {"CET-1CEST,M3.5.0,M10.5.0/3", "GMT+5", "Europe/Nowhere", ":", "/etc/localtime", "é"}) {
    EXPECT_EQ(timeZoneWith({{"TZ", other}}), "") << other;
  }
}

}  // namespace
}  // namespace skerrow::foundation
