"""The merged image of 8-bit RGB and grayscale files, saved as PNG, is what other programs see."""

import base64
import hashlib
import io

import documents
import pytest

PIL = pytest.importorskip("PIL.Image", reason="Pillow reads the PNG files back")

# The white matte of a picture with alpha is removed with different rounding by each program.
ROUNDING = 1.0


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
    hashes = documents.rgba_hashes(merged_truth)
    if len(hashes) == 1:
        assert hashlib.sha256(picture.tobytes()).hexdigest() in hashes
    else:
        assert hashlib.sha256(picture.getchannel("A").tobytes()).hexdigest() == alpha(merged_truth)
        assert farthest_cell(picture, merged_truth) <= ROUNDING


def alpha(truth):
    """The plane behind the colours, which has no rounding."""
    colours = {"rgb": 3, "grayscale": 1}[truth["header"]["color_mode"]]
    return truth["merged"]["channel_raw_sha256"][colours]


def farthest_cell(picture, truth):
    """The largest difference of a mean over the cells of the reference's grid, over white."""
    grid = truth["merged"]["psd_tools_1_18_0"]["grid"]
    wanted = base64.b64decode(grid["rgb_over_white_b64"])
    white = PIL.new("RGBA", picture.size, "white")
    flat = PIL.alpha_composite(white, picture).convert("RGB")
    width, height = flat.size
    worst = 0.0
    for row in range(grid["gh"]):
        top, bottom = row * height // grid["gh"], (row + 1) * height // grid["gh"]
        for column in range(grid["gw"]):
            left = column * width // grid["gw"]
            right = (column + 1) * width // grid["gw"]
            cell = flat.crop((left, top, right, bottom)).tobytes()
            at = (row * grid["gw"] + column) * 3
            for channel in range(3):
                mean = sum(cell[channel::3]) / (len(cell) // 3)
                worst = max(worst, abs(mean - wanted[at + channel]))
    return worst


def test_a_png_by_path_and_by_stream_are_the_same(merged_truth, tmp_path):
    from kelmor.psd.imageoptions import PngOptions

    path = tmp_path / "merged.png"
    stream = io.BytesIO()
    with documents.load(documents.path_of(merged_truth)) as document:
        document.save(str(path), PngOptions())
        document.save(stream, PngOptions())
    assert path.read_bytes() == stream.getvalue()
    assert path.read_bytes().startswith(b"\x89PNG\r\n\x1a\n")
