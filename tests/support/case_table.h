#pragma once
// CaseTable: events and the answers that they must get, from a file of JSON:
//
//   {"command": "SKWModifyList", "cases": [
//     {"name": "Reversing puts the last item first",
//      "direct": [1, 2], "arguments": {"reversingOrder": true}, "result": [2, 1]},
//     {"name": "A text is no list",
//      "direct": "a", "error": {"number": 1121, "message": "Direct parameter is not a list."}}]}
//
// "direct" and "arguments" may be left out, and a case may name another "command".
// Without a "timeout" it is 10 seconds, so that a command that never answers fails
// its case and not the whole run. Each case expects exactly one of "result", "nothing": true and
// "error". Whatever else a file holds is an error of the file, thrown as std::runtime_error that
// names the file and line.

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "tests/support/front_end.h"

namespace skerrow::tests {

struct TestCase {
  std::string name;
  std::string place;     ///< "cases/lists/SKWModifyList.json:12"
  std::string event;     ///< one line, as front ends take it
  std::string expected;  ///< the answer line, in its normal spelling
};

/// The tables of all commands, in the order of their paths.
std::vector<std::filesystem::path> caseTableFiles();

std::vector<TestCase> readCaseTable(const std::filesystem::path& file);

/// The cases that a text holds; `title` names it in messages.
std::vector<TestCase> parseCaseTable(std::string_view text, const std::string& title);

/// Sends the events of all cases and describes every case whose answer is not the
/// expected one: its place, name, event, expected and actual answer.
std::vector<std::string> mismatches(std::span<const TestCase> cases, const FrontEnd& frontEnd);

}  // namespace skerrow::tests
