"""Drives the wrap library over the real runtime, as the host of an extension module does."""

import ctypes
import os
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("KELMOR_BUILD") or ROOT / "build/dev").resolve()
WRAP = "libkelmor.embed.coreclrwrap.so"
# The folder of the package in which the wrap library and the runtime's files lie.
RUNTIME = next((BUILD / "package/kelmor/runtime").glob(f"netcore*/{WRAP}")).parent
KEYS = [
    "TRUSTED_PLATFORM_ASSEMBLIES",
    "APP_PATHS",
    "APP_NI_PATHS",
    "NATIVE_DLL_SEARCH_DIRECTORIES",
    "AppDomainCompatSwitch",
]


def texts(values):
    encoded = [os.fsencode(value) for value in values]
    return (ctypes.c_char_p * len(encoded))(*encoded)


class Runtime:
    """The five entries; codes are shown as the runtime's documentation writes them."""

    def __init__(self, folder=RUNTIME):
        self.folder = pathlib.Path(folder)
        self.library = ctypes.PyDLL(str(self.folder / WRAP), mode=ctypes.RTLD_GLOBAL)

    def load(self, path=None):
        path = self.folder / "libcoreclr.so" if path is None else path
        return self.library.coreclr_wrap_load(os.fsencode(path))

    def initialize(self, app_paths="", keys=KEYS, values=None, domain="KelmorCLRHostDomain"):
        if values is None:
            values = ["", app_paths, app_paths, app_paths, "UseLatestBehaviorWhenTFMNotSpecified"]
        code = self.library.coreclr_wrap_initialize(
            sys.executable.encode(), domain.encode(), len(keys), texts(keys), texts(values)
        )
        return code & 0xFFFFFFFF

    def start(self, app_paths=""):
        assert self.load() != 0
        assert self.initialize(app_paths) == 0
        return self

    def delegate(self, assembly, type_name, method):
        """The code, and the pointer that was given."""
        pointer = ctypes.c_void_p()
        names = [None if n is None else n.encode() for n in (assembly, type_name, method)]
        code = self.library.coreclr_wrap_create_delegate(*names, ctypes.byref(pointer))
        return code & 0xFFFFFFFF, pointer.value

    def entry(self, method, *types):
        """An entry of the test assembly; the interpreter lock stays held, as in the extension."""
        code, pointer = self.delegate("Start", "Start.Entries", method)
        assert code == 0, hex(code)
        return ctypes.PYFUNCTYPE(ctypes.c_int, *types)(pointer)

    def text(self, method):
        buffer = ctypes.create_string_buffer(4096)
        size = self.entry(method, ctypes.c_char_p, ctypes.c_int)(buffer, len(buffer))
        return buffer.raw[:size].decode()

    def is_running(self):
        return self.library.coreclr_wrap_is_domain_initialized()

    def shutdown(self):
        return self.library.coreclr_wrap_shutdown() & 0xFFFFFFFF
