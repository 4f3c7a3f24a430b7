"""Scripted managed streams for tests."""

import ctypes

from wrappers import i32, i64


def stream(s, handle=0x10):
    return s.wrap(s.interop._StreamWrapper, handle)


def script_read(s, *pieces, then=b""):
    """Each "Read" delivers one piece, cut to what was asked for; afterwards `then`."""
    left = list(pieces)

    def read(frame):
        asked = i32(frame.integers[2])
        piece = left.pop(0) if left else then
        piece = piece(asked) if callable(piece) else piece[:asked]
        ctypes.memmove(frame.integers[1], piece, len(piece))
        frame.result = len(piece)

    s.method("Stream", "Read").reset().calls(read)


def counts(s, name="Read"):
    return [i32(words[2]) for words in s.calls(name, 3)]


def full(asked):
    return b"x" * asked


def seekable(s, answer=1):
    s.method("Stream", "CanSeek").reset().returns(answer)


def closed_text():
    return "I/O operation on closed stream"


def lines_of(s, content):
    """A stream over these bytes that can seek."""
    state = {"at": 0}

    def read(frame):
        piece = content[state["at"] :][: i32(frame.integers[2])]
        ctypes.memmove(frame.integers[1], piece, len(piece))
        state["at"] += len(piece)
        frame.result = len(piece)

    def seek(frame):
        assert frame.integers[2] & 0xFFFFFFFF == 1
        state["at"] += i64(frame.integers[1])
        frame.result = state["at"]

    s.method("Stream", "Read").reset().calls(read)
    s.method("Stream", "Seek").reset().calls(seek)
    seekable(s)
    return stream(s)
