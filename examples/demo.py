"""The main job in one program: makes a layered document or takes yours, walks, changes, saves it.

build/python examples/demo.py [FILE.psd] [--output FOLDER]
"""

import argparse
import pathlib
import sys

from kelmor.psd import Image, Rectangle
from kelmor.psd.fileformats.core.blending import BlendMode
from kelmor.psd.fileformats.psd import PsdImage
from kelmor.psd.fileformats.psd.layers import Layer, LayerGroup, SectionDividerLayer
from kelmor.psd.imageoptions import PngOptions


def plain_layer(name, area, colour):
    """A layer of one colour, made of its three channels."""
    left, top, width, height = area
    red, green, blue = (bytes([value]) * (width * height) for value in colour)
    return Layer(Rectangle(left, top, width, height), red, green, blue, name)


def make_document(path):
    """A poster with a background, a group of two shapes, and a layer that darkens what is below."""
    with PsdImage(320, 200) as document:
        document.add_layer(plain_layer("Sky", (0, 0, 320, 200), (120, 180, 235)))
        shapes = document.add_layer_group("Shapes", 1, True)
        shapes.add_layer(plain_layer("Meadow", (0, 130, 320, 70), (90, 160, 70)))
        shapes.add_layer(plain_layer("House", (130, 80, 60, 70), (190, 80, 60)))
        shade = plain_layer("Shade", (0, 0, 160, 200), (200, 200, 220))
        document.add_layer(shade)
        shade.blend_mode_key = BlendMode.MULTIPLY
        shade.opacity = 160
        document.save(str(path))


def load(path):
    """Loading gives the declared class; a cast reaches what the document is."""
    return PsdImage._cast_as(Image.load(str(path))).value


def print_tree(document):
    """The flat list of layers has every record, bottom to top: here it is drawn from the top."""
    print(f"{document.width} x {document.height}, {document.color_mode.name}")
    depth = 1
    for layer in reversed(list(document.layers)):
        if SectionDividerLayer._is_assignable(layer):
            depth -= 1
            continue
        eye = "+" if layer.is_visible else "-"
        place = f"{layer.left},{layer.top} {layer.width} x {layer.height}"
        mode = layer.blend_mode_key.name.lower()
        print(f"{'  ' * depth}{eye} {layer.name!r} {place}, {mode}, opacity {layer.opacity}")
        if LayerGroup._is_assignable(layer):
            depth += 1


def change_top_layer(document):
    layers = [each for each in document.layers if not SectionDividerLayer._is_assignable(each)]
    if not layers:
        print("no layer to change")
        return
    top = layers[-1]
    top.name = f"{top.name} (changed)"
    top.opacity = top.opacity // 2
    print(f"changed: {top.name!r}, opacity {top.opacity}")


def save_both(document, folder, stem, suffix):
    for name, options in ((f"{stem}-changed{suffix}", ()), (f"{stem}.png", (PngOptions(),))):
        path = folder / name
        document.save(str(path), *options)
        print(f"wrote {path}, {path.stat().st_size} bytes")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("file", nargs="?", type=pathlib.Path, help="a PSD or PSB document")
    parser.add_argument("--output", type=pathlib.Path, default=pathlib.Path("build/demo"))
    options = parser.parse_args()
    options.output.mkdir(parents=True, exist_ok=True)
    path = options.file
    if path is None:
        path = options.output / "poster.psd"
        make_document(path)
        print(f"made {path}")
    try:
        with load(path) as document:
            print_tree(document)
            change_top_layer(document)
            save_both(document, options.output, path.stem, path.suffix)
    except RuntimeError as failure:  # how every refusal of the library arrives
        sys.exit(f"{path}: {failure}")


if __name__ == "__main__":
    main()
