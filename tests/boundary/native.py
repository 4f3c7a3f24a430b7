"""Functions of the runtime's layers, reached through the probe."""

import ctypes

import kelmor_probe


def function(name, result=ctypes.c_int, *arguments):
    """A native function. A Python error that it leaves pending is raised."""
    return ctypes.PYFUNCTYPE(result, *arguments)(kelmor_probe.address(name))


def datum(name, kind):
    """A native variable of a ctypes type."""
    return kind.from_address(address(name))


def address(name):
    return kelmor_probe.address(name)


class Record(ctypes.Structure):
    """A record of the boundary. It shows its fields, and its bytes are what crosses."""

    def __repr__(self):
        fields = ", ".join(f"{name}={getattr(self, name)!r}" for name, *_ in self._fields_)
        return f"{type(self).__name__}({fields})"


class VariantArg(Record):
    _fields_ = [("kind", ctypes.c_int32), ("value", ctypes.c_void_p)]


class PyStringArg(Record):
    _fields_ = [
        ("length", ctypes.c_int32),
        ("char_size", ctypes.c_int32),
        ("data", ctypes.c_void_p),
    ]

    def text(self):
        """The str that the record stands for."""
        if self.length == -1:
            return None
        raw = ctypes.string_at(self.data, self.length * self.char_size)
        return raw.decode({1: "latin-1", 2: "utf-16-le", 4: "utf-32-le"}[self.char_size])


class PyEphStrArg(Record):
    _fields_ = [("text", PyStringArg), ("owner", ctypes.c_void_p)]


class PyBytesArg(Record):
    _fields_ = [("held", ctypes.c_int32), ("length", ctypes.c_int32), ("data", ctypes.c_void_p)]

    def content(self):
        """The bytes that the record stands for."""
        return None if self.length == -1 else ctypes.string_at(self.data, self.length)


class PyObjectOutArg(Record):
    _fields_ = [("handle", ctypes.c_void_p), ("type_token", ctypes.c_int64)]


class PyCollectionArg(Record):
    _fields_ = [
        ("kind", ctypes.c_int32),
        ("handle", ctypes.c_void_p),
        ("type_token", ctypes.c_int64),
    ]


class PyParamByRef(Record):
    _fields_ = [
        ("list", ctypes.c_void_p),
        ("convert", ctypes.c_void_p),
        ("target", ctypes.c_void_p),
    ]


class PyNullableArg(Record):
    _fields_ = [
        ("has_value", ctypes.c_int32),
        ("convert", ctypes.c_void_p),
        ("target", ctypes.c_void_p),
    ]


class PySysVersionArg(Record):
    _fields_ = [("count", ctypes.c_int32), ("components", ctypes.c_int32 * 4)]


def start_host(family="kelmor", debug=False, netcore_dir=None, assembly_dir=None, names=(b"", b"")):
    """Lets the host find and start its runtime; gives the address of the environment."""
    text = ctypes.c_char_p
    instance = function(
        "host_instance", ctypes.c_void_p, text, ctypes.c_int, text, text, text, text
    )
    encode = lambda path: None if path is None else str(path).encode()  # noqa: E731
    return instance(
        names[0], debug, encode(family), names[1], encode(netcore_dir), encode(assembly_dir)
    )


def start_services(assembly="WrpInterop.Kelmor.PSD"):
    """Starts the runtime and binds the two fixed services, as an import does first."""
    start_host()
    name = ctypes.create_string_buffer(assembly.encode())
    start_services.kept.append(name)  # the host does not own it
    assert function("exchange_initialize", ctypes.c_int, ctypes.c_char_p)(
        ctypes.cast(name, ctypes.c_char_p)
    )
    function("object_get_instance", ctypes.c_void_p)()


start_services.kept = []
