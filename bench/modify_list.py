"""Modify list: beside Python and jq, at growing sizes, and as a stream of events."""

import random

from making import event, growthTable, rows, texts

UNIQUE_IN_PYTHON = """\
import json, sys
json.dump(list(dict.fromkeys(json.load(open(sys.argv[1], encoding="utf-8")))), sys.stdout)
"""
# The same with one call that makes the whole text at once.
UNIQUE_IN_PYTHON_AT_ONCE = """\
import json, sys
print(json.dumps(list(dict.fromkeys(json.load(open(sys.argv[1], encoding="utf-8"))))))
"""


def everySecond(items, other):
    return [item if i % 2 else other for i, item in enumerate(items)]


# Each change with a list of n items and arguments of matching size.
CHANGES = {
    "addingPadding": lambda n: ([texts(i % 10 + 1, i) for i in range(n // 10)], {"addingPadding": "-"}),
    "swapColsAndRows": lambda n: (rows(n), {"swapColsAndRows": True}),
    "deletingIndexes, half of the items": lambda n: (
        texts(n), {"deletingIndexes": list(range(-1, -n, -2))}),
    "flattening": lambda n: (rows(n), {"flattening": True}),
    "fullFlattening": lambda n: ([[row[:5], [row[5:]]] for row in rows(n)], {"fullFlattening": True}),
    "groupingEvery 10": lambda n: (texts(n), {"groupingEvery": 10}),
    "insertingInOrder": lambda n: (rows(n), {"insertingInOrder": texts(n // 10), "beforeIndex": 5}),
    "insertingItem in the middle": lambda n: (texts(n), {"insertingItem": "new", "beforeIndex": n // 2}),
    "insertingItems, as many": lambda n: (
        texts(n), {"insertingItems": texts(n, n), "beforeIndex": n // 2}),
    "intersectingWithList, as long": lambda n: (texts(n), {"intersectingWithList": texts(n, n // 2)}),
    "makingUnique, half repeated": lambda n: (texts(n // 2) * 2, {"makingUnique": True}),
    "mergingIndexes": lambda n: (texts(n), {"mergingIndexes": [1, 2, ", "]}),
    "movingIndex, first to last": lambda n: (texts(n), {"movingIndex": 1, "beforeIndex": n + 1}),
    "removingBlanks, half blank": lambda n: (everySecond(texts(n), ""), {"removingBlanks": True}),
    "replacingNullsWith, half missing": lambda n: (
        everySecond(texts(n), None), {"replacingNullsWith": "-"}),
    "subtractingList, as long": lambda n: (texts(n), {"subtractingList": texts(n, n // 2)}),
    "swappingIndexes": lambda n: (texts(n), {"swappingIndexes": [1, -1]}),
    "trimmingBlanks, half blank": lambda n: (texts(n // 2) + [""] * (n // 2), {"trimmingBlanks": True}),
    "xtraColsToRows": lambda n: (rows(n, n // 10), {"xtraColsToRows": True}),
    "reversingOrder": lambda n: (texts(n), {"reversingOrder": True}),
    "doSublists, reversingOrder": lambda n: (rows(n), {"doSublists": True, "reversingOrder": True}),
}


def modifyList(change):
    def eventFor(count):
        direct, arguments = change(count)
        return event("SKWModifyList", direct, **arguments)

    return eventFor


def repeatedTexts():
    some = random.Random(1)
    words = "apple Äpfel bread crème tea thé milk Käse onion piñata salt sugar".split()
    different = [f"{some.choice(words)} {some.choice(words)} {i}" for i in range(500_000)]
    yield some.sample(different * 2, 1_000_000)


def square():
    some = random.Random(2)
    yield [[some.randrange(1_000_000) for _ in range(1000)] for _ in range(1000)]


def cases(bench):
    perform = [bench.skerrow, "perform", "SKWModifyList"]

    bench.table("case", "ours", "peer", "ratio")
    bench.compare("start, one item; python3 -c pass",
                  [*perform, "--direct", "[1]", "--arguments", '{"reversingOrder": true}'],
                  [bench.python, "-c", "pass"], limit=0.5, runs=100, sameResult=False)
    repeated = bench.data("repeated.json", repeatedTexts)
    unique = [*perform, "--direct", f"@{repeated}", "--arguments", '{"makingUnique": true}']
    bench.compare("makingUnique, 1,000,000 texts; python3 json.dump", unique,
                  [bench.python, "-c", UNIQUE_IN_PYTHON, repeated], limit=0.5, memoryLimit=1.0)
    bench.compare("makingUnique, 1,000,000 texts; python3 json.dumps", unique,
                  [bench.python, "-c", UNIQUE_IN_PYTHON_AT_ONCE, repeated])
    matrix = bench.data("square.json", square)
    bench.compare("swapColsAndRows, 1,000 × 1,000; jq transpose",
                  [*perform, "--direct", f"@{matrix}", "--arguments", '{"swapColsAndRows": true}'],
                  [bench.jq, "-c", "transpose", matrix], limit=0.5)
    bench.rate("100,000 small events in one process",
               event("SKWModifyList", [1, 2, 3], reversingOrder=True), 100_000)

    growthTable(bench, "change; time for an item",
                {name: modifyList(change) for name, change in CHANGES.items()})
