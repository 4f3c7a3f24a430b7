"""Text: lent in place on the way in, UTF-16 on the way back."""

import ctypes
import os
import pathlib
import sys
import warnings

import pytest
from marshal_probe import (
    INT,
    LONG,
    OBJECT,
    POINTER,
    PyEphStrArg,
    PyStringArg,
    accepted,
    address,
    identity,
    native,
    refused,
    said,
    text_of,
    units,
)

behaviour = pytest.mark.behaviour

TO_CLR = "fn_conv_py_string_to_clr_string"
PATH = "fn_conv_py_strorpath_to_clr_string"

# The two headers before the characters of a compact str.
ASCII_HEADER = sys.getsizeof("") - 1
COMPACT_HEADER = sys.getsizeof("".join(map(chr, (233, 234)))) - 3


class MyStr(str):
    pass


def record(fill=0):
    memory = PyStringArg.from_buffer(bytearray([fill]) * 16)
    memory.length = -1
    return memory


def lent(text):
    return accepted(TO_CLR, text, record())


class FakeStr(ctypes.Structure):
    """The head of a str object in a state of the test's own, as the interpreter lays it out."""

    _fields_ = [
        ("refcount", ctypes.c_ssize_t),
        ("type", POINTER),
        ("length", ctypes.c_ssize_t),
        ("hash", ctypes.c_ssize_t),
        ("state", ctypes.c_uint32),
        ("rest", ctypes.c_char * 60),
    ]


COMPACT, ASCII, READY = 1 << 5, 1 << 6, 1 << 7


def fake_str(kind, length=0):
    return FakeStr(1000, id(str), length, -1, kind << 2 | COMPACT | ASCII | READY)


value_converter = native("fn_conv_py_string_to_clr_string_value", INT, POINTER, POINTER)


# To the managed side.


@behaviour("marshal-records.string-arg.none-writes-length-only")
def test_none_writes_the_length_alone():
    arg = PyStringArg(9, 7, 0x1234)
    accepted(TO_CLR, None, arg)
    assert (arg.length, arg.char_size, arg.data) == (-1, 7, 0x1234)


@behaviour("marshal-records.string-arg.empty")
def test_the_empty_text_is_no_null():
    arg = lent("")
    assert arg.length == 0 and arg.data


@behaviour("marshal-records.string-arg.code-points")
def test_the_length_counts_code_points():
    assert lent("a\U0001f600").length == 2


@behaviour("marshal-records.string-arg.char-size")
@pytest.mark.parametrize(
    ("text", "size"),
    [("abc", 1), ("é", 1), ("ÿ", 1), ("Ā", 2), ("€", 2), ("\uffff", 2), ("\U00010000", 4)],
)
def test_the_width_is_that_of_the_widest_character(text, size):
    assert lent(text).char_size == size
    assert text_of(lent(text)) == text


@behaviour("marshal-records.string-arg.data-in-place", "marshal-scalars.str.data-by-form")
def test_the_characters_are_lent_where_they_stand():
    for text in ("abc", ""):
        assert lent(text).data == identity(text) + ASCII_HEADER
    for text in ("é€", "\xe9\xe8", "a\U0001f600"):
        assert lent(text).data == identity(text) + COMPACT_HEADER
    for text in (MyStr("abc"), MyStr("€")):
        own = ctypes.c_void_p.from_address(identity(text) + COMPACT_HEADER).value
        assert lent(text).data == own


@behaviour("marshal-records.string-arg.no-reference")
def test_a_text_is_lent_without_a_reference():
    text = "".join(["not ", "interned"])
    before = sys.getrefcount(text)
    arg = lent(text)
    assert sys.getrefcount(text) == before
    assert text_of(arg) == text


@behaviour("marshal-records.string-arg.length-cut")
def test_the_length_is_cut_to_32_bits():
    fake = fake_str(1, 2**32 + 5)
    arg = record()
    assert value_converter(ctypes.addressof(fake), ctypes.addressof(arg)) == 1
    assert arg.length == 5


@behaviour("marshal-scalars.str.refused")
@pytest.mark.parametrize(("value", "name"), [(b"x", "bytes"), (5, "int"), (["a"], "list")])
def test_what_is_no_str_is_refused(value, name):
    arg = PyStringArg(9, 7, 0x1234)
    assert said(refused(TO_CLR, value, arg)) == (TypeError, f"can't build String from '{name}'")
    assert (arg.length, arg.char_size, arg.data) == (9, 7, 0x1234)


