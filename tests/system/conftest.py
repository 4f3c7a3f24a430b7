"""Corpus files by what can be asked of them, and the count of live managed handles."""

import ctypes
import gc
import os
import pathlib

import pytest

import documents

SETS = {
    "readable": documents.readable,
    "merged": documents.has_merged_truth,
    "damaged": lambda truth: not documents.readable(truth),
    "layered": lambda truth: documents.readable(truth) and truth.get("layers"),
}


def pytest_generate_tests(metafunc):
    """A test that takes `<set>_truth` runs once for every file of that set of the corpus."""
    for name, belongs in SETS.items():
        argument = f"{name}_truth"
        if argument in metafunc.fixturenames:
            found = [truth for truth in documents.truths() if belongs(truth)]
            skip = pytest.mark.skip(reason=documents.WITHOUT_CORPUS)
            rows = found or [pytest.param(None, marks=skip)]
            ids = [documents.short_name(truth) for truth in found] or ["no corpus"]
            metafunc.parametrize(argument, rows, ids=ids)


class Diagnostics:
    """What the managed side counts, through the delegates of its diagnostic class."""

    def __init__(self):
        root = pathlib.Path(os.environ["NETCORE_WRAPPER_NETCORE_DIR_kelmor"])
        (path,) = root.glob("netcore*/libkelmor.embed.coreclrwrap.so")
        self._wrap = ctypes.CDLL(str(path))
        # With the interpreter lock held: late releases give Python references back.
        self._live = ctypes.PYFUNCTYPE(ctypes.c_int64)(self._delegate("LiveHandles"))
        self._collect = ctypes.PYFUNCTYPE(None)(self._delegate("Collect"))

    def _delegate(self, method):
        address = ctypes.c_void_p()
        status = self._wrap.coreclr_wrap_create_delegate(
            b"WrpInterop.Kelmor.PSD",
            b"Kelmor.WrpGen.Interop.Diagnostics",
            method.encode(),
            ctypes.byref(address),
        )
        assert status == 0, f"no diagnostic entry {method}: 0x{status & 0xffffffff:08x}"
        return address.value

    def collect(self):
        gc.collect()
        self._collect()

    def live_handles(self):
        self.collect()
        return self._live()


@pytest.fixture(scope="session")
def diagnostics():
    import kelmor.psd  # noqa: F401  (starts the runtime)

    return Diagnostics()


@pytest.fixture
def no_handle_leaks(request, diagnostics):
    """No managed handle is left over. Fixtures that hold wrappers must ask for this one first."""
    before = diagnostics.live_handles()
    yield
    request.node.funcargs.clear()  # it keeps the values of fixtures that have ended
    after = diagnostics.live_handles()
    # Fewer when an earlier test had failed: its traceback has kept wrappers until now.
    assert after <= before, f"{after - before} managed handles are left"
