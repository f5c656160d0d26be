"""A scripting definition, read and checked: what the tables and the reference page are made from.

`read` gives a Definition, or raises Malformed with what is wrong in words for the person who wrote
the definition. Nothing here knows C++ or Markdown.
"""

import re
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass, field

# Kinds of values, as one value and as several: the only place where their words stand.
KIND_WORDS = {
    "any": ("any value", "values"),
    "text": ("a text", "texts"),
    "integer": ("an integer", "integers"),
    "real": ("a real number", "real numbers"),
    "boolean": ("true or false", "booleans"),
    "date": ("a date", "dates"),
    "file": ("a file", "files"),
    "list": ("a list", "lists"),
    "record": ("a record", "records"),
    "type": ("a class", "classes"),
    "enumeration": ("a constant", "constants"),
    "data": ("raw data", "pieces of raw data"),
    "script": ("a script", "scripts"),
    "reference": ("a reference", "references"),
    "point": ("a point", "points"),
    "rectangle": ("a rectangle", "rectangles"),
}

# A type's name in the definition, and the kinds that it stands for. Any other name is that of an
# enumeration or of a class.
TYPES = {
    "any": ["any"],
    "text": ["text"],
    "integer": ["integer"],
    "real": ["real"],
    "number": ["integer", "real"],
    "boolean": ["boolean"],
    "date": ["date"],
    "file": ["file"],
    "record": ["record"],
    "type": ["type"],
    "raw data": ["data"],
    "script": ["script"],
    "specifier": ["reference"],
    "point": ["point"],
    "rectangle": ["rectangle"],
}

# The number of the scripting layer for a required argument that is missing.
MISSING_ARGUMENT = -1715

ACCESS = ("r", "w", "rw")
ACCESSORS = ("index", "name", "id", "range", "relative", "test")

# Words of C++ that cannot be names there.
RESERVED = set(
    """alignas alignof and and_eq asm auto bitand bitor bool break case catch char char8_t char16_t
    char32_t class compl concept const consteval constexpr constinit const_cast continue co_await
    co_return co_yield decltype default delete do double dynamic_cast else enum explicit export
    extern false float for friend goto if inline int long mutable namespace new noexcept not not_eq
    nullptr operator or or_eq private protected public register reinterpret_cast requires return
    short signed sizeof static static_assert static_cast struct switch template this thread_local
    throw true try typedef typeid typename union unsigned using virtual void volatile wchar_t while
    xor xor_eq""".split()
)


class Malformed(Exception):
    """What is wrong with the definition, in words for the person who wrote it."""


@dataclass
class Enumerator:
    words: str
    code: str
    description: str


@dataclass
class Enumeration:
    words: str
    code: str
    enumerators: list


@dataclass
class Type:
    """What values something takes or gives."""

    single: list  # kinds
    items: list  # kinds of the items of a list
    enumeration: Enumeration | None
    of_class: str | None  # the words of the class of an object

    def in_words(self, constants="a constant", several="constants"):
        """“an integer”, “a text, or a list of texts”."""
        def words(kind, place):
            return (constants, several)[place] if kind == "enumeration" else KIND_WORDS[kind][place]

        parts = [" or ".join(words(kind, 0) for kind in self.single)] if self.single else []
        if self.items:
            items = " or ".join(words(kind, 1) for kind in self.items)
            parts.append(KIND_WORDS["list"][0] + ("" if "any" in self.items else f" of {items}"))
        return ", or ".join(parts)


@dataclass
class Argument:
    words: str  # empty for a direct parameter and a result
    code: str | None
    key: str
    type: Type
    is_optional: bool
    missing_number: int | None  # of the command, where it asks for the argument itself
    description: str


@dataclass
class Command:
    words: str
    code: str
    name: str  # of its class, or of an action of the application object
    is_action: bool
    description: str
    direct: Argument | None
    arguments: list
    result: Argument | None


@dataclass
class Property:
    words: str
    code: str
    key: str
    type: Type
    access: str
    description: str


@dataclass
class Element:
    of_class: str
    key: str
    access: str
    accessors: list


@dataclass
class Class:
    words: str
    plural: str
    code: str
    name: str
    base: str | None
    description: str
    properties: list
    elements: list


@dataclass
class Suite:
    words: str
    code: str
    description: str
    classes: list
    commands: list
    enumerations: list


@dataclass
class Definition:
    title: str
    suites: list = field(default_factory=list)

    def all(self, what):
        return [one for suite in self.suites for one in getattr(suite, what)]


def attribute(element, name):
    value = element.get(name)
    if value is None:
        raise Malformed(f"<{element.tag} name=\"{element.get('name', '')}\"> has no {name}")
    return value


def choice(element, name, default, choices):
    value = element.get(name, default)
    if value not in choices:
        raise Malformed(f"<{element.tag}> cannot have {name}=\"{value}\", only {', '.join(choices)}")
    return value