@behaviour("marshal-scalars.str.subclass")
def test_an_instance_of_a_subclass_is_a_str():
    assert text_of(lent(MyStr("a€"))) == "a€"


@behaviour("marshal-scalars.str.value-no-type-test")
@pytest.mark.parametrize("name", ["fn_conv_py_string_to_clr_string_value", "fn_read_py_string"])
def test_a_known_str_is_read(name):
    for text in ("", "abc", "é", "€", "\U0001f600", MyStr("x")):
        assert text_of(accepted(name, text, record())) == text


@behaviour("marshal-scalars.str.unknown-kind")
@pytest.mark.parametrize("kind", [0, 3, 5, 6, 7])
def test_a_width_that_no_str_has_is_refused(kind):
    fake = fake_str(kind)
    arg = record()
    with pytest.raises(TypeError, match=f"^unknown unicode encoding '{kind}'$"):
        value_converter(ctypes.addressof(fake), ctypes.addressof(arg))
    assert arg.length == -1


def legacy_str(*characters):
    """The address of a str that is not made ready, as old extensions made them."""
    create = ctypes.PYFUNCTYPE(POINTER, POINTER, ctypes.c_ssize_t)(
        ("PyUnicode_FromUnicode", ctypes.pythonapi)
    )
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", DeprecationWarning)
        text = create(None, len(characters))
    content = ctypes.PYFUNCTYPE(POINTER, POINTER)(("PyUnicode_AsUnicode", ctypes.pythonapi))
    buffer = (ctypes.c_uint32 * len(characters)).from_address(content(text))
    buffer[:] = characters
    return text


has_legacy = pytest.mark.skipif(
    sys.version_info >= (3, 12), reason="a str is always ready from CPython 3.12 on"
)


def is_ready(text):
    return bool(FakeStr.from_address(text).state & READY)


@has_legacy
@behaviour("marshal-scalars.str.legacy-readied")
@pytest.mark.parametrize(
    ("characters", "size"), [((97, 98), 1), ((97, 0x20AC), 2), ((97, 0x1F600), 4)]
)
def test_a_legacy_str_is_made_ready_in_place(characters, size):
    text = legacy_str(*characters)
    assert not is_ready(text)
    arg = record()
    assert value_converter(text, ctypes.addressof(arg)) == 1
    assert is_ready(text)
    assert (text_of(arg), arg.char_size) == ("".join(map(chr, characters)), size)
    assert arg.data == ctypes.c_void_p.from_address(text + COMPACT_HEADER).value


@has_legacy
@behaviour("marshal-scalars.str.legacy-ready-failure")
def test_a_legacy_str_that_cannot_be_made_ready_is_refused():
    text = legacy_str(97, 0x110000)
    arg = record()
    with pytest.raises(TypeError, match="^unicode object is not ready$"):
        value_converter(text, ctypes.addressof(arg))
    assert arg.length == -1
    status = native("status_and_error", OBJECT, *[POINTER] * 6)
    words = text, ctypes.addressof(arg), None, None, None
    assert status(address("fn_conv_py_string_to_clr_string_value"), *words)[0] == 0


@behaviour("marshal-scalars.str.embedded-null")
def test_nothing_is_cut_at_a_null_character():
    arg = lent("a\0b\0")
    assert (arg.length, text_of(arg)) == (4, "a\0b\0")


@behaviour("marshal-scalars.str.lone-surrogate")
def test_a_lone_surrogate_passes():
    arg = lent("\ud800")
    assert (arg.length, arg.char_size) == (1, 2)
    assert ctypes.string_at(arg.data, 2) == b"\x00\xd8"


# Paths.


class PathBuilder:
    """A PyEphStrArgBuilder in memory of the test's own."""

    def __init__(self):
        self.memory = ctypes.create_string_buffer(b"\xaa" * 24, 24)
        native("eph_str_construct", None, POINTER)(ctypes.addressof(self.memory))
        self.arg = PyEphStrArg.from_buffer(self.memory)

    def __enter__(self):
        return self

    def __exit__(self, *error):
        native("eph_str_destroy", None, POINTER)(ctypes.addressof(self.memory))


