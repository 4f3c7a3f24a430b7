"""A scene over kelmor.psd itself: its bound classes, over delegates of the script.

    @psd_scene("family-class.getter.call")
    def test_a_property_asks_each_time(s):
        s.gives("Xmp.XmpHeaderPi", "get_Guid", "one")
        assert s.make("Xmp.XmpHeaderPi").guid == "one"

The body runs in a process of its own, with siblings made of nothing; classes are named by their
managed names below Kelmor.PSD.
"""

import ctypes
import importlib
import inspect
import json
import struct
import sys  # noqa: F401  (for the bodies)
import textwrap

import pytest

import peer

OBJECT, POINTER = ctypes.py_object, ctypes.c_void_p
TAGS = {
    name.removeprefix("Kelmor.PSD."): pair
    for name, pair in json.loads((peer.ROOT / "api/tags.json").read_text())["psd"].items()
}
SERVICES = {
    "Disposable": "Kelmor.WrpGen.Interop.SiApiDisposable",
    "Exchange": peer.EXCHANGE,
    "Object": peer.OBJECT,
}


def entry_class(name):
    """The name under which the runtime finds the entry class of a managed class."""
    if name in SERVICES:
        return SERVICES[name]
    if name.startswith("Generic."):
        return "Kelmor.WrpGen." + name
    space, _, simple = f"Kelmor.PSD.{name}".rpartition(".")
    own = simple.rpartition("+")[2]
    spaces = ".".join(f"WrpNs_{part}" for part in space.split("."))
    return f"{spaces}.WrpCs_{own[:8]}_{TAGS[name][1]}"


def psd_scene(*ids, refuse=()):
    """A test whose body runs in a process of its own, with a Psd as its argument.

    `refuse`: (class, method) pairs for which the peer has no delegate.
    """

    def decorate(body):
        lines = textwrap.dedent(inspect.getsource(body)).splitlines()
        start = next(i for i, line in enumerate(lines) if line.startswith("def "))
        module = inspect.getmodule(body)
        shared = "".join(
            inspect.getsource(value) + "\n"
            for name, value in vars(module).items()
            if inspect.isfunction(value)
            and value.__module__ == module.__name__
            and not name.startswith("test_")
        )
        program = "\n".join(
            ["from psd_scene import *", shared, *lines[start:]]
            + [f"{body.__name__}(Psd({tuple(refuse)!r}))"]
        )

        def test(in_process):
            in_process(program)

        test.__name__, test.__doc__ = body.__name__, body.__doc__
        test.__module__ = body.__module__
        return pytest.mark.behaviour(*ids)(test) if ids else test

    return decorate


class Psd:
    def __init__(self, refuse=()):
        from family import Family

        self.script = peer.Script()
        for name, method in refuse:
            self.script.refuse(entry_class(name), method, 77)
        self.kept = []
        family = Family().complete()
        for name in ("Type", "Object", "Enum"):
            self.serve_sibling(family, name)
        for setter in ("SetPyStaticCallbacks", "SetPyGenericCallbacks", "SetExceptionCallback"):
            self.method("Exchange", setter).takes(1)
        self.psd = importlib.import_module("kelmor.psd")
        self.journal_of_start = self.script.journal
        self.script.clear_journal()
        # What the interpreter still does while a process ends must find an answer.
        self.freed_at_start = 0

    def serve_sibling(self, family, name):
        """The converters of typemodel: a handle comes back as the pair of name and handle."""

        def give(frame):
            frame.result = self.new_ref((name, frame.integers[0]))

        to_py = self.script.method("Sibling", name + "ToPy", "Sibling").calls(give)
        through = self.script.method("Sibling", name + "Through", "Sibling")
        table = ctypes.cast(
            family.tables[f"kelmor.typemodel._C_APIT_{name}"], ctypes.POINTER(ctypes.c_uint64)
        )
        table[1], table[2] = to_py.address, through.address

    # The managed side.

    def method(self, kind, name):
        """An entry of a bound class, or of a service."""
        return self.script.method(entry_class(kind), name, peer.ASSEMBLY)

    def on(self, kind, name, function):
        """Answers a call by a function over the frame; `frame.result` starts as 0."""
        return self.method(kind, name).calls(function)

    def gives(self, kind, name, value):
        """The method gives a new reference to the object at each call."""

        def give(frame):
            frame.result = self.new_ref(value)

        return self.on(kind, name, give)

    def new_ref(self, value):
        ctypes.pythonapi.Py_IncRef(OBJECT(value))
        self.kept.append(value)
        return id(value)

    def type_of(self, name):
        """The Python type of a managed class."""
        place = self.psd
        space, _, simple = name.rpartition(".")
        for part in space.lower().split(".") if space else ():
            place = getattr(place, part)
        for part in simple.split("+"):
            place = getattr(place, part)
        return place

    def make(self, name, handle=0x10, entry=None, arguments=()):
        """An instance made by a constructor whose entry gives the handle."""
        entry = entry or f"ctor_000_{name.rpartition('.')[2]}"
        self.method(name, entry).reset().returns(handle)
        return self.type_of(name)(*arguments)

    def bare(self, name, handle):
        """A wrapper over a handle that no constructor made."""
        wrapper = self.type_of(name).__new__(self.type_of(name))
        POINTER.from_address(id(wrapper) + 16).value = handle
        return wrapper

    # What was seen.

    @property
    def delegates(self):
        """Names of the methods that were called."""
        return self.script.delegates()

    def calls(self, name, count=4):
        """First arguments of each call of a method."""
        return [
            entry["arguments"][:count]
            for entry in self.script.journal
            if entry["call"] == "delegate" and entry["method"] == name
        ]

    def requests(self, kind=None):
        """The methods that were asked for, of one class or of all bound classes."""
        wanted = self.script.requests
        if kind is None:
            return [(cls, method) for cls, method in wanted if cls.startswith("WrpNs_")]
        return [method for cls, method in wanted if cls == entry_class(kind)]

    def clear(self):
        self.script.clear_journal()


def missing_text(kind, method, number=77):
    return (
        f"While initializing the host for the '{entry_class(kind)} (Assembly={peer.ASSEMBLY})'"
        f" type, an error occurred - Method '{method}' not found (error={number})"
    )


REFERENCE = "one or more refereced type is not initialized"


def raised(kind, function, *arguments, **keywords):
    """What a call raises: exactly this kind."""
    try:
        function(*arguments, **keywords)
    except BaseException as error:
        assert type(error) is kind, repr(error)
        return error
    raise AssertionError(f"{kind.__name__} was not raised")


def text_of(kind, function, *arguments, **keywords):
    return str(raised(kind, function, *arguments, **keywords))


def handle_of(wrapper):
    return POINTER.from_address(id(wrapper) + 16).value


def string_at(address):
    """The text of a PyStringArg with one byte for each character; None for None."""
    length, size, data = struct.unpack("<iiQ", ctypes.string_at(address, 16))
    return None if length < 0 else ctypes.string_at(data, length * size).decode("latin-1")


def variant_at(address):
    """kind and value of a VariantArg."""
    return struct.unpack("<i4xQ", ctypes.string_at(address, 16))


def low(word, size, signed=False):
    """The number in the low bytes of a register."""
    raw = (word & 0xFFFFFFFFFFFFFFFF).to_bytes(8, "little")[:size]
    return int.from_bytes(raw, "little", signed=signed)


__all__ = [name for name in dir() if not name.startswith("__")]
