"""The merged image of 8-bit RGB and grayscale files, saved as PNG, is what other programs see."""

import hashlib
import io

import documents
import pytest

PIL = pytest.importorskip("PIL.Image", reason="Pillow reads the PNG files back")


def saved_as_png(document):
    from kelmor.psd.imageoptions import PngOptions

    stream = io.BytesIO()
    document.save(stream, PngOptions())
    stream.seek(0)
    return PIL.open(stream).convert("RGBA")


def test_the_merged_image_equals_the_truth(merged_truth, no_handle_leaks):
    with documents.load(documents.path_of(merged_truth)) as document:
        picture = saved_as_png(document)
    header = merged_truth["header"]
    assert picture.size == (header["width"], header["height"])
    # Where a white matte is removed, the references may differ from each other by their rounding.
    found = hashlib.sha256(picture.tobytes()).hexdigest()
    assert found in documents.rgba_hashes(merged_truth)


def test_a_png_by_path_and_by_stream_are_the_same(merged_truth, tmp_path):
    from kelmor.psd.imageoptions import PngOptions

    path = tmp_path / "merged.png"
    stream = io.BytesIO()
    with documents.load(documents.path_of(merged_truth)) as document:
        document.save(str(path), PngOptions())
        document.save(stream, PngOptions())
    assert path.read_bytes() == stream.getvalue()
    assert path.read_bytes().startswith(b"\x89PNG\r\n\x1a\n")