def code_number(text, count=4):
    """The number of a code: characters of Mac OS Roman, or 0x and hexadecimal digits."""
    if text.startswith("0x") and len(text) == 2 + 2 * count:
        try:
            return int(text, 16)
        except ValueError:
            raise Malformed(f"the code “{text}” is no hexadecimal number") from None
    try:
        encoded = text.encode("mac_roman")
    except UnicodeEncodeError:
        encoded = b""
    if len(encoded) != count:
        raise Malformed(f"the code “{text}” does not have {count} characters")
    return int.from_bytes(encoded, "big")


def is_code(text):
    try:
        code_number(text)
    except Malformed:
        return False
    return True


def code(element, count=4):
    text = attribute(element, "code")
    code_number(text, count)
    return text


def name_in_code(what, text):
    """The text, which is to be a name in the sources too."""
    if not re.fullmatch("[A-Za-z][A-Za-z0-9]*", text) or text in RESERVED:
        raise Malformed(f"the {what} “{text}” cannot be a name: it needs letters and digits")
    return text


def cocoa(element, name):
    found = element.find("cocoa")
    if found is None:
        raise Malformed(f"“{element.get('name', element.get('type'))}” has no <cocoa {name}>")
    return name_in_code(name, attribute(found, name))


def unique(what, values):
    seen = set()
    for value in values:
        if value in seen:
            raise Malformed(f"{what} “{value}” stands there twice")
        seen.add(value)


class Reader:
    def __init__(self, root):
        self.root = root
        self.enumerations = {}
        self.classes = {attribute(one, "name") for one in root.iter("class")}

    def definition(self):
        definition = Definition(attribute(self.root, "title"))
        for one in self.root.iter("enumeration"):
            self.enumerations[attribute(one, "name")] = self.enumeration(one)
        definition.suites = [self.suite(one) for one in self.root.findall("suite")]
        return definition

    def suite(self, element):
        return Suite(
            words=attribute(element, "name"),
            code=code(element),
            description=element.get("description", ""),
            classes=[self.a_class(one) for one in element.findall("class")],
            commands=[self.command(one) for one in element.findall("command")],
            enumerations=[self.enumerations[one.get("name")] for one in element.findall("enumeration")],
        )

    def enumeration(self, element):
        return Enumeration(
            words=attribute(element, "name"),
            code=code(element),
            enumerators=[
                Enumerator(attribute(one, "name"), code(one), one.get("description", ""))
                for one in element.findall("enumerator")
            ],
        )

    def type_of(self, element):
        """What the type attribute or the type elements of an element give."""
        types = [(attribute(one, "type"), one.get("list") == "yes") for one in element.findall("type")]
        if element.get("type"):
            types.insert(0, (element.get("type"), False))
        if not types:
            raise Malformed(f"<{element.tag} name=\"{element.get('name', '')}\"> has no type")
        single, items, enumerations, classes = [], [], set(), set()
        for name, is_list in types:
            kinds = TYPES.get(name)
            if name in self.enumerations:
                kinds = ["enumeration"]
                enumerations.add(name)
            elif name in self.classes:
                kinds = ["reference"]
                classes.add(name)
            elif kinds is None:
                raise Malformed(f"there is no type “{name}”")
            place = items if is_list else single
            place.extend(kind for kind in kinds if kind not in place)
        if len(enumerations | classes) > 1:
            names = "” and “".join(sorted(enumerations | classes))
            raise Malformed(f"<{element.tag}> cannot be of “{names}” at once")
        order = list(KIND_WORDS).index
        return Type(
            sorted(single, key=order),
            sorted(items, key=order),
            self.enumerations[enumerations.pop()] if enumerations else None,
            classes.pop() if classes else None,
        )

    def argument(self, element, words="", argument_code=None, key=""):
        is_optional = choice(element, "optional", "no", ("yes", "no")) == "yes"
        missing = element.find("missing")
        number = None
        if missing is not None:
            try:
                number = int(attribute(missing, "number"))
            except ValueError:
                raise Malformed(f"<missing> of “{words}” needs a number") from None
            if is_optional:
                raise Malformed(f"“{words}” is optional and has a number for when it is missing")
        return Argument(words, argument_code, key, self.type_of(element), is_optional, number,
                        element.get("description", ""))

    def optional_argument(self, element):
        return self.argument(element) if element is not None else None

    def command(self, element):
        words = attribute(element, "name")
        held = element.find("cocoa")
        is_action = held is not None and held.get("class") is None and held.get("method") is not None
        command = Command(
            words=words,
            code=code(element, 8),
            name=cocoa(element, "method" if is_action else "class"),
            is_action=is_action,
            description=element.get("description", ""),
            direct=self.optional_argument(element.find("direct-parameter")),
            arguments=[
                self.argument(one, attribute(one, "name"), code(one), cocoa(one, "key"))
                for one in element.findall("parameter")
            ],
            result=self.optional_argument(element.find("result")),
        )
        unique(f"in “{words}” the parameter", [one.words for one in command.arguments])
        unique(f"in “{words}” the code", [one.code for one in command.arguments])
        unique(f"in “{words}” the key", [one.key for one in command.arguments])
        return command

    def a_class(self, element):
        words = attribute(element, "name")
        base = element.get("inherits")
        if base is not None and base not in self.classes:
            raise Malformed(f"“{words}” inherits from “{base}”, which is not there")
        one = Class(
            words=words,
            plural=element.get("plural", words + "s"),
            code=code(element),
            name=cocoa(element, "class"),
            base=base,
            description=element.get("description", ""),
            properties=[
                Property(attribute(each, "name"), code(each), cocoa(each, "key"), self.type_of(each),
                         choice(each, "access", "rw", ACCESS), each.get("description", ""))
                for each in element.findall("property")
            ],
            elements=[self.element(each) for each in element.findall("element")],
        )
        unique(f"in “{words}” the property", [each.words for each in one.properties])
        unique(f"in “{words}” the code", [each.code for each in one.properties])
        unique(f"in “{words}” the key", [each.key for each in one.properties + one.elements])
        return one

    def element(self, element):
        of_class = attribute(element, "type")
        if of_class not in self.classes:
            raise Malformed(f"there is no class “{of_class}” for an element")
        return Element(
            of_class,
            cocoa(element, "key"),
            choice(element, "access", "rw", ACCESS),
            [choice(one, "style", None, ACCESSORS) for one in element.findall("accessor")]
            or list(ACCESSORS),
        )


