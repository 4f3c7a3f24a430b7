"""The choice among the signatures of a member: order, records, failures."""

import ctypes
import enum
import gc
import struct
import sys
import weakref

from psd_scene import entry_class, missing_text, psd_scene, string_at, variant_at
from wrappers import handle_of, i32, raised, text_of, variant

LAYER = "FileFormats.Psd.Layers.Layer"
HEADER = "Xmp.XmpHeaderPi"


def texts(function, *arguments, **keywords):
    """The list of a failed choice."""
    error = raised(TypeError, function, *arguments, **keywords)
    (value,) = error.args
    assert type(value) is list and all(type(text) is str for text in value)
    assert str(error) == str(value)
    return value


def at_most(most, given):
    return f"function takes at most {most} argument{'' if most == 1 else 's'} ({given} given)"


class Refused(Exception):
    alive = weakref.WeakSet()

    def __init__(self, text):
        super().__init__(text)
        self.alive.add(self)


class Odd(int):
    """A number that raises when a converter asks for its class, the first times at least."""

    asked, times = 0, 100

    @property
    def __class__(self):
        Odd.asked += 1
        if Odd.asked > self.times:
            return enum.EnumType
        raise Refused("odd indeed")


def allow_odd():
    enum.EnumType = type(enum.Enum)  # the name is younger than 3.11


@psd_scene(
    "family-overloads.xmp-header-pi.two-arguments",
    "family-overloads.failure.list",
    "family-overloads.failure.str",
)
def test_a_failed_choice_tells_of_each_signature(s):
    assert texts(s.type_of(HEADER), 1, 2) == [at_most(0, 2), at_most(1, 2)]
    assert s.calls() == []


@psd_scene("family-overloads.xmp-header-pi.wrong-object", "family-overloads.failure.entries")
def test_an_entry_is_the_plain_text_of_its_attempt(s):
    wanted = [at_most(0, 1), "can't build String from 'int'"]
    assert texts(s.type_of(HEADER), 5) == wanted


@psd_scene(
    "family-overloads.xmp-header-pi.fits",
    "family-overloads.arguments.empty",
    "family-overloads.ctor.stores-handle",
)
def test_the_constructor_that_fits_is_called(s):
    kind, given = s.type_of(HEADER), []
    s.method(HEADER, "ctor_000_XmpHeaderPi").returns(0x11)

    def make(frame):
        given.append(string_at(frame.integers[0]))
        frame.result = 0x12

    s.method(HEADER, "ctor_001_XmpHeaderPi").calls(make)
    kept = [kind(), kind("a"), kind(guid="b")]
    assert [handle_of(one) for one in kept] == [0x11, 0x12, 0x12] and given == ["a", "b"]
    names = ["ctor_000_XmpHeaderPi"] + ["ctor_001_XmpHeaderPi"] * 2
    assert s.calls() == names


@psd_scene("family-overloads.arguments.extra", "family-overloads.keywords.unknown")
def test_the_parser_refuses_what_no_signature_has(s):
    kind = s.type_of(HEADER)
    first, second = texts(kind, "a", "b")
    assert (first, second) == (at_most(0, 2), at_most(1, 2))
    first, second = texts(kind, other=1)
    assert "0 " in first and "argument" in first
    assert second == "function missing required argument 'guid' (pos 1)"
    first, second = texts(kind, guid="a", other=1)
    assert "at most 1" in second and "2 given" in second
    assert s.calls() == []


@psd_scene("family-overloads.ctor.managed-exception", "family-overloads.method.managed-exception")
def test_a_managed_exception_is_the_outcome(s):
    s.method(HEADER, "ctor_000_XmpHeaderPi").raises(RuntimeError, "managed")
    assert text_of(RuntimeError, s.type_of(HEADER)) == "managed"
    assert s.calls() == ["ctor_000_XmpHeaderPi"]
    image = s.wrap("Image", 0x10)
    s.clear()
    # None fits the signature with a path, and the one with a stream as well.
    s.method("Image", "call_001_Save").raises(ValueError, "full")
    assert text_of(ValueError, image.save, None, None) == "full"
    assert s.calls() == ["call_001_Save"]


@psd_scene("family-overloads.ctor.handle-before-error")
def test_a_handle_that_comes_with_an_error_is_released_once(s):
    s.method(HEADER, "ctor_000_XmpHeaderPi").raises(RuntimeError, "managed").returns(0x13)
    raised(RuntimeError, s.type_of(HEADER))
    assert s.calls("FreeInstance") == [[0x13]]


