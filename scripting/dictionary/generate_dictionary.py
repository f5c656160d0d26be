#!/usr/bin/env python3
"""Turns a scripting definition into constant tables.

Writes the dictionary's tables; the list of factories, one for each command, in the same order (a
factory is called create<class> and stands with its class); and a header for each command: the keys
of its arguments as constants. Also writes the words for kinds of values, which all dictionaries
share.
"""

import argparse
import sys
from pathlib import Path

from definition import KIND_WORDS, MISSING_ARGUMENT, Malformed, code_number, read

MADE = "// Made from the scripting definition; changes here are lost."

# Arguments of these kinds are handed over as they were given.
GIVEN_KINDS = {"any", "record", "script", "reference", "point", "rectangle"}

ACCESS = {"r": "Access::read", "w": "Access::write", "rw": "Access::readAndWrite"}
ACCESSOR = {"id": "identifier"}  # where the name in the tables is another


def code(text):
    return f"FourCharCode{{{code_number(text):#010x}}}" if text else "FourCharCode{0}"


def string(text):
    escaped = text.replace("\\", "\\\\").replace('"', '\\"')
    return f'"{escaped}"'


def identifier(name):
    return "".join(word[:1].upper() + word[1:] for word in name.replace("-", " ").split())


def flags(enum, names):
    return " | ".join(f"{enum}::{name}" for name in names) if names else f"{enum}::none"


def table(kind, name, rows):
    """The lines of an array and an expression for it; an array cannot be empty."""
    rows = list(rows)
    if not rows:
        return [], "{}"
    return [f"constexpr {kind} {name}[] = {{"] + [f"    {row}," for row in rows] + ["};\n"], name


class Tables:
    def __init__(self, definition):
        self.definition = definition
        self.commands = sorted(definition.all("commands"), key=lambda one: one.name)
        self.classes = sorted(definition.all("classes"), key=lambda one: one.name)
        self.enumerations = definition.all("enumerations")

    def class_entry(self, words):
        if words is None:
            return "nullptr"
        place = next(i for i, one in enumerate(self.classes) if one.words == words)
        return f"&kClasses[{place}]"

    def type_entry(self, of_type):
        place = self.enumerations.index(of_type.enumeration) if of_type.enumeration else None
        enumeration = f"&kEnumerations[{place}]" if place is not None else "nullptr"
        return (
            f"{{{flags('Kinds', of_type.single)}, {flags('Kinds', of_type.items)}, {enumeration}, "
            f"{self.class_entry(of_type.of_class)}, {string(of_type.in_words())}}}"
        )

    def argument_entry(self, argument):
        if argument.type.items and "any" not in argument.type.single:
            arrival = "list"
        elif GIVEN_KINDS & set(argument.type.single):
            arrival = "given"
        else:
            arrival = "plain"
        asked_by, number = "nobody", 0
        if argument.missing_number is not None:
            asked_by, number = "command", argument.missing_number
        elif not argument.is_optional:
            asked_by, number = "scriptingLayer", MISSING_ARGUMENT
        return (
            f"{{{string(argument.words)}, {code(argument.code)}, {string(argument.key)}, "
            f"{self.type_entry(argument.type)}, Arrival::{arrival}, AskedBy::{asked_by}, {number}, "
            f"{string(argument.description)}}}"
        )

    def enumeration_tables(self):
        rows = []
        for one in self.enumerations:
            lines, enumerators = table(
                "EnumeratorEntry", f"k{identifier(one.words)}Enumerators",
                (f"{{{string(each.words)}, {code(each.code)}, {string(each.description)}}}"
                 for each in one.enumerators))
            yield from lines
            rows.append(f"{{{string(one.words)}, {code(one.code)}, {enumerators}}}")
        lines, self.enumeration_span = table("EnumerationEntry", "kEnumerations", rows)
        yield from lines

    def class_tables(self):
        rows = []
        for one in self.classes:
            lines, properties = table(
                "PropertyEntry", f"k{one.name}Properties",
                (f"{{{string(each.words)}, {code(each.code)}, {string(each.key)}, "
                 f"{self.type_entry(each.type)}, {ACCESS[each.access]}, {string(each.description)}}}"
                 for each in one.properties))
            yield from lines
            lines, elements = table(
                "ElementEntry", f"k{one.name}Elements",
                (f"{{{self.class_entry(each.of_class)}, {string(each.key)}, {ACCESS[each.access]}, "
                 f"{flags('AccessForms', [ACCESSOR.get(name, name) for name in each.accessors])}}}"
                 for each in one.elements))
            yield from lines
            rows.append(
                f"{{{string(one.words)}, {string(one.plural)}, {code(one.code)}, {string(one.name)}, "
                f"{self.class_entry(one.base)}, {string(one.description)}, {properties}, {elements}}}")
        self.class_span = "kClasses" if rows else "{}"
        if rows:
            yield f"constinit const ClassEntry kClasses[{len(rows)}] = {{"
            yield from (f"    {row}," for row in rows)
            yield "};\n"

    def command_tables(self):
        rows = []
        for one in self.commands:
            links = {}
            for part, argument in (("Direct", one.direct), ("Result", one.result)):
                links[part] = "nullptr"
                if argument is not None:
                    links[part] = f"&k{one.name}{part}"
                    yield f"constexpr ArgumentEntry k{one.name}{part} = {self.argument_entry(argument)};\n"
            lines, arguments = table("ArgumentEntry", f"k{one.name}Arguments",
                                     map(self.argument_entry, one.arguments))
            yield from lines
            event = code_number(one.code, 8)
            performer = "application" if one.is_action else "commandClass"
            rows.append(
                f"{{{string(one.words)}, FourCharCode{{{event >> 32:#010x}}}, "
                f"FourCharCode{{{event & 0xFFFFFFFF:#010x}}}, {string(one.name)}, "
                f"Performer::{performer}, {string(one.description)}, "
                f"{links['Direct']}, {arguments}, {links['Result']}}}")
        lines, self.command_span = table("CommandEntry", "kCommands", rows)
        yield from lines

    def suite_tables(self):
        rows = (f"{{{string(one.words)}, {code(one.code)}, {string(one.description)}}}"
                for one in self.definition.suites)
        lines, self.suite_span = table("SuiteEntry", "kSuites", rows)
        yield from lines

    def source(self, function):
        yield MADE
        yield '#include "scripting/dictionary/dictionary.h"\n'
        yield "namespace skerrow::scripting {\nnamespace {\n"
        if self.classes:  # they refer to each other
            yield f"extern const ClassEntry kClasses[{len(self.classes)}];\n"
        yield from self.enumeration_tables()
        yield from self.class_tables()
        yield from self.command_tables()
        yield from self.suite_tables()
        yield (
            f"constexpr Dictionary kDictionary = {{{string(self.definition.title)}, {self.suite_span}, "
            f"{self.command_span}, {self.class_span}, {self.enumeration_span}}};\n")
        yield "}  // namespace\n"
        yield f"const Dictionary& {function}() {{ return kDictionary; }}\n"
        yield "}  // namespace skerrow::scripting"


