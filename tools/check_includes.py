#!/usr/bin/env python3
"""Checks that includes point down: prints each include that must not be and exits with 1.

A room includes itself and rooms below it. Outside libraries are wrapped in one place each.
Headers include each other without cycles. Only the platform asks for the clock, the environment,
files and chance.
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
    ["scripting/dictionary"],
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

OWN_SYSTEM = "the system's platform"

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
    # Whatever a program starts gets its platform handed in.
    (
        OWN_SYSTEM,
        r"platform/(system_platform|byte_stream|machine_memory)\.h$",
        ["platform/", "cli/", "service/", "tests/", "bench/", "fuzz/"],
    ),
    ("files", r"(filesystem|fstream)$", ["platform/", "tests/", "bench/", "fuzz/"]),
]

# What only the platform and programs that try or measure us may do themselves: name, expression.
RESERVED_CALLS = [
    ("the clock", r"\b(system_clock|steady_clock|high_resolution_clock|utc_clock|file_clock)::now\b"),
    ("the clock", r"\b(gettimeofday|clock_gettime|g_get_real_time|g_get_monotonic_time)\s*\("),
    ("the clock", r"(?<!\w)(::|std::)time\s*\(|\btime\s*\(\s*(nullptr|NULL|0|&)"),
    ("the environment", r"\b(secure_getenv|getenv|setenv|putenv|g_getenv|g_setenv)\s*\("),
    ("the environment", r"\b(g_get_home_dir|g_get_user_name|g_get_tmp_dir|g_get_user_\w+_dir)\s*\("),
    ("files", r"\bstd::(filesystem|i?o?fstream|basic_i?o?fstream|fopen|remove|rename|tmpfile)\b"),
    ("files", r"(?<![\w.>:])(fopen|freopen|mkstemp|mkdtemp|g_file_\w+)\s*\("),
    ("chance", r"\b(std::random_device|std::rand|arc4random|g_random_\w+)\b"),
    ("processes", r"(?<![\w.>:])(system|popen|fork|execv\w*|posix_spawn\w*|g_spawn_\w+)\s*\("),
]
CALLERS = ["platform/", "tests/", "bench/", "fuzz/"]
# The exceptions, each with its reason.
EXCEPTIONS = {
    # Below the platform: the number of its own that each process draws for its hashes.
    "values/hash.cpp": ["chance", "the clock"],
    # Waits for microseconds; asking an interface would take a good part of them.
    "core/spin_wait.h": ["the clock"],
}

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
        if (quote == "<" or name == OWN_SYSTEM) and re.match(headers, header) and not source.startswith(tuple(places)):
            yield f"only {' and '.join(places)} may include {name} ({header})"


COMMENT_OR_TEXT = re.compile(r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"', re.DOTALL)


def withoutCommentsAndTexts(code):
    """The code with blanks for comments and texts, and its lines where they were."""
    return COMMENT_OR_TEXT.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), code)


def problemsOfCalls(source, text):
    """The calls that belong to the platform, as (line, sentence) pairs."""
    if source.startswith(tuple(CALLERS)):
        return
    code = withoutCommentsAndTexts(text)
    for name, expression in RESERVED_CALLS:
        if name in EXCEPTIONS.get(source, []):
            continue
        for match in re.finditer(expression, code):
            line = code.count("\n", 0, match.start()) + 1
            yield line, f"only platform/ may ask for {name} ({match.group().strip(' (')})"


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
            for line, problem in problemsOfCalls(source, text):
                yield f"{source}:{line}: {problem}"
    for cycle in cycles(graph):
        yield f"{cycle[0]}: includes itself: {' -> '.join(cycle)}"


if __name__ == "__main__":
    found = list(problems(Path(__file__).resolve().parent.parent))
    print("\n".join(found), end="\n" if found else "")
    sys.exit(1 if found else 0)
