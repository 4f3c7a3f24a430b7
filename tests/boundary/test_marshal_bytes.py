"""Byte blocks: lent in place on the way in, a new bytearray on the way back."""

import array
import ctypes
import io
import pickle

import pytest
from marshal_probe import (
    INT,
    INT64,
    OBJECT,
    POINTER,
    PyBytesArgBuilder,
    accepted,
    address,
    convert,
    identity,
    native,
    refused,
    said,
)
from test_marshal_records import Exporter

behaviour = pytest.mark.behaviour

UNIT = "fn_conv_py_bytes_to_clr_bytes"
read_buffer = native("fn_read_py_buffer", INT, OBJECT, POINTER, POINTER)
read_buffer_view = native("fn_read_py_buffer_view", INT, OBJECT, POINTER, POINTER)
bytes_value = native("fn_conv_py_bytes_to_clr_bytes_value", INT, OBJECT, POINTER, POINTER)
READERS = pytest.mark.parametrize("read", [read_buffer, read_buffer_view, bytes_value])


class BytesView:
    """A Py_buffer and its record, released when the `with` block ends."""

    def __enter__(self):
        self.builder = PyBytesArgBuilder(fill=0).__enter__()
        self.view, self.arg = self.builder.address, self.builder.address + 80
        return self

    def __exit__(self, *error):
        self.builder.__exit__()

    @property
    def state(self):
        return self.builder.info.held, self.builder.info.length

    @property
    def content(self):
        return ctypes.string_at(self.builder.info.data, self.builder.info.length)


def content_of(value):
    with PyBytesArgBuilder() as builder:
        accepted(UNIT, value, builder.address)
        assert builder.info.held == 1
        return ctypes.string_at(builder.info.data, builder.info.length)


# To the managed side.


@behaviour("marshal-bytes.to-clr.none")
def test_none_takes_no_buffer():
    with BytesView() as block:
        block.builder.info.length = 7
        assert bytes_value(None, block.view, block.arg) == 1
        assert block.state == (0, -1)


@behaviour("marshal-bytes.to-clr.no-buffer-protocol")
@pytest.mark.parametrize(("value", "name"), [(5, "int"), ("x", "str"), ([1], "list")])
def test_what_has_no_buffer_is_refused(value, name):
    with BytesView() as block:
        with pytest.raises(TypeError) as caught:
            bytes_value(value, block.view, block.arg)
        assert str(caught.value) == f"can't build byte[] from '{name}'"
        assert block.state == (0, -1)
        assert said(refused(UNIT, value, block.builder.address)) == said(caught.value)


@behaviour("marshal-bytes.to-clr.accepted")
@pytest.mark.parametrize(
    "value",
    [
        b"abc",
        bytearray(b"abc"),
        memoryview(b"abcd"),
        memoryview(b"abcd")[1:3],
        array.array("i", [1, 2]),
        (ctypes.c_short * 3)(1, 2, 3),
        memoryview(bytes(24)).cast("d"),
    ],
    ids=lambda value: type(value).__name__,
)
def test_every_exporter_of_one_piece_is_accepted(value):
    assert content_of(value) == memoryview(value).tobytes()
    if isinstance(value, array.array):
        assert len(content_of(value)) == 8


@behaviour("marshal-bytes.to-clr.empty")
@pytest.mark.parametrize("value", [b"", bytearray(), memoryview(b"")])
def test_an_empty_block_is_held(value):
    with BytesView() as block:
        assert bytes_value(value, block.view, block.arg) == 1
        assert block.state == (1, 0)


@behaviour("marshal-bytes.to-clr.builder-unit")
def test_the_unit_runs_on_both_parts_of_the_builder():
    with PyBytesArgBuilder() as builder:
        assert convert(UNIT, b"abc", builder.address) == (1, None)
        view = (ctypes.c_void_p * 10).from_address(builder.address)
        assert view[0] == builder.info.data  # Py_buffer.buf
        assert view[1] == identity(b"abc")  # Py_buffer.obj
        assert (builder.info.held, builder.info.length) == (1, 3)
    with PyBytesArgBuilder() as builder:
        assert convert(UNIT, 5, builder.address)[0] == 0
    with PyBytesArgBuilder() as builder:
        assert convert(UNIT, None, builder.address) == (1, None)
        assert (builder.info.held, builder.info.length) == (0, -1)


