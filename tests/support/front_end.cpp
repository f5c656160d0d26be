#include "tests/support/front_end.h"

#include <sstream>
#include <stdexcept>
#include <string_view>

#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"
#include "tests/support/in_process.h"
#include "tests/support/program.h"

namespace skerrow::tests {

namespace {

using Events = std::span<const std::string>;

// Through the dispatcher, in this very process.
std::vector<std::string> answersInProcess(Events events) {
  InProcess commands;
  std::vector<std::string> answers;
  for (const std::string& event : events) {
    scripting::JsonSource source{std::string_view(event)};
    const core::Reply reply = commands.perform(scripting::readEvent(source));
    std::string answer;
    scripting::writeReply(reply, [&answer](std::string_view piece) { answer += piece; });
    answers.push_back(std::move(answer));
  }
  return answers;
}

// Through the real program, all events in one process.
std::vector<std::string> answersOfProgram(Events events) {
  std::string input;
  for (const std::string& event : events) input += event + "\n";
  const ProgramEnd end = runProgram({.words = {"perform", "--stdin"}}, input);
  if (!end.isExit(0) || !end.errors.empty()) {
    throw std::runtime_error("the program did not end well: " + end.summary());
  }
  std::vector<std::string> answers;
  std::istringstream lines(end.output);
  for (std::string line; std::getline(lines, line);) answers.push_back(line);
  return answers;
}

}  // namespace

std::vector<FrontEnd> frontEnds() {
  return {{"InProcess", answersInProcess}, {"Program", answersOfProgram}};
}

}  // namespace skerrow::tests
