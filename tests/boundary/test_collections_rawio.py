"""Python file objects on the managed side."""

import ctypes
import io
import sys

from wrappers import INT, OBJECT, POINTER, scene, shown


class Recorder(io.RawIOBase):
    """A stream that tells what was done to it and answers as it is told."""

    def __init__(self, **answers):
        super().__init__()
        self.calls, self.answers, self.views = [], answers, []

    def tell_of(self, name, *arguments):
        self.calls.append((name, *arguments))
        answer = self.answers.get(name)
        if isinstance(answer, list):
            answer = answer.pop(0)
        if isinstance(answer, BaseException):
            raise answer
        return answer

    def read(self, *_):
        raise AssertionError("read is never called")

    def write(self, view):
        m = memoryview(view)
        self.views.append(type(view).__name__)
        return self.tell_of("write", m.readonly, bytes(m))

    def readinto(self, view):
        m = memoryview(view)
        self.views.append(type(view).__name__)
        fill = self.answers.get("fill", b"")
        m[: len(fill)] = fill
        return self.tell_of("readinto", m.readonly, len(m))

    def seek(self, *arguments):
        return self.tell_of("seek", *arguments)

    def tell(self):
        return self.tell_of("tell")

    def truncate(self, length):
        return self.tell_of("truncate", length)

    def flush(self):
        if "calls" in self.__dict__:
            return self.tell_of("flush")

    def close(self):
        if "calls" in self.__dict__:
            return self.tell_of("close")

    def readable(self):
        return self.tell_of("readable")

    def writable(self):
        return self.tell_of("writable")

    def seekable(self):
        return self.tell_of("seekable")

    @property
    def closed(self):
        return self.tell_of("closed") if "calls" in self.__dict__ else False


def stream_status(s, name, stream, *arguments):
    wide = name in ("seek", "tell", "length")
    return s.status(f"fn_clbk_rawio_{name}", stream, *arguments, wide=wide)


def block(content):
    return ctypes.create_string_buffer(content, len(content))


@scene("collections-reverse.rules.errors-stay-set")
def test_a_failure_stays_pending_for_the_bridge(s):
    text = s.native.PyStringArg()
    owner = POINTER()
    catch = s.function("catch_after", INT, POINTER, OBJECT, POINTER, POINTER)
    for name in ("tell", "flush", "readable"):
        stream = Recorder(closed=False, **{name: ValueError("told")})
        callback = s.native.address(f"fn_clbk_rawio_{name}")
        assert catch(callback, stream, ctypes.addressof(owner), ctypes.addressof(text)) == 0
        assert text.text().endswith("ValueError: told\n")
        stream.answers[name] = None


@scene(
    "collections-reverse.rawio-write.view",
    "collections-reverse.rawio-write.result",
    "collections-reverse.rawio-write.failure",
    "collections-reverse.rawio-write.bad-result",
    "collections-reverse.rawio-write.byte",
    "collections-reverse.rules.no-read-method",
    "collections-reverse.rules.no-buffering",
)
def test_writing(s):
    data = block(b"abcdef")
    place = ctypes.addressof(data)
    stream = Recorder(write=[3, 2, None, 6])
    assert [shown(stream_status(s, "write", stream, place, 3)) for _ in range(3)] == [
        (3, None),
        (2, None),
        (0, None),
    ]
    assert stream.calls == [("write", True, b"abc")] * 3 and set(stream.views) == {"_ShlBufferView"}
    for answer, wanted in [
        (KeyError("full"), (-1, KeyError, "'full'")),
        ("3", (-1, TypeError, "integer argument expected, got 'str'")),
        (True, (-1, TypeError, "integer argument expected, got 'bool'")),
        (2147483648, (-1, OverflowError, "value '2147483648' is out of the INT32 range")),
    ]:
        stream = Recorder(write=answer)
        assert shown(stream_status(s, "write", stream, place, 3)) == wanted
    stream = Recorder(write=1)
    assert shown(stream_status(s, "write_byte", stream, 0x1FF)) == (1, None)
    assert shown(stream_status(s, "write_byte", stream, 0x41)) == (1, None)
    assert stream.calls == [("write", True, b"\xff"), ("write", True, b"A")]


@scene("collections-reverse.rawio-view.reference")
def test_the_view_is_not_released(s):
    class Keeper(io.RawIOBase):
        def write(self, view):
            self.view = view
            return 1

        def readinto(self, view):
            self.view = view
            return 1

    data = block(b"abc")
    for name in ("write", "read"):
        stream = Keeper()
        stream_status(s, name, stream, ctypes.addressof(data), 3)
        assert sys.getrefcount(stream.view) == 3  # the attribute, the argument, and the one left


