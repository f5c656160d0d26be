#!/usr/bin/env python3
"""lint.py BUILD JOBS ROOM...: clang-tidy over the sources of the rooms and the headers that they
include. BUILD holds a compile_commands.json. Prints findings only, each once.

Most of the time goes into headers of libraries, again for every source. So the sources of a room
are looked at as one, about a dozen at a time. A name that two of them give to different things gets
another ending in each; where that does not help, a source is looked at alone.
"""

import json
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
MOST_TOGETHER = 12  # more would keep the other processors waiting at the end

# What clang-tidy tells of itself.
NO_FINDING = re.compile(r"^(\d+ warnings? generated|\d+ warnings? treated|Suppressed |Use -header-filter)")


class Linter:
    def __init__(self, build, rooms):
        self.copies = build / "lint"
        self.ours = f"^({re.escape(str(ROOT))}|{re.escape(str(self.copies))})/({'|'.join(rooms)})/"
        self.commands = {
            Path(entry["file"]): (entry["directory"], flagsOf(entry))
            for entry in json.loads((build / "compile_commands.json").read_text())
            if re.match(self.ours, entry["file"])
        }

    def groups(self):
        """The sources to look at as one, room by room."""
        rooms = {}
        for source in sorted(self.commands):
            rooms.setdefault(source.relative_to(ROOT).parts[0], []).append(source)
        for sources in rooms.values():
            count = -(-len(sources) // MOST_TOGETHER)
            size = -(-len(sources) // count)
            yield from (sources[i : i + size] for i in range(0, len(sources), size))

    def findings(self, sources):
        """What clang-tidy says of these sources, and whether it was content."""
        together, file = self.together(sources)
        outcomes = [self.findingsIn(file, together[0])] if together else []
        outcomes += [self.findingsIn(source, source) for source in sources if source not in together]
        return "".join(text for text, _ in outcomes), all(content for _, content in outcomes)

    def together(self, sources):
        """Those of the sources that compile as one, and a file that includes copies of them."""
        file = self.copies / sources[0].relative_to(ROOT).with_suffix(".together.cpp")
        names, together = set(), sources
        while len(together) > 1:
            copies = [self.copied(source, i, names) for i, source in enumerate(together)]
            file.write_text("".join(f'#include "{copy}"  // NOLINT\n' for copy in copies))
            errors = self.errors(file, together[0])
            if not errors:
                return together, file
            newNames = set(re.findall(r"error: redefinition of '(\w+)'", errors)) - names
            names |= newNames
            if not newNames:
                inError = {copy for copy in copies if f"{copy}:" in errors} or set(copies)
                together = [one for one, copy in zip(together, copies) if copy not in inError]
        return [], file

    def copied(self, source, number, names):
        """A copy of the source, in which these names end with its number. Members keep theirs."""
        text = source.read_text()
        for name in names:
            text = re.sub(rf"(?<![\w.>:\"/]){name}\b", f"{name}_{number}", text)
        copy = self.copies / source.relative_to(ROOT)
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_text(text)
        return copy

    def errors(self, file, source):
        directory, flags = self.commands[source]
        command = ["clang++-14", *flags, "-w", "-fsyntax-only", "-ferror-limit=0", file]
        return subprocess.run(command, cwd=directory, text=True, capture_output=True).stderr

    def findingsIn(self, file, source):
        directory, flags = self.commands[source]
        command = ["clang-tidy-14", "-quiet", f"-config-file={ROOT / '.clang-tidy'}"]
        command += [f"-header-filter={self.ours}", file, "--", *flags]
        run = subprocess.run(
            command, cwd=directory, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT
        )
        return run.stdout.replace(str(self.copies), str(ROOT)), run.returncode == 0


def flagsOf(entry):
    """The flags that say how a source is read. Which warnings g++ gives is another matter."""
    words = shlex.split(entry["command"])
    flags = []
    for i, word in enumerate(words):
        if word == "-isystem":
            flags += words[i : i + 2]
        elif word.startswith(("-I", "-D", "-std=")):
            flags.append(word)
    return flags


def paragraphs(text):
    """Findings with the lines that belong to them."""
    found = []
    for line in text.splitlines(keepends=True):
        if NO_FINDING.match(line):
            continue
        if re.match(r"\S+:\d+:\d+: (warning|error):", line) or not found:
            found.append("")
        found[-1] += line
    return found


def main():
    build, jobs, rooms = Path(sys.argv[1]).resolve(), int(sys.argv[2]), sys.argv[3:]
    linter = Linter(build, rooms)
    groups = sorted(linter.groups(), key=len, reverse=True)
    seen, isContent = set(), True
    with ThreadPoolExecutor(jobs) as pool:
        for text, wasContent in pool.map(linter.findings, groups):
            isContent = isContent and wasContent
            for finding in paragraphs(text):
                if finding not in seen:
                    print(finding, end="", flush=True)
                seen.add(finding)
    sys.exit(0 if isContent else 1)


if __name__ == "__main__":
    main()
