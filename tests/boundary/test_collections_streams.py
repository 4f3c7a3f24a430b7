"""A managed stream as a binary file object, and the converter of stream parameters."""

import ctypes
import io
import sys
import types

from managed_streams import closed_text, counts, script_read, stream
from wrappers import INT, POINTER, handle_of, i32, i64, raised, scene, text_of


@scene(
    "collections-streams.type.name",
    "collections-streams.type.record-layout",
    "collections-streams.type.starts-open",
    "collections-streams.type.no-constructor",
    "collections-streams.attr.closed",
    "collections-streams.setup.last-type",
    "collections-streams.marks.interfaces",
)
def test_the_type(s):
    kind = s.interop._StreamWrapper
    assert f"{kind.__module__}.{kind.__name__}" == "kelmor.psd._wrpgen._interop._StreamWrapper"
    assert kind.__basicsize__ == 32
    t = stream(s, 0x10)
    assert handle_of(t) == 0x10 and ctypes.c_int32.from_address(id(t) + 24).value == 0
    assert t.closed is False
    raised(AttributeError, setattr, t, "closed", True)
    assert text_of(TypeError, kind) == "type has no available constructor"
    fresh = kind.__new__(kind)
    assert handle_of(fresh) is None and fresh.closed is False
    t.close()
    assert t.closed is True and ctypes.c_int32.from_address(id(t) + 24).value == 1
    assert [name for name in vars(s.interop) if name.startswith("_") and "W" in name][-1] == (
        "_StreamWrapper"
    )
    marks = {s.interop._IDisposableWrapper}
    assert kind._additional_interfaces == kind._implicit_interfaces == marks
    assert kind._kelmor_clr_host is None and kind._kelmor_clr_castable_obj is None


@scene(
    "collections-streams.host.delegates",
    "collections-streams.host.lazy-singleton",
    "collections-streams.methods.table-order",
)
def test_the_host_and_the_table(s):
    names = ["CanRead", "CanSeek", "CanWrite", "Length", "Position", "Close", "Flush", "Read"]
    names += ["Seek", "SetLength", "Write", "btp_IsAssignable", "btp_TypeOf", "btp_CastTo"]
    names += ["btp_ReInterpretObj", "btp_CastAs"]
    kind = "Kelmor.WrpGen.Interop.SiApiStream"
    assert kind not in [wanted for wanted, _ in s.requests_of_start]
    for _ in range(2):
        stream(s).flush()
        assert s.script.requests == [(kind, name) for name in names]
    wanted = ["close", "flush", "readable", "seekable", "writable", "tell", "seek", "truncate"]
    wanted += ["write", "writelines", "readline", "readlines", "readinto", "read", "readall"]
    wanted += ["fileno", "isatty", "get_type", "__enter__", "__exit__", "_type_of", "_cast_to"]
    wanted += ["_cast_from", "_is_assignable", "_reinterpret_obj", "_cast_as"]
    own = [name for name in vars(s.interop._StreamWrapper) if name in wanted]
    assert own == wanted


@scene(
    "collections-streams.host.stop-at-first",
    "collections-streams.host.length-unused",
    "collections-streams.conv.invalid-host",
    refuse=[("Stream", "Length")],
)
def test_a_missing_entry_makes_the_type_invalid(s):
    kind = s.interop._StreamWrapper
    text = (
        "While initializing the host for the 'Kelmor.WrpGen.Interop.SiApiStream"
        " (Assembly=WrpInterop.Kelmor.PSD)' type, an error occurred - Method 'Length' not found"
        " (error=77)"
    )
    for _ in range(2):
        assert text_of(TypeError, kind.__new__, kind) == text
    assert [name for _, name in s.script.requests] == ["CanRead", "CanSeek", "CanWrite", "Length"]
    assert (
        text_of(TypeError, s.convert, "wrpPye_conv_py_to_clr_stream", s.wrap(s.Sample, 1)) == text
    )
    assert s.calls("btp_IsAssignable") == []
    assert s.convert("wrpPye_conv_py_to_clr_stream", io.BytesIO())[0] == 2


@scene("collections-streams.host.no-references", refuse=[("Disposable", None), ("Object", "None")])
def test_the_stream_type_stands_alone(s):
    raised(TypeError, s.wrap, s.interop._IDisposableWrapper, 1)
    assert stream(s).closed is False


