"""The family of extension modules over one .NET runtime: where its files lie, how its names import.

Every module of the family finds the runtime by two environment variables when it is first imported.
They name the folders of this package unless they are set already; they stay set, because each
module reads them for itself.
"""
import os
import sys

_FOLDERS = {
    "NETCORE_WRAPPER_NETCORE_DIR_kelmor": "runtime",
    "NETCORE_WRAPPER_ASSEMBLY_DIR_kelmor": "assemblies",
}
# Modules that hold a tree of further modules as attributes.
_TREES = ("kelmor.psd", "kelmor.gfxtypes")
# The class itself, without the import of importlib.machinery: this file is on every start.
_ModuleSpec = type(__spec__)
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


class _TreeFinder:
    """Resolves dotted names below the extension modules to the modules that are their attributes.

    An extension makes its whole tree at once and enters none of it in sys.modules. The import
    system has imported the parent by the time that it asks here.
    """

    @staticmethod
    def find_spec(fullname, path=None, target=None):
        parent_name, _, leaf = fullname.rpartition(".")
        if not (parent_name + ".").startswith(tuple(tree + "." for tree in _TREES)):
            return None
        module = getattr(sys.modules.get(parent_name), leaf, None)
        # An attribute of another name is something that the parent shows, not a child of it.
        if not isinstance(module, _Module) or module.__name__ != fullname:
            return None
        loader = _TreeLoader(module)
        return _ModuleSpec(
            fullname,
            loader,
            origin=getattr(sys.modules.get(_tree_of(fullname)), "__file__", None),
            is_package=loader.is_package(fullname),
        )


def _tree_of(fullname):
    return ".".join(fullname.split(".", 2)[:2])


def _set_folders():
    here = os.path.dirname(os.path.abspath(__file__))
    for variable, folder in _FOLDERS.items():
        os.environ.setdefault(variable, os.path.join(here, folder))


def _install_finder():
    # A reload of this file replaces the finder of the time before.
    sys.meta_path[:] = [f for f in sys.meta_path if type(f).__name__ != _TreeFinder.__name__]
    sys.meta_path.append(_TreeFinder())


_set_folders()
_install_finder()
