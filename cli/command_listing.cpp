#include "cli/command_listing.h"

#include <algorithm>
#include <string_view>

#include "cli/options.h"
#include "foundation/encoding/code_text.h"
#include "foundation/text/quoted_text.h"
#include "scripting/dictionary/dictionary.h"
#include "scripting/dictionary/nearest.h"

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

// What stands in parentheses behind a parameter's name.
std::string kinds(const ArgumentEntry& argument) {
  return std::string(argument.type.inWords) + (argument.isOptional() ? ")" : ", required)");
}

std::string argumentLines(const ArgumentEntry& argument) {
  std::string text = "  " + std::string(argument.key) + " (" + kinds(argument) + "\n";
  text += "      In scripts: " + std::string(argument.words) + "\n";
  text += wrapped(sentence(argument.description), 6);
  if (argument.type.enumeration != nullptr) {
    for (const scripting::EnumeratorEntry& one : argument.type.enumeration->enumerators) {
      text += wrapped(std::string(one.words) + " (" + foundation::plainTextFromCode(one.code) +
                          "): " + std::string(one.description),
                      8);
    }
  }
  return text;
}

std::string details(const CommandEntry& command) {
  std::string text =
      std::string(command.name) + "\n  In scripts: " + std::string(command.words) + "\n\n";
  text += wrapped(sentence(command.description), 2);
  if (command.directParameter != nullptr) {
    text += "\nDirect parameter (" + kinds(*command.directParameter) + "\n";
    text += wrapped(sentence(command.directParameter->description), 6);
  }
  if (!command.arguments.empty()) text += "\nArguments\n";
  for (const ArgumentEntry& argument : command.arguments) text += argumentLines(argument);
  if (command.result != nullptr) {
    text += "\nResult (" + std::string(command.result->type.inWords) + ")\n";
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
      text += std::string(entry.name) + " (" + std::string(entry.words) + ")\n";
      text += wrapped(entry.description, 4);
    }
    return text;
  }
  const scripting::Dictionary& dictionary = scripting::skerrowDictionary();
  const CommandEntry* found = dictionary.command(*command);
  if (found == nullptr) found = dictionary.commandByWords(*command);
  if (found == nullptr) {
    throw UsageError("there is no command “" + foundation::shortened(*command) + "”" +
                     scripting::didYouMean(dictionary, *command) +
                     " “skerrow commands” lists them all");
  }
  return details(*found);
}

}  // namespace skerrow::cli
