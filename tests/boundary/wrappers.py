"""A scene for tests of wrappers: a started module over the scripted peer, in a process of its own.

    @scene("binding-wrapper.dealloc.class")
    def test_a_class_wrapper_gives_its_handle_back_once(s):
        w = s.wrap(s.Sample, 0x5000)
        del w
        assert s.calls("FreeInstance") == [[0x5000]]

The body runs in the process; what it asserts there ends the process when it does not hold. Sample
types made by hand stand in `s.root`; the interop wrappers in `s.interop`.
"""

import ast
import ctypes
import inspect
import struct
import types

import peer

POINTER, OBJECT, INT, TEXT = ctypes.c_void_p, ctypes.py_object, ctypes.c_int, ctypes.c_char_p
CLASSES = {
    "Exchange": peer.EXCHANGE,
    "Object": peer.OBJECT,
    "Sample": "WrpNs_Sample.WrpCs_S",
    "Derived": "WrpNs_Sample.WrpCs_D",
    "Value": "WrpNs_Sample.WrpCs_V",
    "IShape": "WrpNs_Sample.WrpCs_I",
    "Shade": "WrpNs_Sample.WrpCs_E",
    "Flags": "WrpNs_Sample.WrpCs_F",
    "Disposable": "Kelmor.WrpGen.Interop.SiApiDisposable",
    "Iter": "Kelmor.WrpGen.Interop.SiApiEnumerator",
    "Iterable": "Kelmor.WrpGen.Interop.SiApiEnumerable",
    "ICol": "Kelmor.WrpGen.Interop.SiApiCntCollection",
    "IList": "Kelmor.WrpGen.Interop.SiApiCntList",
    "Array": "Kelmor.WrpGen.Interop.SiApiArray",
    "ArrList": "Kelmor.WrpGen.Interop.SiApiArrayList",
    "ColBase": "Kelmor.WrpGen.Interop.SiApiCollectionBase",
    "RoColBase": "Kelmor.WrpGen.Interop.SiApiReadOnlyCollectionBase",
    "Stream": "Kelmor.WrpGen.Interop.SiApiStream",
    "IntArray": "Kelmor.WrpGen.Generic.SiApiArray_A4A29720",
    "IntIter": "Kelmor.WrpGen.Generic.SiApiEnumerator_A4A29720",
    "SampleList": "Kelmor.WrpGen.Generic.SiApiList_0D30925B",
    "Test": "Test",
}


def scene(*ids, refuse=(), kind="Scene", module="wrappers"):
    """A test whose body runs in a process of its own, with a scene as its argument.

    `refuse`: (class, method) pairs for which the peer has no delegate. `kind` and `module`: the
    class of the scene and where it stands.
    """

    import pytest  # not at the top: the processes of the tests do without

    def decorate(body):
        source = inspect.getsource(body)
        program = "\n".join(
            [
                surroundings(inspect.getmodule(body)),
                source[source.index("\ndef ") :],
                f"from {module} import {kind}",
                f"{body.__name__}({kind}({tuple(refuse)!r}))",
            ]
        )

        def test(in_process):
            in_process(program)

        test.__name__, test.__doc__ = body.__name__, body.__doc__
        test.__module__ = body.__module__
        return pytest.mark.behaviour(*ids)(test) if ids else test

    return decorate


def surroundings(module):
    """What a body needs of its module: imports and constants, and functions that are no tests."""
    source = inspect.getsource(module)
    kept = []
    for node in ast.parse(source).body:
        names = [part.name for part in getattr(node, "names", [])]
        is_test = getattr(node, "name", "").startswith("test_")
        is_fixture = getattr(node, "decorator_list", [])
        if not is_test and not is_fixture and names != ["pytest"]:
            kept.append(ast.get_source_segment(source, node))
    return "\n".join(kept)


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
    return POINTER.from_address(id(wrapper) + object.__basicsize__).value


def sibling_wrapper(handle, marker=None):
    """A wrapper of another module: the layout and the marker, but no slot of ours."""
    made = type("Sibling", (), {"__slots__": ("handle",), "_kelmor_clr_host": marker})()
    # The collector would take the handle for an object, and so would the end of the wrapper.
    ctypes.pythonapi.PyObject_GC_UnTrack(OBJECT(made))
    ctypes.pythonapi.Py_IncRef(OBJECT(made))
    POINTER.from_address(id(made) + object.__basicsize__).value = handle
    return made


class NameBlocks:
    """Answers for "GetTypeName" in blocks so large that each has a mapping of its own.

    The C library counts those. A sanitizer keeps what was freed and counts nothing, but ends the
    process at a second free by itself.
    """

    def __init__(self, scene):
        class Usage(ctypes.Structure):
            _fields_ = [(f"field_{i}", ctypes.c_size_t) for i in range(10)]

        self._libc = ctypes.CDLL(None)
        self._libc.malloc.restype, self._libc.malloc.argtypes = POINTER, [ctypes.c_size_t]
        self._libc.mallinfo2.restype = Usage
        self._create = scene.function("fn_create_u16_buffer", POINTER, POINTER, INT)
        self.counts = not hasattr(self._libc, "__asan_init")

    def mapped(self):
        return self._libc.mallinfo2().field_3 if self.counts else 0

    def make(self, name):
        text = ctypes.create_string_buffer(name.encode("utf-16-le") + b"\0\0")
        small = POINTER.from_address(self._create(ctypes.addressof(text), len(name)))
        large = self._libc.malloc(1 << 28)
        POINTER.from_address(large).value = small.value
        return large


def i32(word):
    """The 32-bit number in a register."""
    return ctypes.c_int32(word & 0xFFFFFFFF).value


