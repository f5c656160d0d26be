"""What the files of cases make their data with."""

# From 10,000 to 1,000,000 items the values outgrow the processor's caches and all memory is new to
# the process: linear work was measured at 1.2 to 1.7 times the time for an item. Work that grows
# with the square would take 100 times, so 3 tells them apart on a busy machine too.
GROWTH_LIMIT = 3.0


def texts(count, first=0):
    """Different texts, in no order."""
    return [f"item {i * 7919 % 10_000_019}" for i in range(first, first + count)]


def rows(count, length=10):
    return [texts(length, first) for first in range(0, count, length)]


def event(command, direct, **arguments):
    return {"command": command, "direct": direct, "arguments": arguments}


def growthTable(bench, what, growing):
    """A row for each of the growing events, of which each is made for a number of items."""
    bench.table(f"{what + ', of':<37} {'10,000':>12}", "100,000", "1,000,000", "growth")
    for name, eventFor in growing.items():
        bench.growth(name, eventFor, GROWTH_LIMIT)
