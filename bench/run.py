"""What the everyday calls cost on the real runtime, each beside the same thing in plain CPython.

Run it as `build/python bench/run.py`. Figures are the smallest of several rounds.
"""

import io
import subprocess
import sys
import time
import timeit

from kelmor.psd import Point, Rectangle
from kelmor.psd.fileformats.psd import PsdImage

ROUNDS = 7
LAYERS = 100
SIDE = 2048


class PlainSize:
    def __init__(self, width, height):
        self.width, self.height = width, height


class Plain:
    """The same calls without any boundary: properties and methods written in Python."""

    def __init__(self):
        self._width = SIDE
        self._name = "Background layer"

    @property
    def width(self):
        return self._width

    @property
    def name(self):
        return self._name

    @name.setter
    def name(self, value):
        self._name = value

    @property
    def size(self):
        return PlainSize(self._width, self._width)

    def contains(self, x, y):
        return 0 <= x < self._width and 0 <= y < self._width


def nanoseconds(statement, names):
    timer = timeit.Timer(statement, globals=names)
    number = max(1, timer.autorange()[0] // 2)
    return min(timer.repeat(ROUNDS, number)) / number * 1e9


def print_row(what, ours, plain, unit="ns"):
    print(f"{what:32}{ours:12,.0f} {unit:5}{plain:12,.0f} {unit:5}{ours / plain:8.1f}")


def layered_document(count):
    document = PsdImage(64, 64)
    for index in range(count):
        document.add_regular_layer().name = f"Layer {index}"
    return document


def calls(document):
    layer = document.layers[0]
    ours = {
        "document": document,
        "layer": layer,
        "area": Rectangle(0, 0, SIDE, SIDE),
        "point": Point(3, 4),
    }
    plain = Plain()
    rows = [
        ("int property get", "document.width", "plain.width"),
        ("str property get", "layer.name", "plain.name"),
        ("str property set", "layer.name = 'Foreground'", "plain.name = 'Foreground'"),
        ("method call, two ints", "area.contains(3, 4)", "plain.contains(3, 4)"),
        ("object-returning property", "document.size", "plain.size"),
        ("object as argument", "area.contains(point)", "plain.contains(3, 4)"),
        ("constructor and release", "Point(1, 2)", "PlainSize(1, 2)"),
    ]
    ours.update(Point=Point)
    for what, our_statement, plain_statement in rows:
        cost = nanoseconds(our_statement, ours)
        print_row(what, cost, nanoseconds(plain_statement, dict(plain=plain, PlainSize=PlainSize)))


def iteration(document):
    plain = [Plain() for _ in range(LAYERS)]
    layers = len(document.layers)
    ours = nanoseconds("for layer in document.layers: layer.name", dict(document=document))
    bare = nanoseconds("for layer in plain: layer.name", dict(plain=plain))
    print_row("iteration, a layer and its name", ours / layers, bare / LAYERS)


def saving():
    document = PsdImage(SIDE, SIDE)
    content = io.BytesIO()
    document.save(content)
    content.seek(0)
    loaded = PsdImage._cast_as(PsdImage.load(content)).value
    size = len(content.getvalue())

    def seconds(work):
        best = float("inf")
        for _ in range(ROUNDS):
            start = time.perf_counter()
            work()
            best = min(best, time.perf_counter() - start)
        return best

    data = content.getvalue()
    ours = size / seconds(lambda: loaded.save(io.BytesIO())) / 1e6
    plain = size / seconds(lambda: io.BytesIO().write(data)) / 1e6
    print(f"{'save to io.BytesIO':32}{ours:12,.0f} MB/s {plain:12,.0f} MB/s {plain / ours:8.1f}")


def import_time():
    def milliseconds(module):
        code = f"import time; t = time.perf_counter(); import {module}; "
        code += "print((time.perf_counter() - t) * 1e3)"
        runs = [subprocess.check_output([sys.executable, "-c", code]) for _ in range(ROUNDS)]
        return min(float(run) for run in runs)

    print_row("import (plain: decimal)", milliseconds("kelmor.psd"), milliseconds("decimal"), "ms")


def main():
    print(f"CPython {sys.version.split()[0]}, {LAYERS} layers, {SIDE} x {SIDE} pixels")
    print(f"{'':32}{'kelmor.psd':>17}{'plain CPython':>17}{'times':>9}")
    import_time()
    document = layered_document(LAYERS)
    calls(document)
    iteration(document)
    saving()


if __name__ == "__main__":
    main()
