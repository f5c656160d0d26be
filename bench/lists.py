"""The list and record commands: beside Python, and at growing sizes."""

import os
import random
import subprocess

from making import event, growthTable, rows, texts

SORT_PLAIN = 0x61E56531
SORT_LOCALIZED = 0x61E56532
SORT_CASE_INSENSITIVE = 0x61E56533
SORT_CASE_INSENSITIVE_LOCALIZED = 0x61E56534
SORT_STANDARD = 0x61E56535
MERGE_COMBINE_AND_JOIN = 0x68E56532

# Python programs that load a file of JSON, do something with `items`, and write it again.
IN_PYTHON = """\
import json, locale, re, sys
locale.setlocale(locale.LC_ALL, "")
items = json.load(open(sys.argv[1], encoding="utf-8"))
{}
json.dump(items, sys.stdout, ensure_ascii=False, separators=(",", ":"))
"""
SORTED = "items = sorted(items)"
SORTED_BY_STRXFRM = "items = sorted(items, key=locale.strxfrm)"
SORTED_BY_CASEFOLD = "items = sorted(items, key=lambda text: (text.casefold(), text))"
SORTED_NATURALLY = """\
digits = re.compile(r"(\\d+)")
items = sorted(items, key=lambda text: [int(part) if i & 1 else part.casefold()
                                        for i, part in enumerate(digits.split(text))])
"""
FILTERED = 'items = [item for item in items if item["age"] > 30 and item["name"].startswith("A")]'
SORTED_RECORDS = 'items = sorted(items, key=lambda item: (item["age"], locale.strxfrm(item["name"])))'
LOOKED_UP = """\
targets = set(json.load(open(sys.argv[2], encoding="utf-8")))
items = [i for i, item in enumerate(items, 1) if item in targets]
"""
SUMMARIZED = "items = [float(sum(items)), float(max(items)), float(min(items))]"
AGE_PATH = 'items = [item["age"] for item in items]'

WORDS = """apple Äpfel bread crème tea thé milk Käse onion piñata salt sugar Zucker rice pasta élan
    Anis basil Basil coffee Kaffee egg flour honey Ingwer jam naïve olive pepper Quark sage""".split()


def shortTexts(count=1_000_000):
    some = random.Random(3)
    return [f"{some.choice(WORDS)} {some.choice(WORDS)} {some.randrange(10_000_000)}"
            for _ in range(count)]


def people(count=1_000_000):
    some = random.Random(4)
    return [{"name": some.choice(WORDS).capitalize() + str(some.randrange(100_000)),
             "age": some.randrange(100)} for _ in range(count)]


def numbers(count):
    some = random.Random(5)
    return [some.randrange(1_000_000) for _ in range(count)]


