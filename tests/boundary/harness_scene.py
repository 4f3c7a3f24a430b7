"""A scene over the harness: the library of all value forms, bound to delegates of the script.

    @harness_scene("marshal-records.delegate.static-no-handle")
    def test_a_static_method_has_no_handle(s):
        s.method("Scalars", "call_000_EchoInt32").returns(7)
        assert s.harness.Scalars.echo_int32(5) == 7

The body runs in a process of its own, with siblings made of nothing.
"""

import ctypes
import gc  # noqa: F401  (for the bodies)
import importlib
import inspect
import json
import struct
import sys  # noqa: F401
import textwrap

import pytest

import peer

behaviour = pytest.mark.behaviour
POINTER, OBJECT, INT = ctypes.c_void_p, ctypes.py_object, ctypes.c_int
ASSEMBLY = "WrpInterop.Kelmor.Harness"


def harness_scene(*ids):
    """A test whose body runs in a process of its own, with a Harness as its argument."""

    def decorate(body):
        lines = textwrap.dedent(inspect.getsource(body)).splitlines()
        start = next(i for i, line in enumerate(lines) if line.startswith("def "))
        program = "\n".join(
            ["from harness_scene import *", *lines[start:], f"{body.__name__}(Harness())"]
        )

        def test(in_process):
            if not list((peer.STAGE / "kelmor").glob("harness.*.so")):
                pytest.skip("kelmor.harness was not built")
            in_process(program)

        test.__name__, test.__doc__ = body.__name__, body.__doc__
        test.__module__ = body.__module__
        return behaviour(*ids)(test)

    return decorate


class Harness:
    def __init__(self):
        from family import Family

        self.script = peer.Script()
        self.kept = []
        Family().complete()
        tags = json.loads((peer.ROOT / "api/tags.json").read_text())["harness"]
        self.classes = {name.rsplit(".", 1)[1]: pair[1] for name, pair in tags.items()}
        setters = ("SetExceptionCallback", "SetPyStrBuilderCallback", "SetPyGenericCallbacks")
        for setter in setters:
            self.service(setter).takes(1)
        self.harness = importlib.import_module("kelmor.harness")
        given = [entry for entry in self.script.journal if entry["call"] == "delegate"]
        self.callbacks = {
            entry["method"]: entry["arguments"][0] for entry in given if entry["arguments"]
        }
        self.script.clear_journal()

    def service(self, method):
        return self.script.method(peer.EXCHANGE, method, ASSEMBLY)

    def method(self, kind, name):
        """An entry of a class of the harness."""
        type_name = f"WrpNs_Kelmor.WrpNs_Harness.WrpCs_{kind[:8]}_{self.classes[kind]}"
        return self.script.method(type_name, name, ASSEMBLY)

    def on(self, kind, name, function):
        """Answers a call by a function over the frame; `frame.result` starts as 0."""
        return self.method(kind, name).calls(function)

    def new_ref(self, value):
        ctypes.pythonapi.Py_IncRef(OBJECT(value))
        self.kept.append(value)
        return id(value)

    def calls(self, name):
        """The calls of an entry, as the journal has them."""
        return [e for e in self.script.journal if e["call"] == "delegate" and e["method"] == name]

    def freed(self):
        return [entry["arguments"][0] for entry in self.calls("FreeInstance")]

    def make(self, kind, handle):
        """An instance made by its first constructor."""
        self.method(kind, f"ctor_000_{kind}").returns(handle)
        return getattr(self.harness, kind)()


def raised(kind, function, *arguments, **keywords):
    """What a call raises: exactly this kind."""
    try:
        function(*arguments, **keywords)
    except BaseException as error:
        assert type(error) is kind, repr(error)
        return error
    raise AssertionError(f"{kind.__name__} was not raised")


def bytes_at(address, size):
    return ctypes.string_at(address, size)


def string_arg(address):
    """length, char_size and data of a PyStringArg."""
    return struct.unpack("<iiQ", bytes_at(address, 16))


def variant_arg(address):
    """kind and value of a VariantArg."""
    return struct.unpack("<i4xQ", bytes_at(address, 16))


def low(word, size, signed=False):
    """The number in the low bytes of a register."""
    raw = (word & 0xFFFFFFFFFFFFFFFF).to_bytes(8, "little")[:size]
    return int.from_bytes(raw, "little", signed=signed)


__all__ = [name for name in dir() if not name.startswith("__")]
