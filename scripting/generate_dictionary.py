#!/usr/bin/env python3
"""Turns a scripting definition into constant tables.

Writes two sources: the dictionary's tables, and the list of factories, one for each command
class, in the same order. A factory is called create<class> and stands with its class. Writes a
header for each command class too: the keys of its arguments as constants.
"""

import argparse
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

# A type's name in the definition, and the kinds that it stands for. Any other name is that of an
# enumeration.
KINDS = {
    "any": ["any"],
    "text": ["text"],
    "integer": ["integer"],
    "real": ["real"],
    "number": ["integer", "real"],
    "boolean": ["boolean"],
    "date": ["date"],
    "file": ["file"],
    "record": ["record"],
    "type": ["type"],
    "raw data": ["data"],
    "script": ["script"],
}

# Arguments of these kinds are handed over as they were given.
GIVEN_KINDS = {"any", "record", "script"}


class Malformed(Exception):
    """What is wrong with the definition, in words for the person who wrote it."""


def attribute(element, name):
    value = element.get(name)
    if value is None:
        raise Malformed(f"<{element.tag} name=\"{element.get('name', '')}\"> has no {name}")
    return value


def code_number(text, count=4):
    """The number of a code: characters of Mac OS Roman, or 0x and hexadecimal digits."""
    if text.startswith("0x") and len(text) == 2 + 2 * count:
        try:
            return int(text, 16)
        except ValueError:
            raise Malformed(f"the code “{text}” is no hexadecimal number") from None
    try:
        encoded = text.encode("mac_roman")
    except UnicodeEncodeError:
        encoded = b""
    if len(encoded) != count:
        raise Malformed(f"the code “{text}” does not have {count} characters")
    return int.from_bytes(encoded, "big")


def code(text):
    return f"FourCharCode{{{code_number(text):#010x}}}"


