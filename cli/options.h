#pragma once
// Options: what the words of the command line ask for. Reading them does
// nothing yet; wrong usage is thrown as UsageError with a message for a person.

#include <chrono>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>

#include "scripting/event.h"

namespace skerrow::cli {

class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Input that an option names and that cannot be read.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct ShowHelp {};
struct ShowVersion {};

/// All commands, or one by its class or its words.
struct ListCommands {
  std::optional<std::string> command;
};

/// Typed JSON as written on the command line: itself, "-" or "@FILE".
struct PerformOne {
  std::string command;
  std::optional<std::string> direct;
  std::optional<std::string> arguments;
  std::chrono::milliseconds timeout = scripting::Event::kDefaultTimeout;
};

/// Events from standard input, one a line.
struct PerformStream {};

using Options = std::variant<ShowHelp, ShowVersion, ListCommands, PerformOne, PerformStream>;

/// `words` are the words after the program's name.
Options readOptions(std::span<const char* const> words);

/// How to use the program, for --help.
std::string helpText();

}  // namespace skerrow::cli