@psd_scene(
    "family-overloads.order.image-save",
    "family-overloads.order.image-save-entries",
    "family-overloads.order.first-fit",
    "family-overloads.order.declared-then-inherited",
)
def test_save_reaches_its_eight_signatures(s):
    image, options = s.wrap("Image", 0x10), s.make("ImageOptions.PsdOptions", 0x20)
    bounds, stream = s.wrap("Rectangle", 0x30), s.wrap(s.interop._StreamWrapper, 0x40)
    rows = [
        ("Image", "call_000_Save", {}),
        ("Image", "call_001_Save", {"file_path": "a", "options": options}),
        ("Image", "call_002_Save", {"file_path": "a", "options": None, "bounds_rectangle": bounds}),
        ("Image", "call_003_Save", {"stream": stream, "options_base": options}),
        (
            "Image",
            "call_004_Save",
            {"stream": stream, "options_base": None, "bounds_rectangle": bounds},
        ),
        ("DataStreamSupporter", "call_000_Save", {"stream": stream}),
        ("DataStreamSupporter", "call_001_Save", {"file_path": "a"}),
        ("DataStreamSupporter", "call_002_Save", {"file_path": "a", "over_write": True}),
    ]
    for kind, entry, keywords in rows:
        for arguments, named in (((), keywords), (tuple(keywords.values()), {})):
            s.clear()
            assert image.save(*arguments, **named) is None
            (call,) = [e for e in s.script.journal if e["call"] == "delegate"]
            assert (call["type"], call["method"]) == (entry_class(kind), entry)
            assert call["arguments"][0] == 0x10


@psd_scene("family-overloads.order.image-save-list", "family-overloads.order.derived-repeats-bases")
def test_a_failed_save_tells_of_its_eight_signatures(s):
    string, stream = "can't build String from 'int'", "can't build Stream from 'int'"
    image = s.wrap("Image", 0x10)
    declared = [at_most(0, 1), string, string, stream, stream]
    inherited = [stream, string, string]
    assert texts(image.save, 1) == declared + inherited
    given = [at_most(most, 4) for most in (0, 2, 3, 2, 3, 1, 1, 2)]
    assert texts(image.save, 1, 2, 3, 4) == given
    # A raster image replaces the signature with a stream and bounds; it stands first then.
    raster = s.wrap("RasterImage", 0x10)
    assert texts(raster.save, 1) == [stream, *declared[:4], *inherited]
    given = [at_most(most, 4) for most in (3, 0, 2, 3, 2, 1, 1, 2)]
    assert texts(raster.save, 1, 2, 3, 4) == given


@psd_scene(
    "family-overloads.color.from-argb-order",
    "family-overloads.color.from-argb-choice",
    "family-overloads.flags.dispatcher",
)
def test_from_argb_goes_by_declaration(s):
    color, base = s.type_of("Color"), s.wrap("Color", 0x77)
    calls = [
        ("call_000_FromArgb", [1]),
        ("call_001_FromArgb", [1, 2, 3, 4]),
        ("call_003_FromArgb", [1, 2, 3]),
    ]
    for entry, numbers in calls:
        s.method("Color", entry).returns(0x50)
        s.clear()
        color.from_argb(*numbers)
        (given,) = s.calls(entry, len(numbers))
        assert [i32(word) for word in given] == numbers
    s.method("Color", "call_002_FromArgb").shows(1, 16).returns(0x51)
    for keywords in ({"alpha": 1, "base_color": base}, {"base_color": base, "alpha": 1}):
        s.clear()
        assert handle_of(color.from_argb(**keywords)) == 0x51
        assert [variant(part) for (part,) in s.memory("call_002_FromArgb")] == [(1, 0x77)]
    named = dict(red=1, green=2, blue=3)
    s.clear()
    color.from_argb(**named), base.from_argb(**named)
    assert [name for name in s.calls() if "FromArgb" in name] == ["call_003_FromArgb"] * 2
    given = [at_most(most, 5) for most in (1, 4, 2, 3)]
    assert texts(color.from_argb, 1, 2, 3, 4, 5) == given


@psd_scene("family-overloads.static.validity-first", refuse=[("Image", "btp_TypeOf")])
def test_a_static_choice_of_an_invalid_class_makes_no_attempt(s):
    error = raised(TypeError, s.type_of("Image").load, object(), object(), object())
    assert error.args == (missing_text("Image", "btp_TypeOf"),)