@scene(
    "collections-streams.type.two-wrappers",
    "collections-streams.type.managed-close-unseen",
    "collections-streams.type.dealloc",
    "collections-streams.type.init-from-cast",
)
def test_the_flag_is_the_wrappers_own(s):
    a, b = stream(s), stream(s)
    a.close()
    b.flush()
    assert (a.closed, b.closed) == (True, False) and s.calls() == ["Close", "Flush"]
    s.clear()
    assert [b.closed, b.closed] == [False, False] and s.calls() == []
    for entry in ("btp_CastTo", "btp_CastAs"):
        s.method("Stream", entry).writes(1, ctypes.c_uint64(0x77)).returns(1)
    kind = type(a)
    assert [kind._cast_to(a)[2].closed, kind._cast_as(a)[2].closed] == [False, False]
    s.clear()
    del a, b
    assert s.calls() == ["FreeInstance"] * 2


@scene("collections-streams.casts.own-host")
def test_casts_work_on_a_closed_wrapper(s):
    t = stream(s, 0x10)
    t.close()
    s.method("Stream", "btp_IsAssignable").returns(1)
    s.method("Stream", "btp_TypeOf").writes(0, ctypes.c_uint64(0x88)).returns(1)
    kind = type(t)
    assert kind._is_assignable(t) is True and kind._type_of() == ("Type", 0x88)
    assert kind._cast_as(t) == ("cast", 0, "null")
    s.method("Test", "ObjectFromPy").writes(1, ctypes.c_uint64(0x99)).returns(1)
    s.method("Stream", "btp_ReInterpretObj").writes(1, ctypes.c_uint64(0x77)).returns(1)
    assert handle_of(kind._reinterpret_obj("object")) == 0x77
    assert s.calls("btp_IsAssignable") == s.calls("btp_CastAs") == [[0x10]]


@scene(
    "collections-streams.conv.none",
    "collections-streams.conv.own-type",
    "collections-streams.conv.other-wrapper",
    "collections-streams.conv.other-wrapper-refused",
    "collections-streams.marks.disposable-param",
)
def test_wrappers_for_a_stream_parameter(s):
    name = "wrpPye_conv_py_to_clr_stream"
    t = stream(s, 0x10)
    assert s.convert(name, None) == (0, None)
    assert s.convert(name, t) == (0, 0x10)
    assert s.convert("wrpPye_conv_py_to_clr_idisposable", t) == (0, 0x10)
    assert s.calls() == []
    t.close()
    s.clear()
    assert s.convert(name, t) == (0, 0x10) and s.calls() == []
    s.method("Stream", "btp_IsAssignable").returns(1, 0)
    w = s.wrap(s.Sample, 0x20)
    assert s.convert(name, w) == (0, 0x20)
    assert text_of(TypeError, s.convert, name, w) == "can't build Stream from 'kelmor.psd.Sample'"
    assert s.calls("btp_IsAssignable") == [[0x20]] * 2


@scene(
    "collections-streams.conv.python-classes",
    "collections-streams.conv.class-order",
    "collections-streams.conv.import-fails",
    "collections-streams.conv.isinstance-fails",
    "collections-streams.conv.refused",
    "collections-streams.conv.no-method-test",
)
def test_python_objects_for_a_stream_parameter(s):
    import os

    name = "wrpPye_conv_py_to_clr_stream"

    def convert(value):
        return s.convert(name, value)

    class Raw(io.RawIOBase):
        pass

    class Liar:
        @property
        def __class__(self):
            raise KeyError("no class")

    sys.modules["kelmor.shellcommon"] = None
    with open(os.devnull, "rb") as reader, open(os.devnull, "rb", buffering=0) as raw:
        for value in (io.BytesIO(), reader, raw, Raw(), io.RawIOBase()):
            before = sys.getrefcount(value)
            assert convert(value) == (2, id(value)) and sys.getrefcount(value) == before
    failed = raised(ImportError, convert, 5)
    assert "Unable to import the specified module kelmor.shellcommon" in str(failed)
    common = types.ModuleType("kelmor.shellcommon")
    sys.modules["kelmor"] = types.ModuleType("kelmor")
    sys.modules["kelmor.shellcommon"] = common
    failed = raised(ImportError, convert, 5)
    assert "type BytesAsStream from the module kelmor.shellcommon" in str(failed)

    class BytesAsStream:
        def readinto(self, view):
            raise AssertionError("called")

    common.BytesAsStream = BytesAsStream
    value = BytesAsStream()
    assert convert(value) == (2, id(value))
    duck = types.SimpleNamespace(read=1, write=1, seek=1, readinto=1, tell=1)
    for value, shown in [
        (duck, "types.SimpleNamespace"),
        (io.StringIO(), "_io.StringIO"),
        (5, "int"),
    ]:
        assert text_of(TypeError, convert, value) == f"can't build Stream from '{shown}'"
    liar, record = Liar(), s.native.VariantArg()
    by_address = s.function(name, INT, POINTER, POINTER)
    raised(KeyError, by_address, id(liar), ctypes.addressof(record))


