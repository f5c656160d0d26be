#!/usr/bin/env python3
"""make_command_reference.py [--check]: writes docs/commands.md from the scripting dictionary.

With --check nothing is written: it exits with 1 when the page is not what the dictionary says.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
DICTIONARY = ROOT / "scripting/Skerrow.sdef"
PAGE = ROOT / "docs/commands.md"

sys.path.insert(0, str(DICTIONARY.parent))
from generate_dictionary import Malformed, attribute, cocoa, types_of  # noqa: E402

# A type of the definition as one value and as several, in the words of “skerrow commands”.
WORDS = {
    "any": ("any value", "values"),
    "text": ("a text", "texts"),
    "integer": ("an integer", "integers"),
    "real": ("a real number", "real numbers"),
    "number": ("an integer or a real number", "integers or real numbers"),
    "boolean": ("true or false", "booleans"),
    "date": ("a date", "dates"),
    "file": ("a file", "files"),
    "record": ("a record", "records"),
    "type": ("a class", "classes"),
    "raw data": ("raw data", "pieces of raw data"),
    "script": ("a script", "scripts"),
}

INTRODUCTION = """\
# Commands

<!-- Made from scripting/Skerrow.sdef by “make docs”; changes here are lost. -->

Every command, with its arguments. The same stands in `skerrow commands NAME`. Values are written
as [typed JSON](typed-json.md). An argument may be left out unless it says “required”.
"""


def kinds(element, enumerations):
    """“an integer”, “a text, or a list of texts”: what an element takes or gives."""
    single, items = [], []
    for name, isList in types_of(element):
        one, many = WORDS.get(name, (f"one of [{name}](#{anchor(name)})", f"[{name}](#{anchor(name)})"))
        if name not in WORDS and name not in enumerations:
            raise Malformed(f"there is no type “{name}”")
        (items if isList else single).append(many if isList else one)
    if items:
        single.append("a list" if items == ["values"] else f"a list of {' or '.join(items)}")
    return ", or ".join(single)


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


def commandLines(command, enumerations):
    yield f"### {attribute(command, 'name')}\n"
    yield f"`{cocoa(command, 'class')}`. {sentence(command.get('description', ''))}\n"
    for tag, words in (("direct-parameter", "Direct parameter"), ("result", "Result")):
        found = command.find(tag)
        if found is not None:
            text = f"{kinds(found, enumerations)}: {found.get('description', '')}."
            yield f"- {words}: {cell(text)}"
    yield ""
    parameters = command.findall("parameter")
    if parameters:
        yield from table(
            ("Argument", "In words", "Takes", "What it does"),
            [(f"`{cocoa(one, 'key')}`", attribute(one, "name"),
              kinds(one, enumerations) + ("" if one.get("optional") == "yes" else " (required)"),
              sentence(one.get("description", ""))) for one in parameters])


def enumerationLines(enumeration):
    yield f"### {attribute(enumeration, 'name')}\n"
    yield from table(
        ("Constant", "Code", "Meaning"),
        [(attribute(one, "name"), f"`{attribute(one, 'code')}`", sentence(one.get("description", "")))
         for one in enumeration.findall("enumerator")])


def page(root):
    enumerations = {attribute(one, "name"): one for one in root.iter("enumeration")}
    yield INTRODUCTION
    for suite in root.findall("suite"):
        yield f"## {attribute(suite, 'name')}\n"
        yield f"{sentence(suite.get('description', ''))}\n"
        for command in suite.findall("command"):
            yield from commandLines(command, enumerations)
        for enumeration in suite.findall("enumeration"):
            yield from enumerationLines(enumeration)


def main(arguments):
    try:
        text = "\n".join(page(ElementTree.parse(DICTIONARY).getroot())).rstrip("\n") + "\n"
    except (Malformed, ElementTree.ParseError, OSError) as problem:
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
