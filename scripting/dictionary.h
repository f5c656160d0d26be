#pragma once
// Dictionary: the commands that there are, in words, codes and classes, with
// their arguments. The tables are constants made from a scripting definition at
// build time, so nothing is parsed or copied when the program starts.

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "values/four_char_code.h"

namespace skerrow::core {
class Command;
}

namespace skerrow::scripting {

/// Kinds of values that an argument can take, as a set.
enum class Kinds : std::uint16_t {
  none = 0,
  any = 1U << 0U,
  text = 1U << 1U,
  integer = 1U << 2U,  ///< of 32 bits; a real that is a whole number will do
  real = 1U << 3U,
  boolean = 1U << 4U,
  date = 1U << 5U,
  file = 1U << 6U,
  record = 1U << 7U,
  type = 1U << 8U,
  enumeration = 1U << 9U,  ///< an enumerator's code; a plain integer will do
  data = 1U << 10U,
  script = 1U << 11U,
};
constexpr Kinds operator|(Kinds a, Kinds b) {
  return Kinds{static_cast<std::uint16_t>(static_cast<unsigned>(a) | static_cast<unsigned>(b))};
}
constexpr bool contains(Kinds set, Kinds kind) {
  return (static_cast<unsigned>(set) & static_cast<unsigned>(kind)) != 0;
}

/// In which shape a command finds an argument.
enum class Arrival : std::uint8_t {
  plain,  ///< an unpacked Value; an enumerator as its code
  list,  ///< a list of given values, each raw; where a single value will do, it makes a list of one
  given,  ///< raw, as it was given
};

struct EnumeratorEntry {
  std::string_view words;
  FourCharCode code;
  std::string_view description;
};

struct EnumerationEntry {
  std::string_view name;
  FourCharCode code;
  std::span<const EnumeratorEntry> enumerators;
};

struct ArgumentEntry {
  std::string_view words;  ///< empty for a direct parameter
  FourCharCode code;
  std::string_view key;  ///< empty for a direct parameter
  Kinds single;          ///< what it can take by itself
  Kinds items;           ///< what the items of a list can be; none when it takes no list
  Arrival arrival;
  bool isOptional;
  const EnumerationEntry* enumeration;  ///< or null
  std::string_view description;
};

struct CommandEntry {
  std::string_view words;
  FourCharCode eventClass;
  FourCharCode eventCode;
  std::string_view className;
  std::string_view description;
  const ArgumentEntry* directParameter;  ///< or null for a command without one
  std::span<const ArgumentEntry> arguments;
  const ArgumentEntry* result;  ///< or null for a command that gives none

  [[nodiscard]] const ArgumentEntry* argument(std::string_view key) const noexcept;
};

struct Dictionary {
  std::string_view title;
  std::span<const CommandEntry> commands;  ///< in the order of their class names

  [[nodiscard]] const CommandEntry* command(std::string_view className) const noexcept;
};

/// Makes an instance of a command's class.
using CommandFactory = std::unique_ptr<core::Command> (*)();

/// The factories of a dictionary's commands, in the dictionary's order. Made with
/// the tables; the functions themselves stand with the classes.
using CommandClasses = std::span<const CommandFactory>;

/// The dictionary of this program, and its commands.
const Dictionary& skerrowDictionary();
CommandClasses skerrowDictionaryClasses();

}  // namespace skerrow::scripting
