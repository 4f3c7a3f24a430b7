"""Damaged documents fail with an error of words or load in part; they never harm the process."""

import functools
import io
import random
import time

import documents
import pytest
import sections

# One of each build: packed by run length, not packed, large variant, groups, 16 bits.
SAMPLES = {
    "rle": "fonts-notosans-cjk-jp.psd",
    "raw": "locked.psd",
    "psb": "Masks_8bit.psb",
    "groups": "artboard_example.psd",
    "16 bits": "Groups_16bit.psb",
}
WITH_LAYERS_IN_FRONT = ["rle", "raw", "psb", "groups"]
each_sample = pytest.mark.parametrize("kind", SAMPLES)


@functools.lru_cache(maxsize=None)
def sample(kind):
    for truth in documents.truths():
        if truth["file"].endswith(SAMPLES[kind]):
            return documents.path_of(truth).read_bytes()
    pytest.skip(documents.WITHOUT_CORPUS)


def look_at_all(document):
    """Touches what a damaged file may have broken."""
    from kelmor.psd.imageoptions import PngOptions

    for layer in document.layers:
        assert isinstance(layer.name, str)
    document.cache_data()
    document.save(io.BytesIO(), PngOptions())


def outcome(source):
    try:
        with documents.load(source) as document:
            look_at_all(document)
    except RuntimeError as failure:
        assert str(failure).startswith("Proxy error("), failure
        return failure
    return None


def test_a_damaged_document_is_refused_or_read_in_part(damaged_truth, no_handle_leaks):
    outcome(documents.path_of(damaged_truth))


@each_sample
def test_a_document_cut_at_any_boundary_is_refused_or_read_in_part(
    kind, no_handle_leaks, memory_limit, time_limit
):
    whole = sample(kind)
    boundaries = sections.Sections(whole).boundaries
    for length in sorted({0, 1, 3, 4, 25, 26, *boundaries, *(b - 1 for b in boundaries)}):
        failure = outcome(io.BytesIO(whole[:length]))
        if length <= 26:
            assert failure is not None, "less than a header cannot be a document"


@each_sample
def test_a_document_cut_anywhere_is_refused_or_read_in_part(
    kind, no_handle_leaks, memory_limit, time_limit
):
    whole = sample(kind)
    chance = random.Random(kind)
    for _ in range(60):
        outcome(io.BytesIO(whole[: chance.randrange(len(whole))]))


@each_sample
def test_an_altered_document_is_refused_or_read_in_part(
    kind, no_handle_leaks, memory_limit, time_limit
):
    whole = sample(kind)
    for seed in range(60):
        chance = random.Random(seed)
        altered = bytearray(whole)
        # Lengths and counts stand in the first part: most damage goes there.
        reach = len(altered) if seed % 3 == 0 else min(len(altered), 8000)
        for _ in range(1 + seed % 16):
            altered[chance.randrange(4, reach)] = chance.choice((0, 1, 127, 128, 254, 255))
        outcome(io.BytesIO(bytes(altered)))


@each_sample
@pytest.mark.parametrize("value", ["zero", "one more", "largest positive", "all ones"])
def test_a_wrong_length_or_count_is_refused_or_survived(
    kind, value, no_handle_leaks, memory_limit, time_limit
):
    whole = sample(kind)
    for field in sections.Sections(whole).fields[:150]:
        altered = bytearray(whole)
        place = slice(field.offset, field.offset + field.size)
        altered[place] = wrong(value, bytes(altered[place]))
        outcome(io.BytesIO(bytes(altered)))


def wrong(value, old):
    if value == "one more":
        return ((int.from_bytes(old, "big") + 1) % 256 ** len(old)).to_bytes(len(old), "big")
    rest = b"\xff" * (len(old) - 1)
    return {"zero": bytes(len(old)), "largest positive": b"\x7f" + rest}.get(value, b"\xff" + rest)


@pytest.mark.parametrize("kind", WITH_LAYERS_IN_FRONT)
@pytest.mark.parametrize(
    ("name", "value"),
    [
        ("height", b"\x7f\xff\xff\xff"),
        ("width", b"\x7f\xff\xff\xff"),
        ("height", (29_999).to_bytes(4, "big")),
        ("width", (29_999).to_bytes(4, "big")),
        ("channels", b"\xff\xff"),
        ("depth", b"\x00\x11"),
        ("colour mode data", b"\xff\xff\xff\xff"),
        ("image resources", b"\xff\xff\xff\xff"),
        ("layer section", b"\xff"),
        ("layer info", b"\xff"),
        ("layer count", b"\x7f\xff"),
        ("right 0", b"\x7f\xff\xff\xff"),
        ("bottom 0", b"\x7f\xff\xff\xff"),
        ("channels 0", b"\xff\xff"),
        ("channel 0.1", b"\xff"),
        ("extra data 0", b"\xff\xff\xff\xff"),
        ("mask 0", b"\x7f\xff\xff\xff"),
    ],
)
def test_a_size_that_the_file_cannot_hold_is_refused(
    kind, name, value, no_handle_leaks, memory_limit, time_limit
):
    altered = bytearray(sample(kind))
    (field,) = [each for each in sections.Sections(altered).fields if each.name == name]
    altered[field.offset : field.offset + field.size] = value.ljust(field.size, value[-1:])
    failure = outcome(io.BytesIO(bytes(altered)))
    assert failure is not None and "damaged" in str(failure)


@pytest.mark.parametrize("kind", ["rle", "raw", "psb"])
def test_a_layer_larger_than_its_channels_is_refused_when_it_is_looked_at(
    kind, no_handle_leaks, memory_limit, time_limit
):
    altered = bytearray(sample(kind))
    for field in sections.Sections(altered).fields:
        if field.name in ("right 0", "bottom 0"):
            altered[field.offset : field.offset + 4] = (40_000).to_bytes(4, "big")
    with documents.load(io.BytesIO(bytes(altered))) as document:
        layer = document.layers[0]
        assert (layer.width, layer.height) == (40_000, 40_000)
        with pytest.raises(RuntimeError, match="damaged"):
            layer.load_argb_32_pixels(layer.bounds)


@pytest.fixture
def time_limit():
    """Damage must not make anything slow: all attempts of a test together stay quick."""
    before = time.process_time()
    yield
    assert time.process_time() - before < 60


@pytest.fixture
def memory_limit():
    """Nothing of the declared size may have been allocated: what is resident hardly grows."""
    before = resident()
    yield
    assert resident() - before < 200 << 20


def resident():
    with open("/proc/self/status") as status:
        (line,) = [line for line in status if line.startswith("VmRSS")]
    return int(line.split()[1]) << 10
