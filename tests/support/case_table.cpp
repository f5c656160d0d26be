#include "tests/support/case_table.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>

#include "tests/support/json_text.h"

namespace skerrow::tests {

namespace {

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

TestCase caseFrom(std::string_view text, const std::string& command) {
  const Members members(
      text, {"name", "command", "direct", "arguments", "timeout", "result", "nothing", "error"});
  return {members.needText("name"), {}, eventOf(members, command), expectedAnswer(members)};
}

std::string place(std::string_view text, std::size_t offset, const std::string& title) {
  return title + ":" + std::to_string(std::ranges::count(text.substr(0, offset), '\n') + 1);
}

std::string normalOrAsItIs(const std::string& answer) {
  try {
    return normalJson(answer);
  } catch (const MalformedJson& problem) {
    return answer + "\n            (no JSON: " + problem.what() + ")";
  }
}

}  // namespace

std::vector<std::filesystem::path> caseTableFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(SKERROW_CASES)) {
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::vector<TestCase> readCaseTable(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + file.string());
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  const auto root = std::filesystem::path(SKERROW_CASES).parent_path();
  return parseCaseTable(text, file.lexically_relative(root).string());
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

std::vector<std::string> mismatches(std::span<const TestCase> cases, const FrontEnd& frontEnd) {
  std::vector<std::string> events;
  std::ranges::transform(cases, std::back_inserter(events), &TestCase::event);
  const std::vector<std::string> answers = frontEnd.answers(events);
  std::vector<std::string> found;
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const std::string actual = i < answers.size() ? normalOrAsItIs(answers[i]) : "no answer at all";
    if (actual == cases[i].expected) continue;
    found.push_back(cases[i].place + ": " + cases[i].name + "\n  event:    " + cases[i].event +
                    "\n  expected: " + cases[i].expected + "\n  actual:   " + actual);
  }
  if (answers.size() > cases.size()) found.emplace_back("more answers than there are events");
  return found;
}

}  // namespace skerrow::tests
