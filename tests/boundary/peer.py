"""The scripted peer from Python: an installation that holds it, processes to run in, its script.

A test builds an `Installation`, lets a function run in a process of its own, and looks at what came
out. The function runs with everything of this module at hand, fills the script and imports:

    def test_the_library_is_asked_once(in_process):
        def program():
            script = Script()
            script.refuse(method="Dispose", code=7)
            native.start()
            return script.requests()

        assert in_process(program).value == [...]
"""

import ctypes
import inspect
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import textwrap

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("KELMOR_BUILD") or ROOT / "build/dev").resolve()
PEER = BUILD / "peer"
STAGE = BUILD / "package"

WRAP = "libkelmor.embed.coreclrwrap.so"
DEBUG_WRAP = "libkelmor.embed.coreclrwrap.debug.so"
ENTRIES = [
    "coreclr_wrap_initialize",
    "coreclr_wrap_create_delegate",
    "coreclr_wrap_shutdown",
    "coreclr_wrap_is_domain_initialized",
    "coreclr_wrap_load",
]

ASSEMBLY = "WrpInterop.Kelmor.PSD"
EXCHANGE = "Kelmor.WrpGen.Interop.ExchangeHost"
OBJECT = "Kelmor.WrpGen.Interop.ObjectHost"
# The order in which each service asks for its delegates.
EXCHANGE_METHODS = [
    "GetTypeName",
    "SetExceptionCallback",
    "SetCatchAndClearErrorCallback",
    "SetU16StrBuilderCallback",
    "SetPyUnraisableStrBuilderCallback",
    "SetPyStrBuilderCallback",
    "SetPyBytesBuilderCallback",
    "SetPyObjApiCallbacks",
    "SetPyStaticCallbacks",
    "SetPyGenericCallbacks",
    "FreePendingArgs",
    "FreeInstance",
    "FreeInstance",
    "InitServices",
    "BoxStcTarget",
]
OBJECT_METHODS = [
    "ToStringOfObj",
    "ToStringOfStc",
    "GetHashOfObj",
    "GetHashOfStc",
    "IsEqualsOfObj",
    "IsEqualsOfStc",
    "IsTypeOf",
    "GetTypeName",
    "GetObjType",
    "GetStcType",
    "Dispose",
]


def wrap_library(path, without=()):
    """Puts the peer's wrap library at a path. Entries of `without` can't be found in it."""
    content = (PEER / WRAP).read_bytes()
    for entry in without:
        # The hash table still leads to the place, where another name now stands.
        name = b"\0%s\0" % entry.encode()
        assert content.count(name) >= 1, entry
        content = content.replace(name, name[:-2] + b"_\0")
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)
    return path


class Installation:
    """Folders as the host looks for them."""

    def __init__(self, root):
        self.root = pathlib.Path(root)
        self.runtimes = self.root / "runtime"
        self.assemblies = self.root / "assemblies"
        self.runtimes.mkdir(parents=True)
        self.assemblies.mkdir()

    def add_runtime(self, name="netcore10.0", libraries=(WRAP,), without=()):
        folder = self.runtimes / name
        folder.mkdir()
        for library in libraries:
            wrap_library(folder / library, without)
        return folder

    def add_assemblies(self, *names):
        for name in names:
            (self.assemblies / name).mkdir(parents=True)

    def environment(self):
        return {
            "NETCORE_WRAPPER_NETCORE_DIR_kelmor": str(self.runtimes),
            "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor": str(self.assemblies),
        }


class Outcome:
    """What is left of a process: its code, its bytes, what the program returned, the journal."""

    def __init__(self, completed, value, journal):
        self.code = completed.returncode
        # Line ends stay what they were.
        self.stdout = completed.stdout.decode(errors="surrogateescape")
        self.stderr = completed.stderr.decode(errors="surrogateescape")
        self.value = value
        self.journal = journal

    @property
    def calls(self):
        """The names of all calls that the peer saw, also those after the interpreter's end."""
        return [entry["call"] for entry in self.journal]

    def entry(self, call):
        """The only entry of the journal about this call."""
        (entry,) = [entry for entry in self.journal if entry["call"] == call]
        return entry

    @property
    def requests(self):
        return requests_of(self.journal)

    def __repr__(self):
        return f"<code {self.code}\n-- stdout\n{self.stdout}\n-- stderr\n{self.stderr}>"