# Each command on n items, with arguments of matching size.
GROWING = {
    "SKWMungeList, plain": lambda n: event(
        "SKWMungeList", shortTexts(n), listMungeOption=SORT_PLAIN),
    "SKWMungeList, localized": lambda n: event(
        "SKWMungeList", shortTexts(n), listMungeOption=SORT_LOCALIZED),
    "SKWMungeList, numbers, unique": lambda n: event("SKWMungeList", numbers(n), uniqueOption=True),
    "SKWMungeRecords, two labels": lambda n: event(
        "SKWMungeRecords", people(n // 2), recordKeys=["age", "name"]),
    "SKWMungeListOfLists, rows of 10": lambda n: event(
        "SKWMungeListOfLists", rows(n), listIndexes=[2, 1]),
    "SKWFilterLists, two conditions": lambda n: event(
        "SKWFilterLists", people(n // 2), predicateList='age > 30 AND name BEGINSWITH "A"'),
    "SKWLookInListFor, n / 100 texts": lambda n: event(
        "SKWLookInListFor", texts(n), matchingItems=texts(n // 100, n // 2)),
    "SKWSummarizeNumbers": lambda n: event("SKWSummarizeNumbers", numbers(n)),
    "SKWDoTrigOn": lambda n: event("SKWDoTrigOn", numbers(n), usingFunction="sin"),
    "SKWAllLabelsOfRecord": lambda n: event(
        "SKWAllLabelsOfRecord", dict(zip(texts(n // 2), texts(n // 2)))),
    "SKWAllLabelsOfRecord, values": lambda n: event(
        "SKWAllLabelsOfRecord", dict(zip(texts(n // 3), texts(n // 3))), forValues=texts(n // 3)),
    "SKWCompareRecord": lambda n: event(
        "SKWCompareRecord", dict(zip(texts(n // 4), numbers(n // 4))),
        toRecord=dict(zip(texts(n // 4, n // 8), numbers(n // 4)))),
    "SKWLinkValuesWithLabels": lambda n: event(
        "SKWLinkValuesWithLabels", numbers(n // 2), withLabels=texts(n // 2)),
    "SKWLinkValueListsWithLabels": lambda n: event(
        "SKWLinkValueListsWithLabels", rows(n), withLabels=texts(10)),
    "SKWRemoveEntriesFromRecord": lambda n: event(
        "SKWRemoveEntriesFromRecord", ["age"], inRecords=people(n // 2)),
    "SKWRemoveEntries…, n / 4 labels": lambda n: event(
        "SKWRemoveEntriesFromRecord", texts(n // 4),
        inRecords=[dict(zip(texts(n // 4), numbers(n // 4)))]),
    "SKWValueForLabel": lambda n: event("SKWValueForLabel", "age", inRecords=people(n // 2)),
    "SKWValueForLabel, nested": lambda n: event(
        "SKWValueForLabel", "age", inRecords=[{"a": people(n // 2)}], doRecursion=True),
    "SKWValuesForLabel": lambda n: event(
        "SKWValuesForLabel", ["age", "name"], inRecords=people(n // 2)),
    "SKWValueForKeyPathCommand, @sum": lambda n: event(
        "SKWValueForKeyPathCommand", "@sum.age", ofItem=people(n // 2)),
    "SKWValueForKeyPath…, distinct": lambda n: event(
        "SKWValueForKeyPathCommand", "@distinctUnionOfObjects.name", ofItem=people(n // 2)),
    "SKWMergeRecords, of two fields": lambda n: event(
        "SKWMergeRecords", people(n // 2), mergeType=MERGE_COMBINE_AND_JOIN),
    "SKWMergeRecords, two of n / 2 fields": lambda n: event(
        "SKWMergeRecords", [dict(zip(texts(n // 2), numbers(n // 2)))] * 2),
}


def useLocale(bench):
    """Gives both sides the locale en_US: made here, as a small Debian comes without it."""
    folder = bench.folder / "locales"
    folder.mkdir()
    subprocess.run(["localedef", "-i", "en_US", "-f", "UTF-8", folder / "en_US.UTF-8"], check=True)
    bench.environment |= {"LOCPATH": str(folder), "LC_ALL": "en_US.UTF-8"}


def cases(bench):
    useLocale(bench)

    def perform(command, file, *arguments):
        return [bench.skerrow, "perform", command, "--direct", f"@{file}", *arguments]

    def python(work, *files):
        return [bench.python, "-c", IN_PYTHON.format(work), *files]

    bench.table("case", "ours", "peer", "ratio")
    short = bench.data("short.json", lambda: [shortTexts()])

    def sort(name, option, work, limit, sameResult):
        bench.compare(name, perform("SKWMungeList", short, "--arguments",
                                    f'{{"listMungeOption": {option}}}'),
                      python(work, short), limit=limit, sameResult=sameResult)

    # The orders by language differ in detail: those of Python are the C library's.
    sort("sort 1,000,000 texts, plain; sorted", SORT_PLAIN, SORTED, 0.6, True)
    sort("the same, localized; strxfrm", SORT_LOCALIZED, SORTED_BY_STRXFRM, 0.5, False)
    sort("the same, ignoring case; strxfrm", SORT_CASE_INSENSITIVE_LOCALIZED, SORTED_BY_STRXFRM,
         0.5, False)
    sort("the same, no locale; casefold", SORT_CASE_INSENSITIVE, SORTED_BY_CASEFOLD, None, False)
    sort("the same, standard; natural sort key", SORT_STANDARD, SORTED_NATURALLY, 0.3, False)
    os.remove(short)

    persons = bench.data("people.json", lambda: [people()])
    bench.compare("filter 1,000,000 records; comprehension",
                  perform("SKWFilterLists", persons, "--arguments",
                          '{"predicateList": "age > 30 AND name BEGINSWITH \\"A\\""}'),
                  python(FILTERED, persons), limit=0.7)
    bench.compare("sort them by age, then name; two-part key",
                  perform("SKWMungeRecords", persons, "--arguments",
                          '{"recordKeys": ["age", "name"]}'),
                  python(SORTED_RECORDS, persons), sameResult=False)
    bench.compare("key path age of each; comprehension",
                  [bench.skerrow, "perform", "SKWValueForKeyPathCommand", "--direct", '"age"',
                   "--arguments", "@" + bench.data("ofItem.json", lambda: [{"ofItem": people()}])],
                  python(AGE_PATH, persons))
    os.remove(persons)
    os.remove(bench.folder / "ofItem.json")

    items = bench.data("items.json", lambda: [texts(1_000_000)])
    targets = texts(10_000, 995_000)
    bench.compare("look up 10,000 texts in 1,000,000; set",
                  perform("SKWLookInListFor", items, "--arguments",
                          "@" + bench.data("matching.json", lambda: [{"matchingItems": targets}])),
                  python(LOOKED_UP, items, bench.data("targets.json", lambda: [targets])))
    sums = bench.data("numbers.json", lambda: [numbers(1_000_000)])
    bench.compare("sum, maximum and minimum of 1,000,000", perform("SKWSummarizeNumbers", sums),
                  python(SUMMARIZED, sums))

    growthTable(bench, "command; time for an item", GROWING)
