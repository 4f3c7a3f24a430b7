"""The words of one capsule of the real siblings, for use inside of a program of its own."""

import ctypes
import importlib
import sys

from peer import STAGE, Script

POINTER, OBJECT, INT = ctypes.c_void_p, ctypes.py_object, ctypes.c_int


class Words:
    """The table of one capsule of the family, which is imported for it, and the type it is of."""

    def __init__(self, capsule):
        sys.path.insert(0, str(STAGE))
        self.script = Script()
        module, leaf = capsule.rsplit(".", 1)
        importlib.import_module(".".join(capsule.split(".")[:2]))
        self.name = leaf.rsplit("_", 1)[1]
        self.kind = getattr(importlib.import_module(module), self.name)
        get = ctypes.pythonapi.PyCapsule_Import
        get.restype, get.argtypes = POINTER, [ctypes.c_char_p, INT]
        self.table = get(capsule.encode(), 0)
        self.script.clear_journal()

    def word(self, index, result, *arguments):
        address = POINTER.from_address(self.table + 8 * index).value
        return ctypes.PYFUNCTYPE(result, *arguments)(address)

    def wrap(self, handle):
        """A wrapper of the type over a handle."""
        made = self.kind.__new__(self.kind)
        POINTER.from_address(id(made) + object.__basicsize__).value = handle
        return made

    def refusal(self, convert, value, out):
        """What the converter raises for a value; the record stays as it is."""
        before = bytes(out)
        try:
            answer = convert(value, ctypes.addressof(out))
        except TypeError as error:
            answer = str(error)
        return answer, bytes(out) == before

    def freed(self):
        return [
            entry["arguments"][0]
            for entry in self.script.journal
            if entry["call"] == "delegate" and entry["method"] == "FreeInstance"
        ]


def handle_of(wrapper):
    return POINTER.from_address(id(wrapper) + object.__basicsize__).value
