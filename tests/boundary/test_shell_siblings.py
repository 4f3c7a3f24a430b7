"""The siblings without a runtime: the result of a cast, and bytes as a stream."""

import ctypes
import gc
import io
import sys
import weakref

import pytest
from peer import STAGE


@pytest.fixture(scope="module")
def family():
    """The package as it is staged: the plain siblings start nothing."""
    sys.path.insert(0, str(STAGE))
    yield
    sys.path.remove(str(STAGE))


@pytest.fixture(scope="module")
def make_result(family):
    """The factory, as a module of the family takes it."""
    import kelmor.shellbase

    get_pointer = ctypes.pythonapi.PyCapsule_GetPointer
    get_pointer.restype = ctypes.c_void_p
    get_pointer.argtypes = [ctypes.py_object, ctypes.c_char_p]
    table = get_pointer(kelmor.shellbase._C_APIF, b"kelmor.shellbase._C_APIF")
    word = ctypes.c_void_p.from_address(table).value
    return ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_int, ctypes.c_void_p)(word)


@pytest.mark.parametrize("name", ["shellbase", "shellcommon"])
def test_a_plain_sibling_has_its_own_version(family, name):
    module = __import__(f"kelmor.{name}", fromlist=["VERSION"])
    assert str(module.VERSION) == "24.11.0.0"
    assert str(module._BACKWARD_COMPATIBILITY_THRESHOLD) == "22.6.0.0"
    kind = type(module.VERSION)
    assert repr(module.VERSION) == f"<kelmor.{name}._ModuleVersionType: 24.11.0.0>"
    assert module._ModuleVersionType is kind
    assert module.__package__ == "kelmor"


def test_no_runtime_comes_with_the_plain_siblings(in_process):
    def program():
        sys.path.insert(0, str(STAGE))
        import kelmor.shellbase  # noqa: F401
        import kelmor.shellcommon  # noqa: F401

        with open("/proc/self/maps") as maps:
            text = maps.read()
        return [name in text for name in ("coreclrwrap", "libcoreclr", "shellbase", "shellcommon")]

    assert in_process(program).value == [False, False, True, True]


@pytest.mark.parametrize(
    ("status", "value", "success"),
    [(1, "some object", True), (0, None, False), (-1, "odd", True), (7, None, True)],
)
def test_a_cast_result_tells_success_and_value(make_result, status, value, success):
    result = make_result(status, None if value is None else id(value))
    assert bool(result) is success
    assert (result.is_success, result.status, result.value) == (success, status, value)
    assert repr(result) == f"CastOpResult(is_success={success}, value={value!r})"
    ok, found = result
    assert (ok, found) == (success, value)
    assert len(result) == 2 and result[-1] == value
    with pytest.raises(IndexError, match="CastOpResult index out of range"):
        result[2]


def test_a_cast_result_cannot_be_changed_or_made(make_result):
    import kelmor.shellbase

    result = make_result(1, id("value"))
    for name in ("is_success", "status", "value"):
        with pytest.raises(AttributeError):
            setattr(result, name, 1)
    assert type(result) is kelmor.shellbase.CastOpResult
    with pytest.raises(TypeError):
        kelmor.shellbase.CastOpResult()
    with pytest.raises(TypeError):
        type("Derived", (kelmor.shellbase.CastOpResult,), {})


def test_a_cast_result_holds_one_reference(make_result):
    value = object()
    before = sys.getrefcount(value)
    result = make_result(1, id(value))
    assert sys.getrefcount(value) == before + 1
    del result
    assert sys.getrefcount(value) == before


def test_a_cycle_through_a_cast_result_is_collected(make_result):
    class Holder:
        pass

    holder = Holder()
    holder.result = make_result(1, id(holder))
    gone = weakref.ref(holder)
    del holder
    gc.collect()
    assert gone() is None


@pytest.fixture
def stream(family):
    from kelmor.shellcommon import BytesAsStream

    return BytesAsStream(b"0123456789")


def test_a_stream_reads_its_bytes(stream):
    assert (stream.readable(), stream.writable(), stream.seekable()) == (True, False, True)
    assert (stream.read(3), stream.tell()) == (b"012", 3)
    assert stream.read(0) == b""
    assert stream.read(None) == b"3456789"
    assert (stream.read(), stream.read(5), stream.tell()) == (b"", b"", 10)


