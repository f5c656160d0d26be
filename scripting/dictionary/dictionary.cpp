#include "scripting/dictionary/dictionary.h"

#include <algorithm>

namespace skerrow::scripting {

namespace {

template <class Entries, class Matches>
auto* findIn(const Entries& entries, Matches&& matches) noexcept {
  const auto found = std::ranges::find_if(entries, matches);
  return found == std::ranges::end(entries) ? nullptr : &*found;
}

// Tables that stand in the order of their names.
template <class Entries>
auto* findByName(const Entries& entries, std::string_view name) noexcept {
  const auto found =
      std::ranges::lower_bound(entries, name, {}, [](const auto& entry) { return entry.name; });
  return found != entries.end() && found->name == name ? &*found : nullptr;
}

constexpr char lowercased(char byte) {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool areSameWords(std::string_view a, std::string_view b) noexcept {
  return std::ranges::equal(a, b, {}, lowercased, lowercased);
}

auto hasWords(std::string_view words) {
  return [words](const auto& entry) { return areSameWords(entry.words, words); };
}

auto hasCode(FourCharCode code) {
  return [code](const auto& entry) { return entry.code == code; };
}

auto hasKey(std::string_view key) {
  return [key](const auto& entry) { return entry.key == key; };
}

// In one of the classes of a line of inheritance, the innermost first.
template <class Entry, class Matches>
const Entry* findInherited(const ClassEntry* from, std::span<const Entry> ClassEntry::*entries,
                           Matches&& matches) noexcept {
  for (; from != nullptr; from = from->base) {
    if (const Entry* found = findIn(from->*entries, matches)) return found;
  }
  return nullptr;
}

template <class Matches>
const EnumeratorEntry* findEnumerator(const Dictionary& dictionary, Matches&& matches) noexcept {
  for (const EnumerationEntry& enumeration : dictionary.enumerations) {
    if (const EnumeratorEntry* found = findIn(enumeration.enumerators, matches)) return found;
  }
  return nullptr;
}

}  // namespace

const ArgumentEntry* CommandEntry::argument(std::string_view key) const noexcept {
  return findIn(arguments, hasKey(key));
}

const ArgumentEntry* CommandEntry::argument(FourCharCode code) const noexcept {
  return findIn(arguments, hasCode(code));
}

const PropertyEntry* ClassEntry::propertyByKey(std::string_view key) const noexcept {
  return findInherited(this, &ClassEntry::properties, hasKey(key));
}

const PropertyEntry* ClassEntry::propertyByWords(std::string_view propertyWords) const noexcept {
  return findInherited(this, &ClassEntry::properties, hasWords(propertyWords));
}

const PropertyEntry* ClassEntry::property(FourCharCode propertyCode) const noexcept {
  return findInherited(this, &ClassEntry::properties, hasCode(propertyCode));
}

const ElementEntry* ClassEntry::elementByKey(std::string_view key) const noexcept {
  return findInherited(this, &ClassEntry::elements, hasKey(key));
}

const ElementEntry* ClassEntry::element(FourCharCode classCode) const noexcept {
  return findInherited(this, &ClassEntry::elements, [classCode](const ElementEntry& entry) {
    return entry.ofClass->code == classCode;
  });
}

const CommandEntry* Dictionary::command(std::string_view name) const noexcept {
  return findByName(commands, name);
}

const CommandEntry* Dictionary::commandByWords(std::string_view words) const noexcept {
  return findIn(commands, hasWords(words));
}

const CommandEntry* Dictionary::command(FourCharCode eventClass,
                                        FourCharCode eventCode) const noexcept {
  return findIn(commands, [=](const CommandEntry& entry) {
    return entry.eventClass == eventClass && entry.eventCode == eventCode;
  });
}

const ClassEntry* Dictionary::classNamed(std::string_view name) const noexcept {
  return findByName(classes, name);
}

const ClassEntry* Dictionary::classByWords(std::string_view words) const noexcept {
  return findIn(classes, [words](const ClassEntry& entry) {
    return areSameWords(entry.words, words) || areSameWords(entry.plural, words);
  });
}

const ClassEntry* Dictionary::classWithCode(FourCharCode code) const noexcept {
  return findIn(classes, hasCode(code));
}

const EnumeratorEntry* Dictionary::enumeratorByWords(std::string_view words) const noexcept {
  return findEnumerator(*this, hasWords(words));
}

const EnumeratorEntry* Dictionary::enumerator(FourCharCode code) const noexcept {
  return findEnumerator(*this, hasCode(code));
}

}  // namespace skerrow::scripting
