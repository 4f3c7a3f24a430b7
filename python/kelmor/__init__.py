"""The family of extension modules over one .NET runtime: where its files lie, how its names import.

Every module of the family finds the runtime by two environment variables when it is first imported.
They name the folders of this package unless they are set already; they stay set, because each
module reads them for itself.
"""
import os
import sys

# The bootstrap's own module, which is there already: importlib.machinery would be one more import.
from _frozen_importlib_external import PathFinder

ModuleSpec = type(__spec__)

_FOLDERS = {
    "NETCORE_WRAPPER_NETCORE_DIR_kelmor": "runtime",
    "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor": "assemblies",
}
_MODULES = ("psd", "gfxtypes", "typemodel", "shellbase", "shellcommon")
# Modules that hold a tree of further modules as attributes.
_TREES = ("kelmor.psd.", "kelmor.gfxtypes.")
_Module = type(sys)


class _TreeLoader:
    """Hands out a module that its extension has made already."""

    def __init__(self, module):
        self._module = module

    def create_module(self, spec):
        return self._module

    def exec_module(self, module):
        """There is nothing to run: the module was filled when its extension was imported."""

    def is_package(self, fullname):
        return hasattr(self._module, "__path__")

    def get_code(self, fullname):
        return None

    def get_source(self, fullname):
        return None


class _Finder:
    """Finds what the import system cannot see below this package, and hides what it must not."""

    @staticmethod
    def find_spec(fullname, path=None, target=None):
        if fullname.startswith(_TREES):
            return _find_in_tree(fullname)
        parent, _, leaf = fullname.rpartition(".")
        if parent == __name__ and leaf in _MODULES:
            return _find_extension(fullname, path, target)
        return None


def _find_in_tree(fullname):
    """Resolves a dotted name below an extension module to the module that is an attribute there.

    An extension makes its whole tree at once and enters none of it in sys.modules. The import
    system has imported the parent by the time that it asks here.
    """
    parent, _, leaf = fullname.rpartition(".")
    module = getattr(sys.modules.get(parent), leaf, None)
    # An attribute of another name is something that the parent shows, not a child of it.
    if not isinstance(module, _Module) or module.__name__ != fullname:
        return None
    loader = _TreeLoader(module)
    extension = sys.modules.get(".".join(fullname.split(".", 2)[:2]))
    origin = getattr(extension, "__file__", None)
    return ModuleSpec(fullname, loader, origin=origin, is_package=loader.is_package(fullname))


def _find_extension(fullname, path, target):
    """Beside every extension lies a folder with its packaging hooks.

    Where the extension itself is missing, or built for another interpreter, the folder must not
    pass for an empty module of that name.
    """
    spec = PathFinder.find_spec(fullname, path, target)
    if spec is None or spec.loader is None or spec.origin is None:
        words = f"No module named {fullname!r} that is built for this interpreter"
        raise ModuleNotFoundError(words, name=fullname)
    return spec


def _set_folders():
    here = os.path.dirname(os.path.abspath(__file__))
    for variable, folder in _FOLDERS.items():
        os.environ.setdefault(variable, os.path.join(here, folder))


def _install_finder():
    # A reload of this file replaces the finder of the time before.
    others = [finder for finder in sys.meta_path if type(finder).__qualname__ != "_Finder"]
    sys.meta_path[:] = [_Finder(), *others]


_set_folders()
_install_finder()
