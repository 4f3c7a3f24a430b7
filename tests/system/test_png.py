"""PNG files of every colour type and depth are right in the eyes of other programs."""

import io
import shutil
import subprocess

import pytest

PIL = pytest.importorskip("PIL.Image", reason="Pillow reads the PNG files back")
pytestmark = pytest.mark.usefixtures("no_handle_leaks")

KINDS = [
    *(("GRAYSCALE", depth) for depth in (1, 2, 4, 8, 16)),
    *(("INDEXED_COLOR", depth) for depth in (1, 2, 4, 8)),
    *(("TRUECOLOR", depth) for depth in (8, 16)),
    *(("GRAYSCALE_WITH_ALPHA", depth) for depth in (8, 16)),
    *(("TRUECOLOR_WITH_ALPHA", depth) for depth in (8, 16)),
]
COLOURS = [(255, 0, 0, 255), (0, 255, 0, 255)]


@pytest.fixture
def document():
    """Two colours, in columns of 5 pixels, on 37 x 11 pixels: no row ends at a whole byte."""
    from kelmor.psd import Rectangle
    from kelmor.psd.fileformats.psd import PsdImage
    from kelmor.psd.fileformats.psd.layers import Layer

    width, height = 37, 11
    columns = [COLOURS[x // 5 % 2] for x in range(width)]
    planes = [bytes(colour[i] for colour in columns) * height for i in range(3)]
    with PsdImage(width, height) as document:
        document.add_layer(Layer(Rectangle(0, 0, width, height), *planes, "Stripes"))
        yield document


def options(colour_type="TRUECOLOR_WITH_ALPHA", depth=8, **more):
    from kelmor.psd.fileformats.png import PngColorType
    from kelmor.psd.imageoptions import PngOptions

    result = PngOptions()
    result.color_type = PngColorType[colour_type]
    result.bit_depth = depth
    for name, value in more.items():
        setattr(result, name, value)
    return result


def saved(document, chosen):
    stream = io.BytesIO()
    document.save(stream, chosen)
    return stream.getvalue()


def verify(content, tmp_path):
    """pngcheck looks at every chunk and at the whole stream of pixels."""
    if not shutil.which("pngcheck"):
        pytest.skip("pngcheck is not installed")
    path = tmp_path / "made.png"
    path.write_bytes(content)
    result = subprocess.run(["pngcheck", "-v", str(path)], capture_output=True, text=True)
    assert result.returncode == 0 and "No errors detected" in result.stdout, result.stdout


def gray(colour):
    red, green, blue, _ = colour
    return (19595 * red + 38470 * green + 7471 * blue + 32768) >> 16


def shown(colour_type, depth, colour):
    if not colour_type.startswith("GRAYSCALE"):
        return colour
    level = gray(colour)
    if depth < 8:
        most = (1 << depth) - 1
        level = (level * most + 127) // 255 * 255 // most
    return (level, level, level, 255)


@pytest.mark.parametrize("interlaced", [False, True], ids=["rows", "interlaced"])
@pytest.mark.parametrize(("colour_type", "depth"), KINDS)
def test_every_kind_has_the_right_pixels(document, colour_type, depth, interlaced, tmp_path):
    content = saved(document, options(colour_type, depth, progressive=interlaced))
    verify(content, tmp_path)
    assert (content[24], content[28]) == (depth, int(interlaced))
    picture = PIL.open(io.BytesIO(content))
    assert picture.size == (37, 11)
    if picture.mode == "I":  # 16 bits: Pillow would cut them off instead of scaling them
        picture = picture.point(lambda level: level / 257).convert("L")
    pixels = picture.convert("RGBA").load()
    for x in range(37):
        assert pixels[x, 10] == shown(colour_type, depth, COLOURS[x // 5 % 2])


@pytest.mark.parametrize("level", range(10))
def test_every_level_has_the_same_pixels(document, level, tmp_path):
    content = saved(document, options(compression_level=level))
    verify(content, tmp_path)
    assert list(PIL.open(io.BytesIO(content)).getdata()) == stripes()


@pytest.mark.parametrize("name", ["NONE", "SUB", "UP", "AVG", "PAETH", "ADAPTIVE"])
def test_every_filter_has_the_same_pixels(document, name, tmp_path):
    from kelmor.psd.fileformats.png import PngFilterType

    content = saved(document, options(filter_type=PngFilterType[name]))
    verify(content, tmp_path)
    assert list(PIL.open(io.BytesIO(content)).getdata()) == stripes()


def stripes():
    return [COLOURS[x // 5 % 2] for x in range(37)] * 11


@pytest.mark.parametrize(
    ("colour_type", "depth"),
    [("INDEXED_COLOR", 16), ("TRUECOLOR", 4), ("TRUECOLOR_WITH_ALPHA", 1)],
)
def test_a_depth_that_png_does_not_have_is_refused(document, colour_type, depth):
    stream = io.BytesIO()
    with pytest.raises(RuntimeError, match="PngImageException"):
        document.save(stream, options(colour_type, depth))
    assert stream.getvalue() == b""


def test_resolution_and_metadata_of_the_options_are_written(document, tmp_path):
    from kelmor.psd import ResolutionSetting
    from kelmor.psd.xmp import XmpPacketWrapper

    chosen = options(
        resolution_settings=ResolutionSetting(300.0, 150.0),
        xmp_data=XmpPacketWrapper(),
    )
    content = saved(document, chosen)
    verify(content, tmp_path)
    picture = PIL.open(io.BytesIO(content))
    assert [round(value) for value in picture.info["dpi"]] == [300, 150]
    assert "<x:xmpmeta" in picture.info["XML:com.adobe.xmp"]
