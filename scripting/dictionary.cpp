#include "scripting/dictionary.h"

#include <algorithm>

namespace skerrow::scripting {

const ArgumentEntry* CommandEntry::argument(std::string_view key) const noexcept {
  const auto found = std::ranges::find(arguments, key, &ArgumentEntry::key);
  return found == arguments.end() ? nullptr : &*found;
}

const CommandEntry* Dictionary::command(std::string_view className) const noexcept {
  const auto found = std::ranges::lower_bound(commands, className, {}, &CommandEntry::className);
  return found != commands.end() && found->className == className ? &*found : nullptr;
}

}  // namespace skerrow::scripting
