#include "cli/command_listing.h"

#include <algorithm>
#include <string_view>

#include "cli/options.h"
#include "scripting/argument_evaluation.h"
#include "scripting/dictionary.h"

namespace skerrow::cli {

namespace {

using scripting::ArgumentEntry;
using scripting::CommandEntry;

constexpr std::size_t kLineWidth = 80;

// Descriptions are clauses; alone on their lines they are sentences.
std::string sentence(std::string_view clause) {
  std::string text(clause);
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  }
  if (!text.ends_with('.')) text += '.';
  return text;
}

// Breaks a text into indented lines.
std::string wrapped(std::string_view text, std::size_t indent) {
  std::string lines;
  while (!text.empty()) {
    std::size_t end = text.size();
    if (end > kLineWidth - indent) {
      end = text.rfind(' ', kLineWidth - indent);
      if (end == std::string_view::npos) end = text.find(' ');
    }
    lines += std::string(indent, ' ') + std::string(text.substr(0, end)) + "\n";
    text.remove_prefix(std::min(text.size(), end == std::string_view::npos ? end : end + 1));
  }
  return lines;
}

std::string argumentLines(const ArgumentEntry& argument) {
  std::string text = "  " + std::string(argument.key) + " (" + scripting::kindsInWords(argument) +
                     (argument.isOptional ? ")\n" : ", required)\n");
  text += "      In scripts: " + std::string(argument.words) + "\n";
  text += wrapped(sentence(argument.description), 6);
  if (argument.enumeration != nullptr) {
    for (const scripting::EnumeratorEntry& one : argument.enumeration->enumerators) {
      text += wrapped(std::string(one.words) + ": " + std::string(one.description), 8);
    }
  }
  return text;
}

std::string details(const CommandEntry& command) {
  std::string text =
      std::string(command.className) + "\n  In scripts: " + std::string(command.words) + "\n\n";
  text += wrapped(sentence(command.description), 2);
  if (command.directParameter != nullptr) {
    text += "\nDirect parameter (" + scripting::kindsInWords(*command.directParameter) + ")\n";
    text += wrapped(sentence(command.directParameter->description), 6);
  }
  if (!command.arguments.empty()) text += "\nArguments\n";
  for (const ArgumentEntry& argument : command.arguments) text += argumentLines(argument);
  if (command.result != nullptr) {
    text += "\nResult (" + scripting::kindsInWords(*command.result) + ")\n";
    text += wrapped(sentence(command.result->description), 6);
  }
  return text;
}

}  // namespace

std::string commandListing(const std::optional<std::string>& command) {
  const auto commands = scripting::skerrowDictionary().commands;
  std::string text;
  if (!command) {
    for (const CommandEntry& entry : commands) {
      text += std::string(entry.className) + " (" + std::string(entry.words) + ")\n";
      text += wrapped(entry.description, 4);
    }
    return text;
  }
  const auto found = std::ranges::find_if(commands, [&](const CommandEntry& entry) {
    return entry.className == *command || entry.words == *command;
  });
  if (found == commands.end()) {
    throw UsageError("there is no command “" + *command + "”; “skerrow commands” lists them all");
  }
  return details(*found);
}

}  // namespace skerrow::cli
