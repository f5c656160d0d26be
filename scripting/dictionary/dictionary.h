#pragma once
// Dictionary: what scripts can say to this program. Its commands, the actions of the
// application among them, with their arguments; its classes with their properties and
// elements; its enumerations; each in words, in codes and by the name that it has in
// the program. The tables are constants made from a scripting definition at build
// time, so nothing is parsed or copied when the program starts.

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "values/four_char_code.h"

namespace skerrow::core {
class Command;
}

namespace skerrow::scripting {

/// Kinds of values, as a set.
enum class Kinds : std::uint32_t {
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
  reference = 1U << 12U,  ///< to a property or element of the application
  point = 1U << 13U,
  rectangle = 1U << 14U,
  list = 1U << 15U,  ///< in words only: what a list can hold stands with it
};
constexpr Kinds operator|(Kinds a, Kinds b) {
  return Kinds{static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b)};
}
constexpr bool contains(Kinds set, Kinds kind) {
  return (static_cast<std::uint32_t>(set) & static_cast<std::uint32_t>(kind)) != 0;
}

struct EnumeratorEntry {
  std::string_view words;
  FourCharCode code;
  std::string_view description;
};

struct EnumerationEntry {
  std::string_view words;
  FourCharCode code;
  std::span<const EnumeratorEntry> enumerators;
};

struct ClassEntry;

/// What values an argument or a property can have.
struct TypeEntry {
  Kinds single;  ///< what it can be by itself
  Kinds items;   ///< what the items of a list can be; none where no list will do
  const EnumerationEntry* enumeration;  ///< or null
  const ClassEntry* ofClass;            ///< of the object that a reference leads to; or null
  std::string_view inWords;             ///< "an integer", "a text, or a list of texts"
};

/// In which shape a command finds an argument.
enum class Arrival : std::uint8_t {
  plain,  ///< an unpacked Value; an enumerator as its code
  list,  ///< a list of given values, each raw; where a single value will do, it makes a list of one
  given,  ///< raw, as it was given
};

/// Who refuses an event that leaves an argument out. A command that has a failure of its
/// own for it asks for it itself, at its own point of time; and it then knows too what
/// to say to a direct parameter of the wrong kind.
enum class AskedBy : std::uint8_t { nobody, scriptingLayer, command };

struct ArgumentEntry {
  std::string_view words;  ///< empty for a direct parameter
  FourCharCode code;
  std::string_view key;  ///< empty for a direct parameter
  TypeEntry type;
  Arrival arrival;
  AskedBy askedBy;
  int missingNumber;  ///< of the error for an event without it; 0 where it is optional
  std::string_view description;

  [[nodiscard]] bool isOptional() const noexcept { return askedBy == AskedBy::nobody; }
};

/// Who performs a command: the class of its own, or the application as one of its actions.
enum class Performer : std::uint8_t { commandClass, application };

struct CommandEntry {
  std::string_view words;
  FourCharCode eventClass;
  FourCharCode eventCode;
  std::string_view name;  ///< of its class, or of the action
  Performer performer;
  std::string_view description;
  const ArgumentEntry* directParameter;  ///< or null for a command without one
  std::span<const ArgumentEntry> arguments;
  const ArgumentEntry* result;  ///< or null for a command that gives none

  [[nodiscard]] const ArgumentEntry* argument(std::string_view key) const noexcept;
  [[nodiscard]] const ArgumentEntry* argument(FourCharCode code) const noexcept;
};

enum class Access : std::uint8_t { read = 1, write = 2, readAndWrite = 3 };
constexpr bool allows(Access access, Access wanted) {
  return (static_cast<unsigned>(access) & static_cast<unsigned>(wanted)) != 0;
}

struct PropertyEntry {
  std::string_view words;
  FourCharCode code;
  std::string_view key;
  TypeEntry type;
  Access access;
  std::string_view description;
};

/// Ways of naming elements, as a set.
enum class AccessForms : std::uint8_t {
  none = 0,
  index = 1U << 0U,
  name = 1U << 1U,
  identifier = 1U << 2U,
  range = 1U << 3U,
  relative = 1U << 4U,
  test = 1U << 5U,
};
constexpr AccessForms operator|(AccessForms a, AccessForms b) {
  return AccessForms{
      static_cast<std::uint8_t>(static_cast<unsigned>(a) | static_cast<unsigned>(b))};
}
constexpr bool contains(AccessForms set, AccessForms form) {
  return (static_cast<unsigned>(set) & static_cast<unsigned>(form)) != 0;
}

struct ElementEntry {
  const ClassEntry* ofClass;
  std::string_view key;
  Access access;
  AccessForms forms;
};

struct ClassEntry {
  std::string_view words;
  std::string_view plural;
  FourCharCode code;
  std::string_view name;
  const ClassEntry* base;  ///< or null
  std::string_view description;
  std::span<const PropertyEntry> properties;  ///< its own
  std::span<const ElementEntry> elements;     ///< its own

  // Its own or inherited; null where there is none. A property's words are what scripts
  // say, its key is its name in paths.
  [[nodiscard]] const PropertyEntry* propertyByKey(std::string_view key) const noexcept;
  [[nodiscard]] const PropertyEntry* propertyByWords(std::string_view words) const noexcept;
  [[nodiscard]] const PropertyEntry* property(FourCharCode code) const noexcept;
  [[nodiscard]] const ElementEntry* elementByKey(std::string_view key) const noexcept;
  [[nodiscard]] const ElementEntry* element(FourCharCode classCode) const noexcept;
};

struct SuiteEntry {
  std::string_view words;
  FourCharCode code;
  std::string_view description;
};

struct Dictionary {
  std::string_view title;
  std::span<const SuiteEntry> suites;
  std::span<const CommandEntry> commands;  ///< in the order of their names
  std::span<const ClassEntry> classes;     ///< in the order of their names
  std::span<const EnumerationEntry> enumerations;

  // Each null where there is none. Words are compared without regard to case, as scripts
  // are read.
  [[nodiscard]] const CommandEntry* command(std::string_view name) const noexcept;
  [[nodiscard]] const CommandEntry* commandByWords(std::string_view words) const noexcept;
  [[nodiscard]] const CommandEntry* command(FourCharCode eventClass,
                                            FourCharCode eventCode) const noexcept;
  [[nodiscard]] const ClassEntry* classNamed(std::string_view name) const noexcept;
  /// In the singular or the plural.
  [[nodiscard]] const ClassEntry* classByWords(std::string_view words) const noexcept;
  [[nodiscard]] const ClassEntry* classWithCode(FourCharCode code) const noexcept;
  /// One word has one code, whatever enumeration it belongs to.
  [[nodiscard]] const EnumeratorEntry* enumeratorByWords(std::string_view words) const noexcept;
  [[nodiscard]] const EnumeratorEntry* enumerator(FourCharCode code) const noexcept;
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
