"""The cast protocol over live objects: classes, structs, interfaces and enumerations."""

import io

import pytest

pytestmark = pytest.mark.usefixtures("no_handle_leaks")


@pytest.fixture
def image(no_handle_leaks):
    """A document of this test's own making, loaded as the declared type."""
    from kelmor.psd import Image
    from kelmor.psd.fileformats.psd import PsdImage

    target = io.BytesIO()
    with PsdImage(20, 10) as document:
        document.save(target)
    return Image.load(io.BytesIO(target.getvalue()))


def kinds():
    """A class, a struct, an interface and an enumeration, with their managed names."""
    from kelmor.psd import IColorPalette, Image, Point
    from kelmor.psd.fileformats.psd import ColorModes

    return {
        Image: "Kelmor.PSD.Image",
        Point: "Kelmor.PSD.Point",
        IColorPalette: "Kelmor.PSD.IColorPalette",
        ColorModes: "Kelmor.PSD.FileFormats.Psd.ColorModes",
    }


def outcome(result):
    return result.is_success, result.status, result.value


def test_every_type_tells_its_managed_type():
    from kelmor.typemodel import Type

    for kind, name in kinds().items():
        told = kind._type_of()
        assert type(told) is Type and told.full_name == name
        assert told == kind._type_of() and told is not kind._type_of()


def test_an_object_tells_its_own_type_and_not_the_declared_one(image):
    from kelmor.psd import Image, Point
    from kelmor.psd.fileformats.psd import ColorModes, PsdImage

    assert image.get_type() == PsdImage._type_of() != Image._type_of()
    assert Point(1, 2).get_type() == Point._type_of()
    assert ColorModes.CMYK.get_type() == ColorModes._type_of()


def test_what_is_no_wrapper_is_a_failed_cast(image):
    for kind in kinds():
        for value in (5, "x", object()):
            for cast in (kind._cast_to, kind._cast_as):
                assert outcome(cast(value)) == (False, 0, None)
            assert kind._is_assignable(value) is False
        assert outcome(kind._cast_as(None)) == (False, 0, None)
        assert kind._is_assignable(None) is False


def test_null_is_any_class_and_no_value():
    from kelmor.psd import IColorPalette, Image, Point

    assert outcome(Image._cast_to(None)) == outcome(IColorPalette._cast_to(None)) == (True, 1, None)
    assert outcome(Point._cast_to(None)) == (False, 0, None)


def test_an_object_is_cast_to_what_it_is(image):
    from kelmor.psd import Image, Point, RasterImage
    from kelmor.psd.fileformats.psd import PsdImage
    from kelmor.psd.fileformats.psd.layers import Layer

    for kind in (Image, RasterImage, PsdImage):
        for cast in (kind._cast_to, kind._cast_as):
            result = cast(image)
            assert (result.is_success, type(result.value)) == (True, kind)
            assert result.value == image
        assert kind._is_assignable(image) is True
    for kind in (Layer, Point):
        assert outcome(kind._cast_to(image)) == outcome(kind._cast_as(image)) == (False, 0, None)
        assert kind._is_assignable(image) is False
    assert outcome(image._cast_from(Layer._type_of())) == (False, 0, None)


def test_a_struct_is_copied_by_a_cast():
    from kelmor.psd import Point

    point = Point(1, 2)
    copy = Point._cast_as(point).value
    copy.x = 7
    assert (point.x, copy.x) == (1, 7)


def test_five_types_convert_themselves():
    from kelmor.psd import Point, Size
    from kelmor.typemodel import Object

    point = Point(3, 4)
    result = point._cast_from(Size._type_of())
    assert result.is_success and type(result.value) is Object
    for size in (Size._cast_as(result.value).value, Size._reinterpret_obj(result.value)):
        assert type(size) is Size and (size.width, size.height) == (3, 4)
    wanted = r"_cast_from\(\) expects a \.Net Type argument, got a int object"
    with pytest.raises(TypeError, match=wanted):
        point._cast_from(5)


def test_an_object_is_shown_as_another_class_or_refused(image):
    from kelmor.psd import IColorPalette, Image, Point
    from kelmor.psd.fileformats.psd import PsdImage
    from kelmor.typemodel import Object

    plain = Object._cast_as(image).value
    assert type(plain) is Object
    again = PsdImage._reinterpret_obj(plain)
    assert type(again) is PsdImage and again == image
    with pytest.raises(RuntimeError, match="^Proxy error"):
        Point._reinterpret_obj(plain)
    for kind in (Image, Point):
        wanted = r"_reinterpret_obj\(\) expects a \.Net Object argument, got a int object"
        with pytest.raises(TypeError, match=wanted):
            kind._reinterpret_obj(5)
    for value in (plain, image, None):
        name = "NoneType" if value is None else f"{type(value).__module__}.{type(value).__name__}"
        with pytest.raises(TypeError) as refused:
            IColorPalette._reinterpret_obj(value)
        wanted = f"cannot convert from  '{name}' to 'kelmor.psd.IColorPalette'"
        assert str(refused.value) == wanted


def test_a_member_goes_through_a_boxed_enumeration_and_back():
    from kelmor.psd import FileFormat
    from kelmor.psd.fileformats.psd import ColorModes
    from kelmor.typemodel import Enum, Object

    for member in (ColorModes.CMYK, FileFormat.PSD, FileFormat.PSD | FileFormat.PNG):
        kind = type(member)
        boxed = member._as_uni_enum()
        assert type(boxed) is Enum and boxed == member._as_uni_enum()
        assert kind._is_assignable(boxed) is True
        for cast in (kind._cast_to, kind._cast_as):
            result = cast(boxed)
            assert result.is_success and result.value == member and type(result.value) is kind
        assert kind._reinterpret_obj(Object._cast_as(boxed).value) == member
    other = FileFormat.PSD._as_uni_enum()
    assert outcome(ColorModes._cast_as(other)) == (False, 0, None)
    assert ColorModes._is_assignable(other) is False
    assert outcome(ColorModes.CMYK._cast_from(5)) == (False, 0, None)


def test_a_class_is_cast_to_its_interface_and_back():
    from kelmor.psd import ColorPalette, IColorPalette

    palette = ColorPalette([-1, 0])
    shown = IColorPalette._cast_as(palette).value
    assert type(shown) is IColorPalette and shown.entries_count == 2
    again = ColorPalette._cast_to(shown).value
    assert type(again) is ColorPalette and again == palette == shown
    assert IColorPalette._is_assignable(palette) and ColorPalette._is_assignable(shown)