@scene(
    "collections-reverse.rawio-read.view",
    "collections-reverse.rawio-read.result",
    "collections-reverse.rawio-read.failure",
    "collections-reverse.rawio-readbyte.value",
    "collections-reverse.rawio-readbyte.end",
    "collections-reverse.rawio-readbyte.none",
    "collections-reverse.rawio-readbyte.failure",
)
def test_reading(s):
    data = block(b"------")
    place = ctypes.addressof(data)
    stream = Recorder(readinto=[3, 0, None], fill=b"abc")

    def read(stream):
        return shown(stream_status(s, "read", stream, place, 4))

    assert [read(stream) for _ in range(3)] == [(3, None), (0, None), (0, None)]
    assert data.raw == b"abc---" and stream.calls == [("readinto", False, 4)] * 3
    assert read(Recorder(readinto=KeyError("gone"))) == (-1, KeyError, "'gone'")
    text = "integer argument expected, got 'str'"
    assert read(Recorder(readinto="x")) == (-1, TypeError, text)

    def byte(stream):
        return shown(stream_status(s, "readbyte", stream))

    stream = Recorder(readinto=1, fill=b"\xff")
    assert byte(stream) == (255, None) and stream.calls == [("readinto", False, 1)]
    assert byte(Recorder(readinto=1, fill=b"\0")) == (0, None)
    assert byte(Recorder(readinto=0)) == (-1, None)
    text = "no bytes are available for reading"
    assert byte(Recorder(readinto=None)) == (-2, OSError, text)
    assert byte(Recorder(readinto=KeyError("gone"))) == (-2, KeyError, "'gone'")
    assert byte(Recorder(readinto="x"))[:2] == (-2, TypeError)


@scene(
    "collections-reverse.rawio-seek.call",
    "collections-reverse.rawio-flush.call",
    "collections-reverse.rawio-tell.call",
)
def test_seek_flush_tell(s):
    stream = Recorder(seek=2**40, flush="anything", tell=2**41)
    assert shown(stream_status(s, "seek", stream, -5 & 0xFFFFFFFFFFFFFFFF, 1)) == (2**40, None)
    assert shown(stream_status(s, "flush", stream)) == (0, None)
    assert shown(stream_status(s, "tell", stream)) == (2**41, None)
    assert stream.calls == [("seek", -5, 1), ("flush",), ("tell",)]
    text = "integer argument expected, got 'NoneType'"
    for name, arguments in [("seek", (1, 0)), ("tell", ())]:
        for answer, wanted in [(None, (-1, TypeError, text)), (KeyError(1), (-1, KeyError, "1"))]:
            stream = Recorder(**{name: answer})
            assert shown(stream_status(s, name, stream, *arguments)) == wanted
    stream = Recorder(flush=KeyError(1))
    assert shown(stream_status(s, "flush", stream)) == (-1, KeyError, "1")
    stream.answers["flush"] = None


@scene(
    "collections-reverse.rawio-truncate.call",
    "collections-reverse.rawio-truncate.position-beyond",
    "collections-reverse.rawio-truncate.position-before",
    "collections-reverse.rawio-truncate.negative-length",
    "collections-reverse.rawio-truncate.second-half-fails",
)
def test_truncation(s):
    def run(length, **answers):
        stream = Recorder(truncate=length, **answers)
        outcome = stream_status(s, "truncate", stream, length & 0xFFFFFFFFFFFFFFFF)
        return shown(outcome), list(stream.calls)  # its death adds a close

    assert run(4, tell=8, seek=4) == ((0, None), [("truncate", 4), ("tell",), ("seek", 4, 0)])
    for position in (4, 3, 0):
        assert run(4, tell=position) == ((0, None), [("truncate", 4), ("tell",)])
    assert run(-1, tell=8) == ((0, None), [("truncate", -1), ("tell",)])
    assert run(4, tell=-1)[1] == [("truncate", 4), ("tell",)]
    for answers in ({"tell": KeyError(1)}, {"tell": "x"}, {"tell": 8, "seek": KeyError(1)}):
        assert run(4, **answers)[0] == (0, None)
    stream = Recorder(truncate=KeyError(1))
    assert shown(stream_status(s, "truncate", stream, 4)) == (-1, KeyError, "1")
    assert stream.calls == [("truncate", 4)]
    memory = io.BytesIO(b"0123456789")
    memory.seek(8)
    assert shown(stream_status(s, "truncate", memory, 4)) == (0, None)
    assert (memory.tell(), memory.getvalue()) == (4, b"0123")