def requests_of(journal):
    """Type and method of each delegate that was asked for."""
    wanted = "coreclr_wrap_create_delegate"
    return [(entry["type"], entry["method"]) for entry in journal if entry["call"] == wanted]


def read_journal(text):
    return [json.loads(line) for line in text.splitlines()]


PREAMBLE = """\
import ctypes, json, os, resource, sys
sys.path[:0] = {paths!r}
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
from peer import *
"""


def program_text(program, arguments):
    """The script of a process: a text as it is, or the source of a function and a call of it."""
    if isinstance(program, str):
        return textwrap.dedent(program)
    source = textwrap.dedent(inspect.getsource(program))
    values = ", ".join(map(repr, arguments))
    return f"{source}\nreport({program.__name__}({values}))\n"


def run_python(program, *arguments, environment=(), executable=sys.executable, cwd=None):
    """Runs a program in a process of its own."""
    with tempfile.TemporaryDirectory(prefix="kelmor-") as folder:
        folder = pathlib.Path(folder)
        preamble = PREAMBLE.format(paths=[str(pathlib.Path(__file__).parent), str(PEER)])
        script = folder / "program.py"
        script.write_text(preamble + program_text(program, arguments))
        variables = {k: v for k, v in os.environ.items() if not k.startswith("NETCORE_WRAPPER_")}
        variables.pop("COREHOST_TRACE", None)
        variables.update(environment, KELMOR_BUILD=str(BUILD), KELMOR_TEST_FOLDER=str(folder))
        completed = subprocess.run(
            [executable, str(script)], env=variables, cwd=cwd, capture_output=True, timeout=100
        )
        value, journal = folder / "value", folder / "journal"
        return Outcome(
            completed,
            json.loads(value.read_text()) if value.exists() else None,
            read_journal(journal.read_text(errors="surrogateescape")) if journal.exists() else [],
        )


def report(value):
    """Hands a value, as JSON, to the test that started this process."""
    (pathlib.Path(os.environ["KELMOR_TEST_FOLDER"]) / "value").write_text(json.dumps(value))


class PythonCall:
    """Calls Python from a stub: the function gets the Frame and may change its results."""

    def __init__(self, function):
        self.pointer = ctypes.PYFUNCTYPE(None, ctypes.POINTER(Frame))(self.run)
        self.function = function

    def run(self, frame):
        self.function(frame.contents)


class Frame(ctypes.Structure):
    """The registers that a stub was called with, and those that it returns with."""

    _fields_ = [
        ("integers", ctypes.c_uint64 * 6),
        ("floats", ctypes.c_double * 8),
        ("stack", ctypes.POINTER(ctypes.c_uint64)),
        ("result", ctypes.c_uint64),
        ("result_float", ctypes.c_double),
    ]


def word(value):
    """A value as it stands in a register."""
    if value is None:
        return 0
    if isinstance(value, int):
        return value & 0xFFFFFFFFFFFFFFFF
    return ctypes.cast(value, ctypes.c_void_p).value or 0


class Method:
    """A managed method: what its stub does. All but `received` give the method itself."""

    def __init__(self, script, type_name, method, assembly):
        self.script = script
        self.names = (type_name, method)
        self.stub = script.library.peer_stub(encoded(assembly), encoded(type_name), encoded(method))
        self.address = script.library.peer_stub_function(self.stub)

    def returns(self, *values):
        """The next results; the last one stays."""
        for value in values:
            floating = value if isinstance(value, float) else 0.0
            bits = struct.unpack("<Q", struct.pack("<d", floating))[0]
            number = 0 if isinstance(value, float) else word(value)
            self.script.library.peer_stub_return(self.stub, number, bits)
        return self

    def returns_float32(self, value):
        bits = struct.unpack("<I", struct.pack("<f", value))[0]
        self.script.library.peer_stub_return(self.stub, 0, bits)
        return self

    def writes(self, argument, content, offset=0):
        """Writes bytes, or a ctypes value, behind a pointer argument."""
        content = bytes(content)
        self.script.library.peer_stub_write(self.stub, argument, offset, content, len(content))
        return self

    def shows(self, argument, size, offset=0):
        """Lets the journal hold what stands behind a pointer argument."""
        self.script.library.peer_stub_snapshot(self.stub, argument, offset, size)
        return self

    def takes(self, integers, floats=0):
        """How many arguments the journal shows; integers beyond six lie on the stack."""
        self.script.library.peer_stub_arguments(self.stub, integers, floats)
        return self

    def raises(self, exception, text):
        """Leaves a Python error pending, as a managed exception does."""
        text = self.script.keep(ctypes.create_string_buffer(text.encode()))
        setter = ctypes.cast(ctypes.pythonapi.PyErr_SetString, ctypes.c_void_p)
        return self.invokes(setter, id(self.script.keep(exception)), text)

    def invokes(self, function, *words):
        """Calls a C function with up to three words; in order, when there are several."""
        words = [word(value) for value in words] + [0] * (3 - len(words))
        self.script.library.peer_stub_invoke(self.stub, word(function), *words)
        return self

    def calls(self, function):
        """Calls Python last of all: `function(frame)`."""
        call = self.script.keep(PythonCall(function))
        self.script.library.peer_stub_call(self.stub, ctypes.cast(call.pointer, ctypes.c_void_p))
        return self

    def reset(self):
        self.script.library.peer_stub_reset(self.stub)
        return self

    @property
    def received(self):
        """The journal's entries about calls of this method."""
        return [
            entry
            for entry in self.script.journal
            if entry["call"] == "delegate" and (entry["type"], entry["method"]) == self.names
        ]


