#!/usr/bin/env python3
"""make_command_reference.py [--check]: writes docs/commands.md from the scripting dictionary.

With --check nothing is written: it exits with 1 when the page is not what the dictionary says.
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DICTIONARY = ROOT / "scripting/Skerrow.sdef"
PAGE = ROOT / "docs/commands.md"

sys.path.insert(0, str(ROOT / "scripting/dictionary"))
sys.dont_write_bytecode = True
from definition import Malformed, read  # noqa: E402

INTRODUCTION = """\
# Commands

<!-- Made from scripting/Skerrow.sdef by “make docs”; changes here are lost. -->

Every command, with its arguments. The same stands in `skerrow commands NAME`. Values are written
as [typed JSON](typed-json.md). What does not say “required” may be left out.
"""


def kinds(type):
    """“an integer”, “a text, or a list of texts”: what an argument takes or gives."""
    if type.enumeration is None:
        return type.in_words()
    link = f"[{type.enumeration.words}](#{anchor(type.enumeration.words)})"
    return type.in_words(f"one of {link}", link)


def anchor(heading):
    return heading.lower().replace(" ", "-")


def cell(text):
    return text.replace("|", "\\|").replace("<", "&lt;")


def sentence(clause):
    return clause[:1].upper() + clause[1:] + ("" if clause.endswith(".") else ".")


def table(heads, rows):
    yield f"| {' | '.join(heads)} |"
    yield f"|{'---|' * len(heads)}"
    for row in rows:
        yield f"| {' | '.join(map(cell, row))} |"
    yield ""


def required(argument):
    return "" if argument.is_optional else " (required)"


def commandLines(command):
    yield f"### {command.words}\n"
    yield f"`{command.name}`. {sentence(command.description)}\n"
    if command.direct is not None:
        text = f"{kinds(command.direct.type)}{required(command.direct)}: {command.direct.description}."
        yield f"- Direct parameter: {cell(text)}"
    if command.result is not None:
        yield f"- Result: {cell(f'{kinds(command.result.type)}: {command.result.description}.')}"
    yield ""
    if command.arguments:
        yield from table(
            ("Argument", "In words", "Takes", "What it does"),
            [(f"`{one.key}`", one.words, kinds(one.type) + required(one), sentence(one.description))
             for one in command.arguments])


def enumerationLines(enumeration):
    yield f"### {enumeration.words}\n"
    yield from table(
        ("Constant", "Code", "Meaning"),
        [(one.words, f"`{one.code}`", sentence(one.description)) for one in enumeration.enumerators])


ACCESS = {"r": "read", "w": "set", "rw": "read, set"}


def classLines(one):
    yield f"### {one.words}\n"
    yield f"`{one.name}`. {sentence(one.description)}\n"
    if one.properties:
        yield from table(
            ("Property", "In words", "Is", "Can be", "What it is"),
            [(f"`{each.key}`", each.words, kinds(each.type), ACCESS[each.access],
              sentence(each.description)) for each in one.properties])
    if one.elements:
        yield from table(
            ("Elements", "Of class", "Named by"),
            [(f"`{each.key}`", f"[{each.of_class}](#{anchor(each.of_class)})",
              ", ".join(each.accessors)) for each in one.elements])


def page(definition):
    yield INTRODUCTION
    for suite in definition.suites:
        yield f"## {suite.words}\n"
        yield f"{sentence(suite.description)}\n"
        for command in suite.commands:
            yield from commandLines(command)
        for one in suite.classes:
            yield from classLines(one)
        for enumeration in suite.enumerations:
            yield from enumerationLines(enumeration)


def main(arguments):
    try:
        text = "\n".join(page(read(DICTIONARY))).rstrip("\n") + "\n"
    except Malformed as problem:
        sys.exit(f"{DICTIONARY}: {problem}")
    if arguments == ["--check"]:
        if not PAGE.exists() or PAGE.read_text(encoding="utf-8") != text:
            sys.exit("docs/commands.md is not what scripting/Skerrow.sdef says; please run “make docs”")
    elif arguments:
        sys.exit(__doc__)
    else:
        PAGE.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(sys.argv[1:])