def terms(definition):
    """(words, code, where it stands) of everything that has a four-character code."""
    for command in definition.all("commands"):
        for one in command.arguments:
            yield one.words, one.code, f"in “{command.words}”"
    for enumeration in definition.all("enumerations"):
        for one in enumeration.enumerators:
            yield one.words, one.code, f"of “{enumeration.words}”"
    for a_class in definition.all("classes"):
        yield a_class.words, a_class.code, "as a class"
        for one in a_class.properties:
            yield one.words, one.code, f"of “{a_class.words}”"


def check_terms(definition):
    """Scripts know words without what they belong to: one word has one code, and the reverse."""
    by_words, by_code = {}, {}
    for words, text, where in terms(definition):
        number = code_number(text)
        known = by_words.setdefault(words.lower(), (number, text, where))
        if known[0] != number:
            raise Malformed(
                f"“{words}” has the code “{known[1]}” {known[2]} and “{text}” {where}; "
                "one word has one code")
        known = by_code.setdefault(number, (words, where))
        if known[0].lower() != words.lower():
            raise Malformed(
                f"the code “{text}” is “{known[0]}” {known[1]} and “{words}” {where}; "
                "one code has one word")
    enumerators = [one for each in definition.all("enumerations") for one in each.enumerators]
    codes = {code_number(one.code): one.words for one in enumerators}
    for one in enumerators:
        # Where a constant is given in four characters it must be plain which one it is.
        known = codes.get(code_number(one.words)) if is_code(one.words) else None
        if known is not None and known != one.words:
            raise Malformed(f"the constant “{one.words}” has the code of “{known}” as its name")
    for a_class in definition.all("classes"):
        known = by_words.get(a_class.plural.lower())
        if known and known[0] != code_number(a_class.code):
            raise Malformed(
                f"“{a_class.plural}” is the plural of “{a_class.words}” and has the code "
                f"“{known[1]}” {known[2]}; one word has one code")
    for command in definition.all("commands"):
        known = by_words.get(command.words.lower())
        if known:
            raise Malformed(
                f"“{command.words}” is a command and has the code “{known[1]}” {known[2]}; "
                "one word has one code")


def check(definition):
    commands = definition.all("commands")
    unique("the class", [one.name for one in commands])
    unique("the command", [one.words for one in commands])
    unique("the event code", [code_number(one.code, 8) and one.code for one in commands])
    classes = definition.all("classes")
    unique("the class", [one.name for one in classes])
    unique("the class", [one.words for one in classes])
    unique("the enumeration", [one.words for one in definition.all("enumerations")])
    for one in classes:
        seen = {one.words}
        base = one.base
        while base is not None:
            if base in seen:
                raise Malformed(f"“{one.words}” inherits from itself")
            seen.add(base)
            base = next(other.base for other in classes if other.words == base)
    check_terms(definition)


def read(path):
    try:
        definition = Reader(ElementTree.parse(path).getroot()).definition()
        check(definition)
    except (ElementTree.ParseError, OSError) as problem:
        raise Malformed(problem) from None
    return definition
