"""Layers are added, removed, reordered and grouped; psd-tools finds all others as they were."""

import hashlib
import io

import documents
import pytest

psd_tools = pytest.importorskip("psd_tools", reason="psd-tools reads the changed documents back")

from psd_tools.constants import Tag  # noqa: E402  (needs psd-tools)


def records(content):
    """Every layer record of a file with its channels, wherever the file keeps them."""
    section = psd_tools.PSDImage.open(io.BytesIO(content))._record.layer_and_mask_information
    info = section.layer_info
    for tag in (Tag.LAYER_16, Tag.LAYER_32):
        info = (section.tagged_blocks or {}) and section.tagged_blocks.get_data(tag) or info
    if not info or not info.layer_records:
        return []
    return [
        (
            record.tagged_blocks.get_data(Tag.UNICODE_LAYER_NAME) or record.name,
            (record.left, record.top, record.right, record.bottom),
            (record.opacity, record.blend_mode, record.clipping, record.flags),
            record.mask_data.tobytes() if record.mask_data else None,
            {key: block.tobytes() for key, block in record.tagged_blocks.items()},
            [(channel.id, data.compression) for channel, data in zip(record.channel_info, planes)],
            [data.data for data in planes],
        )
        for record, planes in zip(info.layer_records, info.channel_image_data)
    ]


def made_layer(name):
    from kelmor.psd import Rectangle
    from kelmor.psd.fileformats.psd.layers import Layer

    red, green, blue = (bytes([value] * 6) for value in (10, 20, 30))
    return Layer(Rectangle(1, 2, 3, 2), red, green, blue, name)


def saved(document):
    stream = io.BytesIO()
    document.save(stream)
    return stream.getvalue()


@pytest.fixture
def before(layered_truth):
    try:
        return records(documents.path_of(layered_truth).read_bytes())
    except (ValueError, AssertionError) as failure:
        pytest.skip(f"psd-tools does not read the original: {failure}")


def test_an_added_layer_is_on_top_of_the_others(layered_truth, before, no_handle_leaks):
    with documents.load(documents.path_of(layered_truth)) as document:
        if document.color_mode.name == "LAB":
            with pytest.raises(RuntimeError, match="mode Lab"):
                document.add_layer(made_layer("Added"))
            return
        document.add_layer(made_layer("Added"))
        content = saved(document)
    after = records(content)
    assert after[:-1] == before
    assert after[-1][0].rstrip("\0") == "Added"
    assert after[-1][1] == (1, 2, 4, 4)


def test_a_removed_layer_is_gone_and_no_other(layered_truth, before, no_handle_leaks):
    with documents.load(documents.path_of(layered_truth)) as document:
        layers = list(document.layers)
        inner = [
            index
            for index, layer in enumerate(layers)
            if not documents.is_divider(layer) and not documents.is_group(layer)
        ]
        if not inner:
            return  # nothing but groups
        gone = inner[len(inner) // 2]
        document.layers = layers[:gone] + layers[gone + 1 :]
        content = saved(document)
    assert records(content) == before[:gone] + before[gone + 1 :]


def test_reordered_layers_and_groups_are_the_same_ones(layered_truth, before, no_handle_leaks):
    with documents.load(documents.path_of(layered_truth)) as document:
        layers = list(document.layers)
        order = [index for block in reversed(blocks(layers)) for index in block]
        document.layers = [layers[index] for index in order]
        content = saved(document)
    assert records(content) == [before[index] for index in order]


def blocks(layers):
    """Indexes of the layers of the lowest level, each group with all that it holds."""
    found, depth = [[]], 0
    for index, layer in enumerate(layers):
        found[-1].append(index)
        depth += 1 if documents.is_divider(layer) else -1 if documents.is_group(layer) else 0
        if depth == 0:
            found.append([])
    return found[:-1]


def test_groups_are_put_below_the_others_and_filled(layered_truth, before, no_handle_leaks):
    with documents.load(documents.path_of(layered_truth)) as document:
        if document.color_mode.name == "LAB":
            return  # no pixels are made for it, as above
        outer = document.add_layer_group("Outer", 0, True)
        outer.add_layer(made_layer("Above"))
        outer.add_layer_group("Inner", 0).add_layer(made_layer("Deep"))
        content = saved(document)
    after = records(content)
    end = "</Layer group>"
    names = [record[0].rstrip("\0") for record in after[:6]]
    assert names == [end, end, "Deep", "Inner", "Above", "Outer"]
    assert after[6:] == before


def test_the_other_variant_of_the_format_holds_the_same(layered_truth, before, no_handle_leaks):
    from kelmor.psd.fileformats.psd import PsdVersion
    from kelmor.psd.imageoptions import PsdOptions

    stream = io.BytesIO()
    with documents.load(documents.path_of(layered_truth)) as document:
        options = documents.as_type(PsdOptions, document.get_original_options())
        to_big = document.version == PsdVersion.PSD
        options.psd_version = PsdVersion.PSB if to_big else PsdVersion.PSD
        options.version = int(options.psd_version)
        document.save(stream, options)
    after = records(stream.getvalue())
    # Packed rows have lengths of another size in front of them.
    assert [record[:4] for record in after] == [record[:4] for record in before]
    assert [record[5] for record in after] == [record[5] for record in before]


def test_a_layer_added_to_a_picture_lies_on_top_of_it(readable_truth, no_handle_leaks):
    if readable_truth.get("layers"):
        return
    with documents.load(documents.path_of(readable_truth)) as document:
        if document.color_mode.name in ("BITMAP", "INDEXED", "MULTICHANNEL"):
            with pytest.raises(RuntimeError, match="holds no layers"):
                document.add_layer(made_layer("Added"))
            return
        document.add_layer(made_layer("Added"))
        assert [layer.name for layer in document.layers] == ["Background", "Added"]
        has_alpha = document.has_alpha
        content = saved(document)
    if "psd_tools fails" in readable_truth["expect"]:
        return  # it would fail on the saved document too
    names = [record[0].rstrip("\0") for record in records(content)]
    assert names == ["Background", "Added"]
    if not has_alpha:
        found = lowest_planes(content)
        assert found == readable_truth["merged"]["channel_raw_sha256"][: len(found)]


def lowest_planes(content):
    document = psd_tools.PSDImage.open(io.BytesIO(content))
    lowest = next(iter(document))
    planes = [
        channel.get_data(lowest.width, lowest.height, document.depth, document.version)
        for channel in lowest._channels
    ]
    return [hashlib.sha256(plane).hexdigest() for plane in planes]
