"""Members that name types of a sibling module: what its capsules convert, both ways."""

import ctypes

from psd_scene import psd_scene, variant_at
from wrappers import POINTER, text_of

BRUSHES, COLORS = "Extensions.BrushExtensions", "Extensions.ColorExtensions"
FONTS, TURNS = "Extensions.FontExtensions", "Extensions.RotateFlipExtensions"
POINTS = "Extensions.PointExtensions"


@psd_scene("family-interfaces.external.result", "family-statics.capsule.sibling-class-enum")
def test_results_come_from_the_second_word(s):
    brush = s.wrap("Brushes.SolidBrush", 0x10)
    s.method(BRUSHES, "call_000_ToGdiBrush").returns(0x77)
    assert s.type_of(BRUSHES).to_gdi_brush(brush) == ("Brush", 0x77)
    assert s.calls("call_000_ToGdiBrush") == [[0x10]]
    s.method(TURNS, "call_000_ToGdiRotateFlip").returns(5)
    turn = s.type_of("RotateFlipType").ROTATE_90_FLIP_NONE
    assert s.type_of(TURNS).to_gdi_rotate_flip(turn) == ("RotateFlipType", 5)
    # A value type is given by the address of its handle.
    s.method(POINTS, "call_000_ToGdiPoint").returns(0x78)
    assert s.type_of(POINTS).to_gdi_point(s.wrap("PointF", 0x20)) == ("PointF", 0x78)
    s.method("Test", "BrushToPy").reset().raises(ValueError, "no brush").returns(0)
    assert text_of(ValueError, s.type_of(BRUSHES).to_gdi_brush, brush) == "no brush"


@psd_scene("family-interfaces.external.parameter", "family-statics.capsule.sibling-class-enum")
def test_parameters_go_through_the_first_word(s):
    given, taken = [], []

    def color(frame):
        given.append(ctypes.cast(frame.integers[0], ctypes.py_object).value)
        ctypes.c_int32.from_address(frame.integers[1]).value = 1
        POINTER.from_address(frame.integers[1] + 8).value = 0x55
        frame.result = 1

    def unit(frame):
        given.append(ctypes.cast(frame.integers[0], ctypes.py_object).value)
        ctypes.c_int32.from_address(frame.integers[1]).value = 3
        frame.result = 1

    s.method("Test", "ColorFromPy").calls(color)
    s.method("Test", "GraphicsUnitFromPy").calls(unit)
    s.method(COLORS, "call_000_FromGdiColor").calls(
        lambda frame: taken.append(variant_at(frame.integers[0]))
    )
    s.type_of(COLORS).from_gdi_color("a colour")
    assert given == ["a colour"] and taken == [(1, 0x55)]
    font = s.wrap("Font", 0x30)
    s.method(FONTS, "call_001_ToGdiFont").takes(2).returns(0x79)
    assert s.type_of(FONTS).to_gdi_font(font, "a unit") == ("Font", 0x79)
    assert given[1:] == ["a unit"] and s.calls("call_001_ToGdiFont", 2) == [[0x30, 3]]
    s.clear()
    s.method("Test", "ColorFromPy").reset().raises(LookupError, "no such colour").returns(0)
    assert text_of(LookupError, s.type_of(COLORS).from_gdi_color, 5) == "no such colour"
    assert s.calls() == []


@psd_scene("family-interfaces.external.parameter")
def test_what_only_passes_through_goes_by_the_third_word(s):
    point, asked = s.wrap("Point", 0x40), []

    def pass_on(frame):
        asked.append(ctypes.cast(frame.integers[0], ctypes.py_object).value)
        POINTER.from_address(frame.integers[1]).value = 0x66
        frame.result = 1

    s.method("Test", "TypeFromPy").calls(pass_on)
    s.method("Point", "btp_CastFrom").takes(3).returns(0)
    point._cast_from("a type")
    assert asked == ["a type"] and s.calls("btp_CastFrom", 2) == [[0x40, 0x66]]


@psd_scene("family-statics.write.setters")
def test_nine_static_properties_are_written_by_methods(s):
    rows = [
        ("MultiThreading.InterruptMonitor", "ThreadLocalInstance", None),
        ("MemoryManagement.Configuration", "BufferSizeHint", 5),
        ("FontSettings", "DefaultFontName", "Lato"),
        ("FontSettings", "GetSystemAlternativeFont", True),
        ("Cache", "ExactReallocateOnly", True),
        ("Cache", "CacheFolder", "/tmp"),
        ("Cache", "MaxMemoryForCache", 7),
        ("Cache", "MaxDiskSpaceForCache", 8),
        ("Cache", "CacheType", s.type_of("CacheType").AUTO),
    ]
    found, wanted = set(), set()
    for _, name, kind in s.types_below():
        for key, value in vars(kind).items():
            if key.startswith("set_") and type(value) is staticmethod:
                found |= {(name, key)} if key[4:].upper() in vars(kind) else set()
    for name, member, value in rows:
        words = "".join("_" + c.lower() if c.isupper() else c for c in member)
        wanted.add((name.rpartition(".")[2], "set" + words))
        s.clear()
        assert getattr(s.type_of(name), "set" + words)(value) is None
        assert s.calls() == [f"setsa_{member}"]
    assert found == wanted
