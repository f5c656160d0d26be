#!/usr/bin/env python3
"""Checks that includes point down: prints each include that must not be and exits with 1.

A room includes itself and rooms below it. Outside libraries are wrapped in one place each.
Headers include each other without cycles.
"""

import re
import sys
from pathlib import Path

# The rooms, highest first. Rooms in one row stand beside each other. A room inside of another one
# has a line of its own; the file of a room that is not named here belongs to the one around it.
ROWS = [
    ["cli", "service"],
    ["bus", "osa", "desktop"],
    ["app", "text", "lists", "files"],
    ["text/regex"],
    ["scripting/json"],
    ["scripting"],
    ["core"],
    ["foundation/predicate"],
    ["foundation/key_path"],
    ["foundation/regex", "foundation/url", "foundation/date"],
    ["foundation/collation"],
    ["foundation/number", "foundation/encoding"],
    ["foundation/text"],
    ["platform"],
    ["values"],
    ["work"],
]

# Folders of headers that are made while building, and the room that they belong to.
GENERATED = {"argument_keys": "scripting"}

# What only some places may include: its name, its headers, the places (path prefixes).
RESERVED = [
    # Tests and benchmarks hold what we make of ICU against ICU itself.
    ("ICU", r"unicode/", ["foundation/", "tests/", "fuzz/", "bench/"]),
    ("Qt", r"Q[A-Z]|Qt|q[a-z]+\.h$", ["desktop/", "tests/desktop/"]),
    ("D-Bus", r"systemd/sd-bus|dbus/|gio/gdbus|giomm/dbus", ["bus/", "tests/bus/"]),
    (
        "the operating system",
        r"(sys|linux|netinet|arpa)/"
        r"|(unistd|fcntl|poll|dirent|dlfcn|pwd|grp|spawn|termios|sched)\.h$|glib-unix\.h$",
        ["platform/", "tests/", "bench/"],
    ),
]

OTHER_FOLDERS = ["tests", "bench", "fuzz"]  # may include every room
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
LEVEL = {room: level for level, row in enumerate(ROWS) for room in row}


def roomOf(path):
    """The room in which a file stands: the innermost folder around it that is one."""
    folders = path.split("/")[:-1]
    if folders and folders[0] in GENERATED:
        return GENERATED[folders[0]]
    while len(folders) > 1 and "/".join(folders) not in LEVEL:
        folders.pop()
    return "/".join(folders)


def mayInclude(room, other):
    """Whether the room `room` may include headers of the room `other`."""
    if room == other or room.split("/")[0] in OTHER_FOLDERS:
        return True
    return other in LEVEL and LEVEL[other] > LEVEL.get(room, -1)


def problemsOfInclude(source, quote, header, root):
    """What is wrong with one include line, as sentences."""
    room, other = roomOf(source), roomOf(header)
    isGenerated = header.split("/")[0] in GENERATED
    if quote == '"' and not isGenerated and not (root / header).is_file():
        yield f'"{header}" is not there (write paths from the top folder)'
    elif (isGenerated or (root / header).is_file()) and not mayInclude(room, other):
        yield f"{room} must not include {other} ({header})"
    for name, headers, places in RESERVED:
        if quote == "<" and re.match(headers, header) and not source.startswith(tuple(places)):
            yield f"only {' and '.join(places)} may include {name} ({header})"


def cycles(graph):
    """Every include cycle, as the list of files on it; each is found once."""
    done = set()

    def visit(file, path):
        if file in path:
            yield path[path.index(file):] + [file]
        elif file not in done:
            for header in graph.get(file, []):
                yield from visit(header, path + [file])
            done.add(file)

    for file in sorted(graph):
        yield from visit(file, [])


def problems(root):
    graph = {}
    for folder in sorted({room.split("/")[0] for room in LEVEL} | set(OTHER_FOLDERS)):
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            source = path.relative_to(root).as_posix()
            text = path.read_text()
            graph[source] = []
            for match in INCLUDE.finditer(text):
                quote, header = match.groups()
                graph[source].append(header)
                line = text.count("\n", 0, match.start(1)) + 1
                for problem in problemsOfInclude(source, quote, header, root):
                    yield f"{source}:{line}: {problem}"
    for cycle in cycles(graph):
        yield f"{cycle[0]}: includes itself: {' -> '.join(cycle)}"


if __name__ == "__main__":
    found = list(problems(Path(__file__).resolve().parent.parent))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)
