"""Reading a managed stream: by size, to the end, by lines."""

import ctypes
import gc

from managed_streams import counts, full, lines_of, script_read, seekable, stream
from wrappers import OBJECT, POINTER, i32, i64, raised, scene, text_of


@scene(
    "collections-streams.read.default-unbounded",
    "collections-streams.readall.call",
    "collections-streams.readloop.end",
    "collections-streams.readloop.free-tail",
    "collections-streams.readloop.destination",
    "collections-streams.read.exact-type",
)
def test_reading_to_the_end(s):
    t = stream(s)
    for read in (t.read, lambda: t.read(None), lambda: t.read(-1), lambda: t.read(-5), t.readall):
        s.clear()
        script_read(s, b"a" * 100, b"b" * 924, b"c")
        got = read()
        assert type(got) is bytes and got == b"a" * 100 + b"b" * 924 + b"c"
        assert counts(s) == [1024, 924, 4096, 4095]
        addresses = [words[1] for words in s.calls("Read", 3)]
        assert addresses[1] == addresses[0] + 100
        assert addresses[3] == addresses[2] + 1
        script_read(s)
        assert read() == b""
    s.clear()
    script_read(s, b"z" * 1024)
    assert t.read() == b"z" * 1024 and counts(s) == [1024, 4096]


@scene("collections-streams.readloop.growth", "collections-streams.readline.growth")
def test_the_buffer_grows_by_the_curve(s):
    curve = [1024, 4096, 4096, 18432, 55296] + [65536] * 7 + [67712, 76176]
    t = stream(s)
    seekable(s)
    script_read(s, *[full] * len(curve))
    assert t.read() == b"x" * sum(curve) and counts(s)[: len(curve)] == curve
    s.clear()
    script_read(s, *[full] * 6)
    assert t.readline() == b"x" * sum(curve[:6]) and counts(s)[:6] == curve[:6]


@scene(
    "collections-streams.read.sized-one-call",
    "collections-streams.read.short-read",
    "collections-streams.read.zero",
    "collections-streams.read.at-end",
    "collections-streams.read.index-object",
)
def test_a_sized_read_asks_once(s):
    t = stream(s, 0x10)
    script_read(s, b"abcde", b"ab", b"", b"", b"q")
    assert [t.read(5), t.read(3), t.read(0), t.read(5), t.read(True)] == [
        b"abcde",
        b"ab",
        b"",
        b"",
        b"q",
    ]
    assert counts(s) == [5, 3, 0, 5, 1]


@scene("collections-streams.read.above-int32", "collections-streams.readloop.bounded-stop")
def test_a_huge_read_is_bounded(s):
    read = s.function("fn_stream_read_bytes_impl", OBJECT, POINTER, ctypes.c_ssize_t)
    stream(s)
    script_read(s, b"abc", b"de", then=b"never")
    assert read(0x10, 5) == b"abcde" and counts(s) == [5, 2]
    s.clear()
    script_read(s, b"abc")
    assert stream(s).read(2147483648) == b"abc" and counts(s) == [2147483647, 2147483645]


@scene("collections-streams.read.error-drops", "collections-streams.readline.read-error")
def test_an_error_in_the_middle_loses_what_was_read(s):
    t = stream(s)
    seekable(s)

    def read(frame):
        calls.append(1)
        if len(calls) == 2:
            s.method("Stream", "Read").reset().returns(1).raises(RuntimeError, "gone")
        ctypes.memmove(frame.integers[1], b"abc", 3)
        frame.result = 3

    for use in (t.read, t.readline, lambda: t.readlines(5)):
        calls = []
        s.clear()
        s.method("Stream", "Read").reset().calls(read)
        assert text_of(RuntimeError, use) == "gone"
        assert s.calls("Seek") == []


@scene(
    "collections-streams.readinto.one-call",
    "collections-streams.readinto.short",
    "collections-streams.readinto.empty-buffer",
    "collections-streams.readinto.buffer-released",
)
def test_readinto(s):
    t = stream(s)
    target = bytearray(b"----------")
    place = ctypes.addressof((ctypes.c_char * 10).from_buffer(target))
    gc.collect()
    script_read(s, b"0123456789", b"abcd", b"")
    assert t.readinto(target) == 10 and target == b"0123456789"
    assert s.calls("Read", 3) == [[0x10, place, 10]]
    assert t.readinto(target) == 4 and target == b"abcd456789"
    assert t.readinto(bytearray(0)) == 0 and counts(s) == [10, 10, 0]
    target.append(1)
    s.method("Stream", "Read").reset().raises(RuntimeError, "gone")
    raised(RuntimeError, t.readinto, target)
    target.append(1)


@scene(
    "collections-streams.writelines.each",
    "collections-streams.writelines.first-failure",
    "collections-streams.writelines.iterator-error",
)
def test_writelines(s):
    t = stream(s)
    assert t.writelines([b"a", b"bc"]) is None and counts(s, "Write") == [1, 2]
    s.clear()
    assert t.writelines(iter(())) is None and s.calls() == []
    text = "write argument must be bytes-like object, not 'str'"
    assert text_of(TypeError, t.writelines, [b"a", "b", b"c"]) == text
    assert counts(s, "Write") == [1]

    def failing():
        yield b"a"
        raise KeyError("end")

    s.clear()
    raised(KeyError, t.writelines, failing())
    assert counts(s, "Write") == [1]
    raised(TypeError, t.writelines, 5)