@behaviour("marshal-bytes.to-clr.bytearray-in-place")
def test_a_bytearray_is_seen_without_a_copy():
    value = bytearray(b"abc")
    with PyBytesArgBuilder() as builder:
        accepted(UNIT, value, builder.address)
        own = (ctypes.c_char * 3).from_buffer(value)
        assert builder.info.data == ctypes.addressof(own)
        ctypes.memset(builder.info.data, ord("x"), 1)
        del own
        assert value == b"xbc"
        with pytest.raises(BufferError):
            value.append(1)
    value.append(1)


@READERS
@behaviour("marshal-bytes.read-buffer.success", "marshal-bytes.read-buffer-view.same")
def test_a_buffer_is_read(read):
    exporter = Exporter()
    with BytesView() as block:
        assert read(exporter.object, block.view, block.arg) == 1
        assert block.state == (1, 3)
        assert block.builder.info.data == ctypes.addressof(exporter.block)
        assert exporter.counts == (1, 0)
    assert exporter.counts == (1, 1)


@READERS
@behaviour("marshal-bytes.read-buffer.read-only-accepted", "marshal-bytes.read-buffer-view.same")
def test_a_read_only_exporter_is_accepted(read):
    with BytesView() as block:
        assert read(memoryview(b"abc"), block.view, block.arg) == 1
        assert block.content == b"abc"


def released_memoryview():
    view = memoryview(b"abc")
    view.release()
    return view


@READERS
@behaviour("marshal-bytes.read-buffer.get-failure", "marshal-bytes.read-buffer-view.same")
def test_a_refusing_exporter_is_told_in_our_words(read):
    with BytesView() as block:
        with pytest.raises(BufferError) as caught:
            read(released_memoryview(), block.view, block.arg)
        assert said(caught.value) == (BufferError, "can't get internal buffer")
        assert caught.value.__cause__ is None and caught.value.__context__ is None
        assert block.state == (0, -1)


def released_pickle_buffer():
    buffer = pickle.PickleBuffer(b"abc")
    buffer.release()
    return buffer


@behaviour("marshal-bytes.read-buffer.get-failure")
@pytest.mark.parametrize("exporter", [released_memoryview, released_pickle_buffer])
def test_an_exporter_that_is_no_view_is_told_the_same(exporter):
    with BytesView() as block:
        error = refused(UNIT, exporter(), block.builder.address)
    assert said(error) == (BufferError, "can't get internal buffer")


HUGE = 2147483648
REFUSED_VIEWS = [
    pytest.param(
        3,
        2,
        "buffer is not contiguous",
        marks=behaviour("marshal-bytes.read-buffer.not-contiguous"),
    ),
    pytest.param(
        HUGE, 0, "buffer is too long", marks=behaviour("marshal-bytes.read-buffer.too-long")
    ),
    pytest.param(
        HUGE,
        2,
        "buffer is not contiguous",
        marks=behaviour("marshal-bytes.read-buffer.check-order"),
    ),
]


@READERS
@behaviour("marshal-bytes.read-buffer-view.same")
@pytest.mark.parametrize(("length", "stride", "words"), REFUSED_VIEWS)
def test_a_refused_view_stays_held_until_the_builder_ends(read, length, stride, words):
    exporter = Exporter(length, stride)
    with BytesView() as block:
        with pytest.raises(BufferError) as caught:
            read(exporter.object, block.view, block.arg)
        assert said(caught.value) == (BufferError, words)
        assert block.builder.info.held == 1
        assert exporter.counts == (1, 0)
    assert exporter.counts == (1, 1)
    with PyBytesArgBuilder() as builder:
        assert said(refused(UNIT, exporter.object, builder.address)) == said(caught.value)


@behaviour("marshal-bytes.read-buffer.too-long")
def test_the_longest_view_is_accepted():
    exporter = Exporter(HUGE - 1)
    with BytesView() as block:
        assert read_buffer(exporter.object, block.view, block.arg) == 1
        assert block.state == (1, HUGE - 1)