def factory(command):
    return f"create{command.name[0].upper()}{command.name[1:]}"


def classes_source(commands, function):
    yield MADE
    yield '#include "core/command.h"'
    yield '#include "scripting/dictionary/dictionary.h"\n'
    yield "namespace skerrow {\n"
    for command in commands:
        yield f"std::unique_ptr<core::Command> {factory(command)}();"
    yield "\nnamespace scripting {\nnamespace {\n"
    yield "constexpr CommandFactory kFactories[] = {"
    for command in commands:
        yield f"    {factory(command)},"
    yield "};\n\n}  // namespace\n"
    yield f"CommandClasses {function}Classes() {{ return kFactories; }}\n"
    yield "}  // namespace scripting\n}  // namespace skerrow"


def keys_header(command):
    yield "#pragma once"
    yield MADE
    yield '#include "core/argument_key.h"\n'
    yield f"namespace skerrow::argument_keys::{command.name} {{\n"
    for one in command.arguments:
        yield f"inline constexpr core::ArgumentKey {one.key}{{{string(one.key)}}};"
    yield f"\n}}  // namespace skerrow::argument_keys::{command.name}"


def kind_words_source():
    yield "// Made from the words of the dictionary's generator; changes here are lost."
    yield '#include "scripting/dictionary/kind_words.h"\n'
    yield "namespace skerrow::scripting {\n"
    yield "std::span<const KindWords> kindWords() noexcept {"
    yield "  static constexpr KindWords kWords[] = {"
    for name, (one, many) in KIND_WORDS.items():
        yield f"      {{Kinds::{name}, {string(one)}, {string(many)}}},"
    yield "  };\n  return kWords;\n}\n"
    yield "}  // namespace skerrow::scripting"


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
    parser.add_argument("--kind-words", type=Path)
    parser.add_argument("--namespace-function")
    parser.add_argument("--list-commands", action="store_true", help="print the names, write nothing")
    options = parser.parse_args()
    try:
        tables = Tables(read(options.definition))
    except Malformed as problem:
        sys.exit(f"{options.definition}: {problem}")
    if options.list_commands:
        print("\n".join(one.name for one in tables.commands))
        return
    function = options.namespace_function
    if options.tables:
        write_if_changed(options.tables, tables.source(function))
    if options.classes:
        write_if_changed(options.classes, classes_source(tables.commands, function))
    if options.keys:
        for one in tables.commands:
            write_if_changed(options.keys / f"{one.name}.h", keys_header(one))
    if options.kind_words:
        write_if_changed(options.kind_words, kind_words_source())


if __name__ == "__main__":
    main()
