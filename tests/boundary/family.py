"""The family of modules in a process: siblings made of nothing, and the extension over them.

For use inside of a program that runs in a process of its own.
"""

import ctypes
import importlib
import mmap
import re
import subprocess
import sys
import types

import peer
import shell_probe

CAPSULES = [
    "kelmor.gfxtypes.imaging._C_APIT_ImageAttributes",
    "kelmor.gfxtypes._C_APIT_Image",
    "kelmor.gfxtypes.drawing2d._C_APIT_Matrix",
    "kelmor.gfxtypes._C_APIT_Pen",
    "kelmor.gfxtypes._C_APITV1_PointF",
    "kelmor.gfxtypes._C_APITV1_Rectangle",
    "kelmor.gfxtypes._C_APITV1_RectangleF",
    "kelmor.gfxtypes._C_APIT_Region",
    "kelmor.gfxtypes._C_APIT_RotateFlipType",
    "kelmor.gfxtypes._C_APIT_StringFormat",
    "kelmor.gfxtypes.drawing2d._C_APIT_GraphicsPath",
    "kelmor.gfxtypes._C_APIT_Font",
    "kelmor.gfxtypes._C_APIT_GraphicsUnit",
    "kelmor.gfxtypes.imaging._C_APIT_ColorMatrix",
    "kelmor.gfxtypes._C_APIT_Brush",
    "kelmor.gfxtypes.drawing2d._C_APIT_ColorBlend",
    "kelmor.gfxtypes._C_APITV1_Color",
    "kelmor.gfxtypes.imaging._C_APIT_ColorMap",
    "kelmor.gfxtypes._C_APIT_Bitmap",
    "kelmor.typemodel._C_APIT_Type",
    "kelmor.typemodel._C_APIT_Object",
    "kelmor.typemodel._C_APIT_Enum",
]
FACTORY = "kelmor.shellbase._C_APIF"
SIBLINGS = ["kelmor.gfxtypes", "kelmor.typemodel", "kelmor.shellbase"]
# The words of each capsule that are taken, the others need not be there.
WORDS = {name: [1] for name in CAPSULES}
WORDS["kelmor.gfxtypes._C_APIT_GraphicsUnit"] = [0]
for _name in ("_C_APITV1_PointF", "_C_APITV1_Color", "imaging._C_APIT_ColorMap"):
    WORDS[f"kelmor.gfxtypes.{_name}"] = [0, 1]
for _name in ("Type", "Object"):
    WORDS[f"kelmor.typemodel._C_APIT_{_name}"] = [1, 2]

KEPT = []  # what native code points at

new_capsule = ctypes.pythonapi.PyCapsule_New
new_capsule.restype = ctypes.py_object
new_capsule.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]


def lonely_table(words, side):
    """A table of three words, given by index, whose neighbours on one side have no memory.

    "before": what stands before the first of the words cannot be read; "behind": what stands
    behind the last of them.
    """
    page = mmap.PAGESIZE
    memory = mmap.mmap(-1, 3 * page)
    KEPT.append(memory)
    start = ctypes.addressof(ctypes.c_char.from_buffer(memory))
    if side == "before":
        table = start + page - 8 * min(words)
    else:
        table = start + 2 * page - 8 * (max(words) + 1)
    for index, value in words.items():
        ctypes.c_uint64.from_address(table + 8 * index).value = value
    protect = ctypes.CDLL(None).mprotect
    protect.argtypes = [ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int]
    for unreadable in (start, start + 2 * page):
        assert protect(unreadable, page, 0) == 0
    return table


def word_table(words):
    """A table of three words: addresses, or ctypes functions that stay alive."""
    KEPT.append(words)
    table = (ctypes.c_void_p * 3)()
    for index, value in words.items():
        table[index] = value if isinstance(value, int) else ctypes.cast(value, ctypes.c_void_p)
    KEPT.append(table)
    return ctypes.addressof(table)


class Family:
    """Stub siblings in this process, and `kelmor.psd` beside them."""

    def __init__(self):
        self.package = types.ModuleType("kelmor")
        self.package.__path__ = [str(peer.STAGE / "kelmor")]
        sys.modules["kelmor"] = self.package
        self.tables = {}

    def sibling(self, name, found=(24, 5, 3, 0), threshold=(0, 0, 0, 0)):
        """An importable module of that name."""
        module = types.ModuleType(name)
        if found:
            module.VERSION = shell_probe.version(*found)
        if threshold:
            module._BACKWARD_COMPATIBILITY_THRESHOLD = shell_probe.version(*threshold)
        parent, leaf = name.rsplit(".", 1)
        setattr(sys.modules[parent], leaf, module)
        sys.modules[name] = module
        return module

    def capsule(self, name, table=None):
        """A capsule in its module; its table has three words of its own unless one is given."""
        if table is None:
            words = (ctypes.c_void_p * 3)(*self.words(name))
            KEPT.append(words)
            table = ctypes.addressof(words)
        self.tables[name] = table
        text = ctypes.create_string_buffer(name.encode())
        KEPT.append(text)  # the capsule only points at its name
        path, leaf = name.rsplit(".", 1)
        setattr(self.module(path), leaf, new_capsule(table, text, None))

    def words(self, name):
        """Numbers that tell where a word has come from."""
        number = (CAPSULES + [FACTORY]).index(name)
        return [0x5EED0000 + 16 * number + index for index in range(3)]

    def module(self, path):
        """The module at a dotted path; sub-modules of a sibling are made when they are missing."""
        parts = path.split(".")
        module = self.package
        for depth, part in enumerate(parts[1:], 2):
            if not hasattr(module, part):
                setattr(module, part, types.ModuleType(".".join(parts[:depth])))
            module = getattr(module, part)
        return module

    def complete(self, without=(), **siblings):
        """All siblings with all capsules, but those that are named."""
        for name in SIBLINGS:
            if name not in without:
                self.sibling(name, **siblings)
        for name in CAPSULES + [FACTORY]:
            if name not in without and not any(name.startswith(part + ".") for part in without):
                self.capsule(name)
        for name in without:
            if name in SIBLINGS:
                sys.modules[name] = None
        return self

    def psd(self):
        """Imports the extension alone: nothing of the package around it takes part."""
        return importlib.import_module("kelmor.psd")

    def failure(self):
        """What importing the extension raises, as `chain` shows it."""
        try:
            self.psd()
        except ImportError as error:
            return chain(error)
        raise AssertionError("the import succeeded")


