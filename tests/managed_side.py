"""What the managed side of a module says of itself: its live handles and its late releases."""

import ctypes
import os
import pathlib

WRAP = "libkelmor.embed.coreclrwrap.so"
DIAGNOSTICS = "Kelmor.WrpGen.Interop.Diagnostics"


def wrap_library():
    """The wrap library that a module of the family has loaded already."""
    root = pathlib.Path(os.environ["NETCORE_WRAPPER_NETCORE_DIR_kelmor"])
    for folder in sorted(root.glob("netcore*"), reverse=True):
        if (folder / WRAP).exists():
            return ctypes.PyDLL(str(folder / WRAP), mode=os.RTLD_NOW | os.RTLD_NOLOAD)
    raise FileNotFoundError(f"no {WRAP} below {root}")


class ManagedSide:
    """The diagnostic entries of one interop assembly, such as "WrpInterop.Kelmor.PSD"."""

    def __init__(self, assembly):
        self._assembly = assembly.encode()
        self._wrap = wrap_library()
        self._live = self._entry("LiveHandles", ctypes.c_int64)
        self._queue = self._entry("QueueLength", ctypes.c_int32)
        self._collect = self._entry("Collect", None)

    def _entry(self, method, restype):
        pointer = ctypes.c_void_p()
        code = self._wrap.coreclr_wrap_create_delegate(
            self._assembly, DIAGNOSTICS.encode(), method.encode(), ctypes.byref(pointer)
        )
        assert code == 0, f"{method}: {code & 0xFFFFFFFF:#x}"
        return ctypes.PYFUNCTYPE(restype)(pointer.value)

    def live_handles(self):
        """Handles that Python wrappers own at this moment."""
        return self._live()

    def late_releases(self):
        """Python references that finalisers let go and that no call has given back yet."""
        return self._queue()

    def collect(self):
        """Collects managed garbage, runs its finalisers, gives back what they let go."""
        self._collect()
