"""The module shell's functions, called through the probe in this process."""
import ctypes
import os
import pathlib
import sys
import types

BUILD = pathlib.Path(
    os.environ.get("KELMOR_BUILD", pathlib.Path(__file__).resolve().parents[2] / "build/dev")
)
sys.path.insert(0, str(BUILD / "peer"))

import kelmor_probe  # noqa: E402

# A null PyObject*, for an "object" argument; and None as a result stands for a null one.
OBJECT = ctypes.py_object
POINTER = ctypes.c_void_p
TEXT = ctypes.c_char_p
INT = ctypes.c_int
SSIZE = ctypes.c_ssize_t


def native(name, result, *arguments):
    """The function of that name. An exception that it leaves pending is raised."""
    return ctypes.PYFUNCTYPE(result, *arguments)(kelmor_probe.address(name))


def identifier(name):
    """What an identifier's variable holds."""
    return OBJECT.from_address(kelmor_probe.address(name)).value


# What a module's entry does first: the identifiers, and the type of version objects.
native("fn_intern_identifiers", None)()
_home = types.ModuleType("home")
native("PyShModule_AddType", INT, OBJECT, POINTER, TEXT)(
    _home, kelmor_probe.address("PyShModuleVersion_Type"), b"_ModuleVersionType"
)
VERSION_TYPE = _home._ModuleVersionType

create_version = native("PyShVersionAttr_Create", OBJECT, INT, INT, INT, INT, TEXT)
compare_version = native("PyShVersionAttr_Compare", INT, POINTER, OBJECT)
import_ref_module = native("PyShImport_ImportRefModule", OBJECT, TEXT, TEXT, POINTER)


def version(*numbers, view=None):
    text = ".".join(map(str, numbers)) if view is None else view
    return create_version(*numbers, text.encode())


def reference(*numbers):
    return (ctypes.c_int * 4)(*numbers)


def raised(function, *arguments):
    """The exception that a function which gives nothing has raised."""
    try:
        function(*arguments)
    except Exception as error:
        return error
    raise AssertionError("nothing was raised")
