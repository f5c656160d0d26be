"""The text commands: beside Python and a bare ICU loop, and at growing sizes."""

import os
import random
import string

from making import event, growthTable

PATTERN = r"\b[a-z]+\d+\b"

UPPER_CASE = 0x62E56531
LOWER_CASE = 0x62E56532
CAPITALIZE_WORDS = 0x62E56533
TRIM_WHITESPACE = 0x62E56534
PAD_TO_LENGTH = 0x62E56535
ENCODE_URL = 0x62E56536
ENCODE_URL_RESERVED = 0x62E56537
DECODE_URL = 0x62E56538
ENCODE_XML_ENTITIES = 0x62E56539
MD5_DIGEST = 0x62E56561
ICU_TRANSFORM = 0x62E56562
PARSE_CSV = 0x62E56563
SMART_QUOTES = 0x62E56564
STRAIGHT_QUOTES = 0x62E56565
DECODE_HEX_ESCAPES = 0x62E56566
DECODE_XML_ENTITIES = 0x62E56567
ESCAPE_NON_ASCII_DECIMAL = 0x62E56568
ESCAPE_NON_ASCII_HEX = 0x62E56569
STANDARDIZE_PATH = 0x62E5656A
PARSE_TSV = 0x62E5656B
COLLAPSE_SPACES = 0x62E5656C
REMOVE_BLANK_LINES = 0x62E5656D

# Python programs that read a file, make `result` of its `text`, and write it as JSON.
IN_PYTHON = """\
import csv, io, json, re, sys
text = open(sys.argv[1], encoding="utf-8", newline="").read()
{}
json.dump(result, sys.stdout, ensure_ascii=False, separators=(",", ":"))
"""
COLLAPSED = """\
result = re.sub(r"(?m)^ +", "", text)
result = re.sub(r"(?m) +$", "", result)
result = re.sub(r"  +", " ", result)
"""
CSV_ROWS = 'result = list(csv.reader(open(sys.argv[1], encoding="utf-8", newline="")))'

FILE_SIZE = 50_000_000


def vocabulary(some):
    words = ["".join(some.choices(string.ascii_lowercase, k=some.randint(2, 10)))
             for _ in range(20_000)]
    accented = [word[:-1] + some.choice("éèüöäñçß") for word in words[:2000]]
    return words + accented + [word.capitalize() for word in words[:4000]]


def prose(size=FILE_SIZE):
    """Lines of words, one in twenty with digits at its end; some spaces too many."""
    some = random.Random(6)
    words = vocabulary(some)
    while size > 0:
        line = some.choices(words, k=some.randint(6, 18))
        line = [word + str(some.randrange(100_000)) if some.random() < 0.05 else word
                for word in line]
        text = (some.choice(["", "", "  "]) + " ".join(line) + some.choice(["", "   "])).replace(
            " a", "  a")
        size -= len(text.encode()) + 1
        yield text


def table(size=FILE_SIZE):
    """Lines of CSV that both dialects read alike: nine fields, some of them quoted."""
    some = random.Random(7)
    words = vocabulary(some)
    number = 0
    while size > 0:
        number += 1
        note = " ".join(some.choices(words, k=4))
        note = some.choice([note, note, note, f'"{note}, {note}"', f'"said ""{note}"""'])
        fields = [str(number), *some.choices(words, k=4), "2024-03-01",
                  str(some.randrange(10_000) / 100), note, "yes"]
        line = ",".join(fields)
        size -= len(line.encode()) + 1
        yield line


def textOf(count):
    """A text of about that many characters."""
    return "\n".join(prose(count))[:count]


def munge(text, *codes, **arguments):
    return {"command": "SKWMungeText", "direct": text,
            "arguments": {"stringMungeOption": list(codes), **arguments}}