@READERS
@behaviour("marshal-bytes.read-buffer.memoryview-step")
@pytest.mark.parametrize("step", [2, -1])
def test_a_memoryview_with_a_step_is_not_contiguous(read, step):
    with BytesView() as block:
        with pytest.raises(BufferError) as caught:
            read(view := memoryview(owner := bytearray(b"abcdef"))[::step], block.view, block.arg)
        assert said(caught.value) == (BufferError, "buffer is not contiguous")
    view.release()
    owner.append(1)  # nothing holds a view any more


# The managed side's own views.


@behaviour("marshal-bytes.table.sizeof")
def test_the_size_of_a_view_is_told():
    assert native("fn_get_sizeof_py_byffer", INT)() == 80
    # sizeof(Py_buffer): what a builder holds before its record
    assert (ctypes.c_int * 3).from_address(address("layout_PyBytesArgBuilder"))[2] == 80


@behaviour("marshal-bytes.table.create")
def test_a_view_is_created_as_zero():
    memory = ctypes.create_string_buffer(b"\xaa" * 81, 81)
    assert native("fn_create_py_byffer", INT, POINTER)(ctypes.addressof(memory)) == 0
    assert memory.raw == bytes(80) + b"\xaa"


@behaviour("marshal-bytes.table.release")
def test_a_view_is_released():
    value = bytearray(b"abc")
    view, arg = ctypes.create_string_buffer(80), (ctypes.c_int64 * 2)()
    assert read_buffer_view(value, ctypes.addressof(view), ctypes.addressof(arg)) == 1
    with pytest.raises(BufferError):
        value.append(1)
    native("fn_release_py_buffer", None, POINTER)(ctypes.addressof(view))
    value.append(1)


@behaviour("marshal-bytes.read-buffer-view.same", "marshal-variant.tables.buffer")
def test_the_table_of_views_holds_its_four_functions():
    slots = (ctypes.c_void_p * 4).from_address(address("m_py_buffer_callbacks"))
    names = [
        "fn_get_sizeof_py_byffer",
        "fn_create_py_byffer",
        "fn_read_py_buffer_view",
        "fn_release_py_buffer",
    ]
    assert list(slots) == [address(name) for name in names]


# The window on managed memory.

ready_type = ctypes.PYFUNCTYPE(INT, POINTER)(("PyType_Ready", ctypes.pythonapi))
assert ready_type(address("wrpPye_tyds_ShlBufferView")) == 0
VIEW_TYPE = ctypes.cast(address("wrpPye_tyds_ShlBufferView"), OBJECT).value
create_view = native("fn_create_shlbuffer_view", OBJECT, POINTER, INT64, ctypes.c_int32)


@pytest.fixture
def block():
    return ctypes.create_string_buffer(b"abcdef", 6)


def test_the_type_of_a_window_has_its_full_name():
    full_name = ctypes.c_char_p.from_address(identity(VIEW_TYPE) + 24).value
    assert full_name == b"kelmor.psd._wrpgen._interop._ShlBufferView"
    assert VIEW_TYPE.__module__ == "kelmor.psd._wrpgen._interop"
    assert VIEW_TYPE.__name__ == "_ShlBufferView"


@behaviour("marshal-bytes.view-type.only-buffer-slot")
def test_a_window_has_nothing_but_a_buffer(block):
    view = create_view(ctypes.addressof(block), 6, 0)
    with pytest.raises(TypeError):
        len(view)
    with pytest.raises(TypeError):
        view[0]
    with pytest.raises(AttributeError):
        view.anything = 1
    assert repr(view).startswith("<kelmor.psd._wrpgen._interop._ShlBufferView object at 0x")
    own = {name for name in vars(VIEW_TYPE) if name not in vars(object)}
    assert own <= {"__module__", "__buffer__"}  # __buffer__ stands for the slot from 3.12 on


@behaviour("marshal-bytes.view-type.not-constructible")
def test_python_code_makes_no_window():
    with pytest.raises(TypeError, match="cannot create"):
        VIEW_TYPE()
    with pytest.raises(TypeError, match="not an acceptable base type"):
        type("X", (VIEW_TYPE,), {})


