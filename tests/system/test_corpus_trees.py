"""Every readable document of the corpus shows the size, mode and layer tree that others read."""

from unittest import mock

import documents
import pytest

MODES = {
    "bitmap": "BITMAP",
    "grayscale": "GRAYSCALE",
    "indexed": "INDEXED",
    "rgb": "RGB",
    "cmyk": "CMYK",
    "multichannel": "MULTICHANNEL",
    "duotone": "DUOTONE",
    "lab": "LAB",
}


@pytest.fixture
def document(readable_truth, no_handle_leaks):
    with documents.load(documents.path_of(readable_truth)) as document:
        yield document


def test_the_header_equals_the_truth(document, readable_truth):
    header = readable_truth["header"]
    assert (document.width, document.height) == (header["width"], header["height"])
    assert (document.size.width, document.size.height) == (header["width"], header["height"])
    assert document.channels_count == header["channels"]
    assert document.bits_per_channel == header["depth"]
    assert document.version == header["version"]
    assert document.color_mode.name == MODES[header["color_mode"]]


def test_the_layer_tree_equals_the_truth(document, readable_truth):
    found = describe(documents.tree(document))
    assert found == [expected(layer) for layer in readable_truth.get("layers", [])]


def test_every_layer_has_the_type_of_its_kind(document, readable_truth):
    wrong = []

    def compare(nodes, truths):
        for (layer, children), truth in zip(nodes, truths):
            if not documents.is_of_kind(layer, truth["kind"]):
                wrong.append((truth["name"], truth["kind"]))
            compare(children or [], truth.get("children", []))

    compare(documents.tree(document), readable_truth.get("layers", []))
    assert not wrong


def test_a_group_gives_its_direct_children(document):
    from kelmor.psd.fileformats.psd.layers import LayerGroup

    for layer, children in documents.walk(documents.tree(document)):
        if LayerGroup._is_assignable(layer):
            group = documents.as_type(LayerGroup, layer)
            inner = [each for each in group.layers if not documents.is_divider(each)]
            assert [each.name for each in inner] == [child.name for child, _ in children]


def describe(nodes):
    return [
        {
            "name": layer.name,
            "display_name": layer.display_name,
            "visible": layer.is_visible,
            "opacity": layer.opacity,
            "blend_key": key_of(layer),
            "clipping": bool(layer.clipping),
            "rec_rect": rectangle(layer),
            "children": None if children is None else describe(children),
        }
        for layer, children in nodes
    ]


def key_of(layer):
    return int(layer.blend_mode_key).to_bytes(4, "big").decode("latin-1")


def rectangle(layer):
    return [layer.left, layer.top, layer.right, layer.bottom]


def expected(truth):
    is_group = truth["kind"] in ("group", "artboard")
    return {
        "name": truth["name"],
        "display_name": truth["name"],
        "visible": truth["visible"],
        "opacity": truth["opacity"],
        # Without a key in the truth the references do not agree what it is.
        "blend_key": truth["blend_key"] or mock.ANY,
        "clipping": truth["clipping"],
        "rec_rect": truth["rec_rect"],
        "children": [expected(c) for c in truth.get("children", [])] if is_group else None,
    }
