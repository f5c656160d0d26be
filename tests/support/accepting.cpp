#include "tests/support/accepting.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/support/json_text.h"

namespace skerrow::tests {

namespace {

constexpr std::size_t kLongestOnOneLine = 100;

// Calls `on` for every character outside of the JSON strings, with its place.
template <class On>
void outsideOfStrings(std::string_view json, On&& on) {
  bool isInString = false;
  for (std::size_t i = 0; i < json.size(); ++i) {
    if (isInString && json[i] == '\\') {
      ++i;
    } else if (json[i] == '"') {
      isInString = !isInString;
    } else if (!isInString) {
      on(i);
    }
  }
}

// JSON on one line as tables have it: a space behind each comma and colon.
std::string spaced(std::string_view compact) {
  std::string text;
  std::size_t done = 0;
  outsideOfStrings(compact, [&](std::size_t i) {
    if (compact[i] != ',' && compact[i] != ':') return;
    text += compact.substr(done, i + 1 - done);
    text += ' ';
    done = i + 1;
  });
  return text += compact.substr(done);
}

// One line where that is short enough, otherwise a line for each item and member.
std::vector<std::string> linesOf(const std::string& json) {
  if (json.size() <= kLongestOnOneLine) return {json};
  std::vector<std::string> lines;
  std::size_t done = 0;
  std::size_t depth = 0;
  const auto endLine = [&](std::size_t end) {
    while (done < end && json[done] == ' ') ++done;
    if (end > done) lines.push_back(std::string(depth * 2, ' ') + json.substr(done, end - done));
    done = end;
  };
  outsideOfStrings(json, [&](std::size_t i) {
    const char character = json[i];
    if (character == ']' || character == '}') {
      endLine(i);
      --depth;
    } else if (character == '[' || character == '{') {
      endLine(i + 1);
      ++depth;
    } else if (character == ',') {
      endLine(i + 1);
    }
  });
  endLine(json.size());
  return lines;
}

// The lines between the first and the last that differ, and one more on either side.
std::string diffOf(const std::string& expected, const std::string& actual) {
  const std::vector<std::string> before = linesOf(expected);
  const std::vector<std::string> after = linesOf(actual);
  const std::size_t shorter = std::min(before.size(), after.size());
  std::size_t same = 0;
  while (same < shorter && before[same] == after[same]) ++same;
  std::size_t sameAtEnd = 0;
  while (sameAtEnd < shorter - same &&
         before[before.size() - 1 - sameAtEnd] == after[after.size() - 1 - sameAtEnd]) {
    ++sameAtEnd;
  }
  std::string text;
  const auto add = [&text](const char* mark, const std::string& line) {
    text += mark + line + "\n";
  };
  if (same > 0) add("    ", before[same - 1]);
  for (std::size_t i = same; i < before.size() - sameAtEnd; ++i) add("  - ", before[i]);
  for (std::size_t i = same; i < after.size() - sameAtEnd; ++i) add("  + ", after[i]);
  if (sameAtEnd > 0) add("    ", after[after.size() - sameAtEnd]);
  return text;
}

struct Edit {
  std::string_view place;  // in the table
  std::string text;
};

// "result": 1, or what else an answer becomes as a member of a case.
std::string expectation(const TestCase& testCase, const CaseOutcome& outcome) {
  try {
    if (!outcome.answer) throw std::invalid_argument("there is no answer");
    const std::vector<JsonPart> members = membersOf(*outcome.answer);
    if (members.empty()) return R"("nothing": true)";
    if (members.size() > 1) throw std::invalid_argument("the answer says more than one thing");
    return jsonString(members.front().name) + ": " + spaced(members.front().text);
  } catch (const MalformedJson& problem) {
    throw std::invalid_argument(testCase.place + ": " + problem.what());
  } catch (const std::invalid_argument& problem) {
    throw std::invalid_argument(testCase.place + ": " + problem.what());
  }
}

bool isAnswer(const JsonPart& member) {
  return member.name == "result" || member.name == "nothing" || member.name == "error";
}

std::string_view from(std::string_view text, const char* begin, const char* end) {
  return text.substr(static_cast<std::size_t>(begin - text.data()),
                     static_cast<std::size_t>(end - begin));
}

const char* endOf(std::string_view text) { return text.data() + text.size(); }

void addEdits(std::vector<Edit>& edits, std::string_view table, std::string_view caseText,
              const TestCase& testCase, const CaseOutcome& outcome) {
  const std::vector<JsonPart> members = membersOf(caseText);
  const auto answer = std::ranges::find_if(members, isAnswer);
  const auto files = std::ranges::find(members, "filesAfter", &JsonPart::name);
  const std::string changes = changesBetween(testCase.filesBefore, outcome.files);
  const bool hasNewFiles = outcome.files != testCase.filesAfter;
  if (outcome.normalAnswer() != testCase.expected) {
    edits.push_back({answer->member, expectation(testCase, outcome)});
  }
  if (!hasNewFiles) return;
  if (files == members.end()) {
    edits.push_back({from(table, endOf(answer->member), endOf(answer->member)),
                     R"(, "filesAfter": )" + changes});
  } else if (outcome.files != testCase.filesBefore) {
    edits.push_back({files->text, changes});
  } else if (files != members.begin()) {
    edits.push_back({from(table, endOf(std::prev(files)->member), endOf(files->member)), {}});
  } else {
    edits.push_back({from(table, files->member.data(), std::next(files)->member.data()), {}});
  }
}

}  // namespace

std::string differenceOf(const TestCase& testCase, const CaseOutcome& outcome) {
  if (outcome.isAsExpected(testCase)) return {};
  std::string text = testCase.place + ": " + testCase.name + "\n";
  if (outcome.normalAnswer() != testCase.expected) {
    text += diffOf(spaced(testCase.expected), spaced(outcome.normalAnswer()));
  }
  if (outcome.files != testCase.filesAfter) {
    text += "  files afterwards:\n";
    text += diffOf(changesBetween(testCase.filesBefore, testCase.filesAfter),
                   changesBetween(testCase.filesBefore, outcome.files));
  }
  return text;
}

std::string acceptedTable(std::string_view table, std::span<const TestCase> cases,
                          std::span<const CaseOutcome> outcomes) {
  std::vector<Edit> edits;
  const std::vector<JsonPart> members = membersOf(table);
  const auto caseTexts = itemsOf(std::ranges::find(members, "cases", &JsonPart::name)->text);
  for (std::size_t i = 0; i < caseTexts.size(); ++i) {
    addEdits(edits, table, caseTexts[i].text, cases[i], outcomes[i]);
  }
  std::ranges::sort(edits, {}, [](const Edit& edit) { return edit.place.data(); });
  std::string text;
  const char* done = table.data();
  for (const Edit& edit : edits) {
    text += from(table, done, edit.place.data());
    text += edit.text;
    done = endOf(edit.place);
  }
  return text += from(table, done, endOf(table));
}

}  // namespace skerrow::tests