class Path:
    def __init__(self, path):
        self.path = path

    def __fspath__(self):
        return self.path


@behaviour("marshal-records.eph-str.builder-default")
def test_the_builder_of_a_path_starts_as_zero():
    with PathBuilder() as builder:
        assert builder.memory.raw == bytes(24)


@behaviour("marshal-records.eph-str.builder-destructor")
def test_the_builder_of_a_path_drops_its_owner_once():
    text = "".join(["an ", "owner"])
    before = sys.getrefcount(text)
    with PathBuilder() as builder:
        ctypes.pythonapi.Py_IncRef(OBJECT(text))
        builder.arg.owner = identity(text)
        assert sys.getrefcount(text) == before + 1
    assert sys.getrefcount(text) == before
    with PathBuilder():
        pass  # nothing to drop


@behaviour("marshal-scalars.path.none")
def test_no_path_is_a_null_text():
    arg = PyEphStrArg(PyStringArg(9, 7, 0x1234), 0x5678)
    accepted(PATH, None, arg)
    assert (arg.text.length, arg.owner) == (-1, None)


@behaviour("marshal-scalars.path.str")
def test_a_str_is_a_path_of_its_own():
    path = "".join(["a", ".psd"])
    arg = PyEphStrArg(PyStringArg(), 0x5678)
    accepted(PATH, path, arg)
    assert (text_of(arg.text), arg.owner) == ("a.psd", None)
    assert arg.text.data == identity(path) + ASCII_HEADER


@behaviour("marshal-scalars.path.path-like", "marshal-scalars.path.owner-dropped")
def test_the_text_of_a_path_like_is_owned_until_the_call_ends():
    with PathBuilder() as builder:
        accepted(PATH, pathlib.Path("a.psd"), builder.arg)
        assert text_of(builder.arg.text) == "a.psd"
        assert builder.arg.owner
    path = "".join(["b", ".psd"])
    before = sys.getrefcount(path)
    for _ in range(10000):
        with PathBuilder() as builder:
            accepted(PATH, Path(path), builder.arg)
            assert builder.arg.owner == identity(path)
    assert sys.getrefcount(path) == before


@behaviour("marshal-scalars.path.owner-dropped")
def test_a_refused_path_leaves_nothing_behind():
    path = "".join(["b\0", ".psd"])
    before = sys.getrefcount(path)
    for _ in range(10000):
        with PathBuilder() as builder:
            assert type(refused(PATH, Path(path), builder.arg)) is ValueError
    assert sys.getrefcount(path) == before


@behaviour("marshal-scalars.path.bytes")
@pytest.mark.parametrize("path", [b"a.psd", "ü.psd".encode(), b"\xff.psd"])
def test_a_path_in_bytes_is_decoded_as_the_system_does(path):
    with PathBuilder() as builder:
        accepted(PATH, path, builder.arg)
        assert text_of(builder.arg.text) == os.fsdecode(path)
        assert builder.arg.owner


@behaviour("marshal-scalars.path.other")
@pytest.mark.parametrize("value", [5, 1.5, ["a"], object()], ids=lambda value: type(value).__name__)
def test_what_is_no_path_gets_the_decoders_words(value):
    decode = ctypes.PYFUNCTYPE(INT, OBJECT, POINTER)(("PyUnicode_FSDecoder", ctypes.pythonapi))
    with pytest.raises(TypeError) as caught:
        decode(value, ctypes.addressof(ctypes.c_void_p()))
    with PathBuilder() as builder:
        error = refused(PATH, value, builder.arg)
    assert said(error) == said(caught.value)
    assert "can't build String" not in str(error)


@behaviour("marshal-scalars.path.unreadable-decoded")
def test_a_decoded_text_that_cannot_be_read_is_dropped():
    fake = fake_str(0)
    stub = (ctypes.c_size_t * 2).from_address(address("stub_fs_decoder"))
    stub[:] = [1, ctypes.addressof(fake)]
    try:
        with PathBuilder() as builder:
            error = refused(PATH, b"path", builder.arg)
            assert builder.arg.owner is None
    finally:
        stub[:] = [0, 0]
    assert said(error) == (TypeError, "unknown unicode encoding '0'")
    assert fake.refcount == 1000


