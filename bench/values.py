"""What each value form costs to cross, beside a hand-written C extension and plain Python.

Run it as `build/python bench/values.py`; it builds the extension into a temporary folder. Every
figure is nanoseconds a call, the smallest of several rounds; all columns come from one run.
"""

import datetime as dt
import decimal
import pathlib
import subprocess
import sys
import sysconfig
import tempfile
import timeit

from kelmor.harness import Blocks, Decimals, Failures, Scalars, Texts, Times, Variants

ROUNDS = 7
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


def caught(function, *arguments):
    """A call that raises and whose exception is caught."""

    def call():
        try:
            function(*arguments)
        except RuntimeError:
            pass

    return call


def raise_plainly(kind, message):
    raise RuntimeError(f"Proxy error({kind}): {message}")


def rows(raw):
    def same(value):
        return value

    latin, wide = "abcdefghi\xe9", "漢字かなカナ한글ЖЯ"
    block = bytes(range(256)) * 256
    date = dt.datetime(2024, 2, 29, 12, 30, 15, 123456)
    number = decimal.Decimal("12345678901234.5678")
    yield "int", Scalars.echo_int32, raw.echo_int, same, 123456
    yield "float", Scalars.echo_double, raw.echo_float, same, 1.25
    yield "bool", Scalars.echo_bool, raw.echo_bool, same, True
    yield "str, 10 characters, Latin-1", Texts.echo, raw.echo_str, same, latin
    yield "str, 10 characters, wide", Texts.echo, raw.echo_str, same, wide
    yield "str, 10,000 characters, Latin-1", Texts.echo, raw.echo_str, same, latin * 1000
    yield "str, 10,000 characters, wide", Texts.echo, raw.echo_str, same, wide * 1000
    yield "bytes, 64 KiB", Blocks.echo, raw.echo_bytes, bytearray, block
    yield "date", Times.echo_date, raw.echo_date, lambda d: d.replace(), date
    yield (
        "decimal",
        Decimals.echo,
        raw.echo_decimal,
        lambda d: decimal.Decimal(d.as_tuple()),
        number,
    )
    yield "int read by a callback", Variants.echo, raw.echo_int, same, 123456


def one_way_rows(raw):
    """In alone: what a result of one small form costs is taken off by comparing with the above."""
    block = bytes(range(256)) * 256
    yield "bytes, 64 KiB, in", Blocks.length, len, block
    yield "str, 10,000 characters, in", Texts.length, len, "abcdefghi\xe9" * 1000
    yield "date, in", Times.date_ticks, lambda d: d.toordinal(), dt.datetime(2024, 2, 29, 12)
    yield "bytes, 64 KiB, out", Blocks.make, bytearray, 65536


def cost(call):
    timer = timeit.Timer(call)
    loops, seconds = timer.autorange()
    while seconds < 0.02:
        loops *= 4
        seconds = timer.timeit(loops)
    return min(timer.repeat(ROUNDS, max(loops // 10, 1))) / max(loops // 10, 1) * 1e9


def line(name, *costs):
    shown = " | ".join("" if c is None else f"{c:,.0f}" for c in costs)
    print(f"| {name} | {shown} |", flush=True)


def main():
    with tempfile.TemporaryDirectory() as folder:
        raw = build_raw(folder)
        print("| form, in and out | kelmor | raw C-API | plain Python |")
        print("|---|---|---|---|")
        for name, ours, theirs, plain, value in rows(raw):
            line(name, *(cost(lambda f=f: f(value)) for f in (ours, theirs, plain)))
        line(
            "exception raised and caught",
            cost(caught(Failures.throw, "io", "the text")),
            cost(caught(raw.throw_error, "io", "the text")),
            cost(caught(raise_plainly, "io", "the text")),
        )
        for name, ours, plain, value in one_way_rows(raw):
            line(name, cost(lambda: ours(value)), None, cost(lambda: plain(value)))


if __name__ == "__main__":
    main()
