#!/usr/bin/env python3
"""show_list.py FILE: prints a list of rows in JSON as numbered rows with aligned columns."""

import json
import sys

sys.stdout.reconfigure(encoding="utf-8")


def text(value):
    return "(missing)" if value is None else str(value)


with open(sys.argv[1], encoding="utf-8") as file:
    rows = json.load(file)
columns = [[row[i] for row in rows if i < len(row)] for i in range(max(map(len, rows)))]
widths = [max(map(len, map(text, column))) for column in columns]
aligned = [str.ljust if any(isinstance(value, str) for value in column) else str.rjust
           for column in columns]
for number, row in enumerate(rows, 1):
    cells = [align(text(value), width) for value, width, align in zip(row, widths, aligned)]
    print(f"  {number:>2}  {'   '.join(cells) or '(empty)'}".rstrip())
