"""What a type checker says of programs over the stubs."""

import pathlib
import subprocess
import textwrap

import pytest

ROOT = pathlib.Path(__file__).resolve().parents[2]

GOOD = """
    import datetime
    import io
    from typing import Any, IO
    from typing_extensions import assert_type

    from kelmor.psd import Cache, CacheType, Color, ColorPalette, FileFormat, IColorPalette, Image
    from kelmor.psd import Point, Rectangle, RotateFlipType, Size
    from kelmor.psd.coreexceptions.imageformats import JpegLoadException
    from kelmor.psd.fileformats.psd import PsdImage
    from kelmor.psd.fileformats.psd.layers import Layer, LayerFlags, LayerGroup
    from kelmor.psd.imageoptions import PngOptions, PsdOptions
    from kelmor.shellcommon import BytesAsStream
    from kelmor.typemodel import Type

    def walk(path: str) -> list[str]:
        with Image.load(path) as image:
            assert isinstance(image, PsdImage)
            for layer in image.layers:
                assert_type(layer, Layer)
                assert_type(layer.opacity, int)
                assert_type(layer.layer_creation_date_time, datetime.datetime)
                if isinstance(layer, LayerGroup):
                    assert_type(layer.layers[0], Layer)
                layer.opacity = 255
                layer.flags = LayerFlags.VISIBLE | layer.flags
            image.layers[0] = image.layers[1]
            names = [layer.display_name for layer in image.layers[1:]]
            assert_type(image.layers + [1], list[Any])
            image.save(path, PngOptions())
            image.save(io.BytesIO(), options_base=PsdOptions())
            image.save(io.BytesIO(), PsdOptions(), Rectangle(0, 0, 2, 3))
        return names

    def streams(content: bytes, file: IO[bytes]) -> None:
        Image.load(io.BytesIO(content)).rotate_flip(RotateFlipType.ROTATE_90_FLIP_NONE)
        Image.load(BytesAsStream(content)).save(file)

    def interfaces(image: Image, palette: ColorPalette) -> None:
        image.set_palette(palette, False)
        known: IColorPalette = palette
        assert_type(known.get_color(0), Color)
        assert_type(image.palette, IColorPalette | None)

    def overloads(argb: int, color: Color) -> None:
        assert_type(Color.from_argb(1, 2, 3), Color)
        assert_type(Color.from_argb(alpha=1, base_color=color), Color)
        assert_type(Color.RED, Color)

    def both(area: Rectangle) -> None:
        area.inflate(1, 2)
        area.inflate(size=Size(1, 2))
        assert_type(Rectangle.inflate(area, 1, y=2), Rectangle)

    def others(error: JpegLoadException, image: Image) -> None:
        assert_type(error.reason, JpegLoadException.ErrorReason)
        assert_type(image.get_type(), Type)
        assert_type(PsdImage._cast_as(image).is_success, bool)
        assert_type(FileFormat.PSD.get_type(), Type)
        Cache.set_cache_folder("x")
        Cache.set_cache_type(CacheType.AUTO)
        assert_type(Cache.CACHE_FOLDER, str)
"""

BAD = {
    "a number for an enumeration": ("layer.flags = 2", "assignment"),
    "a text for a number": ('layer.opacity = "full"', "assignment"),
    "what can only be read": ("layer.length = 5", "misc"),
    "a static property": ('Cache.CACHE_FOLDER = "x"', "misc"),
    "an overload that is none": ("layer.save(5)", "call-overload"),
    "a class without a constructor": ("Image()", "call-arg"),
    "an interface": ("IColorPalette()", "misc"),
    "a text stream": ("Image.load(io.StringIO())", "arg-type"),
    "an element of another kind": ("layer.resources[0] = layer", "call-overload"),
    "a member that is none": ("layer.nothing", "attr-defined"),
    "a static half on an instance": ("area.inflate(area, 1, 2)", "call-overload"),
    "a class of one's own": ("class Own(Rectangle): ...", "misc"),
}


@pytest.fixture(scope="module")
def check(tmp_path_factory, generation):
    """Runs the checker over the stubs of the family and a program: exit code and lines."""
    from wrpgen import stubs

    folder = tmp_path_factory.mktemp("stubs")
    package = folder / "kelmor"
    for key in ("typemodel", "gfxtypes", "psd"):
        made = generation(key)
        for name, text in stubs.write(made.extension, made.families).items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
    (package / "__init__.py").touch()
    for leaf in ("shellbase", "shellcommon"):
        (package / f"{leaf}.pyi").write_text((ROOT / f"siblings/{leaf}/{leaf}.pyi").read_text())

    # An installed package is not judged itself: overloads in another order than those of the base,
    # for one, are how the library is.
    (folder / "mypy.ini").write_text("[mypy]\n[mypy-kelmor.*]\nignore_errors = True\n")

    def run(program, *options):
        (folder / "program.py").write_text(textwrap.dedent(program))
        command = ["/usr/bin/python3", "-m", "mypy", "--strict", "--no-color-output"]
        done = subprocess.run(
            [*command, *options, f"--cache-dir={folder / 'cache'}", "program.py"],
            cwd=folder,
            capture_output=True,
            text=True,
        )
        return done.returncode, done.stdout.splitlines() + done.stderr.splitlines()

    if "No module named mypy" in str(run("")):
        pytest.skip("mypy is not installed")
    return run


def test_right_programs_pass(check):
    code, lines = check(GOOD)
    assert (code, lines) == (0, ["Success: no issues found in 1 source file"])


def test_wrong_lines_are_found(check):
    program = """
        import io
        from kelmor.psd import Cache, IColorPalette, Image, Rectangle
        from kelmor.psd.fileformats.psd.layers import Layer

        def wrong(layer: Layer, area: Rectangle) -> None:
    """
    rows = [f"            {line}" for line, _ in BAD.values()]
    code, lines = check(program.rstrip() + "\n" + "\n".join(rows) + "\n", "--show-error-codes")
    first = program.rstrip().count("\n") + 1
    found = {}
    for line in lines:
        if ": error: " in line:
            place, kind = line.split(":")[1], line.rpartition("[")[2].rstrip("]")
            found.setdefault(int(place), kind)
    wanted = {first + number: kind for number, (_, kind) in enumerate(BAD.values(), 1)}
    assert code == 1 and found == wanted, lines
