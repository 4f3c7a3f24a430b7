"""What each value form costs to cross, beside a hand-written C extension and plain Python.

Run it as `build/release/bin/python bench/values.py [words of rows]`; it builds the extension into a
temporary folder. A figure is nanoseconds a call, the smallest of several rounds, all of one run.
"""

import datetime as dt
import decimal
import pathlib
import subprocess
import sys
import sysconfig
import tempfile
import timeit

from kelmor.harness import Failures, Kept

ROUNDS = 15
SECONDS = 0.01  # of a round
SOURCE = pathlib.Path(__file__).with_name("raw_values.c")


def build_raw(folder):
    """Compiles the C extension and gives its module."""
    target = pathlib.Path(folder) / ("raw_values" + sysconfig.get_config_var("EXT_SUFFIX"))
    include = sysconfig.get_paths()["include"]
    subprocess.run(
        ["cc", "-O2", "-shared", "-fPIC", f"-I{include}", str(SOURCE), "-o", str(target)],
        check=True,
    )
    sys.path.insert(0, folder)
    import raw_values

    return raw_values


class Plain:
    """The same in Python: a function that keeps the value or a copy, and one that gives it."""

    def take(self, value):
        self.value = value

    def take_bytes(self, value):
        self.value = bytearray(value)

    def give(self):
        return self.value

    def give_bytes(self):
        return bytearray(self.value)

    def nothing(self):
        pass

    def throw(self, kind, message):
        raise RuntimeError(f"Proxy error({kind}): {message}")


def forms(raw):
    """Name, value, and (take, give) of the three."""
    latin, wide = "abcdefghi\xe9", "漢字かなカナ한글ЖЯ"
    block = bytes(range(256)) * 256
    date = dt.datetime(2024, 2, 29, 12, 30, 15, 123456)
    plain = Plain()
    same = plain.take, plain.give
    text = (Kept.take_text, Kept.give_text), (raw.take_text, raw.give_text), same
    yield "int", 123456, (Kept.take_int32, Kept.give_int32), (raw.take_int, raw.give_int), same
    yield "float", 1.25, (Kept.take_double, Kept.give_double), (
        raw.take_float,
        raw.give_float,
    ), same
    yield "bool", True, (Kept.take_bool, Kept.give_bool), (raw.take_bool, raw.give_bool), same
    yield "str, 10 characters, Latin-1", latin, *text
    yield "str, 10 characters, wide", wide, *text
    yield "str, 10,000 characters, Latin-1", latin * 1000, *text
    yield "str, 10,000 characters, wide", wide * 1000, *text
    yield (
        "bytes, 64 KiB",
        block,
        (Kept.take_block, Kept.give_block),
        (raw.take_bytes, raw.give_bytes),
        (plain.take_bytes, plain.give_bytes),
    )
    yield "date", date, (Kept.take_date, Kept.give_date), (raw.take_date, raw.give_date), same
    yield (
        "decimal",
        decimal.Decimal("12345678901234.5678"),
        (Kept.take_decimal, Kept.give_decimal),
        (raw.take_decimal, raw.give_decimal),
        same,
    )
    # The managed side asks for the number by a callback, and makes the result by another.
    yield "int, by callback", 123456, (Kept.take_any, Kept.give_any), (
        raw.take_int,
        raw.give_int,
    ), same


def caught(function):
    """Calls what raises, and catches it."""

    def call():
        try:
            function("io", "the text")
        except RuntimeError:
            pass

    return call


def cost(statement, **names):
    timer = timeit.Timer(statement, globals=names)
    loops, seconds = timer.autorange()
    loops = max(int(loops * SECONDS / seconds), 1)
    return min(timer.repeat(ROUNDS, loops)) / loops * 1e9


def line(name, costs):
    print(f"| {name} | " + " | ".join(f"{c:,.0f}" for c in costs) + " |", flush=True)


def main():
    wanted = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        raw = build_raw(folder)
        print("| form | kelmor in | out | raw C-API in | out | plain Python in | out |")
        print("|---|---|---|---|---|---|---|")
        for name, value, *pairs in forms(raw):
            if wanted and not any(word in name for word in wanted):
                continue
            costs = []
            for take, give in pairs:
                costs.append(cost("f(v)", f=take, v=value))
                costs.append(cost("f()", f=give))
            line(name, costs)
        print("\n| call | kelmor | raw C-API | plain Python |\n|---|---|---|---|")
        plain = Plain()
        three = Kept.nothing, raw.nothing, plain.nothing
        line("nothing in, nothing out", [cost("f()", f=f) for f in three])
        three = Failures.throw, raw.throw_error, plain.throw
        line("exception raised and caught", [cost("f()", f=caught(f)) for f in three])


if __name__ == "__main__":
    main()
