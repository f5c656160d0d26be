#include "tests/support/case_table.h"

#include <algorithm>
#include <deque>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "tests/support/json_text.h"
#include "tests/support/scratch_folder.h"

namespace skerrow::tests {

namespace {

constexpr std::string_view kScratch = "${scratch}";

// The parts of a case or of a table by name, each there at most once.
class Members {
 public:
  Members(std::string_view object, std::initializer_list<std::string_view> known)
      : members_(membersOf(object)) {
    std::set<std::string_view> names;
    for (const JsonPart& member : members_) {
      if (std::ranges::find(known, member.name) == known.end()) {
        throw std::invalid_argument("there is no use for a member “" + member.name + "”");
      }
      if (!names.insert(member.name).second) {
        throw std::invalid_argument("the member “" + member.name + "” is given twice");
      }
    }
  }

  [[nodiscard]] std::optional<std::string_view> find(std::string_view name) const {
    const auto found = std::ranges::find(members_, name, &JsonPart::name);
    return found == members_.end() ? std::nullopt : std::optional(found->text);
  }
  [[nodiscard]] std::string_view need(std::string_view name) const {
    const auto found = find(name);
    if (!found) throw std::invalid_argument("the member “" + std::string(name) + "” is missing");
    return *found;
  }
  [[nodiscard]] std::string needText(std::string_view name) const {
    std::string text = contentOf(need(name));
    if (text.empty()) throw std::invalid_argument("“" + std::string(name) + "” is empty");
    return text;
  }