# Every code and command on a text of n characters.
GROWING = {
    "upperCase": lambda n: munge(textOf(n), UPPER_CASE),
    "lowerCase": lambda n: munge(textOf(n), LOWER_CASE),
    "capitalizeWords": lambda n: munge(textOf(n), CAPITALIZE_WORDS),
    "trimWhitespace": lambda n: munge(" " * (n // 2) + textOf(n // 2), TRIM_WHITESPACE),
    "padToLength": lambda n: munge("", PAD_TO_LENGTH, padLength=n, padString="xyz"),
    "encodeURL": lambda n: munge(textOf(n), ENCODE_URL),
    "encodeURLReserved": lambda n: munge(textOf(n), ENCODE_URL_RESERVED),
    "decodeURL": lambda n: munge("%C3%A9 " * (n // 7), DECODE_URL),
    "encodeXMLEntities": lambda n: munge('<"&' * (n // 3), ENCODE_XML_ENTITIES),
    "decodeXMLEntities": lambda n: munge("&lt;&#233;" * (n // 10), DECODE_XML_ENTITIES),
    "md5Digest": lambda n: munge(textOf(n), MD5_DIGEST),
    "icuTransform, Latin-Cyrillic": lambda n: munge(
        textOf(n), ICU_TRANSFORM, transformName="Latin-Cyrillic"),
    "icuTransform, no line ends": lambda n: munge(
        textOf(n).replace("\n", "").replace(" ", ""), ICU_TRANSFORM, transformName="Latin-ASCII"),
    "decodeHexEscapes": lambda n: munge("\\u00e9 " * (n // 7), DECODE_HEX_ESCAPES),
    "escapeNonASCIIDecimal": lambda n: munge("é" * n, ESCAPE_NON_ASCII_DECIMAL),
    "escapeNonASCIIHex": lambda n: munge(textOf(n), ESCAPE_NON_ASCII_HEX),
    "parseCSV": lambda n: munge("\n".join(table(n)), PARSE_CSV),
    "parseCSV, one quoted field": lambda n: munge('"' + textOf(n).replace('"', ""), PARSE_CSV),
    "parseTSV": lambda n: munge(textOf(n).replace(" ", "\t"), PARSE_TSV),
    "smartQuotes": lambda n: munge("'90s \"it's\" " * (n // 12), SMART_QUOTES),
    "straightQuotes": lambda n: munge("’90s “it’s” " * (n // 12), STRAIGHT_QUOTES),
    "standardizePath": lambda n: munge("/" + "a/../b/./" * (n // 9), STANDARDIZE_PATH),
    "collapseSpaces": lambda n: munge(textOf(n), COLLAPSE_SPACES),
    "collapseSpaces, only spaces": lambda n: munge("x" + " " * n + "x", COLLAPSE_SPACES),
    "removeBlankLines": lambda n: munge("text\n \t\n" * (n // 8), REMOVE_BLANK_LINES),
    "removeBlankLines, only blanks": lambda n: munge("x" + " " * n + "x", REMOVE_BLANK_LINES),
    "SKWFindIt": lambda n: event("SKWFindIt", PATTERN, stringToSearch=textOf(n)),
    "SKWFindIt, all groups": lambda n: event(
        "SKWFindIt", r"\b([a-z]+)(\d+)\b", stringToSearch=textOf(n), captureNumber=-1),
    "SKWFindIt, between the matches": lambda n: event(
        "SKWFindIt", PATTERN, stringToSearch=textOf(n), invertFlag=True),
    "SKWFindIt, replacing": lambda n: event(
        "SKWFindIt", r"([a-z]+)(\d+)", stringToSearch=textOf(n), replacementPattern="$2-$1"),
    "SKWFindIt, n / 10 short texts": lambda n: event(
        "SKWFindIt", r"\d+", stringToSearch=["abc 12345x"] * (n // 10)),
    "SKWReplaceString": lambda n: event(
        "SKWReplaceString", "THE", stringToSearch=textOf(n), replacementPattern="that"),
    "SKWReplaceString, no diacriticals": lambda n: event(
        "SKWReplaceString", "é", stringToSearch="eé" * (n // 2), replacementPattern="?",
        diacriticalFlag=True),
    "SKWReplaceString, last, not there": lambda n: event(
        "SKWReplaceString", "aab", stringToSearch="a" * n, replacementPattern="?", onlyLast=True),
    "SKWSplitString": lambda n: event("SKWSplitString", textOf(n), splittingString=" A"),
    "SKWSplitString, by character": lambda n: event(
        "SKWSplitString", textOf(n), splittingString=" .,;", byCharacter=True),
    "SKWJoinStrings": lambda n: event(
        "SKWJoinStrings", textOf(n).split(" "), insertingString=", "),
    "SKWJoinStrings, columns": lambda n: event(
        "SKWJoinStrings", [["abcd", "efgh", "ij"]] * (n // 10), insertingString=", "),
    "SKWCleanString": lambda n: event(
        "SKWCleanString", textOf(n), LFLikeCR=True, tabsLikeSpaces=True, tagsRemoved=True,
        dashesSpaced=False, endashesBeforeNumerals=True, emptyLines=False),
    "SKWConvertStrings, reals": lambda n: event(
        "SKWConvertStrings", ["1234567.25"] * (n // 10), asReals=True),
    "SKWConvertStrings, dates": lambda n: event(
        "SKWConvertStrings", ["2024-03-01"] * (n // 10), formatString="yyyy-MM-dd"),
}


def cases(bench):
    def perform(command, direct, arguments="{}"):
        return [bench.skerrow, "perform", command, "--direct", direct, "--arguments", arguments]

    def python(work, file):
        return [bench.python, "-c", IN_PYTHON.format(work), file]

    def mungeFile(file, code):
        return perform("SKWMungeText", f'{{"$file": "{file}"}}', f'{{"stringMungeOption": {code}}}')

    bench.table("case", "ours", "peer", "ratio")
    file = bench.data("prose.txt", prose)
    bench.compareInside("find all in 50 MB, matching; bare ICU", "find_all", [PATTERN, file],
                        limit=1.1)
    bench.compareInside("the same twice at once; one after the other", "find_at_once",
                        [PATTERN, file])
    bench.compare("find all, the whole command; python3 re",
                  perform("SKWFindIt", '"' + PATTERN.replace("\\", "\\\\") + '"',
                          f'{{"stringToSearch": {{"$file": "{file}"}}}}'),
                  python(f"result = re.findall(r'{PATTERN}', text)", file))
    bench.compare("upper-case 50 MB; upper", mungeFile(file, UPPER_CASE),
                  python("result = text.upper()", file), limit=1.0)
    bench.compare("trim 50 MB; strip", mungeFile(file, TRIM_WHITESPACE),
                  python("result = text.strip()", file), limit=1.0)
    bench.compare("collapse spaces in 50 MB; three times re.sub", mungeFile(file, COLLAPSE_SPACES),
                  python(COLLAPSED, file), limit=1.0)
    bench.compare("split 50 MB at spaces; split",
                  perform("SKWFindIt", '" "',
                          f'{{"stringToSearch": {{"$file": "{file}"}}, "invertFlag": true}}'),
                  python('result = text.split(" ")', file))
    os.remove(file)
    file = bench.data("table.csv", table)
    bench.compare("50 MB of CSV to rows; csv.reader", mungeFile(file, PARSE_CSV),
                  python(CSV_ROWS, file), limit=0.5)
    os.remove(file)
    bench.rate("100,000 times the same pattern, in one process",
               event("SKWFindIt", r"\d+", stringToSearch="a1b22"), 100_000, limit=30_000)

    growthTable(bench, "change; time for a character", GROWING)
