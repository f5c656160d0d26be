#pragma once
// CaseTable: events and the answers that they must get, from a file of JSON:
//
//   {"command": "SKWModifyList", "cases": [
//     {"name": "Reversing puts the last item first",
//      "direct": [1, 2], "arguments": {"reversingOrder": true}, "result": [2, 1]},
//     {"name": "A text is no list",
//      "direct": "a", "error": {"number": 1121, "message": "Direct parameter is not a list."}},
//     {"name": "A file is cleaned in the answer only",
//      "files": {"a.txt": "x--y"}, "environment": {"HOME": "${scratch}"},
//      "direct": {"$file": "${scratch}/a.txt"}, "result": "x—y"}]}
//
// "direct" and "arguments" may be left out, and a case may name another "command".
// Without a "timeout" it is 10 seconds, so that a command that never answers fails
// its case and not the whole run. Each case expects exactly one of "result", "nothing": true and
// "error". Whatever else a file holds is an error of the file, thrown as std::runtime_error that
// names the file and line.
//
// A case may have a scratch folder of its own: ${scratch} is its path wherever it stands in the
// case. "files" says what is in it beforehand and "filesAfter" what the command changes there, in
// the form of folder_content.h; nothing else may be different afterwards. "environment" gives
// variables that the command finds.

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/folder_content.h"
#include "tests/support/front_end.h"

namespace skerrow::tests {

/// What stands in the table; ${scratch} is not replaced yet.
struct TestCase {
  std::string name;
  std::string place;     ///< "cases/lists/SKWModifyList.json:12"
  std::string event;     ///< one line, as front ends take it
  std::string expected;  ///< the answer line, in its normal spelling
  Variables environment = {};
  FolderContent filesBefore = {};
  FolderContent filesAfter = {};

  [[nodiscard]] bool hasScratchFolder() const;
};

/// What came of a case, with ${scratch} in place of its folder's path.
struct CaseOutcome {
  std::optional<std::string> answer;  ///< as the front end gave it; nothing where it gave none
  FolderContent files;

  /// The answer in its normal spelling, or what is wrong with it.
  [[nodiscard]] std::string normalAnswer() const;
  [[nodiscard]] bool isAsExpected(const TestCase& testCase) const;
};

/// The tables of all commands, in the order of their paths.
std::vector<std::filesystem::path> caseTableFiles();

/// The text of a table, and what it is called in messages.
std::string textOfCaseTable(const std::filesystem::path& file);
std::string titleOfCaseTable(const std::filesystem::path& file);

std::vector<TestCase> readCaseTable(const std::filesystem::path& file);

/// The cases that a text holds; `title` names it in messages.
std::vector<TestCase> parseCaseTable(std::string_view text, const std::string& title);

/// Sends the events of all cases. Throws std::runtime_error when there are more answers
/// than events.
std::vector<CaseOutcome> outcomesOf(std::span<const TestCase> cases, const FrontEnd& frontEnd);

/// Sends the events of all cases and describes every case that did not come out as
/// expected: its place, name, event, expected and actual answer, and files.
std::vector<std::string> mismatches(std::span<const TestCase> cases, const FrontEnd& frontEnd);

}  // namespace skerrow::tests
