#pragma once
// FrontEnd: one way into the commands. Every table of cases runs through each of
// them; a new way in is one more function and one more row.

#include <functional>
#include <map>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace skerrow::tests {

/// Variables of the environment by their names.
using Variables = std::map<std::string, std::string>;

struct FrontEnd {
  /// Takes events, each one line such as {"command": C, "direct": D, "arguments": {…},
  /// "timeout": S}, and gives the answer to each: {"result": V}, {} or {"error": {…}}.
  /// The commands find the variables beside those that the tests have.
  using Answers = std::function<std::vector<std::string>(std::span<const std::string> events,
                                                         const Variables& environment)>;

  std::string name;  ///< letters only: it is part of the names of tests
  Answers answers;

  friend void PrintTo(const FrontEnd& frontEnd, std::ostream* stream) { *stream << frontEnd.name; }
};

/// Through the dispatcher, in this very process.
FrontEnd inProcessFrontEnd();

/// Every way in that there is.
std::vector<FrontEnd> frontEnds();

}  // namespace skerrow::tests
