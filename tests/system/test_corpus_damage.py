"""Damaged documents fail with an error of words or load in part; they never harm the process."""

import io

import documents
import pytest


def look_at_all(document):
    """Touches what a damaged file may have broken."""
    from kelmor.psd.imageoptions import PngOptions

    for layer in document.layers:
        assert isinstance(layer.name, str)
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


@pytest.mark.parametrize("kept", [0, 1, 3, 4, 25, 26, 30, 100, 0.25, 0.5, 0.75, 0.999])
def test_a_truncated_document_is_refused_or_read_in_part(layered_sample, kept, no_handle_leaks):
    whole = layered_sample
    length = kept if isinstance(kept, int) else int(len(whole) * kept)
    failure = outcome(io.BytesIO(whole[:length]))
    if length <= 26:
        assert failure is not None, "less than a header cannot be a document"


@pytest.mark.parametrize("seed", range(40))
def test_an_altered_document_is_refused_or_read_in_part(layered_sample, seed, no_handle_leaks):
    # A step that is coprime to the usual field sizes reaches every kind of field over the seeds.
    altered = bytearray(layered_sample)
    for at in range(26 + seed * 7, min(len(altered), 6000), 397):
        altered[at] ^= 0xFF
    outcome(io.BytesIO(bytes(altered)))


@pytest.mark.parametrize(
    ("offset", "field"),
    [
        pytest.param(14, b"\x7f\xff\xff\xff", id="height"),
        pytest.param(18, b"\x7f\xff\xff\xff", id="width"),
        pytest.param(12, b"\xff\xff", id="channels"),
        pytest.param(22, b"\x00\x11", id="depth"),
        pytest.param(26, b"\xff\xff\xff\xff", id="colour-mode-data"),
    ],
)
def test_a_size_that_the_file_cannot_hold_is_refused(
    layered_sample, offset, field, no_handle_leaks, memory_limit
):
    altered = bytearray(layered_sample)
    altered[offset : offset + len(field)] = field
    assert outcome(io.BytesIO(bytes(altered))) is not None


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


@pytest.fixture(scope="module")
def layered_sample():
    found = [truth for truth in documents.truths() if documents.short_name(truth) == "slices.psd"]
    if not found:
        pytest.skip(documents.WITHOUT_CORPUS)
    return documents.path_of(found[0]).read_bytes()
