"""The two fixed services of the managed side, and one runtime for all modules of the process."""

import ctypes
import itertools
import os
import subprocess
import sys

import managed_side
import pytest

EXCHANGE = """GetTypeName SetExceptionCallback SetCatchAndClearErrorCallback
    SetU16StrBuilderCallback SetPyUnraisableStrBuilderCallback SetPyStrBuilderCallback
    SetPyBytesBuilderCallback SetPyObjApiCallbacks SetPyStaticCallbacks SetPyGenericCallbacks
    FreePendingArgs FreeInstance InitServices BoxStcTarget""".split()
OBJECT = """ToStringOfObj ToStringOfStc GetHashOfObj GetHashOfStc IsEqualsOfObj IsEqualsOfStc
    IsTypeOf GetTypeName GetObjType GetStcType Dispose""".split()


@pytest.fixture
def delegate():
    """Status and address of a static managed method."""
    import kelmor.psd  # noqa: F401  (starts the runtime)

    wrap = managed_side.wrap_library()

    def create(type_name, method):
        address = ctypes.c_void_p()
        status = wrap.coreclr_wrap_create_delegate(
            b"WrpInterop.Kelmor.PSD",
            f"Kelmor.WrpGen.Interop.{type_name}".encode(),
            method.encode(),
            ctypes.byref(address),
        )
        return status, address.value

    return create


@pytest.mark.behaviour("host-services.managed.exchange-methods")
@pytest.mark.parametrize("method", EXCHANGE)
def test_the_exchange_service_offers(delegate, method):
    assert len(set(EXCHANGE)) == 14
    status, address = delegate("ExchangeHost", method)
    assert status == 0 and address


@pytest.mark.behaviour("host-services.managed.object-methods")
@pytest.mark.parametrize("method", OBJECT)
def test_the_object_service_offers(delegate, method):
    assert len(set(OBJECT)) == 11
    status, address = delegate("ObjectHost", method)
    assert status == 0 and address


def test_a_method_that_is_not_there_is_refused(delegate):
    status, address = delegate("ExchangeHost", "NoSuchMethod")
    assert status & 0xFFFFFFFF == 0x80131513 and not address


MODULES = ["shellbase", "typemodel", "gfxtypes", "shellcommon", "psd"]
# Every module comes first once; the permutations in between differ in the order of the others.
ORDERS = list(itertools.permutations(MODULES))[::12]


@pytest.mark.behaviour("host-start.wraplib.shared")
@pytest.mark.parametrize("order", ORDERS, ids="-".join)
def test_one_runtime_serves_all_modules_in_every_order(order):
    code = "\n".join(f"import kelmor.{name}" for name in order)
    code += """
from kelmor.psd import Rectangle
from kelmor.gfxtypes import RectangleF
from kelmor.typemodel import Type
assert Rectangle(1, 2, 3, 4).width == 3
assert type(Rectangle(1, 2, 3, 4).get_type()) is Type
assert RectangleF(1, 2, 3, 4).width == 3
maps = open("/proc/self/maps").read()
print(len({line.split()[-1] for line in maps.splitlines() if "libcoreclr.so" in line}))
"""
    result = subprocess.run(
        [sys.executable, "-c", code],
        capture_output=True,
        text=True,
        timeout=120,
        env={**os.environ, "COREHOST_TRACE": "1"},
    )
    assert result.returncode == 0, result.stderr
    diary = result.stdout + result.stderr
    assert "1" in result.stdout.split()
    assert diary.count("Creating default AppDomain...") == 1
    assert diary.count("Shutdowning .NET Core host...") == 1
