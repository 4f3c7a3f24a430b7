"""The module tree as data: a walk over the imported extension."""

import ctypes
import enum
import types

MARKS = [
    "_additional_interfaces",
    "_implicit_interfaces",
    "_kelmor_clr_host",
    "_kelmor_clr_castable_obj",
]
IMPORT_SYSTEM = {"__name__", "__doc__", "__package__", "__loader__", "__spec__", "__file__"}


class ModuleDef(ctypes.Structure):
    """A PyModuleDef; what stands before the name belongs to the interpreter."""

    _fields_ = [
        ("base", ctypes.c_char * 40),
        ("name", ctypes.c_char_p),
        ("doc", ctypes.c_char_p),
        ("size", ctypes.c_ssize_t),
        ("methods", ctypes.c_void_p),
        ("slots", ctypes.c_void_p),
        ("traverse", ctypes.c_void_p),
        ("clear", ctypes.c_void_p),
        ("free", ctypes.c_void_p),
    ]


def definition(module):
    get_def = ctypes.pythonapi.PyModule_GetDef
    get_def.restype, get_def.argtypes = ctypes.POINTER(ModuleDef), [ctypes.py_object]
    found = get_def(module).contents
    return {
        "name": found.name.decode(),
        "doc": found.doc,
        "size": found.size,
        "hooks": [found.slots, found.traverse, found.clear, found.free],
    }


def kind_of(value):
    if isinstance(value, types.ModuleType):
        return "module"
    if isinstance(value, enum.EnumMeta):
        return "enum"
    if isinstance(value, type):
        return "type"
    return type(value).__name__


def marks_of(kind):
    """The marks in a type's own dictionary, in their order, and what they hold."""
    own = vars(kind)
    shown = {}
    for name in own:
        if name in MARKS:
            value = own[name]
            named = isinstance(value, (set, frozenset))
            shown[name] = sorted(t.__name__ for t in value) if named else repr(value)
    return shown


def describe(root):
    """All modules below `root` by the path that leads to each, itself under its own name."""
    modules = {}

    def visit(module, path):
        own = vars(module)
        modules[path] = {
            "name": module.__name__,
            "id": id(module),
            "doc": module.__doc__,
            "package": own.get("__package__"),
            "package_type": type(own.get("__package__")).__name__,
            "path": own.get("__path__"),
            "path_type": type(own.get("__path__")).__name__,
            "attributes": [
                [name, kind_of(value)]
                for name, value in own.items()
                if name not in IMPORT_SYSTEM and name != "__path__"
            ],
            "types": {
                name: {
                    "name": value.__name__,
                    "module": value.__module__,
                    "marks": marks_of(value),
                    "flags": value.__flags__,
                }
                for name, value in own.items()
                if kind_of(value) == "type"
            },
            "enums": [name for name, value in own.items() if kind_of(value) == "enum"],
            "enum_names": [v.__name__ for v in own.values() if kind_of(v) == "enum"],
            "definition": definition(module),
        }
        for name, value in own.items():
            if kind_of(value) == "module":
                visit(value, f"{path}.{name}")

    visit(root, root.__name__)
    return modules