@scene(
    "collections-streams.closed.text",
    "collections-streams.closed.unaffected",
    "collections-streams.closed.enter",
    "collections-streams.closed.get-type",
)
def test_a_closed_stream_refuses(s):
    t = stream(s)
    t.close()
    s.clear()
    for name in ("flush", "readable", "seekable", "writable", "tell", "isatty", "readall"):
        assert text_of(ValueError, getattr(t, name)) == closed_text(), name
    for name in ("read", "readline", "readlines", "truncate"):
        assert text_of(ValueError, getattr(t, name)) == closed_text(), name
    for name, argument in [
        ("readinto", bytearray(1)),
        ("write", b"x"),
        ("writelines", []),
        ("seek", 0),
    ]:
        assert text_of(ValueError, getattr(t, name), argument) == closed_text(), name
    assert text_of(ValueError, iter, t) == closed_text() and s.calls() == []
    assert t.close() is None and t.closed is True and t.__enter__() is t and s.calls() == []
    assert text_of(ValueError, t.fileno) == "fileno method is not supported"
    assert t.get_type()[0] == "Type"
    script_read(s, b"line\n")
    assert next(t) == b"line\n"
    assert t.__exit__() is None


@scene(
    "collections-streams.flush.call",
    "collections-streams.ables.call",
    "collections-streams.tell.call",
    "collections-streams.isatty.false",
    "collections-streams.fileno.refused",
)
def test_simple_operations(s):
    t = stream(s, 0x10)
    assert t.flush() is None and s.calls("Flush") == [[0x10]]
    for name, entry in [("readable", "CanRead"), ("seekable", "CanSeek"), ("writable", "CanWrite")]:
        s.method("Stream", entry).returns(1, 0x100)
        assert [getattr(t, name)(), getattr(t, name)()] == [True, False]
        assert s.calls(entry) == [[0x10]] * 2
    s.method("Stream", "Position").returns(2**40 + 5)
    assert t.tell() == 2**40 + 5
    s.clear()
    assert t.isatty() is False
    assert text_of(ValueError, t.fileno) == "fileno method is not supported"
    assert s.calls() == []


@scene("collections-streams.errors.after-delegate")
def test_a_managed_exception_is_the_outcome(s):
    t = stream(s)
    for name, entry, arguments in [
        ("flush", "Flush", ()),
        ("readable", "CanRead", ()),
        ("tell", "Position", ()),
        ("seek", "Seek", (1,)),
        ("truncate", "SetLength", (1,)),
        ("read", "Read", ()),
        ("read", "Read", (3,)),
        ("readinto", "Read", (bytearray(3),)),
        ("write", "Write", (b"x",)),
    ]:
        s.method("Stream", entry).reset().returns(1).raises(RuntimeError, "Proxy error(X): no")
        assert text_of(RuntimeError, getattr(t, name), *arguments) == "Proxy error(X): no", name


@scene(
    "collections-streams.read.argument-count",
    "collections-streams.read.bad-size",
    "collections-streams.readline.argument-count",
    "collections-streams.readline.bad-size",
    "collections-streams.truncate.argument-count",
    "collections-streams.methods.calling-forms",
)
def test_arguments_are_judged_before_the_state(s):
    t = stream(s)
    for _ in range(2):
        for name in ("read", "readline", "readlines", "truncate"):
            text = f"{name}() takes at most 1 argument (2 given)"
            assert text_of(TypeError, getattr(t, name), 1, 2) == text
        for name in ("read", "readline", "readlines"):
            text = "argument should be integer or None, not 'str'"
            assert text_of(TypeError, getattr(t, name), "a") == text
        t.close()
    t = stream(s)
    for name in ("close", "flush", "readable", "seekable", "writable", "tell", "readall", "fileno"):
        raised(TypeError, getattr(t, name), 1)
    raised(TypeError, t.isatty, 1), raised(TypeError, t.__enter__, 1)
    for name in ("write", "writelines", "readinto"):
        raised(TypeError, getattr(t, name)), raised(TypeError, getattr(t, name), b"", b"")
    for name in ("seek", "truncate", "readline", "readlines", "read", "__exit__"):
        raised(TypeError, getattr(t, name), size=1)


