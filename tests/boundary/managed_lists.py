"""Scripted managed lists for tests of lists and arrays."""

import ctypes

from wrappers import POINTER, i32

WRAPPERS = {
    "IList": "_IListWrapper",
    "ICol": "_IColWrapper",
    "Array": "_ArrayWrapper",
    "ArrList": "_ArrListWrapper",
    "ColBase": "_ColBaseWrapper",
    "RoColBase": "_RoColBaseWrapper",
}
SET_NOCHECK = {
    "IList": "SqSetItemNoCheck",
    "Array": "SqSetItemNoChek",
    "ArrList": "SqSetItemNoChek",
}


def length_class(kind):
    """The entry class that is asked for the length."""
    return "ICol" if kind in ("IList", "ICol", "ColBase", "RoColBase") else kind


def element_class(kind):
    return {"ColBase": "IList", "RoColBase": "ICol"}.get(kind, kind)


def managed(s, kind, items, handle=0x10):
    """A wrapper over a scripted list of these Python objects."""
    items = list(items)
    entries = element_class(kind)
    s.method(length_class(kind), "SqLength").reset().returns(len(items))

    def write(frame, argument, value):
        POINTER.from_address(frame.integers[argument]).value = s.new_ref(value)

    def get(frame):
        index = i32(frame.integers[1])
        if 0 <= index < len(items):
            write(frame, 2, items[index])
        else:
            frame.result = 2

    def fetch(frame):
        frame.result = s.new_ref(items[i32(frame.integers[1])])

    if entries in SET_NOCHECK:
        s.method(entries, "SqGetItem").reset().calls(get)
        s.method(entries, "SqGetItemNoCheck").reset().calls(fetch)
        s.method(entries, "SqSetItem").reset().shows(2, 16)
        s.method(entries, SET_NOCHECK[entries]).reset().shows(2, 16)
    return s.wrap(getattr(s.interop, WRAPPERS[kind]), handle)


def enumerated(s, items):
    """Lets every managed enumerable give these items; to be called before each iteration."""
    items = list(items)
    s.type_name("Sample.Unknown")
    s.method("Iterable", "GetEnumerator").reset().writes(1, b"\x20" + bytes(15)).returns(0)
    left = []

    def start(frame):
        left[:] = items
        ctypes.memmove(frame.integers[1], b"\x20" + bytes(15), 16)

    def move_next(frame):
        if not left:
            frame.result = 1
            return
        POINTER.from_address(frame.integers[1]).value = s.new_ref(left.pop(0))

    s.method("Iterable", "GetEnumerator").reset().calls(start)
    s.method("Iter", "MoveNext").reset().calls(move_next)


def indexes(s, name, argument=1, count=2):
    return [i32(words[argument]) for words in s.calls(name, count)]


def ints(s, name, count):
    """The int32 arguments after the handle of each call."""
    return [[i32(word) for word in words[1:]] for words in s.calls(name, count + 1)]


def writes_of(s, name):
    """(index, kind, value) of each call that writes an element."""
    import struct

    places = indexes(s, name)
    records = [struct.unpack("<i4xQ", part[0]) for part in s.memory(name)]
    return [(place, *record) for place, record in zip(places, records)]


def all_lists():
    return ["IList", "ColBase", "ArrList", "Array"]


def growing():
    return ["IList", "ColBase", "ArrList"]


def entries(kind):
    return "IList" if kind == "ColBase" else kind


def raised_any(use):
    try:
        use()
    except Exception as error:
        return error


def range_text(index):
    return f"the index ({index}) is out of the INT32 range"
