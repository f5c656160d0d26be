#pragma once
// Accepting answers: showing how a case came out other than its table expects, as a
// diff, and writing what came into the table. What a person has not looked at is not to
// be accepted, so the two are apart.

#include <span>
#include <string>
#include <string_view>

#include "tests/support/case_table.h"

namespace skerrow::tests {

/// The lines that differ, each behind "-" as expected or "+" as it came, under the case's
/// place and name; long answers item by item. Empty for a case as expected.
std::string differenceOf(const TestCase& testCase, const CaseOutcome& outcome);

/// The text of a table with what came in place of what was expected. All else in the text
/// stays as it is. `outcomes` are those of its cases, in their order. Throws
/// std::invalid_argument for a case without an answer that a table can hold.
std::string acceptedTable(std::string_view table, std::span<const TestCase> cases,
                          std::span<const CaseOutcome> outcomes);

}  // namespace skerrow::tests