@psd_scene("family-overloads.records.fresh")
def test_an_attempt_sees_nothing_of_those_before(s):
    layer = s.type_of(LAYER)
    # The text of the last signature, converted in no attempt before, and left out for None.
    s.method(LAYER, "ctor_003_Layer").shows(4, 16).shows(1, 16)
    bounds = s.wrap("Rectangle", 0x30)
    raised(TypeError, layer, bounds, b"red", b"gre", b"blu", 5)
    layer(bounds, None, b"", b"", None)
    ((name, red),) = s.memory("ctor_003_Layer")
    assert struct.unpack("<i12s", name) == (-1, bytes(12))
    assert struct.unpack("<iiQ", red) == (0, -1, 0)


@psd_scene("family-overloads.success.no-error-left", "family-overloads.failure.no-leak")
def test_nothing_of_failed_attempts_stays(s):
    allow_odd()
    color, base = s.type_of("Color"), s.wrap("Color", 0x77)
    gc.disable()
    raised(TypeError, color.from_argb, Odd(1), base)
    assert len(Refused.alive) == 0
    # A converter that raises once, in the attempt before the one that fits.
    odd = Odd(1)
    Odd.asked, odd.times = 0, 1
    s.method("Color", "call_003_FromArgb").returns(0x50)
    assert handle_of(color.from_argb(odd, 2, 3)) == 0x50
    assert Odd.asked == 2 and len(Refused.alive) == 0
    assert sys.exc_info() == (None, None, None)


@psd_scene("family-overloads.success.clean-indicator")
def test_no_error_is_pending_while_the_rest_runs(s):
    pending = ctypes.pythonapi.PyErr_Occurred
    pending.restype = ctypes.c_void_p
    seen = []

    class Path(str):
        pass

    s.method("DataStreamSupporter", "call_002_Save").calls(lambda f: seen.append(pending()))
    s.wrap("Image", 0x10).save(Path("a"), True)
    assert seen == [None]


@psd_scene(
    "family-overloads.failure.any-class",
    "family-overloads.failure.overflow-all",
)
def test_every_kind_of_failure_is_but_one_text(s):
    allow_odd()
    color = s.type_of("Color")
    large = f"value '{2**31}' is out of the INT32 range"
    found = texts(color.from_argb, 2**31)
    assert found[0] == large and found[1] == large
    assert len(found) == 4 and found[2:] == [large, large]
    assert texts(color.from_argb, Odd(1))[0] == "odd indeed"
    s.method("Color", "call_003_FromArgb").returns(0x50)
    assert handle_of(color.from_argb(1, 2, 3)) == 0x50


@psd_scene("family-overloads.failure.str-of-value-fails")
def test_a_failure_without_a_text_leaves_its_place_empty(s):
    allow_odd()

    class Mute(Exception):
        def __str__(self):
            raise ValueError("no text")

    class Odder(int):
        @property
        def __class__(self):
            raise Mute()

    error = raised(TypeError, s.type_of("Color").from_argb, Odder(1))
    (value,) = error.args
    assert len(value) == 4 and repr(value).count("<NULL>") == 4


@psd_scene("family-overloads.ranking.none-value")
def test_none_goes_to_the_first_class_parameter(s):
    image = s.wrap("Image", 0x10)
    image.save(None, None)
    palette = s.type_of("ColorPalette")(None)
    assert s.calls() == ["call_001_Save", "ctor_000_ColorPalette"] and not handle_of(palette)


@psd_scene("family-overloads.ranking.none")
def test_the_earlier_signature_wins_whatever_the_fit(s):
    graphics, pen = s.wrap("Graphics", 0x10), s.wrap("Pen", 0x20)
    graphics.draw_rectangle(pen, 1, 2, 3, 4)  # floats, declared before ints
    graphics.draw_line(pen, 1, 2, 3, 4)  # ints, declared before floats
    graphics.draw_line(pen, 1, 2, 3, 0.5)
    assert s.calls() == ["call_002_DrawRectangle", "call_002_DrawLine", "call_003_DrawLine"]


@psd_scene("family-overloads.interface.dispatcher")
def test_an_interface_chooses_alike(s):
    palette = s.wrap("IColorPalette", 0x60)
    wanted = ["integer argument expected, got 'str'", "can't build Color value from 'str'"]
    assert texts(palette.get_nearest_color_index, "x") == wanted
    s.method("IColorPalette", "call_001_GetNearestColorIndex").shows(1, 16).returns(9)
    assert palette.get_nearest_color_index(s.wrap("Color", 0x77)) == 9
    assert [variant(part) for (part,) in s.memory("call_001_GetNearestColorIndex")] == [(1, 0x77)]


