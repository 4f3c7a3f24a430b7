"""Layers of the corpus one by one: pixels, masks, texts, channels and the sizes of groups."""

import hashlib
import io

import documents
import pytest

PIL = pytest.importorskip("PIL.Image", reason="Pillow reads the PNG files back")


@pytest.fixture
def pairs(layered_truth, no_handle_leaks):
    """Each layer with its children and with its truth."""
    with documents.load(documents.path_of(layered_truth)) as document:
        yield list(with_truth(documents.tree(document), layered_truth["layers"]))


def with_truth(nodes, truths):
    assert len(nodes) == len(truths)
    for (layer, children), truth in zip(nodes, truths):
        yield layer, children, truth
        yield from with_truth(children or [], truth.get("children", []))


def test_the_pixels_of_a_layer_saved_as_png_equal_the_truth(pairs, layered_truth):
    header = layered_truth["header"]
    if header["depth"] != 8 or header["color_mode"] not in ("rgb", "grayscale"):
        return  # references differ in how other kinds become 8-bit RGB
    for layer, _, truth in pairs:
        if "rgba8_sha256" in truth:
            picture = saved_as_png(layer)
            assert list(picture.size) == truth["pix_size"], truth["name"]
            found = hashlib.sha256(picture.tobytes()).hexdigest()
            assert found == truth["rgba8_sha256"], truth["name"]


def saved_as_png(layer):
    from kelmor.psd.imageoptions import PngOptions

    stream = io.BytesIO()
    layer.save(stream, PngOptions())
    return PIL.open(stream).convert("RGBA")


def test_the_channels_of_a_layer_equal_the_truth(pairs):
    for layer, _, truth in pairs:
        channels = list(layer.channel_information)
        assert [channel.channel_id for channel in channels] == truth["channels"]
        assert layer.channels_count == len(truth["channels"])


def test_the_mask_of_a_layer_equals_the_truth(pairs):
    from kelmor.psd.fileformats.psd.layers import LayerMaskFlags

    for layer, _, truth in pairs:
        mask = layer.layer_mask_data
        assert (mask is not None) == truth["has_mask"], truth["name"]
        if mask is None:
            continue
        expected, area = truth["mask"], mask.mask_rectangle
        found = [area.left, area.top, area.right, area.bottom]
        # Of an empty mask the references report no consistent rectangle.
        if area.width and area.height:
            assert found == [expected[side] for side in ("left", "top", "right", "bottom")]
        assert mask.default_color == expected["background"]
        assert bool(mask.flags & LayerMaskFlags.DISABLED) == expected["disabled"]


def test_the_text_of_a_layer_equals_the_truth(pairs):
    for layer, _, truth in pairs:
        if "text" in truth:
            text_layer = documents.as_type(documents.layer_type("type"), layer)
            assert text_layer.text == truth["text"]


def test_the_size_of_a_group_is_that_of_all_its_children(pairs):
    for layer, children, truth in pairs:
        if truth["kind"] == "artboard":
            expected = (truth["right"] - truth["left"], truth["bottom"] - truth["top"])
        elif children is not None:
            expected = size_of(union(truth["children"]))
        else:
            continue
        as_group = documents.as_type(documents.layer_type(truth["kind"]), layer)
        assert (as_group.width, as_group.height) == expected, truth["name"]


def union(truths):
    """The rectangle of the children that have one, hidden ones included."""
    boxes = []
    for truth in truths:
        inner = union(truth["children"]) if "children" in truth else truth["rec_rect"]
        if inner[2] > inner[0] and inner[3] > inner[1]:
            boxes.append(inner)
    if not boxes:
        return [0, 0, 0, 0]
    return [pick(sides) for pick, sides in zip((min, min, max, max), zip(*boxes))]


def size_of(box):
    return box[2] - box[0], box[3] - box[1]


def test_a_layer_is_seen_when_it_and_all_groups_around_it_are(pairs, layered_truth):
    seen = {}

    def visit(truths, outer):
        for truth in truths:
            seen[id(truth)] = outer and truth["visible"]
            visit(truth.get("children", []), seen[id(truth)])

    visit(layered_truth["layers"], True)
    for layer, _, truth in pairs:
        assert layer.is_visible_in_group == seen[id(truth)], truth["name"]


def test_the_flat_list_holds_every_record_of_the_file(layered_truth, no_handle_leaks):
    with documents.load(documents.path_of(layered_truth)) as document:
        layers = list(document.layers)
    heads = [layer for layer in layers if documents.is_group(layer)]
    ends = [layer for layer in layers if documents.is_divider(layer)]
    assert (
        len(heads)
        == len(ends)
        == layered_truth["layer_count_incl_groups"] - leaves(layered_truth["layers"])
    )
    assert len(layers) == layered_truth["layer_count_incl_groups"] + len(ends)
    # The references count those at the head of the section only.
    if layered_truth["layer_records_in_file"]:
        assert len(layers) == layered_truth["layer_records_in_file"]


def leaves(truths):
    return sum(leaves(each["children"]) if "children" in each else 1 for each in truths)