@scene(
    "collections-streams.readinto.read-only",
    "collections-streams.readinto.no-buffer",
    "collections-streams.readinto.closed-first",
    "collections-streams.write.no-buffer",
    "collections-streams.write.closed-first",
    "collections-streams.writelines.closed-first",
)
def test_what_is_no_buffer_is_refused(s):
    t = stream(s)
    for value, shown in [(b"abc", "bytes"), (5, "int"), (None, "None")]:
        failed = raised(TypeError, t.readinto, value)
        text = "readinto argument must be read-write bytes-like object, not "
        assert str(failed) == f"{text}'{shown}'" and failed.__cause__ is failed.__context__ is None
    for value, shown in [("abc", "str"), (None, "None")]:
        text = f"write argument must be bytes-like object, not '{shown}'"
        assert text_of(TypeError, t.write, value) == text
    assert s.calls() == []
    t.close()
    for use in (t.readinto, t.write, t.writelines):
        assert text_of(ValueError, use, 5) == closed_text()


@scene(
    "collections-streams.write.one-call",
    "collections-streams.write.bytes-like",
    "collections-streams.write.empty",
    "collections-streams.write.buffer-released",
)
def test_write(s):
    import array

    t = stream(s)
    s.method("Stream", "Write").shows(1, 3)
    data = b"abc"
    assert t.write(data) == 3
    assert s.calls("Write", 3) == [[0x10, id(data) + bytes.__basicsize__ - 1, 3]]
    assert s.memory("Write") == [[b"abc"]]
    target = bytearray(b"xyz")
    assert [t.write(target), t.write(memoryview(b"pqr")), t.write(array.array("h", [1, 2]))] == [
        3,
        3,
        4,
    ]
    target.append(1)
    s.clear()
    assert t.write(b"") == 0 and counts(s, "Write") == [0]
    s.method("Stream", "Write").reset().raises(RuntimeError, "full")
    assert text_of(RuntimeError, t.write, target) == "full"
    target.append(1)


@scene(
    "collections-streams.seek.call",
    "collections-streams.seek.invalid-whence",
    "collections-streams.seek.negative-absolute",
    "collections-streams.seek.whence-first",
    "collections-streams.seek.closed-last",
    "collections-streams.seek.bad-offset",
    "collections-streams.seek.large-offset",
)
def test_seek(s):
    t = stream(s)
    s.method("Stream", "Seek").returns(99)
    assert [t.seek(5), t.seek(-1, 1), t.seek(0, 2), t.seek(2**40)] == [99] * 4
    given = [(i64(words[1]), i32(words[2])) for words in s.calls("Seek", 3)]
    assert given == [(5, 0), (-1, 1), (0, 2), (2**40, 0)]
    s.clear()
    whence = "invalid whence ({}, should be 0, 1 or 2)"
    for _ in range(2):
        assert text_of(ValueError, t.seek, 0, 3) == whence.format(3)
        assert text_of(ValueError, t.seek, 0, -1) == whence.format(-1)
        assert text_of(ValueError, t.seek, -1, 3) == whence.format(3)
        assert text_of(ValueError, t.seek, -1) == "negative seek value -1"
        assert text_of(ValueError, t.seek, -1, 0) == "negative seek value -1"
        t.close()
    assert text_of(ValueError, t.seek, 0) == closed_text()
    t = stream(s)
    assert text_of(TypeError, t.seek, "a") == "integer argument expected, got 'str'"
    assert text_of(TypeError, t.seek, True) == "integer argument expected, got 'bool'"
    raised(TypeError, t.seek), raised(TypeError, t.seek, 0, None)
    raised(OverflowError, t.seek, 2**63)
    assert s.calls("Seek") == []


