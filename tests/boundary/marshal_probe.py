"""The converters and callbacks, called through the probe in this process."""

import ctypes
import sys

from shell_probe import INT, OBJECT, POINTER, kelmor_probe, native

INT64 = ctypes.c_int64
LONG = ctypes.c_long
DOUBLE = ctypes.c_double

_convert = native("convert", OBJECT, POINTER, OBJECT, POINTER)
_parse_one = native("parse_one", OBJECT, POINTER, OBJECT, POINTER)


class PyStringArg(ctypes.Structure):
    _fields_ = [("length", ctypes.c_int32), ("char_size", ctypes.c_int32), ("data", POINTER)]


class PyEphStrArg(ctypes.Structure):
    _fields_ = [("text", PyStringArg), ("owner", POINTER)]


class PyBytesArg(ctypes.Structure):
    _fields_ = [("held", ctypes.c_int32), ("length", ctypes.c_int32), ("data", POINTER)]


class VariantArg(ctypes.Structure):
    _fields_ = [("kind", ctypes.c_int32), ("value", POINTER)]


class PyParamByRef(ctypes.Structure):
    _fields_ = [("list", POINTER), ("convert", POINTER), ("target", POINTER)]


class PyNullableArg(ctypes.Structure):
    _fields_ = [("has_value", ctypes.c_int32), ("convert", POINTER), ("target", POINTER)]


class PySysVersionArg(ctypes.Structure):
    _fields_ = [("count", ctypes.c_int32), ("components", ctypes.c_int32 * 4)]


class PyBytesArgBuilder:
    """A builder in memory of the test's own; it ends with the `with` block."""

    def __init__(self, fill=0):
        self.memory = ctypes.create_string_buffer(bytes([fill]) * 96, 96)
        self.address = ctypes.addressof(self.memory)
        native("bytes_construct", None, POINTER)(self.address)
        self.info = PyBytesArg.from_address(self.address + 80)

    def __enter__(self):
        return self

    def __exit__(self, *error):
        native("bytes_destroy", None, POINTER)(self.address)


def address(name):
    return kelmor_probe.address(name)


def where(target):
    """The address of a ctypes object, or the address that is given."""
    if target is None or isinstance(target, int):
        return target
    return ctypes.addressof(target)


def convert(name, value, target):
    """An "O&" converter's result, and the exception that it left pending or None."""
    return _convert(address(name), value, where(target))


def accepted(name, value, target):
    """Converts what must be accepted, with nothing left pending."""
    result, error = convert(name, value, target)
    assert (result, error) == (1, None)
    return target


def refused(name, value, target=None):
    """Converts what must be refused: the exception."""
    if target is None:
        target = (INT64 * 8)()
    result, error = convert(name, value, target)
    assert result == 0 and error is not None
    return error


def said(error):
    """An exception as (class, text)."""
    return type(error), str(error)


def parse_one(name, value, target):
    """Converts as the "O&" unit of an argument tuple of one."""
    return _parse_one(address(name), (value,), where(target))


def identity(value):
    """The address of an object, as native code sees it."""
    return id(value)


def references(value):
    """The references that others than the caller hold."""
    return sys.getrefcount(value) - 3


def text_of(record):
    """What a PyStringArg holds, decoded as the managed side does."""
    if record.length == -1:
        return None
    data = ctypes.string_at(record.data, record.length * record.char_size)
    encoding = {1: "latin-1", 2: "utf-16-le", 4: "utf-32-le"}[record.char_size]
    return data.decode(encoding, "surrogatepass" if record.char_size > 1 else "strict")


def units(text):
    """A text as 16-bit units, and their number."""
    data = text.encode("utf-16-le", "surrogatepass")
    return data, len(data) // 2


__all__ = [name for name in dir() if not name.startswith("_")] + ["INT"]
