// Every table of cases through every front end.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "tests/support/case_table.h"
#include "tests/support/front_end.h"

namespace skerrow::tests {
namespace {

using TableThroughFrontEnd = std::tuple<FrontEnd, std::filesystem::path>;

std::string nameOf(const ::testing::TestParamInfo<TableThroughFrontEnd>& info) {
  const auto& [frontEnd, file] = info.param;
  return frontEnd.name + "_" + file.parent_path().filename().string() + "_" + file.stem().string();
}

class CaseTables : public ::testing::TestWithParam<TableThroughFrontEnd> {};

TEST_P(CaseTables, GetTheAnswersThatTheyExpect) {
  const auto& [frontEnd, file] = GetParam();
  for (const std::string& mismatch : mismatches(readCaseTable(file), frontEnd)) {
    ADD_FAILURE() << mismatch;
  }
}

INSTANTIATE_TEST_SUITE_P(All, CaseTables,
                         ::testing::Combine(::testing::ValuesIn(frontEnds()),
                                            ::testing::ValuesIn(caseTableFiles())),
                         nameOf);

}  // namespace
}  // namespace skerrow::tests
