"""Names as Python and the boundary have them, made from managed ones."""

import re

# One alternative for each word form, tried in this order at every place:
#   a lone capital with digits (T4), a run of capitals before a capitalised word (XML|Value),
#   a capitalised or small word, a run of capitals, a run of digits.
_WORD = re.compile(
    r"(?P<lone>(?<![A-Z])[A-Z][0-9]+)"
    r"|(?P<run>[A-Z]+(?=[A-Z][a-z]))"
    r"|(?P<word>[A-Z]?[a-z]+)"
    r"|(?P<capitals>[A-Z]+)"
    r"|(?P<digits>[0-9]+)"
)


def words(name: str) -> list[str]:
    """The words of a managed name: "GetArgb32Color" has four, "ToArgb32" two."""
    found: list[str] = []
    for part in name.split("_"):
        matches = list(_WORD.finditer(part))
        for match in matches:
            # Digits inside a name are a word of their own; at its end they stay on their word.
            at_end = match.end() == len(part)
            if match.lastgroup == "digits" and at_end and match.start() > 0:
                found[-1] += match.group()
            else:
                found.append(match.group())
    return found


def snake(name: str) -> str:
    """Lower snake case, for methods, properties and parameters."""
    return "_".join(words(name)).lower()


def upper_snake(name: str) -> str:
    """Upper snake case, for static members and members of enumerations."""
    return "_".join(words(name)).upper()


def entry_class(namespace: str, simple_name: str, tag: str) -> str:
    """The name under which the runtime finds a managed entry class."""
    spaces = "".join(f"WrpNs_{part}." for part in namespace.split("."))
    return f"{spaces}{entry_class_part(simple_name, tag)}"


def entry_class_part(simple_name: str, tag: str) -> str:
    """The class part alone: the name is cut, the tag tells classes apart."""
    return f"WrpCs_{simple_name[:8]}_{tag}"


def literal(text: str) -> str:
    """A C or C# string literal."""
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'