 private:
  std::vector<JsonPart> members_;
};

std::string expectedError(std::string_view error) {
  const Members members(error, {"number", "message"});
  const std::string_view number = members.need("number");
  if (number.find_first_not_of("-0123456789") != std::string_view::npos) {
    throw std::invalid_argument("“number” must be an integer");
  }
  return R"({"error":{"number":)" + std::string(number) + R"(,"message":)" +
         jsonString(members.needText("message")) + "}}";
}

std::string expectedAnswer(const Members& members) {
  const auto result = members.find("result");
  const auto nothing = members.find("nothing");
  const auto error = members.find("error");
  if (int{result.has_value()} + int{nothing.has_value()} + int{error.has_value()} != 1) {
    throw std::invalid_argument("a case expects exactly one of “result”, “nothing” and “error”");
  }
  if (error) return expectedError(*error);
  if (result) return R"({"result":)" + normalJson(*result) + "}";
  if (*nothing != "true") throw std::invalid_argument("“nothing” can only be true");
  return "{}";
}

// The event is sent as it stands in the table, but on one line.
std::string eventOf(const Members& members, const std::string& tableCommand) {
  const std::string command = members.find("command") ? members.needText("command") : tableCommand;
  std::string event = R"({"command": )" + jsonString(command);
  for (const std::string_view name : {"direct", "arguments"}) {
    if (const auto given = members.find(name)) {
      event += ", " + jsonString(name) + ": " + std::string(*given);
    }
  }
  event += ", \"timeout\": " + std::string(members.find("timeout").value_or("10")) + "}";
  std::ranges::replace_if(
      event, [](char character) { return character == '\n' || character == '\r'; }, ' ');
  return event;
}

Variables variablesFrom(std::string_view object) {
  Variables variables;
  for (const JsonPart& member : membersOf(object)) {
    if (member.name.empty() || member.name.find('=') != std::string::npos) {
      throw std::invalid_argument("“" + member.name + "” is no name of a variable");
    }
    if (!variables.emplace(member.name, contentOf(member.text)).second) {
      throw std::invalid_argument("the variable “" + member.name + "” is given twice");
    }
  }
  return variables;
}

TestCase caseFrom(std::string_view text, const std::string& command) {
  const Members members(text, {"name", "command", "files", "environment", "direct", "arguments",
                               "timeout", "result", "nothing", "error", "filesAfter"});
  TestCase read{.name = members.needText("name"),
                .place = {},
                .event = eventOf(members, command),
                .expected = expectedAnswer(members)};
  if (const auto given = members.find("environment")) read.environment = variablesFrom(*given);
  if (const auto given = members.find("files")) read.filesBefore = afterChanges({}, *given);
  read.filesAfter = read.filesBefore;
  if (const auto changes = members.find("filesAfter")) {
    read.filesAfter = afterChanges(read.filesBefore, *changes);
    if (read.filesAfter == read.filesBefore) {
      throw std::invalid_argument("“filesAfter” changes nothing and is to be left out");
    }
  }
  return read;
}

std::string replaced(std::string text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

FolderContent replaced(FolderContent content, std::string_view from, std::string_view to) {
  for (auto& [path, item] : content) item.content = replaced(std::move(item.content), from, to);
  return content;
}

// A case and the folder in which it happens, if it needs one.
class Scene {
 public:
  explicit Scene(const TestCase& testCase) {
    if (!testCase.hasScratchFolder()) return;
    path_ = std::filesystem::canonical(folder_.emplace().path()).string();
    if (jsonString(path_) != '"' + path_ + '"') {
      throw std::runtime_error("a scratch folder needs a plain path: " + path_);
    }
    makeContent(replaced(testCase.filesBefore, kScratch, path_), path_);
  }

  [[nodiscard]] std::string with(const std::string& text) const {
    return folder_ ? replaced(text, kScratch, path_) : text;
  }
  [[nodiscard]] CaseOutcome outcome(std::optional<std::string> answer) const {
    if (!folder_) return {std::move(answer), {}};
    if (answer) answer = replaced(*std::move(answer), path_, kScratch);
    return {std::move(answer), replaced(contentOfFolder(path_), path_, kScratch)};
  }

 private:
  std::optional<ScratchFolder> folder_;
  std::string path_;
};

std::string place(std::string_view text, std::size_t offset, const std::string& title) {
  return title + ":" + std::to_string(std::ranges::count(text.substr(0, offset), '\n') + 1);
}

// What was expected of a case and what came of it.
std::string description(const TestCase& testCase, const CaseOutcome& outcome) {
  std::string text = testCase.place + ": " + testCase.name + "\n  event:    " + testCase.event +
                     "\n  expected: " + testCase.expected +
                     "\n  actual:   " + outcome.normalAnswer();
  if (outcome.files != testCase.filesAfter) {
    text += "\n  expected files: " + changesBetween(testCase.filesBefore, testCase.filesAfter) +
            "\n  actual files:   " + changesBetween(testCase.filesBefore, outcome.files);
  }
  return text;
}

}  // namespace

bool TestCase::hasScratchFolder() const {
  const auto mentions = [](std::string_view text) {
    return text.find(kScratch) != std::string_view::npos;
  };
  return !filesBefore.empty() || !filesAfter.empty() || mentions(event) || mentions(expected) ||
         std::ranges::any_of(environment,
                             [&](const auto& variable) { return mentions(variable.second); });
}

std::string CaseOutcome::normalAnswer() const {
  if (!answer) return "no answer at all";
  try {
    return normalJson(*answer);
  } catch (const MalformedJson& problem) {
    return *answer + "\n            (no JSON: " + problem.what() + ")";
  }
}

bool CaseOutcome::isAsExpected(const TestCase& testCase) const {
  return normalAnswer() == testCase.expected && files == testCase.filesAfter;
}

std::vector<std::filesystem::path> caseTableFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(SKERROW_CASES)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::string textOfCaseTable(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::string titleOfCaseTable(const std::filesystem::path& file) {
  return file.lexically_relative(std::filesystem::path(SKERROW_CASES).parent_path()).string();
}

std::vector<TestCase> readCaseTable(const std::filesystem::path& file) {
  return parseCaseTable(textOfCaseTable(file), titleOfCaseTable(file));
}

std::vector<TestCase> parseCaseTable(std::string_view text, const std::string& title) {
  std::size_t offset = 0;  // of the case that is being read
  try {
    const Members table(text, {"command", "cases"});
    const std::string command = table.needText("command");
    std::vector<TestCase> cases;
    std::set<std::string> names;
    for (const JsonPart& item : itemsOf(table.need("cases"))) {
      offset = static_cast<std::size_t>(item.text.data() - text.data());
      cases.push_back(caseFrom(item.text, command));
      cases.back().place = place(text, offset, title);
      if (!names.insert(cases.back().name).second) {
        throw std::invalid_argument("another case has the name “" + cases.back().name + "”");
      }
    }
    if (cases.empty()) throw std::invalid_argument("a table needs cases");
    return cases;
  } catch (const MalformedJson& problem) {
    const std::size_t at = offset == 0 ? problem.offset() : offset;
    throw std::runtime_error(place(text, at, title) + ": " + problem.what());
  } catch (const std::invalid_argument& problem) {
    throw std::runtime_error(place(text, offset, title) + ": " + problem.what());
  }
}

std::vector<CaseOutcome> outcomesOf(std::span<const TestCase> cases, const FrontEnd& frontEnd) {
  std::deque<Scene> scenes;
  for (const TestCase& testCase : cases) scenes.emplace_back(testCase);
  // Cases of one environment go together, in one process.
  std::map<Variables, std::vector<std::size_t>> batches;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    Variables variables = cases[i].environment;
    for (auto& [name, value] : variables) value = scenes[i].with(value);
    batches[std::move(variables)].push_back(i);
  }
  std::vector<std::optional<std::string>> answers(cases.size());
  for (const auto& [environment, batch] : batches) {
    std::vector<std::string> events;
    events.reserve(batch.size());
    for (const std::size_t i : batch) events.push_back(scenes[i].with(cases[i].event));
    std::vector<std::string> given = frontEnd.answers(events, environment);
    if (given.size() > batch.size()) throw std::runtime_error("more answers than events");
    for (std::size_t n = 0; n < given.size(); ++n) answers[batch[n]] = std::move(given[n]);
  }
  std::vector<CaseOutcome> outcomes;
  outcomes.reserve(cases.size());
  for (std::size_t i = 0; i < cases.size(); ++i) {
    outcomes.push_back(scenes[i].outcome(std::move(answers[i])));
  }
  return outcomes;
}

std::vector<std::string> mismatches(std::span<const TestCase> cases, const FrontEnd& frontEnd) {
  const std::vector<CaseOutcome> outcomes = outcomesOf(cases, frontEnd);
  std::vector<std::string> found;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    if (!outcomes[i].isAsExpected(cases[i])) found.push_back(description(cases[i], outcomes[i]));
  }
  return found;
}

}  // namespace skerrow::tests