@pytest.mark.parametrize(
    ("arguments", "position"),
    [((4,), 4), ((4, 0), 4), ((3, 1), 5), ((-1, 1), 1), ((-5, 1), 0), ((-3, 2), 7), ((5, 2), 15)],
)
def test_a_stream_seeks_like_a_file_in_memory(stream, arguments, position):
    twin = io.BytesIO(b"0123456789")
    for each in (stream, twin):
        each.seek(2)
        assert each.seek(*arguments) == position
        assert each.tell() == position
    assert stream.read() == twin.read()


@pytest.mark.parametrize(
    ("arguments", "error", "text"),
    [
        ((-1,), ValueError, "negative seek value -1"),
        ((0, 3), ValueError, r"invalid whence \(3, should be 0, 1 or 2\)"),
        ((0, -1), ValueError, r"invalid whence \(-1, should be 0, 1 or 2\)"),
        ((sys.maxsize, 2), OverflowError, "new position too large"),
        (("4",), TypeError, ""),
    ],
)
def test_a_wrong_seek_moves_nothing(stream, arguments, error, text):
    stream.seek(2)
    with pytest.raises(error, match=text):
        stream.seek(*arguments)
    assert stream.tell() == 2


def test_a_stream_fills_a_buffer(stream):
    target = bytearray(4)
    assert (stream.readinto(target), target) == (4, b"0123")
    view = memoryview(bytearray(10))
    assert stream.readinto(view[2:8]) == 6 and bytes(view) == bytes(2) + b"456789" + bytes(2)
    assert stream.readinto(target) == 0
    assert stream.readinto(bytearray()) == 0
    for refused in (b"bytes", "text", None, 5):
        with pytest.raises((TypeError, BufferError)):
            stream.readinto(refused)


def test_nothing_is_written_to_a_stream(stream):
    for operation in (lambda: stream.write(b"x"), stream.truncate, lambda: stream.truncate(3)):
        with pytest.raises(io.UnsupportedOperation):
            operation()
    assert stream.flush() is None
    assert stream.read() == b"0123456789"


def test_a_closed_stream_refuses_everything_but_closing(stream):
    assert stream.closed is False
    assert stream.close() is None
    assert stream.closed is True
    assert stream.close() is None
    calls = [
        stream.read,
        stream.tell,
        stream.flush,
        stream.readable,
        stream.writable,
        stream.seekable,
        stream.truncate,
        stream.__enter__,
        lambda: stream.seek(0),
        lambda: stream.write(b""),
        lambda: stream.readinto(bytearray(1)),
    ]
    for call in calls:
        with pytest.raises(ValueError, match="I/O operation on closed stream"):
            call()


def test_a_stream_is_a_context(stream):
    with stream as entered:
        assert entered is stream and not stream.closed
    assert stream.closed


def test_a_stream_does_not_copy(family):
    from kelmor.shellcommon import BytesAsStream

    data = bytearray(b"0123456789")
    stream = BytesAsStream(data)
    data[0] = ord("x")
    assert stream.read(2) == b"x1"
    with pytest.raises(BufferError):
        data.append(1)
    stream.close()
    data.append(1)
    assert len(data) == 11


def test_a_stream_holds_its_data_while_open(family):
    from kelmor.shellcommon import BytesAsStream

    data = bytes(bytearray(b"held by the stream"))
    before = sys.getrefcount(data)
    stream = BytesAsStream(data)
    assert sys.getrefcount(data) > before
    del stream
    assert sys.getrefcount(data) == before


@pytest.mark.parametrize("refused", [None, "text", 5, [1, 2], memoryview(b"abcdef")[::2]])
def test_a_stream_wants_contiguous_bytes(family, refused):
    from kelmor.shellcommon import BytesAsStream

    with pytest.raises((TypeError, BufferError)):
        BytesAsStream(refused)


def test_a_target_that_was_filled_is_let_go(stream):
    target = bytearray(4)
    stream.readinto(target)
    target.append(1)
    assert len(target) == 5


def test_a_target_may_be_the_data_itself(family):
    from kelmor.shellcommon import BytesAsStream

    data = bytearray(range(200))
    stream = BytesAsStream(data)
    assert stream.readinto(memoryview(data)[1:]) == 199
    assert data == bytes([0, *range(199)])


def test_a_cycle_through_a_stream_is_collected(family):
    from kelmor.shellcommon import BytesAsStream

    class Data(bytearray):
        pass

    data = Data(b"abc")
    data.stream = BytesAsStream(data)
    seen = weakref.ref(data)
    del data
    gc.collect()
    assert seen() is None


def test_a_capsule_belongs_to_its_module_alone(family):
    import kelmor.shellbase as module

    def count(value):
        return ctypes.c_uint32.from_address(id(value)).value

    assert count(module._C_APIF) == count(module._BACKWARD_COMPATIBILITY_THRESHOLD)