@scene(
    "collections-reverse.rawio-close.call",
    "collections-reverse.rawio-close.unraisable",
    "collections-reverse.rawio-close.pending-error",
)
def test_closing_disturbs_nothing(s):
    reports, seen = [], []
    sys.unraisablehook = lambda report: reports.append((report.object, repr(report.exc_value)))
    close = s.function("fn_clbk_rawio_close", None, OBJECT)

    class Closing(io.RawIOBase):
        failure = None
        done = False

        def close(self):
            seen.append(pending())
            self.done = True
            if self.failure:
                raise self.failure

    pending = ctypes.PYFUNCTYPE(POINTER)(("PyErr_Occurred", ctypes.pythonapi))
    stream = Closing()
    close(stream)
    assert stream.done and seen == [None] and reports == []
    stream.failure = KeyError("stuck")
    close(stream)
    assert reports == [(stream, "KeyError('stuck')")]
    with_pending = s.function("close_with_pending", OBJECT, OBJECT, OBJECT, OBJECT)
    for failure in (None, KeyError("stuck")):
        stream.failure = failure
        error = with_pending(stream, ValueError, "earlier")
        assert repr(error) == "ValueError('earlier')"
    assert seen == [None] * 4 and len(reports) == 2
    stream.failure = None


@scene(
    "collections-reverse.rawio-ables.open",
    "collections-reverse.rawio-ables.closed",
    "collections-reverse.rawio-ables.closed-fails",
    "collections-reverse.rawio-ables.closed-no-bool",
    "collections-reverse.rawio-ables.method-fails",
)
def test_abilities(s):
    text = "An error occurred while checking if the stream is closed"
    for name in ("readable", "writable", "seekable"):

        def ask(stream):
            return stream_status(s, name, stream)

        for answer in (True, False):
            stream = Recorder(closed=False, **{name: answer})
            assert shown(ask(stream)) == (int(answer), None)
            assert stream.calls == [("closed",), (name,)]
        stream = Recorder(closed=True)
        assert shown(ask(stream)) == (0, None) and stream.calls == [("closed",)]
        status, error = ask(Recorder(closed=KeyError("gone")))
        assert (status, type(error), str(error)) == (-1, TypeError, text)
        assert repr(error.__cause__) == "KeyError('gone')"
        status, error = ask(object())
        assert (status, str(error)) == (-1, text) and type(error.__cause__) is AttributeError
        status, error = ask(Recorder(closed=0))
        assert (status, str(error)) == (-1, text)
        assert repr(error.__cause__) == "TypeError(\"can't build bool from 'int'\")"
        stream = Recorder(closed=False, **{name: KeyError("gone")})
        status, error = ask(stream)
        assert status == -1 and repr(error) == "KeyError('gone')" and error.__cause__ is None
        stream = Recorder(closed=False, **{name: 1})
        assert shown(ask(stream)) == (-1, TypeError, "can't build bool from 'int'")


@scene(
    "collections-reverse.rawio-length.steps",
    "collections-reverse.rawio-length.bytesio",
    "collections-reverse.rawio-length.closed",
    "collections-reverse.rawio-length.not-seekable",
    "collections-reverse.rawio-length.closed-fails",
    "collections-reverse.rawio-length.seekable-fails",
    "collections-reverse.rawio-length.seek-fails",
    "collections-reverse.rawio-length.bad-end",
)
def test_the_length_is_measured(s):
    def ask(stream):
        return stream_status(s, "length", stream)

    class Position(int):
        pass

    here = Position(3)
    stream = Recorder(closed=False, seekable=True, seek=[here, 10, 3])
    assert shown(ask(stream)) == (10, None)
    wanted = [("closed",), ("seekable",), ("seek", 0, 1), ("seek", 0, 2), ("seek", 3)]
    assert stream.calls == wanted and stream.calls[-1][1] is here
    memory = io.BytesIO(b"0123456789")
    memory.seek(3)
    assert shown(ask(memory)) == (10, None) and memory.tell() == 3
    stream = Recorder(closed=True)
    assert shown(ask(stream)) == (-3, None) and stream.calls == [("closed",)]
    stream = Recorder(closed=False, seekable=False)
    assert shown(ask(stream)) == (-2, None) and stream.calls == wanted[:2]
    closed_text = "An error occurred while checking if the stream is closed"
    for answer, cause in [(KeyError(1), KeyError), (0, TypeError)]:
        status, error = ask(Recorder(closed=answer))
        assert (status, str(error), type(error.__cause__)) == (-1, closed_text, cause)
    text = "While calculating the length of the stream, an error occurred."
    for answer, cause in [(KeyError(1), KeyError), (1, TypeError)]:
        status, error = ask(Recorder(closed=False, seekable=answer))
        assert (status, type(error), str(error)) == (-1, TypeError, text)
        assert type(error.__cause__) is cause
    for position in range(3):
        answers = [3, 10, 3]
        answers[position] = KeyError(position)
        stream = Recorder(closed=False, seekable=True, seek=answers)
        status, error = ask(stream)
        assert (status, str(error), type(error.__cause__)) == (-1, text, KeyError)
        assert stream.calls == wanted[: 3 + position]
    stream = Recorder(closed=False, seekable=True, seek=[3, "x", 3])
    status, error = ask(stream)
    assert (status, str(error)) == (-1, text) and stream.calls == wanted
    assert str(error.__cause__) == "integer argument expected, got 'str'"