def string(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"')
    return f'"{escaped}"'


def identifier(name):
    return "".join(word.capitalize() for word in name.replace("-", " ").split())


def kinds(names):
    return " | ".join(f"Kinds::{name}" for name in names) if names else "Kinds::none"


def types_of(element):
    """The (name, is a list) pairs that an element's type attribute or type elements give."""
    types = [(one.get("type"), one.get("list") == "yes") for one in element.findall("type")]
    if element.get("type"):
        types.insert(0, (element.get("type"), False))
    if not types:
        raise Malformed(f"<{element.tag} name=\"{element.get('name', '')}\"> has no type")
    return types


def argument_entry(element, enumerations, words="", argument_code=None, key=""):
    single, items, enumeration = [], [], None
    for name, is_list in types_of(element):
        if name in enumerations:
            enumeration = name
        elif name not in KINDS:
            raise Malformed(f"there is no type “{name}”")
        (items if is_list else single).extend(KINDS.get(name, ["enumeration"]))
    if items and "any" not in single:
        arrival = "list"
    elif GIVEN_KINDS & set(single):
        arrival = "given"
    else:
        arrival = "plain"
    return (
        f"    {{{string(words)}, {argument_code or 'FourCharCode{0}'}, {string(key)},\n"
        f"     {kinds(single)}, {kinds(items)}, Arrival::{arrival},\n"
        f"     {'true' if element.get('optional') == 'yes' else 'false'}, "
        f"{f'&k{identifier(enumeration)}' if enumeration else 'nullptr'},\n"
        f"     {string(element.get('description', ''))}}}"
    )


def unique(what, values):
    seen = set()
    for value in values:
        if value in seen:
            raise Malformed(f"{what} “{value}” stands there twice")
        seen.add(value)


def cocoa(element, name):
    found = element.find("cocoa")
    if found is None:
        raise Malformed(f"“{element.get('name')}” has no <cocoa {name}>")
    return attribute(found, name)


# Words of C++ that are no names there.
RESERVED = set(
    """alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t
    char32_t class compl concept const consteval constexpr constinit const_cast continue co_await
    co_return co_yield decltype default delete do double dynamic_cast else enum explicit export
    extern false float for friend goto if inline int long mutable namespace new noexcept not not_eq
    nullptr operator or or_eq private protected public register reinterpret_cast requires return
    short signed sizeof static static_assert static_cast struct switch template this thread_local
    throw true try typedef typeid typename union unsigned using virtual void volatile wchar_t while
    xor xor_eq""".split()
)


def name_in_code(what, text):
    """The text, which is to be a name in the sources too."""
    if not re.fullmatch("[A-Za-z][A-Za-z0-9]*", text) or text in RESERVED:
        raise Malformed(f"the {what} “{text}” cannot be a name: it needs letters and digits")
    return text


def enumeration_tables(enumerations):
    for name, element in enumerations.items():
        table = f"k{identifier(name)}"
        yield f"constexpr EnumeratorEntry {table}Enumerators[] = {{"
        for one in element.findall("enumerator"):
            yield (
                f"    {{{string(attribute(one, 'name'))}, {code(attribute(one, 'code'))},\n"
                f"     {string(one.get('description', ''))}}},"
            )
        yield "};"
        yield (
            f"constexpr EnumerationEntry {table} = {{{string(name)}, "
            f"{code(attribute(element, 'code'))}, {table}Enumerators}};\n"
        )


def command_tables(class_name, element, enumerations):
    """The arguments' tables of one command, and the command's own entry."""
    lines, links = [], {}
    for tag, suffix in (("direct-parameter", "Direct"), ("result", "Result")):
        found = element.find(tag)
        links[tag] = f"&k{class_name}{suffix}" if found is not None else "nullptr"
        if found is not None:
            lines.append(f"constexpr ArgumentEntry k{class_name}{suffix} =")
            lines.append(argument_entry(found, enumerations) + ";\n")
    parameters = element.findall("parameter")
    unique(f"in “{attribute(element, 'name')}” the parameter", [attribute(p, "name") for p in parameters])
    unique(f"in “{attribute(element, 'name')}” the code", [attribute(p, "code") for p in parameters])
    unique(f"in “{attribute(element, 'name')}” the key", [cocoa(p, "key") for p in parameters])
    arguments = "{}"
    if parameters:
        arguments = f"k{class_name}Arguments"
        lines.append(f"constexpr ArgumentEntry {arguments}[] = {{")
        for one in parameters:
            entry = argument_entry(one, enumerations, one.get("name"), code(one.get("code")), cocoa(one, "key"))
            lines.append(entry + ",")
        lines.append("};\n")
    event = code_number(attribute(element, "code"), 8)
    entry = (
        f"    {{{string(attribute(element, 'name'))}, FourCharCode{{{event >> 32:#010x}}}, "
        f"FourCharCode{{{event & 0xFFFFFFFF:#010x}}},\n"
        f"     {string(class_name)}, {string(element.get('description', ''))},\n"
        f"     {links['direct-parameter']}, {arguments}, {links['result']}}},"
    )
    return lines, entry


def tables_source(title, commands, enumerations, function):
    yield "// Made from the scripting definition; changes here are lost."
    yield '#include "scripting/dictionary.h"\n'
    yield "namespace skerrow::scripting {\nnamespace {\n"
    yield from enumeration_tables(enumerations)
    entries = []
    for class_name, element in commands:
        lines, entry = command_tables(class_name, element, enumerations)
        yield from lines
        entries.append(entry)
    yield "constexpr CommandEntry kCommands[] = {"
    yield from entries
    yield "};\n"
    yield f"constexpr Dictionary kDictionary = {{{string(title)}, kCommands}};\n"
    yield "}  // namespace\n"
    yield f"const Dictionary& {function}() {{ return kDictionary; }}\n"
    yield "}  // namespace skerrow::scripting"


def classes_source(commands, function):
    yield "// Made from the scripting definition; changes here are lost."
    yield '#include "core/command.h"'
    yield '#include "scripting/dictionary.h"\n'
    yield "namespace skerrow {\n"
    for class_name, _ in commands:
        yield f"std::unique_ptr<core::Command> create{class_name}();"
    yield "\nnamespace scripting {\nnamespace {\n"
    yield "constexpr CommandFactory kFactories[] = {"
    for class_name, _ in commands:
        yield f"    create{class_name},"
    yield "};\n\n}  // namespace\n"
    yield f"CommandClasses {function}Classes() {{ return kFactories; }}\n"
    yield "}  // namespace scripting\n}  // namespace skerrow"


def keys_header(class_name, element):
    yield "#pragma once"
    yield "// Made from the scripting definition; changes here are lost."
    yield '#include "core/argument_key.h"\n'
    yield f"namespace skerrow::argument_keys::{class_name} {{\n"
    for one in element.findall("parameter"):
        key = name_in_code("key", cocoa(one, "key"))
        yield f"inline constexpr core::ArgumentKey {key}{{{string(key)}}};"
    yield f"\n}}  // namespace skerrow::argument_keys::{class_name}"


def write_if_changed(path, lines):
    """What stays as it is keeps its time, so that nothing is built again for it."""
    text = "\n".join(lines) + "\n"
    if not path.exists() or path.read_text(encoding="utf-8") != text:
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("definition")
    parser.add_argument("--tables", type=Path)
    parser.add_argument("--classes", type=Path)
    parser.add_argument("--keys", type=Path, help="the folder for the headers of keys")
    parser.add_argument("--namespace-function")
    parser.add_argument("--list-classes", action="store_true", help="print the classes, write nothing")
    options = parser.parse_args()
    try:
        root = ElementTree.parse(options.definition).getroot()
        enumerations = {attribute(one, "name"): one for one in root.iter("enumeration")}
        commands = sorted(
            ((name_in_code("class", cocoa(one, "class")), one) for one in root.iter("command")), key=lambda pair: pair[0]
        )
        unique("the class", [class_name for class_name, _ in commands])
        unique("the command", [attribute(one, "name") for _, one in commands])
        unique("the event code", [attribute(one, "code") for _, one in commands])
        function = options.namespace_function
        files = [
            (options.tables, list(tables_source(attribute(root, "title"), commands, enumerations, function))),
            (options.classes, list(classes_source(commands, function))),
        ] + [
            (options.keys and options.keys / f"{class_name}.h", list(keys_header(class_name, element)))
            for class_name, element in commands
        ]
    except (Malformed, ElementTree.ParseError, OSError) as problem:
        sys.exit(f"{options.definition}: {problem}")
    if options.list_classes:
        print("\n".join(class_name for class_name, _ in commands))
        return
    for path, lines in files:
        if path:
            write_if_changed(path, lines)


if __name__ == "__main__":
    main()