@scene(
    "collections-streams.truncate.no-size",
    "collections-streams.truncate.with-size",
    "collections-streams.truncate.negative",
    "collections-streams.truncate.convert-before-closed",
)
def test_truncate(s):
    t = stream(s)
    s.method("Stream", "SetLength").returns(7)
    assert [t.truncate(), t.truncate(None), t.truncate(0), t.truncate(10), t.truncate(-1)] == [
        7
    ] * 5
    given = [(i32(words[1]), i64(words[2])) for words in s.calls("SetLength", 3)]
    assert given == [(1, 0), (1, 0), (0, 0), (0, 10), (0, -1)]
    t.close()
    assert text_of(TypeError, t.truncate, "a") == "integer argument expected, got 'str'"
    assert text_of(ValueError, t.truncate, 1) == closed_text()


@scene(
    "collections-streams.close.call",
    "collections-streams.close.repeat",
    "collections-streams.close.error",
)
def test_close(s):
    t = stream(s)
    assert t.close() is None and t.close() is None and s.calls() == ["Close"]
    t = stream(s)
    s.method("Stream", "Close").raises(RuntimeError, "stuck")
    assert text_of(RuntimeError, t.close) == "stuck" and t.closed is True
    assert t.close() is None and len(s.calls("Close")) == 2


@scene(
    "collections-streams.context.enter",
    "collections-streams.context.exit",
    "collections-streams.context.exit-error",
    "collections-streams.context.exit-after-close",
    "collections-streams.context.exit-twice",
    "collections-streams.context.close-after-exit",
    "collections-streams.context.no-suppress",
)
def test_the_with_statement(s):
    t = stream(s, 0x10)
    assert t.__enter__() is t and s.calls() == []
    assert t.__exit__(1, "x", None, 4) is None and t.closed is True
    assert s.calls("Dispose") == [[0x10]] and s.calls("Close") == []
    assert t.__exit__() is None and t.close() is None and s.calls() == ["Dispose"] * 2
    t = stream(s)
    s.clear()
    with t:
        t.close()
    assert s.calls() == ["Close", "Dispose"]
    t = stream(s)
    s.method("Object", "Dispose").raises(RuntimeError, "stuck")
    assert text_of(RuntimeError, t.__exit__) == "stuck" and t.closed is True
    s.method("Object", "Dispose").reset()
    t = stream(s)
    s.clear()

    def body():
        with t:
            raise KeyError("inside")

    raised(KeyError, body)
    assert s.calls() == ["Dispose"]


@scene("collections-streams.readinto.above-int32", "collections-streams.write.above-int32")
def test_a_huge_buffer_crosses_in_pieces(s):
    import mmap

    size = 2147483647 + 10
    memory = mmap.mmap(-1, size)
    place = ctypes.addressof(ctypes.c_char.from_buffer(memory))
    t = stream(s)
    assert t.write(memory) == size
    pieces = [(words[1] - place, i32(words[2])) for words in s.calls("Write", 3)]
    assert pieces == [(0, 2147483647), (2147483647, 10)]
    s.method("Stream", "Read").returns(2147483647, 4)
    assert t.readinto(memory) == 2147483651
    pieces = [(words[1] - place, i32(words[2])) for words in s.calls("Read", 3)]
    assert pieces == [(0, 2147483647), (2147483647, 10)]
    s.clear()
    s.method("Stream", "Write").raises(RuntimeError, "full")
    assert text_of(RuntimeError, t.write, memory) == "full" and len(s.calls("Write")) == 1


@scene("collections-streams.host.signatures")
def test_bools_of_the_host_are_one_byte(s):
    t = stream(s, 0x10)
    s.method("Stream", "CanRead").returns(0x100, 0x101)
    assert [t.readable(), t.readable()] == [False, True]
    s.method("Stream", "Position").returns(-(2**40))
    s.method("Stream", "Seek").returns(2**40)
    s.method("Stream", "SetLength").returns(2**41)
    s.method("Stream", "Read").returns(0xFFFFFFFF00000000)
    assert [t.tell(), t.seek(1), t.truncate(1)] == [-(2**40), 2**40, 2**41]
    assert t.read(5) == b"" and s.calls("Read", 1) == [[0x10]]


@scene("collections-streams.type.hash-and-equality")
def test_hash_and_equality_are_the_common_ones(s):
    t = stream(s, 0x10)
    t.close()
    s.method("Object", "GetHashOfObj").returns(42)
    s.method("Object", "IsEqualsOfObj").returns(1)
    assert hash(t) == 42 and t == stream(s, 0x20)
    assert s.calls("GetHashOfObj") == s.calls("IsEqualsOfObj") == [[0x10]]