@behaviour("marshal-bytes.view-type.symbol")
def test_the_buffer_slots_of_a_window_are_the_named_table():
    table = address("wrpPye_tybp_ShlBufferView")
    slots = (ctypes.c_void_p * 2).from_address(table)
    assert slots[0] and not slots[1]
    tp_as_buffer = 160  # in PyTypeObject
    assert ctypes.c_void_p.from_address(identity(VIEW_TYPE) + tp_as_buffer).value == table


@behaviour("marshal-bytes.view.create")
def test_a_window_keeps_what_it_was_given(block):
    view = create_view(ctypes.addressof(block), 2**40, 7)
    assert type(view) is VIEW_TYPE
    assert ctypes.c_void_p.from_address(identity(view) + 16).value == ctypes.addressof(block)
    assert ctypes.c_int64.from_address(identity(view) + 24).value == 2**40
    assert ctypes.c_int32.from_address(identity(view) + 32).value == 7
    assert ctypes.c_ssize_t.from_address(identity(view)).value == 1  # a new reference, and no other


@behaviour("marshal-bytes.view.buffer-content")
def test_a_window_shows_the_memory_itself(block):
    seen = memoryview(create_view(ctypes.addressof(block), 4, 0))
    assert (seen.itemsize, seen.format, seen.ndim, seen.nbytes) == (1, "B", 1, 4)
    assert seen == b"abcd"
    block[0] = b"x"
    assert seen[0] == ord("x")
    seen[1] = ord("y")
    assert block.raw == b"xycdef"


@behaviour("marshal-bytes.view.readonly")
def test_a_read_only_window_refuses_to_be_written(block):
    fixed = create_view(ctypes.addressof(block), 6, 1)
    assert memoryview(fixed).readonly
    with pytest.raises(TypeError):
        io.BytesIO(b"x").readinto(fixed)
    assert block.raw == b"abcdef"
    writable = create_view(ctypes.addressof(block), 6, 0)
    assert not memoryview(writable).readonly
    assert io.BytesIO(b"x").readinto(writable) == 1
    assert block.raw == b"xbcdef"


@behaviour("marshal-bytes.view.request-holds-view")
def test_a_view_of_a_window_holds_the_window(block):
    view = create_view(ctypes.addressof(block), 6, 0)
    before = ctypes.c_ssize_t.from_address(identity(view)).value
    seen = memoryview(view)
    assert seen.obj is view
    assert ctypes.c_ssize_t.from_address(identity(view)).value == before + 1
    del view
    assert type(seen.obj) is VIEW_TYPE and seen == b"abcdef"


@behaviour("marshal-bytes.view.owns-nothing")
def test_a_window_leaves_the_memory_when_it_goes(block):
    view = create_view(ctypes.addressof(block), 6, 0)
    del view
    assert block.raw == b"abcdef"
    heap = ctypes.CDLL(None)
    heap.malloc.restype = POINTER
    heap.free.argtypes = [POINTER]
    memory = heap.malloc(64)
    ctypes.memset(memory, 0x5A, 64)
    for _ in range(100):
        create_view(memory, 64, 0)
    assert ctypes.string_at(memory, 64) == b"\x5a" * 64
    heap.free(memory)  # a second free of it would end the process


# From the managed side.

from_clr = native("fn_conv_clr_bytes_to_py_bytes", OBJECT, POINTER, ctypes.c_int32)


@behaviour("marshal-bytes.from-clr.bytearray")
def test_a_managed_block_is_a_bytearray(block):
    made = from_clr(ctypes.addressof(block), 6)
    assert type(made) is bytearray and made == b"abcdef"
    assert from_clr(ctypes.addressof(block), 2) == b"ab"


@behaviour("marshal-bytes.from-clr.copied-once")
def test_a_managed_block_is_copied(block):
    made = from_clr(ctypes.addressof(block), 6)
    block[0] = b"x"
    assert made == b"abcdef"
    made[1] = ord("y")
    assert block.raw == b"xbcdef"


@behaviour("marshal-bytes.from-clr.empty")
def test_an_empty_managed_block_is_an_empty_bytearray(block):
    made = from_clr(ctypes.addressof(block), 0)
    assert type(made) is bytearray and made == b""