def i64(word):
    return ctypes.c_int64(word).value


class Scene:
    def __init__(self, refuse=()):
        import native

        self.native = native
        self.script = peer.Script()
        for name, method in refuse:
            self.script.refuse(CLASSES[name], method, 77)
        self.root = types.ModuleType("kelmor.psd")
        self.kept = []
        assert self.function("start_wrapped_module", INT, OBJECT)(self.root) == 0
        self.interop = self.root._wrpgen._interop
        self.generic = self.root._wrpgen._generic
        self.Sample, self.Derived = self.root.Sample, self.root.Derived
        self.Value, self.IShape = self.root.Value, self.root.IShape
        self.requests_of_start = self.script.requests
        self.calls_of_start = {
            entry["method"]: entry["arguments"][:1]
            for entry in self.script.journal
            if entry["call"] == "delegate"
        }
        self.method("Test", "Factory").calls(self.make_result)
        self.set_pointer("PyShCastOpResult_New", self.method("Test", "Factory").address)
        self.method("Test", "TypeToPy").calls(lambda f: self.give(f, ("Type", f.integers[0])))
        self.method("Test", "ObjectToPy").calls(lambda f: self.give(f, ("Object", f.integers[0])))
        self.method("Test", "EnumToPy").calls(lambda f: self.give(f, ("Enum", f.integers[0])))
        for name, stub in [
            ("convcaps_clr_to_py_C08ECFAB_Type", "TypeToPy"),
            ("convcaps_clr_to_py_359C4ED8_Object", "ObjectToPy"),
            ("convcaps_clr_to_py_738AFABA_Enum", "EnumToPy"),
            ("trancaps_py_to_clr_C08ECFAB_Type", "TypeFromPy"),
            ("trancaps_py_to_clr_359C4ED8_Object", "ObjectFromPy"),
        ]:
            self.set_pointer(f"wrpPyl_{name}", self.method("Test", stub).address)
        self.script.clear_journal()

    # Native functions.

    def function(self, name, result, *arguments):
        return self.native.function(name, result, *arguments)

    def set_pointer(self, name, address):
        POINTER.from_address(self.native.address(name)).value = address

    def wrap(self, kind, handle):
        """A wrapper that owns the handle."""
        return self.function("fn_py_clr_type_generic_new", OBJECT, POINTER, OBJECT)(handle, kind)

    def convert(self, name, value):
        """Runs a converter over a VariantArg: (kind, value)."""
        record = self.native.VariantArg(kind=-7, value=None)
        convert = self.function(name, INT, OBJECT, POINTER)
        assert convert(value, ctypes.addressof(record)) == 1
        return record.kind, record.value

    def status(self, name, *arguments, wide=False):
        """What a callback answers, and the error that it leaves pending."""
        import native

        call = native.function(f"status{'64' if wide else ''}_and_error", OBJECT, *[POINTER] * 6)
        address = name if type(name) is int else native.address(name)
        words = [a if type(a) is int else id(a) for a in arguments]
        return call(address, *words, *[0] * (5 - len(words)))

    # The managed side.

    def method(self, kind, name):
        return self.script.method(CLASSES[kind], name, peer.ASSEMBLY)

    def new_ref(self, value):
        """The address of an object with one more reference, which somebody will drop."""
        ctypes.pythonapi.Py_IncRef(OBJECT(value))
        self.kept.append(value)
        return id(value)

    def give(self, frame, value):
        frame.result = self.new_ref(value)

    def make_result(self, frame):
        """The cast factory: ("cast", status, value), "null" for a null value."""
        address = frame.integers[1]
        value = ctypes.cast(address, OBJECT).value if address else "null"
        frame.result = self.new_ref(("cast", i32(frame.integers[0]), value))

    def returns_object(self, kind, name, value):
        """The method gives a new reference to the object at each call."""
        return self.method(kind, name).calls(lambda frame: self.give(frame, value))

    def writes_object(self, kind, name, argument, value, status=0):
        """The method writes a new reference behind a pointer argument."""

        def write(frame):
            POINTER.from_address(frame.integers[argument]).value = self.new_ref(value)
            frame.result = status & 0xFFFFFFFFFFFFFFFF

        return self.method(kind, name).calls(write)

    def type_name(self, name):
        """What "GetTypeName" answers from now on: a new cell each time."""
        create = self.function("fn_create_u16_buffer", POINTER, POINTER, INT)
        raw = name.encode("utf-16-le")
        text = ctypes.create_string_buffer(raw, len(raw) + 2)
        self.kept.append(text)

        def answer(frame):
            frame.result = create(ctypes.addressof(text), len(raw) // 2)

        self.method("Exchange", "GetTypeName").reset().calls(answer)

    def calls(self, name=None, count=1):
        """First arguments of the calls of a method; of all methods: their names."""
        entries = [entry for entry in self.script.journal if entry["call"] == "delegate"]
        entries = [entry for entry in entries if entry["type"] != "Test"]
        if name is None:
            return [entry["method"] for entry in entries]
        return [entry["arguments"][:count] for entry in entries if entry["method"] == name]

    def memory(self, name):
        """What `shows` kept of each call of a method."""
        return [
            [None if part is None else bytes.fromhex(part) for part in entry["snapshots"]]
            for entry in self.script.journal
            if entry["call"] == "delegate" and entry["method"] == name
        ]

    def clear(self):
        self.script.clear_journal()


def variant(raw):
    """kind and value of the bytes of a VariantArg."""
    kind, value = struct.unpack("<i4xQ", raw)
    return kind, value


def shown(outcome):
    """Status, kind and text of what `Scene.status` gives."""
    status, error = outcome
    return (status, None) if error is None else (status, type(error), str(error))
