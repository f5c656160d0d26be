#include "tests/support/front_end.h"

#include <sstream>
#include <stdexcept>
#include <string_view>

#include "platform/system_platform.h"
#include "scripting/json/typed_json_reader.h"
#include "scripting/json/typed_json_writer.h"
#include "tests/support/in_process.h"
#include "tests/support/program.h"
#include "tests/support/test_platform.h"

namespace skerrow::tests {

namespace {

using Events = std::span<const std::string>;

std::vector<std::string> answersInProcess(Events events, const Variables& environment) {
  const platform::SystemPlatform system;
  const GivenEnvironment given(system.environment, environment);
  InProcess commands(withEnvironment(system, given));
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
std::vector<std::string> answersOfProgram(Events events, const Variables& environment) {
  std::string input;
  for (const std::string& event : events) input += event + "\n";
  ProgramSetup setup{.words = {"perform", "--stdin"}};
  for (const auto& [name, value] : environment) setup.environment.push_back(name + "=" + value);
  const ProgramEnd end = runProgram(setup, input);
  if (!end.isExit(0) || !end.errors.empty()) {
    throw std::runtime_error("the program did not end well: " + end.summary());
  }
  std::vector<std::string> answers;
  std::istringstream lines(end.output);
  for (std::string line; std::getline(lines, line);) answers.push_back(line);
  return answers;
}

}  // namespace

FrontEnd inProcessFrontEnd() { return {"InProcess", answersInProcess}; }

std::vector<FrontEnd> frontEnds() { return {inProcessFrontEnd(), {"Program", answersOfProgram}}; }

}  // namespace skerrow::tests