@scene(
    "collections-streams.readline.seekable-check",
    "collections-streams.readline.not-seekable",
    "collections-streams.readline.can-seek-raised",
    "collections-streams.readlines.can-seek-twice",
)
def test_lines_need_a_stream_that_can_seek(s):
    t = stream(s)
    script_read(s)
    text = "the operation supported only for seekable inner streams. "
    for use in (t.readline, t.readlines, lambda: iter(t)):
        seekable(s, 0)
        assert text_of(TypeError, use) == text + "the inner stream is not seekable"
        s.method("Stream", "CanSeek").reset().raises(RuntimeError, "unknown")
        failed = raised(TypeError, use)
        assert str(failed) == text + "an exception was thrown during 'CanSeek' check"
        assert repr(failed.__cause__) == "RuntimeError('unknown')"
    assert s.calls("Read") == []
    seekable(s)
    for use, wanted in [
        (t.readline, ["CanSeek", "Read"]),
        (t.readlines, ["CanSeek", "CanSeek", "Read"]),
        (lambda: t.readlines(5), ["CanSeek", "CanSeek", "Read"]),
        (lambda: iter(t), ["CanSeek"]),
    ]:
        s.clear()
        use()
        assert s.calls() == wanted


@scene(
    "collections-streams.readline.give-back",
    "collections-streams.readline.no-give-back",
    "collections-streams.readline.first-line-feed",
    "collections-streams.readline.carriage-return",
    "collections-streams.readline.end-of-stream",
    "collections-streams.readline.short-reads",
    "collections-streams.readline.seek-error",
)
def test_a_line_ends_behind_its_line_feed(s):
    t = stream(s)
    seekable(s)

    def line(*pieces):
        s.clear()
        script_read(s, *pieces)
        got = t.readline()
        assert type(got) is bytes
        return got, [(i64(words[1]), i32(words[2])) for words in s.calls("Seek", 3)]

    assert line(b"a\nb") == (b"a\n", [(-1, 1)])
    assert line(b"ab\n") == (b"ab\n", [])
    assert line(b"a\nb\nc\n") == (b"a\n", [(-4, 1)])
    assert line(b"a\rb\r\nc") == (b"a\rb\r\n", [(-1, 1)])
    assert line(b"rest") == (b"rest", []) and line() == (b"", [])
    assert line(b"abc", b"de\nf") == (b"abcde\n", [(-1, 1)]) and counts(s) == [1024, 1021]
    s.method("Stream", "Seek").raises(RuntimeError, "stuck")
    script_read(s, b"a\nb")
    assert text_of(RuntimeError, t.readline) == "stuck"


@scene(
    "collections-streams.readline.size-forms",
    "collections-streams.readline.zero",
    "collections-streams.readline.small-limit",
    "collections-streams.readline.limit-after-feed",
    "collections-streams.readline.large-limit",
)
def test_a_line_has_a_limit(s):
    t = stream(s)
    seekable(s)

    def line(limit, *pieces):
        s.clear()
        script_read(s, *pieces)
        got = t.readline(limit)
        return got, counts(s), [i64(words[1]) for words in s.calls("Seek", 3)]

    for limit in (None, -1, 9223372036854775807):
        assert line(limit, b"a\n") == (b"a\n", [1024], [])
    script_read(s, b"a\n")
    assert t.readline() == b"a\n"
    assert line(0, b"abc") == (b"", [0], [])
    assert line(2, b"abc") == (b"ab", [2], [])
    assert line(5, b"a\nbcdef") == (b"a\n", [5], [-3])
    assert line(1500, full, full) == (b"x" * 1500, [1024, 476], [])


@scene(
    "collections-streams.iter.self",
    "collections-streams.iter.next-line",
    "collections-streams.iter.end",
    "collections-streams.iter.lines",
    "collections-streams.iter.next-no-checks",
)
def test_iteration_by_lines(s):
    t = lines_of(s, b"one\ntwo\nthree")
    assert iter(t) is t and s.calls() == ["CanSeek"]
    assert list(t) == [b"one\n", b"two\n", b"three"]
    raised(StopIteration, next, t)
    t = lines_of(s, b"one\ntwo\n")
    s.clear()
    t.close()
    seekable(s, 0)
    assert next(t) == b"one\n" and s.calls() == ["Close", "Read", "Seek"]


@scene(
    "collections-streams.readlines.all",
    "collections-streams.readlines.hint",
    "collections-streams.readlines.hint-beyond",
    "collections-streams.readlines.error",
)
def test_readlines(s):
    content = b"ab\ncd\ne\n"
    every = [b"ab\n", b"cd\n", b"e\n"]
    for arguments in ((), (None,), (0,), (-1,), (1000,)):
        got = lines_of(s, content).readlines(*arguments)
        assert type(got) is list and got == every
    assert lines_of(s, content).readlines(1) == every[:1]
    assert lines_of(s, content).readlines(3) == every[:1]
    assert lines_of(s, content).readlines(4) == every[:2]
    for arguments in ((), (100,)):
        t = lines_of(s, content)
        s.method("Stream", "Seek").reset().raises(RuntimeError, "stuck")
        assert text_of(RuntimeError, t.readlines, *arguments) == "stuck"