@psd_scene("family-overloads.single.constructor", "family-overloads.single.method")
def test_a_single_signature_reports_its_own_error(s):
    assert text_of(TypeError, s.type_of("Color"), 5) == at_most(0, 1)
    palette = s.wrap("IColorPalette", 0x60)
    wanted = f"value '{2**31}' is out of the INT32 range"
    assert text_of(OverflowError, palette.get_color, 2**31) == wanted


@psd_scene(
    "family-overloads.builders.layer-ctor",
    "family-overloads.builders.success-path",
    "family-overloads.builders.failure-path",
    "family-overloads.builders.no-lasting-effect",
)
def test_buffers_are_held_for_the_attempt_alone(s):
    layer, bounds = s.type_of(LAYER), s.wrap("Rectangle", 0x30)
    blocks = [bytearray(b"red"), bytearray(b"gre"), bytearray(b"blu")]

    def locked():
        try:
            for block in blocks:
                block.append(0), block.pop()
        except BufferError:
            return True
        return False

    found = texts(layer, bounds, *blocks, 5)
    given = [at_most(most, 5) for most in (0, 2, 1)]
    assert found == [*given, "can't build String from 'int'"]
    assert not locked() and s.calls("FreeInstance") == [] and handle_of(bounds) == 0x30
    seen = []

    def make(frame):
        data = [struct.unpack("<4xiQ", ctypes.string_at(frame.integers[n], 16)) for n in (1, 2, 3)]
        contents = [ctypes.string_at(place, length) for length, place in data]
        name = string_at(frame.integers[4])
        seen.append((variant_at(frame.integers[0]), contents, name, locked()))
        frame.result = 0x50

    s.method(LAYER, "ctor_003_Layer").calls(make)
    made = layer(bounds, *blocks, "name")
    assert seen == [((1, 0x30), [b"red", b"gre", b"blu"], "name", True)]
    assert handle_of(made) == 0x50 and not locked()
    s.method(LAYER, "ctor_003_Layer").reset().raises(RuntimeError, "managed")
    raised(
        RuntimeError,
        layer,
        bounds=bounds,
        red_bytes=blocks[0],
        green_bytes=blocks[1],
        blue_bytes=blocks[2],
        name="name",
    )
    assert not locked()
    s.method(LAYER, "ctor_001_Layer").returns(0x51)
    s.method(LAYER, "ctor_002_Layer").returns(0x52)
    stream = s.wrap(s.interop._StreamWrapper, 0x40)
    assert handle_of(layer(image=None, dispose_image=False)) == 0x51
    assert handle_of(layer(stream=stream)) == 0x52


@psd_scene("family-overloads.mixed.rectangle-inflate-type")
def test_on_the_type_only_the_static_signature_counts(s):
    kind, r = s.type_of("Rectangle"), s.wrap("Rectangle", 0x30)
    s.method("Rectangle", "call_000_Inflate").shows(0, 16).takes(3).returns(0x31)
    assert handle_of(kind.inflate(r, 1, -2)) == handle_of(kind.inflate(rect=r, x=1, y=-2)) == 0x31
    assert [[i32(w) for w in row[1:]] for row in s.calls("call_000_Inflate", 3)] == [[1, -2]] * 2
    assert [variant(part) for (part,) in s.memory("call_000_Inflate")] == [(1, 0x30)] * 2
    wanted = "function missing required argument 'y' (pos 3)"
    assert text_of(TypeError, kind.inflate, r, 1) == wanted


@psd_scene("family-overloads.mixed.rectangle-inflate-instance")
def test_on_an_instance_only_the_instance_signatures_count(s):
    r, size = s.wrap("Rectangle", 0x30), s.wrap("Size", 0x70)
    s.method("Rectangle", "call_001_Inflate").takes(3)
    s.method("Rectangle", "call_002_Inflate").shows(1, 16)
    assert r.inflate(3, height=4) is None and r.inflate(size) is None
    assert s.calls("call_001_Inflate", 3) == [[0x30, 3, 4]]
    assert [variant(part) for (part,) in s.memory("call_002_Inflate")] == [(1, 0x70)]
    assert texts(r.inflate, r, 1, 2) == [at_most(2, 3), at_most(1, 3)]


@psd_scene("family-overloads.mixed.four-names")
def test_four_names_are_static_and_instance_at_once(s):
    found = [
        (kind.__name__, name)
        for _, _, kind in s.types_below()
        for name, value in vars(kind).items()
        if type(value).__name__ == "_MixMethodDescrType"
    ]
    pairs = [
        (kind, name) for kind in ("Rectangle", "RectangleF") for name in ("inflate", "intersect")
    ]
    assert sorted(found) == sorted(pairs)
