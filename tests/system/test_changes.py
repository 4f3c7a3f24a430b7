"""Changes of one layer reach the file, other programs read them, and all else is as it was."""

import io
import subprocess

import documents
import pytest

psd_tools = pytest.importorskip("psd_tools", reason="psd-tools reads the changed documents back")

SAMPLES = ["slices.psd", "layer_effects.psd", "Masks_8bit.psb", "simple-compress__expected.psd"]


@pytest.fixture(params=SAMPLES)
def sample(request):
    for truth in documents.truths():
        if truth["file"].endswith(request.param):
            return documents.path_of(truth)
    pytest.skip(documents.WITHOUT_CORPUS)


@pytest.fixture
def changed(sample, tmp_path, no_handle_leaks):
    return changed_copy(sample, tmp_path)


def changed_copy(sample, folder):
    """The path of a copy in which the middle layer has another name, opacity and visibility."""
    target = folder / f"changed{sample.suffix}"
    with documents.load(sample) as document:
        nodes = list(documents.walk(documents.tree(document)))
        layers = [layer for layer, children in nodes if children is None]
        layers = layers or [layer for layer, _ in nodes]
        layer = layers[len(layers) // 2]
        layer.name = "Changed"
        layer.opacity = 77
        layer.is_visible = not layer.is_visible
        document.save(str(target))
    return target


def psd_tools_view(path):
    document = psd_tools.PSDImage.open(str(path))
    # Clipped layers come up twice, by themselves and with the layer below them.
    layers = {id(layer._record): layer for layer in document.descendants()}
    layers = [
        {
            "name": layer.name,
            "kind": layer.kind,
            "opacity": layer.opacity,
            "visible": layer.visible,
            "blend": layer.blend_mode,
            "box": [getattr(layer._record, side) for side in ("left", "top", "right", "bottom")],
            "clipping": layer.clipping_layer,
            "depth": depth_of(layer),
            "channels": [channel.data for channel in layer._channels],
            "blocks": {
                key: block.tobytes()
                for key, block in layer._record.tagged_blocks.items()
                if key not in NAME_BLOCKS
            },
            "mask": mask_of(layer),
        }
        for layer in layers.values()
    ]
    merged = document._record.image_data
    facts = document.size, document.color_mode, document.depth
    return layers, facts, (merged.compression, merged.data)


NAME_BLOCKS = {psd_tools.constants.Tag.UNICODE_LAYER_NAME}


def depth_of(layer):
    depth = 0
    while layer.parent is not None:
        layer, depth = layer.parent, depth + 1
    return depth


def mask_of(layer):
    return layer._record.mask_data.tobytes() if layer._record.mask_data else None


def test_psd_tools_reads_the_new_values_and_the_rest_as_before(
    layered_truth, tmp_path, no_handle_leaks
):
    sample = documents.path_of(layered_truth)
    changed = changed_copy(sample, tmp_path)
    try:
        before, facts_before, merged_before = psd_tools_view(sample)
    except ValueError as failure:
        pytest.skip(f"psd-tools does not read the original: {failure}")
    after, facts_after, merged_after = psd_tools_view(changed)
    assert facts_after == facts_before
    assert merged_after == merged_before
    different = [i for i, (old, new) in enumerate(zip(before, after)) if old != new]
    assert len(before) == len(after) and len(different) == 1
    old, new = before[different[0]], after[different[0]]
    assert (new["name"], new["opacity"]) == ("Changed", 77)
    assert new["visible"] is not old["visible"]
    same = set(old) - {"name", "opacity", "visible"}
    assert {key: new[key] for key in same} == {key: old[key] for key in same}


def imagemagick_view(path):
    """One line for each layer: label, opacity, hidden or not, place, pixels without opacity."""
    shape = "%l\t%[artifact:psd:layer.opacity]\t%[artifact:psd:layer.invisible]\t%g\t"
    command = ["convert", str(path), "-channel", "RGB", "-alpha", "off", "-format", shape + "%#\n"]
    result = subprocess.run([*command, "info:"], capture_output=True, check=True)
    return [line.split("\t") for line in result.stdout.decode("latin-1").splitlines()]


def test_imagemagick_reads_the_new_values_and_the_rest_as_before(sample, changed):
    before, after = imagemagick_view(sample), imagemagick_view(changed)
    different = [i for i, (old, new) in enumerate(zip(before, after)) if old != new]
    assert len(before) == len(after) and len(different) == 1
    old, new = before[different[0]], after[different[0]]
    assert new[:2] == ["Changed", str(77 * 257)]
    assert (new[2] == "true") is not (old[2] == "true")
    assert new[3] == old[3]
    assert (new[4] == old[4]) or new[2] == "true"


def test_imagemagick_sees_no_other_change_in_any_document(layered_truth, tmp_path, no_handle_leaks):
    sample = documents.path_of(layered_truth)
    changed = changed_copy(sample, tmp_path)
    try:
        before = imagemagick_view(sample)
    except subprocess.CalledProcessError:
        pytest.skip("ImageMagick does not read the original")
    after = imagemagick_view(changed)
    assert len(before) == len(after)
    if layered_truth["merged"]["has_real_merged_image"] is False:
        # The first row is the merged image, which ImageMagick then makes of the layers.
        before, after = before[1:], after[1:]
    # It shows pixel layers of the head of the section only, so it may not show this one.
    others = [old for old, new in zip(before, after) if new[0] != "Changed"]
    assert others == [new for new in after if new[0] != "Changed"]
    assert [new[1] for new in after if new[0] == "Changed"] in ([], [str(77 * 257)])


def test_the_change_is_there_when_the_document_is_loaded_again(changed):
    with documents.load(changed) as document:
        found = [layer for layer in document.layers if layer.name == "Changed"]
        assert [(layer.opacity, layer.display_name) for layer in found] == [(77, "Changed")]


def test_putting_the_old_values_back_gives_the_old_file(sample):
    target = io.BytesIO()
    with documents.load(sample) as document:
        layer = documents.first_layer(document)
        name, opacity, visible = layer.name, layer.opacity, layer.is_visible
        layer.name, layer.opacity, layer.is_visible = "other", 1, not visible
        layer.name, layer.opacity, layer.is_visible = name, opacity, visible
        document.save(target)
    assert psd_tools_bytes(target.getvalue()) == psd_tools_bytes(sample.read_bytes())


def psd_tools_bytes(content):
    document = psd_tools.PSDImage.open(io.BytesIO(content))
    return [(layer.name, layer.opacity, layer.visible) for layer in document.descendants()]


@pytest.mark.parametrize("name", ["", "x", "Ebene ä", "层", "𝄞 clef", "a" * 255, "long " * 100])
def test_a_name_of_any_script_and_length_survives(sample, name):
    target = io.BytesIO()
    with documents.load(sample) as document:
        documents.first_layer(document).name = name
        document.save(target)
    target.seek(0)
    with documents.load(target) as document:
        assert documents.first_layer(document).name == name
    target.seek(0)
    bottom = list(psd_tools.PSDImage.open(target).descendants())[0]
    if name and not bottom.is_group():
        # psd-tools leaves the two halves of a surrogate pair apart.
        assert bottom.name.encode("utf-16-le", "surrogatepass").decode("utf-16-le") == name


@pytest.mark.parametrize(
    ("attribute", "value"),
    [("opacity", 0), ("opacity", 255), ("fill_opacity", 128), ("left", -7), ("top", 11)],
)
def test_a_number_of_a_layer_survives(sample, attribute, value):
    target = io.BytesIO()
    with documents.load(sample) as document:
        setattr(documents.first_layer(document), attribute, value)
        document.save(target)
    target.seek(0)
    with documents.load(target) as document:
        assert getattr(documents.first_layer(document), attribute) == value


def test_a_blend_mode_survives(sample):
    from kelmor.psd.fileformats.core.blending import BlendMode

    target = io.BytesIO()
    with documents.load(sample) as document:
        layers = [layer for layer, children in documents.walk(documents.tree(document))]
        layers[-1].blend_mode_key = BlendMode.MULTIPLY
        document.save(target)
    target.seek(0)
    with documents.load(target) as document:
        layers = [layer for layer, children in documents.walk(documents.tree(document))]
        assert layers[-1].blend_mode_key is BlendMode.MULTIPLY