# From the managed side.

from_clr_value = native("fn_conv_clr_string_to_py_string_value", OBJECT, ctypes.c_char_p, LONG)
from_clr = native("fn_conv_clr_string_to_py_string", OBJECT, ctypes.c_char_p, ctypes.c_int32)
BUILDERS = pytest.mark.parametrize("build", [from_clr_value, from_clr], ids=["value", "callback"])


@BUILDERS
@behaviour("marshal-scalars.from-clr.utf16")
@pytest.mark.parametrize("text", ["a", "é€", "a\U0001f600", "x\0y", "ab" * 5000])
def test_units_become_a_text(build, text):
    assert build(*units(text)) == text


@BUILDERS
@behaviour("marshal-scalars.from-clr.utf16")
def test_the_length_counts_units(build):
    assert build(b"\x61\x00\x3d\xd8\x00\xde", 3) == "a\U0001f600"
    assert build(b"\x61\x00\x62\x00", 1) == "a"


@BUILDERS
@behaviour("marshal-scalars.from-clr.byte-order-mark-kept")
def test_a_byte_order_mark_is_a_character(build):
    assert build(b"\xff\xfe\x61\x00", 2) == "\ufeffa"
    assert build(b"\xfe\xff\x61\x00", 2) == "\ufffea"


@BUILDERS
@behaviour("marshal-scalars.from-clr.empty-errors")
@pytest.mark.parametrize("data", [b"\x00\xd8", b"\x61\x00\x00\xdc", b"\x00\xd8\x61\x00"])
def test_a_lone_surrogate_has_no_error_handler(build, data):
    with pytest.raises(LookupError) as caught:
        build(data, len(data) // 2)
    assert said(caught.value) == (LookupError, "unknown error handler name ''")


@BUILDERS
@behaviour("marshal-scalars.from-clr.empty")
def test_no_units_are_the_empty_text(build):
    assert build(b"", 0) == ""


# Text in a cell.

create_cell = native("fn_create_u16_buffer", POINTER, ctypes.c_char_p, ctypes.c_int32)
text_in_cell = native("u16_text", OBJECT, POINTER)
libc = ctypes.CDLL(None)
libc.free.argtypes = [POINTER]


def characters_of(cell):
    return ctypes.c_void_p.from_address(cell).value


@behaviour("marshal-scalars.u16-buffer.cell")
@pytest.mark.parametrize("text", ["a", "Kelmor.PSD.Image", "€\U0001f600", "a\0b"])
def test_a_cell_is_the_reference_counted_string(text):
    data, count = units(text)
    cell = create_cell(data, count)
    characters = characters_of(cell)
    assert ctypes.string_at(characters, 2 * count + 2) == data + b"\0\0"
    assert ctypes.c_uint64.from_address(characters - 24).value == count
    assert text_in_cell(cell) == text
    libc.malloc_usable_size.argtypes = [POINTER]
    assert libc.malloc_usable_size(cell) >= 8
    libc.free(cell)


@behaviour("marshal-scalars.u16-buffer.copy")
def test_a_cell_holds_a_copy():
    source = ctypes.create_string_buffer(b"\x61\x00\x62\x00", 4)
    cell = create_cell(ctypes.cast(source, ctypes.c_char_p), 2)
    source[0] = b"\x63"
    assert text_in_cell(cell) == "ab"
    libc.free(cell)


@behaviour("marshal-scalars.u16-buffer.empty-shared")
def test_empty_cells_share_one_representation():
    cells = [create_cell(b"", 0) for _ in range(2)]
    assert cells[0] != cells[1]
    assert characters_of(cells[0]) == characters_of(cells[1])
    for cell in cells:
        libc.free(cell)


@behaviour("marshal-scalars.u16-buffer.free-only-cell")
def test_the_characters_outlive_their_cell():
    data, count = units("a type name that is long enough to be a block of its own")
    cell = create_cell(data, count)
    characters = characters_of(cell)
    libc.free(cell)
    others = [create_cell(b"\xaa" * len(data), count) for _ in range(100)]
    assert ctypes.string_at(characters, 2 * count) == data
    for other in others:
        libc.free(other)


def test_a_text_that_cannot_be_held_gives_no_cell():
    assert create_cell(b"", -1) is None