def encoded(text):
    return None if text is None else text.encode()


class Script:
    """The script of the peer in this process."""

    def __init__(self):
        self.kept = []
        self.library = library = ctypes.PyDLL(
            str(PEER / "libkelmor.peer.script.so"), mode=ctypes.RTLD_GLOBAL
        )
        text, number, pointer, bits = (
            ctypes.c_char_p,
            ctypes.c_int,
            ctypes.c_void_p,
            ctypes.c_uint64,
        )
        signatures = {
            "peer_journal": (text,),
            "peer_clear_journal": (None,),
            "peer_log_to": (None, text),
            "peer_answer": (None, text, number),
            "peer_refuse": (None, text, text, text, number),
            "peer_provide": (None, text, text, text, pointer),
            "peer_allow": (None, text, text, text),
            "peer_stub": (pointer, text, text, text),
            "peer_stub_function": (pointer, pointer),
            "peer_stub_reset": (None, pointer),
            "peer_stub_arguments": (None, pointer, number, number),
            "peer_stub_return": (None, pointer, bits, bits),
            "peer_stub_snapshot": (None, pointer, number, number, number),
            "peer_stub_write": (None, pointer, number, number, text, number),
            "peer_stub_invoke": (None, pointer, pointer, bits, bits, bits),
            "peer_stub_call": (None, pointer, pointer),
        }
        for name, (result, *arguments) in signatures.items():
            function = getattr(library, name)
            function.restype, function.argtypes = result, arguments
        if "KELMOR_TEST_FOLDER" in os.environ:
            library.peer_log_to(f"{os.environ['KELMOR_TEST_FOLDER']}/journal".encode())

    def keep(self, value):
        """Native code holds the value's address until the end of the process."""
        self.kept.append(value)
        return value

    def answer(self, entry, value):
        """Fixes what an entry answers: load, initialize, shutdown or is_domain_initialized."""
        self.library.peer_answer(entry.encode(), value)

    def refuse(self, type_name=None, method=None, code=-2146233069, assembly=None):
        """Lets requests for a delegate fail; None fits everything."""
        self.library.peer_refuse(encoded(assembly), encoded(type_name), encoded(method), code)

    def allow(self, type_name=None, method=None, assembly=None):
        """Takes back what `refuse` said."""
        self.library.peer_allow(encoded(assembly), encoded(type_name), encoded(method))

    def provide(self, type_name, method, function, assembly=None):
        """Gives this very function for a method."""
        pointer = word(self.keep(function))
        self.library.peer_provide(encoded(assembly), encoded(type_name), encoded(method), pointer)

    def method(self, type_name, method, assembly=None):
        return Method(self, type_name, method, assembly)

    @property
    def journal(self):
        return read_journal(self.library.peer_journal().decode(errors="surrogateescape"))

    def clear_journal(self):
        self.library.peer_clear_journal()

    @property
    def calls(self):
        return [entry["call"] for entry in self.journal]

    @property
    def requests(self):
        return requests_of(self.journal)

    def delegates(self):
        """The methods that were called, in order."""
        return [entry["method"] for entry in self.journal if entry["call"] == "delegate"]
