"""Lays generated C++ out in lines of 100 columns, as clang-format would."""

from __future__ import annotations

LINE = 100


def wrapped(text: str) -> str:
    """Breaks the lines that are too long; those that fit stay as they are."""
    return "\n".join(
        part
        for line in text.split("\n")
        for part in ([line] if line.lstrip().startswith("//") else _wrap(line))
    )


def _wrap(line: str, open_at: tuple[int, ...] = (), base: int | None = None) -> list[str]:
    """Cuts behind the outermost comma or operator that fits; the rest stands under its bracket.

    `open_at`: columns behind the brackets that earlier lines have left open. `base`: how far the
    statement is indented.
    """
    if len(line) <= LINE:
        return [line]
    indent = len(line) - len(line.lstrip())
    base = indent if base is None else base
    cut = _last_cut(line, indent, list(open_at), base)
    if cut is None:
        # One long word: further to the left it fits.
        word = line.strip()
        return [" " * max(0, min(indent, LINE - len(word))) + word]
    place, column, still_open = cut
    rest = " " * column + line[place:].lstrip()
    return [line[:place].rstrip(), *_wrap(rest, still_open, base)]


def _last_cut(
    line: str, indent: int, open_at: list[int], base: int
) -> tuple[int, int, tuple[int, ...]] | None:
    """Where to cut, the column of what follows, and the brackets that stay open."""
    best = chain = None
    brackets: list[tuple[int, tuple[int, ...]]] = []  # behind each one opened here
    for place in range(indent, LINE):
        letter, before = line[place], line[place - 1]
        if letter in "({" or (letter == "<" and before.isalnum()):
            brackets.append((place + 1, tuple(open_at)))
            open_at.append(place + 1)
        elif open_at and (letter in ")}" or (letter == ">" and before not in "- ")):
            open_at.pop()
            del brackets[-1:]
        elif letter == "." and before == ")":
            chain = place
        elif line[place : place + 2] == ", " or line[place - 1 : place + 2] == "== ":
            # Without a bracket the list was opened on a line above and goes on at this indent.
            column = open_at[-1] if open_at else indent
            if best is None or len(open_at) <= len(best[2]):
                best = (place + 1, column, tuple(open_at))
        elif line[place - 1 : place + 2] == " = " and not open_at:
            best = (place + 1, base + 4, ())
    for place, outer in brackets:
        # All that stands under a bracket goes further to the left when it has no place there, or
        # would need several lines and then needs one.
        if (
            best is None
            or not _fits(line, best[0], best[1])
            or (best[2][-1:] == (place,) and _is_better(line, place, best, base + 4))
        ):
            return (place, base + 4, (*outer, base + 4))
    return (chain, indent + 4, ()) if best is None and chain else best


def _is_better(line: str, place: int, best: tuple, further: int) -> bool:
    under_bracket = best[1] + len(line[best[0] :].lstrip())
    return further + len(line[place:]) <= LINE < under_bracket


def _fits(line: str, start: int, column: int) -> bool:
    """Whether the first item of what follows has its place."""
    rest, depth = line[start:].lstrip(), 0
    for place, letter in enumerate(rest):
        if letter in "({":
            depth += 1
        elif letter in ")}":
            depth -= 1
        if depth < 0 or (depth == 0 and letter == ","):
            return column + place < LINE
    return column + len(rest) <= LINE