def counts(objects):
    """The reference counts of mortal objects."""
    return [ctypes.c_uint32.from_address(id(value)).value for value in objects]


def chain(error):
    """An exception and its causes: type, text, whether cause is context, whether a traceback is."""
    shown = []
    while error is not None:
        cause = error.__cause__
        shown.append(
            [
                type(error).__name__,
                str(error),
                cause is error.__context__,
                error.__traceback__ is not None,
            ]
        )
        error = cause if cause is not None else error.__context__
    return shown


class Registry:
    """Asks the extension which type it has for a managed name, as the managed side does.

    It is made before the import, so that it sees the callbacks that are handed over.
    """

    def __init__(self, script):
        self.script, self.name, self.token = script, None, 0
        self.seen = {}
        for method in ("SetU16StrBuilderCallback", "SetPyStaticCallbacks"):
            script.method(peer.EXCHANGE, method, peer.ASSEMBLY).takes(1)
        script.method(peer.EXCHANGE, "GetTypeName", peer.ASSEMBLY).calls(self.answer)

    def remember(self):
        """Notes what was handed over, so that the journal may be cleared."""
        for entry in self.script.journal:
            if entry["call"] == "delegate" and entry["arguments"]:
                self.seen[entry["method"]] = entry["arguments"][0]

    def callback(self, method):
        if method not in self.seen:
            self.remember()
        return self.seen[method]

    def answer(self, frame):
        create = ctypes.PYFUNCTYPE(ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int32)(
            self.callback("SetU16StrBuilderCallback")
        )
        units = self.name.encode("utf-16-le")
        frame.result = create(units, len(units) // 2)

    def find(self, name):
        """The type of that full managed name, or None."""
        self.name = name
        self.token += 1
        tables = ctypes.cast(
            self.callback("SetPyStaticCallbacks"),
            ctypes.POINTER(ctypes.POINTER(ctypes.c_void_p)),
        )
        write_object = ctypes.PYFUNCTYPE(ctypes.py_object, ctypes.c_void_p, ctypes.c_int64)(
            tables[1][0]
        )
        try:
            return type(write_object(0x1000 + self.token, self.token))
        except TypeError as error:
            assert str(error) == "unknown wrapper type"
            return None


class Interposer:
    """Stands between a module and the interpreter."""

    def __init__(self, script, path):
        self.library = library = script.library
        self.script = script
        text, number = ctypes.c_char_p, ctypes.c_int
        library.peer_interpose.argtypes = [text]
        library.peer_watch.argtypes = [text]
        library.peer_fail.argtypes = [text, text, number, ctypes.c_uint64, text]
        KEPT.append(ctypes.PyDLL(str(path)))
        self.slots = library.peer_interpose(str(path).encode())
        assert self.slots > 0, path

    def watch(self, *functions):
        for function in functions:
            self.library.peer_watch(None if function is None else function.encode())

    def fail(self, function, text=None, result=-1, skip=0, message="refused by the test"):
        self.library.peer_fail(
            function.encode(),
            peer.encoded(text),
            skip,
            result & 0xFFFFFFFFFFFFFFFF,
            peer.encoded(message),
        )

    def keep(self):
        """Failing additions to a module get a reference more to it and to the object."""
        self.library.peer_keep()

    def kept_counts(self):
        """The counts of the last ones, the additional reference included."""
        kept = self.library.peer_kept
        kept.restype = ctypes.POINTER(ctypes.c_uint64 * 2)
        return [ctypes.c_uint32.from_address(address).value for address in kept().contents]

    def relent(self):
        self.library.peer_fail_no_more()

    def calls(self):
        """The watched calls: function and text."""
        return [
            [entry["function"], entry["text"]]
            for entry in self.script.journal
            if entry["call"] == "python"
        ]


def extension_path(leaf="psd", folder=None):
    """The file of an extension module."""
    folder = peer.STAGE / "kelmor" if folder is None else folder
    (path,) = folder.glob(f"{leaf}.cpython-{sys.version_info[0]}{sys.version_info[1]}-*.so")
    return path


def interposed(script, leaf="psd"):
    return Interposer(script, extension_path(leaf))


def symbols_of(path):
    """Addresses of the functions and data of a loaded module, by name; overloads by signature."""
    rows = subprocess.run(["nm", "-C", str(path)], check=True, capture_output=True, text=True)
    found = {
        row[2].replace("(anonymous namespace)::", ""): int(row[1], 16)
        for row in (re.match(r"([0-9a-f]{16}) \S (.*)", line) for line in rows.stdout.splitlines())
        if row
    }
    known = ctypes.addressof(ctypes.c_void_p.in_dll(ctypes.PyDLL(str(path)), "HostNotReady"))
    base = known - found["HostNotReady"]
    return {name: base + offset for name, offset in found.items()}
