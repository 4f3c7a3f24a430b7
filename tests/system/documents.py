"""Documents of the corpus, their truth, and how the tests walk a loaded document."""

import functools
import json
import os
import pathlib

CORPUS = pathlib.Path(
    os.environ.get("KELMOR_CORPUS")
    or pathlib.Path(__file__).resolve().parents[3] / "shared" / "corpus"
)
WITHOUT_CORPUS = f"there is no corpus of documents at {CORPUS} (KELMOR_CORPUS names another place)"


@functools.lru_cache(maxsize=None)
def truths():
    """One object per file of the corpus; none without a corpus."""
    path = CORPUS / "truth.json"
    return json.loads(path.read_text())["files"] if path.exists() else []


def readable(truth):
    return not truth["expect"].startswith("damaged")


def has_merged_truth(truth):
    """Whether the merged image can be held against what other programs read."""
    header, merged = truth["header"], truth["merged"]
    return (
        readable(truth)
        and header["depth"] == 8
        and header["color_mode"] in ("rgb", "grayscale")
        and merged["has_real_merged_image"] is not False
        and any(rgba_hashes(truth))
    )


def rgba_hashes(truth):
    return {
        found["rgba8_sha256"]
        for name, found in truth["merged"].items()
        if isinstance(found, dict) and found.get("status") == "ok" and "rgba8_sha256" in found
    }


def path_of(truth):
    return CORPUS / truth["file"]


def short_name(truth):
    return truth["file"].split("__")[-1]


def load(source):
    """The document as what it is: loading gives the declared class."""
    from kelmor.psd import Image
    from kelmor.psd.fileformats.psd import PsdImage

    return as_type(PsdImage, Image.load(source if hasattr(source, "read") else str(source)))


def as_type(wrapper_type, value):
    result = wrapper_type._cast_as(value)
    assert result.is_success, f"not a {wrapper_type.__name__}"
    return result.value


# Kinds of the truth, and the type that a layer of that kind has.
KINDS = {
    "group": ("layers", "LayerGroup"),
    "artboard": ("layers", "ArtboardLayer"),
    "type": ("layers", "TextLayer"),
    "shape": ("layers", "ShapeLayer"),
    "smartobject": ("layers.smartobjects", "SmartObjectLayer"),
    "solidcolorfill": ("layers.filllayers", "FillLayer"),
    "gradientfill": ("layers.filllayers", "FillLayer"),
    "patternfill": ("layers.filllayers", "FillLayer"),
    "brightnesscontrast": ("layers.adjustmentlayers", "BrightnessContrastLayer"),
    "posterize": ("layers.adjustmentlayers", "PosterizeLayer"),
    "threshold": ("layers.adjustmentlayers", "ThresholdLayer"),
    "invert": ("layers.adjustmentlayers", "InvertAdjustmentLayer"),
    "levels": ("layers.adjustmentlayers", "LevelsLayer"),
    "curves": ("layers.adjustmentlayers", "CurvesLayer"),
    "gradientmap": ("layers.adjustmentlayers", "GradientMapLayer"),
    "huesaturation": ("layers.adjustmentlayers", "HueSaturationLayer"),
    "exposure": ("layers.adjustmentlayers", "ExposureLayer"),
    "colorbalance": ("layers.adjustmentlayers", "ColorBalanceAdjustmentLayer"),
    "vibrance": ("layers.adjustmentlayers", "VibranceLayer"),
    "blackandwhite": ("layers.adjustmentlayers", "BlackWhiteAdjustmentLayer"),
    "photofilter": ("layers.adjustmentlayers", "PhotoFilterLayer"),
    "channelmixer": ("layers.adjustmentlayers", "ChannelMixerLayer"),
    "selectivecolor": ("layers.adjustmentlayers", "SelectiveColorLayer"),
    "colorlookup": ("layers.adjustmentlayers", "AdjustmentLayer"),
}


@functools.lru_cache(maxsize=None)
def layer_type(kind):
    module, name = KINDS[kind]
    package = __import__(f"kelmor.psd.fileformats.psd.{module}", fromlist=[name])
    return getattr(package, name)


def is_of_kind(layer, kind):
    """Whether a layer has the type of its kind, and a plain one none of the special types."""
    if kind != "pixel":
        return layer_type(kind)._is_assignable(layer)
    return not any(layer_type(each)._is_assignable(layer) for each in KINDS)


def is_divider(layer):
    from kelmor.psd.fileformats.psd.layers import SectionDividerLayer

    return SectionDividerLayer._is_assignable(layer)


def is_group(layer):
    return layer_type("group")._is_assignable(layer) or layer_type("artboard")._is_assignable(layer)


def tree(document):
    """Pairs of a layer and its children (None for a layer that can have none), bottom to top.

    Made from the flat list: a divider opens a group at its lower end, the group's own record
    closes it.
    """
    levels = [[]]
    for layer in document.layers:
        if is_divider(layer):
            levels.append([])
        elif is_group(layer):
            children = levels.pop()
            levels[-1].append((layer, children))
        else:
            levels[-1].append((layer, None))
    assert len(levels) == 1, "a group is left open"
    return levels[0]


def walk(nodes):
    for layer, children in nodes:
        yield layer, children
        yield from walk(children or [])


def first_layer(document):
    return next(layer for layer, _ in walk(tree(document)))
